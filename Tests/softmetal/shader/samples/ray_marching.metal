// SPDX-License-Identifier: Apache-2.0
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;

struct Ray { float3 origin; float3 direction; Ray(float3 o, float3 d) { origin = o; direction = d; } };
struct Sphere { float3 center; float radius; Sphere(float3 c, float r) : center(c), radius(r) {} };
struct Plane { float y; Plane(float h) : y(h) {} };

float distanceTo(Ray ray, Sphere s) { return length(ray.origin - s.center) - s.radius; }
float distanceTo(Ray ray, Plane p) { return ray.origin.y - p.y; }
float combine(float a, float b) { return min(a, b); }
float scene(Ray r)
{
    Sphere ball(float3(2.0) * floor(r.origin / 4.0), 0.5);
    Ray repeated = Ray(fmod(abs(r.origin), 4.0) - 2.0, r.direction);
    return combine(distanceTo(repeated, Sphere(float3(0), 1.0)), combine(distanceTo(r, Plane(-1.0)), distanceTo(r, ball)));
}
float3 normalOf(Ray ray)
{
    float2 eps = float2(0.001, 0.0);
    float3 n = float3(scene(Ray(ray.origin + eps.xyy, ray.direction)) - scene(Ray(ray.origin - eps.xyy, ray.direction)),
                      scene(Ray(ray.origin + eps.yxy, ray.direction)) - scene(Ray(ray.origin - eps.yxy, ray.direction)),
                      scene(Ray(ray.origin + eps.yyx, ray.direction)) - scene(Ray(ray.origin - eps.yyx, ray.direction)));
    return normalize(n);
}
vertex float4 march_vertex(uint v [[vertex_id]]) { return float4(v == 1 ? 3 : -1, v == 2 ? 3 : -1, 0, 1); }
fragment float4 march_fragment(float4 position [[position]], constant float &time [[buffer(0)]], constant packed_float2 &size [[buffer(1)]])
{
    float2 uv = (position.xy / float2(size)) * 2.0 - 1.0;
    Ray ray(float3(0, 0, -3.5 + time), normalize(float3(uv, 1.0)));
    float3 color = float3(0.0);
    for (int i = 0; i < 100; i++) {
        float d = scene(ray);
        if (d < 0.001) {
            color = float3(max(0.0, dot(normalOf(ray), normalize(float3(5, 5, -5)))));
            break;
        }
        ray.origin += ray.direction * d;
    }
    return float4(color, 1.0);
}
