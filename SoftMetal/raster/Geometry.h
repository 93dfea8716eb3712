// SPDX-License-Identifier: Apache-2.0
// The loops over vertices and triangles, compiled for each set of vector instructions.
#pragma once

#include "formats/VertexFormat.h"
#include "raster/Primitives.h"

namespace softmetal::raster
{

// ---- vertices into lanes -------------------------------------------------------------------------------------------

/// How an attribute's bytes become words. General goes through the formats room, value by value.
enum class FetchKind : uint8_t
{
    Zeros,
    Float1,
    Float2,
    Float3,
    Float4,
    Bytes4,
    General
};

/// How one attribute is fetched for a draw.
struct Fetch
{
    uint32_t attribute;
    formats::VertexFormatInfo format;
    const uint8_t* data;
    uint64_t bytes, stride;
    uint8_t step;
    uint32_t rate;
    bool asFloat;
    bool checked; // vertices behind indices: what an encoder cannot know
    bool inside;  // every element that the draw names lies within bytes
    FetchKind kind;
};

// ---- vertices on the screen ----------------------------------------------------------------------------------------

/// A shaded vertex as assembly needs it.
struct ScreenVertex
{
    int32_t x, y;    // sub-pixel units; anything when hard
    uint32_t behind; // bit n: behind clip plane n; Hard
    uint32_t reserved;
};

/// The vertex is cut off, not a number, or not for the quick way for another reason.
inline constexpr uint32_t Hard = 1u << 31;
inline constexpr uint32_t FixedPlanes = 7; // the eye, near, far and the four sides; a program's own follow
inline constexpr uint8_t Perspective = 0, Linear = 1, Flat = 2;

/// What a plane is made from.
struct PlaneSource
{
    uint32_t component; // of the vertex function
    uint8_t kind;       // Perspective, Linear or Flat
    bool missing;       // the vertex function has no such output: zeros
};

/// What all vertices of a draw share.
struct Projection
{
    double viewport[6];
    double reachX, reachY; // of the guard band, in w
    bool depthClips, hard; // hard: every vertex is
    uint32_t clipComponent, clipDistances;
    const PlaneSource* sources;
    uint32_t sourceCount, valuesEach;
};

// ---- triangles -----------------------------------------------------------------------------------------------------

using DepthBias = float (*)(const DrawState& state, uint32_t depthFormat, const abi::Plane& depth, double farthest);

inline constexpr uint32_t BatchOfValues = 8;

/// Corners of triangles, three each, and what their set-up needs.
struct Assembly
{
    const Projection* projection;
    const ScreenVertex* vertices;
    uint32_t vertexCount;
    const abi::Lanes* outputs; // of the vertex function: those of batch b from b * components on
    uint32_t components, lanes;
    double* values; // of vertex v from v * valuesEach: depth, 1/w, inputs over w where they are perspective
    uint8_t* made;  // of each BatchOfValues vertices: whether their values are there
    bool anyFlat;
    const uint32_t* corners;
    uint32_t count, firstId;
    int32_t minX, minY, maxX, maxY;
    bool keepsClockwise, keepsCounter, clockwiseFront;
    DepthBias bias; // null: none
    uint32_t depthFormat;
};

struct Geometry
{
    /// Words of an attribute for count vertices (at least one); the lanes above repeat the last.
    void (*fetch)(const Fetch& fetch, const uint32_t* ids, uint32_t count, uint32_t width, abi::Lanes* words);
    /// Projects a batch of vertices, from the vertex function's outputs.
    void (*project)(const Projection& p, const abi::Lanes* outputs, uint32_t count, ScreenVertex* vertices);
    /// Sets triangles up from number first on; the number of the first that is hard, else count.
    uint32_t (*assemble)(const Assembly& a, uint32_t first, const Draw& draw);
};

namespace base
{
extern const Geometry geometry;
}
namespace avx2
{
extern const Geometry geometry;
}
namespace avx512
{
extern const Geometry geometry;
}

const Geometry& geometry();

} // namespace softmetal::raster
