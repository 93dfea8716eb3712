// SPDX-License-Identifier: Apache-2.0
// Chapters: image specification, sub-images.
#include "ScopedPool.h"
#include "ZALGLContextObjects.h"
#include "ZALGLFunctionsTexture.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>

namespace {

// ---- rows from the client's layout to the texture's ---------------------------------------------------------------------------

using ConvertRow = void (*)(const uint8_t* from, uint8_t* to, int32_t width);

/// Three components of Bytes bytes each, and the bits of one as the fourth.
template <class Word, Word One>
void widen(const uint8_t* from, uint8_t* to, int32_t width)
{
    constexpr size_t Three = 3 * sizeof(Word);
    constexpr Word Alpha = One;
    for (int32_t i = 0; i < width; ++i, from += Three, to += 4 * sizeof(Word)) {
        std::memcpy(to, from, Three);
        std::memcpy(to + Three, &Alpha, sizeof Alpha);
    }
}

void widenReversed(const uint8_t* from, uint8_t* to, int32_t width)
{
    for (int32_t i = 0; i < width; ++i, from += 3, to += 4) {
        to[0] = from[2];
        to[1] = from[1];
        to[2] = from[0];
        to[3] = 255;
    }
}

/// In whole words, which compilers make vectors of: the first and the third byte change places in either byte order.
void swapRedBlue(const uint8_t* from, uint8_t* to, int32_t width)
{
    constexpr std::array<uint8_t, 4> Moving = {255, 0, 255, 0};
    constexpr auto Mask = std::bit_cast<uint32_t>(Moving);
    for (int32_t i = 0; i < width; ++i) {
        uint32_t word = 0;
        std::memcpy(&word, from + size_t{4} * static_cast<size_t>(i), sizeof word);
        word = (word & ~Mask) | (std::rotl(word, 16) & Mask);
        std::memcpy(to + size_t{4} * static_cast<size_t>(i), &word, sizeof word);
    }
}

constexpr uint32_t FloatOne = 0x3F800000;
constexpr uint16_t HalfOne = 0x3C00;

struct ConversionPath
{
    GLenum format, type;
    MTL::PixelFormat texture;
    ConvertRow convert;
    uint32_t clientBytes, texelBytes;
};

constexpr ConversionPath ConversionPaths[] = {
    {GL_RGB, GL_FLOAT, MTL::PixelFormatRGBA32Float, widen<uint32_t, FloatOne>, 12, 16},
    {GL_RGB, GL_HALF_FLOAT, MTL::PixelFormatRGBA16Float, widen<uint16_t, HalfOne>, 6, 8},
    {GL_RGB, GL_UNSIGNED_BYTE, MTL::PixelFormatRGBA8Unorm, widen<uint8_t, 255>, 3, 4},
    {GL_BGR, GL_UNSIGNED_BYTE, MTL::PixelFormatBGRA8Unorm, widen<uint8_t, 255>, 3, 4},
    {GL_BGR, GL_UNSIGNED_BYTE, MTL::PixelFormatRGBA8Unorm, widenReversed, 3, 4},
    {GL_RGB, GL_UNSIGNED_BYTE, MTL::PixelFormatBGRA8Unorm, widenReversed, 3, 4},
    {GL_BGRA, GL_UNSIGNED_BYTE, MTL::PixelFormatRGBA8Unorm, swapRedBlue, 4, 4},
    {GL_RGBA, GL_UNSIGNED_BYTE, MTL::PixelFormatBGRA8Unorm, swapRedBlue, 4, 4},
};

struct DirectPath
{
    GLenum format, type;
    MTL::PixelFormat texture;
    uint32_t texelBytes;
};

constexpr DirectPath DirectPaths[] = {
    {GL_RGBA, GL_UNSIGNED_BYTE, MTL::PixelFormatRGBA8Unorm, 4},  {GL_BGRA, GL_UNSIGNED_BYTE, MTL::PixelFormatBGRA8Unorm, 4},
    {GL_RGBA, GL_HALF_FLOAT, MTL::PixelFormatRGBA16Float, 8},    {GL_RED, GL_HALF_FLOAT, MTL::PixelFormatR16Float, 2},
    {GL_RGBA, GL_FLOAT, MTL::PixelFormatRGBA32Float, 16},        {GL_RED, GL_FLOAT, MTL::PixelFormatR32Float, 4},
    {GL_RED, GL_UNSIGNED_BYTE, MTL::PixelFormatR8Unorm, 1},      {GL_ALPHA, GL_UNSIGNED_BYTE, MTL::PixelFormatA8Unorm, 1},
};

/// Where an upload goes.
struct Destination
{
    MTL::Texture* texture;
    int32_t face, level, x, y, z, width, height, depth;
};

NS::UInteger u(int32_t value) { return static_cast<NS::UInteger>(static_cast<int64_t>(value)); }

// Kept on purpose: [unpack-ignored] rows and images follow one another without gaps, whatever glPixelStorei was told.
void uploadConverted(ZALGLState* state, const ConversionPath& path, const Destination& d, const uint8_t* pixels)
{
    if (d.width <= 0) return; // rows of nothing, however many
    size_t texels = static_cast<size_t>(d.width), rowBytes = texels * path.texelBytes;
    auto* row = static_cast<uint8_t*>(std::malloc(rowBytes));
    if (!row) return SetCurrentError(state, GL_OUT_OF_MEMORY);
    for (int32_t k = 0; k < d.depth; ++k) {
        for (int32_t r = 0; r < d.height; ++r) {
            path.convert(pixels, row, d.width);
            pixels += texels * path.clientBytes;
            d.texture->replaceRegion(MTL::Region(u(d.x), u(d.y + r), u(d.z + k), u(d.width), 1, 1), u(d.level), u(d.face), row, rowBytes, rowBytes * u(d.height));
        }
    }
    std::free(row);
    ZALMetal::g_counters.bytesUploaded += rowBytes * static_cast<size_t>(std::max(d.height, 0)) * static_cast<size_t>(std::max(d.depth, 0));
}

void uploadDirect(const DirectPath& path, const Destination& d, const void* pixels)
{
    NS::UInteger fastPathBytesPerRow = u(d.width) * path.texelBytes;
    if (fastPathBytesPerRow == 0)
        ZALMetal::AssertionFailed("ZALMetalTexInitOrReplaceRegion", "Src/ZALGLFunctionsTexture", "fastPathBytesPerRow != 0");
    // Kept on purpose: [direct-upload-origin] the direct path always writes at the origin, whatever offsets a sub-image has.
    d.texture->replaceRegion(MTL::Region(0, 0, 0, u(d.width), u(d.height), u(d.depth)), u(d.level), u(d.face), pixels, fastPathBytesPerRow,
                             u(d.height) * fastPathBytesPerRow);
    ZALMetal::g_counters.bytesUploaded += fastPathBytesPerRow * u(d.height) * u(d.depth);
}

/// Replaces a texture of one level by one with the whole chain, and keeps the first level's contents.
void rebuildWithMipmaps(ZALMetalState* metalState, ZALGLTextureObject* texture)
{
    ScopedPool pool;
    MTL::Texture* old = texture->EnsureMetalTexture();
    if (old) old->retain();
    texture->Reset();
    MTL::Texture* fresh = texture->EnsureMetalTexture();
    if (old && fresh) {
        MTL::BlitCommandEncoder* encoder = metalState->getOrCreateBlitCommandEncoder();
        NS::UInteger slices = old->textureType() == MTL::TextureTypeCube ? 6 : 1;
        for (NS::UInteger s = 0; s < slices; ++s)
            encoder->copyFromTexture(old, s, 0, MTL::Origin(0, 0, 0), MTL::Size(old->width(), old->height(), old->depth()), fresh, s, 0, MTL::Origin(0, 0, 0));
        encoder->synchronizeResource(fresh);
    }
    if (old) old->release();
}

} // namespace

