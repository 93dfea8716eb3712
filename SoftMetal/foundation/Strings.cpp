// SPDX-License-Identifier: Apache-2.0
#include "foundation/Strings.h"

#include <strings.h>

namespace softmetal {
namespace {

/// Number of UTF-16 units that the bytes make.
NS::UInteger utf16Length(std::string_view text)
{
    NS::UInteger length = 0;
    for (unsigned char byte : text) length += (byte & 0xC0) != 0x80 ? (byte >= 0xF0 ? 2 : 1) : 0;
    return length;
}

std::string fromLatin1(const char* text)
{
    std::string result;
    for (; *text; ++text) {
        auto byte = static_cast<unsigned char>(*text);
        if (byte < 0x80) {
            result += *text;
            continue;
        }
        result += static_cast<char>(0xC0 | (byte >> 6));
        result += static_cast<char>(0x80 | (byte & 0x3F));
    }
    return result;
}

std::string decoded(const char* text, NS::StringEncoding encoding)
{
    if (!text) return {};
    return encoding == NS::ISOLatin1StringEncoding ? fromLatin1(text) : std::string(text);
}

/// The code point whose first byte is at position, which is moved past it.
uint32_t nextCodePoint(const std::string& text, size_t& position)
{
    auto byte = static_cast<unsigned char>(text[position++]);
    int more = byte >= 0xF0 ? 3 : byte >= 0xE0 ? 2 : byte >= 0xC0 ? 1 : 0;
    uint32_t code = more == 0 ? byte : byte & (0x3Fu >> more);
    for (; more > 0 && position < text.size(); --more) code = code << 6 | (static_cast<unsigned char>(text[position++]) & 0x3F);
    return code;
}

const std::string& stringOf(const NS::String* string) { return cast<StringObject>(string)->text(); }

} // namespace

Object* StringObject::copy() const
{
    auto* self = const_cast<StringObject*>(this); // immutable: a copy is another reference
    self->retain();
    return self;
}

bool StringObject::isEqual(const Object* other) const
{
    auto* string = dynamic_cast<const StringObject*>(other);
    return string && string->text_ == text_;
}

NS::String* newString(std::string text) { return api(new StringObject(std::move(text))); }

NS::String* autoreleasedString(std::string text)
{
    NS::String* result = newString(std::move(text));
    NS::Private::autorelease(result);
    return result;
}

std::string textOf(const NS::String* string) { return string ? stringOf(string) : std::string(); }

} // namespace softmetal

namespace NS {

using softmetal::autoreleasedString;
using softmetal::newString;
using softmetal::stringOf;

String* String::alloc() { return newString({}); }
String* String::string() { return autoreleasedString({}); }
String* String::string(const String* text) { return autoreleasedString(softmetal::textOf(text)); }
String* String::string(const char* text, StringEncoding encoding) { return autoreleasedString(softmetal::decoded(text, encoding)); }
String* String::init() { return this; }

String* String::init(const String* text)
{
    release(); // strings do not change: what alloc made gives way to the one with the text
    return newString(softmetal::textOf(text));
}

String* String::init(const char* text, StringEncoding encoding)
{
    release();
    return newString(softmetal::decoded(text, encoding));
}

unichar String::character(UInteger index) const
{
    const std::string& text = stringOf(this);
    for (size_t position = 0; position < text.size();) {
        uint32_t code = softmetal::nextCodePoint(text, position);
        if (code < 0x10000) {
            if (index-- == 0) return static_cast<unichar>(code);
            continue;
        }
        if (index == 0) return static_cast<unichar>(0xD800 + ((code - 0x10000) >> 10));
        if (index == 1) return static_cast<unichar>(0xDC00 + ((code - 0x10000) & 0x3FF));
        index -= 2;
    }
    return 0;
}

UInteger String::length() const { return softmetal::utf16Length(stringOf(this)); }
const char* String::cString(StringEncoding) const { return utf8String(); }
const char* String::utf8String() const { return stringOf(this).c_str(); }
UInteger String::lengthOfBytes(StringEncoding) const { return stringOf(this).size(); }
bool String::isEqualToString(const String* other) const { return other && stringOf(this) == stringOf(other); }

String* String::stringByAppendingString(const String* other) const
{
    return autoreleasedString(stringOf(this) + softmetal::textOf(other));
}

int String::caseInsensitiveCompare(const String* other) const
{
    int order = strcasecmp(utf8String(), softmetal::textOf(other).c_str());
    return (order > 0) - (order < 0);
}

bool hasPrefix(const String* text, const char* prefix) { return softmetal::textOf(text).rfind(prefix, 0) == 0; }

} // namespace NS
