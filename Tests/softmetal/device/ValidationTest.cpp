// SPDX-License-Identifier: Apache-2.0
// A pair for each rule: calls that break it, and the same calls with one difference that keep it.
#include "DeviceFixture.h"

#include <functional>
#include <limits>
#include <set>

namespace device_test {

class Validation : public Device
{
protected:
    struct Pair
    {
        const char* rule;
        std::function<void(bool keeps)> calls;
    };

    void expectPairs(const std::vector<Pair>& pairs)
    {
        for (const Pair& pair : pairs) {
            for (bool keeps : {false, true}) {
                auto* inner = NS::AutoreleasePool::alloc()->init();
                commands = nullptr;
                pair.calls(keeps);
                if (commands && commands->status() < MTL::CommandBufferStatusCommitted && !leftOpen) {
                    commands->commit();
                    commands->waitUntilCompleted();
                }
                leftOpen = false;
                auto seen = broken();
                EXPECT_EQ(seen, keeps ? rules({}) : rules({pair.rule})) << pair.rule << (keeps ? ": kept" : ": broken");
                if (!keeps) fired().insert(pair.rule);
                inner->release();
                SoftMetal::takeMessages();
            }
        }
    }

    static std::set<std::string>& fired()
    {
        static std::set<std::string> rules;
        return rules;
    }

    /// A blit encoder that is ended after the calls.
    void blitting(const std::function<void(MTL::BlitCommandEncoder*)>& calls)
    {
        auto* e = blit();
        calls(e);
        e->endEncoding();
    }
    /// The same for a pass that is ready to draw.
    void drawing(const std::function<void(MTL::RenderCommandEncoder*)>& calls)
    {
        auto* e = readyToDraw();
        calls(e);
        e->endEncoding();
    }

    MTL::Texture* textureWith(const std::function<void(MTL::TextureDescriptor*)>& change)
    {
        auto* d = textureDescriptor();
        change(d);
        return owned(device->newTexture(d));
    }

    MTL::SamplerState* samplerWith(const std::function<void(MTL::SamplerDescriptor*)>& change)
    {
        auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
        change(d);
        return owned(device->newSamplerState(d));
    }

    MTL::Texture* depthTexture(MTL::PixelFormat format = MTL::PixelFormatDepth32Float)
    {
        return textureWith([&](auto* d) {
            d->setPixelFormat(format);
            d->setStorageMode(MTL::StorageModePrivate);
        });
    }

    MTL::Device* otherDevice()
    {
        static MTL::Device* other = SoftMetal::newDevice({});
        return other;
    }

    bool leftOpen = false; // the calls leave their command buffer uncommitted
};

TEST_F(Validation, CommandBuffers)
{
    expectPairs({
        {"commands.commit-twice",
         [&](bool keeps) {
             auto* c = queue->commandBuffer();
             c->commit();
             if (!keeps) c->commit();
             c->waitUntilCompleted();
         }},
        {"commands.open-encoder",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->endEncoding();
             commands->commit();
         }},
        {"commands.committed",
         [&](bool keeps) {
             commands = queue->commandBuffer();
             if (!keeps) commands->commit();
             commands->blitCommandEncoder()->endEncoding();
         }},
        {"commands.two-encoders",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->endEncoding();
             commands->renderCommandEncoder(pass(texture()))->endEncoding();
             if (!keeps) e->endEncoding();
         }},
        {"commands.handler",
         [&](bool keeps) {
             commands = queue->commandBuffer();
             if (!keeps) commands->commit();
             commands->addCompletedHandler([](MTL::CommandBuffer*) {});
         }},
        {"commands.wait",
         [&](bool keeps) {
             auto* c = queue->commandBuffer();
             if (keeps) c->commit();
             c->waitUntilCompleted();
         }},
        {"commands.debug-group",
         [&](bool keeps) {
             commands = queue->commandBuffer();
             if (keeps) commands->pushDebugGroup(text("frame"));
             commands->popDebugGroup();
         }},
        {"commands.nil-drawable",
         [&](bool keeps) {
             commands = queue->commandBuffer();
             auto* layer = CA::MetalLayer::layer();
             layer->setDevice(device);
             layer->setDrawableSize(CGSize{4, 4});
             commands->presentDrawable(keeps ? layer->nextDrawable() : nullptr);
         }},
        {"commands.nil-pass",
         [&](bool keeps) {
             commands = queue->commandBuffer();
             auto* e = commands->renderCommandEncoder(keeps ? pass(texture()) : nullptr);
             if (e) e->endEncoding();
         }},
        {"queue.exhausted",
         [&](bool keeps) {
             auto* narrow = owned(device->newCommandQueue(2));
             narrow->commandBuffer();
             narrow->commandBuffer();
             if (!keeps) narrow->commandBuffer();
         }},
    });
}

