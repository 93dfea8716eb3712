// SPDX-License-Identifier: Apache-2.0
// Chapters: layer and host textures, size, presentation, attachments.
#include "ScopedPool.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalBlitter.h"
#include "ZALMetalContext.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

namespace
{

constexpr const char* Source = "Src/ZALMetalContext";

NS::String* text(const char* characters)
{
    return NS::String::string(characters, NS::UTF8StringEncoding);
}

void setCurrentDrawable(ZALMetalDrawable* drawable, CA::MetalDrawable* next)
{
    if (next) next->retain();
    if (drawable->currentDrawable) drawable->currentDrawable->release();
    drawable->currentDrawable = next;
}

/// Truncated; what no number of 64 bits holds becomes the largest.
uint64_t toUnsigned(CGFloat value)
{
    constexpr CGFloat Limit = 18446744073709551616.0;
    if (!(value >= 0)) return 0;
    return value < Limit ? static_cast<uint64_t>(value) : UINT64_MAX;
}

MTL::Texture* newFramebufferTexture(MTL::Device* device, MTL::PixelFormat format, CGSize size)
{
    MTL::TextureDescriptor* d =
        MTL::TextureDescriptor::texture2DDescriptor(format, toUnsigned(size.width), toUnsigned(size.height), false);
    d->setStorageMode(MTL::StorageModePrivate);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    return device->newTexture(d);
}

template <class T>
void releaseAndForget(T*& object)
{
    if (object) object->release();
    object = nullptr;
}

int updateSize(ZALMetalContext* context)
{
    ZALMetalDrawable* drawable = context->drawable;
    if (!drawable->layer) return ZALMetalResultSuccess; // the host's own textures have the size that they have
    CGSize wanted = drawable->view->bounds().size;
    CGSize now = drawable->layer->drawableSize();
    if (wanted.width == now.width && wanted.height == now.height) return ZALMetalResultSuccess;
    // Kept on purpose: [resize-size] the size that the GL state keeps does not follow.
    setCurrentDrawable(drawable, nullptr);
    drawable->layer->setDrawableSize(wanted);
    return MetalDataAllocateDrawableTextures(context->metalData->device, drawable, wanted);
}

void ViewFrameChangeNotificationCallback(CFNotificationCenterRef, void* observer, CFNotificationName, const void*,
                                         CFDictionaryRef)
{
    ScopedPool pool;
    updateSize(static_cast<ZALMetalContext*>(observer));
}

/// A scope for a parameter whose type metal-cpp's releases give as id or as NS::Object.
struct AnyObject
{
    MTL::CaptureScope* scope;
    template <class T>
    operator T*() const
    {
        return reinterpret_cast<T*>(scope);
    }
};

void startCapture(ZALMetalContext* context)
{
    ZALMetalData* data = context->metalData;
    MTL::CaptureManager* manager = MTL::CaptureManager::sharedCaptureManager();
    MTL::CaptureScope* scope = manager->newCaptureScope(data->device);
    if (!scope)
        return ZALMetal::Log(ZALMetalLogLevelError,
                             "enableDebugGPUCapture: Failed to start capture, failed to create scope");
    scope->setLabel(text("ZAL Metal capture"));
    MTL::CaptureDescriptor* descriptor = MTL::CaptureDescriptor::alloc()->init();
    descriptor->setCaptureObject(AnyObject{scope});
    descriptor->setDestination(MTL::CaptureDestinationGPUTraceDocument);
    descriptor->setOutputURL(NS::URL::fileURLWithPath(text("ZALMetal.m.gputrace")));
    NS::Error* error = nullptr;
    if (manager->startCapture(descriptor, &error)) {
        ZALMetal::Log(ZALMetalLogLevelInfo, "enableDebugGPUCapture: GPU tracing to %s",
                      ZALMetal::InWords(descriptor->outputURL()));
        if (context->glState->debugCaptureAtStart) {
            scope->beginScope();
            data->captureScopeActive = true;
            ZALMetal::Log(ZALMetalLogLevelInfo, "enableDebugGPUCapture: Capture started");
        }
        data->captureScope = scope;
    } else {
        ZALMetal::Log(ZALMetalLogLevelError, "enableDebugGPUCapture: Failed to start capture, error %s",
                      ZALMetal::InWords(error));
        scope->release();
    }
    descriptor->release();
}

} // namespace

