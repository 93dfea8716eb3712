// SPDX-License-Identifier: Apache-2.0
// Every binding of both program kinds, as a program names it and as the generated source spells it. The rows are
// written out here a second time and share nothing with the library's table.
#include "Translate.h"

#include <array>
#include <cctype>

namespace
{

using translation::Translated;

constexpr const char* kVertex = translation::kVertexHeader;
constexpr const char* kFragment = translation::kFragmentHeader;
constexpr uint32_t kMark31 = 1u << 31; // an attribute binding without an attribute of its own

struct BindingRow
{
    const char* header;
    const char* operand;
    const char* expression;
    uint32_t attributes;
    uint32_t colors;
};

// clang-format off
constexpr std::array kRows = std::to_array<BindingRow>({
    {kVertex,   "vertex.attrib[0]", "a_vertexpos", 1u << 0, 0},
    {kVertex,   "vertex.attrib[2]", "a_normal.xyzx", 1u << 2, 0},
    {kVertex,   "vertex.attrib[3]", "a_color", 1u << 3, 0},
    {kVertex,   "vertex.attrib[4]", "gl_SecondaryColor", kMark31, 0},
    {kVertex,   "vertex.attrib[8]", "a_texcoord0", 1u << 8, 0},
    {kVertex,   "vertex.attrib[9]", "a_texcoord1", 1u << 9, 0},
    {kVertex,   "vertex.attrib[10]", "a_texcoord2", 1u << 10, 0},
    {kVertex,   "vertex.attrib[11]", "a_texcoord3", 1u << 11, 0},
    {kVertex,   "vertex.attrib[12]", "a_texcoord4", 1u << 12, 0},
    {kVertex,   "vertex.attrib[13]", "a_texcoord5", 1u << 13, 0},
    {kVertex,   "vertex.attrib[14]", "a_texcoord6", 1u << 14, 0},
    {kVertex,   "vertex.attrib[15]", "a_texcoord7", 1u << 15, 0},
    {kVertex,   "vertex.color", "a_color", 1u << 3, 0},
    {kVertex,   "vertex.color.primary", "a_color", 1u << 3, 0},
    {kVertex,   "vertex.color.secondary", "gl_SecondaryColor", kMark31, 0},
    {kVertex,   "vertex.normal", "gl_Normal.xyzx", kMark31, 0},
    {kVertex,   "vertex.position", "gl_Vertex", kMark31, 0},
    {kVertex,   "vertex.texcoord[5]", "a_texcoord5", kMark31 | 1u << 13, 0},
    {kVertex,   "result.color", "result.color", 0, 0},
    {kVertex,   "result.color.primary", "result.color", 0, 0},
    {kVertex,   "result.color.secondary", "gl_FrontSecondaryColor", 0, 0},
    {kVertex,   "result.color.front", "result.color", 0, 0},
    {kVertex,   "result.color.front.primary", "result.color", 0, 0},
    {kVertex,   "result.color.front.secondary", "gl_FrontSecondaryColor", 0, 0},
    {kVertex,   "result.color.back", "gl_BackColor", 0, 0},
    {kVertex,   "result.color.back.primary", "gl_BackColor", 0, 0},
    {kVertex,   "result.color.back.secondary", "gl_BackSecondaryColor", 0, 0},
    {kVertex,   "result.position", "result.position", 0, 0},
    {kVertex,   "result.texcoord[5]", "result.texcoord5", 0, 0},
    {kVertex,   "state.matrix.modelview", "state_matrix.modelview", 0, 0},
    {kVertex,   "state.matrix.modelview.row[3]",
     "float4( state_matrix.modelview[0][3], state_matrix.modelview[1][3], state_matrix.modelview[2][3], state_matrix.modelview[3][3] )", 0, 0},
    {kVertex,   "state.matrix.modelview.inverse", "state_matrix.modelview_inv", 0, 0},
    {kVertex,   "state.matrix.modelview.inverse.row[1]",
     "float4( state_matrix.modelview[0][1], state_matrix.modelview[1][1], state_matrix.modelview[2][1], state_matrix.modelview[3][1] )", 0, 0},
    {kVertex,   "state.matrix.modelview.transpose", "state_matrix.modelview_trans", 0, 0},
    {kVertex,   "state.matrix.modelview.transpose.row[1]",
     "float4( state_matrix.modelview_trans[0][1], state_matrix.modelview_trans[1][1], state_matrix.modelview_trans[2][1], state_matrix.modelview_trans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.modelview.invtrans", "state_matrix.modelview_invtrans", 0, 0},
    {kVertex,   "state.matrix.modelview.invtrans.row[1]",
     "float4( state_matrix.modelview_invtrans[0][1], state_matrix.modelview_invtrans[1][1], state_matrix.modelview_invtrans[2][1], state_matrix.modelview_invtrans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.projection", "state_matrix.projection", 0, 0},
    {kVertex,   "state.matrix.projection.row[3]",
     "float4( state_matrix.projection[0][3], state_matrix.projection[1][3], state_matrix.projection[2][3], state_matrix.projection[3][3] )", 0, 0},
    {kVertex,   "state.matrix.projection.inverse", "state_matrix.projection_inv", 0, 0},
    {kVertex,   "state.matrix.projection.inverse.row[1]",
     "float4( state_matrix.projection_inv[0][1], state_matrix.projection_inv[1][1], state_matrix.projection_inv[2][1], state_matrix.projection_inv[3][1] )", 0, 0},
    {kVertex,   "state.matrix.projection.transpose", "state_matrix.projection_trans", 0, 0},
    {kVertex,   "state.matrix.projection.transpose.row[1]",
     "float4( state_matrix.projection_trans[0][1], state_matrix.projection_trans[1][1], state_matrix.projection_trans[2][1], state_matrix.projection_trans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.projection.invtrans", "state_matrix.projection_invtrans", 0, 0},
    {kVertex,   "state.matrix.projection.invtrans.row[1]",
     "float4( state_matrix.projection_invtrans[0][1], state_matrix.projection_invtrans[1][1], state_matrix.projection_invtrans[2][1], state_matrix.projection_invtrans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.mvp", "state_matrix.mvp", 0, 0},
    {kVertex,   "state.matrix.mvp.row[3]",
     "float4( state_matrix.mvp[0][3], state_matrix.mvp[1][3], state_matrix.mvp[2][3], state_matrix.mvp[3][3] )", 0, 0},
    {kVertex,   "state.matrix.mvp.inverse", "state_matrix.mvp_inv", 0, 0},
    {kVertex,   "state.matrix.mvp.inverse.row[1]",
     "float4( state_matrix.mvp_inv[0][1], state_matrix.mvp_inv[1][1], state_matrix.mvp_inv[2][1], state_matrix.mvp_inv[3][1] )", 0, 0},
    {kVertex,   "state.matrix.mvp.transpose", "state_matrix.mvp_trans", 0, 0},
    {kVertex,   "state.matrix.mvp.transpose.row[1]",
     "float4( state_matrix.mvp_trans[0][1], state_matrix.mvp_trans[1][1], state_matrix.mvp_trans[2][1], state_matrix.mvp_trans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.mvp.invtrans", "state_matrix.mvp_invtrans", 0, 0},
    {kVertex,   "state.matrix.mvp.invtrans.row[1]",
     "float4( state_matrix.mvp_invtrans[0][1], state_matrix.mvp_invtrans[1][1], state_matrix.mvp_invtrans[2][1], state_matrix.mvp_invtrans[3][1] )", 0, 0},
    {kVertex,   "state.matrix.texture[2]", "state_matrix.texture[2]", 0, 0},
    {kVertex,   "state.matrix.texture[2].row[3]",
     "float4( state_matrix.texture[2][0][3], state_matrix.texture[2][1][3], state_matrix.texture[2][2][3], state_matrix.texture[2][3][3] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].inverse", "state_matrix.program_inv[2] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].inverse.row[1]",
     "float4( state_matrix.texture_inv[2][0][1], state_matrix.texture_inv[2][1][1], state_matrix.texture_inv[2][2][1], state_matrix.texture_inv[2][3][1] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].transpose", "state_matrix.texture_trans[2] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].transpose.row[1]",
     "float4( state_matrix.texture_trans[2][0][1], state_matrix.texture_trans[2][1][1], state_matrix.texture_trans[2][2][1], state_matrix.texture_trans[2][3][1] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].invtrans", "state_matrix.texture_invtrans[2] )", 0, 0},
    {kVertex,   "state.matrix.texture[2].invtrans.row[1]",
     "float4( state_matrix.texture_invtrans[2][0][1], state_matrix.texture_invtrans[2][1][1], state_matrix.texture_invtrans[2][2][1], state_matrix.texture_invtrans[2][3][1] )", 0, 0},
    {kFragment, "fragment.color", "varying.color", 0, 0},
    {kFragment, "fragment.color.primary", "varying.color", 0, 0},
    {kFragment, "fragment.color.secondary", "gl_SecondaryColor", 0, 0},
    {kFragment, "fragment.position", "glfragcoord", 0, 0},
    {kFragment, "fragment.texcoord[5]", "varying.texcoord5", 0, 0},
    {kFragment, "result.color", "result.color0", 0, 1u << 0},
    {kFragment, "result.color[0]", "result.color0", 0, 1u << 0},
    {kFragment, "result.color[1]", "result.color1", 0, 1u << 1},
    {kFragment, "result.color[2]", "result.color2", 0, 1u << 2},
    {kFragment, "result.color[3]", "result.color3", 0, 1u << 3},
    {kFragment, "result.color[4]", "result.color4", 0, 1u << 4},
    {kFragment, "result.color[5]", "result.color5", 0, 1u << 5},
    {kFragment, "result.color[6]", "result.color6", 0, 1u << 6},
    {kFragment, "result.color[7]", "result.color7", 0, 1u << 7},
    {kFragment, "result.depth", "glfragdepth", 0, 0},
    {kFragment, "state.matrix.modelview", "state_matrix.modelview", 0, 0},
    {kFragment, "state.matrix.modelview.row[3]",
     "float4( state_matrix.modelview[0][3], state_matrix.modelview[1][3], state_matrix.modelview[2][3], state_matrix.modelview[3][3] )", 0, 0},
    {kFragment, "state.matrix.modelview.inverse", "state_matrix.modelview_inv", 0, 0},
    {kFragment, "state.matrix.modelview.inverse.row[1]",
     "float4( state_matrix.modelview[0][1], state_matrix.modelview[1][1], state_matrix.modelview[2][1], state_matrix.modelview[3][1] )", 0, 0},
    {kFragment, "state.matrix.modelview.transpose", "state_matrix.modelview_trans", 0, 0},
    {kFragment, "state.matrix.modelview.transpose.row[1]",
     "float4( state_matrix.modelview_trans[0][1], state_matrix.modelview_trans[1][1], state_matrix.modelview_trans[2][1], state_matrix.modelview_trans[3][1] )", 0, 0},
    {kFragment, "state.matrix.modelview.invtrans", "state_matrix.modelview_invtrans", 0, 0},
    {kFragment, "state.matrix.modelview.invtrans.row[1]",
     "float4( state_matrix.modelview_invtrans[0][1], state_matrix.modelview_invtrans[1][1], state_matrix.modelview_invtrans[2][1], state_matrix.modelview_invtrans[3][1] )", 0, 0},
    {kFragment, "state.matrix.projection", "state_matrix.projection", 0, 0},
    {kFragment, "state.matrix.projection.row[3]",
     "float4( state_matrix.projection[0][3], state_matrix.projection[1][3], state_matrix.projection[2][3], state_matrix.projection[3][3] )", 0, 0},
    {kFragment, "state.matrix.projection.inverse", "state_matrix.projection_inv", 0, 0},
    {kFragment, "state.matrix.projection.inverse.row[1]",
     "float4( state_matrix.projection_inv[0][1], state_matrix.projection_inv[1][1], state_matrix.projection_inv[2][1], state_matrix.projection_inv[3][1] )", 0, 0},
    {kFragment, "state.matrix.projection.transpose", "state_matrix.projection_trans", 0, 0},
    {kFragment, "state.matrix.projection.transpose.row[1]",
     "float4( state_matrix.projection_trans[0][1], state_matrix.projection_trans[1][1], state_matrix.projection_trans[2][1], state_matrix.projection_trans[3][1] )", 0, 0},
    {kFragment, "state.matrix.projection.invtrans", "state_matrix.projection_invtrans", 0, 0},
    {kFragment, "state.matrix.projection.invtrans.row[1]",
     "float4( state_matrix.projection_invtrans[0][1], state_matrix.projection_invtrans[1][1], state_matrix.projection_invtrans[2][1], state_matrix.projection_invtrans[3][1] )", 0, 0},
    {kFragment, "state.matrix.mvp", "state_matrix.mvp", 0, 0},
    {kFragment, "state.matrix.mvp.row[3]",
     "float4( state_matrix.mvp[0][3], state_matrix.mvp[1][3], state_matrix.mvp[2][3], state_matrix.mvp[3][3] )", 0, 0},
    {kFragment, "state.matrix.mvp.inverse", "state_matrix.mvp_inv", 0, 0},
    {kFragment, "state.matrix.mvp.inverse.row[1]",
     "float4( state_matrix.mvp_inv[0][1], state_matrix.mvp_inv[1][1], state_matrix.mvp_inv[2][1], state_matrix.mvp_inv[3][1] )", 0, 0},
    {kFragment, "state.matrix.mvp.transpose", "state_matrix.mvp_trans", 0, 0},
    {kFragment, "state.matrix.mvp.transpose.row[1]",
     "float4( state_matrix.mvp_trans[0][1], state_matrix.mvp_trans[1][1], state_matrix.mvp_trans[2][1], state_matrix.mvp_trans[3][1] )", 0, 0},
    {kFragment, "state.matrix.mvp.invtrans", "state_matrix.mvp_invtrans", 0, 0},
    {kFragment, "state.matrix.mvp.invtrans.row[1]",
     "float4( state_matrix.mvp_invtrans[0][1], state_matrix.mvp_invtrans[1][1], state_matrix.mvp_invtrans[2][1], state_matrix.mvp_invtrans[3][1] )", 0, 0},
    {kFragment, "state.matrix.texture[2]", "state_matrix.texture[2]", 0, 0},
    {kFragment, "state.matrix.texture[2].row[3]",
     "float4( state_matrix.texture[2][0][3], state_matrix.texture[2][1][3], state_matrix.texture[2][2][3], state_matrix.texture[2][3][3] )", 0, 0},
    {kFragment, "state.matrix.texture[2].inverse", "state_matrix.texture_inv[2] )", 0, 0},
    {kFragment, "state.matrix.texture[2].inverse.row[1]",
     "float4( state_matrix.texture_inv[2][0][1], state_matrix.texture_inv[2][1][1], state_matrix.texture_inv[2][2][1], state_matrix.texture_inv[2][3][1] )", 0, 0},
    {kFragment, "state.matrix.texture[2].transpose", "state_matrix.texture_trans[2] )", 0, 0},
    {kFragment, "state.matrix.texture[2].transpose.row[1]",
     "float4( state_matrix.texture_trans[2][0][1], state_matrix.texture_trans[2][1][1], state_matrix.texture_trans[2][2][1], state_matrix.texture_trans[2][3][1] )", 0, 0},
    {kFragment, "state.matrix.texture[2].invtrans", "state_matrix.texture_invtrans[2] )", 0, 0},
    {kFragment, "state.matrix.texture[2].invtrans.row[1]",
     "float4( state_matrix.texture_invtrans[2][0][1], state_matrix.texture_invtrans[2][1][1], state_matrix.texture_invtrans[2][2][1], state_matrix.texture_invtrans[2][3][1] )", 0, 0},
    {kVertex,   "program.local[5]", "program_local.value[5]", 0, 0},
    {kFragment, "program.local[5]", "program_local.value[5]", 0, 0},
});
// clang-format on

static_assert(kRows.size() == 110);

TEST(KeywordRows, EveryBindingBecomesItsExpression)
{
    for (const BindingRow& row : kRows) {
        const Translated result = translation::translate(std::string(row.header) + "MOV R0, " + row.operand + ";");
        EXPECT_EQ(result.status, 0) << row.operand;
        EXPECT_EQ(result.body, "  R0 = " + std::string(row.expression) + ";\n") << row.operand;
        EXPECT_EQ(result.bindings.attributeMask, row.attributes) << row.operand;
        EXPECT_EQ(result.bindings.colorMask, row.colors) << row.operand;
    }
}

TEST(KeywordRows, EveryBindingIsReadWhateverItsCase)
{
    for (const BindingRow& row : kRows) {
        std::string operand = row.operand;
        for (char& c : operand)
            c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        const Translated result = translation::translate(std::string(row.header) + "MOV R0, " + operand + ";");
        EXPECT_EQ(result.body, "  R0 = " + std::string(row.expression) + ";\n") << operand;
    }
}

TEST(KeywordRows, EveryBindingKeepsASwizzleBehindIt)
{
    for (const BindingRow& row : kRows) {
        const std::string statement = "MOV R0, " + std::string(row.operand) + ".wzyx;";
        const Translated result = translation::translate(row.header + statement);
        EXPECT_EQ(result.body, "  R0 = " + std::string(row.expression) + ".wzyx;\n") << row.operand;
    }
}

TEST(KeywordRows, BindingsOfTheOtherKindAreLeftAlone)
{
    for (const char* operand : {"vertex.color", "vertex.attrib[0]", "vertex.texcoord[1]", "result.position"})
        EXPECT_EQ(translation::translateFragment("MOV R0, " + std::string(operand) + ";").bindings.attributeMask, 0u);
    EXPECT_EQ(translation::lineOf("MOV R0, vertex.attrib[0];"), "R0 = vertex.attrib[0];");
    EXPECT_EQ(translation::translateVertex("MOV R0, fragment.color;").body, "  R0 = fragment.color;\n");
    EXPECT_EQ(translation::translateVertex("MOV result.depth, R0;").body, "  result.depth = R0;\n");
}

} // namespace
