// SPDX-License-Identifier: Apache-2.0
// Texels that shaders write.
#include "texturing/Sampling.h"
#include "texturing/Texels.h"

#include <algorithm>

namespace softmetal::texturing
{

void write(const abi::Texture* texture, const abi::WriteCall* call)
{
    const auto* access = texture ? static_cast<const Access*>(texture->sampling) : nullptr;
    if (!access || !access->format || access->format->isDepthOrStencil()) return;
    uint32_t layers = std::max(texture->arrayLength, 1u) * (access->cube ? 6 : 1);
    for (uint32_t i = 0; i < abi::MaxLanes; ++i) {
        uint32_t level = call->level.u[i], layer = call->layer.u[i];
        if (!(call->mask >> i & 1) || level >= texture->levelCount || layer >= layers) continue;
        const abi::TextureLevel& image = texture->levels[level];
        uint32_t x = call->coordinate[0].u[i], y = call->coordinate[1].u[i], z = call->coordinate[2].u[i];
        if (x >= image.width || y >= image.height || z >= image.depth) continue;
        const float value[4] = {call->value[0].f[i], call->value[1].f[i], call->value[2].f[i], call->value[3].f[i]};
        uint8_t* texel = image.data + layer * image.slicePitch + z * image.planePitch +
                         static_cast<uint64_t>(y) * image.rowPitch + static_cast<uint64_t>(x) * access->format->bytes;
        formats::pack(*access->format, value, texel);
    }
}

} // namespace softmetal::texturing
