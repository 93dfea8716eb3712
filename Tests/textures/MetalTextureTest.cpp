// SPDX-License-Identifier: Apache-2.0
// The Metal texture that a description becomes: format, swizzle, storage, usage, type and number of levels.
#include "ZALGLFunctionsTexture.h"
#include "textures/TextureFixture.h"

namespace textures
{

using Swizzle = std::array<int, 4>; // Metal's numbers: 0 zero, 1 one, then red to alpha
constexpr Swizzle Identity = {2, 3, 4, 5}, AlphaOnly = {0, 0, 0, 5}, Opaque = {2, 3, 4, 1}, Luminance = {2, 2, 2, 1},
                  Intensity = {2, 2, 2, 2};

struct FormatRow
{
    GLenum internalFormat;
    uint32_t format, withoutDepth24;
    Swizzle swizzle;
    MTL::StorageMode storage;
    uint32_t contents;
};

constexpr MTL::StorageMode Managed = MTL::StorageModeManaged, Private = MTL::StorageModePrivate;

constexpr FormatRow Formats[] = {
    {0x1906, 1, 1, AlphaOnly, Managed, 1},      {0x803C, 1, 1, AlphaOnly, Managed, 1},
    {0x1907, 70, 70, Opaque, Managed, 1},       {0x8051, 70, 70, Opaque, Managed, 1},
    {0x1908, 80, 80, Identity, Managed, 1},     {0x8058, 80, 80, Identity, Managed, 1},
    {0x8040, 10, 10, Luminance, Managed, 1},    {0x8814, 125, 125, Identity, Managed, 1},
    {0x8815, 125, 125, Opaque, Managed, 1},     {0x8817, 55, 55, Intensity, Managed, 1},
    {0x881A, 115, 115, Identity, Managed, 1},   {0x881B, 115, 115, Opaque, Managed, 1},
    {0x881D, 25, 25, Intensity, Managed, 1},    {0x8880, 55, 55, Identity, Managed, 1},
    {0x81A5, 250, 250, Identity, Managed, 2},   {0x81A6, 255, 252, Identity, Private, 2},
    {0x81A7, 252, 252, Identity, Private, 2},   {0x88F0, 255, 260, Identity, Private, 2},
};

class MetalTexture : public OnBothRoutes
{
protected:
    /// A new texture of that format, with a size and no data.
    GLuint make(GLenum textureTarget, GLenum internalFormat, GLsizei width = 4, GLsizei height = 4, GLsizei deep = 1)
    {
        GLuint name = bindNew(textureTarget);
        ZALTexImage(textureTarget, 0, internalFormat, width, height, deep, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        return name;
    }
    bool intel() const { return GetParam() == Route::Intel; }

    static Swizzle swizzleOf(MTL::Texture* t)
    {
        MTL::TextureSwizzleChannels s = t->swizzle();
        return {s.red, s.green, s.blue, s.alpha};
    }

    static void expectRow(const FormatRow& row, MTL::Texture* made, uint32_t format)
    {
        EXPECT_EQ(made->pixelFormat(), format);
        EXPECT_EQ(made->storageMode(), row.storage);
        EXPECT_EQ(swizzleOf(made), row.swizzle);
        bool deep = row.contents == 2;
        EXPECT_EQ(made->usage(), deep ? MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget : MTL::TextureUsageShaderRead);
    }
};

TEST_P(MetalTexture, EveryInternalFormatHasItsRow)
{
    for (const FormatRow& row : Formats) {
        SCOPED_TRACE(row.internalFormat);
        GLuint name = make(GL_TEXTURE_2D, row.internalFormat);
        MTL::Texture* made = metal(name);
        ASSERT_NE(made, nullptr);
        expectRow(row, made, row.format);
        EXPECT_EQ(object(name).GetContentsTypeMask(), row.contents);
        EXPECT_EQ(made->width(), 4u);
        EXPECT_EQ(made->depth(), 1u);
    }
}

TEST_P(MetalTexture, Kept_depth16_managed)
{
    EXPECT_EQ(metal(make(GL_TEXTURE_2D, GL_DEPTH_COMPONENT16))->storageMode(), MTL::StorageModeManaged);
    for (GLenum other : {GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT32, GL_DEPTH24_STENCIL8})
        EXPECT_EQ(metal(make(GL_TEXTURE_2D, other))->storageMode(), MTL::StorageModePrivate);
}

TEST_P(MetalTexture, Kept_rgba_is_bgra)
{
    EXPECT_EQ(metal(make(GL_TEXTURE_2D, GL_RGBA))->pixelFormat(), MTL::PixelFormatBGRA8Unorm);
    EXPECT_EQ(metal(make(GL_TEXTURE_2D, GL_RGB))->pixelFormat(), MTL::PixelFormatRGBA8Unorm);
}

TEST_P(MetalTexture, AnyOtherInternalFormatMakesNone)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    for (uint32_t format = 1; format <= 0x9FFF; format += format < 0x1900 ? 256 : 1) {
        bool known = false;
        for (const FormatRow& row : Formats) known |= row.internalFormat == format;
        if (known) continue;
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        ASSERT_EQ(metal(name), nullptr) << format;
        ASSERT_EQ(object(name).GetContentsTypeMask(), 0u);
        ASSERT_TRUE(object(name).HasMTLTexture()); // the device was asked, once
        ASSERT_EQ(broken(), Rules{"texture.format"});
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(MetalTexture, IsMadeOnceAndOnFirstNeed)
{
    GLuint name = make(GL_TEXTURE_2D, GL_RGBA8);
    EXPECT_EQ(count("newTexture"), 0u);
    MTL::Texture* first = metal(name);
    EXPECT_EQ(metal(name), first);
    EXPECT_EQ(count("newTexture"), 1u);
}

TEST_P(MetalTexture, NoTypeOrFormatNoTexture)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    EXPECT_EQ(metal(name), nullptr);
    object(name).type = GL_TEXTURE_2D;
    EXPECT_EQ(metal(name), nullptr);
    EXPECT_FALSE(object(name).HasMTLTexture());
}

TEST_P(MetalTexture, RespecifyingTheFirstLevelDropsIt)
{
    GLuint name = make(GL_TEXTURE_2D, GL_RGBA8);
    ASSERT_EQ(metal(name)->width(), 4u);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB16F_ARB, 9, 3, 0, GL_RGB, GL_HALF_FLOAT, nullptr);
    EXPECT_FALSE(object(name).HasMTLTexture());
    MTL::Texture* second = metal(name);
    EXPECT_EQ(second->width(), 9u);
    EXPECT_EQ(second->height(), 3u);
    EXPECT_EQ(second->pixelFormat(), MTL::PixelFormatRGBA16Float);
}

TEST_P(MetalTexture, EveryTargetHasItsType)
{
    EXPECT_EQ(metal(make(GL_TEXTURE_1D, GL_RGBA8, 1, 1))->textureType(), MTL::TextureType1D);
    EXPECT_EQ(metal(make(GL_TEXTURE_2D, GL_RGBA8))->textureType(), MTL::TextureType2D);
    EXPECT_EQ(metal(make(GL_TEXTURE_RECTANGLE_ARB, GL_RGBA8))->textureType(), MTL::TextureType2D);
    EXPECT_EQ(metal(make(GL_TEXTURE_CUBE_MAP, GL_RGBA8))->textureType(), MTL::TextureTypeCube);
    MTL::Texture* volume = metal(make(GL_TEXTURE_3D, GL_RGBA8, 4, 2, 3));
    EXPECT_EQ(volume->textureType(), MTL::TextureType3D);
    EXPECT_EQ(volume->depth(), 3u);
}

// ---- usage ----

TEST_P(MetalTexture, ARectangleThatIsAttachedCanBeDrawnTo)
{
    GLuint name = make(GL_TEXTURE_RECTANGLE_ARB, GL_LUMINANCE8);
    EXPECT_EQ(metal(name)->usage(), MTL::TextureUsageShaderRead);
    EXPECT_EQ(swizzleOf(metal(name)), Luminance);
    object(name).MarkAsRenderTarget();
    EXPECT_EQ(metal(name)->usage(), MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    EXPECT_EQ(swizzleOf(metal(name)), Identity);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGB8, 2, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(swizzleOf(metal(name)), Identity); // a target it stays
}

TEST_P(MetalTexture, Kept_attached_usage)
{
    GLuint name = make(GL_TEXTURE_2D, GL_RGB8);
    object(name).MarkAsRenderTarget();
    EXPECT_EQ(metal(name)->usage(), MTL::TextureUsageShaderRead);
    EXPECT_EQ(swizzleOf(metal(name)), Opaque);
}

// ---- levels ----

struct Size
{
    GLsizei width, height, depth;
    NS::UInteger chain;
};
constexpr Size Sizes[] = {{1, 1, 1, 1}, {2, 2, 1, 2}, {3, 1, 1, 2}, {4, 2, 1, 3}, {5, 1024, 1, 11}, {1023, 3, 1, 10}};

TEST_P(MetalTexture, OneLevelIsGivenOneOrOnIntelTheChain)
{
    for (const Size& s : Sizes) {
        MTL::Texture* made = metal(make(GL_TEXTURE_2D, GL_RGBA8, s.width, s.height));
        EXPECT_EQ(made->mipmapLevelCount(), intel() ? s.chain : 1u) << s.width;
    }
    EXPECT_EQ(metal(make(GL_TEXTURE_3D, GL_RGBA8, 2, 2, 9))->mipmapLevelCount(), intel() ? 4u : 1u);
    EXPECT_EQ(metal(make(GL_TEXTURE_CUBE_MAP, GL_RGBA8, 8, 8))->mipmapLevelCount(), intel() ? 4u : 1u);
}

TEST_P(MetalTexture, AnotherLevelMakesTheChain)
{
    for (const Size& s : Sizes) {
        GLuint name = make(GL_TEXTURE_2D, GL_RGBA8, s.width, s.height);
        glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        EXPECT_TRUE(object(name).HasMipmaps());
        EXPECT_EQ(metal(name)->mipmapLevelCount(), s.chain) << s.width;
    }
}

TEST_P(MetalTexture, RectanglesAndDepthHaveNoChainOnIntel)
{
    for (auto [target, format] : {std::pair<GLenum, GLenum>{GL_TEXTURE_RECTANGLE_ARB, GL_RGBA8}, {GL_TEXTURE_2D, GL_DEPTH_COMPONENT24}}) {
        GLuint name = make(target, format, 8, 8);
        EXPECT_EQ(metal(name)->mipmapLevelCount(), 1u);
        glTexImage2D(target, 1, static_cast<GLint>(format), 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        EXPECT_EQ(metal(name)->mipmapLevelCount(), intel() ? 1u : 4u);
    }
    commands().commandBufferEnd();
}

// ---- refusals ----

TEST_P(MetalTexture, Kept_texture_failure_silent)
{
    SoftMetal::injectFault("newTexture", 1, false);
    GLuint name = make(GL_TEXTURE_2D, GL_RGBA8);
    EXPECT_EQ(metal(name), nullptr);
    EXPECT_EQ(metal(name), nullptr); // not asked for again
    EXPECT_TRUE(object(name).HasMTLTexture());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_NE(metal(name), nullptr);
    SoftMetal::clearFaults();
}

TEST_P(MetalTexture, SizesThatMetalRefusesMakeNoTextureAndNoError)
{
    struct Row
    {
        GLenum target;
        GLsizei width, height, depth;
        const char* rule;
    };
    for (const Row& r : {Row{GL_TEXTURE_2D, 0, 4, 1, "texture.size"}, Row{GL_TEXTURE_2D, -1, 4, 1, "texture.size"}, Row{GL_TEXTURE_2D, 20000, 4, 1, "texture.size"},
                         Row{GL_TEXTURE_2D, 4, 4, 2, "texture.depth"}, Row{GL_TEXTURE_CUBE_MAP, 4, 5, 1, "texture.cube"}}) {
        EXPECT_EQ(metal(make(r.target, GL_RGBA8, r.width, r.height, r.depth)), nullptr);
        ASSERT_FALSE(SoftMetal::takeMessages().empty()) << r.rule;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(MetalTexture, Kept_one_dimensional_chain)
{
    GLuint name = make(GL_TEXTURE_1D, GL_RGBA8, 4, 1);
    EXPECT_EQ(metal(name) == nullptr, intel());
    EXPECT_EQ(broken(), intel() ? Rules{"texture.levels"} : Rules{});
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(16).data());
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    broken();
}

INSTANTIATE_TEST_SUITE_P(Routes, MetalTexture, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

// ---- a device without the packed depth format ----

SoftMetal::DeviceOptions withoutDepth24()
{
    SoftMetal::DeviceOptions options;
    options.depth24Stencil8 = false;
    return options;
}

class WithoutDepth24 : public support::ContextTest
{
protected:
    WithoutDepth24() : ContextTest(withoutDepth24()) {}
};

TEST_F(WithoutDepth24, DepthFormatsFallBack)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    for (const FormatRow& row : Formats) {
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(row.internalFormat), 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        MTL::Texture* made = gl().contextObjects->textures.Find(name)->EnsureMetalTexture();
        ASSERT_NE(made, nullptr) << row.internalFormat;
        EXPECT_EQ(made->pixelFormat(), row.withoutDepth24) << row.internalFormat;
        EXPECT_EQ(made->storageMode(), row.storage);
    }
}

} // namespace textures
