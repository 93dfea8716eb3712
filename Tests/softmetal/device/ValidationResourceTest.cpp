// SPDX-License-Identifier: Apache-2.0
// Rules of buffers, textures, samplers, blits and layers.
#include "ValidationFixture.h"

namespace device_test
{

void Validation::buffers()
{
    const std::array<uint8_t, 8> bytes{};
    auto* b = named("corners", buffer(8));
    expectPairs({
        {"buffer.length", "newBuffer: the length (0) must be 1 byte to 4294967296",
         [&](bool keeps) { owned(device->newBuffer(keeps ? 1 : 0, MTL::ResourceStorageModeShared)); }},
        {"buffer.nil-bytes", "newBuffer: the pointer to 8 bytes must not be null",
         [&](bool keeps) {
             owned(device->newBuffer(keeps ? bytes.data() : nullptr, 8, MTL::ResourceStorageModeShared));
         }},
        {"buffer.private-contents",
         "contents: buffer (no label) is in private storage, which the processor cannot reach",
         [&](bool keeps) {
             buffer(8, keeps ? MTL::ResourceStorageModeManaged : MTL::ResourceStorageModePrivate)->contents();
         }},
        {"buffer.texture", "newTexture: this device makes no textures from buffer 'corners'",
         [&](bool keeps) {
             owned(keeps ? device->newTexture(textureDescriptor()) : b->newTexture(textureDescriptor(), 0, 8));
         }},
        {"buffer.modified-range", "didModifyRange: 5 bytes from 4 end beyond buffer 'corners' (8 bytes)",
         [&](bool keeps) { b->didModifyRange(NS::Range(4, keeps ? 4 : 5)); }},
    });
}

void Validation::textureDescriptors()
{
    auto made = [&](auto change) { textureWith(change); };
    expectPairs({
        {"device.nil-descriptor", "newTexture: the descriptor must not be nil",
         [&](bool keeps) { owned(device->newTexture(keeps ? textureDescriptor() : nullptr)); }},
        {"device.nil-descriptor", "newSamplerState: the descriptor must not be nil",
         [&](bool keeps) {
             owned(device->newSamplerState(keeps ? owned(MTL::SamplerDescriptor::alloc()->init()) : nullptr));
         }},
        {"device.nil-descriptor", "newDepthStencilState: the descriptor must not be nil",
         [&](bool keeps) {
             owned(device->newDepthStencilState(keeps ? owned(MTL::DepthStencilDescriptor::alloc()->init()) : nullptr));
         }},
        {"texture.format", "newTexture: the pixel format (0) is not one that this device has",
         [&](bool keeps) {
             made([&](auto* d) { d->setPixelFormat(keeps ? MTL::PixelFormatR8Unorm : MTL::PixelFormatInvalid); });
         }},
        {"texture.size", "newTexture: the size (16385 by 8 by 1) must be 1 to 16384 texels along each axis",
         [&](bool keeps) { made([&](auto* d) { d->setWidth(keeps ? 16384 : 16385); }); }},
        {"texture.levels", "newTexture: the number of mip levels (5) must be 1 to 4",
         [&](bool keeps) { made([&](auto* d) { d->setMipmapLevelCount(keeps ? 4 : 5); }); }},
        {"texture.array", "newTexture: the array length (2) must be 1 to 1",
         [&](bool keeps) { made([&](auto* d) { d->setArrayLength(keeps ? 1 : 2); }); }},
        {"texture.cube", "newTexture: a cube texture must be square (8 by 4)",
         [&](bool keeps) {
             made([&](auto* d) {
                 d->setTextureType(MTL::TextureTypeCube);
                 d->setHeight(keeps ? 8 : 4);
             });
         }},
        {"texture.depth", "newTexture: only a 3D texture has a depth (2) other than 1",
         [&](bool keeps) { made([&](auto* d) { d->setDepth(keeps ? 1 : 2); }); }},
        {"texture.one-dimensional", "newTexture: a 1D texture has a height (8) of 1",
         [&](bool keeps) {
             made([&](auto* d) {
                 d->setTextureType(MTL::TextureType1D);
                 d->setHeight(keeps ? 1 : 8);
             });
         }},
        {"texture.samples", "newTexture: this device has no textures of several samples (type 2, 4 samples)",
         [&](bool keeps) { made([&](auto* d) { d->setSampleCount(keeps ? 1 : 4); }); }},
        {"texture.storage", "newTexture: this device has no storage mode 3",
         [&](bool keeps) {
             made([&](auto* d) { d->setStorageMode(keeps ? MTL::StorageModeShared : MTL::StorageModeMemoryless); });
         }},
        {"texture.memory", "newTexture: there is no memory for 2199023255552 bytes",
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
    auto* t = named("image", texture());
    auto* volume = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType3D);
        d->setDepth(2);
    });
    auto* array = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType2DArray);
        d->setArrayLength(6);
        d->setMipmapLevelCount(2);
    });
    auto* viewed =
        textureWith([](auto* d) { d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsagePixelFormatView); });
    auto* unseen = texture();
    auto view = [&](MTL::Texture* of, MTL::PixelFormat format, MTL::TextureType type, NS::Range levels,
                    NS::Range slices) { owned(of->newTextureView(format, type, levels, slices)); };
    constexpr auto Format = MTL::PixelFormatRGBA8Unorm;
    expectPairs({
        {"texture.private-access",
         "replaceRegion: texture (no label) is in private storage, which the processor cannot reach",
         [&](bool keeps) {
             (keeps ? t : privateTexture())->replaceRegion(MTL::Region(0, 0, 8, 8), 0, bytes.data(), 32);
         }},
        {"texture.region",
         "getBytes: the region (8 by 8 by 1 at 1, 0, 0) lies outside level 0, slice 0 of texture 'image'",
         [&](bool keeps) { t->getBytes(bytes.data(), 32, MTL::Region(1, 0, keeps ? 7 : 8, 8), 0); }},
        {"texture.row-bytes", "replaceRegion: the bytes per row (31) are fewer than a row of texture 'image' has (32)",
         [&](bool keeps) { t->replaceRegion(MTL::Region(0, 0, 8, 8), 0, bytes.data(), keeps ? 32 : 31); }},
        {"texture.image-bytes",
         "replaceRegion: the bytes per image (255) are fewer than an image of texture (no label) has (256)",
         [&](bool keeps) {
             volume->replaceRegion(MTL::Region(0, 0, 0, 8, 8, 2), 0, 0, bytes.data(), 32, keeps ? 256 : 255);
         }},
        {"texture.nil-bytes", "replaceRegion: the memory for texture 'image' must not be null",
         [&](bool keeps) { t->replaceRegion(MTL::Region(0, 0, 1, 1), 0, keeps ? bytes.data() : nullptr, 4); }},
        {"texture.view-format",
         "newTextureView: a texel of the view's pixel format (10) has another size than one of texture (no label)",
         [&](bool keeps) { owned(viewed->newTextureView(keeps ? MTL::PixelFormatR32Uint : MTL::PixelFormatR8Unorm)); }},
        {"texture.view-range",
         "newTextureView: texture (no label) does not have 2 levels from level 1 or 6 slices from slice 0",
         [&](bool keeps) {
             view(array, Format, MTL::TextureType2DArray, NS::Range(1, keeps ? 1 : 2), NS::Range(0, 6));
         }},
        {"texture.view-type", "newTextureView: texture (no label) of type 3 has no view of type 5 with 5 slices",
         [&](bool keeps) { view(array, Format, MTL::TextureTypeCube, NS::Range(0, 1), NS::Range(0, keeps ? 6 : 5)); }},
        {"texture.view-usage",
         "newTextureView: texture (no label) needs pixel format view usage to be seen with another pixel format (55)",
         [&](bool keeps) { owned((keeps ? viewed : unseen)->newTextureView(MTL::PixelFormatR32Float)); }},
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
        {"sampler.pixel-mip",
         "newSamplerState: sampler (no label) with pixel coordinates must not use mip levels (mip filter 2)",
         [&](bool keeps) {
             pixels([&](auto* d) {
                 d->setMipFilter(keeps ? MTL::SamplerMipFilterNotMipmapped : MTL::SamplerMipFilterLinear);
             });
         }},
        {"sampler.pixel-address",
         "newSamplerState: sampler (no label) with pixel coordinates must clamp to edge or to zero (address modes 0, "
         "2, 0)",
         [&](bool keeps) {
             pixels([&](auto* d) {
                 d->setTAddressMode(keeps ? MTL::SamplerAddressModeClampToZero : MTL::SamplerAddressModeRepeat);
             });
         }},
        {"sampler.pixel-filter",
         "newSamplerState: sampler (no label) with pixel coordinates must have one filter (smaller 0, larger 1)",
         [&](bool keeps) {
             pixels([&](auto* d) {
                 d->setMagFilter(keeps ? MTL::SamplerMinMagFilterNearest : MTL::SamplerMinMagFilterLinear);
             });
         }},
        {"sampler.anisotropy", "newSamplerState: the anisotropy (17) of sampler (no label) must be 1 to 16",
         [&](bool keeps) { samplerWith([&](auto* d) { d->setMaxAnisotropy(keeps ? 16 : 17); }); }},
        {"sampler.lod", "newSamplerState: the level range (0 to -1) of sampler (no label) is empty",
         [&](bool keeps) { samplerWith([&](auto* d) { d->setLodMaxClamp(keeps ? 0.0f : -1.0f); }); }},
    });
}

