// SPDX-License-Identifier: Apache-2.0
#include "encoding/Commands.h"
#include "formats/PixelFormat.h"
#include "inspect/Inspect.h"

using namespace softmetal;

namespace softmetal {

bool BlitEncoderObject::open(const char* call) const
{
    if (ended && inspect::validating()) inspect::report("encoder.ended", std::string(call) + ": the blit encoder has ended");
    return !ended;
}

} // namespace softmetal

namespace {

using inspect::arg;
using inspect::note;

double number(auto value) { return static_cast<double>(value); }
uint32_t narrow(NS::UInteger value) { return static_cast<uint32_t>(value); }

texturing::Block blockOf(const MTL::Origin& o, const MTL::Size& s)
{
    return {narrow(o.x), narrow(o.y), narrow(o.z), narrow(s.width), narrow(s.height), narrow(s.depth)};
}

bool inside(const TextureObject& texture, const MTL::Origin& origin, const MTL::Size& size, NS::UInteger level, NS::UInteger slice, const char* call)
{
    MTL::Region region(origin.x, origin.y, origin.z, size.width, size.height, size.depth);
    if (texture.inside(region, level, slice)) return true;
    inspect::report("blit.region", std::string(call) + ": the region, level or slice lies outside texture '" + texture.labelText() + "'");
    return false;
}

texturing::Aspect aspectOf(MTL::BlitOption options)
{
    if (options & MTL::BlitOptionDepthFromDepthStencil) return texturing::Aspect::Depth;
    return options & MTL::BlitOptionStencilFromDepthStencil ? texturing::Aspect::Stencil : texturing::Aspect::All;
}

/// Bytes from the first to the end of the last row of a copy.
uint64_t span(const TextureObject& texture, const MTL::Size& size, NS::UInteger rowBytes, NS::UInteger planeBytes, texturing::Aspect aspect)
{
    const auto& format = *formats::pixelFormatInfo(texture.view.format);
    uint64_t texel = aspect == texturing::Aspect::All ? format.bytes : aspect == texturing::Aspect::Stencil ? 1 : format.bytes == 2 ? 2 : 4;
    if (size.width == 0 || size.height == 0 || size.depth == 0) return 0;
    return (size.depth - 1) * planeBytes + (size.height - 1) * rowBytes + size.width * texel;
}

bool fits(const BufferObject& buffer, NS::UInteger offset, uint64_t bytes, const char* call)
{
    if (offset <= buffer.length && bytes <= buffer.length - offset) return true;
    inspect::report("blit.buffer-range", std::string(call) + ": the range ends beyond buffer '" + buffer.labelText() + "'");
    return false;
}

struct MemoryCopy
{
    const MTL::Texture* texture;
    NS::UInteger slice, level;
    MTL::Origin origin;
    MTL::Size size;
    const MTL::Buffer* buffer;
    NS::UInteger offset, rowBytes, planeBytes;
    MTL::BlitOption options;
    bool toTexture;
};

void copyMemory(MTL::BlitCommandEncoder* encoder, const MemoryCopy& c, const char* call)
{
    note(encoder, call, arg("texture", static_cast<const void*>(c.texture)), arg("buffer", static_cast<const void*>(c.buffer)), arg("x", number(c.origin.x)),
         arg("y", number(c.origin.y)), arg("width", number(c.size.width)), arg("height", number(c.size.height)), arg("options", number(c.options)));
    auto* e = cast<BlitEncoderObject>(encoder);
    if (!e->open(call)) return;
    auto* texture = cast<TextureObject>(c.texture);
    auto* buffer = cast<BufferObject>(c.buffer);
    if (!inspect::require(texture && buffer, "blit.nil", "copyFrom…: texture and buffer must not be nil")) return;
    texturing::Aspect aspect = aspectOf(c.options);
    if (!inside(*texture, c.origin, c.size, c.level, c.slice, call) || !fits(*buffer, c.offset, span(*texture, c.size, c.rowBytes, c.planeBytes, aspect), call)) return;
    e->commands->keep(texture);
    e->commands->keep(buffer);
    e->commands->records.emplace_back(CopyMemoryRecord{&texture->view, narrow(c.level), narrow(c.slice), blockOf(c.origin, c.size), buffer->memory.data() + c.offset,
                                                       c.rowBytes, c.planeBytes, aspect, c.toTexture});
}

} // namespace

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, NS::UInteger fromSlice, NS::UInteger fromLevel, Origin fromOrigin, Size size, const Texture* to,
                                              NS::UInteger toSlice, NS::UInteger toLevel, Origin toOrigin)
{
    note(this, "copyFromTexture", arg("source", static_cast<const void*>(from)), arg("sourceSlice", number(fromSlice)), arg("sourceLevel", number(fromLevel)),
         arg("destination", static_cast<const void*>(to)), arg("slice", number(toSlice)), arg("level", number(toLevel)), arg("x", number(toOrigin.x)), arg("y", number(toOrigin.y)),
         arg("width", number(size.width)), arg("height", number(size.height)));
    auto* e = cast<BlitEncoderObject>(this);
    auto *source = cast<TextureObject>(from), *target = cast<TextureObject>(to);
    if (!e->open("copyFromTexture") || !inspect::require(source && target, "blit.nil", "copyFromTexture: the textures must not be nil")) return;
    bool alike = formats::pixelFormatInfo(source->view.format)->bytes == formats::pixelFormatInfo(target->view.format)->bytes;
    if (!inspect::require(alike, "blit.formats", "copyFromTexture: the pixel formats differ in size")) return;
    if (!inside(*source, fromOrigin, size, fromLevel, fromSlice, "copyFromTexture") || !inside(*target, toOrigin, size, toLevel, toSlice, "copyFromTexture")) return;
    e->commands->keep(source);
    e->commands->keep(target);
    e->commands->records.emplace_back(CopyTextureRecord{&source->view, &target->view, narrow(fromLevel), narrow(fromSlice), narrow(toLevel), narrow(toSlice),
                                                        blockOf(fromOrigin, size), narrow(toOrigin.x), narrow(toOrigin.y), narrow(toOrigin.z)});
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, NS::UInteger fromSlice, NS::UInteger fromLevel, const Texture* to, NS::UInteger toSlice, NS::UInteger toLevel,
                                              NS::UInteger slices, NS::UInteger levels)
{
    auto* source = cast<TextureObject>(from);
    for (NS::UInteger l = 0; source && l < levels && fromLevel + l < source->view.levelCount; ++l) {
        const abi::TextureLevel& level = source->view.levels[fromLevel + l];
        for (NS::UInteger s = 0; s < slices; ++s)
            copyFromTexture(from, fromSlice + s, fromLevel + l, Origin(), Size(level.width, level.height, level.depth), to, toSlice + s, toLevel + l, Origin());
    }
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* from, const Texture* to)
{
    auto* source = cast<TextureObject>(from);
    if (source) copyFromTexture(from, 0, 0, to, 0, 0, source->slices(), source->view.levelCount);
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level, Origin origin, Size size, const Buffer* buffer, NS::UInteger offset,
                                              NS::UInteger rowBytes, NS::UInteger planeBytes, BlitOption options)
{
    copyMemory(this, {texture, slice, level, origin, size, buffer, offset, rowBytes, planeBytes, options, false}, "copyFromTexture");
}

