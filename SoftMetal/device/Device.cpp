// SPDX-License-Identifier: Apache-2.0
// The machine's devices, and what a device says of itself.
#include "execution/QueueThread.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"
#include "workers/Pool.h"

#include <chrono>
#include <cstdlib>
#include <cstring>

using namespace softmetal;

namespace {

DeviceObject* self(const MTL::Device* device) { return cast<DeviceObject>(device); }

struct Machine
{
    std::mutex mutex;
    std::vector<Ref<DeviceObject>> devices;

    Machine() { reset(); }

    void reset()
    {
        devices.clear();
        const char* none = std::getenv("SOFTMETAL_NO_DEVICE");
        if (none && *none && std::strcmp(none, "0") != 0) return;
        const char* name = std::getenv("SOFTMETAL_DEVICE_NAME");
        std::string own = "SoftMetal (" + std::to_string(workers::threadCount()) + " threads)";
        devices.push_back(Ref<DeviceObject>::adopt(new DeviceObject(name && *name ? name : own, true, false)));
    }
};

Machine& machine()
{
    static auto* instance = new Machine;
    return *instance;
}

} // namespace

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

// ---- identity ---------------------------------------------------------------------------------------------------------------

NS::String* MTL::Device::name() const { return autoreleasedString(self(this)->name); }
uint64_t MTL::Device::registryID() const { return self(this)->registryId; }
bool MTL::Device::hasUnifiedMemory() const { return true; }
bool MTL::Device::lowPower() const { return false; }
bool MTL::Device::headless() const { return false; }
bool MTL::Device::removable() const { return false; }
MTL::DeviceLocation MTL::Device::location() const { return DeviceLocationBuiltIn; }
NS::UInteger MTL::Device::locationNumber() const { return 0; }
uint64_t MTL::Device::maxTransferRate() const { return 0; }

// ---- limits -----------------------------------------------------------------------------------------------------------------

uint64_t MTL::Device::recommendedMaxWorkingSetSize() const { return LargestBuffer; }
NS::UInteger MTL::Device::maxBufferLength() const { return LargestBuffer; }
NS::UInteger MTL::Device::currentAllocatedSize() const { return Memory::allocated(); }
NS::UInteger MTL::Device::maxThreadgroupMemoryLength() const { return 0; }
MTL::Size MTL::Device::maxThreadsPerThreadgroup() const { return {}; }
NS::UInteger MTL::Device::minimumLinearTextureAlignmentForPixelFormat(PixelFormat) { return 64; }
NS::UInteger MTL::Device::minimumTextureBufferAlignmentForPixelFormat(PixelFormat) { return 64; }

// ---- features ---------------------------------------------------------------------------------------------------------------

bool MTL::Device::depth24Stencil8PixelFormatSupported() const { return self(this)->depth24Stencil8; }
bool MTL::Device::supports32BitFloatFiltering() const { return true; }
bool MTL::Device::supports32BitMSAA() const { return false; }
bool MTL::Device::supportsQueryTextureLOD() const { return false; }
bool MTL::Device::supportsBCTextureCompression() const { return false; }
bool MTL::Device::supportsPullModelInterpolation() const { return false; }
bool MTL::Device::barycentricCoordsSupported() const { return false; }
bool MTL::Device::supportsShaderBarycentricCoordinates() const { return false; }
bool MTL::Device::rasterOrderGroupsSupported() const { return false; }
bool MTL::Device::programmableSamplePositionsSupported() const { return false; }
bool MTL::Device::supportsVertexAmplificationCount(NS::UInteger count) { return count == 1; }
bool MTL::Device::supportsDynamicLibraries() const { return false; }
bool MTL::Device::supportsRaytracing() const { return false; }
bool MTL::Device::supportsFunctionPointers() const { return false; }
MTL::ReadWriteTextureTier MTL::Device::readWriteTextureSupport() const { return ReadWriteTextureTierNone; }
MTL::ArgumentBuffersTier MTL::Device::argumentBuffersSupport() const { return ArgumentBuffersTier1; }
bool MTL::Device::supportsTextureSampleCount(NS::UInteger sampleCount) { return sampleCount == 1; }
bool MTL::Device::supportsFamily(GPUFamily family) { return family == GPUFamilyMac2 || family == GPUFamilyCommon1 || family == GPUFamilyCommon2; }
bool MTL::Device::supportsFeatureSet(FeatureSet set) { return set >= FeatureSet_macOS_GPUFamily1_v1 && set <= FeatureSet_macOS_GPUFamily1_v4 && set != FeatureSet_macOS_ReadWriteTextureTier2; }

void MTL::Device::sampleTimestamps(Timestamp* cpuTimestamp, Timestamp* gpuTimestamp)
{
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    Timestamp both = static_cast<Timestamp>(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count());
    if (cpuTimestamp) *cpuTimestamp = both;
    if (gpuTimestamp) *gpuTimestamp = both;
}

// ---- what SoftMetal.hpp offers -------------------------------------------------------------------------------------------------

namespace SoftMetal {

MTL::Device* newDevice(const DeviceOptions& options) { return api(new DeviceObject(options.name, options.depth24Stencil8, options.discards)); }

void setDevices(const std::vector<MTL::Device*>& devices)
{
    std::vector<Ref<DeviceObject>> taken;
    for (MTL::Device* device : devices) taken.emplace_back(cast<DeviceObject>(device));
    std::lock_guard lock(machine().mutex);
    machine().devices = std::move(taken);
}

void resetDevices()
{
    std::lock_guard lock(machine().mutex);
    machine().reset();
}

uint32_t workerThreads() { return static_cast<uint32_t>(workers::threadCount()); }
void setCommandBufferDelay(double milliseconds) { softmetal::setCommandBufferDelay(milliseconds); }

} // namespace SoftMetal
