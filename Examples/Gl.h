// SPDX-License-Identifier: Apache-2.0
// A few steps that the C++ examples share: programs from text, quads, textures to draw into.
#pragma once

#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace example {

[[noreturn]] inline void fail(const char* why)
{
    std::fprintf(stderr, "%s\n", why);
    std::exit(1);
}

inline ZALMetalContext* makeContext()
{
    ZALMetalContext* context = nullptr;
    if (ZALMetalContextInitFromMTLCommandQueue(context, nullptr, nullptr) != ZALMetalResultSuccess) fail("there is no Metal device");
    return context;
}

/// Loads a program, leaves it bound and switches its target on.
inline GLuint loadProgram(GLenum target, std::string_view text, GLenum format = GL_PROGRAM_FORMAT_ASCII_ARB)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, format, static_cast<GLsizei>(text.size()), text.data());
    if (glGetError() != GL_NO_ERROR) fail(reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB)));
    glEnable(target);
    return name;
}

/// A position in the units of the matrices, which start as identities, and a texture coordinate. Positions go through
/// state.matrix.mvp always: on some devices it is what turns GL's upward y into Metal's downward one.
inline constexpr std::string_view QuadVertexProgram = R"(!!ARBvp1.0
DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];
DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];
DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];
DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];
MOV result.texcoord[0], vertex.attrib[8];
END
)";

/// Buffers of a quad over the whole viewport, left bound with their attributes enabled.
inline void useQuad()
{
    static constexpr float corners[4][4] = {{-1, -1, 0, 0}, {1, -1, 1, 0}, {-1, 1, 0, 1}, {1, 1, 1, 1}};
    static constexpr unsigned short indices[6] = {0, 1, 2, 2, 1, 3};
    GLuint buffers[2];
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    glVertexAttribPointerARB(0, 2, GL_FLOAT, GL_FALSE, sizeof corners[0], nullptr);
    glVertexAttribPointerARB(8, 2, GL_FLOAT, GL_FALSE, sizeof corners[0], reinterpret_cast<const void*>(2 * sizeof(float)));
    glEnableVertexAttribArrayARB(0);
    glEnableVertexAttribArrayARB(8);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
}

inline void drawQuad() { glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }

/// A texture to draw into: a rectangle, whose coordinates count in texels.
inline GLuint makeTarget(int width, int height)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    return name;
}

/// A framebuffer whose colours go to a target, left bound.
inline GLuint drawInto(GLuint target)
{
    GLuint name = 0;
    glGenFramebuffers(1, &name);
    glBindFramebuffer(GL_FRAMEBUFFER, name);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, target, 0);
    return name;
}

inline void setLocal(GLenum target, GLuint index, float x, float y, float z, float w)
{
    const float values[4] = {x, y, z, w};
    glProgramLocalParameter4fvARB(target, index, values);
}

}
