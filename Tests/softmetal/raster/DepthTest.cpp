// SPDX-License-Identifier: Apache-2.0
// Depth and stencil: range, bias, comparisons, the four formats.
#include "RasterFixture.h"

#include <algorithm>

namespace raster_test
{

class Depth : public Raster
{
protected:
    static constexpr NS::UInteger Side = 8;

    MTL::Texture* depthTexture(MTL::PixelFormat format)
    {
        auto* d = textureDescriptor(Side, Side, format);
        d->setStorageMode(MTL::StorageModePrivate);
        return texture(d);
    }

    static bool hasStencil(MTL::PixelFormat format)
    {
        return format == MTL::PixelFormatDepth24Unorm_Stencil8 || format == MTL::PixelFormatDepth32Float_Stencil8;
    }

    MTL::RenderPassDescriptor* depthPass(MTL::Texture* color, MTL::Texture* depth, double clear)
    {
        auto* d = pass(color);
        d->depthAttachment()->setTexture(depth);
        d->depthAttachment()->setLoadAction(MTL::LoadActionClear);
        d->depthAttachment()->setClearDepth(clear);
        if (hasStencil(depth->pixelFormat())) {
            d->stencilAttachment()->setTexture(depth);
            d->stencilAttachment()->setLoadAction(MTL::LoadActionClear);
            d->stencilAttachment()->setClearStencil(0);
        }
        return d;
    }

    MTL::RenderPipelineState* depthPipeline(MTL::PixelFormat format, const char* fragment = "ones")
    {
        auto* d = rasterDescriptor(fragment);
        d->setDepthAttachmentPixelFormat(format);
        if (hasStencil(format)) d->setStencilAttachmentPixelFormat(format);
        return pipeline(d);
    }

    MTL::DepthStencilState* state(MTL::CompareFunction compare, bool write)
    {
        auto* d = owned(MTL::DepthStencilDescriptor::alloc()->init());
        d->setDepthCompareFunction(compare);
        d->setDepthWriteEnabled(write);
        return owned(device->newDepthStencilState(d));
    }

    std::vector<Corner> plane(float z) { return acrossTarget({{0, 0, z, 1}}, {{0, 0, z, 1}}); }

    /// Draws a plane and gives what the depth buffer then holds, in float.
    float storedDepth(MTL::PixelFormat format, const std::vector<Corner>& corners, const Setting& setting = {})
    {
        auto* depth = depthTexture(format);
        auto* e = encoder(depthPass(texture(Side, Side, MTL::PixelFormatRGBA32Float), depth, 0));
        e->setRenderPipelineState(depthPipeline(format));
        e->setDepthStencilState(state(MTL::CompareFunctionAlways, true));
        if (setting) setting(e);
        put(e, MTL::PrimitiveTypeTriangle, corners);
        finish(e);
        return texelOf(depth, 4, 4);
    }

