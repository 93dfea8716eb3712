// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLPixelFormat.hpp"
#include "MTLResource.hpp"
#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

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

class SOFTMETAL_API Device : public NS::Referencing<Device>
{
public:
    NS::String* name() const;
    uint64_t registryID() const;
    bool hasUnifiedMemory() const;
    uint64_t recommendedMaxWorkingSetSize() const;
    bool depth24Stencil8PixelFormatSupported() const;
    bool supports32BitFloatFiltering() const;
    CommandQueue* newCommandQueue();
    CommandQueue* newCommandQueue(NS::UInteger maxCommandBufferCount);
    Buffer* newBuffer(NS::UInteger length, ResourceOptions options);
    Buffer* newBuffer(const void* pointer, NS::UInteger length, ResourceOptions options);
    DepthStencilState* newDepthStencilState(const DepthStencilDescriptor* descriptor);
    Texture* newTexture(const TextureDescriptor* descriptor);
    SamplerState* newSamplerState(const SamplerDescriptor* descriptor);
    Library* newLibrary(const NS::String* source, const CompileOptions* options, NS::Error** error);
    RenderPipelineState* newRenderPipelineState(const RenderPipelineDescriptor* descriptor, NS::Error** error);
    Fence* newFence();
    bool supportsFamily(GPUFamily gpuFamily);
    bool supportsTextureSampleCount(NS::UInteger sampleCount);
    NS::UInteger minimumLinearTextureAlignmentForPixelFormat(PixelFormat format);
    NS::UInteger minimumTextureBufferAlignmentForPixelFormat(PixelFormat format);
    NS::UInteger maxBufferLength() const;
};

SOFTMETAL_API Device* CreateSystemDefaultDevice();
SOFTMETAL_API NS::Array* CopyAllDevices();

} // namespace MTL
