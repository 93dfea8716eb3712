// SPDX-License-Identifier: Apache-2.0
// A real number without a suffix is of single precision. clang casts it where it reads it, and forgets the cast when it
// instantiates a template; so the literals of templates are made anew.
#pragma once

namespace clang
{
class ASTContext;
class Decl;
} // namespace clang

namespace softmetal::shader
{

/// Makes double literals single ones wherever the declaration depends on a template's parameters.
void shortenLiterals(clang::ASTContext& context, clang::Decl* declaration);

} // namespace softmetal::shader
