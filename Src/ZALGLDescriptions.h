// SPDX-License-Identifier: Apache-2.0
// Plain records that select a pipeline state, a vertex layout or a specialised function.
#pragma once

#include <cstdint>

/// Blending of one colour attachment; GL enumerants.
struct GLBlendDescription
{
    uint32_t equation = 0x8006; // GL_FUNC_ADD
    uint32_t srcFactor = 1;     // GL_ONE
    uint32_t dstFactor = 0;     // GL_ZERO
};

/// GL state that selects a pipeline state.
struct GLRenderPipelineDescription
{
    uint32_t boundFramebuffer = 0; // name; 0: the default framebuffer
    uint32_t drawBufferMask = 1;   // bit i: colour attachment i is drawn
    uint32_t boundProgramVertex = 0, boundProgramFragment = 0;
    uint32_t colorWriteMask = 15; // red 8, green 4, blue 2, alpha 1
    bool blendingEnabled = false;
    GLBlendDescription blend[8];
};

/// One generic vertex attribute array.
struct GLVertexAttribDescription
{
    uint32_t buffer = 0; // name of the buffer object
    int32_t size = 0;    // components, 1 to 4
    uint32_t type = 0;   // GL component type
    bool normalized = false;
    int32_t stride = 0; // bytes; 0: tightly packed
    int64_t offset = 0; // bytes into the buffer
};

struct GLVertexDescription
{
    uint32_t mask = 0; // bit i: attribute i takes part
    GLVertexAttribDescription attributes[16];
};

bool operator<(const GLRenderPipelineDescription& a, const GLRenderPipelineDescription& b);
bool operator<(const GLVertexAttribDescription& a, const GLVertexAttribDescription& b);
bool operator<(const GLVertexDescription& a, const GLVertexDescription& b);

namespace ZALMetal
{

/// Values of a fragment function's constants, by texture unit. Zero-filled by whoever makes one.
struct FragmentProgramSpecializationKey
{
    int32_t samplerSlots[32];
    uint32_t swizzleModes[32]; // 1: the red channel in all four
};

struct VertexProgramSpecializationKey
{
    int32_t samplerSlots[32];
    uint32_t swizzleModes[32];
    uint32_t attributeMask; // bit i: attribute i has an array
};

bool operator<(const FragmentProgramSpecializationKey& a, const FragmentProgramSpecializationKey& b);
bool operator<(const VertexProgramSpecializationKey& a, const VertexProgramSpecializationKey& b);

} // namespace ZALMetal
