// SPDX-License-Identifier: Apache-2.0
// The state record: its defaults, the order of its fields, the current context and errors.
#include "ZALGLBeginEnd.h"
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

namespace
{

using support::BareContext;

struct StateRecord : ::testing::Test
{
    BareContext bare;
    ZALGLState& gl = bare.state();
};

template <size_t Count, class T>
bool allEqual(const T (&values)[Count], T wanted)
{
    return std::all_of(values, values + Count, [wanted](T value) { return value == wanted; });
}

// ---- Defaults ----

TEST_F(StateRecord, ClearAndBlendColoursStartAtZero)
{
    EXPECT_TRUE(allEqual(gl.blendColor, 0.0f));
    EXPECT_TRUE(allEqual(gl.clearColor, 0.0f));
    EXPECT_EQ(gl.clearDepth, 1.0f);
    EXPECT_EQ(gl.clearStencil, 0u);
}

TEST_F(StateRecord, EveryCapabilityStartsDisabled)
{
    EXPECT_EQ(gl.cullFaceEnabled, 0);
    EXPECT_EQ(gl.depthTestEnabled, 0);
    EXPECT_EQ(gl.polygonOffsetFillEnabled, 0);
    EXPECT_EQ(gl.stencilTestEnabled, 0);
}

TEST_F(StateRecord, RasterisationAndDepthDefaults)
{
    EXPECT_EQ(gl.cullFaceMode, 0x0405u);
    EXPECT_EQ(gl.depthFunc, 0x0201u);
    EXPECT_EQ(gl.depthWriteMask, 1);
    EXPECT_EQ(gl.currentError, 0u);
    EXPECT_EQ(gl.polygonMode, 0x1B02u);
    EXPECT_EQ(gl.polygonOffsetFactor, 0.0f);
    EXPECT_EQ(gl.polygonOffsetUnits, 0.0f);
}

TEST_F(StateRecord, StencilDefaults)
{
    EXPECT_EQ(gl.stencilFunc, 0x0207u);
    EXPECT_EQ(gl.stencilRef, 0);
    EXPECT_EQ(gl.stencilValueMask, 0xFFFFFFFFu);
    EXPECT_EQ(gl.stencilWriteMask, 0xFFFFFFFFu);
    EXPECT_EQ(gl.stencilFailOp, 0x1E00u);
    EXPECT_EQ(gl.stencilDepthFailOp, 0x1E00u);
    EXPECT_EQ(gl.stencilDepthPassOp, 0x1E00u);
}

TEST_F(StateRecord, NothingIsBoundAndTheViewportIsEmpty)
{
    EXPECT_EQ(gl.arrayBufferBinding, 0u);
    EXPECT_EQ(gl.elementArrayBufferBinding, 0u);
    EXPECT_TRUE(allEqual(gl.viewport, 0));
    EXPECT_EQ(gl.activeTextureUnit, 0u);
    for (auto& unit : gl.textureBindings)
        EXPECT_TRUE(allEqual(unit, 0u));
}

TEST_F(StateRecord, VertexArraysStartZeroAndDisabled)
{
    EXPECT_EQ(gl.enabledAttribArrays, 0u);
    for (const GLVertexAttribDescription& attribute : gl.vertexAttribs) {
        EXPECT_EQ(attribute.buffer, 0u);
        EXPECT_EQ(attribute.size, 0);
        EXPECT_EQ(attribute.type, 0u);
        EXPECT_FALSE(attribute.normalized);
        EXPECT_EQ(attribute.stride, 0);
        EXPECT_EQ(attribute.offset, 0);
    }
}

TEST_F(StateRecord, PipelineDescriptionDefaults)
{
    const GLRenderPipelineDescription& pipeline = gl.pipelineDescription;
    EXPECT_EQ(pipeline.boundFramebuffer, 0u);
    EXPECT_EQ(pipeline.drawBufferMask, 1u);
    EXPECT_EQ(pipeline.boundProgramVertex, 0u);
    EXPECT_EQ(pipeline.boundProgramFragment, 0u);
    EXPECT_EQ(pipeline.colorWriteMask, 0xFu);
    EXPECT_FALSE(pipeline.blendingEnabled);
    for (const GLBlendDescription& blend : pipeline.blend) {
        EXPECT_EQ(blend.equation, 0x8006u);
        EXPECT_EQ(blend.srcFactor, 1u);
        EXPECT_EQ(blend.dstFactor, 0u);
    }
}

TEST_F(StateRecord, EveryMatrixStackStartsWithOneIdentity)
{
    EXPECT_EQ(gl.matrixMode, 0u);
    for (const ZALGLState::MatrixStack& stack : gl.matrixStacks) {
        EXPECT_EQ(stack.depth, 0);
        for (int i = 0; i < 16; ++i)
            EXPECT_EQ(stack.entries[0][i], i % 5 == 0 ? 1.0f : 0.0f);
        for (int entry = 1; entry < 17; ++entry)
            EXPECT_TRUE(allEqual(stack.entries[entry], 0.0f));
    }
}

TEST_F(StateRecord, ObjectsImmediateModeAndProgramErrorDefaults)
{
    EXPECT_EQ(gl.contextObjects, &bare.objects());
    ASSERT_NE(gl.beginEnd, nullptr);
    EXPECT_EQ(gl.beginEnd->vertexCount, 0);
    EXPECT_EQ(gl.beginEnd->pendingError, 0u);
    EXPECT_EQ(gl.programErrorPosition, -1);
    EXPECT_TRUE(allEqual(gl.programErrorString, '\0'));
}

TEST_F(StateRecord, ConfigurationDefaults)
{
    EXPECT_EQ(gl.deviceIndex, -1);
    EXPECT_EQ(gl.enableDebugGPUCapture, 0);
    EXPECT_EQ(gl.debugCaptureAtStart, 0);
    EXPECT_EQ(gl.useMetalDeviceWrapper, 0);
    EXPECT_EQ(gl.strictValidation, 0);
    EXPECT_EQ(gl.isIntelDevice, 1);
    EXPECT_EQ(gl.defaultFramebufferWidth, 0u);
    EXPECT_EQ(gl.defaultFramebufferHeight, 0u);
}

TEST_F(StateRecord, FieldsStandInTheOrderOfTheirGroups)
{
    const size_t offsets[] = {
        offsetof(ZALGLState, blendColor),
        offsetof(ZALGLState, clearColor),
        offsetof(ZALGLState, clearDepth),
        offsetof(ZALGLState, clearStencil),
        offsetof(ZALGLState, cullFaceEnabled),
        offsetof(ZALGLState, depthTestEnabled),
        offsetof(ZALGLState, polygonOffsetFillEnabled),
        offsetof(ZALGLState, stencilTestEnabled),
        offsetof(ZALGLState, cullFaceMode),
        offsetof(ZALGLState, depthFunc),
        offsetof(ZALGLState, depthWriteMask),
        offsetof(ZALGLState, currentError),
        offsetof(ZALGLState, polygonMode),
        offsetof(ZALGLState, polygonOffsetFactor),
        offsetof(ZALGLState, polygonOffsetUnits),
        offsetof(ZALGLState, stencilFunc),
        offsetof(ZALGLState, stencilRef),
        offsetof(ZALGLState, stencilValueMask),
        offsetof(ZALGLState, stencilWriteMask),
        offsetof(ZALGLState, stencilFailOp),
        offsetof(ZALGLState, stencilDepthFailOp),
        offsetof(ZALGLState, stencilDepthPassOp),
        offsetof(ZALGLState, arrayBufferBinding),
        offsetof(ZALGLState, elementArrayBufferBinding),
        offsetof(ZALGLState, viewport),
        offsetof(ZALGLState, enabledAttribArrays),
        offsetof(ZALGLState, vertexAttribs),
        offsetof(ZALGLState, pipelineDescription),
        offsetof(ZALGLState, matrixMode),
        offsetof(ZALGLState, matrixStacks),
        offsetof(ZALGLState, activeTextureUnit),
        offsetof(ZALGLState, textureBindings),
        offsetof(ZALGLState, contextObjects),
        offsetof(ZALGLState, beginEnd),
        offsetof(ZALGLState, programErrorPosition),
        offsetof(ZALGLState, programErrorString),
        offsetof(ZALGLState, deviceIndex),
        offsetof(ZALGLState, enableDebugGPUCapture),
        offsetof(ZALGLState, debugCaptureAtStart),
        offsetof(ZALGLState, useMetalDeviceWrapper),
        offsetof(ZALGLState, strictValidation),
        offsetof(ZALGLState, isIntelDevice),
    };
    EXPECT_TRUE(std::is_sorted(std::begin(offsets), std::end(offsets)));
    EXPECT_EQ(sizeof(ZALMetalContext), 3 * sizeof(void*));
    EXPECT_LT(offsetof(ZALMetalContext, metalData), offsetof(ZALMetalContext, glState));
    EXPECT_LT(offsetof(ZALMetalContext, glState), offsetof(ZALMetalContext, drawable));
}

// ---- Current context ----

TEST_F(StateRecord, AccessorsFollowTheCurrentContext)
{
    EXPECT_EQ(GetCurrentMetalContext(), g_currentContext);
    EXPECT_EQ(GetCurrentGLState(), &gl);
    EXPECT_EQ(GetCurrentMetalData(), &bare.metal());
    EXPECT_EQ(GetCurrentMetalState(), bare.metal().metalState);
    EXPECT_EQ(GetMetalDrawable(g_currentContext), g_currentContext->drawable);
}

TEST(CurrentContext, AccessorsAreNullWithoutOne)
{
    g_currentContext = nullptr;
    EXPECT_EQ(GetCurrentMetalContext(), nullptr);
    EXPECT_EQ(GetCurrentGLState(), nullptr);
    EXPECT_EQ(GetCurrentMetalData(), nullptr);
    EXPECT_EQ(GetCurrentMetalState(), nullptr);
}

// ---- Errors ----

TEST_F(StateRecord, Kept_last_error_wins)
{
    glMatrixMode(0);          // GL_INVALID_ENUM
    glBlendFunciARB(8, 1, 1); // GL_INVALID_VALUE
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(StateRecord, AFreshContextReportsNothing)
{
    GLdouble viewport[4] = {9, 9, 9, 9};
    glGetDoublev(GL_VIEWPORT, viewport);
    EXPECT_TRUE(allEqual(viewport, 0.0));
    GLint depth = 0, position = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    glGetIntegerv(GL_PROGRAM_ERROR_POSITION_ARB, &position);
    EXPECT_EQ(depth, 1);
    EXPECT_EQ(position, -1);
    EXPECT_STREQ(reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)), "");
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

// ---- Sharing ----

TEST(SharedContexts, ABufferMadeInOneIsVisibleInTheOther)
{
    BareContext first;
    GLuint name = 0;
    glGenBuffers(1, &name);
    BareContext second(first);
    EXPECT_EQ(GetCurrentGLState()->contextObjects->buffers.Find(name), first.objects().buffers.Find(name));
    EXPECT_NE(first.objects().buffers.Find(name), nullptr);
}

TEST(SharedContexts, StateIsNotShared)
{
    BareContext first, second(first);
    glEnable(GL_CULL_FACE);
    glMatrixMode(GL_PROJECTION);
    const GLfloat twos[16] = {2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2};
    glLoadMatrixf(twos);
    second.state().arrayBufferBinding = 7;
    glDepthFunc(0);

    EXPECT_EQ(first.state().cullFaceEnabled, 0);
    EXPECT_EQ(first.state().matrixMode, 0u);
    EXPECT_EQ(first.state().matrixStacks[1].entries[0][0], 1.0f);
    EXPECT_EQ(first.state().arrayBufferBinding, 0u);
    first.makeCurrent();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    second.makeCurrent();
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
}

} // namespace
