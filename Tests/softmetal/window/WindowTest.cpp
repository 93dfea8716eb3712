// SPDX-License-Identifier: Apache-2.0
// Windows on an X server without a monitor: what is presented appears there, and what a user does there arrives here.
#include "support/VirtualScreen.h"

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <optional>

namespace
{

using SoftMetal::EventKind;
using SoftMetal::WindowEvent;
using support::VirtualScreen;

class Window : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::string missing = VirtualScreen::whatIsMissing();
        if (!missing.empty()) GTEST_SKIP() << missing;
        SoftMetal::setLogSink([this](const std::string& line) { log.push_back(line); });
        open();
    }

    void open(const std::string& serverOptions = "")
    {
        ASSERT_TRUE(screen.start(serverOptions));
        setenv("DISPLAY", screen.display().c_str(), 1);
        view = SoftMetal::newWindow("Pixels", 40, 30);
        ASSERT_NE(view, nullptr) << (log.empty() ? "" : log.back());
        layer = CA::MetalLayer::layer();
        device = MTL::CreateSystemDefaultDevice();
        queue = device->newCommandQueue();
        layer->setDevice(device);
        view->setWantsLayer(true);
        view->setLayer(layer);
        ASSERT_TRUE(VirtualScreen::becomes([this] { return screen.contents(id()).width > 0; }));
    }

    void TearDown() override
    {
        close();
        pool->release();
        SoftMetal::setLogSink({});
    }
    void close()
    {
        if (view) view->release();
        if (queue) queue->release();
        if (device) device->release();
        view = nullptr;
        queue = nullptr;
        device = nullptr;
        screen.stop();
    }

    xcb_window_t id() const { return screen.window("Pixels"); }

    /// Each pixel's red and green are its place, and blue is as given; as the next frame of the layer.
    void presentPlaces(uint8_t blue)
    {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        layer->setFramebufferOnly(false);
        auto* drawable = layer->nextDrawable();
        NS::UInteger width = drawable->texture()->width(), height = drawable->texture()->height();
        std::vector<uint8_t> pixels;
        for (NS::UInteger i = 0; i < width * height; ++i)
            pixels.insert(pixels.end(), {blue, static_cast<uint8_t>(i / width), static_cast<uint8_t>(i % width), 255});
        auto* source = device->newBuffer(pixels.data(), pixels.size(), MTL::ResourceStorageModeShared);
        auto* commands = queue->commandBuffer();
        auto* blit = commands->blitCommandEncoder();
        blit->copyFromBuffer(source, 0, width * 4, pixels.size(), MTL::Size(width, height, 1), drawable->texture(), 0,
                             0, MTL::Origin(0, 0, 0));
        blit->endEncoding();
        commands->presentDrawable(drawable);
        commands->commit();
        commands->waitUntilCompleted();
        source->release();
        inner->release();
    }
    bool showsPlaces(int width, int height, uint8_t blue) const
    {
        auto picture = screen.contents(id());
        if (picture.width != width || picture.height != height) return false;
        for (int i = 0; i < width * height; ++i) {
            std::array<uint8_t, 3> wanted = {static_cast<uint8_t>(i % width), static_cast<uint8_t>(i / width), blue};
            if (!std::equal(wanted.begin(), wanted.end(), picture.rgb.begin() + i * 3)) return false;
        }
        return true;
    }

    /// The next event of a kind; others are passed over.
    std::optional<WindowEvent> next(EventKind kind)
    {
        std::optional<WindowEvent> result;
        VirtualScreen::becomes([&] {
            while (!result) {
                if (waiting.empty()) waiting = SoftMetal::pollEvents(view, 20);
                if (waiting.empty()) return false;
                if (waiting.front().kind == kind) result = waiting.front();
                waiting.erase(waiting.begin());
            }
            return true;
        });
        return result;
    }

    NS::AutoreleasePool* pool = NS::AutoreleasePool::alloc()->init();
    VirtualScreen screen;
    NSView* view = nullptr;
    CA::MetalLayer* layer = nullptr;
    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    std::vector<WindowEvent> waiting;
    std::vector<std::string> log;
};

