// SPDX-License-Identifier: Apache-2.0
#include "raster/Output.h"

#include "formats/PixelFormat.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace softmetal::raster {
namespace {

constexpr uint32_t Rgba8 = 70, Bgra8 = 80, Depth32 = 252;

bool passes(uint8_t function, auto value, auto stored)
{
    switch (function) {
    case 0: return false;
    case 1: return value < stored;
    case 2: return value == stored;
    case 3: return value <= stored;
    case 4: return value > stored;
    case 5: return value != stored;
    case 6: return value >= stored;
    default: return true;
    }
}

uint8_t operate(uint8_t operation, uint8_t stored, uint32_t reference)
{
    switch (operation) {
    case 1: return 0;
    case 2: return static_cast<uint8_t>(reference);
    case 3: return stored == 255 ? stored : static_cast<uint8_t>(stored + 1);
    case 4: return stored == 0 ? stored : static_cast<uint8_t>(stored - 1);
    case 5: return static_cast<uint8_t>(~stored);
    case 6: return static_cast<uint8_t>(stored + 1);
    case 7: return static_cast<uint8_t>(stored - 1);
    default: return stored;
    }
}

uint8_t* texelOf(const PixelRows& rows, uint32_t lane, uint32_t bytes) { return rows.row[laneY(lane)] + laneX(lane) * bytes; }

bool testStencil(const StencilState& s, uint32_t reference, uint8_t value)
{
    return passes(s.compareFunction, reference & s.readMask & 0xFF, value & s.readMask & 0xFFu);
}

void writeStencil(const StencilState& s, uint8_t operation, uint32_t reference, uint32_t format, uint8_t* texel, uint8_t old)
{
    auto mask = static_cast<uint8_t>(s.writeMask);
    uint8_t fresh = operate(operation, old, reference);
    formats::packStencil(format, static_cast<uint8_t>((old & ~mask) | (fresh & mask)), texel);
}

// ---- blending ------------------------------------------------------------------------------------------------------------

float factor(uint8_t kind, int channel, const float* source, const float* destination, const float* constant)
{
    switch (kind) {
    case 0: return 0;
    case 1: return 1;
    case 2: return source[channel];
    case 3: return 1 - source[channel];
    case 4: return source[3];
    case 5: return 1 - source[3];
    case 6: return destination[channel];
    case 7: return 1 - destination[channel];
    case 8: return destination[3];
    case 9: return 1 - destination[3];
    case 10: return channel == 3 ? 1.0f : std::min(source[3], 1 - destination[3]);
    case 11: return constant[channel];
    case 12: return 1 - constant[channel];
    case 13: return constant[3];
    case 14: return 1 - constant[3];
    default: return 1;
    }
}

float combine(uint8_t operation, float source, float sourceFactor, float destination, float destinationFactor)
{
    switch (operation) {
    case 1: return source * sourceFactor - destination * destinationFactor;
    case 2: return destination * destinationFactor - source * sourceFactor;
    case 3: return std::min(source, destination);
    case 4: return std::max(source, destination);
    default: return source * sourceFactor + destination * destinationFactor;
    }
}

void blend(const BlendState& b, const float* constant, float* source, const float* destination)
{
    float result[4];
    for (int c = 0; c < 4; ++c) {
        bool alpha = c == 3;
        float s = factor(alpha ? b.sourceAlpha : b.sourceRgb, c, source, destination, constant);
        float d = factor(alpha ? b.destinationAlpha : b.destinationRgb, c, source, destination, constant);
        result[c] = combine(alpha ? b.alphaOperation : b.rgbOperation, source[c], s, destination[c], d);
    }
    std::memcpy(source, result, sizeof result);
}

uint32_t toByte(float v)
{
    float clamped = v > 0 ? (v < 1 ? v : 1.0f) : 0.0f;
    // Adding 2^23 rounds to the nearest whole number, to even; the product with 255 is exact enough to be decided alike.
    return std::bit_cast<uint32_t>(clamped * 255.0f + 8388608.0f) & 0xFF;
}

void storeBytes(bool bgra, const PixelRows& rows, const abi::Lanes* color, uint32_t mask)
{
    int red = bgra ? 16 : 0, blue = bgra ? 0 : 16;
    for (; mask != 0; mask &= mask - 1) {
        auto lane = static_cast<uint32_t>(std::countr_zero(mask));
        uint32_t word = toByte(color[0].f[lane]) << red | toByte(color[1].f[lane]) << 8 | toByte(color[2].f[lane]) << blue | toByte(color[3].f[lane]) << 24;
        std::memcpy(texelOf(rows, lane, 4), &word, 4);
    }
}

float clampedTo(const formats::PixelFormatInfo& format, float v)
{
    using formats::Component;
    if (format.component == Component::Unorm || format.component == Component::Srgb || format.format == 90) return v > 0 ? (v < 1 ? v : 1.0f) : 0.0f;
    if (format.component == Component::Snorm) return v > -1 ? (v < 1 ? v : 1.0f) : -1.0f;
    return v;
}

} // namespace

