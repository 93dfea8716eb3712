// SPDX-License-Identifier: Apache-2.0
// The host's call: buffers, sizes, results.
#include "normaliser/Normalise.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr const char* Program = "!!ARBfp1.0\nMOV result.color, 1;\nEND";
constexpr const char* Wanted = "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n";
constexpr size_t Enough = 256;

TEST(NormaliseCall, WritesTheProgramWithAZeroBehindIt)
{
    char out[Enough];
    std::memset(out, '?', sizeof out);
    size_t needed = 0;
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, std::strlen(Program), out, sizeof out, &needed, nullptr, 0), 0);
    EXPECT_STREQ(out, Wanted);
    EXPECT_EQ(needed, std::strlen(Wanted) + 1);
}

TEST(NormaliseCall, ReadsNoFurtherThanTheLength)
{
    const std::string text = std::string(Program) + "garbage";
    EXPECT_EQ(normaliser::rewrite(text.substr(0, std::strlen(Program))).program, Wanted);
}

TEST(NormaliseCall, AsksForTheSizeWithoutABuffer)
{
    size_t needed = 0;
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, std::strlen(Program), nullptr, 0, &needed, nullptr, 0),
              ZALMetalResultBufferTooSmall);
    EXPECT_EQ(needed, std::strlen(Wanted) + 1);
}

TEST(NormaliseCall, LeavesABufferAloneThatIsOneByteTooSmall)
{
    char out[Enough] = "untouched";
    size_t needed = 0;
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, std::strlen(Program), out, std::strlen(Wanted), &needed, nullptr, 0),
              ZALMetalResultBufferTooSmall);
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, std::strlen(Program), out, needed, nullptr, nullptr, 0), 0);
}

TEST(NormaliseCall, CutsTheMessageToItsRoom)
{
    const char* broken = "!!ARBfp1.0\nARL a;\nEND";
    char out[Enough] = "untouched";
    char message[10];
    size_t needed = 7;
    EXPECT_EQ(ZALMetalNormaliseProgram(broken, std::strlen(broken), out, sizeof out, &needed, message, sizeof message),
              ZALMetalResultNotExpressible);
    EXPECT_STREQ(message, "2:1: erro");
    EXPECT_STREQ(out, "untouched");
    EXPECT_EQ(needed, 0u);
}

TEST(NormaliseCall, EmptiesTheMessageOnSuccess)
{
    char out[Enough];
    char message[Enough] = "old";
    EXPECT_EQ(
        ZALMetalNormaliseProgram(Program, std::strlen(Program), out, sizeof out, nullptr, message, sizeof message), 0);
    EXPECT_STREQ(message, "");
}

TEST(NormaliseCall, RefusesMissingPointers)
{
    char out[Enough];
    EXPECT_EQ(ZALMetalNormaliseProgram(nullptr, 3, out, sizeof out, nullptr, nullptr, 0),
              ZALMetalResultInvalidArgument);
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, 3, nullptr, 5, nullptr, nullptr, 0), ZALMetalResultInvalidArgument);
    EXPECT_EQ(ZALMetalNormaliseProgram(Program, 3, out, sizeof out, nullptr, nullptr, 5),
              ZALMetalResultInvalidArgument);
}

TEST(NormaliseCall, NeedsNoContext)
{
    EXPECT_EQ(ZALMetalContextGetCurrent(), nullptr);
    EXPECT_EQ(normaliser::rewrite(Program).status, 0);
}

TEST(NormaliseCall, TakesProgramsWithZerosInThem)
{
    const std::string text("!!ARBfp1.0\nMOV result\0.color, 1;\nEND", 36);
    EXPECT_EQ(normaliser::rewrite(text).status, ZALMetalResultNotExpressible);
}

// About a second's work in a cost that grows with the length; one that grew with its square would outlast the test's
// time.
TEST(NormaliseCall, AVeryLongProgramIsRewrittenInItsLength)
{
    constexpr int Statements = 200000;
    std::string program = "!!ARBfp1.0\nTEMP a, b;\n";
    for (int i = 0; i < Statements; ++i)
        program += "MAD a.x, {" + std::to_string(i) + "}, b, program.env[" + std::to_string(i % 128) + "];\n";
    EXPECT_EQ(normaliser::rewrite(program + "END").status, 0);
}

} // namespace
