// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "execution/Execute.h"

#include <memory>

namespace softmetal
{

/// What runs a queue's command buffers one after the other: a thread of its own, or, where no threads are wanted,
/// whoever commits, before the call returns. With discards set nothing is drawn or copied.
std::unique_ptr<Executor> makeQueueThread(bool discards);

} // namespace softmetal
