// SPDX-License-Identifier: Apache-2.0
// Rules of command buffers, encoders, passes, draws and bindings.
#include "ValidationFixture.h"

#include <limits>

namespace device_test
{

void Validation::commandBuffers()
{
    expectPairs({
        {"commands.commit-twice", "commit: command buffer 'frame' has been committed before",
         [&](bool keeps) {
             auto* c = named("frame", queue->commandBuffer());
             c->commit();
             if (!keeps) c->commit();
             c->waitUntilCompleted();
         }},
        {"commands.open-encoder",
         "commit: an encoder of command buffer 'frame' has not ended; what it holds is dropped",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->endEncoding();
             commands->commit();
         }},
        {"commands.committed", "blitCommandEncoder: command buffer 'frame' has been committed and takes nothing more",
         [&](bool keeps) {
             frame();
             if (!keeps) commands->commit();
             commands->blitCommandEncoder()->endEncoding();
         }},
        {"commands.two-encoders",
         "renderCommandEncoder: another encoder of command buffer 'frame' has not ended; what the new one is given is "
         "dropped",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->endEncoding();
             commands->renderCommandEncoder(pass(texture()))->endEncoding();
             if (!keeps) e->endEncoding();
         }},
        {"commands.handler",
         "addCompletedHandler: command buffer 'frame' has been committed; handlers must be added before",
         [&](bool keeps) {
             frame();
             if (!keeps) commands->commit();
             commands->addCompletedHandler([](MTL::CommandBuffer*) {});
         }},
        {"commands.wait",
         "waitUntilCompleted: command buffer 'frame' has not been committed, so that the wait would not end",
         [&](bool keeps) {
             auto* c = named("frame", queue->commandBuffer());
             if (keeps) c->commit();
             c->waitUntilCompleted();
         }},
        {"commands.debug-group", "popDebugGroup: command buffer 'frame' has no open debug group",
         [&](bool keeps) {
             frame();
             if (keeps) commands->pushDebugGroup(text("frame"));
             commands->popDebugGroup();
         }},
        {"commands.nil-drawable", "presentDrawable: the drawable given to command buffer 'frame' must not be nil",
         [&](bool keeps) {
             frame();
             auto* layer = CA::MetalLayer::layer();
             layer->setDevice(device);
             layer->setDrawableSize(CGSize{4, 4});
             commands->presentDrawable(keeps ? layer->nextDrawable() : nullptr);
         }},
        {"commands.nil-pass", "renderCommandEncoder: the descriptor given to command buffer 'frame' must not be nil",
         [&](bool keeps) {
             frame();
             auto* e = commands->renderCommandEncoder(keeps ? pass(texture()) : nullptr);
             if (e) e->endEncoding();
         }},
        {"queue.exhausted",
         "commandBuffer: queue 'narrow' has 2 command buffers that are not committed, and its limit is 2",
         [&](bool keeps) {
             auto* narrow = named("narrow", owned(device->newCommandQueue(2)));
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
        {"encoder.ended", "setCullMode: encoder 'pass' has ended",
         [&](bool keeps) {
             auto* e = encoder(texture());
             if (!keeps) e->endEncoding();
             e->setCullMode(MTL::CullModeBack);
             if (keeps) e->endEncoding();
         }},
        {"encoder.released-open", "encoder (no label) is released before endEncoding; what it holds is dropped",
         [&](bool keeps) {
             auto* inner = NS::AutoreleasePool::alloc()->init();
             auto* c = queue->commandBuffer()->retain();
             auto* e = c->blitCommandEncoder();
             if (keeps) e->endEncoding();
             inner->release();
             c->release();
         }},
        {"encoder.debug-group", "popDebugGroup: encoder 'copies' has no open debug group",
         [&](bool keeps) {
             auto* e = blit();
             if (keeps) e->pushDebugGroup(text("copies"));
             e->popDebugGroup();
             e->endEncoding();
         }},
        {"encoder.nil-fence", "updateFence: the fence given to encoder 'copies' must not be nil",
         [&](bool keeps) { blitting([&](auto* e) { e->updateFence(keeps ? fence : nullptr); }); }},
        {"encoder.nil-pipeline", "setRenderPipelineState: the state given to encoder 'pass' must not be nil",
         [&](bool keeps) { drawing([&](auto* e) { e->setRenderPipelineState(keeps ? pipeline() : nullptr); }); }},
        {"encoder.no-viewport", "setViewports: encoder 'pass' must be given exactly one viewport (2)",
         [&](bool keeps) {
             const MTL::Viewport viewports[2] = {{0, 0, 8, 8, 0, 1}, {0, 0, 8, 8, 0, 1}};
             drawing([&](auto* e) { e->setViewports(viewports, keeps ? 1 : 2); });
         }},
        {"encoder.viewport", "setViewport: the viewport given to encoder 'pass' must be of finite numbers",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setViewport({0, 0, keeps ? 8 : std::numeric_limits<double>::infinity(), -8, 0, 1});
             });
         }},
        {"encoder.no-scissor", "setScissorRects: encoder 'pass' must be given exactly one rectangle (0)",
         [&](bool keeps) {
             const MTL::ScissorRect rects[2] = {{0, 0, 8, 8}, {0, 0, 8, 8}};
             drawing([&](auto* e) { e->setScissorRects(rects, keeps ? 1 : 0); });
         }},
        {"encoder.scissor",
         "setScissorRect: the rectangle (1, 0, 18446744073709551615 by 8) must lie within the render pass (8 by 8)",
         [&](bool keeps) { drawing([&](auto* e) {
                               e->setScissorRect({1, 0, keeps ? 7u : ~NS::UInteger{0}, 8});
                           }); }},
        {"encoder.visibility-buffer",
         "setVisibilityResultMode: the pass of encoder 'pass' has no visibility result buffer",
         [&](bool keeps) {
             auto* d = pass(texture());
             if (keeps) d->setVisibilityResultBuffer(buffer(8));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, 0);
             e->endEncoding();
         }},
        {"encoder.visibility-offset", "setVisibilityResultMode: the offset (12) must be a multiple of 8",
         [&](bool keeps) {
             auto* d = pass(texture());
             d->setVisibilityResultBuffer(buffer(32));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, keeps ? 16 : 12);
             e->endEncoding();
         }},
        {"encoder.visibility-range",
         "setVisibilityResultMode: the offset (32) lies beyond the visibility result buffer (32 bytes)",
         [&](bool keeps) {
             auto* d = pass(texture());
             d->setVisibilityResultBuffer(buffer(32));
             auto* e = encoder(d);
             e->setVisibilityResultMode(MTL::VisibilityResultModeBoolean, keeps ? 24 : 32);
             e->endEncoding();
         }},
        {"encoder.other-device", "setVertexBuffer: object 'foreign' belongs to another device than the encoder",
         [&](bool keeps) {
             auto* b = named("foreign",
                             owned((keeps ? device : otherDevice())->newBuffer(64, MTL::ResourceStorageModeShared)));
             drawing([&](auto* e) { e->setVertexBuffer(b, 0, 3); });
         }},
        {"encoder.other-device", "renderCommandEncoder: object 'foreign' belongs to another device than the encoder",
         [&](bool keeps) {
             encoder(named("foreign", owned((keeps ? device : otherDevice())->newTexture(textureDescriptor()))))
                 ->endEncoding();
         }},
        {"encoder.other-device", "fillBuffer: object 'foreign' belongs to another device than the encoder",
         [&](bool keeps) {
             auto* b = named("foreign",
                             owned((keeps ? device : otherDevice())->newBuffer(64, MTL::ResourceStorageModeShared)));
             blitting([&](auto* e) { e->fillBuffer(b, NS::Range(0, 64), 1); });
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
    auto* both = named("both", depthTexture(MTL::PixelFormatDepth32Float_Stencil8));
    auto* another = named("another", depthTexture(MTL::PixelFormatDepth32Float_Stencil8));
    expectPairs({
        {"pass.usage",
         "renderCommandEncoder: texture (no label) of the colour attachment has no render target usage; nothing is "
         "drawn to it",
         [&](bool keeps) {
             auto* t = textureWith(
                 [&](auto* d) { d->setUsage(keeps ? MTL::TextureUsageRenderTarget : MTL::TextureUsageShaderRead); });
             attached([&](auto* d) { d->colorAttachments()->object(1)->setTexture(t); });
         }},
        {"pass.format",
         "renderCommandEncoder: the pixel format (70) of texture (no label) does not fit the depth attachment",
         [&](bool keeps) {
             attached([&](auto* d) { d->depthAttachment()->setTexture(keeps ? depthTexture() : texture()); });
         }},
        {"pass.level", "renderCommandEncoder: texture (no label) of the colour attachment has no level 1 or no slice 0",
         [&](bool keeps) { attached([&](auto* d) { d->colorAttachments()->object(0)->setLevel(keeps ? 0 : 1); }); }},
        {"pass.depth-plane", "renderCommandEncoder: texture (no label) of the colour attachment has no depth plane 2",
         [&](bool keeps) {
             attached([&](auto* d) {
                 d->colorAttachments()->object(0)->setTexture(volume);
                 d->colorAttachments()->object(0)->setDepthPlane(keeps ? 1 : 2);
             });
         }},
        {"pass.resolve",
         "renderCommandEncoder: the colour attachment has a resolve texture, which goes with textures of several "
         "samples only",
         [&](bool keeps) {
             attached(
                 [&](auto* d) { d->colorAttachments()->object(0)->setResolveTexture(keeps ? nullptr : texture()); });
         }},
        {"pass.resolve-store",
         "renderCommandEncoder: the store action (2) of the colour attachment resolves samples, and its texture has "
         "one",
         [&](bool keeps) {
             attached([&](auto* d) {
                 d->colorAttachments()->object(0)->setStoreAction(keeps ? MTL::StoreActionStore
                                                                        : MTL::StoreActionMultisampleResolve);
             });
         }},
        {"pass.layers",
         "renderCommandEncoder: this device draws to one layer at a time; the render target array length (2) must be 0 "
         "or 1",
         [&](bool keeps) { attached([&](auto* d) { d->setRenderTargetArrayLength(keeps ? 1 : 2); }); }},
        {"pass.samples",
         "renderCommandEncoder: this device has one sample for each pixel; the default raster sample count (4) must be "
         "0 or 1",
         [&](bool keeps) { attached([&](auto* d) { d->setDefaultRasterSampleCount(keeps ? 1 : 4); }); }},
        {"pass.depth-stencil",
         "renderCommandEncoder: the depth texture 'both' and the stencil texture 'another' must be the same",
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
        {"draw.no-pipeline", "drawPrimitives: encoder 'pass' has no render pipeline state",
         [&](bool keeps) {
             auto* e = encoder(texture());
             if (keeps) e->setRenderPipelineState(pipeline());
             bindFullTarget(e);
             setColor(e, {});
             drawFullTarget(e);
             e->endEncoding();
         }},
        {"draw.color-format",
         "drawPrimitives: pipeline state (no label) has another pixel format (80) than colour attachment 0 (70)",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(
                     pipelineDescriptor("plain", keeps ? MTL::PixelFormatRGBA8Unorm : MTL::PixelFormatBGRA8Unorm)));
                 drawFullTarget(e);
             });
         }},
        {"draw.depth-format",
         "drawPrimitives: pipeline state (no label) has another depth format (252) than the pass (0)",
         [&](bool keeps) {
             auto* d = pipelineDescriptor();
             if (!keeps) d->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth32Float);
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 drawFullTarget(e);
             });
         }},
        {"draw.stencil-format",
         "drawPrimitives: pipeline state (no label) has another stencil format (260) than the pass (0)",
         [&](bool keeps) {
             auto* d = pipelineDescriptor();
             if (!keeps) d->setStencilAttachmentPixelFormat(MTL::PixelFormatDepth32Float_Stencil8);
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 drawFullTarget(e);
             });
         }},
        {"draw.depth-state", "drawPrimitives: encoder 'pass' tests or writes depth, but its pass has no depth texture",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setDepthStencilState(owned(device->newDepthStencilState(keeps ? unchanged : depthState)));
                 drawFullTarget(e);
             });
         }},
        {"draw.stencil-state",
         "drawPrimitives: encoder 'pass' tests or writes stencil values, but its pass has no stencil texture",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setDepthStencilState(owned(device->newDepthStencilState(keeps ? unchanged : stencilState)));
                 drawFullTarget(e);
             });
         }},
        {"draw.topology",
         "drawPrimitives: pipeline state (no label) is for primitives of class 2 and not for those of type 3",
         [&](bool keeps) {
             auto* d = pipelineDescriptor();
             d->setInputPrimitiveTopology(keeps ? MTL::PrimitiveTopologyClassTriangle
                                                : MTL::PrimitiveTopologyClassLine);
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 drawFullTarget(e);
             });
         }},
        {"draw.primitive", "drawPrimitives: the primitive type (5) is not one of those known",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->drawPrimitives(keeps ? MTL::PrimitiveTypeLine : static_cast<MTL::PrimitiveType>(5), NS::UInteger(0),
                                   NS::UInteger(6));
             });
         }},
        {"draw.count", "drawPrimitives: a count or start (4294967296) is beyond 4294967295",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->drawPrimitives(MTL::PrimitiveTypeTriangle, keeps ? 0 : NS::UInteger{1} << 32, NS::UInteger(6));
             });
         }},
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
        drawing([&](auto* e) {
            e->drawIndexedPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(3), MTL::IndexTypeUInt16, indices,
                                     offset);
        });
    };
    auto* indices = named("indices", bufferOf<uint16_t>({0, 1, 2, 3}));
    auto* volume = textureWith([](auto* d) { d->setTextureType(MTL::TextureType3D); });
    expectPairs({
        {"draw.missing-vertex-buffer",
         "drawPrimitives: vertex attribute 0 of pipeline state (no label) reads from buffer index 0, where no buffer "
         "is bound",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 if (!keeps) e->setVertexBuffer(nullptr, 0, 0);
                 drawFullTarget(e);
             });
         }},
        {"draw.vertex-range",
         "drawPrimitives: vertex attribute 0 of pipeline state (no label) is read up to byte 56 of buffer index 0, "
         "which has 48",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(keeps ? 3 : 4), NS::UInteger(3));
             });
         }},
        {"draw.missing-buffer",
         "drawPrimitives: function plain reads buffer 'color' at index 1, where no buffer is bound",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 if (!keeps) e->setFragmentBuffer(nullptr, 0, 1);
                 drawFullTarget(e);
             });
         }},
        {"draw.short-buffer",
         "drawPrimitives: function plain reads buffer 'color' at index 1, which has 12 bytes of the 16 needed",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->setFragmentBuffer(buffer(keeps ? 16 : 12), 0, 1);
                 drawFullTarget(e);
             });
         }},
        {"draw.missing-texture",
         "drawPrimitives: function textured reads texture 'image' at index 0, where no texture is bound",
         [&](bool keeps) { textured([&](auto* e) { e->setFragmentTexture(keeps ? texture() : nullptr, 0); }); }},
        {"draw.texture-type",
         "drawPrimitives: function textured declares texture 'image' at index 0 with type 2, and the one bound has "
         "type 7",
         [&](bool keeps) { textured([&](auto* e) { e->setFragmentTexture(keeps ? texture() : volume, 0); }); }},
        {"draw.texture-usage",
         "drawPrimitives: function textured reads texture 'image' at index 0, and the usage of the one bound (2) does "
         "not allow it",
         [&](bool keeps) {
             auto* t = textureWith(
                 [&](auto* d) { d->setUsage(keeps ? MTL::TextureUsageShaderRead : MTL::TextureUsageShaderWrite); });
             textured([&](auto* e) { e->setFragmentTexture(t, 0); });
         }},
        {"draw.texture-usage",
         "drawPrimitives: function written writes texture 'image' at index 1, and the usage of the one bound (1) does "
         "not allow it",
         [&](bool keeps) {
             auto* t = textureWith(
                 [&](auto* d) { d->setUsage(keeps ? MTL::TextureUsageShaderWrite : MTL::TextureUsageShaderRead); });
             auto* d = pipelineDescriptor("written");
             drawing([&](auto* e) {
                 e->setRenderPipelineState(pipeline(d));
                 e->setFragmentTexture(t, 1);
                 drawFullTarget(e);
             });
         }},
        {"draw.missing-sampler",
         "drawPrimitives: function textured uses sampler 's' at index 0, where no sampler is bound",
         [&](bool keeps) { textured([&](auto* e) { e->setFragmentSamplerState(keeps ? sampler() : nullptr, 0); }); }},
        {"draw.no-indices", "drawIndexedPrimitives: the index buffer given to encoder 'pass' must not be nil",
         [&](bool keeps) { indexed(keeps ? indices : nullptr, 0); }},
        {"draw.index-range",
         "drawIndexedPrimitives: 3 indices from offset 4 end beyond index buffer 'indices' (8 bytes)",
         [&](bool keeps) { indexed(indices, keeps ? 2 : 4); }},
        {"draw.index-alignment", "drawIndexedPrimitives: the offset (1) must be a multiple of the index size (2)",
         [&](bool keeps) { indexed(indices, keeps ? 2 : 1); }},
    });
}

