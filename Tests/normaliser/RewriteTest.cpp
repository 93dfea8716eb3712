// SPDX-License-Identifier: Apache-2.0
// Every rewriting, text for text.
#include "normaliser/Normalise.h"

namespace
{

using namespace normaliser;

// ---- Layout --------------------------------------------------------------------------------------------------------

TEST(NormaliseLayout, JoinsStatementsThatStandOnSeveralLines)
{
    EXPECT_EQ(fragment("TEMP a,\n  b;\nADD a,\n\tb ,\r\n b\n;"), "TEMP a, b;\nADD a, b, b;\n");
}

TEST(NormaliseLayout, PartsStatementsThatShareALine)
{
    EXPECT_EQ(fragment("TEMP a; MOV a, 1;; MOV a, a;"), "TEMP a;\nMOV a, 1.0;\nMOV a, a;\n");
}

TEST(NormaliseLayout, TakesOutComments)
{
    EXPECT_EQ(fragment("# TEMP b;\nTEMP a; # END\nMOV a, # 1;\n 2;"), "TEMP a;\nMOV a, 2.0;\n");
}

TEST(NormaliseLayout, LeavesOutWhatStandsBehindTheEnd)
{
    EXPECT_EQ(rewrite("!!ARBfp1.0\nEND MOV a, b;").program, "!!ARBfp1.0\nEND\n");
}

TEST(NormaliseLayout, KeepsEveryHeaderAndSkipsWhatStandsBeforeIt)
{
    for (const char* header : {"!!ARBvp1.0", "!!ARBfp1.0", "!!NVvp4.0", "!!NVfp4.0"})
        EXPECT_EQ(rewrite(std::string(" \n") + header + " END").program, std::string(header) + "\nEND\n");
}

TEST(NormaliseLayout, WritesNumbersAsTheShadingLanguageReadsThem)
{
    EXPECT_EQ(fragment("TEMP a;\nMAD a, 2, -.5, +1e3;"), "TEMP a;\nMAD a, 2.0, -.5, 1e3;\n");
}

TEST(NormaliseLayout, LeavesOutSwizzlesOfNumbers)
{
    EXPECT_EQ(fragment("TEMP a;\nMAD a, 2.x, -1.5.xyzw, 1.e1;\nPOW a.x, 2.e-1.x, .5.w;"),
              "TEMP a;\nMAD a, 2.0, -1.5, 1.e1;\nPOW a.x, 2.e-1, .5;\n");
}

TEST(NormaliseLayout, WritesColourLettersAsPlaces)
{
    EXPECT_EQ(fragment("TEMP a;\nMOV a.rgb, a.bgra;\nMOV a.xyzw, a.xyzw;"), "TEMP a;\nMOV a.xyz, a.zyxw;\nMOV a, a;\n");
}

// ---- Names ---------------------------------------------------------------------------------------------------------

TEST(NormaliseNames, PutsAttributesInPlace)
{
    EXPECT_EQ(vertex("ATTRIB p = vertex.position;\nTEMP a;\nADD a.x, p.y, -p;"),
              "TEMP a;\nADD a.x, vertex.attrib[0].y, -vertex.attrib[0];\n");
}

TEST(NormaliseNames, PutsOutputsInPlace)
{
    EXPECT_EQ(vertex("OUTPUT o = result.texcoord[3];\nMOV o.xy, 0;"), "MOV result.texcoord[3].xy, 0.0;\n");
}

TEST(NormaliseNames, PutsAliasesInPlace)
{
    EXPECT_EQ(vertex("TEMP a;\nALIAS b = a;\nALIAS c = b;\nALIAS o = result.position;\nMOV c, b;\nMOV o, c;"),
              "TEMP a;\nMOV a, a;\nMOV result.position, a;\n");
}

TEST(NormaliseNames, GivesConventionalAttributesTheirNumbers)
{
    EXPECT_EQ(vertex("TEMP a;\nMOV a, vertex.position;\nMOV a.xyz, vertex.normal;\nMOV a, vertex.color;\n"
                     "MOV a, vertex.color.primary;\nMOV a, vertex.texcoord;\nMOV a, vertex.texcoord[7];"),
              "TEMP a;\nMOV a, vertex.attrib[0];\nMOV a.xyz, vertex.attrib[2];\nMOV a, vertex.attrib[3];\n"
              "MOV a, vertex.attrib[3];\nMOV a, vertex.attrib[8];\nMOV a, vertex.attrib[15];\n");
}

TEST(NormaliseNames, GivesTheNormalItsFourthComponentWhereItIsRead)
{
    EXPECT_EQ(vertex("TEMP a;\nDP3 a.x, vertex.normal, a;\nMOV a.x, vertex.normal.w;\nDP4 a.y, vertex.normal, a;"),
              "TEMP zal_normal;\nMOV zal_normal.xyz, vertex.attrib[2];\nMOV zal_normal.w, 1.0;\nTEMP a;\n"
              "DP3 a.x, vertex.attrib[2], a;\nMOV a.x, zal_normal.w;\nDP4 a.y, zal_normal, a;\n");
}

TEST(NormaliseNames, GivesConventionalResultsTheirPlainNames)
{
    EXPECT_EQ(
        vertex("MOV result.color.primary, 0;\nMOV result.color.front, 0;\nMOV result.color.front.primary.x, 0;\n"
               "MOV result.texcoord, 0;"),
        "MOV result.color, 0.0;\nMOV result.color, 0.0;\nMOV result.color.x, 0.0;\nMOV result.texcoord[0], 0.0;\n");
}

TEST(NormaliseNames, GivesConventionalInputsTheirPlainNames)
{
    EXPECT_EQ(fragment("TEMP a;\nMOV a, fragment.color.primary;\nMOV a, fragment.texcoord;\nMOV a, fragment.position;\n"
                       "MOV result.color[2], a;\nMOV result.depth.z, a.x;"),
              "TEMP a;\nMOV a, fragment.color;\nMOV a, fragment.texcoord[0];\nMOV a, fragment.position;\n"
              "MOV result.color[2], a;\nMOV result.depth.z, a.x;\n");
}

TEST(NormaliseNames, SendsResultsThatNothingReadsToATemporary)
{
    EXPECT_EQ(vertex("MOV result.fogcoord, 1;\nMOV result.color.secondary.xyz, 0;"),
              "TEMP zal_unread;\nMOV zal_unread, 1.0;\nMOV zal_unread.xyz, 0.0;\n");
}

TEST(NormaliseNames, ReplacesWordsOfTheShadingLanguage)
{
    EXPECT_EQ(fragment("TEMP half, in, texture3, R0;\nADD half, in, texture3;\nMOV R0, half.x;"),
              "TEMP zal_half, zal_in, zal_texture3, R0;\nADD zal_half, zal_in, zal_texture3;\nMOV R0, zal_half.x;\n");
}

TEST(NormaliseNames, ReplacesNamesOfLoopVariablesWhereThereAreLoops)
{
    EXPECT_EQ(fragment("TEMP i;\nMOV i, 1;"), "TEMP i;\nMOV i, 1.0;\n");
    EXPECT_EQ(fragment4("TEMP i;\nREP 4;\nMOV i, 1;\nENDREP;"), "TEMP zal_i;\nREP 4.0;\nMOV zal_i, 1.0;\nENDREP;\n");
}

TEST(NormaliseNames, KeepsOwnNamesApartFromTheProgramsNames)
{
    EXPECT_EQ(fragment("TEMP zal_c0;\nMOV zal_c0, {1};"),
              "PARAM zal1_c0 = { 1.0, 0.0, 0.0, 1.0 };\nTEMP zal_c0;\nMOV zal_c0, zal1_c0;\n");
}

TEST(NormaliseNames, DeclaresBeforeTheBlockWhatABlockDeclares)
{
    EXPECT_EQ(fragment4("IF NE;\nTEMP a;\nMOV a, 1;\nENDIF;\nTEMP b;\nMOV b, a;"),
              "TEMP a;\nIF NE;\nMOV a, 1.0;\nENDIF;\nTEMP b;\nMOV b, a;\n");
}

// ---- Parameters ----------------------------------------------------------------------------------------------------

TEST(NormaliseParameters, PutsGlobalsBehindTheLocals)
{
    EXPECT_EQ(
        vertex("PARAM p = program.env[3];\nTEMP a;\nADD a, p, program.env[127].x;\nADD a, a, program.local[127];"),
        "PARAM p = program.local[131];\nTEMP a;\nADD a, p, program.local[255].x;\nADD a, a, program.local[127];\n");
}

TEST(NormaliseParameters, KeepsRangesOfThem)
{
    EXPECT_EQ(vertex("PARAM c[] = { program.env[0..95], program.local[4..4] };"),
              "PARAM c[97] = { program.local[128..223], program.local[4] };\n");
}

TEST(NormaliseParameters, FillsVectorsUp)
{
    EXPECT_EQ(
        fragment("PARAM a = 2;\nPARAM b = {1};\nPARAM c = {1, -2};\nPARAM d = {1, 2, +3};\nPARAM e = {1, 2, 3, 4e-2};"),
        "PARAM a = { 2.0, 2.0, 2.0, 2.0 };\nPARAM b = { 1.0, 0.0, 0.0, 1.0 };\nPARAM c = { 1.0, -2.0, 0.0, 1.0 };\n"
        "PARAM d = { 1.0, 2.0, 3.0, 1.0 };\nPARAM e = { 1.0, 2.0, 3.0, 4e-2 };\n");
}

TEST(NormaliseParameters, FillsElementsUp)
{
    EXPECT_EQ(fragment("PARAM a[3] = { {1, 2}, 3, program.local[0] };"),
              "PARAM a[3] = { { 1.0, 2.0, 0.0, 1.0 }, { 3.0, 3.0, 3.0, 3.0 }, program.local[0] };\n");
}

TEST(NormaliseParameters, MovesVectorsOutOfInstructionsAndWritesEqualOnesOnce)
{
    EXPECT_EQ(fragment("TEMP a;\nMAD a, {1, 2, 3}, -{1, 2, 3, 1}.wzyx, {0.5}.x;"),
              "PARAM zal_c0 = { 1.0, 2.0, 3.0, 1.0 };\nPARAM zal_c1 = { 0.5, 0.0, 0.0, 1.0 };\n"
              "TEMP a;\nMAD a, zal_c0, -zal_c0.wzyx, zal_c1.x;\n");
}

// ---- Matrices ------------------------------------------------------------------------------------------------------

TEST(NormaliseMatrices, WritesWholeMatricesAsRows)
{
    EXPECT_EQ(vertex("PARAM m[4] = { state.matrix.mvp };"),
              "PARAM m[4] = { state.matrix.mvp.row[0], state.matrix.mvp.row[1], state.matrix.mvp.row[2], "
              "state.matrix.mvp.row[3] };\n");
}

TEST(NormaliseMatrices, WritesRangesAsRows)
{
    EXPECT_EQ(vertex("PARAM m[3] = { state.matrix.texture[2].invtrans.row[1..2], state.matrix.texture.row[0] };"),
              "PARAM m[3] = { state.matrix.texture[2].invtrans.row[1], state.matrix.texture[2].invtrans.row[2], "
              "state.matrix.texture[0].row[0] };\n");
}

TEST(NormaliseMatrices, NamesTheOnlyModelviewWithoutItsNumber)
{
    EXPECT_EQ(vertex("PARAM r = state.matrix.modelview[0].transpose.row[3];"),
              "PARAM r = state.matrix.modelview.transpose.row[3];\n");
}

TEST(NormaliseMatrices, ReadsRowsOfTheInverseModelviewFromAnArray)
{
    EXPECT_EQ(
        vertex("PARAM all[4] = { state.matrix.modelview.inverse };\nPARAM r = state.matrix.modelview.inverse.row[2];\n"
               "TEMP a;\nDP4 a.x, state.matrix.modelview.inverse.row[1], a;"),
        "PARAM zal_inverse[4] = { state.matrix.modelview.inverse };\n"
        "PARAM all[4] = { state.matrix.modelview.inverse };\nPARAM r = zal_inverse[2];\n"
        "TEMP a;\nDP4 a.x, zal_inverse[1], a;\n");
}

TEST(NormaliseMatrices, WritesPositionInvarianceAsFourProducts)
{
    EXPECT_EQ(vertex("OPTION ARB_position_invariant;\nMOV result.color, vertex.color;"),
              "DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];\n"
              "DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];\n"
              "DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];\n"
              "DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];\n"
              "MOV result.color, vertex.attrib[3];\n");
}

TEST(NormaliseOptions, LeavesOutHints)
{
    EXPECT_EQ(fragment("OPTION ARB_precision_hint_fastest;\nOPTION ATI_draw_buffers;"), "");
}

// ---- Instructions --------------------------------------------------------------------------------------------------

// Behind "TEMP a, b, c;", the scratch register's declaration left out.
std::string instruction(const std::string& statement)
{
    const std::string declared = "TEMP a, b, c;\n";
    std::string body = fragment(declared + statement);
    const size_t at = body.find(declared);
    return at == std::string::npos ? body : body.substr(at + declared.size());
}

TEST(NormaliseInstructions, ScratchRegisterIsDeclaredOnce)
{
    EXPECT_EQ(fragment("TEMP a;\nDPH a.x, a, a;\nTXP a, a, texture[0], 2D;").find("TEMP zal_scratch;\nTEMP a;\n"), 0u);
}

TEST(NormaliseInstructions, ProjectedSampling)
{
    EXPECT_EQ(instruction("TXP_SAT a.xy, -b.xyzx, texture[3], CUBE;"),
              "RCP zal_scratch.w, -b.x;\nMUL zal_scratch.xyz, -b.xyzx, zal_scratch.w;\n"
              "TEX_SAT a.xy, zal_scratch, texture[3], CUBE;\n");
}

TEST(NormaliseInstructions, SamplingNamesItsUnit)
{
    EXPECT_EQ(instruction("TEX a, b, texture, RECT;"), "TEX a, b, texture[0], RECT;\n");
}

TEST(NormaliseInstructions, HomogeneousProduct)
{
    EXPECT_EQ(instruction("DPH_SAT a.xz, b, -c.yzwx;"),
              "DP3 zal_scratch.x, b, -c.yzwx;\nADD_SAT a.xz, zal_scratch.x, -c.x;\n");
}

TEST(NormaliseInstructions, ExtendedSwizzle)
{
    EXPECT_EQ(instruction("SWZ a, b, x, -y, 0, 1;"), "MOV a.z, 0.0;\nMOV a.w, 1.0;\nMOV a.x, b.x;\nMOV a.y, -b.y;\n");
    EXPECT_EQ(instruction("SWZ_SAT a.xy, b, w, z, 0, 1;"), "MOV_SAT a.xy, b.wzww;\n");
    EXPECT_EQ(instruction("SWZ a, b, r, g, b, a;"), "MOV a, b;\n");
    EXPECT_EQ(instruction("SWZ a.w, b, x, x, x, -1;"), "MOV a.w, -1.0;\n");
}

TEST(NormaliseInstructions, ExtendedSwizzleOfItsOwnRegister)
{
    EXPECT_EQ(instruction("SWZ a.xw, a, y, 0, 0, -x;"),
              "MOV zal_scratch.x, a.y;\nMOV zal_scratch.w, -a.x;\nMOV a.xw, zal_scratch;\n");
}

TEST(NormaliseInstructions, LightingFactors)
{
    EXPECT_EQ(instruction("LIT a, -b;"),
              "MAX zal_scratch.y, -b.y, 0.0;\nMAX zal_scratch.w, -b.w, -127.9961;\nMIN zal_scratch.w, zal_scratch.w, "
              "127.9961;\n"
              "POW zal_scratch.z, zal_scratch.y, zal_scratch.w;\nCMP zal_scratch.z, b.x, zal_scratch.z, 0.0;\n"
              "MAX zal_scratch.y, -b.x, 0.0;\nMOV a.x, 1.0;\nMOV a.y, zal_scratch.y;\nMOV a.z, zal_scratch.z;\nMOV "
              "a.w, 1.0;\n");
    EXPECT_EQ(instruction("LIT_SAT a.xy, b.wxyz;"),
              "MAX zal_scratch.y, b.w, 0.0;\nMOV a.x, 1.0;\nMOV_SAT a.y, zal_scratch.y;\n");
}

TEST(NormaliseInstructions, SineAndCosine)
{
    EXPECT_EQ(instruction("SCS a, b.z;"), "COS a.x, b.z;\nSIN a.y, b.z;\n");
    EXPECT_EQ(instruction("SCS_SAT a.y, a.x;"), "SIN_SAT a.y, a.x;\n");
    EXPECT_EQ(instruction("SCS a.xy, -a.x;"),
              "MOV zal_scratch.x, -a.x;\nCOS a.x, zal_scratch.x;\nSIN a.y, zal_scratch.x;\n");
}

TEST(NormaliseInstructions, Distance)
{
    EXPECT_EQ(instruction("DST a, b, c.wzyx;"), "MOV a.x, 1.0;\nMUL a.y, b.y, c.z;\nMOV a.z, b.z;\nMOV a.w, c.x;\n");
    EXPECT_EQ(instruction("DST_SAT a.yw, a, b;"),
              "MUL_SAT zal_scratch.y, a.y, b.y;\nMOV_SAT zal_scratch.w, b.w;\nMOV a.yw, zal_scratch;\n");
}

TEST(NormaliseInstructions, Logarithm)
{
    EXPECT_EQ(instruction("LOG a, b.y;"),
              "ABS zal_scratch.x, b.y;\nLG2 zal_scratch.z, zal_scratch.x;\nFLR zal_scratch.y, zal_scratch.z;\n"
              "EX2 zal_scratch.w, -zal_scratch.y;\nMUL zal_scratch.w, zal_scratch.x, zal_scratch.w;\n"
              "MOV a.x, zal_scratch.y;\nMOV a.y, zal_scratch.w;\nMOV a.z, zal_scratch.z;\nMOV a.w, 1.0;\n");
}

TEST(NormaliseInstructions, Exponential)
{
    EXPECT_EQ(instruction("EXP_SAT a, -b.y;"),
              "MOV zal_scratch.x, -b.y;\nFLR zal_scratch.y, zal_scratch.x;\nEX2_SAT a.x, zal_scratch.y;\n"
              "FRC_SAT a.y, zal_scratch.x;\nEX2_SAT a.z, zal_scratch.x;\nMOV a.w, 1.0;\n");
}

TEST(NormaliseInstructions, CrossProductHasThreeComponents)
{
    EXPECT_EQ(instruction("XPD a, b, c;"), "XPD a.xyz, b, c;\n");
    EXPECT_EQ(instruction("XPD_SAT a.yw, b.yzxw, c;"), "XPD_SAT a.y, b.yzxw, c;\n");
    EXPECT_EQ(instruction("XPD a.w, b, c;"), "");
}

TEST(NormaliseInstructions, ReciprocalRootIsOfTheAbsoluteValue)
{
    EXPECT_EQ(instruction("RSQ a.x, -b.y;"), "RSQ a.x, |b.y|;\n");
    EXPECT_EQ(instruction("RSQ a.x, -4;"), "RSQ a.x, 4.0;\n");
}

TEST(NormaliseInstructions, InequalityOfVectors)
{
    EXPECT_EQ(instruction("SNE a.xy, b, c;"), "SEQ zal_scratch.xy, b, c;\nSUB a.xy, 1.0, zal_scratch;\n");
    EXPECT_EQ(instruction("SNE a.y, b, 2;"), "SNE a.y, b.y, 2.0;\n");
    EXPECT_EQ(instruction("SNE a.y, b.x, c.z;"), "SNE a.y, b.x, c.z;\n");
}

TEST(NormaliseInstructions, WhatNewerProgramsAdd)
{
    EXPECT_EQ(instruction("SLE a, b, -c;"), "SGE a, -c, b;\n");
    EXPECT_EQ(instruction("STR a.x;\nSFL a.y;"), "MOV a.x, 1.0;\nMOV a.y, 0.0;\n");
    EXPECT_EQ(instruction("CEIL_SAT a.xy, b;"), "FLR zal_scratch.xy, -b;\nMOV_SAT a.xy, -zal_scratch;\n");
    EXPECT_EQ(instruction("DIV a, b, c.y;"), "RCP zal_scratch.w, c.y;\nMUL a, b, zal_scratch.w;\n");
    EXPECT_EQ(instruction("NRM a.xyz, b;"),
              "DP3 zal_scratch.w, b, b;\nRSQ zal_scratch.w, |zal_scratch.w|;\nMUL a.xyz, b, zal_scratch.w;\n");
}

TEST(NormaliseInstructions, ModifiersBecomeWhatTheDialectHas)
{
    EXPECT_EQ(instruction("ADD.SAT a.x, b, c;\nMUL.F a, b, c;"), "ADD_SAT a.x, b, c;\nMUL a, b, c;\n");
    EXPECT_EQ(instruction("SLTC a.x, b, c;\nMOV.CC0 a, b;"), "SLT a.x, b, c;\nMOVC a.x, a.x;\nMOV a, b;\nMOVC a, a;\n");
}

TEST(NormaliseInstructions, EveryOtherInstructionStaysAsItIs)
{
    const std::string program =
        "UINT TEMP U0, U1;\nTEMP a, b;\nABS a, b;\nADD_SAT a.xy, b, -a.x;\nAND.U U0, U1, 255.0;\nCMP a, b, a, b;\nCOS "
        "a.x, b.x;\n"
        "DP2 a.x, a, b;\nDP3 a.x, a, b;\nDP4 a.x, a, b;\nEX2 a.x, b.x;\nFLR a, b;\nFLR.U U0, b.x;\nFRC a, b;\nI2F.U a, "
        "U0;\n"
        "MOVC a.x, b.x;\nIF NE.x;\nKIL a;\nELSE;\nKIL -a.x;\nENDIF;\nREP a.x;\nCONT;\nBRK;\nENDREP;\nLG2 a.x, b.x;\n"
        "LRP a, b, a, b;\nMAD a, b, a, |b|;\nMAX a, a, b;\nMIN a, a, b;\nMOV a, b;\nMUL a, a, b;\nPK4UB.U U0, a;\n"
        "POW a.x, b.x, a.x;\nRCP a.x, b.x;\nSEQ a, a, b;\nSGE a, a, b;\nSGT a, a, b;\nSHR.U U0, U1, 8.0;\nSIN a.x, "
        "b.x;\n"
        "SLT a, a, b;\nSUB a, a, b;\nTEX a, b, texture[31], 3D;\nUP4UB a, b;\nXPD a.xyz, a, b;\n";
    EXPECT_EQ(fragment4(program), program);
}

} // namespace
