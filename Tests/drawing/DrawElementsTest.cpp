// SPDX-License-Identifier: Apache-2.0
// glDrawElements: what it checks and in which order, what it draws, what it leaves out.
#include "drawing/Drawing.h"

namespace {

using namespace drawing;

class DrawElements : public Routes
{
};
INSTANTIATE_TEST_SUITE_P(Devices, DrawElements, testing::Values(false, true), routeName);

using DrawElementsDeathTest = DrawTest;
constexpr GLenum Short = GL_UNSIGNED_SHORT, Int = GL_UNSIGNED_INT;

TEST_P(DrawElements, HandsItsArgumentsOn)
{
    glDrawElements(GL_TRIANGLES, 3, Short, reinterpret_cast<void*>(0));
    auto shorts = entries("drawIndexedPrimitives");
    ASSERT_EQ(shorts.size(), 1u);
    EXPECT_EQ(shorts[0].number("type"), MTL::PrimitiveTypeTriangle);
    EXPECT_EQ(shorts[0].number("count"), 3);
    EXPECT_EQ(shorts[0].number("indexType"), MTL::IndexTypeUInt16);
    EXPECT_EQ(shorts[0].number("instances"), 1);
    glDrawElements(GL_LINES, 0, Int, reinterpret_cast<void*>(4));
    EXPECT_EQ(error(), NoError);
}

TEST_P(DrawElements, EveryModeThatMetalHasIsDrawn)
{
    constexpr std::pair<GLenum, MTL::PrimitiveType> Modes[] = {{GL_POINTS, MTL::PrimitiveTypePoint},
                                                               {GL_LINES, MTL::PrimitiveTypeLine},
                                                               {GL_LINE_STRIP, MTL::PrimitiveTypeLineStrip},
                                                               {GL_TRIANGLES, MTL::PrimitiveTypeTriangle},
                                                               {GL_TRIANGLE_STRIP, MTL::PrimitiveTypeTriangleStrip}};
    for (auto [mode, type] : Modes) {
        glDrawElements(mode, 3, Short, nullptr);
        EXPECT_EQ(error(), NoError);
        auto made = entries("drawIndexedPrimitives");
        ASSERT_EQ(made.size(), 1u);
        EXPECT_EQ(made[0].number("type"), type);
    }
    for (GLenum mode : {GL_LINE_LOOP, GL_TRIANGLE_FAN, GL_QUADS, GL_QUAD_STRIP, GL_POLYGON}) {
        glDrawElements(mode, 3, Short, nullptr);
        EXPECT_EQ(error(), InvalidValue) << mode;
        EXPECT_TRUE(drewNothing());
    }
}

TEST_P(DrawElements, Kept_byte_indices)
{
    for (GLenum type : {GL_UNSIGNED_BYTE, GL_SHORT, GL_FLOAT}) {
        glDrawElements(GL_TRIANGLES, 3, type, nullptr);
        EXPECT_EQ(error(), InvalidValue);
        EXPECT_TRUE(drewNothing());
    }
}

TEST_P(DrawElements, Kept_refused_draw_opens_pass)
{
    glDrawElements(GL_QUADS, 3, Short, nullptr);
    EXPECT_EQ(count("renderCommandEncoder"), 1u);
    error();
}

TEST_P(DrawElements, CountsOfZeroAndLessDrawNothingWithoutAnError)
{
    for (GLsizei number : {0, -1, -2147483647 - 1}) {
        glDrawElements(GL_TRIANGLES, number, Short, nullptr);
        EXPECT_EQ(error(), NoError);
        EXPECT_TRUE(drewNothing());
        glDrawElements(GL_QUADS, number, Short, nullptr); // the checks still run
        EXPECT_EQ(error(), InvalidValue);
    }
    EXPECT_EQ(pixel(), "0 0 0 0");
}

/// With everything culled nothing is looked at any more, not even what would be an error.
TEST_P(DrawElements, Kept_cull_all_first)
{
    glEnable(GL_CULL_FACE);
    glCullFace(GL_FRONT_AND_BACK);
    for (GLenum mode : {GL_TRIANGLES, GL_TRIANGLE_STRIP, GL_QUADS, GL_POLYGON}) {
        glDrawElements(mode, 3, GL_UNSIGNED_BYTE, nullptr);
        EXPECT_EQ(error(), NoError) << mode;
        EXPECT_TRUE(drewNothing());
    }
    glDrawElements(GL_LINES, 2, Short, nullptr);
    EXPECT_FALSE(drewNothing());
    glDrawElements(10, 3, Short, nullptr); // this one mode is exempt
    EXPECT_EQ(error(), InvalidValue);
    glDisable(GL_CULL_FACE);
    glDrawElements(GL_TRIANGLES, 3, Short, nullptr);
    EXPECT_FALSE(drewNothing());
}

TEST_P(DrawElements, TheIndexTypeIsLookedAtBeforeTheMode)
{
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 0);
    glDrawElements(GL_QUADS, 3, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(error(), InvalidValue);
    glDrawElements(GL_TRIANGLES, 3, Short, nullptr); // only then the program
    EXPECT_EQ(error(), InvalidOperation);
    EXPECT_TRUE(drewNothing());
}

TEST_P(DrawElements, EnabledArraysNeedTheirBuffers)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glVertexAttribPointerARB(3, 4, GL_FLOAT, GL_FALSE, 16, nullptr);
    glEnableVertexAttribArrayARB(3);
    glDeleteBuffers(1, &name);
    EXPECT_EQ(drawn(), InvalidOperation);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "setVertexBuffer"), 1); // what was set before stays
    EXPECT_EQ(std::count(names.begin(), names.end(), "drawIndexedPrimitives"), 0);
    glDisableVertexAttribArrayARB(3);
    EXPECT_EQ(drawn(), NoError);
}

