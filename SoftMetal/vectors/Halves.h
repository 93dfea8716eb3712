// SPDX-License-Identifier: Apache-2.0
// IEEE half precision for all lanes at once, and rows of four-channel texels from the lanes of quads. The twins for
// single values are toHalf() and fromHalf() of formats/PixelFormat.h: the same bits, whatever the value.
#pragma once

#include "vectors/Vectors.h"

namespace softmetal::vectors
{

/// To nearest even, in the low halves of the words; what is not a number becomes 0x7E00 with its sign.
template <uint32_t W>
SOFTMETAL_INLINE Int<W> toHalves(Float<W> value)
{
    using Words = typename Types<W>::UInt;
    Int<W> bits = bitsOf<W>(value), magnitude = bits & 0x7FFFFFFF, sign = (bits >> 16) & 0x8000;
#if defined(__AVX512F__)
    if constexpr (W == 16) {
        typedef uint16_t Short __attribute__((vector_size(32)));
        auto halves = reinterpret_cast<Short>(_mm512_maskz_cvtps_ph(0xFFFF, reinterpret_cast<__m512>(value),
                                                                    _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC));
        return magnitude > 0x7F800000 ? sign | 0x7E00 : __builtin_convertvector(halves, Int<W>);
    }
#endif
    // Below the normal halves the adder of floats rounds at 2^-24; at 65520 and beyond there is only infinity.
    Int<W> small = bitsOf<W>(floatOf<W>(magnitude) + 0.5f) - 0x3F000000;
    const auto wide = reinterpret_cast<Words>(magnitude); // signed, what is no number would overflow
    const auto normal = reinterpret_cast<Int<W>>((wide + 0xFFF + ((wide >> 13) & 1) - 0x38000000) >> 13);
    Int<W> half = magnitude < 0x38800000 ? small : normal;
    half = magnitude >= 0x477FF000 ? Int<W>{} + 0x7C00 : half;
    return sign | (magnitude > 0x7F800000 ? Int<W>{} + 0x7E00 : half);
}

/// Of the low halves of the words; what is not a number keeps its bits.
template <uint32_t W>
SOFTMETAL_INLINE Float<W> fromHalves(Int<W> words)
{
    Int<W> sign = (words & 0x8000) << 16, magnitude = words & 0x7FFF, shifted = magnitude << 13;
    Int<W> small = bitsOf<W>(__builtin_convertvector(magnitude, Float<W>) * 0x1p-24f);
    Int<W> bits = magnitude < 0x400 ? small : shifted + 0x38000000;
    return floatOf<W>(sign | (magnitude >= 0x7C00 ? shifted | 0x7F800000 : bits));
}

// ---- rows: from and to lanes of 2x2 quads side by side -------------------------------------------------------------

/// Two words of each lane as rows of pairs: the upper row's and the lower row's.
template <uint32_t W>
struct PairRows
{
    Int<W> upper, lower;
};

template <uint32_t W>
SOFTMETAL_INLINE PairRows<W> pairRows(Int<W> a, Int<W> b)
{
    if constexpr (W == 4) {
        return {__builtin_shufflevector(a, b, 0, 4, 1, 5), __builtin_shufflevector(a, b, 2, 6, 3, 7)};
    } else if constexpr (W == 8) {
        return {__builtin_shufflevector(a, b, 0, 8, 1, 9, 4, 12, 5, 13),
                __builtin_shufflevector(a, b, 2, 10, 3, 11, 6, 14, 7, 15)};
    } else {
        return {__builtin_shufflevector(a, b, 0, 16, 1, 17, 4, 20, 5, 21, 8, 24, 9, 25, 12, 28, 13, 29),
                __builtin_shufflevector(a, b, 2, 18, 3, 19, 6, 22, 7, 23, 10, 26, 11, 27, 14, 30, 15, 31)};
    }
}

/// Two rows of pairs as one row of fours, in two parts.
template <uint32_t W>
SOFTMETAL_INLINE PairRows<W> fours(Int<W> first, Int<W> second)
{
    if constexpr (W == 4) {
        return {__builtin_shufflevector(first, second, 0, 1, 4, 5), __builtin_shufflevector(first, second, 2, 3, 6, 7)};
    } else if constexpr (W == 8) {
        return {__builtin_shufflevector(first, second, 0, 1, 8, 9, 2, 3, 10, 11),
                __builtin_shufflevector(first, second, 4, 5, 12, 13, 6, 7, 14, 15)};
    } else {
        return {__builtin_shufflevector(first, second, 0, 1, 16, 17, 2, 3, 18, 19, 4, 5, 20, 21, 6, 7, 22, 23),
                __builtin_shufflevector(first, second, 8, 9, 24, 25, 10, 11, 26, 27, 12, 13, 28, 29, 14, 15, 30, 31)};
    }
}

} // namespace softmetal::vectors
