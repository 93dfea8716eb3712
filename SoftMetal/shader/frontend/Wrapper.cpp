// SPDX-License-Identifier: Apache-2.0
// The scalar entry point around a program's own: it is built after the constants are known, so that inputs which are
// switched off are never fetched.
#include "shader/Intrinsics.h"
#include "shader/frontend/Globals.h"
#include "shader/frontend/Program.h"

#include <llvm/IR/IRBuilder.h>

namespace softmetal::shader {
namespace {

class WrapperBuilder
{
public:
    WrapperBuilder(llvm::Module& module, const Entry& entry, const SpecialisedConstants& constants)
        : module_(module), entry_(entry), constants_(constants), b_(module.getContext()), int_(b_.getInt32Ty()), float_(b_.getFloatTy())
    {
    }

    llvm::Function& build()
    {
        auto* type = llvm::FunctionType::get(b_.getVoidTy(), false);
        auto* wrapper = llvm::Function::Create(type, llvm::Function::ExternalLinkage, name(intrinsic::Entry), module_);
        b_.SetInsertPoint(llvm::BasicBlock::Create(module_.getContext(), "", wrapper));
        llvm::Function* callee = module_.getFunction(entry_.symbol);
        std::vector<llvm::Value*> arguments;
        llvm::Value* result = nullptr;
        if (callee->hasStructRetAttr()) {
            result = memory(entry_.resultSize);
            arguments.push_back(result);
        }
        for (const Parameter& parameter : entry_.parameters) arguments.push_back(argument(parameter, callee->getArg(static_cast<unsigned>(arguments.size()))->getType()));
        auto* call = b_.CreateCall(callee, arguments);
        call->setCallingConv(callee->getCallingConv());
        if (!result && entry_.resultSize > 0) {
            result = memory(entry_.resultSize);
            b_.CreateStore(call, result);
        }
        for (const Value& value : entry_.results) store(value, result);
        b_.CreateRetVoid();
        return *wrapper;
    }

private:
    static llvm::StringRef name(std::string_view text) { return {text.data(), text.size()}; }

    llvm::CallInst* call(std::string_view callee, llvm::Type* result, std::vector<llvm::Value*> arguments)
    {
        std::vector<llvm::Type*> types;
        for (llvm::Value* a : arguments) types.push_back(a->getType());
        llvm::FunctionCallee function = module_.getOrInsertFunction(name(callee), llvm::FunctionType::get(result, types, false));
        auto* declaration = llvm::cast<llvm::Function>(function.getCallee());
        declaration->addFnAttr(llvm::Attribute::NoUnwind);
        declaration->addFnAttr(llvm::Attribute::WillReturn);
        if (!result->isVoidTy()) declaration->setDoesNotAccessMemory(); // an input that nobody needs goes away
        return b_.CreateCall(function, arguments);
    }

    llvm::Value* constant(uint64_t value) { return llvm::ConstantInt::get(int_, value); }

    llvm::Value* memory(uint64_t size)
    {
        auto* type = llvm::ArrayType::get(b_.getInt8Ty(), std::max<uint64_t>(size, 1));
        auto* slot = b_.CreateAlloca(type);
        slot->setAlignment(llvm::Align(16));
        return slot;
    }

    llvm::Value* at(llvm::Value* base, uint64_t offset) { return b_.CreateConstInBoundsGEP1_64(b_.getInt8Ty(), base, offset); }

    /// An argument as the callee takes it: in memory, or as the value itself.
    llvm::Value* argument(const Parameter& parameter, llvm::Type* type)
    {
        const Value* only = parameter.record ? nullptr : &parameter.values[0];
        if (only && only->role == Role::Buffer) return call(intrinsic::Buffer, b_.getPtrTy(), {constant(only->index), b_.getInt64(only->minimumSize)});
        llvm::Value* slot = memory(parameter.size);
        b_.CreateMemSet(slot, b_.getInt8(0), parameter.size, llvm::Align(16));
        for (const Value& value : parameter.values)
            if (!constants_.absent(value)) fetch(value, at(slot, value.offset));
        return type->isPointerTy() ? slot : b_.CreateLoad(type, slot);
    }

    void fetch(const Value& value, llvm::Value* where)
    {
        if (value.role == Role::Texture || value.role == Role::Sampler) {
            std::string_view callee = value.role == Role::Texture ? intrinsic::Texture : intrinsic::Sampler;
            uint64_t stride = value.role == Role::Texture ? 8 : 32; // the standard library's handle types
            for (uint32_t i = 0; i < value.count; ++i)
                b_.CreateStore(call(callee, b_.getPtrTy(), {constant(value.index + i)}), at(where, i * stride));
            return;
        }
        for (uint32_t c = 0; c < value.components; ++c)
            b_.CreateStore(fromBits(component(value, c), value.type), at(where, c * value.componentSize));
    }

