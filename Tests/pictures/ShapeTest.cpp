// SPDX-License-Identifier: Apache-2.0
// Primitive types, culling, line mode, colour masks, polygon offset, points from Metal source.
#include "pictures/Stage.h"

namespace {

using namespace pictures;

constexpr Color WhiteColor{1, 1, 1, 1}, RedColor{1, 0, 0, 1}, GreenColor{0, 1, 0, 1};

TEST(Shapes, ATriangleCoversItsHalfFromTheLowerLeft)
{
    auto picture = drawnOnBoth([](Stage& s) {
        s.color(RedColor);
        s.shape(GL_TRIANGLES, {-1, -1, 1, -1, -1, 1});
    });
    EXPECT_EQ(at(picture, 0, 0), Red); // the lower left is the first row
    EXPECT_EQ(at(picture, Side - 1, Side - 1), Black);
    EXPECT_NEAR(covered(picture), Side * Side / 2, Side / 2);
}

TEST(Shapes, AStripIsAQuad)
{
    auto picture = drawnOnBoth([](Stage& s) { s.quad(RedColor); });
    EXPECT_EQ(covered(picture), Side * Side);
}

TEST(Shapes, TwoTrianglesShareNoPixelAndLeaveNone)
{
    auto picture = drawnOnBoth([](Stage& s) {
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        s.color({0.5f, 0.5f, 0.5f, 0.5f});
        s.shape(GL_TRIANGLES, {-1, -1, 1, -1, -1, 1, -1, 1, 1, -1, 1, 1});
    });
    for (int i = 0; i < Side * Side; ++i) EXPECT_EQ(at(picture, i % Side, i / Side), (std::vector<int>{128, 128, 128, 128}));
}

TEST(Shapes, PointsCoverOnePixelEach)
{
    auto picture = drawnOnBoth([](Stage& s) {
        s.color(WhiteColor);
        s.shape(GL_POINTS, {-0.9375f, -0.9375f, 0.0625f, 0.0625f, 0.9375f, -0.9375f});
    });
    EXPECT_EQ(covered(picture), 3);
    EXPECT_EQ(at(picture, 0, 0), White);
    EXPECT_EQ(at(picture, 8, 8), White);
    EXPECT_EQ(at(picture, 15, 0), White);
}

TEST(Shapes, LinesGoFromEndToEnd)
{
    auto picture = drawnOnBoth([](Stage& s) {
        s.color(WhiteColor);
        s.shape(GL_LINES, {-0.9375f, -0.4375f, 0.9375f, -0.4375f, 0.4375f, -0.9375f, 0.4375f, 0.9375f});
    });
    EXPECT_EQ(at(picture, 8, 4), White);
    EXPECT_EQ(at(picture, 11, 12), White);
    EXPECT_NEAR(covered(picture), 2 * Side - 3, 2);
}

TEST(Shapes, ALineStripIsConnected)
{
    auto picture = drawnOnBoth([](Stage& s) {
        s.color(WhiteColor);
        s.shape(GL_LINE_STRIP, {-0.9375f, -0.9375f, 0.9375f, -0.9375f, 0.9375f, 0.9375f});
    });
    EXPECT_EQ(at(picture, 8, 0), White);
    EXPECT_EQ(at(picture, 15, 8), White);
    EXPECT_EQ(at(picture, 4, 8), Black);
}

// ---- faces ----------------------------------------------------------------------------------------------------------------------

TEST(Faces, CounterClockwiseIsTheFront)
{
    const std::vector<float> counterClockwise = {-1, -1, 1, -1, -1, 1}, clockwise = {-1, -1, -1, 1, 1, -1};
    struct Row
    {
        GLenum face;
        bool enabled, frontSeen, backSeen;
    };
    for (const Row& row : {Row{GL_BACK, false, true, true}, {GL_BACK, true, true, false}, {GL_FRONT, true, false, true}, {GL_FRONT_AND_BACK, true, false, false}})
        for (bool front : {true, false}) {
            auto picture = drawnOnBoth([&](Stage& s) {
                if (row.enabled) glEnable(GL_CULL_FACE);
                glCullFace(row.face);
                s.color(WhiteColor);
                s.shape(GL_TRIANGLES, front ? counterClockwise : clockwise);
            });
            EXPECT_EQ(covered(picture) > 0, front ? row.frontSeen : row.backSeen) << row.face << (front ? " front" : " back");
        }
}

TEST(Faces, LineModeLeavesTheInsideOut)
{
    auto picture = drawnOnBoth([](Stage& s) {
        glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
        s.color(WhiteColor);
        s.shape(GL_TRIANGLES, {-0.9f, -0.9f, 0.9f, -0.9f, 0, 0.9f});
    });
    EXPECT_EQ(at(picture, 8, 5), Black);
    EXPECT_EQ(at(picture, 8, 0), White);
    EXPECT_GT(covered(picture), 30);
    EXPECT_LT(covered(picture), 60);
}

// ---- masks and offsets ------------------------------------------------------------------------------------------------------------

TEST(Masks, EveryColourMask)
{
    for (int mask = 0; mask < 16; ++mask) {
        auto picture = drawnOnBoth([&](Stage& s) {
            glColorMask(mask & 8 ? GL_TRUE : GL_FALSE, mask & 4 ? GL_TRUE : GL_FALSE, mask & 2 ? GL_TRUE : GL_FALSE, mask & 1 ? GL_TRUE : GL_FALSE);
            s.quad(WhiteColor);
        });
        EXPECT_EQ(at(picture, 3, 3), (std::vector<int>{mask & 8 ? 255 : 0, mask & 4 ? 255 : 0, mask & 2 ? 255 : 0, mask & 1 ? 255 : 0})) << mask;
    }
}

TEST(PolygonOffset, MovesAwayAndNearer)
{
    for (float units : {-100000.f, 100000.f}) {
        auto picture = drawnOnBoth([&](Stage& s) {
            glEnable(GL_DEPTH_TEST);
            glDepthFunc(GL_LESS);
            s.quad(RedColor, 0.25f);
            glEnable(GL_POLYGON_OFFSET_FILL);
            glPolygonOffset(0, units);
            s.quad(GreenColor, 0.25f);
        });
        EXPECT_EQ(at(picture, 5, 5), units < 0 ? Green : Red);
    }
}

TEST(PolygonOffset, GrowsWithTheSlope)
{
    auto picture = drawnOnBoth([](Stage& s) {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LESS);
        s.quad(RedColor, 0.25f);
        glEnable(GL_POLYGON_OFFSET_FILL);
        glPolygonOffset(-4, 0);
        s.quad(GreenColor, 0.25f); // no slope, no offset
    });
    EXPECT_EQ(at(picture, 5, 5), Red);
}

