// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "formats/PixelFormat.h"

#include <array>

namespace softmetal::formats {

inline constexpr std::array PixelFormatTable = {
    // format name bytes channels component bits bgra alphaOnly depth stencil renderable blendable filterable
    PixelFormatInfo{1, "A8Unorm", 1, 1, Component::Unorm, 8, false, true, false, false, true, true, true},
    PixelFormatInfo{10, "R8Unorm", 1, 1, Component::Unorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{11, "R8Unorm_sRGB", 1, 1, Component::Srgb, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{12, "R8Snorm", 1, 1, Component::Snorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{13, "R8Uint", 1, 1, Component::Uint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{14, "R8Sint", 1, 1, Component::Sint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{20, "R16Unorm", 2, 1, Component::Unorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{22, "R16Snorm", 2, 1, Component::Snorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{23, "R16Uint", 2, 1, Component::Uint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{24, "R16Sint", 2, 1, Component::Sint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{25, "R16Float", 2, 1, Component::Float, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{30, "RG8Unorm", 2, 2, Component::Unorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{31, "RG8Unorm_sRGB", 2, 2, Component::Srgb, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{32, "RG8Snorm", 2, 2, Component::Snorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{33, "RG8Uint", 2, 2, Component::Uint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{34, "RG8Sint", 2, 2, Component::Sint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{53, "R32Uint", 4, 1, Component::Uint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{54, "R32Sint", 4, 1, Component::Sint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{55, "R32Float", 4, 1, Component::Float, 32, false, false, false, false, true, true, true},
    PixelFormatInfo{60, "RG16Unorm", 4, 2, Component::Unorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{62, "RG16Snorm", 4, 2, Component::Snorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{63, "RG16Uint", 4, 2, Component::Uint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{64, "RG16Sint", 4, 2, Component::Sint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{65, "RG16Float", 4, 2, Component::Float, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{70, "RGBA8Unorm", 4, 4, Component::Unorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{71, "RGBA8Unorm_sRGB", 4, 4, Component::Srgb, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{72, "RGBA8Snorm", 4, 4, Component::Snorm, 8, false, false, false, false, true, true, true},
    PixelFormatInfo{73, "RGBA8Uint", 4, 4, Component::Uint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{74, "RGBA8Sint", 4, 4, Component::Sint, 8, false, false, false, false, true, false, false},
    PixelFormatInfo{80, "BGRA8Unorm", 4, 4, Component::Unorm, 8, true, false, false, false, true, true, true},
    PixelFormatInfo{81, "BGRA8Unorm_sRGB", 4, 4, Component::Srgb, 8, true, false, false, false, true, true, true},
    PixelFormatInfo{90, "RGB10A2Unorm", 4, 4, Component::Packed, 0, false, false, false, false, true, true, true},
    PixelFormatInfo{92, "RG11B10Float", 4, 3, Component::Packed, 0, false, false, false, false, true, true, true},
    PixelFormatInfo{93, "RGB9E5Float", 4, 3, Component::Packed, 0, false, false, false, false, true, true, true},
    PixelFormatInfo{103, "RG32Uint", 8, 2, Component::Uint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{104, "RG32Sint", 8, 2, Component::Sint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{105, "RG32Float", 8, 2, Component::Float, 32, false, false, false, false, true, true, true},
    PixelFormatInfo{110, "RGBA16Unorm", 8, 4, Component::Unorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{112, "RGBA16Snorm", 8, 4, Component::Snorm, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{113, "RGBA16Uint", 8, 4, Component::Uint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{114, "RGBA16Sint", 8, 4, Component::Sint, 16, false, false, false, false, true, false, false},
    PixelFormatInfo{115, "RGBA16Float", 8, 4, Component::Float, 16, false, false, false, false, true, true, true},
    PixelFormatInfo{123, "RGBA32Uint", 16, 4, Component::Uint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{124, "RGBA32Sint", 16, 4, Component::Sint, 32, false, false, false, false, true, false, false},
    PixelFormatInfo{125, "RGBA32Float", 16, 4, Component::Float, 32, false, false, false, false, true, true, true},
    PixelFormatInfo{250, "Depth16Unorm", 2, 1, Component::Unorm, 16, false, false, true, false, true, false, true},
    PixelFormatInfo{252, "Depth32Float", 4, 1, Component::Float, 32, false, false, true, false, true, false, true},
    PixelFormatInfo{253, "Stencil8", 1, 1, Component::Uint, 8, false, false, false, true, true, false, false},
    PixelFormatInfo{255, "Depth24Unorm_Stencil8", 4, 1, Component::Packed, 0, false, false, true, true, true, false, true},
    PixelFormatInfo{260, "Depth32Float_Stencil8", 8, 1, Component::Packed, 0, false, false, true, true, true, false, true},
};
static_assert(PixelFormatTable.size() == 50);

} // namespace softmetal::formats