// ---- Layer and host textures ---------------------------------------------------------------------------------------

int MetalDataAllocateDrawableTextures(MTL::Device* device, ZALMetalDrawable* drawable, CGSize size)
{
    releaseAndForget(drawable->colorTexture);
    releaseAndForget(drawable->depthTexture);
    drawable->colorTexture = newFramebufferTexture(device, drawable->colorPixelFormat, size);
    if (!drawable->colorTexture) return ZALMetalResultOutOfMemory;
    if (drawable->depthPixelFormat == MTL::PixelFormatInvalid) return ZALMetalResultSuccess;
    drawable->depthTexture = newFramebufferTexture(device, drawable->depthPixelFormat, size);
    if (drawable->depthTexture) return ZALMetalResultSuccess;
    releaseAndForget(drawable->colorTexture);
    return ZALMetalResultOutOfMemory;
}

int ZALMetalContextCreateCAMetalLayer(ZALMetalContext* context, void* viewPointer, int pixelFormat,
                                      int depthPixelFormat)
{
    ScopedPool pool;
    ZALMetalDrawable* drawable = context->drawable;
    if (drawable->view) ZALMetal::AssertionFailed("ZALMetalContextCreateCAMetalLayer", Source, "drawable->view == nil");
    MTL::Device* device = context->metalData->device;
    auto depthFormat = static_cast<MTL::PixelFormat>(depthPixelFormat);
    if (depthFormat == MTL::PixelFormatDepth24Unorm_Stencil8 && !device->depth24Stencil8PixelFormatSupported())
        depthFormat = MTL::PixelFormatDepth32Float_Stencil8;

    auto* view = static_cast<NSView*>(viewPointer);
    CA::MetalLayer* layer = CA::MetalLayer::layer()->retain();
    layer->setDevice(device);
    layer->setPixelFormat(static_cast<MTL::PixelFormat>(pixelFormat));
    view->setWantsLayer(true);
    view->setLayer(layer);
    CA::MetalDrawable* first = layer->nextDrawable();
    if (!first) {
        view->setLayer(nullptr);
        layer->release();
        return ZALMetalResultInvalidArgument;
    }
    drawable->view = view;
    drawable->layer = layer;
    setCurrentDrawable(drawable, first);
    drawable->colorTexture = drawable->depthTexture = nullptr; // those of the host until now, and its own
    drawable->colorPixelFormat = static_cast<MTL::PixelFormat>(pixelFormat);
    drawable->depthPixelFormat = depthFormat;
    CGSize size = layer->drawableSize();
    if (int status = MetalDataAllocateDrawableTextures(device, drawable, size)) return status;
    context->glState->defaultFramebufferWidth = static_cast<uint32_t>(static_cast<int32_t>(size.width));
    context->glState->defaultFramebufferHeight = static_cast<uint32_t>(static_cast<int32_t>(size.height));
    view->setPostsFrameChangedNotifications(true);
    CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), context, ViewFrameChangeNotificationCallback,
                                    NSViewFrameDidChangeNotification, view,
                                    CFNotificationSuspensionBehaviorDeliverImmediately);
    if (context->glState->enableDebugGPUCapture) startCapture(context);
    return ZALMetalResultSuccess;
}

