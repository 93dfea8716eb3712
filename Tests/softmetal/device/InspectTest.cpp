// SPDX-License-Identifier: Apache-2.0
// The command log, faults, and the machine's devices.
#include "DeviceFixture.h"

#include <chrono>
#include <cstdlib>
#include <functional>
#include <thread>

namespace device_test {

// ---- command log ----------------------------------------------------------------------------------------------------------

class CommandLog : public Device
{
protected:
    static std::vector<std::string> calls()
    {
        std::vector<std::string> names;
        for (const auto& entry : SoftMetal::takeCommandLog()) names.push_back(entry.call);
        return names;
    }
};

TEST_F(CommandLog, IsOffAtTheStart)
{
    buffer(4);
    EXPECT_TRUE(calls().empty());
}

TEST_F(CommandLog, ListsCallsInTheirOrder)
{
    auto* t = texture();
    SoftMetal::setCommandLog(true);
    auto* e = encoder(t);
    e->setCullMode(MTL::CullModeBack);
    e->endEncoding();
    commands->commit();
    commands->waitUntilCompleted();
    EXPECT_EQ(calls(), (std::vector<std::string>{"commandBuffer", "renderCommandEncoder", "setCullMode", "endEncoding", "commit", "waitUntilCompleted"}));
}

TEST_F(CommandLog, EntriesHoldArgumentsReceiverAndLabel)
{
    auto* e = encoder(texture());
    e->setLabel(text("first pass"));
    SoftMetal::setCommandLog(true);
    e->setViewport(MTL::Viewport{1, 2, 30, 40, 0, 1});
    e->endEncoding();
    auto entries = SoftMetal::takeCommandLog();
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].receiver, e);
    EXPECT_EQ(entries[0].label, "'first pass'");
    EXPECT_EQ(entries[0].number("height"), 40);
    EXPECT_EQ(entries[0].number("no such argument"), 0);
}

TEST_F(CommandLog, PassNamesItsAttachments)
{
    auto *t = texture();
    SoftMetal::setCommandLog(true);
    encoder(t)->endEncoding();
    for (const auto& entry : SoftMetal::takeCommandLog())
        if (entry.call == "renderCommandEncoder") {
            EXPECT_EQ(entry.object("color0"), t);
            EXPECT_EQ(entry.number("color0.load"), MTL::LoadActionClear);
            EXPECT_EQ(entry.object("depth"), nullptr);
        }
}

TEST_F(CommandLog, MayBeOfOneDevice)
{
    auto* other = owned(SoftMetal::newDevice({}));
    SoftMetal::setCommandLog(other, true);
    buffer(4);
    owned(other->newBuffer(8, MTL::ResourceStorageModeShared))->didModifyRange(NS::Range(0, 8));
    EXPECT_EQ(calls(), (std::vector<std::string>{"newBuffer", "didModifyRange"}));
    SoftMetal::setCommandLog(other, false);
    owned(other->newBuffer(8, MTL::ResourceStorageModeShared));
    EXPECT_TRUE(calls().empty());
}

// ---- faults -----------------------------------------------------------------------------------------------------------------

using Faults = Device;

TEST_F(Faults, FailTheNamedCallOnce)
{
    SoftMetal::injectFault("newBuffer", 2, false);
    EXPECT_NE(buffer(4), nullptr);
    EXPECT_EQ(device->newBuffer(4, MTL::ResourceStorageModeShared), nullptr);
    EXPECT_NE(buffer(4), nullptr);
    EXPECT_NE(texture(), nullptr);
    EXPECT_EQ(SoftMetal::failableCalls("newBuffer"), 3u);
    EXPECT_EQ(SoftMetal::failableCalls("*"), 4u);
}

TEST_F(Faults, PersistentOnesStay)
{
    SoftMetal::injectFault("newTexture", 1, true);
    EXPECT_EQ(device->newTexture(textureDescriptor()), nullptr);
    EXPECT_EQ(device->newTexture(textureDescriptor()), nullptr);
    SoftMetal::clearFaults();
    EXPECT_NE(texture(), nullptr);
}

TEST_F(Faults, AllPointsTogether)
{
    SoftMetal::injectFault("*", 2, false);
    EXPECT_NE(buffer(4), nullptr);
    EXPECT_EQ(device->newTexture(textureDescriptor()), nullptr);
    EXPECT_NE(sampler(), nullptr);
}

