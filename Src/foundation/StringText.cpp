// SPDX-License-Identifier: Apache-2.0
// Chapters: characters, substrings, searching, comparing. Positions count characters, never bytes.
#include "foundation/String.h"

#include <algorithm>
#include <cstring>

namespace ZALM
{

// ---- Characters -----------------------------------------------------------------------------------------------------

int String::GetCharBytes(const char* at)
{
    auto lead = static_cast<unsigned char>(*at);
    if (lead < 0xC0) return 1;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    if (lead < 0xF8) return 4;
    return lead < 0xFC ? 5 : 6;
}

int String::Length() const
{
    int bytes = GetStringBytes(), length = 0;
    if (bytes > 0 && buffer[bytes] != 0) return 0; // not a text
    for (int at = 0; at < bytes && buffer[at] != 0; at += GetCharBytes(buffer + at))
        ++length;
    return length;
}

/// Byte position of a character, the end of the text for one behind it.
int String::byteOf(int character) const
{
    int at = 0, bytes = GetStringBytes();
    for (; character > 0 && at < bytes; --character)
        at += GetCharBytes(buffer + at);
    return std::min(at, bytes); // a last character may lack bytes
}

const char* String::GetChar(int index, const char* from) const
{
    if (!buffer) return nullptr;
    const char* end = buffer + GetStringBytes();
    if (from) {
        int bytes = GetCharBytes(from);
        return end - from > bytes ? from + bytes : nullptr;
    }
    const char* at = buffer + byteOf(index);
    return index >= 0 && at < end ? at : nullptr;
}

void String::SetChar(int index, char c)
{
    const char* at = GetChar(index);
    if (!at) return;
    auto first = static_cast<int>(at - buffer);
    if (c == 0) return endAt(first);

    Vector<long> place;
    if (place.push_back(first) != Success) return adopt(nullptr, 0);
    substitute(place, GetCharBytes(at), &c, 1);
}

String& String::Replace(char from, char to, int first)
{
    if (from == 0) return *this;
    int bytes = GetStringBytes();
    for (int at = byteOf(first); at < bytes;) {
        int length = GetCharBytes(buffer + at);
        if (length == 1 && buffer[at] == from) {
            if (to == 0) {
                endAt(at);
                break;
            }
            buffer[at] = to;
        }
        at += length;
    }
    return *this;
}

// ---- Substrings -----------------------------------------------------------------------------------------------------

String String::Mid(int first, int count) const
{
    String result;
    int from = byteOf(first), to = from, bytes = GetStringBytes();
    for (; count > 0 && to < bytes; --count)
        to += GetCharBytes(buffer + to);
    to = std::min(to, bytes);
    if (to > from) result.setBytes(buffer + from, static_cast<size_t>(to - from));
    return result;
}

String String::Right(int count) const
{
    int length = Length();
    return Mid(length - std::clamp(count, 0, length), count);
}

// ---- Searching ------------------------------------------------------------------------------------------------------

bool String::matches(int byte, const String& text) const
{
    int length = text.GetStringBytes();
    return byte + length <= GetStringBytes() &&
           std::memcmp(Buffer() + byte, text.Buffer(), static_cast<size_t>(length)) == 0;
}

/// Byte position of the first occurrence that starts with a character at or behind the one given; -1 without one.
int String::matchFrom(int byte, const String& text) const
{
    for (int last = GetStringBytes() - text.GetStringBytes(); byte <= last; byte += GetCharBytes(buffer + byte)) {
        if (matches(byte, text)) return byte;
    }
    return -1;
}

int String::Find(const String& text, int first) const
{
    int character = std::max(first, 0);
    if (character > Length()) return -1;
    int found = matchFrom(byteOf(character), text);
    if (found < 0) return -1;
    for (int at = byteOf(character); at < found; at += GetCharBytes(buffer + at))
        ++character;
    return character;
}

int String::LastIndexOf(const String& text, int first) const
{
    int found = -1, character = 0;
    for (int at = 0, bytes = GetStringBytes(); at <= bytes && (first < 0 || character <= first); ++character) {
        if (matches(at, text)) found = character;
        at += GetCharBytes(Buffer() + at);
    }
    return found;
}

String& String::Replace(const String& from, const String& to, int first)
{
    int length = from.GetStringBytes();
    if (length == 0) return *this;
    Vector<long> places;
    for (int at = matchFrom(byteOf(first), from); at >= 0; at = matchFrom(at + length, from)) {
        if (places.push_back(at) == Success) continue;
        adopt(nullptr, 0);
        return *this;
    }
    if (!places.empty()) substitute(places, length, to.Buffer(), to.GetStringBytes());
    return *this;
}

// ---- Comparing ------------------------------------------------------------------------------------------------------

namespace
{

unsigned char folded(char c)
{
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
}

int compareFolded(const char* a, const char* b, int bytes)
{
    for (int i = 0; i < bytes; ++i) {
        if (folded(a[i]) != folded(b[i])) return folded(a[i]) < folded(b[i]) ? -1 : 1;
    }
    return 0;
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

/// Bytes that so many characters take; all of them for a negative number.
int String::bytesOfFirst(int characters) const
{
    return characters < 0 ? GetStringBytes() : byteOf(characters);
}

int String::Compare(const String& other, int count) const
{
    int a = bytesOfFirst(count), b = other.bytesOfFirst(count);
    int order = std::memcmp(Buffer(), other.Buffer(), static_cast<size_t>(std::min(a, b)));
    return sign(order != 0 ? order : a - b);
}

int String::CompareNoCase(const String& other, int count) const
{
    int a = bytesOfFirst(count), b = other.bytesOfFirst(count);
    int order = compareFolded(Buffer(), other.Buffer(), std::min(a, b));
    return sign(order != 0 ? order : a - b);
}

} // namespace ZALM