int ZALMetalContextSetMetalDrawable(ZALMetalContext* context, void* colorTexture, void* depthTexture)
{
    ZALMetalDrawable* drawable = context->drawable;
    if (!colorTexture || drawable->view || drawable->layer) return ZALMetalResultInvalidArgument;
    auto *color = static_cast<MTL::Texture*>(colorTexture), *depth = static_cast<MTL::Texture*>(depthTexture);
    MTL::PixelFormat colorFormat = color->pixelFormat(),
                     depthFormat = depth ? depth->pixelFormat() : MTL::PixelFormatInvalid;
    if (drawable->colorPixelFormat == MTL::PixelFormatInvalid) {
        drawable->colorPixelFormat = colorFormat;
        drawable->depthPixelFormat = depthFormat;
        context->glState->defaultFramebufferWidth = static_cast<uint32_t>(color->width());
        context->glState->defaultFramebufferHeight = static_cast<uint32_t>(color->height());
    } else if (drawable->colorPixelFormat != colorFormat || drawable->depthPixelFormat != depthFormat) {
        return ZALMetalResultFormatMismatch;
    }
    drawable->colorTexture = color;
    drawable->depthTexture = depth;
    return ZALMetalResultSuccess;
}

// ---- Size ----------------------------------------------------------------------------------------------------------

int ZALMetalContextUpdateSize(ZALMetalContext* context)
{
    ScopedPool pool;
    return updateSize(context);
}

// ---- Presentation --------------------------------------------------------------------------------------------------

void* ZALMetalContextEnsureDrawable(ZALMetalContext* context)
{
    ScopedPool pool;
    ZALMetalDrawable* drawable = context->drawable;
    if (!drawable->layer) ZALMetal::AssertionFailed("ZALMetalContextEnsureDrawable", Source, "drawable->layer");
    if (!drawable->currentDrawable) setCurrentDrawable(drawable, drawable->layer->nextDrawable());
    return drawable->currentDrawable;
}

void ZALMetalContextDrawableRelease(ZALMetalContext* context)
{
    setCurrentDrawable(context->drawable, nullptr);
}

int ZALMetalContextSwapBuffers(ZALMetalContext* context)
{
    ScopedPool pool;
    ZALMetalData* metalData = context->metalData;
    ZALMetalDrawable* drawable = context->drawable;
    if (!metalData || !metalData->metalState)
        ZALMetal::AssertionFailed("ZALMetalContextSwapBuffers", Source, "metalData && metalData->metalState");
    ZALMetalState* state = metalData->metalState;
    if (!drawable->layer) {
        state->commandBufferEnd();
        return ZALMetalResultSuccess;
    }
    if (!drawable->currentDrawable) setCurrentDrawable(drawable, drawable->layer->nextDrawable());
    state->renderPassEnd();
    MTL::CommandBuffer* commandBuffer = state->commandBufferStart();
    commandBuffer->pushDebugGroup(text("ZALMetalContextSwapBuffers"));
    if (MTL::Texture* color = drawable->colorTexture; color && drawable->currentDrawable)
        CopyTexSubImage2D(metalData->blitter, metalData->device, commandBuffer, color, MTL::Origin(0, 0, 0),
                          MTL::Size(color->width(), color->height(), 1), drawable->currentDrawable->texture(),
                          MTL::Origin(0, 0, 0), 0, 0, true);
    if (drawable->currentDrawable)
        commandBuffer->presentDrawable(drawable->currentDrawable); // none: the layer had none to give
    commandBuffer->popDebugGroup();
    state->commandBufferEnd();
    setCurrentDrawable(drawable, nullptr);
    return ZALMetalResultSuccess;
}

int ZALMetalContextCopyAndFlipMetalTexture(ZALMetalContext* context, void* src, void* dst)
{
    auto *from = static_cast<MTL::Texture*>(src), *to = static_cast<MTL::Texture*>(dst);
    if (!from || !to || from->width() != to->width() || from->height() != to->height())
        return ZALMetalResultInvalidArgument;
    ScopedPool pool;
    ZALMetalData* metalData = context->metalData;
    if (!metalData || !metalData->metalState)
        ZALMetal::AssertionFailed("ZALMetalContextCopyAndFlipMetalTexture", Source,
                                  "metalData && metalData->metalState");
    metalData->metalState->renderPassEnd();
    MTL::CommandBuffer* commandBuffer = metalData->metalState->commandBufferStart();
    commandBuffer->pushDebugGroup(text("ZALMetalContextCopyAndFlipMetalTexture"));
    CopyTexSubImage2D(metalData->blitter, metalData->device, commandBuffer, from, MTL::Origin(0, 0, 0),
                      MTL::Size(from->width(), from->height(), 1), to, MTL::Origin(0, 0, 0), 0, 0, true);
    commandBuffer->popDebugGroup();
    metalData->metalState->commandBufferEnd();
    return ZALMetalResultSuccess;
}

