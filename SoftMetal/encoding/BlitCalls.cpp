// SPDX-License-Identifier: Apache-2.0
// Metal's calls on blit encoders.
#include "encoding/Commands.h"
#include "formats/PixelFormat.h"

#include <algorithm>

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

uint32_t narrow(NS::UInteger value) { return static_cast<uint32_t>(value); }
const void* pointer(const void* object) { return object; }
const formats::PixelFormatInfo& formatOf(const TextureObject& texture) { return *formats::pixelFormatInfo(texture.view.format); }

BlitEncoderObject* opened(const MTL::BlitCommandEncoder* encoder, const char* call)
{
    auto* object = cast<BlitEncoderObject>(encoder);
    return object->open(call) ? object : nullptr;
}

/// Keeps a resource that a copy uses, after the checks that all of them have.
template <class ResourceObject>
void use(BlitEncoderObject& encoder, ResourceObject& resource, const char* call)
{
    require(resource.device.get() == encoder.device.get(), Rule::EncoderOtherDevice, call, resource);
    require(!resource.mayBeDiscarded(), Rule::BindPurged, call, resource, resource.purgeableState());
    encoder.commands->keep(&resource);
}

// ---- ranges ---------------------------------------------------------------------------------------------------------------

texturing::Block blockOf(const MTL::Origin& o, const MTL::Size& s)
{
    return {narrow(o.x), narrow(o.y), narrow(o.z), narrow(s.width), narrow(s.height), narrow(s.depth)};
}

bool inside(const TextureObject& texture, const MTL::Origin& o, const MTL::Size& s, NS::UInteger level, NS::UInteger slice, const char* call)
{
    bool fits = texture.inside(MTL::Region(o.x, o.y, o.z, s.width, s.height, s.depth), level, slice);
    return require(fits, Rule::BlitRegion, call, s.width, s.height, s.depth, o.x, o.y, o.z, level, slice, texture);
}

bool inside(const BufferObject& buffer, NS::UInteger offset, uint64_t bytes, const char* call)
{
    bool fits = offset <= buffer.length && bytes <= buffer.length - offset;
    return require(fits, Rule::BlitBufferRange, call, bytes, offset, buffer, buffer.length);
}

bool overlap(NS::UInteger a, NS::UInteger b, NS::UInteger size) { return a < b + size && b < a + size; }

// ---- copies between textures and memory --------------------------------------------------------------------------------------

struct MemoryCopy
{
    const MTL::Texture* texture;
    NS::UInteger slice, level;
    MTL::Origin origin;
    MTL::Size size;
    const MTL::Buffer* buffer;
    NS::UInteger offset, rowBytes, imageBytes;
    MTL::BlitOption options;
    bool toTexture;
};

texturing::Aspect aspectOf(MTL::BlitOption options)
{
    if (options & MTL::BlitOptionDepthFromDepthStencil) return texturing::Aspect::Depth;
    return options & MTL::BlitOptionStencilFromDepthStencil ? texturing::Aspect::Stencil : texturing::Aspect::All;
}

/// A texture with depth and stencil is copied one of them at a time; the options name nothing that is not there.
bool checkAspect(const MemoryCopy& c, const TextureObject& texture, const char* call)
{
    const auto& format = formatOf(texture);
    bool depth = (c.options & MTL::BlitOptionDepthFromDepthStencil) != 0, stencil = (c.options & MTL::BlitOptionStencilFromDepthStencil) != 0;
    bool there = (!depth || format.hasDepth) && (!stencil || format.hasStencil) && !(depth && stencil);
    bool one = !(format.hasDepth && format.hasStencil) || depth != stencil;
    require(there && one, Rule::BlitAspect, call, c.options, format.name, texture);
    return there;
}

uint64_t texelBytes(const TextureObject& texture, texturing::Aspect aspect)
{
    const auto& format = formatOf(texture);
    if (aspect == texturing::Aspect::All) return format.bytes;
    return aspect == texturing::Aspect::Stencil ? 1 : format.bytes == 2 ? 2 : 4;
}

