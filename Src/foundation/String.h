// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "foundation/Vector.h"

#include <cstdint>

namespace ZALM {

/// UTF-8 text with value semantics and a filler for numbered templates ("%1", "%2", …). A character is one UTF-8 sequence,
/// its length read from the lead byte alone. When memory runs out a string is left with size 0 and no buffer; every
/// member accepts such a string.
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

    // ---- appending -------------------------------------------------------------------------------------------------------
    String& Add(const String& other);
    String& operator+=(const String& other) { return Add(other); }
    String& AddAscii(const char* bytes, int length); // without conversion; negative: up to the NUL
    String operator+(const String& other) const;

    // ---- measuring -------------------------------------------------------------------------------------------------------
    bool IsEmpty() const { return size <= 1; }
    void Clear();
    int Length() const; // characters
    const char* Buffer() const { return buffer ? buffer : ""; }
    static int GetCharBytes(const char* at);
    int GetStringBytes() const { return size > 0 ? size - 1 : 0; }
    int MemorySize() const { return size; }
    void SetUTF8Buffer(const char* bytes, int length);

    // ---- characters ------------------------------------------------------------------------------------------------------
    /// Start of a character counted from 0, null beyond the end; with from given, the character behind the one there.
    const char* GetChar(int index, const char* from = nullptr) const;
    void SetChar(int index, char c);
    String& Replace(char from, char to, int first = 0);
    String& Replace(const String& from, const String& to, int first = 0);
    String Mid(int first, int count) const;
    String Left(int count) const { return Mid(0, count); }
    String Right(int count) const;

    // ---- wide copies: owned by the caller, given back with free ---------------------------------------------------------
    uint16_t* ToUCS2() const;
    uint32_t* ToUCS4() const;
    wchar_t* To_wchar_t() const;

    // ---- searching: positions in characters, -1 when not found -----------------------------------------------------------
    int Find(const String& text, int first = 0) const;
    int IndexOf(const String& text, int first = 0) const { return Find(text, first); }
    int LastIndexOf(const String& text, int first = -1) const; // backward; negative: from the end

    // ---- comparing: count is the number of characters compared, negative for all -----------------------------------------
    int Compare(const String& other, int count = -1) const;
    int CompareNoCase(const String& other, int count = -1) const; // folds ASCII letters
    bool operator==(const String& other) const { return Compare(other) == 0; }
    bool operator!=(const String& other) const { return Compare(other) != 0; }
    bool operator<(const String& other) const { return Compare(other) < 0; } // by unsigned bytes
    bool operator>(const String& other) const { return Compare(other) > 0; }

    // ---- templates -------------------------------------------------------------------------------------------------------
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
    bool allocate(int bytes);
    void setBytes(const char* bytes, int length);
    void setLatin1(const char* text, unsigned length);
    void setWide(const wchar_t* text);
    int byteOf(int character) const;
    int characterOf(int byte) const;
    uint32_t lowestTemplate(Vector<long>& positions) const;
    static uint32_t decode(const char*& at);

    int32_t size = 0;       // bytes with the terminating NUL; 0 only when an allocation failed
    char* buffer = nullptr; // from the allocator
};

} // namespace ZALM
