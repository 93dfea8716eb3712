// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

const std::string Begin = R"(
  %x = call float @softmetal_position(i32 0)
  %y = call float @softmetal_position(i32 1)
  %texture = call ptr @softmetal_texture(i32 0)
  %sampler = call ptr @softmetal_sampler(i32 0)
)";

std::string sampling(const char* result, const char* mode, const char* s, const char* t, const char* lod = "0.0", const char* texture = "%texture")
{
    return std::string("  ") + result + " = call <4 x float> @softmetal_sample(ptr " + texture + ", ptr %sampler, i32 " + mode + ", float " + s + ", float " + t +
           ", float 0.0, i32 2, float " + lod + ", float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, i32 1, i32 -2, i32 0, float 0.5)\n";
}

std::string colouring(const char* value, const char* component = "0")
{
    return std::string("  call void @softmetal_store_color(i32 0, i32 ") + component + ", float " + value + ")\n";
}

TEST(Sample, GivesFourComponentsPerLane)
{
    expectSameAsScalar(program(Begin + sampling("%c", "0", "%x", "%y") + R"(
  %r = extractelement <4 x float> %c, i32 0
  %g = extractelement <4 x float> %c, i32 1
  %b = extractelement <4 x float> %c, i32 2
  %a = extractelement <4 x float> %c, i32 3
)" + colouring("%r") + colouring("%g", "1") + colouring("%b", "2") + colouring("%a", "3") + "  ret void\n"), Stage::Fragment, 4);
}

TEST(Sample, InABranchIsDoneForItsLanesOnly)
{
    std::string text = program(Begin + R"(
  %far = fcmp ogt float %x, 3.0
  br i1 %far, label %take, label %end
take:
)" + sampling("%c", "2", "%y", "%x", "%x") + R"(
  %g = extractelement <4 x float> %c, i32 1
  br label %end
end:
  %v = phi float [ 0.25, %0 ], [ %g, %take ]
)" + colouring("%v") + "  ret void\n");
    expectSameAsScalar(text, Stage::Fragment, 1);
    World world;
    EXPECT_EQ(runWide(text, Stage::Fragment, 16, world).samples, 10u); // x = 3.5 to 7.5, two rows
}

TEST(Sample, InALoopFeedsTheNextRound)
{
    expectSameAsScalar(program(Begin + R"(
  %n = fptoui float %x to i32
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %loop ]
  %s = phi float [ %y, %0 ], [ %g, %loop ]
)" + sampling("%c", "0", "%s", "%x") + R"(
  %g = extractelement <4 x float> %c, i32 1
  %next = add i32 %i, 1
  %more = icmp ult i32 %i, %n
  br i1 %more, label %loop, label %end
end:
)" + colouring("%g") + "  ret void\n"), Stage::Fragment, 1);
}

TEST(Sample, PassesModeOffsetAndClampOn)
{
    World world;
    runWide(program(Begin + sampling("%c", "1", "%x", "%y", "%y") + "  %r = extractelement <4 x float> %c, i32 0\n" + colouring("%r") + "  ret void\n"), Stage::Fragment, 16, world);
    ASSERT_EQ(seenCalls.size(), 1u);
    const abi::SampleCall& call = seenCalls[0];
    EXPECT_EQ(call.lodMode, abi::LodMode::Bias);
    EXPECT_EQ(call.stage, 1u);
    EXPECT_EQ(call.mask, 0xffffu);
    EXPECT_EQ(call.offset[0], 1);
    EXPECT_EQ(call.offset[1], -2);
    EXPECT_EQ(call.minLodClamp, 0.5f);
    EXPECT_EQ(call.layer.u[9], 2u);
    EXPECT_EQ(call.lod.f[2], 1.5f);
}

TEST(Sample, PassesGradientsOn)
{
    World world;
    runWide(program(Begin + R"(
  %c = call <4 x float> @softmetal_sample(ptr %texture, ptr %sampler, i32 3, float %x, float %y, float 0.0, i32 0, float 0.0, float 1.0, float 2.0, float %x, float 4.0, float %y, float 6.0, i32 0, i32 0, i32 0, float 0.0)
  %r = extractelement <4 x float> %c, i32 0
)" + colouring("%r") + "  ret void\n"), Stage::Fragment, 16, world);
    ASSERT_EQ(seenCalls.size(), 1u);
    EXPECT_EQ(seenCalls[0].gradientX[1].f[3], 2.0f);
    EXPECT_EQ(seenCalls[0].gradientX[2].f[5], 3.5f);
    EXPECT_EQ(seenCalls[0].gradientY[0].f[15], 4.0f);
    EXPECT_EQ(seenCalls[0].gradientY[1].f[2], 1.5f);
}

TEST(Sample, RunsForHelperPixelsToo)
{
    World world;
    world.mask = 0x0010;
    runWide(program(Begin + sampling("%c", "0", "%x", "%y") + "  %r = extractelement <4 x float> %c, i32 0\n" + colouring("%r") + "  ret void\n"), Stage::Fragment, 16, world);
    ASSERT_EQ(seenCalls.size(), 1u);
    EXPECT_EQ(seenCalls[0].mask, 0x00f0u);
}

TEST(SampleCompare, PassesTheReferenceAndGivesTheFirstComponent)
{
    World world;
    Results results = runWide(program(Begin + R"(
  %c = call <4 x float> @softmetal_sample_compare(ptr %texture, ptr %sampler, i32 0, float %x, float %y, float 0.0, i32 0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, i32 0, i32 0, i32 0, float 0.0, float 4.0)
  %r = extractelement <4 x float> %c, i32 0
)" + colouring("%r") + "  ret void\n"), Stage::Fragment, 8, world);
    EXPECT_EQ(results.real(0, 4), 0.0f); // x = 2.5
    EXPECT_EQ(results.real(0, 8), 1.0f); // x = 4.5
}

TEST(Gather, PassesTheComponent)
{
    World world;
    Results results = runWide(program(Begin + R"(
  %c = call <4 x float> @softmetal_gather(ptr %texture, ptr %sampler, i32 0, float %x, float 0.0, float 0.0, i32 0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, i32 0, i32 0, i32 0, float 0.0, i32 2)
  %r = extractelement <4 x float> %c, i32 3
)" + colouring("%r") + "  ret void\n"), Stage::Fragment, 8, world);
    EXPECT_EQ(results.real(0, 4), 64.0f + 2.5f * 4 + 200.0f);
}

TEST(Read, GivesTheTexelOfEachLane)
{
    World world;
    Results results = runWide(program(Begin + R"(
  %column = fptoui float %x to i32
  %c = call <4 x float> @softmetal_read(ptr %texture, i32 %column, i32 2, i32 3, i32 4, i32 5)
  %r = extractelement <4 x float> %c, i32 1
)" + colouring("%r") + "  ret void\n"), Stage::Fragment, 8, world);
    EXPECT_EQ(results.words[0][9], 64u + 5 * 3 + 2 * 5 + 3 * 7 + 4 * 11 + 5 * 13 + 1);
}

TEST(Texture, ChosenForAllLanesAtOnceIsPassedOn)
{
    expectSameAsScalar(program(Begin + R"(
  %other = call ptr @softmetal_texture(i32 1)
  %facing = call i32 @softmetal_front_facing()
  %front = icmp ne i32 %facing, 0
  %chosen = select i1 %front, ptr %other, ptr %texture
)" + sampling("%c", "0", "%x", "%y", "0.0", "%chosen") + "  %r = extractelement <4 x float> %c, i32 0\n" + colouring("%r") + "  ret void\n"), Stage::Fragment, 1);
}

class TextureSizes : public testing::TestWithParam<std::array<uint32_t, 3>> // what, level, expected
{
};

TEST_P(TextureSizes, AreOfTheLevel)
{
    auto [what, level, expected] = GetParam();
    World world;
    Results results = runWide(program(Begin + "  %size = call i32 @softmetal_texture_size(ptr %texture, i32 " + std::to_string(what) + ", i32 " + std::to_string(level) +
                                      ")\n  %v = bitcast i32 %size to float\n" + colouring("%v") + "  ret void\n"), Stage::Fragment, 8, world);
    EXPECT_EQ(results.words[0][0], expected);
    world.resources.textures[0] = nullptr;
    results = runWide(program(Begin + "  %size = call i32 @softmetal_texture_size(ptr %texture, i32 " + std::to_string(what) + ", i32 " + std::to_string(level) +
                              ")\n  %v = bitcast i32 %size to float\n" + colouring("%v") + "  ret void\n"), Stage::Fragment, 8, world);
    EXPECT_EQ(results.words[0][0], 0u) << "nothing is bound";
}

using Size = std::array<uint32_t, 3>;
INSTANTIATE_TEST_SUITE_P(All, TextureSizes, testing::Values(Size{0, 0, 64}, Size{0, 2, 16}, Size{1, 1, 8}, Size{1, 6, 1}, Size{2, 3, 1}, Size{3, 0, 3}, Size{4, 0, 7}, Size{5, 0, 1}));

} // namespace
} // namespace widentest