TEST_F(Window, ShowsWhatIsPresentedLast)
{
    presentPlaces(7);
    EXPECT_TRUE(showsPlaces(40, 30, 7));
    presentPlaces(99);
    EXPECT_TRUE(showsPlaces(40, 30, 99));
    EXPECT_EQ(SoftMetal::presented(layer).count, 2u);
}

TEST_F(Window, ShowsPicturesOfAServerThatSharesNoMemory)
{
    close();
    open("-extension MIT-SHM");
    presentPlaces(7);
    EXPECT_TRUE(showsPlaces(40, 30, 7));
}

TEST_F(Window, SendsLargePicturesInPieces)
{
    close();
    open("-extension MIT-SHM -maxbigreqsize 1 -screen 0 1200x1100x24"); // a request holds a million words
    SoftMetal::setViewSize(view, 1100, 1000);                           // and the picture 1.1 million
    ASSERT_TRUE(VirtualScreen::becomes([this] { return screen.contents(id()).width == 1100; }));
    presentPlaces(7);
    auto picture = screen.contents(id());
    for (int y : {0, 400, 951, 952, 953, 999}) {
        size_t at = (static_cast<size_t>(y) * 1100 + 600) * 3;
        EXPECT_EQ(picture.rgb[at], 600 % 256) << y;
        EXPECT_EQ(picture.rgb[at + 1], y % 256) << y;
    }
}

TEST_F(Window, IsShownAgainWhenItWasCovered)
{
    presentPlaces(7);
    ASSERT_TRUE(screen.act("windowunmap --sync " + std::to_string(id())));
    ASSERT_TRUE(screen.act("windowmap --sync " + std::to_string(id())));
    EXPECT_TRUE(VirtualScreen::becomes([this] {
        SoftMetal::pollEvents(view, 5);
        return showsPlaces(40, 30, 7);
    }));
}

TEST_F(Window, HasTheEncodedValuesOfSrgbFormats)
{
    layer->setPixelFormat(MTL::PixelFormatBGRA8Unorm_sRGB);
    presentPlaces(7);
    EXPECT_TRUE(showsPlaces(40, 30, 7));
}

TEST_F(Window, ConvertsOtherFormats)
{
    layer->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
    presentPlaces(7); // its bytes are in the other order: what was blue is red
    auto picture = screen.contents(id());
    EXPECT_EQ(picture.rgb[(2 * 40 + 11) * 3], 7);
    EXPECT_EQ(picture.rgb[(2 * 40 + 11) * 3 + 2], 11);
}

// ---- the user ------------------------------------------------------------------------------------------------------

TEST_F(Window, TellsOfTheMouse)
{
    ASSERT_TRUE(screen.act("mousemove --window " + std::to_string(id()) + " 5 6 mousedown 1 mousemove --window " +
                           std::to_string(id()) + " 21 17 mouseup 1 click 3"));
    auto down = next(EventKind::MouseDown);
    ASSERT_TRUE(down);
    EXPECT_EQ(down->x, 5);
    EXPECT_EQ(down->y, 6);
    EXPECT_EQ(down->button, 1u);
    auto moved = next(EventKind::MouseMoved);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->x, 21);
    EXPECT_EQ(moved->y, 17);
    ASSERT_TRUE(next(EventKind::MouseUp));
    auto right = next(EventKind::MouseDown);
    ASSERT_TRUE(right);
    EXPECT_EQ(right->button, 3u);
}

TEST_F(Window, TellsOfTheWheel)
{
    ASSERT_TRUE(screen.act("mousemove --window " + std::to_string(id()) + " 5 6 click 4 click 5"));
    auto up = next(EventKind::Scrolled), down = next(EventKind::Scrolled);
    ASSERT_TRUE(up && down);
    EXPECT_EQ(up->deltaY, 1);
    EXPECT_EQ(down->deltaY, -1);
    EXPECT_EQ(down->deltaX, 0);
}