/// Bytes from the first to the end of the last row of a copy.
uint64_t span(const MemoryCopy& c, uint64_t texel)
{
    constexpr uint64_t Farthest = uint64_t{1} << 40; // keeps the products below from wrapping
    const MTL::Size& s = c.size;
    if (s.width == 0 || s.height == 0 || s.depth == 0) return 0;
    if ((s.height > 1 && c.rowBytes > Farthest) || (s.depth > 1 && c.imageBytes > Farthest)) return ~uint64_t{0};
    return (s.depth > 1 ? (s.depth - 1) * c.imageBytes : 0) + (s.height > 1 ? (s.height - 1) * c.rowBytes : 0) + s.width * texel;
}

void copyMemory(MTL::BlitCommandEncoder* encoder, const MemoryCopy& c, const char* call)
{
    note(encoder, call, arg("texture", pointer(c.texture)), arg("slice", c.slice), arg("level", c.level), arg("x", c.origin.x), arg("y", c.origin.y), arg("z", c.origin.z),
         arg("width", c.size.width), arg("height", c.size.height), arg("depth", c.size.depth), arg("buffer", pointer(c.buffer)), arg("offset", c.offset),
         arg("bytesPerRow", c.rowBytes), arg("bytesPerImage", c.imageBytes), arg("options", c.options));
    auto* e = opened(encoder, call);
    auto* texture = cast<TextureObject>(c.texture);
    auto* buffer = cast<BufferObject>(c.buffer);
    if (!e || !require(texture && buffer, Rule::BlitNil, call, *e)) return;
    texturing::Aspect aspect = aspectOf(c.options);
    uint64_t texel = texelBytes(*texture, aspect);
    if (!checkAspect(c, *texture, call) || !inside(*texture, c.origin, c.size, c.level, c.slice, call) || !inside(*buffer, c.offset, span(c, texel), call)) return;
    require(!texture->framebufferOnly, Rule::BlitFramebufferOnly, call, *texture);
    require(c.size.height <= 1 || c.rowBytes >= c.size.width * texel, Rule::BlitRowBytes, call, c.rowBytes, c.size.width * texel);
    require(c.size.depth <= 1 || c.imageBytes >= c.rowBytes * c.size.height, Rule::BlitImageBytes, call, c.imageBytes, c.rowBytes * c.size.height);
    use(*e, *texture, call);
    use(*e, *buffer, call);
    e->commands->storage->records.emplace_back(CopyMemoryRecord{&texture->view, narrow(c.level), narrow(c.slice), blockOf(c.origin, c.size),
                                                                buffer->memory.data() + c.offset, c.rowBytes, c.imageBytes, aspect, c.toTexture});
}

bool alike(const formats::PixelFormatInfo& a, const formats::PixelFormatInfo& b)
{
    return a.bytes == b.bytes && a.hasDepth == b.hasDepth && a.hasStencil == b.hasStencil;
}

} // namespace