TEST_F(Validation, Encoders)
{
    auto* fence = owned(device->newFence());
    expectPairs({
        {"encoder.ended",
         [&](bool keeps) {
             auto* e = encoder(texture());
             if (!keeps) e->endEncoding();
             e->setCullMode(MTL::CullModeBack);
             if (keeps) e->endEncoding();
         }},
        {"encoder.released-open",
         [&](bool keeps) {
             auto* inner = NS::AutoreleasePool::alloc()->init();
             auto* c = queue->commandBuffer()->retain();
             auto* e = c->blitCommandEncoder();
             if (keeps) e->endEncoding();
             inner->release();
             c->release();
         }},
        {"encoder.debug-group",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->pushDebugGroup(text("copies"));
             e->popDebugGroup();
             e->endEncoding();
         }},
        {"encoder.nil-fence", [&](bool keeps) { blitting([&](auto* e) { e->updateFence(keeps ? fence : nullptr); }); }},
        {"encoder.nil-pipeline", [&](bool keeps) { drawing([&](auto* e) { e->setRenderPipelineState(keeps ? pipeline() : nullptr); }); }},
        {"encoder.no-viewport",
         [&](bool keeps) {
             const MTL::Viewport viewports[2] = {{0, 0, 8, 8, 0, 1}, {0, 0, 8, 8, 0, 1}};
             drawing([&](auto* e) { e->setViewports(viewports, keeps ? 1 : 2); });
         }},
        {"encoder.viewport",
         [&](bool keeps) { drawing([&](auto* e) { e->setViewport({0, 0, keeps ? 8 : std::numeric_limits<double>::infinity(), -8, 0, 1}); }); }},
        {"encoder.no-scissor",
         [&](bool keeps) {
             const MTL::ScissorRect rects[2] = {{0, 0, 8, 8}, {0, 0, 8, 8}};
             drawing([&](auto* e) { e->setScissorRects(rects, keeps ? 1 : 0); });
         }},
        {"encoder.scissor", [&](bool keeps) { drawing([&](auto* e) { e->setScissorRect({1, 0, keeps ? 7u : ~NS::UInteger{0}, 8}); }); }},
        {"encoder.visibility-buffer",
         [&](bool keeps) {
             auto* d = pass(texture());
             if (keeps) d->setVisibilityResultBuffer(buffer(8));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, 0);
             e->endEncoding();
         }},
        {"encoder.visibility-offset",
         [&](bool keeps) {
             auto* d = pass(texture());
             d->setVisibilityResultBuffer(buffer(32));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, keeps ? 16 : 12);
             e->endEncoding();
         }},
        {"encoder.visibility-range",
         [&](bool keeps) {
             auto* d = pass(texture());
             d->setVisibilityResultBuffer(buffer(32));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, keeps ? 24 : 32);
             e->endEncoding();
         }},
        {"encoder.other-device",
         [&](bool keeps) {
             auto* b = owned((keeps ? device : otherDevice())->newBuffer(64, MTL::ResourceStorageModeShared));
             drawing([&](auto* e) { e->setVertexBuffer(b, 0, 3); });
         }},
    });
}

