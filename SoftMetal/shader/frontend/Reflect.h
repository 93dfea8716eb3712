// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/frontend/Attributes.h"
#include "shader/frontend/Program.h"

namespace clang {
class ASTContext;
class Sema;
}

namespace softmetal::shader {

/// Finds the entry functions and function constants of a parsed unit and describes them. Mistakes that only the shading
/// language knows are reported through clang.
void describeProgram(clang::ASTContext& context, const AttributeTable& attributes, Program& program);

} // namespace softmetal::shader
