// SPDX-License-Identifier: Apache-2.0
// Programs on disk, for people who look for what goes wrong in a renderer. Off unless the environment names a folder:
//   ZALMETAL_SHADER_DUMP_DIR     every loaded program is written there, <hash>.vp or <hash>.fp, with its Metal source, <hash>.metal
//   ZALMETAL_SHADER_REPLACE_DIR  a <hash>.metal found there is compiled in place of the program's own source
// The hash is that of the program's text as the host hands it in, so that a file dumped and edited can be put back.
#pragma once

#include "foundation/String.h"

#include <string_view>

namespace ZALMetal {

/// Sixteen hexadecimal digits.
ZALM::String ProgramHash(std::string_view program);

/// Writes program and source if asked to. A folder that cannot be written to is said in the log.
void DumpProgram(bool isVertexProgram, std::string_view program, const ZALM::String& source);

/// Replaces the source if asked to and there is a file, which is said in the log.
void ReplaceProgramSource(std::string_view program, ZALM::String& source);

} // namespace ZALMetal
