// SPDX-License-Identifier: Apache-2.0
#include <simd/simd.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

void expectNear(simd_float4x4 a, simd_float4x4 b, float tolerance)
{
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            EXPECT_NEAR(a.columns[c][r], b.columns[c][r], tolerance) << "column " << c << ", row " << r;
}

void expectSame(simd_float4x4 a, simd_float4x4 b) { expectNear(a, b, 0); }

/// Each element is its column and row: 10 column + row.
simd_float4x4 positions()
{
    simd_float4x4 result;
    for (int c = 0; c < 4; ++c)
        for (int r = 0; r < 4; ++r)
            result.columns[c][r] = static_cast<float>(10 * c + r);
    return result;
}

/// A determinant by the definition, in double precision.
double determinantOf(const simd_float4x4& m)
{
    double sum = 0;
    for (int a = 0; a < 4; ++a)
        for (int b = 0; b < 4; ++b)
            for (int c = 0; c < 4; ++c) {
                int d = 6 - a - b - c;
                if (a == b || a == c || b == c || d < 0 || d > 3 || d == a || d == b || d == c) continue;
                int order[] = {a, b, c, d}, swaps = 0;
                for (int i = 0; i < 4; ++i)
                    for (int j = i + 1; j < 4; ++j)
                        swaps += order[i] > order[j];
                double product = 1;
                for (int row = 0; row < 4; ++row)
                    product *= static_cast<double>(m.columns[order[row]][row]);
                sum += swaps % 2 ? -product : product;
            }
    return sum;
}

TEST(Simd, VectorsAreAlignedAndLaidOutAsFourFloats)
{
    static_assert(alignof(simd_float4) == 16 && sizeof(simd_float4) == 16 && sizeof(simd_float4x4) == 64);
    simd_float4x4 m = positions();
    const float* elements = reinterpret_cast<const float*>(&m);
    EXPECT_EQ(elements[4 * 2 + 3], 23);
}

TEST(Simd, TransposeSwapsColumnsAndRows)
{
    simd_float4x4 t = simd_transpose(positions());
    EXPECT_EQ(t.columns[1][3], 31);
    expectSame(simd_transpose(t), positions());
}

TEST(Simd, MatrixFromColumnsAndFromRowsAreTransposed)
{
    simd_float4x4 p = positions();
    expectSame(simd_matrix(p.columns[0], p.columns[1], p.columns[2], p.columns[3]), p);
    expectSame(simd_matrix_from_rows(p.columns[0], p.columns[1], p.columns[2], p.columns[3]), simd_transpose(p));
}

TEST(Simd, MultiplyingByTheIdentityChangesNothing)
{
    expectSame(simd_mul(positions(), matrix_identity_float4x4), positions());
    expectSame(simd_mul(matrix_identity_float4x4, positions()), positions());
}

TEST(Simd, MultiplicationAppliesTheRightMatrixFirst)
{
    simd_float4x4 move = matrix_identity_float4x4;
    move.columns[3] = simd_make_float4(1, 2, 3, 1);
    simd_float4x4 scale = simd_diagonal_matrix(simd_make_float4(10, 10, 10, 1));
    simd_float4 moved = simd_mul(simd_mul(scale, move), simd_make_float4(0, 0, 0, 1));
    EXPECT_EQ(moved[0], 10);
    EXPECT_EQ(moved[1], 20);
    EXPECT_EQ(moved[2], 30);
    EXPECT_EQ(moved[3], 1);
}

TEST(Simd, ARowTimesAMatrixIsItsTransposeTimesAColumn)
{
    simd_float4 v = simd_make_float4(1, 2, 3, 4);
    simd_float4 row = simd_mul(v, positions()), column = simd_mul(simd_transpose(positions()), v);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(row[i], column[i]);
    EXPECT_EQ(row[1], 10 + 2 * 11 + 3 * 12 + 4 * 13);
}

TEST(Simd, AFactorScalesEachElement) { EXPECT_EQ(simd_mul(2.0f, positions()).columns[3][2], 64); }

TEST(Simd, DotSumsTheProducts)
{
    EXPECT_EQ(simd_dot(simd_make_float4(1, 2, 3, 4), simd_make_float4(1, 10, 100, 1000)), 4321);
}

TEST(Simd, InverseOfPowersOfTwoIsExact)
{
    simd_float4x4 m = simd_diagonal_matrix(simd_make_float4(2, 4, 0.5f, -1));
    m.columns[3][0] = 8;
    simd_float4x4 inverse = simd_inverse(m);
    expectSame(simd_mul(m, inverse), matrix_identity_float4x4);
    EXPECT_EQ(inverse.columns[3][0], 4);
}

TEST(Simd, InverseUndoesRandomMatrices)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<float> element(-2, 2);
    int tried = 0;
    while (tried < 100) {
        simd_float4x4 m;
        for (int i = 0; i < 16; ++i)
            m.columns[i / 4][i % 4] = element(random);
        if (std::abs(determinantOf(m)) < 1) continue; // far from singular, so that the tolerance holds
        ++tried;
        expectNear(simd_mul(m, simd_inverse(m)), matrix_identity_float4x4, 1e-4f);
        EXPECT_NEAR(simd_determinant(m), determinantOf(m), 1e-4);
    }
}

TEST(Simd, InverseOfASingularMatrixIsNotFinite)
{
    simd_float4x4 flat = matrix_identity_float4x4, zero = simd_mul(0.0f, flat);
    flat.columns[2] = simd_make_float4(0, 0, 0, 0);
    EXPECT_FALSE(std::isfinite(simd_inverse(flat).columns[2][2]));
    for (int i = 0; i < 16; ++i)
        EXPECT_TRUE(std::isnan(simd_inverse(zero).columns[i / 4][i % 4]));
}

} // namespace
