// SPDX-License-Identifier: Apache-2.0
// A fragment program that the host has written in Metal's shading language, beside a vertex program in assembly. What the
// text uses is declared in comments: here the texture of unit 0.
//   metalprogram [PICTURE.ppm]
#include "../Gl.h"
#include "../Picture.h"

#include <array>

namespace {

constexpr int Size = 192;

// The entry function, the varyings, and the slots of buffers and constants are the ones that translated programs have.
constexpr std::string_view RippleProgram = R"(#include <metal_stdlib>
// ZAL_USE_TEXTURE(0,ZAL_TEX_3D)
constant int samplerSlotIndexForUnit0 [[function_constant(1000)]];

struct Varyings {
  float4 position [[position]];
  float4 color;
  float4 texcoord0;
  float4 texcoord1;
  float4 texcoord2;
  float4 texcoord3;
  float4 texcoord4;
  float4 texcoord5;
  float4 texcoord6;
  float4 texcoord7;
};

struct Locals {
  float4 value[256];
};

fragment float4 ShaderFunc(Varyings in [[stage_in]], constant Locals& locals [[buffer(17)]],
                           metal::texture3d<float> image [[texture(0)]],
                           metal::sampler slot0 [[sampler(0)]], metal::sampler slot1 [[sampler(1)]])
{
  float2 from = in.texcoord0.xy - 0.5;
  float distance = metal::length(from), wave = metal::sin(distance * locals.value[0].x);
  float2 at = in.texcoord0.xy + from * wave * locals.value[0].y;
  float4 texel = samplerSlotIndexForUnit0 == 0 ? image.sample(slot0, float3(at, 0.5)) : image.sample(slot1, float3(at, 0.5));
  return float4(texel.rgb * (0.85 + 0.15 * wave), 1.0);
}
)";

/// Stripes, as a volume one texel deep: a declaration of a 2D texture means a volume to the library.
void loadStripes()
{
    constexpr int Count = 16;
    std::array<unsigned char, Count * Count * 4> pixels{};
    for (int i = 0; i < Count * Count; ++i) {
        bool light = i % Count / 2 % 2 == 0;
        unsigned char* p = pixels.data() + i * 4;
        p[0] = light ? 250 : 30;
        p[1] = light ? 245 : 90;
        p[2] = light ? 230 : 130;
        p[3] = 255;
    }
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_3D, name);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, Count, Count, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
}

} // namespace

int main(int argc, char** argv)
{
    using namespace example;
    ZALMetalContext* context = makeContext();
    loadStripes();
    drawInto(makeTarget(Size, Size));
    useQuad();
    glViewport(0, 0, Size, Size);
    loadProgram(GL_VERTEX_PROGRAM_ARB, QuadVertexProgram);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, RippleProgram, GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 0, 60, 0.12f, 0, 0);
    drawQuad();

    int failed = glGetError() != GL_NO_ERROR || writeFramebuffer(argc > 1 ? argv[1] : "metalprogram.ppm", Size, Size);
    ZALMetalContextDestroy(context);
    return failed;
}
