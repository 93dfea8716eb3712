// SPDX-License-Identifier: Apache-2.0
// Matrix types: columns first, as Metal stores them.
#include "Language.h"

namespace language_test {

class Matrix : public Language
{
protected:
    static constexpr const char* Made = R"(
float2x2 two() { return float2x2(1, 2, 3, 4); }
float3x3 three(float4 v) { return float3x3(float3(2, 0, 1), float3(v.x, 1, 0), float3(0, 4, -1)); }
float4x4 four() { return float4x4(float4(1, 0, 0, 0), float4(0, 2, 0, 0), float4(0, 0, 4, 0), float4(5, 6, 7, 1)); }
float3x2 tall() { return float3x2(1, 2, 3, 4, 5, 6); }
)";
};

TEST_F(Matrix, IsMadeFromScalarsColumnsAndADiagonal)
{
    expectValues(
        {
            {"two()[0]", {1, 2}},
            {"two()[1][0]", {3}},
            {"float4x4(x)[2]", {0, 0, 0.75f, 0}},
            {"float4x4(2.0)[1]", {0, 2, 0, 0}},
            {"float2x2(v.xy, v.zw)[1]", {3, 0.5f}},
            {"float2x2(float2(1, 2), float2(3, 4))[0].yx", {2, 1}},
            {"tall()[2]", {5, 6}},
            {"four().columns[3]", {5, 6, 7, 1}},
            {"half2x2(two())[1]", {3, 4}},
            {"float3x3(1)[2][2]", {1}},
            {"matrix_float2x2(two())[0]", {1, 2}},
            {"float2x4(v, w)[1]", {0.25f, 4, -1, 2}},
        },
        Made);
}

TEST_F(Matrix, MultipliesVectorsAndMatrices)
{
    expectValues(
        {
            {"two() * v.xy", {-5.25f, -6}},
            {"v.xy * two()", {-3, -4.5f}},
            {"(two() * two())[0]", {7, 10}},
            {"(two() * two())[1]", {15, 22}},
            {"three(v) * float3(1, 2, 3)", {5, 14, -2}},
            {"float3(1, 2, 3) * three(v)", {5, 3.5f, 5}},
            {"four() * float4(1, 1, 1, 1)", {6, 8, 11, 1}},
            {"(four() * float4(v.xyz, 1)).xyz", {6.5f, 1.5f, 19}},
            {"tall() * float3(1, 1, 2)", {14, 18}},
            {"float2(1, -1) * tall()", {-1, -1, -1}},
            {"(two() * tall())[2]", {23, 34}},
            {"(half2x2(two()) * h.xy)", {-5.25f, -6}},
        },
        Made);
}

TEST_F(Matrix, AddsScalesAndCompares)
{
    expectValues(
        {
            {"(two() + two())[1]", {6, 8}},
            {"(two() - float2x2(1))[0]", {0, 2}},
            {"(two() * 2)[1]", {6, 8}},
            {"(0.5 * two())[1]", {1.5f, 2}},
            {"(-two())[0]", {-1, -2}},
            {"doubled(two())[1]", {6, 8}},
            {"squared(two())[1]", {15, 22}},
            {"two() == two()", {1}},
            {"two() != float2x2(1)", {1}},
        },
        std::string(Made) + "float2x2 doubled(float2x2 m) { m += m; return m; }\nfloat2x2 squared(float2x2 m) { m *= m; return m; }\n");
}

TEST_F(Matrix, TransposesAndHasADeterminant)
{
    expectValues(
        {
            {"transpose(two())[0]", {1, 3}},
            {"transpose(tall())[1]", {2, 4, 6}},
            {"transpose(four())[3]", {0, 0, 0, 1}},
            {"determinant(two())", {-2}},
            {"determinant(three(v))", {4}},
            {"determinant(four())", {8}},
        },
        Made);
}

TEST_F(Matrix, ElementsAreWritten)
{
    expectValues(
        {
            {"written(four(), i.w)[1]", {9, 9, 9, 9}},
            {"written(four(), i.w)[3]", {5, 6, -1, 1}},
            {"part(four())[2]", {0, 0, 4}},
            {"part(four()) * float3(1)", {1, 2, 4}},
        },
        std::string(Made) + R"(
float4x4 written(float4x4 m, int column) { m[column - 4] = float4(9); m[3].z = -1; return m; }
float3x3 part(float4x4 m) { return float3x3(m[0].xyz, m[1].xyz, m[2].xyz); }
)");
}

} // namespace language_test
