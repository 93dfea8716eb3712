// SPDX-License-Identifier: Apache-2.0
// The client's side of reading: every layout that pixels are read in, and what becomes of a colour on its way there.
#pragma once

#include "textures/TextureFixture.h"

namespace textures
{

/// One layout for reading.
struct ReadRow
{
    const char* name;
    GLenum format, type;
    MTL::PixelFormat read;  // Metal's format of the same texels
    size_t pixel, client;   // bytes of a pixel in that format, and of the client's
    bool whole;             // the client takes the whole pixel
};

inline constexpr ReadRow DepthRow = {"DepthFloat", 0x1902, 0x1406, MTL::PixelFormatDepth32Float, 4, 4, true};

inline constexpr ReadRow ReadRows[] = {
    {"Alpha", 0x1906, 0x1401, MTL::PixelFormatBGRA8Unorm, 4, 1, false},
    {"Red", 0x1903, 0x1401, MTL::PixelFormatR8Unorm, 1, 1, true},
    {"RedHalf", 0x1903, 0x140B, MTL::PixelFormatR16Float, 2, 2, true},
    {"RedFloat", 0x1903, 0x1406, MTL::PixelFormatR32Float, 4, 4, true},
    {"Rgb", 0x1907, 0x1401, MTL::PixelFormatRGBA8Unorm, 4, 3, false},
    {"RgbHalf", 0x1907, 0x140B, MTL::PixelFormatRGBA16Float, 8, 6, false},
    {"RgbFloat", 0x1907, 0x1406, MTL::PixelFormatRGBA32Float, 16, 12, false},
    {"Bgra", 0x80E1, 0x1401, MTL::PixelFormatBGRA8Unorm, 4, 4, true},
    {"Rgba", 0x1908, 0x1401, MTL::PixelFormatRGBA8Unorm, 4, 4, true},
    {"RgbaHalf", 0x1908, 0x140B, MTL::PixelFormatRGBA16Float, 8, 8, true},
    {"RgbaFloat", 0x1908, 0x1406, MTL::PixelFormatRGBA32Float, 16, 16, true},
};

/// What a texture of that format keeps of a colour.
Rgba kept(MTL::PixelFormat format, const Rgba& colour);

/// Colours in the client's layout.
Bytes clientBytes(const ReadRow& row, const std::vector<Rgba>& colours);

} // namespace textures
