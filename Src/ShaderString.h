// SPDX-License-Identifier: Apache-2.0
// The translator of assembly programs (ARB 1.0 and NV 4.0 texts) to Metal source. One object holds one program's text;
// translating does not change it. The work of one translation is done by ShaderTranslation; this class owns the text
// and the tree of bindings, and offers the routines that the translation is built from.
//
// A translation knows no error messages of the shading language: statements that it does not know are copied, and the
// Metal compiler's message about them is what a host sees.
#pragma once

#include "ShaderBindings.h"
#include "ShaderKeywords.h"
#include "foundation/Map.h"
#include "foundation/String.h"
#include "foundation/Vector.h"

namespace ZALMetal
{

// The width that an opcode needs of a source operand.
enum PARAM_TYPE : int
{
    PARAM_SCALAR = 0,
    PARAM_VECTOR2 = 1,
    PARAM_VECTOR3 = 2,
    PARAM_VECTOR4 = 3,
};

// One operand of a statement.
struct GLSLParam
{
    ZALM::String text;    // bindings replaced, without the swizzle
    ZALM::String swizzle; // swizzle or write mask without its "."; empty when there is none
    bool scalar = false;  // a number written in the program
};

// A named parameter of the generated source.
struct ShaderParam
{
    int type = 0; // 4 for a matrix, anything else for a vector
};

// A texture unit that the program samples.
struct TextureUnit
{
    int unit = 0;
    ZALM::String target; // the target word as the program writes it
};

// What a caller may want to know beside the generated source.
struct TranslationReport
{
    ZALM::String statement;       // the statement at which a translation failed
    int line = 0;                 // its line in the program, counted from 1; 0 when no statement is to blame
    const char* reason = "";      // half a sentence: what is wrong with it
    int firstBodyLine = 0;        // line of the generated source, counted from 1, at which the body begins
    ZALM::Vector<int> bodySource; // for each line of the body, the line of the program that it stands for
};

class ShaderString
{
public:
    // ---- The program text ----
    void Append(const ZALM::String& more) { text.Add(more); }
    void Append(const char* more, unsigned length) { text.Add(ZALM::String(more, length)); }
    const ZALM::String& Text() const { return text; }

    // Removes blanks, and only blanks, from both ends.
    static void Trim(ZALM::String& s);
    // Cuts `text` at every `separator`; the pieces are trimmed and empty ones dropped.
    static void Split(ZALM::Vector<ZALM::String>& out, const ZALM::String& text, const ZALM::String& separator);

    // ---- Translation ----

    // Replaces `out` by the Metal source of the program and adds what it uses to `bindings`. 0 on success; otherwise
    // `out` is unchanged and `report`, if given, says which statement could not be read.
    int GLSLTranslation(ZALM::String& out, ShaderBindings& bindings) const;
    int GLSLTranslation(ZALM::String& out, ShaderBindings& bindings, TranslationReport* report) const;

    // Cuts or widens an operand to `type`. 0, or 1 for a type that does not exist.
    int ConvertParamType(GLSLParam& param, PARAM_TYPE type) const;

    // Appends a template filled with the arguments, %1 by the first. 0, or 6 for a null template.
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1) const;
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2) const;
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                       const ZALM::String& a3) const;
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                       const ZALM::String& a3, const ZALM::String& a4) const;
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                       const ZALM::String& a3, const ZALM::String& a4, const ZALM::String& a5) const;
    int AddInstruction(ZALM::String& out, const char* templ, const ZALM::String& a1, const ZALM::String& a2,
                       const ZALM::String& a3, const ZALM::String& a4, const ZALM::String& a5,
                       const ZALM::String& a6) const;

    // ---- Bindings ----

    // Fills the tree from the keyword table; does nothing when it is filled. 0, or what AddARBKeyWord returned.
    static int InitializeGLSLTranslation();
    // Frees the tree; the next translation fills it again.
    static void ReleaseGLSLTranslation();
    // Enters one binding ("state.matrix.mvp.row[#]"). 0, 2 when out of memory, 6 for a binding without a component.
    static int AddARBKeyWord(SHADER_PROGRAM kind, const ZALM::String& binding, const ZALM::String& replacement,
                             KEYWORD_TYPE type, int index);
    // Frees a node and everything below it.
    static void ReleaseARBKeyWord(ARBKeyWord* keyword);
    // Rewrites an operand that begins with a binding, in place, and stores the new text in `out` too; any other operand
    // stays as it is. `context` is the operand's statement; no rule depends on it. 0 on success.
    int TranslateARBKeyWords(ZALM::String& out, ZALM::String& operand, ShaderBindings& bindings, SHADER_PROGRAM kind,
                             const ZALM::String& context) const;

    static ZALM::Vector<ARBKeyWord*> _arb_keys[2]; // the roots, by program kind

private:
    friend class ShaderTranslation;

    // Split, saying whether every piece could be stored: 0 or 2.
    static int SplitInto(ZALM::Vector<ZALM::String>& out, const ZALM::String& text, const ZALM::String& separator);

    ZALM::String text;
    // Kept on purpose: [named-parameters] nothing ever enters a named parameter, so their block is always empty.
    mutable ZALM::Map<ZALM::String, ShaderParam> namedParameters; // mutable for its cursor
};

} // namespace ZALMetal
