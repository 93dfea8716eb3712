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

constexpr const char* Sample = "(ptr %t, ptr %s, i32 0, float 0.0, float 0.0, float 0.0, i32 0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, float 0.0, "
                               "float 0.0, i32 0, i32 0, i32 0, float 0.0)";

const Refused Rows[] = {
    {"UnknownFunction", "  call void @outside()\n  ret void", "declare void @outside()\n", "function 'outside' is called but has no body"},
    {"Recursion", "  call void @again(i32 3)\n  ret void",
     "define void @again(i32 %n) {\n  %z = icmp eq i32 %n, 0\n  br i1 %z, label %o, label %m\nm:\n  %k = call i32 @softmetal_vertex_id()\n  call void @again(i32 %k)\n  br label %o\no:\n  ret void\n}\n",
     "calls itself"},
    {"CallThroughPointer", "  %p = call ptr @softmetal_buffer(i32 0)\n  %f = load ptr, ptr %p\n  call void %f()\n  ret void", "", "calls through pointers are not supported"},
    {"LibraryMathematics",
     "  %i = call i32 @softmetal_vertex_id()\n  %x = bitcast i32 %i to float\n  %y = call float @llvm.sin.f32(float %x)\n  call void @softmetal_store_output(i32 0, float %y)\n  ret void",
     "declare float @llvm.sin.f32(float)\n", "operation 'llvm.sin.f32' is not supported"},
    {"AtomicOperation", "  %p = call ptr @softmetal_buffer(i32 1)\n  %o = atomicrmw add ptr %p, i32 1 monotonic\n  ret void", "", "atomic operations are not supported"},
    {"OperationOfTheOtherStage", "  call void @softmetal_discard()\n  ret void", "", "operation 'softmetal_discard' is not supported"},
    {"ComponentOutOfRange", "  call void @softmetal_store_output(i32 128, float 0.0)\n  ret void", "", "is not a constant below 128"},
    {"VariableComponent", "  %i = call i32 @softmetal_base_vertex()\n  call void @softmetal_store_output(i32 %i, float 0.0)\n  ret void", "", "is not a constant below 128"},
    {"TexturePerLane",
     "  %i = call i32 @softmetal_vertex_id()\n  %c = trunc i32 %i to i1\n  %a = call ptr @softmetal_texture(i32 0)\n  %b = call ptr @softmetal_texture(i32 1)\n"
     "  %t = select i1 %c, ptr %a, ptr %b\n  %n = call i32 @softmetal_texture_size(ptr %t, i32 0, i32 0)\n  %f = bitcast i32 %n to float\n"
     "  call void @softmetal_store_output(i32 0, float %f)\n  ret void",
     "", "a texture chosen per lane is not supported"},
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

TEST(Refusal, ASamplerChosenPerLaneIsRefused)
{
    std::string body = std::string("  %x = call float @softmetal_position(i32 0)\n  %c = fcmp ogt float %x, 1.0\n  %t = call ptr @softmetal_texture(i32 0)\n"
                                   "  %a = call ptr @softmetal_sampler(i32 0)\n  %b = call ptr @softmetal_sampler(i32 1)\n  %s = select i1 %c, ptr %a, ptr %b\n"
                                   "  %r = call <4 x float> @softmetal_sample") +
                       Sample + "\n  %e = extractelement <4 x float> %r, i32 0\n  call void @softmetal_store_color(i32 0, i32 0, float %e)\n  ret void";
    EXPECT_EQ(refusal(program(body), Stage::Fragment), "a sampler chosen per lane is not supported");
}

TEST(Refusal, AModuleWithoutEntryIsRefused) { EXPECT_EQ(refusal("define void @other() {\n  ret void\n}\n", Stage::Vertex), "there is no entry function"); }

} // namespace
} // namespace widentest
