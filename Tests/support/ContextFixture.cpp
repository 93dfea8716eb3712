// SPDX-License-Identifier: Apache-2.0
#include "support/ContextFixture.h"

#include <algorithm>

namespace support
{

SoftMetal::DeviceOptions intelDevice()
{
    SoftMetal::DeviceOptions options;
    options.name = "Intel(R) SoftMetal";
    return options;
}

void ContextTest::SetUp()
{
    SoftMetal::setValidation(SoftMetal::Validation::Report);
    device = SoftMetal::newDevice(options_);
    queue = device->newCommandQueue();
    ASSERT_EQ(ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue), ZALMetalResultSuccess);
    SoftMetal::takeMessages();
    SoftMetal::setCommandLog(true);
    clearLog();
}

void ContextTest::TearDown()
{
    if (context) ZALMetalContextDestroy(context);
    SoftMetal::setCommandLog(false);
    for (const SoftMetal::Message& message : SoftMetal::takeMessages())
        ADD_FAILURE() << "the device reports [" << message.rule << "] " << message.sentence;
    if (color) color->release();
    if (depth) depth->release();
    if (queue) queue->release();
    if (device) device->release();
}

MTL::Texture* ContextTest::newAttachment(MTL::PixelFormat format, uint32_t width, uint32_t height)
{
    auto* descriptor = MTL::TextureDescriptor::texture2DDescriptor(format, width, height, false);
    descriptor->setStorageMode(MTL::StorageModePrivate);
    descriptor->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    return device->newTexture(descriptor);
}

void ContextTest::attachTextures(uint32_t width, uint32_t height, MTL::PixelFormat colorFormat,
                                 MTL::PixelFormat depthFormat)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    if (color) color->release();
    if (depth) depth->release();
    color = newAttachment(colorFormat, width, height);
    depth = depthFormat == MTL::PixelFormatInvalid ? nullptr : newAttachment(depthFormat, width, height);
    pool->release();
    ASSERT_EQ(ZALMetalContextSetMetalDrawable(context, color, depth), ZALMetalResultSuccess);
    clearLog();
}

std::vector<std::string> ContextTest::calls()
{
    std::vector<std::string> names;
    for (const SoftMetal::LogEntry& entry : log())
        names.push_back(entry.call);
    return names;
}

size_t ContextTest::count(const std::string& call)
{
    auto names = calls();
    return static_cast<size_t>(std::count(names.begin(), names.end(), call));
}

} // namespace support
