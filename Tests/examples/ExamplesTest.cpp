// SPDX-License-Identifier: Apache-2.0
// Every example runs, and the picture it writes shows what its first lines promise.
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include <unistd.h>

namespace {

namespace fs = std::filesystem;

using Rgb = std::array<int, 3>;

struct Picture
{
    int width = 0, height = 0;
    std::string pixels;

    Rgb at(int x, int y) const
    {
        const auto* p = reinterpret_cast<const unsigned char*>(pixels.data()) + (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
        return {p[0], p[1], p[2]};
    }
};

Picture readPpm(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    int largest = 0;
    Picture picture;
    file >> magic >> picture.width >> picture.height >> largest;
    file.get();
    std::ostringstream rest;
    rest << file.rdbuf();
    picture.pixels = rest.str();
    EXPECT_EQ(magic, "P6");
    EXPECT_EQ(picture.pixels.size(), static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height) * 3);
    return picture;
}

Picture run(const std::string& example)
{
    fs::path folder = fs::path(testing::TempDir()) / ("zal-examples-" + std::to_string(getpid()));
    fs::create_directories(folder);
    fs::path file = folder / (example + ".ppm");
    auto result = support::runProgram(ZAL_EXAMPLES "/" + example + " '" + file.string() + "'");
    EXPECT_EQ(result.status, 0) << result.output;
    Picture picture = readPpm(file);
    fs::remove_all(folder);
    return picture;
}

/// Colours that differ by no more than the rounding of a texel.
void expectColour(const Picture& picture, int x, int y, Rgb wanted, int tolerance = 2)
{
    Rgb got = picture.at(x, y);
    for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(got[i], wanted[i], tolerance) << "channel " << i << " at " << x << ", " << y;
}

TEST(Triangle, BlendsItsCornersColoursUpright)
{
    Picture p = run("triangle");
    expectColour(p, 5, 5, {26, 26, 26}); // the clear colour
    EXPECT_GT(p.at(128, 40)[2], 200);    // blue at the top
    EXPECT_GT(p.at(36, 224)[0], 200);    // red at the lower left
    EXPECT_GT(p.at(220, 224)[1], 200);   // green at the lower right
}

TEST(PostProcess, AddsAGlowAroundTheDiscs)
{
    Picture p = run("postprocess");
    EXPECT_EQ(p.width, 320);
    expectColour(p, 20, 20, {255, 255, 223}, 12);  // a disc's middle, brightened
    expectColour(p, 40, 40, {0, 0, 0});            // between discs
    EXPECT_GT(p.at(20, 27)[0], 10);                // beside the disc's edge: glow only
    EXPECT_LT(p.at(20, 27)[0], 200);
}

TEST(Volume, ShowsShellsAroundTheMiddle)
{
    Picture p = run("volume");
    expectColour(p, 2, 2, {0, 0, 0});
    EXPECT_GT(p.at(128, 75)[0], p.at(128, 60)[0] + 10); // the inner shell is brighter than the gap
    for (int i = 0; i < 128; i += 9)                    // and the same from all sides
        expectColour(p, 128 - 1, i, p.at(i, 128 - 1), 3);
}

TEST(Sharing, ShowsTheOtherContextsTextureUpright)
{
    Picture p = run("sharing");
    expectColour(p, 4, 123, {240, 220, 180}); // the first texel lies at the lower left
    expectColour(p, 20, 123, {40, 70, 110});
    expectColour(p, 4, 4, {40, 70, 110});
}

TEST(HostTextures, AreDrawnInto)
{
    Picture p = run("hosttextures");
    EXPECT_NE(p.at(100, 100), p.at(100, 108));
    for (int i = 0; i < 100; i += 7) expectColour(p, 99, i, p.at(i, 99), 3); // rings
}

TEST(MetalProgram, SamplesAndUsesItsLocals)
{
    Picture p = run("metalprogram");
    int changes = 0;
    for (int x = 1; x < p.width; ++x) changes += std::abs(p.at(x, 96)[0] - p.at(x - 1, 96)[0]) > 3;
    EXPECT_GT(changes, 40); // stripes, bent
    for (int x = 0; x < p.width; x += 5) expectColour(p, x, 10, p.at(x, p.height - 11), 3);
}

/// An example is read in one go.
TEST(Examples, StayShort)
{
    for (const auto& entry : fs::recursive_directory_iterator(ZAL_EXAMPLE_SOURCES)) {
        if (entry.path().extension() != ".c" && entry.path().extension() != ".cpp" && entry.path().extension() != ".h") continue;
        std::ifstream file(entry.path());
        int lines = 0;
        for (std::string line; std::getline(file, line);) ++lines;
        EXPECT_LT(lines, 300) << entry.path();
    }
}

} // namespace
