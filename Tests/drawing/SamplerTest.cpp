// SPDX-License-Identifier: Apache-2.0
// Texture units to Metal textures and sampler states.
#include "SamplerDescriptor.h"
#include "drawing/Drawing.h"

#include <limits>
#include <random>

namespace {

using namespace drawing;

using ZALMetal::SamplerDescriptor;

constexpr double Largest = std::numeric_limits<float>::max();

class Sampler : public Routes
{
protected:
    void SetUp() override
    {
        Routes::SetUp();
        loadSampling({0}, "2D");
        texture = make(GL_TEXTURE_2D);
        clearLog();
    }

    /// A fragment program that adds samples of the units.
    void loadSampling(const std::vector<int>& units, const char* target)
    {
        std::string text = "!!ARBfp1.0\nTEMP sum, one;\nMOV sum, 0.0;\n";
        for (int unit : units) text += "TEX one, fragment.texcoord[0], texture[" + std::to_string(unit) + "], " + target + ";\nADD sum, sum, one;\n";
        ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, text + "MOV result.color, sum;\nEND\n"), NoError);
    }

    /// A texture with the filters that need no levels, bound to a unit.
    GLuint make(GLenum target, GLenum unit = 0, int levels = 1)
    {
        GLuint name = 0;
        glGenTextures(1, &name);
        glActiveTextureARB(GL_TEXTURE0 + unit);
        glBindTexture(target, name);
        for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) glTexParameteri(target, parameter, GL_NEAREST);
        for (int level = 0; level < levels; ++level) {
            std::vector<uint32_t> texels(64, 0xFF8040FFu);
            glTexImage2D(target, level, GL_RGBA8, 8 >> level, 8 >> level, 0, GL_BGRA, GL_UNSIGNED_BYTE, texels.data());
        }
        return name;
    }

    /// The one sampler state that a draw makes.
    SoftMetal::LogEntry made()
    {
        clearLog();
        draw();
        auto all = entries("newSamplerState");
        EXPECT_EQ(all.size(), 1u);
        return all.empty() ? SoftMetal::LogEntry{} : all[0];
    }

    GLuint texture = 0;
};
INSTANTIATE_TEST_SUITE_P(Devices, Sampler, testing::Values(false, true), routeName);

TEST_P(Sampler, IsMadeForEachDraw)
{
    draw();
    draw();
    EXPECT_EQ(count("newSamplerState"), 2u);
    EXPECT_LE(SoftMetal::objectsAlive("MTL::SamplerState"), 2); // the pass holds what it uses, nothing else does
}

TEST_P(Sampler, MinFiltersGiveFilterAndMipFilter)
{
    texture = make(GL_TEXTURE_2D, 0, 4);
    struct Row
    {
        GLenum filter;
        double min, mip;
    };
    constexpr Row Rows[] = {{GL_NEAREST_MIPMAP_NEAREST, 0, 1}, {GL_LINEAR_MIPMAP_NEAREST, 1, 1}, {GL_NEAREST_MIPMAP_LINEAR, 0, 2}, {GL_LINEAR_MIPMAP_LINEAR, 1, 2}, {GL_NEAREST, 0, 0}, {GL_LINEAR, 1, 0}};
    for (const Row& row : Rows) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, static_cast<GLint>(row.filter));
        auto sampler = made();
        EXPECT_EQ(sampler.number("minFilter"), row.min) << row.filter;
        EXPECT_EQ(sampler.number("mipFilter"), row.mip) << row.filter;
        EXPECT_EQ(sampler.number("lodMin"), 0);
        EXPECT_EQ(static_cast<float>(sampler.number("lodMax")), static_cast<float>(Largest));
    }
}

TEST_P(Sampler, AFilterWithoutMipsAndABaseLevelSamplesThatLevel)
{
    texture = make(GL_TEXTURE_2D, 0, 4);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 2);
    for (GLint filter : {GL_NEAREST, GL_LINEAR}) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        auto sampler = made();
        EXPECT_EQ(sampler.number("mipFilter"), MTL::SamplerMipFilterNearest);
        EXPECT_EQ(sampler.number("lodMin"), 2);
        EXPECT_EQ(sampler.number("lodMax"), 2);
    }
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    auto sampler = made();
    EXPECT_EQ(sampler.number("lodMin"), 2);
    EXPECT_EQ(static_cast<float>(sampler.number("lodMax")), static_cast<float>(Largest));
}

