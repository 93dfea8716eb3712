// SPDX-License-Identifier: Apache-2.0
#include "inspect/Inspect.h"

#include "foundation/Log.h"
#include "foundation/Object.h"

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>

namespace softmetal::inspect {
namespace {

using SoftMetal::Validation;

constexpr size_t MostMessages = 10000;

Validation modeFromEnvironment()
{
    const char* mode = std::getenv("SOFTMETAL_VALIDATION");
    if (mode && std::strcmp(mode, "off") == 0) return Validation::Off;
    return mode && std::strcmp(mode, "abort") == 0 ? Validation::Abort : Validation::Report;
}

std::atomic<Validation>& mode()
{
    static std::atomic<Validation> value{modeFromEnvironment()};
    return value;
}

std::mutex mutex; // guards what follows
std::vector<SoftMetal::Message> messages;
std::vector<SoftMetal::LogEntry> entries;

struct Fault
{
    uint64_t calls = 0;
    uint64_t failing = 0; // 0: none
    bool persistent = false;

    bool count()
    {
        ++calls;
        if (failing == 0) return false;
        if (--failing > 0) return false;
        if (persistent) failing = 1;
        return true;
    }
};
std::map<std::string, Fault>& faults()
{
    static std::map<std::string, Fault> all;
    return all;
}

std::atomic<bool> logOn{false};

} // namespace

bool validating() { return mode().load(std::memory_order_relaxed) != Validation::Off; }

void report(const char* rule, const std::string& sentence)
{
    if (!validating()) return;
    log(LogLevel::Error, "SoftMetal validation: " + sentence + " [" + rule + "]");
    if (mode() == Validation::Abort) std::abort();
    std::lock_guard lock(mutex);
    if (messages.size() < MostMessages) messages.push_back({rule, sentence});
}

bool logging() { return logOn.load(std::memory_order_relaxed); }

void logCall(const void* receiver, const char* call, std::vector<SoftMetal::LogArgument> arguments)
{
    std::lock_guard lock(mutex);
    entries.push_back({call, receiver, std::move(arguments)});
}

bool fails(const char* point)
{
    std::lock_guard lock(mutex);
    bool all = faults()["*"].count();
    return faults()[point].count() || all;
}

} // namespace softmetal::inspect

namespace SoftMetal {

using namespace softmetal;

void setValidation(Validation value) { inspect::mode() = value; }

std::vector<Message> takeMessages()
{
    std::lock_guard lock(inspect::mutex);
    return std::exchange(inspect::messages, {});
}

void setCommandLog(bool on) { inspect::logOn = on; }

std::vector<LogEntry> takeCommandLog()
{
    std::lock_guard lock(inspect::mutex);
    return std::exchange(inspect::entries, {});
}

double LogEntry::number(const std::string& name) const
{
    for (const LogArgument& a : arguments)
        if (a.name == name) return a.number;
    return 0;
}

const void* LogEntry::object(const std::string& name) const
{
    for (const LogArgument& a : arguments)
        if (a.name == name) return a.object;
    return nullptr;
}

std::string LogEntry::text(const std::string& name) const
{
    for (const LogArgument& a : arguments)
        if (a.name == name) return a.text;
    return {};
}

void injectFault(const std::string& point, uint64_t n, bool persistent)
{
    std::lock_guard lock(inspect::mutex);
    inspect::faults()[point].failing = n;
    inspect::faults()[point].persistent = persistent;
}

void clearFaults()
{
    std::lock_guard lock(inspect::mutex);
    inspect::faults().clear();
}

uint64_t failableCalls(const std::string& point)
{
    std::lock_guard lock(inspect::mutex);
    return inspect::faults()[point].calls;
}

int64_t objectsAlive() { return Object::alive(); }

void setLogSink(std::function<void(const std::string& line)> sink)
{
    if (!sink) return softmetal::setLogSink({});
    softmetal::setLogSink([sink](LogLevel, const std::string& line) { sink(line); });
}

} // namespace SoftMetal
