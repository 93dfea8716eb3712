// SPDX-License-Identifier: Apache-2.0
// Fixed-function state. Chapters: errors and synchronisation, enables, blending, clear values, masks, culling and
// depth, stencil, polygons, viewport, pixel storage. Arrays, matrices, queries and names have files of their own.
#include "RenderPipelineCache.h"
#include "ZALGLState.h"
#include "ZALMetalData.h"
#include "ZALMetalState.h"

// ---- Errors and synchronisation -------------------------------------------------------------------------------------

GLenum glGetError(void)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return GL_NO_ERROR;
    GLenum error = gl->currentError;
    gl->currentError = GL_NO_ERROR;
    return error;
}

void glFlush(void)
{
    if (ZALMetalState* state = GetCurrentMetalState()) state->commandBufferEnd();
}

void glFinish(void)
{
    if (ZALMetalState* state = GetCurrentMetalState()) state->commandBufferWaitUntilCompleted();
}

// ---- Enables --------------------------------------------------------------------------------------------------------

namespace
{

/// A pass has its depth or stencil attachment only while the test is on, so a real change ends it.
void setTest(uint8_t& field, uint8_t value)
{
    if (field == value) return;
    field = value;
    GetCurrentMetalState()->renderPassEnd();
}

void setCaptureScope(const ZALGLState& gl, bool enable)
{
    if (!gl.enableDebugGPUCapture) return;
    ZALMetalData* data = GetCurrentMetalData();
    if (enable) {
        if (data->captureScope) data->captureScope->beginScope();
        data->captureScopeActive = true;
        return;
    }
    if (data->captureScope) data->captureScope->endScope();
    // Kept on purpose: [capture-scope-dropped] ending forgets the scope unreleased; it cannot be begun again.
    data->captureScope = nullptr;
    data->captureScopeActive = false;
}

void internal_glEnableDisable(GLenum cap, uint8_t enable)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    switch (cap) {
    case GL_CULL_FACE:
        gl->cullFaceEnabled = enable;
        break;
    case GL_DEPTH_TEST:
        setTest(gl->depthTestEnabled, enable);
        break;
    case GL_STENCIL_TEST:
        setTest(gl->stencilTestEnabled, enable);
        break;
    case GL_BLEND:
        gl->pipelineDescription.blendingEnabled = enable != 0;
        break;
    case GL_POLYGON_OFFSET_FILL:
        gl->polygonOffsetFillEnabled = enable;
        break;
    case GL_DEBUG_CAPTURE_SCOPE_ZAL:
        setCaptureScope(*gl, enable != 0);
        break;
    // Kept on purpose: [unknown-capability-ignored] GL says INVALID_ENUM; GL_SCISSOR_TEST and its like pass in silence.
    default:
        break;
    }
}

} // namespace

void glEnable(GLenum cap)
{
    internal_glEnableDisable(cap, 1);
}

void glDisable(GLenum cap)
{
    internal_glEnableDisable(cap, 0);
}

// ---- Blending -------------------------------------------------------------------------------------------------------

void glBlendColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    const float values[4] = {red, green, blue, alpha};
    for (int i = 0; i < 4; ++i)
        gl->blendColor[i] = values[i];
}

void glBlendEquation(GLenum mode)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [blend-mode-unchecked] any value is stored, unless strict validation is on.
    // Kept on purpose: [blend-mode-error] an unknown mode is then GL_INVALID_VALUE, where GL says INVALID_ENUM.
    uint64_t unused = 0;
    if (gl->strictValidation && ZALMetal::convertBlendOperation(unused, mode))
        return SetCurrentError(gl, GL_INVALID_VALUE);

    for (GLBlendDescription& blend : gl->pipelineDescription.blend)
        blend.equation = mode;
}

void glBlendFunc(GLenum sfactor, GLenum dfactor)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // As for the equation; the source factor is looked at first.
    uint64_t unused = 0;
    if (gl->strictValidation &&
        (ZALMetal::convertBlendFactor(unused, sfactor) || ZALMetal::convertBlendFactor(unused, dfactor)))
        return SetCurrentError(gl, GL_INVALID_VALUE);

    for (GLBlendDescription& blend : gl->pipelineDescription.blend) {
        blend.srcFactor = sfactor;
        blend.dstFactor = dfactor;
    }
}

void glBlendEquationiARB(GLuint buf, GLenum mode)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (buf >= 8) return SetCurrentError(gl, GL_INVALID_VALUE);

    // Kept on purpose: [indexed-blend-unchecked] the indexed setters take any enumerant, strict validation or not.
    gl->pipelineDescription.blend[buf].equation = mode;
}

