// SPDX-License-Identifier: Apache-2.0
// Bytes as fractions of 255, and back, for all lanes at once.
#pragma once

#include "vectors/Vectors.h"

namespace softmetal::vectors
{

// A byte n three times over is N = 0x010101 n, and n / 255 = N / (2^24 - 1): in binary N after the point, repeated
// without end. The quotient's 24 digits are N's, and what follows begins with a one: it rounds up to N / 2^24 and one
// in the last place.
constexpr int32_t OneUpAndDown24 = 1 - (24 << 23);
constexpr float quotient255(int32_t n)
{
    const int32_t bits = __builtin_bit_cast(int32_t, static_cast<float>(n * 0x010101)) + OneUpAndDown24;
    return __builtin_bit_cast(float, bits > 0 ? bits : 0);
}
constexpr bool isTheQuotient()
{
    for (int32_t n = 0; n < 256; ++n)
        if (quotient255(n) != static_cast<float>(n) / 255.0f) return false;
    return true;
}
static_assert(isTheQuotient());

/// Byte number byte of each word, three times over.
template <uint32_t W>
SOFTMETAL_INLINE Int<W> thrice(Int<W> words, int byte)
{
#if defined(__AVX512BW__) || defined(__AVX2__)
    const Int<W> pattern = (((laneNumbers<W>() & 3) * 4 + byte) * 0x010101) | static_cast<int32_t>(0x80000000);
#endif
#if defined(__AVX512BW__)
    if constexpr (W == 16)
        return reinterpret_cast<Int<W>>(
            _mm512_shuffle_epi8(reinterpret_cast<__m512i>(words), reinterpret_cast<__m512i>(pattern)));
#endif
#if defined(__AVX2__)
    if constexpr (W == 8)
        return reinterpret_cast<Int<W>>(
            _mm256_shuffle_epi8(reinterpret_cast<__m256i>(words), reinterpret_cast<__m256i>(pattern)));
    if constexpr (W == 4)
        return reinterpret_cast<Int<W>>(
            _mm_shuffle_epi8(reinterpret_cast<__m128i>(words), reinterpret_cast<__m128i>(pattern)));
#endif
    Int<W> n = (words >> (8 * byte)) & 0xFF;
    n |= n << 8;
    return n | (n << 8 & 0xFF0000);
}

template <uint32_t W>
SOFTMETAL_INLINE Float<W> unorm8(Int<W> words, int byte)
{
    Int<W> bits = bitsOf<W>(__builtin_convertvector(thrice<W>(words, byte), Float<W>)) + OneUpAndDown24;
    return floatOf<W>(bits > 0 ? bits : Int<W>{});
}

/// Four fractions as whole numbers of 255, to the nearest, halves to even: exactly, as a product in double precision
/// is.
template <uint32_t W>
struct FourBytes
{
    Int<W> c[4];
};

template <uint32_t W>
SOFTMETAL_INLINE Int<W> byteInDoubles(Float<W> v)
{
    if constexpr (W > DoubleLanes) {
        return join<W>(byteInDoubles<W / 2>(lowHalf<W>(v)), byteInDoubles<W / 2>(highHalf<W>(v)));
    } else {
        Double<W> rounded = __builtin_convertvector(v, Double<W>) * 255.0 + 4503599627370496.0; // 2^52
        return __builtin_convertvector(rounded - 4503599627370496.0, Int<W>);
    }
}

/// Values lie between 0 and 1. A product in floats rounds to the side of a half that it lies on, or to the half itself:
/// only then doubles have to tell.
template <uint32_t W>
SOFTMETAL_INLINE FourBytes<W> exactBytes(const Float<W>* v)
{
    constexpr float Whole = 8388608.0f; // 2^23
    FourBytes<W> result;
    Int<W> half = {};
    for (int c = 0; c < 4; ++c) {
        const Float<W> product = v[c] * 255.0f, sum = product + Whole, left = product - (sum - Whole);
        result.c[c] = bitsOf<W>(sum) & 0xFF;
        half |= (left == 0.5f) | (left == -0.5f);
    }
    if (signs<W>(half) != 0) [[unlikely]]
        for (int c = 0; c < 4; ++c)
            result.c[c] = byteInDoubles<W>(v[c]);
    return result;
}

} // namespace softmetal::vectors
