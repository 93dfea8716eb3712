// SPDX-License-Identifier: Apache-2.0
// Copies from the framebuffer into textures.
#include "textures/Client.h"

namespace textures
{

class Copy : public OnBothRoutes
{
protected:
    /// A default framebuffer of 4 by 4 whose pixel (x, y) is 10 x red and 10 y green, counted from the first row.
    void places(MTL::PixelFormat format)
    {
        target(4, 4, format);
        Bytes data;
        for (uint8_t i = 0; i < 16; ++i)
            for (uint8_t c : {static_cast<uint8_t>(i % 4 * 10), static_cast<uint8_t>(i / 4 * 10), uint8_t{7}, uint8_t{255}}) data.push_back(c);
        GLuint name = bindNew(GL_TEXTURE_2D);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, data.data());
        drawQuad(GL_TEXTURE_2D, WholeImage);
        commands().commandBufferEnd();
        glDeleteTextures(1, &name);
    }
    GLuint empty(GLenum textureTarget, GLenum internalFormat)
    {
        GLuint name = bindNew(textureTarget);
        glTexImage2D(textureTarget, 0, static_cast<GLint>(internalFormat), 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        return name;
    }
    /// The texture after columns 1 and 2, rows 1 to 3 have come to (2, 0).
    static Bytes expected()
    {
        Bytes result(64);
        for (size_t y = 0; y < 3; ++y)
            for (size_t x = 0; x < 2; ++x) {
                const uint8_t pixel[4] = {static_cast<uint8_t>((x + 1) * 10), static_cast<uint8_t>((y + 1) * 10), 7, 255};
                std::copy(pixel, pixel + 4, result.begin() + static_cast<long>((y * 4 + x + 2) * 4));
            }
        return result;
    }
    void copyAndExpect(GLenum textureTarget)
    {
        glCopyTexSubImage2D(textureTarget, 0, 2, 0, 1, 1, 2, 3);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        EXPECT_EQ(image(textureTarget, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), expected());
    }
};

TEST_P(Copy, OfOneFormatGoesOverTheBlitEncoder)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGBA8);
    clearLog();
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 2, 0, 1, 1, 2, 3);
    auto made = calls();
    EXPECT_EQ(std::count(made.begin(), made.end(), "copyFromTexture"), 1);
    EXPECT_EQ(std::count(made.begin(), made.end(), "renderCommandEncoder"), 0);
    EXPECT_EQ(std::count(made.begin(), made.end(), "commit"), 1);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), expected());
}

TEST_P(Copy, OfAnotherFormatIsDrawn)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGB8);
    clearLog();
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 2, 0, 1, 1, 2, 3);
    EXPECT_EQ(count("renderCommandEncoder"), 1u);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), expected());
}

TEST_P(Copy, IntoARectangleThatIsATargetIsDrawnStraight)
{
    places(MTL::PixelFormatBGRA8Unorm);
    GLuint name = empty(GL_TEXTURE_RECTANGLE_ARB, GL_RGB8);
    object(name).MarkAsRenderTarget();
    ASSERT_NE(metal(name), nullptr);
    clearLog();
    glCopyTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 2, 0, 1, 1, 2, 3);
    EXPECT_EQ(count("newTexture"), 0u);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), expected());
}

TEST_P(Copy, FromTheBoundFramebufferObject)
{
    GLuint framebuffer = 0, source = bindNew(GL_TEXTURE_RECTANGLE_ARB);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA32F_ARB, 4, 4, 0, GL_RGBA, GL_FLOAT, nullptr);
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, source, 0);
    glClearColor(0.2f, 0.4f, 0.6f, 0.8f);
    glClear(GL_COLOR_BUFFER_BIT);
    empty(GL_TEXTURE_2D, GL_RGBA8);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, 4, 4);
    Bytes got = image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64);
    for (size_t i = 0; i < 64; ++i) ASSERT_EQ(got[i], (i % 4 + 1) * 51);
}

TEST_P(Copy, IntoFacesAndLevels)
{
    for (GLenum internal : {GL_RGBA8, GL_RGB8}) { // copied and drawn
        places(MTL::PixelFormatBGRA8Unorm);
        bindNew(GL_TEXTURE_CUBE_MAP);
        for (GLint level = 0; level < 2; ++level)
            for (GLenum face = 0; face < 6; ++face)
                glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, static_cast<GLint>(internal), 8 >> level, 8 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE, Bytes(256).data());
        glCopyTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z, 1, 2, 0, 1, 1, 2, 3);
        for (GLenum face = 0; face < 6; ++face) {
            Bytes got = image(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 1, GL_RGBA, GL_UNSIGNED_BYTE, 64);
            EXPECT_EQ(got, face == 5 ? expected() : Bytes(64)) << internal << " face " << face;
            EXPECT_EQ(image(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA, GL_UNSIGNED_BYTE, 256), Bytes(256));
        }
    }
}