void ZALMetalTexInitOrReplaceRegion(ZALGLState* state, ZALMetalState* metalState, ZALGLTextureObject* texture, int32_t face, int32_t level, int32_t xoffset,
                                    int32_t yoffset, int32_t zoffset, int32_t width, int32_t height, int32_t depth, GLenum format, GLenum type,
                                    const void* pixels)
{
    bool hadMipmaps = texture->HasMipmaps();
    // Kept on purpose: [levels-only-grow] no call takes a level back, not even a new level 0.
    texture->definedLevelsMask |= 1u << (static_cast<uint32_t>(level) & 31);
    if (!hadMipmaps && texture->HasMTLTexture() && level >= 1 && !state->isIntelDevice) rebuildWithMipmaps(metalState, texture);
    if (!pixels) return;
    MTL::Texture* metal = texture->EnsureMetalTexture();
    if (!metal) return;
    // Kept on purpose: [upload-before-commit] the processor writes at once: draws that are recorded and not yet run see the new texels.

    MTL::PixelFormat pixelFormat = metal->pixelFormat();
    Destination destination{metal, face, level, xoffset, yoffset, zoffset, width, height, depth};
    for (const ConversionPath& path : ConversionPaths)
        if (path.format == format && path.type == type && path.texture == pixelFormat)
            return uploadConverted(state, path, destination, static_cast<const uint8_t*>(pixels));
    for (const DirectPath& path : DirectPaths)
        if (path.format == format && path.type == type && path.texture == pixelFormat) return uploadDirect(path, destination, pixels);
    SetCurrentError(state, GL_INVALID_ENUM);
}

