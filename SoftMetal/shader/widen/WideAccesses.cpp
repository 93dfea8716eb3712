// SPDX-License-Identifier: Apache-2.0
// Resources and texture accesses. An access is one call of the runtime for all lanes of the mask.
#include "shader/widen/Widener.h"

#include <llvm/IR/Constants.h>

#include <algorithm>
#include <array>
#include <cstddef>

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

/// Arguments of softmetal_sample by position.
enum SampleArgument : unsigned
{
    TextureArgument,
    SamplerArgument,
    ModeArgument,
    CoordinateArgument,
    LayerArgument = 6,
    LodArgument,
    GradientXArgument,
    GradientYArgument = 11,
    OffsetArgument = 14,
    MinLodArgument = 17,
    ExtraArgument
};

} // namespace

// ---- resources -----------------------------------------------------------------------------------------------------

Value* Widener::resource(StringRef name, CallInst& call)
{
    auto bound = [&](uint64_t table, uint64_t end) {
        return given(b.getPtrTy(), resources_, table + number(call, 0, end) * sizeof(void*));
    };
    if (is(name, intrinsic::Buffer)) return bound(offsetof(abi::Resources, buffers), abi::MaxBuffers);
    if (is(name, intrinsic::Texture)) return bound(offsetof(abi::Resources, textures), abi::MaxTextures);
    if (is(name, intrinsic::Sampler)) return bound(offsetof(abi::Resources, samplers), abi::MaxSamplers);
    if (is(name, intrinsic::ConstantSampler)) return constantSampler(call);
    if (is(name, intrinsic::TextureSize)) return textureSize(call);
    if (is(name, intrinsic::Atomic)) return atomic(call);
    if (is(name, intrinsic::Dfdx)) return derivative(vector(call.getArgOperand(0)), false);
    if (is(name, intrinsic::Dfdy)) return derivative(vector(call.getArgOperand(0)), true);
    return nullptr;
}

Value* Widener::constantSampler(CallInst& call)
{
    std::array<uint64_t, 3> words;
    for (unsigned i = 0; i < 3; ++i) {
        auto* word = dyn_cast<ConstantInt>(call.getArgOperand(i));
        if (!word) fail("a sampler written in the program must be constant");
        words[i] = word ? word->getZExtValue() : 0;
    }
    static_assert(sizeof(abi::Sampler) == sizeof words);
    GlobalVariable*& written = writtenSamplers_[words]; // one address for each, so that they can be told apart
    Constant* contents = ConstantDataArray::get(context_, words);
    if (!written)
        written = new GlobalVariable(module_, contents->getType(), true, GlobalValue::InternalLinkage, contents);
    return written;
}

/// Size of a level, at least one; zero for a texture that is not bound.
Value* Widener::textureSize(CallInst& call)
{
    static constexpr std::array<uint64_t, 6> Offsets = {
        offsetof(abi::Texture, width),       offsetof(abi::Texture, height),     offsetof(abi::Texture, depth),
        offsetof(abi::Texture, arrayLength), offsetof(abi::Texture, levelCount), offsetof(abi::Texture, sampleCount)};
    constexpr uint64_t HeadBytes = 64;
    static_assert(*std::max_element(Offsets.begin(), Offsets.end()) + sizeof(uint32_t) <= HeadBytes);
    uint64_t what = number(call, 1, Offsets.size());
    bool wide = divergent(&call);
    auto operand = [&](Value* value) { return wide ? vector(value) : uniform(value); };
    auto spread = [&](Value* value) { return wide ? b.CreateVectorSplat(lanes_, value) : value; };
    auto* zeros = ArrayType::get(b.getInt8Ty(), HeadBytes);
    Value* result = spread(b.getInt32(0));
    Value* texture = operand(call.getArgOperand(0));
    Value* level = b.CreateAnd(operand(call.getArgOperand(2)), spread(b.getInt32(31)));
    for (CallInst* bound : callsOf(intrinsic::Texture)) { // whatever else the pointer may be has no size
        Value* known = resource(bound->getCalledFunction()->getName(), *bound);
        Value* missing = b.CreateIsNull(known);
        Value* size = spread(given(b.getInt32Ty(), b.CreateSelect(missing, zerosOf(zeros), known), Offsets[what]));
        if (what <= 2)
            size = b.CreateBinaryIntrinsic(Intrinsic::umax, b.CreateLShr(size, level), spread(b.getInt32(1)));
        Value* meant = b.CreateAnd(b.CreateICmpEQ(texture, spread(known)), spread(b.CreateNot(missing)));
        result = b.CreateSelect(meant, size, result);
    }
    return result;
}

