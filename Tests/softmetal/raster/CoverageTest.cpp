// SPDX-License-Identifier: Apache-2.0
// Which pixels a primitive covers: those whose centres lie inside, and on an edge those of top and left edges only.
#include "RasterFixture.h"

#include <random>

namespace raster_test
{

using Coverage = Raster;

constexpr int Side = 32;
constexpr int Grid = 16; // steps of the corners' places, in one pixel

struct Place
{
    int x, y; // in steps
};

int64_t cross(Place a, Place b, Place p)
{
    return int64_t{b.x - a.x} * (p.y - a.y) - int64_t{b.y - a.y} * (p.x - a.x);
}

/// The rule itself, in whole numbers: clockwise on the screen, y downwards.
bool insideByTheRule(std::array<Place, 3> t, Place p)
{
    if (cross(t[0], t[1], t[2]) < 0) std::swap(t[1], t[2]);
    if (cross(t[0], t[1], t[2]) == 0) return false;
    for (size_t i = 0; i < 3; ++i) {
        Place a = t[i], b = t[(i + 1) % 3];
        int64_t side = cross(a, b, p);
        bool top = a.y == b.y && b.x > a.x, left = b.y < a.y;
        if (side < 0 || (side == 0 && !top && !left)) return false;
    }
    return true;
}

Place centre(int x, int y)
{
    return {x * Grid + Grid / 2, y * Grid + Grid / 2};
}

TEST_F(Coverage, IsThatOfPixelCentresAndTopLeftEdges)
{
    std::mt19937 random(1);
    auto* state = pipeline(rasterDescriptor("ones"));
    for (int n = 0; n < 60; ++n) {
        int step = n % 3 == 0 ? Grid / 2 : 1; // every third triangle has its corners on centres and borders of pixels
        std::uniform_int_distribution<int> place(-4 * Grid / step, (Side + 4) * Grid / step);
        std::array<Place, 3> t;
        std::vector<Corner> corners;
        for (Place& p : t) {
            p = {place(random) * step, place(random) * step};
            corners.push_back(atPixel(static_cast<double>(p.x) / Grid, static_cast<double>(p.y) / Grid, Side, Side));
        }
        Picture picture = drawn(state, Side, Side, MTL::PrimitiveTypeTriangle, corners);
        for (int i = 0; i < Side * Side; ++i)
            ASSERT_EQ(picture.covered(i % Side, i / Side), insideByTheRule(t, centre(i % Side, i / Side)))
                << "triangle " << n << ", pixel " << i % Side << ", " << i / Side;
    }
}

TEST_F(Coverage, TrianglesThatShareEdgesCoverEachPixelOnce)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> place(4, Side - 4);
    auto* state = pipeline(addingDescriptor());
    for (int n = 0; n < 20; ++n) {
        double x = place(random), y = place(random);
        std::vector<Corner> fan;
        constexpr double Around[5][2] = {{0, 0}, {Side, 0}, {Side, Side}, {0, Side}, {0, 0}};
        for (int i = 0; i < 4; ++i) {
            fan.push_back(atPixel(x, y, Side, Side));
            fan.push_back(atPixel(Around[i][0], Around[i][1], Side, Side));
            fan.push_back(atPixel(Around[i + 1][0], Around[i + 1][1], Side, Side));
        }
        Picture picture = drawn(state, Side, Side, MTL::PrimitiveTypeTriangle, fan);
        for (int i = 0; i < Side * Side; ++i)
            ASSERT_EQ(picture.at(i % Side, i / Side)[0], 1) << i % Side << ", " << i / Side;
    }
}

TEST_F(Coverage, RectangleBetweenPixelCentresTakesItsUpperLeft)
{
    std::vector<Corner> corners;
    for (auto [x, y] : {std::pair{2.5, 1.5}, {5.5, 1.5}, {2.5, 4.5}, {5.5, 4.5}})
        corners.push_back(atPixel(x, y, 8, 8));
    Picture picture = drawn("ones", 8, 8, MTL::PrimitiveTypeTriangleStrip, corners);
    EXPECT_EQ(picture.count(), 9);
    EXPECT_TRUE(picture.covered(2, 1) && picture.covered(4, 3));
    EXPECT_FALSE(picture.covered(5, 1) || picture.covered(2, 4));
}

// ---- kinds of primitives -------------------------------------------------------------------------------------------

/// Seven corners that make sense for each kind.
std::vector<Corner> zigzag()
{
    std::vector<Corner> corners;
    for (int i = 0; i < 7; ++i) {
        Corner c = {{(i * 4 + 2) / 16.0f - 1, i % 2 ? -0.5f : 0.5f, 0, 1}};
        c.value[0] = static_cast<float>(i);
        corners.push_back(c);
    }
    return corners;
}

TEST_F(Coverage, PointsAreSquaresAroundTheirPlace)
{
    Picture picture =
        drawn("value", 16, 16, MTL::PrimitiveTypePoint, {atPixel(4, 4, 16, 16), atPixel(11.5, 10.5, 16, 16)}, {}, 4);
    EXPECT_EQ(picture.count(), 16 + 16);
    EXPECT_TRUE(picture.covered(2, 2) && picture.covered(5, 5));
    EXPECT_FALSE(picture.covered(1, 2) || picture.covered(6, 5));
}

TEST_F(Coverage, LinesComeInPairsAndStripsGoOn)
{
    Picture lines = drawn("ones", 32, 32, MTL::PrimitiveTypeLine, zigzag());
    Picture strip = drawn("ones", 32, 32, MTL::PrimitiveTypeLineStrip, zigzag());
    for (int segment = 0; segment < 6; ++segment) {
        int x = segment * 4 + 4; // the middle of a segment, halfway down
        bool crossed =
            lines.covered(x, 15) || lines.covered(x, 16) || lines.covered(x - 1, 15) || lines.covered(x - 1, 16);
        bool stripCrossed =
            strip.covered(x, 15) || strip.covered(x, 16) || strip.covered(x - 1, 15) || strip.covered(x - 1, 16);
        EXPECT_EQ(crossed, segment % 2 == 0) << segment;
        EXPECT_TRUE(stripCrossed) << segment;
    }
}

