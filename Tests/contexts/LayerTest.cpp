// SPDX-License-Identifier: Apache-2.0
// Layers on views, host textures, and sizes.
#include "contexts/Logged.h"
#include "contexts/Pattern.h"
#include "support/ContextFixture.h"

#include <limits>
#include <memory>

namespace {

constexpr int Bgra8 = 80, Depth32 = 252, Depth24Stencil8 = 255, Depth32Stencil8 = 260;

class Layer : public support::ContextTest
{
protected:
    explicit Layer(SoftMetal::DeviceOptions options = {}) : ContextTest(std::move(options)) {}

    void SetUp() override
    {
        ContextTest::SetUp();
        view = SoftMetal::newView(64, 48);
    }

    void TearDown() override
    {
        ContextTest::TearDown();
        view->release();
    }

    void attach(int depthFormat = Depth32) { ASSERT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, depthFormat), 0); }
    ZALMetalDrawable& drawable() { return *context->drawable; }

    NSView* view = nullptr;
};

TEST_F(Layer, IsMadeForTheViewWithATextureForColourAndOneForDepth)
{
    attach();
    EXPECT_EQ(SoftMetal::layerOf(view), drawable().layer);
    EXPECT_EQ(drawable().view, view);
    EXPECT_EQ(drawable().layer->device(), device);
    EXPECT_EQ(drawable().layer->pixelFormat(), MTL::PixelFormatBGRA8Unorm);
    for (MTL::Texture* texture : {drawable().colorTexture, drawable().depthTexture}) {
        ASSERT_NE(texture, nullptr);
        EXPECT_EQ(texture->width(), 64u);
        EXPECT_EQ(texture->height(), 48u);
        EXPECT_EQ(texture->mipmapLevelCount(), 1u);
        EXPECT_EQ(texture->storageMode(), MTL::StorageModePrivate);
        EXPECT_EQ(texture->usage(), MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    }
    EXPECT_EQ(drawable().depthTexture->pixelFormat(), MTL::PixelFormatDepth32Float);
    EXPECT_NE(drawable().currentDrawable, nullptr); // the first one was asked for already
    EXPECT_EQ(gl().defaultFramebufferWidth, 64u);
    EXPECT_EQ(gl().defaultFramebufferHeight, 48u);
}

TEST_F(Layer, LeavesTheTexturesThatTheHostGaveBeforeToTheHost)
{
    attachTextures(4, 4);
    const NS::UInteger colorCount = color->retainCount(), depthCount = depth->retainCount();
    attach();
    EXPECT_NE(drawable().colorTexture, color);
    EXPECT_EQ(color->retainCount(), colorCount);
    EXPECT_EQ(depth->retainCount(), depthCount);
}

TEST_F(Layer, OfAViewWithoutEndIsNotMade)
{
    constexpr double Endless = std::numeric_limits<double>::infinity();
    SoftMetal::setViewSize(view, Endless, Endless);
    EXPECT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32), ZALMetalResultInvalidArgument);
    EXPECT_EQ(SoftMetal::layerOf(view), nullptr);
    SoftMetal::takeMessages();
}

TEST_F(Layer, LosesItsTexturesInAViewWithoutEndAndGetsThemBack)
{
    constexpr double Endless = std::numeric_limits<double>::infinity();
    attach();
    SoftMetal::setViewSize(view, Endless, 48);
    EXPECT_EQ(drawable().colorTexture, nullptr);
    SoftMetal::takeMessages();
    SoftMetal::setViewSize(view, 32, 48);
    ASSERT_NE(drawable().colorTexture, nullptr);
    EXPECT_EQ(drawable().colorTexture->width(), 32u);
}

TEST_F(Layer, ASizeUpdateWithoutOneChangesNothing)
{
    attachTextures(4, 4);
    EXPECT_EQ(ZALMetalContextUpdateSize(context), ZALMetalResultSuccess);
    EXPECT_EQ(drawable().colorTexture, color);
}

TEST_F(Layer, WithoutADepthFormatThereIsNoDepthTexture)
{
    attach(0);
    EXPECT_NE(drawable().colorTexture, nullptr);
    EXPECT_EQ(drawable().depthTexture, nullptr);
    EXPECT_EQ(drawable().depthPixelFormat, MTL::PixelFormatInvalid);
}

TEST_F(Layer, Depth24Stencil8IsKeptWhereTheDeviceHasIt)
{
    attach(Depth24Stencil8);
    EXPECT_EQ(static_cast<int>(drawable().depthPixelFormat), Depth24Stencil8);
}