// ---- texture accesses ----------------------------------------------------------------------------------------------

bool Widener::access(StringRef name, CallInst& call)
{
    if (is(name, intrinsic::Read)) {
        read(call);
        return true;
    }
    if (is(name, intrinsic::Write)) {
        write(call);
        return true;
    }
    std::string_view function;
    if (is(name, intrinsic::Sample))
        function = intrinsic::RuntimeSample;
    else if (is(name, intrinsic::SampleCompare))
        function = intrinsic::RuntimeSampleCompare;
    else if (is(name, intrinsic::Gather))
        function = intrinsic::RuntimeGather;
    else
        return false;
    if (!sampleCall_) sampleCall_ = accessPlace(sizeof(abi::SampleCall), offsetof(abi::SampleCall, result));
    std::vector<Value*> extra;
    fillSample(call, sampleCall_);
    if (is(name, intrinsic::SampleCompare))
        storeLanes(sampleCall_, offsetof(abi::SampleCall, compare), vector(call.getArgOperand(ExtraArgument)));
    if (is(name, intrinsic::Gather)) extra.push_back(b.getInt32(static_cast<uint32_t>(number(call, ExtraArgument, 6))));
    emptyResults(at(sampleCall_, offsetof(abi::SampleCall, result)));
    const Value *texture = call.getArgOperand(TextureArgument), *sampler = call.getArgOperand(SamplerArgument);
    kept(texture);
    kept(sampler); // known here, not only on the way to one of the textures
    forEachHandle(texture, HandleKind::Texture, mask_, [&](Value* image, Value* ofImage) {
        forEachHandle(sampler, HandleKind::Sampler, ofImage, [&](Value* state, Value* lanes) {
            b.CreateStore(maskAsInteger(lanes), at(sampleCall_, offsetof(abi::SampleCall, mask)));
            std::vector<Value*> arguments = {image, state, sampleCall_};
            arguments.insert(arguments.end(), extra.begin(), extra.end());
            callRuntime(function, arguments);
        });
    });
    accessResults(call, at(sampleCall_, offsetof(abi::SampleCall, result)));
    return true;
}

void Widener::fillSample(CallInst& call, Value* place)
{
    auto word = [&](Value* value, uint64_t offset) { b.CreateStore(value, at(place, offset)); };
    auto lanes = [&](unsigned argument, uint64_t offset) {
        storeLanes(place, offset, vector(call.getArgOperand(argument)));
    };
    auto mode = static_cast<abi::LodMode>(number(call, ModeArgument, 4));
    word(b.getInt32(static_cast<uint32_t>(mode)), offsetof(abi::SampleCall, lodMode));
    word(b.getInt32(options_.stage == Stage::Fragment), offsetof(abi::SampleCall, stage));
    for (unsigned i = 0; i < 3; ++i)
        word(uniform(call.getArgOperand(OffsetArgument + i)), offsetof(abi::SampleCall, offset) + i * sizeof(int32_t));
    word(uniform(call.getArgOperand(MinLodArgument)), offsetof(abi::SampleCall, minLodClamp));
    word(b.getInt32(0), offsetof(abi::SampleCall, compareValueUsed));
    for (unsigned i = 0; i < 3; ++i)
        lanes(CoordinateArgument + i, offsetof(abi::SampleCall, coordinate) + i * LaneBytes);
    lanes(LayerArgument, offsetof(abi::SampleCall, layer));
    if (mode == abi::LodMode::Bias || mode == abi::LodMode::Level) lanes(LodArgument, offsetof(abi::SampleCall, lod));
    if (mode != abi::LodMode::Gradient) return;
    for (unsigned i = 0; i < 3; ++i) {
        lanes(GradientXArgument + i, offsetof(abi::SampleCall, gradientX) + i * LaneBytes);
        lanes(GradientYArgument + i, offsetof(abi::SampleCall, gradientY) + i * LaneBytes);
    }
}

