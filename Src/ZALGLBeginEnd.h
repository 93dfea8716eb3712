// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLState.h"

/// Collects the vertices of one glBegin/glEnd pair: four at the most, each with up to sixteen attributes.
class ZALGLBeginEnd
{
public:
    static constexpr int MostVertices = 4, Attributes = 16, PositionAttribute = 0, ColorAttribute = 3;
    static constexpr uint32_t VertexBytes = Attributes * 4 * sizeof(float);

    void Begin(ZALGLState*, uint32_t newMode) { mode = newMode; }
    void End(ZALGLState* state);
    /// Stores an attribute of the vertex being built; attribute 0 emits the vertex.
    void VertexAttrib(uint32_t index, float x, float y, float z, float w);
    void VertexAttrib4Niv(ZALGLState*, uint32_t index, const int32_t* values);
    /// As VertexAttrib for the colour, which never emits.
    void Color(float r, float g, float b, float a);

    uint32_t currentMask = 0; // attributes given for the vertex being built
    uint32_t vertexMask = 0;  // attributes of all emitted vertices
    int32_t vertexCount = 0;  // goes on counting past four
    uint32_t mode = 0;        // GL primitive mode; 0 outside a pair
    uint32_t pendingError = 0;
    float vertices[MostVertices][Attributes][4] = {};

private:
    bool Store(uint32_t index, float x, float y, float z, float w);
};
