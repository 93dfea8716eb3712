// SPDX-License-Identifier: Apache-2.0
// The words, numbers and marks of an assembly program. Comments, blanks and line ends are gone; each token knows its
// place.
#pragma once

#include <string_view>
#include <vector>

namespace ZALMetal
{

enum class TokenKind
{
    Word,   // a name, an opcode, a texture target
    Number, // without a sign
    Mark,   // one character, or ".."
    End,
};

struct Token
{
    TokenKind kind = TokenKind::End;
    std::string_view text; // of the program
    int line = 0;          // both counted from 1
    int column = 0;
    bool touches = false; // nothing stands between it and the token before it
};

// The tokens of a program, the last one an End.
std::vector<Token> ReadTokens(std::string_view program);

} // namespace ZALMetal
