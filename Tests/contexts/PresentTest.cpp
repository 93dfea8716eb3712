// SPDX-License-Identifier: Apache-2.0
// Frames on a layer: the picture arrives upright, through resizes and switches, and the textures of a frame come back.
#include "contexts/Pattern.h"
#include "support/ContextFixture.h"

#include <algorithm>
#include <cstdlib>

namespace {

using contexts::places;
using contexts::upsideDown;

constexpr int Bgra8 = 80, Depth32 = 252;

/// On a device of an ordinary name and on one of the name of an Intel GPU.
class Present : public support::ContextTest, public testing::WithParamInterface<bool>
{
protected:
    Present() : ContextTest(GetParam() ? support::intelDevice() : SoftMetal::DeviceOptions()) {}

    void SetUp() override
    {
        ContextTest::SetUp();
        view = SoftMetal::newView(16, 12);
        ASSERT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32), 0);
        clearLog();
    }

    void TearDown() override
    {
        ContextTest::TearDown();
        view->release();
    }

    SoftMetal::Presented shown()
    {
        glFinish();
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::CommandBuffer* last = queue->commandBuffer(); // behind everything that was committed
        last->commit();
        last->waitUntilCompleted();
        pool->release();
        return SoftMetal::presented(context->drawable->layer);
    }

    void clearTo(float red, float green, float blue)
    {
        glClearColor(red, green, blue, 1);
        glClear(GL_COLOR_BUFFER_BIT);
    }

    /// The picture's one colour; fails when there are several.
    std::vector<uint8_t> onlyColour(const SoftMetal::Presented& picture)
    {
        std::vector<uint8_t> first(picture.rgba.begin(), picture.rgba.begin() + 4);
        for (size_t i = 0; i < picture.rgba.size(); i += 4) EXPECT_TRUE(std::equal(first.begin(), first.end(), picture.rgba.begin() + static_cast<std::ptrdiff_t>(i)));
        return first;
    }

    NSView* view = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Devices, Present, testing::Values(false, true), [](const auto& route) { return route.param ? "Intel" : "Ordinary"; });

TEST_P(Present, TurnsTheDefaultColourTextureUpsideDown)
{
    auto bytes = places(16, 12);
    contexts::fill(queue, context->drawable->colorTexture, bytes);
    EXPECT_EQ(ZALMetalContextSwapBuffers(context), 0);
    auto picture = shown();
    EXPECT_EQ(picture.count, 1u);
    auto wanted = upsideDown(bytes, 16);
    for (size_t i = 0; i < wanted.size(); i += 4) std::swap(wanted[i], wanted[i + 2]); // the layer holds BGRA
    EXPECT_EQ(picture.rgba, wanted);
}

TEST_P(Present, KeepsTheFramebuffersContents)
{
    auto bytes = places(16, 12);
    contexts::fill(queue, context->drawable->colorTexture, bytes);
    ZALMetalContextSwapBuffers(context);
    EXPECT_EQ(contexts::contents(queue, context->drawable->colorTexture), bytes);
}

TEST_P(Present, EncodesCopyAndPresentInADebugGroupAndCommits)
{
    clearTo(1, 0, 0);
    clearLog();
    ZALMetalContextSwapBuffers(context);
    std::vector<std::string> order;
    for (const SoftMetal::LogEntry& entry : log())
        for (const char* name : {"pushDebugGroup", "drawPrimitives", "presentDrawable", "popDebugGroup", "commit"})
            if (entry.call == name) order.push_back(entry.call == "pushDebugGroup" ? entry.text("name") : entry.call);
    EXPECT_EQ(order, (std::vector<std::string>{"ZALMetalContextSwapBuffers", "ZALMetalBlitter, CopyTexSubImage2D", "drawPrimitives", "popDebugGroup",
                                               "presentDrawable", "popDebugGroup", "commit"}));
    EXPECT_EQ(context->drawable->currentDrawable, nullptr);
}

TEST_P(Present, ShowsTheDrawableThatTheHostTookBefore)
{
    void* taken = ZALMetalContextEnsureDrawable(context);
    clearTo(0, 1, 0);
    EXPECT_EQ(ZALMetalContextEnsureDrawable(context), taken); // drawing does not touch it
    ZALMetalContextSwapBuffers(context);
    EXPECT_EQ(onlyColour(shown()), (std::vector<uint8_t>{0, 255, 0, 255}));
}

TEST_P(Present, WithoutADrawableNothingIsShownAndTheNextFrameIs)
{
    ZALMetalContextDrawableRelease(context);
    SoftMetal::injectFault("nextDrawable", 1, false);
    clearTo(1, 0, 0);
    EXPECT_EQ(ZALMetalContextSwapBuffers(context), 0);
    SoftMetal::clearFaults();
    EXPECT_EQ(shown().count, 0u);
    clearTo(0, 0, 1);
    ZALMetalContextSwapBuffers(context);
    auto picture = shown();
    EXPECT_EQ(picture.count, 1u);
    EXPECT_EQ(onlyColour(picture), (std::vector<uint8_t>{0, 0, 255, 255}));
}

