// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

#include <metal_geometric>
struct Wave { float2 direction; float amplitude, frequency, speed; };
constant Wave waves[3] = { { { 1, 0 }, 0.1, 2.0, 1.0 }, { { 0.7, 0.7 }, 0.05, 4.0, 1.3 }, { { 0, 1 }, 0.02, 9.0, 2.1 } };
struct WaterOut { float4 position [[position]]; float4 reflectionCoord; float3 normal; float3 toEye; };
vertex WaterOut water_vertex(constant float4x4 &vp [[buffer(0)]], constant float3 &eye [[buffer(1)]], constant float &t [[buffer(2)]], const device float2 *grid [[buffer(3)]], uint v [[vertex_id]])
{
    float2 p = grid[v];
    float h = 0;
    float2 slope = 0;
    for (auto i = 0; i < 3; ++i) {
        constant Wave &w = waves[i];
        float phase = dot(p, w.direction) * w.frequency + t * w.speed;
        h += w.amplitude * sin(phase);
        slope += w.direction * (w.frequency * w.amplitude * cos(phase));
    }
    WaterOut out;
    out.position = vp * float4(p.x, h, p.y, 1);
    out.reflectionCoord = out.position;
    out.normal = normalize(float3(-slope.x, 1, -slope.y));
    out.toEye = eye - float3(p.x, h, p.y);
    return out;
}
fragment float4 water_fragment(WaterOut in [[stage_in]], texture2d<float> reflection [[texture(0)]], texture2d<float> refraction [[texture(1)]], texturecube<float> sky [[texture(2)]])
{
    constexpr sampler s(address::clamp_to_edge, filter::linear);
    float2 uv = in.reflectionCoord.xy / in.reflectionCoord.w * float2(0.5, -0.5) + 0.5;
    uv += in.normal.xz * 0.02;
    float3 eye = normalize(in.toEye);
    float fresnel = mix(0.02, 1.0, pow(1 - saturate(dot(eye, in.normal)), 5));
    float3 bent = refract(-eye, in.normal, 1.0 / 1.33);
    float4 below = refraction.sample(s, uv + bent.xz * 0.05), above = reflection.sample(s, uv) + sky.sample(s, reflect(-eye, in.normal)) * 0.1;
    return mix(below, above, fresnel);
}
