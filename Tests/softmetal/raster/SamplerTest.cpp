// SPDX-License-Identifier: Apache-2.0
// Where a sampler looks: address modes and borders, unnormalised coordinates, levels, anisotropy, seams of cubes,
// swizzles.
#include "RasterFixture.h"

#include <algorithm>

namespace raster_test
{

class Sampler : public Raster
{
protected:
    static constexpr const char* Sampling = R"(
#include <metal_stdlib>
using namespace metal;
struct Out { float4 position [[position]]; float2 place; };
struct Ends { float4 origin, across, down; };
vertex Out all(uint id [[vertex_id]])
{
    Out o;
    o.place = float2(id == 1 ? 2 : 0, id == 2 ? 2 : 0);
    o.position = float4(o.place.x * 2 - 1, 1 - o.place.y * 2, 0, 1);
    return o;
}
fragment float4 flat2d(Out in [[stage_in]], texture2d<float> t [[texture(0)]], sampler s [[sampler(0)]], constant Ends& e [[buffer(0)]])
{
    return t.sample(s, (e.origin + e.across * in.place.x + e.down * in.place.y).xy);
}
fragment float4 compared(Out in [[stage_in]], depth2d<float> t [[texture(0)]], sampler s [[sampler(0)]], constant Ends& e [[buffer(0)]])
{
    return t.sample_compare(s, (e.origin + e.across * in.place.x + e.down * in.place.y).xy, 0.5);
}
fragment float4 cube(Out in [[stage_in]], texturecube<float> t [[texture(0)]], sampler s [[sampler(0)]], constant Ends& e [[buffer(0)]])
{
    return t.sample(s, (e.origin + e.across * in.place.x + e.down * in.place.y).xyz);
}
)";

    struct Ends
    {
        float origin[4], across[4], down[4];
    };

    /// A row of samples: the coordinate runs from origin to origin + across over the width, as the pixels' centres lie.
    Picture sampled(const char* function, MTL::Texture* t, MTL::SamplerState* s, const Ends& ends, int width,
                    int height = 1)
    {
        NS::Error* error = nullptr;
        if (!made_) made_ = owned(device->newLibrary(text(Sampling), nullptr, &error));
        if (!made_) ADD_FAILURE() << error->localizedDescription()->utf8String();
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(made_->newFunction(text("all"))));
        d->setFragmentFunction(owned(made_->newFunction(text(function))));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
        auto* target =
            texture(static_cast<NS::UInteger>(width), static_cast<NS::UInteger>(height), MTL::PixelFormatRGBA32Float);
        auto* e = encoder(target);
        e->setRenderPipelineState(pipeline(d));
        e->setFragmentTexture(t, 0);
        e->setFragmentSamplerState(s, 0);
        e->setFragmentBytes(&ends, sizeof ends, 0);
        e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
        finish(e);
        return pictureOf(target);
    }

    MTL::SamplerDescriptor* described() { return owned(MTL::SamplerDescriptor::alloc()->init()); }
    MTL::SamplerState* state(MTL::SamplerDescriptor* d) { return owned(device->newSamplerState(d)); }

    /// A row of texels whose red is their number, from 1 on.
    MTL::Texture* counting(NS::UInteger width)
    {
        auto* t = texture(width, 1, MTL::PixelFormatRGBA32Float);
        for (NS::UInteger x = 0; x < width; ++x) {
            Value v = {static_cast<float>(x + 1), 0, 0, 1};
            t->replaceRegion(MTL::Region(x, 0, 1, 1), 0, v.data(), sizeof v);
        }
        return t;
    }

    /// All levels in one colour each: red is the level's number.
    MTL::Texture* levels(NS::UInteger side, MTL::PixelFormat format = MTL::PixelFormatRGBA32Float)
    {
        auto* d = MTL::TextureDescriptor::texture2DDescriptor(format, side, side, true);
        d->setUsage(MTL::TextureUsageShaderRead);
        auto* t = texture(d);
        for (NS::UInteger level = 0; level < d->mipmapLevelCount(); ++level) {
            std::vector<Value> values((side >> level) * (side >> level), Value{static_cast<float>(level), 0, 0, 1});
            t->replaceRegion(MTL::Region(0, 0, side >> level, side >> level), level, values.data(),
                             (side >> level) * sizeof(Value));
        }
        return t;
    }