TEST_P(Sampler, OneLevelAndRectanglesAreNotMipmapped)
{
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    auto mips = made().number("mipFilter");
    EXPECT_TRUE(isIntel() || mips == 0); // there every texture has all levels
    loadSampling({0}, "RECT");
    make(GL_TEXTURE_RECTANGLE_ARB);
    auto sampler = made();
    EXPECT_EQ(sampler.number("mipFilter"), MTL::SamplerMipFilterNotMipmapped);
    EXPECT_EQ(sampler.number("normalized"), 0);
}

TEST_P(Sampler, AddressModesAndBorders)
{
    constexpr std::pair<GLenum, MTL::SamplerAddressMode> Modes[] = {{GL_CLAMP, MTL::SamplerAddressModeClampToEdge},
                                                                    {GL_CLAMP_TO_EDGE, MTL::SamplerAddressModeClampToEdge},
                                                                    {GL_REPEAT, MTL::SamplerAddressModeRepeat},
                                                                    {GL_CLAMP_TO_BORDER, MTL::SamplerAddressModeClampToBorderColor},
                                                                    {GL_MIRRORED_REPEAT, MTL::SamplerAddressModeMirrorRepeat}};
    for (auto [mode, wanted] : Modes) {
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, static_cast<GLint>(mode));
        EXPECT_EQ(made().number("s"), wanted);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, static_cast<GLint>(mode));
        EXPECT_EQ(made().number("t"), wanted);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_R, static_cast<GLint>(mode));
        EXPECT_EQ(made().number("r"), wanted);
        EXPECT_EQ(error(), NoError);
    }
    const float white[4] = {1, 1, 1, 1};
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, white);
    EXPECT_EQ(made().number("border"), MTL::SamplerBorderColorOpaqueWhite);
}

TEST_P(Sampler, AnisotropyIsRoundedAndClamped)
{
    for (auto [value, wanted] : {std::pair{1.f, 1}, {1.4f, 1}, {1.5f, 2}, {7.6f, 8}, {16.f, 16}, {99.f, 16}, {0.f, 1}, {-3.f, 1}}) {
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, value);
        EXPECT_EQ(made().number("anisotropy"), wanted) << value;
    }
}

TEST_P(Sampler, BadFiltersAndWrapsAreErrorsAndTheDrawGoesOn)
{
    for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER, GL_TEXTURE_WRAP_S}) {
        glTexParameteri(GL_TEXTURE_2D, parameter, 0x1234);
        error();
        clearLog();
        EXPECT_EQ(drawn(), InvalidValue) << parameter;
        EXPECT_FALSE(drewNothing());
        glTexParameteri(GL_TEXTURE_2D, parameter, parameter == GL_TEXTURE_WRAP_S ? GL_REPEAT : GL_NEAREST);
        error();
    }
}

TEST_P(Sampler, EqualParametersShareASlot)
{
    loadSampling({0, 3}, "2D");
    make(GL_TEXTURE_2D, 3);
    clearLog();
    EXPECT_EQ(drawn(), NoError);
    auto all = log();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [](const auto& e) { return e.call == "newSamplerState"; }), 1);
    EXPECT_EQ(boundBy(all, "setFragmentTextures"), 2u);
}

TEST_P(Sampler, EachParameterThatDiffersGivesASlotOfItsOwn)
{
    struct Row
    {
        GLenum parameter;
        GLint value;
    };
    constexpr Row Rows[] = {{GL_TEXTURE_MAG_FILTER, GL_LINEAR}, {GL_TEXTURE_MIN_FILTER, GL_LINEAR}, {GL_TEXTURE_MIN_FILTER, GL_NEAREST_MIPMAP_LINEAR},
                            {GL_TEXTURE_WRAP_S, GL_CLAMP_TO_BORDER}, {GL_TEXTURE_WRAP_T, GL_CLAMP_TO_BORDER}, {GL_TEXTURE_WRAP_R, GL_CLAMP_TO_BORDER},
                            {GL_TEXTURE_BASE_LEVEL, 1}, {GL_TEXTURE_BASE_LEVEL, 2}};
    std::vector<int> units{0};
    make(GL_TEXTURE_2D, 0, 4);
    for (const Row& row : Rows) {
        make(GL_TEXTURE_2D, static_cast<GLenum>(units.size()), 4);
        glTexParameteri(GL_TEXTURE_2D, row.parameter, row.value);
        units.push_back(static_cast<int>(units.size()));
    }
    const float white[4] = {1, 1, 1, 1};
    make(GL_TEXTURE_2D, static_cast<GLenum>(units.size()), 4);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, white);
    units.push_back(static_cast<int>(units.size()));
    loadSampling(units, "2D");
    clearLog();
    EXPECT_EQ(drawn(), NoError);
    EXPECT_EQ(count("newSamplerState"), units.size());
}