void Validation::blits()
{
    auto *t = named("source", texture()), *u = named("target", texture());
    auto *a = named("bytes", buffer(1024)), *b = buffer(1024);
    auto* both = named("depths", depthTexture(MTL::PixelFormatDepth32Float_Stencil8));
    auto* volume = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType3D);
        d->setDepth(2);
    });
    auto* layer = CA::MetalLayer::layer();
    layer->setDevice(device);
    layer->setDrawableSize(CGSize{8, 8});
    layer->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
    auto* drawn = named("shown", layer->nextDrawable()->texture());
    const MTL::Origin origin(0, 0, 0);
    const MTL::Size all(8, 8, 1);
    expectPairs({
        {"blit.nil", "copyFromTexture: the resources given to encoder 'copies' must not be nil",
         [&](bool keeps) {
             blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, keeps ? u : nullptr, 0, 0, origin); });
         }},
        {"blit.region",
         "copyFromTexture: the region (8 by 8 by 1 at 0, 1, 0) lies outside level 0, slice 0 of texture 'source'",
         [&](bool keeps) {
             blitting([&](auto* e) {
                 e->copyFromTexture(t, 0, 0, MTL::Origin(0, 1, 0), MTL::Size(8, keeps ? 7 : 8, 1), u, 0, 0, origin);
             });
         }},
        {"blit.formats",
         "copyFromTexture: texels of 'source' (pixel format 70) and of 'other' (pixel format 10) are not of one kind "
         "and size",
         [&](bool keeps) {
             auto* other = named("other", texture(8, 8, keeps ? MTL::PixelFormatBGRA8Unorm : MTL::PixelFormatR8Unorm));
             blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, other, 0, 0, origin); });
         }},
        {"blit.aspect",
         "copyFromTexture: the options (0) do not fit the pixel format (Depth32Float_Stencil8) of texture 'depths'",
         [&](bool keeps) {
             blitting([&](auto* e) {
                 e->copyFromTexture(both, 0, 0, origin, all, a, 0, 64, 0,
                                    keeps ? MTL::BlitOptionDepthFromDepthStencil : MTL::BlitOptionNone);
             });
         }},
        {"blit.buffer-range", "copyFromTexture: 256 bytes from offset 772 end beyond buffer 'bytes' (1024 bytes)",
         [&](bool keeps) {
             blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, a, keeps ? 768 : 772, 32, 0); });
         }},
        {"blit.row-bytes", "copyFromBuffer: the bytes per row (28) are fewer than a row of the region has (32)",
         [&](bool keeps) {
             blitting([&](auto* e) { e->copyFromBuffer(a, 0, keeps ? 32 : 28, 0, all, t, 0, 0, origin); });
         }},
        {"blit.image-bytes", "copyFromBuffer: the bytes per image (0) are fewer than an image of the region has (256)",
         [&](bool keeps) {
             blitting([&](auto* e) {
                 e->copyFromBuffer(a, 0, 32, keeps ? 256 : 0, MTL::Size(8, 8, 2), volume, 0, 0, origin);
             });
         }},
        {"blit.alignment", "copyFromBuffer: the offsets (0, 0) and the size (3) must be multiples of 4",
         [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, b, 0, keeps ? 4 : 3); }); }},
        {"blit.overlap", "copyFromBuffer: source and destination overlap in 'bytes'",
         [&](bool keeps) { blitting([&](auto* e) { e->copyFromBuffer(a, 0, a, keeps ? 8 : 4, 8); }); }},
        {"blit.framebuffer-only", "copyFromTexture: texture 'shown' of a layer is for drawing only",
         [&](bool keeps) {
             blitting([&](auto* e) { e->copyFromTexture(t, 0, 0, origin, all, keeps ? u : drawn, 0, 0, origin); });
         }},
        {"blit.mipmaps",
         "generateMipmaps: texture 'depths' needs a pixel format (Depth32Float_Stencil8) that can be drawn to and "
         "filtered",
         [&](bool keeps) { blitting([&](auto* e) { e->generateMipmaps(keeps ? t : both); }); }},
    });
}

void Validation::layers()
{
    auto* layer = CA::MetalLayer::layer();
    layer->setDevice(device);
    expectPairs({
        {"layer.no-device", "nextDrawable: the layer has no device",
         [&](bool keeps) {
             layer->setDevice(keeps ? device : nullptr);
             layer->setDrawableSize(CGSize{4, 4});
             layer->nextDrawable();
         }},
        {"layer.size", "nextDrawable: the layer's drawable size (4 by 0) is empty",
         [&](bool keeps) {
             layer->setDrawableSize(CGSize{4, keeps ? 4.0 : 0.0});
             layer->nextDrawable();
         }},
    });
}

} // namespace device_test
