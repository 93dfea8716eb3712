// SPDX-License-Identifier: Apache-2.0
// Triangles that copy a texture's texels, one to a pixel: presenting a picture, reading it in another format. They are
// drawn as rows of memory, with the bits that shading each pixel would give.
#pragma once

#include "raster/Tiles.h"

#include <span>

namespace softmetal::raster
{

/// An edge that passes through the tile: its value at a pixel is origin + x a + y b, counted from the tile's first
/// pixel.
struct Crossing
{
    int32_t a, b, origin;
};

/// The part of a triangle that lies within a tile: pixels of the box where no edge's value is below zero.
struct TriangleArea
{
    const TileArea& tile;
    uint32_t x0, y0, x1, y1;
    std::span<const Crossing> crossings;
};

/// Whether triangles of such a draw may be copies: what the pipeline does, and the formats, allow it.
bool mayCopy(const PassDescription& pass, const DrawState& state);

/// Copies the triangle's part of a tile. False, and nothing is drawn, when it stretches, turns or leaves the texture.
bool copyTexels(const PassDescription& pass, const DrawState& state, const Triangle& triangle, const abi::Plane* planes,
                const TriangleArea& area);

} // namespace softmetal::raster
