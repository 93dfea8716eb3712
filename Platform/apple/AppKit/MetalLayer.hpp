// SPDX-License-Identifier: Apache-2.0
// A CAMetalLayer* for the release of metal-cpp that has no class for it; the interface is the one of the later releases.
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.hpp>
#include <Metal/Metal.hpp>
#include <QuartzCore/CAMetalDrawable.hpp>

namespace CA
{

class MetalLayer : public NS::Referencing<MetalLayer>
{
public:
    static MetalLayer* layer(); // autoreleased

    void setDevice(MTL::Device* device);
    void setPixelFormat(MTL::PixelFormat pixelFormat);
    void setFramebufferOnly(bool framebufferOnly);

    CGSize drawableSize() const; // in pixels
    void setDrawableSize(CGSize drawableSize);

    MetalDrawable* nextDrawable(); // autoreleased; null when none is free
};

}
