// SPDX-License-Identifier: Apache-2.0
// Runs a built program and keeps what it wrote: for tests of command lines.
#pragma once

#include <cstdio>
#include <string>

#include <sys/wait.h>

namespace support {

struct ProgramResult
{
    int status = -1;    // the exit status; -1 when a signal ended it
    std::string output; // standard output and standard error
};

/// The command goes through the shell: quote what needs it.
inline ProgramResult runProgram(const std::string& command)
{
    ProgramResult result;
    FILE* pipe = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    if (!pipe) return result;
    char buffer[4096];
    while (size_t count = std::fread(buffer, 1, sizeof buffer, pipe)) result.output.append(buffer, count);
    int status = pclose(pipe);
    if (WIFEXITED(status)) result.status = WEXITSTATUS(status);
    return result;
}

} // namespace support