    /// Depth as a copy to a buffer gives it.
    float texelOf(MTL::Texture* depth, NS::UInteger x, NS::UInteger y)
    {
        auto* bytes = buffer(Side * Side * 4);
        auto* b = blit();
        auto option = hasStencil(depth->pixelFormat()) ? MTL::BlitOption{MTL::BlitOptionDepthFromDepthStencil}
                                                       : MTL::BlitOption{MTL::BlitOptionNone};
        NS::UInteger size = depth->pixelFormat() == MTL::PixelFormatDepth16Unorm ? 2 : 4;
        b->copyFromTexture(depth, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(Side, Side, 1), bytes, 0, Side * size,
                           Side * Side * size, option);
        finish(b);
        const uint8_t* at = static_cast<const uint8_t*>(bytes->contents()) + (y * Side + x) * size;
        uint32_t bits = 0;
        std::memcpy(&bits, at, size);
        if (depth->pixelFormat() == MTL::PixelFormatDepth16Unorm) return static_cast<float>(bits) / 65535.0f;
        float value;
        std::memcpy(&value, &bits, 4);
        return value;
    }
};

struct FormatRow
{
    MTL::PixelFormat format;
    double step; // of what it holds, near a half
};
constexpr FormatRow Formats[] = {
    {MTL::PixelFormatDepth16Unorm, 1.0 / 65535},
    {MTL::PixelFormatDepth32Float, 1.0 / 16777216},
    {MTL::PixelFormatDepth24Unorm_Stencil8, 1.0 / 16777215},
    {MTL::PixelFormatDepth32Float_Stencil8, 1.0 / 16777216},
};

TEST_F(Depth, EachFormatHoldsItToItsPrecision)
{
    for (const FormatRow& row : Formats) {
        for (float z : {0.0f, 0.25f, 0.3f, 0.7123456f, 1.0f})
            EXPECT_NEAR(storedDepth(row.format, plane(z)), z, row.step) << row.format << " of " << z;
    }
}

TEST_F(Depth, EachComparisonOnEachFormat)
{
    using C = MTL::CompareFunction;
    const struct
    {
        C function;
        bool nearer, same, farther; // passes
    } rows[] = {{C::CompareFunctionNever, false, false, false},      {C::CompareFunctionLess, true, false, false},
                {C::CompareFunctionEqual, false, true, false},       {C::CompareFunctionLessEqual, true, true, false},
                {C::CompareFunctionGreater, false, false, true},     {C::CompareFunctionNotEqual, true, false, true},
                {C::CompareFunctionGreaterEqual, false, true, true}, {C::CompareFunctionAlways, true, true, true}};
    for (const FormatRow& format : Formats) {
        auto* drawing = depthPipeline(format.format);
        for (const auto& row : rows) {
            bool wanted[] = {row.nearer, row.same, row.farther};
            const float depths[] = {0.25f, 0.5f, 0.75f};
            for (int i = 0; i < 3; ++i) {
                auto* color = texture(Side, Side, MTL::PixelFormatRGBA32Float);
                auto* e = encoder(depthPass(color, depthTexture(format.format), 0.5));
                e->setRenderPipelineState(drawing);
                e->setDepthStencilState(state(row.function, false));
                put(e, MTL::PrimitiveTypeTriangle, plane(depths[i]));
                finish(e);
                EXPECT_EQ(pictureOf(color).covered(3, 3), wanted[i])
                    << format.format << ", function " << row.function << ", depth " << depths[i];
            }
        }
    }
}

TEST_F(Depth, WritesOnlyWhereItPassesAndIsAskedTo)
{
    for (bool write : {false, true}) {
        auto* depth = depthTexture(MTL::PixelFormatDepth32Float);
        auto* e = encoder(depthPass(texture(Side, Side, MTL::PixelFormatRGBA32Float), depth, 0.5));
        e->setRenderPipelineState(depthPipeline(MTL::PixelFormatDepth32Float));
        e->setDepthStencilState(state(MTL::CompareFunctionLess, write));
        put(e, MTL::PrimitiveTypeTriangle,
            {atPixel(0, 0, 8, 8), atPixel(8, 0, 8, 8), atPixel(0, 8, 8, 8)}); // at a half: not nearer
        e->setViewport({0, 0, 4, 4, 0, 0.5});
        put(e, MTL::PrimitiveTypeTriangle, plane(0.5f));
        finish(e);
        EXPECT_EQ(texelOf(depth, 1, 1), write ? 0.25f : 0.5f);
        EXPECT_EQ(texelOf(depth, 6, 1), 0.5f);
    }
}

TEST_F(Depth, RangeOfTheViewportScalesAndTurnsIt)
{
    auto within = [&](double near, double far, float z) {
        return storedDepth(MTL::PixelFormatDepth32Float, plane(z), [=](auto* e) {
            e->setViewport({0, 0, Side, Side, near, far});
        });
    };
    EXPECT_EQ(within(0.25, 0.75, 0), 0.25f);
    EXPECT_EQ(within(0.25, 0.75, 1), 0.75f);
    EXPECT_EQ(within(0.25, 0.75, 0.5f), 0.5f);
    EXPECT_EQ(within(1, 0, 0.25f), 0.75f);
    EXPECT_EQ(within(0.5, 0.5, 0.1f), 0.5f);
}

// ---- bias ----------------------------------------------------------------------------------------------------------

TEST_F(Depth, BiasCountsInStepsOfTheFormat)
{
    auto biased = [&](MTL::PixelFormat format, float bias) {
        return static_cast<double>(storedDepth(format, plane(0.5f), [=](auto* e) { e->setDepthBias(bias, 0, 0); })) -
               storedDepth(format, plane(0.5f));
    };
    EXPECT_NEAR(biased(MTL::PixelFormatDepth16Unorm, 100), 100 / 65536.0, 1.6e-5); // a step is 1.5e-5
    EXPECT_NEAR(biased(MTL::PixelFormatDepth24Unorm_Stencil8, 1000), 1000 / 16777216.0, 1e-7);
    EXPECT_NEAR(biased(MTL::PixelFormatDepth32Float, 1024), 1024 * std::ldexp(1.0, -1 - 23),
                1e-9); // a half's exponent is -1
    EXPECT_NEAR(biased(MTL::PixelFormatDepth32Float, -1024), -1024 * std::ldexp(1.0, -1 - 23), 1e-9);
}

TEST_F(Depth, BiasFollowsTheSlopeAndIsClamped)
{
    auto slanted = acrossTarget({{0, 0, 0, 1}}, {{0, 0, 0.8f, 1}}); // a tenth for each pixel
    auto biased = [&](float slope, float clamp) {
        return storedDepth(MTL::PixelFormatDepth32Float, slanted, [=](auto* e) { e->setDepthBias(0, slope, clamp); }) -
               storedDepth(MTL::PixelFormatDepth32Float, slanted);
    };
    EXPECT_NEAR(biased(2, 0), 0.2, 1e-6);
    EXPECT_NEAR(biased(-2, 0), -0.2, 1e-6);
    EXPECT_NEAR(biased(2, 0.05f), 0.05, 1e-6);
    EXPECT_NEAR(biased(-2, -0.05f), -0.05, 1e-6);
    EXPECT_NEAR(biased(0.3f, 0.05f), 0.03, 1e-6); // does not reach the clamp
}

// ---- stencil -------------------------------------------------------------------------------------------------------

/// Eight operations on a stored 5, 0 and 255 with reference 9.
TEST_F(Depth, StencilOperationsOnBothFormats)
{
    const struct
    {
        MTL::StencilOperation operation;
        uint8_t results[3];
    } rows[] = {
        {MTL::StencilOperationKeep, {5, 0, 255}},           {MTL::StencilOperationZero, {0, 0, 0}},
        {MTL::StencilOperationReplace, {9, 9, 9}},          {MTL::StencilOperationIncrementClamp, {6, 1, 255}},
        {MTL::StencilOperationDecrementClamp, {4, 0, 254}}, {MTL::StencilOperationInvert, {250, 255, 0}},
        {MTL::StencilOperationIncrementWrap, {6, 1, 0}},    {MTL::StencilOperationDecrementWrap, {4, 255, 254}}};
    for (auto format : {MTL::PixelFormatDepth24Unorm_Stencil8, MTL::PixelFormatDepth32Float_Stencil8}) {
        auto* drawing = depthPipeline(format);
        for (const auto& row : rows) {
            int i = 0;
            for (uint32_t before : {5u, 0u, 255u}) {
                auto* target = depthTexture(format);
                auto* d = depthPass(texture(Side, Side, MTL::PixelFormatRGBA32Float), target, 0);
                d->stencilAttachment()->setClearStencil(before);
                auto* stencil = owned(MTL::StencilDescriptor::alloc()->init());
                stencil->setDepthStencilPassOperation(row.operation);
                auto* both = owned(MTL::DepthStencilDescriptor::alloc()->init());
                both->setFrontFaceStencil(stencil);
                both->setBackFaceStencil(stencil);
                auto* e = encoder(d);
                e->setRenderPipelineState(drawing);
                e->setDepthStencilState(owned(device->newDepthStencilState(both)));
                e->setStencilReferenceValue(9);
                put(e, MTL::PrimitiveTypeTriangle, plane(0.5f));
                finish(e);
                auto* bytes = buffer(Side * Side);
                auto* b = blit();
                b->copyFromTexture(target, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(Side, Side, 1), bytes, 0, Side,
                                   Side * Side, MTL::BlitOptionStencilFromDepthStencil);
                finish(b);
                EXPECT_EQ(static_cast<const uint8_t*>(bytes->contents())[27], row.results[i++])
                    << format << ", operation " << row.operation << " on " << before;
            }
        }
    }
}

} // namespace raster_test
