// SPDX-License-Identifier: Apache-2.0
// Ends of a source's growth: clang calls itself for each level of nesting, keeps the whole of a macro's argument while
// it expands it, and takes ever longer. A source that goes past any sensible length or depth is stopped with an error.
#pragma once

namespace clang
{
class CompilerInstance;
}

namespace softmetal::shader
{

/// Thrown out of clang from within a macro's arguments, where there is no other end. What clang was doing is then left
/// as it is: its instance must not be used or taken down any more.
struct MacroLimitReached
{};

/// Watches the tokens and macros of a compilation that is about to begin.
void limitSource(clang::CompilerInstance& instance);

} // namespace softmetal::shader
