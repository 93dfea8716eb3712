// SPDX-License-Identifier: Apache-2.0
// The compiler as the rest of the device sees it: parsing, specialising and generating put together.
#include "shader/Compiler.h"

#include "shader/Intrinsics.h"
#include "shader/codegen/Codegen.h"
#include "shader/frontend/Checks.h"
#include "shader/frontend/Copying.h"
#include "shader/frontend/LargeStack.h"
#include "shader/frontend/Program.h"

#include <llvm/Analysis/ValueTracking.h>
#include <llvm/IR/Constants.h>
#include <llvm/IR/InstIterator.h>
#include <llvm/IR/Instructions.h>
#include <llvm/IR/IntrinsicInst.h>
#include <llvm/Transforms/Utils/Cloning.h>

#include <chrono>
#include <mutex>

namespace softmetal::shader
{
namespace
{

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point since)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - since).count();
}

/// A program with the lock of its LLVM context.
struct Shared
{
    std::unique_ptr<Program> program;
    std::mutex mutex;
};

class FunctionImplementation final : public Function
{
public:
    FunctionImplementation(std::shared_ptr<Shared> shared, std::unique_ptr<llvm::Module> module,
                           FunctionReflection reflection, Generator& generator, CompileTimes times)
        : shared_(std::move(shared)), module_(std::move(module)), reflection_(std::move(reflection)),
          generator_(generator), times_(times)
    {}

    ~FunctionImplementation() override
    {
        std::lock_guard lock(shared_->mutex);
        module_.reset();
    }

    const FunctionReflection& reflection() const override { return reflection_; }
    abi::VertexFunction vertexCode(std::string& error) override
    {
        return reinterpret_cast<abi::VertexFunction>(code(Stage::Vertex, error));
    }
    abi::FragmentFunction fragmentCode(std::string& error) override
    {
        return reinterpret_cast<abi::FragmentFunction>(code(Stage::Fragment, error));
    }

    const MachineCode* machineCode() const override
    {
        std::lock_guard lock(shared_->mutex);
        return code_ ? &code_->machineCode() : nullptr;
    }

    CompileTimes times() const override
    {
        std::lock_guard lock(shared_->mutex);
        return times_;
    }

private:
    void* code(Stage stage, std::string& error)
    {
        std::lock_guard lock(shared_->mutex);
        if (stage != reflection_.stage) {
            error = "function '" + reflection_.name + "' belongs to the other stage";
            return nullptr;
        }
        if (module_) {
            onLargeStack([&] { code_ = generator_.generate(*module_, stage, times_, error_); });
            module_.reset();
        }
        error = error_;
        return code_ ? code_->address() : nullptr;
    }

    std::shared_ptr<Shared> shared_;
    std::unique_ptr<llvm::Module> module_; // until the code is made
    FunctionReflection reflection_;
    Generator& generator_;
    CompileTimes times_;
    std::unique_ptr<Code> code_;
    std::string error_;
};

/// Whether an input is left that is divided by w.
bool readsPerspective(const llvm::Module& module)
{
    const llvm::Function* function = module.getFunction({intrinsic::Varying.data(), intrinsic::Varying.size()});
    return function && llvm::any_of(function->users(), [](const llvm::User* user) {
               const auto* call = llvm::dyn_cast<llvm::CallInst>(user);
               const auto* kind = call ? llvm::dyn_cast<llvm::ConstantInt>(call->getArgOperand(1)) : nullptr;
               return !kind || kind->getZExtValue() == static_cast<uint64_t>(Interpolation::Perspective);
           });
}

/// Whether the instruction may change what other functions see.
bool writes(const llvm::Instruction& instruction)
{
    auto isOwn = [](const llvm::Value* at) { return llvm::isa<llvm::AllocaInst>(llvm::getUnderlyingObject(at)); };
    if (const auto* store = llvm::dyn_cast<llvm::StoreInst>(&instruction)) return !isOwn(store->getPointerOperand());
    if (const auto* fill = llvm::dyn_cast<llvm::AnyMemIntrinsic>(&instruction)) return !isOwn(fill->getRawDest());
    return llvm::isa<llvm::AtomicRMWInst, llvm::AtomicCmpXchgInst>(instruction);
}

bool writesMemory(const llvm::Module& module)
{
    for (std::string_view name : {intrinsic::Write, intrinsic::Atomic}) {
        const llvm::Function* function = module.getFunction({name.data(), name.size()});
        if (function && !function->use_empty()) return true;
    }
    return llvm::any_of(module, [](const llvm::Function& function) {
        return llvm::any_of(llvm::instructions(function), [](const auto& instruction) { return writes(instruction); });
    });
}

/// Notes which resources and operations are left in the cleaned-up function.
void noteUses(const llvm::Module& module, FunctionReflection& reflection)
{
    auto usesIndex = [&](std::string_view name, uint32_t first, uint32_t count) {
        const llvm::Function* function = module.getFunction({name.data(), name.size()});
        if (!function) return false;
        for (const llvm::User* user : function->users()) {
            const auto* call = llvm::dyn_cast<llvm::CallInst>(user);
            const auto* index = call ? llvm::dyn_cast<llvm::ConstantInt>(call->getArgOperand(0)) : nullptr;
            if (index && index->getZExtValue() >= first && index->getZExtValue() < first + count) return true;
        }
        return false;
    };
    for (BindingReflection& binding : reflection.bindings) {
        std::string_view name = binding.kind == BindingKind::Buffer    ? intrinsic::Buffer
                                : binding.kind == BindingKind::Texture ? intrinsic::Texture
                                                                       : intrinsic::Sampler;
        binding.used = usesIndex(name, binding.index, binding.count);
    }
    reflection.readsDepth = usesIndex(intrinsic::Position, 2, 1);
    reflection.readsInverseW = usesIndex(intrinsic::Position, 3, 1);
    reflection.readsW = readsPerspective(module);
    reflection.writesMemory = writesMemory(module);
    const llvm::Function* discard = module.getFunction({intrinsic::Discard.data(), intrinsic::Discard.size()});
    reflection.discards = discard && !discard->use_empty();
}