TEST_F(Validation, Passes)
{
    auto attached = [&](auto change) {
        auto* d = pass(texture());
        change(d);
        encoder(d)->endEncoding();
    };
    auto* volume = textureWith([](auto* d) {
        d->setTextureType(MTL::TextureType3D);
        d->setDepth(2);
    });
    auto *both = depthTexture(MTL::PixelFormatDepth32Float_Stencil8), *another = depthTexture(MTL::PixelFormatDepth32Float_Stencil8);
    expectPairs({
        {"pass.usage",
         [&](bool keeps) {
             auto* t = textureWith([&](auto* d) { d->setUsage(keeps ? MTL::TextureUsageRenderTarget : MTL::TextureUsageShaderRead); });
             attached([&](auto* d) { d->colorAttachments()->object(1)->setTexture(t); });
         }},
        {"pass.format", [&](bool keeps) { attached([&](auto* d) { d->depthAttachment()->setTexture(keeps ? depthTexture() : texture()); }); }},
        {"pass.level", [&](bool keeps) { attached([&](auto* d) { d->colorAttachments()->object(0)->setLevel(keeps ? 0 : 1); }); }},
        {"pass.depth-plane",
         [&](bool keeps) {
             attached([&](auto* d) {
                 d->colorAttachments()->object(0)->setTexture(volume);
                 d->colorAttachments()->object(0)->setDepthPlane(keeps ? 1 : 2);
             });
         }},
        {"pass.resolve", [&](bool keeps) { attached([&](auto* d) { d->colorAttachments()->object(0)->setResolveTexture(keeps ? nullptr : texture()); }); }},
        {"pass.depth-stencil",
         [&](bool keeps) {
             attached([&](auto* d) {
                 d->depthAttachment()->setTexture(both);
                 d->stencilAttachment()->setTexture(keeps ? both : another);
             });
         }},
    });
}

TEST_F(Validation, DrawsWithTheirState)
{
    auto* depthState = owned(MTL::DepthStencilDescriptor::alloc()->init());
    depthState->setDepthCompareFunction(MTL::CompareFunctionLess);
    auto* stencilState = owned(MTL::DepthStencilDescriptor::alloc()->init());
    stencilState->frontFaceStencil()->setStencilCompareFunction(MTL::CompareFunctionEqual);
    auto* unchanged = owned(MTL::DepthStencilDescriptor::alloc()->init());
    expectPairs({
        {"draw.no-pipeline",
         [&](bool keeps) {
             auto* e = encoder(texture());
             if (keeps) e->setRenderPipelineState(pipeline());
             bindFullTarget(e);
             setColor(e, {});
             drawFullTarget(e);
             e->endEncoding();
         }},
        {"draw.color-format",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(pipelineDescriptor("plain", keeps ? MTL::PixelFormatRGBA8Unorm : MTL::PixelFormatBGRA8Unorm)));
                 drawFullTarget(e);
             });
         }},
        {"draw.depth-format",
         [&](bool keeps) {
             auto* d = pipelineDescriptor();
             if (!keeps) d->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth32Float);
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 drawFullTarget(e);
             });
         }},
        {"draw.stencil-format",
         [&](bool keeps) {
             auto* d = pipelineDescriptor();
             if (!keeps) d->setStencilAttachmentPixelFormat(MTL::PixelFormatDepth32Float_Stencil8);
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 drawFullTarget(e);
             });
         }},
        {"draw.depth-state",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setDepthStencilState(owned(device->newDepthStencilState(keeps ? unchanged : depthState)));
                 drawFullTarget(e);
             });
         }},
        {"draw.stencil-state",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setDepthStencilState(owned(device->newDepthStencilState(keeps ? unchanged : stencilState)));
                 drawFullTarget(e);
             });
         }},
        {"draw.primitive",
         [&](bool keeps) { drawing([&](auto* e) { e->drawPrimitives(keeps ? MTL::PrimitiveTypeLine : static_cast<MTL::PrimitiveType>(5), NS::UInteger(0), NS::UInteger(6)); }); }},
        {"draw.count",
         [&](bool keeps) { drawing([&](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, keeps ? 0 : NS::UInteger{1} << 32, NS::UInteger(6)); }); }},
    });
}

