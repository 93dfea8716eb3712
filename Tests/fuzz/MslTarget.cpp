// SPDX-License-Identifier: Apache-2.0
// Any bytes as source in Metal's shading language. The first byte gives the values of function constants; the rest is
// compiled, and every function of what compiles is specialised and made into machine code. Nothing of it is run.
#include "fuzz/Input.h"
#include "shader/Compiler.h"

#include <string>
#include <vector>

using namespace softmetal;

extern "C" shader::Compiler* softmetal_open_compiler(const abi::RuntimeTable* runtime, uint32_t lanes);

namespace
{

constexpr uint32_t DataTypeBool = 53; // MTL::DataTypeBool
constexpr uint32_t Constants = 8, Lanes = 8;

shader::Compiler* open()
{
    static const abi::RuntimeTable runtime = {
        abi::Version,
        0,
        [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*) {},
        [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*) {},
        [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*, uint32_t) {},
        [](const abi::Texture*, abi::ReadCall*) {},
        [] {},
        [](uint64_t, uint32_t) {},
        [](const abi::Texture*, const abi::WriteCall*) {},
        [](abi::AtomicCall*) {}};
    shader::Compiler* compiler = softmetal_open_compiler(&runtime, Lanes);
    fuzz::require(compiler != nullptr);
    return compiler;
}

std::vector<shader::ConstantValue> valuesOf(uint8_t bits)
{
    std::vector<shader::ConstantValue> values;
    for (uint32_t i = 0; i < Constants; ++i) {
        shader::ConstantValue value{i, {}, DataTypeBool, {}};
        value.bytes[0] = bits >> i & 1;
        values.push_back(value);
    }
    return values;
}

void generate(shader::Function& function)
{
    std::string error;
    const bool vertex = function.reflection().stage == shader::Stage::Vertex;
    const bool made = vertex ? function.vertexCode(error) != nullptr : function.fragmentCode(error) != nullptr;
    fuzz::require(made || !error.empty());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static shader::Compiler* const compiler = open();
    fuzz::Input input(data, size);
    const auto values = valuesOf(input.byte());
    std::string messages;
    auto library = compiler->compile(input.rest(), {}, messages);
    if (!library) return fuzz::require(!messages.empty()), 0;
    for (const std::string& name : library->functionNames()) {
        fuzz::require(library->describe(name) != nullptr);
        std::string error;
        auto function = library->specialise(name, values, error);
        fuzz::require(function || !error.empty());
        if (function) generate(*function);
    }
    return 0;
}
