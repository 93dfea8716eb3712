// SPDX-License-Identifier: Apache-2.0
// Rules of buffers, textures, samplers, blits and layers.
#include "ValidationFixture.h"

namespace device_test {

void Validation::buffers()
{
    const std::array<uint8_t, 8> bytes{};
    auto* b = buffer(8);
    expectPairs({
        {"buffer.length", [&](bool keeps) { owned(device->newBuffer(keeps ? 1 : 0, MTL::ResourceStorageModeShared)); }},
        {"buffer.nil-bytes", [&](bool keeps) { owned(device->newBuffer(keeps ? bytes.data() : nullptr, 8, MTL::ResourceStorageModeShared)); }},
        {"buffer.private-contents", [&](bool keeps) { buffer(8, keeps ? MTL::ResourceStorageModeManaged : MTL::ResourceStorageModePrivate)->contents(); }},
        {"buffer.modified-range", [&](bool keeps) { b->didModifyRange(NS::Range(4, keeps ? 4 : 5)); }},
    });
    EXPECT_EQ(b->newTexture(textureDescriptor(), 0, 8), nullptr); // never possible: there is no call that keeps this rule
    EXPECT_EQ(broken(), rules({"buffer.texture"}));
    fired.insert("buffer.texture");
}

void Validation::textureDescriptors()
{
    auto made = [&](auto change) { textureWith(change); };
    expectPairs({
        {"device.nil-descriptor", [&](bool keeps) { owned(device->newTexture(keeps ? textureDescriptor() : nullptr)); }},
        {"texture.format", [&](bool keeps) { made([&](auto* d) { d->setPixelFormat(keeps ? MTL::PixelFormatR8Unorm : MTL::PixelFormatInvalid); }); }},
        {"texture.size", [&](bool keeps) { made([&](auto* d) { d->setWidth(keeps ? 16384 : 16385); }); }},
        {"texture.levels", [&](bool keeps) { made([&](auto* d) { d->setMipmapLevelCount(keeps ? 4 : 5); }); }},
        {"texture.array", [&](bool keeps) { made([&](auto* d) { d->setArrayLength(keeps ? 1 : 2); }); }},
        {"texture.cube",
         [&](bool keeps) {
             made([&](auto* d) {
                 d->setTextureType(MTL::TextureTypeCube);
                 d->setHeight(keeps ? 8 : 4);
             });
         }},
        {"texture.depth", [&](bool keeps) { made([&](auto* d) { d->setDepth(keeps ? 1 : 2); }); }},
        {"texture.one-dimensional",
         [&](bool keeps) {
             made([&](auto* d) {
                 d->setTextureType(MTL::TextureType1D);
                 d->setHeight(keeps ? 1 : 8);
             });
         }},
        {"texture.samples", [&](bool keeps) { made([&](auto* d) { d->setSampleCount(keeps ? 1 : 4); }); }},
        {"texture.storage", [&](bool keeps) { made([&](auto* d) { d->setStorageMode(keeps ? MTL::StorageModeShared : MTL::StorageModeMemoryless); }); }},
        {"texture.memory",
         [&](bool keeps) {
             made([&](auto* d) {
                 d->setTextureType(MTL::TextureType2DArray);
                 d->setWidth(16384);
                 d->setHeight(keeps ? 1 : 16384);
                 d->setArrayLength(keeps ? 1 : 2048);
             });
         }},
    });
}

void Validation::textureAccess()
{
    std::vector<uint8_t> bytes(2048);
    auto* t = texture();
    auto* volume = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType3D);
        d->setDepth(2);
    });
    auto* array = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType2DArray);
        d->setArrayLength(6);
        d->setMipmapLevelCount(2);
    });
    auto* viewed = textureWith([](auto* d) { d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsagePixelFormatView); });
    auto* unseen = texture();
    auto view = [&](MTL::Texture* of, MTL::PixelFormat format, MTL::TextureType type, NS::Range levels, NS::Range slices) {
        owned(of->newTextureView(format, type, levels, slices));
    };
    constexpr auto Format = MTL::PixelFormatRGBA8Unorm;
    expectPairs({
        {"texture.private-access", [&](bool keeps) { (keeps ? t : privateTexture())->replaceRegion(MTL::Region(0, 0, 8, 8), 0, bytes.data(), 32); }},
        {"texture.region", [&](bool keeps) { t->getBytes(bytes.data(), 32, MTL::Region(1, 0, keeps ? 7 : 8, 8), 0); }},
        {"texture.row-bytes", [&](bool keeps) { t->replaceRegion(MTL::Region(0, 0, 8, 8), 0, bytes.data(), keeps ? 32 : 31); }},
        {"texture.image-bytes", [&](bool keeps) { volume->replaceRegion(MTL::Region(0, 0, 0, 8, 8, 2), 0, 0, bytes.data(), 32, keeps ? 256 : 255); }},
        {"texture.nil-bytes", [&](bool keeps) { t->replaceRegion(MTL::Region(0, 0, 1, 1), 0, keeps ? bytes.data() : nullptr, 4); }},
        {"texture.view-format", [&](bool keeps) { owned(viewed->newTextureView(keeps ? MTL::PixelFormatR32Uint : MTL::PixelFormatR8Unorm)); }},
        {"texture.view-range", [&](bool keeps) { view(array, Format, MTL::TextureType2DArray, NS::Range(1, keeps ? 1 : 2), NS::Range(0, 6)); }},
        {"texture.view-type", [&](bool keeps) { view(array, Format, MTL::TextureTypeCube, NS::Range(0, 1), NS::Range(0, keeps ? 6 : 5)); }},
        {"texture.view-usage", [&](bool keeps) { owned((keeps ? viewed : unseen)->newTextureView(MTL::PixelFormatR32Float)); }},
    });
}