private:
    MTL::Library* made_ = nullptr;
};

// ---- addresses -----------------------------------------------------------------------------------------------------

/// The texel's number that the rule gives; 0 for the border.
int addressed(int i, int size, MTL::SamplerAddressMode mode)
{
    auto modulo = [](int a, int b) { return (a % b + b) % b; };
    switch (mode) {
    case MTL::SamplerAddressModeClampToEdge:
        return std::clamp(i, 0, size - 1) + 1;
    case MTL::SamplerAddressModeMirrorClampToEdge:
        return std::min(i < 0 ? -1 - i : i, size - 1) + 1;
    case MTL::SamplerAddressModeRepeat:
        return modulo(i, size) + 1;
    case MTL::SamplerAddressModeMirrorRepeat:
        return (modulo(i, 2 * size) < size ? modulo(i, 2 * size) : 2 * size - 1 - modulo(i, 2 * size)) + 1;
    default:
        return i < 0 || i >= size ? 0 : i + 1;
    }
}

constexpr MTL::SamplerAddressMode Modes[] = {
    MTL::SamplerAddressModeClampToEdge, MTL::SamplerAddressModeMirrorClampToEdge,
    MTL::SamplerAddressModeRepeat,      MTL::SamplerAddressModeMirrorRepeat,
    MTL::SamplerAddressModeClampToZero, MTL::SamplerAddressModeClampToBorderColor};

TEST_F(Sampler, EachAddressModeNearestAndLinear)
{
    constexpr int Size = 5, First = -12, Count = 29;
    auto* t = counting(Size);
    for (auto mode : Modes) {
        for (bool linear : {false, true}) {
            auto* d = described();
            d->setSAddressMode(mode);
            d->setMinFilter(linear ? MTL::SamplerMinMagFilterLinear : MTL::SamplerMinMagFilterNearest);
            d->setMagFilter(linear ? MTL::SamplerMinMagFilterLinear : MTL::SamplerMinMagFilterNearest);
            // pixel n looks a quarter of a texel before the middle of texel First + n
            float start = (First - 0.25f) / Size, run = static_cast<float>(Count) / Size;
            Picture row = sampled("flat2d", t, state(d), {{start, 0.5f}, {run}, {}}, Count);
            for (int n = 0; n < Count; ++n) {
                int here = addressed(First + n, Size, mode), before = addressed(First + n - 1, Size, mode);
                float wanted = linear ? 0.75f * static_cast<float>(here) + 0.25f * static_cast<float>(before)
                                      : static_cast<float>(here);
                EXPECT_NEAR(row.at(n, 0)[0], wanted, 1e-4)
                    << "mode " << mode << (linear ? ", linear" : ", nearest") << ", texel " << First + n;
            }
        }
    }
}

TEST_F(Sampler, BordersHaveTheirColours)
{
    const struct
    {
        MTL::SamplerBorderColor color;
        Value value;
    } rows[] = {{MTL::SamplerBorderColorTransparentBlack, {0, 0, 0, 0}},
                {MTL::SamplerBorderColorOpaqueBlack, {0, 0, 0, 1}},
                {MTL::SamplerBorderColorOpaqueWhite, {1, 1, 1, 1}}};
    for (const auto& row : rows) {
        auto* d = described();
        d->setSAddressMode(MTL::SamplerAddressModeClampToBorderColor);
        d->setBorderColor(row.color);
        EXPECT_EQ(sampled("flat2d", counting(2), state(d), {{1.5f, 0.5f}, {}, {}}, 1).at(0, 0), row.value) << row.color;
        d->setSAddressMode(MTL::SamplerAddressModeClampToZero);
        EXPECT_EQ(sampled("flat2d", counting(2), state(d), {{1.5f, 0.5f}, {}, {}}, 1).at(0, 0), (Value{0, 0, 0, 0}));
    }
}

TEST_F(Sampler, UnnormalisedCoordinatesCountTexels)
{
    auto* d = described();
    d->setNormalizedCoordinates(false);
    Picture row = sampled("flat2d", counting(6), state(d), {{0, 0.5f}, {6}, {}}, 6);
    for (int x = 0; x < 6; ++x)
        EXPECT_EQ(row.at(x, 0)[0], x + 1);
}

