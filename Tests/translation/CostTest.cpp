// SPDX-License-Identifier: Apache-2.0
// The cost of a translation grows with the program's length and not faster.
#include "Translate.h"

#include <algorithm>
#include <chrono>

namespace
{

std::string programOf(int statements)
{
    std::string program = "!!ARBfp1.0\nTEMP R0, R1;\n";
    for (int i = 0; i < statements; ++i)
        program += "MAD_SAT R0.xyz, R1, program.local[" + std::to_string(i % 96) + "].x, fragment.texcoord[1];\n";
    return program;
}

// The best of a few runs: other work on the machine only ever adds.
double secondsPerStatement(int statements)
{
    const std::string program = programOf(statements);
    ZALMetal::ShaderString shader;
    shader.Append(program.data(), static_cast<unsigned>(program.size()));
    double best = 1e9;
    for (int run = 0; run < 5; ++run) {
        ZALMetal::ShaderBindings bindings;
        ZALM::String source;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(shader.GLSLTranslation(source, bindings), 0);
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best / statements;
}

TEST(Cost, GrowsLinearlyWithTheProgram)
{
    const double few = secondsPerStatement(1000);
    const double many = secondsPerStatement(20000);
    RecordProperty("NanosecondsPerStatementAt1000", static_cast<int>(few * 1e9));
    RecordProperty("NanosecondsPerStatementAt20000", static_cast<int>(many * 1e9));
    EXPECT_LT(many, 4 * few); // quadratic growth would make it twenty times
}

TEST(Cost, ALongOperandListIsReadInOnePass)
{
    std::string program = "!!ARBfp1.0\nMOV R0, R1";
    for (int i = 0; i < 200000; ++i)
        program += ", R2";
    EXPECT_EQ(translation::translate(program).body, "  R0 = R1;\n");
}

TEST(Cost, ALongOperandIsReadInOnePass)
{
    const std::string blanks(200000, ' ');
    EXPECT_EQ(translation::bodyOf("MOV R0, c[" + blanks + "1" + blanks + "]" + blanks + ";"), "  R0 = c[1];\n");

    std::string dots = "MOV R0, R1";
    for (int i = 0; i < 200000; ++i)
        dots += ".x";
    EXPECT_EQ(translation::translateFragment(dots).status, 0);
}

} // namespace
