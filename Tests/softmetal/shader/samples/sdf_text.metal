// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct TextVertex { packed_float4 position; packed_float2 texCoords; };
struct TransformedText { float4 position [[position]]; float2 texCoords; };
vertex TransformedText text_vertex(constant TextVertex *vertices [[buffer(0)]], constant float4x4 *uniforms [[buffer(1)]], uint vid [[vertex_id]])
{
    TransformedText out;
    out.position = uniforms[0] * uniforms[1] * float4(vertices[vid].position);
    out.texCoords = vertices[vid].texCoords;
    return out;
}
fragment half4 text_fragment(TransformedText vert [[stage_in]], constant float4 &foreground [[buffer(0)]], sampler samplr [[sampler(0)]], texture2d<float, access::sample> texture [[texture(0)]])
{
    float4 color = foreground;
    float edgeDistance = 0.5;
    float dist = texture.sample(samplr, vert.texCoords).r;
    float edgeWidth = 0.75 * length(float2(dfdx(dist), dfdy(dist)));
    float opacity = smoothstep(edgeDistance - edgeWidth, edgeDistance + edgeWidth, dist);
    float outline = fwidth(dist) * 2;
    color.rgb = metal::mix(float3(0), color.rgb, step(edgeDistance - outline, dist));
    return half4(color.r, color.g, color.b, opacity);
}
