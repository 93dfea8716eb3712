// SPDX-License-Identifier: Apache-2.0
// MTL::Device: where everything is put together.
#include "execution/Limits.h"
#include "execution/QueueThread.h"
#include "formats/PixelFormat.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "shader/Loader.h"
#include "texturing/Sampling.h"
#include "workers/Pool.h"

#include <algorithm>
#include <cstdlib>

using namespace softmetal;

namespace softmetal {
namespace {

constexpr uint64_t LargestBuffer = uint64_t{1} << 32; // bytes

DeviceObject* self(const MTL::Device* device) { return cast<DeviceObject>(device); }

uint32_t laneCount()
{
    static const uint32_t count = [] {
        uint32_t chosen = shader::chooseLanes();
        raster::setLanes(chosen);
        return chosen;
    }();
    return count;
}

shader::Compiler* compiler(std::string& error)
{
    static const abi::RuntimeTable runtime = [] {
        abi::RuntimeTable table = texturing::runtimeTable();
        table.loopLimitReached = noteShaderLimit;
        return table;
    }();
    return shader::openCompiler(runtime, laneCount(), error);
}

shader::CompileOptions optionsOf(const MTL::CompileOptions* options)
{
    shader::CompileOptions result;
    if (options) result.fastMath = options->fastMathEnabled();
    return result;
}

BufferObject* makeBuffer(DeviceObject* device, NS::UInteger length, MTL::ResourceOptions options)
{
    if (inspect::fails("newBuffer")) return nullptr;
    bool sensible = length > 0 && length <= LargestBuffer;
    if (!inspect::require(sensible, "buffer.length", "newBuffer: the length must be 1 byte to 4 GiB")) return nullptr;
    try {
        return new BufferObject(device, length, options);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

// ---- the machine's devices -------------------------------------------------------------------------------------------------

struct Machine
{
    std::mutex mutex;
    std::vector<Ref<DeviceObject>> devices;

    Machine() { reset(); }

    void reset()
    {
        devices.clear();
        if (std::getenv("SOFTMETAL_NO_DEVICE")) return;
        const char* name = std::getenv("SOFTMETAL_DEVICE_NAME");
        devices.push_back(Ref<DeviceObject>::adopt(new DeviceObject(name ? name : "SoftMetal", true, false)));
    }
};

Machine& machine()
{
    static auto* instance = new Machine;
    return *instance;
}

} // namespace
} // namespace softmetal

MTL::Device* MTL::CreateSystemDefaultDevice()
{
    std::lock_guard lock(machine().mutex);
    if (machine().devices.empty()) return nullptr;
    return api(Ref<DeviceObject>(machine().devices[0]).detach());
}

NS::Array* MTL::CopyAllDevices()
{
    std::lock_guard lock(machine().mutex);
    std::vector<NS::Object*> all;
    for (const auto& device : machine().devices) all.push_back(reinterpret_cast<NS::Object*>(api(device.get())));
    return NS::Array::alloc()->init(all.data(), all.size());
}

NS::String* MTL::Device::name() const { return autoreleasedString(self(this)->name); }
uint64_t MTL::Device::registryID() const { return self(this)->registryId; }
bool MTL::Device::hasUnifiedMemory() const { return true; }
uint64_t MTL::Device::recommendedMaxWorkingSetSize() const { return LargestBuffer; }
bool MTL::Device::depth24Stencil8PixelFormatSupported() const { return self(this)->depth24Stencil8; }
bool MTL::Device::supports32BitFloatFiltering() const { return true; }
NS::UInteger MTL::Device::maxBufferLength() const { return LargestBuffer; }
bool MTL::Device::supportsTextureSampleCount(NS::UInteger sampleCount) { return sampleCount == 1; }
NS::UInteger MTL::Device::minimumLinearTextureAlignmentForPixelFormat(PixelFormat) { return 64; }
NS::UInteger MTL::Device::minimumTextureBufferAlignmentForPixelFormat(PixelFormat) { return 64; }
bool MTL::Device::supportsFamily(GPUFamily family) { return family == GPUFamilyMac2 || family == GPUFamilyCommon1 || family == GPUFamilyCommon2; }

MTL::CommandQueue* MTL::Device::newCommandQueue()
{
    if (inspect::fails("newCommandQueue")) return nullptr;
    laneCount();
    return api(new CommandQueueObject(self(this), makeQueueThread(self(this)->discards)));
}

MTL::CommandQueue* MTL::Device::newCommandQueue(NS::UInteger) { return newCommandQueue(); }

MTL::Buffer* MTL::Device::newBuffer(NS::UInteger length, ResourceOptions options)
{
    MTL::Buffer* result = api(makeBuffer(self(this), length, options));
    inspect::note(this, "newBuffer", inspect::arg("length", static_cast<double>(length)), inspect::arg("options", static_cast<double>(options)),
                  inspect::arg("result", static_cast<const void*>(result)));
    return result;
}

MTL::Buffer* MTL::Device::newBuffer(const void* pointer, NS::UInteger length, ResourceOptions options)
{
    MTL::Buffer* result = newBuffer(length, options);
    if (result && pointer) std::copy_n(static_cast<const uint8_t*>(pointer), length, cast<BufferObject>(result)->memory.data());
    return result;
}

MTL::Texture* MTL::Device::newTexture(const TextureDescriptor* descriptor)
{
    if (!descriptor || inspect::fails("newTexture")) return nullptr;
    const auto& description = *cast<TextureDescriptorObject>(descriptor);
    std::string why;
    TextureObject* texture = nullptr;
    if (description.pixelFormat == PixelFormatDepth24Unorm_Stencil8 && !self(this)->depth24Stencil8) why = "this device does not have Depth24Unorm_Stencil8";
    else texture = TextureObject::make(self(this), description, why);
    if (!texture) inspect::report("texture.descriptor", "newTexture: " + why);
    inspect::note(this, "newTexture", inspect::arg("format", static_cast<double>(description.pixelFormat)), inspect::arg("width", static_cast<double>(description.width)),
                  inspect::arg("height", static_cast<double>(description.height)), inspect::arg("levels", static_cast<double>(description.mipmapLevelCount)),
                  inspect::arg("storage", static_cast<double>(description.storageMode)), inspect::arg("usage", static_cast<double>(description.usage)),
                  inspect::arg("result", static_cast<const void*>(api(texture))));
    return api(texture);
}

MTL::SamplerState* MTL::Device::newSamplerState(const SamplerDescriptor* descriptor)
{
    inspect::note(this, "newSamplerState");
    if (!descriptor || inspect::fails("newSamplerState")) return nullptr;
    return api(new SamplerStateObject(self(this), *cast<SamplerDescriptorObject>(descriptor)));
}

MTL::DepthStencilState* MTL::Device::newDepthStencilState(const DepthStencilDescriptor* descriptor)
{
    if (!descriptor || inspect::fails("newDepthStencilState")) return nullptr;
    const auto& d = *cast<DepthStencilDescriptorObject>(descriptor);
    MTL::DepthStencilState* result = api(new DepthStencilStateObject(self(this), d));
    inspect::note(this, "newDepthStencilState", inspect::arg("compare", static_cast<double>(d.depthCompareFunction)),
                  inspect::arg("write", static_cast<double>(d.depthWriteEnabled)), inspect::arg("result", static_cast<const void*>(result)));
    return result;
}

MTL::Library* MTL::Device::newLibrary(const NS::String* source, const CompileOptions* options, NS::Error** error)
{
    std::string messages;
    std::shared_ptr<shader::Library> library;
    if (inspect::fails("newLibrary")) {
        messages = "the library could not be made (injected fault)";
    } else if (shader::Compiler* opened = compiler(messages)) {
        messages.clear();
        library = opened->compile(textOf(source), optionsOf(options), messages);
    }
    inspect::note(this, "newLibrary", inspect::arg("source", textOf(source)));
    if (library) return api(new LibraryObject(self(this), std::move(library)));
    report(error, "MTLLibraryErrorDomain", LibraryErrorCompileFailure, messages);
    return nullptr;
}

MTL::RenderPipelineState* MTL::Device::newRenderPipelineState(const RenderPipelineDescriptor* descriptor, NS::Error** error)
{
    std::string why;
    RenderPipelineStateObject* state = nullptr;
    if (!descriptor) why = "the descriptor must not be nil";
    else if (inspect::fails("newRenderPipelineState")) why = "the pipeline state could not be made (injected fault)";
    else state = RenderPipelineStateObject::make(self(this), *cast<RenderPipelineDescriptorObject>(descriptor), why);
    inspect::note(this, "newRenderPipelineState", inspect::arg("result", static_cast<const void*>(api(state))));
    if (!state) report(error, "MTLRenderPipelineErrorDomain", 1, why);
    return api(state);
}

MTL::Fence* MTL::Device::newFence() { return api(new FenceObject(self(this))); }

namespace SoftMetal {

MTL::Device* newDevice(const DeviceOptions& options) { return api(new DeviceObject(options.name, options.depth24Stencil8, options.discards)); }

void setDevices(const std::vector<MTL::Device*>& devices)
{
    std::lock_guard lock(machine().mutex);
    machine().devices.clear();
    for (MTL::Device* device : devices) machine().devices.emplace_back(cast<DeviceObject>(device));
}

void resetDevices()
{
    std::lock_guard lock(machine().mutex);
    machine().reset();
}

uint32_t workerThreads() { return static_cast<uint32_t>(workers::threadCount()); }
uint32_t lanes() { return laneCount(); }

} // namespace SoftMetal
