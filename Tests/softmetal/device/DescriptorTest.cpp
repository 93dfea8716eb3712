// SPDX-License-Identifier: Apache-2.0
// Every property's default, and which properties keep a copy.
#include "DeviceFixture.h"

#include <limits>

namespace device_test {

using Descriptor = Device;

TEST_F(Descriptor, SamplerDefaults)
{
    auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
    EXPECT_EQ(d->minFilter(), MTL::SamplerMinMagFilterNearest);
    EXPECT_EQ(d->magFilter(), MTL::SamplerMinMagFilterNearest);
    EXPECT_EQ(d->mipFilter(), MTL::SamplerMipFilterNotMipmapped);
    EXPECT_EQ(d->maxAnisotropy(), 1u);
    EXPECT_EQ(d->sAddressMode(), MTL::SamplerAddressModeClampToEdge);
    EXPECT_EQ(d->tAddressMode(), MTL::SamplerAddressModeClampToEdge);
    EXPECT_EQ(d->rAddressMode(), MTL::SamplerAddressModeClampToEdge);
    EXPECT_EQ(d->borderColor(), MTL::SamplerBorderColorTransparentBlack);
    EXPECT_TRUE(d->normalizedCoordinates());
    EXPECT_EQ(d->lodMinClamp(), 0);
    EXPECT_EQ(d->lodMaxClamp(), std::numeric_limits<float>::max());
    EXPECT_EQ(d->compareFunction(), MTL::CompareFunctionNever);
}

TEST_F(Descriptor, DepthStencilDefaults)
{
    auto* d = owned(MTL::DepthStencilDescriptor::alloc()->init());
    EXPECT_EQ(d->depthCompareFunction(), MTL::CompareFunctionAlways);
    EXPECT_FALSE(d->depthWriteEnabled());
    for (auto* s : {d->frontFaceStencil(), d->backFaceStencil()}) {
        ASSERT_NE(s, nullptr);
        EXPECT_EQ(s->stencilCompareFunction(), MTL::CompareFunctionAlways);
        EXPECT_EQ(s->stencilFailureOperation(), MTL::StencilOperationKeep);
        EXPECT_EQ(s->depthFailureOperation(), MTL::StencilOperationKeep);
        EXPECT_EQ(s->depthStencilPassOperation(), MTL::StencilOperationKeep);
        EXPECT_EQ(s->readMask(), 0xFFFFFFFFu);
        EXPECT_EQ(s->writeMask(), 0xFFFFFFFFu);
    }
}

TEST_F(Descriptor, StencilIsCopiedAndNilBringsTheDefaultBack)
{
    auto* d = owned(MTL::DepthStencilDescriptor::alloc()->init());
    auto* s = owned(MTL::StencilDescriptor::alloc()->init());
    s->setReadMask(1);
    d->setFrontFaceStencil(s);
    s->setReadMask(2);
    EXPECT_EQ(d->frontFaceStencil()->readMask(), 1u);
    d->setFrontFaceStencil(nullptr);
    EXPECT_EQ(d->frontFaceStencil()->readMask(), 0xFFFFFFFFu);
}

TEST_F(Descriptor, RenderPassDefaults)
{
    auto* d = MTL::RenderPassDescriptor::renderPassDescriptor();
    auto* color = d->colorAttachments()->object(0);
    EXPECT_EQ(color->texture(), nullptr);
    EXPECT_EQ(color->loadAction(), MTL::LoadActionDontCare);
    EXPECT_EQ(color->storeAction(), MTL::StoreActionStore);
    EXPECT_EQ(color->clearColor().alpha, 1);
    EXPECT_EQ(d->depthAttachment()->loadAction(), MTL::LoadActionClear);
    EXPECT_EQ(d->depthAttachment()->storeAction(), MTL::StoreActionDontCare);
    EXPECT_EQ(d->depthAttachment()->clearDepth(), 1);
    EXPECT_EQ(d->stencilAttachment()->loadAction(), MTL::LoadActionClear);
    EXPECT_EQ(d->stencilAttachment()->storeAction(), MTL::StoreActionDontCare);
    EXPECT_EQ(d->stencilAttachment()->clearStencil(), 0u);
}

TEST_F(Descriptor, RenderPipelineDefaults)
{
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    EXPECT_EQ(d->vertexFunction(), nullptr);
    EXPECT_EQ(d->vertexDescriptor(), nullptr);
    EXPECT_TRUE(d->rasterizationEnabled());
    EXPECT_EQ(d->depthAttachmentPixelFormat(), MTL::PixelFormatInvalid);
    auto* color = d->colorAttachments()->object(0);
    EXPECT_EQ(color->pixelFormat(), MTL::PixelFormatInvalid);
    EXPECT_FALSE(color->blendingEnabled());
    EXPECT_EQ(color->sourceRGBBlendFactor(), MTL::BlendFactorOne);
    EXPECT_EQ(color->destinationRGBBlendFactor(), MTL::BlendFactorZero);
    EXPECT_EQ(color->sourceAlphaBlendFactor(), MTL::BlendFactorOne);
    EXPECT_EQ(color->destinationAlphaBlendFactor(), MTL::BlendFactorZero);
    EXPECT_EQ(color->rgbBlendOperation(), MTL::BlendOperationAdd);
    EXPECT_EQ(color->alphaBlendOperation(), MTL::BlendOperationAdd);
    EXPECT_EQ(color->writeMask(), MTL::ColorWriteMaskAll);
}

TEST_F(Descriptor, TextureDefaults)
{
    auto* d = owned(MTL::TextureDescriptor::alloc()->init());
    EXPECT_EQ(d->textureType(), MTL::TextureType2D);
    EXPECT_EQ(d->pixelFormat(), MTL::PixelFormatRGBA8Unorm);
    EXPECT_EQ(d->width(), 1u);
    EXPECT_EQ(d->height(), 1u);
    EXPECT_EQ(d->depth(), 1u);
    EXPECT_EQ(d->mipmapLevelCount(), 1u);
    EXPECT_EQ(d->arrayLength(), 1u);
    EXPECT_EQ(d->sampleCount(), 1u);
    EXPECT_EQ(d->storageMode(), MTL::StorageModeManaged);
    EXPECT_EQ(d->usage(), MTL::TextureUsageShaderRead);
    EXPECT_EQ(d->swizzle().red, MTL::TextureSwizzleRed);
}

TEST_F(Descriptor, MipmappedTextureHasAllLevels)
{
    EXPECT_EQ(MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatR8Unorm, 17, 4, true)->mipmapLevelCount(), 5u);
    EXPECT_EQ(MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatR8Unorm, 17, 4, false)->mipmapLevelCount(), 1u);
}

