// SPDX-License-Identifier: Apache-2.0
// This library on the software device: a view in memory, a layer, and the context that draws into it.
#include "Host.h"

#include "SceneGL.h"

#include <ZALMetal/ZALMetal.h>

#include <SoftMetal/SoftMetal.hpp>

namespace scenes {
namespace {

class ZalHost final : public Host
{
public:
    ZalHost(int width, int height, NSView* view, ZALMetalContext* context) : Host(width, height), view_(view), context_(context) {}

    ~ZalHost() override
    {
        ZALMetalContextDestroy(context_);
        view_->release();
    }

    std::string description() const override
    {
        auto pool = NS::TransferPtr(NS::AutoreleasePool::alloc()->init());
        MTL::Device* device = MTL::CreateSystemDefaultDevice();
        std::string name = device ? device->name()->utf8String() : "?";
        if (device) device->release();
        return "libZALMetal " + version() + " on " + name + ", " + std::to_string(SoftMetal::lanes()) + " lanes";
    }

    void swap() override { ZALMetalContextSwapBuffers(context_); }

private:
    static std::string version()
    {
        return std::to_string(ZALMETAL_VERSION_MAJOR) + "." + std::to_string(ZALMETAL_VERSION_MINOR) + "." +
               std::to_string(ZALMETAL_VERSION_PATCH);
    }

    NSView* view_;
    ZALMetalContext* context_;
};

} // namespace

std::unique_ptr<Host> makeHost(int width, int height, std::string& error)
{
    ZALMetalContext* context = nullptr;
    int result = ZALMetalContextInitFromMTLCommandQueue(context, nullptr, nullptr);
    if (result != ZALMetalResultSuccess) {
        error = "there is no Metal device (the context call returned " + std::to_string(result) + ")";
        return nullptr;
    }
    NSView* view = SoftMetal::newView(width, height);
    result = ZALMetalContextCreateCAMetalLayer(context, view, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatDepth32Float);
    if (result != ZALMetalResultSuccess) {
        error = "the layer could not be made (the call returned " + std::to_string(result) + ")";
        ZALMetalContextDestroy(context);
        view->release();
        return nullptr;
    }
    return std::make_unique<ZalHost>(width, height, view, context);
}

} // namespace scenes
