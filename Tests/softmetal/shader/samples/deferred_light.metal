// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct PointLight { float3 color; float radius; float speed; };
struct LightOut { float4 position [[position]]; float3 eye; uint index [[flat]]; };
constant float2 corners[] = { float2(-1, -1), float2(-1, 1), float2(1, -1), float2(1, 1) };

vertex LightOut light_vertex(constant PointLight *lights [[buffer(0)]], constant float4 *places [[buffer(1)]], constant float4x4 &projection [[buffer(2)]],
                             uint iid [[instance_id]], uint vid [[vertex_id]])
{
    LightOut out;
    float3 eye = float3(corners[vid] * lights[iid].radius, 0) + places[iid].xyz;
    out.position = projection * float4(eye, 1);
    out.eye = eye;
    out.index = iid;
    return out;
}

fragment half4 light_fragment(LightOut in [[stage_in]], constant PointLight *lights [[buffer(0)]], constant float4 *places [[buffer(1)]],
                              texture2d<half, access::read> albedo [[texture(0)]], texture2d<half, access::read> normals [[texture(1)]],
                              texture2d<float, access::read> depths [[texture(2)]])
{
    uint2 pixel = uint2(in.position.xy);
    float depth = depths.read(pixel).x;
    half4 color = albedo.read(pixel);
    half4 normal = normals.read(pixel);
    float3 place = in.eye * (depth / in.eye.z);
    float distance = metal::distance(places[in.index].xyz, place);
    if (distance >= lights[in.index].radius) discard_fragment();
    float attenuation = 1.0 - (distance / lights[in.index].radius);
    attenuation *= attenuation;
    float3 to = normalize(places[in.index].xyz - place);
    half nDotL = half(fmax(dot(float3(normal.xyz), to), 0.0f));
    half3 result = half3(lights[in.index].color * attenuation) * nDotL * color.rgb;
    return half4(result, 1.0h);
}
