// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "encoding/Commands.h"

#include <memory>

namespace softmetal {

/// A queue's own thread, which runs its command buffers one after the other. With discards set nothing is drawn or copied.
std::unique_ptr<Executor> makeQueueThread(bool discards);

/// Runs one record; public for the tests of this room.
void execute(const Record& record, const CommandStorage& storage);

/// Waits this long before it runs each command buffer, for tests of waiting.
void setCommandBufferDelay(double milliseconds);

} // namespace softmetal
