// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

namespace MTL
{
class Device;

enum PurgeableState : NS::UInteger
{
    PurgeableStateKeepCurrent = 1,
    PurgeableStateNonVolatile = 2,
    PurgeableStateVolatile = 3,
    PurgeableStateEmpty = 4,
};

enum CPUCacheMode : NS::UInteger
{
    CPUCacheModeDefaultCache = 0,
    CPUCacheModeWriteCombined = 1,
};

enum StorageMode : NS::UInteger
{
    StorageModeShared = 0,
    StorageModeManaged = 1,
    StorageModePrivate = 2,
    StorageModeMemoryless = 3,
};

enum HazardTrackingMode : NS::UInteger
{
    HazardTrackingModeDefault = 0,
    HazardTrackingModeUntracked = 1,
    HazardTrackingModeTracked = 2,
};

using ResourceOptions = NS::UInteger; // any of:
enum : ResourceOptions
{
    ResourceCPUCacheModeDefaultCache = 0,
    ResourceCPUCacheModeWriteCombined = 1,
    ResourceStorageModeShared = 0,
    ResourceStorageModeManaged = 16,
    ResourceStorageModePrivate = 32,
    ResourceStorageModeMemoryless = 48,
    ResourceHazardTrackingModeDefault = 0,
    ResourceHazardTrackingModeUntracked = 256,
    ResourceHazardTrackingModeTracked = 512,
    ResourceOptionCPUCacheModeDefault = 0,
    ResourceOptionCPUCacheModeWriteCombined = 1,
};

class SOFTMETAL_API Resource : public NS::Referencing<Resource>
{
public:
    NS::String* label() const;
    void setLabel(const NS::String* label);
    Device* device() const;
    CPUCacheMode cpuCacheMode() const;
    StorageMode storageMode() const;
    HazardTrackingMode hazardTrackingMode() const;
    ResourceOptions resourceOptions() const;
    PurgeableState setPurgeableState(PurgeableState state);
    NS::UInteger allocatedSize() const;
};

} // namespace MTL
