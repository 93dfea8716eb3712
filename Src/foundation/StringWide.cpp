// SPDX-License-Identifier: Apache-2.0
// Chapters: text from code points, and code points from text.
#include "foundation/String.h"

#include <array>

namespace ZALM
{
namespace
{

constexpr int MostBytes = 6;

/// By length: the first code point that needs more bytes, and the bits that mark a lead byte.
struct Encoding
{
    uint32_t end;
    unsigned char lead;
};
constexpr std::array<Encoding, MostBytes + 1> Encodings = {{
    {0, 0},
    {0x80, 0x00},
    {0x800, 0xC0},
    {0x10000, 0xE0},
    {0x200000, 0xF0},
    {0x4000000, 0xF8},
    {0xFFFFFFFF, 0xFC},
}};

size_t encodedLength(uint32_t code)
{
    size_t length = 1;
    while (length < MostBytes && code >= Encodings[length].end)
        ++length;
    return length;
}

char* encode(uint32_t code, char* to)
{
    size_t length = encodedLength(code);
    for (size_t i = length - 1; i > 0; --i, code >>= 6)
        to[i] = static_cast<char>(0x80 | (code & 0x3F));
    to[0] = static_cast<char>(Encodings[length].lead | code);
    return to + length;
}

/// Moves on behind the character, or to the NUL that cuts it off.
uint32_t decode(const char*& at)
{
    int length = String::GetCharBytes(at);
    auto lead = static_cast<unsigned char>(*at++);
    uint32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
    for (; length > 1 && *at; --length)
        code = code << 6 | (static_cast<unsigned char>(*at++) & 0x3F);
    return code;
}

/// Null without memory.
template <class Unit>
Unit* newWide(const String& text, uint32_t most)
{
    constexpr Unit Replacement = 0xFFFD;
    auto count = static_cast<size_t>(text.Length());
    auto* wide = static_cast<Unit*>(g_allocator.allocate((count + 1) * sizeof(Unit)));
    if (!wide) return nullptr;
    const char* at = text.Buffer();
    for (size_t i = 0; i < count; ++i) {
        uint32_t code = decode(at);
        wide[i] = code <= most ? static_cast<Unit>(code) : Replacement;
    }
    wide[count] = 0;
    return wide;
}

} // namespace

void String::setWide(const wchar_t* text)
{
    size_t bytes = 1;
    for (const wchar_t* c = text; c && *c; ++c)
        bytes += encodedLength(static_cast<uint32_t>(*c));

    char* fresh = newBuffer(bytes);
    char* to = fresh;
    for (const wchar_t* c = text; fresh && c && *c; ++c)
        to = encode(static_cast<uint32_t>(*c), to);
    adopt(fresh, bytes);
}

uint16_t* String::ToUCS2() const
{
    return newWide<uint16_t>(*this, 0xFFFF);
}

uint32_t* String::ToUCS4() const
{
    return newWide<uint32_t>(*this, 0xFFFFFFFF);
}

wchar_t* String::To_wchar_t() const
{
    static_assert(sizeof(wchar_t) == sizeof(uint32_t));
    return newWide<wchar_t>(*this, 0xFFFFFFFF);
}

} // namespace ZALM
