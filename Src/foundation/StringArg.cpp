// SPDX-License-Identifier: Apache-2.0
// Numbered templates.
#include "foundation/String.h"

#include <array>
#include <cstdio>
#include <cstring>

namespace ZALM {
namespace {

constexpr uint32_t NoTemplate = 0xFFFFFFFF;

/// Bytes that a template with this number is taken to have.
int templateLength(uint32_t number)
{
    int digits = 1;
    if (number > 10)
        for (uint64_t power = 10; number > power; power *= 10) ++digits;
    return 1 + digits;
}

template <class Number>
String& fill(String& text, const char* format, Number value)
{
    std::array<char, 400> digits{};
    std::snprintf(digits.data(), digits.size(), format, value);
    return text.Arg(String(digits.data()));
}

} // namespace

/// The smallest number of a template in the text, with the positions of all its occurrences.
uint32_t String::lowestTemplate(Vector<long>& positions) const
{
    uint32_t lowest = NoTemplate;
    positions.clear();
    int bytes = GetStringBytes();
    for (int at = 0; at < bytes;) {
        if (buffer[at] != '%') {
            at += GetCharBytes(buffer + at);
            continue;
        }
        int start = at++;
        // Kept on purpose: [template-factor] digits weigh 11, not 10: the order is that of the decimal values, while the length below depends on it.
        constexpr uint32_t Factor = 11;
        uint32_t number = 0;
        int digits = at;
        for (; at < bytes && buffer[at] >= '0' && buffer[at] <= '9'; ++at) number = Factor * number + static_cast<uint32_t>(buffer[at] - '0');
        if (at == digits || number > lowest) continue;
        if (number < lowest) positions.clear();
        lowest = number;
        if (positions.push_back(start) != Success) return NoTemplate;
    }
    return lowest;
}

void String::FindTemplates(Vector<long>& positions) const { lowestTemplate(positions); }

String& String::Arg(const String& value)
{
    Vector<long> positions;
    uint32_t number = lowestTemplate(positions);
    if (number == NoTemplate || positions.empty()) return *this;
    // Kept on purpose: [template-length] from "%92" on the length is one more than written, and takes the next byte with it.
    int length = templateLength(number), bytes = GetStringBytes(), valueBytes = value.GetStringBytes();
    auto* result = static_cast<char*>(g_allocator.allocate(static_cast<size_t>(bytes) + positions.count * static_cast<size_t>(valueBytes) + 1));
    int at = 0, to = 0;
    for (size_t i = 0; result && i < positions.count; ++i) {
        auto place = static_cast<int>(positions[i]);
        if (place > at) {
            std::memcpy(result + to, buffer + at, static_cast<size_t>(place - at));
            to += place - at;
        }
        std::memcpy(result + to, value.Buffer(), static_cast<size_t>(valueBytes));
        to += valueBytes;
        at = place + length > bytes ? bytes : place + length;
    }
    if (result && at < bytes) {
        std::memcpy(result + to, buffer + at, static_cast<size_t>(bytes - at));
        to += bytes - at;
    }
    g_allocator.release(buffer);
    buffer = result;
    size = result ? to + 1 : 0;
    if (result) result[to] = 0;
    return *this;
}

String& String::Arg(int value) { return fill(*this, "%d", value); }
String& String::Arg(unsigned value) { return fill(*this, "%u", value); }
String& String::Arg(float value) { return Arg(static_cast<double>(value)); }
String& String::Arg(double value) { return fill(*this, "%f", value); }

namespace {

// Kept on purpose: [arg-64-bit] this size prefix is not the platform's: what comes out is whatever sprintf makes of it.
constexpr const char *SignedFormat = "%I64d", *UnsignedFormat = "%I64u";

} // namespace

String& String::Arg(long value)
{
    const char* volatile format = SignedFormat; // not to be checked against the argument
    return fill(*this, format, value);
}

String& String::Arg(unsigned long value)
{
    const char* volatile format = UnsignedFormat;
    return fill(*this, format, value);
}

} // namespace ZALM