TEST_P(DrawElements, BuffersAreBoundAtTheirAttributesWithTheirOffsets)
{
    glVertexAttribPointerARB(9, 2, GL_FLOAT, GL_FALSE, 16, reinterpret_cast<void*>(8));
    glEnableVertexAttribArrayARB(9);
    draw();
    auto bound = entries("setVertexBuffer");
    ASSERT_EQ(bound.size(), 2u);
    EXPECT_EQ(bound[0].number("index"), 0);
    EXPECT_EQ(bound[1].number("index"), 9);
    EXPECT_EQ(bound[1].number("offset"), 8);
}

/// Without attribute 0 there is no layout, and the draw is left out without a word.
TEST_P(DrawElements, Kept_position_needed)
{
    glDisableVertexAttribArrayARB(0);
    EXPECT_EQ(drawn(), NoError);
    EXPECT_TRUE(drewNothing());
    glVertexAttribPointerARB(0, 3, GL_DOUBLE, GL_FALSE, 24, nullptr);
    glEnableVertexAttribArrayARB(0);
    EXPECT_EQ(drawn(), NoError);
    EXPECT_TRUE(drewNothing());
}

TEST_P(DrawElements, ProgramsMustBeThereAndValid)
{
    GLuint empty = 0;
    glGenProgramsARB(1, &empty);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, empty);
    EXPECT_EQ(drawn(), InvalidOperation);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 0);
    EXPECT_EQ(drawn(), InvalidOperation);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programNames[1]);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, empty);
    EXPECT_EQ(drawn(), InvalidOperation);
    EXPECT_TRUE(drewNothing());
}

TEST_P(DrawElements, AFramebufferObjectThatIsGoneIsAnError)
{
    GLuint name = 0;
    glDeleteFramebuffers(1, &name); // the default one
    EXPECT_EQ(drawn(), InvalidOperation);
    EXPECT_TRUE(drewNothing());
}

/// A pipeline that cannot be built leaves the draw out in silence, once and for all; one line says why.
TEST_P(DrawElements, Kept_silent_pipeline)
{
    SoftMetal::injectFault("newRenderPipelineState", 1, false);
    std::vector<std::string> lines;
    SoftMetal::setLogSink([&](const std::string& line) { lines.push_back(line); });
    for (int i = 0; i < 3; ++i) EXPECT_EQ(drawn(), NoError);
    SoftMetal::setLogSink({});
    SoftMetal::clearFaults();
    EXPECT_TRUE(drewNothing());
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].rfind("buildMtlPipelineState, Failed to create pipeline state, error ", 0), 0u) << lines[0];
    gl().strictValidation = 1;
    EXPECT_EQ(drawn(), InvalidOperation);
}

// ---- raster state ---------------------------------------------------------------------------------------------------------------

