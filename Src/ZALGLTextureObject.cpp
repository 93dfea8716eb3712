// SPDX-License-Identifier: Apache-2.0
#include "ZALGLTextureObject.h"

#include "InternalFormatTable.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalData.h"

#include <algorithm>

void ZALGLTextureObject::Reset()
{
    contentsTypeMask = NoContents;
    hasMTLTexture = false;
    if (mtlTexture) mtlTexture->release();
    mtlTexture = nullptr;
}

void ZALGLTextureObject::SetType(GLenum target)
{
    Reset();
    if (target != type) {
        bool rectangle = target == GL_TEXTURE_RECTANGLE_ARB;
        minFilter = rectangle ? GL_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
        wrapS = wrapT = wrapR = rectangle ? GL_CLAMP_TO_EDGE : GL_REPEAT;
        magFilter = GL_LINEAR;
    }
    type = target;
}

uint32_t ZALGLTextureObject::GetContentsTypeMask()
{
    EnsureMetalTexture();
    return contentsTypeMask;
}

void ZALGLTextureObject::MarkAsRenderTarget()
{
    Reset();
    isRenderTarget = true;
}

namespace {

MTL::TextureSwizzleChannels channelsOf(ZALMetal::Swizzle swizzle)
{
    using MTL::TextureSwizzleAlpha, MTL::TextureSwizzleBlue, MTL::TextureSwizzleGreen, MTL::TextureSwizzleOne, MTL::TextureSwizzleRed, MTL::TextureSwizzleZero;
    switch (swizzle) {
    case ZALMetal::Swizzle::Alpha: return {TextureSwizzleZero, TextureSwizzleZero, TextureSwizzleZero, TextureSwizzleAlpha};
    case ZALMetal::Swizzle::Opaque: return {TextureSwizzleRed, TextureSwizzleGreen, TextureSwizzleBlue, TextureSwizzleOne};
    case ZALMetal::Swizzle::Luminance: return {TextureSwizzleRed, TextureSwizzleRed, TextureSwizzleRed, TextureSwizzleOne};
    case ZALMetal::Swizzle::Intensity: return {TextureSwizzleRed, TextureSwizzleRed, TextureSwizzleRed, TextureSwizzleRed};
    default: return {};
    }
}

MTL::TextureType metalType(GLenum type)
{
    switch (type) {
    case GL_TEXTURE_2D:
    case GL_TEXTURE_RECTANGLE_ARB: return MTL::TextureType2D;
    case GL_TEXTURE_3D: return MTL::TextureType3D;
    case GL_TEXTURE_CUBE_MAP: return MTL::TextureTypeCube;
    default: return MTL::TextureType1D;
    }
}

} // namespace

/// One level, or the whole chain where the device's route asks for it.
uint32_t ZALGLTextureObject::LevelCount(uint32_t contents) const
{
    bool intel = GetCurrentGLState()->isIntelDevice != 0;
    // Kept on purpose: [one-dimensional-chain] 1D textures count levels like others, and Metal makes none of more than one.
    bool chain = intel ? contents < DepthContents && type != GL_TEXTURE_RECTANGLE_ARB : definedLevelsMask >= 2;
    auto largest = std::max({static_cast<int32_t>(width), static_cast<int32_t>(height), static_cast<int32_t>(depth)});
    uint32_t levels = 1;
    for (; chain && largest >= 2; largest /= 2) ++levels;
    return levels;
}

