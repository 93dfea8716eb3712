// SPDX-License-Identifier: Apache-2.0
// Capture scopes and their manager.
#include "capture/Document.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"

#include <cstdlib>
#include <cstring>
#include <system_error>

using namespace softmetal;

namespace {

class CaptureScopeObject final : public Labelled<MTL::CaptureScope>
{
public:
    using Labelled::Labelled;
    const char* className() const override { return "MTLCaptureScope"; }
    ObjectRef queue;
};

bool supportedFromEnvironment()
{
    const char* wanted = std::getenv("SOFTMETAL_CAPTURE");
    return wanted && *wanted && std::strcmp(wanted, "0") != 0;
}

// ---- manager ----------------------------------------------------------------------------------------------------------------

class CaptureManagerObject final : public ObjectOf<MTL::CaptureManager>
{
public:
    const char* className() const override { return "MTLCaptureManager"; }

    /// Null, or the reason why capturing does not start.
    const char* start(const CaptureDescriptorObject& descriptor, NS::Integer& code);
    void stop();
    void scopeBegins(const Object* scope);
    void scopeEnds(const Object* scope);
    bool capturing();

    std::atomic<bool> supported{supportedFromEnvironment()};
    ObjectRef defaultScope;

private:
    enum class State { Idle, WaitsForScope, Traces };
    std::mutex mutex_; // guards what follows
    State state_ = State::Idle;
    void beginTrace();

    ObjectRef object_; // what is captured
    std::filesystem::path folder_;
};

CaptureManagerObject& shared()
{
    static auto* manager = new CaptureManagerObject;
    return *manager;
}

const char* CaptureManagerObject::start(const CaptureDescriptorObject& d, NS::Integer& code)
{
    std::lock_guard lock(mutex_);
    code = MTL::CaptureErrorNotSupported;
    if (!supported || d.destination != MTL::CaptureDestinationGPUTraceDocument) return "Capturing is not supported by this device.";
    code = MTL::CaptureErrorAlreadyCapturing;
    if (state_ != State::Idle) return "Something is being captured already.";
    code = MTL::CaptureErrorInvalidDescriptor;
    if (!d.captureObject || !d.outputURL) return "The descriptor needs an object to capture and a place for the document.";
    folder_ = reinterpret_cast<NS::URL*>(d.outputURL.get())->fileSystemRepresentation();
    std::error_code failed;
    std::filesystem::create_directories(folder_, failed);
    if (failed || !std::filesystem::is_directory(folder_, failed)) return "The document cannot be written.";
    object_ = d.captureObject;
    bool scoped = dynamic_cast<CaptureScopeObject*>(object_.get()) != nullptr;
    state_ = scoped ? State::WaitsForScope : State::Traces;
    if (!scoped) beginTrace();
    return nullptr;
}

void CaptureManagerObject::beginTrace()
{
    state_ = State::Traces;
    capture::beginPictures();
    inspect::beginTrace();
}

void CaptureManagerObject::stop()
{
    std::lock_guard lock(mutex_);
    if (state_ == State::Idle) return;
    inspect::Trace trace = state_ == State::Traces ? inspect::endTrace() : inspect::Trace();
    capture::writeDocument(folder_, trace, capture::endPictures(capture::committedPasses(trace)));
    object_ = ObjectRef();
    state_ = State::Idle;
}

void CaptureManagerObject::scopeBegins(const Object* scope)
{
    std::lock_guard lock(mutex_);
    if (state_ != State::WaitsForScope || object_.get() != scope) return;
    beginTrace();
}

void CaptureManagerObject::scopeEnds(const Object* scope)
{
    bool ends = false;
    {
        std::lock_guard lock(mutex_);
        ends = state_ == State::Traces && object_.get() == scope;
    }
    if (ends) stop();
}

bool CaptureManagerObject::capturing()
{
    std::lock_guard lock(mutex_);
    return state_ != State::Idle;
}

} // namespace

// ---- scopes -----------------------------------------------------------------------------------------------------------------

MTL::Device* MTL::CaptureScope::device() const { return api(cast<CaptureScopeObject>(this)->device.get()); }
NS::String* MTL::CaptureScope::label() const { return reinterpret_cast<NS::String*>(cast<CaptureScopeObject>(this)->label.get()); }
void MTL::CaptureScope::setLabel(const NS::String* label) { cast<CaptureScopeObject>(this)->label = ObjectRef(castObject(label)); }
MTL::CommandQueue* MTL::CaptureScope::commandQueue() const { return reinterpret_cast<MTL::CommandQueue*>(cast<CaptureScopeObject>(this)->queue.get()); }

void MTL::CaptureScope::beginScope()
{
    shared().scopeBegins(castObject(this));
    inspect::note(this, "beginScope");
}

void MTL::CaptureScope::endScope()
{
    inspect::note(this, "endScope");
    shared().scopeEnds(castObject(this));
}

// ---- manager ----------------------------------------------------------------------------------------------------------------

MTL::CaptureManager* MTL::CaptureManager::alloc() { return api(new CaptureManagerObject); }
MTL::CaptureManager* MTL::CaptureManager::init() { return this; }
MTL::CaptureManager* MTL::CaptureManager::sharedCaptureManager() { return api(&shared()); }
MTL::CaptureScope* MTL::CaptureManager::newCaptureScope(const Device* device) { return api(new CaptureScopeObject(cast<DeviceObject>(device))); }

MTL::CaptureScope* MTL::CaptureManager::newCaptureScope(const CommandQueue* queue)
{
    auto* scope = new CaptureScopeObject(queue ? cast<DeviceObject>(queue->device()) : nullptr);
    scope->queue = ObjectRef(castObject(queue));
    return api(scope);
}

bool MTL::CaptureManager::supportsDestination(CaptureDestination destination)
{
    return destination == CaptureDestinationGPUTraceDocument && cast<CaptureManagerObject>(this)->supported;
}

bool MTL::CaptureManager::startCapture(const CaptureDescriptor* descriptor, NS::Error** error)
{
    static const CaptureDescriptorObject* empty = new CaptureDescriptorObject;
    NS::Integer code = 0;
    const char* why = cast<CaptureManagerObject>(this)->start(descriptor ? *cast<CaptureDescriptorObject>(descriptor) : *empty, code);
    if (why) report(error, "MTLCaptureErrorDomain", code, why);
    return !why;
}

// These mean the developer tools, of which there are none.
void MTL::CaptureManager::startCapture(const Device*) {}
void MTL::CaptureManager::startCapture(const CommandQueue*) {}
void MTL::CaptureManager::startCapture(const CaptureScope*) {}
void MTL::CaptureManager::stopCapture() { cast<CaptureManagerObject>(this)->stop(); }
bool MTL::CaptureManager::isCapturing() const { return cast<CaptureManagerObject>(this)->capturing(); }
MTL::CaptureScope* MTL::CaptureManager::defaultCaptureScope() const { return reinterpret_cast<CaptureScope*>(cast<CaptureManagerObject>(this)->defaultScope.get()); }
void MTL::CaptureManager::setDefaultCaptureScope(const CaptureScope* scope) { cast<CaptureManagerObject>(this)->defaultScope = ObjectRef(castObject(scope)); }

namespace SoftMetal {

void setCaptureSupported(bool supported) { shared().supported = supported; }

} // namespace SoftMetal
