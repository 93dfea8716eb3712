// SPDX-License-Identifier: Apache-2.0
// Local parameters.
#include "programs/Programs.h"

namespace {

using Local = programs::ProgramTest;

TEST_F(Local, AreStoredInTheBoundProgram)
{
    const float floats[4] = {1, -2, 3.5f, 1e30f};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 255, floats);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_TRUE(std::equal(floats, floats + 4, fragment().locals[255]));
    EXPECT_EQ(program(GL_VERTEX_PROGRAM_ARB).locals[255][0], 0);
}

TEST_F(Local, DoublesAreRounded)
{
    const double doubles[4] = {0.1, 1e300, -0.1, 2};
    glProgramLocalParameter4dvARB(GL_VERTEX_PROGRAM_ARB, 0, doubles);
    EXPECT_EQ(program(GL_VERTEX_PROGRAM_ARB).locals[0][0], 0.1f);
    EXPECT_EQ(program(GL_VERTEX_PROGRAM_ARB).locals[0][1], HUGE_VALF);
}

TEST_F(Local, TheTwoHundredFiftySeventhDoesNotExist)
{
    const float floats[4] = {1, 2, 3, 4};
    for (GLuint index : {256u, 0xFFFFFFFFu}) {
        glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, index, floats);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
    }
    glProgramLocalParameter4fvARB(GL_TEXTURE_2D, 256, floats);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_VALUE));
}

TEST_F(Local, NeedABoundProgram)
{
    const float floats[4] = {1, 2, 3, 4};
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 0);
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, floats);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programNames[1]);
    glDeleteProgramsARB(1, &programNames[1]);
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, floats);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_OPERATION));
}

TEST_F(Local, OutliveANewProgramText)
{
    const float floats[4] = {1, 0, 0, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, floats);
    load(GL_VERTEX_PROGRAM_ARB, programs::PassVertex);
    load(GL_FRAGMENT_PROGRAM_ARB, programs::PlainFragment);
    setUpTriangle();
    draw();
    EXPECT_EQ(pixel(), "255 0 0 255");
}

} // namespace
