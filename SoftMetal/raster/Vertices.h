// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raster/Geometry.h"

namespace softmetal::raster
{

/// The vertices a call names, in order, for one instance: where each place of the index list finds its shaded vertex. A
/// vertex that is named again is shaded once. Its memory is used again by the next call.
struct VertexList
{
    Grown<uint32_t> ids;          // distinct vertex numbers, in the order of numbers or of first use
    Grown<uint32_t> places;       // for each index: position in ids, or Restart
    uint32_t least = 0, most = 0; // of ids
    static constexpr uint32_t Restart = 0xFFFFFFFF;
};

void listVertices(const DrawCall& call, VertexList& list);

/// Shaded vertices of one instance. Its memory is used again by the next instance.
struct ShadedVertices
{
    Grown<abi::Lanes> outputs; // of the vertex function: those of batch b from b * components on
    Grown<ScreenVertex> vertices;
    Grown<double> values; // see Assembly, which fills them
    Grown<uint8_t> made;
    uint32_t components = 4, lanes = 16;

    /// All outputs of one vertex; the first four are the clip-space position.
    void copy(uint32_t vertex, float* to) const
    {
        const abi::Lanes* from = outputs.data() + size_t{vertex / lanes} * components;
        for (uint32_t c = 0; c < components; ++c)
            to[c] = from[c].f[vertex % lanes];
    }
};

/// Runs the vertex function for all vertices of the list, spread over the workers, and projects what it returns.
void shade(const DrawState& state, const DrawCall& call, const VertexList& list, uint32_t instance,
           const Projection& projection, ShadedVertices& shaded);

} // namespace softmetal::raster
