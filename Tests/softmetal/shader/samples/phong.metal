// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Light { float3 direction; float3 ambientColor; float3 diffuseColor; float3 specularColor; };
constant Light light = { float3(0.13, 0.72, 0.68), float3(0.05), float3(0.9), float3(1) };
struct Material { float3 ambient, diffuse, specular; float power; };
constant Material material = { float3(0.9, 0.1, 0), float3(0.9, 0.1, 0), float3(1), 100 };
struct Uniforms { float4x4 mvp; float4x4 modelView; float3x3 normalMatrix; };
struct Vertex { float4 position; float4 normal; };
struct Projected { float4 position [[position]]; float3 eye; float3 normal; };

vertex Projected vertex_project(device Vertex *vertices [[buffer(0)]], constant Uniforms &uniforms [[buffer(1)]], uint vid [[vertex_id]])
{
    Projected out;
    out.position = uniforms.mvp * vertices[vid].position;
    out.eye = -(uniforms.modelView * vertices[vid].position).xyz;
    out.normal = uniforms.normalMatrix * vertices[vid].normal.xyz;
    return out;
}

fragment float4 fragment_light(Projected vert [[stage_in]], constant Uniforms &uniforms [[buffer(0)]])
{
    float3 ambient = light.ambientColor * material.ambient;
    float3 normal = normalize(vert.normal);
    float diffuse = saturate(dot(normal, light.direction));
    float3 specular(0);
    if (diffuse > 0) {
        float3 eye = normalize(vert.eye);
        float3 halfway = normalize(light.direction + eye);
        float factor = pow(saturate(dot(normal, halfway)), material.power);
        specular = light.specularColor * material.specular * factor;
    }
    return float4(ambient + light.diffuseColor * material.diffuse * diffuse + specular, 1);
}
