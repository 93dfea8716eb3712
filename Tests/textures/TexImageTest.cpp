// SPDX-License-Identifier: Apache-2.0
// Reading textures: every layout from every internal format, faces, levels and slices, and what the odd ways do.
#include "ZALGLFunctionsTexture.h"
#include "textures/Client.h"
#include "textures/Reading.h"

namespace textures
{

class TexImage : public OnBothRoutes
{
protected:
    bool intel() const { return GetParam() == Route::Intel; }

    static std::vector<Rgba> storedColours(const UploadRow& row, size_t count, size_t first = 0)
    {
        std::vector<Rgba> result;
        for (size_t i = 0; i < count; ++i) result.push_back(meant(row, first + i));
        return result;
    }

    GLuint volume(const UploadRow& row)
    {
        GLuint name = bindNew(GL_TEXTURE_3D);
        glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(row.internalFormat), 3, 2, 4, 0, row.format, row.type, clientImage(row, 24).data());
        return name;
    }
};

TEST_P(TexImage, EveryLayoutOfEveryInternalFormat)
{
    for (const UploadRow& row : UploadRows) {
        for (GLenum textureTarget : {GL_TEXTURE_2D, GL_TEXTURE_RECTANGLE_ARB}) {
            bindNew(textureTarget);
            glTexImage2D(textureTarget, 0, static_cast<GLint>(row.internalFormat), 3, 5, 0, row.format, row.type, clientImage(row, 15).data());
            for (const ReadRow& read : ReadRows)
                EXPECT_EQ(image(textureTarget, 0, read.format, read.type, 15 * read.client), clientBytes(read, storedColours(row, 15)))
                    << read.name << " of " << row.name;
            EXPECT_EQ(glGetError(), GL_NO_ERROR);
        }
    }
}

TEST_P(TexImage, OddSizes)
{
    const UploadRow& row = UploadRows[10]; // RGBA to RGBA: stored the other way round
    for (auto [w, h] : {std::pair{1, 1}, {17, 1}, {2048, 2}, {1, 33}}) {
        bindNew(GL_TEXTURE_2D);
        auto texels = static_cast<size_t>(w * h);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, w, h, 0, row.format, row.type, clientImage(row, texels).data());
        for (const ReadRow& read : ReadRows)
            EXPECT_TRUE(image(GL_TEXTURE_2D, 0, read.format, read.type, texels * read.client) == clientBytes(read, storedColours(row, texels)))
                << read.name << " of " << w << " by " << h;
    }
}

TEST_P(TexImage, TheDirectWayTakesNoDrawAndNoBuffer)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 2, 2, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(16).data());
    clearLog();
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, 16), counting(16));
    auto made = calls();
    EXPECT_EQ(std::count(made.begin(), made.end(), "synchronizeTexture"), 1);
    EXPECT_EQ(std::count(made.begin(), made.end(), "getBytes"), 1);
    EXPECT_EQ(std::count(made.begin(), made.end(), "newBuffer"), 0);
    EXPECT_EQ(std::count(made.begin(), made.end(), "newTexture"), 0);
}

TEST_P(TexImage, EveryFaceOfACube)
{
    for (const ReadRow& read : ReadRows) {
        bindNew(GL_TEXTURE_CUBE_MAP);
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, Bytes(4, static_cast<uint8_t>(40 * face)).data());
        for (GLenum face = 0; face < 6; ++face) {
            float v = static_cast<float>(40 * face) / 255.0f;
            EXPECT_EQ(image(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, read.format, read.type, read.client), clientBytes(read, {{v, v, v, v}})) << read.name;
        }
    }
}

TEST_P(TexImage, EveryLevel)
{
    for (const ReadRow& read : ReadRows) {
        bindNew(GL_TEXTURE_2D);
        for (GLint level = 0; level < 4; ++level)
            glTexImage2D(GL_TEXTURE_2D, level, GL_RGB8, std::max(9 >> level, 1), std::max(4 >> level, 1), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         Bytes(144, static_cast<uint8_t>(50 * level)).data());
        for (GLint level = 0; level < 4; ++level) {
            auto texels = static_cast<size_t>(std::max(9 >> level, 1) * std::max(4 >> level, 1));
            float v = static_cast<float>(50 * level) / 255.0f;
            EXPECT_EQ(image(GL_TEXTURE_2D, level, read.format, read.type, texels * read.client), clientBytes(read, std::vector<Rgba>(texels, {v, v, v, v})))
                << read.name << " level " << level;
        }
    }
}

TEST_P(TexImage, OfALine)
{
    bindNew(GL_TEXTURE_1D);
    GLsizei width = intel() ? 1 : 7; // longer ones have a chain there, which no device makes
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, width, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(28).data());
    Bytes expected = counting(static_cast<size_t>(width) * 4);
    EXPECT_EQ(image(GL_TEXTURE_1D, 0, GL_RGBA, GL_UNSIGNED_BYTE, expected.size()), expected);
    for (size_t i = 0; i < expected.size(); i += 4) std::swap(expected[i], expected[i + 2]);
    EXPECT_EQ(image(GL_TEXTURE_1D, 0, GL_BGRA, GL_UNSIGNED_BYTE, expected.size()), expected);
}

TEST_P(TexImage, AllSlicesWhereNothingIsConverted)
{
    const UploadRow& row = UploadRows[17]; // RGBA to RGBA32F
    volume(row);
    EXPECT_EQ(image(GL_TEXTURE_3D, 0, GL_RGBA, GL_FLOAT, 24 * 16), clientImage(row, 24));
}

