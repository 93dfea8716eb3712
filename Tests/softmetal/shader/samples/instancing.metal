// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct PerInstance { matrix_float4x4 model; matrix_float3x3 normal; vector_float4 tint; };
struct In { float3 position [[attribute(0)]]; float3 normal [[attribute(1)]]; };
struct Out { float4 position [[position]]; float3 normal; half4 tint [[flat]]; uint instance [[flat]]; };

vertex Out instanced(In in [[stage_in]], constant matrix_float4x4 &viewProjection [[buffer(1)]],
                     constant PerInstance *instances [[buffer(2)]], ushort iid [[instance_id]], uint base [[base_instance]])
{
    Out out;
    constant PerInstance &me = instances[iid - base];
    out.position = viewProjection * me.model * float4(in.position, 1.0f);
    out.normal = me.normal * in.normal;
    out.tint = half4(me.tint);
    out.instance = iid;
    return out;
}

fragment half4 lit(Out in [[stage_in]])
{
    half n = half(max(0.2f, dot(normalize(in.normal), normalize(float3(1, 1, 1)))));
    return half4(in.tint.rgb * n, in.instance % 2 == 0 ? 1.0h : 0.5h);
}
