// SPDX-License-Identifier: Apache-2.0
#include "shader/MachineCode.h"

#include "shader/Intrinsics.h"

#include <cstring>

#include <dlfcn.h>
#include <sys/mman.h>

namespace softmetal::shader
{
namespace
{

void* runtimeFunction(std::string_view name, const abi::RuntimeTable& runtime)
{
    if (name == intrinsic::RuntimeSample) return reinterpret_cast<void*>(runtime.sample);
    if (name == intrinsic::RuntimeSampleCompare) return reinterpret_cast<void*>(runtime.sampleCompare);
    if (name == intrinsic::RuntimeGather) return reinterpret_cast<void*>(runtime.gather);
    if (name == intrinsic::RuntimeRead) return reinterpret_cast<void*>(runtime.read);
    if (name == intrinsic::RuntimeLoopLimit) return reinterpret_cast<void*>(runtime.loopLimitReached);
    if (name == intrinsic::RuntimeOutside) return reinterpret_cast<void*>(runtime.outside);
    if (name == intrinsic::RuntimeWrite) return reinterpret_cast<void*>(runtime.write);
    if (name == intrinsic::RuntimeAtomic) return reinterpret_cast<void*>(runtime.atomic);
    return nullptr;
}

/// What the code generator calls by itself, memcpy and the like, is in every process.
void* addressOf(const std::string& name, const abi::RuntimeTable& runtime)
{
    void* known = runtimeFunction(name, runtime);
    return known ? known : dlsym(RTLD_DEFAULT, name.c_str());
}

bool fits(const MachineCode& code, uint64_t slot)
{
    return code.bytes.size() >= sizeof(uint64_t) && slot <= code.bytes.size() - sizeof(uint64_t);
}

/// Fills the slots of the copy at base.
bool fillSlots(uint8_t* base, const MachineCode& code, const abi::RuntimeTable& runtime, std::string& error)
{
    for (const MachineCode::Import& import : code.imports) {
        void* address = addressOf(import.name, runtime);
        if (!address || !fits(code, import.slot)) {
            error = "the code calls '" + import.name + "', which is not there";
            return false;
        }
        std::memcpy(base + import.slot, &address, sizeof address);
    }
    for (uint64_t place : code.places) {
        if (!fits(code, place)) {
            error = "the code refers to what is not there";
            return false;
        }
        uint64_t value = 0;
        std::memcpy(&value, base + place, sizeof value);
        value += reinterpret_cast<uint64_t>(base);
        std::memcpy(base + place, &value, sizeof value);
    }
    return true;
}

} // namespace

std::unique_ptr<LoadedCode> LoadedCode::load(const MachineCode& code, const abi::RuntimeTable& runtime,
                                             std::string& error)
{
    uint64_t size = code.bytes.size();
    if (code.entry >= size) {
        error = "the code has no entry";
        return nullptr;
    }
    void* memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) {
        error = "there is no memory for the code";
        return nullptr;
    }
    auto* base = static_cast<uint8_t*>(memory);
    std::unique_ptr<LoadedCode> loaded(new LoadedCode(memory, size, base + code.entry));
    std::memcpy(base, code.bytes.data(), size);
    if (!fillSlots(base, code, runtime, error)) return nullptr;
    if (mprotect(memory, size, PROT_READ | PROT_EXEC) != 0) {
        error = "memory cannot be made executable here";
        return nullptr;
    }
    return loaded;
}

LoadedCode::~LoadedCode()
{
    munmap(memory_, size_);
}

} // namespace softmetal::shader
