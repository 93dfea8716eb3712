// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace bench
{

/// One bar: how many times better this library was than the other, with the least and the most that the runs allow.
struct Bar
{
    std::string name;
    double ratio, least, most;
};

/// A picture of ratios as SVG, on a logarithmic scale around 1, with a title and a line about the machine above. Bars
/// without a ratio are left out.
std::string plot(const std::vector<Bar>& bars, const std::string& title, const std::string& machine);

} // namespace bench
