// SPDX-License-Identifier: Apache-2.0
// Ready Metal source from the host, and what it declares of itself.
#include "programs/Programs.h"

namespace {

using namespace programs;

using MetalSource = ProgramTest;

constexpr GLenum NoError = GL_NO_ERROR, InvalidValue = GL_INVALID_VALUE;

TEST_F(MetalSource, IsCompiledAsItStands)
{
    std::string source = metalSource("");
    EXPECT_EQ(loadMetal(source), NoError);
    std::vector<std::string> compiled;
    for (const SoftMetal::LogEntry& entry : log())
        if (entry.call == "newLibrary") compiled.push_back(entry.text("source"));
    EXPECT_EQ(compiled, std::vector<std::string>{source});
    EXPECT_TRUE(fragment().IsValid());
}

TEST_F(MetalSource, TextureDeclarationsMarkTheirUnits)
{
    EXPECT_EQ(loadMetal(metalSource("ZAL_USE_TEXTURE(0,ZAL_TEX_1D)\nZAL_USE_TEXTURE(5,ZAL_TEX_RECT)\nZAL_USE_TEXTURE(6,ZAL_TEX_CUBE)\nZAL_USE_TEXTURE(31,ZAL_TEX_3D)")), NoError);
    const auto& b = fragment().bindings;
    EXPECT_EQ(b.textureUnitMask, 1u | 1u << 5 | 1u << 6 | 1u << 31);
    EXPECT_EQ(b.textureTargets[0], 0x0DE0u);
    EXPECT_EQ(b.textureTargets[5], 0x84F5u);
    EXPECT_EQ(b.textureTargets[6], 0x8513u);
    EXPECT_EQ(b.textureTargets[31], 0x806Fu);
}

/// A 2D declaration stores the 3D target.
TEST_F(MetalSource, Kept_metal_source_2d)
{
    EXPECT_EQ(loadMetal(metalSource("ZAL_USE_TEXTURE(2,ZAL_TEX_2D)")), NoError);
    EXPECT_EQ(fragment().bindings.textureUnitMask, 4u);
    EXPECT_EQ(fragment().bindings.textureTargets[2], static_cast<uint32_t>(GL_TEXTURE_3D));
}

TEST_F(MetalSource, AttributeDeclarationsMarkTheirBits)
{
    constexpr std::pair<const char*, uint32_t> Words[] = {{"VERTEX", 0}, {"NORMAL", 2}, {"COLOR", 3}, {"TEX0", 8}, {"TEX1", 9}, {"TEX2", 10}, {"TEX3", 11}, {"TEX4", 12}, {"TEX5", 13}, {"TEX6", 14}, {"TEX7", 15}};
    std::string all;
    for (auto [word, bit] : Words) {
        std::string declaration = std::string("ZAL_USE_VERTEX_ATTRIB(ZAL_VSH_") + word + ")\n";
        all += declaration;
        EXPECT_EQ(loadMetal(metalSource(declaration)), NoError);
        EXPECT_EQ(fragment().bindings.attributeMask, 1u << bit) << word;
    }
    EXPECT_EQ(loadMetal(metalSource(all)), NoError);
    EXPECT_EQ(fragment().bindings.attributeMask, 0xFF0Du);
}

TEST_F(MetalSource, PointExpansionIsDeclaredAnywhere)
{
    EXPECT_EQ(loadMetal(metalSource("ZAL_EXPAND_POINTS_TO_HEXAGONS()")), NoError);
    EXPECT_TRUE(fragment().expandsPoints);
    EXPECT_EQ(loadMetal(metalSource("")), NoError);
    EXPECT_FALSE(fragment().expandsPoints);
}

TEST_F(MetalSource, BadDeclarationsAreInvalidValueAndKeepTheLibrary)
{
    ASSERT_EQ(loadMetal(metalSource("ZAL_USE_TEXTURE(3,ZAL_TEX_3D)")), NoError);
    MTL::Library* library = fragment().library;
    for (const char* declaration : {"ZAL_USE_TEXTURE(32,ZAL_TEX_3D)", "ZAL_USE_TEXTURE(-1,ZAL_TEX_3D)", "ZAL_USE_TEXTURE(1,ZAL_TEX_4D)", "ZAL_USE_TEXTURE(1,zal_tex_3d)",
                                    "ZAL_USE_TEXTURE(1,ZAL_TEX_3D);", "ZAL_USE_TEXTURE(x,ZAL_TEX_3D)", "ZAL_USE_TEXTURE(1)", "ZAL_USE_VERTEX_ATTRIB(ZAL_VSH_TEX8)",
                                    "ZAL_USE_VERTEX_ATTRIB(ZAL_VSH_USER0)", "ZAL_USE_VERTEX_ATTRIB("}) {
        EXPECT_EQ(loadMetal(metalSource(declaration)), InvalidValue) << declaration;
        EXPECT_EQ(fragment().library, library);
        EXPECT_EQ(fragment().bindings.textureUnitMask, 0u); // cleared before they are read
    }
}

TEST_F(MetalSource, AssemblyProgramsDeclareNothing)
{
    std::string text = "!!ARBfp1.0\n# ZAL_USE_TEXTURE(2,ZAL_TEX_3D) ZAL_EXPAND_POINTS_TO_HEXAGONS()\nMOV result.color, 1.0;\nEND\n";
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, text), NoError);
    EXPECT_EQ(fragment().bindings.textureUnitMask, 0u);
    EXPECT_FALSE(fragment().expandsPoints);
}

TEST_F(MetalSource, DrawsLikeATranslatedProgram)
{
    ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, PassVertex), NoError);
    ASSERT_EQ(loadMetal("#include <metal_stdlib>\nusing namespace metal;\nstruct Locals { float4 value[256]; };\n"
                        "fragment float4 ShaderFunc(constant Locals& locals [[buffer(17)]]) { return locals.value[3]; }\n"),
              NoError);
    const float green[4] = {0, 1, 0, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 3, green);
    setUpTriangle();
    draw();
    EXPECT_EQ(glGetError(), NoError);
    EXPECT_EQ(pixel(), "0 255 0 255");
}

} // namespace