/// The first constant that is still read although it has no value.
std::string missingConstant(const llvm::Module& module, const Program& program)
{
    for (const Constant& constant : program.constants) {
        const llvm::GlobalVariable* global = module.getNamedGlobal(constant.symbol);
        if (global && !global->hasInitializer() && !global->use_empty()) return constant.name;
    }
    return {};
}

class LibraryImplementation final : public Library
{
public:
    LibraryImplementation(std::unique_ptr<Program> program, Generator& generator, CompileTimes times)
        : shared_(std::make_shared<Shared>()), generator_(generator), times_(times)
    {
        for (const Entry& entry : program->entries)
            described_.push_back(reflect(*program, entry, nullptr));
        shared_->program = std::move(program);
    }

    std::vector<std::string> functionNames() const override
    {
        std::vector<std::string> names;
        for (const FunctionReflection& function : described_)
            names.push_back(function.name);
        return names;
    }

    const FunctionReflection* describe(std::string_view name) const override
    {
        for (const FunctionReflection& function : described_)
            if (function.name == name) return &function;
        return nullptr;
    }

    std::shared_ptr<Function> specialise(std::string_view name, const std::vector<ConstantValue>& values,
                                         std::string& error) override
    {
        std::shared_ptr<Function> function;
        onLargeStack([&] { function = make(name, values, error); });
        return function;
    }

    CompileTimes times() const override { return times_; }

private:
    std::shared_ptr<Function> make(std::string_view name, const std::vector<ConstantValue>& values, std::string& error)
    {
        std::lock_guard lock(shared_->mutex);
        const Program& program = *shared_->program;
        const Entry* entry = nullptr;
        for (const Entry& candidate : program.entries)
            if (candidate.name == name) entry = &candidate;
        if (!entry) {
            error = "there is no function named '" + std::string(name) + "' in the library";
            return nullptr;
        }
        if (entry->stage == Stage::Kernel) {
            error = "function '" + entry->name + "' is a compute kernel, which this device does not run";
            return nullptr;
        }
        CompileTimes times;
        auto start = Clock::now();
        std::unique_ptr<llvm::Module> module = llvm::CloneModule(*program.module);
        SpecialisedConstants constants(program, values);
        error = constants.mismatch();
        if (!error.empty()) return nullptr;
        constants.apply(*module);
        addEntryWrapper(*module, *entry, constants);
        times.specialise = milliseconds(start);
        start = Clock::now();
        cleanUp(*module);
        times.optimise = milliseconds(start);
        if (std::string missing = missingConstant(*module, program); !missing.empty()) {
            error = "function constant '" + missing + "' has no value";
            return nullptr;
        }
        if (error = leftOver(*module); !error.empty()) return nullptr;
        FunctionReflection reflection = reflect(program, *entry, &constants);
        noteUses(*module, reflection);
        noteCopying(*module, reflection);
        return std::make_shared<FunctionImplementation>(shared_, std::move(module), std::move(reflection), generator_,
                                                        times);
    }

    std::shared_ptr<Shared> shared_;
    Generator& generator_;
    CompileTimes times_;
    std::vector<FunctionReflection> described_;
};

class CompilerImplementation final : public Compiler
{
public:
    CompilerImplementation(std::unique_ptr<Generator> generator, uint32_t lanes)
        : generator_(std::move(generator)), lanes_(lanes)
    {}

    std::shared_ptr<Library> compile(std::string_view source, const CompileOptions& options,
                                     std::string& messages) override
    {
        auto start = Clock::now();
        std::unique_ptr<Program> program;
        onLargeStack([&] { program = parse(source, options, messages); });
        if (!program) return nullptr;
        CompileTimes times;
        times.parse = milliseconds(start);
        return std::make_shared<LibraryImplementation>(std::move(program), *generator_, times);
    }

    std::span<const uint8_t> preparation() const override { return shader::preparation(); }

    void prepare(std::vector<uint8_t> preparation) override { shader::prepare(std::move(preparation)); }

    uint32_t lanes() const override { return lanes_; }

private:
    std::unique_ptr<Generator> generator_;
    uint32_t lanes_;
};

} // namespace
} // namespace softmetal::shader

/// The one door of this shared object. The compiler lives to the end of the process.
extern "C" __attribute__((visibility("default"))) softmetal::shader::Compiler*
softmetal_open_compiler(const softmetal::abi::RuntimeTable* runtime, uint32_t lanes)
{
    using namespace softmetal;
    bool known = runtime && runtime->version == abi::Version && (lanes == 4 || lanes == 8 || lanes == 16);
    std::string error;
    auto generator = known ? shader::makeGenerator(*runtime, lanes, error) : nullptr;
    return generator ? new shader::CompilerImplementation(std::move(generator), lanes) : nullptr;
}
