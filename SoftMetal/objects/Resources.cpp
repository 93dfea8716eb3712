// SPDX-License-Identifier: Apache-2.0
#include "objects/Resources.h"

#include "formats/PixelFormat.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"
#include "texturing/Copy.h"
#include "texturing/Sampling.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <new>

namespace softmetal {
namespace {

constexpr size_t Alignment = 64, Slack = 64;
constexpr uint64_t LargestTexture = uint64_t{1} << 34; // bytes

uint64_t roundUp(uint64_t value, uint64_t step) { return (value + step - 1) / step * step; }

uint64_t nextRegistryId()
{
    static std::atomic<uint64_t> next{0x100000100};
    return next++;
}

bool isCube(MTL::TextureType type) { return type == MTL::TextureTypeCube || type == MTL::TextureTypeCubeArray; }
bool isOneDimensional(MTL::TextureType type) { return type == MTL::TextureType1D || type == MTL::TextureType1DArray; }

/// Lays out all levels; returns the bytes needed.
uint64_t layOut(abi::Texture& view, uint32_t bytes, uint32_t slices, uint8_t* base)
{
    uint64_t offset = 0;
    for (uint32_t i = 0; i < view.levelCount; ++i) {
        abi::TextureLevel& level = view.levels[i];
        level.width = std::max(view.width >> i, 1u);
        level.height = std::max(view.height >> i, 1u);
        level.depth = std::max(view.depth >> i, 1u);
        // Rows begin on a vector, and there is an even number of them, each a whole number of batches wide.
        level.rowPitch = static_cast<uint32_t>(roundUp(roundUp(level.width, 8) * bytes, 64));
        level.planePitch = static_cast<uint64_t>(level.rowPitch) * roundUp(level.height, 2);
        level.slicePitch = level.planePitch * level.depth;
        level.data = base ? base + offset : nullptr;
        offset += roundUp(level.slicePitch * slices, 64);
    }
    return offset;
}

uint32_t narrow(NS::UInteger value) { return static_cast<uint32_t>(std::min<NS::UInteger>(value, 0xFFFFFFFF)); }

} // namespace

DeviceObject::DeviceObject(std::string deviceName, bool hasDepth24, bool recordsOnly)
    : name(std::move(deviceName)), depth24Stencil8(hasDepth24), discards(recordsOnly), registryId(nextRegistryId())
{
}

Memory::Memory(size_t bytes)
{
    size_t size = roundUp(bytes + Slack, Alignment);
    data_ = static_cast<uint8_t*>(std::aligned_alloc(Alignment, size));
    if (!data_) throw std::bad_alloc();
    std::memset(data_, 0, size);
}

Memory::~Memory() { std::free(data_); }

BufferObject::BufferObject(DeviceObject* owner, size_t bytes, MTL::ResourceOptions resourceOptions)
    : Labelled(owner), length(bytes), options(resourceOptions), memory(bytes)
{
}

// ---- textures ------------------------------------------------------------------------------------------------------------

TextureObject* TextureObject::make(DeviceObject* owner, const TextureDescriptorObject& d, std::string& why)
{
    const auto* format = formats::pixelFormatInfo(static_cast<uint32_t>(d.pixelFormat));
    NS::UInteger largest = std::max({d.width, d.height, d.depth}), chain = 1;
    while (largest >> chain) ++chain;
    if (!format) why = "the pixel format (" + std::to_string(d.pixelFormat) + ") is not one that this device has";
    else if (d.width == 0 || d.height == 0 || d.depth == 0) why = "width, height and depth must not be zero";
    else if (largest > 16384 || (d.textureType == MTL::TextureType3D && largest > 2048)) why = "the texture is larger than 16384 texels, or 2048 for 3D";
    else if (d.mipmapLevelCount == 0 || d.mipmapLevelCount > std::min<NS::UInteger>(chain, abi::MaxLevels)) why = "the number of mip levels does not fit the size";
    else if (isOneDimensional(d.textureType) && d.mipmapLevelCount > 1) why = "a 1D texture has one mip level";
    else if (d.arrayLength == 0 || d.arrayLength > 2048) why = "the array length must be 1 to 2048";
    else if (isCube(d.textureType) && d.width != d.height) why = "a cube texture must be square";
    else if (d.textureType != MTL::TextureType3D && d.depth != 1) why = "only 3D textures have a depth other than 1";
    else if (isOneDimensional(d.textureType) && d.height != 1) why = "a 1D texture has a height of 1";
    else if (d.sampleCount != 1) why = "textures of several samples are not supported";
    if (!why.empty()) return nullptr;
    abi::Texture probe{};
    probe.width = narrow(d.width);
    probe.height = narrow(d.height);
    probe.depth = narrow(d.depth);
    probe.levelCount = narrow(d.mipmapLevelCount);
    uint64_t bytes = layOut(probe, format->bytes, narrow(d.arrayLength) * (isCube(d.textureType) ? 6 : 1), nullptr);
    if (bytes > LargestTexture) {
        why = "there is not enough memory";
        return nullptr;
    }
    try {
        return new TextureObject(owner, d, std::make_shared<Memory>(bytes));
    } catch (const std::bad_alloc&) {
        why = "there is not enough memory";
        return nullptr;
    }
}

TextureObject::TextureObject(DeviceObject* owner, const TextureDescriptorObject& d, std::shared_ptr<Memory> storage)
    : Labelled(owner), description(d), memory(std::move(storage))
{
    view.type = static_cast<uint32_t>(d.textureType);
    view.format = static_cast<uint32_t>(d.pixelFormat);
    view.width = narrow(d.width);
    view.height = narrow(d.height);
    view.depth = narrow(d.depth);
    view.arrayLength = narrow(d.arrayLength);
    view.levelCount = narrow(d.mipmapLevelCount);
    view.sampleCount = 1;
    const MTL::TextureSwizzleChannels& s = d.swizzle;
    const uint8_t swizzle[4] = {s.red, s.green, s.blue, s.alpha};
    std::memcpy(view.swizzle, swizzle, 4);
    layOut(view, formats::pixelFormatInfo(view.format)->bytes, slices(), memory->data());
    texturing::prepareTexture(view);
}

uint32_t TextureObject::slices() const { return narrow(description.arrayLength) * (isCube(description.textureType) ? 6 : 1); }

bool TextureObject::inside(const MTL::Region& r, NS::UInteger level, NS::UInteger slice) const
{
    if (level >= view.levelCount || slice >= slices()) return false;
    const abi::TextureLevel& l = view.levels[level];
    auto fits = [](NS::UInteger origin, NS::UInteger size, uint32_t limit) { return origin <= limit && size <= limit - origin; };
    return fits(r.origin.x, r.size.width, l.width) && fits(r.origin.y, r.size.height, l.height) && fits(r.origin.z, r.size.depth, l.depth);
}

// ---- states ----------------------------------------------------------------------------------------------------------------

SamplerStateObject::SamplerStateObject(DeviceObject* owner, const SamplerDescriptorObject& d) : Labelled(owner)
{
    label = d.label;
    state.minFilter = static_cast<uint8_t>(d.minFilter);
    state.magFilter = static_cast<uint8_t>(d.magFilter);
    state.mipFilter = static_cast<uint8_t>(d.mipFilter);
    state.sAddress = static_cast<uint8_t>(d.sAddressMode);
    state.tAddress = static_cast<uint8_t>(d.tAddressMode);
    state.rAddress = static_cast<uint8_t>(d.rAddressMode);
    state.borderColor = static_cast<uint8_t>(d.borderColor);
    state.normalizedCoordinates = d.normalizedCoordinates;
    state.compareFunction = static_cast<uint8_t>(d.compareFunction);
    state.maxAnisotropy = static_cast<uint8_t>(std::clamp<NS::UInteger>(d.maxAnisotropy, 1, 16));
    state.lodMinClamp = d.lodMinClamp;
    state.lodMaxClamp = d.lodMaxClamp;
    if (d.normalizedCoordinates) return;
    // Pixel coordinates go with neither repetition nor mip levels.
    if (state.mipFilter != MTL::SamplerMipFilterNotMipmapped)
        inspect::report("sampler.pixel-mip", "newSamplerState: a sampler with pixel coordinates must not use mip levels (mipFilter must be NotMipmapped)");
    bool repeats = false;
    for (uint8_t* mode : {&state.sAddress, &state.tAddress, &state.rAddress}) {
        bool allowed = *mode == MTL::SamplerAddressModeClampToEdge || *mode == MTL::SamplerAddressModeClampToZero;
        repeats |= !allowed;
        if (!allowed) *mode = MTL::SamplerAddressModeClampToEdge;
    }
    if (repeats)
        inspect::report("sampler.pixel-address", "newSamplerState: a sampler with pixel coordinates must clamp (address modes ClampToEdge or ClampToZero)");
    state.mipFilter = MTL::SamplerMipFilterNotMipmapped;
    state.maxAnisotropy = 1;
}

namespace {

raster::StencilState stencilState(const Object* object)
{
    raster::StencilState result;
    if (!object) return result;
    const auto& d = *static_cast<const StencilDescriptorObject*>(object);
    result.compareFunction = static_cast<uint8_t>(d.stencilCompareFunction);
    result.failOperation = static_cast<uint8_t>(d.stencilFailureOperation);
    result.depthFailOperation = static_cast<uint8_t>(d.depthFailureOperation);
    result.passOperation = static_cast<uint8_t>(d.depthStencilPassOperation);
    result.readMask = d.readMask;
    result.writeMask = d.writeMask;
    return result;
}

} // namespace

DepthStencilStateObject::DepthStencilStateObject(DeviceObject* owner, const DepthStencilDescriptorObject& d) : Labelled(owner)
{
    label = d.label;
    state.depthCompare = static_cast<uint8_t>(d.depthCompareFunction);
    state.depthWrite = d.depthWriteEnabled;
    state.stencilEnabled = d.frontFaceStencil || d.backFaceStencil;
    state.front = stencilState(d.frontFaceStencil.get());
    state.back = stencilState(d.backFaceStencil.get());
}

} // namespace softmetal
