// SPDX-License-Identifier: Apache-2.0
#include <simd/simd.h>

namespace {

/// Determinants of the 2x2 blocks of two rows, by column pair: 01, 02, 03, 12, 13, 23.
struct Minors
{
    float m01, m02, m03, m12, m13, m23;
};

Minors minors(const simd_float4x4& a, int row, int other)
{
    auto det = [&](int i, int j) { return a.columns[i][row] * a.columns[j][other] - a.columns[j][row] * a.columns[i][other]; };
    return {det(0, 1), det(0, 2), det(0, 3), det(1, 2), det(1, 3), det(2, 3)};
}

} // namespace

simd_float4x4 simd_matrix(simd_float4 column0, simd_float4 column1, simd_float4 column2, simd_float4 column3)
{
    return {{column0, column1, column2, column3}};
}

simd_float4x4 simd_mul(simd_float4x4 a, simd_float4x4 b)
{
    simd_float4x4 result;
    for (int c = 0; c < 4; ++c) {
        simd_float4 v = b.columns[c];
        result.columns[c] = a.columns[0] * v[0] + a.columns[1] * v[1] + a.columns[2] * v[2] + a.columns[3] * v[3];
    }
    return result;
}

simd_float4x4 simd_transpose(simd_float4x4 a)
{
    simd_float4x4 result;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r) result.columns[c][r] = a.columns[r][c];
    return result;
}

simd_float4x4 simd_inverse(simd_float4x4 a)
{
    Minors top = minors(a, 0, 1), low = minors(a, 2, 3);
    float determinant = top.m01 * low.m23 - top.m02 * low.m13 + top.m03 * low.m12 + top.m12 * low.m03 - top.m13 * low.m02 +
                        top.m23 * low.m01;
    float scale = 1.0f / determinant;
    auto at = [&](int r, int c) { return a.columns[c][r]; };
    auto row = [&](int r, const Minors& m, float sign, int c) {
        switch (c) {
        case 0: return sign * (at(r, 1) * m.m23 - at(r, 2) * m.m13 + at(r, 3) * m.m12);
        case 1: return -sign * (at(r, 0) * m.m23 - at(r, 2) * m.m03 + at(r, 3) * m.m02);
        case 2: return sign * (at(r, 0) * m.m13 - at(r, 1) * m.m03 + at(r, 3) * m.m01);
        default: return -sign * (at(r, 0) * m.m12 - at(r, 1) * m.m02 + at(r, 2) * m.m01);
        }
    };
    simd_float4x4 result;
    for (int r = 0; r < 4; ++r) {
        result.columns[0][r] = scale * row(1, low, 1, r);
        result.columns[1][r] = scale * row(0, low, -1, r);
        result.columns[2][r] = scale * row(3, top, 1, r);
        result.columns[3][r] = scale * row(2, top, -1, r);
    }
    return result;
}
