// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Checks.h"

#include "shader/Intrinsics.h"
#include "shader/frontend/Messages.h"

#include <llvm/Demangle/Demangle.h>
#include <llvm/IR/InstIterator.h>
#include <llvm/IR/InstrTypes.h>

namespace softmetal::shader {
namespace {

bool hasAssembler(const llvm::Module& module)
{
    if (!module.getModuleInlineAsm().empty()) return true;
    for (const llvm::Function& function : module)
        for (const llvm::Instruction& instruction : llvm::instructions(function))
            if (const auto* call = llvm::dyn_cast<llvm::CallBase>(&instruction); call && call->isInlineAsm()) return true;
    return false;
}

bool isForeign(const llvm::Function& function)
{
    bool known = function.isIntrinsic() || function.getName().starts_with("softmetal_");
    return function.isDeclaration() && !known && !function.use_empty();
}

bool isConstant(const Program& program, const llvm::GlobalVariable& variable)
{
    for (const Constant& constant : program.constants)
        if (variable.getName() == constant.symbol) return true;
    return false;
}

void complain(std::string& messages, const std::string& words) { messages += std::string(SourceName) + ": error: " + words + "\n"; }

} // namespace

bool checkModule(const Program& program, std::string& messages)
{
    const llvm::Module& module = *program.module;
    size_t before = messages.size();
    if (hasAssembler(module)) complain(messages, "assembler text is not part of the shading language");
    for (const llvm::Function& function : module)
        if (isForeign(function)) complain(messages, "function '" + llvm::demangle(function.getName()) + "' has no definition");
    for (const llvm::GlobalVariable& variable : module.globals()) {
        bool foreign = variable.isDeclaration() && !variable.use_empty() && !isConstant(program, variable);
        if (foreign) complain(messages, "variable '" + llvm::demangle(variable.getName()) + "' has no definition");
        if (variable.isThreadLocal()) complain(messages, "thread-local variables are not part of the shading language");
    }
    for (const Entry& entry : program.entries)
        if (!module.getFunction(entry.symbol)) complain(messages, "entry function '" + entry.name + "' must be neither static nor inline");
    return messages.size() == before;
}

std::string leftOver(const llvm::Module& module)
{
    for (const llvm::Function& function : module)
        if (!function.isDeclaration() && function.getName() != llvm::StringRef(intrinsic::Entry.data(), intrinsic::Entry.size()))
            return "function '" + llvm::demangle(function.getName()) + "' calls itself";
    for (const llvm::GlobalVariable& variable : module.globals())
        if (variable.hasInitializer() && !variable.isConstant() && !variable.use_empty())
            return "variable '" + llvm::demangle(variable.getName()) + "' must reside in constant address space";
    return {};
}

} // namespace softmetal::shader
