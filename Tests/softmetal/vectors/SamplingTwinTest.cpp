// SPDX-License-Identifier: Apache-2.0
// Sampling for all lanes at once against its twin that goes lane by lane: the same bits, for every set of instructions,
// lane count, format, filter and address mode, and for coordinates as wild as a shader may make them.
#include "formats/PixelFormat.h"
#include "texturing/Sampling.h"
#include "texturing/SamplingKernel.h"
#include "vectors/InstructionSet.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace softmetal {
namespace {

using abi::LodMode;
using texturing::SampleLanes;

constexpr uint32_t Type1D = 0, Type2D = 2, Type3D = 7;
constexpr uint32_t A8 = 1, R8 = 10, R16Float = 25, R32Float = 55, Rgba8 = 70, Bgra8 = 80, Rgba16Float = 115,
                   Rgba32Float = 125, Depth16 = 250, Depth32Float = 252, Depth32Stencil8 = 260;
constexpr uint8_t Rgba[4] = {2, 3, 4, 5};

/// A texture with all its levels, filled at random.
struct Image
{
    abi::Texture texture{};
    std::vector<std::vector<uint8_t>> levels;
};

std::unique_ptr<Image> makeImage(std::mt19937& random, uint32_t type, uint32_t format, uint32_t width, uint32_t height, uint32_t depth, bool mips)
{
    auto image = std::make_unique<Image>();
    abi::Texture& t = image->texture;
    t.type = type;
    t.format = format;
    t.width = width;
    t.height = height;
    t.depth = depth;
    t.arrayLength = t.sampleCount = 1;
    std::copy(Rgba, Rgba + 4, t.swizzle);
    if (random() % 4 == 0)
        for (uint8_t& channel : t.swizzle)
            channel = random() % 6;
    uint32_t bytes = formats::pixelFormatInfo(format)->bytes;
    for (bool more = true; more;) {
        uint32_t level = t.levelCount++, w = std::max(width >> level, 1u), h = std::max(height >> level, 1u), d = std::max(depth >> level, 1u);
        std::vector<uint8_t>& data = image->levels.emplace_back(size_t{w} * h * d * bytes);
        for (size_t i = 0; i < data.size(); ++i) data[i] = static_cast<uint8_t>(random());
        if (format == Rgba32Float || format == R32Float || format == Depth32Float || format == Depth32Stencil8)
            for (size_t i = 0; i < data.size(); i += 4) {
                float v = static_cast<float>(static_cast<int32_t>(random() % 2001) - 1000) / 7.0f;
                std::memcpy(data.data() + i, &v, 4);
            }
        t.levels[level] = {data.data(), w, h, d, w * bytes, uint64_t{w} * h * bytes, uint64_t{w} * h * d * bytes};
        more = mips && (w > 1 || h > 1 || d > 1);
    }
    texturing::prepareTexture(t);
    return image;
}

abi::Sampler anySampler(std::mt19937& random)
{
    abi::Sampler s{};
    s.minFilter = random() & 1;
    s.magFilter = random() & 1;
    s.mipFilter = random() % 3;
    s.sAddress = random() % 6;
    s.tAddress = random() % 6;
    s.rAddress = random() % 6;
    s.borderColor = random() % 3;
    s.normalizedCoordinates = random() % 8 != 0;
    s.maxAnisotropy = 1;
    s.lodMinClamp = random() % 4 == 0 ? 1.0f : 0.0f;
    s.lodMaxClamp = random() % 4 == 0 ? 1.5f : 1000.0f;
    return s;
}

float anyCoordinate(std::mt19937& random)
{
    switch (random() % 16) {
    case 0: return std::numeric_limits<float>::quiet_NaN();
    case 1: return std::numeric_limits<float>::infinity();
    case 2: return -3e20f;
    case 3: return 1e-40f;
    default: return static_cast<float>(static_cast<int32_t>(random() % 6001) - 3000) / 1000.0f;
    }
}

abi::SampleCall anyCall(std::mt19937& random)
{
    abi::SampleCall call{};
    call.mask = random() & 0xFFFF;
    if (random() % 4 == 0) call.mask = 0xFFFF;
    if (random() % 4 == 0) call.mask &= 0xFF;
    if (random() % 4 == 0) call.mask &= 0xF;
    call.lodMode = static_cast<LodMode>(random() % 4);
    call.stage = random() & 1;
    for (int32_t& o : call.offset) o = random() % 4 == 0 ? static_cast<int32_t>(random() % 15) - 7 : 0;
    call.minLodClamp = random() % 8 == 0 ? 0.75f : 0.0f;
    bool smooth = random() & 1; // neighbours that lie close together, as on a surface
    for (int axis = 0; axis < 3; ++axis) {
        float start = anyCoordinate(random), step = static_cast<float>(random() % 100) / 1500.0f;
        for (uint32_t i = 0; i < abi::MaxLanes; ++i) {
            call.coordinate[axis].f[i] = smooth ? start + step * static_cast<float>(i) : anyCoordinate(random);
            call.gradientX[axis].f[i] = anyCoordinate(random) / 20;
            call.gradientY[axis].f[i] = anyCoordinate(random) / 20;
        }
    }
    for (uint32_t i = 0; i < abi::MaxLanes; ++i) {
        call.lod.f[i] = static_cast<float>(static_cast<int32_t>(random() % 1200) - 400) / 200.0f;
        for (abi::Lanes& r : call.result) r.f[i] = -77;
    }
    return call;
}

uint32_t bits(float v)
{
    uint32_t b;
    std::memcpy(&b, &v, 4);
    return v == v ? b : 0x7FC00000; // the payload of what is not a number may differ
}

abi::SampleCall laneByLane(const Image& image, const abi::Sampler& sampler, abi::SampleCall call)
{
    texturing::sampleLaneByLane(image.texture, sampler, call);
    return call;
}

void expectTwins(std::mt19937& random, uint32_t type, uint32_t format, int calls)
{
    const auto sample = texturing::runtimeTable().sample;
    // Some as small as a batch, some so large that a batch covers a part; half of them powers of two.
    auto side = [&](uint32_t few, uint32_t bits) { return random() & 1 ? 1u << random() % bits : 1 + random() % few; };
    uint32_t width = side(20, 8), height = type == Type1D ? 1 : side(20, 8), depth = type == Type3D ? side(6, 4) : 1;
    auto image = makeImage(random, type, format, width, height, depth, random() & 1);
    for (int n = 0; n < calls; ++n) {
        abi::Sampler sampler = anySampler(random);
        abi::SampleCall call = anyCall(random), expected = laneByLane(*image, sampler, call), got = call;
        sample(&image->texture, &sampler, &got);
        for (uint32_t lane = 0; lane < abi::MaxLanes; ++lane)
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(bits(got.result[c].f[lane]), bits(expected.result[c].f[lane]))
                    << "lane " << lane << " channel " << c << ": " << got.result[c].f[lane] << " for " << expected.result[c].f[lane] << ", filters "
                    << int(sampler.minFilter) << int(sampler.magFilter) << int(sampler.mipFilter) << ", addresses " << int(sampler.sAddress)
                    << int(sampler.tAddress) << int(sampler.rAddress) << ", mode " << int(call.lodMode) << ", stage " << call.stage;
    }
}

class SamplingTwins : public testing::TestWithParam<std::tuple<uint32_t, uint32_t>>
{
};

TEST_P(SamplingTwins, GiveTheSameBits)
{
    auto [type, format] = GetParam();
    std::mt19937 random(type * 1000 + format);
    for (int images = 0; images < 60; ++images) expectTwins(random, type, format, 25);
}

INSTANTIATE_TEST_SUITE_P(Formats, SamplingTwins,
                         testing::Combine(testing::Values(Type1D, Type2D, Type3D),
                                          testing::Values(A8, R8, R16Float, R32Float, Rgba8, Bgra8, Rgba16Float,
                                                          Rgba32Float, Depth16, Depth32Float, Depth32Stencil8)));

/// Batches as surfaces make them: the pixels of two rows, and coordinates that go evenly, turned or stretched, over the
/// texture.
abi::SampleCall surfaceCall(std::mt19937& random)
{
    abi::SampleCall call{};
    call.mask = 0xFFFF;
    call.stage = 1;
    auto small = [&] { return static_cast<float>(static_cast<int32_t>(random() % 2001) - 1000) / 1000.0f; };
    for (int axis = 0; axis < 3; ++axis) {
        const float start = 3 * small(), scale = random() & 1 ? 0.02f : 0.002f;
        const float across = scale * (random() % 3 ? small() : 0), down = scale * (random() % 3 ? small() : 0);
        for (uint32_t i = 0; i < abi::MaxLanes; ++i)
            call.coordinate[axis].f[i] =
                start + across * static_cast<float>((i >> 2) * 2 + (i & 1)) + down * static_cast<float>(i >> 1 & 1);
    }
    return call;
}

TEST(SamplingTwins, GiveTheSameBitsOnSurfaces)
{
    std::mt19937 random(77);
    const auto sample = texturing::runtimeTable().sample;
    for (uint32_t type : {Type2D, Type3D})
        for (int images = 0; images < 12; ++images) {
            const bool power = images & 1;
            auto image =
                makeImage(random, type, images % 3 ? Rgba8 : Bgra8, power ? 64 : 50 + random() % 80,
                          power ? 128 : 50 + random() % 80, type == Type3D ? 4 + random() % 13 : 1, images & 2);
            for (int n = 0; n < 400; ++n) {
                abi::Sampler sampler = anySampler(random);
                abi::SampleCall call = surfaceCall(random), expected = laneByLane(*image, sampler, call), got = call;
                sample(&image->texture, &sampler, &got);
                for (uint32_t lane = 0; lane < abi::MaxLanes; ++lane)
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(bits(got.result[c].f[lane]), bits(expected.result[c].f[lane]))
                            << "lane " << lane << " channel " << c;
            }
        }
}

/// The compilations that this processor can run, against one another.
TEST(SamplingSets, GiveTheSameBits)
{
    std::mt19937 random(5);
    std::vector<SampleLanes (*)(uint32_t)> sets = {texturing::base::sampleLanesFor};
    if (vectors::instructionSet() >= vectors::InstructionSet::Avx2) sets.push_back(texturing::avx2::sampleLanesFor);
    if (vectors::instructionSet() >= vectors::InstructionSet::Avx512) sets.push_back(texturing::avx512::sampleLanesFor);
    auto image = makeImage(random, Type2D, Bgra8, 13, 32, 1, true);
    for (int n = 0; n < 400; ++n) {
        abi::Sampler sampler = anySampler(random);
        sampler.normalizedCoordinates = 1;
        abi::SampleCall call = anyCall(random);
        call.mask &= 0xF;
        texturing::SampleJob job{&image->texture,
                                 &sampler,
                                 2,
                                 texturing::TexelKind::Bytes,
                                 4,
                                 true,
                                 call.stage == 1 && call.lodMode != LodMode::Level,
                                 {0, 0, 0, 1},
                                 {4, 3, 2, 5}};
        abi::SampleCall first = call;
        sets[0](4)(job, first);
        for (auto set : sets)
            for (uint32_t lanes : {4u, 8u, 16u}) {
                abi::SampleCall got = call;
                set(lanes)(job, got);
                for (uint32_t lane = 0; lane < abi::MaxLanes; ++lane)
                    for (int c = 0; c < 4; ++c) ASSERT_EQ(bits(got.result[c].f[lane]), bits(first.result[c].f[lane])) << lanes << " lanes";
            }
    }
}

} // namespace
} // namespace softmetal
