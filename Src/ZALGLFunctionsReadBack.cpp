// SPDX-License-Identifier: Apache-2.0
// Chapters: reading pixels, reading textures, copies.
#include "ScopedPool.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalBlitter.h"
#include "ZALMetalContext.h"
#include "ZALMetalState.h"

#include <algorithm>
#include <cstring>

namespace {

/// How pixels are read for a client's layout.
struct ReadFormat
{
    MTL::PixelFormat pixelFormat = MTL::PixelFormatInvalid;
    uint64_t bytesPerPixel = 0;
    uint64_t offset = 0;    // of the client's bytes within a pixel
    uint64_t copyBytes = 0; // per pixel; 0: the whole pixel
    bool isDepth = false;
};

struct ReadRow
{
    GLenum format, type;
    ReadFormat read;
};

constexpr ReadRow ReadTable[] = {
    {GL_DEPTH_COMPONENT, GL_FLOAT, {MTL::PixelFormatDepth32Float, 4, 0, 0, true}},
    {GL_ALPHA, GL_UNSIGNED_BYTE, {MTL::PixelFormatBGRA8Unorm, 4, 3, 1, false}},
    {GL_RED, GL_UNSIGNED_BYTE, {MTL::PixelFormatR8Unorm, 1, 0, 0, false}},
    {GL_RED, GL_HALF_FLOAT, {MTL::PixelFormatR16Float, 2, 0, 0, false}},
    {GL_RED, GL_FLOAT, {MTL::PixelFormatR32Float, 4, 0, 0, false}},
    {GL_RGB, GL_UNSIGNED_BYTE, {MTL::PixelFormatRGBA8Unorm, 4, 0, 3, false}},
    {GL_RGB, GL_HALF_FLOAT, {MTL::PixelFormatRGBA16Float, 8, 0, 6, false}},
    {GL_RGB, GL_FLOAT, {MTL::PixelFormatRGBA32Float, 16, 0, 12, false}},
    {GL_BGRA, GL_UNSIGNED_BYTE, {MTL::PixelFormatBGRA8Unorm, 4, 0, 0, false}},
    {GL_RGBA, GL_UNSIGNED_BYTE, {MTL::PixelFormatRGBA8Unorm, 4, 0, 0, false}},
    {GL_RGBA, GL_HALF_FLOAT, {MTL::PixelFormatRGBA16Float, 8, 0, 0, false}},
    {GL_RGBA, GL_FLOAT, {MTL::PixelFormatRGBA32Float, 16, 0, 0, false}},
};

int convertReadFormatType(ReadFormat& readFormat, GLenum format, GLenum type)
{
    readFormat = ReadFormat();
    for (const ReadRow& row : ReadTable) {
        if (row.format != format || row.type != type) continue;
        readFormat = row.read;
        return 0;
    }
    return 1;
}

NS::UInteger u(int value) { return static_cast<NS::UInteger>(static_cast<int64_t>(value)); }

MTL::Texture* newTemporary(MTL::PixelFormat format, int width, int height)
{
    MTL::TextureDescriptor* d = MTL::TextureDescriptor::alloc()->init();
    d->setTextureType(MTL::TextureType2D);
    d->setPixelFormat(format);
    d->setWidth(u(width));
    d->setHeight(u(height));
    d->setStorageMode(MTL::StorageModePrivate);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    MTL::Texture* texture = GetCurrentMetalData()->device->newTexture(d);
    d->release();
    return texture;
}

/// A copy of the region in another format, made by drawing it.
MTL::Texture* converted(MTL::Texture* texture, MTL::PixelFormat format, int x, int y, int width, int height)
{
    ZALMetalData* data = GetCurrentMetalData();
    MTL::CommandBuffer* commandBuffer = data->metalState->commandBufferStart();
    MTL::Texture* temporary = newTemporary(format, width, height);
    if (temporary)
        CopyTexSubImage2D(data->blitter, data->device, commandBuffer, texture, MTL::Origin(u(x), u(y), 0), MTL::Size(u(width), u(height), 1), temporary,
                          MTL::Origin(0, 0, 0), 0, 0, false);
    data->metalState->commandBufferEnd();
    return temporary;
}

// Kept on purpose: [pack-ignored] the client's rows follow one another without gaps, whatever glPixelStorei was told.
void copyToClient(const ReadFormat& f, const uint8_t* from, uint64_t pixels, void* to)
{
    if (f.copyBytes == 0) {
        std::memcpy(to, from, pixels * f.bytesPerPixel);
        return;
    }
    auto* out = static_cast<uint8_t*>(to);
    for (uint64_t i = 0; i < pixels; ++i, from += f.bytesPerPixel, out += f.copyBytes) std::memcpy(out, from + f.offset, f.copyBytes);
}

/// The source of a read: the texture itself, or what it was converted to; null when that cannot be made.
struct Source
{
    Source(MTL::Texture* wanted, const ReadFormat& f, int x, int y, int width, int height)
        : isTemporary(wanted->pixelFormat() != f.pixelFormat),
          texture(isTemporary ? converted(wanted, f.pixelFormat, x, y, width, height) : wanted)
    {
    }
    ~Source()
    {
        if (!isTemporary || !texture) return;
        texture->setPurgeableState(MTL::PurgeableStateEmpty);
        texture->release();
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    bool isTemporary;
    MTL::Texture* texture;
};

/// Bytes of the buffer between device and client; 0 when there is nothing to read or no memory of that size.
uint64_t bufferBytes(const ReadFormat& f, int width, int height)
{
    if (width <= 0 || height <= 0) return 0;
    uint64_t count = static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
    return count <= UINT64_MAX / f.bytesPerPixel ? count * f.bytesPerPixel : 0;
}

void ReadPixelsFromMtlTexture2D(MTL::Texture* texture, const ReadFormat& readFormat, int x, int y, int width, int height, void* pixels)
{
    ZALMetalState* metalState = GetCurrentMetalState();
    uint64_t bytes = bufferBytes(readFormat, width, height);
    MTL::Buffer* buffer = texture && bytes ? GetCurrentMetalData()->device->newBuffer(bytes, static_cast<MTL::ResourceOptions>(0)) : nullptr;
    if (!buffer) return metalState->commandBufferWaitUntilCompleted(); // nothing to copy; hosts also read to wait

    metalState->commandBufferEnd();
    {
        Source source(texture, readFormat, x, y, width, height);
        if (source.texture) {
            MTL::PixelFormat format = source.texture->pixelFormat();
            bool packed = format == MTL::PixelFormatDepth32Float_Stencil8 || format == MTL::PixelFormatDepth24Unorm_Stencil8;
            // Kept on purpose: [converted-read-origin] a converted read keeps its origin, although the converted copy begins at (0, 0).
            metalState->getOrCreateBlitCommandEncoder()->copyFromTexture(source.texture, 0, 0, MTL::Origin(u(x), u(y), 0), MTL::Size(u(width), u(height), 1), buffer,
                                                                         0, u(width) * readFormat.bytesPerPixel, 0,
                                                                         packed ? MTL::BlitOptionDepthFromDepthStencil : MTL::BlitOptionNone);
        }
        metalState->commandBufferWaitUntilCompleted();
        if (source.texture) copyToClient(readFormat, static_cast<const uint8_t*>(buffer->contents()), bytes / readFormat.bytesPerPixel, pixels);
    }
    buffer->setPurgeableState(MTL::PurgeableStateEmpty);
    buffer->release();
}

} // namespace

// ---- Reading pixels --------------------------------------------------------------------------------------------------------

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    ReadFormat readFormat;
    // Kept on purpose: [read-format-error] an unknown layout is GL_INVALID_OPERATION, where GL says INVALID_ENUM.
    if (convertReadFormatType(readFormat, format, type)) return SetCurrentError(gl, GL_INVALID_OPERATION);

