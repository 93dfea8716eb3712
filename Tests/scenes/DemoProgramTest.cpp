// SPDX-License-Identifier: Apache-2.0
// The demo's command line: what it prints, what it writes, and how it refuses.
#include "Image.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using support::runProgram;

class DemoProgram : public testing::Test
{
protected:
    DemoProgram()
    {
        folder_ = fs::path(testing::TempDir()) / ("zal-demo-" + std::to_string(getpid()));
        fs::create_directories(folder_);
    }

    ~DemoProgram() override { fs::remove_all(folder_); }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }

    std::string file(const std::string& name, const std::string& text) const
    {
        std::ofstream(path(name)) << text;
        return path(name);
    }

    support::ProgramResult demo(const std::string& arguments) const
    {
        return runProgram(ZAL_DEMO " " + arguments + " --size 160x90 --out '" + path("out.png") + "'");
    }

    /// One sentence that says what is wrong, exit status 2, and no picture.
    void expectRefusal(const std::string& arguments, const std::string& reason) const
    {
        auto result = demo(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 1) << result.output;
        EXPECT_NE(result.output.find(reason), std::string::npos) << result.output;
        EXPECT_FALSE(fs::exists(path("out.png")));
    }

private:
    fs::path folder_;
};

TEST_F(DemoProgram, WritesThePictureAndSaysWhatItDrewOnWhatAndHowLongItTook)
{
    auto result = demo("'" ZAL_SOURCE_DIR "/Examples/models/teapot.obj'");
    EXPECT_EQ(result.status, 0) << result.output;
    for (const char* part : {"libZALMetal", "SoftMetal", "triangles", "160 x 90", " ms"})
        EXPECT_NE(result.output.find(part), std::string::npos) << part << " in " << result.output;
    scenes::Image picture;
    std::string error;
    ASSERT_TRUE(scenes::readPng(path("out.png"), picture, error)) << error;
    EXPECT_EQ(picture.width, 160);
    EXPECT_EQ(picture.height, 90);
}

TEST_F(DemoProgram, DrawsAnyModelFile)
{
    std::string model = file("box side.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 1 1 0\nf 1 2 4 3\n");
    auto result = demo("'" + model + "'");
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find("2 triangles"), std::string::npos) << result.output;
}

TEST_F(DemoProgram, RefusesAFileThatIsNotThere) { expectRefusal("'" + path("none.obj") + "'", "none.obj"); }

TEST_F(DemoProgram, RefusesAFolder) { expectRefusal("/", "/"); }

TEST_F(DemoProgram, RefusesAnEmptyFile) { expectRefusal("'" + file("empty.obj", "") + "'", "empty.obj"); }

TEST_F(DemoProgram, RefusesABrokenFileNamingTheLine)
{
    expectRefusal("'" + file("broken.obj", "v 0 0 0\nv 1 0 zero\n") + "'", "broken.obj:2");
}

TEST_F(DemoProgram, RefusesAFaceOfVerticesThatAreNotThere)
{
    expectRefusal("'" + file("face.obj", "v 0 0 0\nf 1 2 3\n") + "'", "face.obj:2");
}

TEST_F(DemoProgram, RefusesAFileThatIsNoModel) { expectRefusal("'" ZAL_DEMO "'", "demo"); }

TEST_F(DemoProgram, RefusesACommandLineWithoutModel)
{
    EXPECT_EQ(runProgram(ZAL_DEMO).status, 2);
    EXPECT_EQ(runProgram(ZAL_DEMO " a.obj --size 0x0").status, 2);
    EXPECT_EQ(runProgram(ZAL_DEMO " a.obj --colour red").status, 2);
}

TEST_F(DemoProgram, SaysThatAPictureCannotBeWritten)
{
    auto result = runProgram(ZAL_DEMO " '" ZAL_SOURCE_DIR "/Examples/models/teapot.obj' --size 8x8 --out '" + path("none/out.png") + "'");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("none/out.png"), std::string::npos) << result.output;
}

TEST_F(DemoProgram, SaysThatThereIsNoDevice)
{
    auto result = runProgram("SOFTMETAL_NO_DEVICE=1 " ZAL_DEMO " '" ZAL_SOURCE_DIR "/Examples/models/teapot.obj' --out '" + path("out.png") + "'");
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("256"), std::string::npos) << result.output;
}

} // namespace
