// SPDX-License-Identifier: Apache-2.0
// Fixed-function setters: what they store and what they refuse. What they tell the Metal side is in SetterEffectTest.
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

struct Setter : ::testing::Test
{
    support::BareContext bare;
    ZALGLState& gl = bare.state();
    GLBlendDescription* blend = gl.pipelineDescription.blend;
};

struct StrictSetter : Setter
{
    StrictSetter() { gl.strictValidation = 1; }
};

void expectRefused(GLenum error, const ZALGLState& state, void (*call)())
{
    support::StateSnapshot before(state);
    call();
    EXPECT_EQ(glGetError(), error);
    EXPECT_TRUE(before.unchanged());
}

void expectIgnored(const ZALGLState& state, void (*call)())
{
    expectRefused(GL_NO_ERROR, state, call);
}

// ---- Blending ----

TEST_F(Setter, BlendColorIsStoredUnclamped)
{
    glBlendColor(-1.0f, 0.25f, 2.0f, 1.0f);
    EXPECT_EQ(gl.blendColor[0], -1.0f);
    EXPECT_EQ(gl.blendColor[1], 0.25f);
    EXPECT_EQ(gl.blendColor[2], 2.0f);
    EXPECT_EQ(gl.blendColor[3], 1.0f);
}

TEST_F(Setter, BlendEquationAndFactorsReachAllEightDrawBuffers)
{
    glBlendEquation(GL_MAX);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(blend[i].equation, GLenum(GL_MAX));
        EXPECT_EQ(blend[i].srcFactor, GLenum(GL_SRC_ALPHA));
        EXPECT_EQ(blend[i].dstFactor, GLenum(GL_ONE_MINUS_SRC_ALPHA));
    }
}

TEST_F(Setter, Kept_blend_mode_unchecked)
{
    glBlendEquation(0x1234);
    glBlendFunc(0x2345, 0x3456);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(blend[i].equation, 0x1234u);
        EXPECT_EQ(blend[i].srcFactor, 0x2345u);
        EXPECT_EQ(blend[i].dstFactor, 0x3456u);
    }
}

TEST_F(StrictSetter, Kept_blend_mode_error)
{
    expectRefused(GL_INVALID_VALUE, gl, [] { glBlendEquation(0x1234); });
    expectRefused(GL_INVALID_VALUE, gl, [] { glBlendFunc(0x1234, GL_ONE); });
    expectRefused(GL_INVALID_VALUE, gl, [] { glBlendFunc(GL_ONE, 0x1234); });
}

TEST_F(StrictSetter, KnownBlendModesAreStored)
{
    glBlendEquation(GL_FUNC_SUBTRACT);
    glBlendFunc(GL_DST_COLOR, GL_ZERO);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(blend[7].equation, GLenum(GL_FUNC_SUBTRACT));
    EXPECT_EQ(blend[7].srcFactor, GLenum(GL_DST_COLOR));
    EXPECT_EQ(blend[7].dstFactor, GLenum(GL_ZERO));
}

TEST_F(Setter, IndexedBlendSettersReachOneDrawBuffer)
{
    glBlendEquationiARB(7, GL_MIN);
    glBlendFunciARB(7, GL_DST_ALPHA, GL_ONE);
    EXPECT_EQ(blend[7].equation, GLenum(GL_MIN));
    EXPECT_EQ(blend[7].srcFactor, GLenum(GL_DST_ALPHA));
    EXPECT_EQ(blend[7].dstFactor, GLenum(GL_ONE));
    EXPECT_EQ(blend[6].equation, GLenum(GL_FUNC_ADD));
    EXPECT_EQ(blend[6].srcFactor, GLenum(GL_ONE));
}

TEST_F(Setter, IndexedBlendSettersRefuseTheNinthDrawBuffer)
{
    expectRefused(GL_INVALID_VALUE, gl, [] { glBlendFunciARB(8, GL_ONE, GL_ONE); });
    expectRefused(GL_INVALID_VALUE, gl, [] { glBlendEquationiARB(8, GL_FUNC_ADD); });
}

TEST_F(StrictSetter, Kept_indexed_blend_unchecked)
{
    glBlendEquationiARB(2, 0x1234);
    glBlendFunciARB(2, 0x2345, 0x3456);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(blend[2].equation, 0x1234u);
    EXPECT_EQ(blend[2].srcFactor, 0x2345u);
    EXPECT_EQ(blend[2].dstFactor, 0x3456u);
}

// ---- Clear values ----

