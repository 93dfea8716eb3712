// SPDX-License-Identifier: Apache-2.0
#include "formats/PixelFormat.h"

#include "formats/PixelFormatTable.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace softmetal::formats {
namespace {

constexpr uint32_t Rgb10A2 = 90, Rg11B10 = 92, Rgb9E5 = 93, Depth16 = 250, Depth32 = 252, Stencil8 = 253, Depth24Stencil8 = 255,
                   Depth32Stencil8 = 260;
constexpr uint32_t Largest = 260;

constexpr auto Index = [] {
    std::array<uint8_t, Largest + 1> index{};
    for (size_t i = 0; i < PixelFormatTable.size(); ++i) index[PixelFormatTable[i].format] = static_cast<uint8_t>(i + 1);
    return index;
}();

float asFloat(uint32_t bits) { return std::bit_cast<float>(bits); }
uint32_t asBits(float value) { return std::bit_cast<uint32_t>(value); }

/// Clamped to 0..1 (not-a-number to 0) and scaled, to nearest even.
uint32_t toUnorm(float value, double largest)
{
    float clamped = value > 0 ? (value < 1 ? value : 1.0f) : 0.0f;
    return static_cast<uint32_t>(std::nearbyint(static_cast<double>(clamped) * largest));
}

int32_t toSnorm(float value, double largest)
{
    float clamped = value > -1 ? (value < 1 ? value : 1.0f) : (value == value ? -1.0f : 0.0f);
    return static_cast<int32_t>(std::nearbyint(static_cast<double>(clamped) * largest));
}

/// The n-th root of a number of 0 < a <= 1 by Newton's method from above, in operations whose bits are the same everywhere,
/// as those of a library's pow are not.
template <int N>
double root(double a)
{
    auto power = [](double y) {
        double p = y;
        for (int i = 2; i < N; ++i) p *= y;
        return p; // to the power N - 1
    };
    double y = 1;
    for (int i = 0; i < 40; ++i) {
        const double p = power(y), next = y - (p * y - a) / (N * p);
        if (!(next < y)) break;
        y = next;
    }
    return y;
}

float fromSrgb(float c)
{
    if (c <= 0.04045f) return static_cast<float>(static_cast<double>(c) / 12.92);
    const double v = std::min((static_cast<double>(c) + 0.055) / 1.055, 1.0), fifth = root<5>(v);
    return static_cast<float>(v * v * fifth * fifth); // v to the power 2.4
}

float toSrgb(float c)
{
    if (!(c > 0)) return 0;
    if (c >= 1) return 1;
    if (c < 0.0031308f) return static_cast<float>(static_cast<double>(c) * 12.92);
    const double third = root<3>(static_cast<double>(c)), twelfth = std::sqrt(std::sqrt(third)), squared = twelfth * twelfth;
    return static_cast<float>(1.055 * squared * squared * twelfth - 0.055); // c to the power 5 / 12
}

uint32_t loadComponent(const uint8_t* at, uint32_t bytes)
{
    uint32_t value = 0;
    std::memcpy(&value, at, bytes);
    return value;
}

float unpackComponent(const PixelFormatInfo& info, const uint8_t* at, uint32_t channel)
{
    uint32_t bits = info.bits, raw = loadComponent(at, bits / 8);
    auto largest = static_cast<float>((uint64_t{1} << bits) - 1);
    auto extended = static_cast<int32_t>(raw << (32 - bits)) >> (32 - bits);
    switch (info.component) {
    case Component::Unorm: return static_cast<float>(raw) / largest;
    case Component::Srgb: return channel == 3 ? static_cast<float>(raw) / largest : fromSrgb(static_cast<float>(raw) / largest);
    case Component::Snorm: return std::max(static_cast<float>(extended) / static_cast<float>((1 << (bits - 1)) - 1), -1.0f);
    case Component::Uint: return asFloat(raw);
    case Component::Sint: return asFloat(static_cast<uint32_t>(extended));
    default: return bits == 16 ? fromHalf(static_cast<uint16_t>(raw)) : asFloat(raw);
    }
}

void packComponent(const PixelFormatInfo& info, float value, uint32_t channel, uint8_t* at)
{
    uint32_t bits = info.bits, raw = 0;
    double largest = static_cast<double>((uint64_t{1} << bits) - 1);
    switch (info.component) {
    case Component::Unorm: raw = toUnorm(value, largest); break;
    case Component::Srgb: raw = toUnorm(channel == 3 ? value : toSrgb(value), largest); break;
    case Component::Snorm: raw = static_cast<uint32_t>(toSnorm(value, (1 << (bits - 1)) - 1)); break;
    case Component::Uint: raw = bits == 32 ? asBits(value) : std::min(asBits(value), static_cast<uint32_t>(largest)); break;
    case Component::Sint: {
        int64_t limit = int64_t{1} << (bits - 1);
        raw = static_cast<uint32_t>(std::clamp<int64_t>(static_cast<int32_t>(asBits(value)), -limit, limit - 1));
        break;
    }
    default: raw = bits == 16 ? toHalf(value) : asBits(value); break;
    }
    std::memcpy(at, &raw, bits / 8);
}

/// Unsigned small floats of RG11B10: five bits of exponent, no sign.
uint32_t toSmallFloat(float value, int mantissaBits)
{
    if (value != value) return (31u << mantissaBits) | 1;
    if (value <= 0) return 0;
    uint32_t half = toHalf(value);
    uint32_t drop = static_cast<uint32_t>(10 - mantissaBits), round = (1u << (drop - 1)) - 1 + ((half >> drop) & 1);
    uint32_t rounded = half >= 0x7C00 ? half >> drop : std::min((half + round) >> drop, (31u << mantissaBits));
    return rounded;
}

float fromSmallFloat(uint32_t bits, int mantissaBits) { return fromHalf(static_cast<uint16_t>(bits << (10 - mantissaBits))); }

void unpackPacked(uint32_t format, uint32_t raw, float* rgba)
{
    if (format == Rgb10A2) {
        for (int i = 0; i < 3; ++i) rgba[i] = static_cast<float>((raw >> (10 * i)) & 1023) / 1023.0f;
        rgba[3] = static_cast<float>(raw >> 30) / 3.0f;
    } else if (format == Rg11B10) {
        rgba[0] = fromSmallFloat(raw & 2047, 6);
        rgba[1] = fromSmallFloat((raw >> 11) & 2047, 6);
        rgba[2] = fromSmallFloat(raw >> 22, 5);
    } else if (format == Rgb9E5) {
        auto scale = static_cast<float>(std::ldexp(1.0, static_cast<int>(raw >> 27) - 24));
        for (int i = 0; i < 3; ++i) rgba[i] = static_cast<float>((raw >> (9 * i)) & 511) * scale;
    }
}

uint32_t packSharedExponent(const float* rgba)
{
    constexpr float Most = 65408.0f;
    float c[3], largest = 0;
    for (int i = 0; i < 3; ++i) {
        c[i] = rgba[i] > 0 ? std::min(rgba[i], Most) : 0.0f;
        largest = std::max(largest, c[i]);
    }
    int exponent = largest > 0 ? std::max(-16, std::ilogb(largest)) + 16 : 0;
    if (std::floor(std::ldexp(largest, 24 - exponent) + 0.5) >= 512) ++exponent;
    uint32_t raw = static_cast<uint32_t>(exponent) << 27;
    for (int i = 0; i < 3; ++i) raw |= static_cast<uint32_t>(std::floor(std::ldexp(c[i], 24 - exponent) + 0.5)) << (9 * i);
    return raw;
}

uint32_t packPacked(uint32_t format, const float* rgba)
{
    if (format == Rgb10A2)
        return toUnorm(rgba[0], 1023) | toUnorm(rgba[1], 1023) << 10 | toUnorm(rgba[2], 1023) << 20 | toUnorm(rgba[3], 3) << 30;
    if (format == Rg11B10) return toSmallFloat(rgba[0], 6) | toSmallFloat(rgba[1], 6) << 11 | toSmallFloat(rgba[2], 5) << 22;
    return format == Rgb9E5 ? packSharedExponent(rgba) : 0;
}

} // namespace

