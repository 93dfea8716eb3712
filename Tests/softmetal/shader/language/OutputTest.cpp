// SPDX-License-Identifier: Apache-2.0
// What functions hand on beside colours: stencil reference values, coverage, alpha that is made one, buffers written
// where nothing is rasterised.
#include "Language.h"

namespace language_test
{
namespace
{

class Output : public Language
{
protected:
    static constexpr NS::UInteger Width = 8;
    static constexpr const char* Writer = R"(
struct Result { float4 color [[color(0)]]; uint stencil [[stencil]]; };
fragment Result out(Corner c [[stage_in]]) { return {float4(1), uint(c.position.x) + 250}; }
)";

    MTL::RenderPipelineDescriptor* descriptor(const std::string& program, const char* vertex = "corner")
    {
        auto* library = compiled(std::string(Numbers) + program);
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(library->newFunction(device_test::text(vertex))));
        d->setFragmentFunction(owned(library->newFunction(device_test::text("out"))));
        return d;
    }

    struct Stencilled
    {
        std::vector<uint8_t> stencil;
        std::vector<Value> color;
    };

    /// Draws over stencil values of the given number with a test for both faces and the encoder's reference value 7.
    Stencilled stencilled(MTL::StencilDescriptor* stencil, uint32_t before, bool depth = false)
    {
        constexpr auto Format = MTL::PixelFormatDepth32Float_Stencil8;
        auto* d = descriptor(Writer);
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
        d->setDepthAttachmentPixelFormat(Format);
        d->setStencilAttachmentPixelFormat(Format);
        auto *colors = texture(Width, 1, MTL::PixelFormatRGBA32Float), *both = texture(Width, 1, Format);
        auto* target = pass(colors);
        target->depthAttachment()->setTexture(both);
        target->stencilAttachment()->setTexture(both);
        target->stencilAttachment()->setClearStencil(before);
        auto* test = owned(MTL::DepthStencilDescriptor::alloc()->init());
        test->setFrontFaceStencil(stencil);
        test->setBackFaceStencil(stencil);
        if (depth) test->setDepthCompareFunction(MTL::CompareFunctionNever);
        auto* e = encoder(target);
        e->setRenderPipelineState(pipeline(d));
        e->setDepthStencilState(owned(device->newDepthStencilState(test)));
        e->setStencilReferenceValue(7);
        e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
        finish(e);
        auto* bytes = buffer(Width);
        auto* b = blit();
        b->copyFromTexture(both, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(Width, 1, 1), bytes, 0, Width, Width,
                           MTL::BlitOptionStencilFromDepthStencil);
        finish(b);
        const auto* first = static_cast<const uint8_t*>(bytes->contents());
        Stencilled result{{first, first + Width}, std::vector<Value>(Width)};
        colors->getBytes(result.color.data(), Width * sizeof(Value), MTL::Region(0, 0, Width, 1), 0);
        return result;
    }

    MTL::StencilDescriptor* stencilTest(MTL::CompareFunction compare, MTL::StencilOperation pass)
    {
        auto* stencil = owned(MTL::StencilDescriptor::alloc()->init());
        stencil->setStencilCompareFunction(compare);
        stencil->setDepthStencilPassOperation(pass);
        return stencil;
    }
};

// ---- stencil -------------------------------------------------------------------------------------------------------

TEST_F(Output, StencilValueIsWrittenInThePlaceOfTheReference)
{
    auto* test = stencilTest(MTL::CompareFunctionAlways, MTL::StencilOperationReplace);
    EXPECT_EQ(stencilled(test, 0).stencil, (std::vector<uint8_t>{250, 251, 252, 253, 254, 255, 0, 1})); // eight bits
}

TEST_F(Output, StencilValueIsTestedInThePlaceOfTheReference)
{
    auto* test = stencilTest(MTL::CompareFunctionEqual, MTL::StencilOperationKeep);
    auto color = stencilled(test, 253).color;
    for (size_t x = 0; x < Width; ++x)
        EXPECT_EQ(color[x][0], x == 3 ? 1 : 0) << x;
}

