// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Out { float4 position [[position]]; };
vertex Out voxel_vertex(constant float4 *p [[buffer(0)]], uint v [[vertex_id]]) { Out o; o.position = p[v]; return o; }
fragment void voxel_fragment(Out in [[stage_in]], texture2d<float, access::write> image [[texture(0)]], texture3d<half, access::write> grid [[texture(1)]], texture2d<uint, access::read_write> counts [[texture(2)]])
{
    uint2 at = uint2(in.position.xy);
    image.write(float4(in.position.z), at);
    grid.write(half4(1), uint3(at, uint(in.position.z * grid.get_depth())));
    counts.write(counts.read(at) + 1, at);
}
