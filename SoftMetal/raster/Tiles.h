// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raster/Primitives.h"

namespace softmetal::raster
{

/// A triangle of a draw, as bins hold it: by numbers.
struct Binned
{
    uint32_t draw, triangle;
};

/// Pixels of one tile, exclusive at the high ends.
struct TileArea
{
    uint32_t x0, y0, x1, y1;
};

/// What the depth buffer may hold, for each block of a tile. It need not be tight: blocks that surely fail are not
/// looked at.
struct DepthRanges
{
    static constexpr uint32_t Block = 8, Count = (TileSize / Block) * (TileSize / Block);
    float least[Count], most[Count];
    bool known; // every depth is a number: the tile was cleared

    DepthRanges();
};

/// Whether the pass has a load action that writes.
bool clears(const PassDescription& pass);

/// Applies the pass's load actions to a tile.
void clearTile(const PassDescription& pass, const TileArea& area, DepthRanges& ranges);

/// Notes of a draw what it hides in this pass, and what must be there for something to hide it.
void noteHiding(const PassDescription& pass, Draw& draw);

/// Whether the triangle covers every pixel of the tile.
bool covers(const Triangle& triangle, const TileArea& area);

/// Draws the triangles in order into a tile. passedSamples counts visible pixels for each occlusion slot.
void drawTile(const PassDescription& pass, const TileArea& area, DepthRanges& ranges, const Draw* draws,
              const std::vector<Binned>& triangles);

} // namespace softmetal::raster
