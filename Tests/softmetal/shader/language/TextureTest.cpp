// SPDX-License-Identifier: Apache-2.0
// Textures of every type as a program sees them: sizes, reads, samples with their options, samplers written in the program.
#include "Language.h"

namespace language_test {

class Textures : public Language
{
protected:
    struct Shape
    {
        MTL::TextureType type;
        NS::UInteger width, height, depth, layers, levels;
    };

    /// Each texel is (x, y, z or slice, level), but that a depth texture has x + 10 y + 100 slice.
    MTL::Texture* numbered(const Shape& shape, MTL::PixelFormat format = MTL::PixelFormatRGBA32Float)
    {
        auto* d = owned(MTL::TextureDescriptor::alloc()->init());
        d->setTextureType(shape.type);
        d->setPixelFormat(format);
        d->setWidth(shape.width);
        d->setHeight(shape.height);
        d->setDepth(shape.depth);
        d->setArrayLength(shape.layers);
        d->setMipmapLevelCount(shape.levels);
        auto* t = texture(d);
        bool cube = shape.type == MTL::TextureTypeCube || shape.type == MTL::TextureTypeCubeArray;
        for (NS::UInteger level = 0; level < shape.levels; ++level)
            for (NS::UInteger slice = 0; slice < shape.layers * (cube ? 6 : 1); ++slice) fill(t, shape, level, slice, format == MTL::PixelFormatDepth32Float);
        return t;
    }

    MTL::Texture* plane(NS::UInteger levels = 1) { return numbered({MTL::TextureType2D, 4, 4, 1, 1, levels}); }

    /// Expressions that read "t", declared as given and bound with the texture, and "s", a default sampler.
    void expectTexture(const char* declared, MTL::Texture* t, const std::vector<Row>& rows, const std::string& declarations = {},
                       float tolerance = 1e-5f)
    {
        expectValues(rows, declarations, tolerance, std::string(", ") + declared + " t [[texture(0)]], sampler s [[sampler(0)]]", [&](auto* e) {
            e->setFragmentTexture(t, 0);
            auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
            d->setMinFilter(MTL::SamplerMinMagFilterNearest);
            d->setMipFilter(MTL::SamplerMipFilterNearest);
            e->setFragmentSamplerState(owned(device->newSamplerState(d)), 0);
        });
    }

private:
    static void fill(MTL::Texture* t, const Shape& shape, NS::UInteger level, NS::UInteger slice, bool depthTexture)
    {
        auto at = [&](NS::UInteger size) { return std::max<NS::UInteger>(1, size >> level); };
        NS::UInteger w = at(shape.width), h = at(shape.height), d = at(shape.depth);
        std::vector<float> texels;
        for (NS::UInteger z = 0; z < d; ++z)
            for (NS::UInteger y = 0; y < h; ++y)
                for (NS::UInteger x = 0; x < w; ++x) {
                    if (depthTexture) texels.push_back(static_cast<float>(x + 10 * y + 100 * slice) / 1000);
                    else for (NS::UInteger v : {x, y, z + slice, level}) texels.push_back(static_cast<float>(v));
                }
        NS::UInteger texel = depthTexture ? 4 : 16;
        t->replaceRegion(MTL::Region(0, 0, 0, w, h, d), level, slice, texels.data(), w * texel, w * h * texel);
    }
};

TEST_F(Textures, OneDimensional)
{
    expectTexture("texture1d<float>", numbered({MTL::TextureType1D, 8, 1, 1, 1, 1}),
                  {{"t.get_width()", {8}}, {"t.get_num_mip_levels()", {1}}, {"t.read(5u)", {5, 0, 0, 0}}, {"t.sample(s, 0.3)", {2, 0, 0, 0}}});
}

TEST_F(Textures, OneDimensionalArray)
{
    expectTexture("texture1d_array<float>", numbered({MTL::TextureType1DArray, 8, 1, 1, 3, 1}),
                  {{"t.get_array_size()", {3}}, {"t.read(5u, 2u)", {5, 0, 2, 0}}, {"t.sample(s, 0.3, 1)", {2, 0, 1, 0}}});
}

TEST_F(Textures, TwoDimensional)
{
    expectTexture("texture2d<float>", numbered({MTL::TextureType2D, 8, 4, 1, 1, 4}),
                  {
                      {"float2(t.get_width(), t.get_height())", {8, 4}},
                      {"float2(t.get_width(1), t.get_height(3))", {4, 1}},
                      {"t.get_num_mip_levels()", {4}},
                      {"t.read(uint2(6, 3))", {6, 3, 0, 0}},
                      {"t.read(uint2(2, 1), 1)", {2, 1, 0, 1}},
                      {"t.read(ushort2(1, 2))", {1, 2, 0, 0}},
                      {"t.sample(s, float2(0.3, 0.6))", {2, 2, 0, 0}},
                      {"t.sample(s, float2(0.3, 0.6), level(1))", {1, 1, 0, 1}},
                      {"t.sample(s, float2(0.3, 0.6), level(0), int2(1, -1))", {3, 1, 0, 0}},
                      {"t.sample(s, float2(0.3, 0.6), int2(2, 0))", {4, 2, 0, 0}},
                      {"t.sample(s, float2(0.1), gradient2d(float2(0.25, 0), float2(0))).w", {1}},
                      {"t.sample(s, float2(0.1), min_lod_clamp(2)).w", {2}},
                      {"t.sample(s, float2(0.1), level(5)).w", {3}},
                  });
}

TEST_F(Textures, LevelFollowsTheDerivativesAndABias)
{
    const std::string source = std::string(Numbers) + R"(
constexpr sampler s(mip_filter::nearest);
fragment float4 out(Corner c [[stage_in]], texture2d<float> t [[texture(0)]])
{
    float2 at = c.position.xy / 4; // two texels a pixel
    return float4(t.sample(s, at).w, t.sample(s, at, bias(1)).w, t.sample(s, at, bias(-1)).w, t.sample(s, at * 2, bias(0)).w);
}
)";
    auto* t = numbered({MTL::TextureType2D, 8, 8, 1, 1, 4});
    auto values = draw(pipelineOf(compiled(source), "corner", "out"), 4, 4, [&](auto* e) { e->setFragmentTexture(t, 0); });
    EXPECT_EQ(values[5], (Value{1, 2, 0, 2}));
}

