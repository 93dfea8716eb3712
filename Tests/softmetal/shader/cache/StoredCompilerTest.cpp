// SPDX-License-Identifier: Apache-2.0
// The order of look-ups, with a compiler behind that only counts.
#include "shader/cache/StoredCompiler.h"

#include "softmetal/shader/cache/CacheFolder.h"

#include <gtest/gtest.h>

namespace
{

using namespace softmetal::shader;
using cache_test::damage;
using cache_test::entries;

struct Counted
{
    int opened = 0, parsed = 0, specialised = 0, generated = 0;
    bool missing = false;
    std::string prepared; // what the compiler was given
};

/// Vertex functions whose code is one return; their reflection tells the constants that were given.
class CountedFunction final : public Function
{
public:
    CountedFunction(Counted& counted, std::string_view name, size_t values) : counted_(counted)
    {
        reflection_.name = name;
        reflection_.inputComponents = static_cast<uint32_t>(values);
    }
    const FunctionReflection& reflection() const override { return reflection_; }
    const MachineCode* machineCode() const override { return code_.bytes.empty() ? nullptr : &code_; }
    CompileTimes times() const override { return {1, 1, 1, 1, 1}; }
    softmetal::abi::FragmentFunction fragmentCode(std::string& error) override
    {
        error = "wrong stage";
        return nullptr;
    }
    softmetal::abi::VertexFunction vertexCode(std::string&) override
    {
        if (code_.bytes.empty()) ++counted_.generated;
        code_.bytes = {0xc3};
        return
            [](const softmetal::abi::VertexInput*, softmetal::abi::VertexOutput*, const softmetal::abi::Resources*) {};
    }

private:
    Counted& counted_;
    FunctionReflection reflection_;
    MachineCode code_;
};

class CountedLibrary final : public Library
{
public:
    explicit CountedLibrary(Counted& counted) : counted_(counted) { described_.name = "main"; }
    std::vector<std::string> functionNames() const override { return {"main"}; }
    const FunctionReflection* describe(std::string_view name) const override
    {
        return name == "main" ? &described_ : nullptr;
    }
    CompileTimes times() const override { return {}; }
    std::shared_ptr<Function> specialise(std::string_view name, const std::vector<ConstantValue>& values,
                                         std::string& error) override
    {
        ++counted_.specialised;
        if (name == "main") return std::make_shared<CountedFunction>(counted_, name, values.size());
        error = "unknown";
        return nullptr;
    }

private:
    Counted& counted_;
    FunctionReflection described_;
};

class CountedCompiler final : public Compiler
{
public:
    explicit CountedCompiler(Counted& counted) : counted_(counted) {}
    uint32_t lanes() const override { return 8; }
    std::span<const uint8_t> preparation() const override { return preparation_; }
    void prepare(std::vector<uint8_t> preparation) override
    {
        counted_.prepared.assign(preparation.begin(), preparation.end());
    }
    std::shared_ptr<Library> compile(std::string_view source, const CompileOptions&, std::string& messages) override
    {
        ++counted_.parsed;
        messages = source == "wrong" ? "an error" : "a warning";
        return source == "wrong" ? nullptr : std::make_shared<CountedLibrary>(counted_);
    }

private:
    Counted& counted_;
    std::vector<uint8_t> preparation_ = {'h', 'e', 'a', 'd'};
};

class StoredCompiler : public ::testing::Test
{
protected:
    /// As another process with the same folder would have it.
    std::unique_ptr<Compiler> another(uint64_t identity = 0, bool withFolder = true)
    {
        OpenBehind open = [this](std::string& why) -> Compiler* {
            ++counted.opened;
            if (counted.missing) why = "there is no compiler";
            return counted.missing ? nullptr : &behind_;
        };
        Digester digester;
        auto folder = withFolder ? std::optional(Folder(place.path(), 1 << 20)) : std::nullopt;
        return makeStoredCompiler(open, folder, digester.add(identity).finish(), softmetal::abi::RuntimeTable{}, 8);
    }
    static ConstantValue value(uint32_t index, uint8_t byte, uint32_t dataType = 53, std::string name = {})
    {
        return {index, std::move(name), dataType, {byte}};
    }
    /// All the way to code.
    bool run(Compiler& compiler, const std::string& source = "text", const std::vector<ConstantValue>& values = {},
             const CompileOptions& options = {})
    {
        error.clear();
        auto library = compiler.compile(source, options, messages);
        auto function = library ? library->specialise("main", values, error) : nullptr;
        return function && function->vertexCode(error);
    }

