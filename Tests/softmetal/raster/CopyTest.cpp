// SPDX-License-Identifier: Apache-2.0
// A draw that copies texels, one to a pixel, against one that shades each of them: the same bytes, for whatever
// triangles, formats and places, and where texels are stretched or lie outside as well.
#include "RasterFixture.h"

#include <random>

namespace raster_test
{

/// The same function twice; the second one multiplies by a number that only the buffer knows to be one.
constexpr const char* Copying = R"(
#include <metal_stdlib>
using namespace metal;
struct Corner { float2 position; float2 place; };
struct Out { float4 position [[position]]; float2 place; };
vertex Out corner(const device Corner* corners [[buffer(0)]], uint id [[vertex_id]])
{
    Out out;
    out.position = float4(corners[id].position, 0, 1);
    out.place = corners[id].place;
    return out;
}
constexpr sampler pixels(coord::pixel, filter::nearest);
fragment float4 copied(Out in [[stage_in]], texture2d<float> t [[texture(1)]]) { return t.sample(pixels, in.place); }
fragment float4 shaded(Out in [[stage_in]], texture2d<float> t [[texture(1)]], constant float& one [[buffer(0)]])
{
    return t.sample(pixels, in.place) * one;
}
)";

class Copy : public Raster
{
protected:
    static constexpr int Width = 150, Height = 90; // more than two tiles, and not a whole number of batches

    struct Place
    {
        float x, y, u, v; // in clip space; in texels
    };

    /// A place in pixels whose texel lies (dx, dy) from it.
    static Place at(float x, float y, float dx = 0, float dy = 0)
    {
        return {x / Width * 2 - 1, 1 - y / Height * 2, x + dx, y + dy};
    }

    MTL::RenderPipelineState* copying(const char* function, MTL::PixelFormat format)
    {
        NS::Error* error = nullptr;
        if (!made_) made_ = owned(device->newLibrary(text(Copying), nullptr, &error));
        if (!made_) ADD_FAILURE() << error->localizedDescription()->utf8String();
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(made_->newFunction(text("corner"))));
        d->setFragmentFunction(owned(made_->newFunction(text(function))));
        d->colorAttachments()->object(0)->setPixelFormat(format);
        return pipeline(d);
    }

    MTL::Texture* picture(MTL::PixelFormat format, int width = Width, int height = Height)
    {
        std::mt19937 random(7);
        auto* t = texture(static_cast<NS::UInteger>(width), static_cast<NS::UInteger>(height), format);
        std::vector<uint8_t> bytes(static_cast<size_t>(width * height) * bytesOf(format));
        for (uint8_t& b : bytes)
            b = static_cast<uint8_t>(random());
        if (format == MTL::PixelFormatRGBA32Float)
            for (size_t i = 3; i < bytes.size(); i += 4)
                bytes[i] &= 0xBF; // finite
        t->replaceRegion(MTL::Region(0, 0, t->width(), t->height()), 0, bytes.data(), t->width() * bytesOf(format));
        return t;
    }

    static size_t bytesOf(MTL::PixelFormat format)
    {
        return format == MTL::PixelFormatRGBA32Float ? 16 : format == MTL::PixelFormatRGBA16Float ? 8 : 4;
    }

    std::vector<uint8_t> drawnWith(const char* function, MTL::Texture* from, MTL::PixelFormat to,
                                   const std::vector<Place>& corners, MTL::PrimitiveType type)
    {
        auto* target = texture(Width, Height, to);
        auto* d = pass(target);
        d->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(0.25, 0.5, 0.75, 1));
        auto* e = encoder(d);
        const float one = 1;
        e->setRenderPipelineState(copying(function, to));
        e->setVertexBuffer(bufferOf(corners), 0, 0);
        e->setFragmentTexture(from, 1);
        e->setFragmentBytes(&one, sizeof one, 0);
        e->drawPrimitives(type, NS::UInteger(0), NS::UInteger(corners.size()));
        finish(e);
        std::vector<uint8_t> bytes(Width * Height * bytesOf(to));
        target->getBytes(bytes.data(), Width * bytesOf(to), MTL::Region(0, 0, Width, Height), 0);
        return bytes;
    }

    void expectTheSame(MTL::Texture* from, MTL::PixelFormat to, const std::vector<Place>& corners,
                       MTL::PrimitiveType type = MTL::PrimitiveTypeTriangle)
    {
        EXPECT_EQ(drawnWith("copied", from, to, corners, type), drawnWith("shaded", from, to, corners, type));
    }

    static std::vector<Place> whole(float dx = 0, float dy = 0)
    {
        return {at(0, 0, dx, dy), at(Width, 0, dx, dy), at(0, Height, dx, dy), at(Width, Height, dx, dy)};
    }

