// SPDX-License-Identifier: Apache-2.0
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr const char* Good = "!!ARBfp1.0\nTEMP R0;\nTEX R0, fragment.texcoord[0], texture[2], 3D;\nMOV result.color, R0;\nMOV result.color[3], R0;\nEND\n";

class Zalasm : public testing::Test
{
protected:
    void SetUp() override
    {
        fs::create_directories(folder);
        write("good.fp", Good);
        write("copied.fp", "!!ARBfp1.0\nTEMP R0;\n  LOG R0, R0.x;\nMOV result.color, R0;\nEND\n");
        write("short.vp", "!!ARBvp1.0\nTEMP R0;\n\nADD R0, R0;\nEND\n");
    }
    void TearDown() override { fs::remove_all(folder); }

    void write(const char* name, const std::string& text) { std::ofstream(folder / name) << text; }

    support::ProgramResult run(const std::string& arguments, const std::string& before = "")
    {
        return support::runProgram("cd " + folder.string() + " && " + before + " " ZAL_ASM " " + arguments);
    }

    fs::path folder = fs::temp_directory_path() / ("zalasm-" + std::to_string(getpid()));
};

TEST_F(Zalasm, PrintsTheMetalSource)
{
    auto result = run("good.fp");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.rfind("#include <simd/simd.h>\n", 0), 0u);
    EXPECT_NE(result.output.find("fragment FragmentOutput ShaderFunc("), std::string::npos);
    EXPECT_EQ(run("-", "cat good.fp |").output, result.output);
}

TEST_F(Zalasm, CheckIsSilentForAProgramThatCompiles)
{
    auto result = run("--check good.fp");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "");
}

TEST_F(Zalasm, CheckNamesTheLineOfTheAssemblyProgram)
{
    auto result = run("--check copied.fp");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output.rfind("copied.fp:3:3: error: ", 0), 0u) << result.output;
    EXPECT_EQ(run("--check -", "cat copied.fp |").output.rfind("<stdin>:3:3: error: ", 0), 0u);
}

TEST_F(Zalasm, CheckWithoutADeviceSaysSo)
{
    auto result = run("--check good.fp", "SOFTMETAL_NO_DEVICE=1");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("there is no Metal device"), std::string::npos) << result.output;
}

TEST_F(Zalasm, AProgramThatDoesNotTranslateIsNamedWithItsLine)
{
    for (const char* option : {"", "--check ", "--bindings "}) {
        auto result = run(option + std::string("short.vp"));
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.output, "short.vp:4:1: error: too few operands: ADD R0, R0\n");
    }
}

TEST_F(Zalasm, BindingsAreJson)
{
    EXPECT_EQ(run("--bindings good.fp").output, "{\"textures\": [{\"unit\": 2, \"target\": \"3D\"}],\n \"attributes\": [],\n \"colors\": [0, 3]}\n");
    write("a.vp", "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.attrib[9];\nEND\n");
    EXPECT_NE(run("--bindings a.vp").output.find("\"attributes\": [{\"index\": 0, \"name\": \"vertexpos\"}, {\"index\": 9, "), std::string::npos) << run("--bindings a.vp").output;
}

TEST_F(Zalasm, NormalisedProgramsAreAccepted)
{
    write("old.vp", "!!ARBvp1.0\nATTRIB p = vertex.position;\nOPTION ARB_position_invariant;\nMOV result.color,\n  vertex.normal;\nEND\n");
    auto result = run("--normalise old.vp");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("vertex.attrib[2]"), std::string::npos) << result.output;
    EXPECT_EQ(run("--check -", ZAL_ASM " --normalise old.vp |").status, 0);
    write("fog.fp", "!!ARBfp1.0\nMOV result.color, state.fog.color;\nEND\n");
    result = run("--normalise fog.fp");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output.rfind("fog.fp:2:", 0), 0u) << result.output;
}

TEST_F(Zalasm, BadUsageShowsTheUsage)
{
    for (const char* arguments : {"", "--what good.fp", "good.fp good.fp", "--check --bindings good.fp"}) {
        auto result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_NE(result.output.find("usage: zalasm"), std::string::npos);
    }
    auto missing = run("missing.fp");
    EXPECT_EQ(missing.status, 2);
    EXPECT_EQ(missing.output, "zalasm: missing.fp cannot be read\n");
    EXPECT_EQ(run(".").status, 2);
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("--version").output, "zalasm " ZAL_VERSION "\n");
}

} // namespace
