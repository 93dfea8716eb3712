// SPDX-License-Identifier: Apache-2.0
#include "ZALGLContextObjects.h"

ZALGLContextObjects::ZALGLContextObjects()
{
    auto* defaultFramebuffer = new (std::nothrow) ZALGLFramebufferObject;
    bool inserted = false;
    // Whoever makes the stores looks for it: without memory it is not there.
    if (!defaultFramebuffer) return;
    if (framebuffers.objects.insert(inserted, 0, defaultFramebuffer) == ZALM::Success) ++ZALMetal::g_counters.objects;
    else delete defaultFramebuffer;
}
