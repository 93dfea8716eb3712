// SPDX-License-Identifier: Apache-2.0
// Copies of texel blocks. Ranges have been checked by the caller.
#pragma once

#include "shader/abi.h"

namespace softmetal::texturing {

struct Block
{
    uint32_t x = 0, y = 0, z = 0, width = 0, height = 0, depth = 1;
};

enum class Aspect : uint8_t { All, Depth, Stencil };

/// Where one sub-image's texel (0, 0, 0) lies.
struct Image
{
    const abi::Texture* texture;
    uint32_t level, slice;
};

void copyTextureToTexture(const Image& from, const Block& block, const Image& to, uint32_t x, uint32_t y, uint32_t z);

/// Rows in memory are rowBytes apart, planes planeBytes. Depth of a packed format is written as 32-bit float (16-bit for
/// Depth16Unorm), stencil as bytes.
void copyTextureToMemory(const Image& from, const Block& block, uint8_t* memory, uint64_t rowBytes, uint64_t planeBytes, Aspect aspect);
void copyMemoryToTexture(const uint8_t* memory, uint64_t rowBytes, uint64_t planeBytes, const Image& to, const Block& block, Aspect aspect);

/// Each level from the one above, by averaging boxes of two texels along every axis.
void generateMipmaps(const abi::Texture& texture);

} // namespace softmetal::texturing