TEST_F(Textures, LevelOfDetailIsToldClampedAndNot)
{
    struct LevelRow
    {
        MTL::TextureType type;
        const char* declared;
        const char* at; // four texels a pixel along the first axis, where there is a level for it
    };
    constexpr LevelRow rows[] = {
        {MTL::TextureType2D, "texture2d<float>", "float2(p.x / 2, 0)"},
        {MTL::TextureType2DArray, "texture2d_array<float>", "float2(p.x / 2, 0)"},
        {MTL::TextureType3D, "texture3d<float>", "float3(p.x / 2, 0, 0)"},
        {MTL::TextureTypeCube, "texturecube<float>", "float3(p.x, 0, 100)"},
        {MTL::TextureTypeCubeArray, "texturecube_array<float>", "float3(p.x, 0, 100)"},
    };
    for (const LevelRow& row : rows) {
        const bool cube = row.type == MTL::TextureTypeCube || row.type == MTL::TextureTypeCubeArray;
        const bool array = row.type == MTL::TextureType2DArray || row.type == MTL::TextureTypeCubeArray;
        const NS::UInteger depth = row.type == MTL::TextureType3D ? 8 : 1;
        auto* t = numbered({row.type, 8, 8, depth, array ? 2u : 1u, 2});
        const std::string source =
            std::string(Numbers) +
            "constexpr sampler s(lod_clamp(0.25, 9));\nfragment float4 out(Corner c [[stage_in]], " + row.declared +
            " t [[texture(0)]]) { float4 p = c.position; return float4(t.calculate_clamped_lod(s, " + row.at +
            "), t.calculate_unclamped_lod(s, " + row.at + "), t.get_num_mip_levels(), 1); }\n";
        auto values =
            draw(pipelineOf(compiled(source), "corner", "out"), 2, 2, [&](auto* e) { e->setFragmentTexture(t, 0); });
        EXPECT_NEAR(values[0][0], cube ? 0.25f : 1.0f, 1e-5)
            << row.declared; // no level beyond the last, none before the clamp
        EXPECT_NEAR(values[0][1], cube ? std::log2(0.04f) : 2.0f, 1e-4) << row.declared;
        EXPECT_EQ(values[0][2], 2) << row.declared;
    }
}

