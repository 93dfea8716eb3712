// SPDX-License-Identifier: Apache-2.0
// A host thread without an autorelease pool does not grow by what it uploads, reads and copies.
#include "textures/TextureFixture.h"

namespace textures
{

class Memory : public OnBothRoutes
{
protected:
    /// Every kind of call once: a texture with a late chain, reads of both kinds, a copy, a framebuffer object.
    void everything()
    {
        GLuint name = bindNew(GL_TEXTURE_2D), rectangle = 0, framebuffer = 0;
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(64).data());
        glTexImage2D(GL_TEXTURE_2D, 1, GL_RGBA8, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(16).data());
        image(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, 256);
        image(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, 64);
        rectangle = bindNew(GL_TEXTURE_RECTANGLE_ARB);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, rectangle, 0);
        glClear(GL_COLOR_BUFFER_BIT);
        pixels(0, 0, 1, 1, GL_RGBA, GL_FLOAT, 16);
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 1, 1, 0, 0, 1, 1);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteTextures(1, &name);
        glDeleteTextures(1, &rectangle);
    }
};

TEST_P(Memory, StaysFlat)
{
    SoftMetal::setCommandLog(false);
    for (int i = 0; i < 3; ++i)
        everything();
    commands().commandBufferWaitUntilCompleted();
    int64_t before = SoftMetal::objectsAlive();
    for (int i = 0; i < 40; ++i)
        everything();
    commands().commandBufferWaitUntilCompleted();
    EXPECT_LE(SoftMetal::objectsAlive(),
              before + 8); // the queue's thread may hold the last ones for a moment; a leak would show 40 times
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
}

INSTANTIATE_TEST_SUITE_P(Routes, Memory, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
