// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "NSTypes.hpp"

namespace NS
{

enum ComparisonResult : Integer
{
    OrderedAscending = -1,
    OrderedSame = 0,
    OrderedDescending = 1,
};

inline constexpr Integer NotFound = IntegerMax;

}
