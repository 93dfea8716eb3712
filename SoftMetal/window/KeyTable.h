// SPDX-License-Identifier: Apache-2.0
// X's names of the keys that have no character, and ours.
#pragma once

#include <SoftMetal/SoftMetal.hpp>

#include <array>
#include <cstdint>

namespace softmetal
{

struct KeyRow
{
    uint32_t keysym;
    uint32_t key;
};

inline constexpr std::array<KeyRow, 14> KeyTable = {{
    {0xFF08, SoftMetal::KeyBackspace},
    {0xFF09, SoftMetal::KeyTab},
    {0xFF0D, SoftMetal::KeyReturn},
    {0xFF1B, SoftMetal::KeyEscape},
    {0xFFFF, SoftMetal::KeyDelete},
    {0xFF50, SoftMetal::KeyHome},
    {0xFF51, SoftMetal::KeyLeft},
    {0xFF52, SoftMetal::KeyUp},
    {0xFF53, SoftMetal::KeyRight},
    {0xFF54, SoftMetal::KeyDown},
    {0xFF55, SoftMetal::KeyPageUp},
    {0xFF56, SoftMetal::KeyPageDown},
    {0xFF57, SoftMetal::KeyEnd},
    {0xFF8D, SoftMetal::KeyReturn}, // of the number block
}};

} // namespace softmetal
