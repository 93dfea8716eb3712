// SPDX-License-Identifier: Apache-2.0
#include "ShaderString.h"

#include "ShaderText.h"
#include "ShaderTranslation.h"

#include <algorithm>

namespace ZALMetal
{

// ---- Text ------------------------------------------------------------------------------------------------------

void ShaderString::Trim(ZALM::String& s)
{
    const std::string_view trimmed = Trimmed(View(s));
    if (trimmed.size() != View(s).size()) s = ZALMetal::Text(trimmed);
}

void ShaderString::Split(ZALM::Vector<ZALM::String>& out, const ZALM::String& text, const ZALM::String& separator)
{
    SplitInto(out, text, separator);
}

int ShaderString::SplitInto(ZALM::Vector<ZALM::String>& out, const ZALM::String& text, const ZALM::String& separator)
{
    if (text.MemorySize() == 0 || separator.MemorySize() == 0) return ZALM::OutOfMemory;

    const std::string_view cut = View(separator);
    out.clear();
    for (std::string_view rest = View(text); !rest.empty();) {
        const size_t end = cut.empty() ? rest.size() : std::min(rest.find(cut), rest.size());
        const std::string_view piece = Trimmed(rest.substr(0, end));
        rest.remove_prefix(std::min(end + cut.size(), rest.size()));
        if (piece.empty()) continue;

        const int status = out.push_back(ZALMetal::Text(piece));
        if (status != 0) return status;
        if (out.back().MemorySize() == 0) return ZALM::OutOfMemory;
    }
    return 0;
}

// ---- Translation -----------------------------------------------------------------------------------------------

int ShaderString::GLSLTranslation(ZALM::String& out, ShaderBindings& bindings) const
{
    return GLSLTranslation(out, bindings, nullptr);
}

int ShaderString::GLSLTranslation(ZALM::String& out, ShaderBindings& bindings, TranslationReport* report) const
{
    const int status = InitializeGLSLTranslation();
    if (status != 0) return status;

    return ShaderTranslation(*this, bindings, report).Run(out);
}

int ShaderTranslation::Run(ZALM::String& out)
{
    ZALM::String text;
    if (IsLost(program.Text()) || TakeOutComments(text, View(program.Text())) != 0) return kOutOfMemory;

    kind = ProgramKind(View(text));

    StatementScanner scanner(View(text));
    while (scanner.Next(statement)) {
        const int status = TranslateStatement();
        if (status != 0) return status;
    }

    TextBuffer source;
    WriteSource(source);
    ZALM::String written;
    if (body.Failed() || source.Store(written) != 0) return kOutOfMemory;

    out = written;
    return IsLost(out) ? kOutOfMemory : 0;
}

int ShaderTranslation::TranslateStatement()
{
    if (EqualsNoCase(statement.opcode, "TEMP")) return TranslateTemporaries();
    if (EqualsNoCase(statement.opcode, "UINT")) return TranslateIntegers();
    if (EqualsNoCase(statement.opcode, "PARAM")) return TranslateParameter();

    for (const OpcodeRow& row : kOpcodeRows)
        if (EqualsNoCase(statement.opcode, row.name)) return TranslateInstruction(row);

    // Kept on purpose: [text-after-end] END is a word like the others: what follows it is translated too.
    for (const char* word : kDroppedWords)
        if (EqualsNoCase(statement.opcode, word)) return 0;

    return CopyStatement("%1;");
}

// Kept on purpose: [unknown-statement] what the translator does not know goes to the Metal compiler as it is written.
int ShaderTranslation::CopyStatement(const char* pattern)
{
    return AddLine(pattern, Text(statement.text));
}

int ShaderTranslation::Fail(const char* reason)
{
    if (report) {
        report->statement = Text(statement.text);
        report->line = statement.line;
        report->reason = reason;
    }
    return kUnreadable;
}

} // namespace ZALMetal
