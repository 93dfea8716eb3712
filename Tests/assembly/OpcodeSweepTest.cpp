// SPDX-License-Identifier: Apache-2.0
// Every opcode with masks, swizzles, negation, absolute values, numbers and saturation, in both kinds of programs, on the
// library and in the interpreter.
#include "assembly/Machine.h"

#include <algorithm>

namespace assembly {
namespace {

constexpr double Bound = 2e-5;
constexpr size_t CasesPerProgram = 8; // attachments

enum class Width { Vector, Scalar, Three }; // of sources; Three needs the mask of the first three

struct Opcode
{
    const char* name;
    int sources;
    Width width;
    bool saturates;
    bool positive; // defined for such sources only
};

void PrintTo(const Opcode& opcode, std::ostream* out) { *out << opcode.name; }

constexpr Opcode Opcodes[] = {
    {"ABS", 1, Width::Vector, true, false},  {"ADD", 2, Width::Vector, true, false}, {"CMP", 3, Width::Vector, true, false}, {"COS", 1, Width::Scalar, true, false},
    {"DP2", 2, Width::Vector, true, false},  {"DP3", 2, Width::Vector, true, false}, {"DP4", 2, Width::Vector, true, false}, {"EX2", 1, Width::Scalar, true, false},
    {"EXP", 1, Width::Scalar, true, false},  {"FLR", 1, Width::Vector, true, false}, {"FRC", 1, Width::Vector, true, false}, {"LG2", 1, Width::Scalar, true, true},
    {"LRP", 3, Width::Vector, true, false},  {"MAD", 3, Width::Vector, true, false}, {"MAX", 2, Width::Vector, true, false}, {"MIN", 2, Width::Vector, true, false},
    {"MOV", 1, Width::Vector, true, false},  {"MUL", 2, Width::Vector, true, false}, {"POW", 2, Width::Scalar, true, true},  {"RCP", 1, Width::Scalar, true, true},
    {"RSQ", 1, Width::Scalar, true, true},   {"SEQ", 2, Width::Vector, false, false}, {"SGE", 2, Width::Vector, false, false}, {"SGT", 2, Width::Vector, false, false},
    {"SIN", 1, Width::Scalar, true, false},  {"SLT", 2, Width::Vector, false, false}, {"SUB", 2, Width::Vector, true, false}, {"XPD", 2, Width::Three, true, false},
    {"MOVC", 1, Width::Vector, true, false},
};

constexpr const char* Masks[] = {"", ".x", ".xy", ".xyz", ".w", ".yz", ".xw", ".yzw", ".z", ".xyzw"};

std::string pick(std::mt19937& random, std::initializer_list<const char*> choices) { return *(choices.begin() + random() % choices.size()); }

/// A source operand; registers 8 to 15 hold positive values.
std::string source(const Opcode& opcode, std::mt19937& random, bool maySign)
{
    if (random() % 8 == 0 && opcode.width != Width::Three) return pick(random, {"2", "0.5", "1.25e0", ".75", "3.0"});
    std::string name = "program.local[" + std::to_string((opcode.positive ? 8 : 0) + random() % 8) + "]";
    if (opcode.width == Width::Scalar) name += pick(random, {".x", ".y", ".z", ".w"});
    else if (opcode.width == Width::Vector) name += pick(random, {"", "", ".wzyx", ".yzxw", ".z", ".xxyy", ".rgba", ".bgra"});
    else name += pick(random, {"", ".yzxw", ".zyxw"});
    if (random() % 5 == 0) name = "|" + name + "|";
    return maySign && !opcode.positive && random() % 3 == 0 ? "-" + name : name;
}

std::string statement(const Opcode& opcode, bool saturates, const std::string& destination, std::mt19937& random)
{
    std::string text = std::string(opcode.name) + (saturates ? "_SAT " : " ") + destination;
    for (int i = 0; i < opcode.sources; ++i) text += ", " + source(opcode, random, true);
    return text + ";\n";
}

std::vector<std::string> casesOf(const Opcode& opcode)
{
    std::mt19937 random(static_cast<unsigned>(opcode.name[0] * 7 + opcode.name[1] * 31 + opcode.name[2]));
    std::vector<std::string> cases;
    for (const char* mask : Masks)
        for (bool saturates : {false, true}) {
            if (saturates && !opcode.saturates) continue;
            if (opcode.width == Width::Three && std::string_view(mask) != ".xyz") continue;
            for (int i = 0; i < 2; ++i) cases.push_back(statement(opcode, saturates, std::string("R0") + mask, random));
        }
    while (cases.size() % CasesPerProgram) cases.push_back(cases[cases.size() / 2]);
    return cases;
}

class Sweep : public Machine, public testing::WithParamInterface<Opcode>
{
protected:
    /// Eight cases in one program, each of which leaves its register in a result.
    static std::string programOf(const std::string& head, const std::string* cases, const std::function<std::string(size_t)>& result)
    {
        std::string text = head + "TEMP R0;\n";
        for (size_t i = 0; i < CasesPerProgram; ++i) text += "MOV R0, program.local[15];\n" + cases[i] + "MOV " + result(i) + ", R0;\n";
        return text + "END\n";
    }

    void expectResults(const std::string& text, const Inputs& in, const std::string* cases, const std::function<std::string(size_t)>& result)
    {
        Outcome wanted = interpret(text, in);
        auto got = draw();
        ASSERT_TRUE(got.has_value()) << text;
        for (size_t i = 0; i < CasesPerProgram; ++i) expectClose(wanted.results.at(result(i)), (*got)[i], Bound, cases[i]);
    }
};

INSTANTIATE_TEST_SUITE_P(Opcodes, Sweep, testing::ValuesIn(Opcodes), [](const auto& one) { return std::string(one.param.name); });

TEST_P(Sweep, AgreesInFragmentPrograms)
{
    auto cases = casesOf(GetParam());
    auto result = [](size_t i) { return "result.color[" + std::to_string(i) + "]"; };
    for (size_t first = 0; first < cases.size(); first += CasesPerProgram) {
        std::string text = programOf("!!ARBfp1.0\nOPTION ARB_draw_buffers;\n", &cases[first], result);
        ASSERT_EQ(load(PassVertex, text), "") << text;
        std::mt19937 random(static_cast<unsigned>(first));
        for (int round = 0; round < 3; ++round) {
            change(random);
            expectResults(text, fragmentInputs(), &cases[first], result);
        }
    }
}

TEST_P(Sweep, AgreesInVertexPrograms)
{
    auto cases = casesOf(GetParam());
    auto result = [](size_t i) { return "result.texcoord[" + std::to_string(i) + "]"; };
    std::string show = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\n";
    for (int i = 0; i < 8; ++i) show += "MOV result.color[" + std::to_string(i) + "], fragment.texcoord[" + std::to_string(i) + "];\n";
    for (size_t first = 0; first < cases.size(); first += CasesPerProgram) {
        std::string text = programOf("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\n", &cases[first], result);
        ASSERT_EQ(load(text, show + "END\n"), "") << text;
        std::mt19937 random(static_cast<unsigned>(first));
        change(random);
        expectResults(text, inputs(), &cases[first], result);
    }
}

} // namespace
} // namespace assembly
