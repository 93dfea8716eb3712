// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Impostor { float4 position [[position]]; float2 corner; float radius [[flat]]; float3 eye [[flat]]; };
struct ImpostorResult { half4 color [[color(0)]]; float depth [[depth(any)]]; };
vertex Impostor impostor_vertex(uint vid [[vertex_id]], const device float4 *spheres [[buffer(0)]], constant float4x4 &projection [[buffer(1)]])
{
    Impostor out;
    float4 sphere = spheres[vid / 6];
    const uchar order[] = { 0, 1, 2, 2, 1, 3 };
    uchar c = order[vid % 6];
    out.corner = float2(c & 1, c >> 1) * 2 - 1;
    out.radius = sphere.w;
    out.eye = sphere.xyz;
    out.position = projection * float4(sphere.xyz + float3(out.corner * sphere.w, 0), 1);
    return out;
}
fragment ImpostorResult impostor_fragment(Impostor in [[stage_in]], constant float4x4 &projection [[buffer(1)]])
{
    float r2 = dot(in.corner, in.corner);
    if (r2 > 1) discard_fragment();
    float3 n = float3(in.corner, sqrt(1 - r2));
    float4 clip = projection * float4(in.eye + n * in.radius, 1);
    ImpostorResult result;
    result.color = half4(half3(n * 0.5 + 0.5), 1);
    result.depth = clip.z / clip.w;
    return result;
}
