// SPDX-License-Identifier: Apache-2.0
// The demo's frame, drawn by this library and by Mesa's software GL in processes of their own from the same source,
// the same programs and the same data, must agree.
#include "Image.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace
{

namespace fs = std::filesystem;
using scenes::Image;

constexpr double WantedWithin = 0.995;
constexpr int Tolerance = 2; // of 255, in every channel

class DemoFrame : public testing::Test
{
protected:
    /// Runs a capture program; the picture stays in the build folder for a look after a failure.
    Image capture(const std::string& program, const std::string& arguments, const std::string& file)
    {
        fs::path folder = fs::path(ZAL_BINARY_DIR) / "differential";
        fs::create_directories(folder);
        std::string path = (folder / file).string(), error;
        std::string command = std::string(ZAL_BIN_DIR "/") + program +
                              " " ZAL_SOURCE_DIR "/Examples/models/teapot.obj " + path + " " + arguments + " > " +
                              path + ".log 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0) << "see " << path << ".log";
        Image image;
        EXPECT_TRUE(readPng(path, image, error)) << error;
        return image;
    }

    void expectAgreement(const std::string& arguments, const std::string& name)
    {
        Image ours = capture("capture_zal", arguments, name + "-zal.png");
        Image theirs = capture("capture_mesa", arguments, name + "-mesa.png");
        ASSERT_EQ(ours.pixels.size(), theirs.pixels.size());
        ASSERT_GT(ours.pixels.size(), 0u);
        Image picture;
        auto difference = compare(ours, theirs, Tolerance, &picture);
        std::string path = (fs::path(ZAL_BINARY_DIR) / "differential" / (name + "-difference.png")).string(), error;
        EXPECT_TRUE(writePng(path, picture, error)) << error;
        EXPECT_GE(difference.within(), WantedWithin)
            << difference.differing << " of " << difference.pixels << " pixels differ, by up to " << difference.largest
            << "; both pictures and their difference: " << path;
        expectOnlyEdges(ours, theirs);
    }

    /// A differing pixel must lie on an edge: beside it, in either picture, something changes visibly.
    void expectOnlyEdges(const Image& ours, const Image& theirs)
    {
        int stray = 0;
        for (int y = 0; y < ours.height; ++y)
            for (int x = 0; x < ours.width; ++x)
                stray += distance(ours.at(x, y), theirs.at(x, y)) > Tolerance &&
                         contrast(ours, x, y) <= 4 * Tolerance && contrast(theirs, x, y) <= 4 * Tolerance;
        EXPECT_EQ(stray, 0) << "pixels that differ in the middle of a surface";
    }

    static int distance(const uint8_t* a, const uint8_t* b)
    {
        int worst = 0;
        for (int i = 0; i < 4; ++i)
            worst = std::max(worst, std::abs(a[i] - b[i]));
        return worst;
    }

    static int contrast(const Image& image, int x, int y)
    {
        int worst = 0;
        for (int v = std::max(y - 1, 0); v <= std::min(y + 1, image.height - 1); ++v)
            for (int u = std::max(x - 1, 0); u <= std::min(x + 1, image.width - 1); ++u)
                worst = std::max(worst, distance(image.at(x, y), image.at(u, v)));
        return worst;
    }
};

TEST_F(DemoFrame, AgreesWithMesa)
{
    expectAgreement("1280 720", "demo");
}

TEST_F(DemoFrame, AgreesWithMesaAtAnOddSizeFromBehind)
{
    expectAgreement("333 517 3.3", "demo-odd");
}

} // namespace
