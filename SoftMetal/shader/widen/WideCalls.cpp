// SPDX-License-Identifier: Apache-2.0
#include "shader/widen/Widener.h"

#include <llvm/Analysis/VectorUtils.h>
#include <llvm/IR/IntrinsicInst.h>
#include <llvm/IR/Intrinsics.h>

namespace softmetal::shader {

using namespace llvm;

namespace {

bool is(StringRef name, std::string_view known) { return name == StringRef(known.data(), known.size()); }

constexpr uint64_t LaneBytes = sizeof(abi::Lanes);

} // namespace

Value* Widener::at(Value* base, uint64_t offset) { return b.CreateConstInBoundsGEP1_64(b.getInt8Ty(), base, offset); }

Value* Widener::loadLanes(Value* base, uint64_t offset, Type* type) { return b.CreateAlignedLoad(wideType(type), at(base, offset), Align(4)); }

void Widener::storeLanes(Value* base, uint64_t offset, Value* value) { b.CreateAlignedStore(value, at(base, offset), Align(4)); }

uint64_t Widener::number(const Value* constant)
{
    auto* value = dyn_cast<ConstantInt>(constant);
    return value ? value->getZExtValue() : 0;
}

CallInst* Widener::callRuntime(void* function, std::vector<Value*> arguments)
{
    std::vector<Type*> types;
    for (Value* a : arguments) types.push_back(a->getType());
    Value* address = b.CreateIntToPtr(b.getInt64(reinterpret_cast<uint64_t>(function)), b.getPtrTy());
    return b.CreateCall(FunctionType::get(b.getVoidTy(), types, false), address, arguments);
}

void Widener::emitCall(CallInst& call)
{
    llvm::Function* callee = call.getCalledFunction();
    if (!callee) return fail("calls through pointers are not supported");
    if (isa<MemIntrinsic>(call)) return copyMemory(call);
    if (callee->isIntrinsic()) return emitLlvmIntrinsic(call);
    StringRef name = callee->getName();
    if (!name.starts_with("softmetal_")) return fail("function '" + name + "' is called but has no body, or calls itself");
    if (stageOutput(name, call)) return;
    if (is(name, intrinsic::Sample) || is(name, intrinsic::SampleCompare) || is(name, intrinsic::Gather)) return access(name, call);
    if (is(name, intrinsic::Read)) return read(call);
    Value* result = stageInput(name, call);
    if (!result) result = resource(name, call);
    if (!result) return fail("operation '" + name + "' is not supported");
    define(&call, result);
}

void Widener::emitLlvmIntrinsic(CallInst& call)
{
    Intrinsic::ID id = call.getIntrinsicID();
    if (id == Intrinsic::assume || id == Intrinsic::lifetime_start || id == Intrinsic::lifetime_end || isa<DbgInfoIntrinsic>(call)) return;
    if (!isTriviallyVectorizable(id)) return fail("operation '" + call.getCalledFunction()->getName() + "' is not supported");
    bool wide = divergent(&call);
    std::vector<Value*> arguments;
    std::vector<Type*> overloads;
    if (isVectorIntrinsicWithOverloadTypeAtArg(id, -1)) overloads.push_back(wide ? wideType(call.getType()) : call.getType());
    for (unsigned i = 0; i < call.arg_size(); ++i) {
        Value* argument = call.getArgOperand(i);
        bool scalar = !wide || isVectorIntrinsicWithScalarOpAtArg(id, i);
        arguments.push_back(scalar ? uniform(argument) : vector(argument));
        if (isVectorIntrinsicWithOverloadTypeAtArg(id, static_cast<int>(i))) overloads.push_back(arguments.back()->getType());
    }
    define(&call, b.CreateIntrinsic(id, overloads, arguments));
}

// ---- inputs ------------------------------------------------------------------------------------------------------------

Value* Widener::stageInput(StringRef name, CallInst& call)
{
    Type *integer = b.getInt32Ty(), *real = b.getFloatTy();
    auto word = [&](uint64_t offset) { return b.CreateLoad(integer, at(input_, offset)); };
    auto component = [&] { return number(call.getArgOperand(0)); };
    if (is(name, intrinsic::Attribute)) {
        Value* attributes = b.CreateLoad(b.getPtrTy(), at(input_, offsetof(abi::VertexInput, attributes)));
        return loadLanes(attributes, (component() * 4 + number(call.getArgOperand(1))) * LaneBytes, integer);
    }
    if (is(name, intrinsic::VertexId)) return loadLanes(input_, offsetof(abi::VertexInput, vertexId), integer);
    if (is(name, intrinsic::InstanceId)) return loadLanes(input_, offsetof(abi::VertexInput, instanceId), integer);
    if (is(name, intrinsic::BaseVertex)) return word(offsetof(abi::VertexInput, baseVertex));
    if (is(name, intrinsic::BaseInstance)) return word(offsetof(abi::VertexInput, baseInstance));
    if (is(name, intrinsic::FrontFacing)) return word(offsetof(abi::FragmentInput, frontFacing));
    if (is(name, intrinsic::PrimitiveId)) return word(offsetof(abi::FragmentInput, primitiveId));
    if (is(name, intrinsic::SampleMask)) return word(offsetof(abi::FragmentInput, sampleMask));
    if (is(name, intrinsic::Varying)) return varying(call);
    if (is(name, intrinsic::Position)) {
        static constexpr uint64_t Offsets[] = {offsetof(abi::FragmentInput, x), offsetof(abi::FragmentInput, y), offsetof(abi::FragmentInput, z),
                                               offsetof(abi::FragmentInput, invW)};
        return loadLanes(input_, Offsets[component() & 3], real);
    }
    if (is(name, intrinsic::PointCoord))
        return loadLanes(input_, component() == 0 ? offsetof(abi::FragmentInput, pointX) : offsetof(abi::FragmentInput, pointY), real);
    return nullptr;
}

/// The plane of the primitive at the pixel centres, in the order of operations that the rasteriser documents.
Value* Widener::varying(CallInst& call)
{
    Type* real = b.getFloatTy();
    uint64_t plane = number(call.getArgOperand(0)) * sizeof(abi::Plane);
    auto interpolation = static_cast<Interpolation>(number(call.getArgOperand(1)));
    Value* planes = b.CreateLoad(b.getPtrTy(), at(input_, offsetof(abi::FragmentInput, planes)));
    auto coefficient = [&](uint64_t offset) { return b.CreateVectorSplat(lanes_, b.CreateLoad(real, at(planes, plane + offset))); };
    Value* origin = coefficient(offsetof(abi::Plane, origin));
    if (interpolation == Interpolation::Flat) return origin;
    auto distance = [&](uint64_t lanes, uint64_t reference) {
        return b.CreateFSub(loadLanes(input_, lanes, real), b.CreateVectorSplat(lanes_, b.CreateLoad(real, at(input_, reference))));
    };
    Value* x = distance(offsetof(abi::FragmentInput, x), offsetof(abi::FragmentInput, originX));
    Value* y = distance(offsetof(abi::FragmentInput, y), offsetof(abi::FragmentInput, originY));
    Value* value = b.CreateFAdd(b.CreateFAdd(origin, b.CreateFMul(x, coefficient(offsetof(abi::Plane, dx)))),
                                b.CreateFMul(y, coefficient(offsetof(abi::Plane, dy))));
    return interpolation == Interpolation::NoPerspective ? value : b.CreateFMul(value, loadLanes(input_, offsetof(abi::FragmentInput, w), real));
}

// ---- outputs -----------------------------------------------------------------------------------------------------------

bool Widener::stageOutput(StringRef name, CallInst& call)
{
    auto value = [&](unsigned argument) { return vector(call.getArgOperand(argument)); };
    if (is(name, intrinsic::StoreOutput)) {
        storeLanes(output_, offsetof(abi::VertexOutput, component) + number(call.getArgOperand(0)) * LaneBytes, value(1));
    } else if (is(name, intrinsic::StoreColor)) {
        uint64_t index = number(call.getArgOperand(0)) * 4 + number(call.getArgOperand(1));
        storeLanes(output_, offsetof(abi::FragmentOutput, color) + index * LaneBytes, value(2));
    } else if (is(name, intrinsic::StoreDepth)) {
        storeLanes(output_, offsetof(abi::FragmentOutput, depth), value(0));
    } else if (is(name, intrinsic::StoreStencil)) {
        storeLanes(output_, offsetof(abi::FragmentOutput, stencil), value(0));
    } else if (is(name, intrinsic::StoreCoverage)) {
        storeLanes(output_, offsetof(abi::FragmentOutput, coverage), value(0));
    } else if (is(name, intrinsic::Discard)) {
        b.CreateStore(b.CreateOr(b.CreateLoad(maskType_, killed_), mask_), killed_);
    } else {
        return false;
    }
    return true;
}

// ---- resources -----------------------------------------------------------------------------------------------------------

Value* Widener::resource(StringRef name, CallInst& call)
{
    auto bound = [&](uint64_t table) { return b.CreateLoad(b.getPtrTy(), at(resources_, table + number(call.getArgOperand(0)) * sizeof(void*))); };
    if (is(name, intrinsic::Buffer)) return bound(offsetof(abi::Resources, buffers));
    if (is(name, intrinsic::Texture)) return bound(offsetof(abi::Resources, textures));
    if (is(name, intrinsic::Sampler)) return bound(offsetof(abi::Resources, samplers));
    if (is(name, intrinsic::ConstantSampler)) return constantSampler(call);
    if (is(name, intrinsic::TextureSize)) return textureSize(call);
    if (is(name, intrinsic::Dfdx)) return derivative(vector(call.getArgOperand(0)), false);
    if (is(name, intrinsic::Dfdy)) return derivative(vector(call.getArgOperand(0)), true);
    return nullptr;
}

Value* Widener::constantSampler(CallInst& call)
{
    std::array<uint64_t, 3> words;
    for (unsigned i = 0; i < 3; ++i) {
        if (!isa<ConstantInt>(call.getArgOperand(i))) fail("a sampler written in the program must be constant");
        words[i] = number(call.getArgOperand(i));
    }
    static_assert(sizeof(abi::Sampler) == sizeof words);
    Constant* contents = ConstantDataArray::get(context_, words);
    return new GlobalVariable(module_, contents->getType(), true, GlobalValue::InternalLinkage, contents);
}

/// Size of a level, at least one; zero for a texture that is not bound.
Value* Widener::textureSize(CallInst& call)
{
    static constexpr uint64_t Offsets[] = {offsetof(abi::Texture, width),       offsetof(abi::Texture, height),     offsetof(abi::Texture, depth),
                                           offsetof(abi::Texture, arrayLength), offsetof(abi::Texture, levelCount), offsetof(abi::Texture, sampleCount)};
    Type* integer = b.getInt32Ty();
    uint64_t what = std::min<uint64_t>(number(call.getArgOperand(1)), 5);
    Value* texture = uniform(call.getArgOperand(0));
    Value* missing = b.CreateIsNull(texture);
    Value* zeros = new GlobalVariable(module_, ArrayType::get(b.getInt8Ty(), 64), true, GlobalValue::InternalLinkage,
                                      Constant::getNullValue(ArrayType::get(b.getInt8Ty(), 64)));
    static_assert(offsetof(abi::Texture, sampleCount) < 60);
    Value* size = b.CreateLoad(integer, at(b.CreateSelect(missing, zeros, texture), Offsets[what]));
    if (what > 2) return size;
    Value* level = b.CreateAnd(uniform(call.getArgOperand(2)), b.getInt32(31));
    Value* shifted = b.CreateBinaryIntrinsic(Intrinsic::umax, b.CreateLShr(size, level), b.getInt32(1));
    return b.CreateSelect(missing, b.getInt32(0), shifted);
}

/// Right less left, or lower less upper, within each quad.
Value* Widener::derivative(Value* value, bool vertical)
{
    SmallVector<int, 16> first, second;
    for (int lane = 0; lane < static_cast<int>(lanes_); ++lane) {
        int step = vertical ? 2 : 1;
        first.push_back(lane & ~step);
        second.push_back(lane | step);
    }
    return b.CreateFSub(b.CreateShuffleVector(value, second), b.CreateShuffleVector(value, first));
}

// ---- texture accesses ------------------------------------------------------------------------------------------------------

void Widener::access(StringRef name, CallInst& call)
{
    if (!sampleCall_) {
        sampleCall_ = slot(ArrayType::get(b.getInt8Ty(), sizeof(abi::SampleCall)));
        sampleCall_->setAlignment(Align(64));
    }
    Value* place = sampleCall_;
    auto argument = [&](unsigned i) { return call.getArgOperand(i); };
    auto word = [&](Value* value, uint64_t offset) { b.CreateStore(value, at(place, offset)); };
    word(maskAsInteger(), offsetof(abi::SampleCall, mask));
    word(uniform(argument(2)), offsetof(abi::SampleCall, lodMode));
    word(b.getInt32(options_.stage == Stage::Fragment), offsetof(abi::SampleCall, stage));
    for (unsigned i = 0; i < 3; ++i) word(uniform(argument(14 + i)), offsetof(abi::SampleCall, offset) + i * 4);
    word(uniform(argument(17)), offsetof(abi::SampleCall, minLodClamp));
    for (unsigned i = 0; i < 3; ++i) storeLanes(place, offsetof(abi::SampleCall, coordinate) + i * LaneBytes, vector(argument(3 + i)));
    storeLanes(place, offsetof(abi::SampleCall, layer), vector(argument(6)));
    uint64_t mode = number(argument(2));
    if (mode == 1 || mode == 2 || !isa<Constant>(argument(2))) storeLanes(place, offsetof(abi::SampleCall, lod), vector(argument(7)));
    if (mode == 3 || !isa<Constant>(argument(2)))
        for (unsigned i = 0; i < 3; ++i) {
            storeLanes(place, offsetof(abi::SampleCall, gradientX) + i * LaneBytes, vector(argument(8 + i)));
            storeLanes(place, offsetof(abi::SampleCall, gradientY) + i * LaneBytes, vector(argument(11 + i)));
        }
    Value *texture = uniform(argument(0)), *sampler = uniform(argument(1));
    const abi::RuntimeTable& runtime = *options_.runtime;
    if (is(name, intrinsic::Sample)) {
        callRuntime(reinterpret_cast<void*>(runtime.sample), {texture, sampler, place});
    } else if (is(name, intrinsic::SampleCompare)) {
        storeLanes(place, offsetof(abi::SampleCall, compare), vector(argument(18)));
        callRuntime(reinterpret_cast<void*>(runtime.sampleCompare), {texture, sampler, place});
    } else {
        callRuntime(reinterpret_cast<void*>(runtime.gather), {texture, sampler, place, uniform(argument(18))});
    }
    accessResults(call, at(place, offsetof(abi::SampleCall, result)));
}

void Widener::read(CallInst& call)
{
    if (!readCall_) readCall_ = slot(ArrayType::get(b.getInt8Ty(), sizeof(abi::ReadCall)));
    b.CreateStore(maskAsInteger(), at(readCall_, offsetof(abi::ReadCall, mask)));
    for (unsigned i = 0; i < 3; ++i) storeLanes(readCall_, offsetof(abi::ReadCall, coordinate) + i * LaneBytes, vector(call.getArgOperand(1 + i)));
    storeLanes(readCall_, offsetof(abi::ReadCall, layer), vector(call.getArgOperand(4)));
    storeLanes(readCall_, offsetof(abi::ReadCall, level), vector(call.getArgOperand(5)));
    callRuntime(reinterpret_cast<void*>(options_.runtime->read), {uniform(call.getArgOperand(0)), readCall_});
    accessResults(call, at(readCall_, offsetof(abi::ReadCall, result)));
}

/// The four components of an access wait in slots for the instructions that pick them.
void Widener::accessResults(CallInst& call, Value* where)
{
    for (uint64_t component = 0; component < 4; ++component) {
        AllocaInst*& place = componentSlots_[{&call, component}];
        if (!place) place = slot(wideType(b.getFloatTy()));
        b.CreateStore(loadLanes(where, component * LaneBytes, b.getFloatTy()), place);
    }
}

void Widener::extract(ExtractElementInst& instruction)
{
    auto place = componentSlots_.find({instruction.getVectorOperand(), number(instruction.getIndexOperand())});
    if (place == componentSlots_.end()) return fail("a vector value is taken apart");
    define(&instruction, b.CreateLoad(place->second->getAllocatedType(), place->second));
}

} // namespace softmetal::shader
