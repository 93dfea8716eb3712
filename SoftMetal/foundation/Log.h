// SPDX-License-Identifier: Apache-2.0
// One sink for all that is said: the device's own messages, filtered by level, and NSLog lines, which always pass.
#pragma once

#include <functional>
#include <string>

namespace softmetal {

enum class LogLevel { None, Error, Warn, Info, Debug };

/// Replaces the sink (standard error at the start); an empty function restores it. The sink is called without a lock, from
/// any thread, and may itself log. Thread-safe.
void setLogSink(std::function<void(LogLevel, const std::string&)> sink);

/// Messages above this level are dropped. The start value comes from SOFTMETAL_LOG_LEVEL (none, error, warn, info, debug),
/// else it is Error.
void setLogLevel(LogLevel level);

void log(LogLevel level, const std::string& line);

/// A line that is not filtered; the sink gets it with LogLevel::None.
void logAlways(const std::string& line);

} // namespace softmetal