    ScopedPool pool;
    ZALMetalContext* context = GetCurrentMetalContext();
    MTL::Texture* source = readFormat.isDepth ? getFramebufferDepthTexture(gl, context) : getFramebufferColorTexture(gl, context, 0);
    ReadPixelsFromMtlTexture2D(source, readFormat, x, y, width, height, pixels);
}

// ---- Reading textures --------------------------------------------------------------------------------------------------------

void glGetTexImage(GLenum target, GLint level, GLenum format, GLenum type, void* pixels)
{
    ZALGLState* gl = GetCurrentGLState();
    GLenum bindTarget = 0;
    int32_t face = 0;
    ZALGLTextureObject* texture = gl ? getBoundTextureFace(gl, target, bindTarget, face) : nullptr;
    if (!texture) return;
    MTL::Texture* metal = texture->EnsureMetalTexture();
    if (!metal) return SetCurrentError(gl, GL_INVALID_ENUM);
    ReadFormat readFormat;
    if (convertReadFormatType(readFormat, format, type)) return SetCurrentError(gl, GL_INVALID_OPERATION);

    ScopedPool pool;
    ZALMetalState* metalState = GetCurrentMetalState();
    auto size = [&](uint32_t base) { return std::max(1, static_cast<int32_t>(base) >> (level & 31)); };
    int w = size(texture->width), h = size(texture->height), d = size(texture->depth);
    metalState->renderPassEnd();
    if (!readFormat.isDepth && readFormat.pixelFormat == metal->pixelFormat() && readFormat.copyBytes == 0) {
        metalState->getOrCreateBlitCommandEncoder()->synchronizeTexture(metal, u(face), u(level));
        metalState->commandBufferWaitUntilCompleted();
        // Kept on purpose: [image-unswizzled] channels come as they are stored, which differs from what a draw sees of GL_RGB or GL_LUMINANCE8.
        NS::UInteger row = u(w) * readFormat.bytesPerPixel;
        metal->getBytes(pixels, row, u(h) * row, MTL::Region(0, 0, 0, u(w), u(h), u(d)), u(level), u(face));
        return;
    }
    MTL::Texture* temporary = newTemporary(metal->pixelFormat(), w, h);
    if (!temporary) return;
    auto* out = static_cast<uint8_t*>(pixels);
    for (int z = 0; z < d; ++z) {
        metalState->getOrCreateBlitCommandEncoder()->copyFromTexture(metal, u(face), u(level), MTL::Origin(0, 0, u(z)), MTL::Size(u(w), u(h), 1), temporary, 0, 0,
                                                                     MTL::Origin(0, 0, 0));
        ReadPixelsFromMtlTexture2D(temporary, readFormat, 0, 0, w, h, out);
        // Kept on purpose: [read-3d-advance] whole-pixel reads do not advance here: the images of a 3D texture land on one another.
        out += u(h) * u(w) * readFormat.copyBytes;
    }
    temporary->release();
}

