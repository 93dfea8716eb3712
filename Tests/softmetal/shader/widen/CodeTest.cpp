// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <llvm/AsmParser/Parser.h>
#include <llvm/IR/LLVMContext.h>
#include <llvm/Support/SourceMgr.h>

#include <gtest/gtest.h>

#include <fstream>
#include <thread>

namespace widentest
{
namespace
{

const std::string MultiplyAdd = program(R"(
  %x = call float @softmetal_varying(i32 0, i32 0)
  %y = call float @softmetal_varying(i32 1, i32 0)
  %p = fmul float %x, %y
  %q = fadd float %p, %x
  %s = fmul float %q, %q
  %r = fsub float %s, %p
  call void @softmetal_store_color(i32 0, i32 0, float %r)
  ret void
)");

const std::string Endless = program(R"(
  %id = call i32 @softmetal_vertex_id()
  br label %loop
loop:
  %i = phi i32 [ 0, %0 ], [ %next, %loop ]
  %next = add i32 %i, 2
  %stop = icmp eq i32 %next, 7
  br i1 %stop, label %end, label %loop
end:
  %sum = add i32 %i, %id
  %f = bitcast i32 %sum to float
  call void @softmetal_store_output(i32 0, float %f)
  ret void
)");

TEST(Code, HasNoFusedMultiplyAdd)
{
    for (uint32_t lanes : Widths) {
        std::string text = listing(MultiplyAdd, Stage::Fragment, lanes);
        EXPECT_NE(text.find("mulps"), std::string::npos);
        for (const char* fused : {"fmadd", "fmsub", "fnmadd", "fnmsub", "rcp", "rsqrt"})
            EXPECT_EQ(text.find(fused), std::string::npos) << fused << "\n" << text;
    }
}

TEST(Code, StopsLoopsThatDoNotEnd)
{
    // As fragments nothing is covered, as vertices all is zero.
    for (uint32_t lanes : Widths) {
        World world;
        uint32_t before = stoppedLoops();
        Results results = runWide(Endless, Stage::Vertex, lanes, world);
        EXPECT_EQ(stoppedLoops() - before, Lanes / lanes);
        EXPECT_EQ(results.words[0][3], 0u);
    }
}

TEST(Code, CoversNothingWhenAFragmentLoopDoesNotEnd)
{
    World world;
    Results results = runWide(program(R"(
  %x = call float @softmetal_position(i32 0)
  br label %loop
loop:
  %v = phi float [ %x, %0 ], [ %half, %loop ]
  %half = fmul float %v, 0.5
  %below = fcmp olt float %half, 0.0
  br i1 %below, label %end, label %loop
end:
  call void @softmetal_store_color(i32 0, i32 0, float %v)
  ret void
)"),
                              Stage::Fragment, 16, world);
    EXPECT_EQ(results.mask, 0u);
}

uint64_t mappedPages()
{
    std::ifstream file("/proc/self/statm");
    uint64_t pages = 0;
    file >> pages;
    return pages;
}

TEST(Code, MemoryIsFreedWithItsOwner)
{
    for (int i = 0; i < 20; ++i)
        refusal(MultiplyAdd, Stage::Fragment);
    uint64_t before = mappedPages();
    for (int i = 0; i < 200; ++i)
        refusal(MultiplyAdd, Stage::Fragment);
    EXPECT_LT(mappedPages(), before + 600) << "200 functions of three pages each";
}

TEST(Code, IsMadeByManyThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::array<std::array<uint32_t, Lanes>, 6> words{};
    for (uint32_t t = 0; t < words.size(); ++t)
        threads.emplace_back([&words, t] {
            for (int round = 0; round < 4; ++round) {
                World world;
                words[t] = runWide(MultiplyAdd, Stage::Fragment, Widths[t % Widths.size()], world).words[0];
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& one : words)
        EXPECT_EQ(one, words[0]);
}

TEST(Code, OutlivesItsGenerator)
{
    std::string error;
    auto generator = softmetal::shader::makeGenerator(runtimeTable(), 8, error);
    llvm::LLVMContext context;
    llvm::SMDiagnostic problem;
    auto module = llvm::parseAssemblyString(MultiplyAdd, problem, context);
    softmetal::shader::cleanUp(*module);
    softmetal::shader::CompileTimes times;
    auto code = generator->generate(*module, Stage::Fragment, times, error);
    generator.reset();
    ASSERT_TRUE(code);
    abi::FragmentInput input{};
    World world;
    input.planes = world.planes.data();
    input.mask = input.live = 1;
    abi::FragmentOutput output{};
    reinterpret_cast<abi::FragmentFunction>(code->address())(&input, &output, &world.resources);
    EXPECT_EQ(output.mask, 1u);
    EXPECT_GT(times.generate, 0.0);
}

TEST(Code, RunsAgainFromItsBytes)
{
    // Constants beside the code and a call into the runtime, wherever the copy lies.
    llvm::LLVMContext context;
    llvm::SMDiagnostic problem;
    auto module = llvm::parseAssemblyString(Endless, problem, context);
    softmetal::shader::cleanUp(*module);
    softmetal::shader::CompileTimes times;
    std::string error;
    auto code =
        softmetal::shader::makeGenerator(runtimeTable(), 8, error)->generate(*module, Stage::Vertex, times, error);
    ASSERT_TRUE(code) << error;
    const softmetal::shader::MachineCode copy = code->machineCode();
    code.reset();
    for (int i = 0; i < 3; ++i) {
        auto loaded = softmetal::shader::LoadedCode::load(copy, runtimeTable(), error);
        ASSERT_TRUE(loaded) << error;
        World world;
        abi::VertexInput input{};
        input.mask = 0xff;
        abi::VertexOutput output{};
        uint32_t before = stoppedLoops();
        reinterpret_cast<abi::VertexFunction>(loaded->address())(&input, &output, &world.resources);
        EXPECT_EQ(stoppedLoops() - before, 1u);
    }
}

} // namespace
} // namespace widentest
