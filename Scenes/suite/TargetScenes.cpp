// SPDX-License-Identifier: Apache-2.0
// Framebuffer objects, several draw buffers, drawing what was drawn, and copies into textures.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>

namespace scenes
{
namespace
{

constexpr const char* SpreadProgram =
    "!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.color;\nMOV result.color[1], "
    "fragment.color.yzxw;\n"
    "MUL result.color[2], fragment.color, 0.5;\nSUB result.color[3], 1, fragment.color;\nEND\n";

void fan(Stage& stage)
{
    const Corner corners[6] = {{{-0.93f, -0.71f, 0.2f, 1}, Red, {}}, {{0.57f, -0.89f, -0.3f, 1}, Green, {}},
                               {{0.13f, 0.91f, 0.6f, 1}, Blue, {}},  {{-0.51f, 0.67f, -0.1f, 1}, White, {}},
                               {{0.93f, 0.37f, 0.1f, 1}, Ochre, {}}, {{0.31f, -0.97f, 0.3f, 1}, Teal, {}}};
    stage.draw(GL_TRIANGLES, corners);
}

void showColors(Stage& stage, const Stage::Target& target)
{
    constexpr int Side = Stage::Side;
    auto count = static_cast<int>(target.colors.size());
    Image all(Side, Side * count);
    for (int i = 0; i < count; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[static_cast<size_t>(i)]);
        glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, all.at(0, i * Side));
    }
    stage.show(all);
}

void drawBuffers(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 4, 0);
    stage.clear({0.1f, 0.2f, 0.3f, 0.4f});
    stage.useFragment(SpreadProgram);
    fan(stage);
    showColors(stage, target);
}

/// Only the buffers in the list are cleared and drawn to.
void someDrawBuffers(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 4, 0);
    stage.clear({0.7f, 0.2f, 0.3f, 0.4f});
    const GLenum some[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, some);
    stage.clear({0.1f, 0.6f, 0.3f, 0.8f});
    stage.useFragment(SpreadProgram);
    fan(stage);
    showColors(stage, target);
}

void depthTarget(Stage& stage, const char* format)
{
    auto target = stage.target(GL_RGBA8, 1,
                               *format == '1'   ? GL_DEPTH_COMPONENT16
                               : *format == '2' ? GL_DEPTH_COMPONENT24
                                                : GL_DEPTH_COMPONENT32);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glClearDepth(0.6);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    stage.useColors();
    fan(stage);
    showColors(stage, target);
}

void floatTarget(Stage& stage, const char* format)
{
    stage.target(*format == 'h' ? GL_RGBA16F_ARB : GL_RGBA32F_ARB, 1, 0);
    glClearColor(2, -1, 0.5f, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    stage.useFragment("!!ARBfp1.0\nMAD result.color, fragment.color, 4, -2;\nEND\n");
    fan(stage);
    std::vector<float> values(Stage::Side * Stage::Side * 4);
    glReadPixels(0, 0, Stage::Side, Stage::Side, GL_RGBA, GL_FLOAT, values.data());
    stage.showFloats(values, 4, Stage::Side, Stage::Side, 0.25f, 0.5f);
}

/// What one pass drew is what the next one samples.
void drawnThenSampled(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 2, 0);
    stage.clear({0.1f, 0.2f, 0.3f, 0.4f});
    stage.useFragment("!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.color;\nMOV "
                      "result.color[1], fragment.color.yzxw;\nEND\n");
    fan(stage);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[0]);
    stage.useTexture("RECT");
    stage.rectangle({-1, -1, 0.5f, 1, 0, 0, 0, Stage::Side, Stage::Side}, White);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[1]);
    stage.rectangle({0, -0.5f, 1, 0.5f, 0, 5, 7, 90, 81}, White);
}

/// Two targets by turns, each the source of the other.
void backAndForth(Stage& stage, const char*)
{
    auto first = stage.target(GL_RGBA8, 1, 0);
    stage.clear(Teal);
    stage.useColors();
    fan(stage);
    auto second = stage.target(GL_RGBA8, 1, 0);
    stage.clear(Black);
    stage.useTexture("RECT");
    for (int i = 0; i < 5; ++i) {
        const auto& from = i % 2 ? second : first;
        const auto& to = i % 2 ? first : second;
        glBindFramebuffer(GL_FRAMEBUFFER, to.framebuffer);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, from.colors[0]);
        stage.rectangle({-0.75f, -0.75f, 1, 1, 0, 0.3f, 0.3f, Stage::Side + 0.3f, Stage::Side + 0.3f}, White);
    }
    showColors(stage, second);
}

