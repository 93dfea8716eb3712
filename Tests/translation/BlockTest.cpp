// SPDX-License-Identifier: Apache-2.0
// Blocks, loops, indentation, and where the scratch vector of the packing opcodes is declared.
#include "Translate.h"

namespace
{

using translation::bodyOf;
using translation::expectLines;

TEST(If, ComparesTheConditionRegisterWithZero)
{
    EXPECT_EQ(bodyOf("IF NE.x;\nMOV R0, R1;\nENDIF;"), "  if( CC0.x != 0.0 )\n"
                                                       "  {\n"
                                                       "    R0 = R1;\n"
                                                       "  }\n");
}

TEST(If, KnowsSixConditions)
{
    const struct
    {
        const char* condition;
        const char* comparison;
    } rows[] = {{"EQ", "=="}, {"GE", ">="}, {"GT", ">"}, {"LE", "<="}, {"LT", "<"}, {"NE", "!="},
                {"eq", "=="}, {"Ge", ">="}, {"gT", ">"}, {"le", "<="}, {"lt", "<"}, {"ne", "!="}};
    for (const auto& row : rows)
        EXPECT_EQ(bodyOf("IF " + std::string(row.condition) + ".y;"),
                  "  if( CC0.y " + std::string(row.comparison) + " 0.0 )\n  {\n");
}

TEST(If, TakesASwizzleOfOneToThreeLetters)
{
    EXPECT_EQ(bodyOf("IF GT;"), "  if( CC0 > 0.0 )\n  {\n");
    EXPECT_EQ(bodyOf("IF GT.xy;"), "  if( CC0.xy > 0.0 )\n  {\n");
    EXPECT_EQ(bodyOf("IF GT.xyz;"), "  if( CC0.xyz > 0.0 )\n  {\n");
    EXPECT_EQ(bodyOf("IF GT.xyzw;"), "  if( CC0 > 0.0 )\n  {\n");
}

TEST(Else, ClosesAndOpensABlock)
{
    EXPECT_EQ(bodyOf("IF LT.x;\nMOV R0, R1;\nELSE;\nMOV R0, R2;\nENDIF;\nMOV R3, R4;"), "  if( CC0.x < 0.0 )\n"
                                                                                        "  {\n"
                                                                                        "    R0 = R1;\n"
                                                                                        "  }\n"
                                                                                        "  else\n"
                                                                                        "  {\n"
                                                                                        "    R0 = R2;\n"
                                                                                        "  }\n"
                                                                                        "  R3 = R4;\n");
}

TEST(Rep, CountsWithALoopVariable)
{
    EXPECT_EQ(bodyOf("REP R0.x;\nBRK;\nCONT;\nENDREP;"), "  for( int i = 0; i < R0.x; ++i )\n"
                                                         "  {\n"
                                                         "    break;\n"
                                                         "    continue;\n"
                                                         "  }\n");
}

TEST(Rep, NarrowsItsCountToAScalar)
{
    EXPECT_EQ(bodyOf("REP 4;"), "  for( int i = 0; i < 4.0; ++i )\n  {\n");
    EXPECT_EQ(bodyOf("REP R0;"), "  for( int i = 0; i < R0.x; ++i )\n  {\n");
    EXPECT_EQ(bodyOf("REP program.local[1].wzyx;"), "  for( int i = 0; i < program_local.value[1].w; ++i )\n  {\n");
}

TEST(Rep, NestedLoopsUseTheNextLetter)
{
    EXPECT_EQ(bodyOf("REP R0.x;\nREP R0.y;\nENDREP;\nENDREP;\nREP R0.z;\nENDREP;"),
              "  for( int i = 0; i < R0.x; ++i )\n"
              "  {\n"
              "    for( int j = 0; j < R0.y; ++j )\n"
              "    {\n"
              "    }\n"
              "  }\n"
              "  for( int i = 0; i < R0.z; ++i )\n"
              "  {\n"
              "  }\n");
}

TEST(Rep, NestsAsDeepAsThereAreLetters)
{
    std::string program;
    for (char letter = 'i'; letter <= 'z'; ++letter)
        program += "REP 2;\n";
    EXPECT_EQ(translation::translateFragment(program).status, 0);
    EXPECT_NE(translation::translateFragment(program + "REP 2;\n").status, 0);
}

TEST(Indentation, NeverFallsBelowZero)
{
    EXPECT_EQ(bodyOf("ENDIF;\nENDREP;\nMOV R0, R1;\nIF EQ.x;\nMOV R0, R1;"), "}\n"
                                                                             "}\n"
                                                                             "R0 = R1;\n"
                                                                             "if( CC0.x == 0.0 )\n"
                                                                             "{\n"
                                                                             "  R0 = R1;\n");
}

TEST(Indentation, DeclarationsFollowIt)
{
    EXPECT_EQ(bodyOf("IF EQ.x;\nTEMP a;\nUINT TEMP u;\nPARAM p = 1;\nENDIF;"), "  if( CC0.x == 0.0 )\n"
                                                                               "  {\n"
                                                                               "    float4 a;\n"
                                                                               "    uint4 u;\n"
                                                                               "    float4 p = 1.0;\n"
                                                                               "  }\n");
}

TEST(Indentation, MOVCIndentsItsSecondLine)
{
    EXPECT_EQ(bodyOf("REP 2;\nMOVC R0.x, R1.x;\nENDREP;"), "  for( int i = 0; i < 2.0; ++i )\n"
                                                           "  {\n"
                                                           "    R0.x = R1.x;\n"
                                                           "    CC0.x = R0.x;\n"
                                                           "  }\n");
}

TEST(Scratch, StandsBeforeTheOutermostOpenBlock)
{
    EXPECT_EQ(bodyOf("MOV R0, R1;\nIF NE.x;\nREP 2;\nPK4UB.U U0.x, R1;\nENDREP;\nENDIF;\nPK4UB.U U0.x, R1;"),
              "  R0 = R1;\n"
              "  uint4 uitmp;\n"
              "  if( CC0.x != 0.0 )\n"
              "  {\n"
              "    for( int i = 0; i < 2.0; ++i )\n"
              "    {\n"
              "      uitmp = uint4( 255.0 * metal::clamp( R1, 0.0, 1.0 ) );\n"
              "      U0.x = ( uitmp.x ) + ( uitmp.y << 8 ) + ( uitmp.z << 16 ) + ( uitmp.w << 24 );\n"
              "    }\n"
              "  }\n"
              "  uitmp = uint4( 255.0 * metal::clamp( R1, 0.0, 1.0 ) );\n"
              "  U0.x = ( uitmp.x ) + ( uitmp.y << 8 ) + ( uitmp.z << 16 ) + ( uitmp.w << 24 );\n");
}

TEST(Scratch, FirstUsedInAnElseStandsBeforeItsIf)
{
    const std::string body = bodyOf("IF NE.x;\nELSE;\nUP4UB R0, R1.x;\nENDIF;");
    EXPECT_EQ(body.substr(0, body.find("  {\n")), "  uint4 uitmp;\n  if( CC0.x != 0.0 )\n");
}

TEST(Scratch, AfterAClosedBlockStandsWhereItIsUsed)
{
    EXPECT_EQ(bodyOf("IF NE.x;\nENDIF;\nPK4UB.U U0.x, R1;").find("  uint4 uitmp;\n"),
              std::string("  if( CC0.x != 0.0 )\n  {\n  }\n").size());
}

} // namespace
