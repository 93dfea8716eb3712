// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"

#include "foundation/LogFormat.h"

#include <AppKit/AppKit.hpp>

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>

namespace softmetal {
namespace {

LogLevel levelFromEnvironment()
{
    static constexpr std::array Names = {"none", "error", "warn", "info", "debug"};
    const char* wanted = std::getenv("SOFTMETAL_LOG_LEVEL");
    for (std::size_t i = 0; wanted && i < Names.size(); ++i)
        if (std::strcmp(wanted, Names[i]) == 0) return static_cast<LogLevel>(i);
    return LogLevel::Error;
}

std::atomic<LogLevel>& level()
{
    static std::atomic<LogLevel> value{levelFromEnvironment()};
    return value;
}

struct Sink
{
    std::mutex mutex;
    std::function<void(LogLevel, const std::string&)> function;
};

// Lives for ever: something may be said while the process ends.
Sink& sink()
{
    static Sink* instance = new Sink;
    return *instance;
}

void write(LogLevel at, const std::string& line)
{
    std::unique_lock lock(sink().mutex);
    auto function = sink().function;
    lock.unlock();

    if (function) return function(at, line);
    std::string whole = line + "\n"; // one call, so that lines of several threads do not mix
    std::fwrite(whole.data(), 1, whole.size(), stderr);
}

} // namespace

void setLogSink(std::function<void(LogLevel, const std::string&)> newSink)
{
    std::lock_guard lock(sink().mutex);
    sink().function = std::move(newSink);
}

void setLogLevel(LogLevel newLevel) { level() = newLevel; }

void log(LogLevel at, const std::string& line)
{
    if (at <= level().load(std::memory_order_relaxed)) write(at, line);
}

void logAlways(const std::string& line) { write(LogLevel::None, line); }

} // namespace softmetal

void NSLog(const char* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    std::string line = softmetal::formatLine(format, arguments);
    va_end(arguments);
    softmetal::logAlways(line);
}
