// SPDX-License-Identifier: Apache-2.0
// Pictures whose texels are their own position, put into Metal textures and taken out of them.
#pragma once

#include <SoftMetal/SoftMetal.hpp>

#include <cstdint>
#include <vector>

namespace contexts {

/// Texel (x, y) holds x, y, 7, 255 in memory order; row 0 is Metal's upper one.
inline std::vector<uint8_t> places(NS::UInteger width, NS::UInteger height)
{
    std::vector<uint8_t> bytes(width * height * 4);
    for (size_t i = 0; i < width * height; ++i) {
        bytes[4 * i] = static_cast<uint8_t>(i % width);
        bytes[4 * i + 1] = static_cast<uint8_t>(i / width);
        bytes[4 * i + 2] = 7;
        bytes[4 * i + 3] = 255;
    }
    return bytes;
}

/// The same with the rows from the bottom up.
inline std::vector<uint8_t> upsideDown(const std::vector<uint8_t>& bytes, NS::UInteger width)
{
    std::vector<uint8_t> result;
    size_t pitch = width * 4;
    for (size_t end = bytes.size(); end > 0; end -= pitch)
        result.insert(result.end(), bytes.begin() + static_cast<std::ptrdiff_t>(end - pitch), bytes.begin() + static_cast<std::ptrdiff_t>(end));
    return result;
}

inline MTL::Texture* newTexture(MTL::Device* device, MTL::PixelFormat format, NS::UInteger width, NS::UInteger height, MTL::TextureUsage usage,
                                MTL::StorageMode storage = MTL::StorageModeManaged)
{
    MTL::TextureDescriptor* d = MTL::TextureDescriptor::texture2DDescriptor(format, width, height, false);
    d->setUsage(usage);
    d->setStorageMode(storage);
    return device->newTexture(d);
}

inline constexpr MTL::TextureUsage Drawn = MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget;

/// Copies bytes into a texture of four bytes a texel, whatever its storage.
inline void fill(MTL::CommandQueue* queue, MTL::Texture* texture, const std::vector<uint8_t>& bytes)
{
    MTL::Buffer* buffer = queue->device()->newBuffer(bytes.data(), bytes.size(), MTL::ResourceStorageModeShared);
    MTL::CommandBuffer* commands = queue->commandBuffer();
    MTL::BlitCommandEncoder* blit = commands->blitCommandEncoder();
    blit->copyFromBuffer(buffer, 0, texture->width() * 4, bytes.size(), MTL::Size(texture->width(), texture->height(), 1), texture, 0, 0, MTL::Origin(0, 0, 0));
    blit->endEncoding();
    commands->commit();
    commands->waitUntilCompleted();
    buffer->release();
}

inline std::vector<uint8_t> contents(MTL::CommandQueue* queue, MTL::Texture* texture)
{
    size_t bytes = texture->width() * texture->height() * 4;
    MTL::Buffer* buffer = queue->device()->newBuffer(bytes, MTL::ResourceStorageModeShared);
    MTL::CommandBuffer* commands = queue->commandBuffer();
    MTL::BlitCommandEncoder* blit = commands->blitCommandEncoder();
    blit->copyFromTexture(texture, 0, 0, MTL::Origin(0, 0, 0), MTL::Size(texture->width(), texture->height(), 1), buffer, 0, texture->width() * 4, bytes);
    blit->endEncoding();
    commands->commit();
    commands->waitUntilCompleted();
    const auto* data = static_cast<const uint8_t*>(buffer->contents());
    std::vector<uint8_t> result(data, data + bytes);
    buffer->release();
    return result;
}

} // namespace contexts
