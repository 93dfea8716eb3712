// SPDX-License-Identifier: Apache-2.0
// Framebuffer objects: binding, attachments, draw buffers, and pixels in all eight of them.
#include "textures/TextureFixture.h"

namespace textures
{

class Framebuffer : public OnBothRoutes
{
protected:
    GLuint generated()
    {
        GLuint name = 0;
        glGenFramebuffers(1, &name);
        return name;
    }
    GLuint bound()
    {
        GLuint name = generated();
        glBindFramebuffer(GL_FRAMEBUFFER, name);
        return name;
    }
    GLuint rectangle(GLenum internalFormat = GL_RGBA8, GLsizei side = 2)
    {
        GLuint name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(internalFormat), side, side, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        return name;
    }
    void attach(GLenum attachment, GLuint texture) { glFramebufferTexture2D(GL_FRAMEBUFFER, attachment, GL_TEXTURE_RECTANGLE_ARB, texture, 0); }

    ZALGLFramebufferObject& framebuffer(GLuint name) { return *gl().contextObjects->framebuffers.Find(name); }
    /// The mask of the bound object, which the state's copy equals.
    uint32_t mask()
    {
        uint32_t own = framebuffer(gl().pipelineDescription.boundFramebuffer).drawBuffersMask;
        EXPECT_EQ(gl().pipelineDescription.drawBufferMask, own);
        return own;
    }
    /// Whether a call commits the work recorded so far.
    template <class Call>
    bool commits(Call call)
    {
        commands().commandBufferStart();
        clearLog();
        call();
        bool committed = count("commit") == 1;
        commands().commandBufferEnd();
        return committed;
    }
};

// ---- binding ----

TEST_P(Framebuffer, NewOnesAreEmptyAndDrawToTheFirstBuffer)
{
    GLuint name = generated();
    EXPECT_EQ(name, 1u); // framebuffer 0 is there already
    for (GLuint n : {0u, name}) {
        EXPECT_EQ(framebuffer(n).depthAttachment, 0u);
        for (uint32_t color_attachment : framebuffer(n).colorAttachments) EXPECT_EQ(color_attachment, 0u);
        EXPECT_EQ(framebuffer(n).drawBuffersMask, 1u);
    }
}

TEST_P(Framebuffer, BindingCommitsAndBringsTheDrawBuffers)
{
    GLuint first = bound();
    constexpr GLenum Two[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, Two);
    EXPECT_TRUE(commits([&] { glBindFramebuffer(0, 0); })); // the target is not examined
    EXPECT_EQ(mask(), 1u);
    EXPECT_TRUE(commits([&] { glBindFramebuffer(GL_READ_FRAMEBUFFER, first); }));
    EXPECT_EQ(mask(), 3u);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Framebuffer, BindingTheBoundOneIsNothing)
{
    GLuint name = bound();
    EXPECT_FALSE(commits([&] { glBindFramebuffer(GL_FRAMEBUFFER, name); }));
}

TEST_P(Framebuffer, Kept_bind_framebuffer_commits)
{
    GLuint name = bound();
    EXPECT_TRUE(commits([&] { glBindFramebuffer(GL_FRAMEBUFFER, name + 1); }));
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_EQ(gl().pipelineDescription.boundFramebuffer, name);
}

// ---- status ----

TEST_P(Framebuffer, Kept_default_framebuffer_status)
{
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), 0u);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(Framebuffer, Kept_framebuffer_always_complete)
{
    GLuint name = bound();
    EXPECT_EQ(glCheckFramebufferStatus(0), GLenum{0x8CD5}); // nothing attached; the target is not examined
    attach(GL_COLOR_ATTACHMENT0, rectangle(GL_DEPTH_COMPONENT32));
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{0x8CD5});
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    glDeleteFramebuffers(1, &name);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), 0u);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

// ---- attachments ----

TEST_P(Framebuffer, EveryAttachmentPoint)
{
    GLuint name = bound();
    for (GLuint i = 0; i < 8; ++i) {
        GLuint texture = rectangle();
        attach(GL_COLOR_ATTACHMENT0 + i, texture);
        EXPECT_EQ(framebuffer(name).colorAttachments[i], texture);
        EXPECT_TRUE(object(texture).isRenderTarget);
    }
    for (GLenum point : {GL_DEPTH_ATTACHMENT, GL_DEPTH_STENCIL_ATTACHMENT}) {
        GLuint texture = rectangle(GL_DEPTH24_STENCIL8);
        attach(point, texture);
        EXPECT_EQ(framebuffer(name).depthAttachment, texture);
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Framebuffer, Kept_attach_marks_first)
{
    GLuint name = bound();
    for (GLenum point : {GL_STENCIL_ATTACHMENT, GL_COLOR_ATTACHMENT0 + 8, 0, GL_BACK}) {
        GLuint texture = rectangle();
        ASSERT_NE(metal(texture), nullptr);
        attach(point, texture);
        EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
        EXPECT_TRUE(object(texture).isRenderTarget); // and the image is gone
        EXPECT_FALSE(object(texture).HasMTLTexture());
    }
    EXPECT_EQ(framebuffer(name).depthAttachment, 0u);
}

TEST_P(Framebuffer, Kept_attach_rectangle_only)
{
    GLuint name = bound(), texture = rectangle();
    const auto refused = [&](GLenum textureTarget, GLuint texture_name, GLint level) {
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, textureTarget, texture_name, level);
        EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
        EXPECT_EQ(framebuffer(name).colorAttachments[0], 0u);
    };
    for (GLenum textureTarget : {GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP_POSITIVE_X, 0}) refused(textureTarget, texture, 0);
    refused(GL_TEXTURE_RECTANGLE_ARB, texture, 1);
    EXPECT_FALSE(object(texture).isRenderTarget);
}

