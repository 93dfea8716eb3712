// SPDX-License-Identifier: Apache-2.0
// Every opcode: plain and saturated, without and with a mask, written out as the generated source spells it.
#include "Translate.h"

namespace
{

using translation::bodyOf;
using translation::expectLines;
using translation::lineOf;

TEST(Instruction, ABS)
{
    expectLines({{"ABS R0, R1;", "R0 = metal::abs( R1 );"},
                 {"ABS R0.xy, R1;", "R0.xy = metal::abs( R1 ).xy;"},
                 {"ABS_SAT R0, R1;", "R0 = metal::clamp( metal::abs( R1 ), 0.0, 1.0 );"},
                 {"ABS_SAT R0.w, -R1;", "R0.w = metal::clamp( metal::abs( -R1 ), 0.0, 1.0 ).w;"}});
}

TEST(Instruction, ADD)
{
    expectLines({{"ADD R0, R1, R2;", "R0 = R1 + R2;"},
                 {"ADD R0.xy, R1, R2;", "R0.xy = ( R1 + R2 ).xy;"},
                 {"ADD_SAT R0, R1, R2;", "R0 = metal::clamp( R1 + R2, 0.0, 1.0 );"},
                 {"ADD_SAT R0.xyz, R1, R2;", "R0.xyz = metal::clamp( R1 + R2, 0.0, 1.0 ).xyz;"}});
}

TEST(Instruction, OpcodesAreReadWhateverTheirCase)
{
    EXPECT_EQ(lineOf("add r0, r1, r2;"), "r0 = r1 + r2;");
    EXPECT_EQ(lineOf("Shr.u U0, U1, U2;"), "U0 = U1 >> uint( U2 );");
}

TEST(Instruction, AND_U)
{
    expectLines({{"AND.U U0, U1, U2;", "U0 = U1 & uint( U2 );"},
                 {"AND.U U0.x, U1.x, 255;", "U0.x = U1.x & uint( 255.0 );"},
                 {"AND.U_SAT U0, U1, U2;", "U0 = U1 & uint( U2 );"}});
}

TEST(Instruction, CMP)
{
    expectLines(
        {{"CMP R0, R1, R2, R3;", "R0 = metal::mix( R3, R2, float4( R1 < float4( 0.0 ) ) );"},
         {"CMP R0.xy, R1, R2, R3;", "R0.xy = metal::mix( R3, R2, float4( R1 < float4( 0.0 ) ) ).xy;"},
         {"CMP R0, R1.x, 1, 0;", "R0 = metal::mix( float4( 0.0 ), float4( 1.0 ), float4( R1.xxxx < float4( 0.0 ) ) );"},
         {"CMP_SAT R0, R1, R2, R3;",
          "R0 = metal::clamp( metal::mix( R3, R2, float4( R1 < float4( 0.0 ) ) ), 0.0, 1.0 );"},
         {"CMP_SAT R0.z, R1, R2, R3;",
          "R0.z = metal::clamp( metal::mix( R3, R2, float4( R1 < float4( 0.0 ) ) ), 0.0, 1.0 ).z;"}});
}

TEST(Instruction, CMPOfSingleComponents)
{
    EXPECT_EQ(bodyOf("CMP R0.x, R1.y, R2.z, 1;"), "  R0.x = R1.y < 0.0 ? R2.z : 1.0; \n\n");
    EXPECT_EQ(bodyOf("CMP_SAT R0.x, R1.y, R2.z, -R3.w;"),
              "  R0.x = metal::clamp( R1.y < 0.0 ? R2.z : -R3.w, 0.0, 1.0 ); \n\n");
}

TEST(Instruction, COS)
{
    expectLines({{"COS R0, R1.x;", "R0 = float4( metal::cos( R1.x ) );"},
                 {"COS R0.x, R1.y;", "R0.x = float4( metal::cos( R1.y ) ).x;"},
                 {"COS_SAT R0, R1;", "R0 = float4( metal::clamp( metal::cos( R1.x ), 0.0, 1.0 ) );"},
                 {"COS_SAT R0.yz, R1.w;", "R0.yz = float4( metal::clamp( metal::cos( R1.w ), 0.0, 1.0 ) ).yz;"}});
}

TEST(Instruction, DP2)
{
    expectLines(
        {{"DP2 R0, R1, R2;", "R0 = float4( metal::dot( R1.xy, R2.xy ) );"},
         {"DP2 R0.x, R1.zwxy, R2.y;", "R0.x = float4( metal::dot( R1.zw, R2.yy ) ).x;"},
         {"DP2_SAT R0, R1, R2;", "R0 = float4( metal::clamp( metal::dot( R1.xy, R2.xy ), 0.0, 1.0 ) );"},
         {"DP2_SAT R0.x, R1, 1;", "R0.x = float4( metal::clamp( metal::dot( R1.xy, float2( 1.0 ) ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, DP3)
{
    expectLines({{"DP3 R0, R1, R2;", "R0 = float4( metal::dot( R1.xyz, R2.xyz ) );"},
                 {"DP3 R0.x, R1, R2;", "R0.x = float4( metal::dot( R1.xyz, R2.xyz ) ).x;"},
                 {"DP3_SAT R0, R1, -R2;", "R0 = float4( metal::clamp( metal::dot( R1.xyz, -R2.xyz ), 0.0, 1.0 ) );"},
                 {"DP3_SAT R0.w, R1, 0.5;",
                  "R0.w = float4( metal::clamp( metal::dot( R1.xyz, float3( 0.5 ) ), 0.0, 1.0 ) ).w;"}});
}

TEST(Instruction, DP4)
{
    expectLines(
        {{"DP4 R0, R1, R2;", "R0 = float4( metal::dot( R1, R2 ) );"},
         {"DP4 R0.x, R1, R2;", "R0.x = float4( metal::dot( R1, R2 ) ).x;"},
         {"DP4_SAT R0, R1, R2.wzyx;", "R0 = float4( metal::clamp( metal::dot( R1, R2.wzyx ), 0.0, 1.0 ) );"},
         {"DP4_SAT R0.y, R1, 1;", "R0.y = float4( metal::clamp( metal::dot( R1, float4( 1.0 ) ), 0.0, 1.0 ) ).y;"}});
}

TEST(Instruction, EX2)
{
    expectLines({{"EX2 R0, R1.x;", "R0 = float4( metal::exp2( R1.x ) );"},
                 {"EX2 R0.x, R1.x;", "R0.x = float4( metal::exp2( R1.x ) ).x;"},
                 {"EX2_SAT R0, R1.x;", "R0 = float4( metal::clamp( metal::exp2( R1.x ), 0.0, 1.0 ) );"},
                 {"EX2_SAT R0.x, 2;", "R0.x = float4( metal::clamp( metal::exp2( 2.0 ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, EXP)
{
    expectLines({{"EXP R0, R1.x;", "R0 = float4( metal::exp2( R1.x ) );"},
                 {"EXP R0.x, R1.x;", "R0.x = float4( metal::exp2( R1.x ) ).x;"},
                 {"EXP_SAT R0, R1.x;", "R0 = float4( metal::clamp( metal::exp2( R1.x ), 0.0, 1.0 ) );"},
                 {"EXP_SAT R0.x, R1.x;", "R0.x = float4( metal::clamp( metal::exp2( R1.x ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, FLR)
{
    expectLines({{"FLR R0, R1;", "R0 = metal::floor( R1 );"},
                 {"FLR R0.x, R1;", "R0.x = metal::floor( R1 ).x;"},
                 {"FLR_SAT R0, R1;", "R0 = metal::clamp( metal::floor( R1 ), 0.0, 1.0 );"},
                 {"FLR_SAT R0.x, R1.y;", "R0.x = metal::clamp( metal::floor( R1.yyyy ), 0.0, 1.0 ).x;"}});
}

TEST(Instruction, FLR_U)
{
    expectLines({{"FLR.U U0, R1;", "U0 = uint( metal::floor( R1 ) );"},
                 {"FLR.U U0, R1.x;", "U0 = uint( metal::floor( R1.x ) );"},
                 {"FLR.U U0.x, R1.x;", "U0.x = uint( metal::floor( R1.xxxx ) ).x;"},
                 {"FLR.U_SAT U0, R1.x;", "U0 = uint( metal::clamp( metal::floor( R1.x ), 0.0, 1.0 ) );"},
                 {"FLR.U_SAT U0.x, R1;", "U0.x = uint( metal::clamp( metal::floor( R1 ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, FRC)
{
    expectLines({{"FRC R0, R1;", "R0 = metal::fract( R1 );"},
                 {"FRC R0.x, R1;", "R0.x = metal::fract( R1 ).x;"},
                 {"FRC_SAT R0, R1;", "R0 = metal::clamp( metal::fract( R1 ), 0.0, 1.0 );"},
                 {"FRC_SAT R0.x, R1;", "R0.x = metal::clamp( metal::fract( R1 ), 0.0, 1.0 ).x;"}});
}

TEST(Instruction, I2F_U)
{
    expectLines({{"I2F.U R0.x, U1.y;", "R0.x = float( U1.y );"}, {"I2F.U_SAT R0, U1;", "R0 = float( U1 );"}});
}

TEST(Instruction, KIL)
{
    expectLines({{"KIL R0;", "if( metal::any( R0 < float4( 0.0 ) ) ) metal::discard_fragment();"},
                 {"KIL R0.x;", "if( R0.x < 0.0 ) metal::discard_fragment();"},
                 {"KIL -R0.w;", "if( -R0.w < 0.0 ) metal::discard_fragment();"},
                 {"KIL -1;", "if( -1.0 < 0.0 ) metal::discard_fragment();"},
                 {"KIL R0.xxyz;", "if( metal::any( R0.xxyz < float4( 0.0 ) ) ) metal::discard_fragment();"},
                 {"KIL_SAT -R0;", "if( metal::any( -R0 < float4( 0.0 ) ) ) metal::discard_fragment();"}});
}

TEST(Instruction, LG2)
{
    expectLines({{"LG2 R0, R1.x;", "R0 = float4( metal::log2( R1.x ) );"},
                 {"LG2 R0.x, R1.x;", "R0.x = float4( metal::log2( R1.x ) ).x;"},
                 {"LG2_SAT R0, R1.x;", "R0 = float4( metal::clamp( metal::log2( R1.x ), 0.0, 1.0 ) );"},
                 {"LG2_SAT R0.x, R1.x;", "R0.x = float4( metal::clamp( metal::log2( R1.x ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, LRP)
{
    expectLines({{"LRP R0, R1, R2, R3;", "R0 = metal::mix( R3, R2, R1 );"},
                 {"LRP R0.xyz, R1.x, R2, 0;", "R0.xyz = metal::mix( float4( 0.0 ), R2, R1.xxxx ).xyz;"},
                 {"LRP_SAT R0, R1, R2, R3;", "R0 = metal::clamp( metal::mix( R3, R2, R1 ), 0.0, 1.0 );"},
                 {"LRP_SAT R0.x, R1, R2, R3;", "R0.x = metal::clamp( metal::mix( R3, R2, R1 ), 0.0, 1.0 ).x;"}});
}

TEST(Instruction, MAD)
{
    expectLines({{"MAD R0, R1, R2, R3;", "R0 = R1 * R2 + R3;"},
                 {"MAD R0.xyz, R1, R2, -R3;", "R0.xyz = ( R1 * R2 + -R3 ).xyz;"},
                 {"MAD_SAT R0, R1, R2, R3;", "R0 = metal::clamp( R1 * R2 + R3, 0.0, 1.0 );"},
                 {"MAD_SAT R0.x, R1, R2, R3;", "R0.x = metal::clamp( R1 * R2 + R3, 0.0, 1.0 ).x;"}});
}

TEST(Instruction, MAX)
{
    expectLines({{"MAX R0, R1, R2;", "R0 = metal::max( R1, R2 );"},
                 {"MAX R0.x, R1, 0;", "R0.x = metal::max( R1, float4( 0.0 ) ).x;"},
                 {"MAX_SAT R0, R1, R2;", "R0 = metal::clamp( metal::max( R1, R2 ), 0.0, 1.0 );"},
                 {"MAX_SAT R0.x, R1, R2;", "R0.x = metal::clamp( metal::max( R1, R2 ), 0.0, 1.0 ).x;"}});
}

TEST(Instruction, MIN)
{
    expectLines({{"MIN R0, R1, R2;", "R0 = metal::min( R1, R2 );"},
                 {"MIN R0.x, R1, R2.w;", "R0.x = metal::min( R1, R2.wwww ).x;"},
                 {"MIN_SAT R0, R1, R2;", "R0 = metal::clamp( metal::min( R1, R2 ), 0.0, 1.0 );"},
                 {"MIN_SAT R0.x, R1, R2;", "R0.x = metal::clamp( metal::min( R1, R2 ), 0.0, 1.0 ).x;"}});
}

TEST(Instruction, MOV)
{
    expectLines({{"MOV R0, R1;", "R0 = R1;"},
                 {"MOV R0.xy, R1;", "R0.xy = R1.xy;"},
                 {"MOV R0.xy, R1.wzyx;", "R0.xy = R1.wzyx.xy;"},
                 {"MOV R0.x, R1.y;", "R0.x = R1.y;"},
                 {"MOV_SAT R0, R1;", "R0 = metal::clamp( R1, 0.0, 1.0 );"},
                 {"MOV_SAT R0.xy, R1;", "R0.xy = metal::clamp( R1, 0.0, 1.0 ).xy;"},
                 {"MOV_SAT R0.x, R1.y;", "R0.x = metal::clamp( R1.y, 0.0, 1.0 );"}});
}

TEST(Instruction, MOVC)
{
    EXPECT_EQ(bodyOf("MOVC R0, R1;"), "  R0 = R1;\n  CC0 = R0;\n");
    EXPECT_EQ(bodyOf("MOVC R0.xy, R1;"), "  R0.xy = R1.xy;\n  CC0.xy = R0.xy;\n");
    EXPECT_EQ(bodyOf("MOVC R0.x, R1.y;"), "  R0.x = R1.y;\n  CC0.x = R0.x;\n");
    EXPECT_EQ(bodyOf("MOVC R0, 1;"), "  R0 = float4( 1.0 );\n  CC0 = R0;\n");
    EXPECT_EQ(bodyOf("MOVC R0.x, 1;"), "  R0.x = 1.0;\n  CC0.x = R0.x;\n");
    EXPECT_EQ(bodyOf("MOVC_SAT R0.xyz, R1.w;"),
              "  R0.xyz = metal::clamp( R1.wwww, 0.0, 1.0 ).xyz;\n  CC0.xyz = R0.xyz;\n");
    EXPECT_EQ(bodyOf("MOVC_SAT R0.x, R1.y;"), "  R0.x = metal::clamp( R1.y, 0.0, 1.0 );\n  CC0.x = R0.x;\n");
}

TEST(Instruction, MUL)
{
    expectLines({{"MUL R0, R1, R2;", "R0 = R1 * R2;"},
                 {"MUL R0.xy, R1, 2;", "R0.xy = ( R1 * float4( 2.0 ) ).xy;"},
                 {"MUL_SAT R0, R1, R2;", "R0 = metal::clamp( R1 * R2, 0.0, 1.0 );"},
                 {"MUL_SAT R0.w, R1, R2;", "R0.w = metal::clamp( R1 * R2, 0.0, 1.0 ).w;"}});
}

TEST(Instruction, PK4UB_U)
{
    EXPECT_EQ(bodyOf("PK4UB.U U0.x, R1;"),
              "  uint4 uitmp;\n"
              "  uitmp = uint4( 255.0 * metal::clamp( R1, 0.0, 1.0 ) );\n"
              "  U0.x = ( uitmp.x ) + ( uitmp.y << 8 ) + ( uitmp.z << 16 ) + ( uitmp.w << 24 );\n");
}

TEST(Instruction, UP4UB)
{
    EXPECT_EQ(bodyOf("UP4UB R0, R1.x;"), "  uint4 uitmp;\n"
                                         "  uitmp.x = as_type<uint>( R1.x );\n"
                                         "  R0.x = float( ( uitmp.x >> 0 )  & uint( 0xFF ) ) / 255.0;\n"
                                         "  R0.y = float( ( uitmp.x >> 8 )  & uint( 0xFF ) ) / 255.0;\n"
                                         "  R0.z = float( ( uitmp.x >> 16 ) & uint( 0xFF ) ) / 255.0;\n"
                                         "  R0.w = float( ( uitmp.x >> 24 ) & uint( 0xFF ) ) / 255.0;\n");
}

TEST(Instruction, PackingDeclaresItsScratchOnce)
{
    const std::string body = bodyOf("PK4UB.U_SAT U0.x, R1;\nUP4UB_SAT R0, R1.x;\nPK4UB.U U0.y, R1;");
    EXPECT_EQ(body.find("  uint4 uitmp;\n"), 0u);
    EXPECT_EQ(body.rfind("uint4 uitmp;"), 2u);
}

TEST(Instruction, POW)
{
    expectLines(
        {{"POW R0, R1.x, R2.y;", "R0 = float4( metal::pow( R1.x, R2.y ) );"},
         {"POW R0.x, R1, 2;", "R0.x = float4( metal::pow( R1.x, 2.0 ) ).x;"},
         {"POW_SAT R0, R1.x, R2.y;", "R0 = float4( metal::clamp( metal::pow( R1.x, R2.y ), 0.0, 1.0 ) );"},
         {"POW_SAT R0.x, R1.x, R2.y;", "R0.x = float4( metal::clamp( metal::pow( R1.x, R2.y ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, RCP)
{
    expectLines({{"RCP R0, R1.w;", "R0 = float4( 1.0 / R1.w );"},
                 {"RCP R0.w, -R1;", "R0.w = float4( 1.0 / -R1.x ).w;"},
                 {"RCP_SAT R0, R1.w;", "R0 = float4( metal::clamp( 1.0 / R1.w, 0.0, 1.0 ) );"},
                 {"RCP_SAT R0.w, R1.w;", "R0.w = float4( metal::clamp( 1.0 / R1.w, 0.0, 1.0 ) ).w;"}});
}

TEST(Instruction, RSQ)
{
    expectLines({{"RSQ R0, R1.w;", "R0 = float4( metal::rsqrt( R1.w ) );"},
                 {"RSQ R0.w, R1.w;", "R0.w = float4( metal::rsqrt( R1.w ) ).w;"},
                 {"RSQ_SAT R0, R1.w;", "R0 = float4( metal::clamp( metal::rsqrt( R1.w ), 0.0, 1.0 ) );"},
                 {"RSQ_SAT R0.w, R1.w;", "R0.w = float4( metal::clamp( metal::rsqrt( R1.w ), 0.0, 1.0 ) ).w;"}});
}

TEST(Instruction, SEQ)
{
    expectLines({{"SEQ R0, R1, R2;", "R0 = float4( R1 == R2 );"},
                 {"SEQ R0.xy, R1, R2.x;", "R0.xy = float4( R1 == R2.xxxx ).xy;"},
                 {"SEQ R0.x, R1.x, 1;", "R0.x = float( R1.x == 1.0 );"},
                 {"SEQ_SAT R0.x, R1.x, 1;", "R0.x = float( R1.x == 1.0 );"},
                 {"SEQ_SAT R0, R1, R2;", "R0 = float4( R1 == R2 );"}});
}

TEST(Instruction, SGE)
{
    expectLines({{"SGE R0, R1, R2;", "R0 = float4( R1 >= R2 );"},
                 {"SGE R0.xy, R1, 0;", "R0.xy = float4( R1 >= float4( 0.0 ) ).xy;"},
                 {"SGE R0.x, R1.x, R2.x;", "R0.x = float( R1.x >= R2.x );"},
                 {"SGE_SAT R0, R1, R2;", "R0 = float4( R1 >= R2 );"}});
}

TEST(Instruction, SGT)
{
    expectLines({{"SGT R0, R1, R2;", "R0 = float4( R1 > R2 );"},
                 {"SGT R0.x, R1, R2;", "R0.x = float4( R1 > R2 ).x;"},
                 {"SGT R0.x, R1.x, R2.x;", "R0.x = float( R1.x > R2.x );"},
                 {"SGT_SAT R0, R1, R2;", "R0 = float4( R1 > R2 );"}});
}

TEST(Instruction, SHR_U)
{
    expectLines({{"SHR.U U0, U1, U2;", "U0 = U1 >> uint( U2 );"},
                 {"SHR.U U0.x, U1.x, 8;", "U0.x = U1.x >> uint( 8.0 );"},
                 {"SHR.U_SAT U0, U1, U2;", "U0 = U1 >> uint( U2 );"}});
}

TEST(Instruction, SNE)
{
    expectLines({{"SNE R0, R1, R2;", "R0 = float4( R1 != R2 ) );"},
                 {"SNE R0.xy, R1, R2;", "R0.xy = float4( R1 != R2 ) ).xy;"},
                 {"SNE R0.x, R1.x, R2.x;", "R0.x = float( R1.x != R2.x );"},
                 {"SNE_SAT R0.x, R1.x, R2.x;", "R0.x = float( R1.x != R2.x );"}});
}

TEST(Instruction, SIN)
{
    expectLines({{"SIN R0, R1.x;", "R0 = float4( metal::sin( R1.x ) );"},
                 {"SIN R0.x, R1.x;", "R0.x = float4( metal::sin( R1.x ) ).x;"},
                 {"SIN_SAT R0, R1.x;", "R0 = float4( metal::clamp( metal::sin( R1.x ), 0.0, 1.0 ) );"},
                 {"SIN_SAT R0.x, R1.x;", "R0.x = float4( metal::clamp( metal::sin( R1.x ), 0.0, 1.0 ) ).x;"}});
}

TEST(Instruction, SLT)
{
    expectLines({{"SLT R0, R1, R2;", "R0 = float4( R1 < R2 );"},
                 {"SLT R0.xyz, R1, R2;", "R0.xyz = float4( R1 < R2 ).xyz;"},
                 {"SLT R0.x, R1.x, R2.x;", "R0.x = float( R1.x < R2.x );"},
                 {"SLT_SAT R0, R1, R2;", "R0 = float4( R1 < R2 );"}});
}

TEST(Instruction, SUB)
{
    expectLines({{"SUB R0, R1, R2;", "R0 = R1 - R2;"},
                 {"SUB R0.xy, R1, -R2;", "R0.xy = ( R1 - -R2 ).xy;"},
                 {"SUB_SAT R0, R1, R2;", "R0 = metal::clamp( R1 - R2, 0.0, 1.0 );"},
                 {"SUB_SAT R0.xy, 1, R2;", "R0.xy = metal::clamp( float4( 1.0 ) - R2, 0.0, 1.0 ).xy;"}});
}

TEST(Instruction, XPD)
{
    expectLines({{"XPD R0, R1, R2;", "R0 = metal::cross( R1.xyz, R2.xyz ).xyz;"},
                 {"XPD R0.xyz, R1, R2;", "R0.xyz = metal::cross( R1.xyz, R2.xyz ).xyz;"},
                 {"XPD R0.x, R1.y, R2;", "R0.x = metal::cross( R1.yyy, R2.xyz ).x;"},
                 {"XPD_SAT R0, R1, R2;", "R0 = metal::clamp( metal::cross( R1.xyz, R2.xyz ), 0.0, 1.0 ).xyz;"},
                 {"XPD_SAT R0.xy, R1, R2;", "R0.xy = metal::clamp( metal::cross( R1.xyz, R2.xyz ), 0.0, 1.0 ).xy;"}});
}

// ---- A number as the destination: the scalar forms that nothing else reaches ---------------------------------

TEST(Instruction, ANumberAsDestinationTakesTheScalarForm)
{
    expectLines({{"COS 1, R1.x;", "1.0 = metal::cos( R1.x );"},
                 {"COS_SAT 1, R1.x;", "1.0 = metal::clamp( metal::cos( R1.x ), 0.0, 1.0 );"},
                 {"SIN_SAT 1, R1.x;", "1.0 = metal::clamp( metal::sin( R1.x ), 0.0, 1.0 );"},
                 {"EX2_SAT 1, R1.x;", "1.0 = metal::clamp( metal::exp2( R1.x ), 0.0, 1.0 );"},
                 {"EXP 1, R1.x;", "1.0 = metal::exp2( R1.x );"},
                 {"LG2_SAT 1, R1.x;", "1.0 = metal::clamp( metal::log2( R1.x ), 0.0, 1.0 );"},
                 {"RCP_SAT 1, R1.x;", "1.0 = metal::clamp( 1.0 / R1.x, 0.0, 1.0 );"},
                 {"RSQ 1, R1.x;", "1.0 = metal::rsqrt( R1.x );"},
                 {"POW_SAT 1, R1.x, 2;", "1.0 = metal::clamp( metal::pow( R1.x, 2.0 ), 0.0, 1.0 );"},
                 {"DP3 1, 2, 3;", "1.0 = metal::dot( 2.0, 3.0 );"},
                 {"DP4_SAT 1, 2, 3;", "1.0 = metal::clamp( metal::dot( 2.0, 3.0 ), 0.0, 1.0 );"}});
}

// ---- Templates -------------------------------------------------------------------------------------------------

std::string filled(int& status, const char* templ)
{
    ZALM::String out("before ");
    status = ZALMetal::ShaderString().AddInstruction(out, templ, "a");
    return translation::textOf(out);
}

TEST(AddInstruction, OneArgumentReplacesEveryOccurrence)
{
    int status = -1;
    EXPECT_EQ(filled(status, "%1 = %1 + %2"), "before a = a + %2");
    EXPECT_EQ(status, 0);
    EXPECT_EQ(filled(status, "no place"), "before no place");
    EXPECT_EQ(filled(status, ""), "before ");
}

TEST(AddInstruction, AppendsWhatItFills)
{
    const ZALMetal::ShaderString shader;
    ZALM::String out("x");
    EXPECT_EQ(shader.AddInstruction(out, "(%1%2)", "a", "b"), 0);
    EXPECT_EQ(shader.AddInstruction(out, "(%3%2%1)", "a", "b", "c"), 0);
    EXPECT_EQ(shader.AddInstruction(out, "(%1%2%3%4)", "a", "b", "c", "d"), 0);
    EXPECT_EQ(shader.AddInstruction(out, "(%1%2%3%4%5)", "a", "b", "c", "d", "e"), 0);
    EXPECT_EQ(shader.AddInstruction(out, "(%6%5%4%3%2%1%1)", "a", "b", "c", "d", "e", "f"), 0);
    EXPECT_EQ(translation::textOf(out), "x(ab)(cba)(abcd)(abcde)(fedcbaa)");
}

TEST(AddInstruction, ANullTemplateIsRefused)
{
    const ZALMetal::ShaderString shader;
    ZALM::String out("x");
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a"), 6);
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a", "b"), 6);
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a", "b", "c"), 6);
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a", "b", "c", "d"), 6);
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a", "b", "c", "d", "e"), 6);
    EXPECT_EQ(shader.AddInstruction(out, nullptr, "a", "b", "c", "d", "e", "f"), 6);
    EXPECT_EQ(translation::textOf(out), "x");
}

TEST(AddInstruction, FillsTheLowestNumberFirst)
{
    ZALM::String out;
    EXPECT_EQ(ZALMetal::ShaderString().AddInstruction(out, "%3 %5", "a", "b"), 0);
    EXPECT_EQ(translation::textOf(out), "a b");
}

} // namespace
