// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace determinism
{

inline constexpr const char* Programs = R"(
#include <metal_stdlib>
using namespace metal;
struct Vertex { packed_float4 position; packed_float4 color; packed_float3 place; float size; };
struct Varying
{
    float4 position [[position]];
    float size [[point_size]];
    float4 color;
    float3 place;
    float number [[flat]];
};
vertex Varying scatter(uint id [[vertex_id]], uint instance [[instance_id]], constant Vertex* vertices [[buffer(0)]])
{
    Varying v;
    v.position = float4(vertices[id].position) + float4(0.03 * float(instance), -0.05 * float(instance), 0, 0);
    v.size = vertices[id].size;
    v.color = float4(vertices[id].color);
    v.place = float3(vertices[id].place);
    v.number = float(id % 7u);
    return v;
}
fragment float4 plain(Varying v [[stage_in]]) { return v.color; }
fragment float4 image(Varying v [[stage_in]], texture2d<float> t [[texture(0)]], sampler s [[sampler(0)]])
{
    return t.sample(s, v.place.xy * 3) * (0.5 + 0.5 * v.color);
}
fragment float4 volume(Varying v [[stage_in]], texture3d<float> t [[texture(0)]], sampler s [[sampler(0)]]) { return t.sample(s, v.place * 1.7); }
fragment float4 cube(Varying v [[stage_in]], texturecube<float> t [[texture(0)]], sampler s [[sampler(0)]]) { return t.sample(s, v.place - 0.5); }
fragment float4 functions(Varying v [[stage_in]])
{
    float3 p = v.place * 9 - 4;
    float a = sin(p.x) * cos(p.y) + exp(-p.z * p.z) + log(1.5 + abs(p.x)), b = pow(abs(p.y) + 0.1, 1.3) + atan2(p.y, p.x);
    return float4(fract(a), fract(b), sqrt(length(p)) * rsqrt(1 + dot(p, p)), tanh(p.z));
}
fragment float4 loops(Varying v [[stage_in]])
{
    float2 z = 0, c = v.place.xy * 3 - float2(2, 1.5);
    int steps = 0;
    while (steps < 40 && dot(z, z) < 4) {
        z = float2(z.x * z.x - z.y * z.y, 2 * z.x * z.y) + c;
        ++steps;
        if (v.number > 5 && (steps & 3) == 3) continue;
        c *= 0.999;
    }
    if (steps % 5 == 4) discard_fragment();
    return float4(float(steps) / 40, z.x, z.y, v.color.w);
}
struct Deep { float4 color [[color(0)]]; float depth [[depth(any)]]; };
fragment Deep deep(Varying v [[stage_in]]) { return {v.color, fract(v.place.x * 5 + v.place.y)}; }
struct Targets { float4 first [[color(0)]]; half4 second [[color(1)]]; float third [[color(2)]]; };
fragment Targets targets(Varying v [[stage_in]]) { return {v.color, half4(v.color.zwxy * 3), v.place.x - v.place.y}; }
fragment float4 points(Varying v [[stage_in]], float2 at [[point_coord]]) { return float4(at, v.color.zw); }
)";

} // namespace determinism
