// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

constant float weights[5] = { 0.227027, 0.1945946, 0.1216216, 0.054054, 0.016216 };
struct Screen { float4 position [[position]]; float2 uv; };
struct BlurParameters { float2 direction; float2 texelSize; };

vertex Screen screen_vertex(uint vid [[vertex_id]])
{
    const float2 positions[4] = { { -1, 1 }, { 1, 1 }, { -1, -1 }, { 1, -1 } };
    const float2 uvs[4] = { { 0, 0 }, { 1, 0 }, { 0, 1 }, { 1, 1 } };
    Screen out;
    out.position = float4(positions[vid], 0, 1);
    out.uv = uvs[vid];
    return out;
}

fragment float4 blur_fragment(Screen in [[stage_in]], texture2d<float, access::sample> source [[texture(0)]], sampler s [[sampler(0)]],
                              constant BlurParameters *parameters [[buffer(0)]])
{
    float4 sum = source.sample(s, in.uv) * weights[0];
    for (uint i = 1; i < sizeof(weights) / sizeof(weights[0]); i++) {
        float2 offset = parameters->direction * parameters->texelSize * float(i);
        sum += source.sample(s, in.uv + offset) * weights[i];
        sum += source.sample(s, in.uv - offset) * weights[i];
    }
    return sum;
}
