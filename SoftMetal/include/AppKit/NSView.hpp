// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: the view that a layer is attached to. The interface is the same on every platform.
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.hpp>

namespace CA
{
class MetalLayer;
}

class SOFTMETAL_API NSView : public NS::Referencing<NSView>
{
public:
    void setWantsLayer(bool wantsLayer);
    void setLayer(CA::MetalLayer* layer);
    CGRect bounds() const; // in points
    void setPostsFrameChangedNotifications(bool posts);
};

/// Name of the notification that a view posts when its frame has changed; the view is its object.
extern "C" SOFTMETAL_API const CFStringRef NSViewFrameDidChangeNotification;
