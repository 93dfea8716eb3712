// SPDX-License-Identifier: Apache-2.0
// Text helpers of the translator: views into program text, and a buffer for text that is written piece by piece.
#pragma once

#include "foundation/Allocate.h"
#include "foundation/String.h"

#include <cstring>
#include <initializer_list>
#include <string_view>

namespace ZALMetal
{

// The bytes of a string; valid until the string changes.
inline std::string_view View(const ZALM::String& text)
{
    return {text.Buffer(), static_cast<size_t>(text.GetStringBytes())};
}

// A string of bytes that are UTF-8 already.
inline ZALM::String Text(std::string_view bytes)
{
    ZALM::String text;
    if (!bytes.empty()) text.AddAscii(bytes.data(), static_cast<int>(bytes.size()));
    return text;
}

// Without the blanks at both ends; tabs and line ends stay.
constexpr std::string_view Trimmed(std::string_view text)
{
    while (!text.empty() && text.front() == ' ')
        text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ')
        text.remove_suffix(1);
    return text;
}

constexpr char LowerCase(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr bool EqualsNoCase(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;

    for (size_t i = 0; i < a.size(); ++i)
        if (LowerCase(a[i]) != LowerCase(b[i])) return false;
    return true;
}

constexpr bool StartsWithNoCase(std::string_view text, std::string_view start)
{
    return text.size() >= start.size() && EqualsNoCase(text.substr(0, start.size()), start);
}

// A decimal number of at most six digits; -1 for anything else.
constexpr int ReadIndex(std::string_view text)
{
    if (text.empty() || text.size() > 6) return -1;

    int value = 0;
    for (char c : text) {
        if (!IsDigit(c)) return -1;
        value = value * 10 + (c - '0');
    }
    return value;
}

// Text written at its end. It grows by half its size, so that writing a program costs no more than its length; a String
// is allocated anew with every addition. After a failed allocation it takes nothing more.
class TextBuffer
{
public:
    TextBuffer() = default;
    ~TextBuffer()
    {
        if (bytes) ZALM::g_allocator.release(bytes);
    }
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    void Add(std::string_view text)
    {
        if (text.empty() || !Reserve(text.size())) return;

        std::memcpy(bytes + size, text.data(), text.size());
        size += text.size();
    }

    void AddString(const ZALM::String& text)
    {
        failed |= text.MemorySize() == 0;
        Add(View(text));
    }

    void AddBlanks(int count)
    {
        for (int i = 0; i < count; ++i)
            Add(" ");
    }

    // The template with %1 to %9 replaced by the values, in one pass: the values' own text is not looked at.
    void AddFilled(std::string_view pattern, std::initializer_list<std::string_view> values)
    {
        for (size_t at = pattern.find('%'); at != std::string_view::npos; at = pattern.find('%')) {
            Add(pattern.substr(0, at));
            Add(values.begin()[pattern[at + 1] - '1']);
            pattern.remove_prefix(at + 2);
        }
        Add(pattern);
    }

    // Copies the text to `out`: 0, or 2 when some of it could not be stored.
    int Store(ZALM::String& out) const
    {
        out = Text(All());
        return failed || out.MemorySize() == 0 ? ZALM::OutOfMemory : ZALM::Success;
    }

    std::string_view All() const { return {bytes, size}; }
    size_t Size() const { return size; }
    bool Failed() const { return failed; }

private:
    bool Reserve(size_t more)
    {
        if (failed) return false;
        if (bytes && size + more <= capacity) return true;

        size_t wanted = capacity + capacity / 2;
        if (wanted < size + more) wanted = size + more;
        if (wanted < 4096) wanted = 4096;

        char* grown = static_cast<char*>(bytes ? ZALM::g_allocator.reallocate(bytes, wanted)
                                               : ZALM::g_allocator.allocate(wanted));
        failed = !grown;
        if (failed) return false;

        bytes = grown;
        capacity = wanted;
        return true;
    }

    char* bytes = nullptr;
    size_t size = 0;
    size_t capacity = 0;
    bool failed = false;
};

// A small number as text, without a String.
class NumberText
{
public:
    explicit NumberText(unsigned value)
    {
        do
            digits[--first] = static_cast<char>('0' + value % 10);
        while (value /= 10);
    }

    operator std::string_view() const { return {digits + first, sizeof digits - first}; }

private:
    char digits[10] = {};
    size_t first = sizeof digits;
};

} // namespace ZALMetal
