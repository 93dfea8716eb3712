// SPDX-License-Identifier: Apache-2.0
// clang in process: sources and the precompiled standard header live in memory, and no file of the machine can be
// reached.
#include "shader/frontend/Attributes.h"
#include "shader/frontend/Checks.h"
#include "shader/frontend/ClangHeaders.h"
#include "shader/frontend/Limits.h"
#include "shader/frontend/Literals.h"
#include "shader/frontend/Messages.h"
#include "shader/frontend/Program.h"
#include "shader/frontend/Reflect.h"
#include "shader/stdlib/StandardHeader.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <mutex>

namespace softmetal::shader
{
namespace
{

constexpr const char* HeaderName = "/softmetal/standard.h";
constexpr const char* PrecompiledName = "/softmetal/standard.pch";

/// Headers that a program may name; their content is in the precompiled header already.
constexpr std::array IncludeNames = {
    "metal_stdlib",  "simd/simd.h",       "metal_math",          "metal_matrix",        "metal_geometric",
    "metal_common",  "metal_texture",     "metal_graphics",      "metal_integer",       "metal_relational",
    "metal_types",   "metal_pack",        "metal_array",         "metal_atomic",        "metal_limits",
    "metal_compute", "metal_type_traits", "simd/vector_types.h", "simd/matrix_types.h", "simd/vector.h",
    "simd/matrix.h",
};

/// What headers shared with a host ask about the platform.
constexpr const char* TargetConditionals = R"(#pragma once
#define TARGET_OS_MAC 1
#define TARGET_OS_OSX 1
#define TARGET_OS_IPHONE 0
#define TARGET_OS_IOS 0
#define TARGET_OS_TV 0
#define TARGET_OS_WATCH 0
#define TARGET_OS_MACCATALYST 0
#define TARGET_OS_SIMULATOR 0
)";

constexpr std::array CommonArguments = {
    "-triple",
    "spir64-unknown-unknown",
    "-std=gnu++17",
    "-x",
    "c++",
    "-fdeclspec",
    "-ffp-contract=off",
    "-cl-single-precision-constant",
    "-disable-llvm-passes",
    "-O2",
    "-disable-lifetime-markers",
    "-relaxed-aliasing",
    "-fno-rtti",
    "-fno-threadsafe-statics",
    "-fwrapv",
    "-fno-strict-float-cast-overflow",
    "-ftrivial-auto-var-init=zero",
    "-discard-value-names",
    "-nostdsysteminc",
    "-nobuiltininc",
    "-fbracket-depth",
    "1024",
    "-ferror-limit",
    "20",
    "-Werror=unknown-attributes",
    "-Wno-user-defined-literals",
    "-Wno-unused-value",
    "-Wno-elaborated-enum-base", // enumerations declared by the macros of shared headers
    "-Wno-duplicate-decl-specifier",
    "-internal-isystem",
    "/softmetal/include",
};

using FileSystem = llvm::IntrusiveRefCntPtr<llvm::vfs::InMemoryFileSystem>;

void addFile(FileSystem& files, llvm::StringRef path, llvm::StringRef text)
{
    files->addFile(path, 0, llvm::MemoryBuffer::getMemBuffer(text, path, false));
}

/// A compiler instance on the files given, appending its diagnostics to messages.
std::unique_ptr<clang::CompilerInstance> makeInstance(const FileSystem& files,
                                                      const std::vector<const char*>& arguments, std::string& messages)
{
    auto instance = std::make_unique<clang::CompilerInstance>();
    auto options = llvm::makeIntrusiveRefCnt<clang::DiagnosticOptions>();
    options->ShowCarets = false; // or the number of errors goes to the host's standard error
    llvm::IntrusiveRefCntPtr<clang::DiagnosticsEngine> diagnostics(new clang::DiagnosticsEngine(
        llvm::makeIntrusiveRefCnt<clang::DiagnosticIDs>(), options, new Messages(messages)));
    auto invocation = std::make_shared<clang::CompilerInvocation>();
    clang::CompilerInvocation::CreateFromArgs(*invocation, arguments, *diagnostics);
    invocation->getFrontendOpts().DisableFree = false;
    invocation->getDiagnosticOpts().ShowCarets = false;
    clang::ProcessWarningOptions(*diagnostics, invocation->getDiagnosticOpts()); // what is an error, and how many
    instance->setInvocation(std::move(invocation));
    instance->setDiagnostics(diagnostics.get());
    instance->createFileManager(files);
    instance->createSourceManager(instance->getFileManager());
    return instance;
}

class PrecompileAction final : public clang::ASTFrontendAction
{
public:
    explicit PrecompileAction(std::shared_ptr<clang::PCHBuffer> buffer) : buffer_(std::move(buffer)) {}

protected:
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& instance, llvm::StringRef) override
    {
        auto extensions = instance.getFrontendOpts().ModuleFileExtensions;
        return std::make_unique<clang::PCHGenerator>(instance.getPreprocessor(), instance.getModuleCache(),
                                                     PrecompiledName, "", buffer_, extensions, false, false);
    }
    clang::TranslationUnitKind getTranslationUnitKind() override { return clang::TU_Prefix; }
    bool hasASTFileSupport() const override { return false; }

private:
    std::shared_ptr<clang::PCHBuffer> buffer_;
};