void MTL::BlitCommandEncoder::copyFromTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level, Origin origin, Size size, const Buffer* buffer, NS::UInteger offset,
                                              NS::UInteger rowBytes, NS::UInteger planeBytes)
{
    copyFromTexture(texture, slice, level, origin, size, buffer, offset, rowBytes, planeBytes, BlitOptionNone);
}

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger rowBytes, NS::UInteger planeBytes, Size size, const Texture* texture,
                                             NS::UInteger slice, NS::UInteger level, Origin origin, BlitOption options)
{
    copyMemory(this, {texture, slice, level, origin, size, buffer, offset, rowBytes, planeBytes, options, true}, "copyFromBuffer");
}

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger rowBytes, NS::UInteger planeBytes, Size size, const Texture* texture,
                                             NS::UInteger slice, NS::UInteger level, Origin origin)
{
    copyFromBuffer(buffer, offset, rowBytes, planeBytes, size, texture, slice, level, origin, BlitOptionNone);
}

void MTL::BlitCommandEncoder::copyFromBuffer(const Buffer* from, NS::UInteger fromOffset, const Buffer* to, NS::UInteger toOffset, NS::UInteger size)
{
    note(this, "copyFromBuffer", arg("source", static_cast<const void*>(from)), arg("destination", static_cast<const void*>(to)), arg("sourceOffset", number(fromOffset)),
         arg("offset", number(toOffset)), arg("size", number(size)));
    auto* e = cast<BlitEncoderObject>(this);
    auto *source = cast<BufferObject>(from), *target = cast<BufferObject>(to);
    if (!e->open("copyFromBuffer") || !inspect::require(source && target, "blit.nil", "copyFromBuffer: the buffers must not be nil")) return;
    if (!fits(*source, fromOffset, size, "copyFromBuffer") || !fits(*target, toOffset, size, "copyFromBuffer")) return;
    e->commands->keep(source);
    e->commands->keep(target);
    e->commands->records.emplace_back(CopyBufferRecord{source->memory.data() + fromOffset, target->memory.data() + toOffset, size});
}

