// SPDX-License-Identifier: Apache-2.0
// Copies by drawing: exact, in any format, upside down on request, and through a texture in between where they must.
#include "Logged.h"
#include "Pattern.h"
#include "ScopedPool.h"
#include "ZALMetalBlitter.h"
#include "ZALMetalContext.h"
#include "support/ContextFixture.h"

#include <algorithm>
#include <cstring>
#include <exception>

namespace {

using contexts::places;

/// The text that the device compiles, spelled out once more.
constexpr const char* WholeSource = R"(#include <simd/simd.h>
#include <metal_stdlib>
enum ZAL_VSH_INPUT { ZAL_VSH_VERTEX = 0, ZAL_VSH_USER0 = 1, ZAL_VSH_NORMAL = 2, ZAL_VSH_COLOR = 3, ZAL_VSH_USER1 = 4, ZAL_VSH_USER2 = 5, ZAL_VSH_USER3 = 6, ZAL_VSH_USER4 = 7, ZAL_VSH_TEX0 = 8, ZAL_VSH_TEX1 = 9, ZAL_VSH_TEX2 = 10, ZAL_VSH_TEX3 = 11, ZAL_VSH_TEX4 = 12, ZAL_VSH_TEX5 = 13, ZAL_VSH_TEX6 = 14, ZAL_VSH_TEX7 = 15 }; using namespace metal; struct BlitVertex { float2 position [[attribute(ZAL_VSH_VERTEX)]]; float2 uv [[attribute(ZAL_VSH_TEX0)]]; }; struct BlitVarying { float4 position [[position]]; float2 uv; }; vertex BlitVarying blitAndConvert_vert( BlitVertex in [[stage_in]] ) { BlitVarying out; float4 pos4 = float4(in.position, 0.0, 1.0); out.position = pos4; out.uv = in.uv; return out; } fragment float4 blitAndConvert_frag( BlitVarying in [[stage_in]], texture2d<float> srcTexture [[texture(0)]] ) { constexpr sampler textureSampler (coord::pixel, filter::nearest); const float4 colorSample = srcTexture.sample(textureSampler, in.uv); return colorSample; } struct BlitDepthOutput { float depth [[depth(any)]]; }; fragment BlitDepthOutput blitAndConvertDepth_frag( BlitVarying in [[stage_in]], depth2d<float> srcTexture [[texture(0)]] ) { constexpr sampler textureSampler (coord::pixel, filter::nearest); const float4 texSample = srcTexture.sample(textureSampler, in.uv); BlitDepthOutput result; result.depth = texSample.x; return result; })";

class Blitter : public support::ContextTest
{
protected:
    struct Copy
    {
        MTL::Origin from{0, 0, 0};
        MTL::Size size{8, 6, 1};
        MTL::Origin to{0, 0, 0};
        int slice = 0, level = 0;
        bool flip = false;
    };

    MTL::Texture* make(MTL::PixelFormat format, MTL::TextureUsage usage = contexts::Drawn, NS::UInteger width = 8, NS::UInteger height = 6)
    {
        made_.push_back(NS::TransferPtr(contexts::newTexture(device, format, width, height, usage, MTL::StorageModePrivate)));
        return made_.back().get();
    }

    MTL::Texture* filled(MTL::PixelFormat format = MTL::PixelFormatRGBA8Unorm)
    {
        MTL::Texture* texture = make(format);
        contexts::fill(queue, texture, places(8, 6));
        return texture;
    }

    bool copy(MTL::Texture* src, MTL::Texture* dst, const Copy& c)
    {
        MTL::CommandBuffer* commands = queue->commandBuffer();
        bool failed = CopyTexSubImage2D(context->metalData->blitter, device, commands, src, c.from, c.size, dst, c.to, c.slice, c.level, c.flip);
        if (!failed) commands->commit();
        if (!failed) commands->waitUntilCompleted();
        return failed;
    }

    std::vector<uint8_t> contentsOf(MTL::Texture* texture) { return contexts::contents(queue, texture); }

private:
    std::vector<NS::SharedPtr<MTL::Texture>> made_;
};

TEST_F(Blitter, CompilesItsSourceAsItStands)
{
    const ScopedPool pool; // of the names
    clearLog();
    ZALMetalBlitter* blitter = ZALMetalBlitterInit(device);
    std::vector<std::string> sources;
    for (const SoftMetal::LogEntry& entry : log())
        if (entry.call == "newLibrary") sources.push_back(entry.text("source"));
    EXPECT_EQ(sources, std::vector<std::string>{WholeSource});
    for (auto [function, name] : {std::pair{blitter->vertexFunction, "blitAndConvert_vert"}, std::pair{blitter->colorFunction, "blitAndConvert_frag"},
                                  std::pair{blitter->depthFunction, "blitAndConvertDepth_frag"}})
        EXPECT_STREQ(function->name()->utf8String(), name);
    int64_t before = SoftMetal::objectsAlive();
    ZALMetalBlitterRelease(blitter);
    EXPECT_LE(SoftMetal::objectsAlive(), before - 5); // library, three functions, depth-stencil state
    ZALMetalBlitterRelease(nullptr);
}

