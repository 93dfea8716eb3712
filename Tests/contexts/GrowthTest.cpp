// SPDX-License-Identifier: Apache-2.0
// A host thread without an autorelease pool of its own: whatever it calls, again and again, nothing piles up.
#include "Pattern.h"
#include "ZALMetalContext.h"
#include "support/ContextFixture.h"

#include <array>
#include <chrono>
#include <cstring>
#include <functional>
#include <thread>

namespace {

constexpr const char* VertexProgram = "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.attrib[8];\nEND\n";
constexpr const char* FragmentProgram = "!!ARBfp1.0\nTEMP R0;\nTEX R0, fragment.texcoord[0], texture[0], 2D;\nMOV result.color, R0;\nEND\n";
constexpr uint32_t Side = 16;
constexpr int64_t SpareDrawables = 8; // a layer holds one to three textures and what they are made of, as the frames overlap; a leak would show 25 times

class Growth : public support::ContextTest, public testing::WithParamInterface<bool>
{
protected:
    Growth() : ContextTest(GetParam() ? support::intelDevice() : SoftMetal::DeviceOptions()) {}

    void SetUp() override
    {
        ContextTest::SetUp();
        if (HasFatalFailure()) return;
        SoftMetal::setCommandLog(false);
        auto* pool = NS::AutoreleasePool::alloc()->init();
        view = SoftMetal::newView(Side, Side);
        ASSERT_EQ(ZALMetalContextCreateCAMetalLayer(context, view, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatDepth32Float_Stencil8), 0);
        glViewport(0, 0, Side, Side);
        const float corners[8] = {-1, -1, 1, -1, -1, 1, 1, 1};
        const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
        glGenBuffers(2, buffers.data());
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        glEnableVertexAttribArrayARB(0);
        glVertexAttribPointerARB(0, 2, GL_FLOAT, GL_FALSE, 8, nullptr);
        glEnableVertexAttribArrayARB(8);
        glVertexAttribPointerARB(8, 2, GL_FLOAT, GL_FALSE, 8, nullptr);
        glGenProgramsARB(2, programs.data());
        load();
        glEnable(GL_VERTEX_PROGRAM_ARB);
        glEnable(GL_FRAGMENT_PROGRAM_ARB);
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        upload();
        pool->release();
    }

    void TearDown() override
    {
        ContextTest::TearDown();
        if (view) view->release();
    }

    void load()
    {
        glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programs[0]);
        glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(VertexProgram)), VertexProgram);
        glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs[1]);
        glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(FragmentProgram)), FragmentProgram);
    }

    void upload() { glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data()); }
    void draw() { glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }

    /// Waits for all work, which holds on to what it uses, and for the queue's thread to let go of it.
    int64_t settled()
    {
        commands().commandBufferWaitUntilCompleted();
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::CommandBuffer* last = queue->commandBuffer();
        last->commit();
        last->waitUntilCompleted();
        pool->release();
        commands().commandBufferWaitUntilCompleted(); // looks at the ones that have ended
        int64_t alive = SoftMetal::objectsAlive();
        for (int same = 0; same < 10;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            int64_t now = SoftMetal::objectsAlive();
            same = now == alive ? same + 1 : 0;
            alive = now;
        }
        return alive;
    }

    /// Objects more after the last rounds than after the first ones, all on a thread that has no pool.
    int64_t growthOf(const std::function<void()>& once)
    {
        int64_t early = 0, late = 0;
        std::thread([&] {
            auto rounds = [&](int count) {
                for (int i = 0; i < count; ++i) once();
                return settled();
            };
            early = rounds(5);
            late = rounds(25);
        }).join();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        return late - early;
    }

    NSView* view = nullptr;
    std::array<GLuint, 2> buffers{}, programs{};
    GLuint texture = 0;
    std::array<uint8_t, Side * Side * 4> texels{};
};

INSTANTIATE_TEST_SUITE_P(Devices, Growth, testing::Values(false, true), [](const auto& route) { return route.param ? "Intel" : "Ordinary"; });

TEST_P(Growth, OfDrawing)
{
    EXPECT_EQ(growthOf([&] {
                  glClear(GL_COLOR_BUFFER_BIT);
                  draw();
                  glFlush();
              }),
              0);
}

