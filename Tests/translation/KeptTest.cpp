// SPDX-License-Identifier: Apache-2.0
// The oddities of translation that are required, one test per tag.
#include "OpcodeTable.h"
#include "Translate.h"

#include <cstring>

namespace
{

using translation::bodyOf;
using translation::lineOf;
using translation::Translated;
using translation::translateFragment;
using translation::translateVertex;

TEST(Kept, Kept_program_kind)
{
    EXPECT_NE(translation::translate("!!ARBvp1.1\n").source.find("fragment FragmentOutput ShaderFunc("),
              std::string::npos);
    EXPECT_NE(translation::translate("nothing").source.find("fragment FragmentOutput ShaderFunc("), std::string::npos);
}

TEST(Kept, Kept_statement_ends_at_newline)
{
    EXPECT_EQ(bodyOf("FOO\nR0, R1;"), "  FOO;\n  R0, R1;\n");
    EXPECT_NE(translateFragment("ADD R0,\nR1, R2;").status, 0);
}

TEST(Kept, Kept_text_after_end)
{
    EXPECT_EQ(bodyOf("MOV R0, R1;\nEND\nMOV R2, R3;"), "  R0 = R1;\n  R2 = R3;\n");
}

TEST(Kept, Kept_unknown_statement)
{
    EXPECT_EQ(lineOf("ATTRIB pos = vertex.position;"), "ATTRIB pos = vertex.position;");
}

TEST(Kept, Kept_named_parameters)
{
    EXPECT_EQ(translateFragment("PARAM c = program.local[0];")
                  .source.find("#include <simd/simd.h>\n"
                               "#include <metal_stdlib>\n\n\n#define"),
              0u);
}

TEST(Kept, Kept_undeclared_gl_names)
{
    const Translated result = translateVertex("MOV result.color, vertex.attrib[4];");
    EXPECT_EQ(result.body, "  result.color = gl_SecondaryColor;\n");
    EXPECT_EQ(result.source.find("gl_SecondaryColor"), result.source.rfind("gl_SecondaryColor"));
    EXPECT_EQ(result.source.find("user1"), std::string::npos);
}

TEST(Kept, Kept_texcoord_index)
{
    const Translated result = translateVertex("MOV R0, vertex.texcoord[2];");
    EXPECT_EQ(result.bindings.attributeMask, 1u << 31 | 1u << 10);
    EXPECT_NE(result.source.find("  float4 a_texcoord2 = array_enabled_texcoord2 ? in.texcoord2 : float4(0.0);\n"),
              std::string::npos);
}

TEST(Kept, Kept_modelview_inverse_row)
{
    const std::string row = "R0 = float4( state_matrix.modelview[0][2], state_matrix.modelview[1][2], "
                            "state_matrix.modelview[2][2], state_matrix.modelview[3][2] );";
    EXPECT_EQ(lineOf("MOV R0, state.matrix.modelview.inverse.row[2];"), row);
    EXPECT_EQ(translateVertex("MOV R0, state.matrix.modelview.inverse.row[2];").body, "  " + row + "\n");
}

TEST(Kept, Kept_texture_inverse_vertex)
{
    EXPECT_EQ(translateVertex("MOV R0, state.matrix.texture[1].inverse;").body,
              "  R0 = state_matrix.program_inv[1] );\n");
    EXPECT_EQ(lineOf("MOV R0, state.matrix.texture[1].inverse;"), "R0 = state_matrix.texture_inv[1] );");
}

TEST(Kept, Kept_texture_matrix_parenthesis)
{
    EXPECT_EQ(lineOf("MOV R0, state.matrix.texture[1].transpose;"), "R0 = state_matrix.texture_trans[1] );");
    EXPECT_EQ(lineOf("MOV R0, state.matrix.texture[1].invtrans;"), "R0 = state_matrix.texture_invtrans[1] );");
}

TEST(Kept, Kept_cmp_newline)
{
    EXPECT_EQ(bodyOf("CMP R0.x, R1.x, R2.x, R3.x;"), "  R0.x = R1.x < 0.0 ? R2.x : R3.x; \n\n");
}

TEST(Kept, Kept_exp_is_ex2)
{
    EXPECT_EQ(lineOf("EXP R0, R1.w;"), "R0 = float4( metal::exp2( R1.w ) );");
}

TEST(Kept, Kept_flr_u_scalar)
{
    EXPECT_EQ(lineOf("FLR.U U0, R1;"), "U0 = uint( metal::floor( R1 ) );");
}

TEST(Kept, Kept_lg2_twice)
{
    int rows = 0;
    for (const ZALMetal::OpcodeRow& row : ZALMetal::kOpcodeRows)
        if (std::strcmp(row.name, "LG2") == 0) ++rows;
    EXPECT_EQ(rows, 2);
    EXPECT_EQ(lineOf("LOG R0, R1.x;"), "LOG R0, R1.x;");
}

TEST(Kept, Kept_sne_parenthesis)
{
    EXPECT_EQ(lineOf("SNE R0, R1, R2;"), "R0 = float4( R1 != R2 ) );");
}

TEST(Kept, Kept_sample_spacing)
{
    EXPECT_EQ(lineOf("TEX R0, R1, texture[0], 3D;"),
              "R0 = texSample( texture0,  texture0Sampler, R1.xyz, texture0Swizzle );");
}

TEST(Kept, Kept_xpd_three_components)
{
    EXPECT_EQ(lineOf("XPD R0, R1, R2;"), "R0 = metal::cross( R1.xyz, R2.xyz ).xyz;");
}

TEST(Kept, Kept_cc0_only)
{
    EXPECT_EQ(bodyOf("MOVC CC1, R1;"), "  CC1 = R1;\n  CC0 = CC1;\n");
}

TEST(Kept, Kept_if_register)
{
    EXPECT_EQ(bodyOf("IF NE1.x;"), "  if( CC0.x != 0.0 )\n  {\n");
}

TEST(Kept, Kept_if_unknown_condition)
{
    EXPECT_EQ(bodyOf("IF TR;\nMOV R0, R1;"), "  IF TR\n  R0 = R1;\n");
}

TEST(Kept, Kept_param_fill)
{
    EXPECT_EQ(lineOf("PARAM c = { 1, 2, 3 };"), "float4 c = float4( 1.0, 2.0, 3.0, 0 );");
}

TEST(Kept, Kept_scratch_blanks)
{
    EXPECT_EQ(bodyOf("ENDIF;\nPK4UB.U U0.x, R1;").find("}\n  uint4 uitmp;\nuitmp = "), 0u);
}

TEST(Kept, Kept_depth_from_z)
{
    EXPECT_NE(translateFragment("MOV result.depth, R0;").source.find("  //\n  result.depth = glfragdepth.z;\n"),
              std::string::npos);
}

TEST(Kept, Kept_disabled_attribute_zero)
{
    EXPECT_NE(translateVertex("MOV R0, vertex.color;").source.find("array_enabled_color ? in.color : float4(0.0);\n"),
              std::string::npos);
}

} // namespace
