// SPDX-License-Identifier: Apache-2.0
#include "fuzz/api/World.h"

namespace fuzz::api
{

namespace
{

constexpr std::string_view MetalPoints = R"(// ZAL_USE_VERTEX_ATTRIB(ZAL_VSH_VERTEX) ZAL_EXPAND_POINTS_TO_HEXAGONS()
#include <metal_stdlib>
using namespace metal;
struct In { float4 position [[attribute(0)]]; };
struct Out { float4 position [[position]]; float4 color; };
vertex Out ShaderFunc(In in [[stage_in]], uint corner [[vertex_id]])
{
    Out out;
    out.position = in.position + float4(0.1 * (corner & 1), 0.05 * corner, 0, 0);
    out.color = float4(1);
    return out;
}
)";

} // namespace

constexpr std::array<ProgramText, 12> Texts = {{
    {true, false, "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.color, vertex.attrib[3];\nEND\n"},
    {false, false, "!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n"},
    {true, false,
     "!!ARBvp1.0\nTEMP p;\nDP4 p.x, state.matrix.mvp.row[0], vertex.attrib[0];\nDP4 p.y, state.matrix.mvp.row[1], "
     "vertex.attrib[0];\nDP4 p.z, state.matrix.mvp.row[2], vertex.attrib[0];\nMOV p.w, 1.0;\nADD result.position, p, "
     "program.local[2];\nMOV result.texcoord[0], vertex.attrib[8];\nMOV result.color, program.local[255];\nEND\n"},
    {false, false,
     "!!ARBfp1.0\nTEMP a;\nTEX a, fragment.texcoord[0], texture[0], 2D;\nMUL result.color, a, "
     "program.local[0];\nEND\n"},
    {true, false,
     "!!ARBvp1.0\nTEMP t;\nTEX t, vertex.attrib[8], texture[5], RECT;\nADD result.position, vertex.attrib[0], "
     "t;\nMOV result.texcoord[0], vertex.attrib[15];\nMOV result.color, t;\nEND\n"},
    {false, false,
     "!!ARBfp1.0\nTEMP a, b, c;\nTEX a, fragment.texcoord[0], texture[1], CUBE;\nTEX b, fragment.texcoord[0], "
     "texture[31], 3D;\nTEX c, fragment.texcoord[0], texture[5], RECT;\nADD a, a, b;\nADD a, a, c;\nKIL a;\nMOV "
     "result.color, a;\nEND\n"},
    {true, true, MetalPoints},
    {false, false, "!!ARBfp1.0\nMOV result.color, 0.5;\nMOV result.depth.z, 0.25;\nEND\n"},
    {true, false, "!!ARBvp1.0\nMOV result.position, nothing;\nEND\n"},
    {false, false, ""},
    {true, true, "// ZAL_USE_TEXTURE(3,ZAL_TEX_RECT)\nvertex float4 ShaderFunc() { return nothing; }\n"},
    {false, true, "#include <metal_stdlib>\nfragment float4 ShaderFunc() { return float4(0.5); }\n"},
}};

const std::array<ProgramText, 12> ProgramTexts = Texts;

} // namespace fuzz::api
