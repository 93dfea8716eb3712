// SPDX-License-Identifier: Apache-2.0
// Image specification: how rows reach Metal, what is accepted without data, what is refused, and what the chain of levels
// becomes when the second level comes late.
#include "ZALGLFunctionsTexture.h"
#include "textures/Client.h"

namespace textures
{

class Upload : public OnBothRoutes
{
protected:
    bool intel() const { return GetParam() == Route::Intel; }

    static Bytes stored(MTL::Texture* t, NS::UInteger width, NS::UInteger height, NS::UInteger bytes, NS::UInteger level = 0, NS::UInteger slice = 0)
    {
        Bytes result(width * height * bytes);
        t->getBytes(result.data(), width * bytes, result.size(), MTL::Region(0, 0, 0, width, height, 1), level, slice);
        return result;
    }
    std::vector<SoftMetal::LogEntry> replacements()
    {
        std::vector<SoftMetal::LogEntry> result;
        for (SoftMetal::LogEntry& entry : log())
            if (entry.call == "replaceRegion") result.push_back(std::move(entry));
        return result;
    }
};

TEST_P(Upload, RgbaIsStoredAsBgra)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(64).data());
    Bytes expected = counting(64);
    for (size_t i = 0; i < 64; i += 4) std::swap(expected[i], expected[i + 2]);
    EXPECT_EQ(stored(metal(name), 4, 4, 4), expected);
}

TEST_P(Upload, Kept_unpack_ignored)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 8);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 100);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 3, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, counting(18).data());
    Bytes expected;
    for (uint8_t i = 0; i < 6; ++i)
        for (uint8_t c : {static_cast<uint8_t>(3 * i + 1), static_cast<uint8_t>(3 * i + 2), static_cast<uint8_t>(3 * i + 3), uint8_t{255}}) expected.push_back(c);
    EXPECT_EQ(stored(metal(name), 3, 2, 4), expected);
    glGetError();
}

TEST_P(Upload, ConvertsRowByRowAndHandsTheRestOverAtOnce)
{
    for (const UploadRow& row : UploadRows) {
        bindNew(GL_TEXTURE_3D);
        clearLog();
        glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(row.internalFormat), 3, 5, 2, 0, row.format, row.type, clientImage(row, 30).data());
        auto calls = replacements();
        ASSERT_EQ(calls.size(), row.direct ? 1u : 10u) << row.name;
        EXPECT_EQ(calls.back().number("bytesPerImage"), calls.back().number("bytesPerRow") * 5);
        if (!row.direct) {
            EXPECT_EQ(calls.back().number("y"), 4);
            EXPECT_EQ(calls.back().number("z"), 1);
        }
    }
}

TEST_P(Upload, TexelsMayHaveAnyValue)
{
    // Bits that are no number, infinities and negative zeros pass through all floating-point rows as they are.
    const std::vector<uint32_t> words = {0x7FC12345, 0x7F800000, 0xFF800000, 0x80000000, 0x00000001, 0xFFFFFFFF, 0x3F800001, 0x12345678};
    for (const UploadRow& row : UploadRows) {
        if (row.type == GL_UNSIGNED_BYTE || componentsOf(row.format) == 3) continue;
        GLuint name = bindNew(GL_TEXTURE_2D);
        auto width = static_cast<GLsizei>(32 / bytesPerPixel(row.format, row.type));
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(row.internalFormat), width, 1, 0, row.format, row.type, words.data());
        EXPECT_EQ(stored(metal(name), static_cast<NS::UInteger>(width), 1, bytesPerPixel(row.format, row.type)), bytesOf(words)) << row.name;
    }
}

TEST_P(Upload, BordersAreIgnored)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, counting(8).data());
    EXPECT_EQ(metal(name)->width(), 2u);
    EXPECT_EQ(stored(metal(name), 2, 1, 4), counting(8));
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Upload, WithoutDataMakesNoMetalTexture)
{
    bindNew(GL_TEXTURE_2D);
    for (GLenum internal : {GL_RGBA8, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24, GL_DEPTH24_STENCIL8}) {
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internal), 4, 4, 0, GL_LUMINANCE, GL_BYTE, nullptr);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
    EXPECT_EQ(count("newTexture"), 0u);
}

// ---- refusals ----

