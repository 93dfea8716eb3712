// SPDX-License-Identifier: Apache-2.0
// Chapters: creating, current context, releasing.
#include "ZALMetalContext.h"

#include "ScopedPool.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalBlitter.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <cstdlib>
#include <new>

// ---- Creating --------------------------------------------------------------------------------------------------------------

namespace {

struct Chosen
{
    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    bool owned = false;
};

/// The host's queue and its device, or a device of the machine with a new queue. False without a device.
bool choose(const ZALGLState& gl, void* commandQueue, Chosen& out)
{
    if (commandQueue) {
        out.queue = static_cast<MTL::CommandQueue*>(commandQueue);
        out.device = out.queue->device();
        return true;
    }
    if (gl.deviceIndex == -1) {
        ZALMetal::Log(ZALMetalLogLevelInfo, "ZAL Metal, selecting the system default device.");
        out.device = MTL::CreateSystemDefaultDevice();
    } else {
        ZALMetal::Log(ZALMetalLogLevelInfo, "ZAL Metal, selecting the device with index=%d", gl.deviceIndex);
        NS::Array* all = MTL::CopyAllDevices();
        auto index = static_cast<NS::UInteger>(static_cast<int64_t>(gl.deviceIndex));
        if (all && all->count() > index) out.device = all->object<MTL::Device>(index)->retain();
        if (all) all->release();
    }
    if (!out.device) return false;
    out.owned = true;
    ZALMetal::Log(ZALMetalLogLevelInfo, "ZAL Metal, selected the following MTLDevice : %s", ZALMetal::InWords(out.device->name()));
    out.queue = out.device->newCommandQueue();
    return out.queue != nullptr;
}

void checkCapture(ZALGLState& gl)
{
    if (!gl.enableDebugGPUCapture) return;
    ZALMetal::Log(ZALMetalLogLevelInfo, "enableDebugGPUCapture is set :");
    if (MTL::CaptureManager::sharedCaptureManager()->supportsDestination(MTL::CaptureDestinationGPUTraceDocument)) {
        ZALMetal::Log(ZALMetalLogLevelInfo, "- MTLCaptureManager supports MTLCaptureDestinationGPUTraceDocument");
        return;
    }
    ZALMetal::Log(ZALMetalLogLevelWarn, "- [!] MTLCaptureManager does not support MTLCaptureDestinationGPUTraceDocument");
    ZALMetal::Log(ZALMetalLogLevelWarn, "- enableDebugGPUCapture is disabled");
    ZALMetal::Log(ZALMetalLogLevelWarn, "- Did you forget to set 'Metal Capture Enabled' value set to YES in 'Info.plist' ?");
    gl.enableDebugGPUCapture = 0;
}

bool sharesDevice(const ZALMetalContext* shareContext, MTL::Device* device)
{
    if (!shareContext || shareContext->metalData->device == device) return true;
    ZALMetal::Log(ZALMetalLogLevelError, "All windows must use the same MTLDevice.");
    ZALMetal::Log(ZALMetalLogLevelError, "- ZALMetalContextInitFromMTLCommandQueue input command queue uses device named '%s'", ZALMetal::InWords(device->name()));
    ZALMetal::Log(ZALMetalLogLevelError, "- sharecontext uses device named '%s'", ZALMetal::InWords(shareContext->metalData->device->name()));
    return false;
}

/// The objects of the share context or new ones, counted for one context more; null without memory.
ZALGLContextObjects* sharedOrNew(ZALMetalContext* shareContext)
{
    if (shareContext) {
        ++shareContext->glState->contextObjects->contexts;
        return shareContext->glState->contextObjects;
    }
    auto* objects = new (std::nothrow) ZALGLContextObjects;
    if (objects && objects->framebuffers.Find(0)) return objects;
    delete objects;
    return nullptr;
}

void letGo(ZALGLContextObjects* objects)
{
    if (objects && --objects->contexts == 0) delete objects;
}

/// A handle with GL state and a place to present, and no Metal data yet; null without memory.
ZALMetalContext* newContext(ZALMetalContext* shareContext)
{
    auto* context = static_cast<ZALMetalContext*>(std::malloc(sizeof(ZALMetalContext)));
    auto* drawable = new (std::nothrow) ZALMetalDrawable;
    ZALGLContextObjects* objects = sharedOrNew(shareContext);
    auto* gl = objects ? new (std::nothrow) ZALGLState(objects) : nullptr;
    if (context && drawable && gl && gl->beginEnd) {
        *context = ZALMetalContext{nullptr, gl, drawable};
        return context;
    }
    delete gl;
    letGo(objects);
    delete drawable;
    std::free(context);
    return nullptr;
}

/// The Metal side of a context; null without memory.
ZALMetalData* newMetalData(const Chosen& chosen)
{
    auto* data = new (std::nothrow) ZALMetalData{};
    auto* metalState = new (std::nothrow) ZALMetalState(chosen.queue);
    ZALMetalBlitter* blitter = data && metalState ? ZALMetalBlitterInit(chosen.device) : nullptr;
    if (blitter) {
        *data = ZALMetalData{chosen.device, chosen.queue, nullptr, false, metalState, blitter, 1, chosen.owned};
        return data;
    }
    delete metalState;
    delete data;
    return nullptr;
}

/// Undoes what a creation that failed has made. Nothing of it was ever handed out.
int giveUp(ZALMetalContext* context, const Chosen& chosen, int result)
{
    letGo(context->glState->contextObjects);
    delete context->glState;
    delete context->drawable;
    if (chosen.owned && chosen.queue) chosen.queue->release();
    if (chosen.owned) chosen.device->release();
    std::free(context);
    return result;
}

} // namespace

