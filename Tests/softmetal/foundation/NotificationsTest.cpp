// SPDX-License-Identifier: Apache-2.0
#include <AppKit/AppKit.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

CFNotificationCenterRef center() { return CFNotificationCenterGetLocalCenter(); }

/// Adds a letter for each call, and remembers the last one's arguments.
struct Listener
{
    explicit Listener(char c) : letter(c) {}
    ~Listener() { CFNotificationCenterRemoveEveryObserver(center(), this); }

    void observe(CFStringRef name, const void* object)
    {
        CFNotificationCenterAddObserver(center(), this, &Listener::hear, name, object,
                                        CFNotificationSuspensionBehaviorDeliverImmediately);
    }
    static void hear(CFNotificationCenterRef from, void* observer, CFNotificationName name, const void* object,
                     CFDictionaryRef info)
    {
        auto& self = *static_cast<Listener*>(observer);
        heard += self.letter;
        self.last = {from, name, object, info};
        if (self.removes) CFNotificationCenterRemoveEveryObserver(center(), self.removes);
        if (self.adds) self.adds->observe(name, nullptr);
    }

    struct Arguments
    {
        CFNotificationCenterRef from;
        CFNotificationName name;
        const void* object;
        CFDictionaryRef info;
    };
    static std::string heard;
    char letter;
    Arguments last = {};
    Listener *removes = nullptr, *adds = nullptr;
};
std::string Listener::heard;

class Notifications : public testing::Test
{
protected:
    void SetUp() override { Listener::heard.clear(); }
    static void post(CFStringRef name, const void* object, CFDictionaryRef info = nullptr)
    {
        CFNotificationCenterPostNotification(center(), name, object, info, true);
    }
    int here = 0, there = 0; // objects, by their addresses
    Listener a{'a'}, b{'b'}, c{'c'};
};

TEST_F(Notifications, ReachTheObserversOfNameAndObject)
{
    a.observe(CFSTR("moved"), &here);
    b.observe(CFSTR("moved"), &there);
    c.observe(CFSTR("resized"), &here);
    post(CFSTR("moved"), &here);
    EXPECT_EQ(Listener::heard, "a");
}

TEST_F(Notifications, NoNameOrObjectMeansAny)
{
    a.observe(CFSTR("moved"), nullptr);
    b.observe(nullptr, &here);
    c.observe(nullptr, nullptr);
    post(CFSTR("moved"), &here);
    EXPECT_EQ(Listener::heard, "abc");
    post(CFSTR("other"), &there);
    EXPECT_EQ(Listener::heard, "abcc");
}

TEST_F(Notifications, HandOnWhatWasPosted)
{
    a.observe(NSViewFrameDidChangeNotification, &here);
    CFDictionaryRef info = reinterpret_cast<CFDictionaryRef>(&there);
    post(NSViewFrameDidChangeNotification, &here, info);
    EXPECT_EQ(a.last.from, center());
    EXPECT_TRUE(CFEqual(a.last.name, CFSTR("NSViewFrameDidChangeNotification")));
    EXPECT_EQ(a.last.object, &here);
    EXPECT_EQ(a.last.info, info);
}

TEST_F(Notifications, NamesAreComparedByText)
{
    CFStringRef name = CFStringCreateWithCString(nullptr, "moved", kCFStringEncodingUTF8);
    a.observe(name, nullptr);
    CFRelease(name);
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "a");
}

TEST_F(Notifications, AreHeardTwiceByAnObserverAddedTwice)
{
    a.observe(CFSTR("moved"), nullptr);
    a.observe(CFSTR("moved"), nullptr);
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "aa");
}

TEST_F(Notifications, RemovingTakesNameAndObjectIntoAccount)
{
    a.observe(CFSTR("moved"), &here);
    a.observe(CFSTR("moved"), &there);
    a.observe(CFSTR("resized"), &here);
    CFNotificationCenterRemoveObserver(center(), &a, CFSTR("moved"), &here);
    post(CFSTR("moved"), &here);
    EXPECT_EQ(Listener::heard, "");
    post(CFSTR("moved"), &there);
    post(CFSTR("resized"), &here);
    EXPECT_EQ(Listener::heard, "aa");
    CFNotificationCenterRemoveObserver(center(), &a, nullptr, nullptr);
    post(CFSTR("moved"), &there);
    EXPECT_EQ(Listener::heard, "aa");
}

TEST_F(Notifications, RemovingAnotherObserverLeavesThisOne)
{
    a.observe(CFSTR("moved"), nullptr);
    b.observe(CFSTR("moved"), nullptr);
    CFNotificationCenterRemoveObserver(center(), &a, CFSTR("moved"), nullptr);
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "b");
}

TEST_F(Notifications, AnObserverRemovedByAnotherBeforeItsTurnHearsNothing)
{
    a.removes = &b;
    a.observe(CFSTR("moved"), nullptr);
    b.observe(CFSTR("moved"), nullptr);
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "a");
}

TEST_F(Notifications, AnObserverAddedByAnotherHearsTheNextOne)
{
    a.adds = &b;
    a.observe(CFSTR("moved"), nullptr);
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "a");
    a.adds = nullptr;
    post(CFSTR("moved"), nullptr);
    EXPECT_EQ(Listener::heard, "aab");
}

TEST_F(Notifications, WithoutANameAreNotPosted)
{
    a.observe(nullptr, nullptr);
    post(nullptr, &here);
    EXPECT_EQ(Listener::heard, "");
}

} // namespace
