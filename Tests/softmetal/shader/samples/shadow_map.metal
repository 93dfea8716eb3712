// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Frame { float4x4 viewProjection; float4x4 shadowMatrix; float3 sun; float shadowBias; };
struct VIn { float3 position [[attribute(0)]]; half3 normal [[attribute(1)]]; };
struct VOut { float4 position [[position]]; float3 shadowCoord; half3 normal [[center_no_perspective]]; };

vertex float4 depth_only(const device packed_float3 *positions [[buffer(0)]], constant float4x4 &m [[buffer(1)]], uint v [[vertex_id]])
{
    return m * float4(float3(positions[v]), 1);
}

vertex VOut shadowed(VIn in [[stage_in]], constant Frame &frame [[buffer(3)]])
{
    VOut out;
    float4 world(in.position, 1);
    out.position = frame.viewProjection * world;
    float4 s = frame.shadowMatrix * world;
    out.shadowCoord = s.xyz / s.w;
    out.normal = in.normal;
    return out;
}

fragment float4 shade(VOut in [[stage_in]], constant Frame &frame [[buffer(3)]], depth2d<float> shadowMap [[texture(0)]])
{
    constexpr sampler shadowSampler(coord::normalized, filter::linear, mip_filter::none, address::clamp_to_edge, compare_func::less);
    float lit = 0;
    const int size = 2;
    for (int y = -1; y < size; y++)
        for (int x = -1; x < size; x++)
            lit += shadowMap.sample_compare(shadowSampler, in.shadowCoord.xy, in.shadowCoord.z - frame.shadowBias, int2(x, y));
    lit /= 9;
    return float4(float3(lit * saturate(dot(float3(in.normal), frame.sun))), 1);
}
