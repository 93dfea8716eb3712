// SPDX-License-Identifier: Apache-2.0
// The messages of a layer, where metal-cpp does not send them.
#include <AppKit/AppKit.hpp>

#include <objc/runtime.h>

#if !__has_include(<QuartzCore/CAMetalLayer.hpp>)
namespace CA
{

MetalLayer* MetalLayer::layer()
{
    return sendMessage<MetalLayer*>(reinterpret_cast<const void*>(objc_lookUpClass("CAMetalLayer")),
                                    sel_registerName("layer"));
}

void MetalLayer::setDevice(MTL::Device* device)
{
    sendMessage<void>(this, sel_registerName("setDevice:"), device);
}

void MetalLayer::setPixelFormat(MTL::PixelFormat pixelFormat)
{
    sendMessage<void>(this, sel_registerName("setPixelFormat:"), pixelFormat);
}

void MetalLayer::setFramebufferOnly(bool framebufferOnly)
{
    sendMessage<void>(this, sel_registerName("setFramebufferOnly:"), framebufferOnly);
}

CGSize MetalLayer::drawableSize() const
{
    return sendMessage<CGSize>(this, sel_registerName("drawableSize"));
}

void MetalLayer::setDrawableSize(CGSize drawableSize)
{
    sendMessage<void>(this, sel_registerName("setDrawableSize:"), drawableSize);
}

MetalDrawable* MetalLayer::nextDrawable()
{
    return sendMessage<MetalDrawable*>(this, sel_registerName("nextDrawable"));
}

}
#endif
