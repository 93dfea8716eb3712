// SPDX-License-Identifier: Apache-2.0
#include "shader/codegen/Codegen.h"

#include "shader/Intrinsics.h"
#include "shader/codegen/Flatten.h"
#include "shader/codegen/Passes.h"
#include "shader/widen/Widen.h"

#include <llvm/ExecutionEngine/Orc/JITTargetMachineBuilder.h>
#include <llvm/IR/LegacyPassManager.h>
#include <llvm/IR/Verifier.h>
#include <llvm/Support/TargetSelect.h>
#include <llvm/Target/TargetMachine.h>

#include <chrono>
#include <cstdlib>
#include <mutex>

namespace softmetal::shader
{
namespace
{

using namespace llvm;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point since)
{
    return std::chrono::duration<double, std::milli>(Clock::now() - since).count();
}

constexpr uint64_t DefaultLoopLimit = 1u << 20;

uint64_t loopLimit()
{
    const char* text = std::getenv("SOFTMETAL_SHADER_LIMIT");
    uint64_t value = text ? std::strtoull(text, nullptr, 10) : 0;
    return value > 0 ? value : DefaultLoopLimit;
}

class LoadedFunction final : public Code
{
public:
    LoadedFunction(MachineCode code, std::unique_ptr<LoadedCode> loaded)
        : code_(std::move(code)), loaded_(std::move(loaded))
    {}
    void* address() const override { return loaded_->address(); }
    const MachineCode& machineCode() const override { return code_; }

private:
    MachineCode code_;
    std::unique_ptr<LoadedCode> loaded_;
};

/// Target machines that nobody uses at the moment; each serves one thread at a time.
class MachinePool
{
public:
    explicit MachinePool(orc::JITTargetMachineBuilder builder) : builder_(std::move(builder)) {}

    std::unique_ptr<TargetMachine> take()
    {
        std::lock_guard lock(mutex_);
        if (idle_.empty()) return cantFail(builder_.createTargetMachine()); // it could be made before
        auto machine = std::move(idle_.back());
        idle_.pop_back();
        return machine;
    }

    void giveBack(std::unique_ptr<TargetMachine> machine)
    {
        std::lock_guard lock(mutex_);
        idle_.push_back(std::move(machine));
    }

private:
    orc::JITTargetMachineBuilder builder_;
    std::mutex mutex_;
    std::vector<std::unique_ptr<TargetMachine>> idle_;
};

class LlvmGenerator final : public Generator
{
public:
    LlvmGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, const orc::JITTargetMachineBuilder& builder,
                  std::unique_ptr<TargetMachine> first)
        : runtime_(runtime), lanes_(lanes), triple_(first->getTargetTriple().str()), layout_(first->createDataLayout()),
          machines_(builder), limit_(loopLimit())
    {
        machines_.giveBack(std::move(first));
    }

    std::unique_ptr<Code> generate(Module& module, Stage stage, CompileTimes& times, std::string& error) override
    {
        auto start = Clock::now();
        if (!makeWide(module, stage, error)) return nullptr;
        times.widen += milliseconds(start);
        start = Clock::now();
        SmallVector<char, 0> object = assemble(module, CodeGenFileType::ObjectFile, error);
        auto code = object.empty() ? nullptr : load(object, error);
        times.generate += milliseconds(start);
        return code;
    }

    std::string listing(Module& module, Stage stage, std::string& error) override
    {
        if (!makeWide(module, stage, error)) return {};
        SmallVector<char, 0> text = assemble(module, CodeGenFileType::AssemblyFile, error);
        return std::string(text.begin(), text.end());
    }

private:
    bool makeWide(Module& module, Stage stage, std::string& error)
    {
        module.setTargetTriple(triple_);
        module.setDataLayout(layout_);
        llvm::Function* scalar = module.getFunction({intrinsic::Entry.data(), intrinsic::Entry.size()});
        if (!scalar || scalar->isDeclaration()) {
            error = "there is no entry function";
            return false;
        }
        WidenOptions options{lanes_, stage, limit_};
        llvm::Function* wide = widen(*scalar, options, error);
        if (!wide) return false;
        const char* width = lanes_ >= 16 ? "512" : "256";
        wide->addFnAttr("prefer-vector-width", width);
        wide->addFnAttr("min-legal-vector-width", width);
        scalar->eraseFromParent();
        if (verifyFunction(*wide)) { // the code generator would end the process
            error = "the widened function is not well formed";
            return false;
        }
        cleanUpWide(*wide);
        return true;
    }

    SmallVector<char, 0> assemble(Module& module, CodeGenFileType type, std::string& error)
    {
        auto machine = machines_.take();
        SmallVector<char, 0> bytes;
        raw_svector_ostream stream(bytes);
        {
            legacy::PassManager passes;
            MCContext* context = nullptr;
            bool refused = type == CodeGenFileType::ObjectFile
                               ? machine->addPassesToEmitMC(passes, context, stream)
                               : machine->addPassesToEmitFile(passes, stream, nullptr, type);
            if (refused)
                error = "this machine's code cannot be generated";
            else
                passes.run(module);
        }
        machines_.giveBack(std::move(machine));
        return bytes;
    }

    std::unique_ptr<Code> load(const SmallVector<char, 0>& object, std::string& error)
    {
        auto code = flatten({{object.data(), object.size()}, "shader"}, WideName, error);
        auto loaded = code ? LoadedCode::load(*code, runtime_, error) : nullptr;
        return loaded ? std::make_unique<LoadedFunction>(std::move(*code), std::move(loaded)) : nullptr;
    }

    abi::RuntimeTable runtime_;
    uint32_t lanes_;
    std::string triple_;
    DataLayout layout_;
    MachinePool machines_;
    uint64_t limit_;
};

std::unique_ptr<Generator> refuseMachine(Error problem, std::string& error)
{
    error = "this machine's code cannot be generated: " + toString(std::move(problem));
    return nullptr;
}

} // namespace

std::unique_ptr<Generator> makeGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error)
{
    static std::once_flag once;
    std::call_once(once, [] {
        InitializeNativeTarget();
        InitializeNativeTargetAsmPrinter();
    });
    auto builder = orc::JITTargetMachineBuilder::detectHost();
    if (!builder) return refuseMachine(builder.takeError(), error);
    builder->getOptions().AllowFPOpFusion = FPOpFusion::Strict; // the same bits on every machine
    builder->getOptions().EnableFastISel = false;
    builder->setCodeGenOptLevel(CodeGenOptLevel::Default);
    builder->setCodeModel(CodeModel::Small);
    builder->setRelocationModel(Reloc::PIC_);
    auto machine = builder->createTargetMachine();
    if (!machine) return refuseMachine(machine.takeError(), error);
    return std::make_unique<LlvmGenerator>(runtime, lanes, *builder, std::move(*machine));
}

} // namespace softmetal::shader
