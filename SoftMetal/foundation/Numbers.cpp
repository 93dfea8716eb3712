// SPDX-License-Identifier: Apache-2.0
#include "foundation/Strings.h"

#include <charconv>
#include <cmath>
#include <type_traits>
#include <variant>

namespace softmetal {
namespace {

using Scalar = std::variant<bool, long long, unsigned long long, float, double>;

/// What a Value holds that is not a number.
class ValueObject final : public ObjectOf<NS::Value>
{
public:
    explicit ValueObject(const void* value) : pointer(value) {}
    const void* const pointer;

    const char* className() const override { return "NSValue"; }
    Object* copy() const override { return sameAgain(*this); }
    NS::UInteger hash() const override { return reinterpret_cast<NS::UInteger>(pointer); }
    bool isEqual(const Object* other) const override
    {
        auto* value = dynamic_cast<const ValueObject*>(other);
        return value && value->pointer == pointer;
    }
};

class NumberObject final : public ObjectOf<NS::Number>
{
public:
    explicit NumberObject(Scalar value) : scalar(value) {}
    const Scalar scalar;

    const char* className() const override { return "NSNumber"; }
    Object* copy() const override { return sameAgain(*this); }
    std::string description() const override;
    bool isEqual(const Object* other) const override;
    NS::UInteger hash() const override { return std::hash<double>()(static_cast<double>(wide())); }

    /// Wide enough for each 64-bit integer and each double.
    long double wide() const
    {
        return std::visit([](auto value) { return static_cast<long double>(value); }, scalar);
    }
};

/// Shortest text that reads back as the number.
template <class Real>
std::string shortest(Real value)
{
    char text[64];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string NumberObject::description() const
{
    return std::visit(
        [](auto value) {
            if constexpr (std::is_floating_point_v<decltype(value)>)
                return shortest(value);
            else
                return std::to_string(value);
        },
        scalar);
}

bool NumberObject::isEqual(const Object* other) const
{
    auto* number = dynamic_cast<const NumberObject*>(other);
    return number && number->wide() == wide();
}

/// A real number without its fraction, the nearest limit where it is too large, 0 for not-a-number.
long long truncated(double value)
{
    constexpr double Limit = 9223372036854775808.0; // 2 to the 63rd
    if (std::isnan(value)) return 0;
    if (value >= Limit) return INT64_MAX;
    return value < -Limit ? INT64_MIN : static_cast<long long>(value);
}

template <class Wanted>
Wanted read(const NS::Number* number)
{
    return std::visit(
        [](auto value) {
            if constexpr (std::is_floating_point_v<decltype(value)> && std::is_integral_v<Wanted>)
                return static_cast<Wanted>(truncated(value));
            else
                return static_cast<Wanted>(value);
        },
        cast<NumberObject>(number)->scalar);
}

NS::Number* number(Scalar value) { return autoreleased(new NumberObject(value)); }
NS::Number* whole(long long value) { return number(value); }
NS::Number* natural(unsigned long long value) { return number(value); }

} // namespace
} // namespace softmetal

namespace NS {

using namespace softmetal;

// ---- Value -----------------------------------------------------------------------------------------------------------

Value* Value::value(const void* pointer) { return autoreleased(new ValueObject(pointer)); }
bool Value::isEqualToValue(Value* value) const { return isEqual(value); }

void* Value::pointerValue() const
{
    auto* value = dynamic_cast<ValueObject*>(castObject(this));
    return value ? const_cast<void*>(value->pointer) : nullptr;
}

// ---- Number ----------------------------------------------------------------------------------------------------------

Number* Number::number(char value) { return whole(value); }
Number* Number::number(unsigned char value) { return natural(value); }
Number* Number::number(short value) { return whole(value); }
Number* Number::number(unsigned short value) { return natural(value); }
Number* Number::number(int value) { return whole(value); }
Number* Number::number(unsigned int value) { return natural(value); }
Number* Number::number(long value) { return whole(value); }
Number* Number::number(unsigned long value) { return natural(value); }
Number* Number::number(long long value) { return whole(value); }
Number* Number::number(unsigned long long value) { return natural(value); }
Number* Number::number(float value) { return softmetal::number(value); }
Number* Number::number(double value) { return softmetal::number(value); }
Number* Number::number(bool value) { return softmetal::number(value); }

char Number::charValue() const { return read<char>(this); }
unsigned char Number::unsignedCharValue() const { return read<unsigned char>(this); }
short Number::shortValue() const { return read<short>(this); }
unsigned short Number::unsignedShortValue() const { return read<unsigned short>(this); }
int Number::intValue() const { return read<int>(this); }
unsigned int Number::unsignedIntValue() const { return read<unsigned int>(this); }
long Number::longValue() const { return read<long>(this); }
unsigned long Number::unsignedLongValue() const { return read<unsigned long>(this); }
long long Number::longLongValue() const { return read<long long>(this); }
unsigned long long Number::unsignedLongLongValue() const { return read<unsigned long long>(this); }
float Number::floatValue() const { return read<float>(this); }
double Number::doubleValue() const { return read<double>(this); }
bool Number::boolValue() const { return cast<NumberObject>(this)->wide() != 0; }
Integer Number::integerValue() const { return read<Integer>(this); }
UInteger Number::unsignedIntegerValue() const { return read<UInteger>(this); }
String* Number::stringValue() const { return description(); }

ComparisonResult Number::compare(const Number* other) const
{
    long double a = cast<NumberObject>(this)->wide(), b = cast<NumberObject>(other)->wide();
    return a < b ? OrderedAscending : a > b ? OrderedDescending : OrderedSame;
}

bool Number::isEqualToNumber(const Number* other) const { return isEqual(other); }

} // namespace NS
