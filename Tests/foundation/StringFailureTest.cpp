// SPDX-License-Identifier: Apache-2.0
// Strings without memory: empty, with size 0 and no buffer, and accepted everywhere.
#include "foundation/Memory.h"
#include "foundation/String.h"

#include <gtest/gtest.h>

namespace
{

using foundation::forEachFault;
using foundation::Memory;
using ZALM::String;

/// A string whose allocation failed. Memory is there again afterwards.
String broken(Memory& memory)
{
    memory.failAt(0);
    String s("text");
    memory.succeed();
    return s; // moved into place, or copied to an empty one
}

struct Broken : ::testing::Test
{
    Broken()
    {
        memory.failAt(0);
        s = "x";
        memory.succeed();
    }

    Memory memory;
    String s;
};

TEST_F(Broken, HasSizeZeroAndReadsAsEmpty)
{
    EXPECT_EQ(s.MemorySize(), 0);
    EXPECT_EQ(s.GetStringBytes(), 0);
    EXPECT_EQ(s.Length(), 0);
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_STREQ(s.Buffer(), "");
}

TEST_F(Broken, EveryReaderAcceptsIt)
{
    String other("abc");
    EXPECT_EQ(s.GetChar(0), nullptr);
    EXPECT_EQ(s.Find("a"), -1);
    EXPECT_EQ(s.IndexOf("a"), -1);
    EXPECT_EQ(s.LastIndexOf("a"), -1);
    EXPECT_EQ(other.Find(s), 0);
    EXPECT_EQ(s.Compare(other), -1);
    EXPECT_EQ(other.Compare(s), 1);
    EXPECT_EQ(s.CompareNoCase(s), 0);
    EXPECT_TRUE(s == String());
    EXPECT_TRUE(s != other);
    EXPECT_TRUE(s < other);
    EXPECT_FALSE(s > other);
    EXPECT_TRUE(s.Mid(0, 3).IsEmpty());
    EXPECT_TRUE(s.Left(1).IsEmpty());
    EXPECT_TRUE(s.Right(1).IsEmpty());
    EXPECT_STREQ((s + other).Buffer(), "abc");
    EXPECT_STREQ((other + s).Buffer(), "abc");
    ZALM::Vector<long> positions;
    s.FindTemplates(positions);
    EXPECT_TRUE(positions.empty());
    auto* wide = s.ToUCS4();
    ASSERT_NE(wide, nullptr);
    EXPECT_EQ(wide[0], 0u);
    ZALM::g_allocator.release(wide);
    String copy(s);
    EXPECT_EQ(copy.MemorySize(), 1); // a copy of it is an empty string
}

TEST_F(Broken, EveryWriterAcceptsIt)
{
    s.SetChar(0, 'a');
    s.Replace('a', 'b');
    s.Replace(String("a"), String("b"));
    s.Arg(String("x")).Arg(1).Arg(1u).Arg(1L).Arg(1UL).Arg(1.f).Arg(1.0);
    EXPECT_EQ(s.MemorySize(), 0);
    s.Add("abc");
    EXPECT_STREQ(s.Buffer(), "abc");
}

TEST_F(Broken, TheNextAssignmentMendsIt)
{
    s = String("abc");
    EXPECT_STREQ(s.Buffer(), "abc");
    s = String(broken(memory));
    s = L"wide";
    EXPECT_STREQ(s.Buffer(), "wide");
}

TEST(StringFailure, EveryConstructorSurvives)
{
    forEachFault([](Memory&, const foundation::Arm& arm) {
        arm();
        String empty, fromText("text"), fromPart("text", 2), fromChar('c'), fromWide(L"wide"), blanks(9u), copy(fromText);
        EXPECT_TRUE(fromText.MemorySize() == 5 || fromText.MemorySize() == 0);
        EXPECT_EQ(copy.MemorySize() == 5 && fromText.MemorySize() == 0, false);
    });
}

TEST(StringFailure, EveryAssignmentSurvives)
{
    forEachFault([](Memory& memory, const foundation::Arm& arm) {
        String s("old"), other("other");
        arm();
        s = other;
        s = "text";
        s = L"wide";
        s.SetUTF8Buffer("u", 1);
        s.Clear();
        memory.succeed();
        EXPECT_TRUE(s.MemorySize() == 1 || s.MemorySize() == 0);
    });
}

TEST(StringFailure, AppendingIsAllOrNothing)
{
    forEachFault([](Memory& memory, const foundation::Arm& arm) {
        String s("one"), other("two");
        arm();
        String sum = s + other;
        s.Add(other);
        memory.succeed();
        EXPECT_TRUE(sum.MemorySize() == 7 || sum.GetStringBytes() == 0);
        EXPECT_TRUE(s.MemorySize() == 7 || s.MemorySize() == 0);
    });
}

TEST(StringFailure, AFilledTemplateIsWholeOrEmpty)
{
    forEachFault([](Memory& memory, const foundation::Arm& arm) {
        String s("%1 %1 %1 %1 %1"), value("value");
        arm();
        s.Arg(value);
        memory.succeed();
        EXPECT_TRUE(s == String("value value value value value") || s.MemorySize() == 0);
    });
}

TEST(StringFailure, ReplacingIsWholeOrEmpty)
{
    forEachFault([](Memory& memory, const foundation::Arm& arm) {
        String s("a.b.c"), from("."), to("::");
        arm();
        s.Replace(from, to);
        s.SetChar(0, 'x');
        memory.succeed();
        EXPECT_TRUE(s == String("x::b::c") || s.MemorySize() == 0);
    });
}

TEST(StringFailure, WideCopiesAreNullWithoutMemory)
{
    Memory memory;
    String s("text");
    memory.failAt(0);
    EXPECT_EQ(s.ToUCS2(), nullptr);
    EXPECT_EQ(s.ToUCS4(), nullptr);
    EXPECT_EQ(s.To_wchar_t(), nullptr);
    memory.succeed();
}

} // namespace
