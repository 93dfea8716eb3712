// SPDX-License-Identifier: Apache-2.0
#include "Translate.h"

#include <algorithm>

namespace
{

using namespace ZALMetal;
using translation::bodyOf;
using translation::stringOf;
using translation::textOf;
using translation::translate;

std::string trimmed(const std::string& text)
{
    ZALM::String s = stringOf(text);
    ShaderString::Trim(s);
    return textOf(s);
}

std::vector<std::string> split(const std::string& text, const std::string& separator)
{
    ZALM::Vector<ZALM::String> pieces;
    pieces.push_back(ZALM::String("left over"));
    ShaderString::Split(pieces, stringOf(text), stringOf(separator));
    std::vector<std::string> result;
    for (const ZALM::String& piece : pieces)
        result.push_back(textOf(piece));
    return result;
}

using Pieces = std::vector<std::string>;

bool isVertexProgram(const std::string& text)
{
    return translate(text).source.find("vertex Varyings ShaderFunc(") != std::string::npos;
}

TEST(Trim, RemovesBlanksAtBothEnds)
{
    EXPECT_EQ(trimmed("  a b  "), "a b");
    EXPECT_EQ(trimmed("a"), "a");
}

TEST(Trim, BlanksAloneGiveTheEmptyString)
{
    EXPECT_EQ(trimmed("    "), "");
    EXPECT_EQ(trimmed(""), "");
}

TEST(Trim, LeavesTabsAndLineEnds)
{
    EXPECT_EQ(trimmed(" \t a\r\n "), "\t a\r\n");
}

TEST(Split, DropsPiecesThatAreBlank)
{
    EXPECT_EQ(split(" a , , b ", ","), (Pieces{"a", "b"}));
}

TEST(Split, WithoutASeparatorGivesOnePiece)
{
    EXPECT_EQ(split(" a b ", ","), (Pieces{"a b"}));
    EXPECT_EQ(split("   ", ","), Pieces());
    EXPECT_EQ(split("", ","), Pieces());
}

TEST(Split, CutsAtEverySeparatorOfTheTranslator)
{
    EXPECT_EQ(split("a=b", "="), (Pieces{"a", "b"}));
    EXPECT_EQ(split("{1}{2}", "{"), (Pieces{"1}", "2}"}));
    EXPECT_EQ(split("x }y}", "}"), (Pieces{"x", "y"}));
    EXPECT_EQ(split("TEMP  a b", " "), (Pieces{"TEMP", "a", "b"}));
    EXPECT_EQ(split("state.matrix.mvp", "."), (Pieces{"state", "matrix", "mvp"}));
    EXPECT_EQ(split("1e5", "e"), (Pieces{"1", "5"}));
}

TEST(Split, TakesSeparatorsOfSeveralCharacters)
{
    EXPECT_EQ(split("a::b:c::", "::"), (Pieces{"a", "b:c"}));
}

TEST(Split, AnEmptySeparatorCutsNothing)
{
    EXPECT_EQ(split("a,b", ""), (Pieces{"a,b"}));
}

TEST(ProgramKind, HeaderIsReadWhateverItsCase)
{
    EXPECT_TRUE(isVertexProgram("!!ARBvp1.0\n"));
    EXPECT_TRUE(isVertexProgram("!!arbvp1.0\n"));
    EXPECT_TRUE(isVertexProgram("!!NVvp4.0\n"));
    EXPECT_TRUE(isVertexProgram("!!nvVP4.0\n"));
    EXPECT_FALSE(isVertexProgram("!!ARBfp1.0\n"));
    EXPECT_FALSE(isVertexProgram("!!NVfp4.0\n"));
    EXPECT_FALSE(isVertexProgram(""));
}

TEST(ProgramKind, OnlyTheFirstCharactersCount)
{
    EXPECT_TRUE(isVertexProgram("!!ARBvp1.05\n"));
    EXPECT_TRUE(isVertexProgram("!!NVvp4.0x\n"));
    EXPECT_FALSE(isVertexProgram("\n!!ARBvp1.0\n"));
    EXPECT_FALSE(isVertexProgram("!!ARBvp1."));
}

TEST(Scan, SeveralStatementsMayShareALine)
{
    EXPECT_EQ(bodyOf("MOV R0, R1; MOV R2, R3;"), "  R0 = R1;\n  R2 = R3;\n");
}

TEST(Scan, EmptyStatementsAreSkipped)
{
    EXPECT_EQ(bodyOf(";;  ; \n\n ;MOV R0, R1;;\n"), "  R0 = R1;\n");
}

TEST(Scan, TheLastStatementNeedsNoEnd)
{
    EXPECT_EQ(bodyOf("MOV R0, R1"), "  R0 = R1;\n");
}

TEST(Scan, BlanksAroundOpcodeAndOperandsDoNotCount)
{
    EXPECT_EQ(bodyOf("   MOV    R0  ,R1   ;"), "  R0 = R1;\n");
}

TEST(Scan, CommentsAreTakenOut)
{
    EXPECT_EQ(bodyOf("# all of it; MOV R9, R9;\nMOV R0, R1; # the rest\nMOV R2, # cut\n"), "failed: too few operands");
    EXPECT_EQ(bodyOf("# all of it; MOV R9, R9;\nMOV R0, R1; # the rest\n#\nMOV R2, R3;#end"),
              "  R0 = R1;\n  R2 = R3;\n");
}

TEST(Scan, TabsAndCarriageReturnsAreBlanks)
{
    EXPECT_EQ(bodyOf("MOV\tR0,\tR1;\r\n\tMOV R2, R3\r\nTEMP\ta,\tb\t;\r\n"),
              "  R0 = R1;\n  R2 = R3;\n  float4 a;\n  float4 b;\n");
}

TEST(Scan, HeaderOptionAndEndProduceNothing)
{
    EXPECT_EQ(bodyOf("OPTION NV_fragment_program2;\noption ARB_precision_hint_fastest;\n!!arbFP1.0\n!!NVvp4.0;"
                     "!!NVfp4.0;!!ARBvp1.0;END\nend"),
              "");
}

TEST(Scan, TheWholeStatementOfADroppedWordIsDropped)
{
    EXPECT_EQ(bodyOf("END MOV R0, R1;"), "");
    EXPECT_EQ(bodyOf("ENDING"), "  ENDING;\n");
}

TEST(Scan, SaturationIsCutOffWhateverItsCase)
{
    EXPECT_EQ(bodyOf("mov_sat R0, R1;"), "  R0 = metal::clamp( R1, 0.0, 1.0 );\n");
    EXPECT_EQ(bodyOf("MOV_Sat R0, R1;"), "  R0 = metal::clamp( R1, 0.0, 1.0 );\n");
}

TEST(Scan, SaturationAloneIsNoOpcode)
{
    EXPECT_EQ(bodyOf("_SAT R0, R1;"), "  _SAT R0, R1;\n");
}

TEST(Scan, TextInOtherLettersPassesThrough)
{
    EXPECT_EQ(bodyOf("FOO \xE9;"), "  FOO \xC3\xA9;\n");
}

TEST(Translation, LeavesTheProgramAsItIs)
{
    ShaderString shader;
    shader.Append("!!ARBfp1.0\nMOV R0, R1;", 22);
    ZALM::String first;
    ZALM::String second;
    ShaderBindings bindings;
    EXPECT_EQ(shader.GLSLTranslation(first, bindings), 0);
    EXPECT_EQ(shader.GLSLTranslation(second, bindings), 0);
    EXPECT_TRUE(first == second);
    EXPECT_EQ(textOf(shader.Text()), "!!ARBfp1.0\nMOV R0, R1;");
}

TEST(Translation, TextMayComeInPieces)
{
    ShaderString shader;
    shader.Append(ZALM::String("!!ARBvp1.0\nMOV R0, R"));
    shader.Append(ZALM::String("1;"));
    ZALM::String source;
    ShaderBindings bindings;
    EXPECT_EQ(shader.GLSLTranslation(source, bindings), 0);
    EXPECT_NE(textOf(source).find("  //\n  R0 = R1;\n  //\n"), std::string::npos);
}

TEST(Report, NamesTheStatementAndItsLine)
{
    const translation::Translated result = translate("!!ARBfp1.0\n\nMOV R0, R1; ADD R0, R1;\nEND\n");
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(textOf(result.report.statement), "ADD R0, R1");
    EXPECT_EQ(result.report.line, 3);
    EXPECT_STREQ(result.report.reason, "too few operands");
    EXPECT_EQ(result.source, "");
}

TEST(Report, FollowsBodyLinesBackToTheProgram)
{
    const translation::Translated result =
        translate("!!ARBfp1.0\nTEMP a, b;\nIF NE.x;\n# note\nPK4UB.U a, b;\nCMP a.x, a.x, b.x, 1; ENDIF;\n");
    ASSERT_EQ(result.status, 0);
    const int expected[] = {2, 2, 5, 3, 3, 5, 5, 6, 6, 6};
    ASSERT_EQ(result.report.bodySource.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i)
        EXPECT_EQ(result.report.bodySource[i], expected[i]) << i;

    std::string before = result.source.substr(0, result.source.find("  float4 a;\n"));
    EXPECT_EQ(result.report.firstBodyLine, 1 + std::count(before.begin(), before.end(), '\n'));
}

} // namespace
