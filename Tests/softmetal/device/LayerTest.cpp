// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

#include <chrono>

namespace device_test {

class Layer : public Device
{
protected:
    void SetUp() override
    {
        Device::SetUp();
        view = SoftMetal::newView(16, 8);
        layer = CA::MetalLayer::layer();
        layer->setDevice(device);
        layer->setPixelFormat(MTL::PixelFormatBGRA8Unorm);
        view->setWantsLayer(true);
        view->setLayer(layer);
    }
    void TearDown() override
    {
        view->release();
        Device::TearDown();
    }

    /// Clears the next drawable to a colour and presents it.
    void present(MTL::ClearColor color)
    {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        auto* drawable = layer->nextDrawable();
        auto* d = pass(drawable->texture());
        d->colorAttachments()->object(0)->setClearColor(color);
        auto* c = queue->commandBuffer();
        c->presentDrawable(drawable); // before the pass, as Metal allows
        c->renderCommandEncoder(d)->endEncoding();
        c->commit();
        c->waitUntilCompleted();
        inner->release();
    }

    NSView* view = nullptr;
    CA::MetalLayer* layer = nullptr;
};

TEST_F(Layer, TakesTheSizeOfItsView)
{
    EXPECT_EQ(layer->drawableSize().width, 16);
    EXPECT_EQ(layer->nextDrawable()->texture()->height(), 8u);
    SoftMetal::setViewSize(view, 20, 10);
    EXPECT_EQ(layer->drawableSize().width, 20);
    EXPECT_EQ(view->bounds().size.height, 10);
}

TEST_F(Layer, KeepsTheSizeThatItWasGiven)
{
    layer->setDrawableSize(CGSize{4, 4});
    SoftMetal::setViewSize(view, 20, 10);
    EXPECT_EQ(layer->drawableSize().width, 4);
    EXPECT_EQ(layer->nextDrawable()->texture()->width(), 4u);
}

TEST_F(Layer, ShowsWhatWasPresentedLast)
{
    EXPECT_EQ(SoftMetal::presented(layer).count, 0u);
    present(MTL::ClearColor(1, 0, 0, 1));
    present(MTL::ClearColor(0, 0, 1, 1));
    auto shown = SoftMetal::presented(layer);
    EXPECT_EQ(shown.count, 2u);
    EXPECT_EQ(shown.width, 16u);
    ASSERT_EQ(shown.rgba.size(), 16u * 8 * 4);
    EXPECT_EQ((Pixel{shown.rgba[0], shown.rgba[1], shown.rgba[2], shown.rgba[3]}), (Pixel{0, 0, 255, 255}));
}

TEST_F(Layer, WhatIsShownIsNotDrawnTo)
{
    present(MTL::ClearColor(1, 0, 0, 1));
    auto* drawable = layer->nextDrawable();
    auto* d = pass(drawable->texture());
    d->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(0, 1, 0, 1));
    finish(encoder(d)); // never presented
    EXPECT_EQ(SoftMetal::presented(layer).rgba[0], 255);
}

TEST_F(Layer, DrawableKnowsItsLayer)
{
    auto *first = layer->nextDrawable(), *second = layer->nextDrawable();
    EXPECT_EQ(first->layer(), layer);
    EXPECT_NE(first->drawableID(), second->drawableID());
    EXPECT_NE(first->texture(), second->texture());
    EXPECT_EQ(first->texture()->pixelFormat(), MTL::PixelFormatBGRA8Unorm);
    EXPECT_NE(first->texture()->usage() & MTL::TextureUsageRenderTarget, 0u);
}

TEST_F(Layer, FourthDrawableWaitsAndGivesUp)
{
    for (int i = 0; i < 3; ++i) ASSERT_NE(layer->nextDrawable(), nullptr);
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(layer->nextDrawable(), nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(900));
}

TEST_F(Layer, DrawablesReleasedAreHandedOutAgain)
{
    for (int i = 0; i < 20; ++i) {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        EXPECT_NE(layer->nextDrawable(), nullptr);
        inner->release();
    }
}

TEST_F(Layer, HasNoDrawableWhenThereIsNoDevice)
{
    layer->setDevice(nullptr);
    EXPECT_EQ(layer->nextDrawable(), nullptr);
    EXPECT_EQ(broken(), rules({"layer.no-device"}));
}

TEST_F(Layer, FaultLeavesNoDrawable)
{
    SoftMetal::injectFault("nextDrawable", 2, false);
    EXPECT_NE(layer->nextDrawable(), nullptr);
    EXPECT_EQ(layer->nextDrawable(), nullptr);
    EXPECT_NE(layer->nextDrawable(), nullptr);
}

TEST_F(Layer, PresentedHandlerRuns)
{
    auto* drawable = layer->nextDrawable();
    const MTL::Drawable* seen = nullptr;
    drawable->addPresentedHandler([&](MTL::Drawable* d) { seen = d; });
    drawable->present();
    EXPECT_EQ(seen, drawable);
    EXPECT_GT(drawable->presentedTime(), 0);
}

// ---- views ------------------------------------------------------------------------------------------------------------------

void countChange(CFNotificationCenterRef, void* observer, CFStringRef, const void*, CFDictionaryRef) { ++*static_cast<int*>(observer); }

TEST_F(Layer, ViewPostsWhenItsFrameChanges)
{
    int changes = 0;
    CFNotificationCenterAddObserver(CFNotificationCenterGetLocalCenter(), &changes, countChange, NSViewFrameDidChangeNotification, view,
                                    CFNotificationSuspensionBehaviorDeliverImmediately);
    SoftMetal::setViewSize(view, 1, 1);
    EXPECT_EQ(changes, 0);
    view->setPostsFrameChangedNotifications(true);
    SoftMetal::setViewSize(view, 2, 2);
    EXPECT_EQ(changes, 1);
    CFNotificationCenterRemoveObserver(CFNotificationCenterGetLocalCenter(), &changes, NSViewFrameDidChangeNotification, view);
    SoftMetal::setViewSize(view, 3, 3);
    EXPECT_EQ(changes, 1);
}

TEST_F(Layer, ViewHoldsItsLayer)
{
    EXPECT_EQ(SoftMetal::layerOf(view), layer);
    view->setLayer(nullptr);
    EXPECT_EQ(SoftMetal::layerOf(view), nullptr);
}

} // namespace device_test
