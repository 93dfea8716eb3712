// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLDescriptions.h"
#include "ZALGLObjectStore.h"
#include "ZALGLProgramObject.h"

namespace ZALMetal {

/// Pipeline states by everything that changes them; failed builds (null) are kept as well. One for each framebuffer object.
class RenderPipelineCache
{
public:
    /// The colour write mask is part of the description but takes no part in the order.
    struct Key
    {
        uint64_t colorPixelFormats[8] = {};
        uint64_t depthPixelFormat = 0, stencilPixelFormat = 0;
        MTL::VertexDescriptor* vertexDescriptor = nullptr; // not owned; told apart by address
        GLRenderPipelineDescription glPipelineDesc;
        VertexProgramSpecializationKey vertexProgramKey = {};
        FragmentProgramSpecializationKey fragmentProgramKey = {};

        bool operator<(const Key& other) const;
    };

    struct CachedValue
    {
        MTL::RenderPipelineState* state = nullptr; // one reference
    };

    RenderPipelineCache() = default;
    ~RenderPipelineCache();

    /// Owned by the cache; null when the state cannot be built.
    MTL::RenderPipelineState* getOrCreate(MTL::Device* device, ZALGLObjectStore<ZALGLProgramObject>& programs, const Key& key);
    void removeCachedValuesForProgram(uint32_t program);

private:
    ZALM::Map<Key, CachedValue> _map;
};

/// 0, or 1 when the state cannot be built.
int buildMtlPipelineState(MTL::RenderPipelineState*& out, MTL::Device* device, ZALGLObjectStore<ZALGLProgramObject>& programs,
                          const RenderPipelineCache::Key& key);

/// 0, or 6 with the output untouched.
int convertBlendFactor(uint64_t& out, uint32_t factor);
int convertBlendOperation(uint64_t& out, uint32_t equation);

} // namespace ZALMetal
