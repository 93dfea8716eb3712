// SPDX-License-Identifier: Apache-2.0
// Whole blocks of pixels may be decided at once, but never otherwise than pixel by pixel: a program that might discard
// is tested after it has run, pixel by pixel, and draws the same picture.
#include "RasterFixture.h"

#include <random>

namespace raster_test
{

struct Case
{
    const char* name;
    MTL::PixelFormat format;
    MTL::CompareFunction compare;
};

class DepthBlocks : public Raster, public testing::WithParamInterface<Case>
{
protected:
    static constexpr NS::UInteger Width = 203, Height = 147; // the last blocks are cut off
    static constexpr int Draws = 90, SecondPass = 50;

    static bool hasStencil(MTL::PixelFormat format)
    {
        return format == MTL::PixelFormatDepth24Unorm_Stencil8 || format == MTL::PixelFormatDepth32Float_Stencil8;
    }

    MTL::RenderPipelineState* depthPipeline(const char* fragment)
    {
        auto* d = rasterDescriptor(fragment);
        d->setDepthAttachmentPixelFormat(GetParam().format);
        if (hasStencil(GetParam().format)) d->setStencilAttachmentPixelFormat(GetParam().format);
        return pipeline(d);
    }

    MTL::RenderPassDescriptor* depthPass(MTL::Texture* color, MTL::Texture* depth, MTL::LoadAction load)
    {
        auto* d = pass(color);
        d->colorAttachments()->object(0)->setLoadAction(load);
        d->depthAttachment()->setTexture(depth);
        d->depthAttachment()->setLoadAction(load);
        d->depthAttachment()->setClearDepth(0.5);
        if (!hasStencil(GetParam().format)) return d;
        d->stencilAttachment()->setTexture(depth);
        d->stencilAttachment()->setLoadAction(load);
        return d;
    }

    /// The function under test, mixed with others: each meets what the others have left.
    MTL::DepthStencilState* stateOf(int draw, std::mt19937& random)
    {
        constexpr MTL::CompareFunction Others[] = {MTL::CompareFunctionAlways,   MTL::CompareFunctionLess,
                                                   MTL::CompareFunctionNotEqual, MTL::CompareFunctionEqual,
                                                   MTL::CompareFunctionGreater,  MTL::CompareFunctionLessEqual,
                                                   MTL::CompareFunctionNever,    MTL::CompareFunctionGreaterEqual};
        auto* d = owned(MTL::DepthStencilDescriptor::alloc()->init());
        d->setDepthCompareFunction(draw % 5 == 4 ? Others[random() % 8] : GetParam().compare);
        d->setDepthWriteEnabled(random() % 4 != 0);
        return owned(device->newDepthStencilState(d));
    }

    /// A triangle of any size, level or steep; some reach beyond the range of depths.
    static std::vector<Corner> triangleOf(int draw, std::mt19937& random)
    {
        auto between = [&](float low, float high) {
            return low + (high - low) * static_cast<float>(random() % 4096) / 4096;
        };
        const float size = draw % 3 == 0 ? 3.0f : draw % 3 == 1 ? 0.6f : 0.05f, x = between(-1, 1), y = between(-1, 1);
        const float z = between(-0.1f, 1.1f), steep = draw % 4 == 0 ? 0.0f : 0.4f;
        std::vector<Corner> corners;
        for (int i = 0; i < 3; ++i)
            corners.push_back(
                {{x + between(-size, size), y + between(-size, size), z + between(-steep, steep), between(0.8f, 1.2f)},
                 {static_cast<float>(draw + 1), between(0, 1), 0, 1}});
        return corners;
    }

    Picture drawnWith(const char* fragment)
    {
        std::mt19937 random(static_cast<unsigned>(GetParam().compare) + 1);
        auto* color = texture(Width, Height, MTL::PixelFormatRGBA32Float);
        auto* d = textureDescriptor(Width, Height, GetParam().format);
        d->setStorageMode(MTL::StorageModePrivate);
        auto* depth = texture(d);
        auto* e = encoder(depthPass(color, depth, MTL::LoadActionClear));
        for (int i = 0; i < Draws; ++i) {
            if (i == SecondPass) {
                finish(e);
                e = encoder(depthPass(color, depth, MTL::LoadActionLoad));
            }
            if (i == 0 || i == SecondPass) e->setRenderPipelineState(depthPipeline(fragment));
            e->setDepthStencilState(stateOf(i, random));
            e->setDepthClipMode(i % 2 ? MTL::DepthClipModeClamp : MTL::DepthClipModeClip);
            e->setDepthBias(i % 7 == 0 ? 64.0f : 0.0f, i % 11 == 0 ? 1.5f : 0.0f, 0);
            put(e, MTL::PrimitiveTypeTriangle, triangleOf(i, random));
        }
        finish(e);
        return pictureOf(color);
    }
};

TEST_P(DepthBlocks, ShowWhatPixelsWouldShowOneByOne)
{
    const Picture blocks = drawnWith("value"), pixels = drawnWith("valueUnlessNegative");
    EXPECT_GT(pixels.count(), 1000);
    EXPECT_EQ(blocks.values, pixels.values);
}

std::vector<Case> cases()
{
    constexpr std::pair<const char*, MTL::PixelFormat> Formats[] = {
        {"Depth16", MTL::PixelFormatDepth16Unorm},
        {"Depth32", MTL::PixelFormatDepth32Float},
        {"Depth24Stencil", MTL::PixelFormatDepth24Unorm_Stencil8},
        {"Depth32Stencil", MTL::PixelFormatDepth32Float_Stencil8},
    };
    std::vector<Case> all;
    for (auto [name, format] : Formats)
        for (auto compare = NS::UInteger{MTL::CompareFunctionLess}; compare <= MTL::CompareFunctionAlways; ++compare)
            all.push_back({name, format, static_cast<MTL::CompareFunction>(compare)});
    return all;
}

INSTANTIATE_TEST_SUITE_P(Formats, DepthBlocks, testing::ValuesIn(cases()), [](const auto& one) {
    return std::string(one.param.name) + "Function" + std::to_string(static_cast<int>(one.param.compare));
});

} // namespace raster_test
