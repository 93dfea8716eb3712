// SPDX-License-Identifier: Apache-2.0
// Texels of all lanes from memory to colours. The bits are those of formats::unpack(). Everything is forced in line, as in
// Vectors.h.
#pragma once

#include "texturing/SamplingKernel.h"
#include "vectors/Bytes.h"
#include "vectors/Halves.h"

namespace softmetal::texturing {

using vectors::Float;
using vectors::Int;

/// Colours of all lanes, their channels in the order of memory.
template <uint32_t W> struct Colors
{
    Float<W> c[4];
};

template <uint32_t W> SOFTMETAL_INLINE Colors<W> mix(const Colors<W>& a, const Colors<W>& b, Float<W> t)
{
    Colors<W> result;
    for (int i = 0; i < 4; ++i) result.c[i] = a.c[i] + (b.c[i] - a.c[i]) * t;
    return result;
}

template <uint32_t W> SOFTMETAL_INLINE Colors<W> choose(Int<W> mask, const Colors<W>& yes, const Colors<W>& no)
{
    Colors<W> result;
    for (int i = 0; i < 4; ++i) result.c[i] = mask ? yes.c[i] : no.c[i];
    return result;
}

// ---- gathers ----------------------------------------------------------------------------------------------------------------

template <uint32_t W> SOFTMETAL_INLINE Int<W> gather(const uint8_t* from, Int<W> offsets)
{
#if defined(__AVX512F__)
    if constexpr (W == 16) return reinterpret_cast<Int<W>>(_mm512_mask_i32gather_epi32(_mm512_setzero_si512(), 0xFFFF, reinterpret_cast<__m512i>(offsets), from, 1));
#endif
#if defined(__AVX2__)
    if constexpr (W == 8)
        return reinterpret_cast<Int<W>>(_mm256_i32gather_epi32(reinterpret_cast<const int*>(from), reinterpret_cast<__m256i>(offsets), 1));
#endif
    Int<W> words;
    for (uint32_t i = 0; i < W; ++i) {
        int32_t word;
        std::memcpy(&word, from + offsets[i], 4);
        words[i] = word;
    }
    return words;
}

/// Texels of one byte or of two, in the low bits of the words.
template <uint32_t W, typename Unsigned> SOFTMETAL_INLINE Int<W> gatherSmall(const uint8_t* from, Int<W> offsets)
{
    alignas(64) int32_t at[W];
    vectors::store(at, offsets);
    alignas(64) int32_t words[W];
    for (uint32_t i = 0; i < W; ++i) {
        Unsigned texel;
        std::memcpy(&texel, from + at[i], sizeof texel);
        words[i] = texel;
    }
    return vectors::load<Int<W>>(words);
}

/// Texels of four floats: four lanes' make a square that is turned over.
template <uint32_t W> SOFTMETAL_INLINE Colors<W> gatherFloats(const uint8_t* from, Int<W> offsets)
{
    typedef float Four __attribute__((vector_size(16)));
    alignas(64) int32_t at[W];
    vectors::store(at, offsets);
    Colors<W> result;
    for (uint32_t i = 0; i < W; i += 4) {
        const auto a = vectors::load<Four>(from + at[i]), b = vectors::load<Four>(from + at[i + 1]);
        const auto c = vectors::load<Four>(from + at[i + 2]), d = vectors::load<Four>(from + at[i + 3]);
        const Four low = __builtin_shufflevector(a, b, 0, 4, 1, 5), high = __builtin_shufflevector(a, b, 2, 6, 3, 7);
        const Four low2 = __builtin_shufflevector(c, d, 0, 4, 1, 5), high2 = __builtin_shufflevector(c, d, 2, 6, 3, 7);
        const Four channels[4] = {__builtin_shufflevector(low, low2, 0, 1, 4, 5), __builtin_shufflevector(low, low2, 2, 3, 6, 7),
                                  __builtin_shufflevector(high, high2, 0, 1, 4, 5), __builtin_shufflevector(high, high2, 2, 3, 6, 7)};
        for (int k = 0; k < 4; ++k) std::memcpy(reinterpret_cast<float*>(&result.c[k]) + i, &channels[k], sizeof(Four));
    }
    return result;
}

// ---- eight bits a channel ---------------------------------------------------------------------------------------------------

/// In the order of the bytes.
template <uint32_t W> SOFTMETAL_INLINE Colors<W> bytesToColors(Int<W> words)
{
    return {{vectors::unorm8<W>(words, 0), vectors::unorm8<W>(words, 1), vectors::unorm8<W>(words, 2), vectors::unorm8<W>(words, 3)}};
}

// ---- other formats ------------------------------------------------------------------------------------------------------------

namespace numbers {
constexpr uint32_t A8 = 1, R8 = 10, R16Float = 25, Rgba16Float = 115, Depth16 = 250;
} // namespace numbers

template <uint32_t W> SOFTMETAL_INLINE Colors<W> gatherOther(uint32_t format, const uint8_t* from, Int<W> offsets)
{
    using vectors::fromHalves;
    const Float<W> none = {}, one = none + 1.0f;
    switch (format) {
    case numbers::A8: return {{none, none, none, vectors::unorm8<W>(gatherSmall<W, uint8_t>(from, offsets), 0)}};
    case numbers::R8: return {{vectors::unorm8<W>(gatherSmall<W, uint8_t>(from, offsets), 0), none, none, one}};
    case numbers::R16Float: return {{fromHalves<W>(gatherSmall<W, uint16_t>(from, offsets)), none, none, one}};
    case numbers::Depth16: return {{__builtin_convertvector(gatherSmall<W, uint16_t>(from, offsets), Float<W>) / 65535.0f, none, none, one}};
    case numbers::Rgba16Float: {
        Int<W> rg = gather<W>(from, offsets), ba = gather<W>(from, offsets + 4);
        return {{fromHalves<W>(rg), fromHalves<W>(rg >> 16), fromHalves<W>(ba), fromHalves<W>(ba >> 16)}};
    }
    default: return {{vectors::floatOf<W>(gather<W>(from, offsets)), none, none, one}}; // one float
    }
}

// ---- windows: texels of a level that lie close together are read as rows, and picked in registers -----------------------------

#if defined(__AVX512F__)
template <uint32_t W> inline constexpr bool HasWindows = W == 16;
#elif defined(__AVX2__)
template <uint32_t W> inline constexpr bool HasWindows = W == 8;
#else
template <uint32_t W> inline constexpr bool HasWindows = false;
#endif

/// Up to W words from one row; what lies beyond count is not touched.
template <uint32_t W> SOFTMETAL_INLINE Int<W> loadRow(const uint8_t* from, int32_t count)
{
#if defined(__AVX512F__)
    if constexpr (W == 16) {
        const auto mask = static_cast<__mmask16>(count >= 16 ? 0xFFFF : (1u << count) - 1);
        return reinterpret_cast<Int<W>>(_mm512_maskz_loadu_epi32(mask, from));
    }
#elif defined(__AVX2__)
    if constexpr (W == 8) {
        const Int<W> mask = vectors::laneNumbers<W>() < count;
        return reinterpret_cast<Int<W>>(_mm256_maskload_epi32(reinterpret_cast<const int*>(from), reinterpret_cast<__m256i>(mask)));
    }
#endif
    (void)from, (void)count;
    return Int<W>{};
}

/// For each lane the word of one column, from the first row or where lower is set from the second.
template <uint32_t W> SOFTMETAL_INLINE Int<W> pick(Int<W> first, Int<W> second, Int<W> column, Int<W> lower)
{
#if defined(__AVX512F__)
    if constexpr (W == 16) {
        const Int<W> index = column | (lower & 16);
        return reinterpret_cast<Int<W>>(
            _mm512_permutex2var_epi32(reinterpret_cast<__m512i>(first), reinterpret_cast<__m512i>(index), reinterpret_cast<__m512i>(second)));
    }
#elif defined(__AVX2__)
    if constexpr (W == 8) {
        const auto index = reinterpret_cast<__m256i>(column);
        const auto a = reinterpret_cast<Int<W>>(_mm256_permutevar8x32_epi32(reinterpret_cast<__m256i>(first), index));
        const auto b = reinterpret_cast<Int<W>>(_mm256_permutevar8x32_epi32(reinterpret_cast<__m256i>(second), index));
        return lower ? b : a;
    }
#endif
    (void)second, (void)column, (void)lower;
    return first;
}

/// Least and greatest of the lanes in the corners of a batch's pixels.
struct Range
{
    int32_t least, greatest;
};

template <uint32_t W> SOFTMETAL_INLINE Range rangeOfCorners(Int<W> v)
{
    Int<4> corners;
    if constexpr (W == 16) corners = __builtin_shufflevector(v, v, 0, 2, 13, 15);
    else if constexpr (W == 8) corners = __builtin_shufflevector(v, v, 0, 2, 5, 7);
    else corners = v;
    Int<4> other = __builtin_shufflevector(corners, corners, 2, 3, 0, 1);
    Int<4> low = corners < other ? corners : other, high = corners < other ? other : corners;
    Int<4> lowOther = __builtin_shufflevector(low, low, 1, 0, 3, 2), highOther = __builtin_shufflevector(high, high, 1, 0, 3, 2);
    low = low < lowOther ? low : lowOther;
    high = high < highOther ? highOther : high;
    return {low[0], high[0]};
}

} // namespace softmetal::texturing
