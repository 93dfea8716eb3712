// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

#define MAX_BONES 4
struct SkinnedIn
{
    float3 position [[attribute(0)]];
    float3 normal [[attribute(1)]];
    float2 uv [[attribute(2)]];
    ushort4 joints [[attribute(3)]];
    float4 weights [[attribute(4)]];
};
struct SkinnedOut { float4 position [[position]]; float3 normal; float2 uv; };
vertex SkinnedOut skinned(SkinnedIn in [[stage_in]], constant float4x4 *palette [[buffer(5)]], constant float4x4 &vp [[buffer(6)]])
{
    float4x4 skin = palette[in.joints[0]] * in.weights[0];
    for (int i = 1; i < MAX_BONES; ++i) skin += in.weights[i] * palette[in.joints[i]];
    float3x3 turn(skin[0].xyz, skin[1].xyz, skin[2].xyz);
    SkinnedOut out;
    out.position = vp * skin * float4(in.position, 1);
    out.normal = normalize(turn * in.normal);
    out.uv = in.uv;
    return out;
}
fragment float4 skin_color(SkinnedOut in [[stage_in]], texture2d<float> tex [[texture(0)]], bool front [[front_facing]])
{
    constexpr sampler s(s_address::repeat, t_address::mirrored_repeat, filter::linear);
    float3 n = front ? in.normal : -in.normal;
    return tex.sample(s, in.uv) * saturate(n.z * 0.5 + 0.5);
}
