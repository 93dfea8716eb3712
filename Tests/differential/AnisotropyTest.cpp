// SPDX-License-Identifier: Apache-2.0
// Anisotropic filtering without another library to compare with: what is as long as it is wide is filtered as without
// it, and a long footprint is read at the level of its shorter side.
#include "Host.h"
#include "suite/Stage.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace
{

using scenes::Image;
using scenes::Stage;

class Anisotropy : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string error;
        host_ = scenes::makeHost(Stage::Side, Stage::Side, error);
        ASSERT_TRUE(host_) << error;
        stage_.emplace(*host_);
        stage_->texture(GL_TEXTURE_2D);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
        for (int level = 0; level < 7; ++level) { // red tells the level
            std::vector<uint8_t> texels;
            for (int i = 0; i < (64 >> level) * (64 >> level); ++i)
                texels.insert(texels.end(), {static_cast<uint8_t>(40 * level), 0, 0, 255});
            glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, 64 >> level, 64 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         texels.data());
        }
        stage_->useTexture();
    }

    /// The picture of a rectangle over the whole frame that repeats the texture so often.
    Image drawn(float across, float up, float anisotropy)
    {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, anisotropy);
        stage_->rectangle({-1, -1, 1, 1, 0, 0, 0, across, up}, scenes::White);
        return host_->read();
    }

private:
    std::unique_ptr<scenes::Host> host_;
    std::optional<Stage> stage_;
};

TEST_F(Anisotropy, ChangesNothingWhereTheFootprintIsEven)
{
    for (float repeats : {0.7f, 2.3f, 3.7f, 5.9f})
        EXPECT_EQ(drawn(repeats, repeats, 8).pixels, drawn(repeats, repeats, 1).pixels) << repeats;
}

TEST_F(Anisotropy, ReadsTheLevelOfTheShorterSide)
{
    constexpr int LevelOne = 40; // two texels for each pixel
    for (float ratio : {1.5f, 2.2f, 3.9f, 7.5f}) {
        Image picture = drawn(3 * ratio, 3, 8);
        for (int x = 0; x < Stage::Side; x += 7)
            EXPECT_NEAR(picture.at(x, 50)[0], LevelOne, 1) << ratio << " at " << x;
    }
}

TEST_F(Anisotropy, ReadsACoarserLevelBeyondItsLimit)
{
    constexpr int LevelTwo = 80; // 16 texels by 2, in four probes
    Image picture = drawn(24, 3, 4);
    for (int x = 0; x < Stage::Side; x += 7)
        EXPECT_NEAR(picture.at(x, 50)[0], LevelTwo, 1) << x;
}

} // namespace
