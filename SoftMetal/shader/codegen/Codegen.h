// SPDX-License-Identifier: Apache-2.0
// From a specialised scalar module to machine code: clean-up, widening, code generation, linking.
#pragma once

#include "shader/Compiler.h"
#include "shader/MachineCode.h"

#include <llvm/IR/Module.h>

#include <memory>
#include <string>

namespace softmetal::shader
{

/// Inlines everything into the entry point and simplifies it, so that only scalars and what is really used remain.
/// Modules of one context must not be worked on at the same time.
void cleanUp(llvm::Module& module);

/// Machine code of one function; freed with this object.
class Code
{
public:
    virtual ~Code() = default;
    virtual void* address() const = 0;
    /// The same to be kept elsewhere.
    virtual const MachineCode& machineCode() const = 0;
};

/// Makes code for a fixed number of lanes on this machine. Thread-safe for modules of different contexts. What it makes
/// may outlive it.
class Generator
{
public:
    virtual ~Generator() = default;
    /// Null with words in error. The module must have been cleaned up; it is used up.
    virtual std::unique_ptr<Code> generate(llvm::Module& module, Stage stage, CompileTimes& times,
                                           std::string& error) = 0;
    /// The same as assembly text, for reading.
    virtual std::string listing(llvm::Module& module, Stage stage, std::string& error) = 0;
};

/// Every bound buffer must be readable: the code does not test Resources::buffers for null.
std::unique_ptr<Generator> makeGenerator(const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error);

} // namespace softmetal::shader
