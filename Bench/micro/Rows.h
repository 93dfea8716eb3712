// SPDX-License-Identifier: Apache-2.0
// What a section of the micro benchmarks measures: named figures with their spread.
#pragma once

#include <string>
#include <vector>

namespace micro
{

struct Row
{
    std::string name;
    const char* unit = "";
    double median = 0;
    double least = 0;
    double most = 0;
};

/// Maps of 10 to 100 000 keys beside the standard library's; templates filled beside a formatting library.
std::vector<Row> foundation();

/// Draws on a device that throws its work away: GL's calls beside the Metal calls that they become, made directly.
std::vector<Row> draws();

/// Setters of GL state, with a value that changes.
std::vector<Row> setters();

/// The translator and the normaliser alone, without a context: microseconds a program at the lengths that programs
/// have, nanoseconds a statement up to lengths that they have not.
std::vector<Row> translation();

} // namespace micro
