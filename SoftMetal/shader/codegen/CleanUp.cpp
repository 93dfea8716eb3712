// SPDX-License-Identifier: Apache-2.0
// The passes that pay: enough to be left with scalars and what is really used, before and after widening.
#include "shader/codegen/Passes.h"

#include "shader/Intrinsics.h"
#include "shader/codegen/Codegen.h"

#include <llvm/ADT/STLExtras.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/InstIterator.h>
#include <llvm/IR/Instructions.h>
#include <llvm/Passes/PassBuilder.h>
#include <llvm/Transforms/IPO/GlobalDCE.h>
#include <llvm/Transforms/IPO/Internalize.h>
#include <llvm/Transforms/InstCombine/InstCombine.h>
#include <llvm/Transforms/Scalar/ADCE.h>
#include <llvm/Transforms/Scalar/DCE.h>
#include <llvm/Transforms/Scalar/EarlyCSE.h>
#include <llvm/Transforms/Scalar/GVN.h>
#include <llvm/Transforms/Scalar/IndVarSimplify.h>
#include <llvm/Transforms/Scalar/LoopPassManager.h>
#include <llvm/Transforms/Scalar/LoopRotation.h>
#include <llvm/Transforms/Scalar/LoopUnrollPass.h>
#include <llvm/Transforms/Scalar/SROA.h>
#include <llvm/Transforms/Scalar/Scalarizer.h>
#include <llvm/Transforms/Scalar/SimplifyCFG.h>
#include <llvm/Transforms/Utils/FixIrreducible.h>
#include <llvm/Transforms/Utils/LCSSA.h>
#include <llvm/Transforms/Utils/LoopSimplify.h>
#include <llvm/Transforms/Utils/LowerSwitch.h>
#include <llvm/Transforms/Utils/UnifyFunctionExitNodes.h>

namespace softmetal::shader
{
namespace
{

using namespace llvm;

/// The analyses of one run, wired together.
struct Analyses
{
    LoopAnalysisManager loops;
    FunctionAnalysisManager functions;
    CGSCCAnalysisManager components;
    ModuleAnalysisManager modules;
    PassBuilder builder;

    Analyses()
    {
        builder.registerModuleAnalyses(modules);
        builder.registerCGSCCAnalyses(components);
        builder.registerFunctionAnalyses(functions);
        builder.registerLoopAnalyses(loops);
        builder.crossRegisterProxies(loops, functions, components, modules);
    }
};

/// Takes the results of texture accesses apart where they are made, so that no vector lives on in a phi.
struct TakeApartPass : PassInfoMixin<TakeApartPass>
{
    PreservedAnalyses run(llvm::Function& function, FunctionAnalysisManager&)
    {
        for (Instruction& i : instructions(function))
            if (isa<CallInst>(i) && i.getType()->isVectorTy()) takeApart(i);
        return PreservedAnalyses::none();
    }

private:
    static void takeApart(Instruction& access)
    {
        for (User* user : make_early_inc_range(access.users()))
            if (auto* bits = dyn_cast<BitCastInst>(user)) takeBitsApart(access, *bits);
        for (User* user : make_early_inc_range(access.users())) {
            auto* element = dyn_cast<ExtractElementInst>(user);
            if (element && isa<ConstantInt>(element->getIndexOperand())) element->moveAfter(&access);
        }
    }

