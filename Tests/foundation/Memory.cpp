// SPDX-License-Identifier: Apache-2.0
#include "foundation/Memory.h"

#include "foundation/Allocate.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>

namespace foundation
{
namespace
{

struct Counters
{
    size_t calls = 0, lastBytes = 0, live = 0;
    bool armed = false;     // the calls from here to the next change are those that may fail
    size_t armedCalls = 0;
    size_t failing = SIZE_MAX; // call that fails
    Memory::Fault fault = Memory::Fault::Forever;
};

Counters counters;
ZALM::Allocator before;

bool fails(size_t bytes)
{
    size_t call = counters.calls++;
    counters.lastBytes = bytes;
    return counters.fault == Memory::Fault::Once ? call == counters.failing : call >= counters.failing;
}

void* allocate(size_t bytes)
{
    if (fails(bytes)) return nullptr;
    ++counters.live;
    return std::malloc(bytes);
}

void* reallocate(void* memory, size_t bytes)
{
    if (fails(bytes)) return nullptr;
    counters.live += memory ? 0 : 1;
    return std::realloc(memory, bytes);
}

void release(void* memory)
{
    counters.live -= memory ? 1 : 0;
    std::free(memory);
}

} // namespace

Memory::Memory()
{
    counters = {};
    before = ZALM::g_allocator;
    ZALM::g_allocator = {allocate, reallocate, release};
}

Memory::~Memory()
{
    ZALM::g_allocator = before;
}

void Memory::failAt(size_t call, Fault fault)
{
    if (counters.armed) counters.armedCalls = counters.calls;
    counters.armed = false;
    counters.calls = 0;
    counters.failing = call;
    counters.fault = fault;
}

void Memory::succeed()
{
    failAt(SIZE_MAX);
}

size_t Memory::calls() const
{
    return counters.calls;
}

void Memory::arm()
{
    counters.armed = true;
}

size_t Memory::armedCalls() const
{
    return counters.armedCalls;
}

size_t Memory::lastBytes() const
{
    return counters.lastBytes;
}

size_t Memory::live() const
{
    return counters.live;
}

void forEachFault(const std::function<void(Memory&, const Arm&)>& body)
{
    Memory memory;
    body(memory, [&] {
        memory.succeed();
        memory.arm();
    });
    memory.succeed(); // as each body does when it has more to do
    const size_t calls = memory.armedCalls();
    ASSERT_GT(calls, 0u) << "nothing can fail here";
    ASSERT_EQ(memory.live(), 0u);
    for (Memory::Fault fault : {Memory::Fault::Once, Memory::Fault::Forever}) {
        for (size_t call = 0; call < calls; ++call) {
            memory.succeed();
            SCOPED_TRACE(::testing::Message() << "call " << call << (fault == Memory::Fault::Once ? " once" : " on"));
            body(memory, [&] { memory.failAt(call, fault); });
            ASSERT_EQ(memory.live(), 0u);
        }
    }
}

} // namespace foundation
