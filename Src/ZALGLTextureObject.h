// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLState.h"

#include <Metal/Metal.hpp>

/// A GL texture: the description, and the Metal texture made from it on first need.
class ZALGLTextureObject
{
public:
    static constexpr uint32_t NoContents = 0, ColorContents = 1, DepthContents = 2;

    ZALGLTextureObject() = default;
    ZALGLTextureObject(const ZALGLTextureObject&) = delete;
    ZALGLTextureObject& operator=(const ZALGLTextureObject&) = delete;
    ~ZALGLTextureObject() { Reset(); }

    /// Drops the Metal texture; the description stays.
    void Reset();
    GLenum GetType() const { return type; }
    void SetType(GLenum target);
    uint32_t GetContentsTypeMask();
    /// The Metal texture (borrowed), made when there is none; null without a type or format.
    MTL::Texture* EnsureMetalTexture();
    bool HasMipmaps() const { return definedLevelsMask > 1; }
    bool HasMTLTexture() const { return hasMTLTexture; }
    void MarkAsRenderTarget();

    MTL::Texture* mtlTexture = nullptr;
    GLenum type = 0; // target it was first bound to; 0: never bound
    uint32_t contentsTypeMask = NoContents;
    bool hasMTLTexture = false; // mtlTexture fits the description
    bool isRenderTarget = false;
    uint32_t baseLevel = 0;
    GLenum minFilter = GL_NEAREST_MIPMAP_LINEAR, magFilter = GL_LINEAR;
    GLenum wrapR = GL_REPEAT, wrapS = GL_REPEAT, wrapT = GL_REPEAT;
    float borderColor[4] = {0, 0, 0, 0};
    float maxAnisotropy = 1;
    MTL::SamplerBorderColor borderColorClass = MTL::SamplerBorderColorTransparentBlack;
    GLenum internalFormat = 0;
    uint32_t width = 0, height = 0, depth = 0; // of level 0
    uint32_t definedLevelsMask = 0;            // bit i: level i has been specified

private:
    uint32_t LevelCount(uint32_t contents) const;
};

/// 0 to 4 for 1D, 2D, 3D, rectangle and cube; 0xFFFFFFFF for anything else.
uint32_t convertBindTextureTargetToBindingSlotIndex(uint32_t target);
/// The texture bound to the target on the active unit, or null.
ZALGLTextureObject* getBoundTexture(ZALGLState* state, GLenum target);
/// The same for an image target, which may be a cube face.
ZALGLTextureObject* getBoundTextureFace(ZALGLState* state, GLenum target, GLenum& bindTarget, int32_t& face);