void Widener::read(CallInst& call)
{
    if (!readCall_) readCall_ = accessPlace(sizeof(abi::ReadCall), offsetof(abi::ReadCall, result));
    auto lanes = [&](unsigned argument, uint64_t offset) {
        storeLanes(readCall_, offset, vector(call.getArgOperand(argument)));
    };
    b.CreateStore(maskAsInteger(effectMask()), at(readCall_, offsetof(abi::ReadCall, counting)));
    for (unsigned i = 0; i < 3; ++i)
        lanes(1 + i, offsetof(abi::ReadCall, coordinate) + i * LaneBytes);
    lanes(4, offsetof(abi::ReadCall, layer));
    lanes(5, offsetof(abi::ReadCall, level));
    emptyResults(at(readCall_, offsetof(abi::ReadCall, result)));
    forEachHandle(call.getArgOperand(0), HandleKind::Texture, mask_, [&](Value* image, Value* ofImage) {
        b.CreateStore(maskAsInteger(ofImage), at(readCall_, offsetof(abi::ReadCall, mask)));
        callRuntime(intrinsic::RuntimeRead, {image, readCall_});
    });
    accessResults(call, at(readCall_, offsetof(abi::ReadCall, result)));
}

/// Memory for accesses, one after the other. Lanes that an access leaves out find zeros.
AllocaInst* Widener::accessPlace(uint64_t size, uint64_t results)
{
    IRBuilder<> entry(slots_);
    AllocaInst* place = entry.CreateAlloca(ArrayType::get(b.getInt8Ty(), size));
    place->setAlignment(Align(64));
    Value* zeros = Constant::getNullValue(wideType(b.getFloatTy()));
    for (uint64_t component = 0; component < 4; ++component)
        entry.CreateAlignedStore(
            zeros, entry.CreateConstInBoundsGEP1_64(b.getInt8Ty(), place, results + component * LaneBytes), Align(4));
    return place;
}

/// Lanes whose texture is none of those bound find zeros.
void Widener::emptyResults(Value* where)
{
    for (uint64_t component = 0; component < 4; ++component)
        storeLanes(where, component * LaneBytes, Constant::getNullValue(wideType(b.getFloatTy())));
}

/// The four components of an access wait in slots for the instructions that pick them.
void Widener::accessResults(CallInst& call, Value* where)
{
    for (uint64_t component = 0; component < 4; ++component) {
        AllocaInst*& place = componentSlots_[{&call, component}];
        if (!place) place = slot(wideType(b.getFloatTy()));
        b.CreateStore(b.CreateAlignedLoad(wideType(b.getFloatTy()), at(where, component * LaneBytes), Align(4)), place);
    }
}

void Widener::extract(ExtractElementInst& instruction)
{
    auto* index = dyn_cast<ConstantInt>(instruction.getIndexOperand());
    auto place = componentSlots_.find({instruction.getVectorOperand(), index ? index->getZExtValue() : ~uint64_t(0)});
    if (place == componentSlots_.end()) return fail("a vector value is taken apart");
    define(&instruction, b.CreateLoad(place->second->getAllocatedType(), place->second));
}

} // namespace softmetal::shader
