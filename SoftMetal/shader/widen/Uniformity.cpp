// SPDX-License-Identifier: Apache-2.0
#include "shader/widen/Uniformity.h"

#include "shader/Intrinsics.h"

#include <llvm/ADT/GenericUniformityImpl.h>
#include <llvm/Analysis/TargetTransformInfoImpl.h>
#include <llvm/Analysis/ValueTracking.h>
#include <llvm/IR/Instructions.h>

#include <array>

namespace softmetal::shader {
namespace {

using namespace llvm;

/// Functions whose result is the same in every lane when their arguments are.
constexpr std::array UniformFunctions = {
    intrinsic::BaseVertex, intrinsic::BaseInstance, intrinsic::FrontFacing, intrinsic::PrimitiveId, intrinsic::SampleMask,
    intrinsic::Buffer,     intrinsic::Texture,      intrinsic::Sampler,     intrinsic::TextureSize, intrinsic::ConstantSampler,
};

bool isUniformFunction(StringRef name)
{
    for (std::string_view known : UniformFunctions)
        if (name == StringRef(known.data(), known.size())) return true;
    return false;
}

bool differsBetweenLanes(const Value* value)
{
    // The address of private memory is the same for all, what is there is not.
    if (const auto* load = dyn_cast<LoadInst>(value)) return memoryOf(load->getPointerOperand()) != Memory::Bound;
    const auto* call = dyn_cast<CallInst>(value);
    if (!call || !call->getCalledFunction() || call->getCalledFunction()->isIntrinsic()) return false;
    return !isUniformFunction(call->getCalledFunction()->getName());
}

class LaneInfo final : public TargetTransformInfoImplCRTPBase<LaneInfo>
{
public:
    explicit LaneInfo(const DataLayout& layout) : TargetTransformInfoImplCRTPBase<LaneInfo>(layout) {}
    bool hasBranchDivergence(const Function* = nullptr) const { return true; }
    bool isSourceOfDivergence(const Value* value) const { return differsBetweenLanes(value); }
    bool isAlwaysUniform(const Value*) const { return false; }
};

} // namespace

Memory memoryOf(const Value* pointer)
{
    SmallVector<const Value*, 4> objects;
    getUnderlyingObjects(pointer, objects, nullptr, 0);
    bool own = false, other = false;
    for (const Value* object : objects) {
        if (isa<AllocaInst>(object)) own = true;
        else if (!isa<ConstantPointerNull, UndefValue>(object)) other = true;
    }
    if (own && other) return Memory::Mixed;
    return own ? Memory::Private : Memory::Bound;
}

Uniformity::Uniformity(Function& function, DominatorTree& dominators) : target_(LaneInfo(function.getParent()->getDataLayout()))
{
    cycles_.compute(function);
    info_ = UniformityInfo(dominators, cycles_, &target_);
    info_.compute();
}

} // namespace softmetal::shader