TEST_F(Sampler, SwizzleTakesEachChannelFromAnyOther)
{
    auto* d = textureDescriptor(1, 1, MTL::PixelFormatRGBA32Float);
    d->setUsage(MTL::TextureUsageShaderRead);
    const Value texel = {2, 3, 4, 5};
    for (uint8_t first = 0; first < 6; ++first) {
        auto pick = [&](int n) { return static_cast<MTL::TextureSwizzle>((first + n) % 6); };
        d->setSwizzle({pick(0), pick(1), pick(2), pick(3)});
        auto* t = texture(d);
        t->replaceRegion(MTL::Region(0, 0, 1, 1), 0, texel.data(), sizeof texel);
        Value wanted{};
        for (int c = 0; c < 4; ++c)
            wanted[static_cast<size_t>(c)] = pick(c) == 0   ? 0
                                             : pick(c) == 1 ? 1
                                                            : texel[static_cast<size_t>(pick(c) - 2)];
        EXPECT_EQ(sampled("flat2d", t, state(described()), {{0.5f, 0.5f}, {}, {}}, 1).at(0, 0), wanted) << int{first};
    }
}

TEST_F(Sampler, ViewHasASwizzleOfItsOwn)
{
    auto* d = textureDescriptor(1, 1, MTL::PixelFormatRGBA32Float);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsagePixelFormatView);
    auto* t = texture(d);
    const Value texel = {2, 3, 4, 5};
    t->replaceRegion(MTL::Region(0, 0, 1, 1), 0, texel.data(), sizeof texel);
    auto* view = owned(t->newTextureView(
        MTL::PixelFormatRGBA32Float, MTL::TextureType2D, NS::Range(0, 1), NS::Range(0, 1),
        {MTL::TextureSwizzleAlpha, MTL::TextureSwizzleOne, MTL::TextureSwizzleRed, MTL::TextureSwizzleZero}));
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(view->parentTexture(), t);
    EXPECT_EQ(sampled("flat2d", view, state(described()), {{0.5f, 0.5f}, {}, {}}, 1).at(0, 0), (Value{5, 1, 2, 0}));
    EXPECT_EQ(sampled("flat2d", t, state(described()), {{0.5f, 0.5f}, {}, {}}, 1).at(0, 0), texel);
}

// ---- levels --------------------------------------------------------------------------------------------------------

TEST_F(Sampler, LevelFollowsTheSizeOfAPixel)
{
    auto* t = levels(64);
    for (float texels : {0.5f, 1.0f, 2.0f, 3.0f, 8.0f, 23.0f, 64.0f, 500.0f}) {
        float lod = std::clamp(std::log2(texels), 0.0f, 6.0f);
        auto* d = described();
        Ends ends = {{0, 0}, {texels * 8 / 64, 0}, {0, texels * 8 / 64}}; // texels a pixel, over 8 pixels
        d->setMipFilter(MTL::SamplerMipFilterLinear);
        EXPECT_NEAR(sampled("flat2d", t, state(d), ends, 8, 8).at(3, 3)[0], lod, 1e-3) << texels;
        d->setMipFilter(MTL::SamplerMipFilterNearest);
        EXPECT_EQ(sampled("flat2d", t, state(d), ends, 8, 8).at(3, 3)[0], std::round(lod)) << texels;
        d->setMipFilter(MTL::SamplerMipFilterNotMipmapped);
        EXPECT_EQ(sampled("flat2d", t, state(d), ends, 8, 8).at(3, 3)[0], 0) << texels;
    }
}

TEST_F(Sampler, LevelIsClamped)
{
    auto* d = described();
    d->setMipFilter(MTL::SamplerMipFilterLinear);
    d->setLodMinClamp(1.5f);
    d->setLodMaxClamp(2.25f);
    auto at = [&](float texels) {
        return sampled("flat2d", levels(64), state(d), {{0, 0}, {texels * 8 / 64, 0}, {0, texels * 8 / 64}}, 8, 8)
            .at(3, 3)[0];
    };
    EXPECT_NEAR(at(1), 1.5, 1e-3);
    EXPECT_NEAR(at(4), 2, 1e-3);
    EXPECT_NEAR(at(32), 2.25, 1e-3);
}