const PixelFormatInfo* pixelFormatInfo(uint32_t format)
{
    return format <= Largest && Index[format] != 0 ? &PixelFormatTable[Index[format] - 1u] : nullptr;
}

void unpack(const PixelFormatInfo& info, const uint8_t* texel, float* rgba)
{
    bool integer = info.component == Component::Uint || info.component == Component::Sint;
    rgba[0] = rgba[1] = rgba[2] = 0;
    rgba[3] = integer ? asFloat(1) : 1.0f;
    if (info.hasDepth) {
        rgba[0] = unpackDepth(info.format, texel);
    } else if (info.component == Component::Packed) {
        unpackPacked(info.format, loadComponent(texel, 4), rgba);
    } else if (info.alphaOnly) {
        rgba[3] = unpackComponent(info, texel, 3);
    } else {
        uint32_t bytes = info.bits / 8u;
        for (uint32_t i = 0; i < info.channels; ++i) rgba[info.bgra && i < 3 ? 2 - i : i] = unpackComponent(info, texel + i * bytes, i);
    }
}

void pack(const PixelFormatInfo& info, const float* rgba, uint8_t* texel)
{
    if (info.hasDepth) return packDepth(info.format, rgba[0], texel);
    if (info.component == Component::Packed) {
        uint32_t raw = packPacked(info.format, rgba);
        std::memcpy(texel, &raw, 4);
        return;
    }
    if (info.alphaOnly) return packComponent(info, rgba[3], 3, texel);
    uint32_t bytes = info.bits / 8u;
    for (uint32_t i = 0; i < info.channels; ++i) packComponent(info, rgba[info.bgra && i < 3 ? 2 - i : i], i, texel + i * bytes);
}