TEST_F(Blitter, ASourceThatDoesNotCompileRaises)
{
    SoftMetal::injectFault("newLibrary", 1, false);
    std::string what;
    try {
        ZALMetalBlitterInit(device);
    } catch (const std::exception& exception) {
        what = exception.what();
    }
    SoftMetal::clearFaults();
    EXPECT_EQ(what.rfind("Failed to compile shaders: ", 0), 0u) << what;
}

TEST_F(Blitter, CopiesEveryTexelExactly)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatRGBA8Unorm);
    EXPECT_FALSE(copy(src, dst, {}));
    EXPECT_EQ(contentsOf(dst), places(8, 6));
}

TEST_F(Blitter, FlippedItTurnsTheRowsRound)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatRGBA8Unorm);
    Copy c;
    c.flip = true;
    EXPECT_FALSE(copy(src, dst, c));
    EXPECT_EQ(contentsOf(dst), contexts::upsideDown(places(8, 6), 8));
}

TEST_F(Blitter, ConvertsFormats)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatBGRA8Unorm);
    EXPECT_FALSE(copy(src, dst, {}));
    auto wanted = places(8, 6);
    for (size_t i = 0; i < wanted.size(); i += 4) std::swap(wanted[i], wanted[i + 2]);
    EXPECT_EQ(contentsOf(dst), wanted);
}

TEST_F(Blitter, ARectangleGoesToItsPlaceAndLeavesTheRest)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatRGBA8Unorm);
    contexts::fill(queue, dst, std::vector<uint8_t>(8 * 6 * 4, 99));
    Copy c{MTL::Origin(2, 1, 0), MTL::Size(3, 4, 1), MTL::Origin(4, 2, 0), 0, 0, false};
    EXPECT_FALSE(copy(src, dst, c));
    auto got = contentsOf(dst), from = places(8, 6);
    for (size_t y = 0; y < 6; ++y)
        for (size_t x = 0; x < 8; ++x) {
            bool inside = x >= 4 && x < 7 && y >= 2;
            uint8_t wanted = inside ? from[4 * ((y - 1) * 8 + x - 2)] : uint8_t{99};
            EXPECT_EQ(got[4 * (y * 8 + x)], wanted) << x << ", " << y;
        }
}

TEST_F(Blitter, WithoutRenderTargetUsageTheCopyGoesThroughATextureOfItsOwn)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatRGBA8Unorm, MTL::TextureUsageShaderRead);
    int64_t before = SoftMetal::objectsAlive("MTL::Texture");
    clearLog();
    auto* pool = NS::AutoreleasePool::alloc()->init();
    EXPECT_FALSE(copy(src, dst, {}));
    pool->release();
    const void* between = nullptr;
    for (const SoftMetal::LogEntry& entry : log())
        if (entry.call == "newTexture") {
            between = entry.object("result");
            EXPECT_EQ(entry.number("width"), 8);
            EXPECT_EQ(entry.number("height"), 6);
        }
    EXPECT_NE(between, nullptr);
    EXPECT_EQ(contentsOf(dst), places(8, 6));
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Texture"), before);
}

TEST_F(Blitter, BothWaysGiveTheSamePixels)
{
    MTL::Texture *src = filled(), *direct = make(MTL::PixelFormatBGRA8Unorm), *between = make(MTL::PixelFormatBGRA8Unorm, MTL::TextureUsageShaderRead);
    for (MTL::Texture* texture : {direct, between}) contexts::fill(queue, texture, std::vector<uint8_t>(8 * 6 * 4, 50));
    Copy c{MTL::Origin(1, 1, 0), MTL::Size(5, 3, 1), MTL::Origin(2, 3, 0), 0, 0, true};
    EXPECT_FALSE(copy(src, direct, c));
    EXPECT_FALSE(copy(src, between, c));
    EXPECT_EQ(contentsOf(direct), contentsOf(between));
}

TEST_F(Blitter, Kept_blit_synchronise)
{
    auto dst = NS::TransferPtr(contexts::newTexture(device, MTL::PixelFormatRGBA8Unorm, 8, 6, MTL::TextureUsageShaderRead, MTL::StorageModeManaged));
    MTL::Texture* src = filled();
    clearLog();
    EXPECT_FALSE(copy(src, dst.get(), {}));
    EXPECT_EQ(count("synchronizeResource"), 0u);
}