private:
    MTL::Library* made_ = nullptr;
};

TEST_F(Copy, OfAWholePictureInAnyPairOfFormats)
{
    constexpr MTL::PixelFormat Formats[] = {MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatBGRA8Unorm,
                                            MTL::PixelFormatRGBA16Float, MTL::PixelFormatRGBA32Float};
    for (MTL::PixelFormat from : {MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatRGBA32Float})
        for (MTL::PixelFormat to : Formats)
            expectTheSame(picture(from), to, whole(), MTL::PrimitiveTypeTriangleStrip);
}

TEST_F(Copy, GivesBackEveryByteOfAnEightBitPicture)
{
    auto* from = picture(MTL::PixelFormatBGRA8Unorm);
    std::vector<uint8_t> bytes(Width * Height * 4);
    from->getBytes(bytes.data(), Width * 4, MTL::Region(0, 0, Width, Height), 0);
    EXPECT_EQ(drawnWith("copied", from, MTL::PixelFormatBGRA8Unorm, whole(), MTL::PrimitiveTypeTriangleStrip), bytes);
}

TEST_F(Copy, FromUpsideDown)
{
    std::vector<Place> corners = whole();
    for (Place& p : corners)
        p.v = Height - p.v;
    expectTheSame(picture(MTL::PixelFormatBGRA8Unorm), MTL::PixelFormatBGRA8Unorm, corners,
                  MTL::PrimitiveTypeTriangleStrip);
}

TEST_F(Copy, OfPartsAndWithFractions)
{
    auto* from = picture(MTL::PixelFormatRGBA8Unorm, Width + 40, Height + 40);
    for (auto [dx, dy] : {std::pair{40.0f, 17.0f}, {0.25f, 0.75f}, {0.5f, 3.5f}, {13.496f, 0.004f}})
        expectTheSame(from, MTL::PixelFormatBGRA8Unorm, whole(dx, dy), MTL::PrimitiveTypeTriangleStrip);
}

TEST_F(Copy, OfAnyTriangles)
{
    std::mt19937 random(11);
    auto* from = picture(MTL::PixelFormatRGBA8Unorm);
    std::uniform_real_distribution<float> x(0, Width), y(0, Height);
    for (int n = 0; n < 40; ++n) {
        std::vector<Place> corners;
        for (int i = 0; i < 6; ++i)
            corners.push_back(at(x(random), y(random)));
        expectTheSame(from, n % 2 ? MTL::PixelFormatBGRA8Unorm : MTL::PixelFormatRGBA32Float, corners);
    }
}

TEST_F(Copy, ThatIsStretchedTurnedOrOutside)
{
    auto* from = picture(MTL::PixelFormatBGRA8Unorm);
    std::vector<Place> stretched = whole(), turned = whole(), mirrored = whole(), leaning = whole();
    for (Place& p : stretched)
        p.u *= 0.9f;
    for (Place& p : turned)
        std::swap(p.u, p.v);
    for (Place& p : mirrored)
        p.u = Width - p.u;
    for (Place& p : leaning)
        p.u += p.v / 8;
    for (const auto& corners : {stretched, turned, mirrored, leaning, whole(5, -3), whole(-5, 3), whole(-200, 0)})
        expectTheSame(from, MTL::PixelFormatRGBA8Unorm, corners, MTL::PrimitiveTypeTriangleStrip);
}

} // namespace raster_test
