// SPDX-License-Identifier: Apache-2.0
#include "foundation/Quarantine.h"

#include "foundation/Log.h"
#include "foundation/Object.h"

#include <atomic>
#include <deque>
#include <mutex>

namespace softmetal::quarantine {
namespace {

/// Stands where an object was. Never destroyed: its memory is freed under it.
class Tombstone final : public Object
{
public:
    Tombstone() : Object(Remains{}) {}
    const char* className() const override { return "released object"; }
};
static_assert(sizeof(Tombstone) == sizeof(Object), "a tombstone must fit where any object was");

struct Grave
{
    void* memory;
    std::align_val_t alignment;
    const char* className;
};

struct Yard
{
    std::mutex mutex;
    std::deque<Grave> graves; // the oldest first
    std::function<void(const std::string&)> handler;
};

// Lives for ever: objects may be released while the process ends.
Yard& yard()
{
    static Yard* instance = new Yard;
    return *instance;
}

std::atomic<std::size_t> capacity{0};

void freeMemory(const Grave& grave)
{
    if (static_cast<std::size_t>(grave.alignment) > __STDCPP_DEFAULT_NEW_ALIGNMENT__)
        ::operator delete(grave.memory, grave.alignment);
    else
        ::operator delete(grave.memory);
}

/// Called with the lock held.
void shrink(std::deque<Grave>& graves, std::size_t size)
{
    for (; graves.size() > size; graves.pop_front())
        freeMemory(graves.front());
}

std::string nameOf(const void* memory)
{
    std::lock_guard lock(yard().mutex);
    for (const Grave& grave : yard().graves)
        if (grave.memory == memory) return grave.className;
    return "object";
}

} // namespace

void setSize(std::size_t objects)
{
    std::lock_guard lock(yard().mutex);
    capacity = objects;
    shrink(yard().graves, objects);
}

void setHandler(std::function<void(const std::string&)> handler)
{
    std::lock_guard lock(yard().mutex);
    yard().handler = std::move(handler);
}

bool check(const void* object, const char* call)
{
    if (!object || !castObject(object)->isReleased()) return true;
    reportUse(object, call);
    return false;
}

void bury(void* memory, std::align_val_t alignment, const char* className)
{
    Grave grave{memory, alignment, className};
    if (capacity.load(std::memory_order_relaxed) == 0) return freeMemory(grave);
    std::lock_guard lock(yard().mutex);
    new (memory) Tombstone;
    yard().graves.push_back(grave);
    shrink(yard().graves, capacity);
}

void reportUse(const void* remains, const char* call)
{
    std::string sentence = std::string(call) + ": the " + nameOf(remains) + " has already been released for the last time";
    std::function<void(const std::string&)> handler;
    {
        std::lock_guard lock(yard().mutex);
        handler = yard().handler;
    }
    handler ? handler(sentence) : log(LogLevel::Error, sentence);
}

} // namespace softmetal::quarantine
