// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

constant bool hasBaseColorMap [[ function_constant(0) ]];
constant bool hasNormalMap [[ function_constant(1) ]];
constant int lightCount [[ function_constant(2) ]];
constant float roughnessScale [[ function_constant(3) ]];
constant bool hasAnyMap = (hasBaseColorMap || hasNormalMap);
constant float roughness = is_function_constant_defined(roughnessScale) ? roughnessScale : 1.0;

struct In { float3 position [[attribute(0)]]; float2 uv [[attribute(1), function_constant(hasAnyMap)]]; };
struct Out { float4 position [[position]]; float2 uv [[function_constant(hasAnyMap)]]; float3 world; };

vertex Out specialised(In in [[stage_in]], constant float4x4 &mvp [[buffer(1)]])
{
    Out out;
    out.position = mvp * float4(in.position, 1);
    out.world = in.position;
    if (hasAnyMap) out.uv = in.uv;
    return out;
}

fragment float4 specialisedColor(Out in [[stage_in]], constant float4 *lights [[buffer(0)]],
                                 texture2d<float> baseColorMap [[texture(0), function_constant(hasBaseColorMap)]],
                                 texture2d<float> normalMap [[texture(1), function_constant(hasNormalMap)]])
{
    constexpr sampler s(address::repeat, filter::linear);
    float4 base = float4(0.5);
    if (hasBaseColorMap) base = baseColorMap.sample(s, in.uv);
    float3 n = float3(0, 0, 1);
    if (hasNormalMap) n = normalMap.sample(s, in.uv).xyz * 2 - 1;
    float sum = 0;
    for (int i = 0; i < lightCount; ++i) sum += saturate(dot(n, normalize(lights[i].xyz - in.world))) * roughness;
    return base * sum;
}
