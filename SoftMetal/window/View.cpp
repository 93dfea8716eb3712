// SPDX-License-Identifier: Apache-2.0
#include "foundation/Log.h"
#include "window/Layer.h"
#include "window/XWindow.h"

using namespace softmetal;

namespace softmetal
{

ViewObject::~ViewObject()
{
    carry(nullptr);
}

void ViewObject::carry(LayerObject* newLayer)
{
    if (layer && window) layer->screenIs(nullptr);
    layer = Ref<LayerObject>(newLayer);
    if (!layer) return;
    layer->viewSizeIs(size);
    if (window) layer->screenIs(window);
}

/// Layers follow at layout, after the observers were told.
void ViewObject::sizeIs(CGSize newSize)
{
    size = newSize;
    if (postsFrameChanges)
        CFNotificationCenterPostNotification(CFNotificationCenterGetLocalCenter(), NSViewFrameDidChangeNotification,
                                             api(this), nullptr, true);
    if (layer) layer->viewSizeIs(size);
}

} // namespace softmetal

void NSView::setWantsLayer(bool wantsLayer)
{
    cast<ViewObject>(this)->wantsLayer = wantsLayer;
}
void NSView::setLayer(CA::MetalLayer* layer)
{
    cast<ViewObject>(this)->carry(cast<LayerObject>(layer));
}
CGRect NSView::bounds() const
{
    return CGRect{{0, 0}, cast<ViewObject>(this)->size};
}
void NSView::setPostsFrameChangedNotifications(bool posts)
{
    cast<ViewObject>(this)->postsFrameChanges = posts;
}

namespace SoftMetal
{

NSView* newView(double width, double height)
{
    auto* view = new ViewObject;
    view->size = {width, height};
    return api(view);
}

void setViewSize(NSView* view, double width, double height)
{
    auto& object = *cast<ViewObject>(view);
    if (object.window) object.window->resize(static_cast<uint32_t>(width), static_cast<uint32_t>(height));
    object.sizeIs({width, height});
}

CA::MetalLayer* layerOf(NSView* view)
{
    return api(cast<ViewObject>(view)->layer.get());
}
Presented presented(CA::MetalLayer* layer)
{
    return layer ? cast<LayerObject>(layer)->presented() : Presented();
}

NSView* newWindow(const std::string& title, uint32_t width, uint32_t height)
{
    std::string error;
    auto window = XWindow::open(title, width, height, error);
    if (!window) {
        softmetal::log(softmetal::LogLevel::Error, "no window can be opened: " + error);
        return nullptr;
    }
    auto* view = new ViewObject;
    view->size = {static_cast<double>(width), static_cast<double>(height)};
    view->window = std::move(window);
    return api(view);
}

std::vector<WindowEvent> pollEvents(NSView* window, double milliseconds)
{
    Ref<ViewObject> view(cast<ViewObject>(window)); // observers may release it
    if (!view->window) return {};
    std::vector<WindowEvent> events = view->window->events(milliseconds);
    for (const WindowEvent& event : events) {
        if (event.kind == EventKind::Resized) view->sizeIs({event.width, event.height});
    }
    return events;
}

} // namespace SoftMetal
