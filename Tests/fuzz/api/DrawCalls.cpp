// SPDX-License-Identifier: Apache-2.0
// Vertex arrays, draws, immediate mode, clears. Kept away from, because an assertion ends the process there: a draw
// without an index buffer. A count that no index buffer holds is left out where points are drawn as instances, which
// takes its time.
#include "fuzz/api/Arguments.h"

#include <climits>
#include <iterator>

namespace fuzz::api
{

namespace
{

const void* offset(Arguments& a)
{
    uint8_t choice = a.input.byte();
    uintptr_t value = choice < 200 ? choice % 65u : static_cast<uintptr_t>(static_cast<int64_t>(a.integer()));
    return reinterpret_cast<const void*>(value);
}

constexpr GLenum Types[] = {GL_FLOAT, GL_FLOAT,          GL_HALF_FLOAT, GL_UNSIGNED_BYTE, GL_BYTE,
                            GL_SHORT, GL_UNSIGNED_SHORT, GL_INT,        GL_DOUBLE};

GLenum type(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 240 ? Types[choice % std::size(Types)] : a.word();
}

GLint size(Arguments& a)
{
    return a.input.byte() < 240 ? a.input.byte() % 5 : a.integer();
}

void attribPointer(Arguments& a)
{
    GLuint index = a.input.byte() % 17u;
    GLint components = size(a);
    GLenum t = type(a);
    GLboolean normalized = a.input.byte() & 1;
    GLsizei stride = a.integer();
    glVertexAttribPointerARB(index, components, t, normalized, stride, offset(a));
}

void vertexPointer(Arguments& a)
{
    GLint components = size(a);
    GLenum t = type(a);
    GLsizei stride = a.integer();
    glVertexPointer(components, t, stride, offset(a));
}

void enableAttrib(Arguments& a)
{
    glEnableVertexAttribArrayARB(a.input.byte() % 17u);
}
void disableAttrib(Arguments& a)
{
    glDisableVertexAttribArrayARB(a.input.byte() % 17u);
}

constexpr GLenum Modes[] = {GL_POINTS, GL_LINES, GL_LINE_STRIP, GL_TRIANGLES, GL_TRIANGLE_STRIP};

GLenum mode(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 232 ? Modes[choice % std::size(Modes)] : a.word();
}

bool drawsInstances(ZALGLState* gl)
{
    ZALGLProgramObject* program = getBoundProgram(gl, GL_VERTEX_PROGRAM_ARB);
    return program && program->expandsPoints;
}

void drawElements(Arguments& a)
{
    GLenum m = mode(a);
    uint8_t choice = a.input.byte();
    GLsizei count = choice < 240 ? choice % 100 : choice < 248 ? a.integer() : INT_MAX;
    GLenum t = a.input.byte() < 240 ? GL_UNSIGNED_SHORT + (a.input.byte() & 1u) * 2u : a.word();
    const void* first = offset(a);
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return glDrawElements(m, count, t, first);
    if (!gl->contextObjects->buffers.Find(gl->elementArrayBufferBinding) || --a.world.draws < 0) return;
    if (count > 1000 && drawsInstances(gl)) count = 1000;
    glDrawElements(m, count, t, first);
}

void begin(Arguments& a)
{
    glBegin(mode(a));
}

void end(Arguments& a)
{
    if (--a.world.draws >= 0) glEnd();
}

void clear(Arguments& a)
{
    if (--a.world.draws >= 0) glClear(a.input.byte() < 128 ? GL_COLOR_BUFFER_BIT : a.word());
}

void position(Arguments& a)
{
    GLfloat x = a.real(), y = a.real(), z = a.real();
    glVertexAttrib4fARB(0, x, y, z, 1);
}

constexpr Call Calls[] = {
    {"glBegin", begin},
    {"glClear", clear},
    {"glColor4f", plain<glColor4f>},
    {"glColor4ubv", plain<glColor4ubv>},
    {"glDisableClientState", plain<glDisableClientState>},
    {"glDisableVertexAttribArrayARB", disableAttrib},
    {"glDrawElements", drawElements},
    {"glEnableClientState", plain<glEnableClientState>},
    {"glEnableVertexAttribArrayARB", enableAttrib},
    {"glEnd", end},
    {"glVertex2f", plain<glVertex2f>},
    {"glVertex2i", plain<glVertex2i>},
    {"glVertex3fv", plain<glVertex3fv, 3>},
    {"glVertexAttrib1dvARB", plain<glVertexAttrib1dvARB, 1>},
    {"glVertexAttrib1fvARB", plain<glVertexAttrib1fvARB, 1>},
    {"glVertexAttrib1svARB", plain<glVertexAttrib1svARB, 1>},
    {"glVertexAttrib2dvARB", plain<glVertexAttrib2dvARB, 2>},
    {"glVertexAttrib2fARB", plain<glVertexAttrib2fARB>},
    {"glVertexAttrib2fvARB", plain<glVertexAttrib2fvARB, 2>},
    {"glVertexAttrib2svARB", plain<glVertexAttrib2svARB, 2>},
    {"glVertexAttrib3dvARB", plain<glVertexAttrib3dvARB, 3>},
    {"glVertexAttrib3fvARB", plain<glVertexAttrib3fvARB, 3>},
    {"glVertexAttrib3svARB", plain<glVertexAttrib3svARB, 3>},
    {"glVertexAttrib4NivARB", plain<glVertexAttrib4NivARB>},
    {"glVertexAttrib4NsvARB", plain<glVertexAttrib4NsvARB>},
    {"glVertexAttrib4NubvARB", plain<glVertexAttrib4NubvARB>},
    {"glVertexAttrib4dvARB", plain<glVertexAttrib4dvARB>},
    {"glVertexAttrib4fARB", position},
    {"glVertexAttrib4fvARB", plain<glVertexAttrib4fvARB>},
    {"glVertexAttrib4ivARB", plain<glVertexAttrib4ivARB>},
    {"glVertexAttrib4svARB", plain<glVertexAttrib4svARB>},
    {"glVertexAttrib4ubvARB", plain<glVertexAttrib4ubvARB>},
    {"glVertexAttribPointerARB", attribPointer},
    {"glVertexPointer", vertexPointer},
};

} // namespace

const Chapter DrawChapter{Calls, std::size(Calls)};

} // namespace fuzz::api
