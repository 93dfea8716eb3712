// SPDX-License-Identifier: Apache-2.0
// Vector types: constructors, swizzles, operators, conversions.
#include "Language.h"

namespace language_test {

using Vector = Language;

TEST_F(Vector, IsMadeFromScalarsVectorsAndBoth)
{
    expectValues({
        {"float4(x)", {0.75f, 0.75f, 0.75f, 0.75f}},
        {"float4(v.x, w.y, v.z, w.w)", {1.5f, 4, 3, 2}},
        {"float4(v.xy, w.xy)", {1.5f, -2.25f, 0.25f, 4}},
        {"float4(x, v.yz, 1)", {0.75f, -2.25f, 3, 1}},
        {"float4(v.xyz, 1)", {1.5f, -2.25f, 3, 1}},
        {"float4(1, v.xyz)", {1, 1.5f, -2.25f, 3}},
        {"float3(v.xy, 5)", {1.5f, -2.25f, 5}},
        {"float3(i.xyz)", {7, -3, 100}},
        {"float2(u.x, i.y)", {1, -3}},
        {"float4(1, 2u, 3.0h, true)", {1, 2, 3, 1}},
        {"float4{1, 2, 3, 4}", {1, 2, 3, 4}},
        {"vec<float, 3>(1, 2, 3)", {1, 2, 3}},
        {"vector_float2(v.xy)", {1.5f, -2.25f}},
        {"simd::float3(v.xyz)", {1.5f, -2.25f, 3}},
        {"simd_float2(3, 4)", {3, 4}},
        {"float2()", {0, 0}},
        {"float3(v)", {1.5f, -2.25f, 3}},
        {"float2(v)", {1.5f, -2.25f}},
        {"int2(v.xyz)", {1, -2}},
        {"half3(i)", {7, -3, 100}},
    });
}

TEST_F(Vector, SwizzlesReadAndRepeatComponents)
{
    expectValues({
        {"v.wzyx", {0.5f, 3, -2.25f, 1.5f}},
        {"v.xxyy", {1.5f, 1.5f, -2.25f, -2.25f}},
        {"v.rgb", {1.5f, -2.25f, 3}},
        {"v.abgr", {0.5f, 3, -2.25f, 1.5f}},
        {"v.xyz.zy.y", {-2.25f}},
        {"v.zzzz.x + v.a", {3.5f}},
        {"i.yx", {-3, 7}},
        {"(v < w).yx", {1, 0}},
        {"v[2]", {3}},
        {"v[i.x - 6]", {-2.25f}},
        {"(v + w).wx", {2.5f, 1.75f}},
    });
}

TEST_F(Vector, SwizzlesAreAssigned)
{
    expectValues(
        {
            {"assigned(v)", {3, -2.25f, 1.5f, 9}},
            {"added(v)", {2.5f, -2.25f, 5, 0.5f}},
            {"scaled(v)", {3, -4.5f, 6, 0.5f}},
            {"swapped(v)", {0.5f, 3, -2.25f, 1.5f}},
            {"indexed(v, i.x - 5)", {1.5f, -2.25f, 8, 0.5f}},
            {"incremented(i)", {8, -3, 99, 5}},
        },
        R"(
float4 assigned(float4 a) { float4 b = a; b.xz = a.zx; b.w = 9; return b; }
float4 added(float4 a) { a.xz += float2(1, 2); return a; }
float4 scaled(float4 a) { a.rgb *= 2; return a; }
float4 swapped(float4 a) { a = a.wzyx; return a; }
float4 indexed(float4 a, int at) { a[at] = 8; return a; }
int4 incremented(int4 a) { a.x++; --a.z; return a; }
)");
}

TEST_F(Vector, ArithmeticIsByComponentAndWidensScalars)
{
    expectValues({
        {"v + w", {1.75f, 1.75f, 2, 2.5f}},
        {"v - 1", {0.5f, -3.25f, 2, -0.5f}},
        {"2 * v", {3, -4.5f, 6, 1}},
        {"v * x", {1.125f, -1.6875f, 2.25f, 0.375f}},
        {"v / w", {6, -0.5625f, -3, 0.25f}},
        {"1 / w", {4, 0.25f, -1, 0.5f}},
        {"-v", {-1.5f, 2.25f, -3, -0.5f}},
        {"+v.xy", {1.5f, -2.25f}},
        {"i / j", {3, 0, -14, 1}},
        {"i % j", {1, -3, 2, 2}},
        {"i * 2 + j", {16, -1, 193, 13}},
        {"i & 3", {3, 1, 0, 1}},
        {"i | 8", {15, -3, 108, 13}},
        {"i ^ j", {5, -8, -99, 6}},
        {"~i", {-8, 2, -101, -6}},
        {"i << 1", {14, -6, 200, 10}},
        {"i >> j.xxxx", {1, -1, 25, 1}},
        {"u.xw << uint2(3, 1)", {8, 12}},
        {"u.yz >> 16u", {32768, 255}},
        {"uint2(3, 5) - 4u", {4294967295.0f, 1}},
    });
}

TEST_F(Vector, ComparisonsGiveVectorsOfBool)
{
    expectValues({
        {"v < w", {0, 1, 0, 1}},
        {"v >= w", {1, 0, 1, 0}},
        {"v == float4(1.5, 0, 3, 0)", {1, 0, 1, 0}},
        {"v != 3", {1, 1, 0, 1}},
        {"i > 5", {1, 0, 1, 0}},
        {"i <= j", {0, 1, 0, 0}},
        {"(v > 0) && (w > 0)", {1, 0, 0, 1}},
        {"(v > 0) || (w > 0)", {1, 1, 1, 1}},
        {"!(v > 0)", {0, 1, 0, 0}},
        {"all(v == v)", {1}},
        {"any(v == w)", {0}},
        {"any(bool2(false, yes))", {1}},
        {"bool3(1, 0, 2)", {1, 0, 1}},
        {"bool4(i)", {1, 1, 1, 1}},
        {"float3(bool3(yes, !yes, yes))", {1, 0, 1}},
    });
}

TEST_F(Vector, ConvertsBetweenComponentTypes)
{
    expectValues({
        {"int4(v)", {1, -2, 3, 0}},
        {"uint2(v.xz)", {1, 3}},
        {"float4(u)", {1, 2147483648.0f, 16711935, 6}},
        {"half4(v)", {1.5f, -2.25f, 3, 0.5f}},
        {"float2(half2(0.1, 65504))", {0.0999755859375f, 65504}},
        {"short2(i.xy)", {7, -3}},
        {"uchar2(int2(300, 5))", {44, 5}},
        {"char2(int2(200, -5))", {-56, -5}},
        {"ushort2(int2(-1, 65537))", {65535, 1}},
        {"int2(bool2(yes, false))", {1, 0}},
        {"as_type<uint2>(float2(1, -2))", {1065353216.0f, 3221225472.0f}},
        {"as_type<float>(0x40490fdbu)", {3.14159274f}},
        {"as_type<half2>(0x3c004000u)", {2, 1}},
        {"as_type<uchar4>(u.z)", {255, 0, 255, 0}},
        {"static_cast<int>(v.y)", {-2}},
        {"(int)v.x", {1}},
        {"(float3)i.xyz", {7, -3, 100}},
        {"long(i.x) * 10000000000l > 60000000000l", {1}},
    });
}

TEST_F(Vector, HalfRoundsAfterEachOperation)
{
    expectValues({
        {"h + h", {3, -4.5f, 6, 1}},
        {"half(1) / half(3)", {0.333251953125f}},
        {"half(2048) + half(1)", {2048}},
        {"h.x * 2", {3}},
        {"h * 0.5h", {0.75f, -1.125f, 1.5f, 0.25f}},
        {"half(65504) * half(2)", {Infinity}},
        {"1.0h + x", {1.75f}},
        {"HALF_MAX", {65504}},
        {"min(h.x, 1.0h)", {1}},
        {"dot(h.xy, h.xy)", {7.3125f}},
    });
}

TEST_F(Vector, PackedTypesHaveNoPadding)
{
    expectValues(
        {
            {"sizeof(packed_float3)", {12}},
            {"sizeof(float3)", {16}},
            {"alignof(float3)", {16}},
            {"sizeof(half3)", {8}},
            {"sizeof(packed_half3)", {6}},
            {"sizeof(packed_uchar3)", {3}},
            {"sizeof(Mixed)", {16}},
            {"float3(packed_float3(v.xyz)) + 1", {2.5f, -1.25f, 4}},
            {"packed(v.xyz) * 2", {3, -4.5f, 6}},
            {"packed(v.xyz)[1]", {-2.25f}},
            {"packed(v.xyz).z", {3}},
            {"packed(v.xyz).zx", {3, 1.5f}},
            {"normalize(packed(float3(0, 3, 4)))", {0, 0.6f, 0.8f}},
        },
        "struct Mixed { packed_float3 a; float b; };\npacked_float3 packed(float3 a) { packed_float3 b = a; return b; }\n", 1e-6f);
}

} // namespace language_test