TEST_P(TexImage, AllSlicesWherePixelsAreCut)
{
    const UploadRow& row = UploadRows[17];
    volume(row);
    for (const ReadRow& read : ReadRows) {
        if (read.whole) continue;
        EXPECT_EQ(image(GL_TEXTURE_3D, 0, read.format, read.type, 24 * read.client), clientBytes(read, storedColours(row, 24))) << read.name;
    }
}

TEST_P(TexImage, Kept_read_3d_advance)
{
    const UploadRow& row = UploadRows[17];
    volume(row);
    for (const ReadRow& read : ReadRows) {
        if (!read.whole || read.read == MTL::PixelFormatRGBA32Float) continue;
        Bytes expected = clientBytes(read, storedColours(row, 6, 18)); // the last slice, where the first belongs
        expected.resize(24 * read.client, 0xEE);
        EXPECT_EQ(image(GL_TEXTURE_3D, 0, read.format, read.type, 24 * read.client), expected) << read.name;
    }
}

TEST_P(TexImage, Kept_image_unswizzled)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 4), counting(4)); // a draw would see an alpha of one
    glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE8, 1, 1, 0, GL_RED, GL_UNSIGNED_BYTE, counting(1).data());
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 4), (Bytes{1, 0, 0, 255}));
}

TEST_P(TexImage, WaitsForWhatWasDrawnIntoTheTexture)
{
    GLuint framebuffer = 0, name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 2, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, name, 0);
    SoftMetal::setCommandBufferDelay(20);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_BGRA, GL_UNSIGNED_BYTE, 8), (Bytes{0, 0, 255, 255, 0, 0, 255, 255}));
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, 8), (Bytes{0, 255, 0, 255, 0, 255, 0, 255}));
    SoftMetal::setCommandBufferDelay(0);
}

TEST_P(TexImage, DepthOfEveryDepthFormat)
{
    constexpr std::pair<GLenum, float> Internals[] = {
        {GL_DEPTH_COMPONENT16, 49151.0f / 65535.0f}, {GL_DEPTH_COMPONENT24, 12582911.0f / 16777215.0f}, {GL_DEPTH_COMPONENT32, 0.75f}, {GL_DEPTH24_STENCIL8, 12582911.0f / 16777215.0f}};
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0.75);
    for (auto [internal, value] : Internals) {
        GLuint framebuffer = 0, name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(internal), 3, 2, 0, GL_DEPTH_COMPONENT, GL_FLOAT, nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_RECTANGLE_ARB, name, 0);
        glDrawBuffer(GL_NONE);
        glClear(GL_DEPTH_BUFFER_BIT);
        auto got = image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_DEPTH_COMPONENT, GL_FLOAT, 24);
        EXPECT_EQ(got, bytesOf(std::vector<float>(6, value))) << internal;
        EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RED, GL_FLOAT, 24), got) << internal;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        commands().commandBufferEnd();
    }
}

TEST_P(TexImage, DepthOfAColourIsItsRed)
{
    bindNew(GL_TEXTURE_2D);
    const std::vector<float> data = {0.5f, 0.25f};
    glTexImage2D(GL_TEXTURE_2D, 0, GL_FLOAT_R_NV, 2, 1, 0, GL_RED, GL_FLOAT, data.data());
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT, GL_FLOAT, 8), bytesOf(data));
}

TEST_P(TexImage, LeavesNothingBehind)
{
    const UploadRow& row = UploadRows[17];
    volume(row);
    image(GL_TEXTURE_3D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 96);
    int64_t before = SoftMetal::objectsAlive("MTL::Texture") + SoftMetal::objectsAlive("MTL::Buffer");
    for (const ReadRow& read : ReadRows) image(GL_TEXTURE_3D, 0, read.format, read.type, 24 * read.client);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Texture") + SoftMetal::objectsAlive("MTL::Buffer"), before);
}

// ---- refusals ----

TEST_P(TexImage, TheTargetIsChecked)
{
    EXPECT_EQ(image(GL_PROXY_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, 4), Bytes(4, 0xEE));
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, 4), Bytes(4, 0xEE));
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    GLuint name = bindNew(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_3D, name);
    image(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, 4);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(TexImage, ATextureThatCannotBeMadeIsAnInvalidEnum)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_R3_G3_B2, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    image(GL_TEXTURE_2D, 0, GL_LUMINANCE, GL_FLOAT, 4); // the layout is looked at later
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    broken();
}

TEST_P(TexImage, AnUnknownLayoutIsAnInvalidOperation)
{
    bindNew(GL_TEXTURE_2D);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_LUMINANCE, GL_UNSIGNED_BYTE, 4), Bytes(4, 0xEE));
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(TexImage, ALevelThatTheTextureLacksIsReportedAndIgnored)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(64).data());
    for (GLint level : {5, 31, 33, -1}) {
        EXPECT_EQ(image(GL_TEXTURE_2D, level, GL_BGRA, GL_UNSIGNED_BYTE, 64), Bytes(64, 0xEE));
        EXPECT_FALSE(broken().empty());
        image(GL_TEXTURE_2D, level, GL_RGB, GL_FLOAT, 16 * 12);
        EXPECT_FALSE(broken().empty());
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(TexImage, WithoutMemoryNothingIsWritten)
{
    bindNew(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(64).data());
    for (const char* point : {"newBuffer", "newTexture"}) {
        for (uint64_t n = 1; n <= (point[3] == 'T' ? 2u : 1u); ++n) {
            SoftMetal::injectFault(point, n, false);
            EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGB, GL_FLOAT, 16 * 12), Bytes(16 * 12, 0xEE)) << point;
            SoftMetal::clearFaults();
        }
    }
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), counting(64));
}

INSTANTIATE_TEST_SUITE_P(Routes, TexImage, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
