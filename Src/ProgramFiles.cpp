// SPDX-License-Identifier: Apache-2.0
#include "ProgramFiles.h"

#include "ZALMetalLog.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>

namespace ZALMetal {
namespace {

/// The folder that a variable names, null when it is unset or empty.
const char* folderOf(const char* variable)
{
    const char* folder = std::getenv(variable);
    return folder && *folder ? folder : nullptr;
}

std::string pathOf(const char* folder, std::string_view program, const char* ending) { return std::string(folder) + "/" + ProgramHash(program).Buffer() + ending; }

bool write(const std::string& path, std::string_view bytes)
{
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) return false;
    bool whole = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size();
    return std::fclose(file) == 0 && whole;
}

bool read(const std::string& path, std::string& text)
{
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
    char part[4096];
    while (size_t count = file ? std::fread(part, 1, sizeof part, file.get()) : 0) text.append(part, count);
    return file != nullptr;
}

} // namespace

ZALM::String ProgramHash(std::string_view program)
{
    uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (char c : program) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    char digits[17];
    std::snprintf(digits, sizeof digits, "%016llx", static_cast<unsigned long long>(hash));
    return ZALM::String(digits);
}

void DumpProgram(bool isVertexProgram, std::string_view program, const ZALM::String& source)
{
    const char* folder = folderOf("ZALMETAL_SHADER_DUMP_DIR");
    if (!folder) return;
    bool written = false;
    try {
        written = write(pathOf(folder, program, isVertexProgram ? ".vp" : ".fp"), program) &&
                  write(pathOf(folder, program, ".metal"), {source.Buffer(), static_cast<size_t>(source.GetStringBytes())});
    } catch (const std::bad_alloc&) { // said like any other reason
    }
    if (!written) Log(ZALMetalLogLevelError, "ZAL Metal, a program cannot be written to %s", folder);
}

void ReplaceProgramSource(std::string_view program, ZALM::String& source)
{
    const char* folder = folderOf("ZALMETAL_SHADER_REPLACE_DIR");
    if (!folder) return;
    try {
        const std::string path = pathOf(folder, program, ".metal");
        std::string text;
        if (!read(path, text)) return;
        source.SetUTF8Buffer(text.c_str(), -1); // a file ends at its first NUL, as programs do
        Log(ZALMetalLogLevelInfo, "ZAL Metal, the source of a program is replaced by %s", path.c_str());
    } catch (const std::bad_alloc&) {
        Log(ZALMetalLogLevelError, "ZAL Metal, no memory for a program from %s", folder);
    }
}

} // namespace ZALMetal
