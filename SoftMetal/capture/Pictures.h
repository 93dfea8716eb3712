// SPDX-License-Identifier: Apache-2.0
// Small pictures of what passes were drawn to, taken as soon as each pass is done.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace softmetal::capture {

struct Picture
{
    std::string attachment;         // "color0", "depth", "stencil"
    uint32_t width = 0, height = 0; // of the attachment, in pixels; the picture may be smaller
    std::string png;                // the file's bytes
};

using PicturesByPass = std::map<uint64_t, std::vector<Picture>>; // by the pass's serial number

/// From now on pictures are taken of every pass of the process.
void beginPictures();
/// No more are taken. Waits a moment for those of these passes, which may still run.
PicturesByPass endPictures(const std::set<uint64_t>& awaited);

} // namespace softmetal::capture
