// SPDX-License-Identifier: Apache-2.0
// Chapters: begin and end, colours, generic attributes.
#include "ZALGLBeginEnd.h"
#include "ZALGLFunctionsDraw.h"
#include "ZALGLProgramObject.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <algorithm>

// ---- Begin and end ---------------------------------------------------------------------------------------------------------

void glBegin(GLenum mode)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    uint64_t primitive = 0;
    // Kept on purpose: [begin-modes] loops, fans, quads and polygons are GL_INVALID_VALUE: Metal lacks them and nothing converts them.
    if (ZALMetal::convertPrimitiveType(primitive, mode)) return SetCurrentError(gl, GL_INVALID_VALUE);
    gl->beginEnd->Begin(gl, mode);
}

namespace {

/// The layout of the collected vertices; equal masks share one descriptor.
MTL::VertexDescriptor* immediateLayout(ZALGLProgramObject& program, uint32_t mask)
{
    GLVertexDescription key;
    key.mask = mask;
    uint32_t converted = mask;
    if (MTL::VertexDescriptor* known = program.vertexDescriptors.get(converted, key)) return known;
    MTL::VertexDescriptor* descriptor = MTL::VertexDescriptor::alloc()->init();
    descriptor->layouts()->object(0)->setStride(ZALGLBeginEnd::VertexBytes);
    for (uint32_t i = 0; i < ZALGLBeginEnd::Attributes; ++i) {
        if (!(mask >> i & 1)) continue;
        MTL::VertexAttributeDescriptor* attribute = descriptor->attributes()->object(i);
        attribute->setFormat(MTL::VertexFormatFloat4);
        attribute->setOffset(i * 16);
        attribute->setBufferIndex(0);
    }
    program.vertexDescriptors.set(mask, key, descriptor);
    descriptor->release(); // the cache holds it now, unless it had no room or knows this mask as one without a layout
    return program.vertexDescriptors.get(converted, key);
}

/// Without a vertex everything is checked and installed as ever, and nothing drawn.
void drawCollected(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, ZALGLProgramObject& program)
{
    ZALGLBeginEnd& collected = *gl->beginEnd;
    auto count = static_cast<NS::UInteger>(collected.vertexCount);
    uint64_t primitive = 0;
    ZALMetal::convertPrimitiveType(primitive, collected.mode);
    if (count > 0) encoder->setVertexBytes(collected.vertices, count * ZALGLBeginEnd::VertexBytes, 0);
    MTL::VertexDescriptor* descriptor = immediateLayout(program, collected.vertexMask);
    if (!descriptor) return;
    ZALMetal::VertexProgramSpecializationKey key = {};
    key.attributeMask = collected.vertexMask;
    if (internal_InstallMetalState(encoder, descriptor, key) != 0 || count == 0) return;
    ++ZALMetal::g_counters.draws;
    encoder->drawPrimitives(static_cast<MTL::PrimitiveType>(primitive), NS::UInteger(0), count, NS::UInteger(1), NS::UInteger(0));
}

} // namespace

void glEnd(void)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    MTL::RenderCommandEncoder* encoder = GetCurrentMetalState()->getOrCreateCommandEncoder(gl);
    ZALGLProgramObject* program = getBoundProgram(gl, GL_VERTEX_PROGRAM_ARB);
    bool fits = gl->beginEnd->vertexCount <= ZALGLBeginEnd::MostVertices;
    if (program && fits) drawCollected(gl, encoder, *program);
    gl->beginEnd->End(gl);
    if (!program) SetCurrentError(gl, GL_INVALID_OPERATION);
}

// ---- Colours -----------------------------------------------------------------------------------------------------------------

void glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha)
{
    if (ZALGLState* gl = GetCurrentGLState()) gl->beginEnd->Color(red, green, blue, alpha);
}

void glColor4ubv(const GLubyte* v)
{
    if (ZALGLState* gl = GetCurrentGLState())
        gl->beginEnd->Color(static_cast<float>(v[0] / 255.0), static_cast<float>(v[1] / 255.0), static_cast<float>(v[2] / 255.0), static_cast<float>(v[3] / 255.0));
}

// ---- Generic attributes --------------------------------------------------------------------------------------------------------

namespace {

/// One attribute from the first N values; the others are 0, 0 and 1.
template <int N, class Number>
void attribute(GLuint index, const Number* v)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    float values[4] = {0, 0, 0, 1};
    for (int i = 0; i < N; ++i) values[i] = static_cast<float>(v[i]);
    gl->beginEnd->VertexAttrib(index, values[0], values[1], values[2], values[3]);
}

/// Four values scaled to one, signed ones raised to -1.
template <class Number>
void normalized(GLuint index, const Number* v, double largest)
{
    float values[4];
    for (int i = 0; i < 4; ++i) values[i] = std::max(static_cast<float>(v[i] / largest), -1.0f);
    attribute<4>(index, values);
}

} // namespace

void glVertexAttrib1dvARB(GLuint index, const GLdouble* v) { attribute<1>(index, v); }
void glVertexAttrib1fvARB(GLuint index, const GLfloat* v) { attribute<1>(index, v); }
void glVertexAttrib1svARB(GLuint index, const GLshort* v) { attribute<1>(index, v); }
void glVertexAttrib2dvARB(GLuint index, const GLdouble* v) { attribute<2>(index, v); }
void glVertexAttrib2fvARB(GLuint index, const GLfloat* v) { attribute<2>(index, v); }
void glVertexAttrib2svARB(GLuint index, const GLshort* v) { attribute<2>(index, v); }
void glVertexAttrib3dvARB(GLuint index, const GLdouble* v) { attribute<3>(index, v); }
void glVertexAttrib3fvARB(GLuint index, const GLfloat* v) { attribute<3>(index, v); }
void glVertexAttrib3svARB(GLuint index, const GLshort* v) { attribute<3>(index, v); }
void glVertexAttrib4dvARB(GLuint index, const GLdouble* v) { attribute<4>(index, v); }
void glVertexAttrib4fvARB(GLuint index, const GLfloat* v) { attribute<4>(index, v); }
void glVertexAttrib4ivARB(GLuint index, const GLint* v) { attribute<4>(index, v); }
void glVertexAttrib4svARB(GLuint index, const GLshort* v) { attribute<4>(index, v); }
void glVertexAttrib4ubvARB(GLuint index, const GLubyte* v) { attribute<4>(index, v); }
void glVertexAttrib4NsvARB(GLuint index, const GLshort* v) { normalized(index, v, 32767.0); }
void glVertexAttrib4NubvARB(GLuint index, const GLubyte* v) { normalized(index, v, 255.0); }

void glVertexAttrib4NivARB(GLuint index, const GLint* v)
{
    if (ZALGLState* gl = GetCurrentGLState()) gl->beginEnd->VertexAttrib4Niv(gl, index, v);
}

void glVertexAttrib2fARB(GLuint index, GLfloat x, GLfloat y)
{
    const float v[2] = {x, y};
    attribute<2>(index, v);
}

void glVertexAttrib4fARB(GLuint index, GLfloat x, GLfloat y, GLfloat z, GLfloat w)
{
    const float v[4] = {x, y, z, w};
    attribute<4>(index, v);
}
