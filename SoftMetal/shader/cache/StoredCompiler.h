// SPDX-License-Identifier: Apache-2.0
// A compiler that looks on the disk first. A program that was compiled before, here or in another process, costs two small
// files; the compiler behind is opened when something is new.
#pragma once

#include "shader/Compiler.h"
#include "shader/cache/Folder.h"

#include <functional>
#include <optional>

namespace softmetal::shader {

/// Gives the compiler behind, or null with a sentence; it is asked each time that it is needed.
using OpenBehind = std::function<Compiler*(std::string& error)>;

/// What was made and what was found, since the process began.
struct CompileCounts
{
    uint64_t parsed = 0, generated = 0;               // by the compiler behind
    uint64_t librariesFound = 0, functionsFound = 0;  // in the folder
};
CompileCounts compileCounts();

/// Without a folder everything goes to the compiler behind. The identity tells apart compilers that give different code.
std::unique_ptr<Compiler> makeStoredCompiler(OpenBehind behind, std::optional<Folder> folder, const Digest& identity, const abi::RuntimeTable& runtime, uint32_t lanes);

} // namespace softmetal::shader
