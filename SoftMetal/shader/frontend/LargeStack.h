// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace softmetal::shader
{

/// Does the work on a thread of its own with a stack far larger than a host's threads have, and waits for it: clang and
/// LLVM call themselves for each level of what a source nests. Where no such thread can be had, the caller's stack must
/// do.
void onLargeStack(const std::function<void()>& work);

} // namespace softmetal::shader
