// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct QuadIn { float3 position [[attribute(0)]]; float2 uv [[attribute(1)]]; };
struct QuadOut { float4 position [[position]]; float2 uv; };
struct Transform { float4x4 modelViewProjection; float2 uvScale; float2 uvOffset; };

vertex QuadOut quad_vertex(QuadIn in [[stage_in]], constant Transform &transform [[buffer(2)]])
{
    QuadOut out;
    out.position = transform.modelViewProjection * float4(in.position, 1.0);
    out.uv = in.uv * transform.uvScale + transform.uvOffset;
    return out;
}

fragment half4 quad_fragment(QuadOut in [[stage_in]], texture2d<half> image [[texture(0)]])
{
    constexpr sampler smp(coord::normalized, address::clamp_to_edge, filter::linear, mip_filter::linear);
    half4 texel = image.sample(smp, in.uv);
    return half4(texel.rgb * texel.a, texel.a);
}
