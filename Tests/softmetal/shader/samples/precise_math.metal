// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

#include <metal_common>
#include <metal_relational>
#include <metal_integer>
#include <metal_matrix>
#include <metal_pack>
#include <metal_graphics>
#include <metal_atomic>
#include <metal_types>
struct Lattice { float4 position [[position]]; float4 a; half4 b; float2 c; };
float polynomial(thread const float *k, int n, float x)
{
    float r = k[n - 1];
    for (int i = n - 2; i >= 0; --i) r = fma(r, x, k[i]);
    return r;
}
void turn(thread float2 &v, float angle) { v = float2(v.x * cos(angle) - v.y * sin(angle), v.x * sin(angle) + v.y * cos(angle)); }
vertex Lattice math_vertex(constant float4 *p [[buffer(0)]], uint v [[vertex_id]])
{
    Lattice out;
    float k[] = { 1.0f, -0.5f, 0.25f, -0.125f };
    float4 q = p[v];
    out.position = float4(q.xyz, 1);
    out.a = float4(precise::sin(q.x), fast::exp2(q.y), polynomial(k, 4, q.z), rsqrt(max(q.w, FLT_EPSILON)));
    out.b = half4(sinpi(q.x), copysign(q.y, -1.0f), trunc(q.z), rint(q.w));
    out.c = q.xy;
    turn(out.c, M_PI_2_F);
    return out;
}
fragment float4 math_fragment(Lattice in [[stage_in]], constant float3x3 &m [[buffer(0)]])
{
    float3 p = transpose(m) * in.a.xyz;
    bool bad = any(isnan(p)) || any(isinf(p)) || !all(isfinite(p));
    uint packed = pack_float_to_unorm4x8(saturate(in.a));
    float4 back = unpack_unorm4x8_to_float(packed);
    float e = determinant(m) > 0 ? faceforward(p, in.a.xyz, p).x : distance_squared(p, in.a.xyz);
    int exponent;
    float mantissa = frexp(in.c.x, exponent);
    float3 median = median3(p, back.xyz, in.a.xyz);
    return bad ? float4(1, 0, 1, 1) : float4(median * ldexp(mantissa, exponent), e + length(in.c) + float(max3(in.b.x, in.b.y, in.b.z)));
}
