// SPDX-License-Identifier: Apache-2.0
// Multiplication of the top of a matrix stack; matrices are sixteen numbers, column by column.
#pragma once

#include "ZALGLState.h"

/// top = top x matrix, in single precision.
void MatrixMultf(ZALGLState::MatrixStack& stack, const float* matrix);
/// The same with the matrix rounded to single precision first.
void MatrixMultd(ZALGLState::MatrixStack& stack, const double* matrix);
