// SPDX-License-Identifier: Apache-2.0
// What keeps a program, however hostile, inside what it was given: accesses of buffers and tables are held against the
// size of what their pointer was made from, and textures and samplers that were not plainly bound are looked up among
// those that were.
#include "shader/widen/Widener.h"

#include <llvm/Analysis/ValueTracking.h>
#include <llvm/IR/Constants.h>
#include <llvm/IR/InstIterator.h>

#include <algorithm>
#include <cstddef>

namespace softmetal::shader
{

using namespace llvm;

namespace
{

bool calls(const Value* value, std::string_view name)
{
    const auto* call = dyn_cast<CallInst>(value);
    return call && call->getCalledFunction() &&
           call->getCalledFunction()->getName() == StringRef(name.data(), name.size());
}

/// Whether the value is one of the results of the given functions, whichever way control went, or null.
bool isResultOf(const Value* value, std::string_view first, std::string_view second)
{
    SmallVector<const Value*, 8> open{value};
    SmallPtrSet<const Value*, 8> seen;
    while (!open.empty()) {
        const Value* v = open.pop_back_val();
        if (!seen.insert(v).second) continue;
        if (const auto* phi = dyn_cast<PHINode>(v))
            open.append(phi->op_begin(), phi->op_end());
        else if (const auto* select = dyn_cast<SelectInst>(v))
            open.append({select->getTrueValue(), select->getFalseValue()});
        else if (!calls(v, first) && !calls(v, second) && !isa<ConstantPointerNull, UndefValue>(v))
            return false;
    }
    return true;
}

/// Bytes that a buffer argument has at least: whoever binds less is given a longer copy.
uint64_t sizeKnown(const Value* object, const DataLayout& layout)
{
    if (const auto* table = dyn_cast<GlobalVariable>(object)) return layout.getTypeAllocSize(table->getValueType());
    const auto* call = dyn_cast<CallInst>(object);
    const auto* size = call && call->arg_size() > 1 ? dyn_cast<ConstantInt>(call->getArgOperand(1)) : nullptr;
    return size ? size->getZExtValue() : 0;
}

} // namespace

// ---- handles -------------------------------------------------------------------------------------------------------

const std::vector<CallInst*>& Widener::callsOf(std::string_view name)
{
    auto [place, added] = calls_.try_emplace(name);
    if (!added) return place->second;
    for (Instruction& i : instructions(scalar_)) {
        if (!shader::calls(&i, name)) continue;
        auto* call = cast<CallInst>(&i);
        bool known = std::any_of(place->second.begin(), place->second.end(), [&](const CallInst* other) {
            return std::equal(call->arg_begin(), call->arg_end(), other->arg_begin());
        });
        if (!known) place->second.push_back(call);
    }
    return place->second;
}

/// Hands on each texture or sampler that the pointer may be, with the lanes that chose it; a pointer to anything else
/// is none.
void Widener::forEachHandle(const Value* pointer, HandleKind kind, Value* mask,
                            const std::function<void(Value*, Value*)>& use)
{
    std::string_view bound = kind == HandleKind::Texture ? intrinsic::Texture : intrinsic::Sampler;
    std::string_view written = kind == HandleKind::Texture ? intrinsic::Texture : intrinsic::ConstantSampler;
    if (!divergent(pointer) && isResultOf(pointer, bound, written)) return use(kept(pointer), mask);
    Value* chosen = vector(pointer);
    std::vector<Value*> handles;
    for (CallInst* call : callsOf(bound))
        handles.push_back(resource(call->getCalledFunction()->getName(), *call));
    if (kind == HandleKind::Sampler)
        for (CallInst* call : callsOf(written))
            handles.push_back(constantSampler(*call));
    for (Value* handle : handles) {
        Value* lanes = b.CreateAnd(mask, b.CreateICmpEQ(chosen, b.CreateVectorSplat(lanes_, handle)));
        BasicBlock* body = BasicBlock::Create(context_, "", wide_, exit_);
        BasicBlock* next = BasicBlock::Create(context_, "", wide_, exit_);
        b.CreateCondBr(any(lanes), body, next);
        b.SetInsertPoint(body);
        use(handle, lanes);
        b.CreateBr(next);
        b.SetInsertPoint(next);
        mask = b.CreateAnd(mask, b.CreateNot(lanes)); // two slots may hold the same one
    }
}

// ---- buffers and tables --------------------------------------------------------------------------------------------

/// What the pointer may have been made from. A pointer that was read from private memory may be any of them.
std::vector<Value*> Widener::objectsOf(const Value* pointer)
{
    SmallVector<const Value*, 4> found;
    getUnderlyingObjects(pointer, found, nullptr, 0);
    std::vector<Value*> objects;
    bool known = true;
    for (const Value* object : found) {
        if (isa<GlobalVariable>(object) || shader::calls(object, intrinsic::Buffer))
            objects.push_back(const_cast<Value*>(object));
        else if (!isa<ConstantPointerNull, UndefValue>(object))
            known = false;
    }
    if (known) return objects;
    objects.assign(callsOf(intrinsic::Buffer).begin(), callsOf(intrinsic::Buffer).end());
    for (GlobalVariable& table : module_.globals())
        if (table.hasInitializer()) objects.push_back(&table);
    return objects;
}

bool Widener::isWithinKnownSize(const Value* pointer, const std::vector<Value*>& objects, uint64_t size) const
{
    const DataLayout& layout = module_.getDataLayout();
    APInt offset(layout.getIndexTypeSizeInBits(pointer->getType()), 0);
    const Value* base = pointer->stripAndAccumulateConstantOffsets(layout, offset, true);
    uint64_t known = sizeKnown(base, layout);
    return objects.size() == 1 && base == objects[0] && !offset.isNegative() && known >= size &&
           offset.getZExtValue() <= known - size;
}

/// Whether all bytes of an access lie within an object, for one address or for each; null when there is no doubt. The
/// address is the pointer's or, in a copy, within reach of it.
Value* Widener::within(const Value* pointer, Value* address, uint64_t size, uint64_t reach)
{
    std::vector<Value*> objects = objectsOf(pointer);
    if (isWithinKnownSize(pointer, objects, std::max(size, reach))) return nullptr;
    bool wide = address->getType()->isVectorTy();
    auto spread = [&](Value* v) { return wide ? b.CreateVectorSplat(lanes_, v) : v; };
    Type* type = wide ? wideType(b.getInt64Ty()) : static_cast<Type*>(b.getInt64Ty());
    Value* place = b.CreatePtrToInt(address, type);
    Value* good = Constant::getNullValue(wide ? static_cast<Type*>(maskType_) : b.getInt1Ty());
    for (Value* object : objects) {
        Value *base = object, *length = b.getInt64(sizeKnown(object, module_.getDataLayout()));
        if (auto* call = dyn_cast<CallInst>(object)) {
            uint64_t index = number(*call, 0, abi::MaxBuffers);
            base = resource(call->getCalledFunction()->getName(), *call);
            length =
                given(b.getInt64Ty(), resources_, offsetof(abi::Resources, bufferLengths) + index * sizeof(uint64_t));
        }
        Value* last = b.CreateSub(
            length, b.getInt64(size)); // below zero, and then beyond everything, where the object is too short
        Value* inside =
            b.CreateICmpULE(b.CreateSub(place, spread(b.CreatePtrToInt(base, b.getInt64Ty()))), spread(last));
        inside = b.CreateAnd(inside, spread(b.CreateICmpUGE(length, b.getInt64(size))));
        good = b.CreateOr(good, inside);
    }
    noteOutside(objects, wide ? b.CreateAnd(effectMask(), b.CreateNot(good))
                              : b.CreateAnd(effectMask(), b.CreateVectorSplat(lanes_, b.CreateNot(good))));
    return good;
}

/// Lanes that count have left an object: remembered by the buffer's index until the function ends.
void Widener::noteOutside(const std::vector<Value*>& objects, Value* lanes)
{
    uint64_t bits = 0;
    for (Value* object : objects)
        if (auto* call = dyn_cast<CallInst>(object)) bits |= uint64_t{1} << number(*call, 0, abi::MaxBuffers);
    if (bits == 0) bits = abi::OutsideTable;
    if (!outside_) outside_ = slot(b.getInt64Ty());
    Value* before = b.CreateLoad(b.getInt64Ty(), outside_);
    b.CreateStore(b.CreateSelect(any(lanes), b.CreateOr(before, b.getInt64(bits)), before), outside_);
}

/// Told once for all lanes, so that a loop that runs outside costs no more than another.
void Widener::reportOutside()
{
    if (!outside_) return;
    Value* bits = b.CreateLoad(b.getInt64Ty(), outside_);
    BasicBlock* body = BasicBlock::Create(context_, "", wide_, exit_);
    BasicBlock* next = BasicBlock::Create(context_, "", wide_, exit_);
    b.CreateCondBr(b.CreateICmpNE(bits, b.getInt64(0)), body, next);
    b.SetInsertPoint(body);
    callRuntime(intrinsic::RuntimeOutside, {bits, b.getInt32(options_.stage == Stage::Fragment)});
    b.CreateBr(next);
    b.SetInsertPoint(next);
}

/// Zeros of the type's size, to be read instead of what is outside.
Value* Widener::zerosOf(Type* type)
{
    Type* words = ArrayType::get(b.getInt64Ty(), (bytes(type) + 7) / 8);
    GlobalVariable*& zeros = zeros_[words];
    if (!zeros)
        zeros = new GlobalVariable(module_, words, true, GlobalValue::InternalLinkage, Constant::getNullValue(words));
    return zeros;
}

/// One value of all lanes.
Value* Widener::loadUniform(const Value* pointer, Value* address, Type* type, Align alignment, uint64_t reach)
{
    if (Value* good = within(pointer, address, bytes(type), reach))
        address = b.CreateSelect(good, address, zerosOf(type));
    LoadInst* load = b.CreateAlignedLoad(type, address, alignment);
    if (!writesBuffers_) load->setMetadata(LLVMContext::MD_invariant_load, MDNode::get(context_, {}));
    return load;
}

/// A value of each lane; zeros for those outside.
Value* Widener::loadLanes(const Value* pointer, Value* addresses, Type* type, Align alignment, uint64_t reach)
{
    Value* good = within(pointer, addresses, bytes(type), reach);
    return b.CreateMaskedGather(wideType(type), addresses, alignment, good ? b.CreateAnd(mask_, good) : mask_,
                                Constant::getNullValue(wideType(type)));
}

void Widener::storeToLanes(const Value* pointer, Value* addresses, Value* value, Align alignment, uint64_t reach)
{
    Value *good = within(pointer, addresses, bytes(value->getType()->getScalarType()), reach), *mask = effectMask();
    b.CreateMaskedScatter(value, addresses, alignment, good ? b.CreateAnd(mask, good) : mask);
}

} // namespace softmetal::shader
