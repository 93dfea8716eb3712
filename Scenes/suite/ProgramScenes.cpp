// SPDX-License-Identifier: Apache-2.0
// Assembly programs that both libraries read as they are: every opcode that they share, in fragment programs over a
// ramp of coordinates and in vertex programs over a mesh, and the state that programs see.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <cmath>

namespace scenes
{
namespace
{

constexpr float Locals[4][4] = {
    {0.3f, 0.9f, 0.35f, 0.2f}, {0.6f, 0.25f, 0.45f, 0.125f}, {0.75f, 0.5f, 0.9f, 0.6f}, {2, -1.5f, 0.5f, 3}};

void setLocals()
{
    for (GLuint i = 0; i < 4; ++i)
        for (GLenum target : {GL_VERTEX_PROGRAM_ARB, GL_FRAGMENT_PROGRAM_ARB})
            glProgramLocalParameter4fvARB(target, i, Locals[i]);
}

/// The argument computes r from p, which goes from -2 to 2 in x and y; z is their product's half and w is positive.
void fragmentOpcode(Stage& stage, const char* body)
{
    stage.useFragment(
        std::string("!!ARBfp1.0\nPARAM l = program.local[0];\nPARAM m = program.local[1];\nTEMP p, r;\nMOV p, "
                    "fragment.texcoord[0];\n"
                    "MUL p.z, p.x, p.y;\nMUL p.z, p.z, 0.5;\nABS p.w, p.x;\nADD p.w, p.w, 0.11;\nMOV r, 0.25;\n") +
        body + "\nMAD result.color, r, 0.4, 0.45;\nEND\n");
    setLocals();
    stage.rectangle({-1, -1, 1, 1, 0, -1.97f, -1.94f, 2.03f, 2.02f}, White);
}

/// The same for each vertex of a mesh; the colours in between are interpolated.
void vertexOpcode(Stage& stage, const char* body)
{
    stage.use(
        std::string("!!ARBvp1.0\nPARAM l = program.local[0];\nPARAM m = program.local[1];\nTEMP p, r;\nMOV "
                    "result.position, vertex.attrib[0];\nMOV p, vertex.attrib[8];\n"
                    "MUL p.z, p.x, p.y;\nMUL p.z, p.z, 0.5;\nABS p.w, p.x;\nADD p.w, p.w, 0.11;\nMOV r, 0.25;\n") +
            body + "\nMAD result.texcoord[0], r, 0.4, 0.45;\nEND\n",
        "!!ARBfp1.0\nMOV result.color, fragment.texcoord[0];\nEND\n");
    setLocals();
    constexpr int Cells = 12;
    std::vector<Corner> corners;
    std::vector<uint16_t> indices;
    for (int y = 0; y <= Cells; ++y)
        for (int x = 0; x <= Cells; ++x) {
            float u = static_cast<float>(x) / Cells, v = static_cast<float>(y) / Cells;
            corners.push_back({{2 * u - 1, 2 * v - 1, 0, 1}, White, {4 * u - 1.97f, 4 * v - 1.94f, 0, 1}});
            if (x == Cells || y == Cells) continue;
            int at = y * (Cells + 1) + x;
            for (int index : {at, at + 1, at + Cells + 1, at + Cells + 1, at + 1, at + Cells + 2})
                indices.push_back(static_cast<uint16_t>(index));
        }
    stage.draw(GL_TRIANGLES, corners, indices);
}

void killed(Stage& stage, const char*)
{
    stage.useFragment(
        "!!ARBfp1.0\nTEMP p, q;\nMUL p, fragment.texcoord[0], fragment.texcoord[0];\nADD p.w, p.x, p.y;\nSUB p.w, p.w, "
        "0.83;\nKIL p.w;\n"
        "SUB q, 1.7, fragment.texcoord[0];\nKIL q;\nMAD result.color, fragment.texcoord[0], 0.25, 0.5;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, -1.97f, -1.94f, 2.03f, 2.02f}, White);
}

void windowPosition(Stage& stage, const char*)
{
    stage.useFragment("!!ARBfp1.0\nTEMP p;\nMUL p, fragment.position, 0.03125;\nFRC p, p;\nMOV p.z, "
                      "fragment.position.z;\nMOV p.w, fragment.position.w;\nMOV result.color, p;\nEND\n");
    const Corner corners[4] = {{{-1, -1, -0.4f, 1}, White, {}},
                               {{1, -1, 0.3f, 1}, White, {}},
                               {{-1, 1, 0.8f, 1}, White, {}},
                               {{1, 1, -0.9f, 1}, White, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void severalOutputs(Stage& stage, const char*)
{
    stage.use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.color, vertex.attrib[3];\nMOV "
              "result.texcoord[0], vertex.attrib[8];\n"
              "MUL result.texcoord[1], vertex.attrib[8], vertex.attrib[3];\nADD result.texcoord[5], "
              "vertex.attrib[3].yzxw, vertex.attrib[8].yxzw;\nMOV result.texcoord[7], vertex.attrib[3].wzyx;\nEND\n",
              "!!ARBfp1.0\nTEMP a;\nMUL a, fragment.texcoord[0], fragment.texcoord[7];\nMAD a, fragment.texcoord[1], "
              "0.5, a;\nMAD result.color, fragment.texcoord[5], fragment.color, -a;\nEND\n");
    const Corner corners[4] = {{{-1, -1, 0, 1}, Ochre, {0.1f, 0.2f, 0.3f, 0.4f}},
                               {{1, -1, 0, 1}, Teal, {0.9f, 0.1f, 0.6f, 0.2f}},
                               {{-1, 1, 0, 1}, White, {0.2f, 0.8f, 0.1f, 0.7f}},
                               {{1, 1, 0, 1}, Blue, {0.6f, 0.7f, 0.9f, 0.3f}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void parameterArrays(Stage& stage, const char*)
{
    stage.useFragment("!!ARBfp1.0\nPARAM a[3] = { program.local[0], { 0.1, 0.2, 0.3, 0.4 }, program.local[2] };\nPARAM "
                      "all[4] = { program.local[0..3] };\nPARAM half = 0.5;\n"
                      "TEMP r;\nMUL r, a[0], fragment.texcoord[0].x;\nMAD r, a[1], fragment.texcoord[0].y, r;\nMAD r, "
                      "a[2].wzyx, half, r;\nMAD r, all[1], 0.25, r;\nMOV result.color, r;\nEND\n");
    setLocals();
    stage.rectangle({}, White);
}

void oneOfTwoPrograms(Stage& stage, const char*)
{
    stage.useFragment("!!ARBfp1.0\nMUL result.color, fragment.texcoord[0], program.local[2];\nEND\n");
    setLocals();
    stage.rectangle({-1, -1, 0, 1}, White);
    stage.useFragment("!!ARBfp1.0\nSUB result.color, program.local[1], fragment.texcoord[0];\nEND\n");
    setLocals();
    const float changed[4] = {1, 0.8f, 0.6f, 0.9f};
    stage.rectangle({0, -1, 1, 0}, White);
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 1, changed);
    stage.rectangle({0, 0, 1, 1}, White);
}

constexpr const char* Rounding = "values in the middle between two bytes are rounded either way";
constexpr const char* Approximate = "each library has its own approximation of the function";

// clang-format off
constexpr SceneRow Rows[] = {
    {"fragment-abs", fragmentOpcode, "ABS r, p;", 1, 0, nullptr, Rounding},
    {"fragment-add", fragmentOpcode, "ADD r, p, l.yzxw;", 1, 0, nullptr, Rounding},
    {"fragment-cmp", fragmentOpcode, "CMP r, p, l, -m;", 1, 0, nullptr, Rounding},
    {"fragment-cos", fragmentOpcode, "COS r, p.x;\nCOS r.yz, p.y;", 1, 0, nullptr, Approximate},
    {"fragment-dp3", fragmentOpcode, "DP3 r, p, l;\nDP3 r.y, p.yzxw, m;", 1, 0, nullptr, Rounding},
    {"fragment-dp4", fragmentOpcode, "DP4 r, p, l;\nDP4 r.xz, p.wzyx, m;", 1, 0, nullptr, Rounding},
    {"fragment-ex2", fragmentOpcode, "EX2 r, p.x;\nEX2 r.z, -p.y;", 1, 0, nullptr, Approximate},
    {"fragment-flr", fragmentOpcode, "FLR r, p;", 1, 0, nullptr, Rounding},
    {"fragment-frc", fragmentOpcode, "FRC r, p;", 1, 0, nullptr, Rounding},
    {"fragment-lg2", fragmentOpcode, "LG2 r, p.w;", 1, 0, nullptr, Approximate},
    {"fragment-lrp", fragmentOpcode, "LRP r, l, p, m;", 1, 0, nullptr, Rounding},
    {"fragment-mad", fragmentOpcode, "MAD r, p, l, -m;", 1, 0, nullptr, Rounding},
    {"fragment-max", fragmentOpcode, "MAX r, p, l.wzyx;", 1, 0, nullptr, Rounding},
    {"fragment-min", fragmentOpcode, "MIN r, p, m.x;", 1, 0, nullptr, Rounding},
    {"fragment-mov", fragmentOpcode, "MOV r, p.zyxw;\nMOV r.yz, -p;\nMOV r.w, 0.75;", 1, 0, nullptr, Rounding},
    {"fragment-mul", fragmentOpcode, "MUL r, p, l;\nMUL r.xw, p, p.yxwz;", 1, 0, nullptr, Rounding},
    {"fragment-pow", fragmentOpcode, "POW r, p.w, p.y;", 1, 0, nullptr, Approximate},
    {"fragment-rcp", fragmentOpcode, "RCP r, p.w;", 1, 0, nullptr, Approximate},
    {"fragment-rsq", fragmentOpcode, "RSQ r, p.w;", 1, 0, nullptr, Approximate},
    {"fragment-sge", fragmentOpcode, "SGE r, p, l;", 1, 0, nullptr, Rounding},
    {"fragment-sin", fragmentOpcode, "SIN r, p.x;\nMUL p.z, p.y, 3;\nSIN r.w, p.z;", 1, 0, nullptr, Approximate},
    {"fragment-slt", fragmentOpcode, "SLT r, p, m;", 1, 0, nullptr, Rounding},
    {"fragment-sub", fragmentOpcode, "SUB r, p, l;\nSUB r.z, 1, p.x;", 1, 0, nullptr, Rounding},
    {"fragment-xpd", fragmentOpcode, "XPD r.xyz, p, l;", 1, 0, nullptr, Rounding},
    {"fragment-saturated", fragmentOpcode, "ADD_SAT r, p, l;\nMUL_SAT r.y, p.x, p.y;\nMAD_SAT r.zw, p.xyxy, 2, 0.5;\nMOV_SAT p, p;\nMUL r, r, p.w;", 1, 0, nullptr, Rounding},
    {"fragment-masks", fragmentOpcode, "MOV r.x, p.y;\nADD r.yw, p, p.x;\nMUL r.xyz, r, p.wzyx;\nSUB r.w, r.x, l.y;", 1, 0, nullptr, Rounding},
    {"vertex-abs", vertexOpcode, "ABS r, p;", 1, 0, nullptr, Rounding},
    {"vertex-arithmetic", vertexOpcode, "ADD r, p, l;\nMUL r.xy, r, m;\nMAD r.yz, r, p, -l;\nSUB r.w, r.y, p.x;", 1, 0, nullptr, Rounding},
    {"vertex-dots", vertexOpcode, "DP3 r.x, p, l;\nDP4 r.y, p, m;\nDP3 r.z, p.zxyw, m;\nDP4 r.w, p, -l;", 1, 0, nullptr, Rounding},
    {"vertex-ex2", vertexOpcode, "EX2 r, p.x;", 1, 0, nullptr, Approximate},
    {"vertex-flr-frc", vertexOpcode, "FLR r.xy, p;\nFRC r.zw, p;", 1, 0, nullptr, Rounding},
    {"vertex-lg2", vertexOpcode, "LG2 r, p.w;", 1, 0, nullptr, Approximate},
    {"vertex-min-max", vertexOpcode, "MIN r, p, l;\nMAX r.yz, r, m;", 1, 0, nullptr, Rounding},
    {"vertex-pow", vertexOpcode, "POW r, p.w, p.y;", 1, 0, nullptr, Approximate},
    {"vertex-rcp-rsq", vertexOpcode, "RCP r.xy, p.w;\nRSQ r.zw, p.w;", 1, 0, nullptr, Approximate},
    {"vertex-sge-slt", vertexOpcode, "SGE r.xy, p, l;\nSLT r.zw, p, m;", 1, 0, nullptr, Rounding},
    {"vertex-xpd", vertexOpcode, "XPD r.xyz, p, l;", 1, 0, nullptr, Rounding},
    {"kill", killed, "", 1, 0, nullptr, Rounding},
    {"window-position", windowPosition, "", 1, 0, nullptr, Rounding},
    {"several-outputs", severalOutputs, "", 1, 0, nullptr, Rounding},
    {"parameter-arrays", parameterArrays, "", 1, 0, nullptr, Rounding},
    {"programs-and-locals", oneOfTwoPrograms, "", 1, 0, nullptr, Rounding},
};
// clang-format on

} // namespace

const std::span<const SceneRow> ProgramScenes(Rows);

} // namespace scenes
