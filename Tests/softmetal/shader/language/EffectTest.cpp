// SPDX-License-Identifier: Apache-2.0
// What programs do beside giving values: atomic numbers, texels that are written, clip distances, sample masks; and
// what this device does not have.
#include "Language.h"

#include <algorithm>
#include <numeric>

namespace language_test
{

class Effects : public Language
{
protected:
    static constexpr int Side = 16;

    /// Runs a fragment function over Side x Side pixels with a buffer at index 4, whose words it gives back.
    std::vector<int32_t> ran(const std::string& body, std::vector<int32_t> words, const std::string& declarations = {})
    {
        const std::string source = std::string(Numbers) + declarations + R"(
fragment float4 effect(Corner corner [[stage_in]], device atomic_int* words [[buffer(4)]], device atomic_uint* unsignedWords [[buffer(5)]])
{
    int pixel = int(corner.position.y) * 16 + int(corner.position.x);
)" + body + "\nreturn float4(1);\n}\n";
        auto* memory = bufferOf(words);
        draw(pipelineOf(compiled(source), "corner", "effect"), Side, Side, [&](auto* e) {
            e->setFragmentBuffer(memory, 0, 4);
            e->setFragmentBuffer(memory, 0, 5);
        });
        std::copy_n(static_cast<const int32_t*>(memory->contents()), words.size(), words.begin());
        return words;
    }
};

using Words = std::vector<int32_t>;

TEST_F(Effects, AtomicSumsOfAllPixels)
{
    constexpr int Pixels = Side * Side;
    auto words = ran(R"(
    atomic_fetch_add_explicit(&words[0], 1, memory_order_relaxed);
    atomic_fetch_sub_explicit(&words[1], 2, memory_order_relaxed);
    atomic_fetch_add_explicit(&words[2], pixel, memory_order_relaxed);
    if (pixel % 3 == 0) atomic_fetch_add_explicit(&words[3], 1, memory_order_relaxed);)",
                     {0, 0, 0, 0});
    EXPECT_EQ(words, (Words{Pixels, -2 * Pixels, Pixels * (Pixels - 1) / 2, (Pixels + 2) / 3}));
}

TEST_F(Effects, AtomicExtremesAndBits)
{
    auto words = ran(R"(
    atomic_fetch_min_explicit(&words[0], pixel - 100, memory_order_relaxed);
    atomic_fetch_max_explicit(&words[1], 100 - pixel, memory_order_relaxed);
    atomic_fetch_min_explicit(&unsignedWords[2], uint(pixel - 100), memory_order_relaxed);
    atomic_fetch_max_explicit(&unsignedWords[3], uint(pixel - 100), memory_order_relaxed);
    atomic_fetch_or_explicit(&unsignedWords[4], 1u << (pixel % 5), memory_order_relaxed);
    atomic_fetch_and_explicit(&words[5], ~(1 << (pixel % 5)), memory_order_relaxed);
    atomic_fetch_xor_explicit(&words[6], pixel, memory_order_relaxed);)",
                     {0, 0, -1, 0, 0, 0xFF, 7});
    EXPECT_EQ(words, (Words{-100, 100, 0, -1, 31, 0xE0, 7})); // the exclusive or of 0 to 255 is 0
}

/// Each pixel takes a ticket; all tickets differ.
TEST_F(Effects, AtomicResultsAreWhatWasThere)
{
    Words words(1 + Side * Side, 0);
    words = ran(R"(
    int ticket = atomic_fetch_add_explicit(&words[0], 1, memory_order_relaxed);
    atomic_store_explicit(&words[1 + pixel], ticket, memory_order_relaxed);)",
                words);
    std::sort(words.begin() + 1, words.end());
    for (int i = 0; i < Side * Side; ++i)
        ASSERT_EQ(words[static_cast<size_t>(1 + i)], i);
}

