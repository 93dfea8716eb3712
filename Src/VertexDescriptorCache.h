// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLDescriptions.h"
#include "foundation/Map.h"

#include <Metal/Metal.hpp>

namespace ZALMetal {

/// Vertex descriptors by GL layout, failed conversions (null) included. One for each program object.
class VertexDescriptorCache
{
public:
    struct CachedValue
    {
        uint32_t mask = 0;                           // attributes that the descriptor contains
        MTL::VertexDescriptor* descriptor = nullptr; // one reference
    };

    VertexDescriptorCache() = default;
    ~VertexDescriptorCache();

    /// The descriptor for a layout with the given mask, or null; mask becomes that of the descriptor on a hit.
    MTL::VertexDescriptor* get(uint32_t& mask, const GLVertexDescription& description);
    int set(uint32_t mask, const GLVertexDescription& description, MTL::VertexDescriptor* descriptor);
    MTL::VertexDescriptor* getOrCreate(uint32_t& mask, const GLVertexDescription& description);

private:
    ZALM::Map<GLVertexDescription, CachedValue> _map;
};

/// 0, or 1 with a null descriptor when attribute 0 has no format.
int convertVertexDescription(MTL::VertexDescriptor*& out, uint32_t& mask, const GLVertexDescription& description);
MTL::VertexFormat convertVertexFormat(const GLVertexAttribDescription& attribute);
uint64_t convertVertexStride(const GLVertexAttribDescription& attribute);

} // namespace ZALMetal
