// SPDX-License-Identifier: Apache-2.0
// The six matrix stacks.
#include "ZALGLMatrix.h"
#include "support/BareContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace
{

using Matrix = std::array<float, 16>;

constexpr Matrix Identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// Its value says where an element stands: 10 x row + column, both from 1.
constexpr Matrix Places = {11, 21, 31, 41, 12, 22, 32, 42, 13, 23, 33, 43, 14, 24, 34, 44};

struct Matrices : ::testing::Test
{
    support::BareContext bare;
    ZALGLState& gl = bare.state();

    Matrix top(int stack = 0)
    {
        const ZALGLState::MatrixStack& it = gl.matrixStacks[stack];
        Matrix result;
        std::copy_n(it.entries[it.depth], 16, result.begin());
        return result;
    }
};

// ---- Choosing a stack ----

TEST_F(Matrices, ModeChoosesTheStack)
{
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(Places.data());
    EXPECT_EQ(gl.matrixMode, 1u);
    EXPECT_EQ(top(1), Places);
    EXPECT_EQ(top(0), Identity);
    glMatrixMode(GL_MODELVIEW);
    EXPECT_EQ(gl.matrixMode, 0u);
}

TEST_F(Matrices, TextureModeTakesTheStackOfTheActiveUnit)
{
    for (GLuint unit = 0; unit < 4; ++unit) {
        gl.activeTextureUnit = unit;
        glMatrixMode(GL_TEXTURE);
        EXPECT_EQ(gl.matrixMode, 2 + unit);
    }
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

TEST_F(Matrices, TextureModeRefusesUnitsWithoutAStack)
{
    glMatrixMode(GL_PROJECTION);
    for (GLuint unit : {4u, 5u, 31u}) {
        gl.activeTextureUnit = unit;
        glMatrixMode(GL_TEXTURE);
        EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << unit;
        EXPECT_EQ(gl.matrixMode, 1u);
    }
}

TEST_F(Matrices, ActiveTextureFiveHasNoStackAndThreeHasTheLast)
{
    glActiveTextureARB(GL_TEXTURE5);
    glMatrixMode(GL_TEXTURE);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
    glActiveTextureARB(GL_TEXTURE3);
    glMatrixMode(GL_TEXTURE);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(gl.matrixMode, 5u);
}

TEST_F(Matrices, Kept_texture_stack_fixed_by_mode)
{
    glActiveTextureARB(GL_TEXTURE1);
    glMatrixMode(GL_TEXTURE);
    glActiveTextureARB(GL_TEXTURE2);
    glLoadMatrixf(Places.data());
    EXPECT_EQ(top(3), Places);
    EXPECT_EQ(top(4), Identity);
}

TEST_F(Matrices, UnknownModesAreInvalidEnums)
{
    for (GLenum mode : {0, 0x16FF, GL_COLOR, 0x1703}) {
        support::StateSnapshot before(gl);
        glMatrixMode(mode);
        EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM)) << mode;
        EXPECT_TRUE(before.unchanged());
    }
}

// ---- Pushing and popping ----

TEST_F(Matrices, SixteenPushesSucceedAndTheNextOverflows)
{
    glLoadMatrixf(Places.data());
    for (int i = 0; i < 16; ++i)
        glPushMatrix();
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    GLint depth = 0;
    glGetIntegerv(GL_MODELVIEW_STACK_DEPTH, &depth);
    EXPECT_EQ(depth, 17);
    EXPECT_EQ(top(0), Places);

    support::StateSnapshot before(gl);
    glPushMatrix();
    EXPECT_EQ(glGetError(), GLenum(GL_STACK_OVERFLOW));
    EXPECT_TRUE(before.unchanged());
}

TEST_F(Matrices, PushingOneStackLeavesTheNextUntouched)
{
    const ZALGLState::MatrixStack projection = gl.matrixStacks[1];
    glLoadMatrixf(Places.data());
    for (int i = 0; i < 17; ++i)
        glPushMatrix();
    EXPECT_EQ(std::memcmp(&projection, &gl.matrixStacks[1], sizeof projection), 0);
}

TEST_F(Matrices, PoppingTheLastEntryUnderflows)
{
    glPopMatrix();
    EXPECT_EQ(glGetError(), GLenum(GL_STACK_UNDERFLOW));
    EXPECT_EQ(gl.matrixStacks[0].depth, 0);
    EXPECT_EQ(top(0), Identity);
}

TEST_F(Matrices, PopRestoresWhatWasPushed)
{
    glLoadMatrixf(Places.data());
    glPushMatrix();
    glLoadIdentity();
    EXPECT_EQ(top(0), Identity);
    glPopMatrix();
    EXPECT_EQ(top(0), Places);
}

TEST_F(Matrices, PopLeavesThePoppedEntryAsItIs)
{
    glPushMatrix();
    glLoadMatrixf(Places.data());
    glPopMatrix();
    EXPECT_EQ(gl.matrixStacks[0].entries[1][4], Places[4]);
}

