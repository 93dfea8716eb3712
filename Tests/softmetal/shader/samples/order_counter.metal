// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Fragments { atomic_uint count; };
struct Link { float4 color; float depth; uint next; };
vertex float4 list_vertex(constant packed_float4 *p [[buffer(0)]], uint v [[vertex_id]]) { return p[v]; }
[[early_fragment_tests]]
fragment void list_fragment(float4 position [[position]], device Fragments &fragments [[buffer(0)]], device Link *links [[buffer(1)]],
                            device atomic_uint *heads [[buffer(2)]], constant uint &width [[buffer(3)]])
{
    uint slot = atomic_fetch_add_explicit(&fragments.count, 1u, memory_order_relaxed);
    uint2 pixel = uint2(position.xy);
    uint before = atomic_exchange_explicit(&heads[pixel.y * width + pixel.x], slot, memory_order_relaxed);
    links[slot].color = float4(1);
    links[slot].depth = position.z;
    links[slot].next = before;
}
