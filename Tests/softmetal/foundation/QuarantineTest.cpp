// SPDX-License-Identifier: Apache-2.0
#include "foundation/Quarantine.h"

#include "Probe.h"
#include "foundation/Log.h"
#include "foundation/Strings.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace softmetal;

namespace {

/// A quarantine of a few objects, and what it says.
class Quarantine : public testing::Test
{
protected:
    void SetUp() override
    {
        quarantine::setSize(4);
        quarantine::setHandler([this](const std::string& sentence) { said.push_back(sentence); });
    }
    void TearDown() override
    {
        quarantine::setHandler({});
        quarantine::setSize(0);
    }
    std::vector<std::string> said;
};

TEST_F(Quarantine, ReportsAReleaseTooMany)
{
    NS::String* text = newString("gone");
    text->release();
    text->release();
    EXPECT_EQ(said, std::vector<std::string>{"release: the NSString has already been released for the last time"});
}

TEST_F(Quarantine, ReportsARetainTooLateEachTime)
{
    NS::String* text = newString("gone");
    text->release();
    text->retain();
    text->retain();
    ASSERT_EQ(said.size(), 2u);
    EXPECT_EQ(said[1], "retain: the NSString has already been released for the last time");
    EXPECT_EQ(text->retainCount(), 0u);
}

TEST_F(Quarantine, CheckTellsReleasedObjectsFromLivingOnes)
{
    NS::String *alive = newString("here"), *dead = newString("gone");
    dead->release();
    EXPECT_TRUE(quarantine::check(alive, "setLabel"));
    EXPECT_TRUE(quarantine::check(nullptr, "setLabel"));
    EXPECT_TRUE(said.empty());
    EXPECT_FALSE(quarantine::check(dead, "setLabel"));
    EXPECT_EQ(said, std::vector<std::string>{"setLabel: the NSString has already been released for the last time"});
    alive->release();
}

TEST_F(Quarantine, EndsTheObjectAtItsLastReleaseAllTheSame)
{
    int ends = 0;
    int64_t before = Object::alive();
    Object* probe = new Probe([&] { ++ends; });
    probe->release();
    EXPECT_EQ(ends, 1);
    EXPECT_EQ(Object::alive(), before);
    EXPECT_TRUE(probe->isReleased());
    EXPECT_STREQ(probe->className(), "released object");
}

TEST_F(Quarantine, KeepsNoMoreThanItsSize)
{
    Object* first = new Probe;
    first->release();
    for (int i = 0; i < 3; ++i)
        (new Probe)->release();
    EXPECT_TRUE(first->isReleased()); // the fourth of four
    quarantine::setSize(0);           // what it held is freed, or the leak checker says so
    (new Probe)->release();
    EXPECT_TRUE(said.empty());
}

TEST_F(Quarantine, WithoutAHandlerTheLogIsTold)
{
    std::vector<std::string> lines;
    quarantine::setHandler({});
    setLogSink([&](LogLevel level, const std::string& line) {
        if (level == LogLevel::Error) lines.push_back(line);
    });
    NS::String* text = newString("gone");
    text->release();
    text->release();
    setLogSink({});
    EXPECT_EQ(lines.size(), 1u);
}

} // namespace
