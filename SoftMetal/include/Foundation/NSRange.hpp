// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSTypes.hpp"

namespace NS
{

struct Range
{
    UInteger location, length;

    Range(UInteger loc, UInteger len) : location(loc), length(len) {}
    static Range Make(UInteger loc, UInteger len) { return Range(loc, len); }
    bool Equal(const Range& range) const { return location == range.location && length == range.length; }
    bool LocationInRange(UInteger loc) const { return loc >= location && loc - location < length; }
    UInteger Max() const { return location + length; }
};

}
