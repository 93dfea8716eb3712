// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace widentest {
namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();
constexpr float NotANumber = std::numeric_limits<float>::quiet_NaN();

/// The bits of attribute 0 and 1 in %a and %b, as numbers in %x and %y.
const std::string Begin = R"(
  %a = call i32 @softmetal_attribute(i32 0, i32 0)
  %b = call i32 @softmetal_attribute(i32 1, i32 0)
  %x = bitcast i32 %a to float
  %y = bitcast i32 %b to float
)";

std::string integerProgram(const std::string& body, const std::string& globals = {})
{
    return program(Begin + "  %r = " + body + "\n  %bits = bitcast i32 %r to float\n  call void @softmetal_store_output(i32 0, float %bits)\n  ret void\n", globals);
}

std::string realProgram(const std::string& body, const std::string& globals = {})
{
    return program(Begin + "  %r = " + body + "\n  call void @softmetal_store_output(i32 0, float %r)\n  ret void\n", globals);
}

uint32_t resultOf(const std::string& text, uint32_t lanes, uint32_t a, uint32_t b)
{
    World world;
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        world.attributes[0].u[lane] = lane == 3 ? a : 1;
        world.attributes[4].u[lane] = lane == 3 ? b : 1;
    }
    return runWide(text, Stage::Vertex, lanes, world).words[0][3];
}

uint32_t bits(float value) { return std::bit_cast<uint32_t>(value); }

void expectResult(const std::string& text, uint32_t a, uint32_t b, uint32_t expected)
{
    for (uint32_t lanes : Widths) EXPECT_EQ(resultOf(text, lanes, a, b), expected) << lanes << " lanes: " << std::hex << a << " " << b;
}

// ---- edge cases that must not stop the process, and are the same everywhere ------------------------------------------------

TEST(Arithmetic, DivisionByZeroIsDivisionByOne)
{
    expectResult(integerProgram("udiv i32 %a, %b"), 77, 0, 77);
    expectResult(integerProgram("sdiv i32 %a, %b"), 77, 0, 77);
    expectResult(integerProgram("urem i32 %a, %b"), 77, 0, 0);
    expectResult(integerProgram("srem i32 %a, %b"), 77, 0, 0);
}

TEST(Arithmetic, TheQuotientThatDoesNotFitIsTheDividend)
{
    expectResult(integerProgram("sdiv i32 %a, %b"), 0x80000000u, 0xffffffffu, 0x80000000u);
    expectResult(integerProgram("srem i32 %a, %b"), 0x80000000u, 0xffffffffu, 0);
}

TEST(Arithmetic, ShiftsCountModuloTheWidth)
{
    expectResult(integerProgram("shl i32 %a, %b"), 3, 33, 6);
    expectResult(integerProgram("lshr i32 %a, %b"), 0x80000000u, 63, 1);
    expectResult(integerProgram("ashr i32 %a, %b"), 0x80000000u, 32, 0x80000000u);
}

struct Conversion
{
    float from;
    uint32_t toSigned, toUnsigned;
};

class Conversions : public testing::TestWithParam<Conversion>
{
};

TEST_P(Conversions, SaturateAndTurnNotANumberIntoZero)
{
    expectResult(integerProgram("fptosi float %x to i32"), bits(GetParam().from), 0, GetParam().toSigned);
    expectResult(integerProgram("fptoui float %x to i32"), bits(GetParam().from), 0, GetParam().toUnsigned);
}

INSTANTIATE_TEST_SUITE_P(Edges, Conversions,
                         testing::Values(Conversion{-1.75f, 0xffffffffu, 0}, Conversion{3e9f, 0x7fffffffu, 3000000000u}, Conversion{1e20f, 0x7fffffffu, 0xffffffffu},
                                         Conversion{-1e20f, 0x80000000u, 0}, Conversion{Infinity, 0x7fffffffu, 0xffffffffu}, Conversion{-Infinity, 0x80000000u, 0},
                                         Conversion{NotANumber, 0, 0}));

struct Pair
{
    float x, y, smaller, greater;
};

class MinimumAndMaximum : public testing::TestWithParam<Pair>
{
};

TEST_P(MinimumAndMaximum, HaveOneResultAtEveryWidth)
{
    auto [x, y, smaller, greater] = GetParam();
    expectResult(realProgram("call float @llvm.minnum.f32(float %x, float %y)", "declare float @llvm.minnum.f32(float, float)\n"), bits(x), bits(y), bits(smaller));
    expectResult(realProgram("call float @llvm.maxnum.f32(float %x, float %y)", "declare float @llvm.maxnum.f32(float, float)\n"), bits(x), bits(y), bits(greater));
}

INSTANTIATE_TEST_SUITE_P(Edges, MinimumAndMaximum,
                         testing::Values(Pair{1, 2, 1, 2}, Pair{2, 1, 1, 2}, Pair{NotANumber, 3, 3, 3}, Pair{3, NotANumber, 3, 3}, Pair{0.0f, -0.0f, 0.0f, 0.0f},
                                         Pair{-0.0f, 0.0f, -0.0f, -0.0f}, Pair{-Infinity, Infinity, -Infinity, Infinity}));

