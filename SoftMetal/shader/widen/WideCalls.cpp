// SPDX-License-Identifier: Apache-2.0
// What a function takes in and gives out, and the operations that are calls in the scalar program.
#include "shader/widen/Widener.h"

#include <llvm/Analysis/VectorUtils.h>
#include <llvm/IR/Intrinsics.h>

#include <algorithm>
#include <array>

namespace softmetal::shader
{

using namespace llvm;

namespace
{

bool is(StringRef name, std::string_view known)
{
    return name == StringRef(known.data(), known.size());
}

constexpr uint64_t LaneBytes = sizeof(abi::Lanes);

/// Operations of LLVM that are one instruction or a few, with the same bits in a vector and alone and on every machine.
/// What is not here would become calls into the machine's mathematics library.
constexpr std::array VectorIntrinsics = {
    Intrinsic::abs,      Intrinsic::bitreverse, Intrinsic::bswap,      Intrinsic::canonicalize, Intrinsic::ceil,
    Intrinsic::copysign, Intrinsic::ctlz,       Intrinsic::ctpop,      Intrinsic::cttz,         Intrinsic::fabs,
    Intrinsic::floor,    Intrinsic::fma,        Intrinsic::fptosi_sat, Intrinsic::fptoui_sat,   Intrinsic::fshl,
    Intrinsic::fshr,     Intrinsic::is_fpclass, Intrinsic::maximum,    Intrinsic::minimum,      Intrinsic::nearbyint,
    Intrinsic::rint,     Intrinsic::round,      Intrinsic::roundeven,  Intrinsic::sadd_sat,     Intrinsic::scmp,
    Intrinsic::smax,     Intrinsic::smin,       Intrinsic::sqrt,       Intrinsic::ssub_sat,     Intrinsic::trunc,
    Intrinsic::uadd_sat, Intrinsic::ucmp,       Intrinsic::umax,       Intrinsic::umin,         Intrinsic::usub_sat,
};

/// Statements to the optimiser.
constexpr std::array IgnoredIntrinsics = {
    Intrinsic::assume,       Intrinsic::lifetime_start,
    Intrinsic::lifetime_end, Intrinsic::experimental_noalias_scope_decl,
    Intrinsic::dbg_declare,  Intrinsic::dbg_value,
    Intrinsic::dbg_label,    Intrinsic::dbg_assign,
    Intrinsic::donothing,
};

template <typename List>
bool contains(const List& list, Intrinsic::ID id)
{
    return std::find(list.begin(), list.end(), id) != list.end();
}

} // namespace

Value* Widener::at(Value* base, uint64_t offset)
{
    return b.CreateConstInBoundsGEP1_64(b.getInt8Ty(), base, offset);
}

/// Something that does not change while the function runs.
Value* Widener::given(Type* type, Value* base, uint64_t offset)
{
    LoadInst* load = b.CreateAlignedLoad(type, at(base, offset), Align(4));
    load->setMetadata(LLVMContext::MD_invariant_load, MDNode::get(context_, {}));
    return load;
}

Value* Widener::givenLanes(Type* type, Value* base, uint64_t offset)
{
    return given(wideType(type), base, offset);
}

void Widener::storeLanes(Value* base, uint64_t offset, Value* value)
{
    b.CreateAlignedStore(value, at(base, offset), Align(4));
}

/// Lanes that do not come by keep what another branch stored.
void Widener::storeResult(uint64_t offset, Value* value)
{
    if (everyLane_)
        storeLanes(output_, offset, value);
    else
        b.CreateMaskedStore(value, at(output_, offset), Align(4), mask_);
}

/// A constant argument below a limit.
uint64_t Widener::number(const CallInst& call, unsigned argument, uint64_t end)
{
    auto* value = dyn_cast<ConstantInt>(call.getArgOperand(argument));
    if (value && value->getValue().ult(end)) return value->getZExtValue();
    fail("an argument of '" + call.getCalledFunction()->getName() + "' is not a constant below " + Twine(end));
    return 0;
}

CallInst* Widener::callRuntime(std::string_view name, const std::vector<Value*>& arguments)
{
    std::vector<Type*> types;
    for (Value* a : arguments)
        types.push_back(a->getType());
    FunctionCallee function =
        module_.getOrInsertFunction({name.data(), name.size()}, FunctionType::get(b.getVoidTy(), types, false));
    const auto* declared = dyn_cast<llvm::Function>(function.getCallee());
    if (!declared || !declared->isDeclaration()) fail("a name of the runtime is taken");
    CallInst* call = b.CreateCall(function, arguments);
    call->setDoesNotThrow();
    return call;
}

void Widener::emitCall(CallInst& call)
{
    llvm::Function* callee = call.getCalledFunction();
    if (!callee) return fail("calls through pointers are not supported");
    if (auto* copy = dyn_cast<MemIntrinsic>(&call)) return copyMemory(*copy);
    if (callee->isIntrinsic()) return emitLlvmIntrinsic(call);
    StringRef name = callee->getName();
    if (!name.starts_with("softmetal_"))
        return fail("function '" + name + "' is called but has no body, or calls itself");
    if (stageOutput(name, call) || access(name, call)) return;
    Value* result = stageInput(name, call);
    if (!result) result = resource(name, call);
    if (!result) return fail("operation '" + name + "' is not supported");
    define(&call, result);
}

void Widener::emitLlvmIntrinsic(CallInst& call)
{
    Intrinsic::ID id = call.getIntrinsicID();
    if (contains(IgnoredIntrinsics, id)) return;
    if (!contains(VectorIntrinsics, id))
        return fail("operation '" + call.getCalledFunction()->getName() + "' is not supported");
    bool wide = divergent(&call);
    std::vector<Value*> arguments;
    std::vector<Type*> overloads;
    if (isVectorIntrinsicWithOverloadTypeAtArg(id, -1))
        overloads.push_back(wide ? wideType(call.getType()) : call.getType());
    for (unsigned i = 0; i < call.arg_size(); ++i) {
        Value* argument = call.getArgOperand(i);
        bool scalar = !wide || isVectorIntrinsicWithScalarOpAtArg(id, i);
        arguments.push_back(scalar ? uniform(argument) : vector(argument));
        if (isVectorIntrinsicWithOverloadTypeAtArg(id, static_cast<int>(i)))
            overloads.push_back(arguments.back()->getType());
    }
    define(&call, b.CreateIntrinsic(id, overloads, arguments));
}

// ---- inputs --------------------------------------------------------------------------------------------------------

Value* Widener::stageInput(StringRef name, CallInst& call)
{
    Type *integer = b.getInt32Ty(), *real = b.getFloatTy();
    auto word = [&](uint64_t offset) { return given(integer, input_, offset); };
    if (options_.stage == Stage::Vertex) {
        if (is(name, intrinsic::Attribute)) {
            uint64_t index = number(call, 0, abi::MaxVertexAttributes) * 4 + number(call, 1, 4);
            return givenLanes(integer, given(b.getPtrTy(), input_, offsetof(abi::VertexInput, attributes)),
                              index * LaneBytes);
        }
        if (is(name, intrinsic::VertexId)) return givenLanes(integer, input_, offsetof(abi::VertexInput, vertexId));
        if (is(name, intrinsic::InstanceId)) return givenLanes(integer, input_, offsetof(abi::VertexInput, instanceId));
        if (is(name, intrinsic::BaseVertex)) return word(offsetof(abi::VertexInput, baseVertex));
        if (is(name, intrinsic::BaseInstance)) return word(offsetof(abi::VertexInput, baseInstance));
        return nullptr;
    }
    if (is(name, intrinsic::FrontFacing)) return word(offsetof(abi::FragmentInput, frontFacing));
    if (is(name, intrinsic::PrimitiveId)) return word(offsetof(abi::FragmentInput, primitiveId));
    if (is(name, intrinsic::SampleMask)) return word(offsetof(abi::FragmentInput, sampleMask));
    if (is(name, intrinsic::Varying)) return varying(call);
    if (is(name, intrinsic::Position)) {
        static constexpr uint64_t Offsets[] = {offsetof(abi::FragmentInput, x), offsetof(abi::FragmentInput, y),
                                               offsetof(abi::FragmentInput, z), offsetof(abi::FragmentInput, invW)};
        return givenLanes(real, input_, Offsets[number(call, 0, 4)]);
    }
    if (is(name, intrinsic::PointCoord))
        return givenLanes(real, input_,
                          number(call, 0, 2) == 0 ? offsetof(abi::FragmentInput, pointX)
                                                  : offsetof(abi::FragmentInput, pointY));
    return nullptr;
}

/// The plane of the primitive at the pixel centres, in the order of operations that the rasteriser documents.
Value* Widener::varying(CallInst& call)
{
    Type* real = b.getFloatTy();
    uint64_t plane = number(call, 0, abi::MaxVertexOutputComponents) * sizeof(abi::Plane);
    auto interpolation = static_cast<Interpolation>(number(call, 1, 3));
    Value* planes = given(b.getPtrTy(), input_, offsetof(abi::FragmentInput, planes));
    auto coefficient = [&](uint64_t offset) {
        return b.CreateVectorSplat(lanes_, given(real, planes, plane + offset));
    };
    Value* origin = coefficient(offsetof(abi::Plane, origin));
    if (interpolation == Interpolation::Flat) return origin;
    auto distance = [&](uint64_t lanes, uint64_t reference) {
        return b.CreateFSub(givenLanes(real, input_, lanes),
                            b.CreateVectorSplat(lanes_, given(real, input_, reference)));
    };
    Value* x = distance(offsetof(abi::FragmentInput, x), offsetof(abi::FragmentInput, originX));
    Value* y = distance(offsetof(abi::FragmentInput, y), offsetof(abi::FragmentInput, originY));
    Value* value = b.CreateFAdd(b.CreateFAdd(origin, b.CreateFMul(x, coefficient(offsetof(abi::Plane, dx)))),
                                b.CreateFMul(y, coefficient(offsetof(abi::Plane, dy))));
    return interpolation == Interpolation::NoPerspective
               ? value
               : b.CreateFMul(value, givenLanes(real, input_, offsetof(abi::FragmentInput, w)));
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

// ---- outputs -------------------------------------------------------------------------------------------------------

bool Widener::stageOutput(StringRef name, CallInst& call)
{
    auto value = [&](unsigned argument) { return vector(call.getArgOperand(argument)); };
    if (options_.stage == Stage::Vertex) {
        if (!is(name, intrinsic::StoreOutput)) return false;
        uint64_t offset =
            offsetof(abi::VertexOutput, component) + number(call, 0, abi::MaxVertexOutputComponents) * LaneBytes;
        vertexOutputs_.insert(offset);
        storeResult(offset, value(1));
    } else if (is(name, intrinsic::StoreColor)) {
        uint64_t index = number(call, 0, abi::MaxColorOutputs) * 4 + number(call, 1, 4);
        storeResult(offsetof(abi::FragmentOutput, color) + index * LaneBytes, value(2));
    } else if (is(name, intrinsic::StoreDepth)) {
        storeResult(offsetof(abi::FragmentOutput, depth), value(0));
    } else if (is(name, intrinsic::StoreStencil)) {
        storeResult(offsetof(abi::FragmentOutput, stencil), value(0));
    } else if (is(name, intrinsic::StoreCoverage)) {
        storeResult(offsetof(abi::FragmentOutput, coverage), value(0));
    } else if (is(name, intrinsic::Discard)) {
        b.CreateStore(b.CreateOr(b.CreateLoad(maskType_, killed_), mask_), killed_);
    } else {
        return false;
    }
    return true;
}

} // namespace softmetal::shader
