// SPDX-License-Identifier: Apache-2.0
// How the micro benchmarks measure: many runs of a piece of work, their median with the least and the most.
#pragma once

#include "micro/Rows.h"

#include <algorithm>
#include <array>
#include <chrono>

namespace micro
{

inline constexpr int TimedRuns = 15;

/// Nanoseconds for one of the units that a call of the work does. The first call is not counted.
template <class Work>
Row timed(std::string name, const char* unit, double unitsPerCall, const Work& work)
{
    using Clock = std::chrono::steady_clock;
    std::array<double, TimedRuns> nanoseconds{};
    work();
    for (double& result : nanoseconds) {
        const auto start = Clock::now();
        work();
        result = std::chrono::duration<double, std::nano>(Clock::now() - start).count() / unitsPerCall;
    }
    std::sort(nanoseconds.begin(), nanoseconds.end());
    return {std::move(name), unit, nanoseconds[TimedRuns / 2], nanoseconds.front(), nanoseconds.back()};
}

/// Keeps a value from being optimised away.
template <class Value>
void keep(const Value& value)
{
    asm volatile("" : : "g"(&value) : "memory");
}

} // namespace micro
