// SPDX-License-Identifier: Apache-2.0
// Short ways to a rewriting, for tests.
#pragma once

#include <ZALMetal/ZALMetal.h>

#include <gtest/gtest.h>

#include <string>

namespace normaliser
{

struct Rewritten
{
    int status = 0;
    std::string program;
    std::string message;
};

inline Rewritten rewrite(const std::string& program)
{
    Rewritten result;
    std::string message(1 << 14, '\0');
    size_t needed = 0;
    result.status =
        ZALMetalNormaliseProgram(program.data(), program.size(), nullptr, 0, &needed, message.data(), message.size());
    result.message = message.c_str();
    if (result.status != ZALMetalResultBufferTooSmall) return result;

    std::string out(needed, '\0');
    result.status =
        ZALMetalNormaliseProgram(program.data(), program.size(), out.data(), out.size(), &needed, nullptr, 0);
    result.program = out.c_str();
    return result;
}

/// The rewritten program between header and END, or the message of a failure; rewriting it once more changes nothing.
inline std::string bodyOf(const std::string& header, const std::string& statements)
{
    const Rewritten once = rewrite(header + "\n" + statements + "\nEND\n");
    if (once.status != 0) return "failed: " + once.message;

    const Rewritten twice = rewrite(once.program);
    EXPECT_EQ(twice.program, once.program) << twice.message;

    const std::string start = header + "\n";
    const std::string end = "END\n";
    if (!once.program.starts_with(start) || !once.program.ends_with(end)) return "no frame: " + once.program;
    return once.program.substr(start.size(), once.program.size() - start.size() - end.size());
}

inline std::string vertex(const std::string& statements)
{
    return bodyOf("!!ARBvp1.0", statements);
}

inline std::string fragment(const std::string& statements)
{
    return bodyOf("!!ARBfp1.0", statements);
}

inline std::string fragment4(const std::string& statements)
{
    return bodyOf("!!NVfp4.0", statements);
}

} // namespace normaliser
