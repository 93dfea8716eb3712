// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct GBuffer { half4 albedo [[color(0)]]; half4 normal [[color(1)]]; float depth [[color(2)]]; uint object [[color(3)]]; };
struct Geometry { float4 position [[position]]; float2 uv; half3 tangent; half3 bitangent; half3 normal; float3 eye; };
struct Attributes
{
    float3 position [[attribute(0)]];
    float2 uv [[attribute(1)]];
    half3 normal [[attribute(2)]];
    half3 tangent [[attribute(3)]];
    half3 bitangent [[attribute(4)]];
};

vertex Geometry geometry(Attributes in [[stage_in]], constant float4x4 *matrices [[buffer(5)]])
{
    Geometry out;
    float4 eye = matrices[0] * float4(in.position, 1);
    out.position = matrices[1] * eye;
    out.uv = in.uv;
    out.tangent = in.tangent;
    out.bitangent = -in.bitangent;
    out.normal = in.normal;
    out.eye = eye.xyz;
    return out;
}

fragment GBuffer fill(Geometry in [[stage_in]], constant uint &object [[buffer(0)]], texture2d<half> base [[texture(0)]],
                      texture2d<half> normals [[texture(1)]], texture2d<half> specular [[texture(2)]])
{
    constexpr sampler linearSampler(mip_filter::linear, mag_filter::linear, min_filter::linear, address::repeat, max_anisotropy(8));
    half4 baseSample = base.sample(linearSampler, in.uv.xy);
    half3 tangentNormal = normals.sample(linearSampler, in.uv.xy).xyz * 2.0h - 1.0h;
    half3x3 frame(normalize(in.tangent), normalize(in.bitangent), normalize(in.normal));
    GBuffer out;
    out.albedo = half4(baseSample.rgb, specular.sample(linearSampler, in.uv.xy).r);
    out.normal = half4(normalize(frame * tangentNormal), 0.0h);
    out.depth = length(in.eye);
    out.object = object;
    return out;
}
