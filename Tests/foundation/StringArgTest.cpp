// SPDX-License-Identifier: Apache-2.0
// Numbered templates.
#include "foundation/Memory.h"
#include "foundation/String.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

namespace
{

using ZALM::String;

std::string filled(const char* text, std::initializer_list<const char*> values)
{
    String s(text);
    for (const char* value : values) s.Arg(String(value));
    return s.Buffer();
}

TEST(StringArg, FillsTheLowestNumberFirst)
{
    EXPECT_EQ(filled("%1 = metal::clamp( %2, 0.0, 1.0 );", {"r0", "r1"}), "r0 = metal::clamp( r1, 0.0, 1.0 );");
    EXPECT_EQ(filled("%0%3", {"a"}), "a%3");
}

TEST(StringArg, FillsEveryOccurrenceOfIt)
{
    EXPECT_EQ(filled("%2 %1 %2", {"a"}), "%2 a %2");
    EXPECT_EQ(filled("%2 %1 %2", {"a", "b"}), "b a b");
    EXPECT_EQ(filled("%1%1%1%1%1%1%1", {"ab"}), "ababababababab"); // more than the four that positions start with
}

TEST(StringArg, APercentSignWithoutDigitsIsText)
{
    EXPECT_EQ(filled("100%", {"a"}), "100%");
    EXPECT_EQ(filled("%x", {"a"}), "%x");
    EXPECT_EQ(filled("%%1", {"a"}), "%a");
    EXPECT_EQ(filled("", {"a"}), "");
    EXPECT_EQ(filled("none", {"a"}), "none");
}

TEST(StringArg, TenComesAfterNine)
{
    EXPECT_EQ(filled("%10 %9", {"a"}), "%10 a");
    EXPECT_EQ(filled("%10 %9", {"a", "b"}), "b a");
}

TEST(StringArg, ValuesMayHoldTemplates)
{
    EXPECT_EQ(filled("%1 %2", {"%2", "x"}), "x x");
    EXPECT_EQ(filled("%1", {"%1"}), "%1");
    EXPECT_EQ(filled("%1!", {""}), "!");
}

TEST(StringArg, MultiByteCharactersAreSkippedWhole)
{
    String s;
    s.SetUTF8Buffer("\xE2%1%1", 5); // the lead byte says three: the first template is inside
    s.Arg(String("x"));
    EXPECT_STREQ(s.Buffer(), "\xE2%1x");
}

TEST(StringArg, NumbersAreFormatted)
{
    EXPECT_STREQ(String("%1").Arg(1.5f).Buffer(), "1.500000");
    EXPECT_STREQ(String("%1").Arg(0.5f).Buffer(), "0.500000");
    EXPECT_STREQ(String("%1").Arg(-3).Buffer(), "-3");
    EXPECT_STREQ(String("%1").Arg(4000000000u).Buffer(), "4000000000");
    EXPECT_STREQ(String("%1").Arg(1e300).Buffer(), std::to_string(1e300).c_str());
}

/// The 64-bit forms give whatever the platform's sprintf makes of their format.
TEST(StringArg, Kept_arg_64_bit)
{
    char wanted[200];
    const char* volatile signedFormat = "%I64d";
    std::snprintf(wanted, sizeof wanted, signedFormat, -7L);
    EXPECT_STREQ(String("%1").Arg(-7L).Buffer(), wanted);
    const char* volatile unsignedFormat = "%I64u";
    std::snprintf(wanted, sizeof wanted, unsignedFormat, 7UL);
    EXPECT_STREQ(String("%1").Arg(7UL).Buffer(), wanted);
}

/// A digit weighs eleven times the next, so that the numbers' order, not their value, is right; "%92" counts as 101.
TEST(StringArg, Kept_template_factor)
{
    EXPECT_EQ(filled("%91.", {"x"}), "x.");  // 100: two digits
    EXPECT_EQ(filled("%100 %99.", {"x"}), "%100 x"); // 121 and 108
    EXPECT_EQ(filled("%11 %2", {"a", "b"}), "b a");
}

/// From "%92" on, a template is taken to be a byte longer than it is written.
TEST(StringArg, Kept_template_length)
{
    EXPECT_EQ(filled("%92;", {"x"}), "x");
    EXPECT_EQ(filled("%99;;", {"x"}), "x;");
    EXPECT_EQ(filled("%92", {"x"}), "x"); // at the end there is no byte to take
    EXPECT_EQ(filled("%92%92!.", {"x"}), "xx."); // the second begins inside what the first takes
    EXPECT_EQ(filled("%01", {"x"}), "x1"); // a leading zero is not counted
}

TEST(StringArg, FindTemplatesGivesThePositionsOfTheLowest)
{
    ZALM::Vector<long> positions;
    String("a%2 %1 %1%").FindTemplates(positions);
    EXPECT_EQ(std::vector<long>(positions.begin(), positions.end()), (std::vector<long>{4, 7}));
    String("none").FindTemplates(positions);
    EXPECT_TRUE(positions.empty());
}

TEST(StringArg, MakesOneAllocationForTheResult)
{
    foundation::Memory memory;
    {
        String s("%1 and %1"), value("text");
        memory.succeed();
        s.Arg(value);
        EXPECT_EQ(memory.calls(), 2u); // the positions and the result
    }
    EXPECT_EQ(memory.live(), 0u);
}

} // namespace
