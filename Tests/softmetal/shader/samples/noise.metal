// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

typedef metal::float2 vec2f;
float hash(float2 p) { return fract(sin(dot(p, float2(12.9898, 78.233))) * 43758.5453); }
uint wang(uint seed)
{
    seed = (seed ^ 61) ^ (seed >> 16);
    seed *= 9;
    seed = seed ^ (seed >> 4);
    seed *= 0x27d4eb2d;
    return seed ^ (seed >> 15);
}
float noise(vec2f p)
{
    float2 i = floor(p), f = fract(p);
    float2 u = f * f * (3.0 - 2.0 * f);
    float bottom = mix(hash(i + float2(0.0, 0.0)), hash(i + float2(1.0, 0.0)), u.x);
    float top = mix(hash(i + float2(0.0, 1.0)), hash(i + float2(1.0, 1.0)), u.x);
    return mix(bottom, top, u.y);
}
template <int octaves>
float fbm(float2 uv)
{
    float sum = 0, amp = 0.7;
    for (int i = 0; i < octaves; ++i) {
        sum += noise(uv) * amp;
        uv += uv * 1.2;
        amp *= 0.4;
    }
    return sum;
}
vertex float4 noise_vertex(constant float4 *corners [[buffer(0)]], uint v [[vertex_id]]) { return corners[v]; }
fragment float4 noise_fragment(float4 at [[position]], constant float2 &mouse [[buffer(0)]])
{
    float a = fbm<5>(at.xy * 0.05 + mouse);
    float b = as_type<float>((wang(uint(at.x) + uint(at.y) * 4096u) & 0x007FFFFFu) | 0x3F800000u) - 1.0f;
    float c = fbm<2>(at.yx);
    return float4(a, b, c, 1);
}
