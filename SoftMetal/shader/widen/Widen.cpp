// SPDX-License-Identifier: Apache-2.0
// Control flow of the widened function; what single instructions become is in WideInstructions.cpp and WideCalls.cpp.
#include "shader/widen/Widener.h"

#include <llvm/ADT/PostOrderIterator.h>
#include <llvm/IR/Intrinsics.h>

namespace softmetal::shader {

using namespace llvm;

Widener::Widener(llvm::Function& scalar, const WidenOptions& options)
    : options_(options), scalar_(scalar), module_(*scalar.getParent()), context_(module_.getContext()), b(context_), lanes_(options.lanes),
      dominators_(scalar), loops_(dominators_), postDominators_(scalar), uniformity_(scalar, dominators_)
{
    maskType_ = FixedVectorType::get(b.getInt1Ty(), lanes_);
    maskBits_ = b.getIntNTy(lanes_);
}

llvm::Function* Widener::run(std::string& error)
{
    Type* pointer = b.getPtrTy();
    auto* type = FunctionType::get(b.getVoidTy(), {pointer, pointer, pointer}, false);
    wide_ = llvm::Function::Create(type, llvm::Function::ExternalLinkage, WideName, module_);
    wide_->addFnAttr(Attribute::NoUnwind);
    input_ = wide_->getArg(0);
    output_ = wide_->getArg(1);
    resources_ = wide_->getArg(2);
    slots_ = BasicBlock::Create(context_, "", wide_);
    BasicBlock* body = BasicBlock::Create(context_, "", wide_);
    exit_ = BasicBlock::Create(context_, "", wide_);
    b.SetInsertPoint(body);
    prepareMasks();
    allocatePrivate();
    emitRegion(nullptr);
    finish();
    b.CreateBr(exit_);
    b.SetInsertPoint(exit_);
    b.CreateRetVoid();
    b.SetInsertPoint(slots_);
    b.CreateBr(body);
    error = error_;
    return error_.empty() ? wide_ : nullptr;
}

void Widener::fail(const Twine& words)
{
    if (error_.empty()) error_ = words.str();
}

// ---- masks -----------------------------------------------------------------------------------------------------------

void Widener::prepareMasks()
{
    bool fragment = options_.stage == Stage::Fragment;
    Value* covered = b.CreateLoad(b.getInt32Ty(), at(input_, fragment ? offsetof(abi::FragmentInput, mask) : offsetof(abi::VertexInput, mask)));
    Value* live = fragment ? b.CreateLoad(b.getInt32Ty(), at(input_, offsetof(abi::FragmentInput, live))) : covered;
    entryMask_ = toMask(live);
    killed_ = slot(maskType_);
    limit_ = slot(b.getInt64Ty());
    if (fragment) b.CreateStore(b.getInt32(0), at(output_, offsetof(abi::FragmentOutput, mask)));
}

void Widener::finish()
{
    if (options_.stage != Stage::Fragment) return;
    Value* covered = b.CreateLoad(b.getInt32Ty(), at(input_, offsetof(abi::FragmentInput, mask)));
    Value* killed = b.CreateZExtOrTrunc(b.CreateBitCast(b.CreateLoad(maskType_, killed_), maskBits_), b.getInt32Ty());
    b.CreateStore(b.CreateAnd(covered, b.CreateNot(killed)), at(output_, offsetof(abi::FragmentOutput, mask)));
}

Value* Widener::toMask(Value* bits) { return b.CreateBitCast(b.CreateTrunc(bits, maskBits_), maskType_); }
Value* Widener::maskAsInteger() { return b.CreateZExtOrTrunc(b.CreateBitCast(mask_, maskBits_), b.getInt32Ty()); }
Value* Widener::any(Value* mask) { return b.CreateICmpNE(b.CreateBitCast(mask, maskBits_), ConstantInt::get(maskBits_, 0)); }
Value* Widener::none() { return Constant::getNullValue(maskType_); }

AllocaInst* Widener::slot(Type* type)
{
    IRBuilder<> entry(slots_);
    AllocaInst* place = entry.CreateAlloca(type);
    entry.CreateStore(Constant::getNullValue(type), place); // a lane that never comes by reads zeros, on every machine
    return place;
}

// ---- values ----------------------------------------------------------------------------------------------------------

Type* Widener::wideType(Type* type) { return FixedVectorType::get(type, lanes_); }

bool Widener::crossesBlocks(const Instruction* instruction) const
{
    for (const User* user : instruction->users()) {
        const auto* place = cast<Instruction>(user);
        if (place->getParent() != instruction->getParent() || isa<PHINode>(place)) return true;
    }
    return false;
}

AllocaInst* Widener::slotOf(const Value* value)
{
    AllocaInst*& place = valueSlots_[value];
    if (!place) place = slot(divergent(value) ? wideType(value->getType()) : value->getType());
    return place;
}

void Widener::define(const Instruction* instruction, Value* value)
{
    local_[instruction] = value;
    if (crossesBlocks(instruction)) b.CreateStore(value, slotOf(instruction));
}

/// The value as it is kept: a vector when it differs between lanes, else a scalar.
Value* Widener::kept(const Value* value)
{
    if (isa<Constant>(value)) return const_cast<Value*>(value);
    Value*& known = local_[value];
    if (!known) {
        AllocaInst* place = slotOf(value);
        known = b.CreateLoad(place->getAllocatedType(), place);
    }
    return known;
}

Value* Widener::uniform(const Value* value)
{
    if (divergent(value)) {
        fail("a value that must be the same for all lanes differs between them");
        return PoisonValue::get(value->getType());
    }
    return kept(value);
}

Value* Widener::vector(const Value* value)
{
    Value* v = kept(value);
    return divergent(value) ? v : b.CreateVectorSplat(lanes_, v);
}

// ---- control flow ----------------------------------------------------------------------------------------------------

Loop* Widener::commonLoop(const BasicBlock* from, const BasicBlock* to)
{
    Loop* loop = loops_.getLoopFor(from);
    while (loop && !loop->contains(to)) loop = loop->getParentLoop();
    return loop;
}

AllocaInst* Widener::edgeSlot(const BasicBlock* from, const BasicBlock* to)
{
    AllocaInst*& place = edges_[{from, to}];
    if (!place) {
        place = slot(maskType_);
        regionEdges_[commonLoop(from, to)].push_back(place);
    }
    return place;
}

/// Forgets which edges were taken in the iteration before.
void Widener::clearEdges(Loop* loop)
{
    for (BasicBlock* block : loop->blocks())
        for (BasicBlock* next : successors(block))
            if (commonLoop(block, next) == loop) edgeSlot(block, next);
    for (AllocaInst* place : regionEdges_[loop]) b.CreateStore(none(), place);
}

/// Lanes that come in along the given edges into a block.
Value* Widener::incoming(const BasicBlock* block, Loop* loop, bool fromInside)
{
    Value* mask = nullptr;
    for (const BasicBlock* from : predecessors(block)) {
        if (loop && loop->contains(from) != fromInside) continue;
        AllocaInst* place = edgeSlot(from, block);
        Value* edge = b.CreateLoad(maskType_, place);
        mask = mask ? b.CreateOr(mask, edge) : edge;
    }
    return mask ? mask : none();
}

void Widener::emitRegion(Loop* region)
{
    if (order_.empty()) {
        ReversePostOrderTraversal<llvm::Function*> traversal(&scalar_);
        order_.assign(traversal.begin(), traversal.end());
    }
    for (BasicBlock* block : order_) {
        Loop* loop = loops_.getLoopFor(block);
        if (loop == region) {
            if (!region || block != region->getHeader()) emitBlock(block);
        } else if (loop && loop->getParentLoop() == region && loop->getHeader() == block) {
            emitLoop(loop);
        }
    }
}

void Widener::emitLoop(Loop* loop)
{
    BasicBlock* header = loop->getHeader();
    AllocaInst* active = slot(maskType_);
    BasicBlock* head = BasicBlock::Create(context_, "", wide_, exit_);
    BasicBlock* after = BasicBlock::Create(context_, "", wide_, exit_);
    Value* entering = incoming(header, loop, false);
    b.CreateStore(entering, active);
    b.CreateCondBr(any(entering), head, after);
    startBlock(head);
    clearEdges(loop);
    mask_ = b.CreateLoad(maskType_, active);
    emitInstructions(header);
    emitRegion(loop);
    Value* again = incoming(header, loop, true);
    b.CreateStore(again, active);
    BasicBlock* count = BasicBlock::Create(context_, "", wide_, exit_);
    b.CreateCondBr(any(again), count, after);
    startBlock(count);
    Value* trips = b.CreateAdd(b.CreateLoad(b.getInt64Ty(), limit_), b.getInt64(1));
    b.CreateStore(trips, limit_);
    BasicBlock* stop = BasicBlock::Create(context_, "", wide_, exit_);
    b.CreateCondBr(b.CreateICmpUGT(trips, b.getInt64(options_.loopLimit)), stop, head);
    startBlock(stop);
    callRuntime(reinterpret_cast<void*>(options_.runtime->loopLimitReached), {});
    b.CreateBr(exit_);
    startBlock(after);
}

void Widener::startBlock(BasicBlock* block)
{
    b.SetInsertPoint(block);
    local_.clear();
}

/// Every lane that enters the function comes by.
bool Widener::isAlwaysReached(const BasicBlock* block)
{
    return !loops_.getLoopFor(block) && (block == &scalar_.getEntryBlock() || postDominators_.dominates(block, &scalar_.getEntryBlock()));
}

void Widener::emitBlock(BasicBlock* block)
{
    if (isAlwaysReached(block)) {
        local_.clear();
        mask_ = entryMask_;
        return emitInstructions(block);
    }
    mask_ = incoming(block, nullptr, false);
    BasicBlock* body = BasicBlock::Create(context_, "", wide_, exit_);
    BasicBlock* next = BasicBlock::Create(context_, "", wide_, exit_);
    b.CreateCondBr(any(mask_), body, next);
    startBlock(body);
    emitInstructions(block);
    b.CreateBr(next);
    startBlock(next);
}

void Widener::emitInstructions(BasicBlock* block)
{
    for (Instruction& instruction : *block) {
        if (isa<PHINode>(instruction)) kept(&instruction);
        else if (!instruction.isTerminator()) emit(instruction);
    }
    emitTerminator(block->getTerminator());
}

void Widener::emitTerminator(Instruction* terminator)
{
    BasicBlock* from = terminator->getParent();
    if (isa<ReturnInst>(terminator) || isa<UnreachableInst>(terminator)) return;
    auto* branch = dyn_cast<BranchInst>(terminator);
    if (!branch) return fail("a kind of branch that is not supported");
    if (branch->isUnconditional()) return takeEdge(from, branch->getSuccessor(0), mask_, nullptr);
    Value* condition = branch->getCondition();
    if (divergent(condition)) {
        Value* taken = kept(condition);
        takeEdge(from, branch->getSuccessor(0), b.CreateSelect(mask_, taken, none()), nullptr);
        takeEdge(from, branch->getSuccessor(1), b.CreateSelect(mask_, b.CreateNot(taken), none()), nullptr);
        return;
    }
    Value* taken = kept(condition);
    Value* other = b.CreateNot(taken);
    takeEdge(from, branch->getSuccessor(0), b.CreateSelect(taken, mask_, none()), taken);
    takeEdge(from, branch->getSuccessor(1), b.CreateSelect(other, mask_, none()), other);
}

/// Lanes of the mask go on to a block; condition, when given, says for all of them at once whether they do.
void Widener::takeEdge(BasicBlock* from, BasicBlock* to, Value* mask, Value* condition)
{
    AllocaInst* place = edgeSlot(from, to);
    b.CreateStore(b.CreateOr(b.CreateLoad(maskType_, place), mask), place);
    std::vector<std::pair<PHINode*, Value*>> values; // read all before any is overwritten
    for (PHINode& phi : to->phis()) {
        Value* value = phi.getIncomingValueForBlock(from);
        values.emplace_back(&phi, divergent(&phi) ? vector(value) : uniform(value));
    }
    for (auto& [phi, value] : values) {
        AllocaInst* target = slotOf(phi);
        Value* old = b.CreateLoad(target->getAllocatedType(), target);
        if (divergent(phi)) value = b.CreateSelect(mask, value, old);
        else if (condition) value = b.CreateSelect(condition, value, old);
        b.CreateStore(value, target);
    }
}

llvm::Function* widen(llvm::Function& scalar, const WidenOptions& options, std::string& error) { return Widener(scalar, options).run(error); }

} // namespace softmetal::shader
