// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <thread>

namespace device_test {

class CommandBuffer : public Device
{
protected:
    /// Fills one byte of a buffer.
    void fill(MTL::CommandBuffer* to, MTL::Buffer* b, NS::UInteger at, uint8_t value)
    {
        auto* e = to->blitCommandEncoder();
        e->fillBuffer(b, NS::Range(at, 1), value);
        e->endEncoding();
    }
};

TEST_F(CommandBuffer, GoesThroughItsStates)
{
    auto* c = queue->commandBuffer();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusNotEnqueued);
    c->enqueue();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusEnqueued);
    c->commit();
    EXPECT_GE(c->status(), MTL::CommandBufferStatusCommitted);
    c->waitUntilScheduled();
    EXPECT_GE(c->status(), MTL::CommandBufferStatusScheduled);
    c->waitUntilCompleted();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusCompleted);
    EXPECT_EQ(c->error(), nullptr);
}

TEST_F(CommandBuffer, RunsAfterCommitHasReturned)
{
    SoftMetal::setCommandBufferDelay(100);
    auto* b = buffer(1);
    auto* c = queue->commandBuffer();
    fill(c, b, 0, 7);
    c->commit();
    EXPECT_LT(c->status(), MTL::CommandBufferStatusCompleted);
    c->waitUntilCompleted();
    EXPECT_EQ(*static_cast<uint8_t*>(b->contents()), 7);
}

TEST_F(CommandBuffer, RunInTheOrderOfEnqueueing)
{
    auto* b = buffer(1);
    auto *first = queue->commandBuffer(), *second = queue->commandBuffer();
    fill(first, b, 0, 1);
    fill(second, b, 0, 2);
    first->enqueue();
    second->commit();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_LT(second->status(), MTL::CommandBufferStatusScheduled);
    first->commit();
    second->waitUntilCompleted();
    EXPECT_EQ(*static_cast<uint8_t*>(b->contents()), 2);
}

TEST_F(CommandBuffer, IsScheduledWhileTheOneBeforeItRuns)
{
    SoftMetal::setCommandBufferDelay(200);
    auto *first = queue->commandBuffer(), *second = queue->commandBuffer();
    first->commit();
    second->commit();
    second->waitUntilScheduled();
    EXPECT_LT(first->status(), MTL::CommandBufferStatusCompleted);
    second->waitUntilCompleted();
    EXPECT_EQ(first->status(), MTL::CommandBufferStatusCompleted);
}

TEST_F(CommandBuffer, DroppedAfterEnqueueingHoldsNothingUp)
{
    auto* inner = NS::AutoreleasePool::alloc()->init();
    queue->commandBuffer()->enqueue();
    auto* c = queue->commandBuffer()->retain();
    c->commit();
    inner->release();
    c->waitUntilCompleted();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusCompleted);
    c->release();
}

TEST_F(CommandBuffer, KeepsWhatItUsesUntilItHasRun)
{
    int64_t before = SoftMetal::objectsAlive("MTL::Buffer");
    SoftMetal::setCommandBufferDelay(50);
    auto* b = device->newBuffer(1, MTL::ResourceStorageModeShared);
    auto* c = queue->commandBuffer();
    fill(c, b, 0, 1);
    b->release();
    c->commit();
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), before + 1);
    c->waitUntilCompleted();
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), before);
}

TEST_F(CommandBuffer, HandlersRunBeforeTheWaitEnds)
{
    std::atomic<int> scheduled{0}, completed{0};
    auto* c = queue->commandBuffer();
    c->addScheduledHandler([&](MTL::CommandBuffer* x) { scheduled = x->status() >= MTL::CommandBufferStatusScheduled ? 1 : -1; });
    c->addCompletedHandler([&](MTL::CommandBuffer* x) {
        x->waitUntilCompleted(); // does not wait for itself
        completed = x == c && scheduled == 1 ? 1 : -1;
    });
    c->commit();
    c->waitUntilCompleted();
    EXPECT_EQ(completed, 1);
}

TEST_F(CommandBuffer, TellsWhenItRan)
{
    auto* c = queue->commandBuffer();
    c->commit();
    c->waitUntilCompleted();
    EXPECT_GT(c->GPUStartTime(), 0);
    EXPECT_GE(c->GPUEndTime(), c->GPUStartTime());
}

