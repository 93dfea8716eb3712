// SPDX-License-Identifier: Apache-2.0
#include "Painter.h"

#include "Programs.h"

#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace determinism
{
namespace
{

constexpr MTL::PixelFormat ColorFormats[] = {MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatRGBA16Float,
                                             MTL::PixelFormatR32Float};
constexpr auto DepthFormat = MTL::PixelFormatDepth32Float_Stencil8;
constexpr NS::UInteger MostTexelBytes = 8;

NS::String* text(const char* s)
{
    return NS::String::string(s, NS::UTF8StringEncoding);
}

[[noreturn]] void stop(NS::Error* error)
{
    std::fprintf(stderr, "%s\n", error ? error->localizedDescription()->utf8String() : "an object could not be made");
    std::exit(1);
}

size_t colorCount(const Look& look)
{
    return look.targets ? std::size(ColorFormats) : 1;
}

} // namespace

Painter::Painter() : device_(MTL::CreateSystemDefaultDevice()), queue_(device_ ? device_->newCommandQueue() : nullptr)
{
    NS::Error* error = nullptr;
    library_ = device_ ? device_->newLibrary(text(Programs), nullptr, &error) : nullptr;
    if (!library_) stop(error);
}

Painter::~Painter()
{
    for (auto& [key, state] : pipelines_)
        state->release();
    library_->release();
    queue_->release();
    device_->release();
}

// ---- states --------------------------------------------------------------------------------------------------------

MTL::RenderPipelineState* Painter::pipeline(const Look& look)
{
    std::string key = look.fragment;
    for (auto value : {NS::UInteger(look.depth || look.stencil), NS::UInteger(look.targets), NS::UInteger(look.blend),
                       NS::UInteger(look.from), NS::UInteger(look.to), NS::UInteger(look.operation)})
        key += " " + std::to_string(value);
    MTL::RenderPipelineState*& state = pipelines_[key];
    if (state) return state;
    auto* d = MTL::RenderPipelineDescriptor::alloc()->init();
    d->setVertexFunction(library_->newFunction(text("scatter"))->autorelease());
    d->setFragmentFunction(library_->newFunction(text(look.fragment))->autorelease());
    for (size_t i = 0; i < colorCount(look); ++i) {
        auto* color = d->colorAttachments()->object(i);
        color->setPixelFormat(ColorFormats[i]);
        color->setBlendingEnabled(look.blend);
        color->setSourceRGBBlendFactor(look.from);
        color->setDestinationRGBBlendFactor(look.to);
        color->setRgbBlendOperation(look.operation);
    }
    if (look.depth || look.stencil) {
        d->setDepthAttachmentPixelFormat(DepthFormat);
        d->setStencilAttachmentPixelFormat(DepthFormat);
    }
    NS::Error* error = nullptr;
    state = device_->newRenderPipelineState(d, &error);
    d->release();
    if (!state) stop(error);
    return state;
}

MTL::DepthStencilState* Painter::depthStencil(const Look& look)
{
    auto* d = MTL::DepthStencilDescriptor::alloc()->init()->autorelease();
    if (look.depth) {
        d->setDepthCompareFunction(look.compare);
        d->setDepthWriteEnabled(true);
    }
    if (look.stencil) {
        auto* s = MTL::StencilDescriptor::alloc()->init()->autorelease();
        s->setStencilCompareFunction(MTL::CompareFunctionNotEqual);
        s->setStencilFailureOperation(MTL::StencilOperationDecrementClamp);
        s->setDepthStencilPassOperation(MTL::StencilOperationIncrementWrap);
        d->setFrontFaceStencil(s);
        d->setBackFaceStencil(s);
    }
    return device_->newDepthStencilState(d)->autorelease();
}

// ---- objects -------------------------------------------------------------------------------------------------------

MTL::Texture* Painter::newTarget(MTL::PixelFormat format)
{
    auto* d = MTL::TextureDescriptor::texture2DDescriptor(format, Width, Height, false);
    d->setUsage(MTL::TextureUsageRenderTarget);
    d->setStorageMode(MTL::StorageModePrivate);
    return device_->newTexture(d)->autorelease();
}

MTL::Texture* Painter::newTexture(Random& random, MTL::TextureType type, MTL::PixelFormat format)
{
    constexpr NS::UInteger Side = 32;
    bool volume = type == MTL::TextureType3D;
    auto* d = MTL::TextureDescriptor::texture2DDescriptor(format, Side, Side, !volume);
    d->setTextureType(type);
    if (volume) d->setDepth(8);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    MTL::Texture* texture = device_->newTexture(d)->autorelease();
    std::vector<uint8_t> texels(Side * Side * 8 * 4);
    for (uint8_t& byte : texels)
        byte = static_cast<uint8_t>(random.below(256));
    for (NS::UInteger face = 0; face < (type == MTL::TextureTypeCube ? 6u : 1u); ++face)
        texture->replaceRegion(MTL::Region(0, 0, 0, Side, Side, volume ? 8 : 1), 0, face, texels.data(), Side * 4,
                               volume ? Side * Side * 4 : 0);
    if (volume) return texture;
    auto* commands = queue_->commandBuffer();
    auto* e = commands->blitCommandEncoder();
    e->generateMipmaps(texture);
    e->endEncoding();
    commands->commit();
    return texture;
}

MTL::SamplerState* Painter::newSampler(Random& random)
{
    constexpr MTL::SamplerAddressMode Modes[] = {MTL::SamplerAddressModeRepeat, MTL::SamplerAddressModeMirrorRepeat,
                                                 MTL::SamplerAddressModeClampToEdge};
    auto* d = MTL::SamplerDescriptor::alloc()->init()->autorelease();
    d->setMinFilter(random.below(4) ? MTL::SamplerMinMagFilterLinear : MTL::SamplerMinMagFilterNearest);
    d->setMagFilter(random.below(2) ? MTL::SamplerMinMagFilterLinear : MTL::SamplerMinMagFilterNearest);
    d->setMipFilter(random.below(3) ? MTL::SamplerMipFilterLinear : MTL::SamplerMipFilterNearest);
    d->setSAddressMode(Modes[random.below(3)]);
    d->setTAddressMode(Modes[random.below(3)]);
    d->setRAddressMode(Modes[random.below(3)]);
    return device_->newSamplerState(d)->autorelease();
}

// ---- drawing -------------------------------------------------------------------------------------------------------

uint64_t Painter::hashOf(const std::vector<MTL::Texture*>& targets)
{
    uint64_t hash = 0xcbf29ce484222325;
    auto take = [&](MTL::Texture* texture, MTL::BlitOption option) {
        constexpr NS::UInteger Bytes = Width * Height * MostTexelBytes;
        auto* buffer = device_->newBuffer(Bytes, MTL::ResourceStorageModeShared)->autorelease();
        auto* commands = queue_->commandBuffer();
        auto* e = commands->blitCommandEncoder();
        e->copyFromTexture(texture, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(Width, Height, 1), buffer, 0,
                           Width * MostTexelBytes, 0, option);
        e->endEncoding();
        commands->commit();
        commands->waitUntilCompleted();
        const auto* bytes = static_cast<const uint8_t*>(buffer->contents());
        for (NS::UInteger i = 0; i < Bytes; ++i)
            hash = (hash ^ bytes[i]) * 0x100000001b3;
    };
    for (MTL::Texture* texture : targets) {
        bool both = texture->pixelFormat() == DepthFormat;
        take(texture, both ? MTL::BlitOptionDepthFromDepthStencil : MTL::BlitOptionNone);
        if (both) take(texture, MTL::BlitOptionStencilFromDepthStencil);
    }
    return hash;
}

uint64_t Painter::draw(const std::vector<Vertex>& vertices, const Look& look)
{
    std::vector<MTL::Texture*> targets;
    auto* pass = MTL::RenderPassDescriptor::renderPassDescriptor();
    for (size_t i = 0; i < colorCount(look); ++i) {
        targets.push_back(newTarget(ColorFormats[i]));
        pass->colorAttachments()->object(i)->setTexture(targets.back());
        pass->colorAttachments()->object(i)->setLoadAction(MTL::LoadActionClear);
        pass->colorAttachments()->object(i)->setClearColor(MTL::ClearColor(0.1, 0.2, 0.3, 1));
    }
    if (look.depth || look.stencil) {
        targets.push_back(newTarget(DepthFormat));
        pass->depthAttachment()->setTexture(targets.back());
        pass->depthAttachment()->setLoadAction(MTL::LoadActionClear);
        pass->depthAttachment()->setClearDepth(look.compare == MTL::CompareFunctionGreater ? 0 : 1);
        pass->stencilAttachment()->setTexture(targets.back());
        pass->stencilAttachment()->setLoadAction(MTL::LoadActionClear);
    }
    auto* commands = queue_->commandBuffer();
    auto* e = commands->renderCommandEncoder(pass);
    e->setRenderPipelineState(pipeline(look));
    e->setDepthStencilState(depthStencil(look));
    e->setStencilReferenceValue(2);
    e->setCullMode(look.cull);
    e->setBlendColor(0.25f, 0.5f, 0.75f, 0.5f);
    e->setVertexBuffer(
        device_->newBuffer(vertices.data(), vertices.size() * sizeof(Vertex), MTL::ResourceStorageModeShared)
            ->autorelease(),
        0, 0);
    if (look.texture) e->setFragmentTexture(look.texture, 0);
    if (look.sampler) e->setFragmentSamplerState(look.sampler, 0);
    e->drawPrimitives(look.primitive, NS::UInteger(0), vertices.size(), look.instances);
    e->endEncoding();
    commands->commit();
    return hashOf(targets);
}

} // namespace determinism
