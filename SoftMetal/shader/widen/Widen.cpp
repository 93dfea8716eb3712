// SPDX-License-Identifier: Apache-2.0
// Control flow of the widened function; what single instructions become is in WideInstructions.cpp and WideCalls.cpp.
#include "shader/widen/Prepare.h"
#include "shader/widen/Widener.h"

#include <llvm/ADT/PostOrderIterator.h>
#include <llvm/IR/InstIterator.h>

namespace softmetal::shader
{

using namespace llvm;

Widener::Widener(llvm::Function& scalar, const WidenOptions& options)
    : options_(options), scalar_(scalar), module_(*scalar.getParent()), context_(module_.getContext()), b(context_),
      lanes_(options.lanes), dominators_(scalar), loops_(dominators_), postDominators_(scalar),
      uniformity_(scalar, dominators_)
{
    maskType_ = FixedVectorType::get(b.getInt1Ty(), lanes_);
    maskBits_ = b.getIntNTy(lanes_);
    for (const Instruction& i : instructions(scalar)) {
        if (const auto* store = dyn_cast<StoreInst>(&i))
            writesBuffers_ |= memoryOf(store->getPointerOperand()) != Memory::Private;
        if (const auto* copy = dyn_cast<MemIntrinsic>(&i))
            writesBuffers_ |= memoryOf(copy->getDest()) != Memory::Private;
        if (const auto* call = dyn_cast<CallInst>(&i)) writesBuffers_ |= isAtomic(*call);
    }
}

llvm::Function* Widener::run(std::string& error)
{
    Type* pointer = b.getPtrTy();
    auto* type = FunctionType::get(b.getVoidTy(), {pointer, pointer, pointer}, false);
    wide_ = llvm::Function::Create(type, llvm::Function::ExternalLinkage, WideName, module_);
    wide_->addFnAttr(Attribute::NoUnwind);
    for (unsigned i = 0; i < 3; ++i)
        wide_->addParamAttr(i, Attribute::NoAlias);
    input_ = wide_->getArg(0);
    output_ = wide_->getArg(1);
    resources_ = wide_->getArg(2);
    slots_ = BasicBlock::Create(context_, "", wide_);
    BasicBlock* body = BasicBlock::Create(context_, "", wide_);
    exit_ = BasicBlock::Create(context_, "", wide_);
    stop_ = BasicBlock::Create(context_, "", wide_, exit_);
    b.SetInsertPoint(body);
    prepareMasks();
    checkTypes();
    allocatePrivate();
    if (error_.empty()) emitRegion(nullptr);
    finish();
    reportOutside();
    b.CreateBr(exit_);
    emitStop();
    b.SetInsertPoint(exit_);
    b.CreateRetVoid();
    b.SetInsertPoint(slots_);
    b.CreateBr(body);
    error = error_;
    return error_.empty() ? wide_ : nullptr;
}

/// Values in registers are scalars, but for the results of texture accesses.
void Widener::checkTypes()
{
    for (const Instruction& i : instructions(scalar_)) {
        const Type* type = i.getType();
        bool scalar = type->isVoidTy() || type->isPointerTy() || type->isHalfTy() || type->isFloatTy() ||
                      type->isDoubleTy() || (type->isIntegerTy() && type->getIntegerBitWidth() <= 64);
        if (!scalar && (!isa<CallInst>(i) || isa<IntrinsicInst>(i)))
            return fail("a vector, aggregate or large value is left in '" + Twine(i.getOpcodeName()) + "'");
    }
}

void Widener::fail(const Twine& words)
{
    if (error_.empty()) error_ = words.str();
}

// ---- masks ---------------------------------------------------------------------------------------------------------

void Widener::prepareMasks()
{
    bool fragment = options_.stage == Stage::Fragment;
    Value* covered =
        given(b.getInt32Ty(), input_, fragment ? offsetof(abi::FragmentInput, mask) : offsetof(abi::VertexInput, mask));
    entryMask_ = toMask(fragment ? given(b.getInt32Ty(), input_, offsetof(abi::FragmentInput, live)) : covered);
    killed_ = slot(maskType_);
    limit_ = slot(b.getInt64Ty());
    if (fragment) b.CreateStore(b.getInt32(0), at(output_, offsetof(abi::FragmentOutput, mask)));
}

void Widener::finish()
{
    if (options_.stage != Stage::Fragment) return;
    Value* covered = given(b.getInt32Ty(), input_, offsetof(abi::FragmentInput, mask));
    Value* killed = b.CreateZExtOrTrunc(b.CreateBitCast(b.CreateLoad(maskType_, killed_), maskBits_), b.getInt32Ty());
    b.CreateStore(b.CreateAnd(covered, b.CreateNot(killed)), at(output_, offsetof(abi::FragmentOutput, mask)));
}

/// A loop without end: fragments are not covered, vertices are all zero, which draws nothing.
void Widener::emitStop()
{
    startBlock(stop_);
    callRuntime(intrinsic::RuntimeLoopLimit, {});
    for (uint64_t offset : vertexOutputs_)
        storeLanes(output_, offset, Constant::getNullValue(wideType(b.getFloatTy())));
    b.CreateBr(exit_);
}

Value* Widener::toMask(Value* bits)
{
    return b.CreateBitCast(b.CreateTrunc(bits, maskBits_), maskType_);
}
Value* Widener::maskAsInteger(Value* mask)
{
    return b.CreateZExtOrTrunc(b.CreateBitCast(mask, maskBits_), b.getInt32Ty());
}
Value* Widener::any(Value* mask)
{
    return b.CreateICmpNE(b.CreateBitCast(mask, maskBits_), ConstantInt::get(maskBits_, 0));
}
Value* Widener::none()
{
    return Constant::getNullValue(maskType_);
}

AllocaInst* Widener::slot(Type* type)
{
    IRBuilder<> entry(slots_);
    AllocaInst* place = entry.CreateAlloca(type);
    entry.CreateStore(Constant::getNullValue(type), place); // a lane that never comes by reads zeros, on every machine
    return place;
}

// ---- values --------------------------------------------------------------------------------------------------------

Type* Widener::wideType(Type* type)
{
    return FixedVectorType::get(type, lanes_);
}

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
    if (isa<AllocaInst>(value)) return b.CreateGEP(b.getInt8Ty(), private_, b.getInt64(privateOffsets_[value]));
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

// ---- control flow --------------------------------------------------------------------------------------------------

Loop* Widener::commonLoop(const BasicBlock* from, const BasicBlock* to)
{
    Loop* loop = loops_.getLoopFor(from);
    while (loop && !loop->contains(to))
        loop = loop->getParentLoop();
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
    for (AllocaInst* place : regionEdges_[loop])
        b.CreateStore(none(), place);
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
    everyLane_ = false;
    emitInstructions(header);
    emitRegion(loop);
    Value* again = incoming(header, loop, true);
    b.CreateStore(again, active);
    BasicBlock* count = BasicBlock::Create(context_, "", wide_, exit_);
    b.CreateCondBr(any(again), count, after);
    startBlock(count);
    Value* trips = b.CreateAdd(b.CreateLoad(b.getInt64Ty(), limit_), b.getInt64(1));
    b.CreateStore(trips, limit_);
    b.CreateCondBr(b.CreateICmpUGT(trips, b.getInt64(options_.loopLimit)), stop_, head);
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
    return !loops_.getLoopFor(block) &&
           (block == &scalar_.getEntryBlock() || postDominators_.dominates(block, &scalar_.getEntryBlock()));
}

void Widener::emitBlock(BasicBlock* block)
{
    everyLane_ = isAlwaysReached(block);
    if (everyLane_) {
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
        if (!error_.empty()) return; // what comes next may depend on what could not be written
        if (isa<PHINode>(instruction))
            kept(&instruction);
        else if (!instruction.isTerminator())
            emit(instruction);
    }
    emitTerminator(block->getTerminator());
}

void Widener::emitTerminator(Instruction* terminator)
{
    if (isa<ReturnInst>(terminator) || isa<UnreachableInst>(terminator)) return;
    auto* branch = dyn_cast<BranchInst>(terminator);
    if (!branch) return fail("a kind of branch that is not supported");
    BasicBlock* from = terminator->getParent();
    BasicBlock* first = branch->getSuccessor(0);
    if (branch->isUnconditional() || first == branch->getSuccessor(1))
        return takeEdges(from, {{first, mask_, nullptr}});
    BasicBlock* second = branch->getSuccessor(1);
    Value* taken = kept(branch->getCondition());
    Value* other = b.CreateNot(taken);
    if (divergent(branch->getCondition()))
        return takeEdges(from, {{first, b.CreateSelect(mask_, taken, none()), nullptr},
                                {second, b.CreateSelect(mask_, other, none()), nullptr}});
    takeEdges(from, {{first, b.CreateSelect(taken, mask_, none()), taken},
                     {second, b.CreateSelect(other, mask_, none()), other}});
}

/// Lanes go on to the next blocks. All values are read before any is overwritten.
void Widener::takeEdges(BasicBlock* from, const std::vector<Edge>& edges)
{
    struct Assignment
    {
        const Edge* edge;
        PHINode* phi;
        Value* value;
    };
    std::vector<Assignment> assignments;
    for (const Edge& edge : edges) {
        for (PHINode& phi : edge.to->phis()) {
            Value* value = phi.getIncomingValueForBlock(from);
            assignments.push_back({&edge, &phi, divergent(&phi) ? vector(value) : uniform(value)});
        }
    }
    for (const Edge& edge : edges) {
        AllocaInst* place = edgeSlot(from, edge.to);
        b.CreateStore(b.CreateOr(b.CreateLoad(maskType_, place), edge.mask), place);
    }
    for (const Assignment& a : assignments) {
        AllocaInst* target = slotOf(a.phi);
        Value* old = b.CreateLoad(target->getAllocatedType(), target);
        Value* value = a.value;
        if (divergent(a.phi))
            value = b.CreateSelect(a.edge->mask, value, old);
        else if (a.edge->condition)
            value = b.CreateSelect(a.edge->condition, value, old);
        b.CreateStore(value, target);
    }
}

llvm::Function* widen(llvm::Function& scalar, const WidenOptions& options, std::string& error)
{
    defineEveryResult(scalar);
    return Widener(scalar, options).run(error);
}

} // namespace softmetal::shader