SoftMetal::DeviceOptions withoutDepth24()
{
    SoftMetal::DeviceOptions options;
    options.depth24Stencil8 = false;
    return options;
}

class LayerWithoutDepth24 : public Layer
{
protected:
    LayerWithoutDepth24() : Layer(withoutDepth24()) {}
};

TEST_F(LayerWithoutDepth24, Depth24Stencil8BecomesDepth32Stencil8)
{
    attach(Depth24Stencil8);
    EXPECT_EQ(static_cast<int>(drawable().depthPixelFormat), Depth32Stencil8);
    EXPECT_EQ(static_cast<int>(drawable().depthTexture->pixelFormat()), Depth32Stencil8);
}

TEST_F(Layer, WithoutADrawableTheViewIsAsBefore)
{
    SoftMetal::injectFault("nextDrawable", 1, false);
    EXPECT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32), 6);
    EXPECT_EQ(SoftMetal::layerOf(view), nullptr);
    EXPECT_EQ(drawable().view, nullptr);
    EXPECT_EQ(drawable().layer, nullptr);
    EXPECT_EQ(drawable().colorPixelFormat, MTL::PixelFormatInvalid);
    SoftMetal::clearFaults();
    attach(); // and a later try works
}

TEST_F(Layer, WithoutMemoryForItsTexturesItReportsThat)
{
    SoftMetal::injectFault("newTexture", 1, false);
    EXPECT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32), 257);
    EXPECT_EQ(drawable().colorTexture, nullptr);
    EXPECT_EQ(drawable().view, view); // the record is filled all the same
    SoftMetal::clearFaults();
}

TEST_F(Layer, WithoutMemoryForTheDepthTextureTheColourTextureGoesAsWell)
{
    SoftMetal::injectFault("newTexture", 2, false);
    EXPECT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32), 257);
    EXPECT_EQ(drawable().colorTexture, nullptr);
    EXPECT_EQ(drawable().depthTexture, nullptr);
    SoftMetal::clearFaults();
}

using LayerDeathTest = Layer;

TEST_F(LayerDeathTest, ASecondLayerStopsTheProcess)
{
    attach();
    EXPECT_DEATH(ZALMetalContextCreateCAMetalLayer(context, view, Bgra8, Depth32),
                 "drawable->view == nil.*ZALMetalContextCreateCAMetalLayer.*Src/ZALMetalContext");
}

TEST_F(LayerDeathTest, EnsuringADrawableWithoutALayerStopsTheProcess)
{
    EXPECT_DEATH(ZALMetalContextEnsureDrawable(context), "drawable->layer.*ZALMetalContextEnsureDrawable.*Src/ZALMetalContext");
}

// ---- sizes ------------------------------------------------------------------------------------------------------------------

TEST_F(Layer, FollowsTheViewsFrame)
{
    attach();
    MTL::Texture* before = drawable().colorTexture;
    before->retain();
    SoftMetal::setViewSize(view, 100, 80);
    EXPECT_NE(drawable().colorTexture, before);
    before->release();
    for (MTL::Texture* texture : {drawable().colorTexture, drawable().depthTexture}) {
        EXPECT_EQ(texture->width(), 100u);
        EXPECT_EQ(texture->height(), 80u);
    }
    EXPECT_EQ(drawable().layer->drawableSize().width, 100);
    EXPECT_EQ(drawable().currentDrawable, nullptr);
}

TEST_F(Layer, Kept_resize_size)
{
    attach();
    SoftMetal::setViewSize(view, 100, 80);
    EXPECT_EQ(gl().defaultFramebufferWidth, 64u);
    EXPECT_EQ(gl().defaultFramebufferHeight, 48u);
}

TEST_F(Layer, UpdateSizeDoesNothingWhenTheSizeIsRight)
{
    attach();
    MTL::Texture* before = drawable().colorTexture;
    CA::MetalDrawable* current = drawable().currentDrawable;
    EXPECT_EQ(ZALMetalContextUpdateSize(context), 0);
    EXPECT_EQ(drawable().colorTexture, before);
    EXPECT_EQ(drawable().currentDrawable, current);
}

TEST_F(Layer, UpdateSizeBringsTheLayerBackToTheView)
{
    attach();
    drawable().layer->setDrawableSize(CGSize{32, 32});
    EXPECT_EQ(ZALMetalContextUpdateSize(context), 0);
    EXPECT_EQ(drawable().layer->drawableSize().width, 64);
    EXPECT_EQ(drawable().colorTexture->width(), 64u);
}

