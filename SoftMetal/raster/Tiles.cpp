// SPDX-License-Identifier: Apache-2.0
// One tile at a time: what its load actions do, then its triangles.
#include "raster/Tiles.h"

#include "formats/PixelFormat.h"
#include "raster/Output.h"
#include "raster/TileKernel.h"
#include "vectors/InstructionSet.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>
#include <limits>

namespace softmetal::raster
{
namespace
{

constexpr uint8_t LoadClear = 2;
constexpr uint32_t Depth16 = 250, Depth32 = 252;

uint8_t* texelAt(const Target& target, uint32_t x, uint32_t y)
{
    const abi::TextureLevel& level = target.texture->levels[target.level];
    return level.data + target.slice * level.slicePitch + target.plane * level.planePitch +
           static_cast<uint64_t>(y) * level.rowPitch +
           static_cast<uint64_t>(x) * formats::pixelFormatInfo(target.texture->format)->bytes;
}

/// Copies of one row, which is made of copies of one texel.
void fillRows(const Target& target, const TileArea& area, const uint8_t* texel, uint32_t bytes)
{
    constexpr size_t MostBytes = 16;
    uint8_t row[TileSize * MostBytes];
    const size_t length = size_t{area.x1 - area.x0} * bytes;
    for (size_t i = 0; i < length; i += bytes)
        std::memcpy(row + i, texel, bytes);
    for (uint32_t y = area.y0; y < area.y1; ++y)
        std::memcpy(texelAt(target, area.x0, y), row, length);
}

void clearColor(const Target& target, const TileArea& area)
{
    const auto& format = *formats::pixelFormatInfo(target.texture->format);
    bool integer = format.component == formats::Component::Uint || format.component == formats::Component::Sint;
    float rgba[4];
    for (int i = 0; i < 4; ++i) {
        auto real = static_cast<float>(target.clearColor[i]);
        rgba[i] =
            integer ? std::bit_cast<float>(static_cast<uint32_t>(static_cast<int64_t>(target.clearColor[i]))) : real;
    }
    uint8_t texel[16] = {};
    formats::pack(format, rgba, texel);
    fillRows(target, area, texel, format.bytes);
}

void clearDepthStencil(const Target& target, const TileArea& area, bool depth)
{
    uint32_t format = target.texture->format, bytes = formats::pixelFormatInfo(format)->bytes;
    if (depth && (format == Depth16 || format == Depth32)) { // nothing else lies in the texel
        uint8_t texel[4];
        formats::packDepth(format, static_cast<float>(target.clearDepth), texel);
        return fillRows(target, area, texel, bytes);
    }
    for (uint32_t y = area.y0; y < area.y1; ++y) {
        uint8_t* row = texelAt(target, area.x0, y);
        for (uint32_t x = area.x0; x < area.x1; ++x, row += bytes) {
            if (depth)
                formats::packDepth(format, static_cast<float>(target.clearDepth), row);
            else
                formats::packStencil(format, static_cast<uint8_t>(target.clearStencil), row);
        }
    }
}

} // namespace

bool clears(const PassDescription& pass)
{
    auto clear = [](const Target& target) { return target.texture && target.loadAction == LoadClear; };
    return std::any_of(std::begin(pass.color), std::end(pass.color), clear) || clear(pass.depth) || clear(pass.stencil);
}

DepthRanges::DepthRanges() : known(false)
{
    std::fill(std::begin(least), std::end(least), -std::numeric_limits<float>::infinity());
    std::fill(std::begin(most), std::end(most), std::numeric_limits<float>::infinity());
}

void clearTile(const PassDescription& pass, const TileArea& area, DepthRanges& ranges)
{
    for (const Target& target : pass.color)
        if (target.texture && target.loadAction == LoadClear) clearColor(target, area);
    if (pass.depth.texture && pass.depth.loadAction == LoadClear) {
        clearDepthStencil(pass.depth, area, true);
        const float depth = asStored(pass.depth.texture->format, static_cast<float>(pass.depth.clearDepth));
        ranges.known = depth == depth;
        if (ranges.known) {
            std::fill(std::begin(ranges.least), std::end(ranges.least), depth);
            std::fill(std::begin(ranges.most), std::end(ranges.most), depth);
        }
    }
    if (pass.stencil.texture && pass.stencil.loadAction == LoadClear) clearDepthStencil(pass.stencil, area, false);
}

void noteHiding(const PassDescription& pass, Draw& draw)
{
    constexpr uint8_t Always = 7, AllChannels = 15;
    const DrawState& state = *draw.state;
    const Pipeline& pipeline = *state.pipeline;
    const bool stencil = pass.stencil.texture && state.depthStencil.stencilEnabled;
    const bool writesDepth = pass.depth.texture && state.depthStencil.depthWrite;
    const bool always = !stencil && (!pass.depth.texture || state.depthStencil.depthCompare == Always) &&
                        !pipeline.discards && !pipeline.writesCoverage;
    uint32_t written = 0, replaced = 0;
    for (uint32_t i = 0; pipeline.fragment && i < abi::MaxColorOutputs; ++i) {
        const BlendState& blend = pipeline.blend[i];
        if (!(pipeline.colorOutputs >> i & 1) || !pass.color[i].texture || blend.writeMask == 0) continue;
        written |= 1u << i;
        if (!blend.enabled && blend.writeMask == AllChannels) replaced |= 1u << i;
    }
    const bool lasting =
        stencil || writesDepth || state.visibilityMode != 0 || (pipeline.fragment && pipeline.writesMemory);
    draw.hides = always ? replaced : 0;
    draw.touches = lasting ? Draw::Lasting : written;
}

bool covers(const Triangle& t, const TileArea& area)
{
    if (t.minX > area.x0 || t.minY > area.y0 || t.maxX + 1u < area.x1 || t.maxY + 1u < area.y1) return false;
    constexpr auto Half = static_cast<int32_t>(SubpixelScale / 2);
    const int64_t stepsX = int64_t{area.x1 - area.x0 - 1} * SubpixelScale,
                  stepsY = int64_t{area.y1 - area.y0 - 1} * SubpixelScale;
    const int32_t left = static_cast<int32_t>(area.x0 << SubpixelBits) + Half,
                  top = static_cast<int32_t>(area.y0 << SubpixelBits) + Half;
    for (int from = 0; from < 3; ++from) {
        const int to = from == 2 ? 0 : from + 1;
        const int64_t a = t.y[from] - t.y[to], b = t.x[to] - t.x[from];
        const int64_t first = -a * (t.x[from] - left) - b * (t.y[from] - top);
        // On an edge only the upper and the left one are in: none is asked for here.
        if (first + std::min<int64_t>(a * stepsX, 0) + std::min<int64_t>(b * stepsY, 0) <= 0) return false;
    }
    return true;
}

void drawTile(const PassDescription& pass, const TileArea& area, DepthRanges& ranges, const Draw* draws,
              const std::vector<Binned>& triangles)
{
    static const DrawTile draw = vectors::pick(base::drawTileFor, avx2::drawTileFor, avx512::drawTileFor)(lanes());
    draw(pass, area, ranges, draws, triangles.data(), triangles.size());
}

} // namespace softmetal::raster
