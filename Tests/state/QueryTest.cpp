// SPDX-License-Identifier: Apache-2.0
// Queries: strings, numbers, matrices, and the shader objects that do not exist.
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>

namespace
{

struct Query : ::testing::Test
{
    support::BareContext bare;
    ZALGLState& gl = bare.state();
};

const char* text(GLenum name)
{
    return reinterpret_cast<const char*>(glGetString(name));
}

// ---- Strings ----

TEST_F(Query, Kept_vendor_string)
{
    EXPECT_STREQ(text(GL_VENDOR), "ATI Technologies Inc.");
}

TEST_F(Query, ExtensionsAreTheFixedList)
{
    EXPECT_STREQ(text(GL_EXTENSIONS),
                 "GL_ARB_vertex_program GL_ARB_fragment_program GL_EXT_packed_depth_stencil GL_ARB_texture_rectangle "
                 "GL_ARB_texture_float GL_ARB_color_buffer_float GL_ARB_half_float_pixel GL_ARB_framebuffer_object "
                 "GL_ARB_draw_buffers GL_ARB_draw_buffers_blend GL_EXT_texture_filter_anisotropic");
}

TEST_F(Query, Kept_no_version_string)
{
    EXPECT_EQ(text(GL_RENDERER), nullptr);
    EXPECT_EQ(text(GL_VERSION), nullptr);
    EXPECT_EQ(text(0), nullptr);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Query, TheProgramErrorStringPointsIntoTheState)
{
    EXPECT_EQ(text(GL_PROGRAM_ERROR_STRING_ARB), gl.programErrorString);
    std::strcpy(gl.programErrorString, "line 1");
    EXPECT_STREQ(text(GL_PROGRAM_ERROR_STRING_ARB), "line 1");
}

TEST(QueryWithoutContext, TheConstantStringsAreThere)
{
    g_currentContext = nullptr;
    EXPECT_STREQ(text(GL_VENDOR), "ATI Technologies Inc.");
    EXPECT_EQ(std::strncmp(text(GL_EXTENSIONS), "GL_ARB_vertex_program ", 22), 0);
    EXPECT_EQ(text(GL_PROGRAM_ERROR_STRING_ARB), nullptr);
    EXPECT_EQ(text(GL_VERSION), nullptr);
}

// ---- Numbers ----

TEST_F(Query, IntegersByName)
{
    struct Row
    {
        GLenum name;
        GLint value;
    };
    gl.programErrorPosition = 42;
    for (Row row :
         {Row{GL_MODELVIEW_STACK_DEPTH, 1}, Row{GL_MAX_TEXTURE_SIZE, 16384}, Row{GL_MAX_3D_TEXTURE_SIZE, 2048},
          Row{GL_MAX_RENDERBUFFER_SIZE, 16384}, Row{GL_PROGRAM_ERROR_POSITION_ARB, 42}})
    {
        GLint values[2] = {-7, -7};
        glGetIntegerv(row.name, values);
        EXPECT_EQ(values[0], row.value) << row.name;
        EXPECT_EQ(values[1], -7) << row.name;
    }
}

TEST_F(Query, Kept_integer_query_silent)
{
    const std::set<GLenum> known = {0x0BA3, 0x0D33, 0x8073, 0x84E8, 0x864B};
    for (GLenum name = 0; name <= 0xFFFF; ++name) {
        if (known.count(name)) continue;
        GLint values[4] = {-7, -7, -7, -7};
        glGetIntegerv(name, values);
        ASSERT_EQ(std::count(values, values + 4, -7), 4) << name;
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Query, MaxViewportDimsAreNotKnown)
{
    GLint values[2] = {-7, -7};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, values);
    EXPECT_EQ(values[0], -7);
    EXPECT_EQ(values[1], -7);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Query, TheModelviewDepthCountsEntries)
{
    GLint depth = 0;
    glPushMatrix();
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 2);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 2);
}

TEST_F(Query, AnisotropyIsTheOnlyFloat)
{
    GLfloat value = -7;
    glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &value);
    EXPECT_EQ(value, 16.0f);
    value = -7;
    for (GLenum name = 0; name <= 0xFFFF; ++name) {
        if (name == GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT) continue;
        glGetFloatv(name, &value);
        ASSERT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << name;
        ASSERT_EQ(value, -7) << name;
    }
}

TEST_F(Query, LineWidthIsNotAFloat)
{
    GLfloat value = -7;
    glGetFloatv(GL_LINE_WIDTH, &value);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
    EXPECT_EQ(value, -7);
}

TEST_F(Query, ViewportReadsBackAsDoubles)
{
    GLdouble values[5] = {0, 0, 0, 0, -7};
    glViewport(-1, 2, 300, -400);
    glGetDoublev(GL_VIEWPORT, values);
    EXPECT_EQ(values[0], -1);
    EXPECT_EQ(values[1], 2);
    EXPECT_EQ(values[2], 300);
    EXPECT_EQ(values[3], -400);
    EXPECT_EQ(values[4], -7);
}

TEST_F(Query, MatricesReadTheTopOfTheirStacks)
{
    // Every stack has two entries; element 4 (row 0, column 1) of the top names the stack.
    for (int stack = 0; stack < 6; ++stack) {
        gl.matrixStacks[stack].depth = 1;
        gl.matrixStacks[stack].entries[1][4] = static_cast<float>(stack) + 0.1f;
    }
    GLdouble values[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, values);
    EXPECT_EQ(values[4], static_cast<double>(0.1f));
    glGetDoublev(GL_PROJECTION_MATRIX, values);
    EXPECT_EQ(values[4], static_cast<double>(1.1f));
    for (GLuint stack = 0; stack < 6; ++stack) {
        gl.matrixMode = stack;
        glGetDoublev(GL_CURRENT_MATRIX_ARB, values);
        EXPECT_EQ(values[4], static_cast<double>(static_cast<float>(stack) + 0.1f));
    }
}

