// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Metal/Metal.hpp>

/// A GL buffer: at most one Metal buffer, owned.
class ZALGLBufferObject
{
public:
    ZALGLBufferObject() = default;
    ZALGLBufferObject(const ZALGLBufferObject&) = delete;
    ZALGLBufferObject& operator=(const ZALGLBufferObject&) = delete;
    ~ZALGLBufferObject() { ReleaseMTLBuffer(); }

    /// Takes over the caller's reference.
    void SetMTLBuffer(MTL::Buffer* buffer)
    {
        ReleaseMTLBuffer();
        _buffer = buffer;
    }
    MTL::Buffer* GetMTLBuffer() const { return _buffer; }
    void ReleaseMTLBuffer()
    {
        if (_buffer) _buffer->release();
        _buffer = nullptr;
    }

private:
    MTL::Buffer* _buffer = nullptr; // null until data has been given
};
