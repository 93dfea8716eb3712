// SPDX-License-Identifier: Apache-2.0
// The cost of an assembly program's text: translating it, and rewriting a standard program before. The shading
// language's compiler takes no part.
#include "micro/Rows.h"

#include "ProgramNormaliser.h"
#include "ShaderString.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace micro
{
namespace
{

constexpr int Runs = 15;
constexpr int StatementsPerRun = 20000; // short programs are repeated, so that a run is long enough for the clock

// The kinds of statements that fragment programs are made of, in about their proportions.
constexpr std::array Statements = std::to_array<const char*>({
    "TEX R0, fragment.texcoord[0], texture[0], 2D;\n",
    "MAD R1.xyz, R0, program.local[3].x, fragment.color;\n",
    "DP3 R1.w, R1, R1;\n",
    "RSQ R1.w, R1.w;\n",
    "MUL R1.xyz, R1, R1.w;\n",
    "DP3_SAT R2.x, R1, program.local[7];\n",
    "MUL R2, R2.x, R0;\n",
    "ADD R2, R2, -state.matrix.mvp.row[2].wzyx;\n",
    "MAX R2.xy, R2, 0.25;\n",
    "LRP R0, R2.w, R0, R2;\n",
    "CMP R0.x, R2.x, R1.y, R0.z;\n",
    "MOV result.color, R0;\n",
});

std::string programOf(int statements)
{
    std::string program = "!!ARBfp1.0\nTEMP R0, R1, R2;\n";
    for (int i = 0; i < statements; ++i)
        program += Statements[static_cast<size_t>(i) % Statements.size()];
    return program + "END\n";
}

void stopUnless(bool holds, const char* what)
{
    if (holds) return;
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

void translate(const std::string& program)
{
    ZALMetal::ShaderString shader;
    shader.Append(program.data(), static_cast<unsigned>(program.size()));
    ZALMetal::ShaderBindings bindings;
    ZALM::String source;
    stopUnless(shader.GLSLTranslation(source, bindings) == 0, "the benchmark's program does not translate");
}

void normalise(const std::string& program)
{
    std::vector<ZALMetal::NormaliserFault> faults;
    stopUnless(!ZALMetal::NormaliseProgram(program, faults).empty(), "the benchmark's program cannot be rewritten");
}

/// Seconds for one program, in ascending order, one for each run; the first run of all is not counted.
template <class Work>
std::array<double, Runs> secondsPerProgram(int statements, const Work& work)
{
    using Clock = std::chrono::steady_clock;
    const std::string program = programOf(statements);
    const int repeats = std::max(1, StatementsPerRun / statements);
    std::array<double, Runs> seconds{};
    work(program);
    for (double& result : seconds) {
        const auto start = Clock::now();
        for (int i = 0; i < repeats; ++i)
            work(program);
        result = std::chrono::duration<double>(Clock::now() - start).count() / repeats;
    }
    std::sort(seconds.begin(), seconds.end());
    return seconds;
}

template <class Work>
void addRows(std::vector<Row>& rows, const std::string& name, const Work& work)
{
    const auto add = [&](const std::string& row, const char* unit, int statements, double factor) {
        const auto seconds = secondsPerProgram(statements, work);
        rows.push_back({row, unit, seconds[Runs / 2] * factor, seconds.front() * factor, seconds.back() * factor});
    };
    for (int statements : {12, 60, 400})
        add(name + ", " + std::to_string(statements) + " statements", "us/program", statements, 1e6);
    for (int statements : {100, 1000, 10000})
        add(name + ", a statement of " + std::to_string(statements), "ns/statement", statements, 1e9 / statements);
}

} // namespace

std::vector<Row> translation()
{
    std::vector<Row> rows;
    addRows(rows, "translate", translate);
    addRows(rows, "normalise", normalise);
    return rows;
}

} // namespace micro