void glBlendFunciARB(GLuint buf, GLenum src, GLenum dst)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (buf >= 8) return SetCurrentError(gl, GL_INVALID_VALUE);

    gl->pipelineDescription.blend[buf].srcFactor = src;
    gl->pipelineDescription.blend[buf].dstFactor = dst;
}

// ---- Clear values ---------------------------------------------------------------------------------------------------

void glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [clear-color-unclamped] old GL clamps to [0, 1]; here any value is kept, for float targets.
    const float values[4] = {red, green, blue, alpha};
    for (int i = 0; i < 4; ++i)
        gl->clearColor[i] = values[i];
}

void glClearDepth(GLclampd depth)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    auto value = static_cast<float>(depth);
    // NaN, which is not above 0, becomes 0.
    gl->clearDepth = value > 1.0f ? 1.0f : value > 0.0f ? value : 0.0f;
}

void glClearStencil(GLint s)
{
    if (ZALGLState* gl = GetCurrentGLState()) gl->clearStencil = static_cast<uint32_t>(s);
}

// ---- Masks, culling and depth ---------------------------------------------------------------------------------------

void glColorMask(GLboolean red, GLboolean green, GLboolean blue, GLboolean alpha)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->pipelineDescription.colorWriteMask = (red ? 8u : 0u) + (green ? 4u : 0u) + (blue ? 2u : 0u) + (alpha ? 1u : 0u);
}

void glCullFace(GLenum mode)
{
    // Kept on purpose: [cull-mode-unchecked] GL says INVALID_ENUM for an unknown mode; here it is stored.
    if (ZALGLState* gl = GetCurrentGLState()) gl->cullFaceMode = mode;
}

void glDepthFunc(GLenum func)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [depth-func-error] an unknown function is GL_INVALID_VALUE, where GL says INVALID_ENUM.
    if (func < GL_NEVER || func > GL_ALWAYS) return SetCurrentError(gl, GL_INVALID_VALUE);

    gl->depthFunc = func;
    GetCurrentMetalState()->SetDirty(DirtyDepthStencil);
}

void glDepthMask(GLboolean flag)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->depthWriteMask = flag;
    GetCurrentMetalState()->SetDirty(DirtyDepthStencil);
}

// ---- Stencil --------------------------------------------------------------------------------------------------------
// Front and back faces are not told apart.
// Kept on purpose: [stencil-unchecked] GL says INVALID_ENUM for unknown functions and operations; here they are stored.

void glStencilFunc(GLenum func, GLint ref, GLuint mask)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->stencilFunc = func;
    gl->stencilRef = ref;
    gl->stencilValueMask = mask;
    GetCurrentMetalState()->SetDirty(DirtyDepthStencil);
}

void glStencilMask(GLuint mask)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->stencilWriteMask = mask;
    GetCurrentMetalState()->SetDirty(DirtyDepthStencil);
}

void glStencilOp(GLenum fail, GLenum zfail, GLenum zpass)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->stencilFailOp = fail;
    gl->stencilDepthFailOp = zfail;
    gl->stencilDepthPassOp = zpass;
    GetCurrentMetalState()->SetDirty(DirtyDepthStencil);
}

// ---- Polygons -------------------------------------------------------------------------------------------------------

void glPolygonMode(GLenum, GLenum mode)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [polygon-face-ignored] there is one mode; GL_FRONT alone sets it for both faces.
    gl->polygonMode = mode;
    // Kept on purpose: [polygon-point-stored] strict validation refuses points, which stay stored all the same.
    if (gl->strictValidation && mode == GL_POINT) SetCurrentError(gl, GL_INVALID_OPERATION);
}

void glPolygonOffset(GLfloat factor, GLfloat units)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    gl->polygonOffsetFactor = factor;
    gl->polygonOffsetUnits = units;
}

// ---- Viewport -------------------------------------------------------------------------------------------------------

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [viewport-unchecked] GL says INVALID_VALUE for negative sizes; here they are stored.
    const int32_t values[4] = {x, y, width, height};
    for (int i = 0; i < 4; ++i)
        gl->viewport[i] = values[i];
    GetCurrentMetalState()->SetDirty(DirtyViewport);
}

// ---- Pixel storage --------------------------------------------------------------------------------------------------

void glPixelStorei(GLenum pname, GLint param)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [pixel-rows-packed] rows are tightly packed; whatever is not an alignment of 1 is
    // GL_INVALID_ENUM.
    bool alignment = pname == GL_UNPACK_ALIGNMENT || pname == GL_PACK_ALIGNMENT;
    if (!alignment || param != 1) SetCurrentError(gl, GL_INVALID_ENUM);
}
