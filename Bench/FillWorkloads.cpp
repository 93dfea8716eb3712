// SPDX-License-Identifier: Apache-2.0
// Layers of one quad over the whole target; what differs is the fragment program and the state.
#include "DemoPrograms.h"
#include "Draws.h"
#include "WorkloadTables.h"

namespace bench {
namespace {

using scenes::Host;

std::unique_ptr<Run> makeLayers(Host& host, int layers)
{
    return std::make_unique<Steps>(host, true, true, [&host, layers] {
        for (int i = 0; i < layers; ++i) drawQuad();
        return static_cast<double>(layers) * host.width() * host.height();
    });
}

std::unique_ptr<Run> makeFillFlat(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {0.2f, 0.4f, 0.6f, 1});
    useQuad();
    return makeLayers(host, 8);
}

std::unique_ptr<Run> makeFillSmooth(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n", error)) return nullptr;
    useQuad();
    return makeLayers(host, 8);
}

/// The coordinates go over the texture several times, so that smaller levels are used as well.
template <GLint Filter, int Times>
std::unique_ptr<Run> makeFillTextured(Host& host, std::string& error)
{
    std::string vertex = "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMUL result.texcoord[0], vertex.attrib[8], " + std::to_string(Times) + ".0;\nEND\n";
    if (!usePrograms(vertex, TexturedFragmentProgram, error)) return nullptr;
    usePattern(Filter);
    useQuad();
    return makeLayers(host, 8);
}

std::unique_ptr<Run> makeFillBlend(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {0.2f, 0.4f, 0.6f, 0.3f});
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    useQuad();
    return makeLayers(host, 8);
}

std::unique_ptr<Run> makeFillBlendTextured(Host& host, std::string& error)
{
    auto run = makeFillTextured<GL_LINEAR, 1>(host, error);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    glBlendEquation(GL_MAX);
    return run;
}

/// Eight quads at different depths, the nearest first or last.
template <bool FrontFirst>
std::unique_ptr<Run> makeFillDepth(Host& host, std::string& error)
{
    constexpr std::string_view Vertex = "!!ARBvp1.0\nPARAM depth = program.local[0];\nMOV result.position.xyw, vertex.attrib[0];\n"
                                        "MOV result.position.z, depth.x;\nMOV result.texcoord[0], vertex.attrib[8];\nEND\n";
    if (!usePrograms(Vertex, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {0.2f, 0.4f, 0.6f, 1});
    useQuad();
    return std::make_unique<Steps>(host, true, true, [&host] {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LESS);
        glClear(GL_DEPTH_BUFFER_BIT);
        for (int i = 0; i < 8; ++i) {
            setLocal(0, {static_cast<float>(FrontFirst ? i : 7 - i) / 8, 0, 0, 0}, GL_VERTEX_PROGRAM_ARB);
            drawQuad();
        }
        return 8.0 * host.width() * host.height();
    });
}

/// Texture coordinate, normal and position for the demo's lighting, from the corner's clip-space position.
constexpr std::string_view LitQuadVertexProgram = R"(!!ARBvp1.0
TEMP normal;
MOV result.position, vertex.attrib[0];
MOV result.texcoord[0], vertex.attrib[8];
MUL normal.xy, vertex.attrib[0], 0.7;
MOV normal.z, 1.0;
MOV normal.w, 0.0;
MOV result.texcoord[1], normal;
SUB normal.xyz, vertex.attrib[0], 2.0;
MOV result.texcoord[2], normal;
END
)";

std::unique_ptr<Run> makeFillDemo(Host& host, std::string& error)
{
    if (!usePrograms(LitQuadVertexProgram, scenes::LitFragmentProgram, error)) return nullptr;
    setLocal(0, {0.48f, 0.64f, 0.6f, 0});
    setLocal(1, {0.9f, 0.9f, 0.8f, 0});
    setLocal(2, {-0.6f, 0.0f, 0.8f, 0});
    setLocal(3, {0.2f, 0.2f, 0.3f, 0});
    setLocal(4, {0.1f, 0.1f, 0.1f, 0});
    setLocal(5, {0.5f, 0.5f, 0.5f, 48});
    usePattern(GL_LINEAR);
    useQuad();
    return makeLayers(host, 4);
}

std::unique_ptr<Run> makeShaderLong(Host& host, std::string& error)
{
    std::string text = "!!ARBfp1.0\nTEMP a, b, c;\nMOV a, fragment.texcoord[0];\nMOV b, a;\nMOV c, 0.5;\n";
    constexpr std::array Statements = {"MAD a, a, b, c;\n", "MUL c, a, b;\n", "DP3 b.x, a, c;\n", "MAX c, b, -a;\n", "ADD b, c, a;\n", "MUL a, b, 0.25;\n"};
    for (int i = 0; i < 60; ++i) text += Statements[static_cast<size_t>(i) % Statements.size()];
    if (!usePrograms(PassVertexProgram, text + "MOV result.color, a;\nEND\n", error)) return nullptr;
    useQuad();
    return makeLayers(host, 2);
}

constexpr std::array Table = {
    Workload{"fill_flat", "Mpix/s", true, 1e-6, "eight full-target quads of one colour", makeFillFlat},
    Workload{"fill_smooth", "Mpix/s", true, 1e-6, "as fill_flat, an interpolated colour", makeFillSmooth},
    Workload{"fill_bilinear", "Mpix/s", true, 1e-6, "as fill_flat, a texture of 256 x 256, bilinear", makeFillTextured<GL_LINEAR, 1>},
    Workload{"fill_trilinear", "Mpix/s", true, 1e-6, "as fill_bilinear, seven times over, trilinear", makeFillTextured<GL_LINEAR_MIPMAP_LINEAR, 7>},
    Workload{"fill_blend", "Mpix/s", true, 1e-6, "as fill_flat, blended by alpha", makeFillBlend},
    Workload{"fill_blend_textured", "Mpix/s", true, 1e-6, "as fill_bilinear, the greater of both kept", makeFillBlendTextured},
    Workload{"fill_depth_front", "Mpix/s", true, 1e-6, "as fill_flat with depth test, front to back", makeFillDepth<true>},
    Workload{"fill_depth_back", "Mpix/s", true, 1e-6, "as fill_flat with depth test, back to front", makeFillDepth<false>},
    Workload{"fill_demo", "Mpix/s", true, 1e-6, "four quads with the demo's fragment program", makeFillDemo},
    Workload{"shader_long", "Mpix/s", true, 1e-6, "two quads, 60 arithmetic statements", makeShaderLong},
};

} // namespace

std::span<const Workload> fillWorkloads() { return Table; }

} // namespace bench