float asStored(uint32_t format, float depth)
{
    if (format == Depth32) return depth;
    uint8_t texel[8] = {};
    formats::packDepth(format, depth, texel);
    return formats::unpackDepth(format, texel);
}

uint32_t testDepthStencil(const DrawState& state, bool frontFacing, const Target& depth, const PixelRows& depthRows,
                          const Target& stencil, const PixelRows& stencilRows, const float* z,
                          const uint32_t* references, uint32_t mask)
{
    const DepthStencil& test = state.depthStencil;
    bool hasDepth = depth.texture != nullptr && (test.depthCompare != 7 || test.depthWrite);
    bool hasStencil = stencil.texture != nullptr && test.stencilEnabled;
    if (!hasDepth && !hasStencil) return mask;
    const StencilState& side = frontFacing ? test.front : test.back;
    uint32_t ofEncoder = frontFacing ? state.stencilReferenceFront : state.stencilReferenceBack;
    uint32_t depthFormat = hasDepth ? depth.texture->format : 0, depthBytes = hasDepth ? formats::pixelFormatInfo(depthFormat)->bytes : 0;
    uint32_t stencilFormat = hasStencil ? stencil.texture->format : 0, stencilBytes = hasStencil ? formats::pixelFormatInfo(stencilFormat)->bytes : 0;
    uint32_t passed = 0;
    for (uint32_t left = mask; left != 0; left &= left - 1) {
        auto lane = static_cast<uint32_t>(std::countr_zero(left));
        uint32_t reference = references ? references[lane] : ofEncoder;
        uint8_t* stencilTexel = hasStencil ? texelOf(stencilRows, lane, stencilBytes) : nullptr;
        uint8_t old = hasStencil ? formats::unpackStencil(stencilFormat, stencilTexel) : 0;
        if (hasStencil && !testStencil(side, reference, old)) {
            writeStencil(side, side.failOperation, reference, stencilFormat, stencilTexel, old);
            continue;
        }
        uint8_t* depthTexel = hasDepth ? texelOf(depthRows, lane, depthBytes) : nullptr;
        float value = hasDepth ? asStored(depthFormat, z[lane]) : 0;
        bool near = !hasDepth || passes(test.depthCompare, value, formats::unpackDepth(depthFormat, depthTexel));
        if (hasStencil) writeStencil(side, near ? side.passOperation : side.depthFailOperation, reference, stencilFormat, stencilTexel, old);
        if (!near) continue;
        if (hasDepth && test.depthWrite) formats::packDepth(depthFormat, value, depthTexel);
        passed |= 1u << lane;
    }
    return passed;
}

void storeColor(const DrawState& state, uint32_t attachment, const Target& target, const PixelRows& rows, const abi::Lanes* color, uint32_t mask)
{
    const BlendState& b = state.pipeline->blend[attachment];
    uint32_t formatNumber = target.texture->format;
    if (b.writeMask == 0) return;
    if (!b.enabled && b.writeMask == 15 && (formatNumber == Rgba8 || formatNumber == Bgra8)) return storeBytes(formatNumber == Bgra8, rows, color, mask);
    const formats::PixelFormatInfo& format = *formats::pixelFormatInfo(formatNumber);
    bool reads = b.writeMask != 15 || b.enabled;
    for (; mask != 0; mask &= mask - 1) {
        auto lane = static_cast<uint32_t>(std::countr_zero(mask));
        uint8_t* texel = texelOf(rows, lane, format.bytes);
        float source[4], destination[4] = {0, 0, 0, 0};
        for (int c = 0; c < 4; ++c) source[c] = color[c].f[lane];
        if (reads) formats::unpack(format, texel, destination);
        if (b.enabled && format.blendable) {
            for (float& c : source) c = clampedTo(format, c);
            blend(b, state.blendColor, source, destination);
        }
        for (int c = 0; c < 4; ++c) // red is bit 3, alpha bit 0
            if (!(b.writeMask >> (3 - c) & 1)) source[c] = destination[c];
        formats::pack(format, source, texel);
    }
}

} // namespace softmetal::raster
