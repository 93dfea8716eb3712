// SPDX-License-Identifier: Apache-2.0
// What lies between vertex shading and tiles: primitives set up for rasterisation, and the draw they belong to.
#pragma once

#include "raster/Pass.h"

#include <vector>

namespace softmetal::raster {

inline constexpr int SubpixelBits = 8;               // vertex positions snap to 1/256 pixel
inline constexpr int64_t SubpixelScale = 1 << SubpixelBits;
inline constexpr uint32_t TileSize = 64;

/// Half-plane a x + b y + c >= 0, in sub-pixel units; the fill rule is folded into c.
struct Edge
{
    int64_t a, b, c;
};

/// A triangle ready to be walked. planes points to depth, 1/w and the fragment function's inputs, in this order.
struct Triangle
{
    Edge edges[3];
    int32_t minX, minY, maxX, maxY; // pixels, inclusive, within the render area and scissor
    float originX, originY;         // reference point of the planes, pixels
    uint32_t firstPlane;            // index into Draw::planes
    uint32_t primitiveId;
    bool frontFacing;
    bool point;
    float pointX, pointY, pointSize; // of a point: its top left corner and size, pixels
};

/// One draw call, shaded and set up; kept until its tiles are drawn.
struct Draw
{
    DrawState state;
    std::vector<Triangle> triangles;
    std::vector<abi::Plane> planes;
    uint32_t planesEach = 2; // depth, 1/w, inputs
};

/// Shades the vertices of a call, assembles, clips and sets up its primitives. The area is in pixels.
void setUp(const DrawCall& call, uint32_t width, uint32_t height, uint32_t depthFormat, Draw& draw);

uint32_t lanes();

} // namespace softmetal::raster
