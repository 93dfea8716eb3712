// SPDX-License-Identifier: Apache-2.0
// Every blend equation with every factor, against the formula.
#include "pictures/Stage.h"

#include <cmath>

namespace {

using namespace pictures;
using Vector = std::array<double, 4>;

constexpr Color Source{0.75f, 0.25f, 0.5f, 0.625f}, Destination{0.25f, 0.5f, 1, 0.375f}, Constant{0.5f, 0.125f, 0.875f, 0.25f};

Vector vectorOf(Color c) { return {c.r, c.g, c.b, c.a}; }
/// What a target of eight bits holds of it.
Vector stored(Color c)
{
    Vector v = vectorOf(c);
    for (double& x : v) x = std::round(x * 255) / 255;
    return v;
}

constexpr GLenum Factors[] = {GL_ZERO,      GL_ONE,                 GL_SRC_COLOR,       GL_ONE_MINUS_SRC_COLOR, GL_SRC_ALPHA,          GL_ONE_MINUS_SRC_ALPHA,     GL_DST_ALPHA, GL_ONE_MINUS_DST_ALPHA,
                              GL_DST_COLOR, GL_ONE_MINUS_DST_COLOR, GL_SRC_ALPHA_SATURATE, GL_CONSTANT_COLOR,   GL_ONE_MINUS_CONSTANT_COLOR, GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA};

Vector factor(GLenum name, const Vector& s, const Vector& d)
{
    const Vector c = vectorOf(Constant);
    auto all = [](double x) { return Vector{x, x, x, x}; };
    auto less = [](const Vector& v) { return Vector{1 - v[0], 1 - v[1], 1 - v[2], 1 - v[3]}; };
    double saturate = std::min(s[3], 1 - d[3]);
    switch (name) {
    case GL_ZERO: return all(0);
    case GL_ONE: return all(1);
    case GL_SRC_COLOR: return s;
    case GL_ONE_MINUS_SRC_COLOR: return less(s);
    case GL_SRC_ALPHA: return all(s[3]);
    case GL_ONE_MINUS_SRC_ALPHA: return all(1 - s[3]);
    case GL_DST_ALPHA: return all(d[3]);
    case GL_ONE_MINUS_DST_ALPHA: return all(1 - d[3]);
    case GL_DST_COLOR: return d;
    case GL_ONE_MINUS_DST_COLOR: return less(d);
    case GL_SRC_ALPHA_SATURATE: return {saturate, saturate, saturate, 1};
    case GL_CONSTANT_COLOR: return c;
    case GL_ONE_MINUS_CONSTANT_COLOR: return less(c);
    case GL_CONSTANT_ALPHA: return all(c[3]);
    default: return all(1 - c[3]);
    }
}

Vector blended(GLenum equation, GLenum source, GLenum destination)
{
    const Vector s = vectorOf(Source), d = stored(Destination), f = factor(source, s, d), g = factor(destination, s, d);
    Vector result;
    for (size_t i = 0; i < 4; ++i) {
        double a = s[i] * f[i], b = d[i] * g[i];
        if (equation == GL_FUNC_ADD) result[i] = a + b;
        else if (equation == GL_FUNC_SUBTRACT) result[i] = a - b;
        else if (equation == GL_FUNC_REVERSE_SUBTRACT) result[i] = b - a;
        else result[i] = equation == GL_MIN ? std::min(s[i], d[i]) : std::max(s[i], d[i]);
        result[i] = std::clamp(result[i], 0.0, 1.0);
    }
    return result;
}

void expectBlend(Stage& stage, GLenum equation, GLenum source, GLenum destination)
{
    glDisable(GL_BLEND);
    stage.quad(Destination);
    glEnable(GL_BLEND);
    glBlendEquation(equation);
    glBlendFunc(source, destination);
    glBlendColor(Constant.r, Constant.g, Constant.b, Constant.a);
    stage.quad(Source);
    auto got = at(stage.picture(), 4, 9);
    Vector wanted = blended(equation, source, destination);
    for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(got[i], wanted[i] * 255, 0.51) << "equation " << equation << ", factors " << source << " and " << destination << ", channel " << i;
}

class Blend : public testing::TestWithParam<GLenum>
{
};
INSTANTIATE_TEST_SUITE_P(Equations, Blend, testing::Values(GL_FUNC_ADD, GL_FUNC_SUBTRACT, GL_FUNC_REVERSE_SUBTRACT, GL_MIN, GL_MAX));

TEST_P(Blend, EveryPairOfFactorsFollowsTheFormula)
{
    onBoth([](Stage& stage) {
        std::vector<uint8_t> all;
        for (GLenum source : Factors)
            for (GLenum destination : Factors) {
                if (destination == GL_SRC_ALPHA_SATURATE) continue; // a factor of sources only
                expectBlend(stage, GetParam(), source, destination);
                auto picture = stage.picture();
                all.insert(all.end(), picture.begin(), picture.begin() + 4);
            }
        return all;
    });
}

/// Each attachment blends with its own functions.
TEST(BlendEach, BuffersBlendApart)
{
    auto colours = onBoth([](Stage& stage) {
        GLuint framebuffer = 0, targets[2];
        const GLenum buffers[2] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
        glGenFramebuffers(1, &framebuffer);
        glGenTextures(2, targets);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        for (size_t i = 0; i < 2; ++i) {
            glBindTexture(GL_TEXTURE_RECTANGLE_ARB, targets[i]);
            glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, Side, Side, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
            glFramebufferTexture2D(GL_FRAMEBUFFER, buffers[i], GL_TEXTURE_RECTANGLE_ARB, targets[i], 0);
        }
        glDrawBuffers(2, buffers);
        stage.programs(Stage::Vertex, "!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], program.local[0];\nMOV result.color[1], program.local[0];\nEND\n");
        glClearColor(0.2f, 0.2f, 0.2f, 0.2f);
        glClear(GL_COLOR_BUFFER_BIT);
        glEnable(GL_BLEND);
        glBlendFunciARB(0, GL_ONE, GL_ONE);
        glBlendFunciARB(1, GL_ZERO, GL_ZERO);
        stage.quad({0.2f, 0.4f, 0.6f, 0.8f});
        std::vector<uint8_t> result;
        for (GLuint target : targets) {
            std::vector<uint8_t> texels(Side * Side * 4);
            glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target);
            glGetTexImage(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
            result.insert(result.end(), texels.begin(), texels.begin() + 4);
        }
        return result;
    });
    EXPECT_EQ(colours, (std::vector<uint8_t>{102, 153, 204, 255, 0, 0, 0, 0}));
}

} // namespace