TEST_F(Setter, Kept_clear_color_unclamped)
{
    glClearColor(-2.0f, 0.5f, 3.0f, 1.0f);
    EXPECT_EQ(gl.clearColor[0], -2.0f);
    EXPECT_EQ(gl.clearColor[1], 0.5f);
    EXPECT_EQ(gl.clearColor[2], 3.0f);
    EXPECT_EQ(gl.clearColor[3], 1.0f);
}

TEST_F(Setter, ClearDepthIsClamped)
{
    struct Row
    {
        double given;
        float stored;
    };
    for (Row row : {Row{2.0, 1.0f}, Row{-1.0, 0.0f}, Row{0.25, 0.25f}, Row{0.0, 0.0f}, Row{1.0, 1.0f},
                    Row{std::numeric_limits<double>::quiet_NaN(), 0.0f},
                    Row{std::numeric_limits<double>::infinity(), 1.0f}, Row{0.1, 0.1f}})
    {
        glClearDepth(row.given);
        EXPECT_EQ(gl.clearDepth, row.stored) << row.given;
        EXPECT_FALSE(std::signbit(gl.clearDepth)) << row.given;
    }
}

TEST_F(Setter, ClearStencilKeepsAllBits)
{
    glClearStencil(-1);
    EXPECT_EQ(gl.clearStencil, 0xFFFFFFFFu);
}

// ---- Masks, culling, depth ----

TEST_F(Setter, ColorMaskPacksItsChannelsRedFirst)
{
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    EXPECT_EQ(gl.pipelineDescription.colorWriteMask, 0xAu);
    glColorMask(GL_FALSE, GL_TRUE, GL_FALSE, GL_TRUE);
    EXPECT_EQ(gl.pipelineDescription.colorWriteMask, 0x5u);
    glColorMask(2, 0, 0, 0x80); // any byte but 0 is true
    EXPECT_EQ(gl.pipelineDescription.colorWriteMask, 0x9u);
}

TEST_F(StrictSetter, Kept_cull_mode_unchecked)
{
    glCullFace(0x1234);
    EXPECT_EQ(gl.cullFaceMode, 0x1234u);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Setter, DepthFuncStoresEveryFunction)
{
    for (GLenum func = 0x0200; func <= 0x0207; ++func) {
        glDepthFunc(func);
        EXPECT_EQ(gl.depthFunc, func);
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Setter, Kept_depth_func_error)
{
    for (GLenum func = 0; func <= 0xFFFF; ++func) {
        if (func >= 0x0200 && func <= 0x0207) continue;
        glDepthFunc(func);
        ASSERT_EQ(glGetError(), GLenum(GL_INVALID_VALUE)) << func;
        ASSERT_EQ(gl.depthFunc, GLenum(GL_LESS)) << func;
    }
}

TEST_F(Setter, DepthMaskStoresItsByte)
{
    glDepthMask(GL_FALSE);
    EXPECT_EQ(gl.depthWriteMask, 0);
    glDepthMask(0x40);
    EXPECT_EQ(gl.depthWriteMask, 0x40);
}

// ---- Stencil ----

TEST_F(Setter, StencilStateIsStored)
{
    glStencilFunc(GL_LEQUAL, -3, 0x0F);
    glStencilMask(0xF0);
    glStencilOp(GL_ZERO, GL_REPLACE, GL_INVERT);
    EXPECT_EQ(gl.stencilFunc, GLenum(GL_LEQUAL));
    EXPECT_EQ(gl.stencilRef, -3);
    EXPECT_EQ(gl.stencilValueMask, 0x0Fu);
    EXPECT_EQ(gl.stencilWriteMask, 0xF0u);
    EXPECT_EQ(gl.stencilFailOp, GLenum(GL_ZERO));
    EXPECT_EQ(gl.stencilDepthFailOp, GLenum(GL_REPLACE));
    EXPECT_EQ(gl.stencilDepthPassOp, GLenum(GL_INVERT));
}

TEST_F(StrictSetter, Kept_stencil_unchecked)
{
    glStencilFunc(0x1111, 0, 0);
    glStencilOp(0x2222, 0x3333, 0x4444);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(gl.stencilFunc, 0x1111u);
    EXPECT_EQ(gl.stencilFailOp, 0x2222u);
    EXPECT_EQ(gl.stencilDepthFailOp, 0x3333u);
    EXPECT_EQ(gl.stencilDepthPassOp, 0x4444u);
}

// ---- Polygons, viewport, pixel storage ----

TEST_F(Setter, Kept_polygon_face_ignored)
{
    glPolygonMode(GL_FRONT, GL_LINE);
    EXPECT_EQ(gl.polygonMode, GLenum(GL_LINE));
    glPolygonMode(0x1234, GL_FILL);
    EXPECT_EQ(gl.polygonMode, GLenum(GL_FILL));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Setter, PolygonPointsAreStoredWithoutStrictValidation)
{
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    EXPECT_EQ(gl.polygonMode, GLenum(GL_POINT));
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(StrictSetter, Kept_polygon_point_stored)
{
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION));
    EXPECT_EQ(gl.polygonMode, GLenum(GL_POINT));
}