// ---- between textures ---------------------------------------------------------------------------------------------------------

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, NS::UInteger fromSlice, NS::UInteger fromLevel, Origin fromOrigin, Size size, const Texture* to,
                                              NS::UInteger toSlice, NS::UInteger toLevel, Origin toOrigin)
{
    constexpr const char* Call = "copyFromTexture";
    note(this, Call, arg("source", pointer(from)), arg("sourceSlice", fromSlice), arg("sourceLevel", fromLevel), arg("sourceX", fromOrigin.x), arg("sourceY", fromOrigin.y),
         arg("sourceZ", fromOrigin.z), arg("destination", pointer(to)), arg("slice", toSlice), arg("level", toLevel), arg("x", toOrigin.x), arg("y", toOrigin.y),
         arg("z", toOrigin.z), arg("width", size.width), arg("height", size.height), arg("depth", size.depth));
    auto* e = opened(this, Call);
    auto *source = cast<TextureObject>(from), *target = cast<TextureObject>(to);
    if (!e || !require(source && target, Rule::BlitNil, Call, *e)) return;
    if (!require(alike(formatOf(*source), formatOf(*target)), Rule::BlitFormats, *source, source->view.format, *target, target->view.format)) return;
    if (!inside(*source, fromOrigin, size, fromLevel, fromSlice, Call) || !inside(*target, toOrigin, size, toLevel, toSlice, Call)) return;
    bool meets = source == target && fromLevel == toLevel && fromSlice == toSlice && overlap(fromOrigin.x, toOrigin.x, size.width) &&
                 overlap(fromOrigin.y, toOrigin.y, size.height) && overlap(fromOrigin.z, toOrigin.z, size.depth);
    require(!meets, Rule::BlitOverlap, Call, *source);
    for (TextureObject* texture : {source, target}) {
        require(!texture->framebufferOnly, Rule::BlitFramebufferOnly, Call, *texture);
        use(*e, *texture, Call);
    }
    e->commands->storage->records.emplace_back(CopyTextureRecord{&source->view, &target->view, narrow(fromLevel), narrow(fromSlice), narrow(toLevel), narrow(toSlice),
                                                                 blockOf(fromOrigin, size), narrow(toOrigin.x), narrow(toOrigin.y), narrow(toOrigin.z)});
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, NS::UInteger fromSlice, NS::UInteger fromLevel, const Texture* to, NS::UInteger toSlice, NS::UInteger toLevel,
                                              NS::UInteger slices, NS::UInteger levels)
{
    auto* source = cast<TextureObject>(from);
    for (NS::UInteger l = 0; source && l < levels; ++l) {
        // Beyond the last level the call for it reports; once is enough.
        if (fromLevel + l >= source->view.levelCount) return copyFromTexture(from, fromSlice, fromLevel + l, Origin(), Size(1, 1, 1), to, toSlice, toLevel + l, Origin());
        const abi::TextureLevel& level = source->view.levels[fromLevel + l];
        for (NS::UInteger s = 0; s < slices; ++s)
            copyFromTexture(from, fromSlice + s, fromLevel + l, Origin(), Size(level.width, level.height, level.depth), to, toSlice + s, toLevel + l, Origin());
    }
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, const Texture* to)
{
    auto *source = cast<TextureObject>(from), *target = cast<TextureObject>(to);
    if (!opened(this, "copyFromTexture") || !require(source && target, Rule::BlitNil, "copyFromTexture", *cast<BlitEncoderObject>(this))) return;
    copyFromTexture(from, 0, 0, to, 0, 0, std::min(source->slices(), target->slices()), std::min(source->view.levelCount, target->view.levelCount));
}

// ---- between textures and buffers ------------------------------------------------------------------------------------------------

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level, Origin origin, Size size, const Buffer* buffer, NS::UInteger offset,
                                              NS::UInteger rowBytes, NS::UInteger imageBytes, BlitOption options)
{
    copyMemory(this, {texture, slice, level, origin, size, buffer, offset, rowBytes, imageBytes, options, false}, "copyFromTexture");
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level, Origin origin, Size size, const Buffer* buffer, NS::UInteger offset,
                                              NS::UInteger rowBytes, NS::UInteger imageBytes)
{
    copyFromTexture(texture, slice, level, origin, size, buffer, offset, rowBytes, imageBytes, BlitOptionNone);
}

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger rowBytes, NS::UInteger imageBytes, Size size, const Texture* texture,
                                             NS::UInteger slice, NS::UInteger level, Origin origin, BlitOption options)
{
    copyMemory(this, {texture, slice, level, origin, size, buffer, offset, rowBytes, imageBytes, options, true}, "copyFromBuffer");
}

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger rowBytes, NS::UInteger imageBytes, Size size, const Texture* texture,
                                             NS::UInteger slice, NS::UInteger level, Origin origin)
{
    copyFromBuffer(buffer, offset, rowBytes, imageBytes, size, texture, slice, level, origin, BlitOptionNone);
}