TEST_F(Sampler, AnisotropyKeepsTheLevelOfTheShorterSide)
{
    auto* t = levels(256);
    for (NS::UInteger most : {1u, 2u, 4u, 8u, 16u}) {
        for (float longer : {4.0f, 16.0f, 64.0f}) {
            auto* d = described();
            d->setMipFilter(MTL::SamplerMipFilterLinear);
            d->setMinFilter(MTL::SamplerMinMagFilterLinear);
            d->setMaxAnisotropy(most);
            // two texels a pixel along one axis, more along the other
            Ends ends = {{0, 0}, {longer * 8 / 256, 0}, {0, 2.0f * 8 / 256}};
            float ratio = std::min(longer / 2, static_cast<float>(most));
            EXPECT_NEAR(sampled("flat2d", t, state(d), ends, 8, 8).at(3, 3)[0], std::log2(longer / ratio), 0.02)
                << most << " for " << longer;
        }
    }
}

/// Lines of one texel run along the direction in which pixels are long: only anisotropy keeps them apart.
TEST_F(Sampler, AnisotropyKeepsStripesApart)
{
    constexpr NS::UInteger Side = 64;
    auto* td = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatRGBA32Float, Side, Side, true);
    auto* t = texture(td);
    for (NS::UInteger level = 0; level < td->mipmapLevelCount(); ++level) {
        NS::UInteger side = Side >> level;
        std::vector<Value> values(side * side);
        for (NS::UInteger i = 0; i < values.size(); ++i)
            values[i] = {level ? 0.5f : static_cast<float>(i / side % 2), 0, 0, 1};
        t->replaceRegion(MTL::Region(0, 0, side, side), level, values.data(), side * sizeof(Value));
    }
    auto contrast = [&](NS::UInteger most) {
        auto* d = described();
        d->setMipFilter(MTL::SamplerMipFilterLinear);
        d->setMinFilter(MTL::SamplerMinMagFilterLinear);
        d->setMaxAnisotropy(most);
        Picture picture = sampled("flat2d", t, state(d), {{0, 0}, {16.0f * 4 / Side, 0}, {0, 1.0f * 8 / Side}}, 4, 8);
        return std::fabs(picture.at(1, 2)[0] - picture.at(1, 3)[0]);
    };
    EXPECT_LT(contrast(1), 0.01);
    EXPECT_GT(contrast(16), 0.9);
}

/// A comparison chooses its level as a sample does: each level holds another depth.
TEST_F(Sampler, ComparisonsFollowTheLevelToo)
{
    auto* td = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatDepth32Float, 64, 64, true);
    td->setUsage(MTL::TextureUsageShaderRead);
    auto* t = texture(td);
    for (NS::UInteger level = 0; level < 7; ++level) {
        std::vector<float> values((64 >> level) * (64 >> level), level < 3 ? 0.0f : 1.0f);
        t->replaceRegion(MTL::Region(0, 0, 64 >> level, 64 >> level), level, values.data(), (64 >> level) * 4);
    }
    auto at = [&](float texels, MTL::SamplerMipFilter filter) {
        auto* d = described();
        d->setCompareFunction(MTL::CompareFunctionLess);
        d->setMipFilter(filter);
        return sampled("compared", t, state(d), {{0, 0}, {texels * 8 / 64, 0}, {0, texels * 8 / 64}}, 8, 8).at(3, 3)[0];
    };
    EXPECT_EQ(at(1, MTL::SamplerMipFilterNearest), 0);
    EXPECT_EQ(at(16, MTL::SamplerMipFilterNearest), 1);
    EXPECT_EQ(at(16, MTL::SamplerMipFilterNotMipmapped), 0);
    EXPECT_NEAR(at(std::sqrt(32.0f), MTL::SamplerMipFilterLinear), 0.5, 1e-3); // halfway from level 2 to level 3
}

// ---- cubes ---------------------------------------------------------------------------------------------------------

