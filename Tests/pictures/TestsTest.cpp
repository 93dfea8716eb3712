// SPDX-License-Identifier: Apache-2.0
// Depth and stencil: every function and every operation.
#include "pictures/Stage.h"

namespace {

using namespace pictures;

constexpr GLenum Functions[] = {GL_NEVER, GL_LESS, GL_EQUAL, GL_LEQUAL, GL_GREATER, GL_NOTEQUAL, GL_GEQUAL, GL_ALWAYS};

bool passes(GLenum function, double value, double stored)
{
    switch (function) {
    case GL_NEVER: return false;
    case GL_LESS: return value < stored;
    case GL_EQUAL: return value == stored;
    case GL_LEQUAL: return value <= stored;
    case GL_GREATER: return value > stored;
    case GL_NOTEQUAL: return value != stored;
    case GL_GEQUAL: return value >= stored;
    default: return true;
    }
}

TEST(DepthTest, EveryFunctionAgainstNearerEqualAndFarther)
{
    for (GLenum function : Functions)
        for (float z : {-0.5f, 0.f, 0.5f}) {
            auto picture = drawnOnBoth([&](Stage& s) {
                glEnable(GL_DEPTH_TEST);
                glDepthFunc(GL_ALWAYS);
                s.quad({1, 0, 0, 1}, 0);
                glDepthFunc(function);
                s.quad({0, 1, 0, 1}, z);
            });
            EXPECT_EQ(at(picture, 7, 7), passes(function, z, 0) ? Green : Red) << function << " at " << z;
        }
}

TEST(DepthTest, AMaskKeepsTheOldDepth)
{
    auto picture = drawnOnBoth([](Stage& s) {
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LESS);
        glDepthMask(GL_FALSE);
        s.quad({1, 0, 0, 1}, -0.5f);
        glDepthMask(GL_TRUE);
        s.quad({0, 1, 0, 1}, 0); // behind, but nothing was written
    });
    EXPECT_EQ(at(picture, 7, 7), Green);
}

TEST(DepthTest, WhatLiesOutsideTheDepthsIsClipped)
{
    auto picture = drawnOnBoth([](Stage& s) {
        s.quad({1, 0, 0, 1}, 1.5f);
        s.quad({1, 0, 0, 1}, -1.5f);
    });
    EXPECT_EQ(covered(picture), 0);
}

/// Draws with a stencil reference and reads the stencil back by drawing where it is equal.
class Stencil
{
public:
    explicit Stencil(Stage& stage) : stage_(stage) { glEnable(GL_STENCIL_TEST); }
    void fill(GLint value)
    {
        glStencilMask(0xFF);
        glStencilFunc(GL_ALWAYS, value, 0xFF);
        glStencilOp(GL_REPLACE, GL_REPLACE, GL_REPLACE);
        stage_.quad({0, 0, 0, 0});
    }
    /// Marks the picture where the stencil is the value.
    void showWhere(GLint value)
    {
        glDisable(GL_DEPTH_TEST);
        glStencilFunc(GL_EQUAL, value, 0xFF);
        glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
        stage_.quad({1, 1, 1, 1});
    }

private:
    Stage& stage_;
};

TEST(StencilTest, EveryFunctionAgainstLessEqualAndGreater)
{
    for (GLenum function : Functions)
        for (GLint reference : {3, 4, 5}) {
            auto picture = drawnOnBoth([&](Stage& s) {
                Stencil stencil(s);
                stencil.fill(4);
                glStencilFunc(function, reference, 0xFF);
                glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
                s.quad({0, 1, 0, 1});
            });
            EXPECT_EQ(at(picture, 7, 7) == Green, passes(function, reference, 4)) << function << " with " << reference;
        }
}

TEST(StencilTest, TheMaskCutsBothSides)
{
    auto picture = drawnOnBoth([](Stage& s) {
        Stencil stencil(s);
        stencil.fill(0xF4);
        glStencilFunc(GL_EQUAL, 0x04, 0x0F);
        glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP);
        s.quad({0, 1, 0, 1});
    });
    EXPECT_EQ(at(picture, 7, 7), Green);
}

struct Operation
{
    GLenum operation;
    int (*result)(int stored, int reference);
};

constexpr Operation Operations[] = {
    {GL_KEEP, [](int stored, int) { return stored; }},
    {GL_ZERO, [](int, int) { return 0; }},
    {GL_REPLACE, [](int, int reference) { return reference; }},
    {GL_INCR, [](int stored, int) { return std::min(stored + 1, 255); }},
    {GL_DECR, [](int stored, int) { return std::max(stored - 1, 0); }},
    {GL_INVERT, [](int stored, int) { return ~stored & 255; }},
    {GL_INCR_WRAP, [](int stored, int) { return (stored + 1) & 255; }},
    {GL_DECR_WRAP, [](int stored, int) { return (stored - 1) & 255; }},
};

enum class When { StencilFails, DepthFails, Passes };

void expectOperation(const Operation& row, When when, int stored)
{
    constexpr GLint Reference = 9;
    auto picture = drawnOnBoth([&](Stage& s) {
        Stencil stencil(s);
        stencil.fill(stored);
        if (when == When::DepthFails) glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_NEVER);
        glStencilFunc(when == When::StencilFails ? GL_NEVER : GL_ALWAYS, Reference, 0xFF);
        glStencilOp(when == When::StencilFails ? row.operation : GL_KEEP, when == When::DepthFails ? row.operation : GL_KEEP, when == When::Passes ? row.operation : GL_KEEP);
        s.quad({0, 0, 0, 0});
        stencil.showWhere(row.result(stored, Reference));
    });
    EXPECT_EQ(at(picture, 7, 7), White) << row.operation << " of " << stored << ", case " << static_cast<int>(when);
}

TEST(StencilTest, EveryOperationInEveryCase)
{
    for (const Operation& row : Operations) {
        for (When when : {When::StencilFails, When::DepthFails, When::Passes}) expectOperation(row, when, 77);
        for (int stored : {0, 255}) expectOperation(row, When::Passes, stored);
    }
}

TEST(StencilTest, TheWriteMaskKeepsTheOtherBits)
{
    auto picture = drawnOnBoth([](Stage& s) {
        Stencil stencil(s);
        stencil.fill(0xA0);
        glStencilMask(0x0F);
        glStencilFunc(GL_ALWAYS, 0x5B, 0xFF);
        glStencilOp(GL_REPLACE, GL_REPLACE, GL_REPLACE);
        s.quad({0, 0, 0, 0});
        stencil.showWhere(0xAB);
    });
    EXPECT_EQ(at(picture, 7, 7), White);
}

} // namespace