TEST_F(Textures, LevelOfDetailOfDepthIsTold)
{
    const std::string source = std::string(Numbers) + R"(
constexpr sampler s(filter::nearest);
fragment float4 out(Corner c [[stage_in]], depth2d<float> t [[texture(0)]])
{
    float2 at = c.position.xy / 4;
    return float4(t.calculate_unclamped_lod(s, at), t.calculate_clamped_lod(s, at), t.calculate_clamped_lod(s, at * 64), 1);
}
)";
    auto* t = numbered({MTL::TextureType2D, 8, 8, 1, 1, 4}, MTL::PixelFormatDepth32Float);
    auto values =
        draw(pipelineOf(compiled(source), "corner", "out"), 2, 2, [&](auto* e) { e->setFragmentTexture(t, 0); });
    EXPECT_EQ(values[0], (Value{1, 1, 3, 1}));
}

TEST_F(Textures, TwoDimensionalArray)
{
    expectTexture("texture2d_array<float>", numbered({MTL::TextureType2DArray, 4, 4, 1, 3, 2}),
                  {
                      {"float3(t.get_width(), t.get_height(), t.get_array_size())", {4, 4, 3}},
                      {"t.read(uint2(1, 2), 2)", {1, 2, 2, 0}},
                      {"t.read(uint2(1, 0), 2, 1)", {1, 0, 2, 1}},
                      {"t.sample(s, float2(0.3, 0.6), 1)", {1, 2, 1, 0}},
                      {"t.sample(s, float2(0.3, 0.6), 1, level(1))", {0, 1, 1, 1}},
                      {"t.sample(s, float2(0.3, 0.6), 9).z", {2}},
                  });
}

TEST_F(Textures, ThreeDimensional)
{
    expectTexture("texture3d<float>", numbered({MTL::TextureType3D, 4, 4, 4, 1, 2}),
                  {
                      {"float3(t.get_width(), t.get_height(), t.get_depth())", {4, 4, 4}},
                      {"t.get_depth(1)", {2}},
                      {"t.read(uint3(1, 2, 3))", {1, 2, 3, 0}},
                      {"t.sample(s, float3(0.3, 0.6, 0.9))", {1, 2, 3, 0}},
                      {"t.sample(s, float3(0.3, 0.6, 0.9), level(1))", {0, 1, 1, 1}},
                      {"t.sample(s, float3(0.1), gradient3d(float3(0.5, 0, 0), float3(0))).w", {1}},
                  });
}

TEST_F(Textures, Cubes)
{
    expectTexture("texturecube<float>", numbered({MTL::TextureTypeCube, 4, 4, 1, 1, 2}),
                  {
                      {"float2(t.get_width(), t.get_height())", {4, 4}},
                      {"t.sample(s, float3(1, 0.1, -0.1)).z", {0}},
                      {"t.sample(s, float3(-1, 0.1, -0.1)).z", {1}},
                      {"t.sample(s, float3(0.1, 1, -0.1)).z", {2}},
                      {"t.sample(s, float3(0.1, -1, -0.1)).z", {3}},
                      {"t.sample(s, float3(0.1, -0.1, 1)).z", {4}},
                      {"t.sample(s, float3(0.1, -0.1, -1)).z", {5}},
                      {"t.sample(s, float3(0, 0, 2), level(1)).w", {1}},
                      {"t.read(uint2(1, 2), 3)", {1, 2, 3, 0}},
                  });
}

TEST_F(Textures, CubeArrays)
{
    expectTexture("texturecube_array<float>", numbered({MTL::TextureTypeCubeArray, 4, 4, 1, 2, 1}),
                  {{"t.get_array_size()", {2}}, {"t.sample(s, float3(0.1, 1, -0.1), 1).z", {8}}, {"t.read(uint2(1, 2), 3, 1)", {1, 2, 9, 0}}});
}

