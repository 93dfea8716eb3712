// SPDX-License-Identifier: Apache-2.0
// What a string holds: conversions in, copies, characters, appending, substrings.
#include "foundation/Memory.h"
#include "foundation/String.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using ZALM::String;

std::string text(const String& s)
{
    return std::string(s.Buffer(), static_cast<size_t>(s.GetStringBytes()));
}

TEST(String, AnEmptyOneHasSizeOne)
{
    String s;
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.MemorySize(), 1);
    EXPECT_EQ(s.GetStringBytes(), 0);
    EXPECT_EQ(s.Length(), 0);
    EXPECT_STREQ(s.Buffer(), "");
}

TEST(String, ALatin1ByteBecomesTwoBytesAndOneCharacter)
{
    String s("caf\xE9");
    EXPECT_EQ(text(s), "caf\xC3\xA9");
    EXPECT_EQ(s.Length(), 4);
    EXPECT_EQ(s.MemorySize(), 6);
    for (int b = 1; b < 256; ++b) {
        char one[2] = {static_cast<char>(b), 0};
        String c(one);
        EXPECT_EQ(c.Length(), 1) << b;
        EXPECT_EQ(c.GetStringBytes(), b < 0x80 ? 1 : 2) << b;
        EXPECT_EQ(static_cast<unsigned char>(c.Buffer()[0]), b < 0x80 ? b : 0xC0 | b >> 6) << b;
    }
}

TEST(String, AGivenLengthMayIncludeTheNul)
{
    EXPECT_EQ(String("abcdef", 3).MemorySize(), 4);
    EXPECT_EQ(text(String("abcdef", 3)), "abc");
    EXPECT_EQ(String("abc", 4).MemorySize(), 4); // the last byte is the NUL already
    EXPECT_EQ(String("", 0u).MemorySize(), 1);
    EXPECT_EQ(String("", 1u).MemorySize(), 1);
}

TEST(String, OneCharacterIsTheByteItself)
{
    String s('\xE9');
    EXPECT_EQ(s.MemorySize(), 2);
    EXPECT_EQ(text(s), "\xE9");
}

TEST(String, ANumberGivesBlanks)
{
    EXPECT_EQ(text(String(3u)), "   ");
    EXPECT_EQ(String(0u).MemorySize(), 1);
}

TEST(String, CopiesAreDeep)
{
    String a("one"), b(a);
    b.SetChar(0, 'O');
    EXPECT_EQ(text(a), "one");
    EXPECT_EQ(text(b), "One");
    EXPECT_EQ(b.MemorySize(), a.MemorySize());
    a = b;
    EXPECT_EQ(text(a), "One");
    EXPECT_NE(a.Buffer(), b.Buffer());
    String& same = a;
    a = same;
    EXPECT_EQ(text(a), "One");
}

TEST(String, AssigningItsOwnBufferChangesNothing)
{
    String s("text\xE9");
    const char* before = s.Buffer();
    s = s.Buffer();
    EXPECT_EQ(s.Buffer(), before);
    EXPECT_EQ(text(s), "text\xC3\xA9"); // not converted a second time
}

TEST(String, AssigningNullChangesNothing)
{
    String s("text");
    s = static_cast<const char*>(nullptr);
    s = static_cast<const wchar_t*>(nullptr);
    EXPECT_EQ(text(s), "text");
}

TEST(String, BytesThatAreUtf8AlreadyAreTakenAsTheyAre)
{
    String s;
    s.SetUTF8Buffer("\xE2\x82\xAC!", 4);
    EXPECT_EQ(text(s), "\xE2\x82\xAC!");
    EXPECT_EQ(s.Length(), 2);
    s.SetUTF8Buffer("abc", -1);
    EXPECT_EQ(text(s), "abc");
    s.SetUTF8Buffer(nullptr, 4);
    EXPECT_TRUE(s.IsEmpty());
}

TEST(String, CharacterLengthsComeFromTheLeadByteAlone)
{
    for (auto [lead, bytes] : {std::pair{0x41, 1}, {0x80, 1}, {0xBF, 1}, {0xC0, 2}, {0xDF, 2}, {0xE0, 3}, {0xEF, 3}, {0xF0, 4}, {0xF7, 4}, {0xF8, 5}, {0xFB, 5}, {0xFC, 6}, {0xFF, 6}}) {
        char at = static_cast<char>(lead);
        EXPECT_EQ(String::GetCharBytes(&at), bytes) << lead;
    }
    String cut;
    cut.SetUTF8Buffer("a\xE2\x82", 3); // a last character that lacks a byte
    EXPECT_EQ(cut.Length(), 2);
    EXPECT_EQ(text(cut.Mid(1, 1)), "\xE2\x82");
}

