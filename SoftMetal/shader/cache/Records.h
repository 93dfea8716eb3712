// SPDX-License-Identifier: Apache-2.0
// What the compiler found out, as bytes and back.
#pragma once

#include "shader/Compiler.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace softmetal::shader {

/// A source text that compiles.
struct LibraryRecord
{
    std::string messages; // warnings
    std::vector<FunctionReflection> functions;
};

/// One of its functions with its constants fixed.
struct FunctionRecord
{
    FunctionReflection reflection;
    MachineCode code;
};

std::vector<uint8_t> toBytes(const LibraryRecord& record);
std::vector<uint8_t> toBytes(const FunctionRecord& record);
/// Nothing when the bytes are not a whole record.
std::optional<LibraryRecord> libraryRecord(std::span<const uint8_t> bytes);
std::optional<FunctionRecord> functionRecord(std::span<const uint8_t> bytes);

} // namespace softmetal::shader
