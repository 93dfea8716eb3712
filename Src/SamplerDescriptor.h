// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

namespace ZALMetal {

/// What makes one sampler state differ from another; enumerators are Metal's.
struct SamplerDescriptor
{
    signed char normalizedCoordinates = 1;
    uint64_t minFilter = 0, magFilter = 0, mipFilter = 0;
    uint64_t rAddressMode = 0, sAddressMode = 0, tAddressMode = 0;
    uint64_t borderColor = 0;
    float lodMinClamp = 0, lodMaxClamp = 0;
    uint64_t maxAnisotropy = 1;

    bool operator<(const SamplerDescriptor& o) const
    {
        if (normalizedCoordinates != o.normalizedCoordinates) return normalizedCoordinates < o.normalizedCoordinates;
        if (minFilter != o.minFilter) return minFilter < o.minFilter;
        if (magFilter != o.magFilter) return magFilter < o.magFilter;
        if (mipFilter != o.mipFilter) return mipFilter < o.mipFilter;
        if (rAddressMode != o.rAddressMode) return rAddressMode < o.rAddressMode;
        if (sAddressMode != o.sAddressMode) return sAddressMode < o.sAddressMode;
        if (tAddressMode != o.tAddressMode) return tAddressMode < o.tAddressMode;
        if (borderColor != o.borderColor) return borderColor < o.borderColor;
        if (lodMinClamp != o.lodMinClamp) return lodMinClamp < o.lodMinClamp;
        if (lodMaxClamp != o.lodMaxClamp) return lodMaxClamp < o.lodMaxClamp;
        return maxAnisotropy < o.maxAnisotropy;
    }
};

} // namespace ZALMetal
