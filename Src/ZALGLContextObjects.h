// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLBufferObject.h"
#include "ZALGLFramebufferObject.h"
#include "ZALGLObjectStore.h"
#include "ZALGLProgramObject.h"
#include "ZALGLTextureObject.h"

/// The GL objects of a context and of every context made from it: one store for each kind, each counting its own names.
/// Made with the first of those contexts; the default framebuffer stands in the framebuffer store under name 0 from the
/// start, unless there was no memory for it.
class ZALGLContextObjects
{
public:
    ZALGLContextObjects();

    ZALGLObjectStore<ZALGLBufferObject> buffers;
    ZALGLObjectStore<ZALGLFramebufferObject> framebuffers;
    ZALGLObjectStore<ZALGLProgramObject> programs;
    ZALGLObjectStore<ZALGLTextureObject> textures;
    int32_t contexts = 1; // that use these stores
};
