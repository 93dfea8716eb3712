// SPDX-License-Identifier: Apache-2.0
// What is cut away, and that the values of what stays are those of the whole.
#include "RasterFixture.h"

#include <algorithm>
#include <limits>

namespace raster_test
{

using Clip = Raster;

constexpr int Width = 64;

/// A corner whose depth and value are given; the value's first component is what varies.
Corner withDepth(float z, float w, float value)
{
    return {{0, 0, z, w}, {value, 0, 0, 1}};
}

double ndcOf(int x)
{
    return (x + 0.5) / Width * 2 - 1;
}

TEST_F(Clip, DepthOutsideTheRangeIsCutOrClamped)
{
    // depth runs from -1 to 2 over the width
    auto corners = acrossTarget(withDepth(-1, 1, 0), withDepth(2, 1, 1));
    Picture cut = drawn("depth", Width, 4, MTL::PrimitiveTypeTriangle, corners);
    Picture clamped = drawn("depth", Width, 4, MTL::PrimitiveTypeTriangle, corners,
                            [](auto* e) { e->setDepthClipMode(MTL::DepthClipModeClamp); });
    for (int x = 0; x < Width; ++x) {
        double depth = -1 + 3 * (x + 0.5) / Width;
        EXPECT_EQ(cut.covered(x, 1), depth >= 0 && depth <= 1) << x;
        EXPECT_TRUE(clamped.covered(x, 1)) << x;
        EXPECT_NEAR(clamped.at(x, 1)[0], std::clamp(depth, 0.0, 1.0), 1e-5) << x;
    }
}

TEST_F(Clip, BehindTheEyeNothingIsSeen)
{
    // w runs from -1 at the left corner to 1 at the right one; places are those of x = w ndc
    std::vector<Corner> corners = {
        {{-3, -1, 0, -1}, {-1, 0, 0, 1}}, {{1, -3, 0.5f, 1}, {1, 0, 0, 1}}, {{1, 3, 0.5f, 1}, {1, 0, 0, 1}}};
    Picture picture = drawn("value", Width, Width, MTL::PrimitiveTypeTriangle, corners);
    EXPECT_GT(picture.count(), 0);
    for (const Value& v : picture.values) {
        if (v[3] != 0) {
            EXPECT_GT(v[0], 0); // the value is w
        }
    }
}

TEST_F(Clip, EachSideOfTheViewCutsWithoutChangingValues)
{
    for (float reach : {2.0f, 100.0f, 1e5f, 1e7f}) {
        std::vector<Corner> corners;
        for (auto [x, y] : {std::pair{-1, -1}, {1, -1}, {-1, 1}, {1, -1}, {-1, 1}, {1, 1}}) {
            float px = static_cast<float>(x) * reach, py = static_cast<float>(y) * reach;
            corners.push_back({{px, py, 0.5f, 1}, {px, py, 0, 1}});
        }
        Picture picture = drawn("value", Width, Width, MTL::PrimitiveTypeTriangle, corners);
        ASSERT_EQ(picture.count(), Width * Width) << reach;
        double tolerance = std::max(1e-5, reach * 1e-6);
        for (int i = 0; i < Width; ++i) {
            EXPECT_NEAR(picture.at(i, Width - 1 - i)[0], ndcOf(i), tolerance) << reach;
            EXPECT_NEAR(picture.at(i, Width - 1 - i)[1], ndcOf(i), tolerance) << reach;
        }
    }
}

TEST_F(Clip, NeighboursMeetWhereTheyAreCut)
{
    // two triangles with a common edge far outside, each cut on its own
    std::vector<Corner> corners = {{{-50, -30, 0.5f, 1}}, {{40, 70, 0.5f, 1}},  {{60, -80, 0.5f, 1}},
                                   {{-50, -30, 0.5f, 1}}, {{-45, 90, 0.5f, 1}}, {{40, 70, 0.5f, 1}}};
    Picture picture = drawn(pipeline(addingDescriptor()), Width, Width, MTL::PrimitiveTypeTriangle, corners);
    for (const Value& v : picture.values)
        ASSERT_EQ(v[0], 1);
}

TEST_F(Clip, LinesAreCutAndPointsOutsideDisappear)
{
    Picture line = drawn("value", Width, 4, MTL::PrimitiveTypeLine,
                         {{{-1000, 0.25f, 0, 1}, {-1000, 0, 0, 1}}, {{1000, 0.25f, 0, 1}, {1000, 0, 0, 1}}});
    EXPECT_EQ(line.count(), Width);
    for (int x = 0; x < Width; ++x)
        EXPECT_NEAR(line.at(x, 1)[0], ndcOf(x), 2e-3) << x;
    Picture far =
        drawn("ones", Width, 4, MTL::PrimitiveTypePoint, {{{0, 0, 2, 1}}, {{0, 0, -0.5f, 1}}, {{0, 0, 0, -1}}}, {}, 4);
    EXPECT_EQ(far.count(), 0);
}

TEST_F(Clip, CornersThatAreNoNumbersDrawNothing)
{
    float nan = std::nanf(""), infinite = std::numeric_limits<float>::infinity();
    for (float wild : {nan, infinite, -infinite}) {
        for (size_t component = 0; component < 4; ++component) {
            std::vector<Corner> corners = {{{-1, -1, 0, 1}}, {{1, -1, 0, 1}}, {{-1, 1, 0, 1}}};
            corners[1].position[component] = wild;
            EXPECT_EQ(drawn("ones", 8, 8, MTL::PrimitiveTypeTriangle, corners).count(), 0)
                << wild << " in " << component;
        }
    }
}

// ---- interpolation -------------------------------------------------------------------------------------------------

TEST_F(Clip, ValuesAreInterpolatedInSpaceAndOnTheScreen)
{
    // the left edge is at w = 1, the right one at w = 4
    auto corners = acrossTarget(withDepth(0, 1, 0), withDepth(0, 4, 1));
    Picture space = drawn("value", Width, 4, MTL::PrimitiveTypeTriangle, corners);
    Picture screen = drawn("level", Width, 4, MTL::PrimitiveTypeTriangle, corners);
    Picture depths = drawn("depth", Width, 4, MTL::PrimitiveTypeTriangle, corners);
    for (int x = 0; x < Width; ++x) {
        double t = (x + 0.5) / Width, perspective = (t / 4) / ((1 - t) + t / 4);
        EXPECT_NEAR(space.at(x, 2)[0], perspective, 1e-6) << x;
        EXPECT_NEAR(screen.at(x, 2)[0], t, 1e-6) << x;
        EXPECT_NEAR(depths.at(x, 2)[1], (1 - t) + t / 4, 1e-6) << x; // 1 / w runs evenly over the screen
    }
}

TEST_F(Clip, FlatValuesAreTheFirstCornersAlsoWhenItIsCutAway)
{
    std::vector<Corner> corners = {
        {{-9, 0, 0.5f, 1}, {7, 0, 0, 1}}, {{1, 1, 0.5f, 1}, {8, 0, 0, 1}}, {{1, -1, 0.5f, 1}, {9, 0, 0, 1}}};
    Picture picture = drawn("constantly", 16, 16, MTL::PrimitiveTypeTriangle, corners);
    ASSERT_GT(picture.count(), 0);
    for (const Value& v : picture.values) {
        if (v[3] != 0) {
            EXPECT_EQ(v[0], 7);
        }
    }
}

} // namespace raster_test
