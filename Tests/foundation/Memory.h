// SPDX-License-Identifier: Apache-2.0
// Memory that a test can watch and make fail.
#pragma once

#include <cstddef>
#include <functional>

namespace foundation
{

/// Puts itself in the place of the allocator while it lives; one at a time. What is taken while it lives should be given
/// back while it lives: live() says whether it was.
class Memory
{
public:
    enum class Fault
    {
        Once,   // the call with the number fails
        Forever // and all that follow
    };

    Memory();
    ~Memory();
    Memory(const Memory&) = delete;
    Memory& operator=(const Memory&) = delete;

    /// Calls are counted from here, the first is 0.
    void failAt(size_t call, Fault fault = Fault::Forever);
    void succeed();

    size_t calls() const;       // to allocate and reallocate, since the last of the two above
    void arm();                 // the calls up to the next of the two above are counted apart:
    size_t armedCalls() const;
    size_t lastBytes() const; // asked for by the last of them
    size_t live() const;      // blocks taken and not given back
};

/// Called by a body where what may fail begins.
using Arm = std::function<void()>;

/// Counts the calls that a clean run of the body makes behind arm(), then runs it with each of them failing, once and
/// with all that follow. A body ends what may fail with succeed(), when it has more to do. Nothing may be left over.
void forEachFault(const std::function<void(Memory&, const Arm&)>& body);

} // namespace foundation
