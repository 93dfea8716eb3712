// SPDX-License-Identifier: Apache-2.0
// Chapters: strings, numbers, shader objects.
#include "ZALGLState.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

// ---- Strings -------------------------------------------------------------------------------------------------------

namespace
{

// Kept on purpose: [vendor-string] hosts choose their code path by this maker's name, so it is not ours.
constexpr const char* Vendor = "ATI Technologies Inc.";
constexpr const char* Extensions =
    "GL_ARB_vertex_program GL_ARB_fragment_program GL_EXT_packed_depth_stencil GL_ARB_texture_rectangle "
    "GL_ARB_texture_float GL_ARB_color_buffer_float GL_ARB_half_float_pixel GL_ARB_framebuffer_object "
    "GL_ARB_draw_buffers GL_ARB_draw_buffers_blend GL_EXT_texture_filter_anisotropic";

const GLubyte* bytes(const char* text)
{
    return reinterpret_cast<const GLubyte*>(text);
}

} // namespace

const GLubyte* glGetString(GLenum name)
{
    // These two need no context.
    if (name == GL_VENDOR) return bytes(Vendor);
    if (name == GL_EXTENSIONS) return bytes(Extensions);

    // Kept on purpose: [no-version-string] renderer, version and the rest are null, and no error says so.
    ZALGLState* gl = GetCurrentGLState();
    return name == GL_PROGRAM_ERROR_STRING_ARB && gl ? bytes(gl->programErrorString) : nullptr;
}

// ---- Numbers -------------------------------------------------------------------------------------------------------

void glGetIntegerv(GLenum pname, GLint* params)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    switch (pname) {
    case GL_MODELVIEW_STACK_DEPTH:
        *params = gl->matrixStacks[0].depth + 1;
        break;
    case GL_MAX_TEXTURE_SIZE:
    case GL_MAX_RENDERBUFFER_SIZE:
        *params = 16384;
        break;
    case GL_MAX_3D_TEXTURE_SIZE:
        *params = 2048;
        break;
    case GL_PROGRAM_ERROR_POSITION_ARB:
        *params = gl->programErrorPosition;
        break;
    // Kept on purpose: [integer-query-silent] GL says INVALID_ENUM; here nothing is written and nothing reported.
    default:
        break;
    }
}

void glGetFloatv(GLenum pname, GLfloat* params)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (pname != GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT) return SetCurrentError(gl, GL_INVALID_ENUM);
    *params = 16.0f;
}

void glGetDoublev(GLenum pname, GLdouble* params)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    const ZALGLState::MatrixStack* stack = nullptr;
    switch (pname) {
    case GL_VIEWPORT:
        for (int i = 0; i < 4; ++i)
            params[i] = gl->viewport[i];
        return;
    case GL_MODELVIEW_MATRIX:
        stack = &gl->matrixStacks[0];
        break;
    case GL_PROJECTION_MATRIX:
        stack = &gl->matrixStacks[1];
        break;
    case GL_CURRENT_MATRIX_ARB:
        stack = &gl->matrixStacks[gl->matrixMode];
        break;
    default:
        return SetCurrentError(gl, GL_INVALID_ENUM);
    }
    for (int i = 0; i < 16; ++i)
        params[i] = static_cast<double>(stack->entries[stack->depth][i]);
}

// ---- Shader objects ------------------------------------------------------------------------------------------------
// GLSL is not offered; nothing is created here.

namespace
{

constexpr const char* Limitation = "Limitation: GLSL is not supported";

/// The handle of all shader and program objects; its type is a pointer on some platforms.
GLhandleARB onlyHandle()
{
    // Kept on purpose: [shader-objects-pretend] a host that probes GLSL sees objects that compile and link, and finds
    // the truth in the info log; strict validation shows it failure.
    ZALGLState* gl = GetCurrentGLState();
    return (GLhandleARB) static_cast<uintptr_t>(gl && !gl->strictValidation ? 1 : 0);
}

} // namespace

GLhandleARB glCreateShaderObjectARB(GLenum)
{
    return onlyHandle();
}

GLhandleARB glCreateProgramObjectARB(void)
{
    return onlyHandle();
}

void glGetObjectParameterivARB(GLhandleARB, GLenum pname, GLint* params)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (pname != GL_OBJECT_COMPILE_STATUS_ARB && pname != GL_OBJECT_LINK_STATUS_ARB)
        return SetCurrentError(gl, GL_INVALID_OPERATION);
    *params = gl->strictValidation ? 0 : 1;
}

void glGetInfoLogARB(GLhandleARB, GLsizei maxLength, GLsizei* length, GLcharARB* infoLog)
{
    // Kept on purpose: [info-log-full-length] GL reports the characters written; here those of the whole message.
    if (length) *length = static_cast<GLsizei>(std::strlen(Limitation));
    if (infoLog && maxLength > 0) std::snprintf(infoLog, static_cast<size_t>(maxLength), "%s", Limitation);
}

GLint glGetUniformLocationARB(GLhandleARB, const GLcharARB*)
{
    // Kept on purpose: [uniform-location-zero] GL says -1 for a name that does not exist; here every name is at 0.
    return 0;
}
