// SPDX-License-Identifier: Apache-2.0
// Chapters: storage, contents, appending. Characters and searching are in StringText, wide text in StringWide,
// templates in StringArg.
#include "foundation/String.h"

#include <cstring>
#include <limits>

namespace ZALM
{

// ---- Storage --------------------------------------------------------------------------------------------------------

/// Null without memory, and for a text too long for the size to be counted.
char* String::newBuffer(size_t bytes)
{
    if (bytes > static_cast<size_t>(std::numeric_limits<int32_t>::max())) return nullptr;
    return static_cast<char*>(g_allocator.allocate(bytes));
}

/// Takes the buffer in the place of the old one; null makes the string of a failed allocation.
void String::adopt(char* fresh, size_t bytes)
{
    if (buffer && size != 0) g_allocator.release(buffer);
    buffer = fresh;
    size = fresh ? static_cast<int32_t>(bytes) : 0;
    if (fresh) fresh[bytes - 1] = 0;
}

/// The bytes may be part of this string.
void String::setBytes(const char* bytes, size_t length)
{
    char* fresh = newBuffer(length + 1);
    if (fresh && length > 0) std::memcpy(fresh, bytes, length);
    adopt(fresh, length + 1);
}

void String::setLatin1(const char* text, size_t length)
{
    bool terminated = length > 0 && text[length - 1] == 0;
    size_t bytes = terminated ? 0 : 1;
    for (size_t i = 0; i < length; ++i)
        bytes += static_cast<unsigned char>(text[i]) < 0x80 ? 1 : 2;

    char* fresh = newBuffer(bytes);
    char* to = fresh;
    for (size_t i = 0; fresh && i < length; ++i) {
        auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 0x80) {
            *to++ = static_cast<char>(0xC0 | (byte >> 6));
            byte = 0x80 | (byte & 0x3F);
        }
        *to++ = static_cast<char>(byte);
    }
    adopt(fresh, bytes);
}

/// Cuts the text off; the allocation stays exact.
void String::endAt(int byte)
{
    if (byte < GetStringBytes()) setBytes(buffer, static_cast<size_t>(byte));
}

// ---- Contents -------------------------------------------------------------------------------------------------------

String::String()
{
    setBytes("", 0);
}

String::String(const String& other)
{
    setBytes(other.Buffer(), static_cast<size_t>(other.GetStringBytes()));
}

String::String(const char* text, unsigned length)
{
    setLatin1(text, text ? length : 0);
}

String::String(const char* text)
{
    setLatin1(text, text ? std::strlen(text) : 0);
}

String::String(char c)
{
    setBytes(&c, 1);
}

String::String(const wchar_t* text)
{
    setWide(text);
}

String::String(unsigned spaces)
{
    size_t length = spaces;
    char* fresh = newBuffer(length + 1);
    if (fresh) std::memset(fresh, ' ', length);
    adopt(fresh, length + 1);
}

String::~String()
{
    if (buffer && size != 0) g_allocator.release(buffer);
}

String& String::operator=(const String& other)
{
    if (this != &other) setBytes(other.Buffer(), static_cast<size_t>(other.GetStringBytes()));
    return *this;
}

String& String::operator=(const char* text)
{
    if (!text) return *this;
    if (text == buffer) // nothing to copy
        buffer[size - 1] = 0;
    else
        setLatin1(text, std::strlen(text));
    return *this;
}

String& String::operator=(const wchar_t* text)
{
    if (text) setWide(text);
    return *this;
}

void String::Clear()
{
    setBytes("", 0);
}

void String::SetUTF8Buffer(const char* bytes, int length)
{
    if (!bytes) return Clear();
    setBytes(bytes, length < 0 ? std::strlen(bytes) : static_cast<size_t>(length));
}

// ---- Appending ------------------------------------------------------------------------------------------------------

String& String::Add(const String& other)
{
    return AddAscii(other.Buffer(), other.GetStringBytes());
}

/// The bytes may be part of this string, which may move while it grows.
String& String::AddAscii(const char* bytes, int length)
{
    if (!bytes) return *this;
    size_t old = static_cast<size_t>(GetStringBytes());
    size_t added = length < 0 ? std::strlen(bytes) : static_cast<size_t>(length);
    size_t total = old + added + 1;
    if (!buffer) {
        setBytes(bytes, added);
        return *this;
    }

    auto place = reinterpret_cast<uintptr_t>(bytes) - reinterpret_cast<uintptr_t>(buffer);
    bool own = place < static_cast<size_t>(size);
    bool countable = total <= static_cast<size_t>(std::numeric_limits<int32_t>::max());
    auto* grown = countable ? static_cast<char*>(g_allocator.reallocate(buffer, total)) : nullptr;
    if (!grown) {
        adopt(nullptr, 0);
        return *this;
    }
    if (added > 0) std::memmove(grown + old, own ? grown + place : bytes, added);
    grown[total - 1] = 0;
    buffer = grown;
    size = static_cast<int32_t>(total);
    return *this;
}

String String::operator+(const String& other) const
{
    String result(*this);
    if (result.buffer) result.Add(other); // half a sum would pass for a whole one
    return result;
}

} // namespace ZALM
