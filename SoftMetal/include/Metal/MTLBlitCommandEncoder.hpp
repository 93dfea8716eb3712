// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLCommandEncoder.hpp"
#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Buffer;
class Fence;
class Resource;
class Texture;

using BlitOption = NS::UInteger; // any of:
enum : BlitOption
{
    BlitOptionNone = 0,
    BlitOptionDepthFromDepthStencil = 1,
    BlitOptionStencilFromDepthStencil = 2,
    BlitOptionRowLinearPVRTC = 4,
};

class SOFTMETAL_API BlitCommandEncoder : public NS::Referencing<BlitCommandEncoder, CommandEncoder>
{
public:
    void synchronizeResource(const Resource* resource);
    void synchronizeTexture(const Texture* texture, NS::UInteger slice, NS::UInteger level);
    void copyFromTexture(const Texture* sourceTexture, NS::UInteger sourceSlice, NS::UInteger sourceLevel,
                         Origin sourceOrigin, Size sourceSize, const Texture* destinationTexture,
                         NS::UInteger destinationSlice, NS::UInteger destinationLevel, Origin destinationOrigin);
    void copyFromBuffer(const Buffer* sourceBuffer, NS::UInteger sourceOffset, NS::UInteger sourceBytesPerRow,
                        NS::UInteger sourceBytesPerImage, Size sourceSize, const Texture* destinationTexture,
                        NS::UInteger destinationSlice, NS::UInteger destinationLevel, Origin destinationOrigin);
    void copyFromBuffer(const Buffer* sourceBuffer, NS::UInteger sourceOffset, NS::UInteger sourceBytesPerRow,
                        NS::UInteger sourceBytesPerImage, Size sourceSize, const Texture* destinationTexture,
                        NS::UInteger destinationSlice, NS::UInteger destinationLevel, Origin destinationOrigin,
                        BlitOption options);
    void copyFromTexture(const Texture* sourceTexture, NS::UInteger sourceSlice, NS::UInteger sourceLevel,
                         Origin sourceOrigin, Size sourceSize, const Buffer* destinationBuffer,
                         NS::UInteger destinationOffset, NS::UInteger destinationBytesPerRow,
                         NS::UInteger destinationBytesPerImage);
    void copyFromTexture(const Texture* sourceTexture, NS::UInteger sourceSlice, NS::UInteger sourceLevel,
                         Origin sourceOrigin, Size sourceSize, const Buffer* destinationBuffer,
                         NS::UInteger destinationOffset, NS::UInteger destinationBytesPerRow,
                         NS::UInteger destinationBytesPerImage, BlitOption options);
    void generateMipmaps(const Texture* texture);
    void fillBuffer(const Buffer* buffer, NS::Range range, uint8_t value);
    void copyFromTexture(const Texture* sourceTexture, NS::UInteger sourceSlice, NS::UInteger sourceLevel,
                         const Texture* destinationTexture, NS::UInteger destinationSlice,
                         NS::UInteger destinationLevel, NS::UInteger sliceCount, NS::UInteger levelCount);
    void copyFromTexture(const Texture* sourceTexture, const Texture* destinationTexture);
    void copyFromBuffer(const Buffer* sourceBuffer, NS::UInteger sourceOffset, const Buffer* destinationBuffer,
                        NS::UInteger destinationOffset, NS::UInteger size);
    void updateFence(const Fence* fence);
    void waitForFence(const Fence* fence);
    void optimizeContentsForGPUAccess(const Texture* texture);
    void optimizeContentsForGPUAccess(const Texture* texture, NS::UInteger slice, NS::UInteger level);
    void optimizeContentsForCPUAccess(const Texture* texture);
    void optimizeContentsForCPUAccess(const Texture* texture, NS::UInteger slice, NS::UInteger level);
};

} // namespace MTL
