// SPDX-License-Identifier: Apache-2.0
// Many triangles, several attachments, a volume.
#include "Draws.h"
#include "WorkloadTables.h"

#include <cmath>
#include <vector>

namespace bench {
namespace {

using scenes::Host;

// ---- triangles ---------------------------------------------------------------------------------------------------------

constexpr int Columns = 1000, Rows = 500; // a million triangles of about one pixel

constexpr std::string_view VertexLitProgram = R"(!!ARBvp1.0
PARAM direction = program.local[0];
TEMP amount;
MOV result.position, vertex.attrib[0];
DP3 amount.x, vertex.attrib[2], direction;
MAX amount.x, amount.x, 0.0;
MAD result.texcoord[0], amount.x, 0.8, 0.2;
END
)";

constexpr std::string_view SmoothFragmentProgram = "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n";

struct Vertex
{
    float position[4], normal[4];
};

Vertex vertexAt(int column, int row)
{
    float x = 2 * static_cast<float>(column) / Columns - 1, y = 2 * static_cast<float>(row) / Rows - 1;
    return {{x, y, 0, 1}, {std::sin(9 * x), std::cos(7 * y), 0.5f, 0}};
}

void useMesh()
{
    std::vector<Vertex> vertices;
    std::vector<uint32_t> indices;
    for (int row = 0; row <= Rows; ++row)
        for (int column = 0; column <= Columns; ++column) vertices.push_back(vertexAt(column, row));
    for (uint32_t row = 0; row < Rows; ++row)
        for (uint32_t column = 0; column < Columns; ++column) {
            uint32_t corner = row * (Columns + 1) + column, above = corner + Columns + 1;
            indices.insert(indices.end(), {corner, corner + 1, above, above, corner + 1, above + 1});
        }
    GLuint names[2];
    glGenBuffers(2, names);
    glBindBuffer(GL_ARRAY_BUFFER, names[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(vertices.size() * sizeof(Vertex)), vertices.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(indices.size() * 4), indices.data(), GL_STATIC_DRAW);
    glVertexAttribPointerARB(0, 4, GL_FLOAT, GL_FALSE, sizeof(Vertex), nullptr);
    glVertexAttribPointerARB(2, 4, GL_FLOAT, GL_FALSE, sizeof(Vertex), reinterpret_cast<void*>(offsetof(Vertex, normal)));
    glEnableVertexAttribArrayARB(0);
    glEnableVertexAttribArrayARB(2);
}

template <bool Culled>
std::unique_ptr<Run> makeTriangles(Host& host, std::string& error)
{
    if (!usePrograms(VertexLitProgram, SmoothFragmentProgram, error)) return nullptr;
    setLocal(0, {0.6f, 0.6f, 0.5f, 0}, GL_VERTEX_PROGRAM_ARB);
    useMesh();
    if (Culled) glEnable(GL_CULL_FACE);
    if (Culled) glCullFace(GL_FRONT);
    return std::make_unique<Steps>(host, true, true, [] {
        constexpr int Count = 6 * Columns * Rows;
        glDrawElements(GL_TRIANGLES, Count, GL_UNSIGNED_INT, nullptr);
        return double{Count} / 3;
    });
}

// ---- attachments ---------------------------------------------------------------------------------------------------------

std::unique_ptr<Run> makeAttachments(Host& host, std::string& error)
{
    constexpr std::string_view Fragment = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.texcoord[0];\n"
                                          "MOV result.color[1], 0.5;\nMOV result.color[2], -fragment.texcoord[0];\nMOV result.color[3], 1.0;\nEND\n";
    if (!usePrograms(PassVertexProgram, Fragment, error)) return nullptr;
    GLuint framebuffer = 0, textures[4];
    glGenFramebuffers(1, &framebuffer);
    glGenTextures(4, textures);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    for (GLuint i = 0; i < 4; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, textures[i]);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA16F_ARB, host.width(), host.height(), 0, GL_RGBA, GL_FLOAT, nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0 + i, GL_TEXTURE_RECTANGLE_ARB, textures[i], 0);
    }
    const GLenum buffers[4] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1, GL_COLOR_ATTACHMENT2, GL_COLOR_ATTACHMENT3};
    glDrawBuffers(4, buffers);
    useQuad();
    return std::make_unique<Steps>(host, true, false, [&host] {
        for (int i = 0; i < 2; ++i) drawQuad();
        return 2.0 * host.width() * host.height();
    });
}

/// Two small targets in turn, a quad in each.
std::unique_ptr<Run> makeTargets(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    std::array<GLuint, 2> framebuffers, textures;
    glGenFramebuffers(2, framebuffers.data());
    glGenTextures(2, textures.data());
    for (size_t i = 0; i < 2; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, textures[i]);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 64, 64, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[i]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, textures[i], 0);
    }
    useQuad();
    glViewport(0, 0, 64, 64);
    return std::make_unique<Steps>(host, false, false, [framebuffers] {
        for (size_t i = 0; i < 100; ++i) {
            glBindFramebuffer(GL_FRAMEBUFFER, framebuffers[i & 1]);
            drawQuad();
        }
        return 100.0;
    });
}

// ---- volume ---------------------------------------------------------------------------------------------------------------

constexpr int VolumeSide = 64, Samples = 32;

void useVolume()
{
    std::vector<uint8_t> texels;
    for (int z = 0; z < VolumeSide; ++z)
        for (int y = 0; y < VolumeSide; ++y)
            for (int x = 0; x < VolumeSide; ++x) {
                int distance = (x - 32) * (x - 32) + (y - 32) * (y - 32) + (z - 32) * (z - 32);
                auto value = static_cast<uint8_t>(distance < 900 ? 8 : 0);
                texels.insert(texels.end(), {value, static_cast<uint8_t>(x), static_cast<uint8_t>(y), value});
            }
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_3D, name);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, VolumeSide, VolumeSide, VolumeSide, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
}

std::unique_ptr<Run> makeVolume(Host& host, std::string& error)
{
    std::string text = "!!ARBfp1.0\nTEMP at, texel, sum;\nPARAM advance = { 0.005, 0.01, 0.03, 0.0 };\nMOV at, fragment.texcoord[0];\nMOV sum, 0.0;\n";
    for (int i = 0; i < Samples; ++i) text += "TEX texel, at, texture[0], 3D;\nMAD sum, texel, 0.5, sum;\nADD at, at, advance;\n";
    if (!usePrograms(PassVertexProgram, text + "MOV result.color, sum;\nEND\n", error)) return nullptr;
    useVolume();
    useQuad();
    return std::make_unique<Steps>(host, true, true, [&host] {
        drawQuad();
        return static_cast<double>(host.width()) * host.height();
    });
}

constexpr std::array Table = {
    Workload{"tri_rate", "Mtri/s", true, 1e-6, "a mesh of a million triangles of a pixel, lit for each vertex", makeTriangles<false>},
    Workload{"tri_culled", "Mtri/s", true, 1e-6, "as tri_rate, all of them culled", makeTriangles<true>},
    Workload{"mrt", "Mpix/s", true, 1e-6, "two quads into four GL_RGBA16F attachments", makeAttachments},
    Workload{"fbo_switch", "us", false, 1e6, "another framebuffer object and a quad of 64 x 64", makeTargets},
    Workload{"volume", "Mpix/s", true, 1e-6, "a quad, 32 samples of a 3D texture a pixel", makeVolume},
};

} // namespace

std::span<const Workload> sceneWorkloads() { return Table; }

} // namespace bench
