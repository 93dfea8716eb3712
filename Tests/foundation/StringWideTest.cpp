// SPDX-License-Identifier: Apache-2.0
// Text from code points and back.
#include "foundation/String.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace
{

using ZALM::String;

template <class Unit>
std::vector<uint32_t> units(Unit* wide)
{
    std::vector<uint32_t> result;
    for (Unit* at = wide; at && *at; ++at) result.push_back(static_cast<uint32_t>(*at));
    std::free(wide);
    return result;
}

TEST(StringWide, EncodesCodePointsOfEveryLength)
{
    const wchar_t wide[] = {0x41, 0x7F, 0x80, 0x7FF, 0x800, 0xFFFF, 0x10000, 0x10FFFF, 0x1FFFFF, 0x200000, 0x3FFFFFF, 0x4000000, 0};
    String s(wide);
    EXPECT_EQ(s.Length(), 12);
    EXPECT_EQ(s.GetStringBytes(), 1 + 1 + 2 + 2 + 3 + 3 + 4 + 4 + 4 + 5 + 5 + 6);
    EXPECT_EQ(std::string(s.Mid(2, 1).Buffer()), "\xC2\x80");
    EXPECT_EQ(std::string(s.Mid(4, 1).Buffer()), "\xE0\xA0\x80");
    EXPECT_EQ(std::string(s.Mid(6, 1).Buffer()), "\xF0\x90\x80\x80");
    String assigned;
    assigned = wide;
    EXPECT_EQ(assigned, s);
}

TEST(StringWide, WhatWentInComesOut)
{
    const wchar_t wide[] = {0x41, 0xE9, 0x20AC, 0x1F600, 0};
    String s(wide);
    EXPECT_EQ(units(s.ToUCS4()), (std::vector<uint32_t>{0x41, 0xE9, 0x20AC, 0x1F600}));
    EXPECT_EQ(units(s.To_wchar_t()), (std::vector<uint32_t>{0x41, 0xE9, 0x20AC, 0x1F600}));
    EXPECT_EQ(units(s.ToUCS2()), (std::vector<uint32_t>{0x41, 0xE9, 0x20AC, 0xFFFD})); // no room in 16 bits
}

TEST(StringWide, EmptyTextsAndCutOffOnesAreSafe)
{
    EXPECT_TRUE(units(String().ToUCS4()).empty());
    EXPECT_TRUE(String(static_cast<const wchar_t*>(nullptr)).IsEmpty());
    String cut;
    cut.SetUTF8Buffer("\xF0\x9F", 2);
    EXPECT_EQ(units(cut.ToUCS4()).size(), 1u);
}

} // namespace
