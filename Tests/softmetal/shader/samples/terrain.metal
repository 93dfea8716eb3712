// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct TerrainOut { float4 position [[position]]; float3 normal; float height; float fog; };
static float3 normalFromHeight(texture2d<float> heights, sampler s, float2 uv, float texel)
{
    float l = heights.sample(s, uv - float2(texel, 0), level(0)).r;
    float r = heights.sample(s, uv + float2(texel, 0), level(0)).r;
    float d = heights.sample(s, uv - float2(0, texel), level(0)).r;
    float u = heights.sample(s, uv + float2(0, texel), level(0)).r;
    return normalize(float3(l - r, 2.0 * texel, d - u));
}
vertex TerrainOut terrain_vertex(uint vid [[vertex_id]], uint iid [[instance_id]], texture2d<float> heights [[texture(0)]], sampler s [[sampler(0)]],
                                 constant float4x4 &vp [[buffer(0)]], constant uint &side [[buffer(1)]])
{
    uint2 cell = uint2(vid % side, vid / side);
    float2 uv = float2(cell) / float(side - 1);
    float texel = 1.0f / heights.get_width();
    TerrainOut out;
    out.height = heights.sample(s, uv, level(0)).r;
    out.normal = normalFromHeight(heights, s, uv, texel);
    out.position = vp * float4(uv.x + iid, out.height, uv.y, 1);
    out.fog = exp2(-0.02 * out.position.w * out.position.w);
    return out;
}
fragment float4 terrain_fragment(TerrainOut in [[stage_in]], texture2d_array<float> layers [[texture(0)]], texture1d<float> ramp [[texture(1)]])
{
    constexpr sampler s(filter::linear, address::repeat, mip_filter::linear);
    uint count = layers.get_array_size();
    float at = saturate(in.height) * (count - 1);
    uint low = uint(at);
    float4 a = layers.sample(s, in.position.xy * 0.01, low), b = layers.sample(s, in.position.xy * 0.01, min(low + 1, count - 1));
    float4 ground = mix(a, b, fract(at)) * ramp.sample(s, in.height);
    return mix(float4(0.7, 0.8, 0.9, 1), ground * saturate(in.normal.y), in.fog);
}
