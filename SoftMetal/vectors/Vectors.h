// SPDX-License-Identifier: Apache-2.0
// Vectors of W lanes for loops that are compiled once for each instruction set. Everything here is forced in line: a copy
// shared between the compilations might hold instructions that the processor lacks.
#pragma once

#include <cstdint>
#include <cstring>

#if defined(__AVX512DQ__) || defined(__AVX__)
#include <immintrin.h>
#endif

#define SOFTMETAL_INLINE inline __attribute__((always_inline))

namespace softmetal::vectors {

template <uint32_t W> struct Types
{
    typedef float Float __attribute__((vector_size(W * 4)));
    typedef int32_t Int __attribute__((vector_size(W * 4)));
    typedef uint32_t UInt __attribute__((vector_size(W * 4)));
    typedef double Double __attribute__((vector_size(W * 8)));
    typedef int64_t Long __attribute__((vector_size(W * 8)));
};

template <uint32_t W> using Float = typename Types<W>::Float;
template <uint32_t W> using Int = typename Types<W>::Int;
template <uint32_t W> using Double = typename Types<W>::Double;
template <uint32_t W> using Long = typename Types<W>::Long;

template <typename Vector> SOFTMETAL_INLINE Vector load(const void* from)
{
    Vector v;
    std::memcpy(&v, from, sizeof v);
    return v;
}

template <typename Vector> SOFTMETAL_INLINE void store(void* to, Vector v)
{
    std::memcpy(to, &v, sizeof v);
}

template <typename Vector, typename Scalar> SOFTMETAL_INLINE Vector splat(Scalar s)
{
    return Vector{} + s;
}

template <uint32_t W> SOFTMETAL_INLINE Float<W> splatFloat(float s)
{
    return -Float<W>{} + s; // zero plus s would turn a negative zero into a positive one
}

template <uint32_t W> SOFTMETAL_INLINE Int<W> bitsOf(Float<W> v)
{
    Int<W> r;
    std::memcpy(&r, &v, sizeof r);
    return r;
}

template <uint32_t W> SOFTMETAL_INLINE Float<W> floatOf(Int<W> v)
{
    Float<W> r;
    std::memcpy(&r, &v, sizeof r);
    return r;
}

/// 0, 1, 2 …
template <uint32_t W> SOFTMETAL_INLINE Int<W> laneNumbers()
{
    Int<W> v;
    for (uint32_t i = 0; i < W; ++i) v[i] = static_cast<int32_t>(i);
    return v;
}

/// Bit n of the result is the sign of lane n.
template <uint32_t W> SOFTMETAL_INLINE uint32_t signs(Int<W> v)
{
#if defined(__AVX512DQ__)
    if constexpr (W == 16) return _mm512_movepi32_mask(reinterpret_cast<__m512i>(v));
#endif
#if defined(__AVX__)
    if constexpr (W == 8) return static_cast<uint32_t>(_mm256_movemask_ps(reinterpret_cast<__m256>(v)));
#endif
    Int<W> bits = (v < 0) & ((Int<W>{} + 1) << laneNumbers<W>());
    uint32_t mask = 0;
    for (uint32_t i = 0; i < W; ++i) mask |= static_cast<uint32_t>(bits[i]);
    return mask;
}

/// All bits of lane n where bit n of the mask is set, else none.
template <uint32_t W> SOFTMETAL_INLINE Int<W> lanesOf(uint32_t mask)
{
    return ((Int<W>{} + static_cast<int32_t>(mask)) & ((Int<W>{} + 1) << laneNumbers<W>())) != 0;
}

/// Lanes of 2x2 quads side by side, put in the order of memory: the upper row, then the lower one.
template <uint32_t W, typename Vector> SOFTMETAL_INLINE Vector quadsToRows(Vector v)
{
    if constexpr (W == 8) return __builtin_shufflevector(v, v, 0, 1, 4, 5, 2, 3, 6, 7);
    else if constexpr (W == 16) return __builtin_shufflevector(v, v, 0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    else return v;
}

template <uint32_t W, typename Vector> SOFTMETAL_INLINE Vector rowsToQuads(Vector v)
{
    if constexpr (W == 8) return __builtin_shufflevector(v, v, 0, 1, 4, 5, 2, 3, 6, 7);
    else if constexpr (W == 16) return __builtin_shufflevector(v, v, 0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
    else return v;
}

// ---- halves: doubles are worked on in vectors of the machine's own size ---------------------------------------------------

#if defined(__AVX512F__)
inline constexpr uint32_t DoubleLanes = 8;
#elif defined(__AVX__)
inline constexpr uint32_t DoubleLanes = 4;
#else
inline constexpr uint32_t DoubleLanes = 2;
#endif

template <uint32_t W, typename Vector> SOFTMETAL_INLINE auto lowHalf(Vector v)
{
    if constexpr (W == 4) return __builtin_shufflevector(v, v, 0, 1);
    else if constexpr (W == 8) return __builtin_shufflevector(v, v, 0, 1, 2, 3);
    else return __builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7);
}

template <uint32_t W, typename Vector> SOFTMETAL_INLINE auto highHalf(Vector v)
{
    if constexpr (W == 4) return __builtin_shufflevector(v, v, 2, 3);
    else if constexpr (W == 8) return __builtin_shufflevector(v, v, 4, 5, 6, 7);
    else return __builtin_shufflevector(v, v, 8, 9, 10, 11, 12, 13, 14, 15);
}

template <uint32_t W, typename Half> SOFTMETAL_INLINE auto join(Half low, Half high)
{
    if constexpr (W == 4) return __builtin_shufflevector(low, high, 0, 1, 2, 3);
    else if constexpr (W == 8) return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7);
    else return __builtin_shufflevector(low, high, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}

/// Two rows of W / 2 words.
template <uint32_t W, typename Vector> SOFTMETAL_INLINE Vector loadRows(const uint8_t* upper, const uint8_t* lower)
{
    using Half = decltype(lowHalf<W>(Vector{}));
    return join<W>(load<Half>(upper), load<Half>(lower));
}

template <uint32_t W, typename Vector> SOFTMETAL_INLINE void storeRows(uint8_t* upper, uint8_t* lower, Vector v)
{
    store(upper, lowHalf<W>(v));
    store(lower, highHalf<W>(v));
}

} // namespace softmetal::vectors