// ---- Copies --------------------------------------------------------------------------------------------------------------------

void glCopyTexSubImage2D(GLenum target, GLint level, GLint xoffset, GLint yoffset, GLint x, GLint y, GLsizei width, GLsizei height)
{
    ZALGLState* gl = GetCurrentGLState();
    GLenum bindTarget = 0;
    int32_t face = 0;
    ZALGLTextureObject* texture = gl ? getBoundTextureFace(gl, target, bindTarget, face) : nullptr;
    if (!texture) return;
    bool defined = (texture->definedLevelsMask >> (static_cast<uint32_t>(level) & 31) & 1) != 0;
    if (!defined) return SetCurrentError(gl, GL_INVALID_VALUE);
    MTL::Texture* metal = texture->EnsureMetalTexture();
    if (!metal) return SetCurrentError(gl, GL_INVALID_OPERATION);
    if (metal->mipmapLevelCount() <= u(level)) return;

    ScopedPool pool;
    ZALMetalContext* context = GetCurrentMetalContext();
    uint32_t contents = texture->GetContentsTypeMask();
    MTL::Texture* source = nullptr;
    if (contents == ZALGLTextureObject::ColorContents) source = getFramebufferColorTexture(gl, context, 0);
    else if (contents == ZALGLTextureObject::DepthContents) source = getFramebufferDepthTexture(gl, context);
    if (!source) return SetCurrentError(gl, GL_INVALID_OPERATION);

    ZALMetalData* data = context->metalData;
    MTL::Origin from(u(x), u(y), 0), to(u(xoffset), u(yoffset), 0);
    MTL::Size size(u(width), u(height), 1);
    if (source->pixelFormat() != metal->pixelFormat()) {
        data->metalState->commandBufferEnd();
        CopyTexSubImage2D(data->blitter, data->device, data->metalState->commandBufferStart(), source, from, size, metal, to, face, level, false);
    } else {
        data->metalState->getOrCreateBlitCommandEncoder()->copyFromTexture(source, 0, 0, from, size, metal, u(face), u(level), to);
    }
    data->metalState->commandBufferEnd();
}

namespace {

void copyIsNotOffered()
{
    if (ZALGLState* gl = GetCurrentGLState()) SetCurrentError(gl, GL_INVALID_OPERATION);
}

} // namespace

void glCopyTexImage2D(GLenum, GLint, GLenum, GLint, GLint, GLsizei, GLsizei, GLint) { copyIsNotOffered(); }
void glCopyTexSubImage1D(GLenum, GLint, GLint, GLint, GLint, GLsizei) { copyIsNotOffered(); }
void glCopyTexSubImage3D(GLenum, GLint, GLint, GLint, GLint, GLint, GLint, GLsizei, GLsizei) { copyIsNotOffered(); }
