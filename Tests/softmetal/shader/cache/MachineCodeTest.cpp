// SPDX-License-Identifier: Apache-2.0
#include "shader/MachineCode.h"

#include "shader/Intrinsics.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{

using softmetal::shader::LoadedCode;
using softmetal::shader::MachineCode;
namespace intrinsic = softmetal::shader::intrinsic;

uint32_t stops = 0;

softmetal::abi::RuntimeTable runtime()
{
    softmetal::abi::RuntimeTable table{};
    table.loopLimitReached = [] { ++stops; };
    return table;
}

/// mov eax, value; ret
MachineCode gives(uint8_t value)
{
    return {{0xb8, value, 0, 0, 0, 0xc3}, 0, {}, {}};
}

/// jmp [rip + 2], two bytes of nothing, the slot
MachineCode jumps(const std::string& name)
{
    return {{0xff, 0x25, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, {{8, name}}, {}};
}

template <class Type>
Type* functionOf(const LoadedCode& code)
{
    Type* function = nullptr;
    void* address = code.address();
    std::memcpy(&function, &address, sizeof function);
    return function;
}

TEST(MachineCode, RunsAtItsEntry)
{
    std::string error;
    MachineCode code = gives(42);
    code.bytes.insert(code.bytes.begin(), 3, 0xcc);
    code.entry = 3;
    auto loaded = LoadedCode::load(code, runtime(), error);
    ASSERT_TRUE(loaded) << error;
    EXPECT_EQ(functionOf<int()>(*loaded)(), 42);
}

TEST(MachineCode, CallsTheRuntime)
{
    std::string error;
    auto loaded = LoadedCode::load(jumps(std::string(intrinsic::RuntimeLoopLimit)), runtime(), error);
    ASSERT_TRUE(loaded) << error;
    uint32_t before = stops;
    functionOf<void()> (*loaded)();
    EXPECT_EQ(stops, before + 1);
}

TEST(MachineCode, CallsTheCLibrary)
{
    std::string error;
    auto loaded = LoadedCode::load(jumps("memset"), runtime(), error);
    ASSERT_TRUE(loaded) << error;
    char text[] = "abc";
    functionOf<void*(void*, int, size_t)> (*loaded)(text, 'x', 2);
    EXPECT_STREQ(text, "xxc");
}

TEST(MachineCode, HoldsItsOwnAddresses)
{
    // mov rax, [rip + 1]; ret; the slot at 8 holds the offset 3
    MachineCode code{{0x48, 0x8b, 0x05, 1, 0, 0, 0, 0xc3, 3, 0, 0, 0, 0, 0, 0, 0}, 0, {}, {8}};
    std::string error;
    auto first = LoadedCode::load(code, runtime(), error), second = LoadedCode::load(code, runtime(), error);
    ASSERT_TRUE(first && second) << error;
    EXPECT_EQ(functionOf<char*()>(*first)(), static_cast<char*>(first->address()) + 3);
    EXPECT_EQ(functionOf<char*()>(*second)(), static_cast<char*>(second->address()) + 3);
}

TEST(MachineCode, IsRefusedWithAnImportThatIsNotThere)
{
    std::string error;
    EXPECT_FALSE(LoadedCode::load(jumps("softmetal_there_is_no_such_function"), runtime(), error));
    EXPECT_NE(error.find("softmetal_there_is_no_such_function"), std::string::npos) << error;
}

TEST(MachineCode, IsRefusedWithAnythingOutside)
{
    MachineCode entry = gives(1), import = jumps("memset"), place = jumps("memset"), empty;
    entry.entry = entry.bytes.size();
    import.imports[0].slot = import.bytes.size() - 7;
    place.places = {UINT64_MAX - 3};
    for (const MachineCode& code : {entry, import, place, empty}) {
        std::string error;
        EXPECT_FALSE(LoadedCode::load(code, runtime(), error));
        EXPECT_FALSE(error.empty());
    }
}

} // namespace
