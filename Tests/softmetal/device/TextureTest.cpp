// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

namespace device_test {

class Texture : public Device
{
protected:
    /// Each texel holds its own position: x, y, slice, level.
    static std::vector<uint8_t> places(NS::UInteger width, NS::UInteger height, uint8_t slice, uint8_t level)
    {
        std::vector<uint8_t> bytes(width * height * 4);
        for (size_t i = 0; i < width * height; ++i) {
            bytes[4 * i] = static_cast<uint8_t>(i % width);
            bytes[4 * i + 1] = static_cast<uint8_t>(i / width);
            bytes[4 * i + 2] = slice;
            bytes[4 * i + 3] = level;
        }
        return bytes;
    }
};

TEST_F(Texture, GivesBackTheRegionThatWasReplaced)
{
    auto* t = texture(8, 4);
    auto in = places(8, 4, 0, 0);
    t->replaceRegion(MTL::Region(0, 0, 8, 4), 0, in.data(), 32);
    std::vector<uint8_t> out(in.size());
    t->getBytes(out.data(), 32, MTL::Region(0, 0, 8, 4), 0);
    EXPECT_EQ(out, in);
}

TEST_F(Texture, ReplacesPartOfAnImage)
{
    auto* t = texture(8, 8);
    auto in = places(2, 2, 9, 9);
    t->replaceRegion(MTL::Region(5, 6, 2, 2), 0, in.data(), 8);
    EXPECT_EQ(pixel(t, 6, 7), (Pixel{1, 1, 9, 9}));
    EXPECT_EQ(pixel(t, 4, 6), (Pixel{0, 0, 0, 0}));
}

TEST_F(Texture, KeepsSlicesAndLevelsApart)
{
    auto* d = MTL::TextureDescriptor::textureCubeDescriptor(MTL::PixelFormatRGBA8Unorm, 4, true);
    auto* t = texture(d);
    for (uint8_t slice = 0; slice < 6; ++slice)
        for (uint8_t level = 0; level < 3; ++level) {
            NS::UInteger size = 4u >> level;
            t->replaceRegion(MTL::Region(0, 0, size, size), level, slice, places(size, size, slice, level).data(), size * 4, size * size * 4);
        }
    for (uint8_t slice = 0; slice < 6; ++slice)
        for (uint8_t level = 0; level < 3; ++level) {
            Pixel p{};
            t->getBytes(p.data(), 4, 4, MTL::Region(0, 0, 1, 1), level, slice);
            EXPECT_EQ(p, (Pixel{0, 0, slice, level}));
        }
}

TEST_F(Texture, KeepsThePlanesOfAVolume)
{
    auto* d = textureDescriptor(2, 2);
    d->setTextureType(MTL::TextureType3D);
    d->setDepth(3);
    auto* t = texture(d);
    std::vector<uint8_t> in;
    for (uint8_t z = 0; z < 3; ++z) {
        auto plane = places(2, 2, z, 0);
        in.insert(in.end(), plane.begin(), plane.end());
    }
    t->replaceRegion(MTL::Region(0, 0, 0, 2, 2, 3), 0, 0, in.data(), 8, 16);
    std::vector<uint8_t> out(in.size());
    t->getBytes(out.data(), 8, 16, MTL::Region(0, 0, 0, 2, 2, 3), 0, 0);
    EXPECT_EQ(out, in);
}

TEST_F(Texture, MakesEveryType)
{
    struct Row
    {
        MTL::TextureType type;
        NS::UInteger height, depth, length;
    };
    for (const Row& row : {Row{MTL::TextureType1D, 1, 1, 1}, Row{MTL::TextureType1DArray, 1, 1, 3}, Row{MTL::TextureType2D, 8, 1, 1}, Row{MTL::TextureType2DArray, 8, 1, 3},
                           Row{MTL::TextureTypeCube, 8, 1, 1}, Row{MTL::TextureTypeCubeArray, 8, 1, 2}, Row{MTL::TextureType3D, 8, 4, 1}}) {
        auto* d = textureDescriptor(8, row.height);
        d->setTextureType(row.type);
        d->setDepth(row.depth);
        d->setArrayLength(row.length);
        auto* t = texture(d);
        ASSERT_NE(t, nullptr) << row.type;
        EXPECT_EQ(t->textureType(), row.type);
        EXPECT_EQ(t->depth(), row.depth);
        EXPECT_EQ(t->arrayLength(), row.length);
    }
}

TEST_F(Texture, HasWhatItsDescriptorSays)
{
    auto* d = textureDescriptor(8, 4, MTL::PixelFormatR8Unorm);
    d->setMipmapLevelCount(3);
    d->setStorageMode(MTL::StorageModePrivate);
    d->setSwizzle(MTL::TextureSwizzleChannels(MTL::TextureSwizzleRed, MTL::TextureSwizzleRed, MTL::TextureSwizzleRed, MTL::TextureSwizzleOne));
    auto* t = texture(d);
    d->setWidth(100); // no longer matters
    EXPECT_EQ(t->width(), 8u);
    EXPECT_EQ(t->height(), 4u);
    EXPECT_EQ(t->mipmapLevelCount(), 3u);
    EXPECT_EQ(t->pixelFormat(), MTL::PixelFormatR8Unorm);
    EXPECT_EQ(t->storageMode(), MTL::StorageModePrivate);
    EXPECT_EQ(t->usage(), MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    EXPECT_EQ(t->swizzle().alpha, MTL::TextureSwizzleOne);
}

TEST_F(Texture, ViewSharesTheTexels)
{
    auto* d = textureDescriptor(4, 4);
    d->setTextureType(MTL::TextureType2DArray);
    d->setArrayLength(3);
    d->setMipmapLevelCount(2);
    auto* t = texture(d);
    auto* view = owned(t->newTextureView(MTL::PixelFormatRGBA8Unorm_sRGB, MTL::TextureType2D, NS::Range(1, 1), NS::Range(2, 1)));
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->width(), 2u);
    EXPECT_EQ(view->parentTexture(), t);
    EXPECT_EQ(view->parentRelativeLevel(), 1u);
    EXPECT_EQ(view->parentRelativeSlice(), 2u);
    t->replaceRegion(MTL::Region(0, 0, 2, 2), 1, 2, places(2, 2, 2, 1).data(), 8, 16);
    EXPECT_EQ(pixel(view, 1, 1), (Pixel{1, 1, 2, 1}));
}

TEST_F(Texture, Depth24Stencil8OnlyWhereTheDeviceHasIt)
{
    auto* d = textureDescriptor(4, 4, MTL::PixelFormatDepth24Unorm_Stencil8);
    d->setStorageMode(MTL::StorageModePrivate);
    EXPECT_TRUE(device->depth24Stencil8PixelFormatSupported());
    EXPECT_NE(texture(d), nullptr);
    SoftMetal::DeviceOptions options;
    options.depth24Stencil8 = false;
    auto* other = owned(SoftMetal::newDevice(options));
    EXPECT_FALSE(other->depth24Stencil8PixelFormatSupported());
    EXPECT_EQ(other->newTexture(d), nullptr);
    EXPECT_EQ(broken(), rules({"texture.format"}));
}

} // namespace device_test