void sampledDepth(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 1, GL_DEPTH_COMPONENT24);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glClearDepth(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    stage.useColors();
    fan(stage);
    glDisable(GL_DEPTH_TEST);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.depth);
    stage.useFragment(
        "!!ARBfp1.0\nTEMP d;\nTEX d, fragment.texcoord[0], texture[0], RECT;\nMOV result.color, d.x;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, 0, 0, Stage::Side, Stage::Side}, White);
}

// ---- copies --------------------------------------------------------------------------------------------------------

void copied(Stage& stage, const char* internal)
{
    stage.useColors();
    fan(stage);
    stage.texture(GL_TEXTURE_2D);
    GLenum format = *internal == 'a' ? GL_RGBA8 : *internal == 'b' ? GL_RGB8 : GL_RGBA16F_ARB;
    auto texels = patternTexels(48, 48);
    std::vector<uint16_t> halves(48 * 48 * 4, 0x3800);
    if (*internal == 'h')
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 48, 48, 0, GL_RGBA, GL_HALF_FLOAT, halves.data());
    else
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 48, 48, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 7, 11, 21, 30, 37, 35);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, 0, 0, 1, 1}, White);
}

void copiedToFace(Stage& stage, const char*)
{
    stage.useColors();
    fan(stage);
    stage.texture(GL_TEXTURE_CUBE_MAP);
    for (GLint level = 0; level < 7; ++level)
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, GL_RGBA8, 64 >> level, 64 >> level, 0, GL_RGBA,
                         GL_UNSIGNED_BYTE, patternTexels(64 >> level, 64 >> level, 1, static_cast<int>(face)).data());
    glCopyTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 1, 3, 5, 40, 20, 25, 22);
    Image picture(32, 32);
    glGetTexImage(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 1, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

void copiedRectangle(Stage& stage, const char*)
{
    stage.useColors();
    fan(stage);
    stage.patternTexture(GL_TEXTURE_RECTANGLE_ARB, Stage::Side, Stage::Side);
    glCopyTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 13, 17, 0, 0, 70, 60);
    stage.useTexture("RECT");
    stage.rectangle({-1, -1, 1, 1, 0, 0, 0, Stage::Side, Stage::Side}, White);
}

void copiedDepth(Stage& stage, const char*)
{
    stage.target(GL_RGBA8, 1, GL_DEPTH_COMPONENT32);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glClearDepth(0.9);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    stage.useColors();
    fan(stage);
    stage.texture(GL_TEXTURE_RECTANGLE_ARB);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_DEPTH_COMPONENT32, Stage::Side, Stage::Side, 0, GL_DEPTH_COMPONENT,
                 GL_FLOAT, nullptr);
    glCopyTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 0, 0, 0, 0, Stage::Side, Stage::Side);
    std::vector<float> values(Stage::Side * Stage::Side);
    glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_DEPTH_COMPONENT, GL_FLOAT, values.data());
    stage.showFloats(values, 1, Stage::Side, Stage::Side, 1, 0);
}

constexpr const char* HalfStep = "a value in the middle between two bytes is rounded either way";

// clang-format off
constexpr SceneRow Rows[] = {
    {"draw-buffers",          drawBuffers,      "",  1, 0, nullptr, HalfStep},
    {"draw-buffers-two-of-four", someDrawBuffers, "", 1, 0, nullptr, HalfStep},
    {"target-depth-16",       depthTarget,      "1", 1, 0, nullptr, HalfStep},
    {"target-depth-24",       depthTarget,      "2", 1, 0, nullptr, HalfStep},
    {"target-depth-32",       depthTarget,      "3", 1, 0, nullptr, HalfStep},
    {"target-half",           floatTarget,      "h", 1, 0, nullptr, HalfStep},
    {"target-float",          floatTarget,      "f", 1, 0, nullptr, HalfStep},
    {"drawn-then-sampled",    drawnThenSampled, "",  1, 0, nullptr, HalfStep},
    {"targets-by-turns",      backAndForth,     "",  1, 0, nullptr, HalfStep},
    {"depth-sampled",         sampledDepth,     "",  1, 0, nullptr, HalfStep},
    {"copy-to-rgba8",         copied,           "a", 1, 0, nullptr, HalfStep},
    {"copy-to-rgb8",          copied,           "b", 1, 0, nullptr, HalfStep},
    {"copy-to-half",          copied,           "h", 1, 0, nullptr, HalfStep},
    {"copy-to-face-and-level", copiedToFace,    "",  1, 0, nullptr, HalfStep},
    {"copy-to-rectangle",     copiedRectangle,  "",  1, 0, nullptr, HalfStep},
    {"copy-depth",            copiedDepth,      "",  1, 0, nullptr, ""},
};
// clang-format on

} // namespace

const std::span<const SceneRow> TargetScenes(Rows);

} // namespace scenes
