// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGL.h"

#include <Metal/Metal.hpp>

#include <array>

namespace ZALMetal {

struct BlendRow
{
    uint32_t gl;
    uint64_t metal;
};

inline constexpr std::array BlendOperationTable = {
    BlendRow{GL_FUNC_ADD, MTL::BlendOperationAdd},
    BlendRow{GL_MIN, MTL::BlendOperationMin},
    BlendRow{GL_MAX, MTL::BlendOperationMax},
    BlendRow{GL_FUNC_SUBTRACT, MTL::BlendOperationSubtract},
    BlendRow{GL_FUNC_REVERSE_SUBTRACT, MTL::BlendOperationReverseSubtract},
};

inline constexpr std::array BlendFactorTable = {
    BlendRow{GL_ZERO, MTL::BlendFactorZero},
    BlendRow{GL_ONE, MTL::BlendFactorOne},
    BlendRow{GL_SRC_COLOR, MTL::BlendFactorSourceColor},
    BlendRow{GL_ONE_MINUS_SRC_COLOR, MTL::BlendFactorOneMinusSourceColor},
    BlendRow{GL_SRC_ALPHA, MTL::BlendFactorSourceAlpha},
    BlendRow{GL_ONE_MINUS_SRC_ALPHA, MTL::BlendFactorOneMinusSourceAlpha},
    BlendRow{GL_DST_ALPHA, MTL::BlendFactorDestinationAlpha},
    BlendRow{GL_ONE_MINUS_DST_ALPHA, MTL::BlendFactorOneMinusDestinationAlpha},
    BlendRow{GL_DST_COLOR, MTL::BlendFactorDestinationColor},
    BlendRow{GL_ONE_MINUS_DST_COLOR, MTL::BlendFactorOneMinusDestinationColor},
    BlendRow{GL_SRC_ALPHA_SATURATE, MTL::BlendFactorSourceAlphaSaturated},
    BlendRow{GL_CONSTANT_COLOR, MTL::BlendFactorBlendColor},
    BlendRow{GL_ONE_MINUS_CONSTANT_COLOR, MTL::BlendFactorOneMinusBlendColor},
    BlendRow{GL_CONSTANT_ALPHA, MTL::BlendFactorBlendAlpha},
    BlendRow{GL_ONE_MINUS_CONSTANT_ALPHA, MTL::BlendFactorOneMinusBlendAlpha},
};
static_assert(BlendFactorTable.size() == 15);

} // namespace ZALMetal
