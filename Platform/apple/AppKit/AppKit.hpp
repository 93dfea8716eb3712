// SPDX-License-Identifier: Apache-2.0
// What metal-cpp lacks: views, the system log, exceptions. The interface is the one that the software device has under the
// same name, so the library's sources need not know which of the two they are compiled against.
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <Foundation/Foundation.hpp>
#include <QuartzCore/QuartzCore.hpp>

#include <cstdarg>

#if !__has_include(<QuartzCore/CAMetalLayer.hpp>)
#include "MetalLayer.hpp" // the first release of metal-cpp has no layers
#endif

/// An NSView*; metal-cpp's rules hold: the pointer is the Objective-C object.
class NSView : public NS::Referencing<NSView>
{
public:
    void setWantsLayer(bool wantsLayer);
    void setLayer(CA::MetalLayer* layer);
    CGRect bounds() const; // in points
    void setPostsFrameChangedNotifications(bool posts);
};

/// Name of the notification that a view posts when its frame has changed; the view is its object. AppKit's own constant.
extern "C" const CFStringRef NSViewFrameDidChangeNotification;

/// Writes one line to the system log. %@ takes an NS::Object* (its description; "(null)" for null); the rest is printf's.
void NSLog(const char* format, ...);

namespace NS
{

/// Raises an NSException with name and reason; does not return.
[[noreturn]] void raise(const char* name, const char* reason);

/// Whether text begins with prefix, byte for byte. False for a null text.
bool hasPrefix(const String* text, const char* prefix);

}
