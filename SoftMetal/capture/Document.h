// SPDX-License-Identifier: Apache-2.0
// A trace document: a folder with "trace.json" (every call, the objects they used, the passes), a picture of each attachment
// after each pass, and "index.html", which shows all of it and is opened from disk.
#pragma once

#include "capture/Pictures.h"
#include "inspect/Inspect.h"

#include <filesystem>

namespace softmetal::capture {

/// The passes of the trace whose command buffers were committed: these will be done some time.
std::set<uint64_t> committedPasses(const inspect::Trace& trace);

void writeDocument(const std::filesystem::path& folder, const inspect::Trace& trace, const PicturesByPass& pictures);

} // namespace softmetal::capture
