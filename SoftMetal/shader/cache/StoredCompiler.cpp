// SPDX-License-Identifier: Apache-2.0
#include "shader/cache/StoredCompiler.h"

#include "shader/cache/Records.h"

#include <atomic>
#include <mutex>

namespace softmetal::shader
{
namespace
{

std::atomic<uint64_t> parsed{0}, generated{0}, librariesFound{0}, functionsFound{0};

/// What libraries and functions need of their compiler; they may outlive it.
class Behind
{
public:
    Behind(OpenBehind open, std::optional<Folder> folderOrNone, const Digest& who, const abi::RuntimeTable& table)
        : folder(std::move(folderOrNone)), identity(who), runtime(table), open_(std::move(open))
    {}

    /// Null with the reason in messages.
    std::shared_ptr<Library> compile(std::string_view source, const CompileOptions& options,
                                     std::string& messages) const
    {
        Compiler* compiler = open_(messages);
        if (!compiler) return nullptr;
        std::call_once(opened_, [&] { prepare(*compiler); });
        auto library = compiler->compile(source, options, messages);
        if (library) ++parsed;
        if (library && unprepared_.exchange(false)) folder->write(preparationKey(), compiler->preparation());
        return library;
    }

    const std::optional<Folder> folder;
    const Digest identity;
    const abi::RuntimeTable runtime;

private:
    void prepare(Compiler& compiler) const
    {
        if (!folder) return;
        auto preparation = folder->read(preparationKey());
        unprepared_ = !preparation;
        if (preparation) compiler.prepare(std::move(*preparation));
    }

    Digest preparationKey() const
    {
        Digester all;
        return all.add("preparation").add(identity).finish();
    }

    OpenBehind open_;
    mutable std::once_flag opened_;
    mutable std::atomic<bool> unprepared_{false}; // the compiler prepares itself, which is to be kept
};

bool isOfStage(const FunctionReflection& reflection, Stage stage, std::string& error)
{
    if (reflection.stage == stage) return true;
    error = "function '" + reflection.name + "' belongs to the other stage";
    return false;
}

/// Was compiled before.
class FoundFunction final : public Function
{
public:
    FoundFunction(FunctionRecord record, std::unique_ptr<LoadedCode> loaded)
        : record_(std::move(record)), loaded_(std::move(loaded))
    {}
    const FunctionReflection& reflection() const override { return record_.reflection; }
    const MachineCode* machineCode() const override { return &record_.code; }
    CompileTimes times() const override { return {}; }

    abi::VertexFunction vertexCode(std::string& error) override
    {
        return isOfStage(record_.reflection, Stage::Vertex, error)
                   ? reinterpret_cast<abi::VertexFunction>(loaded_->address())
                   : nullptr;
    }
    abi::FragmentFunction fragmentCode(std::string& error) override
    {
        return isOfStage(record_.reflection, Stage::Fragment, error)
                   ? reinterpret_cast<abi::FragmentFunction>(loaded_->address())
                   : nullptr;
    }

private:
    FunctionRecord record_;
    std::unique_ptr<LoadedCode> loaded_;
};

/// Is compiled here, and kept as soon as there is code.
class MadeFunction final : public Function
{
public:
    MadeFunction(std::shared_ptr<const Behind> behind, const Digest& key, std::shared_ptr<Function> made)
        : behind_(std::move(behind)), key_(key), made_(std::move(made))
    {}
    const FunctionReflection& reflection() const override { return made_->reflection(); }
    const MachineCode* machineCode() const override { return made_->machineCode(); }
    CompileTimes times() const override { return made_->times(); }
    abi::VertexFunction vertexCode(std::string& error) override { return kept(made_->vertexCode(error)); }
    abi::FragmentFunction fragmentCode(std::string& error) override { return kept(made_->fragmentCode(error)); }

private:
    template <class Code>
    Code kept(Code code)
    {
        if (code) std::call_once(once_, [this] { keep(); });
        return code;
    }

    void keep()
    {
        ++generated;
        if (behind_->folder)
            behind_->folder->write(key_, toBytes(FunctionRecord{made_->reflection(), *made_->machineCode()}));
    }

    std::shared_ptr<const Behind> behind_;
    Digest key_;
    std::shared_ptr<Function> made_;
    std::once_flag once_;
};

class StoredLibrary final : public Library
{
public:
    StoredLibrary(std::shared_ptr<const Behind> behind, const Digest& key, std::vector<FunctionReflection> functions,
                  std::string_view source, CompileOptions options, std::shared_ptr<Library> made)
        : behind_(std::move(behind)), key_(key), functions_(std::move(functions)), source_(source),
          options_(std::move(options)), made_(std::move(made))
    {}

    std::vector<std::string> functionNames() const override
    {
        std::vector<std::string> names;
        for (const FunctionReflection& function : functions_)
            names.push_back(function.name);
        return names;
    }

