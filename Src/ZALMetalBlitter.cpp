// SPDX-License-Identifier: Apache-2.0
#include "ZALMetalBlitter.h"

#include "ZALMetalLog.h"

#include <AppKit/AppKit.hpp>
#include <Foundation/Foundation.hpp>

#include <new>
#include <utility>

namespace {

/// One line after the two includes.
constexpr const char* ShaderSource =
    "#include <simd/simd.h>\n"
    "#include <metal_stdlib>\n"
    "enum ZAL_VSH_INPUT { "
    "ZAL_VSH_VERTEX = 0, ZAL_VSH_USER0 = 1, ZAL_VSH_NORMAL = 2, ZAL_VSH_COLOR = 3, ZAL_VSH_USER1 = 4, ZAL_VSH_USER2 = 5, ZAL_VSH_USER3 = 6, ZAL_VSH_USER4 = 7, ZAL_VSH_TEX0 = 8, ZAL_VSH_TEX1 = 9, ZAL_VSH_TEX2 = 10, ZAL_VSH_TEX3 = 11, ZAL_VSH_TEX4 = 12, ZAL_VSH_TEX5 = 13, ZAL_VSH_TEX6 = 14, ZAL_VSH_TEX7 = 15 }; "
    "using namespace metal; struct BlitVertex { float2 position [[attribute(ZAL_VSH_VERTEX)]]; float2 uv [[attribute(ZAL_VSH_TEX0)]]; "
    "}; struct BlitVarying { float4 position [[position]]; float2 uv; }; "
    "vertex BlitVarying blitAndConvert_vert( BlitVertex in [[stage_in]] ) { BlitVarying out; "
    "float4 pos4 = float4(in.position, 0.0, 1.0); out.position = pos4; out.uv = in.uv; return out; } "
    "fragment float4 blitAndConvert_frag( BlitVarying in [[stage_in]], texture2d<float> srcTexture [[texture(0)]] ) { "
    "constexpr sampler textureSampler (coord::pixel, filter::nearest); "
    "const float4 colorSample = srcTexture.sample(textureSampler, in.uv); return colorSample; } struct BlitDepthOutput { "
    "float depth [[depth(any)]]; }; "
    "fragment BlitDepthOutput blitAndConvertDepth_frag( BlitVarying in [[stage_in]], depth2d<float> srcTexture [[texture(0)]] ) { "
    "constexpr sampler textureSampler (coord::pixel, filter::nearest); "
    "const float4 texSample = srcTexture.sample(textureSampler, in.uv); BlitDepthOutput result; result.depth = texSample.x; "
    "return result; }";

NS::String* text(const char* characters) { return NS::String::string(characters, NS::UTF8StringEncoding); }

bool isDepthFormat(MTL::PixelFormat format)
{
    return format == MTL::PixelFormatDepth16Unorm || format == MTL::PixelFormatDepth32Float || format == MTL::PixelFormatDepth24Unorm_Stencil8 ||
           format == MTL::PixelFormatDepth32Float_Stencil8;
}

/// Where the quad is drawn: the destination itself, or a texture that is copied to it afterwards.
struct Target
{
    MTL::Texture* texture;
    NS::UInteger slice, level;
    MTL::Origin origin;
    bool temporary;
};

Target chooseTarget(MTL::Device* device, MTL::Texture* dst, const MTL::Size& size, const MTL::Origin& origin, int slice, int level)
{
    if (dst->usage() & MTL::TextureUsageRenderTarget)
        return {dst, static_cast<NS::UInteger>(slice), static_cast<NS::UInteger>(level), origin, false};
    MTL::TextureDescriptor* d = MTL::TextureDescriptor::alloc()->init();
    d->setTextureType(MTL::TextureType2D);
    d->setPixelFormat(dst->pixelFormat());
    d->setWidth(size.width);
    d->setHeight(size.height);
    d->setStorageMode(MTL::StorageModePrivate);
    d->setUsage(MTL::TextureUsageRenderTarget);
    Target target{device->newTexture(d), 0, 0, MTL::Origin(0, 0, 0), true};
    d->release();
    return target;
}

MTL::RenderCommandEncoder* openPass(MTL::CommandBuffer* commandBuffer, const Target& target, bool depth)
{
    MTL::RenderPassDescriptor* pass = MTL::RenderPassDescriptor::alloc()->init();
    if (depth) {
        pass->depthAttachment()->setLoadAction(MTL::LoadActionLoad);
        pass->depthAttachment()->setStoreAction(MTL::StoreActionStore);
        pass->depthAttachment()->setTexture(target.texture);
    } else {
        MTL::RenderPassColorAttachmentDescriptor* color = pass->colorAttachments()->object(0);
        color->setLoadAction(MTL::LoadActionLoad);
        color->setStoreAction(MTL::StoreActionStore);
        color->setTexture(target.texture);
        color->setSlice(target.slice);
        color->setLevel(target.level);
    }
    MTL::RenderCommandEncoder* encoder = commandBuffer->renderCommandEncoder(pass);
    ++ZALMetal::g_counters.passes;
    pass->release();
    return encoder;
}

MTL::VertexDescriptor* newLayout()
{
    constexpr NS::UInteger Position = 0, Texcoord = 8;
    MTL::VertexDescriptor* layout = MTL::VertexDescriptor::alloc()->init();
    layout->layouts()->object(0)->setStride(16);
    layout->attributes()->object(Position)->setFormat(MTL::VertexFormatFloat2);
    layout->attributes()->object(Position)->setOffset(0);
    layout->attributes()->object(Position)->setBufferIndex(0);
    layout->attributes()->object(Texcoord)->setFormat(MTL::VertexFormatFloat2);
    layout->attributes()->object(Texcoord)->setOffset(8);
    layout->attributes()->object(Texcoord)->setBufferIndex(0);
    return layout;
}

MTL::RenderPipelineState* newPipeline(ZALMetalBlitter* blitter, MTL::Device* device, MTL::PixelFormat format, bool depth, NS::Error** error)
{
    MTL::VertexDescriptor* layout = newLayout();
    MTL::RenderPipelineDescriptor* d = MTL::RenderPipelineDescriptor::alloc()->init();
    d->setVertexDescriptor(layout);
    d->setVertexFunction(blitter->vertexFunction);
    if (depth) {
        d->setDepthAttachmentPixelFormat(format);
        d->setFragmentFunction(blitter->depthFunction);
    } else {
        d->colorAttachments()->object(0)->setPixelFormat(format);
        d->setFragmentFunction(blitter->colorFunction);
    }
    MTL::RenderPipelineState* state = device->newRenderPipelineState(d, error);
    if (state) ++ZALMetal::g_counters.pipelines;
    d->release();
    layout->release();
    return state;
}

void drawQuad(MTL::RenderCommandEncoder* encoder, MTL::Texture* src, const MTL::Origin& origin, const MTL::Size& size, const MTL::Origin& at, bool flip)
{
    auto left = static_cast<float>(origin.x), right = static_cast<float>(origin.x + size.width);
    auto top = static_cast<float>(origin.y), bottom = static_cast<float>(origin.y + size.height);
    if (flip) std::swap(top, bottom);
    const float quad[4][4] = {{-1, 1, left, top}, {1, 1, right, top}, {-1, -1, left, bottom}, {1, -1, right, bottom}};
    encoder->setVertexBytes(quad, sizeof quad, 0);
    encoder->setViewport(MTL::Viewport{static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(size.width), static_cast<double>(size.height), 0, 1});
    encoder->setFragmentTexture(src, 0);
    ++ZALMetal::g_counters.draws;
    encoder->drawPrimitives(MTL::PrimitiveTypeTriangleStrip, NS::UInteger(0), NS::UInteger(4), NS::UInteger(1));
}

void copyBack(MTL::CommandBuffer* commandBuffer, const Target& from, const MTL::Size& size, MTL::Texture* dst, const MTL::Origin& origin, int slice, int level)
{
    constexpr NS::UInteger ManagedOption = 16;
    MTL::BlitCommandEncoder* blit = commandBuffer->blitCommandEncoder();
    blit->copyFromTexture(from.texture, 0, 0, MTL::Origin(0, 0, 0), size, dst, static_cast<NS::UInteger>(slice), static_cast<NS::UInteger>(level), origin);
    // Kept on purpose: [blit-synchronise] the storage mode is held against an option's value, so nothing is ever synchronised.
    if (static_cast<NS::UInteger>(dst->storageMode()) == ManagedOption) blit->synchronizeResource(dst);
    blit->endEncoding();
}

} // namespace

