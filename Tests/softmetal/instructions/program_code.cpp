// SPDX-License-Identifier: Apache-2.0
// program_code LANES FOLDER SOURCE.metal…: the machine code of every function of the sources, without loading it
// anywhere: FOLDER/N.bin, and for each a line "N.bin ENTRY SOURCE FUNCTION: IMPORT…" with the place where it is
// entered.
#include "shader/Compiler.h"
#include "shader/MachineCode.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <dlfcn.h>

namespace
{

using namespace softmetal::shader;
namespace abi = softmetal::abi;

Compiler* openCompiler(uint32_t lanes)
{
    constexpr auto nothing = [](auto...) {}; // nothing is run here
    static const abi::RuntimeTable runtime{abi::Version, 0,       nothing, nothing, nothing,
                                           nothing,      nothing, nothing, nothing, nothing};
    void* library = dlopen(ZAL_COMPILER, RTLD_NOW | RTLD_LOCAL);
    auto door = library ? reinterpret_cast<OpenCompiler>(dlsym(library, "softmetal_open_compiler")) : nullptr;
    return door ? door(&runtime, lanes) : nullptr;
}

/// Ones for all constants that are asked for.
std::vector<ConstantValue> constantsOf(const FunctionReflection& function)
{
    std::vector<ConstantValue> values;
    for (const ConstantReflection& constant : function.constants)
        values.push_back({constant.index, {}, constant.dataType, {1}});
    return values;
}

[[noreturn]] void fail(const std::string& words)
{
    std::fprintf(stderr, "program_code: %s\n", words.c_str());
    std::exit(1);
}

std::shared_ptr<Function> compiled(Library& library, const std::string& name, const std::string& source)
{
    std::string messages;
    const FunctionReflection& described = *library.describe(name);
    auto function = library.specialise(name, constantsOf(described), messages);
    if (!function) fail(source + ": " + name + ": " + messages);
    const bool made = described.stage == Stage::Vertex ? function->vertexCode(messages) != nullptr
                                                       : function->fragmentCode(messages) != nullptr;
    if (!made) fail(source + ": " + name + ": " + messages);
    return function;
}

void write(const std::filesystem::path& path, const MachineCode& code)
{
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(code.bytes.data()), static_cast<std::streamsize>(code.bytes.size()));
    if (!file.flush()) fail(path.string() + " cannot be written");
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 4) fail("usage: program_code LANES FOLDER SOURCE.metal...");
    Compiler* compiler = openCompiler(static_cast<uint32_t>(std::atoi(argv[1])));
    if (!compiler) fail("the shader compiler cannot be opened");
    int count = 0;
    for (int i = 3; i < argc; ++i) {
        std::ifstream file(argv[i]);
        std::ostringstream source;
        source << file.rdbuf();
        std::string messages;
        auto library = compiler->compile(source.str(), {}, messages);
        if (!library) fail(std::string(argv[i]) + ": " + messages);
        for (const std::string& name : library->functionNames()) {
            const auto function = compiled(*library, name, argv[i]);
            const MachineCode& code = *function->machineCode();
            const std::string binary = std::to_string(count++) + ".bin";
            write(std::filesystem::path(argv[2]) / binary, code);
            std::printf("%s %llu %s %s:", binary.c_str(), static_cast<unsigned long long>(code.entry), argv[i],
                        name.c_str());
            for (const MachineCode::Import& import : code.imports)
                std::printf(" %s", import.name.c_str());
            std::printf("\n");
        }
    }
    return 0;
}
