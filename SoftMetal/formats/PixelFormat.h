// SPDX-License-Identifier: Apache-2.0
// Every pixel format that the device knows, as one table row with all its facts, and conversion of single texels.
#pragma once

#include <cstdint>

namespace softmetal::formats {

enum class Component : uint8_t { Unorm, Snorm, Uint, Sint, Float, Srgb, Packed };

struct PixelFormatInfo
{
    uint32_t format;   // MTL::PixelFormat
    const char* name;  // without the prefix
    uint8_t bytes;     // of one pixel
    uint8_t channels;  // colour channels; 1 for depth and stencil
    Component component;
    uint8_t bits;      // of one component; 0 for packed ones
    bool bgra;         // blue comes first in memory
    bool alphaOnly;
    bool hasDepth, hasStencil;
    bool renderable, blendable, filterable;

    bool isDepthOrStencil() const { return hasDepth || hasStencil; }
};

/// Null for a format that this device does not have.
const PixelFormatInfo* pixelFormatInfo(uint32_t format);

/// One texel as red, green, blue, alpha; missing channels are 0, alpha 1. Depth formats give the depth in red. Integer
/// formats put the integer's bits in place of the float's.
void unpack(const PixelFormatInfo& info, const uint8_t* texel, float* rgba);

/// The opposite: unsigned and signed normalised values are clamped and rounded to nearest, floats converted exactly.
void pack(const PixelFormatInfo& info, const float* rgba, uint8_t* texel);

/// Depth and stencil of a packed or single format; what the format lacks is left alone.
float unpackDepth(uint32_t format, const uint8_t* texel);
void packDepth(uint32_t format, float depth, uint8_t* texel);
uint8_t unpackStencil(uint32_t format, const uint8_t* texel);
void packStencil(uint32_t format, uint8_t stencil, uint8_t* texel);

/// IEEE half precision, to nearest even.
uint16_t toHalf(float value);
float fromHalf(uint16_t half);

} // namespace softmetal::formats
