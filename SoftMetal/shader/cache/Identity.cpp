// SPDX-License-Identifier: Apache-2.0
#include "shader/cache/Identity.h"

#include "shader/abi.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <vector>

#include <cpuid.h>
#include <dlfcn.h>
#include <elf.h>
#include <sys/stat.h>

namespace softmetal::shader
{
namespace
{

constexpr uint64_t RecordVersion = 3; // raised when the records of the same build change their meaning
constexpr uint64_t LargestNotes = 1 << 16;

template <class T>
bool readAt(std::ifstream& file, uint64_t offset, T& value)
{
    return static_cast<bool>(
        file.seekg(static_cast<std::streamoff>(offset)).read(reinterpret_cast<char*>(&value), sizeof value));
}

uint64_t padded(uint64_t size)
{
    return (size + 3) / 4 * 4;
}

/// The linker's fingerprint among a file's notes, empty when there is none.
std::string buildIdAmong(const std::vector<char>& notes)
{
    Elf64_Nhdr note;
    for (uint64_t at = 0; at + sizeof note <= notes.size();) {
        std::memcpy(&note, notes.data() + at, sizeof note);
        uint64_t name = at + sizeof note, description = name + padded(note.n_namesz),
                 end = description + padded(note.n_descsz);
        if (end > notes.size()) break;
        bool found =
            note.n_type == NT_GNU_BUILD_ID && note.n_namesz == 4 && std::memcmp(notes.data() + name, "GNU", 4) == 0;
        if (found) return std::string(notes.data() + description, note.n_descsz);
        at = end;
    }
    return {};
}

std::string buildIdOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    Elf64_Ehdr header{};
    if (!readAt(file, 0, header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return {};
    for (uint64_t i = 0; i < header.e_phnum; ++i) {
        Elf64_Phdr part{};
        if (!readAt(file, header.e_phoff + i * sizeof part, part)) return {};
        if (part.p_type != PT_NOTE || part.p_filesz > LargestNotes) continue;
        std::vector<char> notes(part.p_filesz);
        if (!file.seekg(static_cast<std::streamoff>(part.p_offset))
                 .read(notes.data(), static_cast<std::streamsize>(notes.size())))
            return {};
        if (std::string id = buildIdAmong(notes); !id.empty()) return id;
    }
    return {};
}

std::string pathOfThisLibrary()
{
    Dl_info here{};
    bool known = dladdr(reinterpret_cast<const void*>(&pathOfThisLibrary), &here) != 0 && here.dli_fname;
    return known ? here.dli_fname : "";
}

/// The system may renew LLVM's files under a compiler that stays as it is.
void addLlvmFiles(Digester& all)
{
    for (const char* path : {SOFTMETAL_LLVM_FILE, SOFTMETAL_CLANG_FILE}) {
        struct stat status
        {};
        if (stat(path, &status) != 0) continue;
        all.add(static_cast<uint64_t>(status.st_size))
            .add(static_cast<uint64_t>(status.st_mtim.tv_sec))
            .add(static_cast<uint64_t>(status.st_mtim.tv_nsec));
    }
}

struct Leaf
{
    uint32_t leaf, subleaf;
    uint32_t registers; // those that tell features, a bit each: eax, ebx, ecx, edx
};

// Vendor, family and model, and every set of features that the code generator may choose instructions by.
constexpr std::array Leaves = {
    Leaf{0, 0, 0b1111},          Leaf{1, 0, 0b1101},          Leaf{7, 0, 0b1111},    Leaf{7, 1, 0b1111},
    Leaf{0xd, 1, 0b0001},        Leaf{0x14, 0, 0b0010},       Leaf{0x19, 0, 0b0010}, Leaf{0x24, 0, 0b0010},
    Leaf{0x80000001, 0, 0b1101}, Leaf{0x80000008, 0, 0b0010},
};
constexpr uint32_t SavesExtendedState = 1u << 27; // in ecx of leaf 1

/// Which registers the system saves, hence which may be used.
uint64_t savedState()
{
    uint32_t a = 0, b = 0, c = 0, d = 0;
    if (!__get_cpuid(1, &a, &b, &c, &d) || (c & SavesExtendedState) == 0) return 0;
    __asm__("xgetbv" : "=a"(a), "=d"(d) : "c"(0));
    return uint64_t{d} << 32 | a;
}

void addProcessor(Digester& all)
{
    for (const Leaf& leaf : Leaves) {
        std::array<uint32_t, 4> values{};
        if (!__get_cpuid_count(leaf.leaf, leaf.subleaf, &values[0], &values[1], &values[2], &values[3])) values = {};
        for (size_t i = 0; i < values.size(); ++i)
            if (leaf.registers >> i & 1) all.add(uint64_t{values[i]});
    }
    all.add(savedState());
}

} // namespace

std::optional<Digest> compilerIdentity(const std::string& compilerPath, uint32_t lanes)
{
    const std::string compiler = buildIdOf(compilerPath), own = buildIdOf(pathOfThisLibrary());
    if (compiler.empty() || own.empty()) return std::nullopt;
    const char* limit = std::getenv("SOFTMETAL_SHADER_LIMIT"); // stands in the code
    Digester all;
    all.add(RecordVersion)
        .add(uint64_t{abi::Version})
        .add(uint64_t{lanes})
        .add(compiler)
        .add(own)
        .add(limit ? limit : "");
    addLlvmFiles(all);
    addProcessor(all);
    return all.finish();
}

} // namespace softmetal::shader
