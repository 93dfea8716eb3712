// SPDX-License-Identifier: Apache-2.0
// Programs that cannot be widened are refused in words; none may end the process.
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

struct Refused
{
    const char *name, *body, *globals, *words;
};

const Refused Rows[] = {
    {"UnknownFunction", "  call void @outside()\n  ret void", "declare void @outside()\n", "function 'outside' is called but has no body"},
    {"Recursion", "  call void @again(i32 3)\n  ret void",
     "define void @again(i32 %n) {\n  %z = icmp eq i32 %n, 0\n  br i1 %z, label %o, label %m\nm:\n  %k = call i32 @softmetal_vertex_id()\n  call void @again(i32 %k)\n  br label %o\no:\n  ret void\n}\n",
     "calls itself"},
    {"CallThroughPointer",
     "  %i = call i32 @softmetal_vertex_id()\n  %c = trunc i32 %i to i1\n  %f = select i1 %c, ptr @one, ptr @two\n  call void %f()\n  ret void",
     "declare void @one()\ndeclare void @two()\n", "calls through pointers are not supported"},
    {"PointerFromABuffer",
     "  %p = call ptr @softmetal_buffer(i32 0)\n  %q = load ptr, ptr %p\n  %v = load float, ptr %q\n  call void @softmetal_store_output(i32 0, float %v)\n  ret void", "",
     "a pointer is read from a buffer"},
    {"LibraryMathematics",
     "  %i = call i32 @softmetal_vertex_id()\n  %x = bitcast i32 %i to float\n  %y = call float @llvm.sin.f32(float %x)\n  call void @softmetal_store_output(i32 0, float %y)\n  ret void",
     "declare float @llvm.sin.f32(float)\n", "operation 'llvm.sin.f32' is not supported"},
    {"AtomicOperation", "  %p = call ptr @softmetal_buffer(i32 1)\n  %o = atomicrmw add ptr %p, i32 1 monotonic\n  ret void", "", "atomic operations are not supported"},
    {"OperationOfTheOtherStage", "  call void @softmetal_discard()\n  ret void", "", "operation 'softmetal_discard' is not supported"},
    {"ComponentOutOfRange", "  call void @softmetal_store_output(i32 128, float 0.0)\n  ret void", "", "is not a constant below 128"},
    {"VariableComponent", "  %i = call i32 @softmetal_base_vertex()\n  call void @softmetal_store_output(i32 %i, float 0.0)\n  ret void", "", "is not a constant below 128"},
    {"HugeArray",
     "  %a = alloca [9999 x i32]\n  %i = call i32 @softmetal_vertex_id()\n  %p = getelementptr i32, ptr %a, i32 %i\n  store i32 1, ptr %p\n  %v = load i32, ptr %a\n"
     "  %f = bitcast i32 %v to float\n  call void @softmetal_store_output(i32 0, float %f)\n  ret void",
     "", "the arrays of the function take 40000 bytes"},
    {"PointerOfANumber",
     "  %i = call i32 @softmetal_vertex_id()\n  %n = zext i32 %i to i64\n  %p = inttoptr i64 %n to ptr\n  %v = load float, ptr %p\n  call void @softmetal_store_output(i32 0, float %v)\n  ret void",
     "", "pointers made of numbers are not supported"},
    {"WideVector", "  %p = call ptr @softmetal_buffer(i32 1)\n  %v = load i128, ptr %p\n  %w = add i128 %v, 1\n  store i128 %w, ptr %p\n  ret void", "", "a vector, aggregate or large value is left"},
};

class Refusal : public testing::TestWithParam<Refused>
{
};

TEST_P(Refusal, SaysWhy)
{
    std::string error = refusal(program(GetParam().body, GetParam().globals), Stage::Vertex);
    EXPECT_NE(error.find(GetParam().words), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(All, Refusal, testing::ValuesIn(Rows), [](const auto& row) { return std::string(row.param.name); });

TEST(Refusal, AModuleWithoutEntryIsRefused) { EXPECT_EQ(refusal("define void @other() {\n  ret void\n}\n", Stage::Vertex), "there is no entry function"); }

} // namespace
} // namespace widentest
