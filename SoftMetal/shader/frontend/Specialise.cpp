// SPDX-License-Identifier: Apache-2.0
// Function constants: their values on a copy of the module, and what a function looks like with them.
#include "shader/frontend/Program.h"

#include <llvm/IR/Constants.h>
#include <llvm/IR/IRBuilder.h>

#include <cstring>

namespace softmetal::shader {
namespace {

uint32_t componentBytes(ScalarType type)
{
    switch (type) {
    case ScalarType::Half:
    case ScalarType::Short:
    case ScalarType::UShort: return 2;
    case ScalarType::Char:
    case ScalarType::UChar:
    case ScalarType::Bool: return 1;
    default: return 4;
    }
}

/// The initialiser for a global of any layout: its bytes.
llvm::Constant* initialiser(llvm::Module& module, llvm::Type* type, const Constant& constant, const ConstantValue& value)
{
    uint64_t size = module.getDataLayout().getTypeAllocSize(type);
    uint32_t bytes = componentBytes(constant.type);
    if (type->isIntegerTy()) {
        uint64_t number = 0;
        std::memcpy(&number, value.bytes, bytes);
        return llvm::ConstantInt::get(type, number);
    }
    if (type->isFloatTy()) {
        float number = 0;
        std::memcpy(&number, value.bytes, 4);
        return llvm::ConstantFP::get(type, static_cast<double>(number));
    }
    std::vector<uint8_t> raw(size);
    std::memcpy(raw.data(), value.bytes, std::min<uint64_t>(size, bytes * constant.components));
    return llvm::ConstantDataArray::get(module.getContext(), raw);
}

void answerIsDefined(llvm::Module& module, const SpecialisedConstants& constants, const Program& program)
{
    llvm::Function* question = module.getFunction("softmetal_is_defined");
    if (!question) return;
    for (llvm::User* user : llvm::make_early_inc_range(question->users())) {
        auto* call = llvm::dyn_cast<llvm::CallInst>(user);
        if (!call) continue;
        llvm::StringRef symbol = call->getArgOperand(0)->stripPointerCasts()->getName();
        bool defined = false;
        for (const Constant& constant : program.constants) defined |= symbol == constant.symbol && constants.find(constant.name);
        call->replaceAllUsesWith(llvm::ConstantInt::get(call->getType(), defined));
        call->eraseFromParent();
    }
}

BindingReflection binding(const Value& value)
{
    BindingReflection result{};
    result.kind = value.role == Role::Buffer ? BindingKind::Buffer : value.role == Role::Texture ? BindingKind::Texture : BindingKind::Sampler;
    result.name = value.name;
    result.index = value.index;
    result.count = value.count;
    result.textureType = value.textureType;
    result.minimumSize = value.minimumSize;
    result.depth = value.depthTexture;
    result.reads = value.reads;
    result.writes = value.writes;
    result.used = true;
    return result;
}

VaryingReflection varying(const Value& value, uint32_t first)
{
    return {value.name, value.components, value.type, value.interpolation, first};
}

void reflectInput(const Value& value, bool active, FunctionReflection& result)
{
    switch (value.role) {
    case Role::Attribute: result.attributes.push_back({value.name, value.index, value.components, value.type, active}); break;
    case Role::Varying:
        if (!active) return;
        result.varyings.push_back(varying(value, result.inputComponents));
        result.inputComponents += value.components;
        break;
    case Role::Buffer:
    case Role::Texture:
    case Role::Sampler:
        if (active) result.bindings.push_back(binding(value));
        break;
    case Role::PointCoord: result.usesPointCoord |= active; break;
    default: break;
    }
}

void reflectOutput(const Value& value, FunctionReflection& result)
{
    switch (value.role) {
    case Role::Position: result.hasPosition = true; break;
    case Role::PointSize: result.pointSizeComponent = static_cast<int32_t>(result.inputComponents++); break;
    case Role::ClipDistance:
        result.clipComponent = result.inputComponents;
        result.clipDistances = value.components;
        result.inputComponents += value.components;
        break;
    case Role::Varying:
        result.varyings.push_back(varying(value, result.inputComponents));
        result.inputComponents += value.components;
        break;
    case Role::Stencil:
        result.writesStencil = true;
        break;
    case Role::SampleMask: result.writesCoverage = true; break;
    case Role::Color:
        if (value.index >= abi::MaxColorOutputs) return;
        result.colorOutputs |= 1u << value.index;
        result.colorTypes[value.index] = value.type;
        result.colorComponents[value.index] = value.components;
        break;
    case Role::Depth: result.writesDepth = true; break;
    default: break;
    }
}

} // namespace

SpecialisedConstants::SpecialisedConstants(const Program& program, const std::vector<ConstantValue>& values) : program_(program)
{
    for (const Constant& constant : program.constants)
        for (const ConstantValue& value : values)
            if (value.name.empty() ? value.index == constant.index : value.name == constant.name) values_.emplace_back(constant.name, value);
}

const ConstantValue* SpecialisedConstants::find(const std::string& name) const
{
    const ConstantValue* found = nullptr; // the last value given counts
    for (const auto& [known, value] : values_)
        if (known == name) found = &value;
    return found;
}

std::string SpecialisedConstants::mismatch() const
{
    for (const Constant& constant : program_.constants) {
        const ConstantValue* value = find(constant.name);
        if (value && value->dataType != constant.dataType)
            return "function constant '" + constant.name + "' was given a value of another type (" + std::to_string(value->dataType) +
                   " instead of " + std::to_string(constant.dataType) + ")";
    }
    return {};
}

bool SpecialisedConstants::absent(const Value& value) const
{
    if (value.condition.empty()) return false;
    const ConstantValue* constant = find(value.condition);
    return !constant || constant->bytes[0] == 0;
}

void SpecialisedConstants::apply(llvm::Module& module) const
{
    answerIsDefined(module, *this, program_);
    for (const Constant& constant : program_.constants) {
        llvm::GlobalVariable* global = module.getNamedGlobal(constant.symbol);
        const ConstantValue* value = find(constant.name);
        if (!global || !value) continue;
        llvm::Constant* contents = initialiser(module, global->getValueType(), constant, *value);
        auto* fixed = new llvm::GlobalVariable(module, contents->getType(), true, llvm::GlobalValue::InternalLinkage, contents);
        fixed->setAlignment(llvm::Align(16));
        global->replaceAllUsesWith(llvm::ConstantExpr::getPointerBitCastOrAddrSpaceCast(fixed, global->getType()));
        global->eraseFromParent();
    }
}

FunctionReflection reflect(const Program& program, const Entry& entry, const SpecialisedConstants* constants)
{
    FunctionReflection result;
    result.name = entry.name;
    result.stage = entry.stage;
    result.earlyFragmentTests = entry.earlyFragmentTests;
    auto active = [&](const Value& value) { return !constants || !constants->absent(value); };
    for (const Parameter& parameter : entry.parameters)
        for (const Value& value : parameter.values) reflectInput(value, active(value), result);
    if (entry.stage == Stage::Vertex) result.inputComponents = 4;
    for (const Value& value : entry.results)
        if (active(value)) reflectOutput(value, result);
    for (const Constant& constant : program.constants) result.constants.push_back({constant.name, constant.index, constant.dataType, true});
    return result;
}

} // namespace softmetal::shader
