// SPDX-License-Identifier: Apache-2.0
#include "window/Layer.h"

#include "window/Pictures.h"

#include <chrono>

using namespace softmetal;

namespace softmetal {

using inspect::require;
using inspect::Rule;

namespace {

constexpr uint64_t MostDrawables = 3;
constexpr auto LongestWait = std::chrono::seconds(1);

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

} // namespace

// ---- drawable --------------------------------------------------------------------------------------------------------------

DrawableObject::DrawableObject(LayerObject* owner, Ref<TextureObject> image, uint64_t number) : layer(owner), texture(std::move(image)), id(number) {}
DrawableObject::~DrawableObject() { layer->giveBack(texture); }

void DrawableObject::presentNow()
{
    std::vector<MTL::DrawablePresentedHandlerFunction> handlers;
    layer->show(texture);
    {
        std::lock_guard lock(mutex_);
        presentedTime_ = now();
        handlers.swap(handlers_);
    }
    for (const auto& handler : handlers) handler(api(this));
}

void DrawableObject::addHandler(const MTL::DrawablePresentedHandlerFunction& function)
{
    std::lock_guard lock(mutex_);
    handlers_.push_back(function);
}

double DrawableObject::presentedTime()
{
    std::lock_guard lock(mutex_);
    return presentedTime_;
}

// ---- layer ---------------------------------------------------------------------------------------------------------------

const void* LayerObject::deviceIdentity() const
{
    std::lock_guard lock(mutex_);
    return properties_.device ? properties_.device->deviceIdentity() : nullptr;
}

LayerObject::Properties LayerObject::properties() const
{
    std::lock_guard lock(mutex_);
    return properties_;
}

void LayerObject::viewSizeIs(CGSize size)
{
    change([&](Properties& p) {
        if (!p.sizeIsSet) p.size = size;
    });
}

/// A side of the layer in whole pixels; one that no texture has where it is beyond counting.
static uint32_t pixelsOf(CGFloat side)
{
    return side < CGFloat{UINT32_MAX} ? static_cast<uint32_t>(side) : UINT32_MAX;
}

bool LayerObject::fits(const TextureObject& texture) const
{
    return texture.view.width == pixelsOf(properties_.size.width) && texture.view.height == pixelsOf(properties_.size.height) &&
           texture.description.pixelFormat == properties_.pixelFormat && texture.framebufferOnly == properties_.framebufferOnly &&
           texture.device.get() == properties_.device.get();
}

TextureObject* LayerObject::makeTexture() const
{
    TextureDescriptorObject d;
    d.pixelFormat = properties_.pixelFormat;
    d.width = pixelsOf(properties_.size.width);
    d.height = pixelsOf(properties_.size.height);
    d.storageMode = MTL::StorageModePrivate;
    d.usage = properties_.framebufferOnly ? MTL::TextureUsageRenderTarget : MTL::TextureUsageRenderTarget | MTL::TextureUsageShaderRead;
    TextureObject* texture = TextureObject::make(properties_.device.get(), d);
    if (texture) texture->framebufferOnly = properties_.framebufferOnly;
    return texture;
}

DrawableObject* LayerObject::next()
{
    if (inspect::fails("nextDrawable")) return nullptr;
    std::unique_lock lock(mutex_);
    CGSize size = properties_.size;
    if (!require(properties_.device.get() != nullptr, Rule::LayerNoDevice)) return nullptr;
    if (!require(size.width >= 1 && size.height >= 1, Rule::LayerSize, size.width, size.height)) return nullptr;
    if (!returned_.wait_for(lock, LongestWait, [this] { return inUse_ < MostDrawables; })) return nullptr;
    std::erase_if(free_, [this](const Ref<TextureObject>& t) { return !fits(*t); });
    Ref<TextureObject> texture;
    if (free_.empty()) {
        texture = Ref<TextureObject>::adopt(makeTexture());
    } else {
        texture = std::move(free_.back());
        free_.pop_back();
    }
    if (!texture) return nullptr;
    ++inUse_;
    return new DrawableObject(this, std::move(texture), serial_++);
}

void LayerObject::giveBack(const Ref<TextureObject>& texture)
{
    {
        std::lock_guard lock(mutex_);
        --inUse_;
        if (texture.get() == shown_.get()) shownIsReturned_ = true;
        else free_.push_back(texture);
    }
    returned_.notify_one();
}

void LayerObject::show(const Ref<TextureObject>& texture)
{
    std::shared_ptr<Screen> screen;
    {
        std::lock_guard lock(mutex_);
        ++presents_;
        screen = screen_;
        if (texture.get() != shown_.get()) {
            if (shown_ && shownIsReturned_) free_.push_back(shown_);
            shown_ = texture;
            shownIsReturned_ = false;
        }
    }
    if (screen) screen->show(texture->view);
}

void LayerObject::screenIs(std::shared_ptr<Screen> screen)
{
    std::lock_guard lock(mutex_);
    screen_ = std::move(screen);
}

SoftMetal::Presented LayerObject::presented()
{
    std::lock_guard lock(mutex_);
    SoftMetal::Presented result;
    result.count = presents_;
    if (!shown_) return result;
    result.width = shown_->view.width;
    result.height = shown_->view.height;
    result.rgba.resize(size_t{4} * result.width * result.height);
    copyPixels(shown_->view, MTL::PixelFormatRGBA8Unorm, result.rgba.data(), size_t{4} * result.width);
    return result;
}

} // namespace softmetal