TEST(Arithmetic, LeadingAndTrailingZerosOfZeroAreTheWidth)
{
    expectResult(integerProgram("call i32 @llvm.ctlz.i32(i32 %a, i1 true)", "declare i32 @llvm.ctlz.i32(i32, i1)\n"), 0, 0, 32);
    expectResult(integerProgram("call i32 @llvm.cttz.i32(i32 %a, i1 true)", "declare i32 @llvm.cttz.i32(i32, i1)\n"), 0, 0, 32);
}

// ---- no contraction --------------------------------------------------------------------------------------------------------

/// (1 + 2^-12)^2 - 1 loses its last bit when the product is rounded first.
TEST(Arithmetic, ProductsAreRoundedBeforeTheSum)
{
    float x = 1.0f + 0x1p-12f;
    volatile float product = x * x;
    uint32_t rounded = bits(product - 1.0f);
    ASSERT_NE(rounded, bits(std::fma(x, x, -1.0f)));
    expectResult(program(Begin + "  %p = fmul float %x, %x\n  %r = fadd float %p, %y\n  call void @softmetal_store_output(i32 0, float %r)\n  ret void\n"), bits(x), bits(-1.0f), rounded);
    expectResult(program(Begin + "  %p = fmul fast float %x, %x\n  %r = fadd fast float %p, %y\n  call void @softmetal_store_output(i32 0, float %r)\n  ret void\n"), bits(x), bits(-1.0f), rounded);
    expectResult(realProgram("call float @llvm.fmuladd.f32(float %x, float %x, float %y)", "declare float @llvm.fmuladd.f32(float, float, float)\n"), bits(x), bits(-1.0f), rounded);
    expectResult(realProgram("call float @llvm.fma.f32(float %x, float %x, float %y)", "declare float @llvm.fma.f32(float, float, float)\n"), bits(x), bits(-1.0f), bits(std::fma(x, x, -1.0f)));
}

// ---- against the scalar program ----------------------------------------------------------------------------------------------

class Operation : public testing::TestWithParam<const char*>
{
};

/// Operands cover both signs, zeros, huge and tiny numbers.
void fillOperands(World& world)
{
    const float values[] = {0.0f, -0.0f, 1.0f, -1.5f, 2.5f, 3.5f, 1e-40f, 3e38f, 0.1f, -7.25f, 1e10f, 12345.678f, 0.5f, -0.5f, 8388609.0f, -2.0f};
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        world.attributes[0].f[lane] = values[lane];
        world.attributes[4].f[lane] = values[(lane * 7 + 3) % Lanes];
    }
}

TEST_P(Operation, HasTheBitsOfTheScalarOne)
{
    std::string text = realProgram(GetParam(), R"(
declare float @llvm.sqrt.f32(float)
declare float @llvm.floor.f32(float)
declare float @llvm.ceil.f32(float)
declare float @llvm.trunc.f32(float)
declare float @llvm.rint.f32(float)
declare float @llvm.round.f32(float)
declare float @llvm.fabs.f32(float)
declare float @llvm.copysign.f32(float, float)
)");
    World first;
    fillOperands(first);
    Results scalar = runScalar(text, Stage::Vertex, first);
    for (uint32_t lanes : Widths) {
        Results wide = runWide(text, Stage::Vertex, lanes, first);
        for (uint32_t lane = 0; lane < Lanes; ++lane) {
            if (std::isnan(scalar.real(0, lane))) EXPECT_TRUE(std::isnan(wide.real(0, lane)));
            else EXPECT_EQ(wide.words[0][lane], scalar.words[0][lane]) << lanes << " lanes, lane " << lane;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Operation,
                         testing::Values("fadd float %x, %y", "fsub float %x, %y", "fmul float %x, %y", "fdiv float %x, %y", "frem float %x, %y", "fneg float %x",
                                         "call float @llvm.sqrt.f32(float %x)", "call float @llvm.floor.f32(float %x)", "call float @llvm.ceil.f32(float %x)",
                                         "call float @llvm.trunc.f32(float %x)", "call float @llvm.rint.f32(float %x)", "call float @llvm.round.f32(float %x)",
                                         "call float @llvm.fabs.f32(float %x)", "call float @llvm.copysign.f32(float %x, float %y)", "sitofp i32 %a to float",
                                         "uitofp i32 %a to float"));

TEST(Arithmetic, DoublesAndHalvesKeepTheirPrecision)
{
    World world;
    fillOperands(world);
    std::string text = program(Begin + R"(
  %dx = fpext float %x to double
  %dy = fpext float %y to double
  %p = fmul double %dx, %dy
  %q = fadd double %p, %dx
  %r = fptrunc double %q to float
  %hx = fptrunc float %x to half
  %hy = fptrunc float %y to half
  %hs = fadd half %hx, %hy
  %hp = fmul half %hs, 0xH3555
  %h = fpext half %hp to float
  %nan = fcmp uno float %h, 0.0
  %s = select i1 %nan, float 0.0, float %h
  call void @softmetal_store_output(i32 0, float %r)
  call void @softmetal_store_output(i32 1, float %s)
  ret void
)");
    Results scalar = runScalar(text, Stage::Vertex, world);
    for (uint32_t lanes : Widths) {
        Results wide = runWide(text, Stage::Vertex, lanes, world);
        EXPECT_EQ(wide.words[0], scalar.words[0]);
        EXPECT_EQ(wide.words[1], scalar.words[1]);
    }
}

} // namespace
} // namespace widentest
