// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/frontend/Program.h"

#include <string>

namespace softmetal::shader {

/// Refuses what clang accepts and this device must not run: assembler text, and calls of functions that the program does
/// not contain (they would be looked up in the host process).
bool checkModule(const Program& program, std::string& messages);

/// After everything has been inlined into the entry point: recursion, and variables that outlive a call. Empty: fine.
std::string leftOver(const llvm::Module& module);

} // namespace softmetal::shader