TEST_F(Output, StencilValueGoesThroughTheMasks)
{
    auto* test = stencilTest(MTL::CompareFunctionEqual, MTL::StencilOperationReplace);
    test->setReadMask(1);
    test->setWriteMask(15);
    EXPECT_EQ(stencilled(test, 0x51).stencil, (std::vector<uint8_t>{0x51, 0x5b, 0x51, 0x5d, 0x51, 0x5f, 0x51, 0x51}));
}

TEST_F(Output, StencilValueIsWrittenWhereTheDepthTestFails)
{
    auto* test = stencilTest(MTL::CompareFunctionAlways, MTL::StencilOperationKeep);
    test->setDepthFailureOperation(MTL::StencilOperationReplace);
    auto result = stencilled(test, 9, true);
    EXPECT_EQ(result.stencil, (std::vector<uint8_t>{250, 251, 252, 253, 254, 255, 0, 1}));
    EXPECT_EQ(result.color[0][0], 0);
}

// ---- coverage and alpha --------------------------------------------------------------------------------------------

TEST_F(Output, FirstBitOfTheSampleMaskDecides)
{
    auto* d = descriptor(R"(
struct Result { float4 color [[color(0)]]; uint mask [[sample_mask]]; };
fragment Result out(Corner c [[stage_in]]) { return {float4(1), uint(c.position.x)}; }
)");
    d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
    auto values = draw(pipeline(d), 4);
    for (size_t x = 0; x < 4; ++x)
        EXPECT_EQ(values[x][0], x & 1) << x;
}

TEST_F(Output, AlphaIsOneInTheFirstAttachmentOnly)
{
    auto* d = descriptor(R"(
struct Result { float4 first [[color(0)]]; float4 second [[color(1)]]; };
fragment Result out() { return {float4(0.5, 0.5, 0.5, 0.25), float4(0.25)}; }
)");
    d->setAlphaToOneEnabled(true);
    auto* target = pass(texture(3, 3, MTL::PixelFormatRGBA8Unorm));
    target->colorAttachments()->object(1)->setTexture(texture(3, 3, MTL::PixelFormatRGBA8Unorm));
    for (NS::UInteger i = 0; i < 2; ++i) {
        auto* color = d->colorAttachments()->object(i);
        color->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
        color->setBlendingEnabled(true);
        color->setSourceRGBBlendFactor(MTL::BlendFactorSourceAlpha); // which is the alpha that was made one
        color->setDestinationRGBBlendFactor(MTL::BlendFactorZero);
    }
    auto* e = encoder(target);
    e->setRenderPipelineState(pipeline(d));
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    finish(e);
    auto texel = [&](NS::UInteger i) {
        std::array<uint8_t, 4> bytes{};
        target->colorAttachments()->object(i)->texture()->getBytes(bytes.data(), 4, MTL::Region(1, 1, 1, 1), 0);
        return bytes;
    };
    EXPECT_EQ(texel(0), (std::array<uint8_t, 4>{128, 128, 128, 255}));
    EXPECT_EQ(texel(1), (std::array<uint8_t, 4>{16, 16, 16, 64}));
}

// ---- no pixels -----------------------------------------------------------------------------------------------------

TEST_F(Output, VertexFunctionsWriteWhereNothingIsRasterised)
{
    auto* d = descriptor("vertex void count(device int* seen [[buffer(0)]], uint id [[vertex_id]], uint of "
                         "[[instance_id]]) { seen[of * 4 + id] = int(id) + 10; }\n",
                         "count");
    d->setFragmentFunction(nullptr);
    d->setRasterizationEnabled(false);
    auto* seen = bufferOf(std::vector<int32_t>(12, 0));
    auto* e = encoder(texture());
    e->setRenderPipelineState(pipeline(d));
    e->setVertexBuffer(seen, 0, 0);
    e->drawPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(1), NS::UInteger(3), NS::UInteger(2));
    finish(e);
    const auto* numbers = static_cast<const int32_t*>(seen->contents());
    EXPECT_EQ(std::vector<int32_t>(numbers, numbers + 12),
              (std::vector<int32_t>{0, 11, 12, 13, 0, 11, 12, 13, 0, 0, 0, 0}));
}

} // namespace
} // namespace language_test
