// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"

#include "Pool.h"
#include "foundation/Strings.h"

#include <AppKit/AppKit.hpp>

#include <string>
#include <utility>
#include <vector>

using namespace softmetal;

namespace {

/// Keeps what is said.
class Log : public WithPool
{
protected:
    void SetUp() override
    {
        setLogSink([this](LogLevel level, const std::string& line) { said.emplace_back(level, line); });
    }
    void TearDown() override
    {
        setLogSink({});
        setLogLevel(LogLevel::Error);
    }
    std::string last() const { return said.empty() ? "nothing" : said.back().second; }

    std::vector<std::pair<LogLevel, std::string>> said;
};
using NSLogFormat = Log;

TEST_F(Log, DropsWhatIsAboveTheLevel)
{
    setLogLevel(LogLevel::Warn);
    log(LogLevel::Error, "e");
    log(LogLevel::Warn, "w");
    log(LogLevel::Info, "i");
    log(LogLevel::Debug, "d");
    ASSERT_EQ(said.size(), 2u);
    EXPECT_EQ(said[1], std::pair(LogLevel::Warn, std::string("w")));
}

TEST_F(Log, NSLogLinesPassAtEveryLevel)
{
    setLogLevel(LogLevel::None);
    log(LogLevel::Error, "dropped");
    NSLog("passed");
    ASSERT_EQ(said.size(), 1u);
    EXPECT_EQ(said[0], std::pair(LogLevel::None, std::string("passed")));
}

TEST_F(Log, ASinkMayLog)
{
    std::string inner;
    setLogSink([&](LogLevel level, const std::string& line) {
        inner += line;
        if (level == LogLevel::Error) logAlways("!");
    });
    log(LogLevel::Error, "again");
    EXPECT_EQ(inner, "again!");
}

TEST_F(Log, WithoutASinkALineGoesToStandardError)
{
    setLogSink({});
    testing::internal::CaptureStderr();
    NSLog("line %d", 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "line 1\n");
}

TEST_F(NSLogFormat, ObjectsAreDescribed)
{
    NSLog("error %@, text %@, nothing %@.", newError("D", 1, "m")->autorelease(), text("t"), static_cast<NS::Object*>(nullptr));
    EXPECT_EQ(last(), "error Error Domain=D Code=1 \"m\", text t, nothing (null).");
}

TEST_F(NSLogFormat, TextTakesWidthAndPrecision)
{
    NSLog("[%s][%5s][%-5s][%.2s][%.*s][%*s]", "abc", "abc", "abc", "abc", 1, "abc", 4, "abc");
    EXPECT_EQ(last(), "[abc][  abc][abc  ][ab][a][ abc]");
    const char* none = nullptr;
    NSLog("%s", none);
    EXPECT_EQ(last(), "(null)");
    NSLog("%s!", std::string(1000, 'x').c_str());
    EXPECT_EQ(last(), std::string(1000, 'x') + "!");
}

TEST_F(NSLogFormat, IntegersOfEveryLength)
{
    NSLog("%d %i %u %o %x %X", -1, 2, 3u, 8u, 255u, 255u);
    EXPECT_EQ(last(), "-1 2 3 10 ff FF");
    NSLog("%hhd %hd %ld %lld %jd %zu %td %qd", 257, 65537, -1l, INT64_MIN + 0ll, intmax_t(5), size_t(6), ptrdiff_t(-7), 8ll);
    EXPECT_EQ(last(), "1 1 -1 -9223372036854775808 5 6 -7 8");
    NSLog("%hhu %hu %lu %llx", 257, 65537, ~0ul, ~0ull);
    EXPECT_EQ(last(), "1 1 18446744073709551615 ffffffffffffffff");
    NSLog("[%05d][%+d][% d][%-4d][%#x][%.3d]", 42, 42, 42, 42, 255u, 7);
    EXPECT_EQ(last(), "[00042][+42][ 42][42  ][0xff][007]");
}

TEST_F(NSLogFormat, RealNumbersCharactersAndPointers)
{
    NSLog("%f %.1f %g %e %5.1f %Lf", 0.5, 0.25, 1e20, 1.0, 2.0, 3.0L);
    EXPECT_EQ(last(), "0.500000 0.2 1e+20 1.000000e+00   2.0 3.000000");
    NSLog("%c%c %p", 'o', 'k', reinterpret_cast<void*>(0x10));
    EXPECT_EQ(last(), "ok 0x10");
}

TEST_F(NSLogFormat, PercentSignsAndWhatIsNotKnownAreCopied)
{
    NSLog("100%% %y %d", 1);
    EXPECT_EQ(last(), "100% %y 1");
    NSLog("cut off %");
    EXPECT_EQ(last(), "cut off %");
    NSLog("cut off %-5l");
    EXPECT_EQ(last(), "cut off %-5l");
}

} // namespace
