// SPDX-License-Identifier: Apache-2.0
#include "ZALGLBeginEnd.h"

#include <algorithm>
#include <cstdint>

void ZALGLBeginEnd::End(ZALGLState* state)
{
    if (state->strictValidation) {
        if (vertexCount > MostVertices) SetCurrentError(state, GL_INVALID_OPERATION);
        if (pendingError) SetCurrentError(state, pendingError);
    }
    // Kept on purpose: [attributes-left-over] attributes given after the last vertex stay marked for the next pair.
    vertexMask = 0;
    vertexCount = 0;
    mode = 0;
    pendingError = 0;
}

bool ZALGLBeginEnd::Store(uint32_t index, float x, float y, float z, float w)
{
    // Kept on purpose: [immediate-points] GL_POINTS is mode 0, which also means "no pair open": nothing is recorded for it.
    if (mode == 0) return false;
    // Kept on purpose: [four-vertices] a fifth vertex, or any attribute after the fourth, makes the whole pair draw nothing.
    if (vertexCount >= MostVertices) {
        if (vertexCount < INT32_MAX) ++vertexCount;
        return false;
    }
    const float values[4] = {x, y, z, w};
    std::copy(values, values + 4, vertices[vertexCount][index]);
    currentMask |= 1u << index;
    return true;
}

void ZALGLBeginEnd::VertexAttrib(uint32_t index, float x, float y, float z, float w)
{
    if (index >= Attributes || !Store(index, x, y, z, w) || index != PositionAttribute) return;
    vertexMask |= currentMask;
    // Kept on purpose: [attributes-per-vertex] an attribute does not carry over to the vertices that follow.
    if (vertexMask != currentMask) pendingError = GL_INVALID_OPERATION; // an earlier vertex had more attributes
    currentMask = 0;
    ++vertexCount;
}

void ZALGLBeginEnd::Color(float r, float g, float b, float a) { Store(ColorAttribute, r, g, b, a); }

void ZALGLBeginEnd::VertexAttrib4Niv(ZALGLState*, uint32_t index, const int32_t* values)
{
    auto scaled = [&](int i) { return std::max(static_cast<float>(values[i] / 2147483647.0), -1.0f); };
    VertexAttrib(index, scaled(0), scaled(1), scaled(2), scaled(3));
}
