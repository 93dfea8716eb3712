// SPDX-License-Identifier: Apache-2.0
// What the library says: levels, the host's callback, lines that repeat, command buffers that fail.
#include "contexts/Logged.h"
#include "drawing/Drawing.h"

#include <algorithm>
#include <cstdlib>

namespace
{

using namespace drawing;

struct Line
{
    int level;
    std::string text;
    bool operator==(const Line&) const = default;
};

std::vector<Line> g_lines;
int g_user = 0;

void receive(int level, const char* message, void* user)
{
    EXPECT_EQ(user, &g_user);
    g_lines.push_back({level, message});
}

class Log : public DrawTest
{
protected:
    void SetUp() override
    {
        DrawTest::SetUp();
        ZALMetalSetLogLevel(ZALMetalLogLevelInfo);
        ZALMetalSetLogCallback(receive, &g_user);
        g_lines.clear();
    }

    void TearDown() override
    {
        ZALMetalSetLogCallback(nullptr, nullptr);
        ZALMetalSetLogLevel(ZALMetalLogLevelInfo);
        SoftMetal::clearFaults();
        DrawTest::TearDown();
    }

    /// Makes the next draw need a pipeline that there was not before.
    void changePipeline()
    {
        constexpr GLenum FirstFactor = GL_SRC_COLOR, Factors = 8;
        glEnable(GL_BLEND);
        glBlendFunc(FirstFactor + pipelines_ / Factors, FirstFactor + pipelines_ % Factors);
        ++pipelines_;
    }

    /// A draw whose pipeline cannot be built, which is said with the same words each time.
    void failOnce()
    {
        changePipeline();
        SoftMetal::injectFault("newRenderPipelineState", 1, false);
        draw();
    }

    static bool said(const std::string& part)
    {
        return std::any_of(g_lines.begin(), g_lines.end(),
                           [&](const Line& line) { return line.text.find(part) != std::string::npos; });
    }

private:
    GLenum pipelines_ = 0;
};

TEST_F(Log, ALongLineIsSaidWhole)
{
    const std::string name(3000, 'x'), program = "!!ARBfp1.0\nMOV result.color, |" + name + ";\nEND\n";
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, program), InvalidOperation);
    EXPECT_TRUE(said(name));
}

TEST_F(Log, TheHostsCallbackReceivesLinesInsteadOfTheSystemsLog)
{
    contexts::Logged system;
    failOnce();
    ASSERT_EQ(g_lines.size(), 1u);
    EXPECT_EQ(g_lines[0].level, ZALMetalLogLevelError);
    EXPECT_EQ(g_lines[0].text.rfind("buildMtlPipelineState, Failed to create pipeline state, error ", 0), 0u);
    EXPECT_TRUE(system.take().empty());

    ZALMetalSetLogCallback(nullptr, nullptr);
    failOnce();
    EXPECT_EQ(g_lines.size(), 1u);
    EXPECT_EQ(system.take().size(), 1u);
}

TEST_F(Log, LinesAboveTheLevelAreNotSaid)
{
    ZALMetalSetLogLevel(ZALMetalLogLevelNone);
    failOnce();
    EXPECT_TRUE(g_lines.empty());
    ZALMetalSetLogLevel(ZALMetalLogLevelError);
    failOnce();
    EXPECT_EQ(g_lines.size(), 1u);
}

TEST_F(Log, TheChoiceOfADeviceIsInformation)
{
    for (auto [level, lines] : {std::pair(ZALMetalLogLevelWarn, size_t(0)), std::pair(ZALMetalLogLevelInfo, size_t(2))})
    {
        ZALMetalSetLogLevel(level);
        g_lines.clear();
        ZALMetalContext* other = nullptr;
        ASSERT_EQ(ZALMetalContextInitFromMTLCommandQueue(other, nullptr, nullptr), 0);
        EXPECT_EQ(g_lines.size(), lines);
        ZALMetalContextDestroy(other);
        ZALMetalContextMakeCurrent(context);
    }
    EXPECT_EQ(g_lines[0], (Line{ZALMetalLogLevelInfo, "ZAL Metal, selecting the system default device."}));
}

TEST_F(Log, PipelinesAreDebugLines)
{
    draw();
    EXPECT_TRUE(g_lines.empty());
    ZALMetalSetLogLevel(99); // as high as it goes
    changePipeline();
    draw();
    EXPECT_TRUE(said("a pipeline state was built in "));
}

TEST_F(Log, ARepeatedLineIsSaidTenTimesAndCounted)
{
    ZALMetalCounters before = {}, after = {};
    ZALMetalGetCounters(&before, sizeof before);
    for (int i = 0; i < 25; ++i)
        failOnce();
    ZALMetalGetCounters(&after, sizeof after);
    ASSERT_EQ(g_lines.size(), 11u);
    EXPECT_TRUE(
        std::all_of(g_lines.begin(), g_lines.begin() + 10, [](const Line& line) { return line == g_lines[0]; }));
    EXPECT_EQ(g_lines[10].text, "ZAL Metal, the line before has been said 10 times and is only counted from now on.");
    EXPECT_EQ(after.messagesDropped - before.messagesDropped, 15u);

    ZALMetalSetLogLevel(ZALMetalLogLevelInfo); // begins anew
    failOnce();
    EXPECT_EQ(g_lines.size(), 12u);
}

TEST_F(Log, AFailedCommandBufferIsReportedAndTheNextFrameDraws)
{
    SoftMetal::injectFault("commit", 1, false);
    draw();
    glFinish();
    EXPECT_TRUE(said("ZAL Metal, a command buffer failed, error "));
    EXPECT_EQ(g_lines.size(), 1u);
    draw();
    glFinish();
    EXPECT_EQ(g_lines.size(), 1u);
}

TEST_F(Log, AFailureThatNobodyWaitedForIsReportedWithTheNextWork)
{
    SoftMetal::injectFault("commit", 1, false);
    draw();
    glFlush();
    draw();
    glFinish();
    draw();
    glFinish();
    EXPECT_TRUE(said("a command buffer failed"));
    EXPECT_EQ(g_lines.size(), 1u);
}

/// The variable is read with the first line of a process, so that each level needs one of its own.
class LogLevelDeathTest : public testing::Test
{
protected:
    [[noreturn]] static void linesOfAContext(const char* level)
    {
        if (level)
            setenv("ZALMETAL_LOG_LEVEL", level, 1);
        else
            unsetenv("ZALMETAL_LOG_LEVEL");
        ZALMetalSetLogCallback([](int, const char*, void* lines) { ++*static_cast<int*>(lines); }, &g_user);
        ZALMetalContext* made = nullptr;
        ZALMetalContextInitFromMTLCommandQueue(made, nullptr, nullptr);
        std::_Exit(g_user);
    }
};

TEST_F(LogLevelDeathTest, ComesFromTheEnvironment)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_EXIT(linesOfAContext(nullptr), testing::ExitedWithCode(2), "");
    EXPECT_EXIT(linesOfAContext("nonsense"), testing::ExitedWithCode(2), "");
    EXPECT_EXIT(linesOfAContext("info"), testing::ExitedWithCode(2), "");
    EXPECT_EXIT(linesOfAContext("error"), testing::ExitedWithCode(0), "");
    EXPECT_EXIT(linesOfAContext("none"), testing::ExitedWithCode(0), "");
}

} // namespace
