// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Particle { float4 position; float4 velocity; float size; uchar4 color; };
struct PointOut { float4 position [[position]]; float size [[point_size]]; half4 color; float rotation [[flat]]; };

vertex PointOut particle_vertex(const device Particle *particles [[buffer(0)]], constant float4x4 &vp [[buffer(1)]], constant float &time [[buffer(2)]],
                                unsigned int vid [[vertex_id]])
{
    const device Particle &p = particles[vid];
    PointOut out;
    out.position = vp * (p.position + p.velocity * time);
    out.size = clamp(p.size / out.position.w, 1.0f, 64.0f);
    out.color = half4(p.color) / 255.0h;
    out.rotation = fract(time) * 2 * M_PI_F;
    return out;
}

fragment half4 particle_fragment(PointOut in [[stage_in]], float2 place [[point_coord]])
{
    float2 c = place - 0.5;
    float s, co;
    s = sincos(in.rotation, co);
    c = float2x2(float2(co, s), float2(-s, co)) * c;
    float d = length_squared(c);
    if (d > 0.25) discard_fragment();
    return in.color * half4(half3(1), half(smoothstep(0.25, 0.0, d)));
}
