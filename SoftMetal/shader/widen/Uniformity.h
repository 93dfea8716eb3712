// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <llvm/ADT/GenericUniformityInfo.h>
#include <llvm/Analysis/TargetTransformInfo.h>
#include <llvm/Analysis/UniformityAnalysis.h>
#include <llvm/Analysis/CycleAnalysis.h>
#include <llvm/IR/Dominators.h>

namespace softmetal::shader {

/// Which values of a function differ between lanes: LLVM's analysis, told where differences come from.
class Uniformity
{
public:
    explicit Uniformity(llvm::Function& function, llvm::DominatorTree& dominators);
    bool divergent(const llvm::Value* value) const { return info_.isDivergent(value); }

private:
    llvm::TargetTransformInfo target_;
    llvm::CycleInfo cycles_;
    llvm::UniformityInfo info_;
};

/// Where a pointer leads: to what is bound or constant, or into a lane's private memory.
enum class Memory { Bound, Private, Mixed };
Memory memoryOf(const llvm::Value* pointer);

} // namespace softmetal::shader
