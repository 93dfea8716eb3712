// SPDX-License-Identifier: Apache-2.0
// The vectors' conversions of halves as functions, one for each lane count and set of instructions.
#pragma once

#include <cstdint>

namespace halves_test
{

using ToHalves = void (*)(const float* from, uint32_t* to);
using FromHalves = void (*)(const uint32_t* from, float* to);

namespace base
{
ToHalves toHalvesFor(uint32_t lanes);
FromHalves fromHalvesFor(uint32_t lanes);
} // namespace base
namespace avx2
{
ToHalves toHalvesFor(uint32_t lanes);
FromHalves fromHalvesFor(uint32_t lanes);
} // namespace avx2
namespace avx512
{
ToHalves toHalvesFor(uint32_t lanes);
FromHalves fromHalvesFor(uint32_t lanes);
} // namespace avx512

} // namespace halves_test
