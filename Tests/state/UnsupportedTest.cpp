// SPDX-License-Identifier: Apache-2.0
// The entry points that exist only to link: each is called here, with and without a context, and changes nothing.
#include "ZALGLBeginEnd.h"
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>

namespace
{

struct Call
{
    const char* name;
    void (*make)();
};

constexpr Call Calls[] = {
    {"glClientActiveTextureARB", [] { glClientActiveTextureARB(GL_TEXTURE1); }},
    {"glMultiTexCoord4fvARB", [] { glMultiTexCoord4fvARB(GL_TEXTURE0, nullptr); }},
    {"glAlphaFunc", [] { glAlphaFunc(GL_GREATER, 0.5f); }},
    {"glBitmap", [] { glBitmap(8, 8, 0, 0, 0, 0, nullptr); }},
    {"glCallLists", [] { glCallLists(1, GL_UNSIGNED_BYTE, nullptr); }},
    {"glColorPointer", [] { glColorPointer(4, GL_FLOAT, 0, nullptr); }},
    {"glDeleteLists", [] { glDeleteLists(1, 1); }},
    {"glLineStipple", [] { glLineStipple(1, 0xFF); }},
    {"glLineWidth", [] { glLineWidth(-1); }},
    {"glListBase", [] { glListBase(1); }},
    {"glNormalPointer", [] { glNormalPointer(GL_FLOAT, 0, nullptr); }},
    {"glPointSize", [] { glPointSize(-1); }},
    {"glPolygonStipple", [] { glPolygonStipple(nullptr); }},
    {"glPopAttrib", [] { glPopAttrib(); }},
    {"glPopClientAttrib", [] { glPopClientAttrib(); }},
    {"glPushAttrib", [] { glPushAttrib(0xFFFFFFFF); }},
    {"glPushClientAttrib", [] { glPushClientAttrib(0xFFFFFFFF); }},
    {"glRasterPos4fv", [] { glRasterPos4fv(nullptr); }},
    {"glScissor", [] { glScissor(0, 0, -1, -1); }},
    {"glSecondaryColorPointer", [] { glSecondaryColorPointer(3, GL_FLOAT, 0, nullptr); }},
    {"glTexCoord4fv", [] { glTexCoord4fv(nullptr); }},
    {"glTexCoordPointer", [] { glTexCoordPointer(2, GL_FLOAT, 0, nullptr); }},
    {"glVertex2f", [] { glVertex2f(0, 0); }},
    {"glVertex2i", [] { glVertex2i(0, 0); }},
    {"glVertex3fv", [] { glVertex3fv(nullptr); }},
    {"glDeleteObjectARB", [] { glDeleteObjectARB({}); }},
    {"glDetachObjectARB", [] { glDetachObjectARB({}, {}); }},
    {"glShaderSourceARB", [] { glShaderSourceARB({}, 1, nullptr, nullptr); }},
    {"glCompileShaderARB", [] { glCompileShaderARB({}); }},
    {"glAttachObjectARB", [] { glAttachObjectARB({}, {}); }},
    {"glLinkProgramARB", [] { glLinkProgramARB({}); }},
    {"glUseProgramObjectARB", [] { glUseProgramObjectARB({}); }},
    {"glValidateProgramARB", [] { glValidateProgramARB({}); }},
    {"glProgramParameteriEXT", [] { glProgramParameteriEXT(1, 2, 3); }},
    {"glUniform1iARB", [] { glUniform1iARB(0, 1); }},
    {"glUniform1fvARB", [] { glUniform1fvARB(0, 1, nullptr); }},
    {"glUniform3fvARB", [] { glUniform3fvARB(0, 1, nullptr); }},
    {"glUniform4fvARB", [] { glUniform4fvARB(0, 1, nullptr); }},
    {"glUniformMatrix4fvARB", [] { glUniformMatrix4fvARB(0, 1, GL_TRUE, nullptr); }},
    {"glCompressedTexImage2DARB", [] { glCompressedTexImage2DARB(GL_TEXTURE_2D, 0, 0, 4, 4, 0, 8, nullptr); }},
    {"glCompressedTexImage1DARB", [] { glCompressedTexImage1DARB(GL_TEXTURE_1D, 0, 0, 4, 0, 8, nullptr); }},
    {"glCompressedTexSubImage3DARB",
     [] { glCompressedTexSubImage3DARB(GL_TEXTURE_3D, 0, 0, 0, 0, 4, 4, 4, 0, 8, nullptr); }},
    {"glCompressedTexSubImage2DARB", [] { glCompressedTexSubImage2DARB(GL_TEXTURE_2D, 0, 0, 0, 4, 4, 0, 8, nullptr); }},
    {"glCompressedTexSubImage1DARB", [] { glCompressedTexSubImage1DARB(GL_TEXTURE_1D, 0, 0, 4, 0, 8, nullptr); }},
    {"glGetCompressedTexImageARB", [] { glGetCompressedTexImageARB(GL_TEXTURE_2D, 0, nullptr); }},
};
static_assert(std::size(Calls) == 45, "all of them");

struct Unsupported : ::testing::TestWithParam<Call>
{};

INSTANTIATE_TEST_SUITE_P(All, Unsupported, ::testing::ValuesIn(Calls),
                         [](const auto& row) { return std::string(row.param.name); });

TEST_P(Unsupported, ChangesNothingAndRaisesNothing)
{
    support::BareContext bare;
    support::StateSnapshot before(bare.state());
    GetParam().make();
    EXPECT_TRUE(before.unchanged());
}

TEST_P(Unsupported, NeedsNoContext)
{
    g_currentContext = nullptr;
    GetParam().make();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST(Scissor, Kept_no_scissor_test)
{
    support::BareContext bare;
    support::StateSnapshot before(bare.state());
    glScissor(1, 2, 3, 4);
    glEnable(GL_SCISSOR_TEST);
    EXPECT_TRUE(before.unchanged());
}

TEST(ImmediateMode, Kept_immediate_vertices_ignored)
{
    support::BareContext bare;
    glBegin(GL_LINES);
    const ZALGLBeginEnd before = *bare.state().beginEnd;
    const GLfloat position[3] = {1, 2, 3};
    glVertex2f(1, 2);
    glVertex2i(1, 2);
    glVertex3fv(position);
    EXPECT_EQ(std::memcmp(&before, bare.state().beginEnd, sizeof before), 0);
    EXPECT_EQ(bare.state().beginEnd->vertexCount, 0);
}

} // namespace
