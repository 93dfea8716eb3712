// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"

#include "foundation/Strings.h"

#include <array>
#include <atomic>
#include <cstdarg>
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
    for (size_t i = 0; wanted && i < Names.size(); ++i)
        if (std::strcmp(wanted, Names[i]) == 0) return static_cast<LogLevel>(i);
    return LogLevel::Error;
}

std::atomic<LogLevel>& level()
{
    static std::atomic<LogLevel> value{levelFromEnvironment()};
    return value;
}

std::mutex sinkMutex;
std::function<void(LogLevel, const std::string&)> sink;

void write(LogLevel at, const std::string& line)
{
    std::lock_guard lock(sinkMutex);
    if (sink) return sink(at, line);
    std::fprintf(stderr, "%s\n", line.c_str());
}

/// Formats one printf conversion whose argument comes next in the list.
std::string convert(const std::string& spec, std::va_list& arguments)
{
    std::array<char, 512> text{};
    char kind = spec.back();
    bool wide = spec.find('l') != std::string::npos || spec.find('z') != std::string::npos;
    if (std::strchr("fFeEgGaA", kind)) {
        std::snprintf(text.data(), text.size(), spec.c_str(), va_arg(arguments, double));
    } else if (kind == 's') {
        const char* value = va_arg(arguments, const char*);
        return value ? value : "(null)";
    } else if (kind == 'p') {
        std::snprintf(text.data(), text.size(), spec.c_str(), va_arg(arguments, void*));
    } else if (wide) {
        std::snprintf(text.data(), text.size(), spec.c_str(), va_arg(arguments, long));
    } else {
        std::snprintf(text.data(), text.size(), spec.c_str(), va_arg(arguments, int));
    }
    return text.data();
}

std::string describe(const void* object) { return object ? castObject(object)->description() : "(null)"; }

std::string formatLine(const char* format, std::va_list& arguments)
{
    std::string line;
    for (const char* p = format; *p; ++p) {
        if (*p != '%') {
            line += *p;
            continue;
        }
        if (p[1] == '%') {
            line += *++p;
            continue;
        }
        std::string spec = "%";
        while (*++p && !std::strchr("@sdiuxXcpfFeEgGaAo", *p)) spec += *p;
        if (!*p) break;
        spec += *p;
        line += *p == '@' ? describe(va_arg(arguments, const void*)) : convert(spec, arguments);
    }
    return line;
}

} // namespace

void setLogSink(std::function<void(LogLevel, const std::string&)> newSink)
{
    std::lock_guard lock(sinkMutex);
    sink = std::move(newSink);
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

void NS::raise(const char* name, const char* reason) { throw Exception(name, reason); }
