// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raster/Pass.h"

#include <vector>

namespace softmetal::raster {

/// Shaded vertices of one instance: components of vertex i at values[i * stride].
struct ShadedVertices
{
    uint32_t stride = 4;
    std::vector<float> values;
    const float* at(uint32_t vertex) const { return values.data() + static_cast<size_t>(vertex) * stride; }
};

/// The vertices a call names, in order, for one instance: where each place of the index list finds its shaded vertex. A
/// vertex that is named again is shaded once.
struct VertexList
{
    std::vector<uint32_t> ids;    // distinct vertex numbers, in order of first use
    std::vector<uint32_t> places; // for each index: position in ids, or Restart
    static constexpr uint32_t Restart = 0xFFFFFFFF;
};

VertexList listVertices(const DrawCall& call);

/// Runs the vertex function for all vertices of the list, spread over the workers.
ShadedVertices shade(const DrawState& state, const DrawCall& call, const VertexList& list, uint32_t instance);

} // namespace softmetal::raster