float unpackDepth(uint32_t format, const uint8_t* texel)
{
    switch (format) {
    case Depth16: return static_cast<float>(loadComponent(texel, 2)) / 65535.0f;
    case Depth24Stencil8: return static_cast<float>(static_cast<double>(loadComponent(texel, 4) & 0xFFFFFF) / 16777215.0);
    default: return asFloat(loadComponent(texel, 4));
    }
}

void packDepth(uint32_t format, float depth, uint8_t* texel)
{
    uint32_t raw = asBits(depth);
    if (format == Depth16) {
        raw = toUnorm(depth, 65535);
        std::memcpy(texel, &raw, 2);
    } else if (format == Depth24Stencil8) {
        raw = (loadComponent(texel, 4) & 0xFF000000) | toUnorm(depth, 16777215);
        std::memcpy(texel, &raw, 4);
    } else if (format == Depth32 || format == Depth32Stencil8) {
        std::memcpy(texel, &raw, 4);
    }
}

uint8_t unpackStencil(uint32_t format, const uint8_t* texel)
{
    switch (format) {
    case Stencil8: return texel[0];
    case Depth24Stencil8: return texel[3];
    case Depth32Stencil8: return texel[4];
    default: return 0;
    }
}

void packStencil(uint32_t format, uint8_t stencil, uint8_t* texel)
{
    if (format == Stencil8) texel[0] = stencil;
    if (format == Depth24Stencil8) texel[3] = stencil;
    if (format == Depth32Stencil8) texel[4] = stencil;
}

uint16_t toHalf(float value)
{
    uint32_t bits = asBits(value), sign = (bits >> 16) & 0x8000, magnitude = bits & 0x7FFFFFFF;
    if (magnitude > 0x7F800000) return static_cast<uint16_t>(sign | 0x7E00);
    if (magnitude >= 0x477FF000) return static_cast<uint16_t>(sign | 0x7C00); // rounds to infinity
    if (magnitude < 0x38800000) { // below the normal halves: let the float adder round at 2^-24
        float shifted = asFloat(magnitude) + 0.5f;
        return static_cast<uint16_t>(sign | (asBits(shifted) - 0x3F000000));
    }
    uint32_t rounded = magnitude + 0xFFF + ((magnitude >> 13) & 1);
    return static_cast<uint16_t>(sign | ((rounded - 0x38000000) >> 13));
}

float fromHalf(uint16_t half)
{
    uint32_t sign = static_cast<uint32_t>(half & 0x8000) << 16, magnitude = half & 0x7FFFu;
    if (magnitude >= 0x7C00) return asFloat(sign | 0x7F800000 | (magnitude & 0x3FF) << 13);
    if (magnitude >= 0x400) return asFloat(sign | ((magnitude << 13) + 0x38000000));
    return asFloat(sign | asBits(static_cast<float>(magnitude) * asFloat(0x33800000))); // times 2^-24
}

} // namespace softmetal::formats
