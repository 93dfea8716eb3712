// SPDX-License-Identifier: Apache-2.0
// Statements that are no instruction of the table.
#include "Translate.h"

namespace
{

using translation::bodyOf;
using translation::expectLines;
using translation::lineOf;

TEST(UnknownStatement, IsCopiedWithASemicolon)
{
    EXPECT_EQ(lineOf("LOG R0, R1.x;"), "LOG R0, R1.x;");
    EXPECT_EQ(lineOf("whatever"), "whatever;");
}

TEST(UnknownStatement, OpcodesMissingFromTheTableAreCopied)
{
    for (const char* statement :
         {"ARL A0.x, R0.x;", "LIT R0, R1;", "DST R0, R1, R2;", "SCS R0.xy, R1.x;", "SWZ R0, R1, x, -y, 0, 1;",
          "TXP R0, R1, texture[0], 2D;", "TXB R0, R1, texture[0], 2D;", "DPH R0, R1, R2;", "PK4UB U0, R1;",
          "UP4UB.U R0, U1;", "ATTRIB pos = vertex.position;", "OUTPUT o = result.color;", "ADDRESS A0;", "ALIAS a = b;",
          "AND U0, U1, U2;", "FLOAT TEMP R0;", "!!ARBvp1.1;"})
        EXPECT_EQ(lineOf(statement), statement) << statement;
}

TEST(UnknownStatement, KeepsItsSaturationAndItsBlanks)
{
    EXPECT_EQ(lineOf("LIT_SAT  R0 ,  R1;"), "LIT_SAT  R0 ,  R1;");
}

TEST(UnknownStatement, MarksNothing)
{
    const translation::Translated result =
        translation::translateFragment("TXP result.color, fragment.texcoord[0], texture[3], 2D;");
    EXPECT_EQ(result.bindings.colorMask, 0u);
    EXPECT_EQ(result.bindings.textureUnitMask, 0u);
}

TEST(UnknownStatement, IsNotReadAsATemplate)
{
    EXPECT_EQ(lineOf("FOO %1, %2;"), "FOO %1, %2;");
}

TEST(Statement, AnInstructionOverTwoLinesIsTwoStatements)
{
    EXPECT_EQ(bodyOf("ABS R0, R1\n, R2;"), "  R0 = metal::abs( R1 );\n  , R2;\n");
}

} // namespace
