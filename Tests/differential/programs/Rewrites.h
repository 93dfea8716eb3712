// SPDX-License-Identifier: Apache-2.0
// Ways to write a program otherwise that must not change one bit of what it computes.
#pragma once

#include "differential/programs/Pairs.h"

#include <ostream>
#include <span>

namespace differential
{

struct Rewrite
{
    const char* name;
    Writing (*write)(const RandomProgram& program, std::mt19937& random);
};

inline void PrintTo(const Rewrite& rewrite, std::ostream* out)
{
    *out << rewrite.name;
}

std::span<const Rewrite> rewrites();

} // namespace differential
