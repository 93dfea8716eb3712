// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct SkyOut { float4 position [[position]]; float3 direction; };

vertex SkyOut sky_vertex(uint vid [[vertex_id]], constant float4x4 &inverseViewProjection [[buffer(0)]])
{
    SkyOut out;
    float2 corner = float2((vid << 1) & 2, vid & 2);
    out.position = float4(corner * 2.0f - 1.0f, 1.0f, 1.0f);
    float4 far = inverseViewProjection * out.position;
    out.direction = far.xyz / far.w;
    return out;
}

fragment half4 sky_fragment(SkyOut in [[stage_in]], texturecube<half> sky [[texture(0)]], sampler smp [[sampler(0)]])
{
    float3 d = float3(in.direction.x, in.direction.y, -in.direction.z);
    return sky.sample(smp, d, bias(0.5f));
}
