// SPDX-License-Identifier: Apache-2.0
// A context that can draw: two programs, a triangle in buffers, a small framebuffer; on both kinds of devices.
#pragma once

#include "programs/Programs.h"

#include <algorithm>

namespace drawing {

using Names = std::vector<std::string>;
using Entries = std::vector<SoftMetal::LogEntry>;

inline constexpr GLenum NoError = GL_NO_ERROR, InvalidEnum = GL_INVALID_ENUM, InvalidValue = GL_INVALID_VALUE, InvalidOperation = GL_INVALID_OPERATION,
                        OutOfMemory = GL_OUT_OF_MEMORY;

class DrawTest : public programs::ProgramTest
{
protected:
    explicit DrawTest(SoftMetal::DeviceOptions options = {}) : ProgramTest(std::move(options)) {}

    void SetUp() override
    {
        ProgramTest::SetUp();
        if (HasFatalFailure()) return;
        load(GL_VERTEX_PROGRAM_ARB, programs::PassVertex);
        load(GL_FRAGMENT_PROGRAM_ARB, programs::PlainFragment);
        setUpTriangle();
        clearLog();
    }

    /// The entries of one call since the last look, in order; the look forgets everything.
    Entries entries(const std::string& call)
    {
        Entries found;
        for (auto& entry : log())
            if (entry.call == call) found.push_back(std::move(entry));
        return found;
    }

    /// Draws and says what went wrong.
    static GLenum error() { return glGetError(); }
    GLenum drawn()
    {
        draw();
        return error();
    }

    /// Whether the last look back shows a draw.
    bool drewNothing()
    {
        auto names = calls();
        return std::none_of(names.begin(), names.end(), [](const std::string& name) { return name.rfind("draw", 0) == 0; });
    }
};

/// Objects that calls of this name have bound, nil left out.
inline size_t boundBy(const Entries& entries, const char* call)
{
    size_t bound = 0;
    for (const auto& entry : entries)
        for (const auto& argument : entry.arguments) bound += entry.call == call && argument.object != nullptr;
    return bound;
}

class Routes : public DrawTest, public testing::WithParamInterface<bool>
{
protected:
    Routes() : DrawTest(GetParam() ? support::intelDevice() : SoftMetal::DeviceOptions()) {}
    static bool isIntel() { return GetParam(); }
};

inline std::string routeName(const testing::TestParamInfo<bool>& info) { return info.param ? "Intel" : "Ordinary"; }

} // namespace drawing
