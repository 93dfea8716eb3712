// SPDX-License-Identifier: Apache-2.0
#include "window/Pictures.h"

#include "formats/PixelFormat.h"

#include <Metal/MTLPixelFormat.hpp>

#include <cstring>

namespace softmetal
{
namespace
{

const uint8_t* rowOf(const abi::Texture& texture, uint32_t y)
{
    return texture.levels[0].data + static_cast<size_t>(y) * texture.levels[0].rowPitch;
}

} // namespace

void copyPixels(const abi::Texture& from, uint32_t format, uint8_t* to, size_t pitch)
{
    const auto &source = *formats::pixelFormatInfo(from.format), &target = *formats::pixelFormatInfo(format);
    for (uint32_t y = 0; y < from.height; ++y, to += pitch) {
        const uint8_t* row = rowOf(from, y);
        for (uint32_t x = 0; x < from.width; ++x) {
            float rgba[4];
            formats::unpack(source, row + static_cast<size_t>(x) * source.bytes, rgba);
            formats::pack(target, rgba, to + static_cast<size_t>(x) * target.bytes);
        }
    }
}

void copyForScreen(const abi::Texture& from, uint8_t* to, size_t pitch)
{
    bool encoded = formats::pixelFormatInfo(from.format)->component == formats::Component::Srgb;
    if (from.format != MTL::PixelFormatBGRA8Unorm && from.format != MTL::PixelFormatBGRA8Unorm_sRGB)
        return copyPixels(from, encoded ? MTL::PixelFormatBGRA8Unorm_sRGB : MTL::PixelFormatBGRA8Unorm, to, pitch);
    for (uint32_t y = 0; y < from.height; ++y, to += pitch)
        std::memcpy(to, rowOf(from, y), size_t{4} * from.width);
}

} // namespace softmetal
