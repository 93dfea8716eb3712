// SPDX-License-Identifier: Apache-2.0
// The class behind widen(): state of one run, shared by the files of this room.
#pragma once

#include "shader/Intrinsics.h"
#include "shader/widen/Uniformity.h"
#include "shader/widen/Widen.h"

#include <llvm/Analysis/LoopInfo.h>
#include <llvm/Analysis/PostDominators.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/Instructions.h>
#include <llvm/IR/Module.h>

#include <map>
#include <unordered_map>
#include <vector>

namespace softmetal::shader {

class Widener
{
public:
    Widener(llvm::Function& scalar, const WidenOptions& options);
    llvm::Function* run(std::string& error);

private:
    using Value = llvm::Value;
    using BasicBlock = llvm::BasicBlock;

    // masks
    void prepareMasks();
    void finish();
    Value* toMask(Value* bits);
    Value* maskAsInteger();
    Value* any(Value* mask);
    Value* none();

    // values
    llvm::AllocaInst* slot(llvm::Type* type);
    llvm::Type* wideType(llvm::Type* type);
    bool divergent(const Value* value) const { return !llvm::isa<llvm::Constant>(value) && uniformity_.divergent(value); }
    bool crossesBlocks(const llvm::Instruction* instruction) const;
    llvm::AllocaInst* slotOf(const Value* value);
    void define(const llvm::Instruction* instruction, Value* value);
    Value* kept(const Value* value);
    Value* uniform(const Value* value);
    Value* vector(const Value* value);
    void fail(const llvm::Twine& words);

    // control flow
    llvm::Loop* commonLoop(const BasicBlock* from, const BasicBlock* to);
    llvm::AllocaInst* edgeSlot(const BasicBlock* from, const BasicBlock* to);
    void clearEdges(llvm::Loop* loop);
    Value* incoming(const BasicBlock* block, llvm::Loop* loop, bool fromInside);
    void emitRegion(llvm::Loop* region);
    void emitLoop(llvm::Loop* loop);
    void startBlock(BasicBlock* block);
    bool isAlwaysReached(const BasicBlock* block);
    void emitBlock(BasicBlock* block);
    void emitInstructions(BasicBlock* block);
    void emitTerminator(llvm::Instruction* terminator);
    void takeEdge(BasicBlock* from, BasicBlock* to, Value* mask, Value* condition);

    // instructions (WideInstructions.cpp)
    void emit(llvm::Instruction& instruction);
    void emitUniform(llvm::Instruction& instruction);
    void emitWide(llvm::Instruction& instruction);
    Value* wideOperation(llvm::Instruction& instruction);
    Value* safeDivisor(const llvm::Instruction& instruction, Value* dividend, Value* divisor, bool wide);
    Value* toInteger(const llvm::CastInst& conversion, Value* value, llvm::Type* type);
    void allocatePrivate();
    Value* load(llvm::LoadInst& instruction);
    void store(llvm::StoreInst& instruction);
    void copyMemory(llvm::CallInst& call);

    // calls (WideCalls.cpp)
    void emitCall(llvm::CallInst& call);
    void emitLlvmIntrinsic(llvm::CallInst& call);
    Value* stageInput(llvm::StringRef name, llvm::CallInst& call);
    bool stageOutput(llvm::StringRef name, llvm::CallInst& call);
    Value* resource(llvm::StringRef name, llvm::CallInst& call);
    Value* varying(llvm::CallInst& call);
    Value* derivative(Value* value, bool vertical);
    void access(llvm::StringRef name, llvm::CallInst& call);
    void read(llvm::CallInst& call);
    void accessResults(llvm::CallInst& call, Value* where);
    void extract(llvm::ExtractElementInst& instruction);
    Value* textureSize(llvm::CallInst& call);
    Value* constantSampler(llvm::CallInst& call);
    Value* at(Value* base, uint64_t offset);
    Value* loadLanes(Value* base, uint64_t offset, llvm::Type* type);
    void storeLanes(Value* base, uint64_t offset, Value* value);
    llvm::CallInst* callRuntime(void* function, std::vector<Value*> arguments);
    static uint64_t number(const Value* constant);

    WidenOptions options_;
    llvm::Function& scalar_;
    llvm::Module& module_;
    llvm::LLVMContext& context_;
    llvm::IRBuilder<> b;
    uint32_t lanes_;
    llvm::DominatorTree dominators_;
    llvm::LoopInfo loops_;
    llvm::PostDominatorTree postDominators_;
    Uniformity uniformity_;
    std::string error_;

    llvm::Function* wide_ = nullptr;
    Value *input_ = nullptr, *output_ = nullptr, *resources_ = nullptr;
    BasicBlock *slots_ = nullptr, *exit_ = nullptr; // slots and their zeros at the front, the return at the end
    llvm::VectorType* maskType_ = nullptr;
    llvm::IntegerType* maskBits_ = nullptr;
    Value *entryMask_ = nullptr, *mask_ = nullptr; // lanes that entered; lanes of the block being written
    llvm::AllocaInst *killed_ = nullptr, *limit_ = nullptr, *sampleCall_ = nullptr, *readCall_ = nullptr;
    std::vector<BasicBlock*> order_;
    std::unordered_map<const Value*, Value*> local_; // known in the block being written
    std::unordered_map<const Value*, llvm::AllocaInst*> valueSlots_;
    std::map<std::pair<const BasicBlock*, const BasicBlock*>, llvm::AllocaInst*> edges_;
    std::unordered_map<llvm::Loop*, std::vector<llvm::AllocaInst*>> regionEdges_;
    std::map<std::pair<const Value*, uint64_t>, llvm::AllocaInst*> componentSlots_; // of accesses with four results
};

} // namespace softmetal::shader
