// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

std::string colouring(const std::string& body, const char* value)
{
    return program(body + "\n  call void @softmetal_store_color(i32 0, i32 0, float " + value + ")\n  ret void\n");
}

std::string varyingProgram(const char* interpolation)
{
    return colouring(std::string("  %v = call float @softmetal_varying(i32 3, i32 ") + interpolation + ")", "%v");
}

TEST(Varying, IsThePlaneTimesWWhenPerspective) { expectSameAsScalar(varyingProgram("0"), Stage::Fragment, 1); }
TEST(Varying, IsThePlaneWhenLinear) { expectSameAsScalar(varyingProgram("1"), Stage::Fragment, 1); }
TEST(Varying, IsTheOriginWhenFlat) { expectSameAsScalar(varyingProgram("2"), Stage::Fragment, 1); }

TEST(FragmentInputs, PositionHasPixelDepthAndReciprocalOfW)
{
    for (const char* component : {"0", "1", "2", "3"})
        expectSameAsScalar(colouring(std::string("  %v = call float @softmetal_position(i32 ") + component + ")", "%v"), Stage::Fragment, 1);
}

TEST(FragmentInputs, FacingAndPrimitiveAreTheSameForAll)
{
    expectSameAsScalar(colouring(R"(
  %facing = call i32 @softmetal_front_facing()
  %primitive = call i32 @softmetal_primitive_id()
  %sum = add i32 %facing, %primitive
  %v = uitofp i32 %sum to float)", "%v"), Stage::Fragment, 1);
}

TEST(FragmentOutputs, LandInTheirPlaces)
{
    World world;
    Results results = runWide(program(R"(
  %x = call float @softmetal_position(i32 0)
  call void @softmetal_store_color(i32 7, i32 3, float %x)
  call void @softmetal_store_depth(float 0.75)
  call void @softmetal_store_stencil(i32 200)
  call void @softmetal_store_coverage(i32 3)
  ret void
)"), Stage::Fragment, 16, world);
    EXPECT_EQ(results.real(31, 4), 2.5f);
    EXPECT_EQ(results.real(DepthWord, 15), 0.75f);
    EXPECT_EQ(results.words[StencilWord][15], 200u);
    EXPECT_EQ(results.words[CoverageWord][0], 3u);
}

// ---- derivatives ---------------------------------------------------------------------------------------------------------

TEST(Derivative, IsTheDifferenceWithinTheRowAndTheColumn)
{
    std::string text = program(R"(
  %x = call float @softmetal_position(i32 0)
  %y = call float @softmetal_position(i32 1)
  %xx = fmul float %x, %x
  %yy = fmul float %y, %y
  %v = fmul float %xx, %yy
  %dx = call float @softmetal_dfdx(float %v)
  %dy = call float @softmetal_dfdy(float %v)
  call void @softmetal_store_color(i32 0, i32 0, float %dx)
  call void @softmetal_store_color(i32 0, i32 1, float %dy)
  ret void
)");
    for (uint32_t lanes : Widths) {
        World world;
        Results results = runWide(text, Stage::Fragment, lanes, world);
        for (uint32_t lane = 0; lane < Lanes; ++lane) {
            auto value = [&](float x, float y) { return x * x * (y * y); };
            float left = static_cast<float>(lane / 4 * 2) + 0.5f, x = world.x[lane], y = world.y[lane];
            EXPECT_EQ(results.real(0, lane), value(left + 1, y) - value(left, y)) << lanes << " lanes, lane " << lane;
            EXPECT_EQ(results.real(1, lane), value(x, 1.5f) - value(x, 0.5f)) << lanes << " lanes, lane " << lane;
        }
    }
}

TEST(Derivative, SeesHelperPixels)
{
    World world;
    world.mask = 0x0001;
    Results results = runWide(colouring("  %x = call float @softmetal_position(i32 0)\n  %d = call float @softmetal_dfdx(float %x)", "%d"), Stage::Fragment, 4, world);
    EXPECT_EQ(results.real(0, 0), 1.0f);
    EXPECT_EQ(results.mask, 1u);
}

// ---- discard -------------------------------------------------------------------------------------------------------------

TEST(Discard, TakesLanesOutOfTheResult)
{
    expectSameAsScalar(colouring(R"(
  %x = call float @softmetal_position(i32 0)
  %left = fcmp olt float %x, 3.0
  br i1 %left, label %drop, label %go
drop:
  call void @softmetal_discard()
  br label %go
go:)", "%x"), Stage::Fragment, 1);
}

TEST(Discard, InsideALoopCountsFromTheRoundOnInWhichItHappens)
{
    expectSameAsScalar(colouring(R"(
  %x = call float @softmetal_position(i32 0)
  %n = fptoui float %x to i32
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %latch ]
  %next = add i32 %i, 1
  %hit = icmp eq i32 %i, 5
  br i1 %hit, label %drop, label %latch
drop:
  call void @softmetal_discard()
  br label %latch
latch:
  %more = icmp ult i32 %i, %n
  br i1 %more, label %loop, label %out
out:
  %v = uitofp i32 %i to float)", "%v"), Stage::Fragment, 1);
}

TEST(Discard, LeavesDerivativesOfTheNeighboursWhole)
{
    World world;
    Results results = runWide(colouring(R"(
  %x = call float @softmetal_position(i32 0)
  %right = fcmp ogt float %x, 1.0
  br i1 %right, label %drop, label %go
drop:
  call void @softmetal_discard()
  br label %go
go:
  %twice = fmul float %x, 2.0
  %d = call float @softmetal_dfdx(float %twice))", "%d"), Stage::Fragment, 16, world);
    EXPECT_EQ(results.mask, 0x0005u);
    EXPECT_EQ(results.real(0, 0), 2.0f);
}

} // namespace
} // namespace widentest
