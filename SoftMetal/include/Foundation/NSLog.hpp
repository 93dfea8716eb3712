// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: the system log. The interface is the same on every platform and is included through
// <AppKit/AppKit.hpp>.
#pragma once

#include "NSTypes.hpp"

/// Writes one line to the system log. %@ takes an NS::Object* (its description; "(null)" for null); the rest is printf's.
SOFTMETAL_API void NSLog(const char* format, ...);
