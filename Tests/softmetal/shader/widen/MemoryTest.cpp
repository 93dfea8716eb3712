// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

const std::string Begin = R"(
  %id = call i32 @softmetal_vertex_id()
  %buffer = call ptr @softmetal_buffer(i32 0)
  %scratch = call ptr @softmetal_buffer(i32 1)
)";

std::string end(const char* value)
{
    return std::string("\n  %bits = bitcast i32 ") + value + " to float\n  call void @softmetal_store_output(i32 0, float %bits)\n  ret void\n";
}

/// Fills an array element by element and reads it by an index that differs between lanes.
std::string arrayProgram(const char* type, const char* toElement, const char* fromElement)
{
    std::string t = type;
    return program("  %array = alloca [8 x " + t + "]\n" + Begin + R"(
  br label %fill
fill:
  %i = phi i32 [ 0, %0 ], [ %next, %fill ]
  %p = mul i32 %i, 37
  %v = add i32 %p, %id
  %e = )" + toElement + R"(
  %place = getelementptr )" + t + R"(, ptr %array, i32 %i
  store )" + t + R"( %e, ptr %place
  %next = add i32 %i, 1
  %more = icmp ult i32 %next, 8
  br i1 %more, label %fill, label %pick
pick:
  %k = mul i32 %id, 3
  %index = and i32 %k, 7
  %from = getelementptr )" + t + R"(, ptr %array, i32 %index
  %x = load )" + t + R"(, ptr %from
  %r = )" + fromElement + end("%r"));
}

struct ElementType
{
    const char *type, *to, *from;
};

class PrivateArray : public testing::TestWithParam<ElementType>
{
};

TEST_P(PrivateArray, ElementsAreReadBackByDifferentIndices)
{
    expectSameAsScalar(arrayProgram(GetParam().type, GetParam().to, GetParam().from), Stage::Vertex, 1);
}

INSTANTIATE_TEST_SUITE_P(Types, PrivateArray,
                         testing::Values(ElementType{"i32", "add i32 %v, 0", "add i32 %x, 0"},
                                         ElementType{"i8", "trunc i32 %v to i8", "sext i8 %x to i32"},
                                         ElementType{"i16", "trunc i32 %v to i16", "zext i16 %x to i32"},
                                         ElementType{"i64", "zext i32 %v to i64", "trunc i64 %x to i32"},
                                         ElementType{"float", "sitofp i32 %v to float", "fptosi float %x to i32"},
                                         ElementType{"double", "sitofp i32 %v to double", "fptosi double %x to i32"},
                                         ElementType{"half", "sitofp i32 %v to half", "fptosi half %x to i32"}));

TEST(Memory, StoresToPrivateArraysHappenInActiveLanesOnly)
{
    expectSameAsScalar(program("  %array = alloca [4 x i32]\n" + Begin + R"(
  store i32 11, ptr %array
  %one = getelementptr i32, ptr %array, i32 1
  store i32 22, ptr %one
  %k = and i32 %id, 1
  %place = getelementptr i32, ptr %array, i32 %k
  %some = icmp ugt i32 %id, 6
  br i1 %some, label %write, label %read
write:
  store i32 %id, ptr %place
  br label %read
read:
  %j = lshr i32 %id, 1
  %l = and i32 %j, 1
  %from = getelementptr i32, ptr %array, i32 %l
  %r = load i32, ptr %from
)" + end("%r")));
}

TEST(Memory, ArraysAreCopiedAndFilledAsAWhole)
{
    expectSameAsScalar(program("  %a = alloca [6 x i32]\n  %b = alloca [6 x i32]\n" + Begin + R"(
  call void @llvm.memset.p0.i64(ptr align 4 %a, i8 1, i64 24, i1 false)
  call void @llvm.memcpy.p0.p0.i64(ptr align 4 %a, ptr align 4 @table, i64 16, i1 false)
  %k = and i32 %id, 3
  %place = getelementptr i32, ptr %a, i32 %k
  store i32 %id, ptr %place
  call void @llvm.memcpy.p0.p0.i64(ptr align 4 %b, ptr align 4 %a, i64 24, i1 false)
  store i32 1234, ptr %place
  %l = urem i32 %id, 6
  %from = getelementptr i32, ptr %b, i32 %l
  %r = load i32, ptr %from
)" + end("%r"), "@table = private constant [4 x i32] [i32 5, i32 6, i32 7, i32 8]\n"
                "declare void @llvm.memset.p0.i64(ptr, i8, i64, i1)\ndeclare void @llvm.memcpy.p0.p0.i64(ptr, ptr, i64, i1)\n"));
}

