// SPDX-License-Identifier: Apache-2.0
// Machine code as plain data. The compiler makes it, the disk keeps it, and either side of the door puts it into
// memory; so a function that was compiled before runs without a compiler in the process.
#pragma once

#include "shader/abi.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace softmetal::shader
{

/// One function with its constants. It runs at any page boundary once its slots, eight bytes each, hold addresses.
struct MachineCode
{
    struct Import
    {
        uint64_t slot;    // offset of the bytes that hold the address
        std::string name; // a function of the runtime (Intrinsics.h) or of the C library
        bool operator==(const Import&) const = default;
    };

    std::vector<uint8_t> bytes;
    uint64_t entry = 0; // offset of the function
    std::vector<Import> imports;
    std::vector<uint64_t> places; // offsets of slots that hold offsets within the code and are to hold addresses
    bool operator==(const MachineCode&) const = default;
};

/// Machine code in memory that can be executed; freed with this object.
class LoadedCode
{
public:
    /// Null with a sentence in error: an unknown import, a slot outside, or no memory.
    static std::unique_ptr<LoadedCode> load(const MachineCode& code, const abi::RuntimeTable& runtime,
                                            std::string& error);
    ~LoadedCode();
    LoadedCode(const LoadedCode&) = delete;
    LoadedCode& operator=(const LoadedCode&) = delete;
    void* address() const { return entry_; }

private:
    LoadedCode(void* memory, uint64_t size, void* entry) : memory_(memory), size_(size), entry_(entry) {}

    void* memory_;
    uint64_t size_;
    void* entry_;
};

} // namespace softmetal::shader