TEST_P(Copy, OfDepth)
{
    attachTextures(4, 4, MTL::PixelFormatBGRA8Unorm, MTL::PixelFormatDepth32Float_Stencil8);
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0.375);
    glClear(GL_DEPTH_BUFFER_BIT);
    for (GLenum internal : {GL_DEPTH_COMPONENT32, GL_DEPTH_COMPONENT16}) {
        empty(GL_TEXTURE_RECTANGLE_ARB, internal);
        glCopyTexSubImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, 0, 0, 0, 0, 4, 4);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        float value = internal == GL_DEPTH_COMPONENT16 ? 24576.0f / 65535.0f : 0.375f;
        EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_DEPTH_COMPONENT, GL_FLOAT, 64), bytesOf(std::vector<float>(16, value)));
    }
}

// ---- refusals ----

TEST_P(Copy, TheTargetAndTheLevelAreChecked)
{
    places(MTL::PixelFormatBGRA8Unorm);
    const auto copy = [](GLenum textureTarget, GLint level) { glCopyTexSubImage2D(textureTarget, level, 0, 0, 0, 0, 1, 1); };
    copy(GL_PROXY_TEXTURE_2D, 0);
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    copy(GL_TEXTURE_3D, 0);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE); // nothing bound
    empty(GL_TEXTURE_2D, GL_RGBA8);
    copy(GL_TEXTURE_2D, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE); // never specified
}

TEST_P(Copy, ALevelBeyondTheTexturesIsNothing)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGBA8);
    glTexImage2D(GL_TEXTURE_2D, 9, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    clearLog();
    glCopyTexSubImage2D(GL_TEXTURE_2D, 9, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    EXPECT_EQ(count("copyFromTexture"), 0u);
}

TEST_P(Copy, NothingToCopyFromOrToIsAnInvalidOperation)
{
    empty(GL_TEXTURE_2D, GL_RGBA8);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION); // no default framebuffer
    target(4, 4, MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_DEPTH_COMPONENT32);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION); // which has no depth
    empty(GL_TEXTURE_2D, GL_R3_G3_B2);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION); // no texture
    broken();
}

TEST_P(Copy, BeyondTheEdgesIsReportedAndIgnored)
{
    places(MTL::PixelFormatBGRA8Unorm);
    for (GLenum internal : {GL_RGBA8, GL_RGB8}) {
        GLuint name = empty(GL_TEXTURE_2D, internal);
        for (auto [x, y, w, h] : {std::array{3, 0, 2, 1}, {0, 3, 1, 2}, {-1, 0, 1, 1}, {0, 0, 5, 1}}) {
            glCopyTexSubImage2D(GL_TEXTURE_2D, 0, x, y, 0, 0, w, h);
            commands().commandBufferWaitUntilCompleted();
            EXPECT_FALSE(broken().empty()) << x << " " << y;
        }
        EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), Bytes(64));
        glDeleteTextures(1, &name);
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Copy, OfAnotherFormatAndNoSizeIsNothing)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGB8);
    const Bytes before = image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64);
    for (auto [width, height] : {std::pair(0, 1), std::pair(1, 0), std::pair(-1, 3), std::pair(INT32_MAX, 1)})
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 2, 0, 1, 1, width, height);
    SoftMetal::takeMessages(); // the texture that cannot be made
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), before);
}

TEST_P(Copy, WithoutMemoryIsNothingAndTheNextOneIsMade)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGB8);
    const Bytes before = image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64);
    SoftMetal::injectFault("newTexture", 1, false);
    glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 2, 0, 1, 1, 2, 3);
    EXPECT_EQ(image(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 64), before);
    SoftMetal::clearFaults();
    copyAndExpect(GL_TEXTURE_2D);
}

TEST_P(Copy, TheOthersAreNotOffered)
{
    places(MTL::PixelFormatBGRA8Unorm);
    empty(GL_TEXTURE_2D, GL_RGBA8);
    clearLog();
    glCopyTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 0, 0, 2, 2, 0);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    glCopyTexSubImage1D(GL_TEXTURE_1D, 0, 0, 0, 0, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    glCopyTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, 0, 0, 1, 1);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_TRUE(log().empty());
    EXPECT_EQ(levelParameter(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH), 4);
}

INSTANTIATE_TEST_SUITE_P(Routes, Copy, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
