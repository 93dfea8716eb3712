// SPDX-License-Identifier: Apache-2.0
// The assembly programs of the demo scene, in the dialect that this library and any other GL with the ARB program
// extensions accept.
#pragma once

#include <string_view>

namespace scenes {

/// Eye-space position and normal go on to the fragment stage.
inline constexpr std::string_view LitVertexProgram = R"(!!ARBvp1.0
TEMP eye, normal;
DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];
DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];
DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];
DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];
DP4 eye.x, state.matrix.modelview.row[0], vertex.attrib[0];
DP4 eye.y, state.matrix.modelview.row[1], vertex.attrib[0];
DP4 eye.z, state.matrix.modelview.row[2], vertex.attrib[0];
MOV eye.w, 1.0;
DP3 normal.x, state.matrix.modelview.invtrans.row[0], vertex.attrib[2];
DP3 normal.y, state.matrix.modelview.invtrans.row[1], vertex.attrib[2];
DP3 normal.z, state.matrix.modelview.invtrans.row[2], vertex.attrib[2];
MOV normal.w, 0.0;
MOV result.texcoord[0], vertex.attrib[8];
MOV result.texcoord[1], normal;
MOV result.texcoord[2], eye;
END
)";

/// Two directional lights and a highlight for each pixel, on a textured surface seen from both sides.
/// Locals: 0 key direction, 1 key colour, 2 fill direction, 3 fill colour, 4 ambient colour, 5 highlight colour and
/// exponent (w). Directions are unit vectors in eye space, towards the light.
inline constexpr std::string_view LitFragmentProgram = R"(!!ARBfp1.0
PARAM keyDirection = program.local[0];
PARAM keyColor = program.local[1];
PARAM fillDirection = program.local[2];
PARAM fillColor = program.local[3];
PARAM ambient = program.local[4];
PARAM shine = program.local[5];
TEMP albedo, normal, view, middle, amount, shade;
TEX albedo, fragment.texcoord[0], texture[0], 2D;
DP3 normal.w, fragment.texcoord[1], fragment.texcoord[1];
RSQ normal.w, normal.w;
MUL normal.xyz, fragment.texcoord[1], normal.w;
DP3 view.w, fragment.texcoord[2], fragment.texcoord[2];
RSQ view.w, view.w;
MUL view.xyz, -fragment.texcoord[2], view.w;
DP3 amount.w, normal, view;
CMP normal.xyz, amount.w, -normal, normal;
DP3_SAT amount.x, normal, keyDirection;
DP3_SAT amount.y, normal, fillDirection;
MAD shade.xyz, keyColor, amount.x, ambient;
MAD shade.xyz, fillColor, amount.y, shade;
MUL shade.xyz, shade, albedo;
ADD middle.xyz, view, keyDirection;
DP3 middle.w, middle, middle;
RSQ middle.w, middle.w;
MUL middle.xyz, middle, middle.w;
DP3_SAT amount.z, normal, middle;
POW amount.z, amount.z, shine.w;
MAD result.color.xyz, shine, amount.z, shade;
MOV result.color.w, 1.0;
END
)";

/// A floor that fades into the background with the distance from its middle, with a soft shadow under the model.
/// Locals: 0 floor tint, 1 background colour, 2 shadow fall-off (x), shadow strength (y), fade factor (z).
inline constexpr std::string_view FloorFragmentProgram = R"(!!ARBfp1.0
PARAM tint = program.local[0];
PARAM background = program.local[1];
PARAM shape = program.local[2];
TEMP albedo, shade, amount;
TEX albedo, fragment.texcoord[0], texture[0], 2D;
DP3 amount.x, fragment.texcoord[0], fragment.texcoord[0];
MUL amount.y, amount.x, -shape.x;
EX2 amount.y, amount.y;
MAD amount.y, amount.y, -shape.y, 1.0;
MAD_SAT amount.z, amount.x, -shape.z, 1.0;
MUL shade.xyz, albedo, tint;
MUL shade.xyz, shade, amount.y;
LRP result.color.xyz, amount.z, shade, background;
MOV result.color.w, 1.0;
END
)";

} // namespace scenes
