// SPDX-License-Identifier: Apache-2.0
// The device's counters, and its own lines in the log.
#include "DeviceFixture.h"

#include <algorithm>
#include <mutex>

namespace device_test {

using Counters = Device;

TEST_F(Counters, DrawsPassesAndCommandBuffersCountAsTheyAreHandedOver)
{
    const auto before = SoftMetal::counters();
    auto* e = readyToDraw();
    drawFullTarget(e);
    drawFullTarget(e);
    EXPECT_EQ(SoftMetal::counters().draws, before.draws) << "the encoder is open";
    finish(e);
    finish(blit());
    const auto after = SoftMetal::counters();
    EXPECT_EQ(after.draws - before.draws, 2u);
    EXPECT_EQ(after.passes - before.passes, 1u);
    EXPECT_EQ(after.commandBuffers - before.commandBuffers, 2u);
}

TEST_F(Counters, PipelinesCountAndTakeTime)
{
    const auto before = SoftMetal::counters();
    pipeline();
    pipeline("place");
    const auto after = SoftMetal::counters();
    EXPECT_EQ(after.pipelines - before.pipelines, 2u);
    EXPECT_GT(after.pipelineMilliseconds, before.pipelineMilliseconds);
}

TEST_F(Counters, UploadsCountTheirBytes)
{
    const auto before = SoftMetal::counters();
    bufferOf(std::vector<uint32_t>(10));
    buffer(100);
    const std::vector<uint8_t> texels(4 * 2 * 3);
    texture()->replaceRegion(MTL::Region(1, 1, 2, 3), 0, texels.data(), 8);
    EXPECT_EQ(SoftMetal::counters().bytesUploaded - before.bytesUploaded, 40u + 24u);
}

TEST_F(Counters, ObjectsAreThoseAlive)
{
    EXPECT_EQ(SoftMetal::counters().objects, SoftMetal::objectsAlive());
    const auto before = SoftMetal::counters().objects;
    MTL::Buffer* made = device->newBuffer(4, MTL::ResourceStorageModeShared);
    EXPECT_EQ(SoftMetal::counters().objects - before, 1);
    made->release();
    EXPECT_EQ(SoftMetal::counters().objects, before);
}

TEST_F(Counters, WhatIsBuiltIsADebugLine)
{
    std::mutex mutex;
    std::vector<std::string> lines;
    SoftMetal::setLogSink([&](const std::string& line) {
        std::lock_guard lock(mutex);
        lines.push_back(line);
    });
    auto built = [&] {
        std::lock_guard lock(mutex);
        return std::count_if(lines.begin(), lines.end(), [](const std::string& line) { return line.rfind("SoftMetal: a pipeline state was built in ", 0) == 0; });
    };
    pipeline();
    EXPECT_EQ(built(), 0);
    SoftMetal::setLogLevel(SoftMetal::LogLevel::Debug);
    pipeline("place");
    SoftMetal::setLogLevel(SoftMetal::LogLevel::Error);
    EXPECT_EQ(built(), 1);
}

} // namespace device_test
