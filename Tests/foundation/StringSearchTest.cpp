// SPDX-License-Identifier: Apache-2.0
// Searching and comparing, in characters.
#include "foundation/String.h"

#include <gtest/gtest.h>

namespace
{

using ZALM::String;

TEST(StringSearch, FindsForwardFromAPosition)
{
    String s("\xE9-ab-ab");
    for (auto search : {&String::Find, &String::IndexOf}) {
        EXPECT_EQ((s.*search)("ab", 0), 2);
        EXPECT_EQ((s.*search)("ab", 2), 2);
        EXPECT_EQ((s.*search)("ab", 3), 5);
        EXPECT_EQ((s.*search)("ab", 6), -1);
        EXPECT_EQ((s.*search)("ab", 99), -1);
        EXPECT_EQ((s.*search)("ab", -4), 2);
        EXPECT_EQ((s.*search)("abc", 0), -1);
        EXPECT_EQ((s.*search)("", 3), 3);
    }
}

TEST(StringSearch, FindsBackwardFromAPosition)
{
    String s("\xE9-ab-ab");
    EXPECT_EQ(s.LastIndexOf("ab"), 5);
    EXPECT_EQ(s.LastIndexOf("ab", 5), 5);
    EXPECT_EQ(s.LastIndexOf("ab", 4), 2);
    EXPECT_EQ(s.LastIndexOf("ab", 1), -1);
    EXPECT_EQ(s.LastIndexOf("ab", 99), 5);
    EXPECT_EQ(s.LastIndexOf("x"), -1);
}

TEST(StringSearch, NeverStartsInsideACharacter)
{
    String euro, tail;
    euro.SetUTF8Buffer("\xE2\x82\xAC", 3);
    tail.SetUTF8Buffer("\x82\xAC", 2);
    EXPECT_EQ(euro.Find(tail), -1);
    EXPECT_EQ(euro.LastIndexOf(tail), -1);
}

TEST(StringSearch, ComparesByUnsignedBytes)
{
    String a("a"), b("b"), e("\xE9"), aa("aa");
    EXPECT_TRUE(a < b);
    EXPECT_TRUE(b < e); // bytes above 0x7F come last
    EXPECT_TRUE(a < aa);
    EXPECT_TRUE(aa > a);
    EXPECT_FALSE(a < a);
    EXPECT_TRUE(a == String("a"));
    EXPECT_TRUE(a != b);
    EXPECT_LT(a.Compare(b), 0);
    EXPECT_GT(b.Compare(a), 0);
    EXPECT_EQ(a.Compare(a), 0);
}

TEST(StringSearch, ComparesSoManyCharacters)
{
    String a("\xE9x1"), b("\xE9x2");
    EXPECT_EQ(a.Compare(b, 2), 0);
    EXPECT_LT(a.Compare(b, 3), 0);
    EXPECT_LT(a.Compare(b, -1), 0);
    EXPECT_EQ(a.Compare(b, 0), 0);
    EXPECT_LT(String("\xE9").Compare(a, 2), 0);
}

TEST(StringSearch, FoldsAsciiLettersOnly)
{
    EXPECT_EQ(String("AbZ").CompareNoCase("aBz"), 0);
    EXPECT_NE(String("\xC9").CompareNoCase("\xE9"), 0);
    EXPECT_NE(String("[").CompareNoCase("{"), 0);
    EXPECT_EQ(String("ABx").CompareNoCase("aby", 2), 0);
    EXPECT_LT(String("ABx").CompareNoCase("aby"), 0);
}

} // namespace
