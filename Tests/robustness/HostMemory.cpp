// SPDX-License-Identifier: Apache-2.0
#include "robustness/HostMemory.h"

#include <cstdint>
#include <new>

namespace
{

bool counting = false;
size_t calls = 0, failingCall = SIZE_MAX;
robustness::Fault kind = robustness::Fault::Once;

bool fails()
{
    if (!counting) return false;
    size_t call = calls++;
    return kind == robustness::Fault::Once ? call == failingCall : call >= failingCall;
}

} // namespace

// ---- what the linker is told to put in the place of the ordinary functions -----------------------------------------

extern "C" {
void* __real_malloc(size_t bytes);
void* __real_realloc(void* memory, size_t bytes);
void* __real__Znwm(size_t bytes);
void* __real__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& nothrow);
void* __real__Znam(size_t bytes);
void* __real__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& nothrow);

void* __wrap_malloc(size_t bytes)
{
    return fails() ? nullptr : __real_malloc(bytes);
}
void* __wrap_realloc(void* memory, size_t bytes)
{
    return fails() ? nullptr : __real_realloc(memory, bytes);
}
void* __wrap__Znwm(size_t bytes)
{
    if (fails()) throw std::bad_alloc();
    return __real__Znwm(bytes);
}
void* __wrap__ZnwmRKSt9nothrow_t(size_t bytes, const std::nothrow_t& nothrow)
{
    return fails() ? nullptr : __real__ZnwmRKSt9nothrow_t(bytes, nothrow);
}
void* __wrap__Znam(size_t bytes)
{
    if (fails()) throw std::bad_alloc();
    return __real__Znam(bytes);
}
void* __wrap__ZnamRKSt9nothrow_t(size_t bytes, const std::nothrow_t& nothrow)
{
    return fails() ? nullptr : __real__ZnamRKSt9nothrow_t(bytes, nothrow);
}
}

namespace robustness
{

Starved::Starved(size_t failing, Fault fault)
{
    calls = 0;
    failingCall = failing;
    kind = fault;
    counting = true;
}

Starved::~Starved()
{
    counting = false;
}

size_t allocationsOf(const std::function<void()>& body)
{
    Starved none(SIZE_MAX);
    body();
    counting = false;
    return calls;
}

} // namespace robustness
