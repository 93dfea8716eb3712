// SPDX-License-Identifier: Apache-2.0
// One thing to measure, written against GL's headers only, so that every GL runs the same calls.
#pragma once

#include "Host.h"

#include <chrono>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace bench {

/// Work in progress: set up once, then stepped.
class Run
{
public:
    virtual ~Run() = default;
    /// Does the work once and returns how many units that was. Must leave nothing pending (glFinish).
    virtual double step() = 0;
    /// Draws what the steps draw, once, for the check of the picture. False when the workload has no picture.
    virtual bool picture() { return false; }
};

struct Workload
{
    const char* name;
    const char* unit;     // of the result
    bool perSecond;       // units per second (more is better), else milliseconds per unit (less is better)
    double scale;         // the result is multiplied by this, to get from units to the unit named
    const char* note;     // what it does, and which one thing differs from its baseline
    std::unique_ptr<Run> (*make)(scenes::Host&, std::string& error);
    int width = 1280, height = 720; // of the target
};

/// The table of all workloads.
std::span<const Workload> workloads();

/// Steps the run for at least the time given (after one step to warm up) and returns the result in the workload's unit.
double measure(const Workload& workload, Run& run, std::chrono::duration<double> atLeast);

} // namespace bench