MTL::Texture* ZALGLTextureObject::EnsureMetalTexture()
{
    if (hasMTLTexture) return mtlTexture;
    if (type == 0 || internalFormat == 0 || !GetCurrentMetalData()) return nullptr;
    Reset();
    MTL::Device* device = GetCurrentMetalData()->device;
    MTL::PixelFormat format = MTL::PixelFormatInvalid;
    MTL::StorageMode storage = MTL::StorageModeManaged;
    MTL::TextureSwizzleChannels swizzle;
    uint32_t contents = NoContents;
    for (const ZALMetal::InternalFormatRow& row : ZALMetal::InternalFormatTable) {
        if (row.gl != internalFormat) continue;
        bool packed = row.format == MTL::PixelFormatDepth24Unorm_Stencil8;
        format = packed && !device->depth24Stencil8PixelFormatSupported() ? row.fallback : row.format;
        storage = row.storage;
        swizzle = channelsOf(row.swizzle);
        contents = row.contents;
    }
    MTL::TextureUsage usage = MTL::TextureUsageShaderRead;
    // Kept on purpose: [attached-usage] only rectangle and depth textures get render-target usage, whatever is attached.
    bool target = contents == DepthContents || (type == GL_TEXTURE_RECTANGLE_ARB && isRenderTarget);
    if (target) {
        usage = usage | MTL::TextureUsageRenderTarget;
        swizzle = MTL::TextureSwizzleChannels();
    }
    MTL::TextureDescriptor* descriptor = MTL::TextureDescriptor::alloc()->init();
    descriptor->setTextureType(metalType(type));
    descriptor->setPixelFormat(format);
    descriptor->setSwizzle(swizzle);
    descriptor->setWidth(width);
    descriptor->setHeight(height);
    descriptor->setDepth(depth);
    descriptor->setMipmapLevelCount(LevelCount(contents));
    descriptor->setStorageMode(storage);
    descriptor->setUsage(usage);
    mtlTexture = device->newTexture(descriptor);
    contentsTypeMask = contents;
    // Kept on purpose: [texture-failure-silent] a texture that the device did not make counts as made until the description changes.
    hasMTLTexture = true;
    descriptor->release();
    return mtlTexture;
}

// ---- binding points ----------------------------------------------------------------------------------------------------------

uint32_t convertBindTextureTargetToBindingSlotIndex(uint32_t target)
{
    switch (target) {
    case GL_TEXTURE_1D: return 0;
    case GL_TEXTURE_2D: return 1;
    case GL_TEXTURE_3D: return 2;
    case GL_TEXTURE_RECTANGLE_ARB: return 3;
    case GL_TEXTURE_CUBE_MAP: return 4;
    default: return 0xFFFFFFFF;
    }
}

ZALGLTextureObject* getBoundTexture(ZALGLState* state, GLenum target)
{
    uint32_t slot = convertBindTextureTargetToBindingSlotIndex(target);
    if (slot > 4) {
        SetCurrentError(state, GL_INVALID_ENUM);
        return nullptr;
    }
    ZALGLTextureObject* texture = state->contextObjects->textures.Find(state->textureBindings[state->activeTextureUnit][slot]);
    if (!texture || texture->type == 0 || texture->type == target) return texture;
    SetCurrentError(state, GL_INVALID_OPERATION);
    return nullptr;
}

ZALGLTextureObject* getBoundTextureFace(ZALGLState* state, GLenum target, GLenum& bindTarget, int32_t& face)
{
    bool isFace = target >= GL_TEXTURE_CUBE_MAP_POSITIVE_X && target <= GL_TEXTURE_CUBE_MAP_NEGATIVE_Z;
    bindTarget = isFace ? GL_TEXTURE_CUBE_MAP : target;
    face = isFace ? static_cast<int32_t>(target - GL_TEXTURE_CUBE_MAP_POSITIVE_X) : 0;
    uint32_t slot = convertBindTextureTargetToBindingSlotIndex(bindTarget);
    if (slot > 4) {
        SetCurrentError(state, GL_INVALID_ENUM);
        return nullptr;
    }
    ZALGLTextureObject* texture = state->contextObjects->textures.Find(state->textureBindings[state->activeTextureUnit][slot]);
    if (!texture) {
        SetCurrentError(state, GL_INVALID_VALUE);
        return nullptr;
    }
    if (texture->type == 0 || texture->type == bindTarget) return texture;
    SetCurrentError(state, GL_INVALID_OPERATION);
    return nullptr;
}
