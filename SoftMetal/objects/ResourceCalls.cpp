// SPDX-License-Identifier: Apache-2.0
// Metal's calls on resources in general, on buffers and on textures.
#include "formats/PixelFormat.h"
#include "inspect/Counters.h"
#include "inspect/Inspect.h"
#include "objects/Resources.h"
#include "texturing/Copy.h"

#include <algorithm>

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

TextureObject* textureOf(const MTL::Resource* resource) { return dynamic_cast<TextureObject*>(castObject(resource)); }

/// Calls that buffers and textures share.
template <class Function>
auto withResource(const MTL::Resource* resource, Function function)
{
    if (TextureObject* texture = textureOf(resource)) return function(*texture);
    return function(*cast<BufferObject>(resource));
}

texturing::Block blockOf(const MTL::Region& r)
{
    auto n = [](NS::UInteger v) { return static_cast<uint32_t>(v); };
    return {n(r.origin.x), n(r.origin.y), n(r.origin.z), n(r.size.width), n(r.size.height), n(r.size.depth)};
}

/// The processor's access to one image of a texture.
struct Access
{
    const char* call;
    const void* bytes;
    NS::UInteger bytesPerRow, bytesPerImage;
    MTL::Region region;
    NS::UInteger level, slice;
};

/// False when nothing can be copied.
bool accessible(const TextureObject& texture, const Access& a)
{
    const MTL::Region& r = a.region;
    if (!require(a.bytes != nullptr, Rule::TextureNilBytes, a.call, texture)) return false;
    if (!require(texture.description.storageMode != MTL::StorageModePrivate, Rule::TexturePrivateAccess, a.call, texture)) return false;
    if (!require(texture.inside(r, a.level, a.slice), Rule::TextureRegion, a.call, r.size.width, r.size.height, r.size.depth, r.origin.x, r.origin.y, r.origin.z,
                 a.level, a.slice, texture))
        return false;
    NS::UInteger row = r.size.width * formats::pixelFormatInfo(texture.view.format)->bytes, image = a.bytesPerRow * r.size.height;
    // The distance between rows or images plays no part where there is only one.
    require(r.size.height <= 1 || a.bytesPerRow >= row, Rule::TextureRowBytes, a.call, a.bytesPerRow, texture, row);
    require(r.size.depth <= 1 || a.bytesPerImage >= image, Rule::TextureImageBytes, a.call, a.bytesPerImage, texture, image);
    return true;
}

} // namespace

// ---- Resource ------------------------------------------------------------------------------------------------------------

NS::String* MTL::Resource::label() const
{
    return withResource(this, [](auto& r) { return reinterpret_cast<NS::String*>(r.label.get()); });
}

void MTL::Resource::setLabel(const NS::String* label)
{
    withResource(this, [&](auto& r) { r.label = ObjectRef(castObject(label)); });
}

MTL::Device* MTL::Resource::device() const
{
    return withResource(this, [](auto& r) { return api(r.device.get()); });
}

MTL::ResourceOptions MTL::Resource::resourceOptions() const
{
    if (TextureObject* texture = textureOf(this)) return api(&texture->description)->resourceOptions();
    return cast<BufferObject>(this)->options;
}

MTL::CPUCacheMode MTL::Resource::cpuCacheMode() const { return static_cast<CPUCacheMode>(resourceOptions() & 15); }
MTL::StorageMode MTL::Resource::storageMode() const { return static_cast<StorageMode>(resourceOptions() >> 4 & 15); }
MTL::HazardTrackingMode MTL::Resource::hazardTrackingMode() const { return static_cast<HazardTrackingMode>(resourceOptions() >> 8 & 3); }

MTL::PurgeableState MTL::Resource::setPurgeableState(PurgeableState state)
{
    note(this, "setPurgeableState", arg("state", state));
    return withResource(this, [&](auto& r) { return r.setPurgeableState(state); });
}

NS::UInteger MTL::Resource::allocatedSize() const
{
    TextureObject* texture = textureOf(this);
    if (!texture) return cast<BufferObject>(this)->length;
    NS::UInteger bytes = 0;
    for (uint32_t i = 0; i < texture->view.levelCount; ++i) bytes += texture->view.levels[i].slicePitch * texture->slices();
    return bytes;
}

// ---- Buffer --------------------------------------------------------------------------------------------------------------

NS::UInteger MTL::Buffer::length() const { return cast<BufferObject>(this)->length; }

void* MTL::Buffer::contents()
{
    auto& buffer = *cast<BufferObject>(this);
    bool reachable = (buffer.options >> 4 & 15) != StorageModePrivate;
    return require(reachable, Rule::BufferPrivateContents, buffer) ? buffer.memory.data() : nullptr;
}

void MTL::Buffer::didModifyRange(NS::Range range)
{
    auto& buffer = *cast<BufferObject>(this);
    note(this, "didModifyRange", arg("location", range.location), arg("length", range.length));
    bool inside = range.location <= buffer.length && range.length <= buffer.length - range.location;
    require(inside, Rule::BufferModifiedRange, range.length, range.location, buffer, buffer.length);
}

MTL::Texture* MTL::Buffer::newTexture(const TextureDescriptor*, NS::UInteger, NS::UInteger)
{
    require(false, Rule::BufferTexture, *cast<BufferObject>(this));
    return nullptr;
}

void MTL::Buffer::addDebugMarker(const NS::String*, NS::Range) {}
void MTL::Buffer::removeAllDebugMarkers() {}

