// SPDX-License-Identifier: Apache-2.0
#include <simd/simd.h>

namespace {

/// Determinants of the 2x2 blocks of two rows, by column pair.
struct Minors
{
    float m01, m02, m03, m12, m13, m23;
};

Minors minors(const simd_float4x4& a, int row, int other)
{
    auto det = [&](int i, int j) {
        return a.columns[i][row] * a.columns[j][other] - a.columns[j][row] * a.columns[i][other];
    };
    return {det(0, 1), det(0, 2), det(0, 3), det(1, 2), det(1, 3), det(2, 3)};
}

float determinant(const Minors& top, const Minors& low)
{
    return top.m01 * low.m23 - top.m02 * low.m13 + top.m03 * low.m12 + top.m12 * low.m03 - top.m13 * low.m02 +
           top.m23 * low.m01;
}

/// Determinants of the 3x3 blocks made of a row (r0 to r3) and two others (their minors), without the first, second, third
/// and fourth column, with alternating signs.
simd_float4 cofactors(const simd_float4x4& a, int row, const Minors& m)
{
    float r0 = a.columns[0][row], r1 = a.columns[1][row], r2 = a.columns[2][row], r3 = a.columns[3][row];
    return simd_make_float4(r1 * m.m23 - r2 * m.m13 + r3 * m.m12, -(r0 * m.m23 - r2 * m.m03 + r3 * m.m02),
                            r0 * m.m13 - r1 * m.m03 + r3 * m.m01, -(r0 * m.m12 - r1 * m.m02 + r2 * m.m01));
}

} // namespace

const simd_float4x4 matrix_identity_float4x4 = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}}};

float simd_dot(simd_float4 a, simd_float4 b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3]; }

simd_float4x4 simd_matrix(simd_float4 column0, simd_float4 column1, simd_float4 column2, simd_float4 column3)
{
    return {{column0, column1, column2, column3}};
}

simd_float4x4 simd_matrix_from_rows(simd_float4 row0, simd_float4 row1, simd_float4 row2, simd_float4 row3)
{
    return simd_transpose(simd_matrix(row0, row1, row2, row3));
}

simd_float4x4 simd_diagonal_matrix(simd_float4 d)
{
    return simd_matrix(simd_make_float4(d[0], 0, 0, 0), simd_make_float4(0, d[1], 0, 0), simd_make_float4(0, 0, d[2], 0),
                       simd_make_float4(0, 0, 0, d[3]));
}

simd_float4x4 simd_mul(float a, simd_float4x4 b)
{
    for (simd_float4& column : b.columns)
        column = a * column;
    return b;
}

simd_float4 simd_mul(simd_float4x4 a, simd_float4 b)
{
    return a.columns[0] * b[0] + a.columns[1] * b[1] + a.columns[2] * b[2] + a.columns[3] * b[3];
}

simd_float4 simd_mul(simd_float4 a, simd_float4x4 b)
{
    return simd_make_float4(simd_dot(a, b.columns[0]), simd_dot(a, b.columns[1]), simd_dot(a, b.columns[2]),
                            simd_dot(a, b.columns[3]));
}

simd_float4x4 simd_mul(simd_float4x4 a, simd_float4x4 b)
{
    for (simd_float4& column : b.columns)
        column = simd_mul(a, column);
    return b;
}

simd_float4x4 simd_transpose(simd_float4x4 a)
{
    simd_float4x4 result;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            result.columns[c][r] = a.columns[r][c];
    return result;
}

float simd_determinant(simd_float4x4 a) { return determinant(minors(a, 0, 1), minors(a, 2, 3)); }

simd_float4x4 simd_inverse(simd_float4x4 a)
{
    Minors top = minors(a, 0, 1), low = minors(a, 2, 3);
    float scale = 1.0f / determinant(top, low);
    return simd_mul(scale, simd_matrix(cofactors(a, 1, low), -cofactors(a, 0, low), cofactors(a, 3, top),
                                       -cofactors(a, 2, top)));
}
