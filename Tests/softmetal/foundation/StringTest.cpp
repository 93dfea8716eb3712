// SPDX-License-Identifier: Apache-2.0
#include "Pool.h"

#include <AppKit/AppKit.hpp>

#include <cstdlib>
#include <cstring>

namespace {

using String = WithPool;

constexpr const char* Mixed = "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80z"; // a, e acute, euro, a face beyond 16 bits, z

TEST_F(String, KeepsItsText)
{
    EXPECT_STREQ(text("hello")->utf8String(), "hello");
    EXPECT_STREQ(NS::String::string()->utf8String(), "");
    EXPECT_STREQ(NS::String::string(text("again"))->utf8String(), "again");
}

TEST_F(String, InitGivesAnOwnedStringWithTheText)
{
    NS::String* a = NS::String::alloc()->init("owned", NS::UTF8StringEncoding);
    NS::String* b = NS::String::alloc()->init(a);
    NS::String* c = NS::String::alloc()->init();
    EXPECT_EQ(a->retainCount(), 1u);
    EXPECT_TRUE(a->isEqualToString(b));
    EXPECT_EQ(c->length(), 0u);
    a->release();
    b->release();
    c->release();
}

TEST_F(String, InitWithBytesTakesLengthAndMayFreeTheBuffer)
{
    auto* bytes = static_cast<char*>(std::malloc(6));
    std::memcpy(bytes, "shorty", 6);
    NS::String* owned = NS::String::alloc()->init(bytes, 5, NS::UTF8StringEncoding, true);
    EXPECT_STREQ(owned->utf8String(), "short");
    owned->release();

    char kept[] = "kept";
    NS::String* copy = NS::String::alloc()->init(kept, 4, NS::UTF8StringEncoding, false);
    kept[0] = 'w';
    EXPECT_STREQ(copy->utf8String(), "kept");
    copy->release();
}

TEST_F(String, LengthAndCharactersCountUtf16Units)
{
    NS::String* mixed = text(Mixed);
    ASSERT_EQ(mixed->length(), 6u);
    const NS::unichar expected[] = {'a', 0xE9, 0x20AC, 0xD83D, 0xDE00, 'z'};
    for (NS::UInteger i = 0; i < 6; ++i)
        EXPECT_EQ(mixed->character(i), expected[i]) << i;
    EXPECT_EQ(mixed->character(6), 0);
}

TEST_F(String, LatinOneIsTranslatedBothWays)
{
    NS::String* latin = NS::String::string("caf\xE9", NS::ISOLatin1StringEncoding);
    EXPECT_STREQ(latin->utf8String(), "caf\xC3\xA9");
    EXPECT_STREQ(latin->cString(NS::ISOLatin1StringEncoding), "caf\xE9");
    EXPECT_EQ(latin->lengthOfBytes(NS::ISOLatin1StringEncoding), 4u);
    EXPECT_EQ(latin->lengthOfBytes(NS::UTF8StringEncoding), 5u);
}

TEST_F(String, GivesNothingWhereTheEncodingLacksACharacter)
{
    EXPECT_EQ(text(Mixed)->cString(NS::ISOLatin1StringEncoding), nullptr);
    EXPECT_EQ(text(Mixed)->cString(NS::ASCIIStringEncoding), nullptr);
    EXPECT_EQ(text(Mixed)->lengthOfBytes(NS::ASCIIStringEncoding), 0u);
    EXPECT_EQ(text("plain")->cString(NS::ShiftJISStringEncoding), nullptr);
    EXPECT_STREQ(text("plain")->cString(NS::ASCIIStringEncoding), "plain");
}

TEST_F(String, MaximumLengthIsEnoughForAnyTextOfThatLength)
{
    EXPECT_EQ(text("abc")->maximumLengthOfBytes(NS::UTF8StringEncoding), 9u);
    EXPECT_EQ(text("abc")->maximumLengthOfBytes(NS::ASCIIStringEncoding), 3u);
}

TEST_F(String, RefusesTextThatIsNotValidInItsEncoding)
{
    const char* const invalid[] = {
        "\x80",             // a continuation byte alone
        "\xC3",             // cut off
        "\xC0\xAF",         // longer than need be
        "\xE0\x80\xAF",     // the same with three bytes
        "\xED\xA0\x80",     // half of a surrogate pair
        "\xF4\x90\x80\x80", // beyond the last code point
        "\xFF",
    };
    for (const char* bytes : invalid)
        EXPECT_EQ(text(bytes), nullptr) << std::strlen(bytes);
    EXPECT_EQ(NS::String::string("\xE9", NS::ASCIIStringEncoding), nullptr);
    EXPECT_EQ(NS::String::string("x", NS::UnicodeStringEncoding), nullptr);
    EXPECT_EQ(text(nullptr), nullptr);
    EXPECT_EQ(NS::String::alloc()->init("\xFF", NS::UTF8StringEncoding), nullptr);
}

TEST_F(String, EqualityIsOfText)
{
    EXPECT_TRUE(text("a")->isEqualToString(text("a")));
    EXPECT_FALSE(text("a")->isEqualToString(text("b")));
    EXPECT_FALSE(text("a")->isEqualToString(nullptr));
    EXPECT_TRUE(text("a")->isEqual(text("a")));
    EXPECT_FALSE(text("1")->isEqual(NS::Number::number(1)));
    EXPECT_EQ(text("a")->hash(), text("a")->hash());
}

TEST_F(String, RangeOfStringFindsTheFirstPlace)
{
    NS::String* string = text("\xC3\xA9 one two one");
    EXPECT_TRUE(string->rangeOfString(text("one"), 0).Equal({2, 3}));
    EXPECT_TRUE(string->rangeOfString(text("one"), NS::BackwardsSearch).Equal({10, 3}));
    EXPECT_TRUE(string->rangeOfString(text("TWO"), NS::CaseInsensitiveSearch).Equal({6, 3}));
    EXPECT_EQ(string->rangeOfString(text("TWO"), 0).location, static_cast<NS::UInteger>(NS::NotFound));
    EXPECT_EQ(string->rangeOfString(text(""), 0).location, static_cast<NS::UInteger>(NS::NotFound));
}

TEST_F(String, AnchoredSearchLooksAtTheEndsOnly)
{
    NS::String* string = text("one two");
    EXPECT_TRUE(string->rangeOfString(text("one"), NS::AnchoredSearch).Equal({0, 3}));
    EXPECT_EQ(string->rangeOfString(text("two"), NS::AnchoredSearch).length, 0u);
    EXPECT_TRUE(string->rangeOfString(text("two"), NS::AnchoredSearch | NS::BackwardsSearch).Equal({4, 3}));
    EXPECT_EQ(string->rangeOfString(text("one two three"), NS::AnchoredSearch).length, 0u);
}

TEST_F(String, AppendingAndComparing)
{
    EXPECT_STREQ(text("one")->stringByAppendingString(text(" two"))->utf8String(), "one two");
    EXPECT_EQ(text("ABC")->caseInsensitiveCompare(text("abc")), NS::OrderedSame);
    EXPECT_EQ(text("abc")->caseInsensitiveCompare(text("ABD")), NS::OrderedAscending);
    EXPECT_EQ(text("b")->caseInsensitiveCompare(text("A")), NS::OrderedDescending);
}

TEST_F(String, HasPrefixComparesBytes)
{
    EXPECT_TRUE(NS::hasPrefix(text("Intel(R) Iris"), "Intel(R)"));
    EXPECT_FALSE(NS::hasPrefix(text("intel(R) Iris"), "Intel(R)"));
    EXPECT_FALSE(NS::hasPrefix(text("Int"), "Intel(R)"));
    EXPECT_FALSE(NS::hasPrefix(nullptr, "x"));
}

TEST_F(String, AConstantIsMadeOnceAndIsNotEndedByReleases)
{
    NS::String* first = MTLSTR("constant");
    first->release();
    first->release();
    EXPECT_EQ(MTLSTR("constant"), first);
    EXPECT_STREQ(first->utf8String(), "constant");
    EXPECT_TRUE(first->isEqualToString(text("constant")));
}

} // namespace
