// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Ids { uint4 id [[color(0)]]; int2 motion [[color(1)]]; ushort mask [[color(2)]]; };
struct IdOut { float4 position [[position]]; uint id [[flat]]; short2 motion [[flat]]; };
vertex IdOut id_vertex(constant float4 *p [[buffer(0)]], device const uint *ids [[buffer(1)]], uint v [[vertex_id]])
{
    IdOut out;
    out.position = p[v];
    out.id = ids[v] << 8 | (popcount(ids[v]) & 0xff);
    out.motion = short2(short(v) - 4, 4 - short(v));
    return out;
}
fragment Ids id_fragment(IdOut in [[stage_in]], texture2d<uint> previous [[texture(0)]], texture2d<int, access::read> motions [[texture(1)]])
{
    ushort2 at = ushort2(in.position.xy);
    Ids result;
    uint4 old = previous.read(at);
    result.id = uint4(in.id, old.x, clz(old.y), reverse_bits(old.z));
    result.motion = int2(in.motion) + motions.read(uint2(at)).xy;
    result.mask = ushort(max3(old.x, old.y, old.z) & 0xffffu);
    return result;
}
