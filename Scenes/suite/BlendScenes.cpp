// SPDX-License-Identifier: Apache-2.0
// Blend factors and equations, per draw buffer too, and colour masks.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>

namespace scenes
{
namespace
{

constexpr GLenum Factors[] = {GL_ZERO,
                              GL_ONE,
                              GL_SRC_COLOR,
                              GL_ONE_MINUS_SRC_COLOR,
                              GL_SRC_ALPHA,
                              GL_ONE_MINUS_SRC_ALPHA,
                              GL_DST_ALPHA,
                              GL_ONE_MINUS_DST_ALPHA,
                              GL_DST_COLOR,
                              GL_ONE_MINUS_DST_COLOR,
                              GL_SRC_ALPHA_SATURATE,
                              GL_CONSTANT_COLOR,
                              GL_ONE_MINUS_CONSTANT_COLOR,
                              GL_CONSTANT_ALPHA,
                              GL_ONE_MINUS_CONSTANT_ALPHA};

/// What lies below: a colour ramp with alpha from left to right.
void ground(Stage& stage)
{
    stage.clear({0.2f, 0.3f, 0.1f, 0.6f});
    stage.useColors();
    const Corner corners[4] = {{{-1, -1, 0, 1}, {0.1f, 0.8f, 0.3f, 0.2f}, {}},
                               {{1, -1, 0, 1}, {0.9f, 0.2f, 0.7f, 0.9f}, {}},
                               {{-1, 1, 0, 1}, {0.4f, 0.1f, 0.9f, 0.5f}, {}},
                               {{1, 1, 0, 1}, {0.6f, 0.7f, 0.2f, 1.0f}, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

constexpr Color Above = {0.7f, 0.4f, 0.25f, 0.35f};

void factors(Stage& stage, const char* which)
{
    ground(stage);
    glEnable(GL_BLEND);
    glBlendColor(0.3f, 0.65f, 0.9f, 0.45f);
    for (int i = 0; i < 15; ++i) {
        GLenum factor = Factors[i];
        if (*which == 's')
            glBlendFunc(factor, GL_ONE_MINUS_SRC_ALPHA);
        else
            glBlendFunc(GL_SRC_ALPHA, factor);
        stage.rectangle(tile(i, 4), Above);
    }
}

void equations(Stage& stage, const char*)
{
    constexpr GLenum Equations[] = {GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_MIN, GL_MAX};
    ground(stage);
    glEnable(GL_BLEND);
    for (int i = 0; i < 5; ++i) {
        glBlendEquation(Equations[i]);
        glBlendFunc(GL_ONE, GL_ONE);
        stage.rectangle(tile(i, 3), Above);
    }
}

void layers(Stage& stage, const char*)
{
    ground(stage);
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    for (int i = 0; i < 6; ++i) {
        float shift = static_cast<float>(i) * 0.2f;
        stage.rectangle({-0.9f + shift, -0.8f + shift * 0.7f, 0.1f + shift, 0.3f + shift * 0.5f},
                        {0.15f * static_cast<float>(i), 0.9f - shift, 0.5f, 0.3f});
    }
}

void blendOff(Stage& stage, const char*)
{
    ground(stage);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ZERO, GL_ONE);
    stage.rectangle(tile(0, 2), Above);
    glDisable(GL_BLEND);
    stage.rectangle(tile(1, 2), Above);
}

/// Four targets, each with an equation and factors of its own, shown side by side.
void perBuffer(Stage& stage, const char*)
{
    auto target = stage.target(GL_RGBA8, 4, 0);
    stage.clear({0.3f, 0.5f, 0.2f, 0.75f});
    stage.useFragment("!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.color;\nMOV "
                      "result.color[1], fragment.color.yzxw;\n"
                      "MOV result.color[2], fragment.color.zxyw;\nMOV result.color[3], fragment.color.wzyx;\nEND\n");
    glEnable(GL_BLEND);
    glBlendEquation(GL_FUNC_ADD);
    glBlendFunc(GL_ONE, GL_ZERO);
    glBlendFunciARB(1, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBlendEquationiARB(2, GL_FUNC_REVERSE_SUBTRACT);
    glBlendFunciARB(2, GL_ONE, GL_ONE);
    glBlendEquationiARB(3, GL_MAX);
    stage.rectangle({-0.7f, -0.8f, 0.9f, 0.6f}, Above);
    glDisable(GL_BLEND);
    Image all(2 * Stage::Side, 2 * Stage::Side);
    for (int i = 0; i < 4; ++i) {
        Image one(Stage::Side, Stage::Side);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target.colors[static_cast<size_t>(i)]);
        glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, one.pixels.data());
        for (int y = 0; y < Stage::Side; ++y)
            std::copy_n(one.at(0, y), Stage::Side * 4, all.at(i % 2 * Stage::Side, i / 2 * Stage::Side + y));
    }
    stage.show(all);
}

/// Sums beyond one and below zero stay in a float target.
void floatSum(Stage& stage, const char*)
{
    stage.target(GL_RGBA16F_ARB, 1, 0);
    stage.clear({0.25f, 0.5f, 0.125f, 1});
    stage.useFragment("!!ARBfp1.0\nMAD result.color, fragment.color, 2, -0.75;\nEND\n");
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE);
    for (int i = 0; i < 5; ++i)
        stage.rectangle({-0.9f + 0.1f * static_cast<float>(i), -0.9f, 0.9f, 0.1f + 0.15f * static_cast<float>(i)},
                        {0.75f, 0.5f, 0.25f, 0.5f});
    glDisable(GL_BLEND);
    std::vector<float> values(Stage::Side * Stage::Side * 4);
    glReadPixels(0, 0, Stage::Side, Stage::Side, GL_RGBA, GL_FLOAT, values.data());
    stage.showFloats(values, 4, Stage::Side, Stage::Side, 0.15f, 0.3f);
}

/// Every mask in a tile of its own, with buffers of its own.
void masks(Stage& stage, const char*)
{
    ground(stage);
    for (int i = 0; i < 16; ++i) {
        glColorMask(i & 1, i >> 1 & 1, i >> 2 & 1, i >> 3 & 1);
        stage.rectangle(tile(i, 4), Above);
    }
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void maskedBlend(Stage& stage, const char*)
{
    ground(stage);
    glEnable(GL_BLEND);
    glBlendFunc(GL_DST_COLOR, GL_SRC_ALPHA);
    glColorMask(GL_TRUE, GL_FALSE, GL_TRUE, GL_FALSE);
    stage.rectangle({-0.6f, -0.7f, 0.8f, 0.5f}, Above);
}

constexpr const char* Rounding = "the other library blends bytes, this one floats that are rounded once";

// clang-format off
constexpr SceneRow Rows[] = {
    {"blend-source-factors",      factors,     "s", 2, 0, nullptr, Rounding},
    {"blend-destination-factors", factors,     "d", 2, 0, nullptr, Rounding},
    {"blend-equations",           equations,   "",  1, 0, nullptr, ""},
    {"blend-layers",              layers,      "",  3, 0, nullptr, Rounding},
    {"blend-off-again",           blendOff,    "",  1, 0, nullptr, ""},
    {"blend-per-draw-buffer",     perBuffer,   "",  1, 0, nullptr, ""},
    {"blend-float-sum",           floatSum,    "",  1, 0, nullptr, ""},
    {"color-masks",               masks,       "",  1, 0, nullptr, ""},
    {"color-mask-and-blend",      maskedBlend, "",  2, 0, nullptr, Rounding},
};
// clang-format on

} // namespace

const std::span<const SceneRow> BlendScenes(Rows);

} // namespace scenes
