// SPDX-License-Identifier: Apache-2.0
// Pairs of random programs through both libraries, and whether each result lies within the bound of what it must be.
#pragma once

#include "differential/programs/Pairs.h"

#include <cstdint>
#include <string>
#include <vector>

namespace differential
{

/// Bounds for this library on its device, and for Mesa, whose functions are less exact.
constexpr Exactness Ours = {0.5, 1, 1, 1e-7, 2e-7};
constexpr Exactness Theirs = {1, 2, 4, 2e-6, 4e-7};

struct Judgement
{
    uint64_t values = 0;             // components of results of points that were drawn
    uint64_t compared = 0;           // those with a bound that says something
    double ours = 0, theirs = 0;     // the largest distance as a part of its bound
    std::vector<std::string> faults; // a text for each pair with a wrong result, the programs included
};

/// Adds what both libraries drew of one pair.
void judgePair(uint32_t number, const Drawn& ours, const Drawn& theirs, Judgement& judgement);

/// Draws pairs first to first + count - 1 in two processes; files begin with the name in folder.
Judgement judge(uint32_t first, uint32_t count, const std::string& name);

} // namespace differential
