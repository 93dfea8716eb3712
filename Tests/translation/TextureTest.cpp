// SPDX-License-Identifier: Apache-2.0
#include "Translate.h"

namespace
{

using translation::bodyOf;
using translation::expectLines;
using translation::Translated;
using translation::translateFragment;

TEST(TEX, SamplesEveryTarget)
{
    expectLines(
        {{"TEX R0, R1, texture[2], 2D;", "R0 = texSample( texture2, texture2Sampler, R1.xy, texture2Swizzle );"},
         {"TEX R0, R1, texture[2], 3D;", "R0 = texSample( texture2,  texture2Sampler, R1.xyz, texture2Swizzle );"},
         {"TEX R0, R1, texture[2], RECT;",
          "R0 = texSample( texture2, texture2Sampler, float2(R1.xy.x, R1.xy.y), texture2Swizzle );"},
         {"TEX R0, R1, texture[2], CUBE;", "R0 = texSample( texture2, texture2Sampler, R1.xyz, texture2Swizzle );"}});
}

TEST(TEX, SamplesEveryTargetSaturated)
{
    expectLines({{"TEX_SAT R0.xyz, R1, texture[31], 2D;",
                  "R0.xyz = metal::clamp( texSample(texture31, texture31Sampler, R1.xy, texture31Swizzle), 0.0, 1.0 "
                  ").xyz;"},
                 {"TEX_SAT R0, R1, texture[0], 3D;",
                  "R0 = metal::clamp( texSample(texture0, texture0Sampler, R1.xyz, texture0Swizzle ), 0.0, 1.0 );"},
                 {"TEX_SAT R0.x, R1, texture[0], RECT;",
                  "R0.x = metal::clamp( texSample(texture0, texture0Sampler, float2(R1.xy.x, R1.xy.y), texture0Swizzle "
                  "), 0.0, 1.0 ).x;"},
                 {"TEX_SAT R0, R1, texture[0], CUBE;",
                  "R0 = metal::clamp( texSample( texture0, texture0Sampler, R1.xyz, texture0Swizzle ), 0.0, 1.0 );"}});
}

TEST(TEX, KeepsTheMask)
{
    EXPECT_EQ(bodyOf("tex result.color.w, fragment.texcoord[1].zwxy, texture[ 1 ], 2D;"),
              "  result.color0.w = texSample( texture1, texture1Sampler, varying.texcoord1.zw, texture1Swizzle ).w;\n");
}

TEST(TEX, NarrowsTheCoordinate)
{
    expectLines(
        {{"TEX R0, R1.x, texture[0], 2D;", "R0 = texSample( texture0, texture0Sampler, R1.xx, texture0Swizzle );"},
         {"TEX R0, -R1.wzyx, texture[0], CUBE;",
          "R0 = texSample( texture0, texture0Sampler, -R1.wzy, texture0Swizzle );"},
         {"TEX R0, 0.5, texture[0], 2D;",
          "R0 = texSample( texture0, texture0Sampler, float2( 0.5 ), texture0Swizzle );"}});
}

TEST(TEX, EntersTheUnitWithItsTarget)
{
    const Translated result = translateFragment("TEX R0, R1, texture[2], 2D;\nTEX R0, R1, texture[5], 3D;\n"
                                                "TEX R0, R1, texture[6], RECT;\nTEX R0, R1, texture[7], CUBE;\n");
    EXPECT_EQ(result.bindings.textureUnitMask, 0xE4u);
    EXPECT_EQ(result.bindings.textureTargets[2], 0x0DE1u);
    EXPECT_EQ(result.bindings.textureTargets[5], 0x806Fu);
    EXPECT_EQ(result.bindings.textureTargets[6], 0x84F5u);
    EXPECT_EQ(result.bindings.textureTargets[7], 0x8513u);
    EXPECT_EQ(result.bindings.textureTargets[0], 0u);
}

TEST(TEX, TheFirstTargetOfAUnitWins)
{
    const Translated result = translateFragment("TEX R0, R1, texture[0], 3D;\nTEX R0, R1, texture[0], 2D;");
    EXPECT_EQ(result.bindings.textureTargets[0], 0x806Fu);
    EXPECT_NE(result.source.find("metal::texture3d<float> texture0 [[texture(0)]]"), std::string::npos);
    EXPECT_EQ(result.source.find("metal::texture2d<float>"), std::string::npos);
    EXPECT_NE(result.body.find("texSample( texture0, texture0Sampler, R1.xy, texture0Swizzle )"), std::string::npos);
}

TEST(TEX, OtherTargetsAreCopiedAndEnterNothing)
{
    for (const char* target : {"1D", "SHADOW1D", "SHADOW2D", "SHADOWRECT", "2d", "rect", "Cube", "2DMS"}) {
        const std::string statement = "TEX result.color, fragment.texcoord[0], texture[0], " + std::string(target);
        const Translated result = translateFragment(statement + ";");
        EXPECT_EQ(result.body, "  " + statement + ";\n");
        EXPECT_EQ(result.bindings.textureUnitMask, 0u);
        EXPECT_EQ(result.bindings.colorMask, 0u);
    }
}

TEST(TEX, WithoutAUnitItFails)
{
    for (const char* texture :
         {"texture", "texture[32]", "texture[-1]", "texture[x]", "texture[]", "texture[1", "texture[4294967296]"})
        EXPECT_NE(translateFragment("TEX R0, R1, " + std::string(texture) + ", 2D;").status, 0) << texture;
    EXPECT_EQ(translateFragment("TEX R0, R1, texture[31], 2D;").status, 0);
}

TEST(TEX, IsTranslatedInVertexProgramsToo)
{
    const Translated result = translation::translateVertex("TEX R0, R1, texture[0], 2D;");
    EXPECT_EQ(result.body, "  R0 = texSample( texture0, texture0Sampler, R1.xy, texture0Swizzle );\n");
    EXPECT_EQ(result.bindings.textureUnitMask, 1u);
}

} // namespace
