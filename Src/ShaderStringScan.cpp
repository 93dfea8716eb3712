// SPDX-License-Identifier: Apache-2.0
#include "ShaderStringScan.h"

#include "ShaderText.h"

#include <algorithm>

namespace ZALMetal
{

SHADER_PROGRAM ProgramKind(std::string_view program)
{
    // Kept on purpose: [program-kind] whatever is not one of these two headers is a fragment program, even a later
    // version of a vertex program or one that was loaded for the vertex target.
    if (StartsWithNoCase(program, "!!ARBvp1.0") || StartsWithNoCase(program, "!!NVvp4.0")) return VERTEX_PROGRAM;

    return FRAGMENT_PROGRAM;
}

int TakeOutComments(ZALM::String& out, std::string_view program)
{
    TextBuffer clean;
    while (!program.empty()) {
        const size_t end = program.find_first_of("#\t\r");
        clean.Add(program.substr(0, end));
        if (end == std::string_view::npos) break;

        const bool comment = program[end] == '#';
        if (!comment) clean.Add(" ");
        program.remove_prefix(comment ? std::min(program.find('\n', end), program.size()) : end + 1);
    }
    return clean.Store(out);
}

void StatementScanner::SkipBlank()
{
    while (!rest.empty() && (rest.front() == ' ' || rest.front() == '\n' || rest.front() == ';')) {
        if (rest.front() == '\n') ++line;
        rest.remove_prefix(1);
    }
}

// Kept on purpose: [statement-ends-at-newline] an instruction written over two lines is two statements.
bool StatementScanner::Next(Statement& statement)
{
    SkipBlank();
    if (rest.empty()) return false;

    statement.text = rest.substr(0, rest.find_first_of("\n;"));
    statement.line = line;
    rest.remove_prefix(statement.text.size());

    const size_t blank = std::min(statement.text.find(' '), statement.text.size());
    statement.opcode = statement.text.substr(0, blank);
    statement.operands = Trimmed(statement.text.substr(blank));

    constexpr std::string_view suffix = "_SAT";
    const size_t stem = statement.opcode.size() - std::min(statement.opcode.size(), suffix.size());
    statement.saturated = stem > 0 && EqualsNoCase(statement.opcode.substr(stem), suffix);
    if (statement.saturated) statement.opcode = statement.opcode.substr(0, stem);
    return true;
}

} // namespace ZALMetal
