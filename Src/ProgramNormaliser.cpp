// SPDX-License-Identifier: Apache-2.0
// The run over a program, and the call that offers it to hosts.
#include "ProgramNormaliser.h"

#include "ProgramNormaliserRun.h"
#include "ShaderText.h"

#include <ZALMetal/ZALMetal.h>

#include <algorithm>
#include <cstring>
#include <exception>

namespace ZALMetal
{
namespace
{

constexpr std::array kHeaders = std::to_array<std::string_view>({"!!ARBvp1.0", "!!ARBfp1.0", "!!NVvp4.0", "!!NVfp4.0"});

constexpr size_t kMostFaults = 64; // a file that is no program has one for every line

// Headers end in a number, which is not a part of a word; blanks stand where the header stood, so that places stay.
std::string WithoutHeader(std::string_view program)
{
    std::string text(program);
    const size_t start = text.find_first_not_of(" \t\r\n");
    for (std::string_view header : kHeaders)
        if (start != std::string::npos && StartsWithNoCase(std::string_view(text).substr(start), header))
            text.replace(start, header.size(), header.size(), ' ');
    return text;
}

} // namespace

std::string NormaliseProgram(std::string_view program, std::vector<NormaliserFault>& faults)
{
    faults.clear();
    std::string header;
    const size_t start = std::min(program.find_first_not_of(" \t\r\n"), program.size());
    for (std::string_view candidate : kHeaders)
        if (StartsWithNoCase(program.substr(start), candidate)) header = candidate;
    if (header.empty()) {
        faults.push_back({1, 1, "the program does not begin with !!ARBvp1.0, !!ARBfp1.0, !!NVvp4.0 or !!NVfp4.0"});
        return {};
    }
    const std::string text = WithoutHeader(program);
    return NormaliserRun(header, text, faults).Run();
}

NormaliserRun::NormaliserRun(std::string_view kind, std::string_view program, std::vector<NormaliserFault>& found)
    : tokens(ReadTokens(program)), vertex(kind.find("vp") != std::string_view::npos), header(kind), faults(found)
{
    // Helper names begin with a word that no name of the program begins with.
    const auto taken = [this](const Token& token) { return StartsWithNoCase(token.text, helperPrefix); };
    for (int number = 1; std::any_of(tokens.begin(), tokens.end(), taken); ++number)
        helperPrefix = "zal" + std::to_string(number) + "_";
    hasLoops = std::any_of(tokens.begin(), tokens.end(), [](const Token& token) { return token.text == "REP"; });
}

std::string NormaliserRun::Run()
{
    while (faults.size() < kMostFaults && ReadStatement()) {
    }
    if (highLocal.line > 0 && global.line > 0)
        faults.push_back(
            {highLocal.line, highLocal.column, "a local from 128 on lies where the program's env parameters are put"});
    std::stable_sort(faults.begin(), faults.end(),
                     [](const NormaliserFault& a, const NormaliserFault& b) { return a.line < b.line; });
    return faults.empty() ? Assemble() : std::string();
}

// ---- Statements ----------------------------------------------------------------------------------------------------

bool NormaliserRun::ReadStatement()
{
    while (TakeMark(";")) {
    }
    const Token first = Look();
    if (first.kind == TokenKind::End) {
        faults.push_back({first.line, first.column, "the program has no END"});
        return false;
    }
    if (first.kind == TokenKind::Word && first.text == "END") {
        if (!blocks.empty()) faults.push_back({first.line, first.column, "a block is not closed"});
        return false;
    }

    try {
        TranslateStatement();
        if (!IsMark(";")) Fail(Look(), "\";\" is missing before \"" + std::string(Look().text) + "\"");
    } catch (const NormaliserFault& fault) {
        faults.push_back(fault);
        SkipStatement();
    }
    return true;
}

void NormaliserRun::SkipStatement()
{
    while (Look().kind != TokenKind::End && !IsMark(";"))
        ++next;
}

void NormaliserRun::TranslateStatement()
{
    if (Look().kind != TokenKind::Word) Fail(Look(), "a statement begins with a word");
    if (Look().text == "OPTION") return ReadOption();
    if (!ReadDeclaration()) ReadInstruction();
}

void NormaliserRun::ReadOption()
{
    Take();
    const Token at = Look();
    const std::string_view name = ExpectWord("an option's name");
    for (const OptionRow& row : kOptionRows) {
        if (name != row.name) continue;
        if (row.effect == OptionEffect::Refused) Fail(at, std::string(name) + ": " + row.why);

        positionInvariant |= row.effect == OptionEffect::PositionInvariant;
        return;
    }
    Fail(at, std::string(name) + ": this option cannot be expressed");
}

// ---- The result ----------------------------------------------------------------------------------------------------

std::string NormaliserRun::Assemble() const
{
    std::string program = header + "\n";
    const auto add = [&program](const std::string& line) { program += line + ";\n"; };

    if (usesScratch) add("TEMP " + Helper("scratch"));
    if (usesUnread) add("TEMP " + Helper("unread"));
    if (usesInverse) add("PARAM " + Helper("inverse") + "[4] = { state.matrix.modelview.inverse }");
    for (const std::string& line : firstLines)
        add(line);
    if (usesNormal) {
        add("TEMP " + Helper("normal"));
        add("MOV " + Helper("normal") + ".xyz, vertex.attrib[2]");
        add("MOV " + Helper("normal") + ".w, 1.0");
    }
    if (positionInvariant && vertex)
        for (int row = 0; row < 4; ++row)
            add(std::string("DP4 result.position.") + "xyzw"[row] + ", state.matrix.mvp.row[" + std::to_string(row) +
                "], vertex.attrib[0]");
    for (const std::string& line : lines)
        add(line);
    return program + "END\n";
}

} // namespace ZALMetal

// ---- The host's call -----------------------------------------------------------------------------------------------

namespace
{

// Copies as much as fits, always with a zero behind it.
void copyText(char* out, size_t size, const std::string& text)
{
    if (!out || size == 0) return;

    const size_t length = std::min(text.size(), size - 1);
    std::memcpy(out, text.data(), length);
    out[length] = '\0';
}

std::string messageOf(const std::vector<ZALMetal::NormaliserFault>& faults)
{
    std::string message;
    for (const ZALMetal::NormaliserFault& fault : faults)
        message += std::to_string(fault.line) + ":" + std::to_string(fault.column) + ": error: " + fault.text + "\n";
    return message;
}

} // namespace

int ZALMetalNormaliseProgram(const char* text, size_t length, char* out, size_t outSize, size_t* needed, char* message,
                             size_t messageSize)
{
    if (needed) *needed = 0;
    copyText(message, messageSize, "");
    if (!text || (!out && outSize > 0) || (!message && messageSize > 0)) return ZALMetalResultInvalidArgument;

    try {
        std::vector<ZALMetal::NormaliserFault> faults;
        const std::string program = ZALMetal::NormaliseProgram({text, length}, faults);
        copyText(message, messageSize, messageOf(faults));
        if (!faults.empty()) return ZALMetalResultNotExpressible;

        if (needed) *needed = program.size() + 1;
        if (outSize < program.size() + 1) return ZALMetalResultBufferTooSmall;

        copyText(out, outSize, program);
        return ZALMetalResultSuccess;
    } catch (const std::exception&) { // nothing but a failed allocation gets here
        return ZALMetalResultOutOfMemory;
    }
}