TEST_F(Faults, ReachEveryPoint)
{
    auto* layer = CA::MetalLayer::layer();
    layer->setDevice(device);
    layer->setDrawableSize(CGSize{4, 4});
    library();
    NS::Error* error = nullptr;
    auto* view = texture();
    auto* samplers = owned(MTL::SamplerDescriptor::alloc()->init());
    auto* depths = owned(MTL::DepthStencilDescriptor::alloc()->init());
    auto* pipelines = pipelineDescriptor();
    struct Row
    {
        const char* point;
        std::function<const void*()> call;
    };
    const std::vector<Row> rows = {
        {"newBuffer", [&] { return device->newBuffer(4, MTL::ResourceStorageModeShared); }},
        {"newTexture", [&] { return device->newTexture(textureDescriptor()); }},
        {"newTextureView", [&] { return view->newTextureView(MTL::PixelFormatRGBA8Unorm); }},
        {"newSamplerState", [&] { return device->newSamplerState(samplers); }},
        {"newDepthStencilState", [&] { return device->newDepthStencilState(depths); }},
        {"newFence", [&] { return device->newFence(); }},
        {"newLibrary", [&] { return device->newLibrary(text(Programs), nullptr, &error); }},
        {"newFunction", [&] { return library()->newFunction(text("plain")); }},
        {"newRenderPipelineState", [&] { return device->newRenderPipelineState(pipelines, &error); }},
        {"newCommandQueue", [&] { return device->newCommandQueue(); }},
        {"nextDrawable", [&] { return layer->nextDrawable(); }},
        {"commandBuffer", [&] { return queue->commandBuffer(); }},
        {"renderCommandEncoder", [&] { return queue->commandBuffer()->renderCommandEncoder(pass(texture())); }},
        {"blitCommandEncoder", [&] { return queue->commandBuffer()->blitCommandEncoder(); }},
    };
    for (const Row& row : rows) {
        SoftMetal::injectFault(row.point, 1, false);
        EXPECT_EQ(row.call(), nullptr) << row.point;
    }
    EXPECT_NE(error, nullptr);
}

TEST_F(Faults, DoNotTouchWhatMayNotFailUnnamed)
{
    SoftMetal::injectFault("*", 1, true);
    auto* c = queue->commandBuffer();
    EXPECT_NE(c, nullptr);
    EXPECT_NE(c->blitCommandEncoder(), nullptr);
    SoftMetal::clearFaults();
    SoftMetal::takeMessages(); // the encoder was never ended
}

// ---- devices ----------------------------------------------------------------------------------------------------------------

using Machine = Device;

TEST_F(Machine, HasOneDevice)
{
    auto* all = owned(MTL::CopyAllDevices());
    ASSERT_EQ(all->count(), 1u);
    EXPECT_EQ(all->object<MTL::Device>(0), device);
    std::string name = device->name()->utf8String();
    EXPECT_EQ(name.rfind("SoftMetal (", 0), 0u) << name;
}

TEST_F(Machine, MayHaveNone)
{
    SoftMetal::setDevices({});
    EXPECT_EQ(MTL::CreateSystemDefaultDevice(), nullptr);
    EXPECT_EQ(owned(MTL::CopyAllDevices())->count(), 0u);
    SoftMetal::resetDevices();
    EXPECT_NE(owned(MTL::CreateSystemDefaultDevice()), nullptr);
}

TEST_F(Machine, TakesNameAndAbsenceFromTheEnvironment)
{
    setenv("SOFTMETAL_DEVICE_NAME", "Renamed", 1);
    SoftMetal::resetDevices();
    EXPECT_STREQ(owned(MTL::CreateSystemDefaultDevice())->name()->utf8String(), "Renamed");
    unsetenv("SOFTMETAL_DEVICE_NAME");
    setenv("SOFTMETAL_NO_DEVICE", "1", 1);
    SoftMetal::resetDevices();
    EXPECT_EQ(MTL::CreateSystemDefaultDevice(), nullptr);
    setenv("SOFTMETAL_NO_DEVICE", "0", 1);
    SoftMetal::resetDevices();
    EXPECT_NE(owned(MTL::CreateSystemDefaultDevice()), nullptr);
    unsetenv("SOFTMETAL_NO_DEVICE");
}

TEST_F(Machine, GivesTheDevicesThatWereSet)
{
    SoftMetal::DeviceOptions options;
    options.name = "Intel(R) for a test";
    auto* chosen = owned(SoftMetal::newDevice(options));
    SoftMetal::setDevices({chosen, device});
    EXPECT_EQ(owned(MTL::CreateSystemDefaultDevice()), chosen);
    EXPECT_STREQ(chosen->name()->utf8String(), "Intel(R) for a test");
    EXPECT_EQ(owned(MTL::CopyAllDevices())->count(), 2u);
}

TEST_F(Machine, NothingStaysAliveAfterAFrame)
{
    auto frame = [this] {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        auto* d = SoftMetal::newDevice({});
        auto* q = d->newCommandQueue();
        auto* description = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatRGBA8Unorm, 4, 4, false);
        description->setUsage(MTL::TextureUsageRenderTarget);
        auto* t = d->newTexture(description);
        auto* c = q->commandBuffer();
        c->renderCommandEncoder(pass(t))->endEncoding();
        c->commit();
        c->waitUntilCompleted();
        t->release();
        q->release();
        d->release();
        inner->release();
    };
    frame();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    auto classes = SoftMetal::objectsAliveByClass();
    frame();
    // The queue's thread lets go of the last references a moment after the wait.
    for (int i = 0; i < 1000 && SoftMetal::objectsAliveByClass() != classes; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    EXPECT_EQ(SoftMetal::objectsAliveByClass(), classes);
}

} // namespace device_test
