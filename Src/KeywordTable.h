// SPDX-License-Identifier: Apache-2.0
// The bindings of an assembly program, in the order in which they enter the keyword tree. "[#]" takes any index;
// "#n" in a replacement is the index of the binding's component n, counted from 0.
#pragma once

#include "ShaderKeywords.h"

#include <array>

namespace ZALMetal
{

struct KeywordRow
{
    SHADER_PROGRAM program;
    const char* binding;
    const char* replacement;
    KEYWORD_TYPE type;
    int index; // attribute or colour output, -1 for none
};

// clang-format off
inline constexpr std::array kKeywordRows = std::to_array<KeywordRow>({
    {VERTEX_PROGRAM,   "vertex.attrib[0]",                         "a_vertexpos", KEYWORD_ATTRIBUTE, 0},
    {VERTEX_PROGRAM,   "vertex.attrib[2]",                         "a_normal.xyzx", KEYWORD_ATTRIBUTE, 2},
    {VERTEX_PROGRAM,   "vertex.attrib[3]",                         "a_color", KEYWORD_ATTRIBUTE, 3},
    // Kept on purpose: [undeclared-gl-names] no gl_* name is declared in the generated source, so its use does not compile.
    {VERTEX_PROGRAM,   "vertex.attrib[4]",                         "gl_SecondaryColor", KEYWORD_ATTRIBUTE, -1},
    {VERTEX_PROGRAM,   "vertex.attrib[8]",                         "a_texcoord0", KEYWORD_ATTRIBUTE, 8},
    {VERTEX_PROGRAM,   "vertex.attrib[9]",                         "a_texcoord1", KEYWORD_ATTRIBUTE, 9},
    {VERTEX_PROGRAM,   "vertex.attrib[10]",                        "a_texcoord2", KEYWORD_ATTRIBUTE, 10},
    {VERTEX_PROGRAM,   "vertex.attrib[11]",                        "a_texcoord3", KEYWORD_ATTRIBUTE, 11},
    {VERTEX_PROGRAM,   "vertex.attrib[12]",                        "a_texcoord4", KEYWORD_ATTRIBUTE, 12},
    {VERTEX_PROGRAM,   "vertex.attrib[13]",                        "a_texcoord5", KEYWORD_ATTRIBUTE, 13},
    {VERTEX_PROGRAM,   "vertex.attrib[14]",                        "a_texcoord6", KEYWORD_ATTRIBUTE, 14},
    {VERTEX_PROGRAM,   "vertex.attrib[15]",                        "a_texcoord7", KEYWORD_ATTRIBUTE, 15},
    {VERTEX_PROGRAM,   "vertex.color",                             "a_color", KEYWORD_ATTRIBUTE, 3},
    {VERTEX_PROGRAM,   "vertex.color.primary",                     "a_color", KEYWORD_ATTRIBUTE, 3},
    {VERTEX_PROGRAM,   "vertex.color.secondary",                   "gl_SecondaryColor", KEYWORD_ATTRIBUTE, -1},
    {VERTEX_PROGRAM,   "vertex.normal",                            "gl_Normal.xyzx", KEYWORD_ATTRIBUTE, -1},
    {VERTEX_PROGRAM,   "vertex.position",                          "gl_Vertex", KEYWORD_ATTRIBUTE, -1},
    // Kept on purpose: [texcoord-index] the index is -1 although attributes 8 to 15 are read, so bit 31 of the mask is set.
    {VERTEX_PROGRAM,   "vertex.texcoord[#]",                       "a_texcoord#1", KEYWORD_ATTRIBUTE, -1},
    // Kept on purpose: [vertex-color-unclamped] old GL clamps a vertex program's colours to [0, 1]; here they go on as they are.
    {VERTEX_PROGRAM,   "result.color",                             "result.color", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.primary",                     "result.color", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.secondary",                   "gl_FrontSecondaryColor", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.front",                       "result.color", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.front.primary",               "result.color", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.front.secondary",             "gl_FrontSecondaryColor", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.back",                        "gl_BackColor", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.back.primary",                "gl_BackColor", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.color.back.secondary",              "gl_BackSecondaryColor", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.position",                          "result.position", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "result.texcoord[#]",                       "result.texcoord#1", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview",                   "state_matrix.modelview", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.row[#]",            "float4( state_matrix.modelview[0][#3], state_matrix.modelview[1][#3], state_matrix.modelview[2][#3], state_matrix.modelview[3][#3] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.inverse",           "state_matrix.modelview_inv", KEYWORD_PLAIN, -1},
    // Kept on purpose: [modelview-inverse-row] rows of the inverse are read from the matrix itself.
    {VERTEX_PROGRAM,   "state.matrix.modelview.inverse.row[#]",    "float4( state_matrix.modelview[0][#4], state_matrix.modelview[1][#4], state_matrix.modelview[2][#4], state_matrix.modelview[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.transpose",         "state_matrix.modelview_trans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.transpose.row[#]",  "float4( state_matrix.modelview_trans[0][#4], state_matrix.modelview_trans[1][#4], state_matrix.modelview_trans[2][#4], state_matrix.modelview_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.invtrans",          "state_matrix.modelview_invtrans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.modelview.invtrans.row[#]",   "float4( state_matrix.modelview_invtrans[0][#4], state_matrix.modelview_invtrans[1][#4], state_matrix.modelview_invtrans[2][#4], state_matrix.modelview_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection",                  "state_matrix.projection", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.row[#]",           "float4( state_matrix.projection[0][#3], state_matrix.projection[1][#3], state_matrix.projection[2][#3], state_matrix.projection[3][#3] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.inverse",          "state_matrix.projection_inv", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.inverse.row[#]",   "float4( state_matrix.projection_inv[0][#4], state_matrix.projection_inv[1][#4], state_matrix.projection_inv[2][#4], state_matrix.projection_inv[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.transpose",        "state_matrix.projection_trans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.transpose.row[#]", "float4( state_matrix.projection_trans[0][#4], state_matrix.projection_trans[1][#4], state_matrix.projection_trans[2][#4], state_matrix.projection_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.invtrans",         "state_matrix.projection_invtrans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.projection.invtrans.row[#]",  "float4( state_matrix.projection_invtrans[0][#4], state_matrix.projection_invtrans[1][#4], state_matrix.projection_invtrans[2][#4], state_matrix.projection_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp",                         "state_matrix.mvp", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.row[#]",                  "float4( state_matrix.mvp[0][#3], state_matrix.mvp[1][#3], state_matrix.mvp[2][#3], state_matrix.mvp[3][#3] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.inverse",                 "state_matrix.mvp_inv", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.inverse.row[#]",          "float4( state_matrix.mvp_inv[0][#4], state_matrix.mvp_inv[1][#4], state_matrix.mvp_inv[2][#4], state_matrix.mvp_inv[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.transpose",               "state_matrix.mvp_trans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.transpose.row[#]",        "float4( state_matrix.mvp_trans[0][#4], state_matrix.mvp_trans[1][#4], state_matrix.mvp_trans[2][#4], state_matrix.mvp_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.invtrans",                "state_matrix.mvp_invtrans", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.mvp.invtrans.row[#]",         "float4( state_matrix.mvp_invtrans[0][#4], state_matrix.mvp_invtrans[1][#4], state_matrix.mvp_invtrans[2][#4], state_matrix.mvp_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#]",                  "state_matrix.texture[#2]", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].row[#]",           "float4( state_matrix.texture[#2][0][#3], state_matrix.texture[#2][1][#3], state_matrix.texture[#2][2][#3], state_matrix.texture[#2][3][#3] )", KEYWORD_PLAIN, -1},
    // Kept on purpose: [texture-inverse-vertex] the vertex form names program_inv, a member that the matrix block does not have.
    // Kept on purpose: [texture-matrix-parenthesis] whole inverse, transposed and inverse-transposed matrices end in " )".
    {VERTEX_PROGRAM,   "state.matrix.texture[#].inverse",          "state_matrix.program_inv[#2] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].inverse.row[#]",   "float4( state_matrix.texture_inv[#2][0][#4], state_matrix.texture_inv[#2][1][#4], state_matrix.texture_inv[#2][2][#4], state_matrix.texture_inv[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].transpose",        "state_matrix.texture_trans[#2] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].transpose.row[#]", "float4( state_matrix.texture_trans[#2][0][#4], state_matrix.texture_trans[#2][1][#4], state_matrix.texture_trans[#2][2][#4], state_matrix.texture_trans[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].invtrans",         "state_matrix.texture_invtrans[#2] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "state.matrix.texture[#].invtrans.row[#]",  "float4( state_matrix.texture_invtrans[#2][0][#4], state_matrix.texture_invtrans[#2][1][#4], state_matrix.texture_invtrans[#2][2][#4], state_matrix.texture_invtrans[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "fragment.color",                           "varying.color", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "fragment.color.primary",                   "varying.color", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "fragment.color.secondary",                 "gl_SecondaryColor", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "fragment.position",                        "glfragcoord", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "fragment.texcoord[#]",                     "varying.texcoord#1", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "result.color",                             "result.color0", KEYWORD_RESULT_COLOR, 0},
    {FRAGMENT_PROGRAM, "result.color[0]",                          "result.color0", KEYWORD_RESULT_COLOR, 0},
    {FRAGMENT_PROGRAM, "result.color[1]",                          "result.color1", KEYWORD_RESULT_COLOR, 1},
    {FRAGMENT_PROGRAM, "result.color[2]",                          "result.color2", KEYWORD_RESULT_COLOR, 2},
    {FRAGMENT_PROGRAM, "result.color[3]",                          "result.color3", KEYWORD_RESULT_COLOR, 3},
    {FRAGMENT_PROGRAM, "result.color[4]",                          "result.color4", KEYWORD_RESULT_COLOR, 4},
    {FRAGMENT_PROGRAM, "result.color[5]",                          "result.color5", KEYWORD_RESULT_COLOR, 5},
    {FRAGMENT_PROGRAM, "result.color[6]",                          "result.color6", KEYWORD_RESULT_COLOR, 6},
    {FRAGMENT_PROGRAM, "result.color[7]",                          "result.color7", KEYWORD_RESULT_COLOR, 7},
    {FRAGMENT_PROGRAM, "result.depth",                             "glfragdepth", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview",                   "state_matrix.modelview", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.row[#]",            "float4( state_matrix.modelview[0][#3], state_matrix.modelview[1][#3], state_matrix.modelview[2][#3], state_matrix.modelview[3][#3] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.inverse",           "state_matrix.modelview_inv", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.inverse.row[#]",    "float4( state_matrix.modelview[0][#4], state_matrix.modelview[1][#4], state_matrix.modelview[2][#4], state_matrix.modelview[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.transpose",         "state_matrix.modelview_trans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.transpose.row[#]",  "float4( state_matrix.modelview_trans[0][#4], state_matrix.modelview_trans[1][#4], state_matrix.modelview_trans[2][#4], state_matrix.modelview_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.invtrans",          "state_matrix.modelview_invtrans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.modelview.invtrans.row[#]",   "float4( state_matrix.modelview_invtrans[0][#4], state_matrix.modelview_invtrans[1][#4], state_matrix.modelview_invtrans[2][#4], state_matrix.modelview_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection",                  "state_matrix.projection", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.row[#]",           "float4( state_matrix.projection[0][#3], state_matrix.projection[1][#3], state_matrix.projection[2][#3], state_matrix.projection[3][#3] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.inverse",          "state_matrix.projection_inv", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.inverse.row[#]",   "float4( state_matrix.projection_inv[0][#4], state_matrix.projection_inv[1][#4], state_matrix.projection_inv[2][#4], state_matrix.projection_inv[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.transpose",        "state_matrix.projection_trans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.transpose.row[#]", "float4( state_matrix.projection_trans[0][#4], state_matrix.projection_trans[1][#4], state_matrix.projection_trans[2][#4], state_matrix.projection_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.invtrans",         "state_matrix.projection_invtrans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.projection.invtrans.row[#]",  "float4( state_matrix.projection_invtrans[0][#4], state_matrix.projection_invtrans[1][#4], state_matrix.projection_invtrans[2][#4], state_matrix.projection_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp",                         "state_matrix.mvp", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.row[#]",                  "float4( state_matrix.mvp[0][#3], state_matrix.mvp[1][#3], state_matrix.mvp[2][#3], state_matrix.mvp[3][#3] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.inverse",                 "state_matrix.mvp_inv", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.inverse.row[#]",          "float4( state_matrix.mvp_inv[0][#4], state_matrix.mvp_inv[1][#4], state_matrix.mvp_inv[2][#4], state_matrix.mvp_inv[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.transpose",               "state_matrix.mvp_trans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.transpose.row[#]",        "float4( state_matrix.mvp_trans[0][#4], state_matrix.mvp_trans[1][#4], state_matrix.mvp_trans[2][#4], state_matrix.mvp_trans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.invtrans",                "state_matrix.mvp_invtrans", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.mvp.invtrans.row[#]",         "float4( state_matrix.mvp_invtrans[0][#4], state_matrix.mvp_invtrans[1][#4], state_matrix.mvp_invtrans[2][#4], state_matrix.mvp_invtrans[3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#]",                  "state_matrix.texture[#2]", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].row[#]",           "float4( state_matrix.texture[#2][0][#3], state_matrix.texture[#2][1][#3], state_matrix.texture[#2][2][#3], state_matrix.texture[#2][3][#3] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].inverse",          "state_matrix.texture_inv[#2] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].inverse.row[#]",   "float4( state_matrix.texture_inv[#2][0][#4], state_matrix.texture_inv[#2][1][#4], state_matrix.texture_inv[#2][2][#4], state_matrix.texture_inv[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].transpose",        "state_matrix.texture_trans[#2] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].transpose.row[#]", "float4( state_matrix.texture_trans[#2][0][#4], state_matrix.texture_trans[#2][1][#4], state_matrix.texture_trans[#2][2][#4], state_matrix.texture_trans[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].invtrans",         "state_matrix.texture_invtrans[#2] )", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "state.matrix.texture[#].invtrans.row[#]",  "float4( state_matrix.texture_invtrans[#2][0][#4], state_matrix.texture_invtrans[#2][1][#4], state_matrix.texture_invtrans[#2][2][#4], state_matrix.texture_invtrans[#2][3][#4] )", KEYWORD_PLAIN, -1},
    {VERTEX_PROGRAM,   "program.local[#]",                         "program_local.value[#1]", KEYWORD_PLAIN, -1},
    {FRAGMENT_PROGRAM, "program.local[#]",                         "program_local.value[#1]", KEYWORD_PLAIN, -1},
});
// clang-format on

static_assert(kKeywordRows.size() == 110);

} // namespace ZALMetal