// ---- Loading and multiplying ----

TEST_F(Matrices, LoadMatrixdRoundsToSinglePrecision)
{
    double given[16], read[16];
    for (int i = 0; i < 16; ++i)
        given[i] = 0.1 * (i + 1);
    glLoadMatrixd(given);
    glGetDoublev(GL_MODELVIEW_MATRIX, read);
    for (int i = 0; i < 16; ++i)
        EXPECT_EQ(read[i], static_cast<double>(static_cast<float>(given[i])));
}

TEST_F(Matrices, MultiplicationAppliesTheArgumentFirst)
{
    Matrix scale = Identity, move = Identity;
    scale[0] = scale[5] = scale[10] = 2;
    move[12] = 3;
    glLoadMatrixf(scale.data());
    glMultMatrixf(move.data());
    EXPECT_EQ(top()[12], 6.0f); // moved by 3, then scaled by 2
    EXPECT_EQ(top()[0], 2.0f);
}

TEST_F(Matrices, MultiplicationMatchesTheDefinitionElementByElement)
{
    glLoadMatrixf(Places.data());
    glMultMatrixf(Places.data());
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row) {
            float sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += Places[4 * k + row] * Places[4 * column + k];
            EXPECT_EQ(top()[4 * column + row], sum) << row << ' ' << column; // whole numbers: exact
        }
    }
}

TEST_F(Matrices, MultMatrixdRoundsBeforeItMultiplies)
{
    double precise[16];
    float rounded[16];
    for (int i = 0; i < 16; ++i) {
        precise[i] = 1.0 / (i + 3);
        rounded[i] = static_cast<float>(precise[i]);
    }
    glLoadMatrixf(Places.data());
    glMultMatrixd(precise);
    Matrix fromDoubles = top();
    glLoadMatrixf(Places.data());
    glMultMatrixf(rounded);
    EXPECT_EQ(fromDoubles, top());
}

TEST_F(Matrices, TheWorkersTakeAStackByReference)
{
    ZALGLState::MatrixStack& stack = gl.matrixStacks[5];
    const double places[16] = {11, 21, 31, 41, 12, 22, 32, 42, 13, 23, 33, 43, 14, 24, 34, 44};
    MatrixMultf(stack, Places.data());
    EXPECT_EQ(top(5), Places);
    MatrixMultf(stack, Identity.data());
    EXPECT_EQ(top(5), Places);
    glMatrixMode(GL_MODELVIEW);
    MatrixMultd(gl.matrixStacks[0], places);
    EXPECT_EQ(top(0), Places);
}

// ---- Projections ----

TEST_F(Matrices, OrthoOfAScreenWithItsOriginAtTheTop)
{
    glOrtho(0, 640, 480, 0, -1, 1);
    Matrix wanted = {};
    wanted[0] = 0.003125f;
    wanted[5] = static_cast<float>(-2.0 / 480.0);
    wanted[10] = -1;
    wanted[12] = -1;
    wanted[13] = 1;
    wanted[14] = 0;
    wanted[15] = 1;
    EXPECT_EQ(top(), wanted);
}

TEST_F(Matrices, FrustumIsBuiltInDoublePrecision)
{
    glFrustum(-1, 2, -3, 5, 0.1, 100);
    const Matrix wanted = {static_cast<float>(2 * 0.1 / 3),
                           0,
                           0,
                           0,
                           0,
                           static_cast<float>(2 * 0.1 / 8),
                           0,
                           0,
                           static_cast<float>(1.0 / 3.0),
                           0.25f,
                           static_cast<float>(-(100 + 0.1) / (100 - 0.1)),
                           -1,
                           0,
                           0,
                           static_cast<float>(-2 * 100 * 0.1 / (100 - 0.1)),
                           0};
    EXPECT_EQ(top(), wanted);
}

TEST_F(Matrices, ProjectionsMultiplyTheTop)
{
    Matrix scale = Identity;
    scale[0] = 2;
    glLoadMatrixf(scale.data());
    glOrtho(0, 4, 0, 4, -1, 1);
    EXPECT_EQ(top()[0], 1.0f);
    EXPECT_EQ(top()[12], -2.0f);
}

TEST_F(Matrices, Kept_projection_unchecked)
{
    glOrtho(1, 1, 0, 1, -1, 1);
    EXPECT_TRUE(std::isnan(top()[0]) || std::isinf(top()[0]));
    glLoadIdentity();
    glFrustum(-1, 1, 2, 2, 1, 10);
    EXPECT_FALSE(std::isfinite(top()[5]));
    glLoadIdentity();
    glFrustum(-1, 1, -1, 1, -1, 10); // a near plane behind the eye
    EXPECT_EQ(top()[0], -1.0f);
    glFrustum(-1, 1, -1, 1, 5, 5);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
}

} // namespace