TEST(String, AppendingAddsAtTheEnd)
{
    String s("a");
    s.Add("b");
    s += String("c");
    s.AddAscii("def", 2);
    s.AddAscii("\xE9", -1);
    EXPECT_EQ(text(s), "abcde\xE9");
    EXPECT_EQ(text(String("x") + String("y")), "xy");
    s = String("ab");
    s.Add(s);
    EXPECT_EQ(text(s), "abab");
    s.AddAscii(s.Buffer() + 2, 1); // a part of itself
    EXPECT_EQ(text(s), "ababa");
    s.AddAscii(nullptr, 3);
    EXPECT_EQ(text(s), "ababa");
    s.Clear();
    EXPECT_EQ(s.MemorySize(), 1);
}

TEST(String, CharactersAreFoundByTheirNumber)
{
    String s("a\xE9z");
    EXPECT_EQ(s.GetChar(0), s.Buffer());
    EXPECT_EQ(s.GetChar(1), s.Buffer() + 1);
    EXPECT_EQ(s.GetChar(2), s.Buffer() + 3);
    EXPECT_EQ(s.GetChar(3), nullptr);
    EXPECT_EQ(s.GetChar(-1), nullptr);
    EXPECT_EQ(s.GetChar(0, s.Buffer() + 1), s.Buffer() + 3); // the one behind
    EXPECT_EQ(s.GetChar(0, s.Buffer() + 3), nullptr);
}

TEST(String, ACharacterIsReplacedWhateverItsLength)
{
    String s("a\xE9z");
    s.SetChar(1, 'e');
    EXPECT_EQ(text(s), "aez");
    EXPECT_EQ(s.MemorySize(), 4);
    s.SetChar(5, 'x');
    s.SetChar(-1, 'x');
    EXPECT_EQ(text(s), "aez");
    s.SetChar(1, 0);
    EXPECT_EQ(text(s), "a");
    EXPECT_EQ(s.MemorySize(), 2);
}

TEST(String, ReplacesCharactersFromAPositionOn)
{
    String s("a.b.\xE9.");
    s.Replace('.', ',', 2);
    EXPECT_EQ(text(s), "a.b,\xC3\xA9,");
    s.Replace('.', ';');
    EXPECT_EQ(text(s), "a;b,\xC3\xA9,");
    s.Replace(',', '\0');
    EXPECT_EQ(text(s), "a;b");
}

TEST(String, ReplacesTexts)
{
    String s("one two one");
    s.Replace(String("one"), String("three"));
    EXPECT_EQ(text(s), "three two three");
    s.Replace(String("three"), String(""), 1);
    EXPECT_EQ(text(s), "three two ");
    s.Replace(String(""), String("x"));
    EXPECT_EQ(text(s), "three two ");
    String a("aaa");
    a.Replace(String("aa"), String("b"));
    EXPECT_EQ(text(a), "ba"); // from the left, without overlap
}

TEST(String, SubstringsCountCharactersAndAreCutOffAtTheEnds)
{
    String s("a\xE9z");
    EXPECT_EQ(text(s.Mid(1, 1)), "\xC3\xA9");
    EXPECT_EQ(text(s.Mid(1, 99)), "\xC3\xA9z");
    EXPECT_EQ(text(s.Mid(-2, 1)), "a");
    EXPECT_EQ(text(s.Mid(3, 1)), "");
    EXPECT_EQ(text(s.Mid(0, -1)), "");
    EXPECT_EQ(text(s.Left(2)), "a\xC3\xA9");
    EXPECT_EQ(text(s.Left(99)), "a\xC3\xA9z");
    EXPECT_EQ(text(s.Right(2)), "\xC3\xA9z");
    EXPECT_EQ(text(s.Right(99)), "a\xC3\xA9z");
    EXPECT_EQ(text(s.Right(-1)), "");
}

TEST(String, TakesExactlyItsSize)
{
    foundation::Memory memory;
    {
        String s("a\xE9");
        EXPECT_EQ(memory.lastBytes(), 4u);
        String copy(s);
        EXPECT_EQ(memory.lastBytes(), 4u);
        copy.Add(s);
        EXPECT_EQ(memory.lastBytes(), 7u);
        copy = s;
        EXPECT_EQ(memory.lastBytes(), 4u);
    }
    EXPECT_EQ(memory.live(), 0u);
}

} // namespace
