// SPDX-License-Identifier: Apache-2.0
// The source around the body, section by section and in order.
#include "Translate.h"

namespace
{

using translation::Translated;
using translation::translateFragment;
using translation::translateVertex;

constexpr const char* kHead = R"(#include <simd/simd.h>
#include <metal_stdlib>


#define ZALMETAL_STATEMATRIXDATA_IDX 16
#define ZALMETAL_PROGRAMLOCALDATA_IDX 17
#define ZALMETAL_SAMPLER_TABLE_CST_IDX 1000
#define ZALMETAL_TEXSWIZZLE_TABLE_CST_IDX 1100
#define ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS 256

typedef struct StateMatrixData
{
  metal::float4x4 modelview;
  metal::float4x4 projection;
  metal::float4x4 mvp;
  metal::float4x4 texture[4];
)"
                              "  \n"
                              R"(  metal::float4x4 modelview_inv;
  metal::float4x4 projection_inv;
  metal::float4x4 mvp_inv;
  metal::float4x4 texture_inv[4];
)"
                              "  \n"
                              R"(  metal::float4x4 modelview_trans;
  metal::float4x4 projection_trans;
  metal::float4x4 mvp_trans;
  metal::float4x4 texture_trans[4];
)"
                              "  \n"
                              R"(  metal::float4x4 modelview_invtrans;
  metal::float4x4 projection_invtrans;
  metal::float4x4 mvp_invtrans;
  metal::float4x4 texture_invtrans[4];
}
StateMatrixData;

typedef struct ProgramLocalsData
{
  float4 value[ZALMETAL_MAX_PROGRAM_ENV_PARAMETERS];
}
ProgramLocalsData;

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

)";

constexpr const char* kSampleFunction = R"(template <typename TEX, typename COORD>
float4 texSample(TEX tex, metal::sampler s, COORD c, uint32_t texSwizzle)
{
  if (texSwizzle == 1)
  {
    return tex.sample(s, c).xxxx;
  }
  else
  {
    return tex.sample(s, c);
  }
}

)";

constexpr const char* kBuffers =
    ",\n  constant StateMatrixData &state_matrix [[buffer(ZALMETAL_STATEMATRIXDATA_IDX)]]"
    ",\n  constant ProgramLocalsData &program_local [[buffer(ZALMETAL_PROGRAMLOCALDATA_IDX)]]";

constexpr const char* kSamplerParameters =
    ",\n  metal::sampler samplerSlot0 [[sampler(0)]],\n  metal::sampler samplerSlot1 [[sampler(1)]]"
    ",\n  metal::sampler samplerSlot2 [[sampler(2)]],\n  metal::sampler samplerSlot3 [[sampler(3)]]"
    ",\n  metal::sampler samplerSlot4 [[sampler(4)]],\n  metal::sampler samplerSlot5 [[sampler(5)]]"
    ",\n  metal::sampler samplerSlot6 [[sampler(6)]],\n  metal::sampler samplerSlot7 [[sampler(7)]]"
    ",\n  metal::sampler samplerSlot8 [[sampler(8)]],\n  metal::sampler samplerSlot9 [[sampler(9)]]"
    ",\n  metal::sampler samplerSlot10 [[sampler(10)]],\n  metal::sampler samplerSlot11 [[sampler(11)]]"
    ",\n  metal::sampler samplerSlot12 [[sampler(12)]],\n  metal::sampler samplerSlot13 [[sampler(13)]]"
    ",\n  metal::sampler samplerSlot14 [[sampler(14)]],\n  metal::sampler samplerSlot15 [[sampler(15)]]"
    "\n) {\n";

constexpr const char* kSamplerTable = "  metal::sampler allSamplerSlots[] = {\n"
                                      "    samplerSlot0,\n    samplerSlot1,\n    samplerSlot2,\n    samplerSlot3,\n"
                                      "    samplerSlot4,\n    samplerSlot5,\n    samplerSlot6,\n    samplerSlot7,\n"
                                      "    samplerSlot8,\n    samplerSlot9,\n    samplerSlot10,\n    samplerSlot11,\n"
                                      "    samplerSlot12,\n    samplerSlot13,\n    samplerSlot14,\n    samplerSlot15,\n"
                                      "  };\n";

