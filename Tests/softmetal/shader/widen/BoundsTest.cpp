// SPDX-License-Identifier: Apache-2.0
// Accesses outside what a pointer was made from: zeros are read, nothing is written, and the buffer is named.
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

#include <functional>

namespace widentest {
namespace {

const std::string Begin = R"(
  %id = call i32 @softmetal_vertex_id()
  %buffer = call ptr @softmetal_buffer(i32 0)
  %scratch = call ptr @softmetal_buffer(i32 1)
)";
const std::string End = "\n  %bits = bitcast i32 %x to float\n  call void @softmetal_store_output(i32 0, float %bits)\n  ret void\n";

/// Word 0 of every lane, at each width; the first buffer has `length` bytes, element n is n * 10.
void expectWords(const std::string& text, uint64_t length, const std::function<uint32_t(uint32_t lane)>& expected, uint64_t left)
{
    for (uint32_t lanes : Widths) {
        World world;
        world.resources.bufferLengths[0] = length;
        buffersLeft();
        Results results = runWide(text, Stage::Vertex, lanes, world);
        for (uint32_t lane = 0; lane < lanes; ++lane) EXPECT_EQ(results.words[0][lane], expected(lane)) << lanes << " lanes, lane " << lane;
        EXPECT_EQ(buffersLeft(), left) << lanes << " lanes";
    }
}

TEST(Bounds, LanesBeyondABufferReadZeros)
{
    const std::string text = program(Begin + "  %lane = and i32 %id, 3\n  %p = getelementptr i32, ptr %buffer, i32 %lane\n  %x = load i32, ptr %p" + End);
    expectWords(text, 64, [](uint32_t lane) { return (lane & 3) * 10; }, 0);
    expectWords(text, 12, [](uint32_t lane) { return (lane & 3) == 3 ? 0 : (lane & 3) * 10; }, 1);
    expectWords(text, 15, [](uint32_t lane) { return (lane & 3) == 3 ? 0 : (lane & 3) * 10; }, 1); // a part of an element is none
    expectWords(text, 0, [](uint32_t) { return 0; }, 1);
}

TEST(Bounds, AnElementBeforeABufferReadsZeros)
{
    expectWords(program(Begin + "  %p = getelementptr i32, ptr %buffer, i32 -1\n  %x = load i32, ptr %p" + End), 64, [](uint32_t) { return 0; }, 1);
}

TEST(Bounds, OneElementForAllLanesReadsZeros)
{
    const std::string text = program(Begin + "  %p = getelementptr i32, ptr %buffer, i32 4\n  %x = load i32, ptr %p" + End);
    expectWords(text, 20, [](uint32_t) { return 40; }, 0);
    expectWords(text, 16, [](uint32_t) { return 0; }, 1);
}

TEST(Bounds, APointerOfTwoBuffersIsHeldAgainstBoth)
{
    const std::string text = program(Begin + R"(
  %odd = trunc i32 %id to i1
  %either = select i1 %odd, ptr %scratch, ptr %buffer
  %p = getelementptr i32, ptr %either, i32 2
  %x = load i32, ptr %p)" + End);
    expectWords(text, 12, [](uint32_t lane) { return (lane & 1) ? 0 : 20; }, 0);
    expectWords(text, 8, [](uint32_t) { return 0; }, 3);
}

TEST(Bounds, WritesOutsideAreDropped)
{
    const std::string text = program(Begin + R"(
  %lane = and i32 %id, 3
  %p = getelementptr i32, ptr %scratch, i32 %lane
  store i32 7, ptr %p
  ret void
)");
    for (uint32_t lanes : Widths) {
        World world;
        world.resources.bufferLengths[1] = 8;
        buffersLeft();
        runWide(text, Stage::Vertex, lanes, world);
        EXPECT_EQ(world.scratch[1], 7u);
        EXPECT_EQ(world.scratch[2], 0u);
        EXPECT_EQ(buffersLeft(), 2u);
    }
}

TEST(Bounds, AnIndexBeyondATableReadsZeros)
{
    const std::string text = program(R"(
  %id = call i32 @softmetal_vertex_id()
  %lane = and i32 %id, 3
  %p = getelementptr i32, ptr @table, i32 %lane
  %x = load i32, ptr %p)" + End, "@table = internal constant [3 x i32] [i32 5, i32 6, i32 7]\n");
    expectWords(text, 0, [](uint32_t lane) { return (lane & 3) == 3 ? 0 : 5 + (lane & 3); }, softmetal::abi::OutsideTable);
}

TEST(Bounds, WhatAParameterHasAtLeastIsNotAskedFor)
{
    const std::string begin = "  %buffer = call ptr @softmetal_buffer(i32 0, i64 8)\n";
    const std::string text = "declare ptr @softmetal_buffer(i32, i64)\ndeclare void @softmetal_store_output(i32, float)\ndefine void @softmetal_entry() {\n" + begin +
                             "  %p = getelementptr i32, ptr %buffer, i32 1\n  %x = load i32, ptr %p" + End + "}\n";
    expectWords(text, 4, [](uint32_t) { return 10; }, 0); // whoever binds answers for it
}

TEST(Bounds, TexturesAreChosenPerLaneAndForgedOnesAreNone)
{
    const std::string text = program(R"(
  %id = call i32 @softmetal_vertex_id()
  %a = call ptr @softmetal_texture(i32 0)
  %b = call ptr @softmetal_texture(i32 1)
  %far = getelementptr i8, ptr %b, i32 8
  %odd = trunc i32 %id to i1
  %t = select i1 %odd, ptr %a, ptr %b
  %half = lshr i32 %id, 1
  %forged = trunc i32 %half to i1
  %u = select i1 %forged, ptr %far, ptr %t
  %x = call i32 @softmetal_texture_size(ptr %u, i32 0, i32 0))" + End);
    expectWords(text, 0, [](uint32_t lane) {
        return (lane >> 1 & 1) ? 0u : (lane & 1) ? 64u : 32u;
    }, 0);
}

} // namespace
} // namespace widentest
