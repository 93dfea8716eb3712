// SPDX-License-Identifier: Apache-2.0
#include "window/Layer.h"

#include "formats/PixelFormat.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"

#include <chrono>

using namespace softmetal;

namespace softmetal {
namespace {

constexpr uint64_t MostDrawables = 3;
constexpr auto LongestWait = std::chrono::seconds(1);

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

} // namespace

// ---- drawable --------------------------------------------------------------------------------------------------------------

DrawableObject::DrawableObject(LayerObject* owner, Ref<TextureObject> image, uint64_t number) : layer(owner), texture(std::move(image)), id(number) {}
DrawableObject::~DrawableObject() { layer->giveBack(std::move(texture)); }

void DrawableObject::presentNow()
{
    presentedTime = now();
    layer->show(texture);
    for (const auto& handler : handlers) handler(api(this));
}

// ---- layer ---------------------------------------------------------------------------------------------------------------

bool LayerObject::fits(const TextureObject& texture) const
{
    return texture.view.width == static_cast<uint32_t>(size.width) && texture.view.height == static_cast<uint32_t>(size.height) &&
           texture.description.pixelFormat == pixelFormat;
}

TextureObject* LayerObject::makeTexture()
{
    TextureDescriptorObject d;
    d.pixelFormat = pixelFormat;
    d.width = static_cast<NS::UInteger>(size.width);
    d.height = static_cast<NS::UInteger>(size.height);
    d.storageMode = MTL::StorageModePrivate;
    d.usage = framebufferOnly ? MTL::TextureUsageRenderTarget : MTL::TextureUsageRenderTarget | MTL::TextureUsageShaderRead;
    std::string why;
    return TextureObject::make(device.get(), d, why);
}

DrawableObject* LayerObject::next()
{
    if (!device || size.width < 1 || size.height < 1 || inspect::fails("nextDrawable")) return nullptr;
    std::unique_lock lock(mutex_);
    if (!returned_.wait_for(lock, LongestWait, [this] { return inUse_ < MostDrawables; })) return nullptr;
    std::erase_if(free_, [this](const Ref<TextureObject>& t) { return !fits(*t); });
    Ref<TextureObject> texture;
    if (!free_.empty()) {
        texture = std::move(free_.back());
        free_.pop_back();
    } else {
        texture = Ref<TextureObject>::adopt(makeTexture());
    }
    if (!texture) return nullptr;
    ++inUse_;
    return new DrawableObject(this, std::move(texture), serial_++);
}

void LayerObject::giveBack(Ref<TextureObject> texture)
{
    {
        std::lock_guard lock(mutex_);
        --inUse_;
        if (fits(*texture)) free_.push_back(std::move(texture));
    }
    returned_.notify_one();
}

void LayerObject::show(const Ref<TextureObject>& texture)
{
    std::lock_guard lock(mutex_);
    ++presents_;
    const abi::TextureLevel& level = texture->view.levels[0];
    shown_.assign(level.data, level.data + level.planePitch);
    shownTexture_ = texture;
}

SoftMetal::Presented LayerObject::presented()
{
    std::lock_guard lock(mutex_);
    SoftMetal::Presented result;
    result.count = presents_;
    if (!shownTexture_) return result;
    const abi::Texture& view = shownTexture_->view;
    const auto& format = *formats::pixelFormatInfo(view.format);
    result.width = view.width;
    result.height = view.height;
    for (uint32_t y = 0; y < view.height; ++y) {
        for (uint32_t x = 0; x < view.width; ++x) {
            float rgba[4];
            formats::unpack(format, shown_.data() + static_cast<size_t>(y) * view.levels[0].rowPitch + static_cast<size_t>(x) * format.bytes, rgba);
            uint8_t bytes[4];
            formats::pack(*formats::pixelFormatInfo(70), rgba, bytes);
            result.rgba.insert(result.rgba.end(), bytes, bytes + 4);
        }
    }
    return result;
}

} // namespace softmetal

// ---- API -----------------------------------------------------------------------------------------------------------------

CA::MetalLayer* CA::MetalLayer::layer() { return autoreleased(new LayerObject); }
MTL::Device* CA::MetalLayer::device() const { return api(cast<LayerObject>(this)->device.get()); }
void CA::MetalLayer::setDevice(MTL::Device* device) { cast<LayerObject>(this)->device = Ref<DeviceObject>(cast<DeviceObject>(device)); }
MTL::PixelFormat CA::MetalLayer::pixelFormat() const { return cast<LayerObject>(this)->pixelFormat; }
void CA::MetalLayer::setPixelFormat(MTL::PixelFormat format) { cast<LayerObject>(this)->pixelFormat = format; }
bool CA::MetalLayer::framebufferOnly() const { return cast<LayerObject>(this)->framebufferOnly; }
void CA::MetalLayer::setFramebufferOnly(bool only) { cast<LayerObject>(this)->framebufferOnly = only; }
CGSize CA::MetalLayer::drawableSize() const { return cast<LayerObject>(this)->size; }

void CA::MetalLayer::setDrawableSize(CGSize size)
{
    inspect::note(this, "setDrawableSize", inspect::arg("width", size.width), inspect::arg("height", size.height));
    cast<LayerObject>(this)->size = size;
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
CFTimeInterval MTL::Drawable::presentedTime() const { return cast<DrawableObject>(this)->presentedTime; }
NS::UInteger MTL::Drawable::drawableID() const { return cast<DrawableObject>(this)->id; }
void MTL::Drawable::addPresentedHandler(const DrawablePresentedHandlerFunction& function) { cast<DrawableObject>(this)->handlers.push_back(function); }

void NSView::setWantsLayer(bool wantsLayer) { cast<ViewObject>(this)->wantsLayer = wantsLayer; }

void NSView::setLayer(CA::MetalLayer* layer)
{
    auto& view = *cast<ViewObject>(this);
    view.layer = Ref<LayerObject>(cast<LayerObject>(layer));
    if (view.layer && view.layer->size.width == 0) view.layer->size = view.size; // a layer takes its view's size at first
}

CGRect NSView::bounds() const { return CGRect{{0, 0}, cast<ViewObject>(this)->size}; }
void NSView::setPostsFrameChangedNotifications(bool posts) { cast<ViewObject>(this)->postsFrameChanges = posts; }

CFStringRef NSViewFrameDidChangeNotificationName()
{
    static NS::String* name = newString("NSViewFrameDidChangeNotification");
    return reinterpret_cast<CFStringRef>(name);
}

namespace SoftMetal {

NSView* newView(double width, double height)
{
    auto* view = new ViewObject;
    view->size = {width, height};
    return api(view);
}

void setViewSize(NSView* view, double width, double height)
{
    auto& object = *cast<ViewObject>(view);
    object.size = {width, height};
    if (object.postsFrameChanges)
        CFNotificationCenterPostNotification(CFNotificationCenterGetLocalCenter(), NSViewFrameDidChangeNotificationName(), view, nullptr, true);
}

CA::MetalLayer* layerOf(NSView* view) { return api(cast<ViewObject>(view)->layer.get()); }
Presented presented(CA::MetalLayer* layer) { return layer ? cast<LayerObject>(layer)->presented() : Presented(); }

} // namespace SoftMetal
