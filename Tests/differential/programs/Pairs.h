// SPDX-License-Identifier: Apache-2.0
// A vertex and a fragment program that are drawn together, each with results of its own, for some points with random
// inputs. A pair is made from its number alone, so that two processes agree on it.
#pragma once

#include "differential/programs/Bounds.h"

#include <array>
#include <string>
#include <vector>

namespace differential
{

constexpr int PointsPerPair = 16, ColorsPerPoint = 2 * RandomProgram::Results;
constexpr float Untouched = -12345; // what a pixel holds that nothing was drawn to

struct Pair
{
    RandomProgram vertex, fragment;
    std::array<Inputs, PointsPerPair> points; // the locals of all are those of the first
};

Pair pairOf(uint32_t number);

/// The vertex program hands its inputs on in texture coordinates 0 to 3 and its results in 4 to 7; the fragment
/// program's results are colours 0 to 3, and the vertex program's come out as colours 4 to 7.
std::string vertexTextOf(const RandomProgram& program);
std::string fragmentTextOf(const RandomProgram& program);
/// The same from a text for the statements, whose temporaries have this name; a header may name another profile, and
/// declarations go before the first statement.
struct Writing
{
    std::string header, declarations, body;
    const char* name = "R";
};
std::string written(Kind kind, const Writing& writing);

/// What was drawn for a pair: colour by point and buffer.
using Drawn = std::array<std::array<std::array<float, 4>, ColorsPerPoint>, PointsPerPair>;

} // namespace differential