// ---- points from Metal source -----------------------------------------------------------------------------------------------------

constexpr const char* Hexagons = R"(#include <metal_stdlib>
using namespace metal;
// ZAL_EXPAND_POINTS_TO_HEXAGONS()
struct StateMatrixData { float4x4 modelview; float4x4 projection; float4x4 mvp; };
struct Varyings { float4 position [[position]]; float4 color; float4 texcoord0; float4 texcoord1; float4 texcoord2; float4 texcoord3; float4 texcoord4; float4 texcoord5; float4 texcoord6; float4 texcoord7; };
vertex Varyings ShaderFunc(uint corner [[vertex_id]], uint point [[instance_id]], constant float4* centres [[buffer(0)]],
                           constant StateMatrixData& state [[buffer(16)]])
{
    const float2 corners[6] = { float2(-1, 0), float2(-0.5, -0.87), float2(-0.5, 0.87), float2(0.5, -0.87), float2(0.5, 0.87), float2(1, 0) };
    Varyings out = {};
    out.position = state.mvp * (centres[point] + float4(corners[corner] * 0.25, 0, 0));
    return out;
}
)";

TEST(Points, AreExpandedToHexagonsByMetalSource)
{
    auto picture = drawnOnBoth([](Stage& s) {
        ASSERT_EQ(s.load(GL_VERTEX_PROGRAM_ARB, Hexagons, 0xF030), drawing::NoError);
        s.color(WhiteColor);
        s.shape(GL_POINTS, {-0.5f, -0.5f, 0.5f, 0.5f});
    });
    EXPECT_EQ(at(picture, 4, 4), White);
    EXPECT_EQ(at(picture, 12, 12), White);
    EXPECT_EQ(at(picture, 12, 4), Black);
    EXPECT_NEAR(covered(picture), 2 * 10, 6); // two hexagons of a quarter's radius
}

} // namespace
