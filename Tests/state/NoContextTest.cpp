// SPDX-License-Identifier: Apache-2.0
// Without a current context every entry point returns early, and queries write nothing.
#include "ZALGLState.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace
{

struct NoContext : ::testing::Test
{
    void SetUp() override { g_currentContext = nullptr; }
};

TEST_F(NoContext, ErrorsAndSynchronisation)
{
    glFlush();
    glFinish();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(NoContext, SettersReturn)
{
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    glBlendColor(0, 0, 0, 0);
    glBlendEquation(0);
    glBlendFunc(0, 0);
    glBlendEquationiARB(8, 0);
    glBlendFunciARB(8, 0, 0);
    glClearColor(0, 0, 0, 0);
    glClearDepth(0);
    glClearStencil(0);
    glColorMask(0, 0, 0, 0);
    glCullFace(0);
    glDepthFunc(0);
    glDepthFunc(GL_LESS);
    glDepthMask(0);
    glStencilFunc(0, 0, 0);
    glStencilMask(0);
    glStencilOp(0, 0, 0);
    glPolygonMode(0, GL_POINT);
    glPolygonOffset(0, 0);
    glViewport(0, 0, 0, 0);
    glPixelStorei(0, 0);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(NoContext, ArraySettersReturn)
{
    glEnableClientState(0);
    glEnableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glEnableVertexAttribArrayARB(16);
    glDisableVertexAttribArrayARB(0);
    glVertexAttribPointerARB(0, 3, GL_FLOAT, 0, 0, nullptr);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(NoContext, MatrixCallsReturn)
{
    const GLfloat f[16] = {};
    const GLdouble d[16] = {};
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glLoadMatrixf(f);
    glLoadMatrixd(d);
    glMultMatrixf(f);
    glMultMatrixd(d);
    glOrtho(0, 1, 0, 1, 0, 1);
    glFrustum(0, 1, 0, 1, 1, 2);
    glPushMatrix();
    glPopMatrix();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(NoContext, QueriesWriteNothing)
{
    GLint integer = -7;
    GLfloat number = -7;
    GLdouble numbers[16] = {-7, -7, -7, -7};
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &integer);
    glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &number);
    glGetDoublev(GL_VIEWPORT, numbers);
    glGetObjectParameterivARB({}, GL_OBJECT_LINK_STATUS_ARB, &integer);
    EXPECT_EQ(integer, -7);
    EXPECT_EQ(number, -7);
    EXPECT_EQ(std::count(numbers, numbers + 4, -7.0), 4);
    EXPECT_EQ((uintptr_t)glCreateShaderObjectARB(GL_VERTEX_SHADER_ARB), 0u);
    EXPECT_EQ((uintptr_t)glCreateProgramObjectARB(), 0u);
}

TEST_F(NoContext, NamesAreNeitherMadeNorDeleted)
{
    for (auto generate : {glGenBuffers, glGenFramebuffers, glGenProgramsARB, glGenTextures}) {
        GLuint name = 0xDEAD;
        generate(1, &name);
        EXPECT_EQ(name, 0xDEADu);
    }
    const GLuint name = 1;
    for (auto remove : {glDeleteBuffers, glDeleteFramebuffers, glDeleteProgramsARB, glDeleteTextures})
        remove(1, &name);
}

} // namespace
