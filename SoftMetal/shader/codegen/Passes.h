// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <llvm/IR/Module.h>

namespace softmetal::shader {

/// After widening: slots become registers, and what nobody reads goes.
void cleanUpWide(llvm::Function& function);

} // namespace softmetal::shader
