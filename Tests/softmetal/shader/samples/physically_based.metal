// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

#include <metal_math>
#include <metal_texture>

constexpr sampler linearSampler(mip_filter::linear, mag_filter::linear, min_filter::linear);
constexpr sampler mipSampler(address::clamp_to_edge, min_filter::linear, mag_filter::linear, mip_filter::linear);

struct LightingParameters
{
    float3 lightDir;
    float3 viewDir;
    float3 halfVector;
    float3 reflectedVector;
    float3 normal;
    float3 reflectedColor;
    float4 baseColor;
    float nDotl, nDotv, nDoth, lDoth, hDotl;
    float metalness, roughness;
};

inline float Fresnel(float dotProduct);
inline float sqr(float a);
float3 computeSpecular(LightingParameters parameters);
float Geometry(float Ndotv, float alphaG);
float Distribution(float NdotH, float roughness);

inline float Fresnel(float dotProduct) { return pow(clamp(1.0 - dotProduct, 0.0, 1.0), 5.0); }
inline float sqr(float a) { return a * a; }
float Geometry(float Ndotv, float alphaG)
{
    float a = alphaG * alphaG;
    float b = Ndotv * Ndotv;
    return (float)(1.0 / (Ndotv + sqrt(a + b - a * b)));
}
float Distribution(float NdotH, float roughness)
{
    if (roughness >= 1.0) return 1.0 / M_PI_F;
    float roughnessSqr = saturate(sqr(roughness));
    float d = (NdotH * roughnessSqr - NdotH) * NdotH + 1;
    return roughnessSqr / (M_PI_F * d * d);
}
float3 computeSpecular(LightingParameters p)
{
    float alpha = p.roughness * p.roughness;
    float3 f0 = mix(float3(0.04), p.baseColor.xyz, p.metalness);
    float3 F = f0 + (1 - f0) * Fresnel(p.lDoth);
    return Distribution(p.nDoth, alpha) * F * Geometry(p.nDotl, alpha) * Geometry(p.nDotv, alpha);
}

struct Varyings { float4 position [[position]]; float2 uv; float3 world; float3 normal; };
vertex Varyings pbrVertex(const device packed_float3 *p [[buffer(0)]], const device packed_float3 *n [[buffer(1)]], constant float4x4 &m [[buffer(2)]], uint v [[vertex_id]])
{
    Varyings out;
    out.world = p[v];
    out.normal = n[v];
    out.uv = out.world.xy;
    out.position = m * float4(out.world, 1);
    return out;
}

fragment float4 pbrFragment(Varyings in [[stage_in]], constant float3 &camera [[buffer(0)]], texture2d<float> baseColorMap [[texture(0)]],
                            texture2d<float> metallicMap [[texture(1)]], texture2d<float> roughnessMap [[texture(2)]], texturecube<float> irradianceMap [[texture(3)]])
{
    LightingParameters p;
    p.baseColor = baseColorMap.sample(linearSampler, in.uv);
    p.metalness = metallicMap.sample(linearSampler, in.uv).x;
    p.roughness = max(roughnessMap.sample(linearSampler, in.uv).x, 0.001f) * 0.8;
    p.normal = normalize(in.normal);
    p.viewDir = normalize(camera - in.world);
    p.reflectedVector = reflect(-p.viewDir, p.normal);
    uint8_t mipCount = irradianceMap.get_num_mip_levels();
    p.reflectedColor = irradianceMap.sample(mipSampler, p.reflectedVector, level(p.roughness * mipCount)).xyz;
    p.lightDir = normalize(float3(1, 2, 3));
    p.halfVector = normalize(p.lightDir + p.viewDir);
    p.nDotl = max(0.001f, saturate(dot(p.normal, p.lightDir)));
    p.nDotv = max(0.001f, saturate(dot(p.normal, p.viewDir)));
    p.nDoth = max(0.001f, saturate(dot(p.normal, p.halfVector)));
    p.lDoth = p.hDotl = max(0.001f, saturate(dot(p.lightDir, p.halfVector)));
    return float4(computeSpecular(p) + p.reflectedColor * p.baseColor.rgb, 1);
}