// ---- API -----------------------------------------------------------------------------------------------------------------

using Properties = LayerObject::Properties;

CA::MetalLayer* CA::MetalLayer::layer() { return autoreleased(new LayerObject); }
MTL::Device* CA::MetalLayer::device() const { return api(cast<LayerObject>(this)->properties().device.get()); }
MTL::PixelFormat CA::MetalLayer::pixelFormat() const { return cast<LayerObject>(this)->properties().pixelFormat; }
bool CA::MetalLayer::framebufferOnly() const { return cast<LayerObject>(this)->properties().framebufferOnly; }
CGSize CA::MetalLayer::drawableSize() const { return cast<LayerObject>(this)->properties().size; }

void CA::MetalLayer::setDevice(MTL::Device* device)
{
    Ref<DeviceObject> taken(cast<DeviceObject>(device));
    cast<LayerObject>(this)->change([&](Properties& p) { p.device = taken; });
    inspect::note(this, "setDevice", inspect::arg("device", static_cast<const void*>(device)));
}

void CA::MetalLayer::setPixelFormat(MTL::PixelFormat format)
{
    inspect::note(this, "setPixelFormat", inspect::arg("format", format));
    cast<LayerObject>(this)->change([&](Properties& p) { p.pixelFormat = format; });
}

void CA::MetalLayer::setFramebufferOnly(bool only)
{
    inspect::note(this, "setFramebufferOnly", inspect::arg("only", only));
    cast<LayerObject>(this)->change([&](Properties& p) { p.framebufferOnly = only; });
}

void CA::MetalLayer::setDrawableSize(CGSize size)
{
    inspect::note(this, "setDrawableSize", inspect::arg("width", size.width), inspect::arg("height", size.height));
    cast<LayerObject>(this)->change([&](Properties& p) {
        p.size = size;
        p.sizeIsSet = true;
    });
}

CA::MetalDrawable* CA::MetalLayer::nextDrawable()
{
    DrawableObject* drawable = cast<LayerObject>(this)->next();
    inspect::note(this, "nextDrawable", inspect::arg("result", static_cast<const void*>(api(drawable))));
    return drawable ? autoreleased(drawable) : nullptr;
}

CA::MetalLayer* CA::MetalDrawable::layer() const { return api(cast<DrawableObject>(this)->layer.get()); }
MTL::Texture* CA::MetalDrawable::texture() const { return api(cast<DrawableObject>(this)->texture.get()); }
void MTL::Drawable::present() { cast<DrawableObject>(this)->presentNow(); }
void MTL::Drawable::presentAtTime(CFTimeInterval) { present(); }
void MTL::Drawable::presentAfterMinimumDuration(CFTimeInterval) { present(); }
CFTimeInterval MTL::Drawable::presentedTime() const { return cast<DrawableObject>(this)->presentedTime(); }
NS::UInteger MTL::Drawable::drawableID() const { return cast<DrawableObject>(this)->id; }
void MTL::Drawable::addPresentedHandler(const DrawablePresentedHandlerFunction& function) { cast<DrawableObject>(this)->addHandler(function); }
