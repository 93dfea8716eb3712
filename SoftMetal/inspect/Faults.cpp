// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"
#include "foundation/Object.h"
#include "inspect/Inspect.h"

#include <map>
#include <mutex>

namespace softmetal::inspect {
namespace {

struct Fault
{
    uint64_t calls = 0;
    uint64_t failing = 0; // the how-manieth call from now fails, 0: none
    bool persistent = false;

    bool count()
    {
        ++calls;
        if (failing == 0 || --failing > 0) return false;
        if (persistent) failing = 1;
        return true;
    }
};

struct Faults
{
    std::mutex mutex;
    std::map<std::string, Fault> points;
};

Faults& faults()
{
    static auto* all = new Faults;
    return *all;
}

} // namespace

bool fails(const char* point)
{
    std::lock_guard lock(faults().mutex);
    bool all = faults().points["*"].count();
    return faults().points[point].count() || all;
}

bool failsByName(const char* point)
{
    std::lock_guard lock(faults().mutex);
    return faults().points[point].count();
}

} // namespace softmetal::inspect

namespace SoftMetal {

using namespace softmetal;
using inspect::faults;

void injectFault(const std::string& point, uint64_t n, bool persistent)
{
    std::lock_guard lock(faults().mutex);
    faults().points[point].failing = n;
    faults().points[point].persistent = persistent;
}

void clearFaults()
{
    std::lock_guard lock(faults().mutex);
    faults().points.clear();
}

uint64_t failableCalls(const std::string& point)
{
    std::lock_guard lock(faults().mutex);
    auto known = faults().points.find(point);
    return known == faults().points.end() ? 0 : known->second.calls;
}

int64_t objectsAlive() { return Object::alive(); }

int64_t objectsAlive(const std::string& className)
{
    for (const auto& [name, count] : Object::aliveByClass())
        if (name == className) return count;
    return 0;
}

std::vector<std::pair<std::string, int64_t>> objectsAliveByClass() { return Object::aliveByClass(); }

void setLogLevel(LogLevel level) { softmetal::setLogLevel(static_cast<softmetal::LogLevel>(level)); }

void setLogSink(std::function<void(const std::string& line)> sink)
{
    if (!sink) return softmetal::setLogSink({});
    softmetal::setLogSink([sink](softmetal::LogLevel, const std::string& line) { sink(line); });
}

} // namespace SoftMetal
