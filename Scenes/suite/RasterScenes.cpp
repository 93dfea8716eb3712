// SPDX-License-Identifier: Apache-2.0
// Depth and stencil tests, culling, polygon offset and modes, lines, strips, points, viewports and clipping.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <cmath>

namespace scenes
{
namespace
{

constexpr GLenum Functions[] = {GL_NEVER, GL_LESS, GL_EQUAL, GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};

Box at(int tileNumber, int n, float depth)
{
    Box box = tile(tileNumber, n);
    box.depth = depth;
    return box;
}

// ---- depth ---------------------------------------------------------------------------------------------------------

void clearDepth(double value)
{
    glEnable(GL_DEPTH_TEST);
    glDepthMask(GL_TRUE);
    glClearDepth(value);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void depthFunctions(Stage& stage, const char*)
{
    clearDepth(0.5);
    stage.useColors();
    for (int i = 0; i < 8; ++i) { // a slope through the cleared depth, which is 0 in clip space
        glDepthFunc(Functions[i]);
        Box box = tile(i, 3);
        const Corner corners[4] = {{{box.left, box.bottom, -0.7f, 1}, Red, {}},
                                   {{box.right, box.bottom, 0.3f, 1}, Green, {}},
                                   {{box.left, box.top, -0.2f, 1}, Blue, {}},
                                   {{box.right, box.top, 0.8f, 1}, Ochre, {}}};
        stage.draw(GL_TRIANGLE_STRIP, corners);
    }
    glDepthFunc(GL_EQUAL);
    stage.rectangle(at(8, 3, 0), Teal);
}

/// Three slanted planes that cut one another.
void depthCuts(Stage& stage, const char*)
{
    clearDepth(1);
    glDepthFunc(GL_LESS);
    stage.useColors();
    for (int i = 0; i < 3; ++i) {
        float angle = 2.1f * static_cast<float>(i) + 0.37f;
        float x = std::cos(angle) * 0.6f, y = std::sin(angle) * 0.6f;
        const Color& color = i == 0 ? Red : i == 1 ? Green : Blue;
        const Corner corners[4] = {{{-0.93f, -0.91f, -x - y, 1}, color, {}},
                                   {{0.93f, -0.91f, x - y, 1}, color, {}},
                                   {{-0.93f, 0.91f, y - x, 1}, White, {}},
                                   {{0.93f, 0.91f, x + y, 1}, color, {}}};
        stage.draw(GL_TRIANGLE_STRIP, corners);
    }
}

void depthMask(Stage& stage, const char*)
{
    clearDepth(1);
    glDepthFunc(GL_LESS);
    stage.useColors();
    stage.rectangle({-0.8f, -0.8f, 0.2f, 0.2f, -0.5f}, Red);
    glDepthMask(GL_FALSE);
    stage.rectangle({-0.3f, -0.3f, 0.8f, 0.8f, -0.8f}, Green); // over red, leaving no depth
    glDepthMask(GL_TRUE);
    stage.rectangle({-0.6f, -0.6f, 0.6f, 0.6f, 0}, Blue); // over green, under red
}

void depthClamped(Stage& stage, const char*)
{
    clearDepth(1);
    glDepthFunc(GL_LEQUAL);
    stage.useColors();
    // Runs through the near and the far plane: what lies beyond is cut off.
    const Corner corners[4] = {{{-0.9f, -0.9f, -1.6f, 1}, Red, {}},
                               {{0.9f, -0.9f, -0.9f, 1}, Green, {}},
                               {{-0.9f, 0.9f, 0.8f, 1}, Blue, {}},
                               {{0.9f, 0.9f, 1.7f, 1}, Ochre, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void depthWritten(Stage& stage, const char*)
{
    clearDepth(1);
    glDepthFunc(GL_LESS);
    stage.useColors();
    stage.rectangle({-1, -1, 1, 1, 0}, Grey);
    stage.useFragment("!!ARBfp1.0\nTEMP d;\nMUL d.x, fragment.texcoord[0].x, fragment.texcoord[0].y;\nMOV "
                      "result.depth.z, d.x;\nMOV result.color, fragment.texcoord[0];\nEND\n");
    stage.rectangle({-0.9f, -0.9f, 0.9f, 0.9f, 0, 0, 0, 1.13f, 1.21f}, White);
}

void depthReadBack(Stage& stage, const char*)
{
    clearDepth(0.75);
    glDepthFunc(GL_LESS);
    stage.useColors();
    const Corner corners[3] = {{{-0.91f, -0.93f, -0.9f, 1}, Red, {}},
                               {{0.9f, -0.7f, 0.9f, 1}, Green, {}},
                               {{-0.2f, 0.94f, 0.1f, 1}, Blue, {}}};
    stage.draw(GL_TRIANGLES, corners);
    std::vector<float> values(Stage::Side * Stage::Side);
    glReadPixels(0, 0, Stage::Side, Stage::Side, GL_DEPTH_COMPONENT, GL_FLOAT, values.data());
    stage.showFloats(values, 1, Stage::Side, Stage::Side, 1, 0);
}

// ---- stencil -------------------------------------------------------------------------------------------------------

/// A target with a stencil of reference 0 to 3 in four upright stripes; the depth is 0.5 everywhere.
void stencilStripes(Stage& stage)
{
    stage.target(GL_RGBA8, 1, GL_DEPTH24_STENCIL8);
    glEnable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_ALWAYS);
    glClearStencil(0);
    glClearDepth(0.5);
    glClearColor(0.2f, 0.2f, 0.25f, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    stage.useColors();
    glStencilOp(GL_KEEP, GL_REPLACE, GL_REPLACE);
    glDepthMask(GL_FALSE);
    for (int i = 0; i < 4; ++i) {
        glStencilFunc(GL_ALWAYS, i, 0xFF);
        float left = -1 + 0.5f * static_cast<float>(i), shade = 0.1f * static_cast<float>(i);
        stage.rectangle({left, -1, left + 0.5f, 1}, {shade, shade, shade, 1});
    }
}

/// Colours every pixel by its stencil value; the stencil buffer stays.
void colourByStencil(Stage& stage)
{
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    glDepthFunc(GL_ALWAYS);
    for (int value : {0, 1, 2, 3, 4, 0xFF, 0xFE, 0xFD, 0xFC}) {
        glStencilFunc(GL_EQUAL, value, 0xFF);
        float v = static_cast<float>(value & 7) / 8;
        stage.rectangle({}, {v, 1 - v, value > 8 ? 1.0f : 0.0f, 1});
    }
}

void stencilFunctions(Stage& stage, const char*)
{
    stencilStripes(stage);
    glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
    for (int i = 0; i < 8; ++i) {
        glStencilFunc(Functions[i], 2, 0xFF);
        float bottom = -1 + 0.25f * static_cast<float>(i);
        stage.rectangle({-1, bottom, 1, bottom + 0.25f}, {1, static_cast<float>(i) / 8, 0.3f, 1});
    }
}

/// Each operation in a row: on failure, on depth failure or on passing, as the argument says.
void stencilOperations(Stage& stage, const char* when)
{
    constexpr GLenum Operations[] = {GL_KEEP, GL_ZERO,   GL_REPLACE,   GL_INCR,
                                     GL_DECR, GL_INVERT, GL_INCR_WRAP, GL_DECR_WRAP};
    stencilStripes(stage);
    glStencilFunc(*when == 'f' ? GL_NEVER : GL_ALWAYS, 3, 0xFF);
    glDepthFunc(*when == 'd' ? GL_NEVER : GL_ALWAYS);
    for (int i = 0; i < 8; ++i) {
        GLenum operation = Operations[i];
        if (*when == 'f')
            glStencilOp(operation, GL_KEEP, GL_KEEP);
        else if (*when == 'd')
            glStencilOp(GL_KEEP, operation, GL_KEEP);
        else
            glStencilOp(GL_KEEP, GL_KEEP, operation);
        float bottom = -1 + 0.25f * static_cast<float>(i);
        stage.rectangle({-1, bottom, 1, bottom + 0.25f}, White);
    }
    colourByStencil(stage);
}

void stencilMasks(Stage& stage, const char*)
{
    stencilStripes(stage);
    glStencilMask(0x2);
    glStencilFunc(GL_ALWAYS, 0xFF, 0xFF);
    stage.rectangle({-1, -1, 1, -0.4f}, White); // only bit 1 is set
    glStencilMask(0xFF);
    glStencilFunc(GL_EQUAL, 1, 0x1); // odd values only
    glStencilOp(GL_KEEP, GL_KEEP, GL_INCR);
    stage.rectangle({-1, 0.3f, 1, 1}, Ochre);
    colourByStencil(stage);
}

// ---- culling, offset, modes ----------------------------------------------------------------------------------------

/// Triangles of both windings all over the picture.
void windings(Stage& stage)
{
    for (int i = 0; i < 9; ++i) {
        Box box = tile(i, 3);
        Corner corners[3] = {{{box.left + 0.03f, box.bottom + 0.05f, 0, 1}, Red, {}},
                             {{box.right - 0.06f, box.bottom + 0.09f, 0, 1}, Green, {}},
                             {{box.left + 0.2f, box.top - 0.04f, 0, 1}, Blue, {}}};
        if (i % 2) std::swap(corners[0], corners[1]);
        stage.draw(GL_TRIANGLES, corners);
    }
}

void culling(Stage& stage, const char* face)
{
    stage.useColors();
    glEnable(GL_CULL_FACE);
    glCullFace(*face == 'f' ? GL_FRONT : GL_BACK);
    windings(stage);
}

void stripWinding(Stage& stage, const char*)
{
    stage.useColors();
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    std::vector<Corner> corners;
    for (int i = 0; i < 12; ++i) {
        float x = -0.91f + 0.16f * static_cast<float>(i), y = i % 2 ? 0.57f : -0.63f;
        corners.push_back({{i == 7 ? x - 0.5f : x, y, 0, 1},
                           {static_cast<float>(i) / 12, i % 2 ? 0.2f : 0.9f, 0.4f, 1},
                           {}}); // one fold shows its back
    }
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

/// Offsets far from the planes' distance, as the size of a unit is each library's choice.
void offsets(Stage& stage, const char*)
{
    clearDepth(1);
    glDepthFunc(GL_LESS);
    stage.useColors();
    stage.rectangle({-1, -1, 1, 1, 0}, Grey);
    glEnable(GL_POLYGON_OFFSET_FILL);
    struct Setting
    {
        float factor, units, depth, slope;
    };
    constexpr Setting Settings[9] = {{0, -1e5f, 0.001f, 0},    {0, 1e5f, -0.001f, 0},  {-4, 0, 0.001f, 0},
                                     {-4, 0, 0.01f, 0.3f},     {4, 0, -0.01f, 0.3f},   {-4, 1e6f, 0.01f, 0.3f},
                                     {4, -1e6f, -0.01f, 0.3f}, {-0.5f, 0, 0.3f, 0.3f}, {0, 0, -0.001f, 0}};
    for (int i = 0; i < 9; ++i) {
        const Setting& s = Settings[i];
        glPolygonOffset(s.factor, s.units);
        Box b = tile(i, 3);
        float low = s.depth - s.slope * 0.01f, high = s.depth + s.slope * 0.01f;
        const Corner corners[4] = {{{b.left + 0.1f, b.bottom + 0.1f, low, 1}, Red, {}},
                                   {{b.right - 0.1f, b.bottom + 0.1f, high, 1}, Green, {}},
                                   {{b.left + 0.1f, b.top - 0.1f, low, 1}, Blue, {}},
                                   {{b.right - 0.1f, b.top - 0.1f, high, 1}, Ochre, {}}};
        stage.draw(GL_TRIANGLE_STRIP, corners);
    }
}

void wireframe(Stage& stage, const char*)
{
    stage.useColors();
    glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    const Corner corners[4] = {{{-0.8f, -0.7f, 0, 1}, White, {}},
                               {{0.85f, -0.7f, 0, 1}, White, {}},
                               {{-0.8f, 0.75f, 0, 1}, White, {}},
                               {{0.85f, 0.75f, 0, 1}, White, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    stage.rectangle({-0.3f, -0.3f, 0.1f, 0.1f}, Teal);
}

// ---- lines, points, strips -----------------------------------------------------------------------------------------

Corner pixel(float x, float y, const Color& color)
{
    return {{(x + 0.5f) / Stage::Side * 2 - 1, (y + 0.5f) / Stage::Side * 2 - 1, 0, 1}, color, {}};
}

void lines(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 12; ++i) {
        float angle = 0.5236f * static_cast<float>(i) + 0.11f;
        corners.push_back(pixel(48.2f + 6 * std::cos(angle), 47.9f + 6 * std::sin(angle), Red));
        corners.push_back(pixel(48.2f + 42 * std::cos(angle), 47.9f + 42 * std::sin(angle), Green));
    }
    stage.draw(GL_LINES, corners);
}

void straightLines(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 10; ++i) {
        auto at = static_cast<float>(4 + 9 * i);
        corners.push_back(pixel(3, at, Red));
        corners.push_back(pixel(92, at, Blue));
        corners.push_back(pixel(at, 2, Green));
        corners.push_back(pixel(at, 90, Ochre));
    }
    stage.draw(GL_LINES, corners);
}

void lineStrip(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 24; ++i)
        corners.push_back(pixel(3 + 3.9f * static_cast<float>(i), 48 + 40 * std::sin(static_cast<float>(i) * 0.9f),
                                {static_cast<float>(i) / 24, 0.7f, 0.2f, 1}));
    stage.draw(GL_LINE_STRIP, corners);
}

void points(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 200; ++i)
        corners.push_back(pixel(static_cast<float>(i * 37 % 96), static_cast<float>(i * 53 % 96),
                                {static_cast<float>(i % 7) / 7, static_cast<float>(i % 11) / 11, 0.9f, 1}));
    stage.draw(GL_POINTS, corners);
}

void triangles(Stage& stage, const char*)
{
    stage.useColors();
    std::vector<Corner> corners;
    for (int i = 0; i < 40; ++i)
        for (int corner = 0; corner < 3; ++corner) {
            int n = i * 3 + corner;
            corners.push_back(
                {{static_cast<float>(n * 71 % 199) / 99.7f - 1, static_cast<float>(n * 113 % 211) / 105.3f - 1, 0, 1},
                 {static_cast<float>(n % 5) / 5, static_cast<float>(n % 3) / 3, static_cast<float>(n % 2), 1},
                 {}});
        }
    stage.draw(GL_TRIANGLES, corners);
}

/// Shared edges through pixel centres: every pixel once, which blending would show.
void sharedEdges(Stage& stage, const char*)
{
    stage.clear(Black);
    stage.useColors();
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    std::vector<Corner> corners;
    std::vector<uint16_t> indices;
    constexpr float Centre = 47.5f;
    corners.push_back(pixel(Centre, Centre, {0.3f, 0.3f, 0.3f, 1}));
    for (int i = 0; i <= 16; ++i) {
        float angle = 0.39269908f * static_cast<float>(i);
        corners.push_back(pixel(Centre + 40 * std::cos(angle), Centre + 40 * std::sin(angle), {0.3f, 0.3f, 0.3f, 1}));
        if (i == 0) continue;
        for (int index : {0, i, i + 1})
            indices.push_back(static_cast<uint16_t>(index));
    }
    stage.draw(GL_TRIANGLES, corners, indices);
}

// ---- viewport and perspective --------------------------------------------------------------------------------------

void viewports(Stage& stage, const char*)
{
    stage.useColors();
    constexpr int Ports[5][4] = {{0, 0, 40, 40}, {50, 4, 41, 33}, {-20, 60, 50, 50}, {70, 70, 60, 60}, {36, 44, 24, 8}};
    for (const auto& port : Ports) {
        glViewport(port[0], port[1], port[2], port[3]);
        const Corner corners[4] = {{{-1, -1, 0, 1}, Red, {}},
                                   {{1, -1, 0, 1}, Green, {}},
                                   {{-1, 1, 0, 1}, Blue, {}},
                                   {{1, 1, 0, 1}, White, {}}};
        stage.draw(GL_TRIANGLE_STRIP, corners);
    }
}

void perspective(Stage& stage, const char*)
{
    stage.useFragment("!!ARBfp1.0\nTEMP c;\nMUL c, fragment.texcoord[0], 4;\nFRC c, c;\nMOV c.z, "
                      "fragment.color.x;\nMOV result.color, c;\nMOV result.color.w, 1;\nEND\n");
    const Corner corners[4] = {{{-1, -1, 0, 1}, Red, {0.03f, 0.02f, 0, 1}},
                               {{2, -2, 0, 2.2f}, Green, {0.97f, 0.02f, 0, 1}},
                               {{-2.5f, 2.5f, 0, 2.7f}, Blue, {0.03f, 0.96f, 0, 1}},
                               {{1.2f, 1.2f, 0, 1.3f}, White, {0.97f, 0.96f, 0, 1}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

/// Triangles with corners behind the eye.
void behindTheEye(Stage& stage, const char*)
{
    stage.useColors();
    const Corner corners[6] = {{{-0.5f, -0.8f, 0, 1}, Red, {}},       {{0.7f, -0.5f, 0, 1}, Green, {}},
                               {{0.3f, 0.9f, 0.2f, -0.6f}, Blue, {}}, {{-3, 0.5f, 0, 1}, White, {}},
                               {{0.2f, 4, 0.3f, 2}, Ochre, {}},       {{5, 0.1f, -0.5f, 1}, Teal, {}}};
    stage.draw(GL_TRIANGLES, corners);
}

constexpr const char* Ends = "of a line's first and last pixel this device takes those whose centre lies between the "
                             "ends, GL those whose diamond the line leaves";
constexpr const char* Slopes = "a slope's last bits decide where it crosses a depth or a texel";

// clang-format off
constexpr SceneRow Rows[] = {
    {"depth-functions",       depthFunctions,    "",  2, 0, nullptr, Slopes},
    {"depth-cuts",            depthCuts,         "",  2, 0, nullptr, Slopes},
    {"depth-mask",            depthMask,         "",  1, 0, nullptr, ""},
    {"depth-near-and-far",    depthClamped,      "",  2, 0, nullptr, Slopes},
    {"depth-written",         depthWritten,      "",  2, 0, nullptr, Slopes},
    {"depth-read-back",       depthReadBack,     "",  1, 0, nullptr, ""},
    {"stencil-functions",     stencilFunctions,  "",  1, 0, nullptr, ""},
    {"stencil-on-failure",    stencilOperations, "f", 1, 0, nullptr, ""},
    {"stencil-on-depth-failure", stencilOperations, "d", 1, 0, nullptr, ""},
    {"stencil-on-passing",    stencilOperations, "p", 1, 0, nullptr, ""},
    {"stencil-masks",         stencilMasks,      "",  1, 0, nullptr, ""},
    {"cull-back",             culling,           "b", 1, 0, nullptr, ""},
    {"cull-front",            culling,           "f", 1, 0, nullptr, ""},
    {"cull-strip",            stripWinding,      "",  1, 0, nullptr, ""},
    {"polygon-offset",        offsets,           "",  2, 0, nullptr, Slopes},
    {"polygon-lines",         wireframe,         "",  1, 0, nullptr, Ends},
    {"lines",                 lines,             "",  2, 10, nullptr, Ends},
    {"lines-along-the-axes",  straightLines,     "",  1, 0, nullptr, ""},
    {"line-strip",            lineStrip,         "",  2, 8, nullptr, Ends},
    {"points",                points,            "",  1, 0, nullptr, ""},
    {"triangles",             triangles,         "",  1, 0, nullptr, ""},
    {"shared-edges",          sharedEdges,       "",  1, 0, nullptr, ""},
    {"viewports",             viewports,         "",  1, 0, nullptr, ""},
    {"perspective",           perspective,       "",  2, 0, nullptr, Slopes},
    {"behind-the-eye",        behindTheEye,      "",  1, 0, nullptr, ""},
};
// clang-format on

} // namespace

const std::span<const SceneRow> RasterScenes(Rows);

} // namespace scenes