TEST_F(Descriptor, ResourceOptionsHoldStorageAndCacheModes)
{
    auto* d = owned(MTL::TextureDescriptor::alloc()->init());
    d->setResourceOptions(MTL::ResourceStorageModePrivate | MTL::ResourceCPUCacheModeWriteCombined);
    EXPECT_EQ(d->storageMode(), MTL::StorageModePrivate);
    EXPECT_EQ(d->cpuCacheMode(), MTL::CPUCacheModeWriteCombined);
    EXPECT_EQ(d->resourceOptions(), MTL::ResourceStorageModePrivate | MTL::ResourceCPUCacheModeWriteCombined);
}

TEST_F(Descriptor, VertexDefaults)
{
    auto* d = MTL::VertexDescriptor::vertexDescriptor();
    EXPECT_EQ(d->attributes()->object(3)->format(), MTL::VertexFormatInvalid);
    EXPECT_EQ(d->layouts()->object(3)->stride(), 0u);
    EXPECT_EQ(d->layouts()->object(3)->stepFunction(), MTL::VertexStepFunctionPerVertex);
    EXPECT_EQ(d->layouts()->object(3)->stepRate(), 1u);
    EXPECT_EQ(d->attributes()->object(31), nullptr);
}

TEST_F(Descriptor, CopiesStandOnTheirOwn)
{
    auto* d = MTL::VertexDescriptor::vertexDescriptor();
    d->layouts()->object(0)->setStride(8);
    auto* copied = owned(d->copy());
    d->layouts()->object(0)->setStride(16);
    EXPECT_EQ(copied->layouts()->object(0)->stride(), 8u);
}

TEST_F(Descriptor, ArraysKeepACopy)
{
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    auto* color = owned(MTL::RenderPipelineColorAttachmentDescriptor::alloc()->init());
    color->setPixelFormat(MTL::PixelFormatR8Unorm);
    d->colorAttachments()->setObject(color, 2);
    color->setPixelFormat(MTL::PixelFormatInvalid);
    EXPECT_EQ(d->colorAttachments()->object(2)->pixelFormat(), MTL::PixelFormatR8Unorm);
    d->colorAttachments()->setObject(nullptr, 2);
    EXPECT_EQ(d->colorAttachments()->object(2)->pixelFormat(), MTL::PixelFormatInvalid);
}

TEST_F(Descriptor, PipelineCopiesItsVertexDescriptor)
{
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    auto* vertices = MTL::VertexDescriptor::vertexDescriptor();
    d->setVertexDescriptor(vertices);
    vertices->layouts()->object(0)->setStride(4);
    EXPECT_EQ(d->vertexDescriptor()->layouts()->object(0)->stride(), 0u);
}

} // namespace device_test
