// SPDX-License-Identifier: Apache-2.0
// A stack of pools for each thread. An object autoreleased where there is no pool lives on, as it does under Cocoa.
#include "foundation/Log.h"
#include "foundation/Object.h"

#include <algorithm>
#include <vector>

namespace softmetal {
namespace {

class PoolObject;

/// A thread's pools, the innermost last. What is left when the thread ends is drained then.
struct PoolStack
{
    ~PoolStack();
    bool holds(const PoolObject* pool) const { return std::find(pools.begin(), pools.end(), pool) != pools.end(); }
    std::vector<PoolObject*> pools;
};
thread_local PoolStack stack;

class PoolObject final : public ObjectOf<NS::AutoreleasePool>
{
public:
    PoolObject() { stack.pools.push_back(this); }
    ~PoolObject() override
    {
        drainInner();
        drain();
        std::erase(stack.pools, this);
    }
    const char* className() const override { return "NSAutoreleasePool"; }
    void add(Object* object) { objects_.push_back(object); }

private:
    void drain()
    {
        // A destructor may autorelease more into this pool.
        while (!objects_.empty()) {
            Object* object = objects_.back();
            objects_.pop_back();
            object->release();
        }
    }

    void drainInner()
    {
        while (stack.holds(this) && stack.pools.back() != this)
            delete stack.pools.back();
    }

    std::vector<Object*> objects_;
};

PoolStack::~PoolStack()
{
    while (!pools.empty())
        delete pools.back();
}

} // namespace
} // namespace softmetal

namespace NS {

using softmetal::PoolObject;
using softmetal::stack;

void Private::autorelease(const void* object)
{
    if (!object) return;
    if (stack.pools.empty()) {
        std::string name = softmetal::castObject(object)->className();
        softmetal::log(softmetal::LogLevel::Debug, name + " was autoreleased with no pool in place; it stays alive");
        return;
    }
    stack.pools.back()->add(softmetal::castObject(object));
}

AutoreleasePool* AutoreleasePool::alloc() { return softmetal::api(new PoolObject); }
AutoreleasePool* AutoreleasePool::init() { return this; }
void AutoreleasePool::drain() { release(); }

void AutoreleasePool::addObject(Object* object)
{
    if (object) softmetal::cast<PoolObject>(this)->add(softmetal::castObject(object));
}

void AutoreleasePool::showPools()
{
    softmetal::log(softmetal::LogLevel::Info, "autorelease pools of this thread: " + std::to_string(stack.pools.size()));
}

} // namespace NS
