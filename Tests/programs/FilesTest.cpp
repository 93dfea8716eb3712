// SPDX-License-Identifier: Apache-2.0
// Programs written to disk and read back, when the environment asks for it.
#include "ProgramFiles.h"
#include "contexts/Logged.h"
#include "programs/Programs.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

using namespace programs;
namespace fs = std::filesystem;

class ProgramFiles : public ProgramTest
{
protected:
    void SetUp() override
    {
        ProgramTest::SetUp();
        fs::create_directories(folder);
    }
    void TearDown() override
    {
        unsetenv("ZALMETAL_SHADER_DUMP_DIR");
        unsetenv("ZALMETAL_SHADER_REPLACE_DIR");
        fs::remove_all(folder);
        ProgramTest::TearDown();
    }

    std::string contents(const std::string& program, const char* ending)
    {
        std::ifstream file(folder / (std::string(ZALMetal::ProgramHash(program).Buffer()) + ending));
        return std::string(std::istreambuf_iterator<char>(file), {});
    }
    size_t files() { return static_cast<size_t>(std::distance(fs::directory_iterator(folder), {})); }

    fs::path folder = fs::temp_directory_path() / ("zal-programs-" + std::to_string(getpid()));
};

TEST_F(ProgramFiles, NothingIsWrittenUnasked)
{
    load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment);
    setenv("ZALMETAL_SHADER_DUMP_DIR", "", 1);
    load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment);
    EXPECT_EQ(files(), 0u);
}

TEST_F(ProgramFiles, EveryLoadedProgramIsWrittenWithItsSource)
{
    setenv("ZALMETAL_SHADER_DUMP_DIR", folder.c_str(), 1);
    load(GL_VERTEX_PROGRAM_ARB, PassVertex);
    load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment);
    EXPECT_EQ(contents(PassVertex, ".vp"), PassVertex);
    EXPECT_EQ(contents(PlainFragment, ".fp"), PlainFragment);
    EXPECT_EQ(contents(PassVertex, ".metal").rfind("#include <simd/simd.h>\n", 0), 0u);
    EXPECT_EQ(files(), 4u);
}

TEST_F(ProgramFiles, AProgramThatDoesNotCompileIsWrittenToo)
{
    setenv("ZALMETAL_SHADER_DUMP_DIR", folder.c_str(), 1);
    load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nLOG R0, R0.x;\nEND\n");
    EXPECT_EQ(files(), 2u);
}

TEST_F(ProgramFiles, AFolderThatIsNotThereIsSaidAndTheProgramLoads)
{
    setenv("ZALMETAL_SHADER_DUMP_DIR", (folder / "missing").c_str(), 1);
    contexts::Logged lines;
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    auto said = lines.take();
    ASSERT_EQ(said.size(), 1u);
    EXPECT_EQ(said[0].rfind("ZAL Metal, a program cannot be written to ", 0), 0u);
}

TEST_F(ProgramFiles, AReplacementIsCompiledInstead)
{
    load(GL_VERTEX_PROGRAM_ARB, PassVertex);
    std::ofstream(folder / (std::string(ZALMetal::ProgramHash(PlainFragment).Buffer()) + ".metal"))
        << "#include <metal_stdlib>\nfragment float4 ShaderFunc() { return float4(0.0, 0.0, 1.0, 1.0); }\n";
    setenv("ZALMETAL_SHADER_REPLACE_DIR", folder.c_str(), 1);
    contexts::Logged lines;
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, PlainFragment), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(lines.take().size(), 1u);
    setUpTriangle();
    draw();
    EXPECT_EQ(pixel(), "0 0 255 255");
}

TEST_F(ProgramFiles, AProgramWithoutAReplacementKeepsItsSource)
{
    setenv("ZALMETAL_SHADER_REPLACE_DIR", folder.c_str(), 1);
    load(GL_VERTEX_PROGRAM_ARB, PassVertex);
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n"), static_cast<GLenum>(GL_NO_ERROR));
    setUpTriangle();
    draw();
    EXPECT_EQ(pixel(), "255 255 255 255");
}

TEST_F(ProgramFiles, TheHashIsOfTheTextAlone)
{
    EXPECT_STREQ(ZALMetal::ProgramHash("").Buffer(), "cbf29ce484222325");
    EXPECT_STREQ(ZALMetal::ProgramHash("a").Buffer(), "af63dc4c8601ec8c");
}

} // namespace
