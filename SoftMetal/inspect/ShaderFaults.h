// SPDX-License-Identifier: Apache-2.0
// What shaders and the fetching of vertices do outside the memory they were given: zeros are read there, and it is told
// once the work is done. And a shader that never ended: it is stopped, what is left of the work is skipped, and its
// command buffer fails. Noted by whichever thread draws, taken by the queue's.
#pragma once

#include <cstdint>

namespace softmetal::inspect
{

struct ShaderFaults
{
    uint64_t buffers[2] = {0,
                           0}; // by stage (vertex, fragment), a bit for each index; the highest: a table of the program
    bool texels = false;       // texture.read() outside a level
    uint64_t vertexAttributes = 0; // fetched beyond the end of a vertex buffer, a bit each
};

void noteOutsideBuffers(uint64_t buffers, uint32_t stage);
void noteOutsideTexture();
void noteOutsideVertices(uint32_t attribute);

/// What was noted since the last call.
ShaderFaults takeShaderFaults();

/// A shader ran past the limit of loop iterations.
void noteShaderLimit();
/// Whether one has since it was last taken: then nothing more need be shaded.
bool shaderLimitReached();
bool takeShaderLimit();

} // namespace softmetal::inspect