TEST_P(Present, AResizeBetweenFramesShowsTheNewSize)
{
    for (int i = 0; i < 20; ++i) {
        double width = 4 + i * 3 % 17, height = 3 + i * 5 % 13;
        SoftMetal::setViewSize(view, width, height);
        clearTo(static_cast<float>(i % 2), 0, 1);
        ZALMetalContextSwapBuffers(context);
        auto picture = shown();
        EXPECT_EQ(picture.width, static_cast<uint32_t>(width));
        EXPECT_EQ(picture.height, static_cast<uint32_t>(height));
        EXPECT_EQ(onlyColour(picture), (std::vector<uint8_t>{static_cast<uint8_t>(i % 2 * 255), 0, 255, 255}));
    }
}

TEST_P(Present, AResizeInTheMiddleOfAFrameLosesThatFrameOnly)
{
    clearTo(1, 0, 0);
    SoftMetal::setViewSize(view, 8, 8);
    ZALMetalContextSwapBuffers(context);
    EXPECT_EQ(shown().width, 8u);
    clearTo(0, 1, 0);
    ZALMetalContextSwapBuffers(context);
    EXPECT_EQ(onlyColour(shown()), (std::vector<uint8_t>{0, 255, 0, 255}));
}

TEST_P(Present, ThreeSharingContextsTakeTurns)
{
    ZALMetalContext* all[3] = {context, nullptr, nullptr};
    NSView* views[3] = {view, SoftMetal::newView(9, 5), SoftMetal::newView(3, 14)};
    for (int i = 1; i < 3; ++i) {
        ASSERT_EQ(ZALMetalContextInitFromShareContext(all[i], context), 0);
        ASSERT_EQ(ZALMetalContextCreateCAMetalLayer(all[i], views[i], Bgra8, Depth32), 0);
    }
    for (int frame = 0; frame < 12; ++frame) {
        ZALMetalContext* one = all[frame * 2 % 3];
        ZALMetalContextMakeCurrent(one);
        clearTo(static_cast<float>(frame % 3 == 0), static_cast<float>(frame % 3 == 1), static_cast<float>(frame % 3 == 2));
        ZALMetalContextMakeCurrent(all[(frame * 2 + 1) % 3]); // in the middle of the frame
        glClear(GL_COLOR_BUFFER_BIT);
        ZALMetalContextMakeCurrent(one);
        ZALMetalContextSwapBuffers(one);
        glFinish();
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::CommandBuffer* last = queue->commandBuffer();
        last->commit();
        last->waitUntilCompleted();
        pool->release();
        std::vector<uint8_t> wanted = {0, 0, 0, 255};
        wanted[static_cast<size_t>(frame % 3)] = 255;
        EXPECT_EQ(onlyColour(SoftMetal::presented(one->drawable->layer)), wanted) << "frame " << frame;
    }
    for (int i = 1; i < 3; ++i) {
        ZALMetalContextDestroy(all[i]);
        views[i]->release();
    }
    ZALMetalContextMakeCurrent(context);
}

TEST_P(Present, AThousandFramesLeaveTheCountsAsTheyWere)
{
    SoftMetal::setCommandLog(false);
    auto frame = [&](int i) {
        clearTo(static_cast<float>(i & 1), 1, 0);
        ZALMetalContextSwapBuffers(context);
    };
    for (int i = 0; i < 10; ++i) frame(i);
    shown();
    int64_t before = SoftMetal::objectsAlive();
    for (int i = 0; i < 1000; ++i) frame(i);
    auto picture = shown();
    EXPECT_EQ(picture.count, 1010u);
    EXPECT_EQ(onlyColour(picture), (std::vector<uint8_t>{255, 255, 0, 255}));
    constexpr int64_t SpareDrawables = 8; // a layer holds one to three textures and what they are made of, as the frames overlap
    EXPECT_LE(std::abs(SoftMetal::objectsAlive() - before), SpareDrawables);
}

// ---- without a layer ----------------------------------------------------------------------------------------------------------

class PresentWithoutALayer : public support::ContextTest
{
};

TEST_F(PresentWithoutALayer, OnlyCommits)
{
    attachTextures(4, 4);
    glClear(GL_COLOR_BUFFER_BIT);
    commands().getOrCreateCommandEncoder(&gl());
    clearLog();
    EXPECT_EQ(ZALMetalContextSwapBuffers(context), 0);
    auto names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "commit"), 1);
    EXPECT_EQ(std::count(names.begin(), names.end(), "presentDrawable"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "drawPrimitives"), 0);
}

TEST_F(PresentWithoutALayer, WithNothingRecordedItDoesNothing)
{
    EXPECT_EQ(ZALMetalContextSwapBuffers(context), 0);
    EXPECT_TRUE(calls().empty());
}

} // namespace
