// SPDX-License-Identifier: Apache-2.0
// Binding, loading and deleting program objects, and what each refuses.
#include "programs/Programs.h"

#include <functional>

namespace {

using namespace programs;

using Program = ProgramTest;

TEST_F(Program, BindingReplacesTheNameAndEndsThePass)
{
    GLuint other = 0;
    glGenProgramsARB(1, &other);
    commands().getOrCreateCommandEncoder(&gl());
    clearLog();
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programNames[0]); // bound already
    EXPECT_EQ(count("endEncoding"), 0u);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, other);
    EXPECT_EQ(count("endEncoding"), 1u);
    EXPECT_EQ(gl().pipelineDescription.boundProgramVertex, other);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 0);
    EXPECT_EQ(gl().pipelineDescription.boundProgramFragment, 0u);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Program, BindingDoesNotCreateObjects)
{
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 99);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
    EXPECT_EQ(gl().pipelineDescription.boundProgramVertex, programNames[0]);
}

TEST_F(Program, BadTargetsAreInvalidValue)
{
    const float zeros[4] = {};
    const double doubles[4] = {};
    const std::function<void()> calls[] = {
        [&] { glBindProgramARB(GL_TEXTURE_2D, programNames[0]); },
        [&] { glProgramStringARB(GL_TEXTURE_2D, GL_PROGRAM_FORMAT_ASCII_ARB, 4, "text"); },
        [&] { glProgramLocalParameter4fvARB(GL_TEXTURE_2D, 0, zeros); },
        [&] { glProgramLocalParameter4dvARB(GL_TEXTURE_2D, 0, doubles); },
        [&] { EXPECT_EQ(getBoundProgram(&gl(), GL_TEXTURE_2D), nullptr); },
    };
    for (const auto& call : calls) {
        call();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
    }
}

TEST_F(Program, WithoutABoundOneThereIsNothingToLoad)
{
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 0);
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_INVALID_OPERATION));
}

TEST_F(Program, ABadFormatChangesNothing)
{
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, TexturedFragment), static_cast<GLenum>(GL_NO_ERROR));
    MTL::Library* library = fragment().library;
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment, 0x8876), static_cast<GLenum>(GL_INVALID_VALUE));
    EXPECT_EQ(fragment().library, library);
    EXPECT_EQ(fragment().bindings.textureUnitMask, 1u);
}

TEST_F(Program, LoadingRecordsWhatTheProgramUses)
{
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, TexturedFragment), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_TRUE(fragment().IsValid());
    EXPECT_EQ(fragment().type, static_cast<GLenum>(GL_FRAGMENT_PROGRAM_ARB));
    EXPECT_EQ(fragment().bindings.textureUnitMask, 1u);
    EXPECT_EQ(fragment().bindings.textureTargets[0], static_cast<uint32_t>(GL_TEXTURE_2D));
    EXPECT_EQ(fragment().bindings.colorMask, 1u);
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(fragment().bindings.textureUnitMask, 0u);
}

TEST_F(Program, TheLengthCountsNotTheTerminator)
{
    std::string text = std::string(PlainFragment) + "rubbish";
    glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(PlainFragment)), text.data());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Program, ATextThatDoesNotTranslateKeepsTheOldLibrary)
{
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    MTL::Library* library = fragment().library;
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nADD R0, R1;\nEND\n"), static_cast<GLenum>(GL_INVALID_OPERATION));
    EXPECT_EQ(fragment().library, library);
    EXPECT_TRUE(fragment().IsValid());
}

/// Kept: deleting does not unbind, so that draws find no program.
TEST_F(Program, DeletingABoundOneKeepsItsNameBound)
{
    ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, PassVertex), static_cast<GLenum>(GL_NO_ERROR));
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    setUpTriangle();
    draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteProgramsARB(1, &programNames[1]);
    EXPECT_EQ(gl().pipelineDescription.boundProgramFragment, programNames[1]);
    EXPECT_EQ(getBoundProgram(&gl(), GL_FRAGMENT_PROGRAM_ARB), nullptr);
    draw();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_INVALID_OPERATION));
}

/// Pipelines are found by the program's name, and only deleting it drops them.
TEST_F(Program, Kept_reload_keeps_pipeline)
{
    load(GL_VERTEX_PROGRAM_ARB, PassVertex);
    load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n");
    setUpTriangle();
    draw();
    load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 0.0;\nEND\n");
    draw();
    EXPECT_EQ(pixel(), "255 255 255 255");
    glEnable(GL_BLEND); // another pipeline, with the new function
    draw();
    EXPECT_EQ(pixel(), "0 0 0 0");
}

TEST_F(Program, DeletingReleasesLibraryAndFunctions)
{
    int64_t libraries = SoftMetal::objectsAlive("MTL::Library"), functions = SoftMetal::objectsAlive("MTL::Function");
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    fragment().GetFragmentMTLFunction({});
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Library"), libraries + 1);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Function"), functions + 1);
    glDeleteProgramsARB(0, programNames);
    glDeleteProgramsARB(-1, programNames);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Library"), libraries + 1);
    glDeleteProgramsARB(2, programNames);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Library"), libraries);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Function"), functions);
}

TEST_F(Program, WithoutAContextCallsReturn)
{
    ZALMetalContextMakeCurrent(nullptr);
    const float zeros[4] = {};
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programNames[0]);
    glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, 4, "text");
    glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, 0, zeros);
    glDeleteProgramsARB(1, programNames);
    ZALMetalContextMakeCurrent(context);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_NE(getBoundProgram(&gl(), GL_VERTEX_PROGRAM_ARB), nullptr);
}

} // namespace
