// SPDX-License-Identifier: Apache-2.0
#include "raster/Copies.h"

#include "formats/PixelFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace softmetal::raster
{
namespace
{

constexpr uint32_t Type2D = 2, Rgba8 = 70, Bgra8 = 80, Rgba32Float = 125;

// ---- rows ----------------------------------------------------------------------------------------------------------

using CopyRow = void (*)(const uint8_t* from, uint8_t* to, uint32_t count);

template <size_t Bytes>
void copyRow(const uint8_t* from, uint8_t* to, uint32_t count)
{
    std::memcpy(to, from, count * Bytes);
}

/// Red and blue change places, in whole words, which compilers make vectors of.
void swapRow(const uint8_t* from, uint8_t* to, uint32_t count)
{
    constexpr auto Mask = std::bit_cast<uint32_t>(std::array<uint8_t, 4>{255, 0, 255, 0});
    for (uint32_t i = 0; i < count; ++i) {
        uint32_t word;
        std::memcpy(&word, from + size_t{4} * i, sizeof word);
        word = (word & ~Mask) | (std::rotl(word, 16) & Mask);
        std::memcpy(to + size_t{4} * i, &word, sizeof word);
    }
}

constexpr auto Unorm8 = [] {
    std::array<float, 256> table{};
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = static_cast<float>(i) / 255.0f;
    return table;
}();

template <size_t Red>
void floatRow(const uint8_t* from, uint8_t* to, uint32_t count)
{
    for (uint32_t i = 0; i < count; ++i, from += 4, to += 16) {
        const float texel[4] = {Unorm8[from[Red]], Unorm8[from[1]], Unorm8[from[2 - Red]], Unorm8[from[3]]};
        std::memcpy(to, texel, sizeof texel);
    }
}

struct Conversion
{
    uint32_t from, to; // MTL::PixelFormat
    CopyRow copy;
};

constexpr std::array Conversions = {
    Conversion{Rgba8, Rgba8, copyRow<4>},
    Conversion{Bgra8, Bgra8, copyRow<4>},
    Conversion{Rgba8, Bgra8, swapRow},
    Conversion{Bgra8, Rgba8, swapRow},
    Conversion{Rgba8, Rgba32Float, floatRow<0>},
    Conversion{Bgra8, Rgba32Float, floatRow<2>},
    Conversion{Rgba32Float, Rgba32Float, copyRow<16>},
};

CopyRow conversion(uint32_t from, uint32_t to)
{
    for (const Conversion& c : Conversions)
        if (c.from == from && c.to == to) return c.copy;
    return nullptr;
}

const abi::Texture* sourceOf(const DrawState& state)
{
    return state.fragmentResources ? state.fragmentResources->textures[state.pipeline->copiedTexture] : nullptr;
}

// ---- places --------------------------------------------------------------------------------------------------------

/// A plane's value as batches of pixels compute it. The other axis adds a product with zero.
float valueAlong(float origin, float step, float start, uint32_t pixel)
{
    return origin + (static_cast<float>(pixel) + 0.5f - start) * step;
}

bool inside(float place, uint32_t size)
{
    return place >= 0 && place < static_cast<float>(size);
}

/// First texel of a run of pixels that take neighbouring texels, or -1.
int64_t runOfTexels(const abi::Plane& plane, float start, uint32_t first, uint32_t end, uint32_t size)
{
    const float place = valueAlong(plane.origin, plane.dx, start, first);
    if (!inside(place, size)) return -1;
    const auto texel = static_cast<uint32_t>(place);
    if (end - first > size - texel) return -1;
    int32_t apart = 0; // counted without a way out, which makes a loop of vectors
    for (uint32_t i = 0; i < end - first; ++i) {
        const float next = valueAlong(plane.origin, plane.dx, start, first + i),
                    least = static_cast<float>(static_cast<int32_t>(texel + i));
        apart |= !(next >= least) | !(next < least + 1);
    }
    return apart ? -1 : static_cast<int64_t>(texel);
}

/// Texel rows of the box's pixel rows; false when one lies outside.
bool rowsOfTexels(const abi::Plane& plane, float start, const TriangleArea& area, uint32_t size,
                  std::array<uint32_t, TileSize>& rows)
{
    for (uint32_t y = area.y0; y < area.y1; ++y) {
        const float place = valueAlong(plane.origin, plane.dy, start, y);
        if (!inside(place, size)) return false;
        rows[y - area.y0] = static_cast<uint32_t>(place);
    }
    return true;
}

struct Span
{
    int64_t first, end; // pixels, from the tile's first one
};

int64_t floorDivided(int64_t a, int64_t b)
{
    return a >= 0 ? a / b : -((-a + b - 1) / b);
} // b is positive

/// The pixels of a row where every edge is at least zero.
Span spanOf(const TriangleArea& area, uint32_t y)
{
    Span span{area.x0 - area.tile.x0, area.x1 - area.tile.x0};
    for (const Crossing& c : area.crossings) {
        const int64_t atStart = c.origin + static_cast<int64_t>(c.b) * (y - area.tile.y0);
        if (c.a > 0)
            span.first = std::max(span.first, -floorDivided(atStart, c.a));
        else if (c.a < 0)
            span.end = std::min(span.end, floorDivided(atStart, -static_cast<int64_t>(c.a)) + 1);
        else if (atStart < 0)
            span.end = span.first;
    }
    return span;
}

uint8_t* rowOf(const Target& target, uint32_t y)
{
    const abi::TextureLevel& level = target.texture->levels[target.level];
    return level.data + target.slice * level.slicePitch + target.plane * level.planePitch +
           static_cast<uint64_t>(y) * level.rowPitch;
}

} // namespace

bool mayCopy(const PassDescription& pass, const DrawState& state)
{
    const Pipeline& pipeline = *state.pipeline;
    if (pipeline.copiedTexture < 0 || pipeline.alphaToOne || pipeline.colorOutputs != 1 || state.visibilityMode != 0)
        return false;
    const BlendState& b = pipeline.blend[0];
    const abi::Texture* from = sourceOf(state);
    const abi::Texture* to = pass.color[0].texture;
    if (b.enabled || b.writeMask != 15 || !from || !to || from->type != Type2D || from->levelCount == 0 ||
        from->identity == 0)
        return false;
    return from->levels[0].data != to->levels[0].data && conversion(from->format, to->format) != nullptr;
}

bool copyTexels(const PassDescription& pass, const DrawState& state, const Triangle& triangle, const abi::Plane* planes,
                const TriangleArea& area)
{
    const abi::Plane &invW = planes[1], &s = planes[2 + state.pipeline->copiedPlanes[0]],
                     &t = planes[2 + state.pipeline->copiedPlanes[1]];
    if (invW.origin != 1 || invW.dx != 0 || invW.dy != 0 || s.dy != 0 || t.dx != 0) return false;
    const abi::Texture& source = *sourceOf(state);
    const abi::TextureLevel& level = source.levels[0];
    const Target& target = pass.color[0];
    const int64_t left = runOfTexels(s, triangle.originX, area.x0, area.x1, level.width);
    std::array<uint32_t, TileSize> rows;
    if (left < 0 || !rowsOfTexels(t, triangle.originY, area, level.height, rows)) return false;

    const CopyRow copy = conversion(source.format, target.texture->format);
    const uint32_t fromBytes = formats::pixelFormatInfo(source.format)->bytes,
                   toBytes = formats::pixelFormatInfo(target.texture->format)->bytes;
    const int64_t shift = left - (area.x0 - area.tile.x0); // from pixels of the tile to texels
    for (uint32_t y = area.y0; y < area.y1; ++y) {
        const Span span = spanOf(area, y);
        if (span.first >= span.end) continue;
        const uint8_t* from = level.data + static_cast<uint64_t>(rows[y - area.y0]) * level.rowPitch +
                              static_cast<uint64_t>(span.first + shift) * fromBytes;
        copy(from, rowOf(target, y) + static_cast<uint64_t>(area.tile.x0 + span.first) * toBytes,
             static_cast<uint32_t>(span.end - span.first));
    }
    return true;
}

} // namespace softmetal::raster
