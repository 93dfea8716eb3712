// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

namespace device_test {

class Blit : public Device
{
protected:
    MTL::Texture* numbered(MTL::TextureDescriptor* d)
    {
        auto* t = texture(d);
        std::vector<uint8_t> bytes(d->width() * d->height() * 4);
        for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i);
        t->replaceRegion(MTL::Region(0, 0, d->width(), d->height()), 0, bytes.data(), d->width() * 4);
        return t;
    }
};

TEST_F(Blit, CopiesBetweenBuffers)
{
    auto *from = bufferOf<uint32_t>({10, 11, 12, 13}), *to = buffer(16);
    auto* e = blit();
    e->copyFromBuffer(from, 4, to, 8, 8);
    finish(e);
    EXPECT_EQ(static_cast<uint32_t*>(to->contents())[1], 0u);
    EXPECT_EQ(static_cast<uint32_t*>(to->contents())[2], 11u);
    EXPECT_EQ(static_cast<uint32_t*>(to->contents())[3], 12u);
}

TEST_F(Blit, CopiesARegionBetweenTextures)
{
    auto *from = numbered(textureDescriptor(4, 4)), *to = texture(8, 8);
    auto* e = blit();
    e->copyFromTexture(from, 0, 0, MTL::Origin(1, 2, 0), MTL::Size(2, 2, 1), to, 0, 0, MTL::Origin(5, 6, 0));
    finish(e);
    EXPECT_EQ(pixel(to, 5, 6), pixel(from, 1, 2));
    EXPECT_EQ(pixel(to, 6, 7), pixel(from, 2, 3));
    EXPECT_EQ(pixel(to, 4, 6), (Pixel{0, 0, 0, 0}));
}

TEST_F(Blit, GoesThroughABufferAndBack)
{
    auto *from = numbered(textureDescriptor(4, 4)), *to = texture(4, 4);
    auto* b = buffer(4 * 32);
    auto* e = blit();
    e->copyFromTexture(from, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(4, 4, 1), b, 0, 32, 0);
    e->copyFromBuffer(b, 0, 32, 0, MTL::Size(4, 4, 1), to, 0, 0, MTL::Origin(0, 0, 0));
    finish(e);
    for (NS::UInteger i = 0; i < 16; ++i) EXPECT_EQ(pixel(to, i % 4, i / 4), pixel(from, i % 4, i / 4));
}

TEST_F(Blit, ReadsDepthOutOfADepthStencilTexture)
{
    for (MTL::PixelFormat format : {MTL::PixelFormatDepth32Float_Stencil8, MTL::PixelFormatDepth24Unorm_Stencil8}) {
        auto* d = textureDescriptor(4, 4, format);
        d->setStorageMode(MTL::StorageModePrivate);
        auto* t = texture(d);
        auto* cleared = MTL::RenderPassDescriptor::renderPassDescriptor();
        cleared->depthAttachment()->setTexture(t);
        cleared->depthAttachment()->setClearDepth(0.5);
        cleared->stencilAttachment()->setTexture(t);
        cleared->stencilAttachment()->setClearStencil(9);
        finish(encoder(cleared));
        auto *depths = buffer(64), *stencils = buffer(16);
        auto* e = blit();
        e->copyFromTexture(t, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(4, 4, 1), depths, 0, 16, 0, MTL::BlitOptionDepthFromDepthStencil);
        e->copyFromTexture(t, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(4, 4, 1), stencils, 0, 4, 0, MTL::BlitOptionStencilFromDepthStencil);
        finish(e);
        EXPECT_NEAR(static_cast<float*>(depths->contents())[5], 0.5f, 1e-6f) << format;
        EXPECT_EQ(static_cast<uint8_t*>(stencils->contents())[5], 9) << format;
    }
}

TEST_F(Blit, FillsARangeOfABuffer)
{
    auto* b = buffer(8);
    auto* e = blit();
    e->fillBuffer(b, NS::Range(2, 3), 0xAB);
    finish(e);
    EXPECT_EQ(std::memcmp(b->contents(), "\0\0\xAB\xAB\xAB\0\0\0", 8), 0);
}

TEST_F(Blit, MakesSmallerLevelsByAveraging)
{
    auto* d = textureDescriptor(2, 2);
    d->setMipmapLevelCount(2);
    auto* t = texture(d);
    const std::array<uint8_t, 16> four{0, 0, 0, 0, 40, 80, 0, 0, 40, 80, 0, 0, 80, 160, 0, 0};
    t->replaceRegion(MTL::Region(0, 0, 2, 2), 0, four.data(), 8);
    auto* e = blit();
    e->generateMipmaps(t);
    finish(e);
    Pixel p{};
    t->getBytes(p.data(), 4, MTL::Region(0, 0, 1, 1), 1);
    EXPECT_EQ(p, (Pixel{40, 80, 0, 0}));
}

TEST_F(Blit, CopiesWholeTextures)
{
    auto* d = textureDescriptor(4, 4);
    d->setMipmapLevelCount(2);
    auto *from = numbered(d), *to = texture(d);
    const Pixel small{1, 2, 3, 4};
    from->replaceRegion(MTL::Region(1, 1, 1, 1), 1, small.data(), 4);
    auto* e = blit();
    e->copyFromTexture(from, to);
    finish(e);
    Pixel p{};
    to->getBytes(p.data(), 4, MTL::Region(1, 1, 1, 1), 1);
    EXPECT_EQ(p, small);
    EXPECT_EQ(pixel(to, 3, 3), pixel(from, 3, 3));
}

TEST_F(Blit, SeesWhatAPassBeforeItHasDrawn)
{
    auto *drawn = texture(), *copy = texture();
    auto* cleared = pass(drawn);
    cleared->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(1, 0, 1, 1));
    commands = queue->commandBuffer();
    commands->renderCommandEncoder(cleared)->endEncoding();
    auto* e = commands->blitCommandEncoder();
    e->copyFromTexture(drawn, copy);
    finish(e);
    EXPECT_EQ(pixel(copy, 7, 7), (Pixel{255, 0, 255, 255}));
}

} // namespace device_test
