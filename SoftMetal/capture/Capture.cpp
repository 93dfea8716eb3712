// SPDX-License-Identifier: Apache-2.0
// Capture scopes and their manager. Trace documents are not written yet: the manager says so when it is asked.
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"

using namespace softmetal;

namespace softmetal {
namespace {

class CaptureScopeObject final : public ObjectOf<MTL::CaptureScope>
{
public:
    const char* className() const override { return "MTLCaptureScope"; }
    Ref<DeviceObject> device;
    ObjectRef queue, label;
};

class CaptureManagerObject final : public ObjectOf<MTL::CaptureManager>
{
public:
    const char* className() const override { return "MTLCaptureManager"; }
    ObjectRef defaultScope;
};

CaptureManagerObject* shared()
{
    static auto* manager = new CaptureManagerObject;
    return manager;
}

} // namespace
} // namespace softmetal

MTL::Device* MTL::CaptureScope::device() const { return api(cast<CaptureScopeObject>(this)->device.get()); }
NS::String* MTL::CaptureScope::label() const { return reinterpret_cast<NS::String*>(cast<CaptureScopeObject>(this)->label.get()); }
void MTL::CaptureScope::setLabel(const NS::String* label) { cast<CaptureScopeObject>(this)->label = ObjectRef(castObject(label)); }
MTL::CommandQueue* MTL::CaptureScope::commandQueue() const { return reinterpret_cast<MTL::CommandQueue*>(cast<CaptureScopeObject>(this)->queue.get()); }
void MTL::CaptureScope::beginScope() { inspect::note(this, "beginScope"); }
void MTL::CaptureScope::endScope() { inspect::note(this, "endScope"); }

MTL::CaptureManager* MTL::CaptureManager::alloc() { return api(new CaptureManagerObject); }
MTL::CaptureManager* MTL::CaptureManager::init() { return this; }
MTL::CaptureManager* MTL::CaptureManager::sharedCaptureManager() { return api(shared()); }

MTL::CaptureScope* MTL::CaptureManager::newCaptureScope(const Device* device)
{
    auto* scope = new CaptureScopeObject;
    scope->device = Ref<DeviceObject>(cast<DeviceObject>(device));
    return api(scope);
}

MTL::CaptureScope* MTL::CaptureManager::newCaptureScope(const CommandQueue* queue)
{
    auto* scope = new CaptureScopeObject;
    scope->queue = ObjectRef(castObject(queue));
    return api(scope);
}

bool MTL::CaptureManager::supportsDestination(CaptureDestination) { return false; }

bool MTL::CaptureManager::startCapture(const CaptureDescriptor*, NS::Error** error)
{
    report(error, "MTLCaptureErrorDomain", CaptureErrorNotSupported, "Capturing is not supported by this device.");
    return false;
}

void MTL::CaptureManager::startCapture(const Device*) {}
void MTL::CaptureManager::startCapture(const CommandQueue*) {}
void MTL::CaptureManager::startCapture(const CaptureScope*) {}
void MTL::CaptureManager::stopCapture() {}
bool MTL::CaptureManager::isCapturing() const { return false; }
MTL::CaptureScope* MTL::CaptureManager::defaultCaptureScope() const { return reinterpret_cast<CaptureScope*>(cast<CaptureManagerObject>(this)->defaultScope.get()); }
void MTL::CaptureManager::setDefaultCaptureScope(const CaptureScope* scope) { cast<CaptureManagerObject>(this)->defaultScope = ObjectRef(castObject(scope)); }