// ---- Texture -------------------------------------------------------------------------------------------------------------

MTL::Texture* MTL::Texture::parentTexture() const { return api(cast<TextureObject>(this)->parent.get()); }
NS::UInteger MTL::Texture::parentRelativeLevel() const { return cast<TextureObject>(this)->parentLevel; }
NS::UInteger MTL::Texture::parentRelativeSlice() const { return cast<TextureObject>(this)->parentSlice; }
MTL::Buffer* MTL::Texture::buffer() const { return nullptr; }
NS::UInteger MTL::Texture::bufferOffset() const { return 0; }
NS::UInteger MTL::Texture::bufferBytesPerRow() const { return 0; }
MTL::TextureType MTL::Texture::textureType() const { return cast<TextureObject>(this)->description.textureType; }
MTL::PixelFormat MTL::Texture::pixelFormat() const { return cast<TextureObject>(this)->description.pixelFormat; }
NS::UInteger MTL::Texture::width() const { return cast<TextureObject>(this)->description.width; }
NS::UInteger MTL::Texture::height() const { return cast<TextureObject>(this)->description.height; }
NS::UInteger MTL::Texture::depth() const { return cast<TextureObject>(this)->description.depth; }
NS::UInteger MTL::Texture::mipmapLevelCount() const { return cast<TextureObject>(this)->description.mipmapLevelCount; }
NS::UInteger MTL::Texture::sampleCount() const { return 1; }
NS::UInteger MTL::Texture::arrayLength() const { return cast<TextureObject>(this)->description.arrayLength; }
MTL::TextureUsage MTL::Texture::usage() const { return cast<TextureObject>(this)->description.usage; }
MTL::TextureSwizzleChannels MTL::Texture::swizzle() const { return cast<TextureObject>(this)->description.swizzle; }

void MTL::Texture::replaceRegion(Region region, NS::UInteger level, NS::UInteger slice, const void* bytes, NS::UInteger bytesPerRow, NS::UInteger bytesPerImage)
{
    auto& texture = *cast<TextureObject>(this);
    note(this, "replaceRegion", arg("x", region.origin.x), arg("y", region.origin.y), arg("z", region.origin.z), arg("width", region.size.width),
         arg("height", region.size.height), arg("depth", region.size.depth), arg("level", level), arg("slice", slice), arg("bytesPerRow", bytesPerRow),
         arg("bytesPerImage", bytesPerImage));
    if (!accessible(texture, {"replaceRegion", bytes, bytesPerRow, bytesPerImage, region, level, slice})) return;
    texturing::Image to{&texture.view, static_cast<uint32_t>(level), static_cast<uint32_t>(slice)};
    texturing::copyMemoryToTexture(static_cast<const uint8_t*>(bytes), bytesPerRow, bytesPerImage, to, blockOf(region), texturing::Aspect::All);
    inspect::count(inspect::counters.bytesUploaded, region.size.width * region.size.height * region.size.depth * formats::pixelFormatInfo(texture.view.format)->bytes);
}

void MTL::Texture::replaceRegion(Region region, NS::UInteger level, const void* bytes, NS::UInteger bytesPerRow)
{
    replaceRegion(region, level, 0, bytes, bytesPerRow, bytesPerRow * region.size.height);
}

void MTL::Texture::getBytes(const void* bytes, NS::UInteger bytesPerRow, NS::UInteger bytesPerImage, Region region, NS::UInteger level, NS::UInteger slice)
{
    auto& texture = *cast<TextureObject>(this);
    note(this, "getBytes", arg("x", region.origin.x), arg("y", region.origin.y), arg("z", region.origin.z), arg("width", region.size.width),
         arg("height", region.size.height), arg("depth", region.size.depth), arg("level", level), arg("slice", slice), arg("bytesPerRow", bytesPerRow),
         arg("bytesPerImage", bytesPerImage));
    if (!accessible(texture, {"getBytes", bytes, bytesPerRow, bytesPerImage, region, level, slice})) return;
    texturing::Image from{&texture.view, static_cast<uint32_t>(level), static_cast<uint32_t>(slice)};
    auto* out = static_cast<uint8_t*>(const_cast<void*>(bytes)); // the API's own signature: the caller's memory is written
    texturing::copyTextureToMemory(from, blockOf(region), out, bytesPerRow, bytesPerImage, texturing::Aspect::All);
}

void MTL::Texture::getBytes(const void* bytes, NS::UInteger bytesPerRow, Region region, NS::UInteger level)
{
    getBytes(bytes, bytesPerRow, bytesPerRow * region.size.height, region, level, 0);
}

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format)
{
    return newTextureView(format, textureType(), NS::Range(0, mipmapLevelCount()), NS::Range(0, cast<TextureObject>(this)->slices()));
}

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format, TextureType type, NS::Range levels, NS::Range slices)
{
    return newTextureView(format, type, levels, slices, swizzle());
}

MTL::Texture* MTL::Texture::newTextureView(PixelFormat format, TextureType type, NS::Range levels, NS::Range slices, TextureSwizzleChannels channels)
{
    TextureObject* view = inspect::fails("newTextureView") ? nullptr : cast<TextureObject>(this)->makeView(format, type, levels, slices, channels);
    note(this, "newTextureView", arg("format", format), arg("type", type), arg("level", levels.location), arg("levels", levels.length), arg("slice", slices.location),
         arg("slices", slices.length), arg("result", static_cast<const void*>(api(view))));
    return api(view);
}
