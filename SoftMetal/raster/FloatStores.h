// SPDX-License-Identifier: Apache-2.0
// Stores of a whole batch into targets of four halves or four floats, as formats::pack() stores single texels.
#pragma once

#include "raster/Output.h"
#include "vectors/Halves.h"

namespace softmetal::raster
{

inline constexpr uint32_t Rgba16Float = 115, Rgba32Float = 125;

SOFTMETAL_INLINE uint32_t floatTexelBytes(uint32_t format)
{
    return format == Rgba16Float ? 8 : 16;
}

/// Whether the target takes the shader's colours as they are.
SOFTMETAL_INLINE bool storesFloats(uint32_t format, const BlendState& b)
{
    return (format == Rgba16Float || format == Rgba32Float) && !b.enabled && b.writeMask == 15;
}

/// Part of a row: all of its words, or those of the mask.
template <uint32_t W>
SOFTMETAL_INLINE void storeRow(uint8_t* row, vectors::Int<W> words, vectors::Int<W> mask, bool all)
{
    using vectors::Int;
    vectors::store(row, all ? words : (mask & words) | (~mask & vectors::load<Int<W>>(row)));
}

template <uint32_t W>
SOFTMETAL_INLINE void storeFloats(uint32_t format, const PixelRows& rows, const abi::Lanes* color, uint32_t mask)
{
    using namespace vectors;
    const bool all = mask == (1u << W) - 1;
    const Int<W> lanes = lanesOf<W>(mask);
    const PairRows<W> pixels = pairRows<W>(lanes, lanes);
    const Float<W> c[4] = {load<Float<W>>(color[0].f), load<Float<W>>(color[1].f), load<Float<W>>(color[2].f),
                           load<Float<W>>(color[3].f)};
    if (format == Rgba16Float) {
        const PairRows<W> words =
            pairRows<W>(toHalves<W>(c[0]) | toHalves<W>(c[1]) << 16, toHalves<W>(c[2]) | toHalves<W>(c[3]) << 16);
        storeRow<W>(rows.row[0], words.upper, pixels.upper, all);
        storeRow<W>(rows.row[1], words.lower, pixels.lower, all);
        return;
    }
    const PairRows<W> first = pairRows<W>(bitsOf<W>(c[0]), bitsOf<W>(c[1])),
                      second = pairRows<W>(bitsOf<W>(c[2]), bitsOf<W>(c[3]));
    const PairRows<W> upper = fours<W>(first.upper, second.upper), upperPixels = fours<W>(pixels.upper, pixels.upper);
    const PairRows<W> lower = fours<W>(first.lower, second.lower), lowerPixels = fours<W>(pixels.lower, pixels.lower);
    constexpr size_t Half = W * 4;
    storeRow<W>(rows.row[0], upper.upper, upperPixels.upper, all);
    storeRow<W>(rows.row[0] + Half, upper.lower, upperPixels.lower, all);
    storeRow<W>(rows.row[1], lower.upper, lowerPixels.upper, all);
    storeRow<W>(rows.row[1] + Half, lower.lower, lowerPixels.lower, all);
}

} // namespace softmetal::raster
