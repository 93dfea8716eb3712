// SPDX-License-Identifier: Apache-2.0
// Program text to statements. The views point into the text that the scanner was given.
#pragma once

#include "ShaderKeywords.h"

#include <string_view>

namespace ZALMetal
{

struct Statement
{
    std::string_view text;     // as written, without the ";" or line end behind it
    std::string_view opcode;   // without "_SAT"
    std::string_view operands; // trimmed
    bool saturated = false;
    int line = 0; // counted from 1
};

class StatementScanner
{
public:
    explicit StatementScanner(std::string_view program) : rest(program) {}

    // The next statement that is not empty; false at the end of the text.
    bool Next(Statement& statement);

private:
    void SkipBlank();

    std::string_view rest;
    int line = 1;
};

// The kind that the first characters of a program announce.
SHADER_PROGRAM ProgramKind(std::string_view program);

// The program as the scanner wants it: "#" comments taken out, tabs and carriage returns turned into blanks. Lines keep
// their numbers. 0, or 2 when out of memory.
int TakeOutComments(ZALM::String& out, std::string_view program);

} // namespace ZALMetal
