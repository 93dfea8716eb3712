// SPDX-License-Identifier: Apache-2.0
#include "objects/Resources.h"

#include "formats/PixelFormat.h"
#include "inspect/Inspect.h"
#include "texturing/Sampling.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

namespace softmetal {
namespace {

constexpr size_t Alignment = 64, Slack = 64;
constexpr uint64_t LargestTexture = uint64_t{1} << 34; // bytes

std::atomic<uint64_t> bytesAllocated{0};

uint64_t roundUp(uint64_t value, uint64_t step) { return (value + step - 1) / step * step; }

uint64_t nextRegistryId()
{
    static std::atomic<uint64_t> next{0x100000100};
    return next++;
}

bool isCube(MTL::TextureType type) { return type == MTL::TextureTypeCube || type == MTL::TextureTypeCubeArray; }
bool isArray(MTL::TextureType type) { return type == MTL::TextureType1DArray || type == MTL::TextureType2DArray || type == MTL::TextureTypeCubeArray; }
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

Memory::Memory(size_t bytes) : length_(bytes)
{
    // calloc hands out large blocks zeroed by the system, page by page as they are touched.
    allocation_ = std::calloc(bytes + Slack + Alignment, 1);
    if (!allocation_) throw std::bad_alloc();
    data_ = reinterpret_cast<uint8_t*>(roundUp(reinterpret_cast<uintptr_t>(allocation_), Alignment));
    bytesAllocated.fetch_add(bytes, std::memory_order_relaxed);
}

Memory::Memory(void* bytes, size_t length, Release release) : data_(static_cast<uint8_t*>(bytes)), length_(length), release_(std::move(release)) {}

Memory::~Memory()
{
    if (release_) release_(data_, length_);
    if (!allocation_) return;
    bytesAllocated.fetch_sub(length_, std::memory_order_relaxed);
    std::free(allocation_);
}

uint64_t Memory::allocated() { return bytesAllocated.load(std::memory_order_relaxed); }

BufferObject::BufferObject(DeviceObject* owner, size_t bytes, MTL::ResourceOptions resourceOptions)
    : Labelled(owner), length(bytes), options(resourceOptions), memory(bytes)
{
}

BufferObject::BufferObject(DeviceObject* owner, void* bytes, size_t size, MTL::ResourceOptions resourceOptions, Memory::Release release)
    : Labelled(owner), length(size), options(resourceOptions), memory(bytes, size, std::move(release))
{
}

// ---- textures ------------------------------------------------------------------------------------------------------------

namespace {

constexpr NS::UInteger LargestSide = 16384, LargestDepth = 2048, LongestArray = 2048;

NS::UInteger longestChain(const TextureDescriptorObject& d)
{
    if (isOneDimensional(d.textureType)) return 1;
    const int levels = std::bit_width(std::max({d.width, d.height, d.depth, NS::UInteger{1}})); // sides come unchecked
    return std::min<NS::UInteger>(static_cast<NS::UInteger>(levels), abi::MaxLevels);
}

/// Every rule that a texture's description must meet.
bool describable(const DeviceObject& device, const TextureDescriptorObject& d)
{
    using inspect::require;
    using inspect::Rule;
    auto within = [](NS::UInteger value, NS::UInteger limit) { return value >= 1 && value <= limit; };
    bool known = formats::pixelFormatInfo(static_cast<uint32_t>(d.pixelFormat)) && (device.depth24Stencil8 || d.pixelFormat != MTL::PixelFormatDepth24Unorm_Stencil8);
    bool several = d.textureType == MTL::TextureType2DMultisample || d.textureType == MTL::TextureType2DMultisampleArray;
    NS::UInteger side = d.textureType == MTL::TextureType3D ? LargestDepth : LargestSide;
    NS::UInteger chain = longestChain(d), longest = isArray(d.textureType) ? LongestArray : 1;
    return require(known, Rule::TextureFormat, d.pixelFormat) &&
           require(!several && d.sampleCount == 1 && d.textureType <= MTL::TextureType3D, Rule::TextureSamples, d.textureType, d.sampleCount) &&
           require(within(d.width, side) && within(d.height, side) && within(d.depth, side), Rule::TextureSize, d.width, d.height, d.depth, side) &&
           require(within(d.mipmapLevelCount, chain), Rule::TextureLevels, d.mipmapLevelCount, chain) &&
           require(within(d.arrayLength, longest), Rule::TextureArray, d.arrayLength, longest) &&
           require(!isCube(d.textureType) || d.width == d.height, Rule::TextureCube, d.width, d.height) &&
           require(d.textureType == MTL::TextureType3D || d.depth == 1, Rule::TextureDepth, d.depth) &&
           require(!isOneDimensional(d.textureType) || d.height == 1, Rule::TextureOneDimensional, d.height) &&
           require(d.storageMode <= MTL::StorageModePrivate, Rule::TextureStorage, d.storageMode);
}

} // namespace

TextureObject* TextureObject::make(DeviceObject* owner, const TextureDescriptorObject& d)
{
    if (!describable(*owner, d)) return nullptr;
    abi::Texture probe{};
    probe.width = narrow(d.width);
    probe.height = narrow(d.height);
    probe.depth = narrow(d.depth);
    probe.levelCount = narrow(d.mipmapLevelCount);
    uint32_t slices = narrow(d.arrayLength) * (isCube(d.textureType) ? 6 : 1);
    uint64_t bytes = layOut(probe, formats::pixelFormatInfo(static_cast<uint32_t>(d.pixelFormat))->bytes, slices, nullptr);
    std::shared_ptr<Memory> memory;
    try {
        if (bytes <= LargestTexture) memory = std::make_shared<Memory>(bytes);
    } catch (const std::bad_alloc&) {
        memory = nullptr;
    }
    if (!inspect::require(memory != nullptr, inspect::Rule::TextureMemory, bytes)) return nullptr;
    return new TextureObject(owner, d, std::move(memory));
}

TextureObject::TextureObject(DeviceObject* owner, const TextureDescriptorObject& d, std::shared_ptr<Memory> storage)
    : Labelled(owner), description(d), memory(std::move(storage))
{
    describeTo(view);
    layOut(view, formats::pixelFormatInfo(view.format)->bytes, slices(), memory->data());
    texturing::prepareTexture(view);
}

void TextureObject::describeTo(abi::Texture& to) const
{
    to.type = static_cast<uint32_t>(description.textureType);
    to.format = static_cast<uint32_t>(description.pixelFormat);
    to.width = narrow(description.width);
    to.height = narrow(description.height);
    to.depth = narrow(description.depth);
    to.arrayLength = narrow(description.arrayLength);
    to.levelCount = narrow(description.mipmapLevelCount);
    to.sampleCount = 1;
    to.usage = static_cast<uint32_t>(description.usage);
    const MTL::TextureSwizzleChannels& s = description.swizzle;
    const uint8_t swizzle[4] = {s.red, s.green, s.blue, s.alpha};
    std::memcpy(to.swizzle, swizzle, 4);
}

std::string TextureObject::summary() const
{
    const auto* format = formats::pixelFormatInfo(view.format);
    std::string text = (format ? format->name : "format " + std::to_string(view.format)) + ", " + std::to_string(view.width) + " x " + std::to_string(view.height);
    if (view.levels[0].depth > 1) text += " x " + std::to_string(view.levels[0].depth);
    if (slices() > 1) text += ", " + std::to_string(slices()) + " slices";
    if (view.levelCount > 1) text += ", " + std::to_string(view.levelCount) + " levels";
    return text;
}

uint32_t TextureObject::slices() const { return narrow(description.arrayLength) * (isCube(description.textureType) ? 6 : 1); }

bool TextureObject::inside(const MTL::Region& r, NS::UInteger level, NS::UInteger slice) const
{
    if (level >= view.levelCount || slice >= slices()) return false;
    const abi::TextureLevel& l = view.levels[level];
    auto fits = [](NS::UInteger origin, NS::UInteger size, uint32_t limit) { return origin <= limit && size <= limit - origin; };
    return fits(r.origin.x, r.size.width, l.width) && fits(r.origin.y, r.size.height, l.height) && fits(r.origin.z, r.size.depth, l.depth);
}

// ---- views ------------------------------------------------------------------------------------------------------------------

namespace {

/// Whether slices of one texture make a texture of the other type.
bool viewable(MTL::TextureType from, MTL::TextureType to, NS::UInteger slices)
{
    if (from == MTL::TextureType3D || to == MTL::TextureType3D) return from == to;
    if (isOneDimensional(from) != isOneDimensional(to)) return false;
    if (to == MTL::TextureTypeCube) return slices == 6;
    if (to == MTL::TextureTypeCubeArray) return slices % 6 == 0;
    return to <= MTL::TextureType3D && to != MTL::TextureType2DMultisample && (isArray(to) || slices == 1);
}

/// The sRGB and the linear format of the same texels count as one.
uint32_t withoutTransfer(const formats::PixelFormatInfo& format)
{
    return format.component == formats::Component::Srgb ? format.format - 1 : format.format;
}

} // namespace

TextureObject* TextureObject::makeView(MTL::PixelFormat format, MTL::TextureType type, NS::Range levels, NS::Range range, MTL::TextureSwizzleChannels swizzle)
{
    using inspect::require;
    using inspect::Rule;
    const auto *ours = formats::pixelFormatInfo(view.format), *wanted = formats::pixelFormatInfo(static_cast<uint32_t>(format));
    auto fits = [](NS::Range r, NS::UInteger limit) { return r.length > 0 && r.location < limit && r.length <= limit - r.location; };
    bool sameKind = wanted && wanted->bytes == ours->bytes && wanted->isDepthOrStencil() == ours->isDepthOrStencil();
    if (!require(sameKind, Rule::TextureViewFormat, format, *this)) return nullptr;
    if (!require(fits(levels, view.levelCount) && fits(range, slices()), Rule::TextureViewRange, *this, levels.length, levels.location, range.length,
                 range.location))
        return nullptr;
    if (!require(viewable(description.textureType, type, range.length), Rule::TextureViewType, *this, description.textureType, type, range.length)) return nullptr;
    bool mayDiffer = (description.usage & MTL::TextureUsagePixelFormatView) != 0 || withoutTransfer(*ours) == withoutTransfer(*wanted);
    require(mayDiffer, Rule::TextureViewUsage, *this, format);

    auto* result = new TextureObject(device.get(), description, memory);
    result->parent = Ref<TextureObject>(this);
    result->parentLevel = levels.location;
    result->parentSlice = range.location;
    result->framebufferOnly = framebufferOnly;
    const abi::TextureLevel& first = view.levels[levels.location];
    TextureDescriptorObject& d = result->description;
    d.pixelFormat = format;
    d.textureType = type;
    d.swizzle = swizzle;
    d.mipmapLevelCount = levels.length;
    d.arrayLength = isCube(type) ? range.length / 6 : range.length;
    d.width = first.width;
    d.height = first.height;
    d.depth = first.depth;
    result->describeTo(result->view);
    for (NS::UInteger i = 0; i < levels.length; ++i) {
        result->view.levels[i] = view.levels[levels.location + i];
        result->view.levels[i].data += range.location * result->view.levels[i].slicePitch;
    }
    texturing::prepareTexture(result->view);
    return result;
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
    using inspect::require;
    using inspect::Rule;
    require(d.maxAnisotropy >= 1 && d.maxAnisotropy <= 16, Rule::SamplerAnisotropy, d.maxAnisotropy, *this);
    require(d.lodMinClamp <= d.lodMaxClamp, Rule::SamplerLod, static_cast<double>(d.lodMinClamp), static_cast<double>(d.lodMaxClamp), *this);
    if (!d.normalizedCoordinates) limitToPixels();
}

/// Pixel coordinates go with neither repetition nor mip levels.
void SamplerStateObject::limitToPixels()
{
    using inspect::require;
    using inspect::Rule;
    auto clamps = [](uint8_t mode) { return mode == MTL::SamplerAddressModeClampToEdge || mode == MTL::SamplerAddressModeClampToZero; };
    require(state.mipFilter == MTL::SamplerMipFilterNotMipmapped, Rule::SamplerPixelMip, *this, state.mipFilter);
    require(state.minFilter == state.magFilter, Rule::SamplerPixelFilter, *this, state.minFilter, state.magFilter);
    require(clamps(state.sAddress) && clamps(state.tAddress) && clamps(state.rAddress), Rule::SamplerPixelAddress, *this, state.sAddress, state.tAddress,
            state.rAddress);
    for (uint8_t* mode : {&state.sAddress, &state.tAddress, &state.rAddress})
        if (!clamps(*mode)) *mode = MTL::SamplerAddressModeClampToEdge;
    state.mipFilter = MTL::SamplerMipFilterNotMipmapped;
    state.maxAnisotropy = 1;
}

namespace {

raster::StencilState stencilState(const Object& object)
{
    raster::StencilState result;
    const auto& d = static_cast<const StencilDescriptorObject&>(object);
    result.compareFunction = static_cast<uint8_t>(d.stencilCompareFunction);
    result.failOperation = static_cast<uint8_t>(d.stencilFailureOperation);
    result.depthFailOperation = static_cast<uint8_t>(d.depthFailureOperation);
    result.passOperation = static_cast<uint8_t>(d.depthStencilPassOperation);
    result.readMask = d.readMask;
    result.writeMask = d.writeMask;
    return result;
}

bool hasEffect(const raster::StencilState& s)
{
    return s.compareFunction != MTL::CompareFunctionAlways || s.failOperation != MTL::StencilOperationKeep || s.depthFailOperation != MTL::StencilOperationKeep ||
           s.passOperation != MTL::StencilOperationKeep;
}

} // namespace

DepthStencilStateObject::DepthStencilStateObject(DeviceObject* owner, const DepthStencilDescriptorObject& d) : Labelled(owner)
{
    label = d.label;
    state.depthCompare = static_cast<uint8_t>(d.depthCompareFunction);
    state.depthWrite = d.depthWriteEnabled;
    state.front = stencilState(*d.frontFaceStencil);
    state.back = stencilState(*d.backFaceStencil);
    state.stencilEnabled = hasEffect(state.front) || hasEffect(state.back);
}

} // namespace softmetal