/// Before a precompiled header, so that it is not given to another clang.
std::string signature()
{
    return clang::getClangFullVersion() + '\n';
}

/// What another process precompiled, until the first program is parsed.
struct Given
{
    std::mutex mutex;
    std::vector<uint8_t> preparation;
};

Given& given()
{
    static Given one;
    return one;
}

/// The standard header, parsed once for the process or by another.
struct StandardLibrary
{
    std::string text = standardHeader();
    std::vector<uint8_t> preparation; // the signature and the precompiled header; empty when it does not compile
    std::string messages;

    StandardLibrary()
    {
        registerAttributes();
        {
            std::lock_guard lock(given().mutex);
            preparation = std::move(given().preparation);
        }
        const std::string mark = signature();
        if (preparation.size() > mark.size() && std::equal(mark.begin(), mark.end(), preparation.begin())) return;
        preparation.clear();
        precompile(mark);
    }

    llvm::StringRef precompiled() const
    {
        const size_t mark = signature().size();
        return {reinterpret_cast<const char*>(preparation.data()) + mark, preparation.size() - mark};
    }

private:
    void precompile(const std::string& mark)
    {
        FileSystem files(new llvm::vfs::InMemoryFileSystem);
        addFile(files, HeaderName, text);
        std::vector<const char*> arguments(CommonArguments.begin(), CommonArguments.end());
        arguments.insert(arguments.end(), {"-emit-pch", "-fpch-instantiate-templates", HeaderName});
        auto instance = makeInstance(files, arguments, messages);
        auto buffer = std::make_shared<clang::PCHBuffer>();
        PrecompileAction action(buffer);
        bool done = instance->ExecuteAction(action) && !instance->getDiagnostics().hasErrorOccurred();
        if (!done) return;
        preparation.assign(mark.begin(), mark.end());
        preparation.insert(preparation.end(), buffer->Data.begin(), buffer->Data.end());
    }
};

std::atomic<bool> isPrepared{false};

const StandardLibrary& standardLibrary()
{
    static const StandardLibrary library;
    isPrepared = true;
    return library;
}

class Describe final : public clang::ASTConsumer
{
public:
    Describe(const AttributeTable& attributes, Program& program) : attributes_(attributes), program_(program) {}
    void Initialize(clang::ASTContext& context) override { context_ = &context; }
    bool HandleTopLevelDecl(clang::DeclGroupRef group) override
    {
        for (clang::Decl* declaration : group)
            shortenLiterals(*context_, declaration);
        return true;
    }
    void HandleTranslationUnit(clang::ASTContext& context) override
    {
        if (!context.getDiagnostics().hasErrorOccurred()) describeProgram(context, attributes_, program_);
    }

private:
    clang::ASTContext* context_ = nullptr;
    const AttributeTable& attributes_;
    Program& program_;
};

