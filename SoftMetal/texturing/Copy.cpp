// SPDX-License-Identifier: Apache-2.0
#include "texturing/Copy.h"

#include "formats/PixelFormat.h"

#include <algorithm>
#include <cstring>

namespace softmetal::texturing {
namespace {

const formats::PixelFormatInfo& formatOf(const Image& image) { return *formats::pixelFormatInfo(image.texture->format); }

uint8_t* address(const Image& image, uint32_t x, uint32_t y, uint32_t z)
{
    const abi::TextureLevel& level = image.texture->levels[image.level];
    return level.data + image.slice * level.slicePitch + z * level.planePitch + static_cast<uint64_t>(y) * level.rowPitch +
           static_cast<uint64_t>(x) * formatOf(image).bytes;
}

uint32_t aspectBytes(const formats::PixelFormatInfo& format, Aspect aspect)
{
    if (aspect == Aspect::All) return format.bytes;
    return aspect == Aspect::Stencil ? 1 : format.bytes == 2 ? 2 : 4;
}

void takeAspect(const formats::PixelFormatInfo& format, const uint8_t* texel, uint8_t* out, Aspect aspect)
{
    if (aspect == Aspect::Stencil) {
        *out = formats::unpackStencil(format.format, texel);
    } else if (format.bytes == 2) {
        std::memcpy(out, texel, 2);
    } else {
        float depth = formats::unpackDepth(format.format, texel);
        std::memcpy(out, &depth, 4);
    }
}

void giveAspect(const formats::PixelFormatInfo& format, const uint8_t* in, uint8_t* texel, Aspect aspect)
{
    if (aspect == Aspect::Stencil) {
        formats::packStencil(format.format, *in, texel);
    } else if (format.bytes == 2) {
        std::memcpy(texel, in, 2);
    } else {
        float depth = 0;
        std::memcpy(&depth, in, 4);
        formats::packDepth(format.format, depth, texel);
    }
}

/// Half of a size, at least one; the box reads the last texel twice when the size is odd and one.
void average(const Image& from, const Image& to, uint32_t x, uint32_t y, uint32_t z)
{
    const auto& format = formatOf(from);
    const abi::TextureLevel& source = from.texture->levels[from.level];
    float sum[4] = {0, 0, 0, 0};
    for (uint32_t corner = 0; corner < 8; ++corner) {
        uint32_t u = std::min(2 * x + (corner & 1), source.width - 1), v = std::min(2 * y + (corner >> 1 & 1), source.height - 1),
                 w = std::min(2 * z + (corner >> 2), source.depth - 1);
        float rgba[4];
        formats::unpack(format, address(from, u, v, w), rgba);
        for (int c = 0; c < 4; ++c) sum[c] += rgba[c];
    }
    for (float& c : sum) c *= 0.125f;
    formats::pack(format, sum, address(to, x, y, z));
}

} // namespace

void copyTextureToTexture(const Image& from, const Block& block, const Image& to, uint32_t x, uint32_t y, uint32_t z)
{
    size_t bytes = static_cast<size_t>(block.width) * formatOf(from).bytes;
    for (uint32_t plane = 0; plane < block.depth; ++plane)
        for (uint32_t row = 0; row < block.height; ++row)
            std::memmove(address(to, x, y + row, z + plane), address(from, block.x, block.y + row, block.z + plane), bytes);
}

void copyTextureToMemory(const Image& from, const Block& block, uint8_t* memory, uint64_t rowBytes, uint64_t planeBytes, Aspect aspect)
{
    const auto& format = formatOf(from);
    uint32_t size = aspectBytes(format, aspect);
    for (uint32_t plane = 0; plane < block.depth; ++plane) {
        for (uint32_t row = 0; row < block.height; ++row) {
            uint8_t* out = memory + plane * planeBytes + row * rowBytes;
            const uint8_t* in = address(from, block.x, block.y + row, block.z + plane);
            if (aspect == Aspect::All) std::memcpy(out, in, static_cast<size_t>(block.width) * format.bytes);
            else
                for (uint32_t i = 0; i < block.width; ++i) takeAspect(format, in + i * format.bytes, out + i * size, aspect);
        }
    }
}

void copyMemoryToTexture(const uint8_t* memory, uint64_t rowBytes, uint64_t planeBytes, const Image& to, const Block& block, Aspect aspect)
{
    const auto& format = formatOf(to);
    uint32_t size = aspectBytes(format, aspect);
    for (uint32_t plane = 0; plane < block.depth; ++plane) {
        for (uint32_t row = 0; row < block.height; ++row) {
            const uint8_t* in = memory + plane * planeBytes + row * rowBytes;
            uint8_t* out = address(to, block.x, block.y + row, block.z + plane);
            if (aspect == Aspect::All) std::memcpy(out, in, static_cast<size_t>(block.width) * format.bytes);
            else
                for (uint32_t i = 0; i < block.width; ++i) giveAspect(format, in + i * size, out + i * format.bytes, aspect);
        }
    }
}

void generateMipmaps(const abi::Texture& texture)
{
    uint32_t slices = std::max(texture.arrayLength, 1u) * (texture.type == 5 || texture.type == 6 ? 6 : 1);
    for (uint32_t level = 1; level < texture.levelCount; ++level) {
        const abi::TextureLevel& target = texture.levels[level];
        for (uint32_t slice = 0; slice < slices; ++slice)
            for (uint32_t z = 0; z < target.depth; ++z)
                for (uint32_t y = 0; y < target.height; ++y)
                    for (uint32_t x = 0; x < target.width; ++x) average({&texture, level - 1, slice}, {&texture, level, slice}, x, y, z);
    }
}

} // namespace softmetal::texturing
