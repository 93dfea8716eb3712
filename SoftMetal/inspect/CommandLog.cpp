// SPDX-License-Identifier: Apache-2.0
#include "foundation/Object.h"
#include "inspect/Inspect.h"

#include <algorithm>
#include <atomic>
#include <mutex>
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
    std::vector<SoftMetal::LogEntry> trace;

    bool any() const { return everywhere || tracing || !devices.empty(); }
};

Log& commandLog()
{
    static auto* log = new Log;
    return *log;
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
    if (log.tracing) log.trace.push_back(std::move(entry));
}

void beginTrace()
{
    std::lock_guard lock(commandLog().mutex);
    commandLog().tracing = true;
    commandLog().trace.clear();
    anyLog = true;
}

std::vector<SoftMetal::LogEntry> endTrace()
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