ZALMetalBlitter* ZALMetalBlitterInit(MTL::Device* device)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    NS::Error* error = nullptr;
    MTL::Library* library = device->newLibrary(text(ShaderSource), nullptr, &error);
    if (!library) NS::raise("Failed to compile shaders", error ? error->localizedDescription()->utf8String() : "");
    auto* blitter = new (std::nothrow) ZALMetalBlitter{};
    if (!blitter) {
        library->release();
        pool->release();
        return nullptr;
    }
    blitter->library = library;
    MTL::DepthStencilDescriptor* always = MTL::DepthStencilDescriptor::alloc()->init();
    always->setDepthCompareFunction(MTL::CompareFunctionAlways);
    always->setDepthWriteEnabled(true);
    blitter->depthStencilState = device->newDepthStencilState(always);
    always->release();
    blitter->vertexFunction = library->newFunction(text("blitAndConvert_vert"));
    blitter->colorFunction = library->newFunction(text("blitAndConvert_frag"));
    blitter->depthFunction = library->newFunction(text("blitAndConvertDepth_frag"));
    pool->release();
    return blitter;
}

void ZALMetalBlitterRelease(ZALMetalBlitter* blitter)
{
    if (!blitter) return;
    blitter->library->release();
    for (MTL::Function* function : {blitter->vertexFunction, blitter->colorFunction, blitter->depthFunction})
        if (function) function->release();
    if (blitter->depthStencilState) blitter->depthStencilState->release();
    delete blitter;
}

