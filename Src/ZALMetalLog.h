// SPDX-License-Identifier: Apache-2.0
// What the library says, and what it counts. One place, so that level, callback and the limit on repeats hold for all.
#pragma once

#include <ZALMetal/ZALMetal.h>

#include <Foundation/Foundation.hpp>

namespace ZALMetal {

/// Says one line, printf's way, unless the level is above the one set or the line has been said often enough.
[[gnu::format(printf, 2, 3)]] void Log(ZALMetalLogLevel level, const char* format, ...);

/// An object in words for %s: an error's or a string's own, "(null)" for none. Lives as long as the autorelease pool.
const char* InWords(const NS::Object* object);

/// Process-wide; the entry points add to it as they go.
inline ZALMetalCounters g_counters = {};

} // namespace ZALMetal
