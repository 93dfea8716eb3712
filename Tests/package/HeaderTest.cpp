// SPDX-License-Identifier: Apache-2.0
// The public headers: their examples stand in a C source word for word, and run.
#include "package/HeaderExamples.h"

#include <ZALMetal/ZALMetalGL.h>

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace
{

std::string trimmed(const std::string& line, const char* unwanted)
{
    size_t first = line.find_first_not_of(unwanted);
    return first == std::string::npos ? "" : line.substr(first);
}

std::vector<std::string> exampleLines(const std::string& header)
{
    std::ifstream file(std::string(ZAL_HEADERS) + "/" + header);
    std::vector<std::string> lines;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        std::string text = trimmed(line, " *");
        if (text == "@endcode") inside = false;
        if (inside && !text.empty()) lines.push_back(text);
        if (text == "@code") inside = true;
    }
    return lines;
}

TEST(HeaderExamples, AreTheOnesThatAreCompiled)
{
    std::ifstream file(ZAL_EXAMPLES);
    std::set<std::string> compiled;
    for (std::string line; std::getline(file, line);)
        compiled.insert(trimmed(line, " "));
    std::vector<std::string> examples = exampleLines("ZALMetal.h");
    EXPECT_GE(examples.size(), 10u);
    for (const std::string& line : examples)
        EXPECT_TRUE(compiled.count(line)) << line;
}

struct RunningExamples : ::testing::Test
{
    void SetUp() override
    {
        device = SoftMetal::newDevice({});
        queue = device->newCommandQueue();
        ASSERT_EQ(exampleContext(queue, &context, &texture), 0);
    }
    void TearDown() override
    {
        if (context) ZALMetalContextDestroy(context);
        EXPECT_TRUE(SoftMetal::takeMessages().empty());
        queue->release();
        device->release();
    }
    /// Until all that was committed so far is done.
    void waitForQueue()
    {
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::CommandBuffer* last = queue->commandBuffer();
        last->commit();
        last->waitUntilCompleted();
        pool->release();
    }
    MTL::Texture* newTexture()
    {
        auto* pool = NS::AutoreleasePool::alloc()->init();
        auto* descriptor = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatBGRA8Unorm, 8, 8, false);
        descriptor->setStorageMode(MTL::StorageModePrivate);
        descriptor->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
        MTL::Texture* made = device->newTexture(descriptor);
        pool->release();
        return made;
    }

    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    ZALMetalContext* context = nullptr;
    uint32_t texture = 0;
};

TEST_F(RunningExamples, TheContextIsCurrent)
{
    EXPECT_EQ(ZALMetalContextGetCurrent(), context);
    EXPECT_EQ(texture, 1u);
}

TEST_F(RunningExamples, TheLayerPresentsAFrame)
{
    NSView* view = SoftMetal::newView(640, 480);
    EXPECT_EQ(exampleLayer(context, view), 0);
    waitForQueue();
    EXPECT_EQ(SoftMetal::presented(SoftMetal::layerOf(view)).count, 1u);
    ZALMetalContextDestroy(context);
    context = nullptr;
    view->release();
}

TEST_F(RunningExamples, HostTexturesAreDrawnIntoAndCopied)
{
    MTL::Texture *color = newTexture(), *other = newTexture();
    EXPECT_EQ(exampleHostTextures(context, color), 0);
    EXPECT_EQ(exampleCopy(context, color, other), 0);
    glFinish();
    color->release();
    other->release();
}

TEST_F(RunningExamples, LookedUpCallsWork)
{
    EXPECT_EQ(exampleProcAddress(), 0);
}

TEST_F(RunningExamples, LinesOfTheLogReachTheHost)
{
    std::vector<std::string> lines;
    EXPECT_EQ(exampleLog([](int, const char* line,
                            void* user) { static_cast<std::vector<std::string>*>(user)->push_back(line); },
                         &lines),
              0);
    ZALMetalContext* other = nullptr;
    EXPECT_EQ(ZALMetalContextInitFromMTLCommandQueue(other, nullptr, nullptr), 0);
    ZALMetalSetLogCallback(nullptr, nullptr);
    ZALMetalSetLogLevel(ZALMetalLogLevelInfo);
    ZALMetalContextDestroy(other);
    ASSERT_FALSE(lines.empty());
    EXPECT_NE(lines[0].find("selecting"), std::string::npos);
}

TEST_F(RunningExamples, TheCountersAreFilledIn)
{
    uint64_t draws = UINT64_MAX, again = 0;
    EXPECT_EQ(exampleCounters(&draws), 0);
    EXPECT_EQ(exampleCounters(&again), 0);
    EXPECT_NE(draws, UINT64_MAX);
    EXPECT_EQ(draws, again);
}

TEST_F(RunningExamples, APassDescriptorWithoutAStateTakesTheContexts)
{
    MTL::Texture* color = newTexture();
    EXPECT_EQ(exampleHostTextures(context, color), 0);
    MTL::RenderPassDescriptor* descriptor = ZALMetalContextNewRenderDescriptor(nullptr, context);
    ASSERT_NE(descriptor, nullptr);
    EXPECT_EQ(descriptor->colorAttachments()->object(0)->texture(), color);
    EXPECT_EQ(descriptor->depthAttachment()->texture(), nullptr);
    descriptor->release();
    color->release();
}

TEST_F(RunningExamples, ATextureWithoutAnImageHasNoMetalTexture)
{
    void* found = &found;
    EXPECT_EQ(exampleLookUp(context, texture, &found), 0);
    EXPECT_EQ(found, nullptr);
}

TEST_F(RunningExamples, AStandardProgramIsRewrittenAndLoaded)
{
    const std::string text = "!!ARBvp1.0\nOPTION ARB_position_invariant;\nMOV result.color, vertex.color;\nEND";
    char program[1024], message[256];
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, name);
    EXPECT_EQ(exampleNormalise(text.data(), text.size(), program, sizeof program, message, sizeof message), 0)
        << message;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(Version, IsTheProjects)
{
    std::string version = std::to_string(ZALMETAL_VERSION_MAJOR) + "." + std::to_string(ZALMETAL_VERSION_MINOR) + "." +
                          std::to_string(ZALMETAL_VERSION_PATCH);
    EXPECT_EQ(version, ZAL_VERSION);
}

} // namespace
