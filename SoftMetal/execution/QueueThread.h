// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "encoding/Commands.h"

#include <memory>

namespace softmetal {

/// A queue's own thread, which runs its command buffers one after the other. With discards set nothing is drawn or copied.
std::unique_ptr<Executor> makeQueueThread(bool discards);

/// Runs one record; public for the tests of this room.
void execute(const Record& record, const CommandStorage& storage);

/// Called on the queue's thread when a pass is done, with its serial number: with what it was drawn to, or with null when it
/// was thrown away or its command buffer failed. One observer; null for none.
using PassObserver = void (*)(uint64_t serial, const raster::PassDescription* targets);
void setPassObserver(PassObserver observer);

/// Waits this long before it runs each command buffer, for tests of waiting.
void setCommandBufferDelay(double milliseconds);

} // namespace softmetal
