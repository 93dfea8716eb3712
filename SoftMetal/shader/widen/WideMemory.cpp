// SPDX-License-Identifier: Apache-2.0
// Arrays that could not be taken apart are private memory of each lane. All of it lies in one block, interleaved: word n of
// lane i is at (n * lanes + i) * 4, so that an index which all lanes share reads one vector. Pointers into it count bytes as
// the scalar program does; only an access turns them into a place. Places are kept inside the block, whatever the index.
#include "shader/widen/Widener.h"

#include <llvm/Analysis/ValueTracking.h>

namespace softmetal::shader {

using namespace llvm;

namespace {

constexpr uint64_t WordBytes = 4;
constexpr uint64_t MaxCopiedPieces = 1024;
constexpr uint64_t MaxPrivateBytes = 16384; // of one lane

/// Largest of 1, 2 and 4 bytes in which something so aligned can be moved.
uint64_t pieceOf(uint64_t size, Align alignment)
{
    uint64_t piece = std::min<uint64_t>(WordBytes, alignment.value());
    while (size % piece != 0) piece /= 2;
    return piece;
}

} // namespace

uint64_t Widener::bytes(Type* type) const { return module_.getDataLayout().getTypeStoreSize(type).getFixedValue(); }

void Widener::allocatePrivate()
{
    const DataLayout& layout = module_.getDataLayout();
    for (Instruction& instruction : scalar_.getEntryBlock()) {
        auto* array = dyn_cast<AllocaInst>(&instruction);
        if (!array || !array->isStaticAlloca()) continue;
        privateOffsets_[array] = privateSize_;
        privateSize_ += alignTo(array->getAllocationSize(layout).value_or(TypeSize::getFixed(0)).getFixedValue(), 16);
    }
    if (privateSize_ == 0) return;
    if (privateSize_ > MaxPrivateBytes) return fail("the arrays of the function take " + Twine(privateSize_) + " bytes (limit " + Twine(MaxPrivateBytes) + ")");
    IRBuilder<> entry(slots_);
    private_ = entry.CreateAlloca(ArrayType::get(b.getInt8Ty(), privateSize_ * lanes_));
    private_->setAlignment(Align(64));
    entry.CreateMemSet(private_, b.getInt8(0), privateSize_ * lanes_, Align(64)); // the same start on every machine
}

// ---- private memory ----------------------------------------------------------------------------------------------------

/// Where a pointer leads, in bytes of one lane: a number, or one for each lane.
Value* Widener::privateOffset(Value* pointer, uint64_t size)
{
    auto number = [&](Value* address) {
        Type* type = address->getType();
        return b.CreatePtrToInt(address, type->isVectorTy() ? wideType(b.getInt64Ty()) : static_cast<Type*>(b.getInt64Ty()));
    };
    bool wide = pointer->getType()->isVectorTy();
    Value* base = number(private_);
    Value* offset = b.CreateSub(number(pointer), wide ? b.CreateVectorSplat(lanes_, base) : base);
    offset = b.CreateTrunc(offset, wide ? wideType(b.getInt32Ty()) : static_cast<Type*>(b.getInt32Ty()));
    uint64_t last = privateSize_ - std::min(size, privateSize_);
    return b.CreateBinaryIntrinsic(Intrinsic::umin, offset, ConstantInt::get(offset->getType(), last));
}

/// The places of one piece: an address when they are one vector of words, else one address for each lane.
Value* Widener::pieceAddress(Value* offset, uint64_t piece)
{
    Type* type = offset->getType();
    auto constant = [&](uint64_t value) { return ConstantInt::get(type, value); };
    Value* place = b.CreateMul(b.CreateAnd(offset, constant(~(WordBytes - 1) & 0xffffffffu)), constant(lanes_));
    if (piece < WordBytes) place = b.CreateOr(place, b.CreateAnd(offset, constant(WordBytes - piece)));
    if (!type->isVectorTy()) {
        if (piece == WordBytes) return b.CreateGEP(b.getInt8Ty(), private_, place);
        place = b.CreateVectorSplat(lanes_, place);
    }
    SmallVector<Constant*, 16> ofLane;
    for (uint32_t lane = 0; lane < lanes_; ++lane) ofLane.push_back(b.getInt32(lane * WordBytes));
    return b.CreateGEP(b.getInt8Ty(), private_, b.CreateAdd(place, ConstantVector::get(ofLane)));
}

Value* Widener::loadPieces(Value* offset, uint64_t size, uint64_t piece)
{
    Type* whole = wideType(b.getIntNTy(static_cast<unsigned>(size * 8)));
    Type* part = wideType(b.getIntNTy(static_cast<unsigned>(piece * 8)));
    Value* result = nullptr;
    for (uint64_t done = 0; done < size; done += piece) {
        Value* place = pieceAddress(b.CreateAdd(offset, ConstantInt::get(offset->getType(), done)), piece);
        Value* bits = place->getType()->isVectorTy() ? b.CreateMaskedGather(part, place, Align(piece), mask_, Constant::getNullValue(part))
                                                     : static_cast<Value*>(b.CreateAlignedLoad(part, place, Align(WordBytes * lanes_)));
        bits = b.CreateShl(b.CreateZExt(bits, whole), ConstantInt::get(whole, done * 8));
        result = result ? b.CreateOr(result, bits) : bits;
    }
    return result;
}

void Widener::storePieces(Value* value, Value* offset, uint64_t size, uint64_t piece)
{
    Type* part = wideType(b.getIntNTy(static_cast<unsigned>(piece * 8)));
    for (uint64_t done = 0; done < size; done += piece) {
        Value* place = pieceAddress(b.CreateAdd(offset, ConstantInt::get(offset->getType(), done)), piece);
        Value* bits = b.CreateTrunc(b.CreateLShr(value, ConstantInt::get(value->getType(), done * 8)), part);
        if (place->getType()->isVectorTy()) b.CreateMaskedScatter(bits, place, Align(piece), mask_);
        else b.CreateMaskedStore(bits, place, Align(WordBytes * lanes_), mask_);
    }
}

Value* Widener::loadPrivate(LoadInst& instruction)
{
    Type* type = instruction.getType();
    uint64_t size = bytes(type);
    Value* offset = privateOffset(kept(instruction.getPointerOperand()), size);
    Value* bits = loadPieces(offset, size, pieceOf(size, instruction.getAlign()));
    if (type->isPointerTy()) return b.CreateIntToPtr(bits, wideType(type));
    if (type->isIntegerTy()) return b.CreateTrunc(bits, wideType(type));
    return b.CreateBitCast(bits, wideType(type));
}

void Widener::storePrivate(Value* value, Value* pointer, Align alignment)
{
    Type* type = value->getType()->getScalarType();
    uint64_t size = bytes(type);
    Type* whole = wideType(b.getIntNTy(static_cast<unsigned>(size * 8)));
    if (type->isPointerTy()) value = b.CreatePtrToInt(value, whole);
    else if (type->isIntegerTy()) value = b.CreateZExt(value, whole);
    else value = b.CreateBitCast(value, whole);
    storePieces(value, privateOffset(pointer, size), size, pieceOf(size, alignment));
}

// ---- memory of all lanes -------------------------------------------------------------------------------------------------

/// Lanes whose effects on the outside count: neither discarded nor there for their neighbours' sake.
Value* Widener::effectMask()
{
    if (options_.stage == Stage::Vertex) return mask_;
    Value* covered = toMask(given(b.getInt32Ty(), input_, offsetof(abi::FragmentInput, mask)));
    return b.CreateAnd(b.CreateAnd(mask_, covered), b.CreateNot(b.CreateLoad(maskType_, killed_)));
}

/// An address that stands in a buffer is a number that anyone may have put there.
void Widener::checkPointerSource(const Value* pointer)
{
    SmallVector<const Value*, 4> objects;
    getUnderlyingObjects(pointer, objects, nullptr, 0);
    for (const Value* object : objects)
        if (!isa<GlobalVariable>(object)) return fail("a pointer is read from a buffer");
}

Value* Widener::load(LoadInst& instruction)
{
    Value* pointer = instruction.getPointerOperand();
    Memory memory = memoryOf(pointer);
    if (memory == Memory::Mixed) fail("a pointer leads into private memory or elsewhere");
    if (memory == Memory::Private) return loadPrivate(instruction);
    if (instruction.getType()->isPointerTy()) checkPointerSource(pointer);
    return loadLanes(pointer, vector(pointer), instruction.getType(), instruction.getAlign());
}

void Widener::store(StoreInst& instruction)
{
    Value *value = instruction.getValueOperand(), *pointer = instruction.getPointerOperand();
    Memory memory = memoryOf(pointer);
    if (value->getType()->isVectorTy() || value->getType()->isAggregateType()) return fail("a vector or aggregate value is stored");
    if (value->getType()->isPointerTy() && memoryOf(value) != Memory::Bound) return fail("the address of private memory is stored");
    if (memory == Memory::Mixed) return fail("a pointer leads into private memory or elsewhere");
    if (memory == Memory::Private) return storePrivate(vector(value), kept(pointer), instruction.getAlign());
    storeToLanes(pointer, vector(pointer), vector(value), instruction.getAlign());
}

// ---- copies --------------------------------------------------------------------------------------------------------------

/// One piece of what a copy or fill writes, for each lane.
Value* Widener::sourceBytes(MemIntrinsic& call, uint64_t offset, uint64_t piece)
{
    Type* part = b.getIntNTy(static_cast<unsigned>(piece * 8));
    if (auto* fill = dyn_cast<MemSetInst>(&call)) {
        uint64_t ones = 0x01010101u & ((uint64_t(1) << (piece * 8)) - 1);
        return b.CreateMul(b.CreateZExt(vector(fill->getValue()), wideType(part)), ConstantInt::get(wideType(part), ones));
    }
    Value* source = cast<MemTransferInst>(call).getSource();
    if (memoryOf(source) == Memory::Private) {
        uint64_t length = cast<ConstantInt>(call.getLength())->getZExtValue();
        Value* start = privateOffset(kept(source), length);
        return loadPieces(b.CreateAdd(start, ConstantInt::get(start->getType(), offset)), piece, piece);
    }
    uint64_t reach = cast<ConstantInt>(call.getLength())->getZExtValue();
    Value* place = b.CreateGEP(b.getInt8Ty(), kept(source), b.getInt64(offset));
    if (!divergent(source)) return b.CreateVectorSplat(lanes_, loadUniform(source, place, part, Align(1), reach));
    return loadLanes(source, place, part, Align(1), reach);
}

/// memcpy, memmove and memset. Everything is read before anything is written.
void Widener::copyMemory(MemIntrinsic& call)
{
    auto* length = dyn_cast<ConstantInt>(call.getLength());
    if (!length) return fail("a copy of variable length");
    if (length->isZero()) return;
    Value* target = call.getDest();
    auto* transfer = dyn_cast<MemTransferInst>(&call);
    Memory to = memoryOf(target), from = transfer ? memoryOf(transfer->getSource()) : Memory::Bound;
    if (to == Memory::Mixed || from == Memory::Mixed) return fail("a pointer leads into private memory or elsewhere");
    Align alignment = call.getDestAlign().valueOrOne();
    if (from == Memory::Private) alignment = std::min(alignment, transfer->getSourceAlign().valueOrOne());
    uint64_t size = length->getZExtValue(), piece = pieceOf(size, alignment);
    if (size / piece > MaxCopiedPieces) return fail("a copy of " + Twine(size) + " bytes (limit " + Twine(MaxCopiedPieces * piece) + ")");
    std::vector<Value*> values;
    for (uint64_t done = 0; done < size; done += piece) values.push_back(sourceBytes(call, done, piece));
    Value* start = to == Memory::Private ? privateOffset(kept(target), size) : vector(target);
    for (uint64_t done = 0; done < size; done += piece) {
        Value* value = values[done / piece];
        if (to == Memory::Private) storePieces(value, b.CreateAdd(start, ConstantInt::get(start->getType(), done)), piece, piece);
        else storeToLanes(target, b.CreateGEP(b.getInt8Ty(), start, b.getInt64(done)), value, Align(1), size);
    }
}

} // namespace softmetal::shader