    cache_test::TemporaryFolder place;
    Counted counted;
    std::string messages, error;

private:
    CountedCompiler behind_{counted};
};

TEST_F(StoredCompiler, SecondProcessDoesNotOpenTheCompiler)
{
    ASSERT_TRUE(run(*another()));
    EXPECT_EQ(counted.opened, 1);
    EXPECT_TRUE(run(*another()));
    EXPECT_EQ(counted.opened, 1);
    EXPECT_EQ(counted.generated, 1);
}

TEST_F(StoredCompiler, TellsTheWarningsAgain)
{
    run(*another());
    messages.clear();
    run(*another());
    EXPECT_EQ(messages, "a warning");
}

TEST_F(StoredCompiler, DescribesAFoundLibraryWithoutTheCompiler)
{
    run(*another());
    auto library = another()->compile("text", {}, messages);
    EXPECT_EQ(library->functionNames(), std::vector<std::string>{"main"});
    ASSERT_TRUE(library->describe("main"));
    EXPECT_FALSE(library->describe("other"));
    EXPECT_EQ(counted.parsed, 1);
}

TEST_F(StoredCompiler, WhatDiffersIsCompiledAnew)
{
    CompileOptions fast, macro, otherMacro;
    fast.fastMath = true;
    macro.macros = {{"A", "1"}};
    otherMacro.macros = {{"A", "2"}};
    run(*another());
    const std::vector<std::pair<std::string, CompileOptions>> sources = {
        {"text ", {}}, {"text", fast}, {"text", macro}, {"text", otherMacro}};
    for (const auto& [source, options] : sources) {
        int before = counted.parsed;
        run(*another(), source, {}, options);
        EXPECT_EQ(counted.parsed, before + 1);
    }
    int before = counted.parsed;
    run(*another(1)); // another build, or another machine
    EXPECT_EQ(counted.parsed, before + 1);
}

TEST_F(StoredCompiler, OtherConstantsAreOtherFunctions)
{
    const std::vector<std::vector<ConstantValue>> all = {{},
                                                         {value(0, 0)},
                                                         {value(0, 1)},
                                                         {value(1, 1)},
                                                         {value(0, 1, 29)},
                                                         {value(0, 1, 53, "named")},
                                                         {value(0, 1), value(1, 1)}};
    for (const auto& values : all)
        run(*another(), "text", values);
    EXPECT_EQ(counted.generated, static_cast<int>(all.size()));
    for (const auto& values : all) {
        auto function = another()->compile("text", {}, messages)->specialise("main", values, error);
        EXPECT_EQ(function->reflection().inputComponents, values.size());
    }
    EXPECT_EQ(counted.generated, static_cast<int>(all.size()));
}

TEST_F(StoredCompiler, FoundLibraryIsParsedOnceForNewFunctions)
{
    run(*another());
    auto compiler = another();
    auto library = compiler->compile("text", {}, messages);
    EXPECT_EQ(counted.parsed, 1);
    for (uint8_t byte : {1, 2})
        EXPECT_TRUE(library->specialise("main", {value(0, byte)}, error));
    EXPECT_EQ(counted.parsed, 2);
}

TEST_F(StoredCompiler, WithoutAFolderEverythingIsCompiled)
{
    for (int i = 0; i < 2; ++i)
        EXPECT_TRUE(run(*another(0, false)));
    EXPECT_EQ(counted.generated, 2);
    EXPECT_TRUE(entries(place.path()).empty());
}

TEST_F(StoredCompiler, MistakesAreNotKept)
{
    for (int i = 1; i <= 2; ++i) {
        EXPECT_FALSE(run(*another(), "wrong"));
        EXPECT_EQ(messages, "an error");
        EXPECT_EQ(counted.parsed, i);
    }
    EXPECT_TRUE(entries(place.path()).empty());
}

TEST_F(StoredCompiler, UnknownFunctionsAreTheCompilersToRefuse)
{
    run(*another());
    EXPECT_FALSE(another()->compile("text", {}, messages)->specialise("other", {}, error));
    EXPECT_EQ(error, "unknown");
}

TEST_F(StoredCompiler, ThatCannotBeOpenedIsTriedAgain)
{
    counted.missing = true;
    auto compiler = another();
    EXPECT_FALSE(run(*compiler));
    EXPECT_EQ(messages, "there is no compiler");
    counted.missing = false;
    EXPECT_TRUE(run(*compiler));
}

TEST_F(StoredCompiler, WhatWasCompiledRunsWithoutTheCompiler)
{
    run(*another());
    counted.missing = true;
    EXPECT_TRUE(run(*another()));
    EXPECT_FALSE(run(*another(), "text", {value(0, 1)}));
    EXPECT_EQ(error, "there is no compiler");
}

TEST_F(StoredCompiler, PreparationIsForTheNextProcess)
{
    run(*another());
    EXPECT_EQ(counted.prepared, "");
    run(*another(), "new text");
    EXPECT_EQ(counted.prepared, "head");
    counted.prepared.clear();
    run(*another(1), "new text"); // another compiler
    EXPECT_EQ(counted.prepared, "");
}

TEST_F(StoredCompiler, PreparationIsKeptByTheFirstThatCompiles)
{
    EXPECT_FALSE(run(*another(), "wrong"));
    EXPECT_TRUE(entries(place.path()).empty());
    auto compiler = another();
    EXPECT_FALSE(run(*compiler, "wrong"));
    EXPECT_TRUE(run(*compiler));
    run(*another(), "new text");
    EXPECT_EQ(counted.prepared, "head");
}

TEST_F(StoredCompiler, DamagedFilesAreCompiledAnew)
{
    run(*another());
    ASSERT_EQ(entries(place.path()).size(), 3u);
    for (const auto& file : entries(place.path()))
        damage(file, std::filesystem::file_size(file) - 1);
    EXPECT_TRUE(run(*another()));
    EXPECT_EQ(counted.generated, 2);
    EXPECT_TRUE(run(*another()));
    EXPECT_EQ(counted.generated, 2);
}

TEST_F(StoredCompiler, FoundFunctionRefusesTheOtherStage)
{
    run(*another());
    auto function = another()->compile("text", {}, messages)->specialise("main", {}, error);
    EXPECT_EQ(function->fragmentCode(error), nullptr);
    EXPECT_EQ(error, "function 'main' belongs to the other stage");
}

TEST_F(StoredCompiler, FunctionsOutliveTheirCompiler)
{
    auto compiler = another();
    auto function = compiler->compile("text", {}, messages)->specialise("main", {}, error);
    compiler.reset();
    EXPECT_TRUE(function->vertexCode(error));
    EXPECT_EQ(entries(place.path()).size(), 3u);
}

TEST_F(StoredCompiler, CountsWhatItDoes)
{
    CompileCounts before = compileCounts();
    for (int i = 0; i < 3; ++i)
        run(*another());
    CompileCounts after = compileCounts();
    EXPECT_EQ(after.parsed - before.parsed, 1u);
    EXPECT_EQ(after.generated - before.generated, 1u);
    EXPECT_EQ(after.librariesFound - before.librariesFound, 2u);
    EXPECT_EQ(after.functionsFound - before.functionsFound, 2u);
}

} // namespace
