// SPDX-License-Identifier: Apache-2.0
#include "textures/Reading.h"

#include <algorithm>
#include <cmath>

namespace textures
{

namespace
{

uint8_t toByte(float value)
{
    return static_cast<uint8_t>(std::lrint(static_cast<double>(std::clamp(value, 0.0f, 1.0f)) * 255.0));
}

float fromHalf(uint16_t bits)
{
    if ((bits & 0x7FFF) == 0) return 0;
    float magnitude = std::ldexp(static_cast<float>((bits & 0x3FF) + 1024), ((bits >> 10) & 31) - 25);
    return bits & 0x8000 ? -magnitude : magnitude;
}

} // namespace

Rgba kept(MTL::PixelFormat format, const Rgba& c)
{
    switch (format) {
    case MTL::PixelFormatA8Unorm:
        return {0, 0, 0, static_cast<float>(toByte(c[3])) / 255.0f};
    case MTL::PixelFormatR8Unorm:
        return {static_cast<float>(toByte(c[0])) / 255.0f, 0, 0, 1};
    case MTL::PixelFormatR16Float:
        return {fromHalf(half(c[0])), 0, 0, 1};
    case MTL::PixelFormatR32Float:
        return {c[0], 0, 0, 1};
    case MTL::PixelFormatRGBA16Float:
        return {fromHalf(half(c[0])), fromHalf(half(c[1])), fromHalf(half(c[2])), fromHalf(half(c[3]))};
    case MTL::PixelFormatRGBA32Float:
        return c;
    default:
        return {static_cast<float>(toByte(c[0])) / 255.0f, static_cast<float>(toByte(c[1])) / 255.0f, static_cast<float>(toByte(c[2])) / 255.0f,
                static_cast<float>(toByte(c[3])) / 255.0f};
    }
}

Bytes clientBytes(const ReadRow& row, const std::vector<Rgba>& colours)
{
    Bytes result;
    for (const Rgba& colour : colours) {
        std::vector<float> c(colour.begin(), colour.end());
        if (row.format == GL_BGRA) std::swap(c[0], c[2]);
        if (row.format == GL_ALPHA) c = {c[3]};
        c.resize(row.client / (row.type == GL_UNSIGNED_BYTE ? 1 : row.type == GL_HALF_FLOAT ? 2 : 4));
        Bytes pixel;
        if (row.type == GL_FLOAT) pixel = bytesOf(c);
        else if (row.type == GL_HALF_FLOAT) {
            std::vector<uint16_t> halves;
            for (float v : c) halves.push_back(half(v));
            pixel = bytesOf(halves);
        } else {
            for (float v : c) pixel.push_back(toByte(v));
        }
        result.insert(result.end(), pixel.begin(), pixel.end());
    }
    return result;
}

} // namespace textures
