// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

typedef struct
{
    packed_float2 position;
    packed_float4 color;
} TriangleVertex;

typedef struct
{
    float4 clipSpacePosition [[position]];
    float4 color;
} RasterizerData;

vertex RasterizerData vertexShader(uint vertexID [[ vertex_id ]],
                                   const device TriangleVertex *vertices [[ buffer(0) ]],
                                   constant vector_uint2 *viewportSizePointer [[ buffer(1) ]])
{
    RasterizerData out;
    float2 pixel = vertices[vertexID].position;
    vector_float2 viewport = vector_float2(*viewportSizePointer);
    out.clipSpacePosition = vector_float4(0.0, 0.0, 0.0, 1.0);
    out.clipSpacePosition.xy = pixel / (viewport / 2.0);
    out.color = vertices[vertexID].color;
    return out;
}

fragment float4 fragmentShader(RasterizerData in [[stage_in]])
{
    return in.color;
}