TEST_F(Validation, DrawsWithTheirBindings)
{
    auto textured = [&](auto bind) {
        auto* e = encoder(texture());
        e->setRenderPipelineState(pipeline("textured"));
        bindFullTarget(e);
        e->setFragmentTexture(texture(), 0);
        e->setFragmentSamplerState(sampler(), 0);
        bind(e);
        drawFullTarget(e);
        e->endEncoding();
    };
    auto indexed = [&](MTL::Buffer* indices, NS::UInteger offset) {
        drawing([&](auto* e) { e->drawIndexedPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(3), MTL::IndexTypeUInt16, indices, offset); });
    };
    auto* indices = bufferOf<uint16_t>({0, 1, 2, 3});
    auto* volume = textureWith([](auto* d) { d->setTextureType(MTL::TextureType3D); });
    expectPairs({
        {"draw.missing-vertex-buffer",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 if (!keeps) e->setVertexBuffer(nullptr, 0, 0);
                 drawFullTarget(e);
             });
         }},
        {"draw.vertex-range", [&](bool keeps) { drawing([&](auto* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(keeps ? 3 : 4), NS::UInteger(3)); }); }},
        {"draw.missing-buffer",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 if (!keeps) e->setFragmentBuffer(nullptr, 0, 1);
                 drawFullTarget(e);
             });
         }},
        {"draw.short-buffer",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setFragmentBuffer(buffer(keeps ? 16 : 12), 0, 1);
                 drawFullTarget(e);
             });
         }},
        {"draw.missing-texture", [&](bool keeps) { textured([&](auto* e) { e->setFragmentTexture(keeps ? texture() : nullptr, 0); }); }},
        {"draw.texture-type", [&](bool keeps) { textured([&](auto* e) { e->setFragmentTexture(keeps ? texture() : volume, 0); }); }},
        {"draw.missing-sampler", [&](bool keeps) { textured([&](auto* e) { e->setFragmentSamplerState(keeps ? sampler() : nullptr, 0); }); }},
        {"draw.no-indices", [&](bool keeps) { indexed(keeps ? indices : nullptr, 0); }},
        {"draw.index-range", [&](bool keeps) { indexed(indices, keeps ? 2 : 4); }},
        {"draw.index-alignment", [&](bool keeps) { indexed(indices, keeps ? 2 : 1); }},
    });
}

TEST_F(Validation, Bindings)
{
    const std::vector<uint8_t> bytes(4100);
    auto* b = buffer(64);
    auto* drawn = textureWith([](auto* d) { d->setUsage(MTL::TextureUsageRenderTarget); });
    auto* purged = buffer(64);
    expectPairs({
        {"bind.index", [&](bool keeps) { drawing([&](auto* e) { e->setVertexBuffer(b, 0, keeps ? 30 : 31); }); }},
        {"bind.bytes", [&](bool keeps) { drawing([&](auto* e) { e->setVertexBytes(bytes.data(), keeps ? 4096 : 4097, 3); }); }},
        {"bind.no-bytes", [&](bool keeps) { drawing([&](auto* e) { e->setVertexBytes(bytes.data(), keeps ? 1 : 0, 3); }); }},
        {"bind.offset", [&](bool keeps) { drawing([&](auto* e) { e->setVertexBuffer(b, keeps ? 60 : 64, 3); }); }},
        {"bind.no-buffer", [&](bool keeps) { drawing([&](auto* e) { e->setVertexBufferOffset(4, keeps ? 0 : 3); }); }},
        {"bind.texture-usage", [&](bool keeps) { drawing([&](auto* e) { e->setFragmentTexture(keeps ? texture() : drawn, 3); }); }},
        {"bind.purged",
         [&](bool keeps) {
             purged->setPurgeableState(keeps ? MTL::PurgeableStateNonVolatile : MTL::PurgeableStateEmpty);
             drawing([&](auto* e) { e->setVertexBuffer(purged, 0, 3); });
         }},
    });
}

