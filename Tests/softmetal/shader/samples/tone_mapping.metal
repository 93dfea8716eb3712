// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

namespace tone {
static inline float luminance(float3 c) { return dot(c, float3(0.2126, 0.7152, 0.0722)); }
template <typename T> T reinhard(T x) { return x / (T(1) + x); }
float3 filmic(float3 x)
{
    const float a = 2.51f, b = 0.03f, c = 2.43f, d = 0.59f, e = 0.14f;
    return clamp((x * (a * x + b)) / (x * (c * x + d) + e), 0.0f, 1.0f);
}
float3 encode(float3 linear)
{
    float3 low = linear * 12.92f;
    float3 high = 1.055f * powr(linear, float3(1 / 2.4f)) - 0.055f;
    return select(high, low, linear <= 0.0031308f);
}
}
struct Screen { float4 position [[position]]; float2 uv [[user(texturecoord)]]; };
vertex Screen tone_vertex(ushort vid [[vertex_id]])
{
    Screen out;
    out.uv = float2(vid / 2 * 2.0, vid % 2 * 2.0);
    out.position = float4(out.uv * float2(2, -2) + float2(-1, 1), 0, 1);
    return out;
}
fragment float4 tone_fragment(Screen in [[stage_in]], texture2d<float> hdr [[texture(0)]], texture2d<float> average [[texture(1)]], constant int &mode [[buffer(0)]])
{
    constexpr sampler nearest(filter::nearest);
    float3 color = hdr.sample(nearest, in.uv).rgb;
    float key = average.sample(nearest, float2(0.5), level(10)).r;
    color *= 0.18 / max(key, 1e-4);
    switch (mode) {
    case 0: color = tone::reinhard(color); break;
    case 1: color = tone::filmic(color); break;
    default: color = float3(tone::reinhard(tone::luminance(color))); break;
    }
    return float4(tone::encode(color), 1);
}
