// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Screen { float4 position [[position]]; float2 uv; };
struct SsaoParameters { float4x4 projection; float4x4 inverseProjection; packed_float3 kernelSamples[16]; float radius; float2 noiseScale; };
vertex Screen ssao_vertex(uint vid [[vertex_id]]) { Screen out = { float4(vid == 2 ? 3 : -1, vid == 1 ? 3 : -1, 0, 1), float2(vid == 2 ? 2 : 0, vid == 1 ? -1 : 1) }; return out; }
static float3 viewPosition(depth2d<float> depth, float2 uv, constant SsaoParameters &p)
{
    constexpr sampler point(coord::normalized, filter::nearest);
    float4 ndc = float4(uv.x * 2 - 1, 1 - uv.y * 2, depth.sample(point, uv), 1);
    float4 view = p.inverseProjection * ndc;
    return view.xyz / view.w;
}
fragment float ssao_fragment(Screen in [[stage_in]], depth2d<float, access::sample> depth [[texture(0)]], texture2d<half> normals [[texture(1)]],
                             texture2d<float> noise [[texture(2)]], constant SsaoParameters &p [[buffer(0)]])
{
    constexpr sampler repeat(address::repeat, filter::nearest);
    float3 origin = viewPosition(depth, in.uv, p);
    float3 normal = float3(normals.sample(repeat, in.uv).xyz) * 2 - 1;
    float3 random = noise.sample(repeat, in.uv * p.noiseScale).xyz * 2 - 1;
    float3 tangent = normalize(random - normal * dot(random, normal));
    float3x3 tbn = float3x3(tangent, cross(normal, tangent), normal);
    float occlusion = 0;
    for (int i = 0; i < 16; ++i) {
        float3 s = origin + tbn * float3(p.kernelSamples[i]) * p.radius;
        float4 offset = p.projection * float4(s, 1);
        offset.xyz /= offset.w;
        float z = viewPosition(depth, offset.xy * float2(0.5, -0.5) + 0.5, p).z;
        float range = abs(origin.z - z) < p.radius ? 1 : 0;
        occlusion += (z >= s.z ? 1 : 0) * range;
    }
    return 1.0 - occlusion / 16;
}
