// SPDX-License-Identifier: Apache-2.0
// What lies between vertex shading and tiles: primitives set up for rasterisation, and the draw they belong to.
#pragma once

#include "raster/Grown.h"
#include "raster/Pass.h"

namespace softmetal::raster
{

inline constexpr int SubpixelBits = 8; // vertex positions snap to 1/256 pixel
inline constexpr int64_t SubpixelScale = 1 << SubpixelBits;
inline constexpr uint32_t TileSize = 64;

/// A triangle ready to be walked: clockwise as seen (y runs down), with some area.
struct Triangle
{
    int32_t x[3], y[3];              // corners, sub-pixel units
    uint16_t minX, minY, maxX, maxY; // pixels, inclusive, within the render area and scissor
    float originX, originY;          // reference point of the planes, pixels
    uint32_t firstPlane;             // depth, 1/w, inputs; of points also their corner and size
    uint32_t primitiveId;
    uint32_t frontFacing;
};

/// Triangles of many draws, in order, and their planes. One thread at a time adds to it.
struct Store
{
    Grown<Triangle> triangles;
    Grown<abi::Plane> planes;
};

/// A draw call, or several with one state, shaded and set up; kept until its tiles are drawn.
struct Draw
{
    const DrawState* state;
    Store* store;
    uint32_t planesEach;
    bool points;
    uint32_t hides = 0;           // colours that it replaces wherever it covers
    uint32_t touches = Lasting;   // colours that it changes, or Lasting: it must be drawn, whatever comes over it
    static constexpr uint32_t Lasting = 1u << 31;
};

/// The draw of calls of one kind of primitive.
Draw drawOf(const DrawState& state, uint8_t primitive, Store& store);

/// Shades the vertices of a call, assembles, clips and sets up its primitives behind those that the store has. The area
/// is in pixels.
void setUp(const DrawCall& call, uint32_t width, uint32_t height, uint32_t depthFormat, const Draw& draw);

uint32_t lanes();

} // namespace softmetal::raster
