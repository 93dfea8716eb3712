// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "RenderPipelineCache.h"

/// Attachments by texture name, the draw-buffer selection, and the pipeline states of draws into it.
class ZALGLFramebufferObject
{
public:
    ZALMetal::RenderPipelineCache& GetRenderPipelineCache() { return _pipelines; }

private:
    ZALMetal::RenderPipelineCache _pipelines;

public:
    uint32_t depthAttachment = 0;
    uint32_t colorAttachments[8] = {};
    uint32_t drawBuffersMask = 1;
};
