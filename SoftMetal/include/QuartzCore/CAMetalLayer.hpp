// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.hpp>
#include <Metal/MTLPixelFormat.hpp>

namespace MTL
{
class Device;
}

namespace CA
{

class MetalDrawable;

/// Hands out textures to draw the frames of a view into.
class SOFTMETAL_API MetalLayer : public NS::Referencing<MetalLayer>
{
public:
    static MetalLayer* layer();
    MTL::Device* device() const;
    void setDevice(MTL::Device* device);
    MTL::PixelFormat pixelFormat() const;
    void setPixelFormat(MTL::PixelFormat pixelFormat);
    bool framebufferOnly() const;
    void setFramebufferOnly(bool framebufferOnly);
    CGSize drawableSize() const;
    void setDrawableSize(CGSize drawableSize);
    /// The next texture that is not in flight; waits up to a second for one. Null when there is none.
    MetalDrawable* nextDrawable();
};

}
