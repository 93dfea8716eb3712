// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <llvm/IR/Module.h>

namespace softmetal::shader {

/// Program-scope constants whose initialisers depend on function constants are computed at program start in C++. There is
/// no program start here: the entry point computes those that it reads. Call it when the wrapper stands and the function
/// constants have their values.
void computeGlobalsInEntry(llvm::Module& module, llvm::Function& entry);

} // namespace softmetal::shader
