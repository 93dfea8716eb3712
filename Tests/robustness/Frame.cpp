// SPDX-License-Identifier: Apache-2.0
#include "robustness/Frame.h"

#include <cstring>
#include <numeric>
#include <ostream>

namespace robustness
{
namespace
{

constexpr const char* Vertex =
    "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.texcoord[0];\nEND\n";
constexpr const char* Textured = "!!ARBfp1.0\nTEMP R0;\nTEX R0, fragment.texcoord[0], texture[0], 2D;\nMUL "
                                 "result.color, R0, program.local[0];\nEND\n";
constexpr const char* TexturedInPixels = "!!ARBfp1.0\nTEMP R0;\nMUL R0, fragment.texcoord[0], program.local[1];\nTEX "
                                         "R0, R0, texture[0], RECT;\nMOV result.color, R0;\nEND\n";
constexpr const char* Plain = "!!ARBfp1.0\nMOV result.color, program.local[0];\nEND\n";

constexpr GLsizei Programs = 4;
constexpr GLenum Targets[Programs] = {GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB,
                                      GL_FRAGMENT_PROGRAM_ARB};
constexpr const char* Texts[Programs] = {Vertex, Textured, Plain, TexturedInPixels};

void setColor(float red, float green, float blue)
{
    const float color[4] = {red, green, blue, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, color);
}
void drawTriangles(GLsizei count)
{
    glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_SHORT, nullptr);
}

std::vector<uint8_t> pixels(GLsizei width, GLsizei height)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(width * height * 4), 0xEE);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    return bytes;
}

} // namespace

void PrintTo(const Seen& seen, std::ostream* out)
{
    *out << "errors";
    for (GLenum error : seen.errors)
        *out << " " << error;
    for (const auto* picture : {&seen.readBack, &seen.read, &seen.shown})
        *out << ", " << picture->size() << " bytes of sum " << std::accumulate(picture->begin(), picture->end(), 0);
}

Screen::~Screen()
{
    if (context) ZALMetalContextDestroy(context);
    view_->release();
}

int Screen::make(MTL::CommandQueue* queue)
{
    queue_ = queue;
    if (int result = ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue)) return result;
    return ZALMetalContextCreateCAMetalLayer(context, view_, Bgra8, Depth32);
}

GLenum Screen::makeObjects()
{
    // Position and texture coordinate of each corner.
    const float corners[4][8] = {{-1, -1, 0.5f, 1, 0, 0, 0, 1},
                                 {1, -1, 0.5f, 1, 1, 0, 0, 1},
                                 {-1, 1, 0.5f, 1, 0, 1, 0, 1},
                                 {1, 1, 0.5f, 1, 1, 1, 0, 1}};
    const uint16_t indices[6] = {0, 1, 2, 2, 1, 3};
    glGenBuffers(2, buffers_);
    glBindBuffer(GL_ARRAY_BUFFER, buffers_[0]);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
    for (GLuint i : {0u, 8u}) { // position and first texture coordinate
        glVertexAttribPointerARB(i, 4, GL_FLOAT, GL_FALSE, sizeof corners[0],
                                 reinterpret_cast<const void*>(uintptr_t{i * 2}));
        glEnableVertexAttribArrayARB(i);
    }

    std::vector<uint8_t> texels(Side * Side * 4);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = static_cast<uint8_t>(i * 37 + i / 32);
    glGenTextures(2, textures_);
    constexpr GLenum Kinds[2] = {GL_TEXTURE_2D, GL_TEXTURE_RECTANGLE_ARB}; // the second is drawn to
    for (int i = 0; i < 2; ++i) {
        glBindTexture(Kinds[i], textures_[i]);
        glTexParameteri(Kinds[i], GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(Kinds[i], GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexImage2D(Kinds[i], 0, GL_RGBA8, Side, Side, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
    }
    glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 2, 4, 4, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());

    glGenProgramsARB(Programs, programs_);
    for (int i = 0; i < Programs; ++i) {
        glBindProgramARB(Targets[i], programs_[i]);
        glProgramStringARB(Targets[i], GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(Texts[i])),
                           Texts[i]);
    }
    glGenFramebuffers(1, &framebuffer_);
    return glGetError();
}

/// Into the framebuffer object: half of the first texture's picture, tinted.
void Screen::drawPattern()
{
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, textures_[1], 0);
    glViewport(0, 0, Side, Side);
    glClearColor(0.25f, 0.5f, 0.75f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glBindTexture(GL_TEXTURE_2D, textures_[0]);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs_[1]);
    setColor(1, 0.5f, 1);
    drawTriangles(3);
}

/// Into the default framebuffer: what was drawn before, over one colour, with a depth test.
void Screen::drawWithFramebuffer()
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glViewport(0, 0, static_cast<GLsizei>(Width), static_cast<GLsizei>(Height));
    glClearColor(0, 0, 0, 1);
    glClearDepth(1);
    glEnable(GL_DEPTH_TEST); // or depth is not cleared
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDepthFunc(GL_LEQUAL);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs_[2]);
    setColor(0, 1, 0);
    drawTriangles(6);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, textures_[1]);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs_[3]);
    const float size[4] = {Side, Side, 1, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 1, size);
    drawTriangles(3);
    glDisable(GL_BLEND);
    glDisable(GL_DEPTH_TEST);
}

void Screen::deleteObjects()
{
    glDeleteFramebuffers(1, &framebuffer_);
    glDeleteProgramsARB(Programs, programs_);
    glDeleteTextures(2, textures_);
    glDeleteBuffers(2, buffers_);
}

Seen Screen::frame(void (*during)(NSView*))
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    Seen seen;
    ZALMetalContextMakeCurrent(context);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    seen.errors.push_back(makeObjects());
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programs_[0]);
    drawPattern();
    seen.errors.push_back(glGetError());
    seen.readBack = pixels(Side, Side);
    seen.errors.push_back(glGetError());
    if (during) during(view_);
    drawWithFramebuffer();
    seen.errors.push_back(glGetError());
    seen.read = pixels(static_cast<GLsizei>(Width), static_cast<GLsizei>(Height));
    seen.errors.push_back(glGetError());
    ZALMetalContextSwapBuffers(context);
    glFinish();
    MTL::CommandBuffer* last = queue_->commandBuffer(); // behind the one that presents
    last->commit();
    last->waitUntilCompleted();
    deleteObjects();
    seen.errors.push_back(glGetError());
    if (CA::MetalLayer* layer = SoftMetal::layerOf(view_)) seen.shown = SoftMetal::presented(layer).rgba;
    pool->release();
    return seen;
}

} // namespace robustness
