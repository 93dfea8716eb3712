/* SPDX-License-Identifier: Apache-2.0
 * The part of the system's SIMD library that works on four-component single-precision vectors and 4x4 matrices. Usable
 * from C, where simd_mul multiplies matrices only. Sums are formed from left to right, without fused operations. */
#pragma once

typedef float simd_float4 __attribute__((vector_size(16)));

/* Column-major, as Metal and OpenGL store it. */
typedef struct
{
    simd_float4 columns[4];
} simd_float4x4;

#define SOFTMETAL_SIMD_API __attribute__((visibility("default")))

#if defined(__cplusplus)
extern "C" {
#endif

SOFTMETAL_SIMD_API extern const simd_float4x4 matrix_identity_float4x4;

static inline simd_float4 simd_make_float4(float x, float y, float z, float w)
{
    simd_float4 result = {x, y, z, w};
    return result;
}

SOFTMETAL_SIMD_API float simd_dot(simd_float4 a, simd_float4 b);
SOFTMETAL_SIMD_API simd_float4x4 simd_matrix(simd_float4 column0, simd_float4 column1, simd_float4 column2,
                                             simd_float4 column3);
SOFTMETAL_SIMD_API simd_float4x4 simd_matrix_from_rows(simd_float4 row0, simd_float4 row1, simd_float4 row2,
                                                       simd_float4 row3);
SOFTMETAL_SIMD_API simd_float4x4 simd_diagonal_matrix(simd_float4 diagonal);
SOFTMETAL_SIMD_API simd_float4x4 simd_mul(simd_float4x4 a, simd_float4x4 b);
SOFTMETAL_SIMD_API simd_float4x4 simd_transpose(simd_float4x4 a);
SOFTMETAL_SIMD_API float simd_determinant(simd_float4x4 a);
/* By cofactors; a singular matrix gives infinities or NaNs. */
SOFTMETAL_SIMD_API simd_float4x4 simd_inverse(simd_float4x4 a);

#if defined(__cplusplus)
}

SOFTMETAL_SIMD_API simd_float4x4 simd_mul(float a, simd_float4x4 b);
SOFTMETAL_SIMD_API simd_float4 simd_mul(simd_float4x4 a, simd_float4 b); // b is a column
SOFTMETAL_SIMD_API simd_float4 simd_mul(simd_float4 a, simd_float4x4 b); // a is a row
#endif
