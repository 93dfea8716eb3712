// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/LargeStack.h"

#include <clang/Basic/Stack.h>

#include <pthread.h>

namespace softmetal::shader
{
namespace
{

constexpr size_t StackSizes[] = {size_t{1} << 30,
                                 size_t{64} << 20}; // of address space; memory is taken as it is touched

/// clang moves to another, smaller stack where it has used as much as an ordinary one has; past that it takes the stack
/// for one whose size it cannot tell, and stays.
constexpr size_t ClangsStack = size_t{16} << 20;

__attribute__((noinline)) void runBelow(const std::function<void()>& work)
{
    auto* passed = static_cast<volatile char*>(__builtin_alloca(ClangsStack));
    passed[ClangsStack - 1] = 0; // the nearest byte; none of the others is touched
    work();
    passed[ClangsStack - 1] = 1;
}

void* run(void* work)
{
    clang::noteBottomOfStack();
    runBelow(*static_cast<const std::function<void()>*>(work));
    return nullptr;
}

bool start(pthread_t& thread, size_t stackSize, const std::function<void()>& work)
{
    pthread_attr_t attributes;
    if (pthread_attr_init(&attributes) != 0) return false;
    bool started = pthread_attr_setstacksize(&attributes, stackSize) == 0 &&
                   pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)) == 0;
    pthread_attr_destroy(&attributes);
    return started;
}

} // namespace

void onLargeStack(const std::function<void()>& work)
{
    pthread_t thread{};
    for (size_t size : StackSizes)
        if (start(thread, size, work)) {
            pthread_join(thread, nullptr);
            return;
        }
    work();
}

} // namespace softmetal::shader
