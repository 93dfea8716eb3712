// SPDX-License-Identifier: Apache-2.0
#include "Image.h"
#include "Pattern.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>

#include <unistd.h>

namespace {

using scenes::Image;

Image gradient(int width, int height)
{
    Image image(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            image.at(x, y)[0] = static_cast<uint8_t>(x);
            image.at(x, y)[1] = static_cast<uint8_t>(y);
            image.at(x, y)[3] = 255;
        }
    return image;
}

std::string scratch(const char* name)
{
    return (std::filesystem::temp_directory_path() / (std::string(name) + std::to_string(getpid()) + ".png")).string();
}

TEST(Png, RoundTripKeepsEveryByte)
{
    std::string path = scratch("roundtrip"), error;
    ASSERT_TRUE(writePng(path, gradient(17, 5), error)) << error;
    Image back;
    ASSERT_TRUE(readPng(path, back, error)) << error;
    EXPECT_EQ(back.pixels, gradient(17, 5).pixels);
    std::remove(path.c_str());
}

TEST(Png, FolderThatDoesNotExistIsOneSentence)
{
    std::string error;
    EXPECT_FALSE(writePng("/nonexistent/x.png", gradient(1, 1), error));
    EXPECT_EQ(error.find("/nonexistent/x.png: the picture cannot be written: "), 0u);
}

TEST(FlipRows, FirstRowBecomesTheLast)
{
    Image image = gradient(3, 4);
    flipRows(image);
    for (int y = 0; y < 4; ++y) EXPECT_EQ(image.at(0, y)[1], 3 - y);
}

TEST(Compare, EqualPicturesDoNotDiffer) { EXPECT_EQ(compare(gradient(4, 4), gradient(4, 4), 0).differing, 0u); }

TEST(Compare, DistanceBeyondTheToleranceCounts)
{
    Image other = gradient(4, 4);
    other.at(1, 1)[2] = 3;
    other.at(2, 2)[2] = 2;
    auto difference = compare(gradient(4, 4), other, 2);
    EXPECT_EQ(difference.differing, 1u);
    EXPECT_EQ(difference.largest, 3);
    EXPECT_DOUBLE_EQ(difference.within(), 15.0 / 16);
}

TEST(Compare, PictureShowsWhere)
{
    Image other = gradient(4, 4), picture;
    other.at(1, 3)[2] = 5;
    compare(gradient(4, 4), other, 0, &picture);
    EXPECT_EQ(picture.at(1, 3)[2], 40);
    EXPECT_EQ(picture.at(0, 0)[2], 0);
}

TEST(Pattern, MipLevelsHalveToOnePixel)
{
    auto pattern = scenes::tilePattern(16);
    ASSERT_EQ(pattern.levels.size(), 5u);
    EXPECT_EQ(pattern.levels[4].size(), 4u);
}

} // namespace
