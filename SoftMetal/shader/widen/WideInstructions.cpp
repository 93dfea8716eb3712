// SPDX-License-Identifier: Apache-2.0
#include "shader/widen/Widener.h"

#include <llvm/IR/IntrinsicInst.h>
#include <llvm/IR/Intrinsics.h>

namespace softmetal::shader {

using namespace llvm;

void Widener::emit(Instruction& instruction)
{
    if (auto* call = dyn_cast<CallInst>(&instruction)) return emitCall(*call);
    if (isa<AllocaInst>(instruction)) return; // made at the front
    if (auto* element = dyn_cast<ExtractElementInst>(&instruction)) return extract(*element);
    if (instruction.getType()->isVectorTy() || instruction.getType()->isAggregateType())
        return fail("a vector or aggregate value is left in '" + Twine(instruction.getOpcodeName()) + "'");
    if (auto* memory = dyn_cast<StoreInst>(&instruction)) return store(*memory);
    if (divergent(&instruction)) return emitWide(instruction);
    emitUniform(instruction);
}

void Widener::emitUniform(Instruction& instruction)
{
    Value* result = nullptr;
    if (instruction.isIntDivRem()) {
        Value *dividend = uniform(instruction.getOperand(0)), *divisor = uniform(instruction.getOperand(1));
        result = b.CreateBinOp(static_cast<Instruction::BinaryOps>(instruction.getOpcode()), dividend,
                               safeDivisor(instruction, dividend, divisor, false));
    } else if (isa<FPToSIInst>(instruction) || isa<FPToUIInst>(instruction)) {
        result = toInteger(cast<CastInst>(instruction), uniform(instruction.getOperand(0)), instruction.getType());
    } else {
        Instruction* copy = instruction.clone();
        for (unsigned i = 0; i < copy->getNumOperands(); ++i) copy->setOperand(i, uniform(instruction.getOperand(i)));
        result = b.Insert(copy);
    }
    define(&instruction, result);
}

void Widener::emitWide(Instruction& instruction)
{
    if (Value* result = wideOperation(instruction)) return define(&instruction, result);
    fail("instruction '" + Twine(instruction.getOpcodeName()) + "' is not supported");
}

Value* Widener::wideOperation(Instruction& i)
{
    auto operand = [&](unsigned at) { return vector(i.getOperand(at)); };
    if (i.isIntDivRem()) {
        Value *dividend = operand(0), *divisor = operand(1);
        return b.CreateBinOp(static_cast<Instruction::BinaryOps>(i.getOpcode()), dividend, safeDivisor(i, dividend, divisor, true));
    }
    if (i.isBinaryOp()) return b.CreateBinOp(static_cast<Instruction::BinaryOps>(i.getOpcode()), operand(0), operand(1));
    if (i.isUnaryOp()) return b.CreateUnOp(static_cast<Instruction::UnaryOps>(i.getOpcode()), operand(0));
    if (auto* compare = dyn_cast<CmpInst>(&i)) return b.CreateCmp(compare->getPredicate(), operand(0), operand(1));
    if (isa<SelectInst>(i)) {
        Value* condition = divergent(i.getOperand(0)) ? operand(0) : kept(i.getOperand(0));
        return b.CreateSelect(condition, operand(1), operand(2));
    }
    if (isa<FPToSIInst>(i) || isa<FPToUIInst>(i)) return toInteger(cast<CastInst>(i), operand(0), wideType(i.getType()));
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

/// Division by zero and the one quotient that does not fit must not stop the process, whatever is in idle lanes.
Value* Widener::safeDivisor(const Instruction& i, Value* dividend, Value* divisor, bool wide)
{
    Type* type = divisor->getType();
    Constant* one = ConstantInt::get(type, 1);
    Value* bad = b.CreateICmpEQ(divisor, Constant::getNullValue(type));
    if (i.getOpcode() == Instruction::SDiv || i.getOpcode() == Instruction::SRem) {
        auto* lowest = ConstantInt::get(type, APInt::getSignedMinValue(type->getScalarSizeInBits()));
        Value* overflow = b.CreateAnd(b.CreateICmpEQ(dividend, lowest), b.CreateICmpEQ(divisor, Constant::getAllOnesValue(type)));
        bad = b.CreateOr(bad, overflow);
    }
    if (wide) bad = b.CreateOr(bad, b.CreateNot(mask_));
    return b.CreateSelect(bad, one, divisor);
}

/// Out of range the nearest value, not-a-number to zero: the same on every machine.
Value* Widener::toInteger(const CastInst& conversion, Value* value, Type* type)
{
    Intrinsic::ID id = isa<FPToSIInst>(conversion) ? Intrinsic::fptosi_sat : Intrinsic::fptoui_sat;
    return b.CreateIntrinsic(id, {type, value->getType()}, {value});
}

// ---- memory ------------------------------------------------------------------------------------------------------------

/// Arrays that stayed in memory: one for each lane, one after the other; the value is the vector of their addresses.
void Widener::allocatePrivate()
{
    const DataLayout& layout = module_.getDataLayout();
    for (Instruction& instruction : scalar_.getEntryBlock()) {
        auto* alloca = dyn_cast<AllocaInst>(&instruction);
        if (!alloca) continue;
        uint64_t size = alignTo(layout.getTypeAllocSize(alloca->getAllocatedType()), 16);
        AllocaInst* memory = slot(ArrayType::get(b.getInt8Ty(), size * lanes_));
        memory->setAlignment(Align(64));
        SmallVector<Constant*, 16> offsets;
        for (uint32_t lane = 0; lane < lanes_; ++lane) offsets.push_back(b.getInt64(lane * size));
        Value* addresses = b.CreateGEP(b.getInt8Ty(), memory, ConstantVector::get(offsets));
        b.CreateStore(addresses, slotOf(alloca));
    }
}

Value* Widener::load(LoadInst& instruction)
{
    if (!divergent(instruction.getPointerOperand()))
        return b.CreateVectorSplat(lanes_, b.CreateAlignedLoad(instruction.getType(), kept(instruction.getPointerOperand()), instruction.getAlign()));
    Type* type = wideType(instruction.getType());
    return b.CreateMaskedGather(type, vector(instruction.getPointerOperand()), instruction.getAlign(), mask_, Constant::getNullValue(type));
}

void Widener::store(StoreInst& instruction)
{
    if (instruction.getValueOperand()->getType()->isVectorTy()) return fail("a vector is stored");
    b.CreateMaskedScatter(vector(instruction.getValueOperand()), vector(instruction.getPointerOperand()), instruction.getAlign(), mask_);
}

/// memcpy, memmove and memset, lane by lane; an idle lane copies nothing.
void Widener::copyMemory(CallInst& call)
{
    auto& memory = cast<MemIntrinsic>(call);
    Value* size = memory.getLength();
    for (uint32_t lane = 0; lane < lanes_; ++lane) {
        auto ofLane = [&](Value* value) { return divergent(value) ? b.CreateExtractElement(kept(value), lane) : kept(value); };
        Value* count = b.CreateSelect(b.CreateExtractElement(mask_, lane), ofLane(size), ConstantInt::get(size->getType(), 0));
        if (auto* set = dyn_cast<MemSetInst>(&memory)) b.CreateMemSet(ofLane(set->getDest()), ofLane(set->getValue()), count, MaybeAlign(1));
        else if (auto* copy = dyn_cast<MemTransferInst>(&memory)) b.CreateMemMove(ofLane(copy->getDest()), MaybeAlign(1), ofLane(copy->getSource()), MaybeAlign(1), count);
    }
}

} // namespace softmetal::shader