TEST(Memory, AnIndexOutsideAPrivateArrayStaysInsidePrivateMemory)
{
    World world;
    std::string text = program("  %array = alloca [4 x i32]\n" + Begin + R"(
  %far = mul i32 %id, 1000003
  %place = getelementptr i32, ptr %array, i32 %far
  store i32 %id, ptr %place
  %back = sub i32 0, %far
  %from = getelementptr i32, ptr %array, i32 %back
  %r = load i32, ptr %from
)" + end("%r"));
    for (uint32_t lanes : Widths) EXPECT_EQ(runWide(text, Stage::Vertex, lanes, world).words[0][0], 0u);
}

TEST(Memory, BuffersAreReadAtUniformAndDifferentPlaces)
{
    expectSameAsScalar(program(Begin + R"(
  %base = call i32 @softmetal_base_vertex()
  %same = getelementptr i32, ptr %buffer, i32 %base
  %a = load i32, ptr %same
  %k = mul i32 %id, 5
  %own = getelementptr i32, ptr %buffer, i32 %k
  %b = load i32, ptr %own
  %r = add i32 %a, %b
)" + end("%r")));
}

TEST(Memory, ConstantTablesAreReadByDifferentIndices)
{
    expectSameAsScalar(program(Begin + R"(
  %k = and i32 %id, 3
  %place = getelementptr [4 x i32], ptr @table, i32 0, i32 %k
  %r = load i32, ptr %place
)" + end("%r"), "@table = private constant [4 x i32] [i32 50, i32 61, i32 72, i32 83]\n"));
}

TEST(Memory, APlaceIsReadOnlyByLanesThatGetThere)
{
    // Idle lanes hold addresses far outside the buffer.
    expectSameAsScalar(program(Begin + R"(
  %inside = icmp ult i32 %id, 3
  br i1 %inside, label %read, label %end
read:
  %place = getelementptr i32, ptr %buffer, i32 %id
  %x = load i32, ptr %place
  br label %end
end:
  %far = phi i32 [ 1, %read ], [ 4, %0 ]
  %v = phi i32 [ %x, %read ], [ 9, %0 ]
  %near = icmp eq i32 %far, 1
  %step = select i1 %near, i32 1, i32 100000000
  br i1 %near, label %again, label %out
again:
  %k = mul i32 %id, %step
  %p = getelementptr i32, ptr %buffer, i32 %k
  %y = load i32, ptr %p
  br label %out
out:
  %w = phi i32 [ %v, %end ], [ %y, %again ]
)" + end("%w")));
}

TEST(Memory, BuffersAreWrittenByActiveLanes)
{
    expectSameAsScalar(program(Begin + R"(
  %some = icmp ugt i32 %id, 4
  %place = getelementptr i32, ptr %scratch, i32 %id
  br i1 %some, label %write, label %out
write:
  %v = add i32 %id, 500
  store i32 %v, ptr %place
  br label %out
out:
  %r = load i32, ptr %place
)" + end("%r")));
}

TEST(Memory, DiscardedAndHelperFragmentsWriteNothing)
{
    std::string text = program(R"(
  %x = call float @softmetal_position(i32 0)
  %column = fptoui float %x to i32
  %y = call float @softmetal_position(i32 1)
  %row = fptoui float %y to i32
  %scaled = mul i32 %row, 8
  %pixel = add i32 %scaled, %column
  %gone = icmp eq i32 %column, 2
  br i1 %gone, label %drop, label %go
drop:
  call void @softmetal_discard()
  br label %go
go:
  %scratch = call ptr @softmetal_buffer(i32 1)
  %place = getelementptr i32, ptr %scratch, i32 %pixel
  store i32 1, ptr %place
  ret void
)");
    for (uint32_t lanes : Widths) {
        World world;
        world.mask = 0xfff1; // the first quad is covered in its upper left pixel only
        runWide(text, Stage::Fragment, lanes, world);
        EXPECT_EQ(world.scratch[0], 1u) << "covered";
        EXPECT_EQ(world.scratch[1], 0u) << "helper";
        EXPECT_EQ(world.scratch[2], 0u) << "discarded";
        EXPECT_EQ(world.scratch[3], 1u) << "covered";
        EXPECT_EQ(world.scratch[8], 0u) << "helper";
    }
}

} // namespace
} // namespace widentest