TEST_P(Sampler, RectanglesDoNotShareWithNormalisedPositions)
{
    make(GL_TEXTURE_RECTANGLE_ARB, 1);
    for (GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        for (auto [unit, target] : {std::pair<GLenum, GLenum>{0, GL_TEXTURE_2D}, {1, GL_TEXTURE_RECTANGLE_ARB}}) {
            glActiveTextureARB(GL_TEXTURE0 + unit);
            glTexParameteri(target, wrap, GL_CLAMP_TO_EDGE);
        }
    ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nTEMP a, b;\nTEX a, fragment.texcoord[0], texture[0], 2D;\n"
                                            "TEX b, fragment.texcoord[0], texture[1], RECT;\nADD result.color, a, b;\nEND\n"), NoError);
    clearLog();
    EXPECT_EQ(drawn(), NoError);
    EXPECT_EQ(count("newSamplerState"), 2u);
}

TEST_P(Sampler, SixteenDifferentOnesFitAndTheNextDoesNot)
{
    std::vector<int> units;
    for (int unit = 0; unit < 16; ++unit) {
        make(GL_TEXTURE_2D, static_cast<GLenum>(unit));
        glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, static_cast<float>(unit + 1));
        units.push_back(unit);
    }
    loadSampling(units, "2D");
    EXPECT_EQ(drawn(), NoError);
    make(GL_TEXTURE_2D, 16);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    units.push_back(16);
    loadSampling(units, "2D");
    clearLog();
    EXPECT_EQ(drawn(), InvalidOperation);
    EXPECT_TRUE(drewNothing());
}

TEST_P(Sampler, ADeletedTextureGivesNilAndTheDrawGoesOn)
{
    glDeleteTextures(1, &texture);
    clearLog();
    EXPECT_EQ(drawn(), NoError);
    auto all = log();
    EXPECT_EQ(boundBy(all, "setFragmentTextures"), 0u);
    EXPECT_EQ(boundBy(all, "setFragmentSamplerStates"), 0u);
    for (const auto& message : SoftMetal::takeMessages()) EXPECT_EQ(message.rule.rfind("draw.missing-", 0), 0u) << message.sentence; // the device notices
    EXPECT_TRUE(std::any_of(all.begin(), all.end(), [](const auto& e) { return e.call == "drawIndexedPrimitives"; }));
}

/// A slot that the fragment program used first stays without a sampler in the vertex stage.
TEST_P(Sampler, Kept_shared_sampler_slot)
{
    ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, "!!NVvp4.0\nTEMP R0;\nTEX R0, vertex.attrib[0], texture[0], 2D;\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], R0;\nEND\n"), NoError);
    clearLog();
    EXPECT_EQ(drawn(), NoError);
    auto all = log();
    EXPECT_EQ(boundBy(all, "setFragmentSamplerStates"), 1u);
    EXPECT_EQ(boundBy(all, "setVertexSamplerStates"), 0u);
    EXPECT_EQ(boundBy(all, "setVertexTextures"), 1u);
    SoftMetal::takeMessages(); // the device notices the missing sampler
}

TEST(SamplerOrder, IsInStrictWeakOrderByItsFields)
{
    std::mt19937 random(5);
    auto any = [&] {
        SamplerDescriptor d;
        d.normalizedCoordinates = static_cast<signed char>(random() % 2);
        for (uint64_t* field : {&d.minFilter, &d.magFilter, &d.mipFilter, &d.rAddressMode, &d.sAddressMode, &d.tAddressMode, &d.borderColor, &d.maxAnisotropy}) *field = random() % 2;
        d.lodMinClamp = static_cast<float>(random() % 2);
        d.lodMaxClamp = static_cast<float>(random() % 2);
        return d;
    };
    std::vector<SamplerDescriptor> all;
    for (int i = 0; i < 60; ++i) all.push_back(any());
    for (const auto& a : all) {
        EXPECT_FALSE(a < a);
        for (const auto& b : all) {
            EXPECT_FALSE(a < b && b < a);
            for (const auto& c : all) EXPECT_TRUE(!(a < b && b < c) || a < c);
        }
    }
    SamplerDescriptor a, b;
    a.minFilter = 1; // decides before what follows it
    b.maxAnisotropy = 16;
    b.mipFilter = 2;
    EXPECT_TRUE(b < a);
}

} // namespace