int ZALMetalContextInitFromMTLCommandQueue(ZALMetalContext*& outContext, ZALMetalContext* shareContext, void* commandQueue)
{
    ScopedPool pool;
    ZALMetalContext* context = newContext(shareContext);
    if (!context) return ZALMetalResultOutOfMemory;
    ZALGLState& gl = *context->glState;
    ApplyEnvironmentSwitches(gl);
    if (gl.useMetalDeviceWrapper) setenv("METAL_DEVICE_WRAPPER_TYPE", "1", 1);

    Chosen chosen;
    if (!choose(gl, commandQueue, chosen) || !sharesDevice(shareContext, chosen.device)) return giveUp(context, chosen, ZALMetalResultDeviceUnavailable);
    checkCapture(gl);
    context->metalData = newMetalData(chosen);
    if (!context->metalData) return giveUp(context, chosen, ZALMetalResultOutOfMemory);
    gl.isIntelDevice = NS::hasPrefix(chosen.device->name(), "Intel(R)");
    outContext = context;
    return ZALMetalContextMakeCurrent(context);
}

int ZALMetalContextInitFromShareContext(ZALMetalContext*& outContext, ZALMetalContext* shareContext)
{
    if (!shareContext) return ZALMetalResultInvalidArgument;
    ZALMetalContext* context = newContext(shareContext);
    if (!context) return ZALMetalResultOutOfMemory;
    ApplyEnvironmentSwitches(*context->glState);
    // Kept on purpose: [share-intel-flag] the flag of Intel devices stays as it starts, set, whatever the device is.
    context->metalData = shareContext->metalData;
    ++context->metalData->contexts;
    outContext = context;
    return ZALMetalContextMakeCurrent(context);
}

// ---- Current context -------------------------------------------------------------------------------------------------------

int ZALMetalContextMakeCurrent(ZALMetalContext* context)
{
    if (context == g_currentContext) return ZALMetalResultSuccess;
    if (g_currentContext) g_currentContext->metalData->metalState->commandBufferEnd();
    g_currentContext = context;
    return ZALMetalResultSuccess;
}

ZALMetalContext* ZALMetalContextGetCurrent(void) { return g_currentContext; }

// ---- Releasing -------------------------------------------------------------------------------------------------------------

int ZALMetalContextRelease(ZALMetalContext* context)
{
    ScopedPool pool;
    ZALMetalData* data = context->metalData;
    if (data->captureScope) {
        ZALMetal::Log(ZALMetalLogLevelInfo, "enableDebugGPUCapture: Ending GPU trace");
        data->metalState->commandBufferWaitUntilCompleted();
        data->captureScope->endScope();
        data->captureScope->release();
        data->captureScope = nullptr;
    }
    data->metalState->commandBufferWaitUntilCompleted();
    data->metalState->waitForCommitted();
    ZALMetalContextDrawableRelease(context);
    if (context->drawable->view)
        CFNotificationCenterRemoveObserver(CFNotificationCenterGetLocalCenter(), context, NSViewFrameDidChangeNotification, context->drawable->view);
    if (context == g_currentContext) {
        data->metalState->commandBufferEnd();
        g_currentContext = nullptr;
    }
    std::free(context);
    return ZALMetalResultSuccess;
}

int ZALMetalContextDestroy(ZALMetalContext* context)
{
    ScopedPool pool;
    ZALMetalData* data = context->metalData;
    ZALGLState* gl = context->glState;
    ZALMetalDrawable* drawable = context->drawable;
    ZALMetalContextRelease(context);
    if (drawable->layer) { // with a layer the textures are ours
        if (drawable->colorTexture) drawable->colorTexture->release();
        if (drawable->depthTexture) drawable->depthTexture->release();
        drawable->view->setLayer(nullptr);
        drawable->layer->release();
    }
    delete drawable;
    letGo(gl->contextObjects);
    delete gl;
    if (--data->contexts > 0) return ZALMetalResultSuccess;
    ZALMetalBlitterRelease(data->blitter);
    delete data->metalState;
    if (data->ownsObjects) {
        data->commandQueue->release();
        data->device->release();
    }
    delete data;
    return ZALMetalResultSuccess;
}