TEST_F(StrictSetter, OtherPolygonModesAreNotErrors)
{
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Setter, PolygonOffsetIsStored)
{
    glPolygonOffset(-1.5f, 4.0f);
    EXPECT_EQ(gl.polygonOffsetFactor, -1.5f);
    EXPECT_EQ(gl.polygonOffsetUnits, 4.0f);
}

TEST_F(StrictSetter, Kept_viewport_unchecked)
{
    glViewport(1, -2, -3, 4);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(gl.viewport[0], 1);
    EXPECT_EQ(gl.viewport[1], -2);
    EXPECT_EQ(gl.viewport[2], -3);
    EXPECT_EQ(gl.viewport[3], 4);
}

TEST_F(Setter, PixelStoreAcceptsAnAlignmentOfOne)
{
    expectIgnored(gl, [] { glPixelStorei(GL_UNPACK_ALIGNMENT, 1); });
    expectIgnored(gl, [] { glPixelStorei(GL_PACK_ALIGNMENT, 1); });
}

TEST_F(Setter, Kept_pixel_rows_packed)
{
    expectRefused(GL_INVALID_ENUM, gl, [] { glPixelStorei(GL_UNPACK_ALIGNMENT, 4); });
    expectRefused(GL_INVALID_ENUM, gl, [] { glPixelStorei(GL_PACK_ALIGNMENT, 8); });
    expectRefused(GL_INVALID_ENUM, gl, [] { glPixelStorei(GL_UNPACK_ROW_LENGTH, 0); });
    expectRefused(GL_INVALID_ENUM, gl, [] { glPixelStorei(GL_UNPACK_ROW_LENGTH, 1); });
}

// ---- Enables ----

TEST_F(Setter, EveryCapabilityIsSetAndCleared)
{
    struct Row
    {
        GLenum cap;
        uint8_t ZALGLState::*field;
    };
    for (Row row : {Row{GL_CULL_FACE, &ZALGLState::cullFaceEnabled}, Row{GL_DEPTH_TEST, &ZALGLState::depthTestEnabled},
                    Row{GL_STENCIL_TEST, &ZALGLState::stencilTestEnabled},
                    Row{GL_POLYGON_OFFSET_FILL, &ZALGLState::polygonOffsetFillEnabled}})
    {
        glEnable(row.cap);
        EXPECT_EQ(gl.*row.field, 1) << row.cap;
        glDisable(row.cap);
        EXPECT_EQ(gl.*row.field, 0) << row.cap;
    }
    glEnable(GL_BLEND);
    EXPECT_TRUE(gl.pipelineDescription.blendingEnabled);
    glDisable(GL_BLEND);
    EXPECT_FALSE(gl.pipelineDescription.blendingEnabled);
}

TEST_F(StrictSetter, Kept_unknown_capability_ignored)
{
    for (GLenum cap = 0; cap <= 0xFFFF; ++cap) {
        if (cap == GL_CULL_FACE || cap == GL_DEPTH_TEST || cap == GL_STENCIL_TEST || cap == GL_BLEND ||
            cap == GL_POLYGON_OFFSET_FILL)
            continue;
        support::StateSnapshot before(gl);
        glEnable(cap);
        ASSERT_TRUE(before.unchanged()) << cap;
        glDisable(cap);
        ASSERT_TRUE(before.unchanged()) << cap;
    }
}

TEST_F(Setter, ScissorAlphaTestAndTexturingAreNoErrors)
{
    expectIgnored(gl, [] { glEnable(GL_SCISSOR_TEST); });
    expectIgnored(gl, [] { glEnable(GL_ALPHA_TEST); });
    expectIgnored(gl, [] { glEnable(GL_TEXTURE_2D); });
}

TEST_F(Setter, TheCaptureCapabilityDoesNothingWithoutTheSwitch)
{
    bare.metal().captureScopeActive = true;
    glDisable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_TRUE(bare.metal().captureScopeActive);
}

TEST_F(Setter, TheCaptureCapabilityFollowsTheSwitchWithoutAScope)
{
    gl.enableDebugGPUCapture = 1;
    glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_TRUE(bare.metal().captureScopeActive);
    glDisable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_FALSE(bare.metal().captureScopeActive);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

} // namespace