TEST_F(Effects, AtomicExchangesAndComparisons)
{
    auto words = ran(R"(
    int expected = 0;
    if (atomic_compare_exchange_weak_explicit(&words[0], &expected, pixel + 1, memory_order_relaxed, memory_order_relaxed))
        atomic_fetch_add_explicit(&words[1], 1, memory_order_relaxed);
    else if (expected == 0) atomic_fetch_add_explicit(&words[2], 1, memory_order_relaxed);
    int before = atomic_exchange_explicit(&words[3], pixel, memory_order_relaxed);
    if (before == -1) atomic_fetch_add_explicit(&words[4], 1, memory_order_relaxed);
    if (atomic_load_explicit(&words[5], memory_order_relaxed) == 9) atomic_fetch_add_explicit(&words[6], 1, memory_order_relaxed);)",
                     {0, 0, 0, -1, 0, 9, 0});
    EXPECT_NE(words[0], 0);
    EXPECT_EQ(words[1], 1); // one pixel came first
    EXPECT_EQ(words[2], 0);
    EXPECT_GE(words[3], 0);
    EXPECT_EQ(words[4], 1);
    EXPECT_EQ(words[6], Side * Side);
}

TEST_F(Effects, AtomicOperationsOutsideTheBufferAreNone)
{
    auto words = ran("atomic_fetch_add_explicit(&words[pixel * 1000], 1, memory_order_relaxed);", {0, 0});
    EXPECT_EQ(words, (Words{1, 0}));
    EXPECT_EQ(broken(), rules({"shader.buffer-range"}));
}

TEST_F(Effects, DiscardedPixelsDoNothingAfterwards)
{
    auto words =
        ran("if (pixel % 2) discard_fragment(); atomic_fetch_add_explicit(&words[0], 1, memory_order_relaxed);", {0});
    EXPECT_EQ(words, (Words{Side * Side / 2}));
}

// ---- texels --------------------------------------------------------------------------------------------------------

TEST_F(Effects, TexelsAreWrittenInEachType)
{
    const std::string source = std::string(Numbers) + R"(
fragment float4 writes(Corner corner [[stage_in]], texture2d<float, access::write> plane [[texture(0)]], texture3d<half, access::write> volume [[texture(1)]],
                       texture2d_array<uint, access::read_write> layers [[texture(2)]], texture2d<float, access::write> nothing [[texture(3)]])
{
    uint2 at = uint2(corner.position.xy);
    plane.write(float4(at.x, at.y, 7, 1), at);
    volume.write(half4(0.5h, 0.25h, 0, 1), uint3(at, 1));
    layers.write(layers.read(at, 1) + uint4(at.x, 0, 0, 1), ushort2(at), 2);
    plane.write(float4(-1), at + 100);
    nothing.write(float4(1), at);
    return float4(is_null_texture(nothing), is_null_texture(plane), 0, 1);
}
)";
    auto described = [&](MTL::TextureType type, MTL::PixelFormat format) {
        auto* d = textureDescriptor(4, 4, format);
        d->setTextureType(type);
        d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageShaderWrite);
        return d;
    };
    auto* plane = texture(described(MTL::TextureType2D, MTL::PixelFormatRGBA32Float));
    auto* deep = described(MTL::TextureType3D, MTL::PixelFormatRGBA8Unorm);
    deep->setDepth(2);
    auto* volume = texture(deep);
    auto* many = described(MTL::TextureType2DArray, MTL::PixelFormatRGBA8Uint);
    many->setArrayLength(3);
    auto* layers = texture(many);
    const std::vector<uint8_t> tens(4 * 4 * 4, 10);
    layers->replaceRegion(MTL::Region(0, 0, 4, 4), 0, 1, tens.data(), 16, 64);
    auto values = draw(pipelineOf(compiled(source), "corner", "writes"), 4, 4, [&](auto* e) {
        const MTL::Texture* all[] = {plane, volume, layers};
        e->setFragmentTextures(all, NS::Range(0, 3));
    });
    EXPECT_EQ(values[0], (Value{1, 0, 0, 1}));
    Value first{};
    plane->getBytes(first.data(), sizeof first, MTL::Region(2, 3, 1, 1), 0);
    EXPECT_EQ(first, (Value{2, 3, 7, 1}));
    device_test::Pixel second{}, third{};
    volume->getBytes(second.data(), 4, 4, MTL::Region(1, 1, 1, 1, 1, 1), 0, 0);
    EXPECT_EQ(second, (device_test::Pixel{128, 64, 0, 255}));
    layers->getBytes(third.data(), 4, 4, MTL::Region(3, 1, 1, 1), 0, 2);
    EXPECT_EQ(third, (device_test::Pixel{13, 10, 10, 11}));
    SoftMetal::takeMessages(); // the empty slot is reported as for any texture
}

