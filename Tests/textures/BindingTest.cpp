// SPDX-License-Identifier: Apache-2.0
// Texture units, binding points and the names bound to them.
#include "textures/TextureFixture.h"

namespace textures
{

struct TargetRow
{
    GLenum target;
    uint32_t slot;
};
constexpr TargetRow Targets[] = {
    {0x0DE0, 0}, {0x0DE1, 1}, {0x806F, 2}, {0x84F5, 3}, {0x8513, 4},
};

class Binding : public Textures
{
protected:
    GLuint generated()
    {
        GLuint name = 0;
        glGenTextures(1, &name);
        return name;
    }
    uint32_t bound(GLenum target) { return gl().textureBindings[gl().activeTextureUnit][convertBindTextureTargetToBindingSlotIndex(target)]; }
};

TEST_F(Binding, EveryTargetHasItsSlotAndNothingElseHasOne)
{
    for (const TargetRow& row : Targets) EXPECT_EQ(convertBindTextureTargetToBindingSlotIndex(row.target), row.slot);
    for (uint32_t value = 0; value <= 0xFFFF; ++value) {
        bool known = false;
        for (const TargetRow& row : Targets) known |= row.target == value;
        if (known) continue;
        ASSERT_EQ(convertBindTextureTargetToBindingSlotIndex(value), 0xFFFFFFFFu) << value;
    }
}

TEST_F(Binding, ThirtyTwoUnitsCanBeActive)
{
    for (GLenum i = 0; i < 32; ++i) {
        glActiveTextureARB(GL_TEXTURE0 + i);
        EXPECT_EQ(gl().activeTextureUnit, i);
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(Binding, AUnitBeyondTheLastIsRefused)
{
    glActiveTextureARB(GL_TEXTURE0 + 31);
    for (GLenum unit : {GLenum{GL_TEXTURE0 + 32}, GLenum{GL_TEXTURE0 - 1}, GLenum{0}}) {
        glActiveTextureARB(unit);
        EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
        EXPECT_EQ(gl().activeTextureUnit, 31u);
    }
}

TEST_F(Binding, AnUnknownTargetIsRefused)
{
    GLuint name = generated();
    for (GLenum target : {GLenum{0}, GLenum{GL_TEXTURE_CUBE_MAP_POSITIVE_X}, GLenum{GL_PROXY_TEXTURE_2D}}) {
        glBindTexture(target, name);
        EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
        EXPECT_EQ(object(name).type, 0u);
    }
}

TEST_F(Binding, UnitsAndTargetsKeepTheirOwnNames)
{
    GLuint flat = bindNew(GL_TEXTURE_2D), cube = bindNew(GL_TEXTURE_CUBE_MAP);
    glActiveTextureARB(GL_TEXTURE0 + 3);
    GLuint other = bindNew(GL_TEXTURE_2D);
    EXPECT_EQ(bound(GL_TEXTURE_2D), other);
    EXPECT_EQ(bound(GL_TEXTURE_CUBE_MAP), 0u);
    glActiveTextureARB(GL_TEXTURE0);
    EXPECT_EQ(bound(GL_TEXTURE_2D), flat);
    EXPECT_EQ(bound(GL_TEXTURE_CUBE_MAP), cube);
}

TEST_F(Binding, Kept_bind_texture_0)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_EQ(bound(GL_TEXTURE_2D), name);
}

TEST_F(Binding, NameZeroOverNameZeroIsNothing)
{
    glBindTexture(GL_TEXTURE_2D, 0);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(Binding, ANameThatWasNotGeneratedIsRefused)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, name + 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_EQ(bound(GL_TEXTURE_2D), name);
}

TEST_F(Binding, ADeletedNameThatIsStillBoundCanBeBoundAgain)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glDeleteTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name); // equal names are not looked up
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    glBindTexture(GL_TEXTURE_3D, name);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_F(Binding, TheFirstBindGivesAPlaceholder)
{
    for (const TargetRow& row : Targets) {
        glBindTexture(row.target, generated());
        EXPECT_EQ(levelParameter(row.target, 0, GL_TEXTURE_WIDTH), 1);
        EXPECT_EQ(levelParameter(row.target, 0, GL_TEXTURE_HEIGHT), 1);
        EXPECT_EQ(levelParameter(row.target, 0, GL_TEXTURE_DEPTH), 1);
        EXPECT_EQ(levelParameter(row.target, 0, GL_TEXTURE_INTERNAL_FORMAT), GL_RGBA8);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
    EXPECT_EQ(count("newTexture"), 0u); // nothing is made before it is needed
}

TEST_F(Binding, BindingAgainKeepsTheImage)
{
    GLuint name = bindNew(GL_TEXTURE_2D), other = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 5, 7, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, other);
    glBindTexture(GL_TEXTURE_2D, name);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH), 5);
}

