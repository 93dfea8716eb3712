// SPDX-License-Identifier: Apache-2.0
#include "foundation/Object.h"
#include "inspect/Inspect.h"

#include <algorithm>
#include <atomic>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace softmetal::inspect {
namespace {

std::atomic<bool> anyLog{false};

struct Log
{
    std::mutex mutex;
    bool everywhere = false;
    std::vector<const void*> devices; // besides, when not everywhere
    std::vector<SoftMetal::LogEntry> entries;
    bool tracing = false; // everything is kept for a trace document as well
    Trace trace;
    std::unordered_map<const void*, uint32_t> numbers; // of the traced objects, by address

    bool any() const { return everywhere || tracing || !devices.empty(); }
};

Log& commandLog()
{
    static auto* log = new Log;
    return *log;
}

TracedObject traced(const void* object)
{
    const Object* any = castObject(object);
    const auto* described = dynamic_cast<const Described*>(any);
    return {any->className(), described ? described->labelText() : "(no label)", described ? described->summary() : ""};
}

/// What a call returns is a new object, though its address may have been another's.
uint32_t numberOf(Log& log, const void* object, bool isNew)
{
    if (!object) return 0;
    auto [place, added] = log.numbers.try_emplace(object, 0);
    if (added || isNew) {
        log.trace.objects.push_back(traced(object));
        place->second = static_cast<uint32_t>(log.trace.objects.size());
    }
    return place->second;
}

void trace(Log& log, SoftMetal::LogEntry entry)
{
    TracedCall call;
    call.receiver = numberOf(log, entry.receiver, false);
    if (call.receiver) log.trace.objects[call.receiver - 1].label = entry.label; // labels are often set late
    for (const SoftMetal::LogArgument& a : entry.arguments) call.objects.push_back(numberOf(log, a.object, a.name == "result"));
    call.entry = std::move(entry);
    log.trace.calls.push_back(std::move(call));
}

} // namespace

bool logging() { return anyLog.load(std::memory_order_relaxed); }

void logCall(const void* receiver, const char* call, std::vector<SoftMetal::LogArgument> arguments)
{
    const auto* described = dynamic_cast<const Described*>(castObject(receiver));
    const void* device = described ? described->deviceIdentity() : nullptr;
    std::string label = described ? described->labelText() : std::string();
    Log& log = commandLog();
    std::lock_guard lock(log.mutex);
    SoftMetal::LogEntry entry{call, receiver, std::move(arguments), std::move(label)};
    bool wanted = log.everywhere || std::find(log.devices.begin(), log.devices.end(), device) != log.devices.end();
    if (wanted) log.entries.push_back(entry);
    if (log.tracing) trace(log, std::move(entry));
}

void beginTrace()
{
    std::lock_guard lock(commandLog().mutex);
    commandLog().tracing = true;
    commandLog().trace = {};
    commandLog().numbers.clear();
    anyLog = true;
}

Trace endTrace()
{
    std::lock_guard lock(commandLog().mutex);
    commandLog().tracing = false;
    anyLog = commandLog().any();
    return std::exchange(commandLog().trace, {});
}

} // namespace softmetal::inspect

namespace SoftMetal {

using namespace softmetal;
using inspect::commandLog;

void setCommandLog(bool on)
{
    std::lock_guard lock(commandLog().mutex);
    commandLog().everywhere = on;
    if (!on) commandLog().devices.clear();
    inspect::anyLog = commandLog().any();
}

void setCommandLog(MTL::Device* device, bool on)
{
    std::lock_guard lock(commandLog().mutex);
    std::erase(commandLog().devices, device);
    if (on) commandLog().devices.push_back(device);
    inspect::anyLog = commandLog().any();
}

std::vector<LogEntry> takeCommandLog()
{
    std::lock_guard lock(commandLog().mutex);
    return std::exchange(commandLog().entries, {});
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

} // namespace SoftMetal
