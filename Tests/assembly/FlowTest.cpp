// SPDX-License-Identifier: Apache-2.0
// Conditions, loops, integers, kills, scalar comparisons and samples of every target, on the library and in the interpreter.
#include "assembly/Machine.h"

namespace assembly {
namespace {

constexpr double Bound = 2e-5;

struct Case
{
    const char* name;
    const char* body; // leaves its result in R0
};

void PrintTo(const Case& one, std::ostream* out) { *out << one.name; }

constexpr Case Cases[] = {
    {"EveryCondition", "MOV R0, 0.0;\nMOVC R1, program.local[0];\n"
                       "IF EQ.x;\nADD R0.x, R0, 1.0;\nENDIF;\nIF GE.y;\nADD R0.x, R0, 2.0;\nENDIF;\nIF GT.z;\nADD R0.x, R0, 4.0;\nENDIF;\n"
                       "IF LE.w;\nADD R0.x, R0, 8.0;\nENDIF;\nIF LT.x;\nADD R0.x, R0, 16.0;\nENDIF;\nIF NE.y;\nADD R0.x, R0, 32.0;\nENDIF;\n"},
    {"ElseBranches", "MOVC R1.x, program.local[2].x;\nIF GT.x;\nMOV R0, program.local[3];\nELSE;\nMOV R0, program.local[4];\nENDIF;\n"},
    {"NestedBranches", "MOV R0, 1.0;\nMOVC R1.xy, program.local[1];\nIF LT.x;\nIF LT.y;\nMOV R0, 2.0;\nELSE;\nMOV R0, 3.0;\nENDIF;\nELSE;\nMUL R0, R0, program.local[5];\nENDIF;\n"},
    {"NestedLoops", "MOV R0, 0.0;\nREP 3;\nADD R0.x, R0, 1.0;\nREP 2;\nADD R0.y, R0, 1.0;\nENDREP;\nENDREP;\nREP 4;\nADD R0.z, R0, 1.0;\nENDREP;\n"},
    {"LoopCountFromAParameter", "MOV R0, 0.0;\nREP program.local[9].x;\nADD R0, R0, program.local[0];\nENDREP;\n"},
    {"BreakAndContinue", "MOV R0, 0.0;\nREP 10;\nADD R0.x, R0, 1.0;\nSUB R1.x, 5.5, R0.x;\nMOVC R1.x, R1.x;\nIF LT.x;\nBRK;\nENDIF;\nSUB R1.y, R0.x, 2.5;\nMOVC R1.y, R1.y;\nIF LT.y;\nCONT;\nENDIF;\nADD R0.y, R0, 1.0;\nENDREP;\n"},
    {"PackedBytes", "UINT TEMP word, part;\nPK4UB.U word.x, program.local[8];\nSHR.U part.x, word.x, 8;\nAND.U part.x, part.x, 255;\nI2F.U R0.x, part.x;\nAND.U part.y, word.x, 65535;\nI2F.U R0.y, part.y;\nMUL R0, R0, 0.001;\nMOV R0.zw, 0.0;\n"},
    {"UnpackedBytes", "UP4UB R0, program.local[3].y;\n"},
    {"WholeNumbers", "UINT TEMP word;\nMUL R1.x, program.local[12].x, 40.0;\nFLR.U word, R1.x;\nI2F.U R0.x, word.x;\nMOV R0.yzw, 0.25;\n"},
    {"ScalarComparisons", "SEQ R0.x, program.local[0].x, program.local[0].x;\nSNE R0.y, program.local[0].x, program.local[1].x;\nSGT R0.z, program.local[2].y, 0;\nSLT R0.w, program.local[2].y, 0;\n"},
    {"ScalarMoves", "MOV R0, 0.0;\nMOV R0.x, program.local[1].w;\nMOV R0.y, -program.local[2].x;\nMOV_SAT R0.z, program.local[3].y;\nCMP R0.w, program.local[4].x, 1.5, program.local[5].y;\n"},
    {"Parameters", "PARAM table[4] = { { 1, 2, 3, 4 }, program.local[2], program.local[3..4] };\nPARAM one = 0.5;\nPARAM some = { 0.25, -1 };\nMAD R0, table[1], one, some;\nADD R0, R0, table[0];\nMUL R1, table[2], table[3];\nADD R0, R0, R1;\n"},
    {"EveryTarget", "TEX R0, fragment.texcoord[0], texture[0], 2D;\nTEX R1, fragment.texcoord[1], texture[1], 3D;\nADD R0, R0, R1;\nMUL R1, fragment.texcoord[2], 4.0;\nTEX R1, R1, texture[2], RECT;\nADD R0, R0, R1;\n"
                    "TEX R1, program.local[0], texture[10], CUBE;\nADD R0, R0, R1;\nTEX_SAT R1.xy, fragment.texcoord[3], texture[0], 2D;\nADD R0.xy, R0, R1;\n"},
    {"Kills", "MOV R0, program.local[0];\nKIL program.local[1];\n"},
    {"ScalarKills", "MOV R0, program.local[0];\nKIL program.local[1].z;\n"},
    {"FragmentPosition", "MOV R0, fragment.position;\nMOV R0.w, 1.0;\n"},
};

class Flow : public Machine, public testing::WithParamInterface<Case>
{
};

INSTANTIATE_TEST_SUITE_P(Programs, Flow, testing::ValuesIn(Cases), [](const auto& one) { return std::string(one.param.name); });

TEST_P(Flow, AgreesWithTheInterpreter)
{
    std::string text = std::string("!!NVfp4.0\nTEMP R0, R1;\n") + GetParam().body + "MOV result.color, R0;\nEND\n";
    ASSERT_EQ(load(PassVertex, text), "") << text;
    std::mt19937 random(3);
    for (int round = 0; round < 12; ++round) {
        change(random);
        if (round == 0) inputs().registers["program.local[0]"].v = {0, -0.0, 1, -1};
        Outcome wanted = interpret(text, fragmentInputs());
        auto got = draw();
        ASSERT_EQ(got.has_value(), !wanted.killed) << "round " << round;
        if (got) expectClose(wanted.results.at("result.color[0]"), (*got)[0], Bound, "round " + std::to_string(round));
    }
}

} // namespace
} // namespace assembly
