// SPDX-License-Identifier: Apache-2.0
// Labels of every kind of object, debug groups, signposts and fences: they change nothing that is drawn.
#include "DeviceFixture.h"

namespace device_test
{

using Label = Device;

template <class T>
std::string labelOf(T* object)
{
    return object->label() ? object->label()->utf8String() : "";
}

template <class T>
void expectKeepsLabel(T* object, const char* kind)
{
    EXPECT_EQ(object->label(), nullptr) << kind;
    object->setLabel(text("name"));
    EXPECT_EQ(labelOf(object), "name") << kind;
    object->setLabel(nullptr);
    EXPECT_EQ(object->label(), nullptr) << kind;
}

TEST_F(Label, OfEachObjectThatCanBeNamedLater)
{
    expectKeepsLabel(buffer(16), "buffer");
    expectKeepsLabel(texture(), "texture");
    expectKeepsLabel(owned(texture()->newTextureView(MTL::PixelFormatRGBA8Unorm)), "texture view");
    expectKeepsLabel(queue, "queue");
    expectKeepsLabel(owned(device->newFence()), "fence");
    expectKeepsLabel(library(), "library");
    expectKeepsLabel(function("plain"), "function");
    auto* render = encoder(texture());
    expectKeepsLabel(commands, "command buffer");
    expectKeepsLabel(render, "render encoder");
    finish(render);
    auto* copies = blit();
    expectKeepsLabel(copies, "blit encoder");
    finish(copies);
}

TEST_F(Label, OfStatesIsTheirDescriptors)
{
    auto* drawing = pipelineDescriptor();
    auto* sampling = owned(MTL::SamplerDescriptor::alloc()->init());
    auto* testing = owned(MTL::DepthStencilDescriptor::alloc()->init());
    expectKeepsLabel(drawing, "pipeline descriptor");
    expectKeepsLabel(sampling, "sampler descriptor");
    expectKeepsLabel(testing, "depth-stencil descriptor");
    drawing->setLabel(text("pipeline"));
    sampling->setLabel(text("sampler"));
    testing->setLabel(text("test"));
    EXPECT_EQ(labelOf(pipeline(drawing)), "pipeline");
    EXPECT_EQ(labelOf(owned(device->newSamplerState(sampling))), "sampler");
    EXPECT_EQ(labelOf(owned(device->newDepthStencilState(testing))), "test");
}

TEST_F(Label, DebugGroupsNestOnEveryEncoder)
{
    SoftMetal::setCommandLog(true);
    auto* e = readyToDraw();
    commands->pushDebugGroup(text("frame"));
    auto* target = texture();
    e->endEncoding();
    e = commands->renderCommandEncoder(pass(target));
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {1, 0, 0, 1});
    e->pushDebugGroup(text("outer"));
    e->pushDebugGroup(text("inner"));
    e->insertDebugSignpost(text("here"));
    drawFullTarget(e);
    e->popDebugGroup();
    e->popDebugGroup();
    e->endEncoding();
    auto* copies = commands->blitCommandEncoder();
    copies->pushDebugGroup(text("copies"));
    copies->popDebugGroup();
    copies->endEncoding();
    commands->popDebugGroup();
    commands->commit();
    commands->waitUntilCompleted();
    std::vector<std::string> names;
    for (const auto& entry : SoftMetal::takeCommandLog()) {
        if (entry.call == "pushDebugGroup" || entry.call == "insertDebugSignpost") names.push_back(entry.text("name"));
    }
    EXPECT_EQ(names, (std::vector<std::string>{"frame", "outer", "inner", "here", "copies"}));
    EXPECT_EQ(pixel(target, 3, 3), (Pixel{255, 0, 0, 255}));
}

// ---- fences --------------------------------------------------------------------------------------------------------

TEST_F(Label, FencesAreAcceptedByBothEncoders)
{
    auto* fence = owned(device->newFence());
    EXPECT_EQ(fence->device(), device);
    auto* e = readyToDraw();
    e->waitForFence(fence, MTL::RenderStageVertex);
    drawFullTarget(e);
    e->updateFence(fence, MTL::RenderStageFragment);
    finish(e);
    auto* copies = blit();
    copies->waitForFence(fence);
    copies->updateFence(fence);
    finish(copies);
    EXPECT_EQ(commands->status(), MTL::CommandBufferStatusCompleted);
}

TEST_F(Label, FencesOfEndedEncodersAndNilAreReported)
{
    auto* fence = owned(device->newFence());
    auto* e = encoder(texture());
    e->updateFence(nullptr, MTL::RenderStageFragment);
    EXPECT_EQ(broken(), rules({"encoder.nil-fence"}));
    e->endEncoding();
    e->updateFence(fence, MTL::RenderStageFragment);
    e->waitForFence(fence, MTL::RenderStageVertex);
    EXPECT_EQ(broken(), rules({"encoder.ended", "encoder.ended"}));
    auto* copies = commands->blitCommandEncoder();
    copies->waitForFence(nullptr);
    EXPECT_EQ(broken(), rules({"encoder.nil-fence"}));
    copies->endEncoding();
    copies->updateFence(fence);
    copies->waitForFence(fence);
    EXPECT_EQ(broken(), rules({"encoder.ended", "encoder.ended"}));
}

} // namespace device_test
