// SPDX-License-Identifier: Apache-2.0
// One scene of the suite drawn by both libraries, in processes of their own, and what the two pictures have to say.
#pragma once

#include "Image.h"
#include "suite/SceneTable.h"

#include <string>

namespace differential
{

struct Comparison
{
    std::string failure;                 // why there are no two pictures of one size; empty when there are
    scenes::Image ours, theirs, picture; // picture: their difference, brightened
    scenes::Difference difference;
    std::string oursPath, theirsPath, differencePath;
};

/// Runs both scene programs; pictures and logs go to the build folder's differential/scenes.
Comparison compareScene(const scenes::SceneRow& row);

/// Empty when the comparison is what the row says; else a sentence.
std::string verdict(const scenes::SceneRow& row, const Comparison& comparison);

} // namespace differential
