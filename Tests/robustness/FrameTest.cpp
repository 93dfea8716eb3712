// SPDX-License-Identifier: Apache-2.0
// Frames when the machine is not as a host expects: no device, no drawable, work that fails or is late, a view that
// changes.
#include "robustness/Frame.h"

#include <memory>

namespace robustness
{
namespace
{

class Frames : public testing::Test
{
protected:
    void SetUp() override
    {
        SoftMetal::setLogSink([](const std::string&) {});
        SoftMetal::clearFaults();
        device = SoftMetal::newDevice({});
        queue = device->newCommandQueue();
        ASSERT_EQ(screen.make(queue), ZALMetalResultSuccess);
        wanted = screen.frame();
        ASSERT_EQ(wanted.errors, std::vector<GLenum>(6, GL_NO_ERROR));
    }

    void TearDown() override
    {
        SoftMetal::clearFaults();
        SoftMetal::setCommandBufferDelay(0);
        for (const auto& message : SoftMetal::takeMessages())
            ADD_FAILURE() << message.sentence;
        SoftMetal::setLogSink({});
        queue->release();
        device->release();
    }

    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    Screen screen;
    Seen wanted;
};

TEST_F(Frames, ShowWhatTheyDraw)
{
    // The default framebuffer holds green, and the pattern in the lower left half; the picture on the layer stands
    // upright.
    constexpr size_t Row = static_cast<size_t>(Width) * 4;
    const std::vector<uint8_t> lastRow(wanted.read.end() - Row, wanted.read.end());
    EXPECT_EQ(std::vector<uint8_t>(lastRow.end() - 4, lastRow.end()), (std::vector<uint8_t>{0, 255, 0, 255}));
    EXPECT_EQ(std::vector<uint8_t>(wanted.shown.begin(), wanted.shown.begin() + Row), lastRow);
}

TEST_F(Frames, AreTheSameEveryTime)
{
    EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, LateWorkIsWaitedFor)
{
    SoftMetal::setCommandBufferDelay(20);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, FailedWorkIsOverAndTheNextFrameDraws)
{
    SoftMetal::injectFault("commit", 1, true);
    Seen lost = screen.frame();
    SoftMetal::clearFaults();
    EXPECT_NE(lost.readBack, wanted.readBack);
    EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, WithoutADrawableStillDraw)
{
    SoftMetal::injectFault("nextDrawable", 1, true);
    Seen unseen = screen.frame();
    SoftMetal::clearFaults();
    EXPECT_EQ(unseen.read, wanted.read);
    EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, AViewResizedInTheMiddleOfOneIsDrawnRightInTheNext)
{
    screen.frame([](NSView* view) { SoftMetal::setViewSize(view, 5, 31); });
    screen.frame([](NSView* view) { SoftMetal::setViewSize(view, Width, Height); });
    EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, ADeviceThatIsGoneIsSaid)
{
    SoftMetal::setDevices({});
    Screen second;
    EXPECT_EQ(second.make(nullptr), ZALMetalResultDeviceUnavailable);
    SoftMetal::resetDevices();
    ZALMetalContextMakeCurrent(screen.context);
    EXPECT_EQ(screen.frame(), wanted);
}

TEST_F(Frames, CaptureThatIsNotSupportedChangesNothing)
{
    SoftMetal::setCaptureSupported(false);
    glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_EQ(screen.frame(), wanted);
    glDisable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(screen.frame(), wanted);
}

} // namespace
} // namespace robustness
