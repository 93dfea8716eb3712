// SPDX-License-Identifier: Apache-2.0
// Everything into the entry point, from the leaves of the call graph upwards. A function is simplified before it is
// copied to where it is called: the standard library's functions as clang leaves them are mostly memory traffic, and
// simplified once they shrink to the few operations that they mean.
#include "shader/Intrinsics.h"
#include "shader/codegen/Passes.h"

#include <llvm/ADT/SCCIterator.h>
#include <llvm/Analysis/AssumptionCache.h>
#include <llvm/Analysis/CallGraph.h>
#include <llvm/Analysis/InlineCost.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/InstIterator.h>
#include <llvm/IR/IntrinsicInst.h>
#include <llvm/Transforms/Scalar/EarlyCSE.h>
#include <llvm/Transforms/Scalar/SROA.h>
#include <llvm/Transforms/Scalar/SimplifyCFG.h>
#include <llvm/Transforms/Utils/Cloning.h>

namespace softmetal::shader
{
namespace
{

using namespace llvm;

bool isEntry(const llvm::Function& function)
{
    return function.getName() == StringRef(intrinsic::Entry.data(), intrinsic::Entry.size());
}

/// Functions with a body, those that are called before those that call; what calls itself is left out.
std::vector<llvm::Function*> calleesFirst(Module& module)
{
    CallGraph graph(module);
    std::vector<llvm::Function*> order;
    for (auto component = scc_begin(&graph); !component.isAtEnd(); ++component) {
        llvm::Function* function = component->front()->getFunction();
        if (!component.hasCycle() && function && !function->isDeclaration()) order.push_back(function);
    }
    return order;
}

constexpr uint64_t LargestZeroing = 256; // bytes; beyond it is an array, which stays in memory anyway
constexpr uint64_t WordBytes = 4;

/// Variables begin as zeros. Said with a store for each word, that becomes registers at once; said for all bytes, each
/// word is first read, which makes the passes look for its value from the beginning of the function for each use.
void zeroByWords(llvm::Function& function)
{
    for (Instruction& instruction : make_early_inc_range(instructions(function))) {
        auto* zeroing = dyn_cast<MemSetInst>(&instruction);
        auto* length = zeroing ? dyn_cast<ConstantInt>(zeroing->getLength()) : nullptr;
        if (!length || length->getValue().ugt(LargestZeroing) || length->getZExtValue() % WordBytes != 0) continue;
        auto* value = dyn_cast<ConstantInt>(zeroing->getValue());
        bool local = isa<AllocaInst>(zeroing->getDest()) && zeroing->getDestAlign().valueOrOne() >= Align(WordBytes);
        if (!local || !value || !value->isZero() || zeroing->isVolatile()) continue;
        IRBuilder<> b(zeroing);
        for (uint64_t offset = 0; offset < length->getZExtValue(); offset += WordBytes)
            b.CreateAlignedStore(b.getInt32(0), b.CreateConstInBoundsGEP1_64(b.getInt8Ty(), zeroing->getDest(), offset),
                                 Align(WordBytes));
        zeroing->eraseFromParent();
    }
}

class Inliner
{
public:
    explicit Inliner(FunctionAnalysisManager& analyses) : analyses_(analyses)
    {
        simplify_.addPass(SROAPass(SROAOptions::ModifyCFG));
        simplify_.addPass(EarlyCSEPass(false));
        simplify_.addPass(SimplifyCFGPass(flattening())); // one block is cheap to copy
    }

    void run(Module& module)
    {
        for (llvm::Function* function : calleesFirst(module)) {
            zeroByWords(*function);
            inlineCalls(*function);
            if (!isEntry(*function)) analyses_.invalidate(*function, simplify_.run(*function, analyses_));
            if (isInlineViable(*function).isSuccess()) ready_.insert(function);
        }
    }

private:
    void inlineCalls(llvm::Function& function)
    {
        SmallVector<CallBase*, 32> calls;
        for (Instruction& instruction : instructions(function)) {
            auto* call = dyn_cast<CallBase>(&instruction);
            if (call && ready_.contains(call->getCalledFunction())) calls.push_back(call);
        }
        auto assumptions = [this](llvm::Function& f) -> AssumptionCache& {
            return analyses_.getResult<AssumptionAnalysis>(f);
        };
        InlineFunctionInfo info(assumptions);
        for (CallBase* call : calls)
            InlineFunction(*call, info, true, nullptr, false);
        if (!calls.empty()) analyses_.invalidate(function, PreservedAnalyses::none());
    }

    FunctionAnalysisManager& analyses_;
    FunctionPassManager simplify_;
    SmallPtrSet<const llvm::Function*, 32> ready_; // to be copied
};

} // namespace

llvm::PreservedAnalyses InlineEverythingPass::run(Module& module, ModuleAnalysisManager& analyses)
{
    Inliner(analyses.getResult<FunctionAnalysisManagerModuleProxy>(module).getManager()).run(module);
    return PreservedAnalyses::none();
}

} // namespace softmetal::shader