void MTL::BlitCommandEncoder::fillBuffer(const Buffer* buffer, NS::Range range, uint8_t value)
{
    auto* e = cast<BlitEncoderObject>(this);
    auto* target = cast<BufferObject>(buffer);
    if (!e->open("fillBuffer") || !target || !fits(*target, range.location, range.length, "fillBuffer")) return;
    e->commands->keep(target);
    e->commands->records.emplace_back(FillRecord{target->memory.data() + range.location, range.length, value});
}

void MTL::BlitCommandEncoder::generateMipmaps(const Texture* texture)
{
    auto* e = cast<BlitEncoderObject>(this);
    auto* target = cast<TextureObject>(texture);
    if (!e->open("generateMipmaps") || !target) return;
    e->commands->keep(target);
    e->commands->records.emplace_back(MipmapRecord{&target->view});
}

// Processor and device share one memory here; what remains of these calls is the record that they were made.
void MTL::BlitCommandEncoder::synchronizeResource(const Resource* resource) { note(this, "synchronizeResource", arg("resource", static_cast<const void*>(resource))); }
void MTL::BlitCommandEncoder::synchronizeTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level)
{
    note(this, "synchronizeTexture", arg("texture", static_cast<const void*>(texture)), arg("slice", number(slice)), arg("level", number(level)));
}
void MTL::BlitCommandEncoder::updateFence(const Fence* fence) { inspect::require(fence != nullptr, "encoder.nil-fence", "updateFence: the fence must not be nil"); }
void MTL::BlitCommandEncoder::waitForFence(const Fence* fence) { inspect::require(fence != nullptr, "encoder.nil-fence", "waitForFence: the fence must not be nil"); }
void MTL::BlitCommandEncoder::optimizeContentsForGPUAccess(const Texture*) {}
void MTL::BlitCommandEncoder::optimizeContentsForGPUAccess(const Texture*, NS::UInteger, NS::UInteger) {}
void MTL::BlitCommandEncoder::optimizeContentsForCPUAccess(const Texture*) {}
void MTL::BlitCommandEncoder::optimizeContentsForCPUAccess(const Texture*, NS::UInteger, NS::UInteger) {}
