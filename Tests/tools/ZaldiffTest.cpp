// SPDX-License-Identifier: Apache-2.0
#include "Image.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;
using scenes::Image;

class Zaldiff : public testing::Test
{
protected:
    Zaldiff() : folder_(fs::path(testing::TempDir()) / ("zaldiff-" + std::to_string(getpid()))) { fs::create_directories(folder_); }
    ~Zaldiff() override { fs::remove_all(folder_); }

    /// A grey picture of 10 x 10 pixels, the first of which have another red.
    std::string picture(const std::string& name, int changed, uint8_t red) const
    {
        Image image(10, 10);
        for (uint8_t& byte : image.pixels) byte = 100;
        for (int i = 0; i < changed; ++i) image.at(i, 0)[0] = red;
        std::string error, file = path(name);
        EXPECT_TRUE(writePng(file, image, error)) << error;
        return file;
    }

    std::string path(const std::string& name) const { return (folder_ / name).string(); }
    static support::ProgramResult run(const std::string& arguments) { return support::runProgram(ZAL_DIFF " " + arguments); }

private:
    fs::path folder_;
};

TEST_F(Zaldiff, AlikePicturesGiveZero)
{
    auto result = run(picture("a.png", 0, 0) + " " + picture("b.png", 0, 0));
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "0 of 100 pixels differ by more than 0, by up to 0\n");
}

TEST_F(Zaldiff, CountsDifferingPixels)
{
    auto result = run(picture("a.png", 0, 0) + " " + picture("b.png", 3, 108));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "3 of 100 pixels differ by more than 0, by up to 8\n");
}

TEST_F(Zaldiff, ToleranceForgivesSmallOnes)
{
    std::string files = picture("a.png", 0, 0) + " " + picture("b.png", 3, 108);
    EXPECT_EQ(run("--tolerance 8 " + files).status, 0);
    EXPECT_EQ(run("--tolerance 7 " + files).status, 1);
}

TEST_F(Zaldiff, ShareForgivesFewOnes)
{
    std::string files = picture("a.png", 0, 0) + " " + picture("b.png", 3, 255);
    EXPECT_EQ(run("--within 0.97 " + files).status, 0);
    EXPECT_EQ(run("--within 0.98 " + files).status, 1);
}

TEST_F(Zaldiff, WritesAPictureOfTheDifferences)
{
    EXPECT_EQ(run("--out " + path("d.png") + " " + picture("a.png", 0, 0) + " " + picture("b.png", 3, 255)).status, 1);
    Image image;
    std::string error;
    EXPECT_TRUE(readPng(path("d.png"), image, error)) << error;
    EXPECT_EQ(image.width, 10);
}

TEST_F(Zaldiff, SizesThatDifferAreADifference)
{
    Image small(3, 4);
    std::string error;
    ASSERT_TRUE(writePng(path("small.png"), small, error)) << error;
    auto result = run(picture("a.png", 0, 0) + " " + path("small.png"));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "sizes differ: 10 x 10 and 3 x 4\n");
}

TEST_F(Zaldiff, UnreadableFilesGetASentence)
{
    std::ofstream(path("text.png")) << "not a picture";
    for (const char* name : {"none.png", "text.png"}) {
        auto result = run(picture("a.png", 0, 0) + " " + path(name));
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.output.find(name), std::string::npos) << result.output;
    }
}

TEST_F(Zaldiff, BadUsageShowsTheUsage)
{
    for (const char* arguments : {"", "a.png", "a.png b.png c.png", "--tolerance x a.png b.png", "--tolerance 256 a.png b.png", "--within 2 a.png b.png", "--what 1 a.png b.png", "a.png --out"}) {
        auto result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_NE(result.output.find("usage: zaldiff"), std::string::npos);
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("--version").output, "zaldiff " ZAL_VERSION "\n");
}

} // namespace
