// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Clipped { float4 position [[position]]; float clip [[clip_distance]] [2]; float3 world; };
struct Seen { float4 position [[position]]; float3 world; };
vertex Clipped clip_vertex(const device packed_float3 *p [[buffer(0)]], constant float4x4 &m [[buffer(1)]], constant float4 *planes [[buffer(2)]], uint v [[vertex_id]])
{
    Clipped out;
    out.world = p[v];
    out.position = m * float4(out.world, 1);
    for (int i = 0; i < 2; ++i) out.clip[i] = dot(float4(out.world, 1), planes[i]);
    return out;
}
fragment float4 clip_fragment(Seen in [[stage_in]], uint primitive [[primitive_id]]) { return float4(fract(in.world), primitive % 2); }
