// SPDX-License-Identifier: Apache-2.0
// SOFTMETAL_THREADS=0: no thread is made; what is committed has been drawn when the call returns.
#include "softmetal/device/DeviceFixture.h"

#include <cstdlib>
#include <filesystem>
#include <thread>

namespace device_test
{
namespace
{

/// Before anything asks for the device: the number of threads is chosen once.
const bool Chosen = setenv("SOFTMETAL_THREADS", "0", 1) == 0;

size_t threadsOfTheProcess()
{
    size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        count += !entry.path().empty();
    return count;
}

using CallerThread = Device;

TEST_F(CallerThread, DrawsBeforeCommitReturns)
{
    ASSERT_TRUE(Chosen);
    auto* target = texture();
    auto* e = encoder(target);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {1, 0, 0, 1});
    drawFullTarget(e);
    e->endEncoding();
    commands->commit();
    EXPECT_EQ(commands->status(), MTL::CommandBufferStatusCompleted);
    EXPECT_EQ(pixel(target, 3, 3), (Pixel{255, 0, 0, 255}));
}

TEST_F(CallerThread, IsTheOnlyOne)
{
    EXPECT_EQ(threadsOfTheProcess(), 1u);
    EXPECT_EQ(SoftMetal::workerThreads(), 1u);
}

TEST_F(CallerThread, RunsTheHandlers)
{
    std::thread::id seen;
    auto* c = queue->commandBuffer();
    c->addCompletedHandler([&](MTL::CommandBuffer*) { seen = std::this_thread::get_id(); });
    c->commit();
    EXPECT_EQ(seen, std::this_thread::get_id());
}

TEST_F(CallerThread, RunsWhatAHandlerCommits)
{
    auto *first = queue->commandBuffer(), *second = queue->commandBuffer();
    first->addCompletedHandler([&](MTL::CommandBuffer* c) {
        c->waitUntilCompleted(); // does not wait for itself
        second->commit();
    });
    first->commit();
    EXPECT_EQ(second->status(), MTL::CommandBufferStatusCompleted);
}

TEST_F(CallerThread, KeepsTheOrderOfEnqueueing)
{
    std::vector<int> order;
    auto *first = queue->commandBuffer(), *second = queue->commandBuffer();
    first->addCompletedHandler([&](MTL::CommandBuffer*) { order.push_back(1); });
    second->addCompletedHandler([&](MTL::CommandBuffer*) { order.push_back(2); });
    first->enqueue();
    second->commit(); // waits for its turn
    EXPECT_TRUE(order.empty());
    first->commit();
    EXPECT_EQ(order, (std::vector<int>{1, 2}));
}

TEST_F(CallerThread, RunsWhatWaitedForWorkThatNeverCame)
{
    auto* inner = NS::AutoreleasePool::alloc()->init();
    queue->commandBuffer()->enqueue();
    auto* second = queue->commandBuffer()->retain();
    second->commit();
    EXPECT_EQ(second->status(), MTL::CommandBufferStatusCommitted);
    inner->release();
    EXPECT_EQ(second->status(), MTL::CommandBufferStatusCompleted);
    second->release();
}

TEST_F(CallerThread, MayBeAnyOfSeveral)
{
    std::vector<std::thread> callers;
    for (int i = 0; i < 4; ++i) {
        callers.emplace_back([this] {
            auto* inner = NS::AutoreleasePool::alloc()->init();
            for (int n = 0; n < 50; ++n) {
                auto* c = queue->commandBuffer();
                c->blitCommandEncoder()->endEncoding();
                c->commit();
                EXPECT_EQ(c->status(), MTL::CommandBufferStatusCompleted);
            }
            inner->release();
        });
    }
    for (std::thread& caller : callers)
        caller.join();
}

} // namespace
} // namespace device_test
