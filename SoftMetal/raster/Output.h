// SPDX-License-Identifier: Apache-2.0
// What happens to a batch of pixels before and after shading: depth and stencil tests, blending, stores.
#pragma once

#include "raster/Pass.h"

namespace softmetal::raster {

/// Addresses of the pixels of one batch in one attachment; null where nothing is attached.
struct PixelRows
{
    uint8_t* row[2] = {nullptr, nullptr}; // the batch's upper and lower row, at its first pixel
};

/// Where lane i lies within its batch: quads side by side.
inline constexpr uint32_t laneX(uint32_t lane) { return (lane >> 2) * 2 + (lane & 1); }
inline constexpr uint32_t laneY(uint32_t lane) { return lane >> 1 & 1; }

/// What a depth buffer would hold for this depth: the comparison is made at its precision.
float asStored(uint32_t format, float depth);

/// Tests the lanes of the mask against depth and stencil, updates both, and returns the lanes that pass. references are
/// the stencil reference values of the lanes, null where the encoder's stands for all.
uint32_t testDepthStencil(const DrawState& state, bool frontFacing, const Target& depth, const PixelRows& depthRows,
                          const Target& stencil, const PixelRows& stencilRows, const float* z,
                          const uint32_t* references, uint32_t mask);

/// Blends and stores one attachment's lanes.
void storeColor(const DrawState& state, uint32_t attachment, const Target& target, const PixelRows& rows, const abi::Lanes* color, uint32_t mask);

} // namespace softmetal::raster
