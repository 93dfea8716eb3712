// SPDX-License-Identifier: Apache-2.0
// Draws every case with the GL that this program is linked with and prints, for each, the colours of some pixels:
//   values_zal|values_mesa > OUT
#include "ValueCases.h"
#include "ValueHost.h"

#include "Host.h"
#include "SceneGL.h"

#include <cstdio>
#include <memory>

namespace
{

constexpr int Size = 32;
constexpr int Step = 4;

// Columns of matrices that turn, scale and move.
constexpr float ModelView[16] = {0.8f, 0.5f, 0, 0, -0.5f, 0.8f, 0, 0, 0, 0, 1.5f, 0, 0.1f, -0.05f, 0.25f, 1};
constexpr float Projection[16] = {0.9f, 0, 0, 0, 0, 0.95f, 0, 0, 0, 0, -0.5f, 0, 0, 0, 0.1f, 1.25f};
constexpr float Texture[16] = {0.5f, 0.25f, 0, 0, -0.25f, 0.75f, 0, 0.125f, 0, 0, 1, 0, 0.5f, -0.5f, 0, 1};

constexpr float Corners[4][4] = {{-1, -1, 0, 1}, {1, -1, 0.1f, 1}, {-1, 1, 0.2f, 1}, {1, 1, 0.1f, 1}};
constexpr float Normals[4][4] = {
    {-0.6f, 0.2f, 0.8f, 1}, {0.6f, 0.1f, 0.5f, 1}, {-0.2f, 0.7f, 0.3f, 1}, {0.5f, 0.5f, -0.7f, 1}};
constexpr float Colors[4][4] = {
    {0.1f, 0.9f, 0.3f, 1}, {0.8f, 0.2f, 0.5f, 0.5f}, {0.4f, 0.6f, 0.9f, 0.75f}, {0.95f, 0.35f, 0.05f, 0.25f}};
constexpr float Texcoords[4][4] = {
    {0.05f, 0.1f, 0.3f, 1}, {0.95f, 0.2f, 0.6f, 0.75f}, {0.15f, 0.85f, 0.2f, 0.5f}, {0.9f, 0.95f, 0.8f, 1}};
constexpr float Weights[4][4] = {{0.2f, 0.3f, 0, 1}, {0.9f, 0.1f, 0, 1}, {0.4f, 0.9f, 0, 1}, {0.7f, 0.6f, 0, 1}};

constexpr float Locals[3][4] = {{0.3f, 0.9f, 0.3f, 0.2f}, {0.6f, 0.25f, 0.45f, 0.125f}, {0.75f, 0.5f, 0.9f, 0.6f}};
constexpr float Globals[3][4] = {{0.9f, 0.1f, 0.5f, 0.7f}, {0.2f, 0.8f, 0.55f, 0.3f}, {0.15f, 0.35f, 0.25f, 0.45f}};

bool load(GLenum target, std::string_view text)
{
    const std::string program = normaliser::prepared(text);
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(program.size()), program.data());
    for (unsigned i = 0; i < 3; ++i) {
        glProgramLocalParameter4fvARB(target, i, Locals[i]);
        normaliser::setGlobal(target, i, Globals[i]);
    }
    const bool loaded = glGetError() == GL_NO_ERROR;
    if (!loaded) std::fprintf(stderr, "%s\n%s\n", glGetString(GL_PROGRAM_ERROR_STRING_ARB), program.c_str());
    return loaded;
}

void loadTexture()
{
    constexpr int side = 8;
    unsigned char texels[side][side][4];
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const int texel[4] = {x * 36, y * 36, (x ^ y) * 30, 255 - x * y * 5};
            for (int i = 0; i < 4; ++i)
                texels[y][x][i] = static_cast<unsigned char>(texel[i]);
        }
    GLuint name = 0;
    glActiveTextureARB(GL_TEXTURE0);
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, side, side, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
}

void loadMatrices()
{
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(Projection);
    glMatrixMode(GL_TEXTURE);
    glLoadMatrixf(Texture);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(ModelView);
}

void draw()
{
    glViewport(0, 0, Size, Size);
    glClearColor(0.5f, 0, 0.5f, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    glBegin(GL_TRIANGLE_STRIP);
    for (int corner = 0; corner < 4; ++corner) {
        normaliser::setAttribute(2, Normals[corner]);
        normaliser::setAttribute(3, Colors[corner]);
        normaliser::setAttribute(8, Texcoords[corner]);
        normaliser::setAttribute(9, Weights[corner]);
        normaliser::setAttribute(0, Corners[corner]);
    }
    glEnd();
}

} // namespace

int main()
{
    std::string error;
    const std::unique_ptr<scenes::Host> host = scenes::makeHost(Size, Size, error);
    if (!host) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    loadTexture();
    loadMatrices();
    bool loaded = true;
    for (const normaliser::ValueCase& value : normaliser::ValueCases) {
        if (!load(GL_VERTEX_PROGRAM_ARB, value.vertex) || !load(GL_FRAGMENT_PROGRAM_ARB, value.fragment)) {
            std::fprintf(stderr, "the case \"%s\" does not load\n", value.name);
            loaded = false;
            continue;
        }
        draw();
        const scenes::Image picture = host->read();
        for (int y = Step / 2; y < Size; y += Step)
            for (int x = Step / 2; x < Size; x += Step) {
                const uint8_t* pixel = picture.at(x, y);
                std::printf("%s|%d|%d|%d|%d|%d|%d\n", value.name, x, y, pixel[0], pixel[1], pixel[2], pixel[3]);
            }
    }
    return loaded ? 0 : 1;
}
