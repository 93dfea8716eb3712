// SPDX-License-Identifier: Apache-2.0
// Compiling generated source, and the compiler's words with the places of the assembly program.
#pragma once

#include "ShaderString.h"

#include <string>
#include <vector>

namespace zalasm {

/// What the default device's compiler says of the source, line by line; empty when it compiles. ok is false when it does
/// not, or when there is no device, which the one line then says.
std::vector<std::string> compile(const std::string& source, bool& ok);

/// The first line of a compiler's message, "name:line:column: rest", as "file:line:column: rest" of the assembly program:
/// the line is the statement's, the column where it begins. Lines that name no place of the body keep their words behind
/// "file:1:1: error: ". Notes and source excerpts give an empty text.
std::string placed(const std::string& message, const std::string& file, const std::string& program, const ZALMetal::TranslationReport& report);

} // namespace zalasm
