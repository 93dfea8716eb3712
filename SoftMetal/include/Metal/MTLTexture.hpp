// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "MTLPixelFormat.hpp"
#include "MTLResource.hpp"
#include "MTLTypes.hpp"
#include <Foundation/Foundation.hpp>

namespace MTL
{
class Buffer;
class Texture;
class TextureDescriptor;

enum TextureType : NS::UInteger
{
    TextureType1D = 0,
    TextureType1DArray = 1,
    TextureType2D = 2,
    TextureType2DArray = 3,
    TextureType2DMultisample = 4,
    TextureTypeCube = 5,
    TextureTypeCubeArray = 6,
    TextureType3D = 7,
    TextureType2DMultisampleArray = 8,
    TextureTypeTextureBuffer = 9,
};

enum TextureSwizzle : uint8_t
{
    TextureSwizzleZero = 0,
    TextureSwizzleOne = 1,
    TextureSwizzleRed = 2,
    TextureSwizzleGreen = 3,
    TextureSwizzleBlue = 4,
    TextureSwizzleAlpha = 5,
};

struct TextureSwizzleChannels
{
    TextureSwizzle red = TextureSwizzleRed;
    TextureSwizzle green = TextureSwizzleGreen;
    TextureSwizzle blue = TextureSwizzleBlue;
    TextureSwizzle alpha = TextureSwizzleAlpha;
};

using TextureUsage = NS::UInteger; // any of:
enum : TextureUsage
{
    TextureUsageUnknown = 0,
    TextureUsageShaderRead = 1,
    TextureUsageShaderWrite = 2,
    TextureUsageRenderTarget = 4,
    TextureUsagePixelFormatView = 16,
    TextureUsageShaderAtomic = 32,
};

class SOFTMETAL_API TextureDescriptor : public NS::Copying<TextureDescriptor>
{
public:
    static TextureDescriptor* alloc();
    TextureDescriptor* init();
    static TextureDescriptor* texture2DDescriptor(PixelFormat pixelFormat, NS::UInteger width, NS::UInteger height,
                                                  bool mipmapped);
    static TextureDescriptor* textureCubeDescriptor(PixelFormat pixelFormat, NS::UInteger size, bool mipmapped);
    TextureType textureType() const;
    void setTextureType(TextureType textureType);
    PixelFormat pixelFormat() const;
    void setPixelFormat(PixelFormat pixelFormat);
    NS::UInteger width() const;
    void setWidth(NS::UInteger width);
    NS::UInteger height() const;
    void setHeight(NS::UInteger height);
    NS::UInteger depth() const;
    void setDepth(NS::UInteger depth);
    NS::UInteger mipmapLevelCount() const;
    void setMipmapLevelCount(NS::UInteger mipmapLevelCount);
    NS::UInteger sampleCount() const;
    void setSampleCount(NS::UInteger sampleCount);
    NS::UInteger arrayLength() const;
    void setArrayLength(NS::UInteger arrayLength);
    ResourceOptions resourceOptions() const;
    void setResourceOptions(ResourceOptions resourceOptions);
    CPUCacheMode cpuCacheMode() const;
    void setCpuCacheMode(CPUCacheMode cpuCacheMode);
    StorageMode storageMode() const;
    void setStorageMode(StorageMode storageMode);
    HazardTrackingMode hazardTrackingMode() const;
    void setHazardTrackingMode(HazardTrackingMode hazardTrackingMode);
    TextureUsage usage() const;
    void setUsage(TextureUsage usage);
    TextureSwizzleChannels swizzle() const;
    void setSwizzle(TextureSwizzleChannels swizzle);
};

class SOFTMETAL_API Texture : public NS::Referencing<Texture, Resource>
{
public:
    Texture* parentTexture() const;
    NS::UInteger parentRelativeLevel() const;
    NS::UInteger parentRelativeSlice() const;
    Buffer* buffer() const;
    NS::UInteger bufferOffset() const;
    NS::UInteger bufferBytesPerRow() const;
    TextureType textureType() const;
    PixelFormat pixelFormat() const;
    NS::UInteger width() const;
    NS::UInteger height() const;
    NS::UInteger depth() const;
    NS::UInteger mipmapLevelCount() const;
    NS::UInteger sampleCount() const;
    NS::UInteger arrayLength() const;
    TextureUsage usage() const;
    /// pixelBytes is written to, const as it is.
    void getBytes(const void* pixelBytes, NS::UInteger bytesPerRow, NS::UInteger bytesPerImage, Region region,
                  NS::UInteger level, NS::UInteger slice);
    void replaceRegion(Region region, NS::UInteger level, NS::UInteger slice, const void* pixelBytes,
                       NS::UInteger bytesPerRow, NS::UInteger bytesPerImage);
    void getBytes(const void* pixelBytes, NS::UInteger bytesPerRow, Region region, NS::UInteger level);
    void replaceRegion(Region region, NS::UInteger level, const void* pixelBytes, NS::UInteger bytesPerRow);
    Texture* newTextureView(PixelFormat pixelFormat);
    Texture* newTextureView(PixelFormat pixelFormat, TextureType textureType, NS::Range levelRange,
                            NS::Range sliceRange);
    TextureSwizzleChannels swizzle() const;
    Texture* newTextureView(PixelFormat pixelFormat, TextureType textureType, NS::Range levelRange,
                            NS::Range sliceRange, TextureSwizzleChannels swizzle);
};

} // namespace MTL
