// SPDX-License-Identifier: Apache-2.0
// Where the time between a program's text and its machine code goes: each of the demo's programs is translated, parsed,
// specialised, optimised, widened and generated some times over, and the median of each stage is printed in
// milliseconds.
#include "DemoPrograms.h"
#include "ShaderString.h"
#include "shader/Compiler.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <dlfcn.h>

namespace
{

using namespace softmetal::shader;
using Clock = std::chrono::steady_clock;

constexpr int DefaultRepeats = 15;
constexpr int Lanes = 8;

Compiler* openCompiler()
{
    namespace abi = softmetal::abi;
    // Code is generated here but never run, so the texture calls have nothing to do.
    static const abi::RuntimeTable runtime{abi::Version,
                                           0,
                                           [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*) {},
                                           [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*) {},
                                           [](const abi::Texture*, const abi::Sampler*, abi::SampleCall*, uint32_t) {},
                                           [](const abi::Texture*, abi::ReadCall*) {},
                                           [] {},
                                           [](uint64_t, uint32_t) {},
                                           [](const abi::Texture*, const abi::WriteCall*) {},
                                           [](abi::AtomicCall*) {}};
    void* library = dlopen(ZAL_COMPILER, RTLD_NOW | RTLD_LOCAL);
    auto door = library ? reinterpret_cast<OpenCompiler>(dlsym(library, "softmetal_open_compiler")) : nullptr;
    return door ? door(&runtime, Lanes) : nullptr;
}

std::string translated(std::string_view program, double& milliseconds)
{
    auto start = Clock::now();
    ZALMetal::ShaderString text;
    text.Append(program.data(), static_cast<unsigned>(program.size()));
    ZALM::String source;
    ZALMetal::ShaderBindings bindings;
    int status = text.GLSLTranslation(source, bindings);
    milliseconds = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    return status == 0 ? std::string(source.Buffer(), static_cast<size_t>(source.GetStringBytes())) : std::string();
}

struct Step
{
    const char* name;
    std::vector<double> times;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// A value for every constant that the entry function declares, as the library gives them when it draws.
std::vector<ConstantValue> constantsOf(const FunctionReflection& function)
{
    std::vector<ConstantValue> values;
    for (const ConstantReflection& constant : function.constants) {
        ConstantValue value{constant.index, {}, constant.dataType, {}};
        value.bytes[0] = 1;
        values.push_back(value);
    }
    return values;
}

bool once(Compiler& compiler, std::string_view program, std::vector<Step>& stages)
{
    double translation = 0;
    std::string source = translated(program, translation), messages;
    auto library = compiler.compile(source, {}, messages);
    if (!library || library->functionNames().empty()) return std::fprintf(stderr, "%s\n", messages.c_str()), false;
    std::string name = library->functionNames().front();
    const FunctionReflection& described = *library->describe(name);
    auto function = library->specialise(name, constantsOf(described), messages);
    if (!function) return std::fprintf(stderr, "%s\n", messages.c_str()), false;
    bool made = described.stage == Stage::Vertex ? function->vertexCode(messages) != nullptr
                                                 : function->fragmentCode(messages) != nullptr;
    if (!made) return std::fprintf(stderr, "%s\n", messages.c_str()), false;
    CompileTimes times = function->times();
    double values[] = {translation, library->times().parse, times.specialise, times.optimise,
                       times.widen, times.generate};
    for (size_t i = 0; i < stages.size(); ++i)
        stages[i].times.push_back(values[i]);
    return true;
}

bool printStages(Compiler& compiler, const char* name, std::string_view program, int repeats)
{
    std::vector<Step> stages = {{"translate", {}}, {"parse", {}}, {"specialise", {}},
                                {"optimise", {}},  {"widen", {}}, {"generate", {}}};
    for (int i = 0; i <= repeats; ++i)
        if (!once(compiler, program, stages)) return false;
    std::printf("%-18s %-9s", name, "ms");
    double sum = 0;
    for (Step& stage : stages) {
        stage.times.erase(stage.times.begin()); // the first run reads the library from disk
        std::printf(" %s %.2f", stage.name, median(stage.times));
        sum += median(stage.times);
    }
    std::printf("  sum %.2f\n", sum);
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    int repeats = argc > 1 ? std::max(1, std::atoi(argv[1])) : DefaultRepeats;
    Compiler* compiler = openCompiler();
    if (!compiler) return std::fprintf(stderr, "stages: the shader compiler cannot be opened: %s\n", dlerror()), 1;
    bool done = printStages(*compiler, "lit vertex", scenes::LitVertexProgram, repeats) &&
                printStages(*compiler, "lit fragment", scenes::LitFragmentProgram, repeats);
    return done ? 0 : 1;
}
