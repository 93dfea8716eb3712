// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <llvm/IR/Module.h>
#include <llvm/IR/PassManager.h>
#include <llvm/Transforms/Utils/SimplifyCFGOptions.h>

namespace softmetal::shader
{

/// Short branches become selections, which lanes do not mind.
inline llvm::SimplifyCFGOptions flattening()
{
    return llvm::SimplifyCFGOptions().convertSwitchRangeToICmp(true).hoistCommonInsts(false).sinkCommonInsts(false);
}

/// Copies every function to where it is called. Functions that call themselves stay, and so do the calls of them.
struct InlineEverythingPass : llvm::PassInfoMixin<InlineEverythingPass>
{
    llvm::PreservedAnalyses run(llvm::Module& module, llvm::ModuleAnalysisManager& analyses);
};

/// After widening: slots become registers, and what nobody reads goes.
void cleanUpWide(llvm::Function& function);

} // namespace softmetal::shader