void Validation::bindings()
{
    const std::vector<uint8_t> bytes(4100);
    auto* b = named("values", buffer(64));
    auto* drawn = named("target", textureWith([](auto* d) { d->setUsage(MTL::TextureUsageRenderTarget); }));
    auto* purged = named("purged", buffer(64));
    expectPairs({
        {"bind.index", "setVertexBuffer: the index (31) is beyond the last (30)",
         [&](bool keeps) { drawing([&](auto* e) { e->setVertexBuffer(b, 0, keeps ? 30 : 31); }); }},
        {"bind.bytes", "setVertexBytes: the length (4097) is over 4096 bytes",
         [&](bool keeps) { drawing([&](auto* e) { e->setVertexBytes(bytes.data(), keeps ? 4096 : 4097, 3); }); }},
        {"bind.no-bytes", "setVertexBytes: there must be at least one byte for index 3",
         [&](bool keeps) { drawing([&](auto* e) { e->setVertexBytes(bytes.data(), keeps ? 1 : 0, 3); }); }},
        {"bind.offset", "setVertexBuffer: the offset (64) lies beyond the end of buffer 'values' (64 bytes)",
         [&](bool keeps) { drawing([&](auto* e) { e->setVertexBuffer(b, keeps ? 60 : 64, 3); }); }},
        {"bind.no-buffer", "setVertexBufferOffset: no buffer is bound at index 3 whose offset could be set",
         [&](bool keeps) { drawing([&](auto* e) { e->setVertexBufferOffset(4, keeps ? 0 : 3); }); }},
        {"bind.texture-usage", "setFragmentTexture: texture 'target' has neither shader read nor shader write usage",
         [&](bool keeps) { drawing([&](auto* e) { e->setFragmentTexture(keeps ? texture() : drawn, 3); }); }},
        {"bind.purged", "setVertexBuffer: the contents of 'purged' may have been discarded (purgeable state 4)",
         [&](bool keeps) {
             purged->setPurgeableState(keeps ? MTL::PurgeableStateNonVolatile : MTL::PurgeableStateEmpty);
             drawing([&](auto* e) { e->setVertexBuffer(purged, 0, 3); });
         }},
        {"bind.purged", "fillBuffer: the contents of 'purged' may have been discarded (purgeable state 3)",
         [&](bool keeps) {
             purged->setPurgeableState(keeps ? MTL::PurgeableStateNonVolatile : MTL::PurgeableStateVolatile);
             blitting([&](auto* e) { e->fillBuffer(purged, NS::Range(0, 64), 1); });
         }},
    });
}

} // namespace device_test