TEST_F(Query, TheCurrentMatrixOfATextureUnit)
{
    glActiveTextureARB(GL_TEXTURE2);
    glMatrixMode(GL_TEXTURE);
    const GLfloat fives[16] = {5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5, 5};
    glLoadMatrixf(fives);
    GLdouble values[16] = {};
    glGetDoublev(GL_CURRENT_MATRIX_ARB, values);
    EXPECT_EQ(std::count(values, values + 16, 5.0), 16);
    EXPECT_EQ(gl.matrixStacks[4].entries[0][0], 5.0f);
}

TEST_F(Query, OtherDoublesAreInvalidEnums)
{
    const std::set<GLenum> known = {GL_VIEWPORT, GL_MODELVIEW_MATRIX, GL_PROJECTION_MATRIX, GL_CURRENT_MATRIX_ARB};
    GLdouble values[16] = {-7};
    for (GLenum name = 0; name <= 0xFFFF; ++name) {
        if (known.count(name)) continue;
        glGetDoublev(name, values);
        ASSERT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << name;
        ASSERT_EQ(values[0], -7) << name;
    }
}

TEST_F(Query, TheTextureMatrixHasNoNameOfItsOwn)
{
    GLdouble values[16] = {-7};
    glGetDoublev(GL_TEXTURE_MATRIX, values);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
    EXPECT_EQ(values[0], -7);
}

// ---- Shader objects ----

uintptr_t number(GLhandleARB handle)
{
    return (uintptr_t)handle;
}

TEST_F(Query, Kept_shader_objects_pretend)
{
    EXPECT_EQ(number(glCreateShaderObjectARB(GL_VERTEX_SHADER_ARB)), 1u);
    EXPECT_EQ(number(glCreateShaderObjectARB(0)), 1u);
    EXPECT_EQ(number(glCreateProgramObjectARB()), 1u);
    GLint status[2] = {-7, -7};
    glGetObjectParameterivARB({}, GL_OBJECT_COMPILE_STATUS_ARB, &status[0]);
    glGetObjectParameterivARB({}, GL_OBJECT_LINK_STATUS_ARB, &status[1]);
    EXPECT_EQ(status[0], 1);
    EXPECT_EQ(status[1], 1);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Query, StrictValidationShowsThatShaderObjectsFail)
{
    gl.strictValidation = 1;
    EXPECT_EQ(number(glCreateShaderObjectARB(GL_FRAGMENT_SHADER_ARB)), 0u);
    EXPECT_EQ(number(glCreateProgramObjectARB()), 0u);
    GLint status[2] = {-7, -7};
    glGetObjectParameterivARB({}, GL_OBJECT_COMPILE_STATUS_ARB, &status[0]);
    glGetObjectParameterivARB({}, GL_OBJECT_LINK_STATUS_ARB, &status[1]);
    EXPECT_EQ(status[0], 0);
    EXPECT_EQ(status[1], 0);
}

TEST_F(Query, OtherObjectParametersAreInvalidOperations)
{
    for (GLenum name = 0; name <= 0xFFFF; ++name) {
        if (name == 0x8B81 || name == 0x8B82) continue;
        GLint value = -7;
        glGetObjectParameterivARB({}, name, &value);
        ASSERT_EQ(glGetError(), GLenum(GL_INVALID_OPERATION)) << name;
        ASSERT_EQ(value, -7) << name;
    }
}

TEST_F(Query, TheInfoLogSaysWhatIsMissing)
{
    GLcharARB log[64] = {};
    GLsizei length = 0;
    glGetInfoLogARB({}, sizeof log, &length, log);
    EXPECT_STREQ(log, "Limitation: GLSL is not supported");
    EXPECT_EQ(length, 33);
}

TEST_F(Query, Kept_info_log_full_length)
{
    GLcharARB log[16];
    std::memset(log, '#', sizeof log);
    GLsizei length = 0;
    glGetInfoLogARB({}, 10, &length, log);
    EXPECT_EQ(std::memcmp(log, "Limitatio\0######", 16), 0);
    EXPECT_EQ(length, 33);
}

TEST_F(Query, TheInfoLogWritesNothingWhereItMayNot)
{
    GLcharARB log[4] = {'#', '#', '#', '#'};
    glGetInfoLogARB({}, 0, nullptr, log);
    glGetInfoLogARB({}, -1, nullptr, log);
    glGetInfoLogARB({}, 0, nullptr, nullptr);
    EXPECT_EQ(log[0], '#');
    glGetInfoLogARB({}, 1, nullptr, log);
    EXPECT_EQ(log[0], '\0');
    EXPECT_EQ(log[1], '#');
}

TEST_F(Query, Kept_uniform_location_zero)
{
    EXPECT_EQ(glGetUniformLocationARB({}, "anything"), 0);
}

TEST(QueryWithoutContext, InfoLogAndUniformLocationNeedNone)
{
    g_currentContext = nullptr;
    GLcharARB log[64] = {};
    glGetInfoLogARB({}, sizeof log, nullptr, log);
    EXPECT_STREQ(log, "Limitation: GLSL is not supported");
    EXPECT_EQ(glGetUniformLocationARB({}, "anything"), 0);
}

} // namespace
