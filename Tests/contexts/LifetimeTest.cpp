// SPDX-License-Identifier: Apache-2.0
// The current context, releasing and destroying.
#include "support/ContextFixture.h"

namespace {

class Lifetime : public support::ContextTest
{
protected:
    void SetUp() override
    {
        ContextTest::SetUp();
        if (!HasFatalFailure()) attachTextures(4, 4);
    }

    /// Work that is recorded and not yet committed.
    void record()
    {
        glClear(GL_COLOR_BUFFER_BIT);
        commands().getOrCreateCommandEncoder(&gl());
        clearLog();
    }

    ZALMetalContext* another(ZALMetalContext* share = nullptr)
    {
        ZALMetalContext* made = nullptr;
        EXPECT_EQ(ZALMetalContextInitFromMTLCommandQueue(made, share, queue), ZALMetalResultSuccess);
        return made;
    }
};

TEST_F(Lifetime, MakingTheCurrentContextCurrentDoesNothing)
{
    record();
    EXPECT_EQ(ZALMetalContextMakeCurrent(context), 0);
    EXPECT_TRUE(calls().empty());
}

TEST_F(Lifetime, MakingNoneCurrentCommitsAndLeavesNone)
{
    record();
    EXPECT_EQ(ZALMetalContextMakeCurrent(nullptr), 0);
    EXPECT_EQ(count("commit"), 1u);
    EXPECT_EQ(ZALMetalContextGetCurrent(), nullptr);
    EXPECT_EQ(ZALMetalContextMakeCurrent(context), 0); // nothing was current: nothing to commit
    EXPECT_EQ(count("commit"), 0u);
}

TEST_F(Lifetime, DestroyingWaitsForWorkThatWasCommittedBefore)
{
    MTL::CommandQueue* ownQueue = device->newCommandQueue(); // nothing of the other queue waits for it
    ZALMetalContext* other = nullptr;
    ASSERT_EQ(ZALMetalContextInitFromMTLCommandQueue(other, nullptr, ownQueue), 0);
    auto* pool = NS::AutoreleasePool::alloc()->init();
    auto* descriptor = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatBGRA8Unorm, 4, 4, false);
    descriptor->setStorageMode(MTL::StorageModeManaged);
    descriptor->setUsage(MTL::TextureUsageRenderTarget);
    MTL::Texture* target = device->newTexture(descriptor);
    pool->release();
    ASSERT_EQ(ZALMetalContextSetMetalDrawable(other, target, nullptr), 0);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    SoftMetal::setCommandBufferDelay(50);
    glFlush();
    ZALMetalContextDestroy(other);
    SoftMetal::setCommandBufferDelay(0);
    ZALMetalContextMakeCurrent(context);
    uint8_t pixel[4] = {};
    target->getBytes(pixel, 4, MTL::Region(1, 1, 1, 1), 0);
    EXPECT_EQ(pixel[0], 255) << "blue comes first";
    EXPECT_EQ(pixel[3], 255);
    target->release();
    ownQueue->release();
}

TEST_F(Lifetime, CreatingAContextCommitsTheOthersWork)
{
    record();
    ZALMetalContext* other = another();
    EXPECT_EQ(count("commit"), 1u);
    EXPECT_EQ(ZALMetalContextGetCurrent(), other);
    ZALMetalContextDestroy(other);
}

TEST_F(Lifetime, SwitchingInTheMiddleOfAPassCommitsIt)
{
    ZALMetalContext* other = another();
    ZALMetalContextMakeCurrent(context);
    record();
    ZALMetalContextMakeCurrent(other);
    auto names = calls();
    ASSERT_GE(names.size(), 2u);
    EXPECT_EQ(names[0], "endEncoding");
    EXPECT_EQ(names[1], "commit");
    ZALMetalContextDestroy(other);
}

TEST_F(Lifetime, ContextsFromAShareContextSwitchOneCommandBuffer)
{
    ZALMetalContext* other = nullptr;
    ASSERT_EQ(ZALMetalContextInitFromShareContext(other, context), 0);
    ZALMetalContextMakeCurrent(context);
    record();
    ZALMetalContextMakeCurrent(other);
    EXPECT_EQ(count("commit"), 1u);
    ZALMetalContextMakeCurrent(context); // nothing was recorded in between
    EXPECT_EQ(count("commit"), 0u);
    ZALMetalContextDestroy(other);
}

TEST_F(Lifetime, ReleasingAnotherContextKeepsTheCurrentOne)
{
    ZALMetalContext* other = another();
    ZALMetalContextMakeCurrent(context);
    EXPECT_EQ(ZALMetalContextDestroy(other), 0);
    EXPECT_EQ(ZALMetalContextGetCurrent(), context);
}

TEST_F(Lifetime, ReleasingTheCurrentContextFinishesItsWorkAndLeavesNone)
{
    record();
    EXPECT_EQ(ZALMetalContextDestroy(context), 0);
    context = nullptr;
    auto names = calls();
    EXPECT_NE(std::find(names.begin(), names.end(), "waitUntilCompleted"), names.end());
    EXPECT_EQ(ZALMetalContextGetCurrent(), nullptr);
}

/// The handle goes, everything else stays for hosts that go on using it.
TEST_F(Lifetime, ReleaseFreesTheHandleOnly)
{
    ZALGLState* state = context->glState;
    ZALMetalData* data = context->metalData;
    ZALMetalDrawable* drawable = context->drawable;
    EXPECT_EQ(ZALMetalContextRelease(context), 0);
    EXPECT_EQ(drawable->colorTexture, color);
    EXPECT_EQ(data->device, device);
    EXPECT_EQ(state->defaultFramebufferWidth, 4u);
    // What stays is given back through another handle, so that the test leaves nothing behind.
    context = static_cast<ZALMetalContext*>(std::malloc(sizeof(ZALMetalContext)));
    *context = ZALMetalContext{data, state, drawable};
}

TEST_F(Lifetime, DestroyingInAnyOrderLeavesNothing)
{
    for (int order = 0; order < 6; ++order) {
        int64_t before = SoftMetal::objectsAlive();
        auto* pool = NS::AutoreleasePool::alloc()->init();
        ZALMetalContext *a = another(), *b = nullptr, *c = another(a);
        ASSERT_EQ(ZALMetalContextInitFromShareContext(b, a), 0);
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        ZALMetalContext* all[3] = {a, b, c};
        constexpr int Orders[6][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
        for (int i : Orders[order]) {
            ZALMetalContextMakeCurrent(all[i]);
            EXPECT_EQ(ZALMetalContextDestroy(all[i]), 0);
        }
        pool->release();
        EXPECT_EQ(SoftMetal::objectsAlive(), before) << "order " << order;
    }
    ZALMetalContextMakeCurrent(context);
}

TEST_F(Lifetime, SharedObjectsOutliveTheContextThatMadeThem)
{
    ZALMetalContext *a = another(), *b = another(a), *c = another(a);
    ZALMetalContextMakeCurrent(a);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    ZALMetalContextDestroy(a);
    ZALMetalContextMakeCurrent(b);
    void* found = this;
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(b, found, texture), 0);
    ZALMetalContextDestroy(b);
    ZALMetalContextMakeCurrent(c);
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(c, found, texture), 0);
    ZALMetalContextDestroy(c);
}

} // namespace