std::string constantDeclarations()
{
    std::string text;
    for (int unit = 0; unit < 32; ++unit)
        text += "constant int samplerSlotIndexForUnit" + std::to_string(unit) + " [[function_constant(" +
                std::to_string(1000 + unit) + ")]];\n";
    for (int unit = 0; unit < 32; ++unit)
        text += "constant uint32_t texSwizzleForUnit" + std::to_string(unit) + " [[function_constant(" +
                std::to_string(1100 + unit) + ")]];\n";
    return text + "\n";
}

TEST(Layout, AnEmptyVertexProgramIsOneFunction)
{
    EXPECT_EQ(translateVertex("").source,
              kHead + constantDeclarations() + "\nstruct Attributes {\n};\n\n" + kSampleFunction +
                  "vertex Varyings ShaderFunc(Attributes in [[stage_in]]" + kBuffers + kSamplerParameters +
                  "  Varyings result;\n  float4 CC0;\n  float4 CC1;\n" + kSamplerTable +
                  "  //\n  //\n  return result;\n}\n");
}

TEST(Layout, AnEmptyFragmentProgramIsOneFunction)
{
    EXPECT_EQ(translateFragment("").source,
              kHead + constantDeclarations() + "struct FragmentOutput {\n};\n\n" + kSampleFunction +
                  "fragment FragmentOutput ShaderFunc(Varyings varying [[stage_in]]" + kBuffers + kSamplerParameters +
                  "  FragmentOutput result;\n  float4 glfragcoord = varying.position;\n"
                  "  float4 CC0;\n  float4 CC1;\n" +
                  kSamplerTable + "  //\n  //\n  return result;\n}\n");
}

TEST(Layout, UsedAttributesAreDeclaredInAscendingOrder)
{
    const Translated result =
        translateVertex("MOV result.color, vertex.attrib[9];\nMOV result.position, vertex.attrib[0];");
    EXPECT_EQ(result.source,
              kHead + constantDeclarations() +
                  "constant bool array_enabled_vertexpos [[function_constant(0)]];\n"
                  "constant bool array_enabled_texcoord1 [[function_constant(9)]];\n"
                  "\nstruct Attributes {\n"
                  "  float4 vertexpos [[attribute(0), function_constant(array_enabled_vertexpos)]];\n"
                  "  float4 texcoord1 [[attribute(9), function_constant(array_enabled_texcoord1)]];\n"
                  "};\n\n" +
                  kSampleFunction + "vertex Varyings ShaderFunc(Attributes in [[stage_in]]" + kBuffers +
                  kSamplerParameters +
                  "  Varyings result;\n"
                  "  float4 a_vertexpos = array_enabled_vertexpos ? in.vertexpos : float4(0.0);\n"
                  "  float4 a_texcoord1 = array_enabled_texcoord1 ? in.texcoord1 : float4(0.0);\n"
                  "  float4 CC0;\n  float4 CC1;\n" +
                  kSamplerTable +
                  "  //\n  result.color = a_texcoord1;\n  result.position = a_vertexpos;\n  //\n  return result;\n}\n");
}

TEST(Layout, WrittenColoursDepthAndTexturesAreDeclared)
{
    const Translated result = translateFragment("TEX result.color[2], fragment.texcoord[0], texture[10], 2D;\n"
                                                "TEX result.color, fragment.position, texture[2], RECT;\n"
                                                "MOV result.depth, fragment.position;\n");
    EXPECT_EQ(
        result.source,
        kHead + constantDeclarations() +
            "struct FragmentOutput {\n"
            "  float4 color0 [[color(0)]];\n"
            "  float4 color2 [[color(2)]];\n"
            "  float depth [[depth(any)]];\n"
            "};\n\n" +
            kSampleFunction + "fragment FragmentOutput ShaderFunc(Varyings varying [[stage_in]]" + kBuffers +
            ",\n  metal::texture2d<float> texture10 [[texture(10)]]"
            ",\n  metal::texture2d<float> texture2 [[texture(2)]] /*RECT*/" +
            kSamplerParameters +
            "  FragmentOutput result;\n"
            "  float4 glfragcoord = varying.position;\n"
            "  float4 glfragdepth;\n"
            "  float4 CC0;\n  float4 CC1;\n" +
            kSamplerTable +
            "  metal::sampler texture10Sampler = allSamplerSlots[samplerSlotIndexForUnit10];\n"
            "  const uint32_t texture10Swizzle = texSwizzleForUnit10;\n"
            "  metal::sampler texture2Sampler = allSamplerSlots[samplerSlotIndexForUnit2];\n"
            "  const uint32_t texture2Swizzle = texSwizzleForUnit2;\n"
            "  //\n"
            "  result.color2 = texSample( texture10, texture10Sampler, varying.texcoord0.xy, texture10Swizzle );\n"
            "  result.color0 = texSample( texture2, texture2Sampler, float2(glfragcoord.xy.x, glfragcoord.xy.y), "
            "texture2Swizzle );\n"
            "  glfragdepth = glfragcoord;\n"
            "  //\n"
            "  result.depth = glfragdepth.z;\n"
            "  return result;\n}\n");
}

