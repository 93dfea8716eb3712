// SPDX-License-Identifier: Apache-2.0
// Finished pictures as bytes: for callers that look at them and for screens.
#pragma once

#include "shader/abi.h"

#include <cstddef>
#include <cstdint>

namespace softmetal
{

/// All pixels of level 0 in another format, rows from the top, `pitch` bytes apart.
void copyPixels(const abi::Texture& from, uint32_t format, uint8_t* to, size_t pitch);

/// The same for a screen that shows eight bits each of blue, green and red, and a byte that it passes over. What an
/// sRGB format stores goes out as it is: a screen expects encoded values.
void copyForScreen(const abi::Texture& from, uint8_t* to, size_t pitch);

} // namespace softmetal