    /// One component of an input as 32 bits.
    llvm::Value* component(const Value& value, uint32_t c)
    {
        switch (value.role) {
        case Role::Attribute: return call(intrinsic::Attribute, int_, {constant(value.index), constant(c)});
        case Role::VertexId: return call(intrinsic::VertexId, int_, {});
        case Role::InstanceId: return call(intrinsic::InstanceId, int_, {});
        case Role::BaseVertex: return call(intrinsic::BaseVertex, int_, {});
        case Role::BaseInstance: return call(intrinsic::BaseInstance, int_, {});
        case Role::FrontFacing: return call(intrinsic::FrontFacing, int_, {});
        case Role::PrimitiveId: return call(intrinsic::PrimitiveId, int_, {});
        case Role::SampleMask: return call(intrinsic::SampleMask, int_, {});
        case Role::PointCoord: return bits(call(intrinsic::PointCoord, float_, {constant(c)}));
        case Role::Position: return bits(call(intrinsic::Position, float_, {constant(c)}));
        case Role::Varying:
            return bits(call(intrinsic::Varying, float_, {constant(planes_++), constant(static_cast<uint64_t>(value.interpolation))}));
        default: return constant(0);
        }
    }

    llvm::Value* bits(llvm::Value* value) { return b_.CreateBitCast(value, int_); }
    llvm::Value* real(llvm::Value* value) { return b_.CreateBitCast(value, float_); }

    llvm::Value* fromBits(llvm::Value* value, ScalarType type)
    {
        switch (type) {
        case ScalarType::Float: return real(value);
        case ScalarType::Half: return b_.CreateFPTrunc(real(value), b_.getHalfTy());
        case ScalarType::Short:
        case ScalarType::UShort: return b_.CreateTrunc(value, b_.getInt16Ty());
        case ScalarType::Char:
        case ScalarType::UChar: return b_.CreateTrunc(value, b_.getInt8Ty());
        case ScalarType::Bool: return b_.CreateZExt(b_.CreateICmpNE(value, constant(0)), b_.getInt8Ty());
        default: return value;
        }
    }

    /// A component of a result as a float that carries its bits.
    llvm::Value* toBits(llvm::Value* where, ScalarType type)
    {
        switch (type) {
        case ScalarType::Float: return b_.CreateLoad(float_, where);
        case ScalarType::Half: return b_.CreateFPExt(b_.CreateLoad(b_.getHalfTy(), where), float_);
        case ScalarType::Short: return real(b_.CreateSExt(b_.CreateLoad(b_.getInt16Ty(), where), int_));
        case ScalarType::UShort: return real(b_.CreateZExt(b_.CreateLoad(b_.getInt16Ty(), where), int_));
        case ScalarType::Char: return real(b_.CreateSExt(b_.CreateLoad(b_.getInt8Ty(), where), int_));
        case ScalarType::UChar:
        case ScalarType::Bool: return real(b_.CreateZExt(b_.CreateLoad(b_.getInt8Ty(), where), int_));
        default: return real(b_.CreateLoad(int_, where));
        }
    }

    void store(const Value& value, llvm::Value* result)
    {
        if (constants_.absent(value)) return;
        for (uint32_t c = 0; c < value.components; ++c) {
            llvm::Value* v = toBits(at(result, value.offset + c * value.componentSize), value.type);
            switch (value.role) {
            case Role::Position: call(intrinsic::StoreOutput, b_.getVoidTy(), {constant(c), v}); break;
            case Role::PointSize:
            case Role::ClipDistance:
            case Role::Varying: call(intrinsic::StoreOutput, b_.getVoidTy(), {constant(outputs_++), v}); break;
            case Role::Color: call(intrinsic::StoreColor, b_.getVoidTy(), {constant(value.index), constant(c), v}); break;
            case Role::Depth: call(intrinsic::StoreDepth, b_.getVoidTy(), {v}); break;
            case Role::Stencil: call(intrinsic::StoreStencil, b_.getVoidTy(), {bits(v)}); break;
            case Role::SampleMask: call(intrinsic::StoreCoverage, b_.getVoidTy(), {bits(v)}); break;
            default: break;
            }
        }
    }

    llvm::Module& module_;
    const Entry& entry_;
    const SpecialisedConstants& constants_;
    llvm::IRBuilder<> b_;
    llvm::Type *int_, *float_;
    uint32_t planes_ = 0;  // next input component
    uint32_t outputs_ = 4; // next output component; the position has the first four
};

} // namespace

void addEntryWrapper(llvm::Module& module, const Entry& entry, const SpecialisedConstants& constants)
{
    llvm::Function& wrapper = WrapperBuilder(module, entry, constants).build();
    computeGlobalsInEntry(module, wrapper);
}

} // namespace softmetal::shader
