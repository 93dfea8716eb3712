// SPDX-License-Identifier: Apache-2.0
#include "foundation/LogFormat.h"

#include "foundation/Object.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

namespace softmetal {
namespace {

/// One conversion, taken apart.
struct Conversion
{
    std::string shape;  // "%-8.3": percent sign, flags, width, precision; stars replaced by their arguments
    std::string length; // "ll"
    char kind = 0;      // 'd'; 0 where the format ends too soon
};

bool isOneOf(char c, const char* set) { return c && std::strchr(set, c); }

/// Reads digits, or a star, whose argument it takes.
void readNumber(const char*& p, Conversion& conversion, std::va_list& arguments)
{
    if (*p == '*') {
        conversion.shape += std::to_string(va_arg(arguments, int));
        ++p;
        return;
    }
    while (isOneOf(*p, "0123456789"))
        conversion.shape += *p++;
}

/// p stands on the percent sign, and afterwards behind the conversion.
Conversion readConversion(const char*& p, std::va_list& arguments)
{
    Conversion conversion;
    conversion.shape = *p++;
    while (isOneOf(*p, "-+ #0"))
        conversion.shape += *p++;
    readNumber(p, conversion, arguments);
    if (*p == '.') {
        conversion.shape += *p++;
        readNumber(p, conversion, arguments);
    }
    while (isOneOf(*p, "hljztqL"))
        conversion.length += *p++;
    if (*p) conversion.kind = *p++;
    return conversion;
}

template <class Value>
std::string print(const Conversion& conversion, const char* length, Value value)
{
    std::string format = conversion.shape + length + conversion.kind;
    char text[128];
    int needed = std::snprintf(text, sizeof text, format.c_str(), value);
    if (needed < 0) return {};
    if (static_cast<std::size_t>(needed) < sizeof text) return text;
    std::string whole(static_cast<std::size_t>(needed), '\0');
    std::snprintf(whole.data(), whole.size() + 1, format.c_str(), value);
    return whole;
}

long long signedArgument(const std::string& length, std::va_list& arguments)
{
    if (length == "hh") return static_cast<signed char>(va_arg(arguments, int));
    if (length == "h") return static_cast<short>(va_arg(arguments, int));
    if (length == "l") return va_arg(arguments, long);
    if (length == "z" || length == "t") return va_arg(arguments, std::ptrdiff_t);
    return length.empty() ? va_arg(arguments, int) : va_arg(arguments, long long);
}

unsigned long long unsignedArgument(const std::string& length, std::va_list& arguments)
{
    if (length == "hh") return static_cast<unsigned char>(va_arg(arguments, int));
    if (length == "h") return static_cast<unsigned short>(va_arg(arguments, int));
    if (length == "l") return va_arg(arguments, unsigned long);
    if (length == "z" || length == "t") return va_arg(arguments, std::size_t);
    return length.empty() ? va_arg(arguments, unsigned) : va_arg(arguments, unsigned long long);
}

std::string convert(const Conversion& conversion, std::va_list& arguments)
{
    char kind = conversion.kind;
    if (isOneOf(kind, "di")) return print(conversion, "ll", signedArgument(conversion.length, arguments));
    if (isOneOf(kind, "ouxX")) return print(conversion, "ll", unsignedArgument(conversion.length, arguments));
    if (isOneOf(kind, "eEfFgGaA")) {
        if (conversion.length == "L") return print(conversion, "L", va_arg(arguments, long double));
        return print(conversion, "", va_arg(arguments, double));
    }
    if (kind == 'c') return print(conversion, "", va_arg(arguments, int));
    if (kind == 'p') return print(conversion, "", va_arg(arguments, void*));
    if (kind == 's') {
        const char* text = va_arg(arguments, const char*);
        return print(conversion, "", text ? text : "(null)");
    }
    if (kind == '@') {
        const void* object = va_arg(arguments, const void*);
        return object ? castObject(object)->description() : "(null)";
    }
    return conversion.shape + conversion.length + (kind ? std::string(1, kind) : std::string());
}

} // namespace

std::string formatLine(const char* format, std::va_list& arguments)
{
    std::string line;
    for (const char* p = format; *p;) {
        if (*p != '%') {
            line += *p++;
        } else if (p[1] == '%') {
            line += '%';
            p += 2;
        } else {
            line += convert(readConversion(p, arguments), arguments);
        }
    }
    return line;
}

} // namespace softmetal
