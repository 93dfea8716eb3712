/* SPDX-License-Identifier: Apache-2.0
 * Stand-in for Apple's header: four-component vectors and their matrices. */
#pragma once
typedef __attribute__((__ext_vector_type__(4))) float simd_float4;
typedef struct
{
    simd_float4 columns[4];
} simd_float4x4;
#ifdef __cplusplus
simd_float4x4 simd_mul(simd_float4x4 a, simd_float4x4 b);
simd_float4x4 simd_mul(float a, simd_float4x4 b);
simd_float4 simd_mul(simd_float4x4 a, simd_float4 b);
simd_float4 simd_mul(simd_float4 a, simd_float4x4 b);
simd_float4x4 simd_matrix(simd_float4 a, simd_float4 b, simd_float4 c, simd_float4 d);
simd_float4x4 simd_transpose(simd_float4x4 a);
simd_float4x4 simd_inverse(simd_float4x4 a);
extern "C" const simd_float4x4 matrix_identity_float4x4;
#endif
