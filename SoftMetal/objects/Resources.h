// SPDX-License-Identifier: Apache-2.0
// Devices, buffers, textures and states: what a caller holds.
#pragma once

#include "foundation/Object.h"
#include "objects/Descriptors.h"
#include "raster/Pass.h"
#include "shader/Compiler.h"

#include <Metal/Metal.hpp>

#include <memory>
#include <mutex>
#include <string>

namespace softmetal {

class DeviceObject final : public ObjectOf<MTL::Device>
{
public:
    DeviceObject(std::string name, bool depth24Stencil8, bool discards);
    const char* className() const override { return "MTLDevice"; }
    std::string description() const override { return name; }

    const std::string name;
    const bool depth24Stencil8;
    const bool discards;
    const uint64_t registryId;
};

/// Anything with a label that belongs to a device.
template <class Api>
class Labelled : public ObjectOf<Api>
{
public:
    explicit Labelled(DeviceObject* owner) : device(owner) {}
    Ref<DeviceObject> device;
    ObjectRef label;
    std::string labelText() const { return label ? label->description() : std::string("unlabelled"); }
};

/// Memory aligned for vector loads, zeroed, with room to read past its end by one vector.
class Memory
{
public:
    explicit Memory(size_t bytes);
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    uint8_t* data() const { return data_; }

private:
    uint8_t* data_;
};

class BufferObject final : public Labelled<MTL::Buffer>
{
public:
    BufferObject(DeviceObject* owner, size_t bytes, MTL::ResourceOptions options);
    const char* className() const override { return "MTLBuffer"; }

    const size_t length;
    const MTL::ResourceOptions options;
    Memory memory;
};

class TextureObject final : public Labelled<MTL::Texture>
{
public:
    /// Null when the description cannot be met; why says so.
    static TextureObject* make(DeviceObject* owner, const TextureDescriptorObject& description, std::string& why);
    TextureObject(DeviceObject* owner, const TextureDescriptorObject& description, std::shared_ptr<Memory> memory);
    const char* className() const override { return "MTLTexture"; }

    uint32_t slices() const;
    bool inside(const MTL::Region& region, NS::UInteger level, NS::UInteger slice) const;

    TextureDescriptorObject description;
    std::shared_ptr<Memory> memory; // shared with views
    Ref<TextureObject> parent;
    abi::Texture view{};
};

class SamplerStateObject final : public Labelled<MTL::SamplerState>
{
public:
    SamplerStateObject(DeviceObject* owner, const SamplerDescriptorObject& description);
    const char* className() const override { return "MTLSamplerState"; }
    abi::Sampler state{};
};

class DepthStencilStateObject final : public Labelled<MTL::DepthStencilState>
{
public:
    DepthStencilStateObject(DeviceObject* owner, const DepthStencilDescriptorObject& description);
    const char* className() const override { return "MTLDepthStencilState"; }
    raster::DepthStencil state;
};

class LibraryObject final : public Labelled<MTL::Library>
{
public:
    LibraryObject(DeviceObject* owner, std::shared_ptr<shader::Library> compiled) : Labelled(owner), library(std::move(compiled)) {}
    const char* className() const override { return "MTLLibrary"; }
    std::shared_ptr<shader::Library> library;
};

class FunctionObject final : public Labelled<MTL::Function>
{
public:
    FunctionObject(DeviceObject* owner, std::shared_ptr<shader::Function> compiled) : Labelled(owner), function(std::move(compiled)) {}
    const char* className() const override { return "MTLFunction"; }
    std::shared_ptr<shader::Function> function;
};

class ConstantValuesObject final : public ObjectOf<MTL::FunctionConstantValues>
{
public:
    const char* className() const override { return "MTLFunctionConstantValues"; }
    Object* copy() const override { return copyOf(*this); }
    std::vector<shader::ConstantValue> values;
};

class RenderPipelineStateObject final : public Labelled<MTL::RenderPipelineState>
{
public:
    /// Null when the parts do not fit; why says so.
    static RenderPipelineStateObject* make(DeviceObject* owner, const RenderPipelineDescriptorObject& description, std::string& why);
    explicit RenderPipelineStateObject(DeviceObject* owner) : Labelled(owner) {}
    const char* className() const override { return "MTLRenderPipelineState"; }

    raster::Pipeline pipeline;
    std::shared_ptr<shader::Function> vertexFunction, fragmentFunction; // keep the machine code alive
    uint32_t depthFormat = 0, stencilFormat = 0;
};

class FenceObject final : public Labelled<MTL::Fence>
{
public:
    using Labelled::Labelled;
    const char* className() const override { return "MTLFence"; }
};

} // namespace softmetal
