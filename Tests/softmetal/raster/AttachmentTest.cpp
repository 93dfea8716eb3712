// SPDX-License-Identifier: Apache-2.0
// Attachments: eight of mixed formats at once, what loading and clearing leave, and the levels, slices and planes drawn
// to.
#include "RasterFixture.h"

namespace raster_test
{

class Attachment : public Raster
{
protected:
    template <class T>
    static T texelOf(MTL::Texture* t, NS::UInteger slice = 0, NS::UInteger level = 0, NS::UInteger z = 0)
    {
        T value{};
        t->getBytes(&value, sizeof value, sizeof value, MTL::Region(1, 1, z, 1, 1, 1), level, slice);
        return value;
    }
};

constexpr MTL::PixelFormat Mixed[8] = {
    MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatRGBA16Float, MTL::PixelFormatR32Float,
    MTL::PixelFormatRG16Unorm,  MTL::PixelFormatRGBA8Uint,  MTL::PixelFormatR32Sint,     MTL::PixelFormatRGBA32Float,
};

constexpr const char* EightOutputs = R"(
#include <metal_stdlib>
using namespace metal;
struct Out
{
    float4 a [[color(0)]];
    half4 b [[color(1)]];
    half4 c [[color(2)]];
    float d [[color(3)]];
    float2 e [[color(4)]];
    uint4 f [[color(5)]];
    int g [[color(6)]];
    float4 h [[color(7)]];
};
vertex float4 all(uint id [[vertex_id]]) { return float4(id == 1 ? 3 : -1, id == 2 ? 3 : -1, 0, 1); }
fragment Out eight()
{
    Out o;
    o.a = float4(1, 0, 0.2, 1);
    o.b = half4(1, 0, 0.2h, 1);
    o.c = half4(0.5, 1, 2, 4);
    o.d = -7.25;
    o.e = float2(1, 0.5);
    o.f = uint4(1, 2, 3, 255);
    o.g = -100000;
    o.h = float4(0.1, 0.2, 0.3, 0.4);
    return o;
}
)";

TEST_F(Attachment, EightOfMixedFormatsTakeTheirOwnOutputs)
{
    NS::Error* error = nullptr;
    auto* made = owned(device->newLibrary(text(EightOutputs), nullptr, &error));
    ASSERT_NE(made, nullptr) << error->localizedDescription()->utf8String();
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    d->setVertexFunction(owned(made->newFunction(text("all"))));
    d->setFragmentFunction(owned(made->newFunction(text("eight"))));
    auto* p = MTL::RenderPassDescriptor::renderPassDescriptor();
    MTL::Texture* targets[8];
    for (NS::UInteger i = 0; i < 8; ++i) {
        targets[i] = texture(4, 4, Mixed[i]);
        d->colorAttachments()->object(i)->setPixelFormat(Mixed[i]);
        p->colorAttachments()->object(i)->setTexture(targets[i]);
        p->colorAttachments()->object(i)->setLoadAction(MTL::LoadActionClear);
    }
    auto* e = encoder(p);
    e->setRenderPipelineState(pipeline(d));
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    finish(e);
    EXPECT_EQ(texelOf<Pixel>(targets[0]), (Pixel{255, 0, 51, 255}));
    EXPECT_EQ(texelOf<Pixel>(targets[1]), (Pixel{51, 0, 255, 255}));
    EXPECT_EQ((texelOf<std::array<uint16_t, 4>>(targets[2])),
              (std::array<uint16_t, 4>{0x3800, 0x3C00, 0x4000, 0x4400}));
    EXPECT_EQ(texelOf<float>(targets[3]), -7.25f);
    EXPECT_EQ((texelOf<std::array<uint16_t, 2>>(targets[4])), (std::array<uint16_t, 2>{65535, 32768}));
    EXPECT_EQ(texelOf<Pixel>(targets[5]), (Pixel{1, 2, 3, 255}));
    EXPECT_EQ(texelOf<int32_t>(targets[6]), -100000);
    EXPECT_EQ(texelOf<Value>(targets[7]), (Value{0.1f, 0.2f, 0.3f, 0.4f}));
}

// ---- load and clear ------------------------------------------------------------------------------------------------

