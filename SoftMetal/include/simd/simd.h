/* SPDX-License-Identifier: Apache-2.0
 * The part of the system's SIMD library that works on 4x4 single-precision matrices. */
#pragma once

#if defined(__cplusplus)
extern "C" {
#endif

typedef float simd_float4 __attribute__((vector_size(16)));

/* Column-major, as Metal and OpenGL store it. */
typedef struct
{
    simd_float4 columns[4];
} simd_float4x4;

#define SOFTMETAL_SIMD_API __attribute__((visibility("default")))

SOFTMETAL_SIMD_API simd_float4x4 simd_matrix(simd_float4 column0, simd_float4 column1, simd_float4 column2, simd_float4 column3);
SOFTMETAL_SIMD_API simd_float4x4 simd_mul(simd_float4x4 a, simd_float4x4 b);
SOFTMETAL_SIMD_API simd_float4x4 simd_transpose(simd_float4x4 a);
/* By cofactors; a singular matrix gives infinities or NaNs. */
SOFTMETAL_SIMD_API simd_float4x4 simd_inverse(simd_float4x4 a);

#if defined(__cplusplus)
}
#endif
