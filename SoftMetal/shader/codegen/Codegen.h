// SPDX-License-Identifier: Apache-2.0
// From a specialised scalar module to machine code: clean-up, widening, code generation, linking.
#pragma once

#include "shader/Compiler.h"

#include <llvm/IR/Module.h>

#include <memory>
#include <string>

namespace softmetal::shader {

/// Inlines everything into the entry point and simplifies it, so that only scalars and what is really used remain.
/// Not thread-safe for one context.
void cleanUp(llvm::Module& module);

/// Machine code of one function; freed with this object.
class Code
{
public:
    virtual ~Code() = default;
    virtual void* address() const = 0;
};

/// Makes code for a fixed number of lanes on this machine. Thread-safe.
class Generator
{
public:
    virtual ~Generator() = default;
    /// Null with words in error. The module must have been cleaned up; it is used up.
    virtual std::unique_ptr<Code> generate(llvm::Module& module, Stage stage, CompileTimes& times, std::string& error) = 0;
};

std::unique_ptr<Generator> makeGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error);

} // namespace softmetal::shader