TEST_F(Blitter, DepthIsWrittenAsDepth)
{
    for (MTL::PixelFormat format : {MTL::PixelFormatDepth32Float, MTL::PixelFormatDepth16Unorm, MTL::PixelFormatDepth32Float_Stencil8, MTL::PixelFormatDepth24Unorm_Stencil8}) {
        MTL::Texture *src = make(MTL::PixelFormatDepth32Float), *dst = make(format), *back = make(MTL::PixelFormatDepth32Float);
        std::vector<uint8_t> bytes(8 * 6 * 4);
        for (size_t i = 0; i < 48; ++i) {
            float value = static_cast<float>(i) / 64; // exact in each of the formats but for their last bit
            std::memcpy(&bytes[4 * i], &value, 4);
        }
        contexts::fill(queue, src, bytes);
        EXPECT_FALSE(copy(src, dst, {}));
        EXPECT_FALSE(copy(dst, back, {}));
        auto got = contentsOf(back);
        for (size_t i = 0; i < 48; ++i) {
            float value = 0;
            std::memcpy(&value, &got[4 * i], 4);
            EXPECT_NEAR(value, static_cast<float>(i) / 64, 1.0 / 65535) << "format " << format << " texel " << i;
        }
    }
}

TEST_F(Blitter, APipelineThatCannotBeBuiltIsLoggedAndReported)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatRGBA8Unorm);
    contexts::Logged lines;
    SoftMetal::injectFault("newRenderPipelineState", 1, false);
    auto* pool = NS::AutoreleasePool::alloc()->init();
    MTL::CommandBuffer* commands = queue->commandBuffer();
    clearLog();
    EXPECT_TRUE(CopyTexSubImage2D(context->metalData->blitter, device, commands, src, MTL::Origin(0, 0, 0), MTL::Size(8, 6, 1), dst, MTL::Origin(0, 0, 0), 0, 0, false));
    SoftMetal::clearFaults();
    auto said = lines.take();
    ASSERT_GE(said.size(), 1u);
    EXPECT_EQ(said[0].rfind("CopyTexSubImage2D, Failed to create pipeline state, error ", 0), 0u) << said[0];
    auto names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "popDebugGroup"), 1);
    EXPECT_EQ(std::count(names.begin(), names.end(), "endEncoding"), 0); // the encoder is left open
    EXPECT_EQ(std::count(names.begin(), names.end(), "drawPrimitives"), 0);
    pool->release();
    auto messages = SoftMetal::takeMessages(); // of the device, for the encoder that nothing ended
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].rule, "encoder.released-open");
}

// ---- copy and flip ------------------------------------------------------------------------------------------------------------

TEST_F(Blitter, CopyAndFlipTurnsATextureRoundAndCommits)
{
    MTL::Texture *src = filled(), *dst = make(MTL::PixelFormatBGRA8Unorm);
    clearLog();
    EXPECT_EQ(ZALMetalContextCopyAndFlipMetalTexture(context, src, dst), 0);
    std::vector<std::string> groups;
    bool committed = false;
    for (const SoftMetal::LogEntry& entry : log()) {
        if (entry.call == "pushDebugGroup") groups.push_back(entry.text("name"));
        committed |= entry.call == "commit";
    }
    EXPECT_EQ(groups, (std::vector<std::string>{"ZALMetalContextCopyAndFlipMetalTexture", "ZALMetalBlitter, CopyTexSubImage2D"}));
    EXPECT_TRUE(committed);
    auto wanted = contexts::upsideDown(places(8, 6), 8);
    for (size_t i = 0; i < wanted.size(); i += 4) std::swap(wanted[i], wanted[i + 2]);
    EXPECT_EQ(contentsOf(dst), wanted);
}

TEST_F(Blitter, CopyAndFlipWantsTwoTexturesOfOneSize)
{
    MTL::Texture *a = make(MTL::PixelFormatRGBA8Unorm), *wider = make(MTL::PixelFormatRGBA8Unorm, contexts::Drawn, 9, 6),
                 *higher = make(MTL::PixelFormatRGBA8Unorm, contexts::Drawn, 8, 7);
    clearLog();
    for (auto [src, dst] : {std::pair{static_cast<MTL::Texture*>(nullptr), a}, std::pair{a, static_cast<MTL::Texture*>(nullptr)}, std::pair{a, wider}, std::pair{a, higher}})
        EXPECT_EQ(ZALMetalContextCopyAndFlipMetalTexture(context, src, dst), 6);
    EXPECT_TRUE(calls().empty());
}

} // namespace
