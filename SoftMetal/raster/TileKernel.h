// SPDX-License-Identifier: Apache-2.0
// The walk over one tile's triangles, compiled for each set of vector instructions and each lane count.
#pragma once

#include "raster/Tiles.h"

#include <cstddef>

namespace softmetal::raster {

using DrawTile = void (*)(const PassDescription&, const TileArea&, DepthRanges&, const Draw* draws, const Binned*, size_t count);

namespace base {
DrawTile drawTileFor(uint32_t lanes);
}
namespace avx2 {
DrawTile drawTileFor(uint32_t lanes);
}
namespace avx512 {
DrawTile drawTileFor(uint32_t lanes);
}

} // namespace softmetal::raster
