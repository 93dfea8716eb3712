// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <llvm/IR/Function.h>

namespace softmetal::shader {

/// Gives every operation of a scalar function one defined result, so that lanes which are computed along without being
/// wanted do no harm, and every number of lanes and every machine gets the same bits.
void defineEveryResult(llvm::Function& function);

} // namespace softmetal::shader
