// SPDX-License-Identifier: Apache-2.0
#include "inspect/ShaderFaults.h"

#include <atomic>

namespace softmetal::inspect
{
namespace
{

std::atomic<uint64_t> buffers[2], vertexAttributes;
std::atomic<bool> texels, limit;

} // namespace

void noteOutsideBuffers(uint64_t bits, uint32_t stage)
{
    buffers[stage & 1].fetch_or(bits, std::memory_order_relaxed);
}
void noteOutsideTexture()
{
    texels.store(true, std::memory_order_relaxed);
}
void noteOutsideVertices(uint32_t attribute)
{
    vertexAttributes.fetch_or(uint64_t{1} << (attribute & 63), std::memory_order_relaxed);
}

ShaderFaults takeShaderFaults()
{
    ShaderFaults result;
    for (int stage = 0; stage < 2; ++stage)
        result.buffers[stage] = buffers[stage].exchange(0);
    result.texels = texels.exchange(false);
    result.vertexAttributes = vertexAttributes.exchange(0);
    return result;
}

void noteShaderLimit()
{
    limit.store(true, std::memory_order_relaxed);
}
bool shaderLimitReached()
{
    return limit.load(std::memory_order_relaxed);
}
bool takeShaderLimit()
{
    return limit.exchange(false);
}

} // namespace softmetal::inspect