TEST_F(Effects, AThreadReadsBehindTheFenceWhatItWrote)
{
    const std::string source = std::string(Numbers) + R"(
fragment float4 counts(Corner corner [[stage_in]], texture2d<uint, access::read_write> image [[texture(0)]])
{
    uint2 at = uint2(corner.position.xy);
    uint before = image.read(at).x;
    image.write(uint4(before + 1), at);
    image.fence();
    uint between = image.read(at).x;
    image.write(uint4(between + 1), at);
    image.fence();
    return float4(before, between, image.read(at).x, 1);
}
)";
    auto* d = textureDescriptor(4, 4, MTL::PixelFormatRGBA8Uint);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageShaderWrite);
    auto* image = texture(d);
    const std::vector<uint8_t> tens(4 * 4 * 4, 10);
    image->replaceRegion(MTL::Region(0, 0, 4, 4), 0, tens.data(), 16);
    auto values = draw(pipelineOf(compiled(source), "corner", "counts"), 4, 4,
                       [&](auto* e) { e->setFragmentTexture(image, 0); });
    for (const Value& value : values)
        EXPECT_EQ(value, (Value{10, 11, 12, 1}));
    EXPECT_NE(refusal("fragment float4 f(texture2d<float, access::write> t [[texture(0)]]) { t.fence(); return 0; }")
                  .find("has a fence"),
              std::string::npos);
}

TEST_F(Effects, WritingNeedsTheAccess)
{
    EXPECT_NE(
        refusal("fragment float4 f(texture2d<float> t [[texture(0)]]) { t.write(float4(1), uint2(0)); return 0; }")
            .find("does not allow writing"),
        std::string::npos);
}

TEST_F(Effects, GatheredComparisonsAreThoseOfTheFourTexels)
{
    auto* d = textureDescriptor(2, 2, MTL::PixelFormatDepth32Float);
    auto* depths = texture(d);
    const float values[] = {0.1f, 0.2f, 0.3f, 0.4f};
    depths->replaceRegion(MTL::Region(0, 0, 2, 2), 0, values, 8);
    expectValues({{"t.gather_compare(c, float2(0.5), 0.25)", {1, 1, 0, 0}},
                  {"t.gather_compare(c, float2(0.5), x)", {0, 0, 0, 0}}},
                 {}, 0, ", depth2d<float> t [[texture(0)]], sampler c [[sampler(0)]]", [&](auto* e) {
                     auto* s = owned(MTL::SamplerDescriptor::alloc()->init());
                     s->setCompareFunction(MTL::CompareFunctionLess);
                     e->setFragmentTexture(depths, 0);
                     e->setFragmentSamplerState(owned(device->newSamplerState(s)), 0);
                 });
}

// ---- coverage ------------------------------------------------------------------------------------------------------

TEST_F(Effects, ClipDistancesCutWhereOneIsBelowZero)
{
    const std::string source = std::string(Numbers) + R"(
struct Cut { float4 position [[position]]; float distances [[clip_distance]] [2]; };
vertex Cut cut(uint id [[vertex_id]])
{
    Cut c;
    c.position = float4(id == 1 ? 3 : -1, id == 2 ? 3 : -1, 0.25, 1);
    c.distances[0] = c.position.x + 0.5;  // from a quarter of the width on
    c.distances[1] = 0.5 - c.position.x;  // to three quarters
    return c;
}
fragment float4 one() { return float4(1); }
)";
    auto values = draw(pipelineOf(compiled(source), "cut", "one"), 8, 2);
    for (size_t x = 0; x < 8; ++x)
        EXPECT_EQ(values[x][0], x >= 2 && x < 6 ? 1 : 0) << x;
}

TEST_F(Effects, TooManyClipDistancesAreRefused)
{
    const std::string source = "struct Cut { float4 position [[position]]; float d [[clip_distance]] [9]; };\nvertex "
                               "Cut cut() { Cut c; return c; }";
    EXPECT_NE(refusal(source).find("more clip distances"), std::string::npos) << refusal(source);
}

