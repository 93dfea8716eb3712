// SPDX-License-Identifier: Apache-2.0
#include "shader/widen/Prepare.h"

#include <llvm/ADT/STLExtras.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/InstIterator.h>
#include <llvm/IR/Instructions.h>
#include <llvm/IR/IntrinsicInst.h>

namespace softmetal::shader {
namespace {

using namespace llvm;

/// A variable that was never set is zero.
void replaceUndefinedOperands(Instruction& instruction)
{
    for (Use& operand : instruction.operands())
        if (isa<UndefValue>(operand.get())) operand.set(Constant::getNullValue(operand->getType()));
}

/// A shift by the width or more counts modulo the width.
void limitShift(BinaryOperator& shift)
{
    Value* amount = shift.getOperand(1);
    Constant* last = ConstantInt::get(amount->getType(), shift.getType()->getScalarSizeInBits() - 1);
    IRBuilder<> b(&shift);
    shift.setOperand(1, b.CreateAnd(amount, last));
}

/// Division by zero, and the one quotient that does not fit, are divisions by one.
void guardDivision(BinaryOperator& division)
{
    Value *dividend = division.getOperand(0), *divisor = division.getOperand(1);
    const auto* known = dyn_cast<ConstantInt>(divisor);
    if (known && !known->isZero() && !known->isMinusOne()) return;
    Type* type = divisor->getType();
    IRBuilder<> b(&division);
    Value* bad = b.CreateICmpEQ(divisor, Constant::getNullValue(type));
    if (division.getOpcode() == Instruction::SDiv || division.getOpcode() == Instruction::SRem) {
        Constant* lowest = ConstantInt::get(type, APInt::getSignedMinValue(type->getScalarSizeInBits()));
        Value* overflow = b.CreateAnd(b.CreateICmpEQ(dividend, lowest), b.CreateICmpEQ(divisor, Constant::getAllOnesValue(type)));
        bad = b.CreateOr(bad, overflow);
    }
    division.setOperand(1, b.CreateSelect(bad, ConstantInt::get(type, 1), divisor));
}

/// Out of range the nearest value, not-a-number to zero.
Value* saturate(CastInst& conversion)
{
    IRBuilder<> b(&conversion);
    Intrinsic::ID id = isa<FPToSIInst>(conversion) ? Intrinsic::fptosi_sat : Intrinsic::fptoui_sat;
    return b.CreateIntrinsic(id, {conversion.getType(), conversion.getOperand(0)->getType()}, {conversion.getOperand(0)});
}

/// The other operand where one is not a number; of two zeros the first.
Value* smallerOrGreater(IntrinsicInst& call, bool smaller)
{
    Value *x = call.getArgOperand(0), *y = call.getArgOperand(1);
    IRBuilder<> b(&call);
    Value* other = smaller ? b.CreateFCmpOLT(y, x) : b.CreateFCmpOGT(y, x);
    return b.CreateSelect(b.CreateOr(other, b.CreateFCmpUNO(x, x)), y, x);
}

/// What an intrinsic call is to be instead, or null.
Value* definedForm(IntrinsicInst& call)
{
    IRBuilder<> b(&call);
    switch (call.getIntrinsicID()) {
    case Intrinsic::minnum: return smallerOrGreater(call, true);
    case Intrinsic::maxnum: return smallerOrGreater(call, false);
    case Intrinsic::fmuladd: return b.CreateFAdd(b.CreateFMul(call.getArgOperand(0), call.getArgOperand(1)), call.getArgOperand(2));
    case Intrinsic::ctlz:
    case Intrinsic::cttz:
    case Intrinsic::abs: call.setArgOperand(1, b.getFalse()); return nullptr; // the edge case is not undefined
    default: return nullptr;
    }
}

Value* replacement(Instruction& instruction)
{
    if (instruction.getType()->isVectorTy()) return nullptr; // refused later
    if (isa<FPToSIInst>(instruction) || isa<FPToUIInst>(instruction)) return saturate(cast<CastInst>(instruction));
    if (auto* call = dyn_cast<IntrinsicInst>(&instruction)) return definedForm(*call);
    if (instruction.isShift()) limitShift(cast<BinaryOperator>(instruction));
    if (instruction.isIntDivRem()) guardDivision(cast<BinaryOperator>(instruction));
    return nullptr;
}

} // namespace

void defineEveryResult(Function& function)
{
    for (Instruction& instruction : make_early_inc_range(instructions(function))) {
        replaceUndefinedOperands(instruction);
        instruction.dropPoisonGeneratingAnnotations();
        instruction.dropUBImplyingAttrsAndMetadata();
        if (isa<FPMathOperator>(instruction)) instruction.copyFastMathFlags(FastMathFlags());
        if (Value* better = replacement(instruction)) {
            instruction.replaceAllUsesWith(better);
            instruction.eraseFromParent();
        }
    }
}

} // namespace softmetal::shader