TEST_F(Textures, Depth)
{
    expectTexture("depth2d<float>", numbered({MTL::TextureType2D, 4, 4, 1, 1, 1}, MTL::PixelFormatDepth32Float),
                  {
                      {"t.get_width()", {4}},
                      {"t.read(uint2(2, 1))", {0.012f}},
                      {"t.sample(s, float2(0.3, 0.6))", {0.021f}},
                      {"t.sample(s, float2(0.3, 0.6), level(0))", {0.021f}},
                      {"t.sample_compare(less, float2(0.3, 0.6), 0.02)", {1}},
                      {"t.sample_compare(less, float2(0.3, 0.6), 0.03)", {0}},
                      {"t.sample_compare(smooth, float2(0.5, 0.5), 0.0125, level(0))", {0.5f}},
                      {"t.gather(s, float2(0.5, 0.5))", {0.021f, 0.022f, 0.012f, 0.011f}},
                  },
                  "constexpr sampler less(compare_func::less);\nconstexpr sampler smooth(filter::linear, compare_func::less);\n");
}

TEST_F(Textures, DepthArraysAndCubes)
{
    expectTexture("depth2d_array<float>",
                  numbered({MTL::TextureType2DArray, 4, 4, 1, 2, 1}, MTL::PixelFormatDepth32Float),
                  {{"t.get_array_size()", {2}},
                   {"t.sample(s, float2(0.3, 0.6), 1)", {0.121f}},
                   {"t.read(uint2(1, 2), 1)", {0.121f}},
                   {"t.sample_compare(less, float2(0.3, 0.6), 1, 0.12)", {1}},
                   {"t.sample_compare(less, float2(0.3, 0.6), 1, 0.12, level(0), min_lod_clamp(0))", {1}},
                   {"t.sample_compare(less, float2(0.3, 0.6), 1, 0.12, int2(-1, 0))", {0}},
                   {"t.gather(less, float2(0.5, 0.5), 1)", {0.121f, 0.122f, 0.112f, 0.111f}},
                   {"t.gather_compare(less, float2(0.5, 0.5), 1, 0.115)", {1, 1, 0, 0}}},
                  "constexpr sampler less(compare_func::less);\n");
    expectTexture("depthcube<float>", numbered({MTL::TextureTypeCube, 4, 4, 1, 1, 1}, MTL::PixelFormatDepth32Float),
                  {{"t.get_width()", {4}}, {"floor(t.sample(s, float3(0.1, 1, 0.1)) * 10)", {2}},
                   {"t.sample_compare(less, float3(0.1, 1, 0.1), 0.1)", {1}}},
                  "constexpr sampler less(compare_func::less);\n");
}

TEST_F(Textures, IntegersAndHalves)
{
    auto* counted = owned(device->newTexture(textureDescriptor(2, 1, MTL::PixelFormatRGBA16Uint)));
    const uint16_t texels[8] = {1, 2, 3, 4, 5, 6, 7, 65535};
    counted->replaceRegion(MTL::Region(0, 0, 2, 1), 0, texels, 16);
    expectTexture("texture2d<uint>", counted, {{"t.read(uint2(1, 0))", {5, 6, 7, 65535}}, {"t.sample(s, float2(0.1))", {1, 2, 3, 4}}});
    expectTexture("texture2d<ushort>", counted, {{"t.read(uint2(1, 0))", {5, 6, 7, 65535}}});
    auto* negative = owned(device->newTexture(textureDescriptor(1, 1, MTL::PixelFormatRGBA8Sint)));
    const int8_t bytes[4] = {-1, 2, -128, 127};
    negative->replaceRegion(MTL::Region(0, 0, 1, 1), 0, bytes, 4);
    expectTexture("texture2d<int>", negative, {{"t.read(uint2(0, 0))", {-1, 2, -128, 127}}});
    expectTexture("texture2d<short>", negative, {{"t.read(uint2(0, 0))", {-1, 2, -128, 127}}});
    expectTexture("texture2d<half>", plane(), {{"t.read(uint2(3, 2))", {3, 2, 0, 0}}, {"t.sample(s, float2(0.9)).x * 0.5h", {1.5f}}});
}

