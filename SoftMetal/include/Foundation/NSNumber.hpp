// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSObject.hpp"

namespace NS
{

/// An immutable number.
class SOFTMETAL_API Number : public Copying<Number>
{
public:
    static Number* number(bool value);
    static Number* number(int value);
    static Number* number(unsigned int value);
    static Number* number(double value);
    bool boolValue() const;
    int intValue() const;
    unsigned int unsignedIntValue() const;
    float floatValue() const;
    double doubleValue() const;
    String* stringValue() const;
};

}
