// SPDX-License-Identifier: Apache-2.0
// The cost of a translation grows with the program's length and not faster.
#include "Translate.h"

#include <algorithm>
#include <string_view>

namespace
{

std::string programOf(int statements)
{
    std::string program = "!!ARBfp1.0\nTEMP R0, R1;\n";
    for (int i = 0; i < statements; ++i)
        program += "MAD_SAT R0.xyz, R1, program.local[" + std::to_string(i % 96) + "].x, fragment.texcoord[1];\n";
    return program;
}

// About a second's work in a cost that grows with the length; one that grew with its square would outlast the test's
// time.
TEST(Cost, AVeryLongProgramIsTranslatedInItsLength)
{
    constexpr int Statements = 400000;
    const std::string program = programOf(Statements);
    ZALMetal::ShaderString shader;
    shader.Append(program.data(), static_cast<unsigned>(program.size()));
    ZALMetal::ShaderBindings bindings;
    ZALM::String source;
    ASSERT_EQ(shader.GLSLTranslation(source, bindings), 0);
    const std::string_view text(source.Buffer(), static_cast<size_t>(source.GetStringBytes()));
    EXPECT_GT(std::count(text.begin(), text.end(), '\n'), Statements);
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