/// Swallows pragmas by which a source could stop the compiler or make it write to the host's standard error.
class NoDebugging final : public clang::PragmaHandler
{
public:
    NoDebugging() : PragmaHandler("__debug") {}
    void HandlePragma(clang::Preprocessor& preprocessor, clang::PragmaIntroducer, clang::Token&) override
    {
        preprocessor.DiscardUntilEndOfDirective();
    }
};

class CompileAction final : public clang::EmitLLVMOnlyAction
{
public:
    CompileAction(llvm::LLVMContext* context, const AttributeTable& attributes, Program& program)
        : EmitLLVMOnlyAction(context), attributes_(attributes), program_(program)
    {}

protected:
    bool BeginSourceFileAction(clang::CompilerInstance& instance) override
    {
        instance.getPreprocessor().AddPragmaHandler("clang", new NoDebugging); // in the place of clang's own
        limitSource(instance);
        return EmitLLVMOnlyAction::BeginSourceFileAction(instance);
    }

    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& instance,
                                                          llvm::StringRef file) override
    {
        std::vector<std::unique_ptr<clang::ASTConsumer>> consumers;
        consumers.push_back(std::make_unique<Describe>(attributes_, program_));
        consumers.push_back(EmitLLVMOnlyAction::CreateASTConsumer(instance, file));
        return std::make_unique<clang::MultiplexConsumer>(std::move(consumers));
    }

private:
    const AttributeTable& attributes_;
    Program& program_;
};

FileSystem programFiles(const std::string& source)
{
    FileSystem files(new llvm::vfs::InMemoryFileSystem);
    const StandardLibrary& standard = standardLibrary();
    addFile(files, HeaderName, standard.text);
    addFile(files, PrecompiledName, standard.precompiled());
    addFile(files, SourceName, source);
    for (const char* name : IncludeNames)
        addFile(files, std::string("/softmetal/include/") + name, "");
    addFile(files, "/softmetal/include/TargetConditionals.h", TargetConditionals);
    return files;
}

} // namespace

std::span<const uint8_t> preparation()
{
    return isPrepared ? std::span<const uint8_t>(standardLibrary().preparation) : std::span<const uint8_t>();
}

void prepare(std::vector<uint8_t> preparation)
{
    std::lock_guard lock(given().mutex);
    given().preparation = std::move(preparation);
}

std::unique_ptr<Program> parse(std::string_view source, const CompileOptions& options, std::string& messages)
{
    const StandardLibrary& standard = standardLibrary();
    if (standard.preparation.empty()) {
        messages = "the standard library does not compile: " + standard.messages;
        return nullptr;
    }
    std::string text(source);
    std::vector<std::string> macros;
    for (const auto& [name, value] : options.macros)
        macros.push_back("-D" + name + "=" + value);
    std::vector<const char*> arguments(CommonArguments.begin(), CommonArguments.end());
    arguments.insert(arguments.end(), {"-include-pch", PrecompiledName, "-fno-validate-pch", "-emit-llvm-only"});
    for (const std::string& macro : macros)
        arguments.push_back(macro.c_str());
    arguments.push_back(SourceName);

    auto program = std::make_unique<Program>();
    program->context = std::make_unique<llvm::LLVMContext>();
    AttributeTable attributes;
    auto instance = makeInstance(programFiles(text), arguments, messages);
    auto action = std::make_unique<CompileAction>(program->context.get(), attributes, *program);
    collectAttributes(&attributes);
    bool done = false;
    try {
        done = instance->ExecuteAction(*action);
    } catch (const MacroLimitReached&) { // in the midst of clang, which cannot be taken down then
        static_cast<void>(instance.release());
        static_cast<void>(action.release());
        static_cast<void>(program.release());
    }
    collectAttributes(nullptr);
    if (!program) return nullptr;
    program->module = action->takeModule();
    bool failed = !done || instance->getDiagnostics().hasErrorOccurred() || !program->module;
    if (failed || !checkModule(*program, messages)) return nullptr;
    return program;
}

} // namespace softmetal::shader
