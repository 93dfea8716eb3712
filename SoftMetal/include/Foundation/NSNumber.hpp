// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// An immutable pointer or number in an object's clothes.
class SOFTMETAL_API Value : public Copying<Value>
{
public:
    static Value* value(const void* pointer);
    bool isEqualToValue(Value* value) const;
    void* pointerValue() const; // null for a number
};

/// An immutable number. Reading one as a type that cannot hold it wraps, as a cast between integers does.
class SOFTMETAL_API Number : public Copying<Number, Value>
{
public:
    static Number* number(char value);
    static Number* number(unsigned char value);
    static Number* number(short value);
    static Number* number(unsigned short value);
    static Number* number(int value);
    static Number* number(unsigned int value);
    static Number* number(long value);
    static Number* number(unsigned long value);
    static Number* number(long long value);
    static Number* number(unsigned long long value);
    static Number* number(float value);
    static Number* number(double value);
    static Number* number(bool value);
    char charValue() const;
    unsigned char unsignedCharValue() const;
    short shortValue() const;
    unsigned short unsignedShortValue() const;
    int intValue() const;
    unsigned int unsignedIntValue() const;
    long longValue() const;
    unsigned long unsignedLongValue() const;
    long long longLongValue() const;
    unsigned long long unsignedLongLongValue() const;
    float floatValue() const;
    double doubleValue() const;
    bool boolValue() const;
    Integer integerValue() const;
    UInteger unsignedIntegerValue() const;
    String* stringValue() const;
    ComparisonResult compare(const Number* other) const;
    bool isEqualToNumber(const Number* number) const;
};

}
