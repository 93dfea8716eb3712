// SPDX-License-Identifier: Apache-2.0
// Views, layers and drawables in memory.
#pragma once

#include "encoding/Records.h"

#include <AppKit/AppKit.hpp>
#include <QuartzCore/QuartzCore.hpp>
#include <SoftMetal/SoftMetal.hpp>

#include <condition_variable>
#include <mutex>

namespace softmetal {

class LayerObject;

class DrawableObject final : public ObjectOf<CA::MetalDrawable>, public Presentable
{
public:
    DrawableObject(LayerObject* owner, Ref<TextureObject> image, uint64_t number);
    ~DrawableObject() override; // gives the texture back to the layer
    const char* className() const override { return "CAMetalDrawable"; }
    void presentNow() override;

    Ref<LayerObject> layer;
    Ref<TextureObject> texture;
    const uint64_t id;
    std::vector<MTL::DrawablePresentedHandlerFunction> handlers;
    double presentedTime = 0;
};

class LayerObject final : public ObjectOf<CA::MetalLayer>
{
public:
    const char* className() const override { return "CAMetalLayer"; }

    /// Null when there is no device, the size is empty, or all textures stay in use for a second.
    DrawableObject* next();
    void giveBack(Ref<TextureObject> texture);
    void show(const Ref<TextureObject>& texture);
    SoftMetal::Presented presented();

    Ref<DeviceObject> device;
    MTL::PixelFormat pixelFormat = MTL::PixelFormatBGRA8Unorm;
    bool framebufferOnly = true;
    CGSize size{0, 0};

private:
    bool fits(const TextureObject& texture) const;
    TextureObject* makeTexture();

    std::mutex mutex_;
    std::condition_variable returned_;
    std::vector<Ref<TextureObject>> free_;
    uint64_t inUse_ = 0, serial_ = 0, presents_ = 0;
    std::vector<uint8_t> shown_; // texels of the last frame presented
    Ref<TextureObject> shownTexture_;
};

class ViewObject final : public ObjectOf<NSView>
{
public:
    const char* className() const override { return "NSView"; }
    CGSize size{0, 0};
    bool wantsLayer = false, postsFrameChanges = false;
    Ref<LayerObject> layer;
};

} // namespace softmetal
