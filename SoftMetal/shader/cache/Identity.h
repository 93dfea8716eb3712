// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/cache/Digest.h"

#include <optional>
#include <string>

namespace softmetal::shader {

/// Who compiles, for what processor: the builds of this library and of the compiler at the path, LLVM's files, the
/// processor's features, the lanes, and what of the environment goes into the code. Nothing when a build cannot be told,
/// so that nothing may be kept.
std::optional<Digest> compilerIdentity(const std::string& compilerPath, uint32_t lanes);

} // namespace softmetal::shader