    /// The bits of the whole, in as many or more elements, are those of its elements: textures of integers are read
    /// this way.
    static void takeBitsApart(Instruction& access, BitCastInst& bits)
    {
        auto* to = dyn_cast<FixedVectorType>(bits.getType());
        unsigned whole = cast<FixedVectorType>(access.getType())->getNumElements();
        if (!to || !to->getElementType()->isIntegerTy() || to->getNumElements() % whole != 0) return;
        unsigned parts = to->getNumElements() / whole, width = to->getScalarSizeInBits();
        for (User* user : make_early_inc_range(bits.users())) {
            auto* element = dyn_cast<ExtractElementInst>(user);
            auto* index = element ? dyn_cast<ConstantInt>(element->getIndexOperand()) : nullptr;
            if (!index) continue;
            auto at = static_cast<unsigned>(index->getZExtValue());
            IRBuilder<> b(element);
            Value* number = b.CreateBitCast(b.CreateExtractElement(&access, at / parts), b.getIntNTy(width * parts));
            element->replaceAllUsesWith(
                b.CreateTrunc(b.CreateLShr(number, uint64_t{at % parts} * width), element->getType()));
            element->eraseFromParent();
        }
        if (bits.use_empty()) bits.eraseFromParent();
    }
};

FunctionPassManager scalarPasses()
{
    FunctionPassManager passes;
    passes.addPass(SROAPass(SROAOptions::ModifyCFG));
    passes.addPass(EarlyCSEPass(true));
    passes.addPass(InstCombinePass());
    passes.addPass(SimplifyCFGPass(flattening()));
    LoopPassManager loops;
    loops.addPass(LoopRotatePass());
    loops.addPass(IndVarSimplifyPass());
    loops.addPass(LoopFullUnrollPass(2, true));
    passes.addPass(createFunctionToLoopPassAdaptor(std::move(loops)));
    passes.addPass(SROAPass(SROAOptions::ModifyCFG));
    passes.addPass(TakeApartPass()); // before vectors that hold parts of them come into being
    ScalarizerPassOptions whole;
    whole.ScalarizeVariableInsertExtract = true;
    whole.ScalarizeLoadStore = true;
    passes.addPass(ScalarizerPass(whole));
    passes.addPass(GVNPass());
    passes.addPass(InstCombinePass());
    passes.addPass(ADCEPass());
    passes.addPass(SimplifyCFGPass(flattening()));
    passes.addPass(DCEPass());
    return passes;
}

/// The form that widening expects: one return, two-way branches, simple loops whose results leave through phis.
FunctionPassManager shapePasses()
{
    FunctionPassManager passes;
    passes.addPass(TakeApartPass());
    passes.addPass(LowerSwitchPass());
    passes.addPass(FixIrreduciblePass());
    passes.addPass(UnifyFunctionExitNodesPass());
    passes.addPass(LoopSimplifyPass());
    passes.addPass(LCSSAPass());
    return passes;
}

void prepareInlining(Module& module)
{
    // The marks of entry functions have been read; as references they would keep the functions alive.
    if (GlobalVariable* annotations = module.getNamedGlobal("llvm.global.annotations")) annotations->eraseFromParent();
    for (llvm::Function& function : module) {
        if (function.isDeclaration()) continue;
        function.removeFnAttr(Attribute::NoInline);
        function.removeFnAttr(Attribute::OptimizeNone);
        for (Argument& argument : function.args())
            argument.removeAttr(Attribute::NoAlias); // would be noted on each access
        if (function.getName() == StringRef(intrinsic::Entry.data(), intrinsic::Entry.size())) continue;
        function.setLinkage(GlobalValue::InternalLinkage);
    }
}

} // namespace

void cleanUp(Module& module)
{
    prepareInlining(module);
    Analyses analyses;
    ModulePassManager passes;
    passes.addPass(GlobalDCEPass()); // other entry functions and what only they call
    passes.addPass(InlineEverythingPass());
    passes.addPass(GlobalDCEPass());
    passes.addPass(createModuleToFunctionPassAdaptor(scalarPasses()));
    passes.addPass(createModuleToFunctionPassAdaptor(shapePasses()));
    passes.addPass(GlobalDCEPass());
    passes.run(module, analyses.modules);
}

void cleanUpWide(llvm::Function& function)
{
    Analyses analyses;
    FunctionPassManager passes;
    passes.addPass(SROAPass(SROAOptions::ModifyCFG));
    passes.addPass(EarlyCSEPass(true));
    passes.addPass(InstCombinePass());
    passes.addPass(SimplifyCFGPass(flattening()));
    passes.addPass(EarlyCSEPass(true));
    passes.addPass(ADCEPass());
    passes.run(function, analyses.functions);
}

} // namespace softmetal::shader
