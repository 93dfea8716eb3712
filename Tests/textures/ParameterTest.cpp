// SPDX-License-Identifier: Apache-2.0
// Texture parameters and the questions about them.
#include "textures/TextureFixture.h"

namespace textures
{

class Parameter : public Textures
{
protected:
    void SetUp() override
    {
        Textures::SetUp();
        if (HasFatalFailure()) return;
        name = bindNew(GL_TEXTURE_2D);
    }
    GLint stored(GLenum pname)
    {
        GLint value = -1;
        glGetTexParameteriv(GL_TEXTURE_2D, pname, &value);
        return value;
    }
    MTL::SamplerBorderColor classOf(float r, float g, float b, float a)
    {
        const float colour[4] = {r, g, b, a};
        glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, colour);
        return object(name).borderColorClass;
    }

    GLuint name = 0;
};

constexpr GLenum IntegerNames[] = {GL_TEXTURE_MAG_FILTER, GL_TEXTURE_MIN_FILTER, GL_TEXTURE_WRAP_S,
                                   GL_TEXTURE_WRAP_T,     GL_TEXTURE_WRAP_R,     GL_TEXTURE_BASE_LEVEL};

TEST_F(Parameter, IntegersAreStoredUncheckedAndGivenBack)
{
    GLint value = 100;
    for (GLenum pname : IntegerNames) glTexParameteri(GL_TEXTURE_2D, pname, value++);
    value = 100;
    for (GLenum pname : IntegerNames) EXPECT_EQ(stored(pname), value++);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    const ZALGLTextureObject& t = object(name);
    EXPECT_EQ(t.magFilter, 100u);
    EXPECT_EQ(t.minFilter, 101u);
    EXPECT_EQ(t.wrapS, 102u);
    EXPECT_EQ(t.wrapT, 103u);
    EXPECT_EQ(t.wrapR, 104u);
    EXPECT_EQ(t.baseLevel, 105u);
}

TEST_F(Parameter, DepthComparisonIsAcceptedAndIgnored)
{
    ZALGLTextureObject& t = object(name);
    const GLenum before[] = {t.magFilter, t.minFilter, t.wrapS, t.wrapT, t.wrapR, t.baseLevel};
    for (GLenum pname : {GL_DEPTH_TEXTURE_MODE, GL_TEXTURE_COMPARE_MODE, GL_TEXTURE_COMPARE_FUNC}) {
        glTexParameteri(GL_TEXTURE_2D, pname, GL_LEQUAL);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        GLint value = 7;
        glGetTexParameteriv(GL_TEXTURE_2D, pname, &value);
        EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
        EXPECT_EQ(value, 7);
    }
    const GLenum after[] = {t.magFilter, t.minFilter, t.wrapS, t.wrapT, t.wrapR, t.baseLevel};
    EXPECT_TRUE(std::equal(std::begin(before), std::end(before), after));
}

TEST_F(Parameter, Kept_texture_parameter_error)
{
    GLfloat colour[4] = {1, 2, 3, 4};
    GLint integer = 7;
    const auto refused = [](auto call) {
        call();
        EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    };
    for (GLenum pname : {GLenum{0}, GLenum{GL_TEXTURE_MAX_LEVEL}, GLenum{GL_GENERATE_MIPMAP}}) {
        refused([&] { glTexParameteri(GL_TEXTURE_2D, pname, 1); });
        refused([&] { glTexParameterf(GL_TEXTURE_2D, pname, 1); });
        refused([&] { glTexParameterfv(GL_TEXTURE_2D, pname, colour); });
        refused([&] { glGetTexParameteriv(GL_TEXTURE_2D, pname, &integer); });
        refused([&] { glGetTexParameterfv(GL_TEXTURE_2D, pname, colour); });
        refused([&] { glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, pname, &integer); });
    }
    EXPECT_EQ(integer, 7);
    EXPECT_EQ(colour[0], 1);
}

TEST_F(Parameter, Kept_texture_parameter_types)
{
    const GLfloat colour[4] = {1, 1, 1, 1};
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, 4);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, colour);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    for (GLenum pname : IntegerNames) {
        glTexParameterf(GL_TEXTURE_2D, pname, 1);
        EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    }
    EXPECT_EQ(object(name).maxAnisotropy, 1);
    EXPECT_EQ(object(name).wrapS, GLenum{GL_REPEAT});
}

TEST_F(Parameter, AnisotropyIsAFloat)
{
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, 2.5f);
    GLfloat value[2] = {0, 9};
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, value);
    EXPECT_EQ(value[0], 2.5f);
    EXPECT_EQ(value[1], 9);
}

