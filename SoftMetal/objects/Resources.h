// SPDX-License-Identifier: Apache-2.0
// Devices, buffers, textures and states: what a caller holds.
#pragma once

#include "foundation/Object.h"
#include "inspect/Inspect.h"
#include "objects/Descriptors.h"
#include "raster/Pass.h"
#include "shader/Compiler.h"

#include <Metal/Metal.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>

namespace softmetal {

inline constexpr NS::UInteger LargestBuffer = NS::UInteger{1} << 32; // bytes

class DeviceObject final : public ObjectOf<MTL::Device>, public inspect::Described
{
public:
    DeviceObject(std::string name, bool depth24Stencil8, bool discards);
    const char* className() const override { return "MTLDevice"; }
    std::string description() const override { return name; }
    const void* deviceIdentity() const override { return api(this); }
    std::string labelText() const override { return "'" + name + "'"; }

    const std::string name;
    const bool depth24Stencil8;
    const bool discards;
    const uint64_t registryId;
};

/// Text of a label for messages.
inline std::string quoted(const ObjectRef& label) { return label ? "'" + label->description() + "'" : std::string("(no label)"); }

/// Anything with a label that belongs to a device.
template <class Api>
class Labelled : public ObjectOf<Api>, public inspect::Described
{
public:
    explicit Labelled(DeviceObject* owner) : device(owner) {}
    const void* deviceIdentity() const override { return device ? device->deviceIdentity() : nullptr; }
    std::string labelText() const override { return quoted(label); }

    Ref<DeviceObject> device;
    ObjectRef label;
    /// Serial number of the command buffer that took a reference last: a hint that spares taking it again.
    std::atomic<uint64_t> lastKeeper{0};
};

/// Memory aligned for vector loads, zeroed, with room to read past its end by one vector; or memory of the caller's.
class Memory
{
public:
    using Release = std::function<void(void*, NS::UInteger)>;

    explicit Memory(size_t bytes);
    /// The caller's memory, given back through release (which may be empty).
    Memory(void* bytes, size_t length, Release release);
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;
    uint8_t* data() const { return data_; }
    /// Bytes of all memory blocks together, the callers' own left out.
    static uint64_t allocated();

private:
    uint8_t* data_;
    void* allocation_ = nullptr;
    size_t length_ = 0;
    Release release_;
};

/// What setPurgeableState sets. Contents are never thrown away, but using them when they may be is reported.
class Purgeable
{
public:
    MTL::PurgeableState purgeableState() const { return state_; }
    /// The state before.
    MTL::PurgeableState setPurgeableState(MTL::PurgeableState state)
    {
        return state == MTL::PurgeableStateKeepCurrent ? state_.load() : state_.exchange(state);
    }
    bool mayBeDiscarded() const { return state_.load(std::memory_order_relaxed) > MTL::PurgeableStateNonVolatile; }

private:
    std::atomic<MTL::PurgeableState> state_{MTL::PurgeableStateNonVolatile};
};

class BufferObject final : public Labelled<MTL::Buffer>, public Purgeable
{
public:
    BufferObject(DeviceObject* owner, size_t bytes, MTL::ResourceOptions options);
    BufferObject(DeviceObject* owner, void* bytes, size_t length, MTL::ResourceOptions options, Memory::Release release);
    const char* className() const override { return "MTLBuffer"; }
    std::string summary() const override { return std::to_string(length) + " bytes"; }

    const size_t length;
    const MTL::ResourceOptions options;
    Memory memory;
};

class TextureObject final : public Labelled<MTL::Texture>, public Purgeable
{
public:
    /// Null, with a report, when the description cannot be met.
    static TextureObject* make(DeviceObject* owner, const TextureDescriptorObject& description);
    TextureObject(DeviceObject* owner, const TextureDescriptorObject& description, std::shared_ptr<Memory> memory);
    const char* className() const override { return "MTLTexture"; }
    std::string summary() const override; // "RGBA8Unorm, 64 x 48"

    uint32_t slices() const;
    bool inside(const MTL::Region& region, NS::UInteger level, NS::UInteger slice) const;
    /// Null, with a report, when this texture cannot be seen so.
    TextureObject* makeView(MTL::PixelFormat format, MTL::TextureType type, NS::Range levels, NS::Range slices, MTL::TextureSwizzleChannels swizzle);

    TextureDescriptorObject description;
    std::shared_ptr<Memory> memory; // shared with views
    Ref<TextureObject> parent;
    NS::UInteger parentLevel = 0, parentSlice = 0;
    bool framebufferOnly = false; // a layer's texture that may only be drawn to
    abi::Texture view{};

private:
    void describeTo(abi::Texture& view) const; // all but the levels
};

class SamplerStateObject final : public Labelled<MTL::SamplerState>
{
public:
    SamplerStateObject(DeviceObject* owner, const SamplerDescriptorObject& description);
    const char* className() const override { return "MTLSamplerState"; }
    abi::Sampler state{};

private:
    void limitToPixels();
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
    std::string summary() const override; // "main_v, main_f"

    raster::Pipeline pipeline;
    std::shared_ptr<shader::Function> vertexFunction, fragmentFunction; // keep the machine code alive
    uint8_t topology = 0;                                               // MTL::PrimitiveTopologyClass of what it draws
    uint32_t depthFormat = 0, stencilFormat = 0;
};

class FenceObject final : public Labelled<MTL::Fence>
{
public:
    using Labelled::Labelled;
    const char* className() const override { return "MTLFence"; }
};

} // namespace softmetal
