// SPDX-License-Identifier: Apache-2.0
#include "Probe.h"
#include "foundation/Log.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using namespace softmetal;

namespace {

NS::AutoreleasePool* newPool() { return NS::AutoreleasePool::alloc()->init(); }

/// An autoreleased object that adds its letter at its end.
NS::Object* letter(std::string& word, char c)
{
    return api(new Probe([&word, c] { word += c; }))->autorelease();
}

TEST(AutoreleasePool, ReleasesTheLastObjectFirst)
{
    std::string ended;
    auto* pool = newPool();
    letter(ended, 'a');
    letter(ended, 'b');
    letter(ended, 'c');
    EXPECT_EQ(ended, "");
    pool->drain();
    EXPECT_EQ(ended, "cba");
}

TEST(AutoreleasePool, ReleaseDrainsAsDrainDoes)
{
    std::string ended;
    auto* pool = newPool();
    letter(ended, 'a');
    pool->release();
    EXPECT_EQ(ended, "a");
}

TEST(AutoreleasePool, TheInnermostTakesTheObject)
{
    std::string ended;
    auto* outer = newPool();
    letter(ended, 'o');
    auto* inner = newPool();
    letter(ended, 'i');
    inner->release();
    EXPECT_EQ(ended, "i");
    letter(ended, 'p');
    outer->release();
    EXPECT_EQ(ended, "ipo");
}

TEST(AutoreleasePool, DrainingTheOuterDrainsTheInnerFirst)
{
    std::string ended;
    auto* outer = newPool();
    letter(ended, 'o');
    newPool();
    letter(ended, 'i');
    newPool();
    letter(ended, 'j');
    outer->drain();
    EXPECT_EQ(ended, "jio");
}

TEST(AutoreleasePool, AnObjectAutoreleasedTwiceIsReleasedTwice)
{
    std::string ended;
    auto* pool = newPool();
    letter(ended, 'a')->retain()->autorelease();
    pool->release();
    EXPECT_EQ(ended, "a");
}

TEST(AutoreleasePool, TakesWhatADestructorAutoreleasesWhileItDrains)
{
    std::string ended;
    auto* pool = newPool();
    api(new Probe([&] { letter(ended, 'l'); }))->autorelease();
    pool->release();
    EXPECT_EQ(ended, "l");
}

TEST(AutoreleasePool, AddObjectTakesAReferenceOverAndIgnoresNothing)
{
    std::string ended;
    auto* pool = newPool();
    pool->addObject(api(new Probe([&] { ended += 'x'; })));
    pool->addObject(nullptr);
    pool->release();
    EXPECT_EQ(ended, "x");
}

TEST(AutoreleasePool, BelongsToItsThread)
{
    std::string mine, theirs;
    auto* pool = newPool();
    letter(mine, 'm');
    std::thread([&] {
        auto* other = newPool();
        letter(theirs, 't');
        other->release();
    }).join();
    EXPECT_EQ(theirs, "t");
    EXPECT_EQ(mine, "");
    pool->release();
    EXPECT_EQ(mine, "m");
}

TEST(AutoreleasePool, LeftOpenIsDrainedWhenTheThreadEnds)
{
    std::string ended;
    std::thread([&] {
        newPool();
        letter(ended, 'a');
        newPool();
        letter(ended, 'b');
    }).join();
    EXPECT_EQ(ended, "ba");
}

TEST(Autorelease, WithNoPoolKeepsTheObjectAndSaysSoAtDebugLevel)
{
    std::string line;
    setLogSink([&](LogLevel, const std::string& text) { line = text; });
    NS::Object* object = api(new Probe);
    object->autorelease();
    EXPECT_EQ(line, "");
    setLogLevel(LogLevel::Debug);
    object->autorelease();
    EXPECT_EQ(line, "Probe was autoreleased with no pool in place; it stays alive");
    setLogLevel(LogLevel::Error);
    setLogSink({});
    EXPECT_EQ(object->retainCount(), 1u);
    object->release();
}

TEST(AutoreleasePool, ShowPoolsSaysHowManyThereAre)
{
    std::string line;
    setLogSink([&](LogLevel, const std::string& text) { line = text; });
    setLogLevel(LogLevel::Info);
    auto *outer = newPool(), *inner = newPool();
    NS::AutoreleasePool::showPools();
    inner->release();
    outer->release();
    setLogLevel(LogLevel::Error);
    setLogSink({});
    EXPECT_EQ(line, "autorelease pools of this thread: 2");
}

} // namespace
