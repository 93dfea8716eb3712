// SPDX-License-Identifier: Apache-2.0
#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.hpp>

#include <gtest/gtest.h>

namespace {

TEST(CoreFoundation, RetainAndReleaseCountTheSameReferences)
{
    NS::String* string = NS::String::alloc()->init("x", NS::UTF8StringEncoding);
    EXPECT_EQ(CFRetain(string), string);
    EXPECT_EQ(CFGetRetainCount(string), 2);
    CFRelease(string);
    EXPECT_EQ(string->retainCount(), 1u);
    string->release();
}

TEST(CoreFoundation, StringsAreFoundationsStrings)
{
    CFStringRef string = CFStringCreateWithCString(nullptr, "caf\xE9", kCFStringEncodingISOLatin1);
    EXPECT_STREQ(reinterpret_cast<const NS::String*>(string)->utf8String(), "caf\xC3\xA9");
    EXPECT_EQ(CFStringGetLength(string), 4);
    EXPECT_STREQ(CFStringGetCStringPtr(string, kCFStringEncodingUTF8), "caf\xC3\xA9");
    EXPECT_EQ(CFStringGetCStringPtr(string, kCFStringEncodingISOLatin1), nullptr);
    EXPECT_EQ(CFStringGetCStringPtr(string, kCFStringEncodingASCII), nullptr);
    CFRelease(string);
}

TEST(CoreFoundation, RefusesInvalidTextAndUnknownEncodings)
{
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "\xFF", kCFStringEncodingUTF8), nullptr);
    EXPECT_EQ(CFStringCreateWithCString(nullptr, "x", 0x12345), nullptr);
}

TEST(CoreFoundation, ConstantsAreSharedWithFoundations)
{
    EXPECT_EQ(static_cast<const void*>(CFSTR("shared")), static_cast<const void*>(MTLSTR("shared")));
    EXPECT_TRUE(CFEqual(CFSTR("a"), CFSTR("a")));
    EXPECT_FALSE(CFEqual(CFSTR("a"), CFSTR("b")));
    EXPECT_EQ(CFHash(CFSTR("a")), MTLSTR("a")->hash());
}

TEST(CoreGraphics, MakesAndCompares)
{
    CGRect rect = CGRectMake(1, 2, 3, 4);
    EXPECT_TRUE(CGPointEqualToPoint(rect.origin, CGPointMake(1, 2)));
    EXPECT_TRUE(CGSizeEqualToSize(rect.size, CGSizeMake(3, 4)));
    EXPECT_FALSE(CGRectEqualToRect(rect, CGRectMake(1, 2, 3, 5)));
    EXPECT_FALSE(CGRectEqualToRect(rect, CGRectMake(0, 2, 3, 4)));
}

} // namespace