TEST_F(Layer, UpdateSizeReportsMissingMemory)
{
    attach();
    drawable().layer->setDrawableSize(CGSize{32, 32});
    SoftMetal::injectFault("newTexture", 1, false);
    EXPECT_EQ(ZALMetalContextUpdateSize(context), 257);
    EXPECT_EQ(drawable().colorTexture, nullptr);
    SoftMetal::clearFaults();
}

TEST_F(Layer, AfterReleaseTheViewIsNotWatched)
{
    attach();
    ZALMetalContextDestroy(context);
    context = nullptr;
    SoftMetal::setViewSize(view, 10, 10); // nobody listens: nothing to crash
}

// ---- drawables ----------------------------------------------------------------------------------------------------------------

TEST_F(Layer, EnsureDrawableTakesOneAndKeepsIt)
{
    attach();
    ZALMetalContextDrawableRelease(context);
    EXPECT_EQ(drawable().currentDrawable, nullptr);
    void* first = ZALMetalContextEnsureDrawable(context);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(ZALMetalContextEnsureDrawable(context), first);
    EXPECT_EQ(drawable().currentDrawable, first);
}

// ---- host textures --------------------------------------------------------------------------------------------------------------

class HostTextures : public support::ContextTest
{
protected:
    MTL::Texture* make(NS::UInteger width, NS::UInteger height, MTL::PixelFormat format = MTL::PixelFormatBGRA8Unorm)
    {
        made_.push_back(NS::TransferPtr(contexts::newTexture(device, format, width, height, contexts::Drawn, MTL::StorageModePrivate)));
        return made_.back().get();
    }

private:
    std::vector<NS::SharedPtr<MTL::Texture>> made_;
};

TEST_F(HostTextures, FirstOnesFixFormatsAndSize)
{
    MTL::Texture *colour = make(20, 10), *depthTexture = make(20, 10, MTL::PixelFormatDepth32Float);
    auto count = colour->retainCount();
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, colour, depthTexture), 0);
    EXPECT_EQ(context->drawable->colorTexture, colour);
    EXPECT_EQ(context->drawable->depthTexture, depthTexture);
    EXPECT_EQ(context->drawable->colorPixelFormat, MTL::PixelFormatBGRA8Unorm);
    EXPECT_EQ(context->drawable->depthPixelFormat, MTL::PixelFormatDepth32Float);
    EXPECT_EQ(gl().defaultFramebufferWidth, 20u);
    EXPECT_EQ(gl().defaultFramebufferHeight, 10u);
    EXPECT_EQ(colour->retainCount(), count); // it stays the host's
}

TEST_F(HostTextures, LaterOnesOfAnotherSizeKeepTheFirstSize)
{
    ASSERT_EQ(ZALMetalContextSetMetalDrawable(context, make(20, 10), nullptr), 0);
    MTL::Texture* larger = make(40, 40);
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, larger, nullptr), 0);
    EXPECT_EQ(context->drawable->colorTexture, larger);
    EXPECT_EQ(gl().defaultFramebufferWidth, 20u);
    EXPECT_EQ(gl().defaultFramebufferHeight, 10u);
}

TEST_F(HostTextures, OtherFormatsAreRefused)
{
    MTL::Texture *colour = make(8, 8), *depthTexture = make(8, 8, MTL::PixelFormatDepth32Float);
    ASSERT_EQ(ZALMetalContextSetMetalDrawable(context, colour, depthTexture), 0);
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, make(8, 8, MTL::PixelFormatRGBA8Unorm), depthTexture), 1);
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, colour, nullptr), 1);
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, colour, make(8, 8, MTL::PixelFormatDepth32Float_Stencil8)), 1);
    EXPECT_EQ(context->drawable->colorTexture, colour);
    EXPECT_EQ(context->drawable->depthTexture, depthTexture);
}

TEST_F(HostTextures, WithoutAColourTextureTheyAreRefused)
{
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, nullptr, make(8, 8, MTL::PixelFormatDepth32Float)), 6);
    EXPECT_EQ(context->drawable->colorPixelFormat, MTL::PixelFormatInvalid);
}

TEST_F(Layer, ExcludesHostTextures)
{
    attach();
    auto texture = NS::TransferPtr(contexts::newTexture(device, MTL::PixelFormatBGRA8Unorm, 8, 8, contexts::Drawn));
    MTL::Texture* before = drawable().colorTexture;
    EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, texture.get(), nullptr), 6);
    EXPECT_EQ(drawable().colorTexture, before);
}

} // namespace
