// SPDX-License-Identifier: Apache-2.0
// Pipeline states: the order of their keys, what is built, what is found again, what is dropped.
#include "RenderPipelineCache.h"
#include "ZALGLContextObjects.h"
#include "drawing/Drawing.h"

#include <random>

namespace {

using namespace drawing;
using ZALMetal::RenderPipelineCache;
using Key = RenderPipelineCache::Key;

class PipelineCache : public Routes
{
protected:
    /// Draws and says how many pipelines were built for it.
    size_t built()
    {
        clearLog();
        EXPECT_EQ(drawn(), NoError);
        return count("newRenderPipelineState");
    }

    SoftMetal::LogEntry builtNow()
    {
        clearLog();
        draw();
        auto all = entries("newRenderPipelineState");
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? SoftMetal::LogEntry{} : all[0];
    }
};
INSTANTIATE_TEST_SUITE_P(Devices, PipelineCache, testing::Values(false, true), routeName);

using PipelineCacheDeathTest = DrawTest;

// ---- order ----------------------------------------------------------------------------------------------------------------------

GLRenderPipelineDescription randomDescription(std::mt19937& random)
{
    GLRenderPipelineDescription d;
    d.boundFramebuffer = random() % 2;
    d.drawBufferMask = random() % 2;
    d.boundProgramVertex = random() % 2;
    d.blendingEnabled = random() % 2;
    d.colorWriteMask = random() % 16;
    d.blend[random() % 8].srcFactor = random() % 3;
    return d;
}

Key randomKey(std::mt19937& random)
{
    Key key;
    key.colorPixelFormats[random() % 8] = random() % 2;
    key.depthPixelFormat = random() % 2;
    key.vertexDescriptor = reinterpret_cast<MTL::VertexDescriptor*>(uintptr_t{16} * (random() % 2));
    key.glPipelineDesc = randomDescription(random);
    key.vertexProgramKey.attributeMask = random() % 2;
    key.vertexProgramKey.samplerSlots[random() % 32] = static_cast<int32_t>(random() % 3) - 1;
    key.fragmentProgramKey.swizzleModes[random() % 32] = random() % 2;
    return key;
}

template <class T>
void expectStrictWeakOrder(const std::vector<T>& all)
{
    for (const T& a : all) {
        EXPECT_FALSE(a < a);
        for (const T& b : all) {
            ASSERT_FALSE(a < b && b < a);
            for (const T& c : all) {
                ASSERT_TRUE(!(a < b && b < c) || a < c);
                bool ab = !(a < b) && !(b < a), bc = !(b < c) && !(c < b), ac = !(a < c) && !(c < a);
                ASSERT_TRUE(!(ab && bc) || ac); // what is not told apart stays so
            }
        }
    }
}

TEST(PipelineKey, IsInStrictWeakOrder)
{
    std::mt19937 random(2);
    std::vector<Key> keys;
    std::vector<GLRenderPipelineDescription> descriptions;
    for (int i = 0; i < 50; ++i) keys.push_back(randomKey(random)), descriptions.push_back(randomDescription(random));
    expectStrictWeakOrder(keys);
    expectStrictWeakOrder(descriptions);
}

TEST(PipelineKey, BlendEntriesCountOnlyWhileBlendingIsOn)
{
    GLRenderPipelineDescription a, b;
    b.blend[7].dstFactor = 1;
    EXPECT_FALSE(a < b || b < a);
    a.blendingEnabled = b.blendingEnabled = true;
    EXPECT_TRUE(a < b);
    b.blendingEnabled = false;
    EXPECT_TRUE(b < a); // off comes first
}

TEST(PipelineKey, FormatsDecideBeforeTheDescription)
{
    Key a, b;
    a.colorPixelFormats[0] = 1;
    b.glPipelineDesc.boundFramebuffer = 9;
    EXPECT_TRUE(b < a);
}

/// Keys that differ in the colour write mask alone are one.
TEST(PipelineKey, Kept_color_mask_key)
{
    Key a, b;
    b.glPipelineDesc.colorWriteMask = 0;
    EXPECT_FALSE(a < b || b < a);
}

// ---- what is found again --------------------------------------------------------------------------------------------------------

TEST_P(PipelineCache, EqualStateFindsItAgain)
{
    EXPECT_EQ(built(), 1u);
    EXPECT_EQ(built(), 0u);
    glColorMask(GL_TRUE, GL_FALSE, GL_FALSE, GL_FALSE);
    EXPECT_EQ(built(), 0u); // and the first mask holds
}

TEST_P(PipelineCache, BlendFunctionsCountOnlyWhileBlendingIsOn)
{
    built();
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    EXPECT_EQ(built(), 0u);
    glEnable(GL_BLEND);
    EXPECT_EQ(built(), 1u);
    glBlendFunc(GL_ONE, GL_ONE);
    EXPECT_EQ(built(), 1u);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE);
    EXPECT_EQ(built(), 0u);
}