    const FunctionReflection* describe(std::string_view name) const override
    {
        for (const FunctionReflection& function : functions_)
            if (function.name == name) return &function;
        return nullptr;
    }

    std::shared_ptr<Function> specialise(std::string_view name, const std::vector<ConstantValue>& values,
                                         std::string& error) override
    {
        const Digest key = keyOf(name, values);
        if (auto found = find(key)) return found;
        std::shared_ptr<Library> library = parsedLibrary(error);
        auto made = library ? library->specialise(name, values, error) : nullptr;
        return made ? std::make_shared<MadeFunction>(behind_, key, std::move(made)) : nullptr;
    }

    CompileTimes times() const override
    {
        std::lock_guard lock(mutex_);
        return made_ ? made_->times() : CompileTimes{};
    }

private:
    Digest keyOf(std::string_view name, const std::vector<ConstantValue>& values) const
    {
        Digester all;
        all.add("function").add(key_).add(name).add(uint64_t{values.size()});
        for (const ConstantValue& value : values) {
            std::string_view bytes(reinterpret_cast<const char*>(value.bytes), sizeof value.bytes);
            all.add(uint64_t{value.index}).add(value.name).add(uint64_t{value.dataType}).add(bytes);
        }
        return all.finish();
    }

    std::shared_ptr<Function> find(const Digest& key) const
    {
        auto bytes = behind_->folder ? behind_->folder->read(key) : std::nullopt;
        auto record = bytes ? functionRecord(*bytes) : std::nullopt;
        std::string ignored;
        auto loaded = record ? LoadedCode::load(record->code, behind_->runtime, ignored) : nullptr;
        if (!loaded) return nullptr;
        ++functionsFound;
        return std::make_shared<FoundFunction>(std::move(*record), std::move(loaded));
    }

    /// A library that was found is parsed when the first of its functions is not found.
    std::shared_ptr<Library> parsedLibrary(std::string& error)
    {
        std::lock_guard lock(mutex_);
        if (made_) return made_;
        std::string messages;
        made_ = behind_->compile(source_, options_, messages);
        if (!made_) error = messages;
        return made_;
    }

    std::shared_ptr<const Behind> behind_;
    Digest key_;
    std::vector<FunctionReflection> functions_;
    std::string source_;
    CompileOptions options_;
    mutable std::mutex mutex_;
    std::shared_ptr<Library> made_; // null until it is needed
};

class StoredCompiler final : public Compiler
{
public:
    StoredCompiler(std::shared_ptr<const Behind> behind, uint32_t lanes) : behind_(std::move(behind)), lanes_(lanes) {}
    uint32_t lanes() const override { return lanes_; }

    std::span<const uint8_t> preparation() const override { return {}; }
    void prepare(std::vector<uint8_t>) override {} // the compiler behind is prepared from the folder

    std::shared_ptr<Library> compile(std::string_view source, const CompileOptions& options,
                                     std::string& messages) override
    {
        const Digest key = keyOf(source, options);
        if (auto record = find(key)) {
            messages = record->messages;
            return std::make_shared<StoredLibrary>(behind_, key, std::move(record->functions), source, options,
                                                   nullptr);
        }
        std::shared_ptr<Library> made = behind_->compile(source, options, messages);
        if (!made) return nullptr;
        LibraryRecord record{messages, {}};
        for (const std::string& name : made->functionNames())
            record.functions.push_back(*made->describe(name));
        if (behind_->folder) behind_->folder->write(key, toBytes(record));
        return std::make_shared<StoredLibrary>(behind_, key, std::move(record.functions), source, options,
                                               std::move(made));
    }

private:
    Digest keyOf(std::string_view source, const CompileOptions& options) const
    {
        Digester all;
        all.add("library").add(behind_->identity).add(uint64_t{options.fastMath}).add(uint64_t{options.macros.size()});
        for (const auto& [name, value] : options.macros)
            all.add(name).add(value);
        return all.add(source).finish();
    }

    std::optional<LibraryRecord> find(const Digest& key) const
    {
        auto bytes = behind_->folder ? behind_->folder->read(key) : std::nullopt;
        auto record = bytes ? libraryRecord(*bytes) : std::nullopt;
        if (record) ++librariesFound;
        return record;
    }

    std::shared_ptr<const Behind> behind_;
    uint32_t lanes_;
};

} // namespace

CompileCounts compileCounts()
{
    return {parsed, generated, librariesFound, functionsFound};
}

std::unique_ptr<Compiler> makeStoredCompiler(OpenBehind behind, std::optional<Folder> folder, const Digest& identity,
                                             const abi::RuntimeTable& runtime, uint32_t lanes)
{
    return std::make_unique<StoredCompiler>(
        std::make_shared<const Behind>(std::move(behind), std::move(folder), identity, runtime), lanes);
}

} // namespace softmetal::shader
