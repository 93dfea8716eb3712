// SPDX-License-Identifier: Apache-2.0
// Which textures a render pass gets, and the Metal texture behind a GL name.
#include "ZALMetalContext.h"
#include "support/ContextFixture.h"

namespace {

class Attachments : public support::ContextTest
{
protected:
    void SetUp() override
    {
        ContextTest::SetUp();
        if (!HasFatalFailure()) attachTextures(8, 8);
    }

    NS::SharedPtr<MTL::RenderPassDescriptor> descriptor() { return NS::TransferPtr(ZALMetalContextNewRenderDescriptor(&gl(), context)); }

    GLuint rectangle(GLenum internalFormat, GLenum format, GLenum type)
    {
        GLuint name = 0;
        glGenTextures(1, &name);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(internalFormat), 8, 8, 0, format, type, nullptr);
        return name;
    }

    MTL::Texture* metalOf(GLuint name)
    {
        void* texture = nullptr;
        EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(context, texture, name), 0);
        return static_cast<MTL::Texture*>(texture);
    }
};

TEST_F(Attachments, OfTheDefaultFramebufferAreTheContextsTextures)
{
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 0), color);
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 1), nullptr);
    EXPECT_EQ(getFramebufferDepthTexture(&gl(), context), depth);
    EXPECT_EQ(getFramebufferStencilTexture(&gl(), context), depth);
}

TEST_F(Attachments, AreLoadedAndStored)
{
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    auto pass = descriptor();
    auto* first = pass->colorAttachments()->object(0);
    EXPECT_EQ(first->texture(), color);
    EXPECT_EQ(first->loadAction(), MTL::LoadActionLoad);
    EXPECT_EQ(first->storeAction(), MTL::StoreActionStore);
    EXPECT_EQ(pass->depthAttachment()->texture(), depth);
    EXPECT_EQ(pass->depthAttachment()->loadAction(), MTL::LoadActionLoad);
    EXPECT_EQ(pass->depthAttachment()->storeAction(), MTL::StoreActionStore);
    EXPECT_EQ(pass->stencilAttachment()->texture(), depth);
    EXPECT_EQ(pass->stencilAttachment()->loadAction(), MTL::LoadActionLoad);
}

TEST_F(Attachments, DepthAndStencilAreThereWhileTheirTestsAreEnabled)
{
    EXPECT_EQ(descriptor()->depthAttachment()->texture(), nullptr);
    EXPECT_EQ(descriptor()->stencilAttachment()->texture(), nullptr);
    glEnable(GL_DEPTH_TEST);
    EXPECT_EQ(descriptor()->depthAttachment()->texture(), depth);
    EXPECT_EQ(descriptor()->stencilAttachment()->texture(), nullptr);
    glDisable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    EXPECT_EQ(descriptor()->depthAttachment()->texture(), nullptr);
    EXPECT_EQ(descriptor()->stencilAttachment()->texture(), depth);
}

TEST_F(Attachments, FollowTheDrawBufferMask)
{
    const GLenum buffers[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT2};
    glDrawBuffers(2, buffers);
    auto pass = descriptor();
    EXPECT_EQ(pass->colorAttachments()->object(0)->texture(), color);
    EXPECT_EQ(pass->colorAttachments()->object(2)->texture(), nullptr); // loaded and stored, of nothing
    EXPECT_EQ(pass->colorAttachments()->object(2)->loadAction(), MTL::LoadActionLoad);
    EXPECT_EQ(pass->colorAttachments()->object(2)->storeAction(), MTL::StoreActionStore);
    EXPECT_EQ(pass->colorAttachments()->object(1)->loadAction(), MTL::LoadActionDontCare);
}

TEST_F(Attachments, OfAFramebufferObjectAreItsTextures)
{
    GLuint colour = rectangle(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE), second = rectangle(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    GLuint depthName = rectangle(GL_DEPTH_COMPONENT32, GL_DEPTH_COMPONENT, GL_FLOAT), framebuffer = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, colour, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0 + 7, GL_TEXTURE_RECTANGLE_ARB, second, 0);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_RECTANGLE_ARB, depthName, 0);
    ASSERT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 0), metalOf(colour));
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 7), metalOf(second));
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 3), nullptr);
    EXPECT_EQ(getFramebufferDepthTexture(&gl(), context), metalOf(depthName));
    EXPECT_EQ(getFramebufferStencilTexture(&gl(), context), metalOf(depthName));
    glDeleteTextures(1, &second); // still named by the framebuffer
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 7), nullptr);
    glDeleteFramebuffers(1, &framebuffer); // still bound
    EXPECT_EQ(getFramebufferColorTexture(&gl(), context, 0), nullptr);
    EXPECT_EQ(getFramebufferDepthTexture(&gl(), context), nullptr);
}

// ---- the Metal texture behind a name ------------------------------------------------------------------------------------------

TEST_F(Attachments, NameZeroHasNoTextureAndIsNoError)
{
    void* found = this;
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(context, found, 0), 0);
    EXPECT_EQ(found, nullptr);
}

TEST_F(Attachments, AnUnknownNameIsRefused)
{
    void* found = this;
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(context, found, 77), 256);
    EXPECT_EQ(found, nullptr);
}

TEST_F(Attachments, WithoutAContextThereIsNoTexture)
{
    void* found = this;
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(nullptr, found, 1), 6);
    EXPECT_EQ(found, nullptr);
}

TEST_F(Attachments, ATextureIsFoundByItsName)
{
    GLuint name = rectangle(GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE);
    MTL::Texture* metal = metalOf(name);
    ASSERT_NE(metal, nullptr);
    EXPECT_EQ(metal->width(), 8u);
    EXPECT_EQ(metalOf(name), metal);
}

} // namespace
