// SPDX-License-Identifier: Apache-2.0
// Vertex arrays: generic attributes, and the client states that stand for them.
#include "VertexDescriptorCache.h"
#include "ZALGLState.h"

namespace
{

constexpr GLuint Attributes = 16;

void setAttribArray(GLuint index, bool enable)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (index >= Attributes) {
        SetCurrentError(gl, GL_INVALID_VALUE);
        return;
    }

    uint32_t bit = 1u << index;
    gl->enabledAttribArrays = enable ? gl->enabledAttribArrays | bit : gl->enabledAttribArrays & ~bit;
}

void setClientState(GLenum array, bool enable)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    switch (array) {
    case GL_VERTEX_ARRAY:
        setAttribArray(0, enable);
        break;
    // Kept on purpose: [client-arrays-ignored] these arrays do not exist; turning them on or off is accepted in
    // silence.
    case GL_NORMAL_ARRAY:
    case GL_COLOR_ARRAY:
    case GL_TEXTURE_COORD_ARRAY:
        break;
    default:
        SetCurrentError(gl, GL_INVALID_ENUM);
    }
}

void setAttribPointer(ZALGLState* gl, const GLVertexAttribDescription& attribute, GLuint index)
{
    // Kept on purpose: [arrays-need-a-buffer] GL takes client memory; here every array comes from a buffer object.
    if (gl->arrayBufferBinding == 0) {
        SetCurrentError(gl, GL_INVALID_OPERATION);
        return;
    }

    gl->vertexAttribs[index] = attribute;
    gl->vertexAttribs[index].buffer = gl->arrayBufferBinding;

    // Kept on purpose: [attrib-refused-but-stored] strict validation reports a format that Metal lacks, and keeps it.
    if (gl->strictValidation && ZALMetal::convertVertexFormat(gl->vertexAttribs[index]) == MTL::VertexFormatInvalid)
        SetCurrentError(gl, GL_INVALID_OPERATION);
}

int64_t offsetOf(const void* pointer)
{
    return static_cast<int64_t>(reinterpret_cast<uintptr_t>(pointer));
}

} // namespace

// ---- Client arrays -------------------------------------------------------------------------------------------------

void glEnableClientState(GLenum array)
{
    setClientState(array, true);
}

void glDisableClientState(GLenum array)
{
    setClientState(array, false);
}

void glVertexPointer(GLint size, GLenum type, GLsizei stride, const void* pointer)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [vertex-pointer-normalized] GL never normalises positions; here integer types are.
    bool normalized = true;
    setAttribPointer(gl, {0, size, type, normalized, stride, offsetOf(pointer)}, 0);
}

// ---- Generic attribute arrays --------------------------------------------------------------------------------------

void glEnableVertexAttribArrayARB(GLuint index)
{
    setAttribArray(index, true);
}

void glDisableVertexAttribArrayARB(GLuint index)
{
    setAttribArray(index, false);
}

void glVertexAttribPointerARB(GLuint index, GLint size, GLenum type, GLboolean normalized, GLsizei stride,
                              const void* pointer)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    if (index >= Attributes) {
        SetCurrentError(gl, GL_INVALID_VALUE);
        return;
    }

    setAttribPointer(gl, {0, size, type, normalized != 0, stride, offsetOf(pointer)}, index);
}