bool CopyTexSubImage2D(ZALMetalBlitter* blitter, MTL::Device* device, MTL::CommandBuffer* commandBuffer, MTL::Texture* src, const MTL::Origin& srcOrigin,
                       const MTL::Size& srcSize, MTL::Texture* dst, const MTL::Origin& dstOrigin, int dstSlice, int dstLevel, bool flip)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    Target target = chooseTarget(device, dst, srcSize, dstOrigin, dstSlice, dstLevel);
    if (!target.texture) { // no memory, or a size that no texture has
        pool->release();
        return true;
    }
    bool depth = isDepthFormat(dst->pixelFormat());
    commandBuffer->pushDebugGroup(text("ZALMetalBlitter, CopyTexSubImage2D"));
    MTL::RenderCommandEncoder* encoder = openPass(commandBuffer, target, depth);
    NS::Error* error = nullptr;
    MTL::RenderPipelineState* pipeline = newPipeline(blitter, device, dst->pixelFormat(), depth, &error);
    if (!pipeline) { // the encoder is left open, as it always was
        ZALMetal::Log(ZALMetalLogLevelError, "CopyTexSubImage2D, Failed to create pipeline state, error %s", ZALMetal::InWords(error));
        commandBuffer->popDebugGroup();
        pool->release();
        return true;
    }
    encoder->setRenderPipelineState(pipeline);
    if (depth) encoder->setDepthStencilState(blitter->depthStencilState);
    drawQuad(encoder, src, srcOrigin, srcSize, target.origin, flip);
    encoder->endEncoding();
    if (target.temporary) {
        copyBack(commandBuffer, target, srcSize, dst, dstOrigin, dstSlice, dstLevel);
        target.texture->release();
    }
    pipeline->release();
    commandBuffer->popDebugGroup();
    pool->release();
    return false;
}
