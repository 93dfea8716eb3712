// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct ImageVertex { float2 position [[attribute(0)]]; float2 texCoord [[attribute(1)]]; };
struct ImageInOut { float4 position [[position]]; float2 texCoord; };
vertex ImageInOut captured_vertex(ImageVertex in [[stage_in]])
{
    ImageInOut out;
    out.position = float4(in.position, 0.0, 1.0);
    out.texCoord = in.texCoord;
    return out;
}
fragment float4 captured_fragment(ImageInOut in [[stage_in]], texture2d<float, access::sample> luma [[ texture(0) ]], texture2d<float, access::sample> chroma [[ texture(1) ]])
{
    constexpr sampler colorSampler(mip_filter::linear, mag_filter::linear, min_filter::linear);
    const float4x4 toRgb = float4x4(
        float4(+1.0000f, +1.0000f, +1.0000f, +0.0000f),
        float4(+0.0000f, -0.3441f, +1.7720f, +0.0000f),
        float4(+1.4020f, -0.7141f, +0.0000f, +0.0000f),
        float4(-0.7010f, +0.5291f, -0.8860f, +1.0000f)
    );
    float4 ycbcr = float4(luma.sample(colorSampler, in.texCoord).r, chroma.sample(colorSampler, in.texCoord).rg, 1.0);
    return toRgb * ycbcr;
}
