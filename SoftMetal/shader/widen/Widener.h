// SPDX-License-Identifier: Apache-2.0
// The class behind widen(): state of one run. Control flow is in Widen.cpp, single instructions in
// WideInstructions.cpp, memory in WideMemory.cpp and WideBounds.cpp, stage inputs and outputs in WideCalls.cpp, texture
// accesses in WideAccesses.cpp, effects on memory through the runtime in WideEffects.cpp.
#pragma once

#include "shader/Intrinsics.h"
#include "shader/widen/Uniformity.h"
#include "shader/widen/Widen.h"

#include <llvm/Analysis/LoopInfo.h>
#include <llvm/Analysis/PostDominators.h>
#include <llvm/IR/IRBuilder.h>
#include <llvm/IR/IntrinsicInst.h>
#include <llvm/IR/Module.h>

#include <array>
#include <functional>
#include <map>
#include <set>
#include <unordered_map>
#include <vector>

namespace softmetal::shader
{

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
    void emitStop();
    void checkTypes();
    Value* toMask(Value* bits);
    Value* maskAsInteger(Value* mask);
    Value* any(Value* mask);
    Value* none();

    // values
    llvm::AllocaInst* slot(llvm::Type* type);
    llvm::Type* wideType(llvm::Type* type);
    bool divergent(const Value* value) const
    {
        return !llvm::isa<llvm::Constant>(value) && uniformity_.divergent(value);
    }
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
    struct Edge
    {
        BasicBlock* to;
        Value* mask;      // lanes that take it
        Value* condition; // for all lanes at once, where the branch is uniform
    };
    void takeEdges(BasicBlock* from, const std::vector<Edge>& edges);

    // instructions
    void emit(llvm::Instruction& instruction);
    void emitUniform(llvm::Instruction& instruction);
    Value* wideOperation(llvm::Instruction& instruction);

    // memory
    void allocatePrivate();
    Value* privateOffset(Value* pointer, uint64_t size);
    Value* pieceAddress(Value* offset, uint64_t piece);
    Value* loadPrivate(llvm::LoadInst& instruction);
    void storePrivate(Value* value, Value* pointer, llvm::Align alignment);
    Value* loadPieces(Value* offset, uint64_t size, uint64_t piece);
    void storePieces(Value* value, Value* offset, uint64_t size, uint64_t piece);
    Value* effectMask();
    void checkPointerSource(const Value* pointer);
    Value* load(llvm::LoadInst& instruction);
    void store(llvm::StoreInst& instruction);
    void copyMemory(llvm::MemIntrinsic& call);
    Value* sourceBytes(llvm::MemIntrinsic& call, uint64_t at, uint64_t piece);
    uint64_t bytes(llvm::Type* type) const;

    // calls
    void emitCall(llvm::CallInst& call);
    void emitLlvmIntrinsic(llvm::CallInst& call);
    Value* stageInput(llvm::StringRef name, llvm::CallInst& call);
    bool stageOutput(llvm::StringRef name, llvm::CallInst& call);
    Value* varying(llvm::CallInst& call);
    Value* derivative(Value* value, bool vertical);
    Value* at(Value* base, uint64_t offset);
    Value* given(llvm::Type* type, Value* base, uint64_t offset);
    Value* givenLanes(llvm::Type* type, Value* base, uint64_t offset);
    void storeLanes(Value* base, uint64_t offset, Value* value);
    void storeResult(uint64_t offset, Value* value);
    llvm::CallInst* callRuntime(std::string_view name, const std::vector<Value*>& arguments);
    uint64_t number(const llvm::CallInst& call, unsigned argument, uint64_t end);

    // bounds
    enum class HandleKind
    {
        Texture,
        Sampler
    };
    const std::vector<llvm::CallInst*>& callsOf(std::string_view name);
    void forEachHandle(const Value* pointer, HandleKind kind, Value* mask,
                       const std::function<void(Value* handle, Value* mask)>& use);
    std::vector<Value*> objectsOf(const Value* pointer);
    bool isWithinKnownSize(const Value* pointer, const std::vector<Value*>& objects, uint64_t size) const;
    Value* within(const Value* pointer, Value* address, uint64_t size, uint64_t reach);
    void noteOutside(const std::vector<Value*>& objects, Value* lanes);
    Value* zerosOf(llvm::Type* type);
    Value* loadUniform(const Value* pointer, Value* address, llvm::Type* type, llvm::Align alignment,
                       uint64_t reach = 0);
    Value* loadLanes(const Value* pointer, Value* addresses, llvm::Type* type, llvm::Align alignment,
                     uint64_t reach = 0);
    void storeToLanes(const Value* pointer, Value* addresses, Value* value, llvm::Align alignment, uint64_t reach = 0);
    void reportOutside();

    // texture accesses
    Value* resource(llvm::StringRef name, llvm::CallInst& call);
    void emptyResults(Value* where);
    bool access(llvm::StringRef name, llvm::CallInst& call);
    void fillSample(llvm::CallInst& call, Value* place);
    void read(llvm::CallInst& call);
    void write(llvm::CallInst& call);
    static bool isAtomic(const llvm::CallInst& call);
    Value* atomic(llvm::CallInst& call);
    llvm::AllocaInst* accessPlace(uint64_t size, uint64_t results);
    void accessResults(llvm::CallInst& call, Value* where);
    void extract(llvm::ExtractElementInst& instruction);
    Value* textureSize(llvm::CallInst& call);
    Value* constantSampler(llvm::CallInst& call);

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
    BasicBlock* stop_ = nullptr;                    // where a loop that does not end leaves
    llvm::VectorType* maskType_ = nullptr;
    llvm::IntegerType* maskBits_ = nullptr;
    Value *entryMask_ = nullptr, *mask_ = nullptr; // lanes that entered; lanes of the block being written
    bool everyLane_ = true;                        // mask_ is entryMask_
    llvm::AllocaInst *killed_ = nullptr, *limit_ = nullptr, *sampleCall_ = nullptr, *readCall_ = nullptr,
                     *writeCall_ = nullptr, *atomicCall_ = nullptr;
    llvm::AllocaInst* private_ = nullptr; // all lanes' private memory
    uint64_t privateSize_ = 0;            // of one lane, in bytes
    std::unordered_map<const Value*, uint64_t> privateOffsets_;
    bool writesBuffers_ = false;
    llvm::AllocaInst* outside_ = nullptr; // buffers that a lane left, a bit each
    std::unordered_map<std::string_view, std::vector<llvm::CallInst*>> calls_;
    std::unordered_map<llvm::Type*, llvm::GlobalVariable*> zeros_;
    std::map<std::array<uint64_t, 3>, llvm::GlobalVariable*> writtenSamplers_;
    std::set<uint64_t> vertexOutputs_; // offsets that are written
    std::vector<BasicBlock*> order_;
    std::unordered_map<const Value*, Value*> local_; // known in the block being written
    std::unordered_map<const Value*, llvm::AllocaInst*> valueSlots_;
    std::map<std::pair<const BasicBlock*, const BasicBlock*>, llvm::AllocaInst*> edges_;
    std::unordered_map<llvm::Loop*, std::vector<llvm::AllocaInst*>> regionEdges_;
    std::map<std::pair<const Value*, uint64_t>, llvm::AllocaInst*> componentSlots_; // of accesses with four results
};

} // namespace softmetal::shader
