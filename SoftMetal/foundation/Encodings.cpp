// SPDX-License-Identifier: Apache-2.0
#include "foundation/Encodings.h"

#include <algorithm>

namespace softmetal {
namespace {

unsigned char byteAt(std::string_view text, std::size_t position) { return static_cast<unsigned char>(text[position]); }

/// Bytes of the sequence that begins with lead, 0 where none does.
std::size_t sequenceLength(unsigned char lead)
{
    if (lead < 0x80) return 1;
    if (lead < 0xC2) return 0; // a continuation byte, or a longer way to write ASCII
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    return lead < 0xF5 ? 4 : 0;
}

/// The smallest code point that needs so many bytes.
constexpr char32_t SmallestOf[] = {0, 0, 0x80, 0x800, 0x10000};

bool isUtf8(std::string_view text)
{
    for (std::size_t position = 0; position < text.size();) {
        std::size_t length = sequenceLength(byteAt(text, position));
        if (length == 0 || length > text.size() - position) return false;
        for (std::size_t i = 1; i < length; ++i)
            if ((byteAt(text, position + i) & 0xC0) != 0x80) return false;
        char32_t code = nextCodePoint(text, position);
        bool surrogate = code >= 0xD800 && code < 0xE000;
        if (code < SmallestOf[length] || code > 0x10FFFF || surrogate) return false;
    }
    return true;
}

bool isAscii(std::string_view text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
}

std::string fromLatin1(std::string_view bytes)
{
    std::string result;
    result.reserve(bytes.size());
    for (char c : bytes) {
        auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80) {
            result += c;
            continue;
        }
        result += static_cast<char>(0xC0 | byte >> 6);
        result += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return result;
}

std::optional<std::string> toLatin1(std::string_view text)
{
    std::string result;
    for (std::size_t position = 0; position < text.size();) {
        char32_t code = nextCodePoint(text, position);
        if (code > 0xFF) return std::nullopt;
        result += static_cast<char>(code);
    }
    return result;
}

} // namespace

char32_t nextCodePoint(std::string_view text, std::size_t& position)
{
    unsigned char lead = byteAt(text, position);
    std::size_t length = sequenceLength(lead);
    char32_t code = length == 1 ? lead : lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i)
        code = code << 6 | (byteAt(text, position + i) & 0x3F);
    position += length;
    return code;
}

NS::UInteger utf16Length(std::string_view text)
{
    NS::UInteger length = 0;
    for (std::size_t position = 0; position < text.size();)
        length += nextCodePoint(text, position) < 0x10000 ? 1 : 2;
    return length;
}

std::optional<std::string> decode(std::string_view bytes, NS::StringEncoding encoding)
{
    switch (encoding) {
    case NS::UTF8StringEncoding: return isUtf8(bytes) ? std::optional(std::string(bytes)) : std::nullopt;
    case NS::ASCIIStringEncoding: return isAscii(bytes) ? std::optional(std::string(bytes)) : std::nullopt;
    case NS::ISOLatin1StringEncoding: return fromLatin1(bytes);
    default: return std::nullopt;
    }
}

std::optional<std::string> encode(std::string_view text, NS::StringEncoding encoding)
{
    switch (encoding) {
    case NS::UTF8StringEncoding: return std::string(text);
    case NS::ASCIIStringEncoding: return isAscii(text) ? std::optional(std::string(text)) : std::nullopt;
    case NS::ISOLatin1StringEncoding: return toLatin1(text);
    default: return std::nullopt;
    }
}

} // namespace softmetal
