// SPDX-License-Identifier: Apache-2.0
// Contexts that share their objects: one loads a texture, another draws with it under the same name. Bindings and
// enables are each context's own.
//   sharing [PICTURE.ppm]
#include "../Gl.h"
#include "../Picture.h"

#include <array>

namespace {

constexpr int Size = 128, Cells = 8;

constexpr std::string_view ShowProgram = R"(!!ARBfp1.0
TEX result.color, fragment.texcoord[0], texture[0], 2D;
END
)";

/// A checkerboard; the first texel lies at the lower left.
std::array<unsigned char, Cells * Cells * 4> checkerboard()
{
    std::array<unsigned char, Cells * Cells * 4> pixels{};
    for (int i = 0; i < Cells * Cells; ++i) {
        bool light = (i / Cells + i % Cells) % 2 == 0;
        unsigned char* p = pixels.data() + i * 4;
        p[0] = light ? 240 : 40;
        p[1] = light ? 220 : 70;
        p[2] = light ? 180 : 110;
        p[3] = 255;
    }
    return pixels;
}

GLuint loadBoard()
{
    auto pixels = checkerboard();
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, Cells, Cells, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    return name;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace example;
    ZALMetalContext* loader = makeContext();
    GLuint board = loadBoard();

    ZALMetalContext* drawer = nullptr;
    if (ZALMetalContextInitFromShareContext(drawer, loader) != ZALMetalResultSuccess) fail("the contexts cannot share"); // drawer is current now
    drawInto(makeTarget(Size, Size));
    useQuad();
    glViewport(0, 0, Size, Size);
    loadProgram(GL_VERTEX_PROGRAM_ARB, QuadVertexProgram);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, ShowProgram);
    glBindTexture(GL_TEXTURE_2D, board); // the other context's name
    drawQuad();
    int failed = glGetError() != GL_NO_ERROR || writeFramebuffer(argc > 1 ? argv[1] : "sharing.ppm", Size, Size);

    ZALMetalContextDestroy(loader); // the objects live on while a context shares them
    ZALMetalContextDestroy(drawer);
    return failed;
}
