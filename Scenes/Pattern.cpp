// SPDX-License-Identifier: Apache-2.0
#include "Pattern.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace scenes {
namespace {

using Color = std::array<float, 3>; // 0 to 255

uint32_t hash(uint32_t x, uint32_t y)
{
    uint32_t h = x * 0x9E3779B1u ^ (y + 0x85EBCA6Bu) * 0xC2B2AE35u;
    h = (h ^ (h >> 15)) * 0x2C1B3C6Du;
    return h ^ (h >> 13);
}

float lattice(int x, int y, int period)
{
    return static_cast<float>(hash(x & (period - 1), y & (period - 1)) & 0xFFFF) / 65535.0f;
}

/// Smooth noise in 0..1 that repeats after period cells; period is a power of two.
float noise(float x, float y, int period)
{
    int ix = static_cast<int>(std::floor(x)), iy = static_cast<int>(std::floor(y));
    float fx = x - static_cast<float>(ix), fy = y - static_cast<float>(iy);
    fx = fx * fx * (3 - 2 * fx);
    fy = fy * fy * (3 - 2 * fy);
    float top = std::lerp(lattice(ix, iy, period), lattice(ix + 1, iy, period), fx);
    float bottom = std::lerp(lattice(ix, iy + 1, period), lattice(ix + 1, iy + 1, period), fx);
    return std::lerp(top, bottom, fy);
}

/// Sums octaves of ridges: thin lines where the noise crosses its middle.
float veins(float u, float v)
{
    float sum = 0, weight = 0.5f;
    for (int period = 4; period <= 32; period *= 2, weight *= 0.5f) {
        float ridge = 1 - std::abs(2 * noise(u * static_cast<float>(period), v * static_cast<float>(period), period) - 1);
        sum += weight * ridge * ridge * ridge;
    }
    return sum;
}

std::vector<uint8_t> halve(const std::vector<uint8_t>& level, int size)
{
    int half = size / 2;
    std::vector<uint8_t> result(static_cast<size_t>(half) * half * 4);
    for (int y = 0; y < half; ++y) {
        for (int x = 0; x < half * 4; ++x) {
            size_t from = static_cast<size_t>(2 * y) * size * 4 + (x / 4) * 8 + x % 4, row = static_cast<size_t>(size) * 4;
            result[static_cast<size_t>(y) * half * 4 + x] =
                static_cast<uint8_t>((level[from] + level[from + 4] + level[from + row] + level[from + row + 4] + 2) / 4);
        }
    }
    return result;
}

template <class ColorAt>
Mipmaps paint(int size, ColorAt colorAt)
{
    Mipmaps result;
    result.size = size;
    std::vector<uint8_t> level(static_cast<size_t>(size) * size * 4);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            Color color = colorAt((static_cast<float>(x) + 0.5f) / static_cast<float>(size),
                                  (static_cast<float>(y) + 0.5f) / static_cast<float>(size));
            uint8_t* pixel = level.data() + (static_cast<size_t>(y) * size + x) * 4;
            for (int i = 0; i < 3; ++i) pixel[i] = static_cast<uint8_t>(std::clamp(color[i], 0.0f, 255.0f));
            pixel[3] = 255;
        }
    }
    for (int side = size; side >= 1; side /= 2) {
        result.levels.push_back(level);
        if (side > 1) level = halve(level, side);
    }
    return result;
}

Color mix(const Color& a, const Color& b, float t)
{
    return {std::lerp(a[0], b[0], t), std::lerp(a[1], b[1], t), std::lerp(a[2], b[2], t)};
}

} // namespace

Mipmaps glazePattern(int size)
{
    constexpr Color White = {238, 236, 228}, Cobalt = {38, 66, 148};
    return paint(size, [=](float u, float v) {
        float amount = std::clamp((veins(u, v) - 0.42f) * 3.2f, 0.0f, 1.0f);
        return mix(White, Cobalt, amount * amount);
    });
}

Mipmaps tilePattern(int size)
{
    constexpr Color Light = {206, 198, 184}, Dark = {128, 118, 108}, Joint = {84, 78, 72};
    return paint(size, [=](float u, float v) {
        float x = u * 2 - std::floor(u * 2), y = v * 2 - std::floor(v * 2);
        if (std::min({x, y, 1 - x, 1 - y}) < 0.03f) return Joint;
        bool dark = (static_cast<int>(u * 2) + static_cast<int>(v * 2)) % 2 != 0;
        return mix(dark ? Dark : Light, Color{255, 255, 255}, 0.12f * noise(u * 32, v * 32, 32));
    });
}

} // namespace scenes