TEST_F(Validation, Buffers)
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
    fired().insert("buffer.texture");
}

TEST_F(Validation, TextureDescriptors)
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

TEST_F(Validation, TextureAccess)
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

TEST_F(Validation, Samplers)
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

TEST_F(Validation, Blits)
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

TEST_F(Validation, Layers)
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

/// Runs last in this file: every rule has been broken once.
TEST_F(Validation, ZEveryRuleHasFired)
{
    if (fired().size() < 10) GTEST_SKIP() << "only meaningful when the tests above have run in the same process";
    for (const std::string& rule : SoftMetal::validationRules()) EXPECT_TRUE(fired().contains(rule)) << rule;
}

// ---- what is let pass -----------------------------------------------------------------------------------------------------------

TEST_F(Validation, SamplerSlotsThatNobodyReadsMayBeNil)
{
    auto* e = readyToDraw();
    const MTL::SamplerState* none[2] = {nullptr, nullptr};
    e->setFragmentSamplerStates(none, NS::Range(0, 2));
    drawFullTarget(e);
    finish(e);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, ConstantsThatNobodyDeclaresMayBeSet)
{
    const std::array<bool, 20> values{};
    auto* constants = owned(MTL::FunctionConstantValues::alloc()->init());
    constants->setConstantValues(values.data(), MTL::DataTypeBool, NS::Range(0, 20));
    NS::Error* error = nullptr;
    EXPECT_NE(owned(library()->newFunction(text("plain"), constants, &error)), nullptr);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, DepthStencilTextureMayBeBoundForOneOfThem)
{
    auto* both = depthTexture(MTL::PixelFormatDepth24Unorm_Stencil8);
    for (bool depth : {true, false}) {
        auto* d = pass(texture());
        auto* description = pipelineDescriptor();
        if (depth) {
            d->depthAttachment()->setTexture(both);
            description->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth24Unorm_Stencil8);
        } else {
            d->stencilAttachment()->setTexture(both);
            description->setStencilAttachmentPixelFormat(MTL::PixelFormatDepth24Unorm_Stencil8);
        }
        auto* e = encoder(d);
        e->setRenderPipelineState(pipeline(description));
        bindFullTarget(e);
        setColor(e, {});
        drawFullTarget(e);
        finish(e);
        EXPECT_TRUE(broken().empty());
    }
}

// ---- messages and modes ---------------------------------------------------------------------------------------------------------

TEST_F(Validation, SentenceNamesCallLabelValueAndLimit)
{
    auto* b = buffer(8);
    b->setLabel(text("positions"));
    b->didModifyRange(NS::Range(4, 8));
    auto messages = SoftMetal::takeMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].sentence, "didModifyRange: 8 bytes from 4 end beyond buffer 'positions' (8 bytes)");
}

TEST_F(Validation, OffSaysNothingAndStaysSafe)
{
    SoftMetal::setValidation(SoftMetal::Validation::Off);
    auto* e = encoder(texture());
    drawFullTarget(e); // no pipeline
    e->setVertexBuffer(buffer(4), 100, 0);
    finish(e);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, SentenceIsPrintedAtMostTenTimes)
{
    int lines = 0;
    SoftMetal::setLogSink([&](const std::string&) { ++lines; });
    auto* b = buffer(4);
    for (int i = 0; i < 30; ++i) b->didModifyRange(NS::Range(0, 5));
    EXPECT_EQ(lines, 10);
    EXPECT_EQ(broken().size(), 30u);
}

using ValidationDeathTest = Validation;

TEST_F(ValidationDeathTest, AbortStopsAtTheFirst)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SoftMetal::setValidation(SoftMetal::Validation::Abort);
            buffer(4)->didModifyRange(NS::Range(0, 5));
        },
        "");
}

} // namespace device_test
