// SPDX-License-Identifier: Apache-2.0
// Turns the scalar entry point into a function over lanes. Control flow that differs between lanes becomes masks:
// blocks are laid out in a topological order, each guarded by "is any lane here", and values that cross blocks go
// through stack slots, which the optimiser turns back into registers. Values that are equal in all lanes stay scalar.
#pragma once

#include "shader/Compiler.h"

#include <llvm/IR/Function.h>

#include <string>

namespace softmetal::shader
{

struct WidenOptions
{
    uint32_t lanes = 8;
    Stage stage = Stage::Vertex;
    uint64_t loopLimit = 1u << 20; // back edges in one call, over all loops
};

inline constexpr const char* WideName = "softmetal_wide";

/// Adds the function "softmetal_wide" (an abi::VertexFunction or abi::FragmentFunction) beside the scalar entry point.
/// Null with words in error when the function uses what cannot be widened.
llvm::Function* widen(llvm::Function& scalar, const WidenOptions& options, std::string& error);

} // namespace softmetal::shader
