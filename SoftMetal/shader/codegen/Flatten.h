// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/MachineCode.h"

#include <llvm/Support/MemoryBufferRef.h>

#include <optional>

namespace softmetal::shader
{

/// An object file as the code generator writes it, laid out as one piece with everything resolved that does not depend
/// on where it will stand. Nothing with words in error for a file that is damaged or uses what no shader does.
std::optional<MachineCode> flatten(llvm::MemoryBufferRef object, const char* entry, std::string& error);

} // namespace softmetal::shader