TEST(Layout, TheHeadEndsAtTheSixtyFourConstants)
{
    const std::string source = translateFragment("MOV R0, R1;").source;
    EXPECT_EQ(source.find("constant int samplerSlotIndexForUnit0 [[function_constant(1000)]];\n"),
              std::string(kHead).size());
    size_t constants = 0;
    for (size_t at = source.find("[[function_constant("); at != std::string::npos;
         at = source.find("[[function_constant(", at + 1))
        ++constants;
    EXPECT_EQ(constants, 64u);
}

TEST(Layout, ASampledUnitGetsParameterAndLocals)
{
    const Translated result = translateFragment("TEX R0, R1, texture[2], 2D;");
    EXPECT_NE(result.source.find(",\n  metal::texture2d<float> texture2 [[texture(2)]],\n"), std::string::npos);
    EXPECT_NE(result.source.find("  metal::sampler texture2Sampler = "), std::string::npos);
    EXPECT_NE(result.source.find("  const uint32_t texture2Swizzle = "), std::string::npos);
    EXPECT_EQ(result.bindings.textureUnitMask, 4u);
    EXPECT_EQ(result.bindings.textureTargets[2], 0x0DE1u);
}

TEST(Layout, TexturesStandInTheOrderOfTheirNames)
{
    const std::string source = translateFragment("TEX R0, R1, texture[2], 3D;TEX R0, R1, texture[10], CUBE;"
                                                 "TEX R0, R1, texture[1], 2D;")
                                   .source;
    EXPECT_NE(source.find(",\n  metal::texture2d<float> texture1 [[texture(1)]]"
                          ",\n  metal::texturecube<float> texture10 [[texture(10)]]"
                          ",\n  metal::texture3d<float> texture2 [[texture(2)]]"
                          ",\n  metal::sampler samplerSlot0 [[sampler(0)]]"),
              std::string::npos);
}

TEST(Layout, DepthIsDeclaredOnlyWhenItIsADestination)
{
    const Translated read = translateFragment("MOV R0, result.depth;");
    EXPECT_EQ(read.body, "  R0 = glfragdepth;\n");
    EXPECT_EQ(read.source.find("float depth [[depth(any)]]"), std::string::npos);

    const Translated written = translateFragment("MOV result.depth.z, R0.x;");
    EXPECT_EQ(written.body, "  glfragdepth.z = R0.x;\n");
    EXPECT_NE(written.source.find("  float depth [[depth(any)]];\n"), std::string::npos);
    EXPECT_NE(written.source.find("  result.depth = glfragdepth.z;\n  return result;\n"), std::string::npos);
}

TEST(Layout, BindingsOfEarlierUseAreKept)
{
    ZALMetal::ShaderString shader;
    shader.Append(ZALM::String("!!ARBfp1.0\nMOV result.color[1], R0;"));
    ZALMetal::ShaderBindings bindings;
    bindings.colorMask = 1;
    ZALM::String source;
    EXPECT_EQ(shader.GLSLTranslation(source, bindings), 0);
    EXPECT_EQ(bindings.colorMask, 3u);
    EXPECT_NE(translation::textOf(source).find("  float4 color0 [[color(0)]];\n  float4 color1 [[color(1)]];\n"),
              std::string::npos);
}

TEST(Layout, AFailedTranslationLeavesTheOutputAlone)
{
    ZALMetal::ShaderString shader;
    shader.Append(ZALM::String("!!ARBfp1.0\nMOV R0;"));
    ZALMetal::ShaderBindings bindings;
    ZALM::String source("before");
    EXPECT_NE(shader.GLSLTranslation(source, bindings), 0);
    EXPECT_EQ(translation::textOf(source), "before");
}

} // namespace