TEST_F(Parameter, TheBorderColorIsGivenBackAsItCame)
{
    GLfloat colour[4] = {9, 9, 9, 9};
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, colour);
    EXPECT_EQ((Rgba{colour[0], colour[1], colour[2], colour[3]}), (Rgba{0, 0, 0, 0})); // at the start
    classOf(0.25f, -1, 3, 0.5f);
    glGetTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, colour);
    EXPECT_EQ((Rgba{colour[0], colour[1], colour[2], colour[3]}), (Rgba{0.25f, -1, 3, 0.5f}));
}

TEST_F(Parameter, Kept_border_colour_class)
{
    EXPECT_EQ(object(name).borderColorClass, MTL::SamplerBorderColorTransparentBlack);
    EXPECT_EQ(classOf(1, 1, 1, 1), MTL::SamplerBorderColorOpaqueWhite);
    EXPECT_EQ(classOf(0, 0, 0, 0), MTL::SamplerBorderColorTransparentBlack);
    EXPECT_EQ(classOf(0, 0, 0, 1), MTL::SamplerBorderColorOpaqueBlack);
    EXPECT_EQ(classOf(0, 0, 0, 0.5f), MTL::SamplerBorderColorOpaqueBlack);
    EXPECT_EQ(classOf(1, 1, 1, 0), MTL::SamplerBorderColorOpaqueBlack);
    EXPECT_EQ(classOf(1, 0, 0, 1), MTL::SamplerBorderColorOpaqueBlack);
}

TEST_F(Parameter, WithoutATextureNothingHappens)
{
    glActiveTextureARB(GL_TEXTURE0 + 1);
    GLint value = 7;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, 1);
    glTexParameteri(GL_TEXTURE_2D, 0, 1); // the name is not looked at either
    glGetTexParameteriv(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, &value);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    EXPECT_EQ(value, 7);
}

TEST_F(Parameter, AnUnknownTargetIsAnInvalidEnum)
{
    GLfloat values[4] = {};
    GLint value = 0;
    const auto refused = [](auto call) {
        call();
        EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    };
    constexpr GLenum None = GL_TEXTURE_CUBE_MAP_POSITIVE_X; // a face has no parameters
    refused([&] { glTexParameteri(None, GL_TEXTURE_WRAP_S, 1); });
    refused([&] { glTexParameterf(None, GL_TEXTURE_MAX_ANISOTROPY_EXT, 1); });
    refused([&] { glTexParameterfv(None, GL_TEXTURE_BORDER_COLOR, values); });
    refused([&] { glGetTexParameteriv(None, GL_TEXTURE_WRAP_S, &value); });
    refused([&] { glGetTexParameterfv(None, GL_TEXTURE_BORDER_COLOR, values); });
    refused([&] { glGetTexLevelParameteriv(GL_TEXTURE0, 0, GL_TEXTURE_WIDTH, &value); });
}

// ---- levels ----

struct Level : Parameter
{
    GLint width(GLint level) { return levelParameter(GL_TEXTURE_2D, level, GL_TEXTURE_WIDTH); }
    GLint height(GLint level) { return levelParameter(GL_TEXTURE_2D, level, GL_TEXTURE_HEIGHT); }
    GLint format(GLint level) { return levelParameter(GL_TEXTURE_2D, level, GL_TEXTURE_INTERNAL_FORMAT); }
};

TEST_F(Level, SizesHalveFromTheFirst)
{
    for (GLint level = 0; level < 4; ++level) glTexImage2D(GL_TEXTURE_2D, level, GL_RGB8, 20 >> level, 6 >> level, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    const GLint widths[] = {20, 10, 5, 2}, heights[] = {6, 3, 1, 1};
    for (GLint level = 0; level < 4; ++level) {
        EXPECT_EQ(width(level), widths[level]);
        EXPECT_EQ(height(level), heights[level]);
        EXPECT_EQ(levelParameter(GL_TEXTURE_2D, level, GL_TEXTURE_DEPTH), 1);
        EXPECT_EQ(format(level), GL_RGB8);
    }
}

TEST_F(Level, OneThatWasNeverSpecifiedIsAllZero)
{
    EXPECT_EQ(width(3), 0);
    EXPECT_EQ(height(3), 0);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, 3, GL_TEXTURE_DEPTH), 0);
    EXPECT_EQ(format(3), 0);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(Level, TheSizesGivenForOtherLevelsAreNotKept)
{
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGB32F_ARB, 100, 100, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(width(1), 4);
    EXPECT_EQ(format(1), GL_RGBA8);
}

TEST_F(Level, Kept_level_modulo_32)
{
    EXPECT_EQ(width(32), 1); // the bit of level 0
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(width(64), 8);
    EXPECT_EQ(width(-1), 0);
    glTexImage2D(GL_TEXTURE_2D, -1, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(object(name).definedLevelsMask, 0x80000001u);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(Level, NothingBoundIsAnError)
{
    EXPECT_EQ(levelParameter(GL_TEXTURE_3D, 0, GL_TEXTURE_WIDTH), -1);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
}

} // namespace textures
