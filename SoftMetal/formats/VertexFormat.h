// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace softmetal::formats {

/// What a vertex format is made of; components is 0 for a format that this device does not have.
struct VertexFormatInfo
{
    uint8_t components, componentBytes;
    bool real, isSigned, normalized; // real: float or half
    bool packed;                     // 10-10-10-2, in four bytes
    bool bgra;
    uint32_t bytes() const { return packed ? 4u : static_cast<uint32_t>(components) * componentBytes; }
};

VertexFormatInfo vertexFormatInfo(uint32_t format); // MTL::VertexFormat

/// One attribute as four 32-bit words, missing components (0, 0, 0, 1). Normalised and real formats give floats; integer
/// formats give integers, or floats of the same value when asFloat is set.
void fetch(const VertexFormatInfo& info, const uint8_t* from, bool asFloat, uint32_t* words);

} // namespace softmetal::formats