TEST_F(Window, TellsOfKeysByCharacterAndName)
{
    ASSERT_TRUE(screen.act("mousemove --window " + std::to_string(id()) + " 5 6 key s key S key Escape key Left"));
    for (uint32_t key : {uint32_t{'s'}, uint32_t{'S'}, uint32_t{SoftMetal::KeyEscape}, uint32_t{SoftMetal::KeyLeft}}) {
        auto down = next(EventKind::KeyDown);
        ASSERT_TRUE(down);
        EXPECT_EQ(down->key, key);
    }
}

TEST_F(Window, TellsWhenItShouldClose)
{
    screen.askToClose(id());
    EXPECT_TRUE(next(EventKind::Closed));
}

TEST_F(Window, TellsOnceThatTheServerIsGone)
{
    screen.stop();
    EXPECT_TRUE(next(EventKind::Closed));
    EXPECT_TRUE(SoftMetal::pollEvents(view).empty());
    presentPlaces(7); // goes nowhere
    EXPECT_EQ(SoftMetal::presented(layer).count, 1u);
}

// ---- sizes ---------------------------------------------------------------------------------------------------------

void countChange(CFNotificationCenterRef, void* observer, CFStringRef, const void*, CFDictionaryRef)
{
    ++*static_cast<int*>(observer);
}

TEST_F(Window, UserResizesViewAndLayer)
{
    int changes = 0;
    view->setPostsFrameChangedNotifications(true);
    CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), &changes, countChange,
                                    NSViewFrameDidChangeNotification, view,
                                    CFNotificationSuspensionBehaviorDeliverImmediately);
    ASSERT_TRUE(screen.act("windowsize --sync " + std::to_string(id()) + " 60 50"));
    auto resized = next(EventKind::Resized);
    CFNotificationCenterRemoveObserver(CFNotificationCenterGetLocalCenter(), &changes, NSViewFrameDidChangeNotification,
                                       view);
    ASSERT_TRUE(resized);
    EXPECT_EQ(resized->width, 60);
    EXPECT_EQ(resized->height, 50);
    EXPECT_EQ(changes, 1);
    EXPECT_EQ(view->bounds().size.width, 60);
    EXPECT_EQ(layer->drawableSize().height, 50);
    presentPlaces(7);
    EXPECT_TRUE(showsPlaces(60, 50, 7));
}

TEST_F(Window, FollowsTheSizeOfItsView)
{
    SoftMetal::setViewSize(view, 80, 20);
    EXPECT_TRUE(VirtualScreen::becomes([this] { return screen.contents(id()).width == 80; }));
    for (const WindowEvent& event : SoftMetal::pollEvents(view, 50))
        EXPECT_NE(event.kind, EventKind::Resized); // the caller knows
}

// ---- what is not there ---------------------------------------------------------------------------------------------

TEST_F(Window, GoesWithItsView)
{
    xcb_window_t before = id();
    ASSERT_NE(before, 0u);
    view->release();
    view = nullptr;
    EXPECT_TRUE(VirtualScreen::becomes([this] { return id() == 0; }));
    presentPlaces(7); // the layer lives on, in memory
    EXPECT_EQ(SoftMetal::presented(layer).count, 1u);
}

TEST(WindowMissing, IsNullAndSaysWhyWithoutAServer)
{
    std::vector<std::string> log;
    SoftMetal::setLogSink([&](const std::string& line) { log.push_back(line); });
    unsetenv("DISPLAY");
    EXPECT_EQ(SoftMetal::newWindow("Pixels", 40, 30), nullptr);
    setenv("DISPLAY", ":61999", 1);
    EXPECT_EQ(SoftMetal::newWindow("Pixels", 40, 30), nullptr);
    SoftMetal::setLogSink({});
    ASSERT_EQ(log.size(), 2u);
    EXPECT_NE(log[0].find("DISPLAY is not set"), std::string::npos) << log[0];
    EXPECT_NE(log[1].find("\":61999\" does not answer"), std::string::npos) << log[1];
}

TEST(WindowMissing, ViewInMemoryHasNoEvents)
{
    NSView* view = SoftMetal::newView(4, 4);
    EXPECT_TRUE(SoftMetal::pollEvents(view, 1).empty());
    view->release();
}

} // namespace
