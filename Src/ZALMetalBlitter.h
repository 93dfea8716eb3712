// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Metal/Metal.hpp>

/// Copies a rectangle by drawing it, so that the copy may change format, turn upside down and go to any slice and level.
struct ZALMetalBlitter
{
    MTL::Library* library;
    MTL::Function *vertexFunction, *colorFunction, *depthFunction;
    MTL::DepthStencilState* depthStencilState;
};

ZALMetalBlitter* ZALMetalBlitterInit(MTL::Device* device);
void ZALMetalBlitterRelease(ZALMetalBlitter* blitter);

/// True when the copy could not be encoded.
bool CopyTexSubImage2D(ZALMetalBlitter* blitter, MTL::Device* device, MTL::CommandBuffer* commandBuffer, MTL::Texture* src, const MTL::Origin& srcOrigin,
                       const MTL::Size& srcSize, MTL::Texture* dst, const MTL::Origin& dstOrigin, int dstSlice, int dstLevel, bool flip);
