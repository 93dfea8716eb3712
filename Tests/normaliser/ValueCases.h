// SPDX-License-Identifier: Apache-2.0
// Standard programs whose results are drawn as colours, by a GL that reads them as they are and by this library after
// rewriting. Every result lies between 0 and 1. A case that brings one stage only is drawn with a plain other one.
#pragma once

#include <array>
#include <string_view>

namespace normaliser
{

inline constexpr std::string_view PlainVertex = R"(!!ARBvp1.0
OPTION ARB_position_invariant;
MOV result.color, vertex.color;
MOV result.texcoord[0], vertex.texcoord[0];
MOV result.texcoord[1], vertex.texcoord[1];
END)";

inline constexpr std::string_view PlainFragment = "!!ARBfp1.0\nMOV result.color, fragment.color;\nEND";

struct ValueCase
{
    const char* name;
    std::string_view vertex;
    std::string_view fragment;
};

inline constexpr std::array ValueCases = std::to_array<ValueCase>({
    {"layout", PlainVertex, R"(!!ARBfp1.0 # a comment behind the header
OPTION ARB_precision_hint_nicest;
ATTRIB half = fragment.texcoord[0]; # names that the shading language wants for itself
ATTRIB col = fragment.color.primary;
OUTPUT out = result.color;
TEMP in, float4;
ALIAS again = in;
MOV in,
    half; MUL float4.rg, again.grba,
    col.b; # two statements in a line, one over two
MOV float4.ba, {0.25}.x;
MOV out, float4;
END)"},

    {"constants", PlainVertex, R"(!!ARBfp1.0
PARAM scalar = 0.25;
PARAM two = { 0.125, 0.5 };
PARAM table[3] = { { 0.5 }, program.local[1], 0.0625 };
TEMP a;
MAD a, fragment.color, {.5, 2.5e-1, 1}, two;
ADD a.x, a, -scalar;
MAD result.color, a, table[0].x, table[1].wzyx;
MOV result.color.w, table[0].w;
END)"},

    {"parameters", PlainVertex, R"(!!ARBfp1.0
PARAM e[2] = { program.env[1..2] };
TEMP a;
MUL a, fragment.color, program.env[0];
MAD a, a, e[0], e[1];
MUL result.color, a, program.local[2];
END)"},

    {"scalars", PlainVertex, R"(!!ARBfp1.0
TEMP a;
ADD a, fragment.color, 1.0;
RSQ result.color.x, -a.x;
RCP result.color.y, a.y;
EX2 result.color.z, -a.z;
LG2 a.w, a.x;
POW result.color.w, a.w, {2}.x;
END)"},

    {"lighting factors", PlainVertex, R"(!!ARBfp1.0
TEMP a;
SUB a, fragment.texcoord[0], 0.5;
MOV a.w, 3;
LIT a, a.xyzw;
MOV result.color, a.yzxw;
END)"},

    {"lighting factors in part", PlainVertex, R"(!!ARBfp1.0
TEMP a;
MOV a, fragment.texcoord[0];
MOV result.color, 0.5;
LIT_SAT result.color.yz, a.xyyx;
END)"},

    {"distance", PlainVertex, R"(!!ARBfp1.0
TEMP a, b;
MOV a, fragment.color;
MOV b, fragment.texcoord[0];
DST a, a, b;
MUL result.color, a, 0.75;
END)"},

    {"homogeneous", PlainVertex, R"(!!ARBfp1.0
TEMP a;
MUL a, fragment.color, { 0.2, 0.3, 0.1, 1 };
DPH_SAT a.xy, a, fragment.texcoord[0].zyxw;
DPH a.zw, -a, fragment.color;
MAD result.color, a, 0.5, 0.25;
END)"},

    {"cross product", PlainVertex, R"(!!ARBfp1.0
TEMP n;
XPD n, fragment.color, fragment.texcoord[0].yzxw;
MAD result.color.xyz, n, 0.5, 0.5;
MOV result.color.w, 1;
END)"},

    {"sine and cosine", PlainVertex, R"(!!ARBfp1.0
TEMP a;
MUL a.x, fragment.texcoord[0].x, 3.0;
SCS a.xy, a.x;
MAD result.color, a.xyxy, 0.5, 0.5;
END)"},

    {"extended swizzle", PlainVertex, R"(!!ARBfp1.0
TEMP a;
MOV a, fragment.color;
SWZ a, a, -y, x, 1, z;
ADD a.x, a, 1;
SWZ result.color, a, w, x, -0, y;
END)"},

    {"projected sampling", PlainVertex, R"(!!ARBfp1.0
TEMP q, t;
MOV q, fragment.texcoord[0];
MOV q.w, 2;
TXP t, q, texture[0], 2D;
TEX result.color, fragment.texcoord[1], texture[0], 2D;
MOV result.color.xy, t;
END)"},

    {"choices", PlainVertex, R"(!!ARBfp1.0
TEMP a, b;
SUB a, fragment.color.xyzx, fragment.texcoord[0];
CMP b, a, 0.25, fragment.color;
LRP b.xy, fragment.texcoord[0].x, b, {1, 0};
SGE a, a, 0.1;
SLT b.w, fragment.color.x, 0.3;
MAX a, a, b;
MIN result.color, a, 0.9;
KIL b.w;
SUB a.x, 0.9, fragment.texcoord[0].y;
KIL a.x;
END)"},

    {"parts of numbers", PlainVertex, R"(!!ARBfp1.0
TEMP a;
MUL a, fragment.texcoord[0], {3, -3, 5, 1};
FRC result.color.x, a;
FLR a.y, a;
ABS a.y, a.y;
MUL result.color.y, a.y, 0.25;
COS a.z, a.z;
SIN a.w, a.x;
MAD_SAT result.color.zw, a, 0.5, 0.5;
END)"},

    {"normal with a fourth component", R"(!!ARBvp1.0
OPTION ARB_position_invariant;
MAD result.color, vertex.normal, 0.5, 0.5;
END)",
     PlainFragment},

    {"matrix rows", R"(!!ARBvp1.0
PARAM mvp[4] = { state.matrix.mvp };
PARAM view[4] = { state.matrix.modelview[0] };
PARAM inverse[4] = { state.matrix.modelview.inverse };
PARAM rows[2] = { state.matrix.modelview.inverse.row[1..2] };
PARAM last = state.matrix.modelview.invtrans.row[3];
TEMP a;
DP4 result.position.x, mvp[0], vertex.position;
DP4 result.position.y, mvp[1], vertex.position;
DP4 result.position.z, mvp[2], vertex.position;
DP4 result.position.w, mvp[3], vertex.position;
DP4 a.x, view[0], vertex.position;
DP4 a.y, inverse[1], vertex.position;
DP4 a.z, rows[1], vertex.color;
DP4 a.w, last, vertex.color;
MAD result.color, a, 0.125, 0.5;
END)",
     PlainFragment},

    {"texture matrices", R"(!!ARBvp1.0
OPTION ARB_position_invariant;
TEMP a;
DP4 a.x, state.matrix.texture[0].row[0], vertex.texcoord[0];
DP4 a.y, state.matrix.texture.inverse.row[1], vertex.texcoord;
DP4 a.z, state.matrix.texture[0].transpose.row[0], vertex.texcoord[0];
DP4 a.w, state.matrix.texture[0].invtrans.row[3], vertex.texcoord[0];
MAD result.color, a, 0.125, 0.5;
END)",
     PlainFragment},

    {"logarithm", R"(!!ARBvp1.0
OPTION ARB_position_invariant;
TEMP a;
MAD a, vertex.color, 7, 0.3;
LOG a, -a.x;
MUL result.color, a, { 0.25, 0.5, 0.25, 1 };
END)",
     PlainFragment},

    {"exponential", R"(!!ARBvp1.0
OPTION ARB_position_invariant;
TEMP a;
MAD a.x, vertex.color.y, -3.5, 0.25;
EXP a, a.x;
MUL result.color, a, 0.75;
END)",
     PlainFragment},

    {"blended matrices", R"(!!ARBvp1.0
ATTRIB weight = vertex.texcoord[1];
PARAM bones[6] = { program.env[0..2], program.local[0..2] };
TEMP a, b, t;
DP4 a.x, bones[0], vertex.position;
DP4 a.y, bones[1], vertex.position;
DP4 a.z, bones[2], vertex.position;
DPH b.x, vertex.position, bones[3];
DPH b.y, vertex.position, bones[4];
DPH b.z, vertex.position, bones[5];
SUB t, b, a;
MAD a.xyz, weight.x, t, a;
MAD result.color, a.xyzx, 0.25, 0.5;
OUTPUT place = result.position;
DP4 place.x, state.matrix.mvp.row[0], vertex.position;
DP4 place.y, state.matrix.mvp.row[1], vertex.position;
DP4 place.z, state.matrix.mvp.row[2], vertex.position;
DP4 place.w, state.matrix.mvp.row[3], vertex.position;
END)",
     PlainFragment},

    {"lit vertices", R"(!!ARBvp1.0
OPTION ARB_position_invariant;
TEMP n, light, lit;
DP3 n.x, state.matrix.modelview.invtrans.row[0], vertex.normal;
DP3 n.y, state.matrix.modelview.invtrans.row[1], vertex.normal;
DP3 n.z, state.matrix.modelview.invtrans.row[2], vertex.normal;
DP3 n.w, n, n;
RSQ n.w, n.w;
MUL n.xyz, n, n.w;
DP3 light.x, n, program.local[0];
DP3 light.y, n, program.env[1];
MOV light.w, 5;
LIT lit, light;
MUL result.color.xyz, lit.y, 0.5;
MAD result.color.xyz, lit.z, { 0.25, 0.125, 0.0625 }, 0.125;
MOV result.color.w, lit.w;
MOV result.fogcoord, light.x;
MOV result.color.secondary, lit;
END)",
     PlainFragment},
});

} // namespace normaliser
