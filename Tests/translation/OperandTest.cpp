// SPDX-License-Identifier: Apache-2.0
// How an operand is read, and how wide it is written.
#include "Translate.h"

namespace
{

using namespace ZALMetal;
using translation::bodyOf;
using translation::expectLines;
using translation::lineOf;
using translation::textOf;

// ---- Widths ----------------------------------------------------------------------------------------------------

std::string converted(const char* text, const char* swizzle, bool scalar, int type)
{
    GLSLParam param{text, swizzle, scalar};
    EXPECT_EQ(ShaderString().ConvertParamType(param, static_cast<PARAM_TYPE>(type)), 0);
    std::string result = textOf(param.text);
    if (!param.swizzle.IsEmpty()) result += " rest " + textOf(param.swizzle);
    return result;
}

TEST(ConvertParamType, WidensANumber)
{
    EXPECT_EQ(converted("2.0", "", true, 0), "2.0");
    EXPECT_EQ(converted("2.0", "", true, 1), "float2( 2.0 )");
    EXPECT_EQ(converted("2.0", "", true, 2), "float3( 2.0 )");
    EXPECT_EQ(converted("-2.0", "", true, 3), "float4( -2.0 )");
}

TEST(ConvertParamType, CutsAnOperandWithoutASwizzle)
{
    EXPECT_EQ(converted("R1", "", false, 0), "R1.x");
    EXPECT_EQ(converted("R1", "", false, 1), "R1.xy");
    EXPECT_EQ(converted("R1", "", false, 2), "R1.xyz");
    EXPECT_EQ(converted("R1", "", false, 3), "R1");
}

TEST(ConvertParamType, CutsASwizzle)
{
    EXPECT_EQ(converted("R1", "wzyx", false, 0), "R1.w");
    EXPECT_EQ(converted("R1", "wzyx", false, 1), "R1.wz");
    EXPECT_EQ(converted("R1", "wzyx", false, 2), "R1.wzy");
    EXPECT_EQ(converted("R1", "wzyx", false, 3), "R1 rest wzyx");
    EXPECT_EQ(converted("R1", "y", false, 0), "R1.y");
}

TEST(ConvertParamType, LeavesASwizzleThatIsTooShort)
{
    EXPECT_EQ(converted("R1", "y", false, 1), "R1 rest y");
    EXPECT_EQ(converted("R1", "xy", false, 2), "R1 rest xy");
    EXPECT_EQ(converted("R1", "y", false, 3), "R1 rest y");
}

TEST(ConvertParamType, RefusesAnUnknownWidth)
{
    for (int type : {-1, 4, 5, 255}) {
        GLSLParam param{"R1", "xy", false};
        EXPECT_EQ(ShaderString().ConvertParamType(param, static_cast<PARAM_TYPE>(type)), 1);
        EXPECT_EQ(textOf(param.text), "R1");
        EXPECT_EQ(textOf(param.swizzle), "xy");
    }
}

// ---- One swizzle letter ----------------------------------------------------------------------------------------

TEST(OneLetter, StandsBetweenOperatorsWithoutASuffix)
{
    expectLines({{"MUL R0, R1, R2.x;", "R0 = R1 * R2.x;"},
                 {"ADD R0, R1.x, R2.x;", "R0 = R1.x + R2.x;"},
                 {"SUB R0.xyzw, R1.x, R2;", "R0.xyzw = R1.x - R2;"},
                 {"MAD R0, R1.x, R2.y, R3.z;", "R0 = R1.x * R2.y + R3.z;"},
                 {"MOV R0, R1.x;", "R0 = R1.x;"},
                 {"MOVC R0.xyzw, R1.x;", "R0.xyzw = R1.x;\n  CC0 = R0.xyzw;"}});
}

TEST(OneLetter, IsRepeatedUnderAMaskWhenItStandsAlone)
{
    expectLines({{"ADD R0.x, R1.x, R2.x;", "R0.x = ( R1.xxxx + R2.xxxx ).x;"},
                 {"MAD R0.xy, R1.x, R2.y, R3.z;", "R0.xy = ( R1.xxxx * R2.yyyy + R3.zzzz ).xy;"},
                 {"MOV R0.xy, R1.x;", "R0.xy = R1.xxxx.xy;"},
                 {"MUL R0.xyz, -R1.x, R2.x;", "R0.xyz = ( -R1.xxxx * R2.xxxx ).xyz;"}});
}

TEST(OneLetter, StandsBesideAWiderSource)
{
    expectLines({{"MUL R0.x, R1.x, R2;", "R0.x = ( R1.x * R2 ).x;"},
                 {"MUL R0.x, R1.x, R2.xyzw;", "R0.x = ( R1.x * R2.xyzw ).x;"},
                 {"MUL R0.x, R1.xy, R2.x;", "R0.x = ( R1.xy * R2.x ).x;"},
                 {"MAD R0.x, R1.x, R2.x, R3;", "R0.x = ( R1.x * R2.x + R3 ).x;"},
                 {"MUL R0.x, R1.x, 2;", "R0.x = ( R1.x * float4( 2.0 ) ).x;"}});
}

TEST(OneLetter, FollowsTheSameRuleWhenSaturated)
{
    expectLines({{"MUL_SAT R0, R1.x, R2.x;", "R0 = metal::clamp( R1.x * R2.x, 0.0, 1.0 );"},
                 {"ADD_SAT R0.x, R1.x, R2.x;", "R0.x = metal::clamp( R1.xxxx + R2.xxxx, 0.0, 1.0 ).x;"},
                 {"SUB_SAT R0.x, R1.x, R2;", "R0.x = metal::clamp( R1.x - R2, 0.0, 1.0 ).x;"},
                 {"MOV_SAT R0, R1.x;", "R0 = metal::clamp( R1.x, 0.0, 1.0 );"},
                 {"MOV_SAT R0.xy, R1.x;", "R0.xy = metal::clamp( R1.xxxx, 0.0, 1.0 ).xy;"}});
}

TEST(OneLetter, IsRepeatedInFunctions)
{
    expectLines({{"MAX R0, R1, R2.x;", "R0 = metal::max( R1, R2.xxxx );"},
                 {"ABS R0, R1.w;", "R0 = metal::abs( R1.wwww );"},
                 {"DP3 R0.x, R1.x, R2;", "R0.x = float4( metal::dot( R1.xxx, R2.xyz ) ).x;"},
                 {"DP2 R0.x, R1.x, R2;", "R0.x = float4( metal::dot( R1.xx, R2.xy ) ).x;"},
                 {"DP4 R0.x, R1.x, R2;", "R0.x = float4( metal::dot( R1.xxxx, R2 ) ).x;"},
                 {"SGE R0, R1.x, R2.x;", "R0 = float4( R1.xxxx >= R2.xxxx );"},
                 {"LRP R0, R1.x, R2, R3;", "R0 = metal::mix( R3, R2, R1.xxxx );"}});
}

TEST(OneLetter, MayBelongToABinding)
{
    expectLines({{"MAX R0, R1, program.local[2].w;", "R0 = metal::max( R1, program_local.value[2].wwww );"},
                 {"MUL R0, R1, program.local[2].w;", "R0 = R1 * program_local.value[2].w;"}});
}

// ---- Scalars ---------------------------------------------------------------------------------------------------

TEST(Scalars, AreNumbersAndSingleLetters)
{
    expectLines({{"MOV R0.x, R1.y;", "R0.x = R1.y;"},
                 {"MOV R0.x, 1;", "R0.x = 1.0;"},
                 {"MOV R0.g, R1.b;", "R0.g = R1.b;"},
                 {"SGE R0.x, R1.x, R2.x;", "R0.x = float( R1.x >= R2.x );"},
                 {"SLT R0.x, R1, R2.x;", "R0.x = float4( R1 < R2.xxxx ).x;"},
                 {"SLT R0, 1, 2;", "R0 = float4( float4( 1.0 ) < float4( 2.0 ) );"},
                 {"KIL R0.x;", "if( R0.x < 0.0 ) metal::discard_fragment();"}});
}

TEST(Scalars, MOVWidensANumberOnlyUnderAMask)
{
    expectLines({{"MOV R0.xy, 1.0;", "R0.xy = float4( 1.0 ).xy;"},
                 {"MOV R0, 1.0;", "R0 = 1.0;"},
                 {"MOV R0.xyzw, -1;", "R0.xyzw = -1.0;"},
                 {"MOV_SAT R0, 2;", "R0 = metal::clamp( 2.0, 0.0, 1.0 );"},
                 {"MOV_SAT R0.xy, 2;", "R0.xy = metal::clamp( float4( 2.0 ), 0.0, 1.0 ).xy;"}});
}

// ---- Masks -----------------------------------------------------------------------------------------------------

TEST(Mask, AFullOneLeavesNoSuffix)
{
    expectLines({{"ADD R0.xyzw, R1, R2;", "R0.xyzw = R1 + R2;"}, {"ABS R0.rgba, R1;", "R0.rgba = metal::abs( R1 );"}});
}

TEST(Mask, ColourLettersAreCopied)
{
    expectLines({{"ADD R0.rg, R1, R2;", "R0.rg = ( R1 + R2 ).rg;"},
                 {"MAX R0.a, R1, R2.r;", "R0.a = metal::max( R1, R2.rrrr ).a;"}});
}

// ---- Numbers ---------------------------------------------------------------------------------------------------

TEST(Number, GetsAFractionWhenItHasNone)
{
    expectLines({{"ADD R0, R1, 2;", "R0 = R1 + float4( 2.0 );"},
                 {"ADD R0, R1, 2.5;", "R0 = R1 + float4( 2.5 );"},
                 {"ADD R0, R1, .5;", "R0 = R1 + float4( .5 );"},
                 {"ADD R0, R1, 1.;", "R0 = R1 + float4( 1. );"},
                 {"ADD R0, R1, 1e3;", "R0 = R1 + float4( 1e3 );"},
                 {"ADD R0, R1, 1E3;", "R0 = R1 + float4( 1E3 );"},
                 {"ADD R0, R1, 1e-3;", "R0 = R1 + float4( 1e-3 );"},
                 {"ADD R0, R1, -2;", "R0 = R1 + float4( -2.0 );"},
                 {"ADD R0, R1, 007;", "R0 = R1 + float4( 007.0 );"}});
}

TEST(Number, StaysAsItIsWhereNothingIsNarrowed)
{
    expectLines({{"AND.U U0, U1, 15;", "U0 = U1 & uint( 15.0 );"}, {"I2F.U R0, 3;", "R0 = float( 3.0 );"}});
}

// ---- Signs and bars --------------------------------------------------------------------------------------------

TEST(Sign, AMinusIsWrittenBeforeTheText)
{
    expectLines(
        {{"ADD R0, -R1, - R2.wzyx;", "R0 = -R1 + -R2.wzyx;"},
         {"DP3 R0, -program.local[1], R2;", "R0 = float4( metal::dot( -program_local.value[1].xyz, R2.xyz ) );"},
         {"RCP R0, -R1;", "R0 = float4( 1.0 / -R1.x );"}});
}

TEST(Sign, APlusIsDropped)
{
    expectLines({{"ADD R0, +R1, + 2;", "R0 = R1 + float4( 2.0 );"}});
}

TEST(Bars, AreTheAbsoluteValueOfTheNarrowedOperand)
{
    expectLines({{"MOV R0, |R1|;", "R0 = metal::abs( R1 );"},
                 {"ADD R0, R1, |R2.wzyx|;", "R0 = R1 + metal::abs( R2.wzyx );"},
                 {"RCP R0.x, |R1.y|;", "R0.x = float4( 1.0 / metal::abs( R1.y ) ).x;"},
                 {"RSQ R0.x, |R1|;", "R0.x = float4( metal::rsqrt( metal::abs( R1.x ) ) ).x;"},
                 {"DP3 R0, |R1|, R2;", "R0 = float4( metal::dot( metal::abs( R1.xyz ), R2.xyz ) );"},
                 {"MAX R0, R1, |R2.x|;", "R0 = metal::max( R1, metal::abs( R2.xxxx ) );"},
                 {"MUL R0, R1, |R2.x|;", "R0 = R1 * metal::abs( R2.x );"},
                 {"MAX R0, R1, |2|;", "R0 = metal::max( R1, metal::abs( float4( 2.0 ) ) );"}});
}

TEST(Bars, TheMinusStandsOutside)
{
    expectLines({{"MOV R0, -|R1|;", "R0 = -metal::abs( R1 );"},
                 {"RCP R0.x, - | R1.y | ;", "R0.x = float4( 1.0 / -metal::abs( R1.y ) ).x;"},
                 {"MOV R0, |-R1|;", "R0 = metal::abs( -R1 );"},
                 {"MOV R0, -|-program.local[0].x|;", "R0 = -metal::abs( -program_local.value[0].x );"}});
}

TEST(Bars, OfOneLetterAreAScalar)
{
    expectLines({{"MOV R0.x, |R1.y|;", "R0.x = metal::abs( R1.y );"},
                 {"KIL -|R0.x|;", "if( -metal::abs( R0.x ) < 0.0 ) metal::discard_fragment();"}});
}

// ---- Names -----------------------------------------------------------------------------------------------------

TEST(Name, TheSwizzleStandsBehindTheLastDotOutsideBrackets)
{
    expectLines({{"DP3 R0, c[1], c[A0.x + 2].wzyx;", "R0 = float4( metal::dot( c[1].xyz, c[A0.x + 2].wzy ) );"},
                 {"MUL R0, R1, c[A0.x];", "R0 = R1 * c[A0.x];"},
                 {"RCP R0, c[A0.x];", "R0 = float4( 1.0 / c[A0.x].x );"},
                 {"ADD R0, R1, program.env[3].x;", "R0 = R1 + program.env[3].x;"}});
}

TEST(Name, BlanksInBracketsAreTrimmed)
{
    expectLines({{"MOV R0, c[ 3 ].x;", "R0 = c[3].x;"}, {"MOV R0, c[ A0.x + 1 ];", "R0 = c[A0.x + 1];"}});
}

// ---- What cannot be read ---------------------------------------------------------------------------------------

TEST(Malformed, TooFewOperandsFail)
{
    for (const char* statement :
         {"ABS R0;", "ADD R0, R1;", "MAD R0, R1, R2;", "CMP R0, R1, R2;", "MOV;", "KIL;", "IF;", "REP;",
          "SHR.U U0, U1;", "PK4UB.U U0;", "UP4UB R0;", "TEX R0, R1, texture[0];", "XPD R0, R1;", "ADD R0,,R1;"})
        EXPECT_EQ(bodyOf(statement), "failed: too few operands") << statement;
}

TEST(Malformed, SurplusOperandsAreIgnored)
{
    expectLines({{"MOV R0, R1, R2, {;", "R0 = R1;"},
                 {"KIL R0, R1;", "if( metal::any( R0 < float4( 0.0 ) ) ) metal::discard_fragment();"},
                 {"BRK R0;", "break;"},
                 {"CONT (GT.x);", "continue;"}});
}

TEST(Malformed, OperandsThatCannotBeReadFail)
{
    for (const char* operand :
         {"-",     "+",   "- ",   "--R1", "-+R1", "+-R1", "|R1",  "R1|", "||",     "|",  "-||", "|R1|.x",
          "R1|x|", "c[1", "c]1[", "c1]",  "{1",   "1}",   "{R1}", "|-|", "|--R1|", ".x", "."})
        EXPECT_NE(translation::translateFragment("MOV R0, " + std::string(operand) + ";").status, 0) << operand;
}

TEST(Malformed, InlineVectorsFail)
{
    EXPECT_NE(translation::translateFragment("ADD R0, R1, {1, 2, 3, 4};").status, 0);
    EXPECT_NE(translation::translateFragment("ADD R0, R1, {1};").status, 0);
}

TEST(Malformed, ADestinationTakesNoBars)
{
    EXPECT_NE(translation::translateFragment("MOV |R0|, R1;").status, 0);
}

} // namespace