TEST_P(Framebuffer, Kept_no_detach)
{
    GLuint name = bound(), texture = rectangle();
    attach(GL_COLOR_ATTACHMENT0, texture);
    for (GLuint absent : {GLuint{0}, texture + 1}) {
        attach(GL_COLOR_ATTACHMENT0, absent);
        EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
        EXPECT_EQ(framebuffer(name).colorAttachments[0], texture);
    }
}

TEST_P(Framebuffer, TheDefaultOneTakesNoAttachments)
{
    GLuint texture = rectangle();
    attach(GL_COLOR_ATTACHMENT0, texture);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    EXPECT_FALSE(object(texture).isRenderTarget);
}

TEST_P(Framebuffer, ADeletedOneTakesNone)
{
    GLuint name = bound(), texture = rectangle();
    glDeleteFramebuffers(1, &name);
    attach(GL_COLOR_ATTACHMENT0, texture);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
    glDrawBuffer(GL_COLOR_ATTACHMENT0);
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(Framebuffer, Kept_attach_keeps_pass)
{
    bound();
    GLuint first = rectangle(), second = rectangle();
    attach(GL_COLOR_ATTACHMENT0, first);
    glViewport(0, 0, 2, 2);
    drawQuadWith("!!ARBfp1.0\nTEMP c;\nMOV c, 0.2;\nMOV result.color, c;\nEND\n");
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT); // opens a pass
    attach(GL_COLOR_ATTACHMENT0, second);
    drawCorners(WholeImage);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_BGRA, GL_UNSIGNED_BYTE, 16), Bytes(16)); // nothing in the second
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, first);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_BGRA, GL_UNSIGNED_BYTE, 16), Bytes(16, 51));
}

TEST_P(Framebuffer, AttachingDropsTheImage)
{
    bound();
    GLuint name = bindNew(GL_TEXTURE_RECTANGLE_ARB);
    glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    attach(GL_COLOR_ATTACHMENT0, name);
    EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_BGRA, GL_UNSIGNED_BYTE, 4), Bytes(4));
    attach(GL_COLOR_ATTACHMENT0, name); // every time
    EXPECT_FALSE(object(name).HasMTLTexture());
}

// ---- draw buffers ----

