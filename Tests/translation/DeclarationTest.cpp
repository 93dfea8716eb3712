// SPDX-License-Identifier: Apache-2.0
#include "Translate.h"

namespace
{

using translation::bodyOf;
using translation::expectLines;
using translation::lineOf;
using translation::translateFragment;
using translation::translateVertex;

void expectFailures(const std::vector<const char*>& statements)
{
    for (const char* statement : statements)
        EXPECT_NE(translateFragment(statement).status, 0) << statement;
}

// ---- Temporaries -----------------------------------------------------------------------------------------------

TEST(TEMP, DeclaresOneVectorPerLine)
{
    EXPECT_EQ(bodyOf("TEMP R0, R1 ,R2;"), "  float4 R0;\n  float4 R1;\n  float4 R2;\n");
    EXPECT_EQ(bodyOf("temp a;"), "  float4 a;\n");
}

TEST(UINT, DropsTheTypeWord)
{
    EXPECT_EQ(bodyOf("UINT TEMP U0, U1;"), "  uint4 U0;\n  uint4 U1;\n");
    EXPECT_EQ(bodyOf("UINT temp U0,U1;"), "  uint4 U0;\n  uint4 U1;\n");
    EXPECT_EQ(bodyOf("uint Temp U0;"), "  uint4 U0;\n");
}

TEST(UINT, NeedsNoTypeWord)
{
    EXPECT_EQ(bodyOf("UINT U0, U1 , U2;"), "  uint4 U0;\n  uint4 U1;\n  uint4 U2;\n");
}

TEST(Declaration, WithoutANameFails)
{
    expectFailures({"TEMP;", "TEMP ,;", "UINT;", "UINT TEMP;"});
}

// ---- Single parameters -----------------------------------------------------------------------------------------

TEST(PARAM, TakesOneToFourNumbers)
{
    expectLines({{"PARAM c = { 1, 2.5, .5, 1e3 };", "float4 c = float4( 1.0, 2.5, .5, 1e3 );"},
                 {"PARAM c = {1};", "float4 c = float4( 1.0, 0, 0, 0 );"},
                 {"PARAM c = { 1, 2 };", "float4 c = float4( 1.0, 2.0, 0, 0 );"},
                 {"PARAM c={1,2,3};", "float4 c = float4( 1.0, 2.0, 3.0, 0 );"},
                 {"param c = { 1, 2, 3, 4 };", "float4 c = float4( 1.0, 2.0, 3.0, 4.0 );"}});
}

TEST(PARAM, ReadsEveryPieceLikeAnOperand)
{
    expectLines({{"PARAM c = { -1, +2, - 0.5, 2E1 };", "float4 c = float4( -1.0, 2.0, -0.5, 2E1 );"},
                 {"PARAM c = { program.local[0].x, -program.local[1].y, 1 };",
                  "float4 c = float4( program_local.value[0].x, -program_local.value[1].y, 1.0, 0 );"},
                 {"PARAM c = { program.local[0].xy, 1 };", "float4 c = float4( program_local.value[0].xy, 1.0, 0 );"},
                 {"PARAM c = { program.local[0].x };", "float4 c = float4( program_local.value[0].x, 0, 0, 0 );"}});
}

TEST(PARAM, ABindingOfFourComponentsIsTheValue)
{
    expectLines({{"PARAM c = { program.local[3] };", "float4 c = program_local.value[3];"},
                 {"PARAM c = { -program.local[3].wzyx };", "float4 c = -program_local.value[3].wzyx;"},
                 {"PARAM c = program.local[3];", "float4 c = program_local.value[3];"},
                 {"PARAM c = -program.local[ 3 ];", "float4 c = -program_local.value[3];"},
                 {"PARAM c = program.local[3].x;", "float4 c = program_local.value[3].x;"}});
    EXPECT_EQ(translateVertex("PARAM c = state.matrix.mvp.row[2];").body,
              "  float4 c = float4( state_matrix.mvp[0][2], state_matrix.mvp[1][2], state_matrix.mvp[2][2], "
              "state_matrix.mvp[3][2] );\n");
}

TEST(PARAM, AnUnbracedNumberGetsItsFraction)
{
    expectLines({{"PARAM c = 2;", "float4 c = 2.0;"},
                 {"PARAM c = -2;", "float4 c = -2.0;"},
                 {"PARAM c = 2.5;", "float4 c = 2.5;"},
                 {"PARAM c = 1e2;", "float4 c = 1e2;"}});
}

TEST(PARAM, MarksWhatItsValueUses)
{
    EXPECT_EQ(translateVertex("PARAM c = vertex.attrib[2];").bindings.attributeMask, 4u);
}

TEST(PARAM, WithoutANameOrAValueFails)
{
    expectFailures({"PARAM;", "PARAM c;", "PARAM c = ;", "PARAM = 1;", "PARAM c = 1 = 2;", "PARAM c[2];"});
}

TEST(PARAM, WithBracesThatDoNotFitFails)
{
    expectFailures({"PARAM c = {};", "PARAM c = { };", "PARAM c = { , };", "PARAM c = { 1, 2;", "PARAM c = 1, 2 };",
                    "PARAM c = { 1 } 2;", "PARAM c = { { 1 };", "PARAM c = 1, 2;", "PARAM c[1] = {};",
                    "PARAM c[1] = {{}};", "PARAM c[2] = { { 1 }, {} };", "PARAM c[1 = { 1 };"});
}

TEST(PARAM, WithTooManyComponentsFails)
{
    expectFailures({"PARAM c = { 1, 2, 3, 4, 5 };", "PARAM c = { program.local[0], 1 };",
                    "PARAM c = { state.matrix.mvp };", "PARAM c = { program.local[0..1] };",
                    "PARAM c = program.local[0..1];", "PARAM c[1] = { { 1, 2, 3, 4, 5 } };"});
}

TEST(PARAM, WithAMalformedPieceFails)
{
    expectFailures({"PARAM c = { 1, - };", "PARAM c = --1;", "PARAM c = { program.local[0 };"});
}

// ---- Arrays ----------------------------------------------------------------------------------------------------

TEST(ParameterArray, TakesBraceGroups)
{
    expectLines({{"PARAM c[2] = { { 1, 2, 3, 4 }, { 5 } };",
                  "float4 c[2] = { float4( 1.0, 2.0, 3.0, 4.0 ), float4( 5.0, 0, 0, 0 ) };"},
                 {"PARAM c[1] = { { program.local[0] } };", "float4 c[1] = { float4( program_local.value[0] ) };"}});
}

TEST(ParameterArray, TakesBindingsAndNumbers)
{
    expectLines({{"PARAM c[ 3 ] = { program.local[4], -program.local[5], 2 };",
                  "float4 c[3] = { program_local.value[4], -program_local.value[5], float4( 2.0 ) };"},
                 {"PARAM c[1] = { -1 };", "float4 c[1] = { float4( -1.0 ) };"}});
}

TEST(ParameterArray, ARangeGivesItsElements)
{
    expectLines({{"PARAM c[4] = { program.local[2..4], { 1 } };",
                  "float4 c[4] = { program_local.value[2], program_local.value[3], program_local.value[4], "
                  "float4( 1.0, 0, 0, 0 ) };"},
                 {"PARAM c[2] = { -program.local[ 0 .. 1 ] };",
                  "float4 c[2] = { -program_local.value[0], -program_local.value[1] };"},
                 {"PARAM c[1] = { program.local[9..9] };", "float4 c[1] = { program_local.value[9] };"}});
    EXPECT_EQ(translateVertex("PARAM c[2] = { state.matrix.mvp.row[2..3] };").body,
              "  float4 c[2] = { float4( state_matrix.mvp[0][2], state_matrix.mvp[1][2], state_matrix.mvp[2][2], "
              "state_matrix.mvp[3][2] ), float4( state_matrix.mvp[0][3], state_matrix.mvp[1][3], "
              "state_matrix.mvp[2][3], state_matrix.mvp[3][3] ) };\n");
}

TEST(ParameterArray, AWholeMatrixGivesItsFourRows)
{
    EXPECT_EQ(lineOf("PARAM c[4] = { state.matrix.modelview.inverse };"),
              "float4 c[4] = { "
              "float4( state_matrix.modelview_inv[0][0], state_matrix.modelview_inv[1][0], "
              "state_matrix.modelview_inv[2][0], state_matrix.modelview_inv[3][0] ), "
              "float4( state_matrix.modelview_inv[0][1], state_matrix.modelview_inv[1][1], "
              "state_matrix.modelview_inv[2][1], state_matrix.modelview_inv[3][1] ), "
              "float4( state_matrix.modelview_inv[0][2], state_matrix.modelview_inv[1][2], "
              "state_matrix.modelview_inv[2][2], state_matrix.modelview_inv[3][2] ), "
              "float4( state_matrix.modelview_inv[0][3], state_matrix.modelview_inv[1][3], "
              "state_matrix.modelview_inv[2][3], state_matrix.modelview_inv[3][3] ) };");
}

TEST(ParameterArray, MayLeaveItsSizeOut)
{
    EXPECT_EQ(lineOf("PARAM c[] = { program.local[0..1] };"),
              "float4 c[] = { program_local.value[0], program_local.value[1] };");
}

TEST(ParameterArray, MayBeShorterThanItsSize)
{
    EXPECT_EQ(lineOf("PARAM c[3] = { { 1 } };"), "float4 c[3] = { float4( 1.0, 0, 0, 0 ) };");
}

TEST(ParameterArray, WithTooManyElementsFails)
{
    expectFailures({"PARAM c[1] = { 1, 2 };", "PARAM c[1] = { program.local[0..1] };",
                    "PARAM c[3] = { state.matrix.mvp };", "PARAM c[] = { program.local[0..100000] };"});
}

TEST(ParameterArray, WithARangeThatCannotBeReadFails)
{
    expectFailures({"PARAM c[4] = { program.local[3..1] };", "PARAM c[4] = { program.local[a..b] };",
                    "PARAM c[4] = { program.local[0.. };", "PARAM c[4] = { program.local[..2] };"});
}

} // namespace
