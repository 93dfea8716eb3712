// SPDX-License-Identifier: Apache-2.0
// Sampling of the kinds of texture that most shaders use, for all lanes at once; compiled for each set of vector
// instructions. The lane-by-lane code of Sampling.cpp is its twin: it gives the same bits and takes every other kind.
#pragma once

#include "shader/abi.h"

namespace softmetal::texturing {

/// How the texels of a format are read: four bytes, four floats, or with a look at the format.
enum class TexelKind : uint8_t { None, Bytes, Floats, Other };

/// None for the formats that the kernel does not read.
TexelKind texelKind(uint32_t format);

/// What a call comes to once texture and sampler are known.
struct SampleJob
{
    const abi::Texture* texture;
    const abi::Sampler* sampler;
    uint8_t dimensions;   // 1 to 3
    TexelKind kind;
    uint8_t texelBytes;
    bool needsLod, quads; // whether a level is chosen, and whether from the differences within quads
    float border[4];      // the border's colour as a texel in memory
    uint8_t order[4];     // where the result's channels come from: 0 zero, 1 one, then the channels of memory
};

using SampleLanes = void (*)(const SampleJob&, abi::SampleCall&);

/// The twin: any call, one lane after the other.
void sampleLaneByLane(const abi::Texture& texture, const abi::Sampler& sampler, abi::SampleCall& call);

namespace base {
SampleLanes sampleLanesFor(uint32_t lanes);
}
namespace avx2 {
SampleLanes sampleLanesFor(uint32_t lanes);
}
namespace avx512 {
SampleLanes sampleLanesFor(uint32_t lanes);
}

} // namespace softmetal::texturing
