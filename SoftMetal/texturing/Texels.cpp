// SPDX-License-Identifier: Apache-2.0
#include "texturing/Texels.h"

#include "texturing/Sampling.h"

#include <array>
#include <bit>
#include <cstring>

namespace softmetal::texturing {
namespace {

constexpr uint32_t Type1D = 0, Type1DArray = 1, Type2DArray = 3, TypeCube = 5, TypeCubeArray = 6, Type3D = 7;
constexpr uint32_t Rgba8 = 70, Bgra8 = 80, Rgba32Float = 125;

constexpr auto Unorm8 = [] {
    std::array<float, 256> table{};
    for (int i = 0; i < 256; ++i) table[static_cast<size_t>(i)] = static_cast<float>(i) / 255.0f;
    return table;
}();

void loadRgba8(const formats::PixelFormatInfo&, const uint8_t* texel, float* rgba)
{
    for (int i = 0; i < 4; ++i) rgba[i] = Unorm8[texel[i]];
}

void loadBgra8(const formats::PixelFormatInfo&, const uint8_t* texel, float* rgba)
{
    rgba[0] = Unorm8[texel[2]];
    rgba[1] = Unorm8[texel[1]];
    rgba[2] = Unorm8[texel[0]];
    rgba[3] = Unorm8[texel[3]];
}

void loadRgba32(const formats::PixelFormatInfo&, const uint8_t* texel, float* rgba) { std::memcpy(rgba, texel, 16); }

/// One record for each pair of format and texture type, made on first use and kept.
const Access* accessFor(uint32_t type, uint32_t format)
{
    static constexpr size_t Types = 9, Formats = 261;
    static const auto table = [] {
        auto* all = new std::array<std::array<Access, Formats>, Types>{};
        for (uint32_t t = 0; t < Types; ++t) {
            for (uint32_t f = 0; f < Formats; ++f) {
                uint8_t dimensions = t == Type1D || t == Type1DArray ? 1 : t == Type3D ? 3 : 2;
                bool cube = t == TypeCube || t == TypeCubeArray, array = t == Type1DArray || t == Type2DArray || t == TypeCubeArray;
                auto load = f == Rgba8 ? loadRgba8 : f == Bgra8 ? loadBgra8 : f == Rgba32Float ? loadRgba32 : formats::unpack;
                (*all)[t][f] = {formats::pixelFormatInfo(f), load, dimensions, cube, array};
            }
        }
        return all;
    }();
    return type < Types && format < Formats ? &(*table)[type][format] : nullptr;
}

} // namespace

void prepareTexture(abi::Texture& texture)
{
    constexpr uint8_t Identity[4] = {2, 3, 4, 5};
    texture.sampling = accessFor(texture.type, texture.format);
    texture.identity = std::memcmp(texture.swizzle, Identity, 4) == 0;
}

Texel swizzled(const abi::Texture& texture, const float* rgba)
{
    Texel result{};
    for (int i = 0; i < 4; ++i) {
        uint8_t from = texture.swizzle[i]; // 0 zero, 1 one, then red to alpha
        result.c[i] = from >= 2 ? rgba[from - 2] : static_cast<float>(from);
    }
    return result;
}

Texel texelAt(const abi::Texture& texture, const abi::TextureLevel& level, uint32_t x, uint32_t y, uint32_t z, uint32_t slice)
{
    const auto& access = *static_cast<const Access*>(texture.sampling);
    const uint8_t* at = level.data + slice * level.slicePitch + z * level.planePitch + static_cast<uint64_t>(y) * level.rowPitch +
                        static_cast<uint64_t>(x) * access.format->bytes;
    Texel result;
    access.load(*access.format, at, result.c);
    return texture.identity ? result : swizzled(texture, result.c);
}

} // namespace softmetal::texturing
