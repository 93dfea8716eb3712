// SPDX-License-Identifier: Apache-2.0
#include "formats/VertexFormat.h"

#include "formats/PixelFormat.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace softmetal::formats {
namespace {

/// A run of formats with one, or two to four, components that follow one another in the enumeration.
struct Family
{
    uint32_t first; // of the two-component format
    uint32_t single; // of the one-component format
    uint8_t componentBytes;
    bool real, isSigned, normalized;
};

constexpr std::array Families = {
    Family{1, 45, 1, false, false, false}, Family{4, 46, 1, false, true, false},   Family{7, 47, 1, false, false, true},
    Family{10, 48, 1, false, true, true},  Family{13, 49, 2, false, false, false}, Family{16, 50, 2, false, true, false},
    Family{19, 51, 2, false, false, true}, Family{22, 52, 2, false, true, true},   Family{25, 53, 2, true, true, false},
    Family{29, 28, 4, true, true, false},  Family{33, 32, 4, false, true, false},  Family{37, 36, 4, false, false, false},
};

constexpr uint32_t Int1010102 = 40, UInt1010102 = 41, Bgra = 42;

uint32_t asWord(float value) { return std::bit_cast<uint32_t>(value); }

uint32_t component(const VertexFormatInfo& info, const uint8_t* at, bool asFloat)
{
    uint32_t raw = 0, bits = info.componentBytes * 8u;
    std::memcpy(&raw, at, info.componentBytes);
    if (info.real) return bits == 16 ? asWord(fromHalf(static_cast<uint16_t>(raw))) : raw;
    auto extended = static_cast<int32_t>(raw << (32 - bits)) >> (32 - bits);
    if (info.normalized) {
        if (info.isSigned) return asWord(std::max(static_cast<float>(extended) / static_cast<float>((1 << (bits - 1)) - 1), -1.0f));
        return asWord(static_cast<float>(raw) / static_cast<float>((1u << bits) - 1));
    }
    if (asFloat) return asWord(info.isSigned ? static_cast<float>(extended) : static_cast<float>(raw));
    return info.isSigned ? static_cast<uint32_t>(extended) : raw;
}

void fetchPacked(const VertexFormatInfo& info, const uint8_t* from, uint32_t* words)
{
    uint32_t raw = 0;
    std::memcpy(&raw, from, 4);
    for (uint32_t i = 0; i < 4; ++i) {
        uint32_t bits = i == 3 ? 2 : 10, shift = 10 * i, value = (raw >> shift) & ((1u << bits) - 1);
        auto extended = static_cast<int32_t>(value << (32 - bits)) >> (32 - bits);
        words[i] = asWord(info.isSigned ? std::max(static_cast<float>(extended) / static_cast<float>((1 << (bits - 1)) - 1), -1.0f)
                                        : static_cast<float>(value) / static_cast<float>((1u << bits) - 1));
    }
}

} // namespace

VertexFormatInfo vertexFormatInfo(uint32_t format)
{
    if (format == Int1010102 || format == UInt1010102) return {4, 1, false, format == Int1010102, true, true, false};
    if (format == Bgra) return {4, 1, false, false, true, false, true};
    for (const Family& family : Families) {
        if (format == family.single) return {1, family.componentBytes, family.real, family.isSigned, family.normalized, false, false};
        if (format >= family.first && format < family.first + 3)
            return {static_cast<uint8_t>(format - family.first + 2), family.componentBytes, family.real, family.isSigned, family.normalized, false, false};
    }
    return {};
}

void fetch(const VertexFormatInfo& info, const uint8_t* from, bool asFloat, uint32_t* words)
{
    bool floats = info.real || info.normalized || asFloat;
    words[0] = words[1] = words[2] = 0;
    words[3] = floats ? asWord(1.0f) : 1u;
    if (info.packed) return fetchPacked(info, from, words);
    for (uint32_t i = 0; i < info.components; ++i)
        words[info.bgra && i < 3 ? 2 - i : i] = component(info, from + i * info.componentBytes, asFloat);
}

} // namespace softmetal::formats
