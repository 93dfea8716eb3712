// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "encoding/Commands.h"

namespace softmetal
{

/// Runs a command buffer to its end, its handlers included, on the calling thread. With discards set nothing is drawn
/// or copied.
void runCommandBuffer(CommandBufferObject& commands, bool discards);

/// Runs one record; public for the tests of this room.
void execute(const Record& record, const CommandStorage& storage);

/// Called by the thread that draws when a pass is done, with its serial number: with what it was drawn to, or with null
/// when it was thrown away or its command buffer failed. One observer; null for none.
using PassObserver = void (*)(uint64_t serial, const raster::PassDescription* targets);
void setPassObserver(PassObserver observer);

/// Waits this long before it runs each command buffer, for tests of waiting.
void setCommandBufferDelay(double milliseconds);

} // namespace softmetal