TEST_P(Upload, EveryOtherCombinationIsAnInvalidEnumAndWritesNothing)
{
    constexpr GLenum Internals[] = {GL_ALPHA, GL_ALPHA8, GL_RGB, GL_RGB8, GL_RGBA, GL_RGBA8, GL_LUMINANCE8, GL_RGBA32F_ARB, GL_RGB32F_ARB, GL_INTENSITY32F_ARB,
                                    GL_RGBA16F_ARB, GL_RGB16F_ARB, GL_INTENSITY16F_ARB, GL_FLOAT_R_NV, GL_DEPTH_COMPONENT16, GL_DEPTH_COMPONENT24,
                                    GL_DEPTH_COMPONENT32, GL_DEPTH24_STENCIL8};
    constexpr GLenum ClientFormats[] = {0, GL_RED, GL_GREEN, GL_ALPHA, GL_RGB, GL_RGBA, GL_BGR, GL_BGRA, GL_LUMINANCE, GL_LUMINANCE_ALPHA, GL_DEPTH_COMPONENT,
                                        GL_DEPTH_STENCIL, GL_STENCIL_INDEX, GL_COLOR_INDEX};
    constexpr GLenum Types[] = {0, GL_BYTE, GL_UNSIGNED_BYTE, GL_SHORT, GL_UNSIGNED_SHORT, GL_INT, GL_UNSIGNED_INT, GL_FLOAT, GL_HALF_FLOAT, GL_DOUBLE,
                                GL_UNSIGNED_INT_8_8_8_8_REV, GL_UNSIGNED_INT_24_8};
    Bytes data(64 * 4);
    for (GLenum internal : Internals) {
        GLuint name = bindNew(GL_TEXTURE_2D);
        for (GLenum format : ClientFormats) {
            for (GLenum type : Types) {
                bool offered = false;
                for (const UploadRow& row : UploadRows) offered |= row.internalFormat == internal && row.format == format && row.type == type;
                // What is offered for a texture does not depend on which of its names the format was given by.
                offered |= internal == GL_RGB && format != GL_RED && format != GL_ALPHA && componentsOf(format) > 1 && type == GL_UNSIGNED_BYTE;
                offered |= internal == GL_RGBA && componentsOf(format) > 1 && type == GL_UNSIGNED_BYTE;
                clearLog();
                glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(internal), 2, 2, 0, format, type, data.data());
                EXPECT_EQ(glGetError(), offered ? GLenum{GL_NO_ERROR} : GLenum{GL_INVALID_ENUM}) << internal << " " << format << " " << type;
                EXPECT_EQ(replacements().empty(), !offered);
            }
        }
        EXPECT_EQ(object(name).width, 2u); // the description stays
        EXPECT_EQ(object(name).definedLevelsMask, 1u);
    }
}

TEST_P(Upload, TheTargetIsChecked)
{
    const auto specify = [](GLenum textureTarget) { glTexImage2D(textureTarget, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr); };
    specify(GL_PROXY_TEXTURE_2D);
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    specify(GL_TEXTURE_2D);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE); // nothing bound
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_3D, name);
    specify(GL_TEXTURE_2D);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    glDeleteTextures(1, &name);
    specify(GL_TEXTURE_3D);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE); // the name has no object
}

TEST_P(Upload, OtherLevelsAndFacesNeedTheFirst)
{
    GLuint name = 0; // bound without its placeholder, or given no width later: both have no first level
    glGenTextures(1, &name);
    for (uint32_t& slot : gl().textureBindings[0]) slot = name;
    const auto refused = [](GLenum textureTarget, GLint level) {
        glTexImage2D(textureTarget, level, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
        EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    };
    refused(GL_TEXTURE_2D, 1);
    refused(GL_TEXTURE_CUBE_MAP, 5);
    for (GLenum face = 1; face < 6; ++face) refused(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0);
    refused(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 1);
    EXPECT_EQ(object(name).definedLevelsMask, 0u);
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 0, 0, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    refused(GL_TEXTURE_2D, 1);
}

TEST_P(Upload, Kept_placeholder_level)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(glGetError(), GL_NO_ERROR); // the first bind has specified level 0
    bindNew(GL_TEXTURE_CUBE_MAP);
    glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_Y, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Upload, ACubeFaceIsASlice)
{
    GLuint name = bindNew(GL_TEXTURE_CUBE_MAP);
    glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, Bytes(4).data());
    glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_Y, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    for (NS::UInteger slice = 0; slice < 6; ++slice) EXPECT_EQ(stored(metal(name), 1, 1, 4, 0, slice), slice == 2 ? counting(4) : Bytes(4));
}

TEST_P(Upload, TheNameOfAWholeCubeIsItsFirstFace)
{
    GLuint name = bindNew(GL_TEXTURE_CUBE_MAP);
    glTexImage2D(GL_TEXTURE_CUBE_MAP, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(stored(metal(name), 1, 1, 4, 0, 0), counting(4));
    EXPECT_EQ(stored(metal(name), 1, 1, 4, 0, 1), Bytes(4));
}

TEST_P(Upload, Kept_levels_only_grow)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 8, 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, 1, GL_TEXTURE_WIDTH), 8);
    EXPECT_EQ(metal(name)->mipmapLevelCount(), 5u);
}

