// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/Compiler.h"

namespace softmetal::shader {

/// Opens the shared object on first use (thread-safe); later calls give the same compiler. Null with a sentence in error
/// when it is missing; the next call tries again.
Compiler* openCompiler(const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error);

/// Lanes of generated code in this process: SOFTMETAL_LANES (1 and 4 mean a quad, 8, 16), else what the processor has.
uint32_t chooseLanes();

} // namespace softmetal::shader
