// SPDX-License-Identifier: Apache-2.0
#include "shader/frontend/Limits.h"

#include "shader/frontend/ClangHeaders.h"

#include <clang/Lex/MacroArgs.h>
#include <clang/Lex/MacroInfo.h>
#include <clang/Lex/PPCallbacks.h>

#include <algorithm>
#include <vector>

namespace softmetal::shader
{
namespace
{

using clang::tok::TokenKind;

constexpr unsigned MostTokens = 250000, MostInARow = 8192, MostNested = 1024;
constexpr uint64_t MostOfMacros = 1000000; // tokens on the way to one that the parser gets

template <unsigned Length>
void complain(clang::Preprocessor& preprocessor, clang::SourceLocation where, const char (&words)[Length],
              unsigned limit)
{
    clang::DiagnosticsEngine& diagnostics = preprocessor.getDiagnostics();
    diagnostics.Report(where, diagnostics.getCustomDiagID(clang::DiagnosticsEngine::Fatal, words)) << limit;
}

/// Counts how deep statements stand in one another: heads that no statement has followed yet, and links of else, which
/// are nested although they do not look it.
class Nesting
{
public:
    unsigned depth() const { return depth_; }

    void add(TokenKind kind)
    {
        using namespace clang::tok;
        if (ended_) endChain(kind);
        switch (kind) {
        case l_paren:
            ++parens_;
            break;
        case r_paren:
            parens_ -= parens_ > 0;
            break;
        case l_brace:
            open();
            break;
        case r_brace:
            close();
            break;
        case semi:
            ended_ = parens_ == 0;
            break;
        case kw_if:
        case kw_for:
        case kw_while:
        case kw_do:
        case kw_switch:
        case kw_case:
        case kw_default:
            deepen(levels_.back().heads);
            break;
        case kw_else:
            deepen(levels_.back().links);
            break;
        default:
            break;
        }
    }

private:
    struct Level
    {
        unsigned heads = 0, links = 0, parens = 0;
    };

    void deepen(unsigned& count)
    {
        ++count;
        ++depth_;
    }

    void open()
    {
        levels_.push_back({0, 0, parens_});
        parens_ = 0;
    }

    void close()
    {
        if (levels_.size() == 1) return;
        depth_ -= levels_.back().heads + levels_.back().links;
        parens_ = levels_.back().parens;
        levels_.pop_back();
        ended_ = parens_ == 0;
    }

    /// After a statement an else goes on with the chain of conditions, and anything else is a statement of its own.
    void endChain(TokenKind next)
    {
        Level& level = levels_.back();
        ended_ = false;
        depth_ -= level.heads;
        level.heads = 0;
        if (next == clang::tok::kw_else) return;
        depth_ -= level.links;
        level.links = 0;
    }

    std::vector<Level> levels_ = {{}};
    unsigned parens_ = 0, depth_ = 0;
    bool ended_ = false;
};

/// Sees every token, those on their way through macros' arguments too, and lets the source end where it has grown too
/// far.
class TokenLimit
{
public:
    TokenLimit(clang::Preprocessor& preprocessor, const uint64_t& uses) : preprocessor_(preprocessor), uses_(uses) {}

    void operator()(const clang::Token& token)
    {
        const bool parsed = preprocessor_.getTokenCount() != count_; // else it goes into a macro's argument
        count_ = preprocessor_.getTokenCount();
        if (!parsed) return expanded(token);
        expanded_ = 0;
        if (token.isAnnotation() || token.is(clang::tok::eof)) return;
        ++tokens_;
        ++since_;
        nesting_.add(token.getKind());
        if (token.isOneOf(clang::tok::semi, clang::tok::comma, clang::tok::l_brace, clang::tok::r_brace)) since_ = 0;
        if (tokens_ > MostTokens) stop(token, "the program is longer than %0 tokens", MostTokens);
        if (since_ > MostInARow) stop(token, "a statement is longer than %0 tokens", MostInARow);
        if (nesting_.depth() > MostNested) stop(token, "statements are nested more than %0 levels deep", MostNested);
        if (over_) const_cast<clang::Token&>(token).setKind(clang::tok::eof); // the preprocessor's own, just made
    }

private:
    void expanded(const clang::Token& token)
    {
        if (++expanded_ * std::max<uint64_t>(uses_, 1) <= MostOfMacros) return;
        stop(token, "macros are expanded to more than %0 tokens", static_cast<unsigned>(MostOfMacros));
        throw MacroLimitReached();
    }

    template <unsigned Length>
    void stop(const clang::Token& token, const char (&words)[Length], unsigned limit)
    {
        if (!over_) complain(preprocessor_, token.getLocation(), words, limit);
        over_ = true;
    }

    clang::Preprocessor& preprocessor_;
    const uint64_t& uses_;
    Nesting nesting_;
    uint64_t expanded_ = 0;
    unsigned tokens_ = 0, since_ = 0; // since the last that parts statements or arguments
    unsigned count_ = 0;              // of tokens for the parser, as the preprocessor has it
    bool over_ = false;
};

/// Knows how often the macros under way repeat what they are given, and how many there were for one parsed token.
class MacroLimit final : public clang::PPCallbacks
{
public:
    explicit MacroLimit(clang::Preprocessor& preprocessor) : preprocessor_(preprocessor) {}

    const uint64_t& uses() const { return uses_; }

    void MacroExpands(const clang::Token& name, const clang::MacroDefinition& definition, clang::SourceRange,
                      const clang::MacroArgs* arguments) override
    {
        if (preprocessor_.getTokenCount() != count_) uses_ = macros_ = 0;
        count_ = preprocessor_.getTokenCount();
        const clang::MacroInfo* macro = definition.getMacroInfo();
        uint64_t given = 0;
        if (macro && arguments) {
            uses_ = std::max(uses_, repetitions(*macro));
            for (unsigned i = 0; i < arguments->getNumMacroArguments(); ++i)
                given += clang::MacroArgs::getArgLength(arguments->getUnexpArgument(i));
        }
        if (++macros_ <= MostOfMacros && given * std::max<uint64_t>(uses_, 1) <= MostOfMacros) return;
        complain(preprocessor_, name.getLocation(), "macros are expanded to more than %0 tokens",
                 static_cast<unsigned>(MostOfMacros));
        throw MacroLimitReached();
    }

private:
    /// How many tokens of the macro's text stand for something given.
    static uint64_t repetitions(const clang::MacroInfo& macro)
    {
        return static_cast<uint64_t>(
            std::count_if(macro.tokens_begin(), macro.tokens_end(), [&](const clang::Token& token) {
                return token.getIdentifierInfo() && macro.getParameterNum(token.getIdentifierInfo()) != -1;
            }));
    }

    clang::Preprocessor& preprocessor_;
    uint64_t uses_ = 0, macros_ = 0;
    unsigned count_ = 0;
};

} // namespace

void limitSource(clang::CompilerInstance& instance)
{
    clang::Preprocessor& preprocessor = instance.getPreprocessor();
    auto macros = std::make_unique<MacroLimit>(preprocessor);
    preprocessor.setPreprocessToken(true); // the watcher sees tokens on their way into arguments too
    preprocessor.setTokenWatcher(TokenLimit(preprocessor, macros->uses()));
    preprocessor.addPPCallbacks(std::move(macros));
}

} // namespace softmetal::shader
