// SPDX-License-Identifier: Apache-2.0
#include "ProgramNormaliserTokens.h"

#include "ShaderText.h"

namespace ZALMetal
{
namespace
{

constexpr bool IsLetter(char c)
{
    return (LowerCase(c) >= 'a' && LowerCase(c) <= 'z') || c == '_' || c == '$' || c == '!';
}

class Reader
{
public:
    explicit Reader(std::string_view program) : text(program) {}

    bool SkipBlank()
    {
        const size_t before = at;
        while (at < text.size() && (IsBlank(text[at]) || text[at] == '#')) {
            if (text[at] == '#')
                while (at < text.size() && text[at] != '\n')
                    ++at;
            else
                Step();
        }
        return at == before && at > 0;
    }

    Token Next()
    {
        Token token;
        token.touches = SkipBlank();
        token.line = line;
        token.column = static_cast<int>(at - lineStart) + 1;
        const size_t start = at;
        token.kind = Take();
        token.text = text.substr(start, at - start);
        return token;
    }

private:
    static bool IsBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
    char Look(size_t ahead = 0) const { return at + ahead < text.size() ? text[at + ahead] : '\0'; }
    void Step()
    {
        if (text[at++] != '\n') return;
        ++line;
        lineStart = at;
    }
    void TakeDigits()
    {
        while (IsDigit(Look()))
            ++at;
    }
    TokenKind TakeWord()
    {
        while (IsLetter(Look()) || IsDigit(Look()))
            ++at;
        return TokenKind::Word;
    }

    TokenKind Take()
    {
        if (at >= text.size()) return TokenKind::End;
        if (IsLetter(Look())) return TakeWord();
        if (IsDigit(Look()) || (Look() == '.' && IsDigit(Look(1)))) return TakeNumber();

        at += Look() == '.' && Look(1) == '.' ? 2 : 1;
        return TokenKind::Mark;
    }

    // "0..3" and "2.x" begin with a whole number; "2D" is a word.
    TokenKind TakeNumber()
    {
        TakeDigits();
        const bool swizzled = IsLetter(Look(1)) && LowerCase(Look(1)) != 'e';
        if (Look() == '.' && Look(1) != '.' && !swizzled) {
            ++at;
            TakeDigits();
        }
        const size_t sign = Look(1) == '+' || Look(1) == '-' ? 1 : 0;
        if (LowerCase(Look()) == 'e' && IsDigit(Look(1 + sign))) {
            at += 1 + sign;
            TakeDigits();
        }
        return IsLetter(Look()) ? TakeWord() : TokenKind::Number;
    }

    std::string_view text;
    size_t at = 0;
    size_t lineStart = 0;
    int line = 1;
};

} // namespace

std::vector<Token> ReadTokens(std::string_view program)
{
    Reader reader(program);
    std::vector<Token> tokens;
    do
        tokens.push_back(reader.Next());
    while (tokens.back().kind != TokenKind::End);
    return tokens;
}

} // namespace ZALMetal
