// SPDX-License-Identifier: Apache-2.0
// A stack of pools for each thread. An object autoreleased where there is no pool lives on, as it does under Cocoa.
#include "foundation/Log.h"
#include "foundation/Object.h"

#include <algorithm>
#include <vector>

namespace softmetal {
namespace {

class PoolObject;
thread_local std::vector<PoolObject*> pools; // innermost last

class PoolObject final : public ObjectOf<NS::AutoreleasePool>
{
public:
    PoolObject() { pools.push_back(this); }
    ~PoolObject() override
    {
        drainInner();
        drain();
        pools.erase(std::remove(pools.begin(), pools.end(), this), pools.end());
    }
    const char* className() const override { return "NSAutoreleasePool"; }
    void add(Object* object) { objects_.push_back(object); }

    void drain()
    {
        // A destructor may autorelease more into this pool.
        while (!objects_.empty()) {
            Object* object = objects_.back();
            objects_.pop_back();
            object->release();
        }
    }

private:
    /// Pools opened inside this one and not yet drained go with it.
    void drainInner()
    {
        while (!pools.empty() && pools.back() != this && std::find(pools.begin(), pools.end(), this) != pools.end())
            delete pools.back();
    }

    std::vector<Object*> objects_;
};

} // namespace
} // namespace softmetal

namespace NS {

using softmetal::PoolObject;

void Private::autorelease(const void* object)
{
    if (!object) return;
    if (softmetal::pools.empty()) {
        softmetal::log(softmetal::LogLevel::Debug, "an object was autoreleased with no pool in place; it stays alive");
        return;
    }
    softmetal::pools.back()->add(softmetal::castObject(object));
}

AutoreleasePool* AutoreleasePool::alloc() { return softmetal::api(new PoolObject); }
AutoreleasePool* AutoreleasePool::init() { return this; }
void AutoreleasePool::drain() { release(); }
void AutoreleasePool::addObject(Object* object) { softmetal::cast<PoolObject>(this)->add(softmetal::castObject(object)); }

void AutoreleasePool::showPools()
{
    softmetal::log(softmetal::LogLevel::Info, "autorelease pools of this thread: " + std::to_string(softmetal::pools.size()));
}

} // namespace NS
