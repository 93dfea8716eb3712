// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Covered { float4 position [[position]]; float4 color [[centroid_perspective]]; float edge [[sample_no_perspective]]; };
struct CoveredResult { float4 color [[color(0)]]; uint mask [[sample_mask]]; };
vertex Covered cover_vertex(constant float4 *p [[buffer(0)]], uint v [[vertex_id]])
{
    Covered out;
    out.position = p[v * 2];
    out.color = p[v * 2 + 1];
    out.edge = v;
    return out;
}
fragment CoveredResult cover_fragment(Covered in [[stage_in]], uint sample [[sample_id]])
{
    CoveredResult result;
    result.color = in.color * (in.edge + sample);
    result.mask = in.edge > 1 ? 0x3 : 0xf;
    return result;
}
fragment float4 resolve_fragment(float4 at [[position]], texture2d_ms<float> source [[texture(0)]])
{
    float4 sum = 0;
    uint2 pixel = uint2(at.xy);
    for (uint i = 0; i < source.get_num_samples(); ++i) sum += source.read(pixel, i);
    return sum / source.get_num_samples();
}