TEST_F(Textures, SamplersAreWrittenInTheProgram)
{
    expectTexture("texture2d<float>", plane(3),
                  {
                      {"t.sample(pixels, float2(2.5, 1.5))", {2, 1, 0, 0}},
                      {"t.sample(repeats, float2(1.3, -0.1)).xy", {1, 3}},
                      {"t.sample(mirrors, float2(1.1, -0.4)).xy", {3, 1}},
                      {"t.sample(edges, float2(1.3, -0.3)).xy", {3, 0}},
                      {"t.sample(zeros, float2(1.3, 0.3)).xy", {0, 0}},
                      {"t.sample(borders, float2(1.3, 0.3))", {1, 1, 1, 1}},
                      {"t.sample(mixed, float2(1.3, 1.3)).xy", {1, 3}},
                      {"t.sample(linear, float2(0.5, 0.5)).xy", {1.5f, 1.5f}},
                      {"t.sample(levels, float2(0.5), level(0.5)).w", {0.5f}},
                      {"t.sample(clamped, float2(0.5), level(0)).w", {1}},
                      {"t.sample(local(), float2(0.5, 0.5)).xy", {2, 2}},
                      {"t.gather(linear, float2(0.5, 0.5))", {1, 2, 2, 1}},
                      {"t.gather(linear, float2(0.5, 0.5), int2(0), component::y)", {2, 2, 1, 1}},
                  },
                  R"(
constexpr sampler pixels(coord::pixel, filter::nearest);
constexpr sampler repeats(address::repeat);
constexpr sampler mirrors(address::mirrored_repeat);
constexpr sampler edges(address::clamp_to_edge);
constexpr sampler zeros(address::clamp_to_zero);
constexpr sampler borders(address::clamp_to_border, border_color::opaque_white);
constexpr sampler mixed(s_address::repeat, t_address::clamp_to_edge, r_address::repeat, mag_filter::nearest, min_filter::nearest);
constexpr sampler linear(filter::linear, max_anisotropy(4));
constexpr sampler levels(mip_filter::linear);
constexpr sampler clamped(mip_filter::nearest, lod_clamp(1.0f, 2.0f));
sampler local() { constexpr sampler s(coord::normalized, address::repeat, filter::nearest); return s; }
)");
}

TEST_F(Textures, AreHandedToFunctionsAndHeldInArrays)
{
    auto* t = plane();
    expectValues({{"taken(t[0], s)", {2, 2, 0, 0}}, {"both(t, s)", {4, 4, 0, 0}}, {"picked(t, s, n.i.w - 4)", {2, 2, 0, 0}}, {"t[n.i.w - 4].get_height()", {4}}, {"t[1].get_width()", {4}}},
                 R"(
float4 taken(texture2d<float> a, sampler b) { return a.sample(b, float2(0.6)); }
float4 both(array<texture2d<float>, 2> a, sampler b) { float4 r = 0; for (int k = 0; k < 2; ++k) r += a[k].sample(b, float2(0.6)); return r; }
float4 picked(array<texture2d<float>, 2> a, sampler b, int which) { return a[which].sample(b, float2(0.6)); }
)",
                 0, ", array<texture2d<float>, 2> t [[texture(0)]], sampler s [[sampler(0)]]", [&](auto* e) {
                     e->setFragmentTexture(t, 0);
                     e->setFragmentTexture(t, 1);
                     e->setFragmentSamplerState(sampler(), 0);
                 });
}

TEST_F(Textures, AreReadInTheVertexStage)
{
    const std::string source = std::string(Numbers) + R"(
struct Sent { float4 position [[position]]; float4 value [[flat]]; };
vertex Sent in(uint id [[vertex_id]], texture2d<float> t [[texture(2)]], sampler s [[sampler(1)]])
{
    return {corner(id).position, t.sample(s, float2(0.6), level(1)) + t.read(uint2(1, 0))};
}
fragment float4 out(Sent r [[stage_in]]) { return r.value; }
)";
    auto* t = plane(2);
    auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
    d->setMipFilter(MTL::SamplerMipFilterNearest);
    auto* s = owned(device->newSamplerState(d));
    auto values = draw(pipelineOf(compiled(source), "in", "out"), 1, 1, [&](auto* e) {
        e->setVertexTexture(t, 2);
        e->setVertexSamplerState(s, 1);
    });
    EXPECT_EQ(values[0], (Value{2, 1, 0, 1}));
}

} // namespace language_test