TEST_F(Effects, SampleMaskOfNoneLeavesThePixel)
{
    const std::string source = std::string(Numbers) + R"(
struct Masked { float4 color [[color(0)]]; uint mask [[sample_mask]]; };
fragment Masked masked(Corner corner [[stage_in]], uint sample [[sample_id]])
{
    Masked m;
    m.color = float4(1, sample, 0, 1);
    m.mask = uint(corner.position.x) % 2 ? 0xfe : 1;
    return m;
}
)";
    auto values = draw(pipelineOf(compiled(source), "corner", "masked"), 8, 2);
    for (size_t x = 0; x < 8; ++x)
        EXPECT_EQ(values[x], (x % 2 ? Value{0, 0, 0, 0} : Value{1, 0, 0, 1})) << x;
}

// ---- the rest of the library ---------------------------------------------------------------------------------------

TEST_F(Effects, StepsOfVectorsAndRangesOfNumbers)
{
    expectValues(
        {
            {"counted(i)", {7 + 8, -3 + -2, 100 + 101, 5 + 6}},
            {"numeric_limits<int>::max() == INT_MAX && numeric_limits<int>::min() == INT_MIN", {1}},
            {"numeric_limits<float>::max()", {3.402823466e+38f}},
            {"numeric_limits<half>::lowest()", {-65504}},
            {"M_PI_H", {3.140625f}},
            {"LONG_MAX > INT_MAX", {1}},
        },
        "int4 counted(int4 a) { int4 before = a++; return before + a; }\n");
}

TEST_F(Effects, HalvesArePackedAsFloatsAre)
{
    expectValues({
        {"pack_half_to_unorm4x8(half4(1, 0, 0.5h, 1)) == pack_float_to_unorm4x8(float4(1, 0, 0.5, 1))", {1}},
        {"pack_half_to_snorm2x16(half2(-1, 0.5h)) == pack_float_to_snorm2x16(float2(-1, 0.5))", {1}},
        {"pack_float_to_unorm565(float3(1, 0.5, 0))", {31 << 11 | 32 << 5}},
        {"unpack_unorm565_to_half(ushort(0xf800))", {1, 0, 0}},
        {"unpack_unorm4x8_to_half(0xff0000ffu)", {1, 0, 0, 1}},
        {"unpack_snorm4x8_to_half(0x0000817fu)", {1, -1, 0, 0}},
    });
}

TEST_F(Effects, ArgumentBuffersAreRefused)
{
    const std::string source = std::string(Numbers) + R"(
struct Arguments { texture2d<half> image [[id(0)]]; sampler smp [[id(1)]]; };
fragment half4 f(Corner corner [[stage_in]], constant Arguments& a [[buffer(0)]]) { return a.image.sample(a.smp, float2(0.5)); }
)";
    auto* made = compiled(source);
    auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
    d->setVertexFunction(owned(made->newFunction(device_test::text("corner"))));
    d->setFragmentFunction(owned(made->newFunction(device_test::text("f"))));
    d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
    NS::Error* error = nullptr;
    EXPECT_EQ(device->newRenderPipelineState(d, &error), nullptr);
    ASSERT_NE(error, nullptr);
    EXPECT_NE(std::string(error->localizedDescription()->utf8String()).find("a pointer is read from a buffer"),
              std::string::npos);
}

TEST_F(Effects, ArraysOfSamplersAreIndexed)
{
    auto* t = texture(2, 1, MTL::PixelFormatRGBA32Float);
    const Value texels[] = {{0, 0, 0, 0}, {4, 0, 0, 0}};
    t->replaceRegion(MTL::Region(0, 0, 2, 1), 0, texels, sizeof texels);
    auto state = [&](MTL::SamplerMinMagFilter filter) {
        auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
        d->setMagFilter(filter);
        d->setMinFilter(filter);
        return owned(device->newSamplerState(d));
    };
    const MTL::SamplerState* both[] = {state(MTL::SamplerMinMagFilterNearest), state(MTL::SamplerMinMagFilterLinear)};
    expectValues({{"t.sample(s[i.x & 1], float2(0.5))", {2}}, {"t.sample(s[j.x & 1], float2(0.5))", {4}}}, {}, 0,
                 ", texture2d<float> t [[texture(0)]], array<sampler, 2> s [[sampler(0)]]", [&](auto* e) {
                     e->setFragmentTexture(t, 0);
                     e->setFragmentSamplerStates(both, NS::Range(0, 2));
                 });
}

TEST_F(Effects, DestinationColourIsNotAnInput)
{
    EXPECT_NE(refusal("fragment float4 f(float4 there [[color(0)]]) { return there; }").find("has no meaning here"),
              std::string::npos);
}

} // namespace language_test
