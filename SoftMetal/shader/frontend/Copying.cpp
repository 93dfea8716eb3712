// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Copying.h"

#include "shader/Intrinsics.h"

#include <llvm/IR/Constants.h>
#include <llvm/IR/Instructions.h>
#include <llvm/IR/Module.h>

#include <algorithm>
#include <optional>

namespace softmetal::shader
{
namespace
{

llvm::StringRef name(std::string_view text)
{
    return {text.data(), text.size()};
}

const llvm::CallInst* callOf(const llvm::Value* value, std::string_view intrinsic)
{
    const auto* call = llvm::dyn_cast<llvm::CallInst>(value);
    const llvm::Function* callee = call ? call->getCalledFunction() : nullptr;
    return callee && callee->getName() == name(intrinsic) ? call : nullptr;
}

std::optional<uint64_t> numberOf(const llvm::Value* value)
{
    const auto* number = llvm::dyn_cast<llvm::ConstantInt>(value);
    return number ? std::optional(number->getZExtValue()) : std::nullopt;
}

uint64_t argument(const llvm::CallInst* call, unsigned index)
{
    return numberOf(call->getArgOperand(index)).value_or(~uint64_t{0});
}

/// Nearest, without levels and anisotropy, by pixels; how it addresses what lies outside does not matter.
bool takesNearestPixel(const llvm::CallInst* sampler)
{
    constexpr uint64_t Filters = 0xFFFFFF, Normalised = uint64_t{255} << 56;
    return (argument(sampler, 0) & (Filters | Normalised)) == 0 && (argument(sampler, 1) >> 8 & 255) <= 1;
}

/// Arguments of a sample from one on are nothing.
bool zeros(const llvm::CallInst* sample, unsigned first)
{
    const auto isZero = [](const llvm::Use& use) {
        const auto* constant = llvm::dyn_cast<llvm::Constant>(use.get());
        return constant && constant->isNullValue();
    };
    return std::all_of(sample->arg_begin() + first, sample->arg_end(), isZero);
}

/// The one block's instructions, if each of them belongs to a copy.
struct Copy
{
    const llvm::CallInst* sample = nullptr;
    uint32_t stored = 0; // bit n: component n of colour 0

    bool take(const llvm::Instruction& instruction)
    {
        if (llvm::isa<llvm::ReturnInst>(instruction) || llvm::isa<llvm::ExtractElementInst>(instruction)) return true;
        for (std::string_view input : {intrinsic::Varying, intrinsic::Texture, intrinsic::ConstantSampler})
            if (callOf(&instruction, input)) return true;
        if (const auto* store = callOf(&instruction, intrinsic::StoreColor)) return takeStore(store);
        if (sample || !callOf(&instruction, intrinsic::Sample)) return false;
        sample = callOf(&instruction, intrinsic::Sample);
        return true;
    }

    bool takeStore(const llvm::CallInst* store)
    {
        const uint64_t component = argument(store, 1);
        const auto* value = llvm::dyn_cast<llvm::ExtractElementInst>(store->getArgOperand(2));
        if (argument(store, 0) != 0 || component > 3 || !value || !sample || value->getVectorOperand() != sample)
            return false;
        stored |= 1u << component;
        return numberOf(value->getIndexOperand()) == component;
    }
};

} // namespace

void noteCopying(const llvm::Module& module, FunctionReflection& reflection)
{
    const llvm::Function* entry = module.getFunction(name(intrinsic::Entry));
    if (!entry || entry->size() != 1 || reflection.stage != Stage::Fragment) return;
    Copy copy;
    for (const llvm::Instruction& instruction : entry->front())
        if (!copy.take(instruction)) return;
    if (!copy.sample || copy.stored != 15) return;
    constexpr unsigned TextureArgument = 0, SamplerArgument = 1, Mode = 2, S = 3, T = 4, R = 5;
    const auto* texture = callOf(copy.sample->getArgOperand(TextureArgument), intrinsic::Texture);
    const auto* sampler = callOf(copy.sample->getArgOperand(SamplerArgument), intrinsic::ConstantSampler);
    const auto* s = callOf(copy.sample->getArgOperand(S), intrinsic::Varying);
    const auto* t = callOf(copy.sample->getArgOperand(T), intrinsic::Varying);
    if (!texture || !sampler || !s || !t || argument(copy.sample, Mode) != 0 || !zeros(copy.sample, R)) return;
    constexpr uint64_t Flat = static_cast<uint64_t>(Interpolation::Flat);
    if (!takesNearestPixel(sampler) || argument(s, 1) >= Flat || argument(t, 1) >= Flat) return;
    reflection.copiedTexture = static_cast<int32_t>(argument(texture, 0));
    reflection.copiedPlanes[0] = static_cast<uint32_t>(argument(s, 0));
    reflection.copiedPlanes[1] = static_cast<uint32_t>(argument(t, 0));
}

} // namespace softmetal::shader
