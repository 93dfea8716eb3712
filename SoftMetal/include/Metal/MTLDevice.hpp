// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLPixelFormat.hpp"
#include "MTLResource.hpp"
#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

#include <functional>

namespace MTL
{
class Buffer;
class CommandQueue;
class CompileOptions;
class DepthStencilDescriptor;
class DepthStencilState;
class Fence;
class Library;
class RenderPipelineDescriptor;
class RenderPipelineState;
class SamplerDescriptor;
class SamplerState;
class Texture;
class TextureDescriptor;

enum FeatureSet : NS::UInteger
{
    FeatureSet_iOS_GPUFamily1_v1 = 0,
    FeatureSet_iOS_GPUFamily2_v1 = 1,
    FeatureSet_iOS_GPUFamily1_v2 = 2,
    FeatureSet_iOS_GPUFamily2_v2 = 3,
    FeatureSet_iOS_GPUFamily3_v1 = 4,
    FeatureSet_iOS_GPUFamily1_v3 = 5,
    FeatureSet_iOS_GPUFamily2_v3 = 6,
    FeatureSet_iOS_GPUFamily3_v2 = 7,
    FeatureSet_iOS_GPUFamily1_v4 = 8,
    FeatureSet_iOS_GPUFamily2_v4 = 9,
    FeatureSet_iOS_GPUFamily3_v3 = 10,
    FeatureSet_iOS_GPUFamily4_v1 = 11,
    FeatureSet_iOS_GPUFamily1_v5 = 12,
    FeatureSet_iOS_GPUFamily2_v5 = 13,
    FeatureSet_iOS_GPUFamily3_v4 = 14,
    FeatureSet_iOS_GPUFamily4_v2 = 15,
    FeatureSet_iOS_GPUFamily5_v1 = 16,
    FeatureSet_macOS_GPUFamily1_v1 = 10000,
    FeatureSet_OSX_GPUFamily1_v1 = 10000,
    FeatureSet_macOS_GPUFamily1_v2 = 10001,
    FeatureSet_OSX_GPUFamily1_v2 = 10001,
    FeatureSet_macOS_ReadWriteTextureTier2 = 10002,
    FeatureSet_OSX_ReadWriteTextureTier2 = 10002,
    FeatureSet_macOS_GPUFamily1_v3 = 10003,
    FeatureSet_macOS_GPUFamily1_v4 = 10004,
    FeatureSet_macOS_GPUFamily2_v1 = 10005,
    FeatureSet_watchOS_GPUFamily1_v1 = 20000,
    FeatureSet_WatchOS_GPUFamily1_v1 = 20000,
    FeatureSet_watchOS_GPUFamily2_v1 = 20001,
    FeatureSet_WatchOS_GPUFamily2_v1 = 20001,
    FeatureSet_tvOS_GPUFamily1_v1 = 30000,
    FeatureSet_TVOS_GPUFamily1_v1 = 30000,
    FeatureSet_tvOS_GPUFamily1_v2 = 30001,
    FeatureSet_tvOS_GPUFamily1_v3 = 30002,
    FeatureSet_tvOS_GPUFamily2_v1 = 30003,
    FeatureSet_tvOS_GPUFamily1_v4 = 30004,
    FeatureSet_tvOS_GPUFamily2_v2 = 30005,
};

enum GPUFamily : NS::Integer
{
    GPUFamilyApple1 = 1001,
    GPUFamilyApple2 = 1002,
    GPUFamilyApple3 = 1003,
    GPUFamilyApple4 = 1004,
    GPUFamilyApple5 = 1005,
    GPUFamilyApple6 = 1006,
    GPUFamilyApple7 = 1007,
    GPUFamilyApple8 = 1008,
    GPUFamilyApple9 = 1009,
    GPUFamilyMac1 = 2001,
    GPUFamilyMac2 = 2002,
    GPUFamilyCommon1 = 3001,
    GPUFamilyCommon2 = 3002,
    GPUFamilyCommon3 = 3003,
    GPUFamilyMacCatalyst1 = 4001,
    GPUFamilyMacCatalyst2 = 4002,
    GPUFamilyMetal3 = 5001,
};

enum DeviceLocation : NS::UInteger
{
    DeviceLocationBuiltIn = 0,
    DeviceLocationSlot = 1,
    DeviceLocationExternal = 2,
    DeviceLocationUnspecified = NS::UIntegerMax,
};

enum ReadWriteTextureTier : NS::UInteger
{
    ReadWriteTextureTierNone = 0,
    ReadWriteTextureTier1 = 1,
    ReadWriteTextureTier2 = 2,
};

enum ArgumentBuffersTier : NS::UInteger
{
    ArgumentBuffersTier1 = 0,
    ArgumentBuffersTier2 = 1,
};

using Timestamp = uint64_t; // nanoseconds

using NewLibraryCompletionHandlerFunction = std::function<void(Library*, NS::Error*)>;
using NewRenderPipelineStateCompletionHandlerFunction = std::function<void(RenderPipelineState*, NS::Error*)>;

class SOFTMETAL_API Device : public NS::Referencing<Device>
{
public:
    NS::String* name() const;
    uint64_t registryID() const;
    Size maxThreadsPerThreadgroup() const;
    bool lowPower() const;
    bool headless() const;
    bool removable() const;
    bool hasUnifiedMemory() const;
    uint64_t recommendedMaxWorkingSetSize() const;
    DeviceLocation location() const;
    NS::UInteger locationNumber() const;
    uint64_t maxTransferRate() const;
    bool depth24Stencil8PixelFormatSupported() const;
    ReadWriteTextureTier readWriteTextureSupport() const;
    ArgumentBuffersTier argumentBuffersSupport() const;
    bool rasterOrderGroupsSupported() const;
    bool supports32BitFloatFiltering() const;
    bool supports32BitMSAA() const;
    bool supportsQueryTextureLOD() const;
    bool supportsBCTextureCompression() const;
    bool supportsPullModelInterpolation() const;
    bool barycentricCoordsSupported() const;
    bool supportsShaderBarycentricCoordinates() const;
    NS::UInteger currentAllocatedSize() const;
    CommandQueue* newCommandQueue();
    CommandQueue* newCommandQueue(NS::UInteger maxCommandBufferCount);
    Buffer* newBuffer(NS::UInteger length, ResourceOptions options);
    Buffer* newBuffer(const void* pointer, NS::UInteger length, ResourceOptions options);
    /// Uses the memory as it is; the deallocator, if there is one, gets it back with the buffer's end.
    Buffer* newBuffer(const void* pointer, NS::UInteger length, ResourceOptions options,
                      const std::function<void(void* pointer, NS::UInteger length)>& deallocator);
    DepthStencilState* newDepthStencilState(const DepthStencilDescriptor* descriptor);
    Texture* newTexture(const TextureDescriptor* descriptor);
    SamplerState* newSamplerState(const SamplerDescriptor* descriptor);
    Library* newDefaultLibrary();
    Library* newLibrary(const NS::String* source, const CompileOptions* options, NS::Error** error);
    void newLibrary(const NS::String* source, const CompileOptions* options,
                    const NewLibraryCompletionHandlerFunction& completionHandler);
    RenderPipelineState* newRenderPipelineState(const RenderPipelineDescriptor* descriptor, NS::Error** error);
    void newRenderPipelineState(const RenderPipelineDescriptor* descriptor,
                                const NewRenderPipelineStateCompletionHandlerFunction& completionHandler);
    Fence* newFence();
    bool supportsFeatureSet(FeatureSet featureSet);
    bool supportsFamily(GPUFamily gpuFamily);
    bool supportsTextureSampleCount(NS::UInteger sampleCount);
    NS::UInteger minimumLinearTextureAlignmentForPixelFormat(PixelFormat format);
    NS::UInteger minimumTextureBufferAlignmentForPixelFormat(PixelFormat format);
    NS::UInteger maxThreadgroupMemoryLength() const;
    bool programmableSamplePositionsSupported() const;
    void sampleTimestamps(Timestamp* cpuTimestamp, Timestamp* gpuTimestamp);
    bool supportsVertexAmplificationCount(NS::UInteger count);
    bool supportsDynamicLibraries() const;
    bool supportsRaytracing() const;
    bool supportsFunctionPointers() const;
    NS::UInteger maxBufferLength() const;
};

SOFTMETAL_API Device* CreateSystemDefaultDevice();
SOFTMETAL_API NS::Array* CopyAllDevices();

} // namespace MTL
