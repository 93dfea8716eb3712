// SPDX-License-Identifier: Apache-2.0
// One translation of one program: the counters, the body written so far, and the steps. It lives for one call of
// ShaderString::GLSLTranslation. The steps stand in ShaderStringOperands, -Instructions, -Declarations and -Layout.
#pragma once

#include "OpcodeTable.h"
#include "ShaderString.h"
#include "ShaderStringScan.h"
#include "ShaderText.h"

namespace ZALMetal
{

// What a step returns: 0, or why there is no source.
inline constexpr int kUnreadable = 1;
inline constexpr int kOutOfMemory = ZALM::OutOfMemory;

// The local that stands for the depth result in the generated source.
inline constexpr std::string_view kDepthLocal = "glfragdepth";

// One operand as a statement uses it.
struct Operand
{
    GLSLParam param;
    const ARBKeyWord* keyword = nullptr; // the binding that it names
    bool absolute = false;               // stood between bars
    bool negatedOutside = false;         // a minus stood in front of the bars

    // What is written for it: text, swizzle, bars, minus.
    ZALM::String Written() const;
    bool HasOneLetter() const { return param.swizzle.GetStringBytes() == 1; }
    bool IsSingle() const { return param.scalar || HasOneLetter(); }
};

// ".xy" for a mask of one to three letters, empty for any other.
ZALM::String MaskSuffix(std::string_view mask);

// Copies the text to `out` without the blanks behind "[" and before "]". 0, or 2 when out of memory.
int TrimBrackets(ZALM::String& out, std::string_view text);

class ShaderTranslation
{
public:
    ShaderTranslation(const ShaderString& source, ShaderBindings& uses, TranslationReport* wanted)
        : program(source), bindings(uses), report(wanted)
    {}

    // 0 with the source in `out`, kUnreadable or kOutOfMemory.
    int Run(ZALM::String& out);

private:
    static constexpr int kMostSources = 3;

    // ---- Statements (ShaderString) ----
    int TranslateStatement();
    int CopyStatement(const char* pattern);
    int Fail(const char* reason);

    // ---- Writing the body (ShaderStringInstructions) ----
    template <class... Arguments>
    int AddLine(const char* pattern, const Arguments&... arguments)
    {
        if ((IsLost(arguments) || ...)) return kOutOfMemory;

        line.Clear();
        program.AddInstruction(line, pattern, arguments...);
        return FinishLine();
    }
    int AddFixedLine(const char* text) { return AddLine(text, ZALM::String()); }
    int FinishLine();
    static bool IsLost(const ZALM::String& text) { return text.MemorySize() == 0; } // its allocation failed
    static bool IsLost(const char*) { return false; }
    void OpenBlock();
    int OpenBrace();
    void CloseBlock();
    void DeclareScratch();

    // ---- Operands (ShaderStringOperands) ----
    int ParseOperand(Operand& operand, std::string_view written);
    int ReadName(Operand& operand, std::string_view name);
    int SplitOperands(const char* separator);
    int ReadOperands(int destinations, int count);
    int Narrow(Operand& operand, int components);
    bool KeepsLetter(OpcodeKind kind, int which) const;
    int NarrowSources(const OpcodeRow& row);
    bool AllSingle() const;
    bool AllNumbers() const;

    // ---- Instructions (ShaderStringInstructions) ----
    int TranslateInstruction(const OpcodeRow& row);
    int TranslateAssignment(const OpcodeRow& row);
    const char* ChooseForm(const OpcodeRow& row) const;
    int TranslateKill(const OpcodeRow& row);
    int TranslateSample();
    int TranslatePack();
    int TranslateUnpack();
    int TranslateIf(const OpcodeRow& row);
    int TranslateElse(const OpcodeRow& row);
    int TranslateRepeat(const OpcodeRow& row);
    int TranslateBlockEnd(const OpcodeRow& row);

    // ---- Declarations (ShaderStringDeclarations) ----
    int TranslateTemporaries();
    int TranslateIntegers();
    int TranslateParameter();
    int TranslateArray(const ZALM::String& name, long room, std::string_view value);
    int AddElements(TextBuffer& list, long& count, std::string_view element);
    void AddOperandElements(TextBuffer& list, long& count, const Operand& operand);
    static void AddElement(TextBuffer& list, long& count, const ZALM::String& element);
    int ReadVector(ZALM::String& vector, bool alone, std::string_view list);
    int ReadSingleValue(Operand& operand, std::string_view written);

    // ---- The source around the body (ShaderStringLayout) ----
    void WriteSource(TextBuffer& out);
    void WriteNamedParameters(TextBuffer& out) const;
    void WriteAttributes(TextBuffer& out) const;
    void WriteColorOutputs(TextBuffer& out) const;
    void WriteSignature(TextBuffer& out);
    void WriteLocals(TextBuffer& out);
    void WriteBody(TextBuffer& out);
    void FillReport(const TextBuffer& out) const;

    const ShaderString& program;
    ShaderBindings& bindings;
    TranslationReport* report; // may be null
    SHADER_PROGRAM kind = FRAGMENT_PROGRAM;

    // The current statement.
    Statement statement;
    ZALM::Vector<ZALM::String> pieces; // its operand list, cut
    Operand destination;
    Operand sources[kMostSources];
    int sourceCount = 0;
    ZALM::String suffix; // of the destination's mask, with its "."

    // The body.
    TextBuffer body;
    ZALM::Vector<int> lines; // per body line, the program's line
    ZALM::String line;       // under construction
    int indentation = 2;     // blanks
    long openBlocks = 0;
    size_t outermostStart = 0; // where in the body the outermost open block begins
    size_t outermostLine = 0;  // and at which of its lines
    unsigned char loopName = 'i';
    bool scratchDeclared = false;
    size_t scratchStart = 0; // where in the body the declaration belongs
    size_t scratchLine = 0;
    int scratchSource = 0; // the program's line that first needed it
    bool depthWritten = false;
    ZALM::Map<ZALM::String, TextureUnit> textures; // by parameter name
};

} // namespace ZALMetal
