// SPDX-License-Identifier: Apache-2.0
// Views, layers and drawables: in memory, and on a screen where the view has one.
#pragma once

#include "encoding/Records.h"
#include "window/Screen.h"

#include <AppKit/AppKit.hpp>
#include <QuartzCore/QuartzCore.hpp>
#include <SoftMetal/SoftMetal.hpp>

#include <condition_variable>
#include <memory>
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
    void addHandler(const MTL::DrawablePresentedHandlerFunction& function);
    double presentedTime();

    const Ref<LayerObject> layer;
    const Ref<TextureObject> texture;
    const uint64_t id;

private:
    std::mutex mutex_; // guards what follows: presentation is the queue thread's
    std::vector<MTL::DrawablePresentedHandlerFunction> handlers_;
    double presentedTime_ = 0;
};

/// Hands out textures of its size and format, at most three at a time, and keeps the one presented last from being drawn
/// to until another takes its place.
class LayerObject final : public ObjectOf<CA::MetalLayer>, public inspect::Described
{
public:
    const char* className() const override { return "CAMetalLayer"; }
    const void* deviceIdentity() const override;
    std::string labelText() const override { return "(layer)"; }

    struct Properties
    {
        Ref<DeviceObject> device;
        MTL::PixelFormat pixelFormat = MTL::PixelFormatBGRA8Unorm;
        bool framebufferOnly = true;
        CGSize size{0, 0};
        bool sizeIsSet = false; // else it follows the view's
    };
    Properties properties() const;
    template <class Function>
    void change(Function function)
    {
        std::lock_guard lock(mutex_);
        function(properties_);
    }
    void viewSizeIs(CGSize size);
    void screenIs(std::shared_ptr<Screen> screen); // null for none

    /// Null when there is no device, the size is empty, or all textures stay in use for a second.
    DrawableObject* next();
    void giveBack(const Ref<TextureObject>& texture);
    void show(const Ref<TextureObject>& texture);
    SoftMetal::Presented presented();

private:
    bool fits(const TextureObject& texture) const;
    TextureObject* makeTexture() const;

    mutable std::mutex mutex_; // guards everything
    std::condition_variable returned_;
    Properties properties_;
    std::vector<Ref<TextureObject>> free_;
    uint64_t inUse_ = 0, serial_ = 0, presents_ = 0;
    Ref<TextureObject> shown_; // presented last
    bool shownIsReturned_ = false;
    std::shared_ptr<Screen> screen_;
};

class XWindow;

class ViewObject final : public ObjectOf<NSView>
{
public:
    ~ViewObject() override;
    const char* className() const override { return "NSView"; }
    void carry(LayerObject* newLayer);
    void sizeIs(CGSize newSize);

    CGSize size{0, 0};
    bool wantsLayer = false, postsFrameChanges = false;
    Ref<LayerObject> layer;
    std::shared_ptr<XWindow> window; // null: in memory only
};

} // namespace softmetal
