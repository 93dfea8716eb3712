/* SPDX-License-Identifier: Apache-2.0
 * The smallest program, in C: a context, a texture to draw into, two assembly programs, one triangle, one picture.
 *   triangle [PICTURE.ppm] */
#include "../Picture.h"

#include <ZALMetal/ZALMetal.h>

#include <string.h>

enum
{
    Size = 256
};

/* Positions go through state.matrix.mvp always: on some devices it is what turns GL's upward y into Metal's. */
static const char vertexProgram[] = "!!ARBvp1.0\n"
                                    "DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];\n"
                                    "DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];\n"
                                    "DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];\n"
                                    "DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];\n"
                                    "MOV result.color, vertex.attrib[3];\n"
                                    "END\n";
static const char fragmentProgram[] = "!!ARBfp1.0\n"
                                      "MOV result.color, fragment.color;\n"
                                      "END\n";

/* position (x, y) and colour (r, g, b) */
static const float corners[3][5] = {{-0.8f, -0.8f, 1, 0, 0}, {0.8f, -0.8f, 0, 1, 0}, {0, 0.8f, 0, 0, 1}};
static const unsigned short indices[3] = {0, 1, 2};

static int loadProgram(GLenum target, const char* text)
{
    GLuint name;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, (GLsizei)strlen(text), text);
    glEnable(target);
    if (glGetError() == GL_NO_ERROR) return 0;
    fprintf(stderr, "%s\n", (const char*)glGetString(GL_PROGRAM_ERROR_STRING_ARB));
    return 1;
}

static void drawIntoTexture(void)
{
    GLuint texture, framebuffer;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture); /* what can be drawn into is a rectangle texture */
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, Size, Size, 0, GL_RGBA, GL_UNSIGNED_BYTE, NULL);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, texture, 0);
    glViewport(0, 0, Size, Size);
}

static void drawTriangle(void)
{
    GLuint buffers[2];
    glGenBuffers(2, buffers);
    glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    glVertexAttribPointerARB(0, 2, GL_FLOAT, GL_FALSE, sizeof corners[0], NULL);
    glVertexAttribPointerARB(3, 3, GL_FLOAT, GL_FALSE, sizeof corners[0], (const void*)(2 * sizeof(float)));
    glEnableVertexAttribArrayARB(0);
    glEnableVertexAttribArrayARB(3);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, NULL);
}

int main(int argc, char** argv)
{
    ZALMetalContext* context = NULL;
    int failed;
    if (ZALMetalContextInitFromMTLCommandQueue(&context, NULL, NULL) != ZALMetalResultSuccess) {
        fprintf(stderr, "there is no Metal device\n");
        return 1;
    }
    drawIntoTexture();
    failed = loadProgram(GL_VERTEX_PROGRAM_ARB, vertexProgram) || loadProgram(GL_FRAGMENT_PROGRAM_ARB, fragmentProgram);
    if (!failed) {
        glClearColor(0.1f, 0.1f, 0.1f, 1);
        glClear(GL_COLOR_BUFFER_BIT);
        drawTriangle();
        failed = glGetError() != GL_NO_ERROR || writeFramebuffer(argc > 1 ? argv[1] : "triangle.ppm", Size, Size);
    }
    ZALMetalContextDestroy(context);
    return failed;
}
