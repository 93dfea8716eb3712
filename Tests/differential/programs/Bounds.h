// SPDX-License-Identifier: Apache-2.0
// What a program must compute: each value in double precision with a bound on how far single precision may stray from
// it.
//
// The bound of a statement is what its sources' bounds become plus the opcode's own: a few units in the last place of
// the result, or of the terms that are added up. Where a comparison, a floor or a kill lies within its bound of the
// other outcome, the result takes in both outcomes. Where a function is not continuous (a reciprocal near 0) or a value
// leaves the range where bounds mean something, the bound is infinite and the value is not compared.
#pragma once

#include "differential/programs/RandomProgram.h"

#include <array>
#include <limits>

namespace differential
{

/// How exact a library's functions are. Arithmetic is rounded to nearest in both.
struct Exactness
{
    double reciprocal, root; // RCP, RSQ: units in the last place
    double exponential;      // EX2: units in the last place
    double logarithm;        // LG2: absolute, beside one unit in the last place
    double wave;             // SIN, COS: absolute
};

struct Value
{
    double v = 0;
    double e = 0; // bound of the distance from v; infinite: nothing is known
};

using Vector = std::array<Value, 4>;

struct Inputs
{
    std::array<std::array<float, 4>, RandomProgram::Inputs> attributes{};
    std::array<std::array<float, 4>, RandomProgram::Locals> locals{};
};

enum class Fate : uint8_t
{
    Drawn,
    Killed,
    Either,
};

struct Outcome
{
    std::array<Vector, RandomProgram::Results> results;
    Fate fate = Fate::Drawn;
};

Outcome compute(const RandomProgram& program, const Inputs& inputs, const Exactness& exactness);

} // namespace differential
