// SPDX-License-Identifier: Apache-2.0
// Sampling of the kinds of texture that most shaders use, for all lanes at once; compiled for each set of vector
// instructions. The lane-by-lane code of Sampling.cpp is its twin: it gives the same bits and takes every other kind.
#pragma once

#include "shader/abi.h"

namespace softmetal::texturing {

/// What a call comes to once texture and sampler are known.
struct SampleJob
{
    const abi::Texture* texture;
    const abi::Sampler* sampler;
    uint8_t dimensions;  // 2 or 3
    bool needsLod, quads; // whether a level is chosen, and whether from the differences within quads
    float border[4];
};

using SampleLanes = void (*)(const SampleJob&, abi::SampleCall&);

/// The formats that the kernel reads.
bool kernelReads(uint32_t format);

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
