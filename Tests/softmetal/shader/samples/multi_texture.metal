// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Out { float4 position [[position]]; float2 uv; ushort material [[flat]]; };
vertex Out many_vertex(constant float4 *vertices [[buffer(0)]], constant ushort *materials [[buffer(1)]], uint v [[vertex_id]])
{
    Out out { float4(vertices[v].xy, 0, 1), vertices[v].zw, materials[v / 3] };
    return out;
}
fragment float4 many_fragment(Out in [[stage_in]], array<texture2d<float>, 6> maps [[texture(0)]], array<sampler, 2> samplers [[sampler(0)]])
{
    float4 total = 0;
    for (uint i = 0; i < maps.size(); ++i) {
        if (i != in.material) continue;
        total += maps[i].sample(samplers[i % 2], in.uv, gradient2d(dfdx(in.uv), dfdy(in.uv)));
    }
    if (is_null_texture(maps[5])) total.a = 1;
    return total;
}
