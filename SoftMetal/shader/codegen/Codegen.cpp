// SPDX-License-Identifier: Apache-2.0
#include "shader/codegen/Codegen.h"

#include "shader/codegen/Passes.h"
#include "shader/widen/Widen.h"

#include <llvm/ExecutionEngine/Orc/LLJIT.h>
#include <llvm/IR/LegacyPassManager.h>
#include <llvm/IR/Verifier.h>
#include <llvm/Support/SmallVectorMemoryBuffer.h>
#include <llvm/Support/TargetSelect.h>
#include <llvm/Target/TargetMachine.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <mutex>

namespace softmetal::shader {
namespace {

using namespace llvm;
using Clock = std::chrono::steady_clock;

double milliseconds(Clock::time_point since) { return std::chrono::duration<double, std::milli>(Clock::now() - since).count(); }

uint64_t loopLimit()
{
    const char* text = std::getenv("SOFTMETAL_SHADER_LIMIT");
    uint64_t value = text ? std::strtoull(text, nullptr, 10) : 0;
    return value > 0 ? value : 1u << 20;
}

/// One function's place in the linker.
class LinkedCode final : public Code
{
public:
    LinkedCode(std::shared_ptr<orc::LLJIT> jit, orc::JITDylib* library, void* address) : jit_(std::move(jit)), library_(library), address_(address) {}
    ~LinkedCode() override { consumeError(jit_->getExecutionSession().removeJITDylib(*library_)); }
    void* address() const override { return address_; }

private:
    std::shared_ptr<orc::LLJIT> jit_;
    orc::JITDylib* library_;
    void* address_;
};

class LlvmGenerator final : public Generator
{
public:
    LlvmGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, orc::JITTargetMachineBuilder builder, std::unique_ptr<TargetMachine> machine,
                  std::shared_ptr<orc::LLJIT> jit)
        : runtime_(runtime), lanes_(lanes), builder_(std::move(builder)), machine_(std::move(machine)), jit_(std::move(jit)), limit_(loopLimit())
    {
    }

    std::unique_ptr<Code> generate(Module& module, Stage stage, CompileTimes& times, std::string& error) override
    {
        std::lock_guard lock(mutex_); // one target machine serves all
        auto start = Clock::now();
        module.setTargetTriple(machine_->getTargetTriple().str());
        module.setDataLayout(machine_->createDataLayout());
        llvm::Function* scalar = module.getFunction(intrinsicEntry());
        WidenOptions options{lanes_, stage, &runtime_, limit_};
        llvm::Function* wide = widen(*scalar, options, error);
        if (!wide) return nullptr;
        wide->addFnAttr("prefer-vector-width", lanes_ >= 16 ? "512" : "256");
        wide->addFnAttr("min-legal-vector-width", lanes_ >= 16 ? "512" : "256");
        scalar->eraseFromParent();
        cleanUpWide(*wide);
        times.widen += milliseconds(start);
        start = Clock::now();
        auto code = link(assemble(module, error), error);
        times.generate += milliseconds(start);
        return code;
    }

private:
    static StringRef intrinsicEntry() { return "softmetal_entry"; }

    std::unique_ptr<MemoryBuffer> assemble(Module& module, std::string& error)
    {
        if (verifyModule(module)) {
            error = "the widened function is not well formed";
            return nullptr;
        }
        SmallVector<char, 0> bytes;
        raw_svector_ostream stream(bytes);
        legacy::PassManager passes;
        MCContext* context = nullptr;
        if (machine_->addPassesToEmitMC(passes, context, stream)) {
            error = "this machine's code cannot be generated";
            return nullptr;
        }
        passes.run(module);
        return std::make_unique<SmallVectorMemoryBuffer>(std::move(bytes), false);
    }

    std::unique_ptr<Code> link(std::unique_ptr<MemoryBuffer> object, std::string& error)
    {
        if (!object) return nullptr;
        auto library = jit_->createJITDylib("shader" + std::to_string(serial_++));
        if (!library) return refuse(library.takeError(), error);
        library->addToLinkOrder(jit_->getMainJITDylib());
        if (auto problem = jit_->addObjectFile(*library, std::move(object))) return refuse(std::move(problem), error);
        auto symbol = jit_->lookup(*library, WideName);
        if (!symbol) return refuse(symbol.takeError(), error);
        return std::make_unique<LinkedCode>(jit_, &*library, symbol->toPtr<void*>());
    }

    static std::unique_ptr<Code> refuse(Error problem, std::string& error)
    {
        error = toString(std::move(problem));
        return nullptr;
    }

    abi::RuntimeTable runtime_;
    uint32_t lanes_;
    orc::JITTargetMachineBuilder builder_;
    std::unique_ptr<TargetMachine> machine_;
    std::shared_ptr<orc::LLJIT> jit_;
    uint64_t limit_;
    std::mutex mutex_;
    std::atomic<uint64_t> serial_{0};
};

} // namespace

std::unique_ptr<Generator> makeGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error)
{
    static std::once_flag once;
    std::call_once(once, [] {
        InitializeNativeTarget();
        InitializeNativeTargetAsmPrinter();
    });
    auto builder = orc::JITTargetMachineBuilder::detectHost();
    if (!builder) {
        error = toString(builder.takeError());
        return nullptr;
    }
    builder->getOptions().AllowFPOpFusion = FPOpFusion::Strict; // the same bits on every machine
    builder->getOptions().EnableFastISel = false;
    builder->setCodeGenOptLevel(CodeGenOptLevel::Default);
    builder->setCodeModel(CodeModel::Small);
    builder->setRelocationModel(Reloc::PIC_);
    auto machine = builder->createTargetMachine();
    auto jit = orc::LLJITBuilder().setJITTargetMachineBuilder(*builder).create();
    if (!machine || !jit) {
        error = "this machine's code cannot be generated";
        if (!machine) consumeError(machine.takeError());
        if (!jit) error = toString(jit.takeError());
        return nullptr;
    }
    (*jit)->getExecutionSession().setErrorReporter([](Error problem) { consumeError(std::move(problem)); }); // returned as well
    return std::make_unique<LlvmGenerator>(runtime, lanes, *builder, std::move(*machine), std::shared_ptr<orc::LLJIT>(std::move(*jit)));
}

} // namespace softmetal::shader
