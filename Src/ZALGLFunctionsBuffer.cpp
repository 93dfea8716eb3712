// SPDX-License-Identifier: Apache-2.0
// Chapters: binding, data.
#include "ZALGLContextObjects.h"
#include "ZALMetalData.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <cstring>

// ---- Binding -------------------------------------------------------------------------------------------------------------

void glBindBuffer(GLenum target, GLuint buffer)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [bind-any-buffer] a name that was never generated can be bound; its use is the error.
    if (target == GL_ARRAY_BUFFER) gl->arrayBufferBinding = buffer;
    else if (target == GL_ELEMENT_ARRAY_BUFFER) gl->elementArrayBufferBinding = buffer;
    else SetCurrentError(gl, GL_INVALID_ENUM);
}

// ---- Data ----------------------------------------------------------------------------------------------------------------

namespace {

// Kept on purpose: [staged-update-size] the limit is one byte past a kilobyte, and only the offset must be a multiple of 4;
// Metal asks that of the size as well.
constexpr GLsizeiptr StagedUpdate = 1025;

ZALGLBufferObject* boundBuffer(ZALGLState* gl, GLenum target)
{
    if (target != GL_ARRAY_BUFFER && target != GL_ELEMENT_ARRAY_BUFFER) {
        SetCurrentError(gl, GL_INVALID_ENUM);
        return nullptr;
    }
    uint32_t name = target == GL_ARRAY_BUFFER ? gl->arrayBufferBinding : gl->elementArrayBufferBinding;
    ZALGLBufferObject* object = name ? gl->contextObjects->buffers.Find(name) : nullptr;
    if (!object) SetCurrentError(gl, GL_INVALID_OPERATION);
    return object;
}

void updateOnGpu(ZALGLState* gl, MTL::Buffer* buffer, GLintptr offset, GLsizeiptr size, const void* data)
{
    MTL::BlitCommandEncoder* encoder = GetCurrentMetalState()->getOrCreateBlitCommandEncoder();
    GetCurrentMetalState()->commandBufferGetCurrent();
    auto* pool = NS::AutoreleasePool::alloc()->init();
    MTL::Buffer* staging = GetCurrentMetalData()->device->newBuffer(data, static_cast<NS::UInteger>(size), static_cast<MTL::ResourceOptions>(0));
    if (encoder && staging) encoder->copyFromBuffer(staging, 0, buffer, static_cast<NS::UInteger>(offset), static_cast<NS::UInteger>(size));
    else SetCurrentError(gl, GL_OUT_OF_MEMORY);
    if (staging) staging->release();
    pool->release();
}

} // namespace

void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    ZALGLBufferObject* object = boundBuffer(gl, target);
    if (!object) return;

    object->ReleaseMTLBuffer(); // queued work keeps the old storage alive
    // Kept on purpose: [empty-buffer] a size of 0 or less is GL_OUT_OF_MEMORY, where GL makes an empty buffer or says INVALID_VALUE.
    if (size <= 0) return SetCurrentError(gl, GL_OUT_OF_MEMORY);

    auto length = static_cast<NS::UInteger>(size);
    MTL::Device* device = GetCurrentMetalData()->device;
    MTL::Buffer* buffer = data ? device->newBuffer(data, length, MTL::ResourceStorageModeManaged) : device->newBuffer(length, MTL::ResourceStorageModeManaged);
    if (!buffer) return SetCurrentError(gl, GL_OUT_OF_MEMORY);
    if (data) ZALMetal::g_counters.bytesUploaded += length;
    if (gl->isIntelDevice) buffer->didModifyRange(NS::Range(0, length));
    object->SetMTLBuffer(buffer);
}

void glBufferSubData(GLenum target, GLintptr offset, GLsizeiptr size, const void* data)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    ZALGLBufferObject* object = boundBuffer(gl, target);
    if (!object) return;

    MTL::Buffer* buffer = object->GetMTLBuffer();
    if (size > 0 && !buffer) return SetCurrentError(gl, GL_INVALID_OPERATION);
    NS::UInteger length = buffer ? buffer->length() : 0;
    // Kept on purpose: [sub-data-range] a range beyond the buffer is GL_INVALID_OPERATION, where GL says INVALID_VALUE.
    bool inside = offset >= 0 && size >= 0 && static_cast<NS::UInteger>(offset) + static_cast<NS::UInteger>(size) <= length;
    if (!inside) return SetCurrentError(gl, GL_INVALID_OPERATION);
    if (!buffer) return;

    ZALMetal::g_counters.bytesUploaded += static_cast<uint64_t>(size);
    if (gl->isIntelDevice && offset % 4 == 0 && size >= StagedUpdate) return updateOnGpu(gl, buffer, offset, size, data);
    // Kept on purpose: [sub-data-in-use] draws that are still queued may see the new contents: nothing waits for them.
    if (size > 0) std::memcpy(static_cast<char*>(buffer->contents()) + offset, data, static_cast<size_t>(size));
    buffer->didModifyRange(NS::Range(static_cast<NS::UInteger>(offset), static_cast<NS::UInteger>(size)));
}
