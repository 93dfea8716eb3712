// SPDX-License-Identifier: Apache-2.0
// Single texels by integer coordinates.
#pragma once

#include "formats/PixelFormat.h"
#include "shader/abi.h"

namespace softmetal::texturing {

struct Texel
{
    float c[4];
};

/// What abi::Texture::sampling points to.
struct Access
{
    const formats::PixelFormatInfo* format;
    void (*load)(const formats::PixelFormatInfo&, const uint8_t*, float*); // before the swizzle
    uint8_t dimensions;                                                    // of the coordinates that address texels
    bool cube, array;
};

/// The texel at coordinates that lie within the level, after the texture's swizzle.
Texel texelAt(const abi::Texture& texture, const abi::TextureLevel& level, uint32_t x, uint32_t y, uint32_t z, uint32_t slice);

/// Red, green, blue and alpha picked by the texture's swizzle.
Texel swizzled(const abi::Texture& texture, const float* rgba);

} // namespace softmetal::texturing
