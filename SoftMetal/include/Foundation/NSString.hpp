// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

enum StringEncoding : UInteger
{
    ASCIIStringEncoding = 1,
    UTF8StringEncoding = 4,
    ISOLatin1StringEncoding = 5,
};

using unichar = unsigned short;

/// Immutable text, UTF-8 inside.
class SOFTMETAL_API String : public Copying<String>
{
public:
    static String* alloc();
    static String* string();
    static String* string(const String* string);
    static String* string(const char* text, StringEncoding encoding);
    String* init();
    String* init(const String* string);
    String* init(const char* text, StringEncoding encoding);
    unichar character(UInteger index) const; // a UTF-16 unit
    UInteger length() const;                 // in UTF-16 units
    const char* cString(StringEncoding encoding) const;
    const char* utf8String() const; // lives as long as the string
    UInteger lengthOfBytes(StringEncoding encoding) const;
    bool isEqualToString(const String* string) const;
    String* stringByAppendingString(const String* string) const;
    int caseInsensitiveCompare(const String* string) const; // -1, 0 or 1
};

/// Whether text begins with prefix, byte for byte.
SOFTMETAL_API bool hasPrefix(const String* text, const char* prefix);

}
