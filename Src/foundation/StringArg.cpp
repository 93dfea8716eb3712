// SPDX-License-Identifier: Apache-2.0
// Numbered templates: finding the lowest, filling it with text or numbers.
#include "foundation/String.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <limits>

namespace ZALM
{
namespace
{

/// Bytes that a template with this number is taken to have, the "%" included.
int templateLength(uint32_t number)
{
    int digits = 1;
    // Kept on purpose: [template-length] from "%92" on this is one more than is written; the next byte goes with it.
    for (uint64_t power = 10; number > power; power *= 10)
        ++digits;
    return 1 + digits;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr size_t LongestNumber = 400; // "%f" of the largest double has 317 characters

} // namespace

// ---- Templates ------------------------------------------------------------------------------------------------------

/// The smallest number and where it stands; no positions when the text has no template. 0, or 2 with nothing found.
int String::collectTemplates(uint32_t& number, Vector<long>& positions) const
{
    number = std::numeric_limits<uint32_t>::max();
    positions.clear();
    for (int at = 0, bytes = GetStringBytes(); at < bytes;) {
        int start = at;
        at += GetCharBytes(buffer + at);
        if (buffer[start] != '%' || !isDigit(buffer[at])) continue;

        // Kept on purpose: [template-factor] a digit weighs 11 times the next, not 10: the order is that of the decimal
        // values, the length above is not.
        constexpr uint32_t Factor = 11;
        uint32_t found = 0;
        for (; isDigit(buffer[at]); ++at)
            found = Factor * found + static_cast<uint32_t>(buffer[at] - '0');

        if (found > number) continue;
        if (found < number) positions.clear();
        number = found;
        if (int status = positions.push_back(start)) {
            positions.clear();
            return status;
        }
    }
    return Success;
}

void String::FindTemplates(Vector<long>& positions) const
{
    uint32_t number = 0;
    collectTemplates(number, positions);
}

/// Puts the value in the place of so many bytes at each position, in one allocation. Positions ascend; what one
/// occurrence has swallowed of the next, or lacks at the end of the text, is not missed.
void String::substitute(const Vector<long>& positions, int length, const char* value, int valueBytes)
{
    const int bytes = GetStringBytes();
    size_t total = 1 + positions.count * static_cast<size_t>(valueBytes) + static_cast<size_t>(bytes);
    int at = 0;
    for (long position : positions) {
        int from = std::max(static_cast<int>(position), at);
        at = std::min(static_cast<int>(position) + length, bytes);
        total -= static_cast<size_t>(at - from);
    }

    char* fresh = newBuffer(total);
    if (!fresh) return adopt(nullptr, 0);
    char* to = fresh;
    auto put = [&to](const char* text, int count) {
        std::memcpy(to, text, static_cast<size_t>(count));
        to += count;
    };
    at = 0;
    for (long position : positions) {
        if (position > at) put(buffer + at, static_cast<int>(position) - at);
        put(value, valueBytes);
        at = std::min(static_cast<int>(position) + length, bytes);
    }
    put(buffer + at, bytes - at);
    adopt(fresh, total);
}

String& String::fillLowest(const char* value, int bytes)
{
    uint32_t number = 0;
    Vector<long> positions;
    // Left as it is, the text would give this value's place to the next one.
    if (collectTemplates(number, positions) != Success)
        adopt(nullptr, 0);
    else if (!positions.empty())
        substitute(positions, templateLength(number), value, bytes);
    return *this;
}

// ---- Values ---------------------------------------------------------------------------------------------------------

namespace
{

using Digits = std::array<char, LongestNumber>;

template <class Number>
int print(Digits& digits, const char* format, Number value)
{
    return std::snprintf(digits.data(), digits.size(), format, value);
}

// Kept on purpose: [arg-64-bit] this size prefix is not the platform's: what comes out is whatever sprintf makes of it.
constexpr const char *SignedFormat = "%I64d", *UnsignedFormat = "%I64u";

} // namespace

String& String::Arg(const String& value)
{
    return fillLowest(value.Buffer(), value.GetStringBytes());
}

String& String::Arg(int value)
{
    Digits digits;
    return fillLowest(digits.data(), print(digits, "%d", value));
}

String& String::Arg(unsigned value)
{
    Digits digits;
    return fillLowest(digits.data(), print(digits, "%u", value));
}

String& String::Arg(long value)
{
    Digits digits;
    const char* volatile format = SignedFormat; // not to be checked against the argument
    return fillLowest(digits.data(), print(digits, format, value));
}

String& String::Arg(unsigned long value)
{
    Digits digits;
    const char* volatile format = UnsignedFormat;
    return fillLowest(digits.data(), print(digits, format, value));
}

String& String::Arg(float value)
{
    return Arg(static_cast<double>(value));
}

String& String::Arg(double value)
{
    Digits digits;
    return fillLowest(digits.data(), print(digits, "%f", value));
}

} // namespace ZALM