TEST_F(Coverage, LineOfAStraightRowHasOnePixelForEachStep)
{
    Picture row = drawn("ones", 16, 4, MTL::PrimitiveTypeLine, {atPixel(2, 1.5, 16, 4), atPixel(12, 1.5, 16, 4)});
    EXPECT_EQ(row.count(), 10);
    Picture column = drawn("ones", 4, 16, MTL::PrimitiveTypeLine, {atPixel(1.5, 2, 4, 16), atPixel(1.5, 12, 4, 16)});
    EXPECT_EQ(column.count(), 10);
}

TEST_F(Coverage, TrianglesComeInThreesAndStripsGoOn)
{
    Picture triangles = drawn("constantly", 32, 32, MTL::PrimitiveTypeTriangle, zigzag());
    Picture strip = drawn("constantly", 32, 32, MTL::PrimitiveTypeTriangleStrip, zigzag());
    auto has = [](const Picture& p, float first) { // the first corner's value stands for the triangle
        for (const Value& v : p.values)
            if (v[3] != 0 && v[0] == first) return true;
        return false;
    };
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(has(triangles, static_cast<float>(i)), i % 3 == 0) << i;
        EXPECT_TRUE(has(strip, static_cast<float>(i))) << i;
    }
}

TEST_F(Coverage, FillModeLinesLeavesTheInsideEmpty)
{
    std::vector<Corner> corners = {atPixel(2.5, 2.5, 16, 16), atPixel(13.5, 2.5, 16, 16), atPixel(2.5, 13.5, 16, 16)};
    Picture picture = drawn("ones", 16, 16, MTL::PrimitiveTypeTriangle, corners,
                            [](auto* e) { e->setTriangleFillMode(MTL::TriangleFillModeLines); });
    EXPECT_FALSE(picture.covered(5, 5));
    EXPECT_TRUE(picture.covered(7, 2)); // each of the three sides
    EXPECT_TRUE(picture.covered(2, 7));
    EXPECT_TRUE(picture.covered(8, 7) || picture.covered(7, 8));
}

TEST_F(Coverage, CullModeAndWindingChooseTheSide)
{
    std::vector<Corner> clockwise = {atPixel(1, 1, 8, 8), atPixel(7, 1, 8, 8), atPixel(1, 7, 8, 8)};
    for (auto winding : {MTL::WindingClockwise, MTL::WindingCounterClockwise}) {
        for (auto cull : {MTL::CullModeNone, MTL::CullModeFront, MTL::CullModeBack}) {
            bool front = winding == MTL::WindingClockwise;
            bool wanted = cull == MTL::CullModeNone || front == (cull == MTL::CullModeBack);
            Picture picture = drawn("ones", 8, 8, MTL::PrimitiveTypeTriangle, clockwise, [&](auto* e) {
                e->setFrontFacingWinding(winding);
                e->setCullMode(cull);
            });
            EXPECT_EQ(picture.covered(2, 2), wanted) << "winding " << winding << ", cull mode " << cull;
        }
    }
}

// ---- draws ---------------------------------------------------------------------------------------------------------

TEST_F(Coverage, ScissorAndViewportLimitTheDraw)
{
    auto whole = acrossTarget({{0, 0, 0, 1}}, {{0, 0, 0, 1}});
    Picture scissored = drawn("ones", 16, 16, MTL::PrimitiveTypeTriangle, whole, [](auto* e) {
        e->setScissorRect({3, 4, 5, 6});
    });
    EXPECT_EQ(scissored.count(), 30);
    EXPECT_TRUE(scissored.covered(3, 4) && scissored.covered(7, 9));
    Picture placed = drawn("ones", 16, 16, MTL::PrimitiveTypeTriangle, whole, [](auto* e) {
        e->setViewport({2, 3, 4, 5, 0, 1});
    });
    EXPECT_EQ(placed.count(), 20);
    EXPECT_TRUE(placed.covered(2, 3) && placed.covered(5, 7));
}

TEST_F(Coverage, VisibilityCountsOfEachModeStandAtTheirOffsets)
{
    auto* counters = buffer(32);
    auto* d = pass(texture(16, 16, MTL::PixelFormatRGBA32Float));
    d->setVisibilityResultBuffer(counters);
    auto* e = encoder(d);
    e->setRenderPipelineState(pipeline(rasterDescriptor("ones")));
    e->setVisibilityResultMode(MTL::VisibilityResultModeCounting, 0);
    put(e, MTL::PrimitiveTypePoint, {atPixel(8, 8, 16, 16)}, 4);
    e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, 8);
    put(e, MTL::PrimitiveTypePoint, {atPixel(8, 8, 16, 16)}, 4);
    e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, 16);
    put(e, MTL::PrimitiveTypePoint, {{{4, 4, 0, 1}}}, 4); // outside
    e->setVisibilityResultMode(MTL::VisibilityResultModeDisabled, 0);
    put(e, MTL::PrimitiveTypePoint, {atPixel(4, 4, 16, 16)}, 4);
    finish(e);
    const auto* counts = static_cast<const uint64_t*>(counters->contents());
    EXPECT_EQ(counts[0], 16u);
    EXPECT_NE(counts[1], 0u);
    EXPECT_EQ(counts[2], 0u);
    EXPECT_EQ(counts[3], 0u);
}

} // namespace raster_test
