// SPDX-License-Identifier: Apache-2.0
// Rewrites a standard assembly program (ARB 1.0, and NV 4.0 where it shares the syntax) into the dialect that the
// translator reads. Only a host or a tool that asks for it gets here: loading a program never rewrites it.
//
// The result means in the dialect what the program means in the standard. Rewriting a result changes nothing more.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ZALMetal
{

// Something in a program that the dialect has no words for, or that is no program.
struct NormaliserFault
{
    int line = 0; // both counted from 1
    int column = 0;
    std::string text; // lower case, no stop
};

// The rewritten program, or every fault found in it; one of the two is empty. Throws std::bad_alloc, nothing else.
std::string NormaliseProgram(std::string_view program, std::vector<NormaliserFault>& faults);

} // namespace ZALMetal
