// SPDX-License-Identifier: Apache-2.0
// What a host reads after a program was refused, and that the library goes on.
#include "contexts/Logged.h"
#include "programs/Programs.h"

namespace {

using namespace programs;

constexpr const char* Uncompilable = "!!ARBfp1.0\nTEMP R0;\nLOG R0, R0.x;\nMOV result.color, R0;\nEND\n";

using ErrorString = ProgramTest;

TEST_F(ErrorString, HoldsTheMessageASeparatorAndTheSource)
{
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, Uncompilable), static_cast<GLenum>(GL_INVALID_OPERATION));
    std::string text = errorString();
    size_t cut = text.find("\n\n--------\n\n");
    ASSERT_NE(cut, std::string::npos) << text;
    EXPECT_NE(text.substr(0, cut).find("error: "), std::string::npos) << text;
    EXPECT_EQ(text.compare(cut + 12, 24, "#include <simd/simd.h>\n#"), 0) << text;
    EXPECT_EQ(text.size(), 2047u);
    EXPECT_FALSE(fragment().IsValid());
}

TEST_F(ErrorString, IsEmptyAgainAfterAProgramThatCompiles)
{
    EXPECT_EQ(errorPosition(), -1);
    load(GL_FRAGMENT_PROGRAM_ARB, Uncompilable);
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(errorString(), "");
    EXPECT_EQ(errorPosition(), -1);
}

TEST_F(ErrorString, DrawingWithSuchAProgramIsAnErrorAndTheNextOneDraws)
{
    load(GL_VERTEX_PROGRAM_ARB, PassVertex);
    load(GL_FRAGMENT_PROGRAM_ARB, Uncompilable);
    setUpTriangle();
    draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
    EXPECT_EQ(pixel(), "0 0 0 0");
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n"), static_cast<GLenum>(GL_NO_ERROR));
    draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(pixel(), "255 255 255 255");
}

TEST_F(ErrorString, ATextThatDoesNotTranslateIsLoggedWithItsLine)
{
    contexts::Logged lines;
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nTEMP R0;\nADD R0, R0;\nEND\n"), static_cast<GLenum>(GL_INVALID_OPERATION));
    EXPECT_EQ(lines.take(), std::vector<std::string>{"ZAL Metal, a program cannot be translated, line 3: ADD R0, R0"});
}

TEST_F(ErrorString, WithoutMemoryForTheLibraryNothingIsLeft)
{
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    SoftMetal::injectFault("newLibrary", 1, false);
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_INVALID_OPERATION));
    SoftMetal::clearFaults();
    EXPECT_FALSE(fragment().IsValid()); // the old library is gone by then
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
}

} // namespace
