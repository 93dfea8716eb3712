// SPDX-License-Identifier: Apache-2.0
// The viewer in a window of a real X server: what stands in it is the picture that the demo draws off screen.
#include "Image.h"
#include "support/RunProgram.h"
#include "support/VirtualScreen.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <thread>

#include <unistd.h>

namespace
{

namespace fs = std::filesystem;
using support::VirtualScreen;

class Viewer : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string missing = VirtualScreen::whatIsMissing();
        if (!missing.empty()) GTEST_SKIP() << missing;
        folder = fs::path(testing::TempDir()) / ("zal-viewer-" + std::to_string(getpid()));
        fs::create_directories(folder);
        ASSERT_TRUE(screen.start());
        viewer = std::thread([this] {
            result = support::runProgram("DISPLAY=" + screen.display() +
                                         " " ZAL_VIEWER " " ZAL_TEAPOT " --size 160x120 --angle 0.5 --out '" +
                                         (folder / "shot.png").string() + "'");
        });
        ASSERT_TRUE(shows(expected(160, 120, "0.5"))) << "the first frame";
    }
    void TearDown() override
    {
        quit();
        fs::remove_all(folder);
    }
    void quit()
    {
        if (!viewer.joinable()) return;
        act("key Escape");
        viewer.join();
    }

    std::string id() const { return std::to_string(screen.window("viewer")); }
    void act(const std::string& actions) const
    {
        EXPECT_TRUE(screen.act("mousemove --window " + id() + " 80 60 " + actions)) << actions;
    }
    bool shows(const VirtualScreen::Picture& picture) const
    {
        return VirtualScreen::becomes([&] { return screen.contents(screen.window("viewer")) == picture; });
    }

    /// Drawn off screen by another program.
    VirtualScreen::Picture expected(int width, int height, const std::string& angle) const
    {
        fs::path file = folder / "expected.png";
        auto drawn =
            support::runProgram(ZAL_DEMO " " ZAL_TEAPOT " --size " + std::to_string(width) + "x" +
                                std::to_string(height) + " --angle " + angle + " --out '" + file.string() + "'");
        EXPECT_EQ(drawn.status, 0) << drawn.output;
        return read(file);
    }
    static VirtualScreen::Picture read(const fs::path& file)
    {
        scenes::Image image;
        std::string error;
        EXPECT_TRUE(scenes::readPng(file.string(), image, error)) << error;
        VirtualScreen::Picture picture{image.width, image.height, {}};
        for (size_t i = 0; i < image.pixels.size(); i += 4)
            picture.rgb.insert(picture.rgb.end(), image.pixels.begin() + static_cast<long>(i),
                               image.pixels.begin() + static_cast<long>(i) + 3);
        return picture;
    }

    VirtualScreen screen;
    fs::path folder;
    std::thread viewer;
    support::ProgramResult result;
};

TEST_F(Viewer, ShowsTheModelAndQuitsOnEscape)
{
    quit();
    EXPECT_EQ(result.status, 0) << result.output;
}

TEST_F(Viewer, FollowsTheSizeOfItsWindow)
{
    ASSERT_TRUE(screen.act("windowsize --sync " + id() + " 200 90"));
    EXPECT_TRUE(shows(expected(200, 90, "0.5")));
}

TEST_F(Viewer, TurnsWithTheMouseAndSavesWhatItShows)
{
    auto before = screen.contents(screen.window("viewer"));
    act("mousedown 1 mousemove --window " + id() + " 120 60 mouseup 1");
    ASSERT_TRUE(VirtualScreen::becomes([&] { return !(screen.contents(screen.window("viewer")) == before); }));
    act("key s");
    quit();
    ASSERT_NE(result.output.find("at angle "), std::string::npos) << result.output;
    std::string angle = result.output.substr(result.output.find("at angle ") + 9);
    EXPECT_NEAR(std::stod(angle), 0.9, 0.001); // 40 pixels to the right
    EXPECT_EQ(read(folder / "shot.png"), expected(160, 120, std::to_string(std::stod(angle))));
}

TEST(ViewerMissing, EndsWithASentenceWithoutAScreen)
{
    auto result = support::runProgram("DISPLAY= " ZAL_VIEWER " " ZAL_TEAPOT);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("no window"), std::string::npos) << result.output;
}

} // namespace