TEST_P(Growth, OfImmediateMode)
{
    EXPECT_EQ(growthOf([&] {
                  glBegin(GL_TRIANGLES);
                  for (float x : {-1.f, 1.f, 0.f}) glVertexAttrib4fARB(0, x, x * x, 0, 1);
                  glEnd();
              }),
              0);
}

TEST_P(Growth, OfFrames)
{
    EXPECT_LE(growthOf([&] {
                  glClear(GL_COLOR_BUFFER_BIT);
                  draw();
                  ZALMetalContextEnsureDrawable(context);
                  ZALMetalContextSwapBuffers(context);
              }),
              SpareDrawables);
}

TEST_P(Growth, OfResizing)
{
    int round = 0;
    EXPECT_LE(growthOf([&] {
                  SoftMetal::setViewSize(view, 8 + round++ % 2, 8);
                  ZALMetalContextUpdateSize(context);
                  ZALMetalContextSwapBuffers(context);
              }),
              SpareDrawables);
}

TEST_P(Growth, OfBuffers)
{
    std::array<uint8_t, 4096> bytes{};
    EXPECT_EQ(growthOf([&] {
                  GLuint name = 0;
                  glGenBuffers(1, &name);
                  glBindBuffer(GL_ARRAY_BUFFER, name);
                  glBufferData(GL_ARRAY_BUFFER, bytes.size(), nullptr, GL_STATIC_DRAW);
                  glBufferSubData(GL_ARRAY_BUFFER, 0, bytes.size(), bytes.data());
                  glBufferSubData(GL_ARRAY_BUFFER, 4, 8, bytes.data());
                  glDeleteBuffers(1, &name);
              }),
              0);
}

TEST_P(Growth, OfTextures)
{
    EXPECT_EQ(growthOf([&] {
                  GLuint name = 0;
                  glGenTextures(1, &name);
                  glBindTexture(GL_TEXTURE_2D, name);
                  upload();
                  glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 2, 4, 4, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
                  draw();
                  glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
                  glDeleteTextures(1, &name);
              }),
              0);
}

TEST_P(Growth, OfReadingAndCopying)
{
    EXPECT_EQ(growthOf([&] {
                  glReadPixels(0, 0, 8, 8, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
                  glReadPixels(0, 0, 8, 8, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
                  glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, 8, 8);
              }),
              0);
}

TEST_P(Growth, OfFramebufferObjects)
{
    GLuint target = 0;
    glGenTextures(1, &target);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(growthOf([&] {
                  GLuint name = 0;
                  glGenFramebuffers(1, &name);
                  glBindFramebuffer(GL_FRAMEBUFFER, name);
                  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, target, 0);
                  glClear(GL_COLOR_BUFFER_BIT);
                  draw();
                  glCheckFramebufferStatus(GL_FRAMEBUFFER);
                  glBindFramebuffer(GL_FRAMEBUFFER, 0);
                  glDeleteFramebuffers(1, &name);
              }),
              0);
}

TEST_P(Growth, OfLoadingPrograms)
{
    EXPECT_EQ(growthOf([&] {
                  load();
                  draw();
              }),
              0);
}

TEST_P(Growth, OfContexts)
{
    EXPECT_EQ(growthOf([&] {
                  ZALMetalContext *one = nullptr, *shared = nullptr;
                  ZALMetalContextInitFromMTLCommandQueue(one, nullptr, queue);
                  ZALMetalContextInitFromShareContext(shared, one);
                  glClear(GL_COLOR_BUFFER_BIT);
                  ZALMetalContextDestroy(shared);
                  ZALMetalContextDestroy(one);
                  ZALMetalContextMakeCurrent(context);
              }),
              0);
}

TEST_P(Growth, OfLookingUpAndFlipping)
{
    auto from = NS::TransferPtr(contexts::newTexture(device, MTL::PixelFormatBGRA8Unorm, 8, 8, contexts::Drawn));
    auto to = NS::TransferPtr(contexts::newTexture(device, MTL::PixelFormatRGBA8Unorm, 8, 8, contexts::Drawn));
    EXPECT_EQ(growthOf([&] {
                  void* found = nullptr;
                  ZALMetalContextGetMtlTextureFromGLTextureId(context, found, texture);
                  ZALMetalContextNewRenderDescriptor(&gl(), context)->release();
                  ZALMetalContextCopyAndFlipMetalTexture(context, from.get(), to.get());
              }),
              0);
}

} // namespace
