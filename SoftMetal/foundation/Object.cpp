// SPDX-License-Identifier: Apache-2.0
#include "foundation/Object.h"

#include "foundation/Quarantine.h"
#include "foundation/Strings.h"

#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <map>
#include <memory>
#include <mutex>

namespace softmetal {
namespace {

std::atomic<int64_t> objectsAlive{0};

struct ClassCounters
{
    std::mutex mutex;
    std::map<std::string, std::atomic<int64_t>> counts;
};

// Lives for ever: objects may be released while the process ends.
ClassCounters& classCounters()
{
    static auto* instance = new ClassCounters;
    return *instance;
}

std::string readableName(const std::type_info& type)
{
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return status == 0 ? name.get() : type.name();
}

constexpr NS::UInteger Immortal = NS::UInteger(1) << 62; // more references than anybody gives back

} // namespace

Object::Object() { objectsAlive.fetch_add(1, std::memory_order_relaxed); }
Object::~Object() { objectsAlive.fetch_sub(1, std::memory_order_relaxed); }
int64_t Object::alive() { return objectsAlive.load(std::memory_order_relaxed); }

std::atomic<int64_t>& Object::classCounter(const std::type_info& apiClass)
{
    std::lock_guard lock(classCounters().mutex);
    return classCounters().counts[readableName(apiClass)];
}

std::vector<std::pair<std::string, int64_t>> Object::aliveByClass()
{
    std::lock_guard lock(classCounters().mutex);
    std::vector<std::pair<std::string, int64_t>> result;
    for (const auto& [name, count] : classCounters().counts)
        result.emplace_back(name, count.load(std::memory_order_relaxed));
    return result;
}

void Object::makeImmortal()
{
    references_.store(Immortal, std::memory_order_relaxed);
    objectsAlive.fetch_sub(1, std::memory_order_relaxed);
}

void Object::release() const
{
    NS::UInteger before = references_.fetch_sub(1, std::memory_order_acq_rel);
    if (before == 1) {
        delete const_cast<Object*>(this);
    } else if (before == 0) [[unlikely]] {
        revive("release");
    }
}

void Object::operator delete(Object* object, std::destroying_delete_t, std::align_val_t alignment)
{
    const char* name = object->className();
    void* memory = dynamic_cast<void*>(object);
    object->~Object();
    quarantine::bury(memory, alignment, name);
}

/// Somebody retained or released the remains of an object: they stay dead, and it is said.
void Object::revive(const char* call) const
{
    references_.store(0, std::memory_order_relaxed);
    quarantine::reportUse(this, call);
}

std::string Object::description() const
{
    char text[96];
    std::snprintf(text, sizeof text, "<%s: %p>", className(), static_cast<const void*>(this));
    return text;
}

} // namespace softmetal

namespace NS {

using softmetal::castObject;

void Private::retain(const void* object)
{
    if (object) castObject(object)->retain();
}

void Private::release(const void* object)
{
    if (object) castObject(object)->release();
}

UInteger Private::retainCount(const void* object) { return object ? castObject(object)->retainCount() : 0; }
void* Private::copy(const void* object) { return object ? castObject(object)->copy() : nullptr; }

UInteger Object::hash() const { return castObject(this)->hash(); }
bool Object::isEqual(const Object* object) const { return object && castObject(this)->isEqual(castObject(object)); }
String* Object::description() const { return softmetal::autoreleasedString(castObject(this)->description()); }
String* Object::debugDescription() const { return description(); }

} // namespace NS
