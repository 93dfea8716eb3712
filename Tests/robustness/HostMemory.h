// SPDX-License-Identifier: Apache-2.0
// The memory that the library itself asks for, counted and made to fail: malloc, realloc and operator new as its
// objects call them. The linker puts these functions in the place of those (--wrap), in this program's own objects
// only: the device lies in a shared library and keeps its memory.
#pragma once

#include <cstddef>
#include <functional>

namespace robustness
{

enum class Fault
{
    Once,   // one call fails
    Forever // and all that follow
};

/// While this lives, calls are counted from 0, and the one with the number fails.
class Starved
{
public:
    explicit Starved(size_t failing, Fault fault = Fault::Once);
    ~Starved();
    Starved(const Starved&) = delete;
    Starved& operator=(const Starved&) = delete;
};

/// How many calls are made while the body runs, without one failing.
size_t allocationsOf(const std::function<void()>& body);

} // namespace robustness
