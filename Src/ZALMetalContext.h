// SPDX-License-Identifier: Apache-2.0
// Drawable, attachments and render passes, as the rest of the library uses them.
#pragma once

#include "ZALGLState.h"
#include "ZALMetalData.h"

/// A new descriptor for the bound framebuffer; owned by the caller.
MTL::RenderPassDescriptor* ZALMetalContextNewRenderDescriptor(ZALGLState* state, ZALMetalContext* context);

MTL::Texture* getFramebufferColorTexture(ZALGLState* state, ZALMetalContext* context, int index);
MTL::Texture* getFramebufferDepthTexture(ZALGLState* state, ZALMetalContext* context);
MTL::Texture* getFramebufferStencilTexture(ZALGLState* state, ZALMetalContext* context);
int MetalDataAllocateDrawableTextures(MTL::Device* device, ZALMetalDrawable* drawable, CGSize size);
