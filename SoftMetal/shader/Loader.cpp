// SPDX-License-Identifier: Apache-2.0
// Opens the compiler's shared object when something is compiled that the disk does not know. Its symbols stay local,
// since a host process may hold another LLVM.
#include "shader/Loader.h"

#include "shader/cache/Identity.h"
#include "shader/cache/StoredCompiler.h"

#include <cstdlib>
#include <filesystem>
#include <mutex>

#include <dlfcn.h>

namespace softmetal::shader
{
namespace
{

constexpr const char* FileName = "libSoftMetalCompiler.so.0";

/// Beside the library that this code is in, unless SOFTMETAL_COMPILER names another place.
std::string compilerPath()
{
    if (const char* given = std::getenv("SOFTMETAL_COMPILER")) return given;
    Dl_info here{};
    if (!dladdr(reinterpret_cast<void*>(&compilerPath), &here) || !here.dli_fname) return FileName;
    std::filesystem::path beside = std::filesystem::path(here.dli_fname).parent_path() / FileName;
    std::error_code status;
    return std::filesystem::exists(beside, status) ? beside.string() : FileName;
}

Compiler* open(const std::string& path, const abi::RuntimeTable& runtime, uint32_t lanes, std::string& error)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        error = std::string("the shader compiler cannot be opened: ") + dlerror();
        return nullptr;
    }
    auto door = reinterpret_cast<OpenCompiler>(dlsym(handle, "softmetal_open_compiler"));
    Compiler* compiler = door ? door(&runtime, lanes) : nullptr;
    if (!compiler) error = "the shader compiler at " + path + " does not fit this library";
    return compiler;
}

/// The one in the shared object, opened when it is first needed and tried again while it cannot be.
OpenBehind opener(std::string path, const abi::RuntimeTable& runtime, uint32_t lanes)
{
    return [path = std::move(path), runtime, lanes](std::string& error) {
        static std::mutex mutex;
        static Compiler* opened = nullptr;
        std::lock_guard lock(mutex);
        if (!opened) opened = open(path, runtime, lanes, error);
        return opened;
    };
}

} // namespace

Compiler& theCompiler(const abi::RuntimeTable& runtime, uint32_t lanes)
{
    static Compiler* const compiler = [&] {
        std::string path = compilerPath();
        auto folder = folderOfEnvironment();
        auto identity = folder ? compilerIdentity(path, lanes) : std::nullopt;
        if (!identity) folder.reset();
        return makeStoredCompiler(opener(path, runtime, lanes), std::move(folder), identity.value_or(Digest{}), runtime,
                                  lanes)
            .release();
    }();
    return *compiler;
}

uint32_t chooseLanes()
{
    if (const char* wanted = std::getenv("SOFTMETAL_LANES")) {
        int lanes = std::atoi(wanted);
        if (lanes == 8 || lanes == 16) return static_cast<uint32_t>(lanes);
        if (lanes == 1 || lanes == 4) return 4;
    }
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512dq"))
        return 16;
    return __builtin_cpu_supports("avx2") ? 8 : 4;
}

} // namespace softmetal::shader
