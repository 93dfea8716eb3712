// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <cstddef>
#include <cstdint>

#define SOFTMETAL_API __attribute__((visibility("default")))

/// Any API object, where a call takes objects of several classes.
struct objc_object
{
    objc_object() = delete;
};
using id = objc_object*;

namespace NS
{

using TimeInterval = double;
using Integer = std::intptr_t;
using UInteger = std::uintptr_t;

inline constexpr Integer IntegerMax = INTPTR_MAX;
inline constexpr Integer IntegerMin = INTPTR_MIN;
inline constexpr UInteger UIntegerMax = UINTPTR_MAX;

struct OperatingSystemVersion
{
    Integer majorVersion, minorVersion, patchVersion;
};

}
