// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/Compiler.h"

namespace softmetal::shader
{

/// The process's compiler, thread-safe. Its shared object is opened when something is compiled that the disk does not
/// know; where it is missing, compile() fails with a sentence, and the next call tries again.
Compiler& theCompiler(const abi::RuntimeTable& runtime, uint32_t lanes);

/// Lanes of generated code in this process: SOFTMETAL_LANES (1 and 4 mean a quad, 8, 16), else what the processor has.
uint32_t chooseLanes();

} // namespace softmetal::shader
