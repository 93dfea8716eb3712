// SPDX-License-Identifier: Apache-2.0
// What GL's internal formats become.
#pragma once

#include "ZALGL.h"

#include <Metal/Metal.hpp>

#include <array>

namespace ZALMetal {

enum class Swizzle : uint8_t
{
    Identity,     // r, g, b, a
    Alpha,        // 0, 0, 0, a
    Opaque,       // r, g, b, 1
    Luminance,    // r, r, r, 1
    Intensity,    // r, r, r, r
};

struct InternalFormatRow
{
    uint32_t gl;
    MTL::PixelFormat format;
    MTL::PixelFormat fallback; // where the device lacks the format
    Swizzle swizzle;
    MTL::StorageMode storage;
    uint32_t contents; // 1 colour, 2 depth
};

inline constexpr std::array InternalFormatTable = {
    InternalFormatRow{GL_ALPHA, MTL::PixelFormatA8Unorm, MTL::PixelFormatA8Unorm, Swizzle::Alpha, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_ALPHA8, MTL::PixelFormatA8Unorm, MTL::PixelFormatA8Unorm, Swizzle::Alpha, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGB, MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatRGBA8Unorm, Swizzle::Opaque, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGB8, MTL::PixelFormatRGBA8Unorm, MTL::PixelFormatRGBA8Unorm, Swizzle::Opaque, MTL::StorageModeManaged, 1},
    // Kept on purpose: [rgba-is-bgra] GL_RGBA is stored blue first, GL_RGB red first: GL_RGBA bytes are swapped on their way in.
    InternalFormatRow{GL_RGBA, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatBGRA8Unorm, Swizzle::Identity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGBA8, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatBGRA8Unorm, Swizzle::Identity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_LUMINANCE8, MTL::PixelFormatR8Unorm, MTL::PixelFormatR8Unorm, Swizzle::Luminance, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGBA32F_ARB, MTL::PixelFormatRGBA32Float, MTL::PixelFormatRGBA32Float, Swizzle::Identity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGB32F_ARB, MTL::PixelFormatRGBA32Float, MTL::PixelFormatRGBA32Float, Swizzle::Opaque, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_INTENSITY32F_ARB, MTL::PixelFormatR32Float, MTL::PixelFormatR32Float, Swizzle::Intensity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGBA16F_ARB, MTL::PixelFormatRGBA16Float, MTL::PixelFormatRGBA16Float, Swizzle::Identity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_RGB16F_ARB, MTL::PixelFormatRGBA16Float, MTL::PixelFormatRGBA16Float, Swizzle::Opaque, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_INTENSITY16F_ARB, MTL::PixelFormatR16Float, MTL::PixelFormatR16Float, Swizzle::Intensity, MTL::StorageModeManaged, 1},
    InternalFormatRow{GL_FLOAT_R_NV, MTL::PixelFormatR32Float, MTL::PixelFormatR32Float, Swizzle::Identity, MTL::StorageModeManaged, 1},
    // Kept on purpose: [depth16-managed] alone among the depth formats this one stays in managed storage.
    InternalFormatRow{GL_DEPTH_COMPONENT16, MTL::PixelFormatDepth16Unorm, MTL::PixelFormatDepth16Unorm, Swizzle::Identity, MTL::StorageModeManaged, 2},
    InternalFormatRow{GL_DEPTH_COMPONENT24, MTL::PixelFormatDepth24Unorm_Stencil8, MTL::PixelFormatDepth32Float, Swizzle::Identity, MTL::StorageModePrivate, 2},
    InternalFormatRow{GL_DEPTH_COMPONENT32, MTL::PixelFormatDepth32Float, MTL::PixelFormatDepth32Float, Swizzle::Identity, MTL::StorageModePrivate, 2},
    InternalFormatRow{GL_DEPTH24_STENCIL8, MTL::PixelFormatDepth24Unorm_Stencil8, MTL::PixelFormatDepth32Float_Stencil8, Swizzle::Identity, MTL::StorageModePrivate, 2},
};
static_assert(InternalFormatTable.size() == 18);

} // namespace ZALMetal