// ---- Image specification -----------------------------------------------------------------------------------------------------

void ZALTexImage(GLenum target, int32_t level, uint32_t internalFormat, int32_t width, int32_t height, int32_t depth, GLenum format, GLenum type,
                 const void* pixels)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    GLenum bindTarget = 0;
    int32_t face = 0;
    ZALGLTextureObject* texture = getBoundTextureFace(gl, target, bindTarget, face);
    if (!texture) return;

    if (level == 0 && face == 0) {
        texture->Reset();
        texture->internalFormat = internalFormat;
        texture->width = static_cast<uint32_t>(width);
        texture->height = static_cast<uint32_t>(height);
        texture->depth = static_cast<uint32_t>(depth);
    } else if (level >= 0 && texture->width == 0) {
        return SetCurrentError(gl, GL_INVALID_OPERATION);
    }
    ZALMetalTexInitOrReplaceRegion(gl, GetCurrentMetalState(), texture, face, level, 0, 0, 0, width, height, depth, format, type, pixels);
}

void glTexImage1D(GLenum target, GLint level, GLint internalformat, GLsizei width, GLint, GLenum format, GLenum type, const void* pixels)
{
    ZALTexImage(target, level, static_cast<uint32_t>(internalformat), width, 1, 1, format, type, pixels);
}

void glTexImage2D(GLenum target, GLint level, GLint internalformat, GLsizei width, GLsizei height, GLint, GLenum format, GLenum type, const void* pixels)
{
    ZALTexImage(target, level, static_cast<uint32_t>(internalformat), width, height, 1, format, type, pixels);
}

void glTexImage3D(GLenum target, GLint level, GLint internalformat, GLsizei width, GLsizei height, GLsizei depth, GLint, GLenum format, GLenum type,
                  const void* pixels)
{
    ZALTexImage(target, level, static_cast<uint32_t>(internalformat), width, height, depth, format, type, pixels);
}

// ---- Sub-images ----------------------------------------------------------------------------------------------------------------

namespace {

void subImage(GLenum target, GLint level, GLint x, GLint y, GLint z, GLsizei width, GLsizei height, GLsizei depth, GLenum format, GLenum type,
              const void* pixels)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    GLenum bindTarget = 0;
    int32_t face = 0;
    ZALGLTextureObject* texture = getBoundTextureFace(gl, target, bindTarget, face);
    if (!texture) return;

    bool defined = (texture->definedLevelsMask >> (static_cast<uint32_t>(level) & 31) & 1) != 0;
    if (!defined) return SetCurrentError(gl, GL_INVALID_VALUE);
    ZALMetalTexInitOrReplaceRegion(gl, GetCurrentMetalState(), texture, face, level, x, y, z, width, height, depth, format, type, pixels);
}

} // namespace

void glTexSubImage1D(GLenum target, GLint level, GLint xoffset, GLsizei width, GLenum format, GLenum type, const void* pixels)
{
    subImage(target, level, xoffset, 0, 0, width, 1, 1, format, type, pixels);
}

void glTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLsizei width, GLsizei height, GLenum format, GLenum type, const void* pixels)
{
    subImage(target, level, xoffset, yoffset, 0, width, height, 1, format, type, pixels);
}

void glTexSubImage3D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLint zoffset, GLsizei width, GLsizei height, GLsizei depth, GLenum format,
                     GLenum type, const void* pixels)
{
    subImage(target, level, xoffset, yoffset, zoffset, width, height, depth, format, type, pixels);
}