TEST_F(Attachment, ClearWritesTheColourInTheFormat)
{
    const struct
    {
        MTL::PixelFormat format;
        MTL::ClearColor color;
        std::vector<uint8_t> bytes;
    } rows[] = {
        {MTL::PixelFormatRGBA8Unorm, {1, 0.5, 0, 2}, {255, 128, 0, 255}},
        {MTL::PixelFormatBGRA8Unorm, {1, 0.5, 0, 1}, {0, 128, 255, 255}},
        {MTL::PixelFormatRGBA8Unorm_sRGB, {0.5, 0, 1, 0.5}, {188, 0, 255, 128}},
        {MTL::PixelFormatRGBA8Snorm, {-1, 1, 0, -2}, {0x81, 127, 0, 0x81}},
        {MTL::PixelFormatR16Float, {-2, 0, 0, 0}, {0, 0xC0}},
        {MTL::PixelFormatRGBA8Uint, {1, 2, 254, 255}, {1, 2, 254, 255}},
        {MTL::PixelFormatR16Sint, {-2, 0, 0, 0}, {0xFE, 0xFF}},
    };
    for (const auto& row : rows) {
        auto* t = texture(4, 4, row.format);
        auto* p = pass(t);
        p->colorAttachments()->object(0)->setClearColor(row.color);
        finish(encoder(p));
        std::vector<uint8_t> bytes(row.bytes.size());
        t->getBytes(bytes.data(), bytes.size(), MTL::Region(3, 3, 1, 1), 0);
        EXPECT_EQ(bytes, row.bytes) << row.format;
    }
}

TEST_F(Attachment, LoadKeepsWhatIsThere)
{
    auto* t = texture(4, 4);
    auto* p = pass(t);
    p->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(0, 1, 0, 1));
    finish(encoder(p));
    p->colorAttachments()->object(0)->setLoadAction(MTL::LoadActionLoad);
    finish(encoder(p));
    EXPECT_EQ(pixel(t, 2, 2), (Pixel{0, 255, 0, 255}));
}

// ---- parts of textures ---------------------------------------------------------------------------------------------

TEST_F(Attachment, LevelSliceAndPlaneAreThoseDrawnTo)
{
    auto cleared = [&](MTL::Texture* t, NS::UInteger level, NS::UInteger slice, NS::UInteger plane) {
        auto* p = pass(t);
        auto* color = p->colorAttachments()->object(0);
        color->setLevel(level);
        color->setSlice(slice);
        color->setDepthPlane(plane);
        color->setClearColor(MTL::ClearColor(1, 1, 1, 1));
        finish(encoder(p));
    };
    auto* d = textureDescriptor(8, 8);
    d->setTextureType(MTL::TextureType2DArray);
    d->setArrayLength(3);
    d->setMipmapLevelCount(2);
    auto* layers = texture(d);
    cleared(layers, 1, 2, 0);
    d->setTextureType(MTL::TextureType3D);
    d->setArrayLength(1);
    d->setDepth(4);
    auto* volume = texture(d);
    cleared(volume, 0, 0, 3);
    for (NS::UInteger slice = 0; slice < 3; ++slice) {
        for (NS::UInteger level = 0; level < 2; ++level)
            EXPECT_EQ(texelOf<Pixel>(layers, slice, level)[0], slice == 2 && level == 1 ? 255 : 0);
    }
    for (NS::UInteger z = 0; z < 4; ++z)
        EXPECT_EQ(texelOf<Pixel>(volume, 0, 0, z)[0], z == 3 ? 255 : 0);
}

/// A normal half, or zero.
float fromHalf(uint16_t half)
{
    if ((half & 0x7FFF) == 0) return 0;
    float magnitude = std::ldexp(static_cast<float>(1024 + (half & 1023)), ((half >> 10) & 31) - 25);
    return half & 0x8000 ? -magnitude : magnitude;
}

TEST_F(Attachment, HalvesOfATriangleLandAtTheirOwnPixels)
{
    constexpr int Width = 37, Height = 21; // batches stick out at the right and at the lower edge
    auto corner = [](float x, float y) { return atPixel(x, y, Width, Height, {x, y, -x, x + y}); };
    const std::vector<Corner> triangle = {corner(3, 1), corner(37, 9), corner(8, 21)};
    Picture floats = drawn("level", Width, Height, MTL::PrimitiveTypeTriangle, triangle);
    auto* halves = texture(Width, Height, MTL::PixelFormatRGBA16Float);
    auto* e = encoder(halves);
    e->setRenderPipelineState(pipeline(rasterDescriptor("level", MTL::PixelFormatRGBA16Float)));
    put(e, MTL::PrimitiveTypeTriangle, triangle);
    finish(e);
    std::vector<std::array<uint16_t, 4>> texels(Width * Height);
    halves->getBytes(texels.data(), Width * 8, MTL::Region(0, 0, Width, Height), 0);
    EXPECT_GT(floats.count(), 200);
    for (int y = 0; y < Height; ++y)
        for (int x = 0; x < Width; ++x) {
            const float cx = static_cast<float>(x) + 0.5f, cy = static_cast<float>(y) + 0.5f;
            const Value expected = floats.covered(x, y) ? Value{cx, cy, -cx, cx + cy} : Value{};
            for (size_t c = 0; c < 4; ++c)
                ASSERT_EQ(fromHalf(texels[static_cast<size_t>(y * Width + x)][c]), expected[c]) << x << ", " << y;
        }
}

} // namespace raster_test