TEST_P(Framebuffer, DrawBuffersMakeAMask)
{
    bound();
    struct Row
    {
        std::vector<GLenum> buffers;
        uint32_t mask;
    };
    for (const Row& row : {Row{{0x8CE0, 0x8CE2}, 5}, Row{{0x8CE1, GL_NONE}, 0}, Row{{GL_NONE, 0x8CE1}, 0}, Row{{0x8CE7}, 128}, Row{{0x402}, 1}, Row{{0x405}, 1},
                           Row{{0x405, 0x8CE3}, 9}, Row{{0x8CE4, 0x8CE4}, 16}, Row{{}, 0}, Row{{0x8CE7, 0x8CE6, 0x8CE5, 0x8CE4, 0x8CE3, 0x8CE2, 0x8CE1, 0x8CE0}, 255}}) {
        glDrawBuffers(static_cast<GLsizei>(row.buffers.size()), row.buffers.data());
        EXPECT_EQ(mask(), row.mask);
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(Framebuffer, Kept_draw_buffers_none)
{
    bound();
    constexpr GLenum Buffers[] = {GL_COLOR_ATTACHMENT1, GL_NONE, GL_FRONT, GL_COLOR_ATTACHMENT2}; // what follows is not read
    glDrawBuffers(4, Buffers);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    EXPECT_EQ(mask(), 0u);
}

TEST_P(Framebuffer, ANegativeCountIsNone)
{
    bound();
    glDrawBuffers(-1, nullptr);
    EXPECT_EQ(mask(), 0u);
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Framebuffer, AnyOtherDrawBufferIsRefused)
{
    bound();
    glDrawBuffer(GL_COLOR_ATTACHMENT3);
    for (GLenum value = 1; value <= 0xFFFF; ++value) {
        if (value == GL_BACK_LEFT || value == GL_BACK || (value >= GL_COLOR_ATTACHMENT0 && value <= GL_COLOR_ATTACHMENT0 + 7)) continue;
        const GLenum buffers[] = {GL_COLOR_ATTACHMENT0, value};
        glDrawBuffers(2, buffers);
        ASSERT_EQ(glGetError(), GL_INVALID_ENUM) << value;
    }
    EXPECT_EQ(mask(), 8u);
}

TEST_P(Framebuffer, AChangeOfTheMaskCommits)
{
    EXPECT_FALSE(commits([] { glDrawBuffer(GL_BACK); }));
    EXPECT_FALSE(commits([] { glDrawBuffer(GL_FRONT); }));
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    EXPECT_TRUE(commits([] { glDrawBuffer(GL_NONE); }));
    EXPECT_FALSE(commits([] { glDrawBuffer(GL_NONE); }));
    EXPECT_TRUE(commits([] { glDrawBuffer(GL_BACK_LEFT); }));
    EXPECT_EQ(mask(), 1u);
}

// ---- pixels ----

/// Writes n + 1 eighths to draw buffer n.
std::string eightOutputs()
{
    std::string text = "!!ARBfp1.0\nTEMP c;\n";
    for (int n = 0; n < 8; ++n)
        text += "MOV c, " + std::to_string((n + 1) / 8.0) + ";\nMOV result.color[" + std::to_string(n) + "], c;\n";
    return text + "END\n";
}

TEST_P(Framebuffer, EightDrawBuffersOfTheirOwnFormats)
{
    constexpr GLenum Formats[8] = {GL_RGBA32F_ARB, GL_RGBA16F_ARB, GL_RGBA8, GL_RGB8, GL_FLOAT_R_NV, GL_INTENSITY16F_ARB, GL_LUMINANCE8, GL_RGBA32F_ARB};
    bound();
    GLuint names[8];
    GLenum buffers[8];
    for (GLuint i = 0; i < 8; ++i) {
        names[i] = rectangle(Formats[i]);
        buffers[i] = GL_COLOR_ATTACHMENT0 + i;
        attach(buffers[i], names[i]);
    }
    glDrawBuffers(8, buffers);
    glViewport(0, 0, 2, 2);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    drawQuadWith(eightOutputs());
    for (GLuint i = 0; i < 8; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, names[i]);
        float value = static_cast<float>(i + 1) / 8;
        bool bytes = Formats[i] == GL_RGBA8 || Formats[i] == GL_RGB8 || Formats[i] == GL_LUMINANCE8;
        float wanted = bytes ? static_cast<float>(static_cast<int>(value * 255 + 0.5f)) / 255.0f : value;
        EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RED, GL_FLOAT, 16), bytesOf(std::vector<float>(4, wanted))) << i;
    }
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

TEST_P(Framebuffer, OnlyTheChosenBuffersAreWritten)
{
    bound();
    GLuint names[3];
    for (GLuint i = 0; i < 3; ++i) attach(GL_COLOR_ATTACHMENT0 + i, names[i] = rectangle(GL_RGBA32F_ARB));
    constexpr GLenum Buffers[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT2};
    glDrawBuffers(2, Buffers);
    glViewport(0, 0, 2, 2);
    drawQuadWith(eightOutputs());
    const float wanted[] = {0.125f, 0, 0.375f};
    for (GLuint i = 0; i < 3; ++i) {
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, names[i]);
        EXPECT_EQ(image(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RED, GL_FLOAT, 16), bytesOf(std::vector<float>(4, wanted[i]))) << i;
    }
}

TEST_P(Framebuffer, WhatWasDrawnIsATextureOfTheNextDraw)
{
    GLuint name = bound(), texture = rectangle(GL_RGBA32F_ARB);
    attach(GL_COLOR_ATTACHMENT0, texture);
    glClearColor(0.5f, 0.25f, 0.125f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    auto got = drawn(GL_TEXTURE_RECTANGLE_ARB, {{{0, 0}, {2, 0}, {0, 2}, {2, 2}}}, 2, 2);
    EXPECT_EQ(got, std::vector<Rgba>(4, Rgba{0.5f, 0.25f, 0.125f, 1}));
    glDeleteFramebuffers(1, &name);
}

TEST_P(Framebuffer, DepthThatWasDrawnIsShownInAllChannels)
{
    bound();
    GLuint texture = rectangle(GL_DEPTH_COMPONENT32);
    attach(GL_DEPTH_ATTACHMENT, texture);
    glDrawBuffer(GL_NONE);
    glEnable(GL_DEPTH_TEST);
    glClearDepth(0.375);
    glClear(GL_DEPTH_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    auto got = drawn(GL_TEXTURE_RECTANGLE_ARB, {{{0, 0}, {2, 0}, {0, 2}, {2, 2}}}, 2, 2);
    EXPECT_EQ(got, std::vector<Rgba>(4, Rgba{0.375f, 0.375f, 0.375f, 0.375f}));
}

INSTANTIATE_TEST_SUITE_P(Routes, Framebuffer, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
