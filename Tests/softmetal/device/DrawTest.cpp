// SPDX-License-Identifier: Apache-2.0
// Where a draw takes its vertices from: starts, instances, base instances, base vertices, step functions, indices.
#include "DeviceFixture.h"

#include <algorithm>
#include <functional>

namespace device_test
{

/// Each corner is a point at the pixel that its attributes add up to.
class Draw : public Device
{
protected:
    static constexpr int Width = 32;
    static constexpr const char* Source = R"(
#include <metal_stdlib>
using namespace metal;
struct In { float own [[attribute(0)]]; float instance [[attribute(1)]]; float same [[attribute(2)]]; };
struct Out { float4 position [[position]]; float size [[point_size]]; };
vertex Out place(In in [[stage_in]])
{
    Out out;
    out.position = float4((in.own + in.instance + in.same + 0.5) / 32 * 2 - 1, 0, 0, 1);
    out.size = 1;
    return out;
}
fragment float4 white() { return float4(1); }
)";

    void SetUp() override
    {
        Device::SetUp();
        layout = MTL::VertexDescriptor::vertexDescriptor();
        for (NS::UInteger i = 0; i < 3; ++i) {
            layout->attributes()->object(i)->setFormat(MTL::VertexFormatFloat);
            layout->attributes()->object(i)->setBufferIndex(i);
            layout->layouts()->object(i)->setStride(4);
        }
        layout->layouts()->object(1)->setStepFunction(MTL::VertexStepFunctionPerInstance);
        layout->layouts()->object(2)->setStepFunction(MTL::VertexStepFunctionConstant);
        layout->layouts()->object(2)->setStepRate(0);
    }

    using Drawing = std::function<void(MTL::RenderCommandEncoder*)>;

    /// The pixels that are set, in their order.
    std::vector<int> pixels(const Drawing& drawing)
    {
        NS::Error* error = nullptr;
        auto* made = owned(device->newLibrary(text(Source), nullptr, &error));
        if (!made) ADD_FAILURE() << error->localizedDescription()->utf8String();
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexDescriptor(layout);
        d->setVertexFunction(owned(made->newFunction(text("place"))));
        d->setFragmentFunction(owned(made->newFunction(text("white"))));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
        auto* target = texture(Width, 1);
        auto* e = encoder(target);
        e->setRenderPipelineState(pipeline(d));
        e->setVertexBuffer(bufferOf<float>({0, 1, 2, 3, 4, 5, 6, 7, 8}), 0, 0);
        e->setVertexBuffer(bufferOf<float>({0, 10, 20, 30}), 0, 1);
        e->setVertexBuffer(bufferOf<float>({1}), 0, 2);
        drawing(e);
        finish(e);
        std::vector<int> result;
        for (int x = 0; x < Width; ++x) {
            if (pixel(target, static_cast<NS::UInteger>(x), 0)[0] != 0) result.push_back(x);
        }
        return result;
    }

    static constexpr auto Points = MTL::PrimitiveTypePoint;
    MTL::VertexDescriptor* layout = nullptr;
};

using Pixels = std::vector<int>;
using U = NS::UInteger;

TEST_F(Draw, StartsWhereItIsTold)
{
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(2)); }), (Pixels{1, 2}));
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(3), U(2)); }), (Pixels{4, 5}));
}

TEST_F(Draw, InstancesStepTheirAttributes)
{
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(2), U(3)); }), (Pixels{1, 2, 11, 12, 21, 22}));
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(1), U(2), U(1)); }), (Pixels{11, 21}));
}

TEST_F(Draw, StepRateHoldsAnAttributeForSeveralInstances)
{
    layout->layouts()->object(1)->setStepRate(2);
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(1), U(4)); }), (Pixels{1, 11}));
    // the base instance is where the steps begin: it is not divided
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(1), U(3), U(1)); }), (Pixels{11, 21}));
}

TEST_F(Draw, IndicesOfBothWidthsWithBases)
{
    auto *narrow = bufferOf<uint16_t>({9, 3, 1}), *wide = bufferOf<uint32_t>({9, 3, 1});
    EXPECT_EQ(pixels([&](auto* e) { e->drawIndexedPrimitives(Points, U(2), MTL::IndexTypeUInt16, narrow, U(2)); }),
              (Pixels{2, 4}));
    EXPECT_EQ(pixels([&](auto* e) { e->drawIndexedPrimitives(Points, U(2), MTL::IndexTypeUInt32, wide, U(4)); }),
              (Pixels{2, 4}));
    EXPECT_EQ(
        pixels([&](auto* e) { e->drawIndexedPrimitives(Points, U(2), MTL::IndexTypeUInt16, narrow, U(2), U(2)); }),
        (Pixels{2, 4, 12, 14}));
    EXPECT_EQ(pixels([&](auto* e) {
                  e->drawIndexedPrimitives(Points, U(2), MTL::IndexTypeUInt16, narrow, U(2), U(1), 3, U(1));
              }),
              (Pixels{15, 17}));
    EXPECT_EQ(pixels([&](auto* e) {
                  e->drawIndexedPrimitives(Points, U(1), MTL::IndexTypeUInt16, narrow, U(0), U(1), -9, U(0));
              }),
              (Pixels{1}));
}

TEST_F(Draw, NothingIsDrawnWithoutVerticesOrInstances)
{
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(0)); }), Pixels{});
    EXPECT_EQ(pixels([](auto* e) { e->drawPrimitives(Points, U(0), U(2), U(0)); }), Pixels{});
}

TEST_F(Draw, TheLargestIndexBeginsAStripAnew)
{
    // 0 to 3, then 6 to 8: a line that does not stop would fill 4 and 5
    auto* strip = bufferOf<uint16_t>({0, 3, 0xFFFF, 6, 8});
    auto set = pixels([&](auto* e) {
        e->drawIndexedPrimitives(MTL::PrimitiveTypeLineStrip, U(5), MTL::IndexTypeUInt16, strip, U(0));
    });
    EXPECT_NE(std::find(set.begin(), set.end(), 2), set.end());
    EXPECT_NE(std::find(set.begin(), set.end(), 8), set.end());
    EXPECT_EQ(std::find(set.begin(), set.end(), 5), set.end());
}

} // namespace device_test
