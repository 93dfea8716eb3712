// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct SliceOut { float4 position [[position]]; float3 coord; uint layer [[flat]]; };
vertex SliceOut slice_vertex(uint vid [[vertex_id]], uint layer [[instance_id]], constant uint &layers [[buffer(0)]])
{
    SliceOut out;
    float2 corner = float2(vid & 1, vid >> 1);
    out.position = float4(corner * 2 - 1, 0, 1);
    out.coord = float3(corner, (float(layer) + 0.5) / float(layers));
    out.layer = layer;
    return out;
}
fragment float4 slice_fragment(SliceOut in [[stage_in]], texture3d<float> volume [[texture(0)]], texture3d<ushort> labels [[texture(1)]])
{
    constexpr sampler s(filter::linear, address::clamp_to_zero);
    uint3 size(labels.get_width(), labels.get_height(), labels.get_depth());
    ushort label = labels.read(uint3(in.coord * float3(size))).x;
    float4 value = volume.sample(s, in.coord);
    return label > 0 ? value : value * 0.25;
}
