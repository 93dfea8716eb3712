// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

namespace device_test {

using Binding = Device;

TEST_F(Binding, FragmentBufferOffsetMovesTheBoundBuffer)
{
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    e->setFragmentBuffer(bufferOf<float>({1, 0, 0, 1, 0, 1, 0, 1}), 0, 1);
    drawFullTarget(e);
    e->setFragmentBufferOffset(16, 1);
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); // lower left half
    finish(e);
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{0, 255, 0, 255}));
}

TEST_F(Binding, VertexBufferOffsetCountsFromTheBuffersStart)
{
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {0, 0, 1, 1});
    e->setVertexBufferOffset(24, 0);
    e->setVertexBufferOffset(24, 0); // the second triangle still
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    finish(e);
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{0, 0, 0, 0}));
}

TEST_F(Binding, OffsetNeedsABuffer)
{
    auto* e = readyToDraw();
    e->setVertexBufferOffset(4, 0);
    EXPECT_TRUE(broken().empty());
    e->setVertexBufferOffset(4, 5); // inline bytes
    e->setFragmentBufferOffset(0, 3);
    EXPECT_EQ(broken(), rules({"bind.no-buffer", "bind.no-buffer"}));
    finish(e);
}

TEST_F(Binding, ResourcesInUseLiveUntilTheWorkIsDone)
{
    auto* e = encoder(texture());
    MTL::Buffer* b = device->newBuffer(16, MTL::ResourceStorageModeShared);
    const MTL::Resource* resources[] = {b, b};
    e->useResource(b, MTL::ResourceUsageRead);
    e->useResources(resources, 2, MTL::ResourceUsageRead | MTL::ResourceUsageWrite, MTL::RenderStageVertex | MTL::RenderStageFragment);
    e->useResource(nullptr, MTL::ResourceUsageRead, MTL::RenderStageVertex);
    EXPECT_GT(b->retainCount(), 1u);
    e->memoryBarrier(MTL::BarrierScopeBuffers, MTL::RenderStageFragment, MTL::RenderStageVertex);
    e->memoryBarrier(resources, 2, MTL::RenderStageFragment, MTL::RenderStageVertex);
    finish(e);
    EXPECT_EQ(b->retainCount(), 1u);
    b->release();
}

} // namespace device_test
