// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>

namespace softmetal::workers
{

/// Calls body(i) for every i below count, spread over the process's worker threads and the caller, and returns when all
/// have returned. Which thread takes which index is open; results must not depend on it. Calls from several threads
/// take turns; one from within a body runs where it is.
void parallelFor(size_t count, const std::function<void(size_t)>& body);

/// Threads that take part, the caller included: SOFTMETAL_THREADS, else the processors that the affinity mask and the
/// container's quota leave.
size_t threadCount();

/// SOFTMETAL_THREADS=0: no thread is made, and whoever commits a command buffer draws it.
bool callerDraws();

} // namespace softmetal::workers
