// SPDX-License-Identifier: Apache-2.0
// Chapter: matrix stacks. Nothing here marks anything dirty: draws read the matrices anew each time.
#include "ZALGLMatrix.h"

#include <algorithm>
#include <cstring>

namespace
{

using MatrixStack = ZALGLState::MatrixStack;

constexpr float Identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr int32_t LastPush = 15; // depth at which one more push is accepted

MatrixStack* currentStack()
{
    ZALGLState* gl = GetCurrentGLState();
    return gl ? &gl->matrixStacks[gl->matrixMode] : nullptr;
}

} // namespace

void MatrixMultf(ZALGLState::MatrixStack& stack, const float* m)
{
    float c[16]; // a copy, so that the result does not feed back into itself
    float* top = stack.entries[stack.depth];
    std::copy(top, top + 16, c);
    for (int j = 0; j < 16; j += 4) {
        for (int r = 0; r < 4; ++r)
            top[j + r] = c[r] * m[j] + c[4 + r] * m[j + 1] + c[8 + r] * m[j + 2] + c[12 + r] * m[j + 3];
    }
}

void MatrixMultd(ZALGLState::MatrixStack& stack, const double* m)
{
    float converted[16];
    for (int i = 0; i < 16; ++i)
        converted[i] = static_cast<float>(m[i]);
    MatrixMultf(stack, converted);
}

// ---- Matrix stacks -------------------------------------------------------------------------------------------------

void glMatrixMode(GLenum mode)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    // Kept on purpose: [texture-stack-fixed-by-mode] the unit that is active now decides; GL follows later changes.
    if (mode == GL_MODELVIEW)
        gl->matrixMode = 0;
    else if (mode == GL_PROJECTION)
        gl->matrixMode = 1;
    else if (mode == GL_TEXTURE && gl->activeTextureUnit < 4)
        gl->matrixMode = 2 + gl->activeTextureUnit;
    else
        SetCurrentError(gl, GL_INVALID_ENUM);
}

void glLoadIdentity(void)
{
    if (MatrixStack* stack = currentStack()) std::memcpy(stack->entries[stack->depth], Identity, sizeof Identity);
}

void glLoadMatrixf(const GLfloat* m)
{
    if (MatrixStack* stack = currentStack()) std::copy(m, m + 16, stack->entries[stack->depth]);
}

void glLoadMatrixd(const GLdouble* m)
{
    MatrixStack* stack = currentStack();
    for (int i = 0; stack && i < 16; ++i)
        stack->entries[stack->depth][i] = static_cast<float>(m[i]);
}

void glMultMatrixf(const GLfloat* m)
{
    if (MatrixStack* stack = currentStack()) MatrixMultf(*stack, m);
}

void glMultMatrixd(const GLdouble* m)
{
    if (MatrixStack* stack = currentStack()) MatrixMultd(*stack, m);
}

// Kept on purpose: [projection-unchecked] GL says INVALID_VALUE for an empty volume; here it gives infinities and NaNs.

void glOrtho(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f)
{
    MatrixStack* stack = currentStack();
    if (!stack) return;

    double m[16] = {};
    m[0] = 2 / (r - l);
    m[5] = 2 / (t - b);
    m[10] = -2 / (f - n);
    m[12] = -(r + l) / (r - l);
    m[13] = -(t + b) / (t - b);
    m[14] = -(f + n) / (f - n);
    m[15] = 1;
    MatrixMultd(*stack, m);
}

void glFrustum(GLdouble l, GLdouble r, GLdouble b, GLdouble t, GLdouble n, GLdouble f)
{
    MatrixStack* stack = currentStack();
    if (!stack) return;

    double m[16] = {};
    m[0] = 2 * n / (r - l);
    m[5] = 2 * n / (t - b);
    m[8] = (r + l) / (r - l);
    m[9] = (t + b) / (t - b);
    m[10] = -(f + n) / (f - n);
    m[11] = -1;
    m[14] = -2 * f * n / (f - n);
    MatrixMultd(*stack, m);
}

void glPushMatrix(void)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    MatrixStack& stack = *currentStack();
    if (stack.depth > LastPush) return SetCurrentError(gl, GL_STACK_OVERFLOW);

    ++stack.depth;
    std::memcpy(stack.entries[stack.depth], stack.entries[stack.depth - 1], sizeof stack.entries[0]);
}

void glPopMatrix(void)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    MatrixStack& stack = *currentStack();
    if (stack.depth == 0) return SetCurrentError(gl, GL_STACK_UNDERFLOW);

    --stack.depth;
}
