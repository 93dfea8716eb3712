// SPDX-License-Identifier: Apache-2.0
#include "foundation/String.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <cwchar>

namespace ZALM {

// ---- storage -------------------------------------------------------------------------------------------------------------

/// Gives up the contents and makes room; false leaves the string of a failed allocation.
bool String::allocate(int bytes)
{
    if (buffer && size != 0) g_allocator.release(buffer);
    buffer = static_cast<char*>(g_allocator.allocate(static_cast<size_t>(bytes)));
    size = buffer ? bytes : 0;
    return buffer != nullptr;
}

void String::setBytes(const char* bytes, int length)
{
    auto* fresh = static_cast<char*>(g_allocator.allocate(static_cast<size_t>(length) + 1));
    if (fresh) {
        std::memcpy(fresh, bytes, static_cast<size_t>(length));
        fresh[length] = 0;
    }
    if (buffer && size != 0) g_allocator.release(buffer);
    buffer = fresh;
    size = fresh ? length + 1 : 0;
}

void String::setLatin1(const char* text, unsigned length)
{
    int bytes = 0;
    for (unsigned i = 0; i < length; ++i) bytes += static_cast<unsigned char>(text[i]) < 0x80 ? 1 : 2;
    bool terminated = length > 0 && text[length - 1] == 0;
    if (!allocate(bytes + (terminated ? 0 : 1))) return;
    char* to = buffer;
    for (unsigned i = 0; i < length; ++i) {
        auto byte = static_cast<unsigned char>(text[i]);
        if (byte < 0x80) {
            *to++ = text[i];
            continue;
        }
        *to++ = static_cast<char>(0xC0 | (byte >> 6));
        *to++ = static_cast<char>(0x80 | (byte & 0x3F));
    }
    buffer[size - 1] = 0;
}

namespace {

int encodedLength(uint32_t code) { return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4; }

char* encode(uint32_t code, char* to)
{
    int length = encodedLength(code);
    if (length == 1) {
        *to = static_cast<char>(code);
        return to + 1;
    }
    static constexpr unsigned char Leads[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (int i = length - 1; i > 0; --i, code >>= 6) to[i] = static_cast<char>(0x80 | (code & 0x3F));
    to[0] = static_cast<char>(Leads[length] | code);
    return to + length;
}

} // namespace

void String::setWide(const wchar_t* text)
{
    int bytes = 1;
    for (const wchar_t* c = text; c && *c; ++c) bytes += encodedLength(static_cast<uint32_t>(*c));
    if (!allocate(bytes)) return;
    char* to = buffer;
    for (const wchar_t* c = text; c && *c; ++c) to = encode(static_cast<uint32_t>(*c), to);
    *to = 0;
}

// ---- construction and assignment -------------------------------------------------------------------------------------------

String::String() { setBytes("", 0); }
String::String(const String& other) { setBytes(other.Buffer(), other.GetStringBytes()); }
String::String(const char* text, unsigned length) { setLatin1(text, length); }
String::String(const char* text) { setLatin1(text ? text : "", text ? static_cast<unsigned>(std::strlen(text)) : 0); }
String::String(char c) { setBytes(&c, 1); }
String::String(const wchar_t* text) { setWide(text); }

String::String(unsigned spaces)
{
    if (!allocate(static_cast<int>(spaces) + 1)) return;
    std::memset(buffer, ' ', spaces);
    buffer[spaces] = 0;
}

String::~String()
{
    if (buffer && size != 0) g_allocator.release(buffer);
}

String& String::operator=(const String& other)
{
    if (this != &other) setBytes(other.Buffer(), other.GetStringBytes());
    return *this;
}

String& String::operator=(const char* text)
{
    if (!text) return *this;
    if (text == buffer) {
        buffer[size - 1] = 0;
        return *this;
    }
    setLatin1(text, static_cast<unsigned>(std::strlen(text)));
    return *this;
}

String& String::operator=(const wchar_t* text)
{
    if (text) setWide(text);
    return *this;
}

void String::Clear() { setBytes("", 0); }
void String::SetUTF8Buffer(const char* bytes, int length) { setBytes(bytes, length < 0 ? static_cast<int>(std::strlen(bytes)) : length); }

// ---- appending -------------------------------------------------------------------------------------------------------------

String& String::Add(const String& other) { return AddAscii(other.Buffer(), other.GetStringBytes()); }

String& String::AddAscii(const char* bytes, int length)
{
    if (!bytes) return *this;
    if (length < 0) length = static_cast<int>(std::strlen(bytes));
    int old = GetStringBytes();
    bool own = buffer && bytes >= buffer && bytes <= buffer + size; // appending a part of itself
    ptrdiff_t place = own ? bytes - buffer : 0;
    void* memory = buffer && size != 0 ? g_allocator.reallocate(buffer, static_cast<size_t>(old) + static_cast<size_t>(length) + 1)
                                       : g_allocator.allocate(static_cast<size_t>(length) + 1);
    if (!memory) {
        if (buffer && size != 0) g_allocator.release(buffer);
        buffer = nullptr;
        size = 0;
        return *this;
    }
    buffer = static_cast<char*>(memory);
    std::memmove(buffer + old, own ? buffer + place : bytes, static_cast<size_t>(length));
    size = old + length + 1;
    buffer[size - 1] = 0;
    return *this;
}

String String::operator+(const String& other) const
{
    String result(*this);
    result.Add(other);
    return result;
}

// ---- characters ------------------------------------------------------------------------------------------------------------

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
    int length = 0, bytes = GetStringBytes();
    for (int at = 0; at < bytes && buffer[at] != 0; at += GetCharBytes(buffer + at)) ++length;
    return length;
}

/// Byte position of a character, the end of the text for one beyond it.
int String::byteOf(int character) const
{
    int at = 0, bytes = GetStringBytes();
    for (; character > 0 && at < bytes; --character) at += GetCharBytes(buffer + at);
    return std::min(at, bytes);
}

int String::characterOf(int byte) const
{
    int character = 0;
    for (int at = 0; at < byte; at += GetCharBytes(buffer + at)) ++character;
    return character;
}

const char* String::GetChar(int index, const char* from) const
{
    if (!buffer || size <= 0) return nullptr;
    const char* end = buffer + size - 1;
    if (from) {
        const char* next = from + GetCharBytes(from);
        return from < end && next < end ? next : nullptr;
    }
    if (index < 0) return nullptr;
    const char* at = buffer + byteOf(index);
    return at < end ? at : nullptr;
}

void String::SetChar(int index, char c)
{
    const char* at = GetChar(index);
    if (!at) return;
    auto first = static_cast<int>(at - buffer), behind = std::min(first + GetCharBytes(at), GetStringBytes());
    String result;
    result.SetUTF8Buffer(buffer, first);
    result.AddAscii(&c, 1);
    result.AddAscii(buffer + behind, GetStringBytes() - behind);
    *this = result;
}

String& String::Replace(char from, char to, int first)
{
    int bytes = GetStringBytes();
    for (int at = byteOf(first); at < bytes; at += GetCharBytes(buffer + at))
        if (buffer[at] == from) buffer[at] = to;
    return *this;
}

String& String::Replace(const String& from, const String& to, int first)
{
    if (from.IsEmpty() || IsEmpty()) return *this;
    String result;
    int at = byteOf(first);
    result.SetUTF8Buffer(buffer, at);
    for (;;) {
        const char* found = std::strstr(buffer + at, from.Buffer());
        if (!found) break;
        result.AddAscii(buffer + at, static_cast<int>(found - buffer) - at);
        result.Add(to);
        at = static_cast<int>(found - buffer) + from.GetStringBytes();
    }
    result.AddAscii(buffer + at, GetStringBytes() - at);
    return *this = result;
}

String String::Mid(int first, int count) const
{
    String result;
    if (count <= 0 || IsEmpty()) return result;
    int from = byteOf(std::max(first, 0)), to = from, bytes = GetStringBytes();
    for (; count > 0 && to < bytes; --count) to += GetCharBytes(buffer + to);
    result.SetUTF8Buffer(buffer + from, std::min(to, bytes) - from);
    return result;
}

String String::Right(int count) const
{
    int length = Length();
    return Mid(std::max(length - std::max(count, 0), 0), count);
}

// ---- wide copies -----------------------------------------------------------------------------------------------------------

uint32_t String::decode(const char*& at)
{
    int length = GetCharBytes(at);
    auto lead = static_cast<unsigned char>(*at++);
    uint32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
    for (; length > 1 && *at; --length) code = code << 6 | (static_cast<unsigned char>(*at++) & 0x3F);
    return code;
}

uint32_t* String::ToUCS4() const
{
    auto* wide = static_cast<uint32_t*>(g_allocator.allocate((static_cast<size_t>(Length()) + 1) * sizeof(uint32_t)));
    if (!wide) return nullptr;
    uint32_t* to = wide;
    for (const char* at = Buffer(); *at;) *to++ = decode(at);
    *to = 0;
    return wide;
}

uint16_t* String::ToUCS2() const
{
    auto* wide = static_cast<uint16_t*>(g_allocator.allocate((static_cast<size_t>(Length()) + 1) * sizeof(uint16_t)));
    if (!wide) return nullptr;
    uint16_t* to = wide;
    for (const char* at = Buffer(); *at;) *to++ = static_cast<uint16_t>(decode(at));
    *to = 0;
    return wide;
}

wchar_t* String::To_wchar_t() const
{
    static_assert(sizeof(wchar_t) == sizeof(uint32_t));
    return reinterpret_cast<wchar_t*>(ToUCS4());
}

// ---- searching and comparing -----------------------------------------------------------------------------------------------

int String::Find(const String& text, int first) const
{
    if (first < 0) first = 0;
    if (first > Length()) return -1;
    const char* found = std::strstr(Buffer() + byteOf(first), text.Buffer());
    return found ? characterOf(static_cast<int>(found - Buffer())) : -1;
}

int String::LastIndexOf(const String& text, int first) const
{
    int length = Length();
    for (int i = first < 0 ? length : std::min(first, length); i >= 0; --i)
        if (std::strncmp(Buffer() + byteOf(i), text.Buffer(), static_cast<size_t>(text.GetStringBytes())) == 0) return i;
    return -1;
}

namespace {

unsigned char folded(char c) { return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c); }

int compareBytes(const char* a, int aBytes, const char* b, int bBytes, bool fold)
{
    for (int i = 0; i < aBytes && i < bBytes; ++i) {
        int x = fold ? folded(a[i]) : static_cast<unsigned char>(a[i]), y = fold ? folded(b[i]) : static_cast<unsigned char>(b[i]);
        if (x != y) return x < y ? -1 : 1;
    }
    return aBytes == bBytes ? 0 : aBytes < bBytes ? -1 : 1;
}

} // namespace

int String::Compare(const String& other, int count) const
{
    return compareBytes(Buffer(), count < 0 ? GetStringBytes() : byteOf(count), other.Buffer(), count < 0 ? other.GetStringBytes() : other.byteOf(count), false);
}

int String::CompareNoCase(const String& other, int count) const
{
    return compareBytes(Buffer(), count < 0 ? GetStringBytes() : byteOf(count), other.Buffer(), count < 0 ? other.GetStringBytes() : other.byteOf(count), true);
}

} // namespace ZALM
