// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raster/Primitives.h"

namespace softmetal::raster {

/// A triangle of a draw, as bins hold it.
struct Binned
{
    const Draw* draw;
    uint32_t triangle;
};

/// Pixels of one tile, exclusive at the high ends.
struct TileArea
{
    uint32_t x0, y0, x1, y1;
};

/// Whether the pass has a load action that writes.
bool clears(const PassDescription& pass);

/// Applies the pass's load actions to a tile.
void clearTile(const PassDescription& pass, const TileArea& area);

/// Draws the triangles in order into a tile. passedSamples counts visible pixels for each occlusion slot.
void drawTile(const PassDescription& pass, const TileArea& area, const std::vector<Binned>& triangles);

} // namespace softmetal::raster
