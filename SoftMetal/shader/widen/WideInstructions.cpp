// SPDX-License-Identifier: Apache-2.0
#include "shader/widen/Widener.h"

#include <llvm/IR/Intrinsics.h>

namespace softmetal::shader {

using namespace llvm;

namespace {

/// What may be copied as it is when all its operands are the same in every lane.
bool isPlain(const Instruction& i)
{
    return i.isBinaryOp() || i.isUnaryOp() || isa<CmpInst, SelectInst, GetElementPtrInst, FreezeInst, CastInst>(i);
}

} // namespace

void Widener::emit(Instruction& instruction)
{
    if (auto* call = dyn_cast<CallInst>(&instruction)) return emitCall(*call);
    if (auto* memory = dyn_cast<AllocaInst>(&instruction)) { // made at the front
        if (!memory->isStaticAlloca()) fail("arrays of variable size are not supported");
        return;
    }
    if (auto* element = dyn_cast<ExtractElementInst>(&instruction)) return extract(*element);
    if (instruction.isAtomic()) return fail("atomic operations are not supported");
    if (isa<IntToPtrInst>(instruction)) return fail("pointers made of numbers are not supported");
    if (auto* memory = dyn_cast<StoreInst>(&instruction)) return store(*memory);
    if (!divergent(&instruction)) return emitUniform(instruction);
    if (Value* result = wideOperation(instruction)) return define(&instruction, result);
    fail("instruction '" + Twine(instruction.getOpcodeName()) + "' is not supported");
}

void Widener::emitUniform(Instruction& instruction)
{
    if (auto* load = dyn_cast<LoadInst>(&instruction)) {
        const Value* pointer = load->getPointerOperand();
        if (load->getType()->isPointerTy()) checkPointerSource(pointer);
        return define(load, loadUniform(pointer, uniform(pointer), load->getType(), load->getAlign()));
    }
    if (!isPlain(instruction)) return fail("instruction '" + Twine(instruction.getOpcodeName()) + "' is not supported");
    Instruction* copy = instruction.clone();
    for (unsigned i = 0; i < copy->getNumOperands(); ++i) copy->setOperand(i, uniform(instruction.getOperand(i)));
    copy->dropUnknownNonDebugMetadata(); // its statements held for the scalar function
    copy->setDebugLoc({});
    define(&instruction, b.Insert(copy));
}

Value* Widener::wideOperation(Instruction& i)
{
    auto operand = [&](unsigned number) { return vector(i.getOperand(number)); };
    if (i.isBinaryOp()) return b.CreateBinOp(static_cast<Instruction::BinaryOps>(i.getOpcode()), operand(0), operand(1));
    if (i.isUnaryOp()) return b.CreateUnOp(static_cast<Instruction::UnaryOps>(i.getOpcode()), operand(0));
    if (auto* compare = dyn_cast<CmpInst>(&i)) return b.CreateCmp(compare->getPredicate(), operand(0), operand(1));
    if (isa<SelectInst>(i)) return b.CreateSelect(kept(i.getOperand(0)), operand(1), operand(2));
    if (auto* conversion = dyn_cast<CastInst>(&i)) return b.CreateCast(conversion->getOpcode(), operand(0), wideType(i.getType()));
    if (isa<FreezeInst>(i)) return b.CreateFreeze(operand(0));
    if (auto* memory = dyn_cast<LoadInst>(&i)) return load(*memory);
    if (auto* address = dyn_cast<GetElementPtrInst>(&i)) {
        std::vector<Value*> indices;
        for (Value* index : address->indices()) indices.push_back(isa<Constant>(index) ? index : vector(index));
        return b.CreateGEP(address->getSourceElementType(), operand(0), indices);
    }
    return nullptr;
}

} // namespace softmetal::shader
