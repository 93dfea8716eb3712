// SPDX-License-Identifier: Apache-2.0
// Texels and weights of coordinates against their meaning in double precision, bit for bit.
#include "texturing/Positions.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <random>

namespace
{

using namespace softmetal;
using texturing::betweenTexels;
using texturing::texelOf;
using vectors::Float;

constexpr uint32_t W = 4;
constexpr std::array<uint32_t, 22> Sizes = {1, 2, 3, 5, 7, 8, 12, 37, 64, 100, 255, 256, 257, 1000, 1024, 1280, 2047, 4095, 4096, 5000, 8192, 16384};

double tame(double v) { return v == v ? std::clamp(v, -1e9, 1e9) : 0.0; }

void expectPositions(std::array<float, W> coordinates, uint32_t size)
{
    const auto lanes = vectors::load<Float<W>>(coordinates.data());
    const auto nearest = texelOf<W>(lanes, size);
    const auto between = betweenTexels<W>(lanes, size);
    for (uint32_t i = 0; i < W; ++i) {
        const double v = tame(static_cast<double>(coordinates[i]) * size), first = std::floor(v - 0.5);
        ASSERT_EQ(nearest[i], static_cast<int32_t>(std::floor(v))) << std::hexfloat << coordinates[i] << " of " << size;
        ASSERT_EQ(between.whole[i], static_cast<int32_t>(first)) << std::hexfloat << coordinates[i] << " of " << size;
        const float weight = between.rest[i];
        ASSERT_EQ(std::bit_cast<uint32_t>(weight), std::bit_cast<uint32_t>(static_cast<float>(v - 0.5 - first))) << std::hexfloat << coordinates[i] << " of " << size;
    }
}

TEST(Positions, OfAnyFloatAreThoseOfDoubles)
{
    std::mt19937 random(3);
    for (uint32_t size : Sizes)
        for (int n = 0; n < 20000; ++n)
            expectPositions({std::bit_cast<float>(static_cast<uint32_t>(random())), std::bit_cast<float>(static_cast<uint32_t>(random())), 0.5f, -0.25f}, size);
}

TEST(Positions, WithinATextureAreThoseOfDoubles)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<float> some(-3, 4);
    for (uint32_t size : Sizes)
        for (int n = 0; n < 40000; ++n) expectPositions({some(random), some(random), some(random), some(random)}, size);
}

TEST(Positions, AroundCentresAndEdgesAreThoseOfDoubles)
{
    for (uint32_t size : Sizes)
        for (int32_t half = -40; half <= 2 * static_cast<int32_t>(size) + 40; half += size > 1000 ? 37 : 1) {
            const auto place = static_cast<float>(half / 2.0 / size);
            const float below = std::nextafter(place, -8.0f), above = std::nextafter(place, 8.0f);
            expectPositions({below, place, above, std::nextafter(above, 8.0f)}, size);
        }
}

TEST(Positions, NearZeroAreThoseOfDoubles)
{
    for (uint32_t size : Sizes)
        for (uint32_t exponent = 0; exponent < 140; ++exponent)
            for (uint32_t mantissa : {0u, 1u, 0x400000u, 0x7FFFFFu}) {
                const float v = std::bit_cast<float>(exponent << 23 | mantissa);
                expectPositions({v, -v, 0.0f, -0.0f}, size);
            }
}

} // namespace
