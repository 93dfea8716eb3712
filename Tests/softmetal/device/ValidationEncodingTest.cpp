// SPDX-License-Identifier: Apache-2.0
// Rules of command buffers, encoders, passes, draws and bindings.
#include "ValidationFixture.h"

#include <limits>

namespace device_test {

void Validation::commandBuffers()
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

void Validation::encoders()
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

void Validation::passes()
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

void Validation::drawsWithTheirState()
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

void Validation::drawsWithTheirBindings()
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

void Validation::bindings()
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

TEST_F(Validation, CommandBuffers) { commandBuffers(); }
TEST_F(Validation, Encoders) { encoders(); }
TEST_F(Validation, Passes) { passes(); }
TEST_F(Validation, DrawsWithTheirState) { drawsWithTheirState(); }
TEST_F(Validation, DrawsWithTheirBindings) { drawsWithTheirBindings(); }
TEST_F(Validation, Bindings) { bindings(); }

} // namespace device_test
