// SPDX-License-Identifier: Apache-2.0
#include "Probe.h"
#include "foundation/Strings.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace softmetal;

namespace {

TEST(ReferenceCount, StartsAtOneAndFollowsRetainAndRelease)
{
    NS::Object* object = api(new Probe);
    EXPECT_EQ(object->retainCount(), 1u);
    EXPECT_EQ(object->retain(), object);
    EXPECT_EQ(object->retainCount(), 2u);
    object->release();
    EXPECT_EQ(object->retainCount(), 1u);
    object->release();
}

TEST(ReferenceCount, LastReleaseEndsTheObjectOnce)
{
    int ends = 0;
    NS::Object* object = api(new Probe([&] { ++ends; }));
    object->retain();
    object->release();
    EXPECT_EQ(ends, 0);
    object->release();
    EXPECT_EQ(ends, 1);
}

TEST(ReferenceCount, IsExactWithSeveralThreads)
{
    NS::Object* object = api(new Probe);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([object] {
            for (int n = 0; n < 10000; ++n)
                object->retain()->release();
        });
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(object->retainCount(), 1u);
    object->release();
}

TEST(ReferenceCount, OfNothingIsZeroAndIgnored)
{
    NS::Private::retain(nullptr);
    NS::Private::release(nullptr);
    NS::Private::autorelease(nullptr);
    EXPECT_EQ(NS::Private::retainCount(nullptr), 0u);
    EXPECT_EQ(NS::Private::copy(nullptr), nullptr);
}

TEST(Cast, GoesFromApiToImplementationAndBack)
{
    auto* probe = new Probe;
    NS::Object* object = api(probe);
    EXPECT_EQ(static_cast<void*>(object), static_cast<Object*>(probe));
    EXPECT_EQ(cast<Probe>(object), probe);
    EXPECT_EQ(cast<Probe>(static_cast<NS::Object*>(nullptr)), nullptr);
    object->release();
}

/// Has another base, and asks for more alignment than new gives by itself.
class alignas(128) Aligned final : public Probe
{
public:
    using Probe::Probe;
    char bytes[256] = {};
};

TEST(Object, KeepsItsClassesAlignmentAndIsFreedAsItWasMade)
{
    int ends = 0;
    auto* aligned = new Aligned([&] { ++ends; });
    EXPECT_EQ(reinterpret_cast<uintptr_t>(aligned) % 128, 0u);
    aligned->release();
    EXPECT_EQ(ends, 1);
}

TEST(Object, DescriptionNamesTheClassAndIdentityIsEquality)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    NS::Object *a = api(new Probe), *b = api(new Probe);
    EXPECT_EQ(std::string(a->description()->utf8String()).rfind("<Probe: 0x", 0), 0u);
    EXPECT_STREQ(a->debugDescription()->utf8String(), a->description()->utf8String());
    EXPECT_TRUE(a->isEqual(a));
    EXPECT_FALSE(a->isEqual(b));
    EXPECT_FALSE(a->isEqual(nullptr));
    EXPECT_EQ(a->hash(), a->hash());
    a->release();
    b->release();
    pool->release();
}

int64_t countOf(const std::string& name)
{
    for (const auto& [known, count] : Object::aliveByClass())
        if (known == name) return count;
    return -1;
}

TEST(Object, AliveCountsAllObjectsAndEachClass)
{
    newString("the class has been used")->release();
    int64_t all = Object::alive(), strings = countOf("NS::String");
    NS::String* text = newString("counted");
    EXPECT_EQ(Object::alive(), all + 1);
    EXPECT_EQ(countOf("NS::String"), strings + 1);
    text->release();
    EXPECT_EQ(Object::alive(), all);
    EXPECT_EQ(countOf("NS::String"), strings);
}

TEST(Object, AnImmortalOneIsNotCountedAndOutlivesEveryRelease)
{
    int64_t before = Object::alive();
    static Probe* immortal = new Probe; // reachable for ever, so that no leak is seen
    immortal->makeImmortal();
    EXPECT_EQ(Object::alive(), before);
    for (int i = 0; i < 100; ++i)
        immortal->release();
    EXPECT_STREQ(immortal->className(), "Probe");
}

TEST(Ref, HoldsAReferenceAndGivesItBack)
{
    auto* probe = new Probe;
    {
        Ref<Probe> first(probe), second = first;
        EXPECT_EQ(probe->retainCount(), 3u);
        Ref<Probe> third = std::move(second);
        EXPECT_EQ(probe->retainCount(), 3u);
        EXPECT_FALSE(second);
        first = Ref<Probe>();
        EXPECT_EQ(probe->retainCount(), 2u);
    }
    EXPECT_EQ(probe->retainCount(), 1u);
    EXPECT_EQ(Ref<Probe>::adopt(probe).detach(), probe);
    EXPECT_EQ(probe->retainCount(), 1u);
    probe->release();
}

TEST(Ref, AssigningItselfKeepsTheObject)
{
    Ref<Probe> ref = Ref<Probe>::adopt(new Probe);
    ref = *&ref;
    EXPECT_EQ(ref->retainCount(), 1u);
}

TEST(Copy, OfAnImmutableObjectIsAnotherReferenceToIt)
{
    NS::String* text = newString("same");
    NS::String* copy = text->copy();
    EXPECT_EQ(copy, text);
    EXPECT_EQ(text->retainCount(), 2u);
    copy->release();
    text->release();
}

} // namespace
