// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "shader/Compiler.h"

namespace llvm
{
class Module;
}

namespace softmetal::shader
{

/// Notes whether a cleaned-up fragment function does nothing but copy a texel: it samples a texture at two interpolated
/// pixel coordinates with a sampler of its own that takes the nearest texel, and returns what it gets as colour 0.
void noteCopying(const llvm::Module& module, FunctionReflection& reflection);

} // namespace softmetal::shader
