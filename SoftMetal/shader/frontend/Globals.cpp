// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Globals.h"

#include <llvm/IR/Constants.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/Instructions.h>
#include <llvm/IR/ReplaceConstant.h>
#include <llvm/Passes/PassBuilder.h>
#include <llvm/Transforms/IPO/AlwaysInliner.h>

#include <vector>

namespace softmetal::shader {
namespace {

/// Calls at the start of the entry point what C++ would call before main, in that order.
void callInitialisers(const llvm::GlobalVariable& list, llvm::Function& entry)
{
    llvm::IRBuilder<> b(&*entry.getEntryBlock().getFirstInsertionPt());
    const auto* rows = llvm::dyn_cast<llvm::ConstantArray>(list.getInitializer());
    for (unsigned i = 0; rows && i < rows->getNumOperands(); ++i) {
        auto* function = llvm::dyn_cast<llvm::Function>(rows->getOperand(i)->getOperand(1)->stripPointerCasts());
        if (function) b.CreateCall(function)->setCallingConv(function->getCallingConv());
    }
}

void inlineEverything(llvm::Module& module, const llvm::Function& entry)
{
    for (llvm::Function& function : module) {
        if (function.isDeclaration() || &function == &entry) continue;
        function.removeFnAttr(llvm::Attribute::NoInline);
        function.removeFnAttr(llvm::Attribute::OptimizeNone);
        function.addFnAttr(llvm::Attribute::AlwaysInline);
        function.setLinkage(llvm::GlobalValue::InternalLinkage);
    }
    llvm::LoopAnalysisManager loops;
    llvm::FunctionAnalysisManager functions;
    llvm::CGSCCAnalysisManager components;
    llvm::ModuleAnalysisManager modules;
    llvm::PassBuilder builder;
    builder.registerModuleAnalyses(modules);
    builder.registerCGSCCAnalyses(components);
    builder.registerFunctionAnalyses(functions);
    builder.registerLoopAnalyses(loops);
    builder.crossRegisterProxies(loops, functions, components, modules);
    llvm::AlwaysInlinerPass(false).run(module, modules);
}

/// The variable becomes one of the entry point's own, which the optimiser then sees through.
void makeLocal(llvm::GlobalVariable& variable, llvm::Function& entry)
{
    llvm::convertUsersOfConstantsToInstructions({&variable}, &entry);
    llvm::IRBuilder<> b(&*entry.getEntryBlock().getFirstInsertionPt());
    auto* local = b.CreateAlloca(variable.getValueType());
    local->setAlignment(llvm::Align(16));
    b.CreateStore(variable.getInitializer(), local);
    variable.replaceUsesWithIf(local, [&](const llvm::Use& use) {
        const auto* instruction = llvm::dyn_cast<llvm::Instruction>(use.getUser());
        return instruction && instruction->getFunction() == &entry;
    });
}

} // namespace

void computeGlobalsInEntry(llvm::Module& module, llvm::Function& entry)
{
    llvm::GlobalVariable* list = module.getNamedGlobal("llvm.global_ctors");
    if (!list) return;
    callInitialisers(*list, entry);
    list->eraseFromParent();
    inlineEverything(module, entry);
    std::vector<llvm::GlobalVariable*> variables;
    for (llvm::GlobalVariable& variable : module.globals())
        if (variable.hasInitializer() && !variable.isConstant() && !variable.getName().starts_with("llvm.")) variables.push_back(&variable);
    for (llvm::GlobalVariable* variable : variables) makeLocal(*variable, entry);
}

} // namespace softmetal::shader