TEST_P(PipelineCache, TestsBringTheirFormats)
{
    auto none = builtNow();
    EXPECT_EQ(none.number("depthFormat"), 0);
    EXPECT_EQ(none.number("stencilFormat"), 0);
    glEnable(GL_DEPTH_TEST);
    EXPECT_EQ(builtNow().number("depthFormat"), depth->pixelFormat());
    glEnable(GL_STENCIL_TEST);
    EXPECT_EQ(builtNow().number("stencilFormat"), depth->pixelFormat());
}

TEST_P(PipelineCache, DeletingAProgramDropsExactlyItsEntries)
{
    GLuint other = 0;
    glGenProgramsARB(1, &other);
    built();
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, other);
    load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 1.0;\nEND\n");
    EXPECT_EQ(built(), 1u);
    int64_t states = SoftMetal::objectsAlive("MTL::RenderPipelineState");
    glFinish();
    glDeleteProgramsARB(1, &other);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::RenderPipelineState"), states - 1);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programNames[1]);
    EXPECT_EQ(built(), 0u);
}

TEST_P(PipelineCache, EveryFramebufferObjectHasItsOwn)
{
    GLuint framebuffer = 0, target = 0;
    glGenFramebuffers(1, &framebuffer);
    glGenTextures(1, &target);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 4, 4, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    built();
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, target, 0);
    EXPECT_EQ(built(), 1u);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    EXPECT_EQ(built(), 0u);
}

TEST_P(PipelineCache, GrowsWithManyKeys)
{
    RenderPipelineCache cache;
    Key key;
    key.glPipelineDesc.boundProgramVertex = 4711; // no such program: nothing is built, and that is remembered
    key.glPipelineDesc.boundProgramFragment = 4712;
    for (uint32_t many : {1u, 100u, 10000u})
        for (uint32_t i = 0; i < many; ++i) {
            key.colorPixelFormats[7] = i;
            EXPECT_EQ(cache.getOrCreate(device, gl().contextObjects->programs, key), nullptr);
        }
    cache.removeCachedValuesForProgram(4711);
}

// ---- what is built ----------------------------------------------------------------------------------------------------------------

TEST_P(PipelineCache, OneAttachmentHasItsFormatAndMask)
{
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    auto made = builtNow();
    EXPECT_EQ(made.number("format0"), MTL::PixelFormatBGRA8Unorm);
    EXPECT_EQ(made.number("writeMask0"), 10);
    EXPECT_EQ(made.number("blending0"), 0);
}

TEST_P(PipelineCache, OnlyTheDrawBuffersAreConfigured)
{
    GLuint framebuffer = 0, targets[3];
    glGenFramebuffers(1, &framebuffer);
    glGenTextures(3, targets);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    for (GLenum i = 0; i < 3; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets[i]);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 4, 4, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0 + i, GL_TEXTURE_RECTANGLE_ARB, targets[i], 0);
    }
    const GLenum buffers[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT2};
    glDrawBuffers(2, buffers);
    auto made = builtNow();
    auto has = [&](const char* name) { return std::any_of(made.arguments.begin(), made.arguments.end(), [&](const auto& a) { return a.name == name; }); };
    EXPECT_TRUE(has("format0"));
    EXPECT_FALSE(has("format1"));
    EXPECT_TRUE(has("format2"));
}