class CubeSampler : public Sampler
{
protected:
    /// Each texel holds its own direction from the middle, so that smooth sampling gives back about what was asked for.
    MTL::Texture* directions(NS::UInteger side)
    {
        auto* d = MTL::TextureDescriptor::textureCubeDescriptor(MTL::PixelFormatRGBA32Float, side, false);
        auto* t = texture(d);
        for (NS::UInteger face = 0; face < 6; ++face) {
            for (NS::UInteger i = 0; i < side * side; ++i) {
                float u = (static_cast<float>(i % side) + 0.5f) / static_cast<float>(side) * 2 - 1;
                float v = (static_cast<float>(i / side) + 0.5f) / static_cast<float>(side) * 2 - 1;
                const Value faces[6] = {{1, -v, -u, 1}, {-1, -v, u, 1}, {u, 1, v, 1},
                                        {u, -1, -v, 1}, {u, -v, 1, 1},  {-u, -v, -1, 1}};
                t->replaceRegion(MTL::Region(i % side, i / side, 1, 1), 0, face, faces[face].data(), sizeof(Value),
                                 sizeof(Value));
            }
        }
        return t;
    }
    MTL::SamplerState* smooth()
    {
        auto* d = described();
        d->setMinFilter(MTL::SamplerMinMagFilterLinear);
        d->setMagFilter(MTL::SamplerMinMagFilterLinear);
        return state(d);
    }
};

constexpr float Axes[3][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

/// Over each of the twelve edges: no step, and the edge itself is the mean of both faces' outermost texels.
TEST_F(CubeSampler, LinearFilteringGoesOnOverEachEdge)
{
    auto* t = directions(4);
    for (int edge = 0; edge < 12; ++edge) {
        const float *a = Axes[edge % 3], *b = Axes[(edge + 1) % 3];
        float sa = edge / 3 & 1 ? -1.0f : 1.0f, sb = edge / 6 ? -1.0f : 1.0f;
        Ends ends{};
        constexpr float Half = 0.01f; // on both sides of the edge
        for (int c = 0; c < 3; ++c) {
            ends.origin[c] = sa * a[c] + sb * b[c] + Half * (sa * a[c] - sb * b[c]);
            ends.across[c] = -2 * Half * (sa * a[c] - sb * b[c]);
        }
        Picture row = sampled("cube", t, smooth(), ends, 16);
        for (int x = 1; x < 16; ++x) {
            for (size_t c = 0; c < 3; ++c)
                EXPECT_NEAR(row.at(x, 0)[c], row.at(x - 1, 0)[c], 0.02) << "edge " << edge << ", step " << x;
        }
        double towardsA = 0, towardsB = 0;
        for (size_t c = 0; c < 3; ++c) {
            towardsA += row.at(8, 0)[c] * sa * a[c];
            towardsB += row.at(8, 0)[c] * sb * b[c];
        }
        EXPECT_NEAR(towardsA, 0.875, 0.02) << edge; // the outermost texels: 1 of the one face, 0.75 of the other
        EXPECT_NEAR(towardsB, 0.875, 0.02) << edge;
    }
}

TEST_F(CubeSampler, CornersAreTheMeanOfThreeFaces)
{
    auto* t = directions(4);
    for (int corner = 0; corner < 8; ++corner) {
        float x = corner & 1 ? -1.0f : 1.0f, y = corner & 2 ? -1.0f : 1.0f, z = corner & 4 ? -1.0f : 1.0f;
        Value v = sampled("cube", t, smooth(), {{x, y, z}, {}, {}}, 1).at(0, 0);
        constexpr float Mean = (1 + 0.75f + 0.75f) / 3;
        EXPECT_NEAR(v[0] * x, Mean, 0.05) << corner;
        EXPECT_NEAR(v[1] * y, Mean, 0.05) << corner;
        EXPECT_NEAR(v[2] * z, Mean, 0.05) << corner;
    }
}

TEST_F(CubeSampler, NearestTakesTheFaceAndTexelOfTheDirection)
{
    auto* t = directions(4);
    for (int axis = 0; axis < 6; ++axis) {
        Value direction = {0.3f, -0.4f, 0.2f, 0};
        direction[static_cast<size_t>(axis % 3)] = axis < 3 ? 1.0f : -1.0f;
        Value v =
            sampled("cube", t, state(described()), {{direction[0], direction[1], direction[2]}, {}, {}}, 1).at(0, 0);
        for (size_t c = 0; c < 3; ++c)
            EXPECT_NEAR(v[c], direction[c], 0.25) << axis;
    }
}

} // namespace raster_test