TEST_P(DrawElements, CullModeFollowsTheState)
{
    auto mode = [&] {
        draw();
        return entries("setCullMode").at(0).number("mode");
    };
    EXPECT_EQ(mode(), MTL::CullModeNone);
    glEnable(GL_CULL_FACE);
    EXPECT_EQ(mode(), MTL::CullModeBack);
    glCullFace(GL_FRONT);
    EXPECT_EQ(mode(), MTL::CullModeFront);
}

TEST_P(DrawElements, Kept_cull_mode_back)
{
    glEnable(GL_CULL_FACE);
    for (GLenum mode : {GL_FRONT_AND_BACK, 0x1234}) {
        glCullFace(mode);
        glDrawElements(GL_LINES, 2, Short, nullptr);
        EXPECT_EQ(entries("setCullMode").at(0).number("mode"), MTL::CullModeBack);
    }
}

TEST_P(DrawElements, Kept_polygon_offset_sticks)
{
    glPolygonOffset(2, 3);
    draw();
    EXPECT_EQ(count("setDepthBias"), 0u);
    glEnable(GL_POLYGON_OFFSET_FILL);
    draw();
    auto set = entries("setDepthBias");
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(set[0].number("bias"), 3); // units
    EXPECT_EQ(set[0].number("slope"), 2);
    EXPECT_EQ(set[0].number("clamp"), 0);
    glDisable(GL_POLYGON_OFFSET_FILL);
    draw();
    EXPECT_EQ(count("setDepthBias"), 0u);
}

TEST_P(DrawElements, Kept_polygon_point_mode)
{
    auto modes = [&] {
        draw();
        std::vector<double> result;
        for (const auto& entry : entries("setTriangleFillMode")) result.push_back(entry.number("mode"));
        return result;
    };
    EXPECT_EQ(modes(), std::vector<double>{MTL::TriangleFillModeFill});
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    EXPECT_EQ(modes(), std::vector<double>{MTL::TriangleFillModeLines});
    glPolygonMode(GL_FRONT_AND_BACK, GL_POINT);
    EXPECT_TRUE(modes().empty());
}

TEST_P(DrawElements, TheBlendColourIsSentWhileBlendingIsOn)
{
    glBlendColor(0.25f, 0.5f, 0.75f, 1);
    draw();
    EXPECT_EQ(count("setBlendColor"), 0u);
    glEnable(GL_BLEND);
    draw();
    auto set = entries("setBlendColor");
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(set[0].number("blue"), 0.75);
}

// ---- points as hexagons ---------------------------------------------------------------------------------------------------------

constexpr const char* HexagonSource = R"(#include <metal_stdlib>
using namespace metal;
// ZAL_EXPAND_POINTS_TO_HEXAGONS()
struct Varyings { float4 position [[position]]; float4 color; float4 texcoord0; float4 texcoord1; float4 texcoord2; float4 texcoord3; float4 texcoord4; float4 texcoord5; float4 texcoord6; float4 texcoord7; };
vertex Varyings ShaderFunc(uint corner [[vertex_id]], uint point [[instance_id]])
{
    Varyings out = {};
    float angle = float(corner) * 1.0471976;
    out.position = float4(cos(angle), sin(angle), 0.5, 1.0);
    return out;
}
)";

TEST_P(DrawElements, PointsBecomeInstancedStripsWhereTheProgramAsksForIt)
{
    ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, HexagonSource, 0xF030), NoError);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0); // not needed for these
    glDrawElements(GL_POINTS, 5, Int, reinterpret_cast<void*>(64));
    EXPECT_EQ(error(), NoError);
    auto made = entries("drawPrimitives");
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].number("type"), MTL::PrimitiveTypeTriangleStrip);
    EXPECT_EQ(made[0].number("start"), 0);
    EXPECT_EQ(made[0].number("count"), 6);
    EXPECT_EQ(made[0].number("instances"), 5);
    EXPECT_EQ(made[0].number("baseInstance"), 16);
    glDrawElements(GL_POINTS, 1, Short, reinterpret_cast<void*>(64));
    EXPECT_EQ(entries("drawPrimitives").at(0).number("baseInstance"), 32);
}

// ---- assertions -----------------------------------------------------------------------------------------------------------------

TEST_F(DrawElementsDeathTest, Kept_index_buffer_assertion)
{
    EXPECT_DEATH(
        {
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
            draw();
        },
        "glBufferId != 0.*glDrawElements");
    EXPECT_DEATH(
        {
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 77);
            draw();
        },
        "bufferObject.*glDrawElements");
}

} // namespace