TEST_P(Upload, Kept_upload_before_commit)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, Bytes(4).data());
    target(1, 1, MTL::PixelFormatBGRA8Unorm);
    drawQuad(GL_TEXTURE_2D, WholeImage); // recorded, not committed
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(pixels(0, 0, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, 4), counting(4));
}

INSTANTIATE_TEST_SUITE_P(Routes, Upload, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

// ---- the chain that comes late ----

class Rebuild : public Upload
{
protected:
    /// A texture whose Metal texture exists, and then a second level of it.
    GLuint late(GLenum textureTarget, GLenum imageTarget, GLsizei deep)
    {
        GLuint name = bindNew(textureTarget);
        GLenum faces = textureTarget == GL_TEXTURE_CUBE_MAP ? 6 : 1;
        for (GLenum face = 0; face < faces; ++face)
            ZALTexImage(imageTarget + face, 0, GL_RGBA8, 4, 4, deep, GL_BGRA, GL_UNSIGNED_BYTE, counting(64u * static_cast<size_t>(deep) + face).data() + face);
        first = metal(name);
        first->retain();
        clearLog();
        ZALTexImage(imageTarget, 1, GL_RGBA8, 2, 2, std::max(deep / 2, 1), GL_BGRA, GL_UNSIGNED_BYTE, Bytes(64, 9).data());
        return name;
    }
    void TearDown() override
    {
        if (first) first->release();
        Upload::TearDown();
    }
    MTL::Texture* first = nullptr;
};

TEST_P(Rebuild, KeepsTheFirstLevel)
{
    GLuint name = late(GL_TEXTURE_2D, GL_TEXTURE_2D, 1);
    EXPECT_EQ(count("copyFromTexture"), intel() ? 0u : 1u);
    EXPECT_EQ(metal(name) == first, intel());
    EXPECT_EQ(metal(name)->mipmapLevelCount(), 3u);
    commands().commandBufferWaitUntilCompleted();
    EXPECT_EQ(stored(metal(name), 4, 4, 4), counting(64));
    EXPECT_EQ(stored(metal(name), 2, 2, 4, 1), Bytes(16, 9));
}

TEST_P(Rebuild, CopiesOnTheBlitEncoderAndSynchronises)
{
    late(GL_TEXTURE_2D, GL_TEXTURE_2D, 1);
    auto entries = log();
    EXPECT_EQ(std::any_of(entries.begin(), entries.end(), [](const auto& e) { return e.call == "synchronizeResource"; }), !intel());
    for (const auto& entry : entries) {
        if (entry.call != "copyFromTexture") continue;
        EXPECT_EQ(entry.object("source"), first);
        EXPECT_EQ(entry.number("width"), 4);
        EXPECT_EQ(entry.number("depth"), 1);
    }
    EXPECT_TRUE(std::none_of(entries.begin(), entries.end(), [](const auto& e) { return e.call == "commit"; }));
    commands().commandBufferEnd();
}

TEST_P(Rebuild, KeepsAllFacesOfACube)
{
    GLuint name = late(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_CUBE_MAP_POSITIVE_X, 1);
    EXPECT_EQ(count("copyFromTexture"), intel() ? 0u : 6u);
    commands().commandBufferWaitUntilCompleted();
    for (NS::UInteger face = 0; face < 6; ++face) EXPECT_EQ(stored(metal(name), 4, 4, 4, 0, face)[0], face + 1);
}

TEST_P(Rebuild, KeepsAllSlicesOfAVolume)
{
    GLuint name = late(GL_TEXTURE_3D, GL_TEXTURE_3D, 3);
    commands().commandBufferWaitUntilCompleted();
    Bytes all(192);
    metal(name)->getBytes(all.data(), 16, 64, MTL::Region(0, 0, 0, 4, 4, 3), 0, 0);
    EXPECT_EQ(all, counting(192));
}

TEST_P(Rebuild, HappensOnce)
{
    GLuint name = late(GL_TEXTURE_2D, GL_TEXTURE_2D, 1);
    MTL::Texture* chain = metal(name);
    glTexImage2D(GL_TEXTURE_2D, 2, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(metal(name), chain);
    commands().commandBufferEnd();
}

TEST_P(Rebuild, HappensWithoutDataToo)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(64).data());
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 2, 2, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    EXPECT_EQ(metal(name)->mipmapLevelCount(), 3u);
    commands().commandBufferWaitUntilCompleted();
    EXPECT_EQ(stored(metal(name), 4, 4, 4), counting(64));
}

TEST_P(Rebuild, WithoutMemoryLosesTheImageAndNothingElse)
{
    GLuint name = bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(64).data());
    SoftMetal::injectFault("newTexture", 1, false);
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 2, 2, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(16).data());
    SoftMetal::clearFaults();
    EXPECT_EQ(metal(name) == nullptr, !intel());
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

INSTANTIATE_TEST_SUITE_P(Routes, Rebuild, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
