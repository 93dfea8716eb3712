// SPDX-License-Identifier: Apache-2.0
// The functions of the standard library against values computed here.
#include "Language.h"

namespace language_test {

using Functions = Language;

namespace {

float f(double value) { return static_cast<float>(value); }

} // namespace

TEST_F(Functions, ExponentsAndRoots)
{
    expectValues(
        {
            {"exp(v)", {f(std::exp(1.5)), f(std::exp(-2.25)), f(std::exp(3)), f(std::exp(0.5))}},
            {"exp2(v.xy)", {f(std::exp2(1.5)), f(std::exp2(-2.25))}},
            {"exp10(v.xy)", {f(std::pow(10, 1.5)), f(std::pow(10, -2.25))}},
            {"log(w.xy)", {f(std::log(0.25)), f(std::log(4))}},
            {"log2(w.xyw)", {-2, 2, 1}},
            {"log10(float2(100, x))", {2, f(std::log10(0.75))}},
            {"pow(v.xz, float2(2.5, -1))", {f(std::pow(1.5, 2.5)), f(1 / 3.0)}},
            {"powr(x, 3)", {0.421875f}},
            {"pow(-2.0, float(i.w - 2))", {-8}},
            {"sqrt(w.xy)", {0.5f, 2}},
            {"rsqrt(w.xy)", {2, 0.5f}},
            {"ldexp(x, 3)", {6}},
            {"log(float3(0, -1, 1))", {-Infinity, NotANumber, 0}},
            {"exp(float2(1000, -1000))", {Infinity, 0}},
            {"fast::exp2(x)", {f(std::exp2(0.75))}},
            {"precise::sqrt(x)", {f(std::sqrt(0.75))}},
            {"exp(half(1))", {2.71875f}},
        },
        {}, 1e-6f);
}

TEST_F(Functions, Trigonometry)
{
    expectValues(
        {
            {"sin(v)", {f(std::sin(1.5)), f(std::sin(-2.25)), f(std::sin(3)), f(std::sin(0.5))}},
            {"cos(v)", {f(std::cos(1.5)), f(std::cos(-2.25)), f(std::cos(3)), f(std::cos(0.5))}},
            {"tan(v.xy)", {f(std::tan(1.5)), f(std::tan(-2.25))}},
            {"asin(float2(x, -1))", {f(std::asin(0.75)), f(-M_PI / 2)}},
            {"acos(float2(x, -1))", {f(std::acos(0.75)), f(M_PI)}},
            {"atan(v)", {f(std::atan(1.5)), f(std::atan(-2.25)), f(std::atan(3)), f(std::atan(0.5))}},
            {"atan2(v.xy, w.zw)", {f(std::atan2(1.5, -1)), f(std::atan2(-2.25, 2))}},
            {"sinh(x)", {f(std::sinh(0.75))}},
            {"cosh(x)", {f(std::cosh(0.75))}},
            {"tanh(v.xy)", {f(std::tanh(1.5)), f(std::tanh(-2.25))}},
            {"asinh(x)", {f(std::asinh(0.75))}},
            {"acosh(v.x)", {f(std::acosh(1.5))}},
            {"atanh(x)", {f(std::atanh(0.75))}},
            {"sinpi(x)", {f(std::sin(M_PI * 0.75))}},
            {"cospi(x)", {f(std::cos(M_PI * 0.75))}},
            {"tanpi(w.x)", {1}},
            {"sin(float2(100, 1000))", {f(std::sin(100)), f(std::sin(1000))}},
            {"both(v.xy)", {f(std::sin(1.5)), f(std::sin(-2.25)), f(std::cos(1.5)), f(std::cos(-2.25))}},
            {"M_PI_F", {f(M_PI)}},
        },
        "float4 both(float2 a) { float2 c; float2 s = sincos(a, c); return float4(s, c); }\n", 2e-6f);
}

TEST_F(Functions, RoundingAndParts)
{
    expectValues(
        {
            {"floor(v)", {1, -3, 3, 0}},
            {"ceil(v)", {2, -2, 3, 1}},
            {"round(float4(1.5, -2.5, 2.4, 0.5))", {2, -3, 2, 1}},
            {"rint(float4(1.5, 2.5, -0.5, 3.7))", {2, 2, 0, 4}},
            {"trunc(v)", {1, -2, 3, 0}},
            {"fract(v)", {0.5f, 0.75f, 0, 0.5f}},
            {"fmod(v.xy, float2(1, 2))", {0.5f, -0.25f}},
            {"abs(v)", {1.5f, 2.25f, 3, 0.5f}},
            {"fabs(v.y)", {2.25f}},
            {"sign(float4(v.xy, 0, -0.0))", {1, -1, 0, 0}},
            {"copysign(x, v.y)", {-0.75f}},
            {"whole(v.y)", {-0.25f, -2}},
            {"parts(v.z)", {0.75f, 2}},
            {"ilogb(v.z)", {1}},
            {"nextafter(1.0f, 2.0f) - 1", {std::numeric_limits<float>::epsilon()}},
        },
        R"(
float2 whole(float a) { float w; float r = modf(a, w); return float2(r, w); }
float2 parts(float a) { int e; float m = frexp(a, e); return float2(m, e); }
)");
}

TEST_F(Functions, MinimaMixturesAndSteps)
{
    expectValues(
        {
            {"min(v, w)", {0.25f, -2.25f, -1, 0.5f}},
            {"max(v, w)", {1.5f, 4, 3, 2}},
            {"min(v, 1)", {1, -2.25f, 1, 0.5f}},
            {"max(v, 0.0)", {1.5f, 0, 3, 0.5f}},
            {"fmin(x, NAN)", {0.75f}},
            {"fmax(NAN, x)", {0.75f}},
            {"clamp(v, 0.0, 1.0)", {1, 0, 1, 0.5f}},
            {"clamp(v, float4(0), w)", {0.25f, 0, -1, 0.5f}},
            {"saturate(v)", {1, 0, 1, 0.5f}},
            {"saturate(NAN)", {0}},
            {"mix(v, w, 0.5)", {0.875f, 0.875f, 1, 1.25f}},
            {"mix(v, w, float4(0, 1, 0, 1))", {1.5f, 4, 3, 2}},
            {"step(0.6, v)", {1, 0, 1, 0}},
            {"step(w, v)", {1, 0, 1, 0}},
            {"smoothstep(0, 2, v)", {0.84375f, 0, 1, 0.15625f}},
            {"smoothstep(float2(0), float2(2), v.xy)", {0.84375f, 0}},
            {"fma(v, w, v)", {1.875f, -11.25f, 0, 1.5f}},
            {"fdim(v, w)", {1.25f, 0, 4, 0}},
            {"min3(v.x, v.y, v.z)", {-2.25f}},
            {"max3(v.x, v.y, v.z)", {3}},
            {"median3(v.x, v.y, v.z)", {1.5f}},
            {"clamp(h, 0.0h, 1.0h)", {1, 0, 1, 0.5f}},
            {"mix(h.xy, half2(0), 0.5h)", {0.75f, -1.125f}},
        });
}

TEST_F(Functions, Geometry)
{
    expectValues(
        {
            {"dot(v, w)", {-10.625f}},
            {"dot(v.xyz, w.xyz)", {-11.625f}},
            {"cross(v.xyz, w.xyz)", {2.25f - 12, 0.75f + 1.5f, 6.5625f}},
            {"length(float3(3, 4, 12))", {13}},
            {"length_squared(v.xy)", {7.3125f}},
            {"distance(v.xy, v.xy + float2(3, 4))", {5}},
            {"distance_squared(v.xy, v.xy + float2(3, 4))", {25}},
            {"normalize(float3(0, 3, 4))", {0, 0.6f, 0.8f}},
            {"faceforward(float3(0, 0, 1), float3(0, 0, 1), float3(0, 0, 1))", {0, 0, -1}},
            {"reflect(float2(1, -1), float2(0, 1))", {1, 1}},
            {"refract(float2(0, -1), float2(0, 1), 0.5)", {0, -1}},
            {"refract(normalize(float2(1, -0.1)), float2(0, 1), 1.5)", {0, 0}},
            {"normalize(half3(0, 3, 4)).y", {0.6f}},
        },
        {}, 1e-3f);
}

TEST_F(Functions, Relations)
{
    expectValues({
        {"isnan(float3(x, NAN, INFINITY))", {0, 1, 0}},
        {"isinf(float3(x, NAN, -INFINITY))", {0, 0, 1}},
        {"isfinite(float3(x, NAN, INFINITY))", {1, 0, 0}},
        {"isnormal(float2(x, 0))", {1, 0}},
        {"signbit(float3(1, -1, -0.0))", {0, 1, 1}},
        {"isordered(x, NAN)", {0}},
        {"isunordered(x, NAN)", {1}},
        {"select(v, w, v < w)", {1.5f, 4, 3, 2}},
        {"select(v, w, bool4(true, false, yes, false))", {0.25f, -2.25f, -1, 0.5f}},
        {"select(1.0f, 2.0f, yes)", {2}},
        {"select(i.xy, j.xy, bool2(false, true))", {7, 5}},
        {"all(bool3(true, yes, true))", {1}},
        {"any(bool3(false, !yes, false))", {0}},
        {"yes ? v : w", {1.5f, -2.25f, 3, 0.5f}},
    });
}

TEST_F(Functions, Integers)
{
    expectValues({
        {"abs(i)", {7, 3, 100, 5}},
        {"min(i, j)", {2, -3, -7, 3}},
        {"max(i, 4)", {7, 4, 100, 5}},
        {"clamp(i, 0, 10)", {7, 0, 10, 5}},
        {"absdiff(i, j)", {5, 8, 107, 2}},
        {"addsat(INT_MAX, i.x) == INT_MAX", {1}},
        {"subsat(3u, 5u)", {0}},
        {"hadd(i, j)", {4, 1, 46, 4}},
        {"rhadd(i, j)", {5, 1, 47, 4}},
        {"clz(u)", {31, 0, 8, 29}},
        {"ctz(u)", {0, 31, 0, 1}},
        {"popcount(u)", {1, 1, 16, 2}},
        {"reverse_bits(u.x)", {2147483648.0f}},
        {"rotate(u.yw, uint2(1))", {1, 12}},
        {"mulhi(0x80000000u, 6u)", {3}},
        {"mad24(i.x, j.x, 1)", {15}},
        {"mul24(i.x, j.y)", {35}},
        {"extract_bits(u.z, 16, 8)", {255}},
        {"extract_bits(i.y, 0, 4)", {-3}},
        {"insert_bits(0u, 5u, 4, 3)", {80}},
        {"min3(i.x, i.y, i.z)", {-3}},
        {"popcount(ushort(0xff))", {8}},
        {"clz(ushort(1))", {15}},
        {"ctz(uchar(0))", {8}},
        {"clz(short(-1))", {0}},
        {"rotate(uchar(0x81), uchar(1))", {3}},
        {"reverse_bits(uchar(1))", {128}},
        {"mulhi(short(16384), short(8))", {2}},
        {"mulhi(-2, 5)", {-1}},
        {"madsat(INT_MAX, i.x, 1) == INT_MAX", {1}},
        {"madsat(0xffffffffu, 0xffffffffu, 1u) == UINT_MAX", {1}},
        {"madhi(0x80000000u, 6u, 1u)", {4}},
    });
}

TEST_F(Functions, PackingRoundTrips)
{
    expectValues(
        {
            {"pack_float_to_unorm4x8(float4(0, 1, 0.5, 0)) == 0x80ff00u", {1}},
            {"unpack_unorm4x8_to_float(0x80ff00u)", {0, 1, 128 / 255.0f, 0}},
            {"unpack_snorm4x8_to_float(pack_float_to_snorm4x8(float4(-1, 1, 0, 0.5)))", {-1, 1, 0, 64 / 127.0f}},
            {"unpack_unorm2x16_to_float(pack_float_to_unorm2x16(float2(0.25, 1)))", {0.25f, 1}},
            {"unpack_snorm2x16_to_float(pack_float_to_snorm2x16(float2(-1, 0.5)))", {-1, 0.5f}},
            {"unpack_unorm10a2_to_float(pack_float_to_unorm10a2(float4(1, 0, 0.5, 1)))", {1, 0, 0.5f, 1}},
            {"unpack_unorm565_to_float(ushort(0xf800))", {1, 0, 0}},
        },
        {}, 1e-3f);
}

TEST_F(Functions, AreTheSameInTheVertexStage)
{
    const std::string source = std::string(Numbers) + R"(
struct Result { float4 position [[position]]; float4 value [[flat]]; };
vertex Result computed(uint id [[vertex_id]], constant Numbers& n [[buffer(3)]])
{
    Result r;
    r.position = float4(id == 1 ? 3 : -1, id == 2 ? 3 : -1, 0, 1);
    r.value = float4(sin(n.v.x), exp2(n.v.y), dot(n.v, n.w), float(popcount(n.u.z)));
    return r;
}
fragment float4 handed(Result r [[stage_in]]) { return r.value; }
)";
    NumbersRecord numbers;
    auto values = draw(pipelineOf(compiled(source), "computed", "handed"), 1, 1, [&](auto* e) { e->setVertexBytes(&numbers, sizeof numbers, 3); });
    const Value expected = {f(std::sin(1.5)), f(std::exp2(-2.25)), -10.625f, 16};
    for (size_t c = 0; c < 4; ++c) expectNear(values[0][c], expected[c], 1e-6f, "in the vertex stage", c);
}

} // namespace language_test