TEST_F(Binding, AnotherTargetChangesTheType)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA32F_ARB, 5, 7, 0, GL_RGBA, GL_FLOAT, nullptr);
    ASSERT_NE(metal(name), nullptr);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    EXPECT_EQ(object(name).GetType(), GLenum{GL_TEXTURE_RECTANGLE_ARB});
    EXPECT_FALSE(object(name).HasMTLTexture());
    EXPECT_EQ(levelParameter(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_WIDTH), 1);
}

TEST_F(Binding, TheOldTargetThenFindsAnObjectOfAnotherType)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_F(Binding, TheTypeBringsItsDefaults)
{
    GLuint name = generated();
    glBindTexture(GL_TEXTURE_2D, name);
    ZALGLTextureObject& texture = object(name);
    EXPECT_EQ(texture.minFilter, GLenum{GL_NEAREST_MIPMAP_LINEAR});
    EXPECT_EQ(texture.magFilter, GLenum{GL_LINEAR});
    EXPECT_EQ(texture.wrapS, GLenum{GL_REPEAT});
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    EXPECT_EQ(texture.minFilter, GLenum{GL_LINEAR});
    EXPECT_EQ(texture.magFilter, GLenum{GL_LINEAR});
    for (GLenum wrap : {texture.wrapS, texture.wrapT, texture.wrapR}) EXPECT_EQ(wrap, GLenum{GL_CLAMP_TO_EDGE});
}

TEST_F(Binding, AChangeOfTypeResetsFiltersAndWrapModesOnly)
{
    GLuint name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
    glTexParameterf(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MAX_ANISOTROPY_EXT, 4);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_BASE_LEVEL, 2);
    const float white[4] = {1, 1, 1, 1};
    glTexParameterfv(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_BORDER_COLOR, white);
    object(name).isRenderTarget = true;
    glBindTexture(GL_TEXTURE_CUBE_MAP, name);
    const ZALGLTextureObject& texture = object(name);
    EXPECT_EQ(texture.minFilter, GLenum{GL_NEAREST_MIPMAP_LINEAR});
    EXPECT_EQ(texture.wrapT, GLenum{GL_REPEAT});
    EXPECT_EQ(texture.maxAnisotropy, 4);
    EXPECT_EQ(texture.baseLevel, 2u);
    EXPECT_EQ(texture.borderColorClass, MTL::SamplerBorderColorOpaqueWhite);
    EXPECT_TRUE(texture.isRenderTarget);
}

TEST_F(Binding, SetTypeToTheSameTypeKeepsTheParametersAndDropsTheTexture)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    ASSERT_NE(metal(name), nullptr);
    object(name).SetType(GL_TEXTURE_2D);
    EXPECT_EQ(object(name).minFilter, GLenum{GL_NEAREST});
    EXPECT_FALSE(object(name).HasMTLTexture());
}

// ---- the object bound for an image target ----

class Found : public Textures
{
protected:
    GLenum bindTarget = 0;
    int32_t face = -1;
    ZALGLTextureObject* find(GLenum target) { return getBoundTextureFace(&gl(), target, bindTarget, face); }
};

TEST_F(Found, CubeFacesAreCounted)
{
    GLuint name = bindNew(GL_TEXTURE_CUBE_MAP);
    for (GLenum i = 0; i < 6; ++i) {
        EXPECT_EQ(find(GL_TEXTURE_CUBE_MAP_POSITIVE_X + i), &object(name));
        EXPECT_EQ(face, static_cast<int32_t>(i));
        EXPECT_EQ(bindTarget, GLenum{GL_TEXTURE_CUBE_MAP});
    }
    EXPECT_EQ(find(GL_TEXTURE_CUBE_MAP), &object(name));
    EXPECT_EQ(face, 0);
}

TEST_F(Found, AnUnknownTargetIsAnInvalidEnum)
{
    EXPECT_EQ(find(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z + 1), nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    EXPECT_EQ(getBoundTexture(&gl(), GL_TEXTURE_CUBE_MAP_POSITIVE_X), nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
}

TEST_F(Found, NothingBoundIsAnErrorForImagesAlone)
{
    EXPECT_EQ(find(GL_TEXTURE_2D), nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    EXPECT_EQ(getBoundTexture(&gl(), GL_TEXTURE_2D), nullptr);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_F(Found, AnotherTypeIsAnInvalidOperation)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_3D, name);
    EXPECT_EQ(find(GL_TEXTURE_2D), nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_EQ(getBoundTexture(&gl(), GL_TEXTURE_2D), nullptr);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_F(Found, AnObjectWithoutATypeFitsEveryTarget)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    for (uint32_t& slot : gl().textureBindings[0]) slot = name;
    for (const TargetRow& row : Targets) {
        EXPECT_EQ(find(row.target), &object(name));
        EXPECT_EQ(getBoundTexture(&gl(), row.target), &object(name));
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

} // namespace textures
