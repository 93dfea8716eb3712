// SPDX-License-Identifier: Apache-2.0
// Where the foundation types get their memory. The functions are pointers so that a test can make them fail.
#pragma once

#include <cstddef>

namespace ZALM
{

struct Allocator
{
    void* (*allocate)(size_t bytes);
    void* (*reallocate)(void* memory, size_t bytes);
    void (*release)(void* memory);
};

/// The allocator in force: malloc, realloc and free unless a test has put its own in place.
extern Allocator g_allocator;

/// Status values of operations that may run out of memory.
inline constexpr int Success = 0;
inline constexpr int OutOfMemory = 2;

} // namespace ZALM
