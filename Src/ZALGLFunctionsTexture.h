// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLState.h"

#include <Metal/Metal.hpp>

class ZALGLTextureObject;

/// The common body of the glTexImage calls.
void ZALTexImage(GLenum target, int32_t level, uint32_t internalFormat, int32_t width, int32_t height, int32_t depth, GLenum format, GLenum type,
                 const void* pixels);

void ZALMetalTexInitOrReplaceRegion(ZALGLState* state, ZALMetalState* metalState, ZALGLTextureObject* texture, int32_t face, int32_t level, int32_t xoffset,
                                    int32_t yoffset, int32_t zoffset, int32_t width, int32_t height, int32_t depth, GLenum format, GLenum type,
                                    const void* pixels);