// ---- buffers -----------------------------------------------------------------------------------------------------------------

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* from, NS::UInteger fromOffset, const Buffer* to, NS::UInteger toOffset, NS::UInteger size)
{
    constexpr const char* Call = "copyFromBuffer";
    note(this, Call, arg("source", pointer(from)), arg("sourceOffset", fromOffset), arg("destination", pointer(to)), arg("offset", toOffset), arg("size", size));
    auto* e = opened(this, Call);
    auto *source = cast<BufferObject>(from), *target = cast<BufferObject>(to);
    if (!e || !require(source && target, Rule::BlitNil, Call, *e)) return;
    if (!inside(*source, fromOffset, size, Call) || !inside(*target, toOffset, size, Call)) return;
    require(fromOffset % 4 == 0 && toOffset % 4 == 0 && size % 4 == 0, Rule::BlitAlignment, fromOffset, toOffset, size);
    require(source != target || !overlap(fromOffset, toOffset, size), Rule::BlitOverlap, Call, *source);
    use(*e, *source, Call);
    use(*e, *target, Call);
    e->commands->storage->records.emplace_back(CopyBufferRecord{source->memory.data() + fromOffset, target->memory.data() + toOffset, size});
}

void MTL::BlitCommandEncoder::fillBuffer(const Buffer* buffer, NS::Range range, uint8_t value)
{
    note(this, "fillBuffer", arg("buffer", pointer(buffer)), arg("location", range.location), arg("length", range.length), arg("value", value));
    auto* e = opened(this, "fillBuffer");
    auto* target = cast<BufferObject>(buffer);
    if (!e || !require(target != nullptr, Rule::BlitNil, "fillBuffer", *e) || !inside(*target, range.location, range.length, "fillBuffer")) return;
    use(*e, *target, "fillBuffer");
    e->commands->storage->records.emplace_back(FillRecord{target->memory.data() + range.location, range.length, value});
}

// ---- the rest ------------------------------------------------------------------------------------------------------------------

void MTL::BlitCommandEncoder::generateMipmaps(const Texture* texture)
{
    note(this, "generateMipmaps", arg("texture", pointer(texture)));
    auto* e = opened(this, "generateMipmaps");
    auto* target = cast<TextureObject>(texture);
    if (!e || !require(target != nullptr, Rule::BlitNil, "generateMipmaps", *e)) return;
    const auto& format = formatOf(*target);
    if (!require(format.renderable && format.filterable && !format.isDepthOrStencil(), Rule::BlitMipmaps, *target, format.name)) return;
    use(*e, *target, "generateMipmaps");
    e->commands->storage->records.emplace_back(MipmapRecord{&target->view});
}

// Processor and device share one memory here; what remains of these calls is the record that they were made.
void MTL::BlitCommandEncoder::synchronizeResource(const Resource* resource)
{
    note(this, "synchronizeResource", arg("resource", pointer(resource)));
    auto* e = opened(this, "synchronizeResource");
    if (e) require(resource != nullptr, Rule::BlitNil, "synchronizeResource", *e);
}

void MTL::BlitCommandEncoder::synchronizeTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level)
{
    note(this, "synchronizeTexture", arg("texture", pointer(texture)), arg("slice", slice), arg("level", level));
    auto* e = opened(this, "synchronizeTexture");
    auto* target = cast<TextureObject>(texture);
    if (e && require(target != nullptr, Rule::BlitNil, "synchronizeTexture", *e)) inside(*target, Origin(), Size(), level, slice, "synchronizeTexture");
}

// Passes run one after the other, so that a fence has nothing to wait for.
void MTL::BlitCommandEncoder::updateFence(const Fence* fence)
{
    note(this, "updateFence", arg("fence", pointer(fence)));
    if (auto* e = opened(this, "updateFence")) require(fence != nullptr, Rule::EncoderNilFence, "updateFence", *e);
}

void MTL::BlitCommandEncoder::waitForFence(const Fence* fence)
{
    note(this, "waitForFence", arg("fence", pointer(fence)));
    if (auto* e = opened(this, "waitForFence")) require(fence != nullptr, Rule::EncoderNilFence, "waitForFence", *e);
}

void MTL::BlitCommandEncoder::optimizeContentsForGPUAccess(const Texture*) {}
void MTL::BlitCommandEncoder::optimizeContentsForGPUAccess(const Texture*, NS::UInteger, NS::UInteger) {}
void MTL::BlitCommandEncoder::optimizeContentsForCPUAccess(const Texture*) {}
void MTL::BlitCommandEncoder::optimizeContentsForCPUAccess(const Texture*, NS::UInteger, NS::UInteger) {}
