// SPDX-License-Identifier: Apache-2.0
#include "Translate.h"

namespace
{

using namespace ZALMetal;
using translation::stringOf;
using translation::textOf;

// One operand through the table, as the translation applies it.
struct Rewritten
{
    std::string text;
    std::string inPlace;
    ShaderBindings bindings;
};

Rewritten rewrite(const char* operand, SHADER_PROGRAM kind)
{
    Rewritten result;
    EXPECT_EQ(ShaderString::InitializeGLSLTranslation(), 0);
    ZALM::String out;
    ZALM::String text(operand);
    EXPECT_EQ(ShaderString().TranslateARBKeyWords(out, text, result.bindings, kind, ZALM::String()), 0);
    result.text = textOf(out);
    result.inPlace = textOf(text);
    return result;
}

TEST(TranslateARBKeyWords, MatchesUpperCaseLikeLowerCase)
{
    const char* row = "float4( state_matrix.mvp[0][1], state_matrix.mvp[1][1], "
                      "state_matrix.mvp[2][1], state_matrix.mvp[3][1] )";
    EXPECT_EQ(rewrite("STATE.MATRIX.MVP.ROW[1]", VERTEX_PROGRAM).text, row);
    EXPECT_EQ(rewrite("state.matrix.mvp.row[1]", VERTEX_PROGRAM).text, row);
}

TEST(TranslateARBKeyWords, FillsTwoIndices)
{
    EXPECT_EQ(rewrite("state.matrix.texture[2].row[3]", FRAGMENT_PROGRAM).text,
              "float4( state_matrix.texture[2][0][3], state_matrix.texture[2][1][3], "
              "state_matrix.texture[2][2][3], state_matrix.texture[2][3][3] )");
}

TEST(TranslateARBKeyWords, KeepsTheSwizzleAndMarksTheAttribute)
{
    const Rewritten result = rewrite("vertex.attrib[0].xyz", VERTEX_PROGRAM);
    EXPECT_EQ(result.text, "a_vertexpos.xyz");
    EXPECT_EQ(result.inPlace, "a_vertexpos.xyz");
    EXPECT_EQ(result.bindings.attributeMask, 1u);
}

TEST(TranslateARBKeyWords, MarksTheColourOutput)
{
    const Rewritten third = rewrite("result.color[3]", FRAGMENT_PROGRAM);
    EXPECT_EQ(third.text, "result.color3");
    EXPECT_EQ(third.bindings.colorMask, 8u);

    const Rewritten plain = rewrite("result.color", FRAGMENT_PROGRAM);
    EXPECT_EQ(plain.text, "result.color0");
    EXPECT_EQ(plain.bindings.colorMask, 1u);
}

TEST(TranslateARBKeyWords, ReadsLocalsInBothKinds)
{
    EXPECT_EQ(rewrite("program.local[7]", VERTEX_PROGRAM).text, "program_local.value[7]");
    EXPECT_EQ(rewrite("program.local[7]", FRAGMENT_PROGRAM).text, "program_local.value[7]");
}

TEST(TranslateARBKeyWords, PutsTheIndexTextInAsItStands)
{
    EXPECT_EQ(rewrite("program.local[A0.x + 3].y", VERTEX_PROGRAM).text, "program_local.value[A0.x + 3].y");
}

TEST(TranslateARBKeyWords, TrimsBlanksInBrackets)
{
    EXPECT_EQ(rewrite("program.local[ 7 ]", VERTEX_PROGRAM).text, "program_local.value[7]");
    EXPECT_EQ(rewrite("result.color[ 3 ].x", FRAGMENT_PROGRAM).text, "result.color3.x");
    EXPECT_EQ(rewrite("vertex.attrib[ 8 ]", VERTEX_PROGRAM).text, "a_texcoord0");
}

TEST(TranslateARBKeyWords, LeavesOtherNamesAlone)
{
    for (const char* operand : {"R0", "R0.xyz", "c[3].x", "1.5", "vertex", "state.matrix", "program.env[3]"}) {
        const Rewritten result = rewrite(operand, VERTEX_PROGRAM);
        EXPECT_EQ(result.text, operand);
        EXPECT_EQ(result.bindings.attributeMask, 0u);
    }
}

TEST(TranslateARBKeyWords, DropsAnIndexThatTheBindingDoesNotTake)
{
    EXPECT_EQ(rewrite("result.color[9]", FRAGMENT_PROGRAM).text, "result.color0");
    EXPECT_EQ(rewrite("result.position[1].x", VERTEX_PROGRAM).text, "result.position.x");
    EXPECT_EQ(rewrite("state.matrix.mvp[2].row[1].y", VERTEX_PROGRAM).text,
              "float4( state_matrix.mvp[0][1], state_matrix.mvp[1][1], "
              "state_matrix.mvp[2][1], state_matrix.mvp[3][1] ).y");
}

TEST(TranslateARBKeyWords, FillsAMissingIndexWithZero)
{
    EXPECT_EQ(rewrite("program.local", VERTEX_PROGRAM).text, "program_local.value[0]");
    EXPECT_EQ(rewrite("fragment.texcoord.xy", FRAGMENT_PROGRAM).text, "varying.texcoord0.xy");
    EXPECT_EQ(rewrite("state.matrix.texture", VERTEX_PROGRAM).text, "state_matrix.texture[0]");
}

TEST(TranslateARBKeyWords, StopsAtTheDeepestBinding)
{
    EXPECT_EQ(rewrite("vertex.color.primary.x", VERTEX_PROGRAM).text, "a_color.x");
    EXPECT_EQ(rewrite("vertex.color.xyz", VERTEX_PROGRAM).text, "a_color.xyz");
    EXPECT_EQ(rewrite("state.matrix.mvp.inverse.other.x", VERTEX_PROGRAM).text, "state_matrix.mvp_inv.other.x");
}

TEST(TranslateARBKeyWords, MarksTheAttributeOfATextureCoordinate)
{
    EXPECT_EQ(rewrite("vertex.texcoord[3]", VERTEX_PROGRAM).bindings.attributeMask & 0xFFFF, 1u << 11);
    EXPECT_EQ(rewrite("vertex.texcoord", VERTEX_PROGRAM).bindings.attributeMask & 0xFFFF, 1u << 8);
    EXPECT_EQ(rewrite("vertex.texcoord[9]", VERTEX_PROGRAM).bindings.attributeMask & 0x7FFFFFFF, 0u);
    EXPECT_EQ(rewrite("vertex.texcoord[i]", VERTEX_PROGRAM).bindings.attributeMask & 0x7FFFFFFF, 0u);
}

TEST(TranslateARBKeyWords, AddsToWhatIsMarked)
{
    ZALM::String out;
    ShaderBindings bindings;
    bindings.attributeMask = 4;
    ZALM::String operand("vertex.attrib[3]");
    ShaderString().TranslateARBKeyWords(out, operand, bindings, VERTEX_PROGRAM, ZALM::String());
    EXPECT_EQ(bindings.attributeMask, 12u);
}

TEST(InitializeGLSLTranslation, FillsBothKindsOnce)
{
    ShaderString::ReleaseGLSLTranslation();
    EXPECT_TRUE(ShaderString::_arb_keys[VERTEX_PROGRAM].empty());

    EXPECT_EQ(ShaderString::InitializeGLSLTranslation(), 0);
    const size_t vertexRoots = ShaderString::_arb_keys[VERTEX_PROGRAM].size();
    EXPECT_EQ(vertexRoots, 4u); // vertex, result, state, program
    EXPECT_EQ(ShaderString::_arb_keys[FRAGMENT_PROGRAM].size(), 4u);

    EXPECT_EQ(ShaderString::InitializeGLSLTranslation(), 0);
    EXPECT_EQ(ShaderString::_arb_keys[VERTEX_PROGRAM].size(), vertexRoots);
}

TEST(InitializeGLSLTranslation, ATranslationFillsTheTable)
{
    ShaderString::ReleaseGLSLTranslation();
    EXPECT_EQ(translation::translateFragment("MOV result.color, R0;").body, "  result.color0 = R0;\n");
}

TEST(InitializeGLSLTranslation, ALookUpFillsTheTable)
{
    ShaderString::ReleaseGLSLTranslation();
    ZALM::String out;
    ZALM::String operand("result.color[3]");
    ShaderBindings bindings;
    EXPECT_EQ(ShaderString().TranslateARBKeyWords(out, operand, bindings, FRAGMENT_PROGRAM, ZALM::String()), 0);
    EXPECT_EQ(textOf(out), "result.color3");
}

TEST(InitializeGLSLTranslation, LeavesATableThatHoldsEntries)
{
    ShaderString::ReleaseGLSLTranslation();
    EXPECT_EQ(ShaderString::AddARBKeyWord(VERTEX_PROGRAM, "mine", "yours", KEYWORD_PLAIN, -1), 0);
    EXPECT_EQ(ShaderString::InitializeGLSLTranslation(), 0);
    EXPECT_EQ(ShaderString::_arb_keys[VERTEX_PROGRAM].size(), 1u);
    ShaderString::ReleaseGLSLTranslation();
}

TEST(AddARBKeyWord, BuildsOneNodePerComponent)
{
    ShaderString::ReleaseGLSLTranslation();
    EXPECT_EQ(ShaderString::AddARBKeyWord(FRAGMENT_PROGRAM, "outer.inner[#]", "text#1", KEYWORD_RESULT_COLOR, 5), 0);
    const ARBKeyWord* outer = ShaderString::_arb_keys[FRAGMENT_PROGRAM][0];
    EXPECT_EQ(textOf(outer->name), "outer");
    EXPECT_FALSE(outer->indexed);
    EXPECT_TRUE(outer->replacement.IsEmpty());
    EXPECT_EQ(outer->index, -1);

    const ARBKeyWord* inner = outer->children[0];
    EXPECT_EQ(textOf(inner->name), "inner");
    EXPECT_TRUE(inner->indexed);
    EXPECT_EQ(textOf(inner->replacement), "text#1");
    EXPECT_EQ(inner->type, KEYWORD_RESULT_COLOR);
    EXPECT_EQ(inner->index, 5);
    ShaderString::ReleaseGLSLTranslation();
}

TEST(AddARBKeyWord, SharesNodesWhateverTheirCase)
{
    ShaderString::ReleaseGLSLTranslation();
    ShaderString::AddARBKeyWord(VERTEX_PROGRAM, "one.two", "a", KEYWORD_PLAIN, -1);
    ShaderString::AddARBKeyWord(VERTEX_PROGRAM, "ONE.three", "b", KEYWORD_PLAIN, -1);
    ShaderString::AddARBKeyWord(VERTEX_PROGRAM, "One.Two", "c", KEYWORD_PLAIN, -1);
    ASSERT_EQ(ShaderString::_arb_keys[VERTEX_PROGRAM].size(), 1u);
    EXPECT_EQ(ShaderString::_arb_keys[VERTEX_PROGRAM][0]->children.size(), 2u);
    EXPECT_EQ(textOf(ShaderString::_arb_keys[VERTEX_PROGRAM][0]->children[0]->replacement), "c");
    ShaderString::ReleaseGLSLTranslation();
}

TEST(AddARBKeyWord, RefusesABindingWithoutAComponent)
{
    ShaderString::ReleaseGLSLTranslation();
    EXPECT_EQ(ShaderString::AddARBKeyWord(VERTEX_PROGRAM, " . ", "text", KEYWORD_PLAIN, -1), 6);
    EXPECT_TRUE(ShaderString::_arb_keys[VERTEX_PROGRAM].empty());
}

TEST(GetAttributeName, NamesSixteenAttributes)
{
    const char* names[] = {"vertexpos", "user0",     "normal",    "color",     "user1",     "user2",
                           "user3",     "user4",     "texcoord0", "texcoord1", "texcoord2", "texcoord3",
                           "texcoord4", "texcoord5", "texcoord6", "texcoord7"};
    for (int i = 0; i < 16; ++i)
        EXPECT_STREQ(ShaderBindings::GetAttributeName(i), names[i]);
    for (int i : {-2147483647, -1, 16, 17, 2147483647})
        EXPECT_EQ(ShaderBindings::GetAttributeName(i), nullptr);
}

} // namespace
