// SPDX-License-Identifier: Apache-2.0
// Procedural textures: square, tileable, RGBA8, with all their mip levels.
#pragma once

#include <cstdint>
#include <vector>

namespace scenes {

/// Level 0 first; level i has size >> i pixels a side.
struct Mipmaps
{
    int size = 0;
    std::vector<std::vector<uint8_t>> levels;
};

/// White porcelain with cobalt veins.
Mipmaps glazePattern(int size);

/// Two-tone floor tiles with a thin joint.
Mipmaps tilePattern(int size);

} // namespace scenes