void Validation::samplers()
{
    auto pixels = [&](auto change) {
        samplerWith([&](auto* d) {
            d->setNormalizedCoordinates(false);
            change(d);
        });
    };
    expectPairs({
        {"sampler.pixel-mip", [&](bool keeps) { pixels([&](auto* d) { d->setMipFilter(keeps ? MTL::SamplerMipFilterNotMipmapped : MTL::SamplerMipFilterLinear); }); }},
        {"sampler.pixel-address", [&](bool keeps) { pixels([&](auto* d) { d->setTAddressMode(keeps ? MTL::SamplerAddressModeClampToZero : MTL::SamplerAddressModeRepeat); }); }},
        {"sampler.pixel-filter", [&](bool keeps) { pixels([&](auto* d) { d->setMagFilter(keeps ? MTL::SamplerMinMagFilterNearest : MTL::SamplerMinMagFilterLinear); }); }},
        {"sampler.anisotropy", [&](bool keeps) { samplerWith([&](auto* d) { d->setMaxAnisotropy(keeps ? 16 : 17); }); }},
        {"sampler.lod", [&](bool keeps) { samplerWith([&](auto* d) { d->setLodMaxClamp(keeps ? 0.0f : -1.0f); }); }},
    });
}

void Validation::blits()
{
    auto *t = texture(), *u = texture();
    auto *a = buffer(1024), *b = buffer(1024);
    auto* both = depthTexture(MTL::PixelFormatDepth32Float_Stencil8);
    auto* volume = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType3D);
        d->setDepth(2);
    });
    auto* layer = CA::MetalLayer::layer();
    layer->setDevice(device);
    layer->setDrawableSize(CGSize{8, 8});
    layer->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
    auto* drawn = layer->nextDrawable()->texture();
    const MTL::Origin origin(0, 0, 0);
    const MTL::Size all(8, 8, 1);
    expectPairs({
        {"blit.nil", [&](bool keeps) { blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, keeps ? u : nullptr, 0, 0, origin); }); }},
        {"blit.region", [&](bool keeps) { blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, MTL::Origin(0, 1, 0), MTL::Size(8, keeps ? 7 : 8, 1), u, 0, 0, origin); }); }},
        {"blit.formats",
         [&](bool keeps) {
             auto* other = texture(8, 8, keeps ? MTL::PixelFormatBGRA8Unorm : MTL::PixelFormatR8Unorm);
             blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, other, 0, 0, origin); });
         }},
        {"blit.aspect",
         [&](bool keeps) {
             blitting([&](auto* e) { e->copyFromTexture(both, 0, 0, origin, all, a, 0, 64, 0, keeps ? MTL::BlitOptionDepthFromDepthStencil : MTL::BlitOptionNone); });
         }},
        {"blit.buffer-range", [&](bool keeps) { blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, a, keeps ? 768 : 772, 32, 0); }); }},
        {"blit.row-bytes", [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, keeps ? 32 : 28, 0, all, t, 0, 0, origin); }); }},
        {"blit.image-bytes", [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, 32, keeps ? 256 : 0, MTL::Size(8, 8, 2), volume, 0, 0, origin); }); }},
        {"blit.alignment", [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, b, 0, keeps ? 4 : 3); }); }},
        {"blit.overlap", [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, a, keeps ? 8 : 4, 8); }); }},
        {"blit.framebuffer-only", [&](bool keeps) { blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, keeps ? u : drawn, 0, 0, origin); }); }},
        {"blit.mipmaps", [&](bool keeps) { blitting([&](auto* e) { e->generateMipmaps(keeps ? t : both); }); }},
    });
}

void Validation::layers()
{
    auto* layer = CA::MetalLayer::layer();
    expectPairs({
        {"layer.no-device",
         [&](bool keeps) {
             layer->setDevice(keeps ? device : nullptr);
             layer->setDrawableSize(CGSize{4, 4});
             layer->nextDrawable();
         }},
        {"layer.size",
         [&](bool keeps) {
             layer->setDrawableSize(CGSize{4, keeps ? 4.0 : 0.0});
             layer->nextDrawable();
         }},
    });
}

TEST_F(Validation, Buffers) { buffers(); }
TEST_F(Validation, TextureDescriptors) { textureDescriptors(); }
TEST_F(Validation, TextureAccess) { textureAccess(); }
TEST_F(Validation, Samplers) { samplers(); }
TEST_F(Validation, Blits) { blits(); }
TEST_F(Validation, Layers) { layers(); }

} // namespace device_test