TEST_P(PipelineCache, BlendingIsTheSameForColourAndAlpha)
{
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    auto made = builtNow();
    EXPECT_EQ(made.number("rgbOperation0"), MTL::BlendOperationReverseSubtract);
    EXPECT_EQ(made.number("alphaOperation0"), MTL::BlendOperationReverseSubtract);
    EXPECT_EQ(made.number("sourceRGB0"), MTL::BlendFactorSourceAlpha);
    EXPECT_EQ(made.number("sourceAlpha0"), MTL::BlendFactorSourceAlpha);
    EXPECT_EQ(made.number("destinationRGB0"), MTL::BlendFactorOneMinusSourceAlpha);
    EXPECT_EQ(made.number("destinationAlpha0"), MTL::BlendFactorOneMinusSourceAlpha);
}

TEST_P(PipelineCache, Kept_blend_fallback)
{
    glEnable(GL_BLEND);
    glBlendFunc(0x1234, 0x1234);
    glBlendEquation(0x8009);
    auto made = builtNow();
    EXPECT_EQ(error(), NoError);
    EXPECT_EQ(made.number("rgbOperation0"), MTL::BlendOperationAdd);
    EXPECT_EQ(made.number("sourceRGB0"), MTL::BlendFactorOne);
    EXPECT_EQ(made.number("destinationRGB0"), MTL::BlendFactorZero);
}

TEST(BlendConversion, Operations)
{
    for (auto [equation, wanted] : {std::pair{0x8006u, 0u}, {0x8007u, 3u}, {0x8008u, 4u}, {0x800Au, 1u}, {0x800Bu, 2u}}) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertBlendOperation(out, equation), 0);
        EXPECT_EQ(out, wanted);
    }
    for (uint32_t equation : {0u, 0x8005u, 0x8009u, 0x800Cu}) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertBlendOperation(out, equation), 6);
        EXPECT_EQ(out, 99u);
    }
}

TEST(BlendConversion, Factors)
{
    constexpr std::pair<uint32_t, uint64_t> Known[] = {{0, 0},      {1, 1},      {0x300, 2},  {0x301, 3},   {0x302, 4},   {0x303, 5},   {0x304, 8},  {0x305, 9},
                                                       {0x306, 6},  {0x307, 7},  {0x308, 10}, {0x8001, 11}, {0x8002, 12}, {0x8003, 13}, {0x8004, 14}};
    for (auto [factor, wanted] : Known) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertBlendFactor(out, factor), 0);
        EXPECT_EQ(out, wanted) << factor;
    }
    for (uint32_t factor : {2u, 0x2FFu, 0x309u, 0x8000u, 0x8005u}) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertBlendFactor(out, factor), 6);
        EXPECT_EQ(out, 99u);
    }
}

TEST_P(PipelineCache, AMissingFunctionBuildsNothingAndSaysNothingMore)
{
    load(GL_FRAGMENT_PROGRAM_ARB, "#include <metal_stdlib>\nfragment float4 OtherName() { return 1.0; }\n", 0xF030);
    clearLog();
    for (int i = 0; i < 3; ++i) EXPECT_EQ(drawn(), NoError);
    Names all = calls();
    EXPECT_EQ(std::count(all.begin(), all.end(), "newRenderPipelineState"), 0);
    EXPECT_EQ(std::count(all.begin(), all.end(), "drawIndexedPrimitives"), 0);
}

// ---- assertions -----------------------------------------------------------------------------------------------------------------------

TEST_F(PipelineCacheDeathTest, KeysNeedBothPrograms)
{
    auto build = [&](uint32_t vertex, uint32_t fragment) {
        Key key;
        key.glPipelineDesc.boundProgramVertex = vertex;
        key.glPipelineDesc.boundProgramFragment = fragment;
        MTL::RenderPipelineState* state = nullptr;
        ZALMetal::buildMtlPipelineState(state, device, gl().contextObjects->programs, key);
    };
    EXPECT_DEATH(build(0, 1), "iKey.glPipelineDesc.boundProgramVertex != 0.*buildMtlPipelineState");
    EXPECT_DEATH(build(1, 0), "iKey.glPipelineDesc.boundProgramFragment != 0.*buildMtlPipelineState");
}

} // namespace
