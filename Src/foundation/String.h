// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/Vector.h"

#include <cstdint>

namespace ZALM
{

/// UTF-8 text with value semantics and a filler for numbered templates ("%1", "%2", …). A character is one UTF-8
/// sequence, its length read from the lead byte alone: what follows is never checked. Texts handed in as const char*
/// are ISO 8859-1. When memory runs out a string is left with size 0 and no buffer, whatever it held; every member
/// accepts such a string as an empty text, and the next assignment mends it.
class String
{
public:
    String();
    String(const String& other);
    String(const char* text, unsigned length); // ISO 8859-1
    String(const char* text);                  // ISO 8859-1, NUL-terminated; null gives the empty string
    String(char c);                            // the byte as it is
    String(const wchar_t* text);
    explicit String(unsigned spaces);
    virtual ~String();

    String& operator=(const String& other);
    String& operator=(const char* text); // null leaves the string unchanged
    String& operator=(const wchar_t* text);

    // ---- appending ----
    String& Add(const String& other);
    String& operator+=(const String& other) { return Add(other); }
    String& AddAscii(const char* bytes, int length); // without conversion; negative: up to the NUL
    String operator+(const String& other) const;

    // ---- measuring ----
    bool IsEmpty() const { return size <= 1; }
    void Clear();
    int Length() const;                                         // characters
    const char* Buffer() const { return buffer ? buffer : ""; } // never null, so that it may always be read
    static int GetCharBytes(const char* at);                    // of the character that starts there: 1 to 6
    int GetStringBytes() const { return size > 0 ? size - 1 : 0; }
    int MemorySize() const { return size; }            // with the terminator; 0 when memory ran out
    void SetUTF8Buffer(const char* bytes, int length); // without conversion; negative: up to the NUL

    // ---- characters: positions count from 0, and what lies outside the text is cut off ----
    /// Start of a character, null for a negative index or one behind the text. With from given: the character behind
    /// the one there, null behind the last.
    const char* GetChar(int index, const char* from = nullptr) const;
    void SetChar(int index, char c); // NUL ends the text there; an index outside the text does nothing
    /// Characters of one byte only, from a position on. NUL as the new one ends the text.
    String& Replace(char from, char to, int first = 0);
    String& Replace(const String& from, const String& to, int first = 0);
    String Mid(int first, int count) const;
    String Left(int count) const { return Mid(0, count); }
    String Right(int count) const;

    // ---- wide copies: owned by the caller, given back with free ----
    uint16_t* ToUCS2() const; // U+FFFD for what has no room in 16 bits
    uint32_t* ToUCS4() const;
    wchar_t* To_wchar_t() const;

    // ---- searching: positions in characters, -1 when not found ----
    int Find(const String& text, int first = 0) const;
    int IndexOf(const String& text, int first = 0) const { return Find(text, first); }
    int LastIndexOf(const String& text, int first = -1) const; // backward; negative: from the end

    // ---- comparing: count is the number of characters compared, negative for all ----
    int Compare(const String& other, int count = -1) const;
    int CompareNoCase(const String& other, int count = -1) const; // folds ASCII letters
    bool operator==(const String& other) const { return Compare(other) == 0; }
    bool operator!=(const String& other) const { return Compare(other) != 0; }
    bool operator<(const String& other) const { return Compare(other) < 0; } // by unsigned bytes
    bool operator>(const String& other) const { return Compare(other) > 0; }

    // ---- templates ----
    /// Puts the value in the place of every occurrence of the lowest-numbered template.
    String& Arg(const String& value);
    String& Arg(int value);
    String& Arg(long value);
    String& Arg(unsigned value);
    String& Arg(unsigned long value);
    String& Arg(float value);
    String& Arg(double value);
    /// Byte positions of all occurrences of the lowest-numbered template.
    void FindTemplates(Vector<long>& positions) const;

private:
    static char* newBuffer(size_t bytes);
    void adopt(char* fresh, size_t bytes);
    void setBytes(const char* bytes, size_t length);
    void setLatin1(const char* text, size_t length);
    void setWide(const wchar_t* text);
    void endAt(int byte);

    int byteOf(int character) const;
    bool matches(int byte, const String& text) const;
    int matchFrom(int byte, const String& text) const;
    int bytesOfFirst(int characters) const;

    int collectTemplates(uint32_t& number, Vector<long>& positions) const;
    String& fillLowest(const char* value, int bytes);
    void substitute(const Vector<long>& positions, int length, const char* value, int bytes);

    int32_t size = 0;       // bytes with the terminating NUL; 0 only when an allocation failed
    char* buffer = nullptr; // from the allocator
};

} // namespace ZALM
