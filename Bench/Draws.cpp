// SPDX-License-Identifier: Apache-2.0
#include "Draws.h"

#include <cstddef>

namespace bench {

const std::string_view PassVertexProgram = R"(!!ARBvp1.0
MOV result.position, vertex.attrib[0];
MOV result.texcoord[0], vertex.attrib[8];
END
)";

const std::string_view FlatFragmentProgram = R"(!!ARBfp1.0
PARAM color = program.local[0];
MOV result.color, color;
END
)";

const std::string_view TexturedFragmentProgram = R"(!!ARBfp1.0
TEMP texel;
TEX texel, fragment.texcoord[0], texture[0], 2D;
MOV result.color, texel;
END
)";

namespace {

struct Corner
{
    float position[4];
    float texcoord[4];
};

void useCorners(const Corner* corners, GLsizei count, const uint16_t* indices, GLsizei indexCount)
{
    GLuint names[2];
    glGenBuffers(2, names);
    glBindBuffer(GL_ARRAY_BUFFER, names[0]);
    glBufferData(GL_ARRAY_BUFFER, count * static_cast<GLsizeiptr>(sizeof(Corner)), corners, GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, indexCount * static_cast<GLsizeiptr>(sizeof(uint16_t)), indices, GL_STATIC_DRAW);
    glVertexAttribPointerARB(0, 4, GL_FLOAT, GL_FALSE, sizeof(Corner), nullptr);
    glVertexAttribPointerARB(8, 4, GL_FLOAT, GL_FALSE, sizeof(Corner), reinterpret_cast<void*>(offsetof(Corner, texcoord)));
    glEnableVertexAttribArrayARB(0);
    glEnableVertexAttribArrayARB(8);
}

} // namespace

GLuint loadProgram(GLenum target, std::string_view text, std::string& error)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    if (glGetError() == GL_NO_ERROR) return name;
    error = reinterpret_cast<const char*>(glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    return 0;
}

bool usePrograms(std::string_view vertex, std::string_view fragment, std::string& error)
{
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    return loadProgram(GL_VERTEX_PROGRAM_ARB, vertex, error) != 0 && loadProgram(GL_FRAGMENT_PROGRAM_ARB, fragment, error) != 0;
}

void useTriangle(float size)
{
    const Corner corners[3] = {{{0, 0, 0, 1}, {0, 0, 0, 1}}, {{size, 0, 0, 1}, {1, 0, 0, 1}}, {{0, size, 0, 1}, {0, 1, 0, 1}}};
    const uint16_t indices[3] = {0, 1, 2};
    useCorners(corners, 3, indices, 3);
}

void useQuad()
{
    const Corner corners[4] = {{{-1, -1, 0, 1}, {0, 0, 0, 1}},
                               {{1, -1, 0, 1}, {1, 0, 0, 1}},
                               {{-1, 1, 0, 1}, {0, 1, 0, 1}},
                               {{1, 1, 0, 1}, {1, 1, 0, 1}}};
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    useCorners(corners, 4, indices, 6);
}

void drawTriangle() { glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, nullptr); }
void drawQuad() { glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr); }

} // namespace bench
