// SPDX-License-Identifier: Apache-2.0
// What the dialect cannot express is named with its place.
#include "normaliser/Normalise.h"

#include <algorithm>
#include <string_view>

namespace
{

using namespace normaliser;

std::string faultOf(const std::string& program)
{
    const Rewritten result = rewrite(program);
    EXPECT_EQ(result.status, ZALMetalResultNotExpressible) << program;
    EXPECT_EQ(result.program, "");
    return result.message;
}

std::string vertexFault(const std::string& statements)
{
    return faultOf("!!ARBvp1.0\n" + statements + "\nEND\n");
}

std::string fragmentFault(const std::string& statements)
{
    return faultOf("!!ARBfp1.0\n" + statements + "\nEND\n");
}

TEST(NormaliseFaults, AddressRegisters)
{
    EXPECT_EQ(
        vertexFault("ADDRESS A0;\nPARAM c[2] = { program.env[0..1] };\nARL A0.x, vertex.position.x;\n"
                    "MOV result.color, c[A0.x + 1];"),
        "2:1: error: address registers cannot be expressed\n4:1: error: ARL: address registers cannot be expressed\n"
        "5:21: error: address registers cannot be expressed\n");
}

TEST(NormaliseFaults, FogLightAndOtherState)
{
    EXPECT_EQ(fragmentFault("OPTION ARB_fog_exp2;"), "2:8: error: ARB_fog_exp2: fog cannot be expressed\n");
    EXPECT_EQ(fragmentFault("PARAM p = state.fog.color;"), "2:11: error: state.fog: fog cannot be expressed\n");
    EXPECT_EQ(fragmentFault("MOV result.color, fragment.fogcoord.x;"),
              "2:19: error: fragment.fogcoord: fog cannot be expressed\n");
    EXPECT_EQ(vertexFault("PARAM p = state.light[0].diffuse;"),
              "2:11: error: state.light: light and material state cannot be expressed\n");
    EXPECT_EQ(vertexFault("PARAM p = state.lightprod[0].front.diffuse;"),
              "2:11: error: state.lightprod: light and material state cannot be expressed\n");
    EXPECT_EQ(vertexFault("PARAM p = state.material.shininess;"),
              "2:11: error: state.material: light and material state cannot be expressed\n");
    EXPECT_EQ(vertexFault("PARAM p = state.clip[0].plane;"), "2:11: error: state: this state cannot be expressed\n");
}

TEST(NormaliseFaults, TextureTargets)
{
    for (const std::string target : {"1D", "SHADOW1D", "SHADOW2D", "SHADOWRECT", "2d"})
        EXPECT_EQ(fragmentFault("TEX result.color, fragment.texcoord[0], texture[0], " + target + ";"),
                  "2:53: error: " + target + ": this texture target cannot be expressed\n");
}

TEST(NormaliseFaults, Sampling)
{
    EXPECT_EQ(fragmentFault("TXB result.color, fragment.color, texture[0], 2D;"),
              "2:1: error: TXB: sampling with a bias or a level of detail cannot be expressed\n");
    EXPECT_EQ(fragmentFault("TEX result.color, fragment.color, texture[32], 2D;"),
              "2:35: error: there is no texture unit above 31\n");
    EXPECT_EQ(fragmentFault("TEX result.color, fragment.color, color[0], 2D;"),
              "2:35: error: a texture unit is missing\n");
}

TEST(NormaliseFaults, AttributesThatDoNotReachAProgram)
{
    const std::string reason = ": this attribute does not reach a program\n";
    EXPECT_EQ(vertexFault("MOV result.color, vertex.attrib[4];"), "2:19: error: vertex.attrib[4]" + reason);
    EXPECT_EQ(vertexFault("MOV result.color, vertex.weight;"), "2:19: error: vertex.weight[#]" + reason);
    EXPECT_EQ(vertexFault("MOV result.color, vertex.color.secondary;"), "2:19: error: vertex.color.secondary" + reason);
    EXPECT_EQ(vertexFault("MOV result.color, vertex.fogcoord;"), "2:19: error: vertex.fogcoord" + reason);
    EXPECT_EQ(vertexFault("MOV result.color, vertex.attrib[16];"),
              "2:19: error: vertex.attrib[#]: there is no index above 15\n");
}

TEST(NormaliseFaults, ResultsAndInputs)
{
    EXPECT_EQ(vertexFault("MOV result.pointsize, 1;"), "2:5: error: result: this result cannot be expressed\n");
    EXPECT_EQ(vertexFault("MOV result.color.back, 1;"),
              "2:5: error: result.color.back: this result cannot be expressed\n");
    EXPECT_EQ(vertexFault("MOV result.texcoord[8], 1;"), "2:5: error: result.texcoord[#]: there is no index above 7\n");
    EXPECT_EQ(fragmentFault("MOV result.color, fragment.color.secondary;"),
              "2:19: error: fragment.color.secondary: this input does not reach a program\n");
}

TEST(NormaliseFaults, Matrices)
{
    EXPECT_EQ(vertexFault("PARAM m[4] = { state.matrix.program[0] };"),
              "2:16: error: state.matrix.program: there is no such matrix here\n");
    EXPECT_EQ(vertexFault("PARAM m[4] = { state.matrix.texture[4] };"),
              "2:16: error: state.matrix.texture: there is no such matrix here\n");
    EXPECT_EQ(vertexFault("PARAM m[4] = { state.matrix.modelview[1] };"),
              "2:16: error: state.matrix.modelview: there is no such matrix here\n");
    EXPECT_EQ(vertexFault("PARAM m = state.matrix.mvp;"), "2:11: error: several values stand where one fits\n");
}

TEST(NormaliseFaults, Parameters)
{
    EXPECT_EQ(vertexFault("PARAM p = program.env[128];"), "2:11: error: program.env[#]: there is no index above 127\n");
    EXPECT_EQ(vertexFault("PARAM p = program.local[256];"),
              "2:11: error: program.local[#]: there is no index above 255\n");
    EXPECT_EQ(vertexFault("PARAM p = program.env[0];\nPARAM q = program.local[128];"),
              "3:11: error: a local from 128 on lies where the program's env parameters are put\n");
    EXPECT_EQ(vertexFault("PARAM p[2] = { 1, 2, 3 };"), "2:7: error: the array has room for 2, not for 3\n");
    EXPECT_EQ(vertexFault("PARAM p[1] = { 1 };\nMOV result.color, p[1];"), "3:19: error: p has no element 1\n");
    EXPECT_EQ(vertexFault("PARAM p = { 1, 2, 3, 4, 5 };"), "2:11: error: a vector has four components\n");
}

TEST(NormaliseFaults, ValuesThatNoParameterHas)
{
    const std::string reason = ": error: neither a constant nor a parameter\n";
    EXPECT_EQ(vertexFault("PARAM p = vertex.position;"), "2:11" + reason);
    EXPECT_EQ(vertexFault("PARAM p[2] = { vertex.attrib[2..3] };"), "2:16" + reason);
    EXPECT_EQ(vertexFault("TEMP a;\nPARAM p = a;"), "3:11" + reason);
    EXPECT_EQ(vertexFault("PARAM a[1] = { 1 };\nPARAM p[1] = { a };"), "3:16" + reason);
}

TEST(NormaliseFaults, OptionsAndInstructionsThatAreNotKnown)
{
    EXPECT_EQ(fragmentFault("OPTION NV_something;"), "2:8: error: NV_something: this option cannot be expressed\n");
    EXPECT_EQ(fragmentFault("FOO result.color, 1;"), "2:1: error: FOO: this instruction cannot be expressed\n");
    EXPECT_EQ(fragmentFault("ADD.SSAT result.color, 1, 2;"), "2:5: error: .SSAT: this modifier cannot be expressed\n");
    EXPECT_EQ(fragmentFault("DDX result.color, 1;"), "2:1: error: DDX: derivatives cannot be expressed\n");
    EXPECT_EQ(fragmentFault("IF TR;"), "2:4: error: TR: this condition cannot be expressed\n");
    EXPECT_EQ(fragmentFault("IF NE1.x;"), "2:4: error: NE1: this condition cannot be expressed\n");
    EXPECT_EQ(fragmentFault("BRK (NE.x);"), "2:5: error: a test of condition codes cannot be expressed\n");
    EXPECT_EQ(fragmentFault("MOV result.color (NE.x), 1;"),
              "2:18: error: a mask by condition codes cannot be expressed\n");
}

TEST(NormaliseFaults, WhatIsNoProgram)
{
    EXPECT_EQ(faultOf("!!ARBvp2.0\nEND"),
              "1:1: error: the program does not begin with !!ARBvp1.0, !!ARBfp1.0, !!NVvp4.0 or !!NVfp4.0\n");
    EXPECT_EQ(faultOf("!!ARBfp1.0\nTEMP a;\n"), "3:1: error: the program has no END\n");
    EXPECT_EQ(fragmentFault("MOV result.color, a;"), "2:19: error: \"a\" is not declared\n");
    EXPECT_EQ(fragmentFault("TEMP a;\nTEMP a;"), "3:6: error: \"a\" is declared twice\n");
    EXPECT_EQ(fragmentFault("TEMP a;\nMOV a, a.xyq;"), "3:8: error: \".xyq\" is not a part of \"a\"\n");
    EXPECT_EQ(fragmentFault("TEMP a;\nMOV a.yx, a;"),
              "3:5: error: the letters of a mask stand in the order of x, y, z, w\n");
    EXPECT_EQ(fragmentFault("PARAM a = 1;\nMOV a, 1;"), "3:5: error: \"a\" cannot be written\n");
    EXPECT_EQ(fragmentFault("MOV result.color 1;"), "2:18: error: \",\" is missing before \"1\"\n");
    EXPECT_EQ(fragmentFault("MOV result.color, 1 2;"), "2:21: error: \";\" is missing before \"2\"\n");
}

TEST(NormaliseFaults, BlocksThatDoNotMatch)
{
    EXPECT_EQ(fragmentFault("ELSE;"), "2:1: error: ELSE stands in no block of its own\n");
    EXPECT_EQ(fragmentFault("REP 2;\nENDIF;\nENDREP;"), "3:1: error: ENDIF stands in no block of its own\n");
    EXPECT_EQ(fragmentFault("IF NE;\nBRK;\nENDIF;"), "3:1: error: BRK stands in no block of its own\n");
    EXPECT_EQ(fragmentFault("IF NE;\nELSE;\nELSE;\nENDIF;"), "4:1: error: ELSE stands in no block of its own\n");
    EXPECT_EQ(fragmentFault("IF NE;"), "3:1: error: a block is not closed\n");
}

TEST(NormaliseFaults, MoreLoopsInEachOtherThanThereAreVariables)
{
    std::string program;
    for (int depth = 0; depth < 19; ++depth)
        program += "REP 2;";
    for (int depth = 0; depth < 18; ++depth)
        program += "ENDREP;";
    EXPECT_EQ(fragmentFault(program), "2:109: error: loops are nested too deeply\n");
}

struct FaultRow
{
    const char* statements;
    const char* fault; // place and reason
};

std::string expected(const FaultRow& row)
{
    const std::string_view fault = row.fault;
    const size_t place = fault.find(' ');
    return std::string(fault.substr(0, place)) + " error:" + std::string(fault.substr(place)) + "\n";
}

TEST(NormaliseFaults, VertexStatementsThatAreNotWellFormed)
{
    constexpr FaultRow rows[] = {
        {"TEMP a[2];", "2:7: arrays of temporaries cannot be expressed"},
        {"ATTRIB a[2] = { vertex.attrib[2..3] };", "2:9: arrays of attributes and results cannot be expressed"},
        {"OUTPUT o[2] = { result.texcoord[0..1] };", "2:9: arrays of attributes and results cannot be expressed"},
        {"ATTRIB p = program.env[0];", "2:12: neither an attribute nor a result"},
        {"ATTRIB p = vertex.position.x;", "2:12: neither an attribute nor a result"},
        {"ATTRIB p = state.matrix.mvp;", "2:12: neither an attribute nor a result"},
        {"PARAM p = program.env[0].x;", "2:11: a parameter is a whole vector"},
        {"PARAM p[1] = { program.env[0].x };", "2:16: an element is a whole vector"},
        {"PARAM p = program.env[0..1];", "2:11: several values stand where one fits"},
        {"PARAM p = program.env[1.5];", "2:23: an index is not a small whole number"},
        {"PARAM p = program.env[99999999];", "2:23: an index is not a small whole number"},
        {"PARAM p = program.env[x];", "2:23: address registers cannot be expressed"},
        {"PARAM p[2] = { program.env[3..1] };", "2:32: a range runs backward"},
        {"PARAM p[2] = { 1, 2 };\nMOV result.color, p[0..1];", "3:19: a range stands where one value fits"},
        {"PARAM p[2] = { 1, 2 };\nMOV result.color, p;", "3:19: several values stand where one fits"},
        {"TEMP a;\nMOV a[0], 1;", "3:5: a is not an array"},
        {"MOV result.texcoord[0..1], 1;", "2:5: several values stand where one fits"},
        {"PARAM p = state.matrix.mvp.row[4];", "2:11: a matrix has rows 0 to 3"},
        {"PARAM p = state.matrix.mvp.row;", "2:11: \".row\" is not a part of \"mvp\""},
        {"PARAM p = state.matrix.mvp.row[0..1];", "2:11: several values stand where one fits"},
        {"PARAM p = state.matrix.texture[0..1].row[0];", "2:11: state.matrix.texture: there is no such matrix here"},
        {"PARAM p = state.matrix;", "2:11: state: this state cannot be expressed"},
        {"PARAM p = state;", "2:11: state: this state cannot be expressed"},
        {"PARAM p = -{1, 2};", "2:12: a number is missing before \"{\""},
        {"PARAM p = {1, a};", "2:15: a number is missing before \"a\""},
        {"PARAM p = {1, -};", "2:16: a number is missing before \"}\""},
        {"PARAM p = ;", "2:11: a number is missing before \";\""},
        {"PARAM = 1;", "2:7: a name is missing before \"=\""},
        {"PARAM p[a] = { 1 };", "2:9: an index is not a small whole number"},
        {"PARAM p[] = 1;", "2:13: \"{\" is missing before \"1\""},
        {"1 2;", "2:1: a statement begins with a word"},
        {"ADD.1 a, b, c;", "2:4: a name is missing before \".1\""},
        {"TEMP a;\nMOV a.xyzwx, a;", "3:5: \".xyzwx\" is not a part of \"a\""},
        {"TEMP a;\nMOV a.xx, a;", "3:5: the letters of a mask stand in the order of x, y, z, w"},
        {"TEMP a;\nMOV a.x.y, a;", "3:5: \".x\" is not a part of \"a\""},
        {"TEMP a;\nMOV a.x[0], a;", "3:5: \".x\" is not a part of \"a\""},
        {"TEMP a;\nSWZ a, a, x, y, z, 2;", "3:20: an extended swizzle has letters, 0 and 1"},
        {"TEMP a;\nSWZ a, a, x, y, z;", "3:18: \",\" is missing before \";\""},
        {"TEMP a;\nSWZ a, a, x, y, z, q;", "3:20: an extended swizzle has letters, 0 and 1"},
        {"TEMP a;\nMOV |a|, a;", "3:5: a name is missing before \"|\""},
        {"TEMP a;\nMOV a, |a;", "3:10: \"|\" is missing before \";\""},
        {"TEMP ;", "2:6: a name is missing before \";\""},
        {"ALIAS a = b;", "2:11: \"b\" is not declared"},
        {"ALIAS a = 1;", "2:11: a name is missing before \"1\""},
        {"ALIAS = a;", "2:7: a name is missing before \"=\""},
        {"OPTION ;", "2:8: an option's name is missing before \";\""},
        {"OUTPUT o = result;", "2:12: result: this result cannot be expressed"},
        {"ATTRIB p vertex.position;", "2:10: \"=\" is missing before \"vertex\""},
    };
    for (const FaultRow& row : rows)
        EXPECT_EQ(vertexFault(row.statements), expected(row)) << row.statements;
}

TEST(NormaliseFaults, FragmentStatementsThatAreNotWellFormed)
{
    constexpr FaultRow rows[] = {
        {"TEX result.color, fragment.texcoord[0], texture[0].x, 2D;", "2:41: a texture unit is missing"},
        {"TEX result.color, fragment.texcoord[0], texture[0..1], 2D;", "2:41: a texture unit is missing"},
        {"TEX result.color, fragment.texcoord[0], texture[0], 2D, (1, 2);",
         "2:55: offsets of texture coordinates cannot be expressed"},
        {"TEX result.color, fragment.texcoord[0], texture[0], ;", "2:53: a texture target is missing before \";\""},
        {"TEX result.color, fragment.texcoord[0], 2D;", "2:41: a texture unit is missing"},
        {"MOV result.color[16], 1;", "2:5: result.color[#]: there is no index above 7"},
        {"MOV fragment.color, 1;", "2:5: \"fragment.color\" cannot be written"},
        {"KIL NE.x;", "2:5: \"NE\" is not declared"},
        {"IF ;", "2:4: a name is missing before \";\""},
        {"IF NE.q;", "2:4: \".q\" is not a part of \"NE\""},
        {"ENDREP;", "2:1: ENDREP stands in no block of its own"},
        {"CONT;", "2:1: CONT stands in no block of its own"},
        {"REP 2;\nELSE;\nENDREP;", "3:1: ELSE stands in no block of its own"},
    };
    for (const FaultRow& row : rows)
        EXPECT_EQ(fragmentFault(row.statements), expected(row)) << row.statements;
}

TEST(NormaliseFaults, AllOfThemAreNamedInOrder)
{
    EXPECT_EQ(fragmentFault("DDX a, b;\nTEMP t;\nMOV t, 1;\n  TXB t, t, texture[0], 2D;"),
              "2:1: error: DDX: derivatives cannot be expressed\n"
              "5:3: error: TXB: sampling with a bias or a level of detail cannot be expressed\n");
}

TEST(NormaliseFaults, ALongListOfThemEnds)
{
    std::string program;
    for (int i = 0; i < 1000; ++i)
        program += "nonsense;\n";
    const std::string message = fragmentFault(program);
    EXPECT_EQ(std::count(message.begin(), message.end(), '\n'), 64);
}

} // namespace
