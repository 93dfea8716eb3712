// SPDX-License-Identifier: Apache-2.0
#include "ZALGLContextObjects.h"

ZALGLContextObjects::ZALGLContextObjects()
{
    auto* defaultFramebuffer = new ZALGLFramebufferObject;
    bool inserted = false;
    // Without it draws into framebuffer 0 find no object and do nothing, as after its deletion.
    if (framebuffers.objects.insert(inserted, 0, defaultFramebuffer) == ZALM::Success) ++ZALMetal::g_counters.objects;
    else delete defaultFramebuffer;
}
