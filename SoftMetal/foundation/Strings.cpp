// SPDX-License-Identifier: Apache-2.0
#include "foundation/Strings.h"

#include "foundation/Encodings.h"

#include <AppKit/AppKit.hpp>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <mutex>

namespace softmetal {
namespace {

const std::string& stringOf(const NS::String* string) { return cast<StringObject>(string)->text(); }

/// The caller owns the result; null when the bytes are not valid.
NS::String* decodedString(const char* bytes, NS::UInteger length, NS::StringEncoding encoding)
{
    if (!bytes) return nullptr;
    auto text = decode({bytes, length}, encoding);
    return text ? newString(*std::move(text)) : nullptr;
}

NS::String* decodedString(const char* text, NS::StringEncoding encoding)
{
    return decodedString(text, text ? std::char_traits<char>::length(text) : 0, encoding);
}

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return lowered(c); });
    return text;
}

/// Byte position of part in text, npos where it is not.
std::size_t find(const std::string& text, const std::string& part, NS::StringCompareOptions options)
{
    bool backwards = options & NS::BackwardsSearch;
    if (options & NS::AnchoredSearch) {
        if (part.size() > text.size()) return std::string::npos;
        std::size_t at = backwards ? text.size() - part.size() : 0;
        return text.compare(at, part.size(), part) == 0 ? at : std::string::npos;
    }
    return backwards ? text.rfind(part) : text.find(part);
}

} // namespace

bool StringObject::isEqual(const Object* other) const
{
    auto* string = dynamic_cast<const StringObject*>(other);
    return string && string->text_ == text_;
}

NS::String* newString(std::string text) { return api(new StringObject(std::move(text))); }
NS::String* autoreleasedString(std::string text) { return autoreleased(new StringObject(std::move(text))); }
std::string textOf(const NS::String* string) { return string ? stringOf(string) : std::string(); }

} // namespace softmetal

namespace NS {

using namespace softmetal;

// ---- making ----------------------------------------------------------------------------------------------------------

String* String::string() { return autoreleasedString({}); }
String* String::string(const String* text) { return autoreleasedString(textOf(text)); }

String* String::string(const char* text, StringEncoding encoding)
{
    String* result = decodedString(text, encoding);
    return result ? result->autorelease() : nullptr;
}

// Strings do not change: what alloc made gives way to the one with the text.
String* String::alloc() { return newString({}); }
String* String::init() { return this; }

String* String::init(const String* text)
{
    release();
    return newString(textOf(text));
}

String* String::init(const char* text, StringEncoding encoding)
{
    release();
    return decodedString(text, encoding);
}

String* String::init(void* bytes, UInteger length, StringEncoding encoding, bool freeBuffer)
{
    release();
    String* result = decodedString(static_cast<const char*>(bytes), length, encoding);
    if (freeBuffer && result) std::free(bytes); // where it fails, the buffer stays the caller's
    return result;
}

String* Private::constantString(const char* text)
{
    static std::mutex mutex;
    static auto* constants = new std::map<std::string, StringObject*, std::less<>>; // never destroyed, as its strings
    std::lock_guard lock(mutex);
    auto [place, isNew] = constants->try_emplace(text, nullptr);
    if (isNew) {
        place->second = new StringObject(text);
        place->second->makeImmortal();
    }
    return api(place->second);
}

// ---- reading ---------------------------------------------------------------------------------------------------------

unichar String::character(UInteger index) const
{
    const std::string& text = stringOf(this);
    for (std::size_t position = 0; position < text.size();) {
        char32_t code = nextCodePoint(text, position);
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

UInteger String::length() const { return utf16Length(stringOf(this)); }
const char* String::utf8String() const { return stringOf(this).c_str(); }
const char* String::fileSystemRepresentation() const { return utf8String(); }

const char* String::cString(StringEncoding encoding) const
{
    auto bytes = encode(stringOf(this), encoding);
    if (!bytes) return nullptr;
    if (*bytes == stringOf(this)) return utf8String();
    return stringOf(autoreleasedString(*std::move(bytes))).c_str();
}

UInteger String::maximumLengthOfBytes(StringEncoding encoding) const
{
    switch (encoding) {
    case UTF8StringEncoding: return 3 * length();
    case ASCIIStringEncoding:
    case ISOLatin1StringEncoding: return length();
    default: return 0;
    }
}

UInteger String::lengthOfBytes(StringEncoding encoding) const
{
    auto bytes = encode(stringOf(this), encoding);
    return bytes ? bytes->size() : 0;
}

// ---- comparing -------------------------------------------------------------------------------------------------------

bool String::isEqualToString(const String* other) const { return other && stringOf(this) == stringOf(other); }

Range String::rangeOfString(const String* other, StringCompareOptions options) const
{
    bool ignoresCase = options & CaseInsensitiveSearch;
    std::string text = ignoresCase ? lowered(stringOf(this)) : stringOf(this);
    std::string part = ignoresCase ? lowered(textOf(other)) : textOf(other);
    std::size_t at = part.empty() ? std::string::npos : find(text, part, options);
    if (at == std::string::npos) return Range(static_cast<UInteger>(NotFound), 0);
    return Range(utf16Length(std::string_view(text).substr(0, at)), utf16Length(part));
}

String* String::stringByAppendingString(const String* other) const
{
    return autoreleasedString(stringOf(this) + textOf(other));
}

ComparisonResult String::caseInsensitiveCompare(const String* other) const
{
    int order = lowered(stringOf(this)).compare(lowered(textOf(other)));
    return order < 0 ? OrderedAscending : order > 0 ? OrderedDescending : OrderedSame;
}

bool hasPrefix(const String* text, const char* prefix) { return text && stringOf(text).rfind(prefix, 0) == 0; }

} // namespace NS
