// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"
#include "NSRange.hpp"

/// A string that is made once and lives for ever.
#define MTLSTR(literal) (NS::Private::constantString("" literal ""))

namespace NS
{

enum StringEncoding : UInteger
{
    ASCIIStringEncoding = 1,
    NEXTSTEPStringEncoding = 2,
    JapaneseEUCStringEncoding = 3,
    UTF8StringEncoding = 4,
    ISOLatin1StringEncoding = 5,
    SymbolStringEncoding = 6,
    NonLossyASCIIStringEncoding = 7,
    ShiftJISStringEncoding = 8,
    ISOLatin2StringEncoding = 9,
    UnicodeStringEncoding = 10,
    WindowsCP1251StringEncoding = 11,
    WindowsCP1252StringEncoding = 12,
    WindowsCP1253StringEncoding = 13,
    WindowsCP1254StringEncoding = 14,
    WindowsCP1250StringEncoding = 15,
    ISO2022JPStringEncoding = 21,
    MacOSRomanStringEncoding = 30,
    UTF16StringEncoding = UnicodeStringEncoding,
    UTF16BigEndianStringEncoding = 0x90000100,
    UTF16LittleEndianStringEncoding = 0x94000100,
    UTF32StringEncoding = 0x8c000100,
    UTF32BigEndianStringEncoding = 0x98000100,
    UTF32LittleEndianStringEncoding = 0x9c000100,
};

using StringCompareOptions = UInteger; // any of:
enum : StringCompareOptions
{
    CaseInsensitiveSearch = 1,
    LiteralSearch = 2,
    BackwardsSearch = 4,
    AnchoredSearch = 8,
    NumericSearch = 64,
    DiacriticInsensitiveSearch = 128,
    WidthInsensitiveSearch = 256,
    ForcedOrderingSearch = 512,
    RegularExpressionSearch = 1024,
};

using unichar = unsigned short;

/// Immutable text, UTF-8 inside; positions and lengths count UTF-16 units. ASCII, UTF-8 and Latin 1 are known; text that
/// is not valid in its encoding, or is in another one, gives null.
class SOFTMETAL_API String : public Copying<String>
{
public:
    static String* string();
    static String* string(const String* string);
    static String* string(const char* text, StringEncoding encoding);
    static String* alloc();
    String* init();
    String* init(const String* string);
    String* init(const char* text, StringEncoding encoding);
    String* init(void* bytes, UInteger length, StringEncoding encoding, bool freeBuffer);
    unichar character(UInteger index) const; // 0 beyond the end
    UInteger length() const;
    /// Null where the text cannot be written in the encoding. The pointer is good until the innermost pool is drained.
    const char* cString(StringEncoding encoding) const;
    const char* utf8String() const; // lives as long as the string
    UInteger maximumLengthOfBytes(StringEncoding encoding) const;
    UInteger lengthOfBytes(StringEncoding encoding) const; // 0 where the text cannot be written in the encoding
    bool isEqualToString(const String* string) const;
    /// Where the text stands, with NotFound as the location where it does not. Of the options, CaseInsensitiveSearch (of
    /// ASCII letters), BackwardsSearch and AnchoredSearch count.
    Range rangeOfString(const String* string, StringCompareOptions options) const;
    const char* fileSystemRepresentation() const;
    String* stringByAppendingString(const String* string) const;
    ComparisonResult caseInsensitiveCompare(const String* string) const; // of ASCII letters
};

namespace Private
{
SOFTMETAL_API String* constantString(const char* text);
}

}
