// SPDX-License-Identifier: Apache-2.0
// What a function does to textures and to numbers in buffers that others may change at the same time: one call of the
// runtime for all lanes, those that count.
#include "shader/widen/Widener.h"

#include <llvm/Analysis/ValueTracking.h>

#include <algorithm>
#include <cstddef>

namespace softmetal::shader
{

using namespace llvm;

namespace
{

constexpr uint64_t LaneBytes = sizeof(abi::Lanes);

bool calls(const CallInst& call, std::string_view name)
{
    const llvm::Function* callee = call.getCalledFunction();
    return callee && callee->getName() == StringRef(name.data(), name.size());
}

/// Whether the pointer can lead into bound buffers only.
bool leadsToBuffers(const Value* pointer)
{
    SmallVector<const Value*, 4> objects;
    getUnderlyingObjects(pointer, objects, nullptr, 0);
    return std::all_of(objects.begin(), objects.end(), [](const Value* object) {
        const auto* call = dyn_cast<CallInst>(object);
        return call && calls(*call, intrinsic::Buffer);
    });
}

} // namespace

bool Widener::isAtomic(const CallInst& call)
{
    return calls(call, intrinsic::Atomic);
}

void Widener::write(CallInst& call)
{
    if (!writeCall_) writeCall_ = accessPlace(sizeof(abi::WriteCall), offsetof(abi::WriteCall, value));
    auto lanes = [&](unsigned argument, uint64_t offset) {
        storeLanes(writeCall_, offset, vector(call.getArgOperand(argument)));
    };
    for (unsigned i = 0; i < 3; ++i)
        lanes(1 + i, offsetof(abi::WriteCall, coordinate) + i * LaneBytes);
    lanes(4, offsetof(abi::WriteCall, layer));
    lanes(5, offsetof(abi::WriteCall, level));
    for (unsigned i = 0; i < 4; ++i)
        lanes(6 + i, offsetof(abi::WriteCall, value) + i * LaneBytes);
    forEachHandle(call.getArgOperand(0), HandleKind::Texture, effectMask(), [&](Value* image, Value* ofImage) {
        b.CreateStore(maskAsInteger(ofImage), at(writeCall_, offsetof(abi::WriteCall, mask)));
        callRuntime(intrinsic::RuntimeWrite, {image, writeCall_});
    });
}

/// Lanes that do not count, or are outside, find zero.
Value* Widener::atomic(CallInst& call)
{
    Value* pointer = call.getArgOperand(0);
    Type* number32 = wideType(b.getInt32Ty());
    if (!leadsToBuffers(pointer)) {
        fail("an atomic operation on what is not in a buffer");
        return Constant::getNullValue(number32);
    }
    if (!atomicCall_) {
        IRBuilder<> entry(slots_);
        atomicCall_ = entry.CreateAlloca(ArrayType::get(b.getInt8Ty(), sizeof(abi::AtomicCall)));
        atomicCall_->setAlignment(Align(64));
    }
    Value *addresses = vector(pointer), *mask = effectMask();
    if (Value* good = within(pointer, addresses, sizeof(uint32_t), 0)) mask = b.CreateAnd(mask, good);
    b.CreateStore(maskAsInteger(mask), at(atomicCall_, offsetof(abi::AtomicCall, mask)));
    auto operation = static_cast<uint32_t>(number(call, 1, abi::AtomicOperations));
    b.CreateStore(b.getInt32(operation), at(atomicCall_, offsetof(abi::AtomicCall, operation)));
    storeLanes(atomicCall_, offsetof(abi::AtomicCall, address), b.CreatePtrToInt(addresses, wideType(b.getInt64Ty())));
    storeLanes(atomicCall_, offsetof(abi::AtomicCall, operand), vector(call.getArgOperand(2)));
    storeLanes(atomicCall_, offsetof(abi::AtomicCall, expected), vector(call.getArgOperand(3)));
    storeLanes(atomicCall_, offsetof(abi::AtomicCall, before), Constant::getNullValue(number32));
    callRuntime(intrinsic::RuntimeAtomic, {atomicCall_});
    return b.CreateAlignedLoad(number32, at(atomicCall_, offsetof(abi::AtomicCall, before)), Align(4));
}

} // namespace softmetal::shader
