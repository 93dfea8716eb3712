// SPDX-License-Identifier: Apache-2.0
// The text of a program as the interpreter reads it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace assembly {

struct Line
{
    std::string opcode; // upper case, without "_SAT"
    bool saturates = false;
    std::string operands; // whole, for declarations
    std::vector<std::string> list; // cut at commas outside braces and brackets
};

std::vector<Line> statementsOf(std::string_view program);

/// Cut at commas outside braces and brackets, without blanks at the ends.
std::vector<std::string> cut(std::string_view text);
std::string trimmed(std::string_view text);

} // namespace assembly