TEST_F(CommandBuffer, EndsWithAnErrorWhenItsWorkFails)
{
    SoftMetal::injectFault("commit", 1, false);
    auto* b = buffer(1);
    auto* c = queue->commandBuffer();
    fill(c, b, 0, 1);
    c->commit();
    c->waitUntilCompleted();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusError);
    ASSERT_NE(c->error(), nullptr);
    EXPECT_NE(std::string(c->error()->localizedDescription()->utf8String()).find("injected"), std::string::npos);
    EXPECT_EQ(*static_cast<uint8_t*>(b->contents()), 0);
}

TEST_F(CommandBuffer, EmptyOnesComplete)
{
    auto* c = queue->commandBuffer();
    c->commit();
    c->waitUntilCompleted();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusCompleted);
}

TEST_F(CommandBuffer, MoreThanTheQueueHoldsWaitForTheirTurn)
{
    auto* narrow = owned(device->newCommandQueue(2));
    auto* b = buffer(1);
    for (uint8_t i = 1; i <= 20; ++i) {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        auto* c = narrow->commandBuffer();
        fill(c, b, 0, i);
        c->commit();
        if (i == 20) c->waitUntilCompleted();
        inner->release();
    }
    EXPECT_EQ(*static_cast<uint8_t*>(b->contents()), 20);
}

TEST_F(CommandBuffer, QueueMayBeReleasedWhileItsWorkRuns)
{
    SoftMetal::setCommandBufferDelay(30);
    auto* inner = NS::AutoreleasePool::alloc()->init();
    auto* other = device->newCommandQueue();
    auto* b = buffer(1)->retain();
    auto* c = other->commandBuffer();
    fill(c, b, 0, 5);
    std::atomic<bool> done{false};
    c->addCompletedHandler([&](MTL::CommandBuffer*) { done = true; });
    c->commit();
    other->release();
    inner->release();
    while (!done) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(*static_cast<uint8_t*>(b->contents()), 5);
    b->release();
}

TEST_F(CommandBuffer, ThreadsOfTheirOwnQueuesDoNotDisturbEachOther)
{
    std::vector<std::thread> threads;
    std::array<bool, 4> right{};
    for (size_t i = 0; i < right.size(); ++i)
        threads.emplace_back([&, i] {
            auto* inner = NS::AutoreleasePool::alloc()->init();
            auto* own = device->newCommandQueue();
            auto* b = device->newBuffer(64, MTL::ResourceStorageModeShared);
            for (uint8_t n = 0; n < 64; ++n) {
                auto* c = own->commandBuffer();
                fill(c, b, n, static_cast<uint8_t>(n + i));
                c->commit();
                if (n == 63) c->waitUntilCompleted();
            }
            right[i] = true;
            for (uint8_t n = 0; n < 64; ++n) right[i] = right[i] && static_cast<uint8_t*>(b->contents())[n] == static_cast<uint8_t>(n + i);
            b->release();
            own->release();
            inner->release();
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(right, (std::array<bool, 4>{true, true, true, true}));
}

TEST_F(CommandBuffer, OneQueueTakesWorkFromSeveralThreads)
{
    auto* b = buffer(256);
    std::vector<std::thread> threads;
    for (unsigned i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            auto* inner = NS::AutoreleasePool::alloc()->init();
            for (unsigned n = 0; n < 64; ++n) {
                auto* c = queue->commandBuffer();
                fill(c, b, i * 64 + n, 1);
                c->commit();
                if (n == 63) c->waitUntilCompleted();
            }
            inner->release();
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(std::vector<uint8_t>(256, 1), std::vector<uint8_t>(static_cast<uint8_t*>(b->contents()), static_cast<uint8_t*>(b->contents()) + 256));
}

// ---- the end of the process ---------------------------------------------------------------------------------------------

/// Commits passes and does not wait for them.
[[noreturn]] void endWhileWorkRuns()
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    auto* device = MTL::CreateSystemDefaultDevice();
    auto* queue = device->newCommandQueue();
    auto* d = MTL::RenderPassDescriptor::renderPassDescriptor();
    auto* color = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatRGBA8Unorm, 512, 512, false);
    color->setUsage(MTL::TextureUsageRenderTarget);
    d->colorAttachments()->object(0)->setTexture(device->newTexture(color));
    d->colorAttachments()->object(0)->setLoadAction(MTL::LoadActionClear);
    for (int i = 0; i < 40; ++i) {
        auto* commands = queue->commandBuffer();
        commands->renderCommandEncoder(d)->endEncoding();
        commands->commit();
    }
    pool->release();
    std::exit(0);
}

TEST(CommandBufferDeathTest, ProcessMayEndWhileWorkRuns)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (int i = 0; i < 20; ++i) EXPECT_EXIT(endWhileWorkRuns(), ::testing::ExitedWithCode(0), "");
}

} // namespace device_test
