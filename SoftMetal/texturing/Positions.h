// SPDX-License-Identifier: Apache-2.0
// Coordinates of all lanes to whole texels and weights, and whole texels to those inside of a level. The meaning is that of
// Sampling.cpp in double precision; floats are used where they give the same bits. Everything is forced in line, as in
// Vectors.h.
#pragma once

#include "vectors/Vectors.h"

namespace softmetal::texturing {

using vectors::Double;
using vectors::Float;
using vectors::Int;

enum Address : uint8_t { ClampToEdge = 0, MirrorClampToEdge = 1, Repeat = 2, MirrorRepeat = 3, ClampToZero = 4, ClampToBorder = 5 };

/// Whether every lane of a comparison's result is set.
template <uint32_t W> SOFTMETAL_INLINE bool all(Int<W> mask)
{
    constexpr uint32_t Every = (1u << W) - 1;
    return (vectors::signs<W>(mask) & Every) == Every;
}

template <uint32_t W> SOFTMETAL_INLINE Int<W> floorOf(Double<W> v)
{
    Int<W> whole = __builtin_convertvector(v, Int<W>); // towards zero
    return whole + __builtin_convertvector(v < __builtin_convertvector(whole, Double<W>), Int<W>);
}

// ---- positions ------------------------------------------------------------------------------------------------------------

/// A position in texels along one axis: the whole texel and what is left.
template <uint32_t W> struct Position
{
    Int<W> whole;
    Float<W> rest;
};

/// Kept in the range of whole numbers; not-a-number counts as zero. back is half a texel where two are mixed.
template <uint32_t W> SOFTMETAL_INLINE Position<W> anyPosition(Float<W> coordinate, double scale, double back)
{
    if constexpr (W > vectors::DoubleLanes) {
        auto low = anyPosition<W / 2>(vectors::lowHalf<W>(coordinate), scale, back), high = anyPosition<W / 2>(vectors::highHalf<W>(coordinate), scale, back);
        return {vectors::join<W>(low.whole, high.whole), vectors::join<W>(low.rest, high.rest)};
    } else {
        Double<W> v = __builtin_convertvector(coordinate, Double<W>) * scale, zero = {};
        v = v < -1e9 ? zero - 1e9 : v;
        v = v > 1e9 ? zero + 1e9 : v;
        v = (v == v ? v : zero) - back;
        Int<W> whole = floorOf<W>(v);
        return {whole, __builtin_convertvector(v - __builtin_convertvector(whole, Double<W>), Float<W>)};
    }
}

/// Added to a float below 2^22 in size it makes a float without a fraction: the nearest whole number, to even.
constexpr float Rounder = 0x1.8p23f;
constexpr int32_t RounderBits = 0x4B400000;

template <uint32_t W> SOFTMETAL_INLINE bool roundable(Float<W> v)
{
    return all<W>((vectors::bitsOf<W>(v) & 0x7FFFFFFF) < 0x4A800000); // the bits of 2^22; not-a-number has greater ones
}

/// A coordinate's product with a scale below 4096, as two floats whose sum it is: the coordinate's upper and lower twelve
/// digits give products of at most 24.
template <uint32_t W> struct Product
{
    Float<W> upper, lower, sum; // the sum is rounded

    SOFTMETAL_INLINE Product(Float<W> coordinate, uint32_t scale)
    {
        const Float<W> first = vectors::floatOf<W>(vectors::bitsOf<W>(coordinate) & ~0xFFF);
        upper = first * static_cast<float>(scale);
        lower = (coordinate - first) * static_cast<float>(scale);
        sum = upper + lower;
    }

    /// From 2 to 2^22 in size: then upper, less a whole number near the sum and with one more or half of one, is exact.
    SOFTMETAL_INLINE bool splits() const
    {
        const Int<W> size = vectors::bitsOf<W>(sum) & 0x7FFFFFFF;
        return all<W>((size >= 0x40000000) & (size < 0x4A800000));
    }
};

constexpr uint32_t LeastUnsplit = 4096;

/// The texel that a coordinate lies in.
template <uint32_t W> SOFTMETAL_INLINE Int<W> texelOf(Float<W> coordinate, uint32_t scale)
{
    if ((scale & (scale - 1)) == 0) { // the product is exact
        Float<W> v = coordinate * static_cast<float>(scale);
        if (roundable<W>(v)) [[likely]] {
            Int<W> whole = __builtin_convertvector(v, Int<W>); // towards zero
            return whole + (v < __builtin_convertvector(whole, Float<W>));
        }
    } else if (scale < LeastUnsplit) {
        const Product<W> v(coordinate, scale);
        if (v.splits()) [[likely]] {
            Int<W> whole = __builtin_convertvector(v.sum, Int<W>);
            const Float<W> left = v.upper - __builtin_convertvector(whole, Float<W>);
            whole += left + v.lower < 0.0f;
            return whole - ((left - 1.0f) + v.lower >= 0.0f);
        }
    }
    return anyPosition<W>(coordinate, scale, 0).whole;
}

/// The first of the two texels between whose centres a coordinate lies, and the second one's weight. For a scale that is a
/// power of two the product is exact, and so is its distance d from the nearest whole number; d + 0.5 is rounded once, as the
/// double is. For another scale the one rounding is the last sum with the product's lower part.
template <uint32_t W> SOFTMETAL_INLINE Position<W> betweenTexels(Float<W> coordinate, uint32_t scale)
{
    if ((scale & (scale - 1)) == 0) {
        Float<W> v = coordinate * static_cast<float>(scale);
        if (roundable<W>(v)) [[likely]] {
            Float<W> sum = v + Rounder, d = v - (sum - Rounder), zero = {};
            Int<W> tie = d == 0.5f; // the even number lay below, and the texel's centre is met
            return {vectors::bitsOf<W>(sum) - (RounderBits + 1) - tie, tie ? zero : d + 0.5f};
        }
    } else if (scale < LeastUnsplit) {
        const Product<W> v(coordinate, scale);
        if (v.splits()) [[likely]] {
            const Float<W> sum = v.sum + Rounder, left = (v.upper - (sum - Rounder)) + 0.5f;
            const Float<W> rest = left + v.lower, less = (left - 1.0f) + v.lower, more = (left + 1.0f) + v.lower;
            const Int<W> below = rest < 0.0f, beyond = less >= 0.0f; // the sum was rounded to the wrong side
            return {vectors::bitsOf<W>(sum) - (RounderBits + 1) + below - beyond, beyond ? less : below ? more : rest};
        }
    }
    return anyPosition<W>(coordinate, scale, 0.5);
}

// ---- addresses --------------------------------------------------------------------------------------------------------------

/// Whole texels along one axis, and where they lie outside of an image with a border.
template <uint32_t W> struct Place
{
    Int<W> at, outside;
};

/// Remainder that is never negative, of any size.
template <uint32_t W> SOFTMETAL_INLINE Int<W> remainder(Int<W> i, int32_t size)
{
    if constexpr (W > vectors::DoubleLanes) {
        return vectors::join<W>(remainder<W / 2>(vectors::lowHalf<W>(i), size), remainder<W / 2>(vectors::highHalf<W>(i), size));
    } else {
        Double<W> quotient = __builtin_convertvector(i, Double<W>) / static_cast<double>(size);
        return i - floorOf<W>(quotient) * size;
    }
}

template <uint32_t W> SOFTMETAL_INLINE Int<W> modulo(Int<W> i, int32_t size)
{
    return (size & (size - 1)) == 0 ? i & (size - 1) : remainder<W>(i, size);
}

template <uint32_t W> SOFTMETAL_INLINE Place<W> wrap(Int<W> i, int32_t size, uint8_t mode)
{
    Int<W> none = {};
    switch (mode) {
    case Repeat: return {modulo<W>(i, size), none};
    case MirrorRepeat: {
        Int<W> r = modulo<W>(i, 2 * size);
        return {r < size ? r : 2 * size - 1 - r, none};
    }
    case MirrorClampToEdge: {
        Int<W> r = i < 0 ? -1 - i : i;
        return {r < size ? r : none + (size - 1), none};
    }
    case ClampToZero:
    case ClampToBorder: {
        Int<W> outside = (i < 0) | (i >= size);
        return {outside ? none : i, outside};
    }
    default: {
        Int<W> r = i < 0 ? none : i;
        return {r < size ? r : none + (size - 1), none};
    }
    }
}

/// One texel's address within a level, or -1 where only the border's colour is.
SOFTMETAL_INLINE int32_t wrapOne(int32_t i, int32_t size, uint8_t mode)
{
    if (i >= 0 && i < size) return i;
    switch (mode) {
    case Repeat: {
        int32_t r = i % size;
        return r < 0 ? r + size : r;
    }
    case MirrorRepeat: {
        int32_t r = i % (2 * size);
        r = r < 0 ? r + 2 * size : r;
        return r < size ? r : 2 * size - 1 - r;
    }
    case MirrorClampToEdge: {
        int32_t r = i < 0 ? -1 - i : i;
        return r < size ? r : size - 1;
    }
    case ClampToZero:
    case ClampToBorder: return -1;
    default: return i < 0 ? 0 : size - 1;
    }
}

} // namespace softmetal::texturing