int ZALMetalContextGetMtlTextureFromGLTextureId(ZALMetalContext* context, void*& outTexture, uint32_t textureName)
{
    outTexture = nullptr;
    if (!context) return ZALMetalResultInvalidArgument;
    if (textureName == 0) return ZALMetalResultSuccess;
    ZALGLTextureObject* texture = context->glState->contextObjects->textures.Find(textureName);
    if (!texture) return ZALMetalResultDeviceUnavailable;
    outTexture = texture->EnsureMetalTexture();
    return ZALMetalResultSuccess;
}

// ---- Attachments ---------------------------------------------------------------------------------------------------

namespace
{

MTL::Texture* attachedTexture(ZALGLState* state, uint32_t name)
{
    ZALGLTextureObject* texture = state->contextObjects->textures.Find(name);
    return texture ? texture->EnsureMetalTexture() : nullptr;
}

ZALGLFramebufferObject* boundFramebuffer(ZALGLState* state)
{
    return state->contextObjects->framebuffers.Find(state->pipelineDescription.boundFramebuffer);
}

} // namespace

MTL::Texture* getFramebufferColorTexture(ZALGLState* state, ZALMetalContext* context, int index)
{
    if (state->pipelineDescription.boundFramebuffer == 0) return index == 0 ? context->drawable->colorTexture : nullptr;
    ZALGLFramebufferObject* framebuffer = boundFramebuffer(state);
    return framebuffer && index >= 0 && index < 8 ? attachedTexture(state, framebuffer->colorAttachments[index])
                                                  : nullptr;
}

MTL::Texture* getFramebufferDepthTexture(ZALGLState* state, ZALMetalContext* context)
{
    if (state->pipelineDescription.boundFramebuffer == 0) return context->drawable->depthTexture;
    ZALGLFramebufferObject* framebuffer = boundFramebuffer(state);
    return framebuffer ? attachedTexture(state, framebuffer->depthAttachment) : nullptr;
}

MTL::Texture* getFramebufferStencilTexture(ZALGLState* state, ZALMetalContext* context)
{
    return getFramebufferDepthTexture(state, context);
}

MTL::RenderPassDescriptor* ZALMetalContextNewRenderDescriptor(ZALGLState* state, ZALMetalContext* context)
{
    if (!state) state = context->glState; // a host has no other way to name it
    MTL::Texture *depth = getFramebufferDepthTexture(state, context),
                 *stencil = getFramebufferStencilTexture(state, context);
    MTL::RenderPassDescriptor* descriptor = MTL::RenderPassDescriptor::alloc()->init();
    auto load = [](MTL::RenderPassAttachmentDescriptor* attachment, MTL::Texture* texture) {
        attachment->setLoadAction(MTL::LoadActionLoad);
        attachment->setStoreAction(MTL::StoreActionStore);
        attachment->setTexture(texture);
    };
    for (uint32_t i = 0; i < 8 && state->pipelineDescription.drawBufferMask >> i != 0; ++i)
        if (state->pipelineDescription.drawBufferMask >> i & 1)
            load(descriptor->colorAttachments()->object(i),
                 getFramebufferColorTexture(state, context, static_cast<int>(i)));
    if (depth && state->depthTestEnabled) load(descriptor->depthAttachment(), depth);
    if (stencil && state->stencilTestEnabled) load(descriptor->stencilAttachment(), stencil);
    return descriptor;
}
