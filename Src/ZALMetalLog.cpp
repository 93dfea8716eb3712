// SPDX-License-Identifier: Apache-2.0
// Chapters: repeats, lines, the host's settings, counters.
#include "ZALMetalLog.h"

#include <AppKit/AppKit.hpp>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>

namespace {

constexpr std::array<const char*, 5> LevelNames = {"none", "error", "warn", "info", "debug"};

// ---- Repeats ---------------------------------------------------------------------------------------------------------------

constexpr uint32_t MostRepeats = 10;

struct Said
{
    uint64_t hash;
    uint32_t times;
};

/// The lines said so far, as many as fit; one for which there is no room counts as new each time.
std::array<Said, 256> g_said;
size_t g_saidCount = 0;

uint64_t hashOf(const char* line)
{
    uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (; *line; ++line) hash = (hash ^ static_cast<unsigned char>(*line)) * 0x100000001B3;
    return hash;
}

/// How often the line has been said, this time included.
uint32_t count(const char* line)
{
    const uint64_t hash = hashOf(line);
    Said* end = g_said.data() + g_saidCount;
    Said* known = std::find_if(g_said.data(), end, [hash](const Said& said) { return said.hash == hash; });
    if (known != end) return ++known->times;
    if (g_saidCount < g_said.size()) g_said[g_saidCount++] = {hash, 1};
    return 1;
}

// ---- Lines -----------------------------------------------------------------------------------------------------------------

struct Settings
{
    int level;
    ZALMetalLogCallback callback = nullptr;
    void* user = nullptr;
};

/// Without the variable, or with a word that is no level, everything is said but what helps with debugging only.
int levelOfEnvironment()
{
    const char* wanted = std::getenv("ZALMETAL_LOG_LEVEL");
    auto same = [wanted](const char* name) { return wanted && std::strcmp(wanted, name) == 0; };
    auto found = std::find_if(LevelNames.begin(), LevelNames.end(), same);
    return found == LevelNames.end() ? ZALMetalLogLevelInfo : static_cast<int>(found - LevelNames.begin());
}

Settings& settings()
{
    static Settings current{levelOfEnvironment()};
    return current;
}

/// A line of printf's making. Without memory for a long one it is cut, so that even then something is said.
class Line
{
public:
    Line(const char* format, va_list arguments)
    {
        va_list again;
        va_copy(again, arguments);
        const int length = std::vsnprintf(short_, sizeof short_, format, again);
        va_end(again);
        if (length < static_cast<int>(sizeof short_)) return;
        const size_t bytes = static_cast<size_t>(length) + 1;
        long_.reset(new (std::nothrow) char[bytes]);
        if (long_) std::vsnprintf(long_.get(), bytes, format, arguments);
    }
    const char* text() const { return long_ ? long_.get() : short_; }

private:
    char short_[1024] = {};
    std::unique_ptr<char[]> long_;
};

void say(ZALMetalLogLevel level, const char* line)
{
    const Settings& to = settings();
    if (to.callback) to.callback(level, line, to.user);
    else NSLog("%s", line);
}

} // namespace

namespace ZALMetal {

void Log(ZALMetalLogLevel level, const char* format, ...)
{
    if (level > settings().level) return;
    va_list arguments;
    va_start(arguments, format);
    const Line line(format, arguments);
    va_end(arguments);

    const uint32_t times = count(line.text());
    if (times > MostRepeats) {
        ++g_counters.messagesDropped;
        return;
    }
    say(level, line.text());
    if (times == MostRepeats) say(level, "ZAL Metal, the line before has been said 10 times and is only counted from now on.");
}

const char* InWords(const NS::Object* object)
{
    NS::String* words = object ? const_cast<NS::Object*>(object)->description() : nullptr;
    const char* text = words ? words->utf8String() : nullptr;
    return text ? text : "(null)";
}

} // namespace ZALMetal

// ---- The host's settings -----------------------------------------------------------------------------------------------------

void ZALMetalSetLogLevel(int level)
{
    settings().level = std::clamp<int>(level, ZALMetalLogLevelNone, ZALMetalLogLevelDebug);
    g_saidCount = 0;
}

void ZALMetalSetLogCallback(ZALMetalLogCallback callback, void* user)
{
    settings().callback = callback;
    settings().user = user;
    g_saidCount = 0;
}

// ---- Counters ----------------------------------------------------------------------------------------------------------------

void ZALMetalGetCounters(ZALMetalCounters* counters, size_t size)
{
    if (counters) std::memcpy(counters, &ZALMetal::g_counters, std::min(size, sizeof ZALMetal::g_counters));
}
