// SPDX-License-Identifier: Apache-2.0
// What a translated program uses: the draw path binds exactly this.
#pragma once

#include <cstdint>

namespace ZALMetal
{

// Targets of sampled units, as the GL numbers them.
inline constexpr uint32_t kTarget2D = 0x0DE1;
inline constexpr uint32_t kTarget3D = 0x806F;
inline constexpr uint32_t kTargetRectangle = 0x84F5;
inline constexpr uint32_t kTargetCubeMap = 0x8513;

// Filled by a translation, which only adds to it: the owner clears the masks before a program is loaded.
struct ShaderBindings
{
    uint32_t textureUnitMask = 0;     // bit u: unit u is sampled
    uint32_t textureTargets[32] = {}; // GL target per unit; counts only where the unit's bit is set
    uint32_t attributeMask = 0;       // bit i: generic attribute i is read (0 to 15; bit 31 means nothing)
    uint32_t colorMask = 0;           // bit n: colour output n is written (0 to 7)

    // The name of generic attribute `index` in the generated source; null outside 0 to 15.
    static const char* GetAttributeName(int index);
};

} // namespace ZALMetal
