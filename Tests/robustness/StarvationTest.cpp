// SPDX-License-Identifier: Apache-2.0
// Every allocation of the library fails in its turn, alone or with all that follow. Nothing ends the process, what the
// calls say is what their manual allows, and with memory again the same context draws the frame as if nothing had been.
#include "ZALGLContextObjects.h"
#include "robustness/HostMemory.h"
#include "support/ContextFixture.h"

#include <array>
#include <cstring>
#include <string>

namespace
{

using robustness::Fault, robustness::Starved;

constexpr uint32_t Side = 8;
constexpr const char* VertexProgram =
    "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.attrib[8];\nEND\n";
constexpr const char* FragmentProgram =
    "!!ARBfp1.0\nTEMP texel;\nTEX texel, fragment.texcoord[0], texture[0], 2D;\nMOV result.color, texel;\nEND\n";

class Starvation : public support::ContextTest
{
protected:
    void SetUp() override
    {
        ContextTest::SetUp();
        if (HasFatalFailure()) return;
        SoftMetal::setCommandLog(false);
        SoftMetal::setLogSink([](const std::string&) {}); // a line for every failure
        attachTextures(Side, Side);
        glViewport(0, 0, Side, Side);
        glGenProgramsARB(2, programs);
        glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programs[0]);
        glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs[1]);
        ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, VertexProgram), static_cast<GLenum>(GL_NO_ERROR));
        ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, FragmentProgram), static_cast<GLenum>(GL_NO_ERROR));
        texels.fill(200);
    }

    void TearDown() override
    {
        SoftMetal::setLogSink({});
        ContextTest::TearDown();
    }

    static GLenum load(GLenum target, const char* text)
    {
        glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(text)), text);
        return glGetError();
    }

    /// Objects of all kinds are made, drawn with, read and deleted; the pixel in the middle is what was uploaded.
    void frame()
    {
        GLuint buffers[2] = {}, texture = 0, target = 0, framebuffer = 0;
        const float corners[8] = {-1, -1, 3, -1, -1, 3, 0, 0};
        const uint16_t indices[3] = {0, 1, 2};
        glGenBuffers(2, buffers);
        glBindBuffer(GL_ARRAY_BUFFER, buffers[0]);
        glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 4, 4, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
        glGenTextures(1, &target);
        glBindTexture(GL_TEXTURE_RECTANGLE_ARB, target);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGBA8, Side, Side, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_RECTANGLE_ARB, target, 0);
        draw(buffers);
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        draw(buffers);
        glReadPixels(4, 4, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, pixel.data());
        glDeleteBuffers(2, buffers);
        glDeleteTextures(1, &texture);
        glDeleteTextures(1, &target);
        if (framebuffer) glDeleteFramebuffers(1, &framebuffer); // name 0 would be that of the default one
    }

    void draw(const GLuint* buffers)
    {
        glClear(GL_COLOR_BUFFER_BIT);
        glVertexAttribPointerARB(0, 2, GL_FLOAT, GL_FALSE, 8, nullptr);
        glVertexAttribPointerARB(8, 2, GL_FLOAT, GL_FALSE, 8, nullptr);
        glEnableVertexAttribArrayARB(0);
        glEnableVertexAttribArrayARB(8);
        if (buffers[1])
            glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, nullptr); // without one the process would end
        glBegin(GL_TRIANGLES);
        for (int corner = 0; corner < 3; ++corner) {
            glVertexAttrib4fARB(8, 0.5f, 0.5f, 0, 1);
            glVertexAttrib4fARB(0, corner == 1 ? 3.0f : -1.0f, corner == 2 ? 3.0f : -1.0f, 0, 1);
        }
        glEnd();
    }

    void expectFrame()
    {
        pixel.fill(0);
        frame();
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
        EXPECT_EQ(pixel, (std::array<uint8_t, 4>{200, 200, 200, 255}));
    }

    /// The caches are filled by a first frame; without it a frame fills them itself.
    void forgetPipelines()
    {
        glDeleteProgramsARB(2, programs);
        glGenProgramsARB(2, programs);
        glBindProgramARB(GL_VERTEX_PROGRAM_ARB, programs[0]);
        glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs[1]);
    }

    GLuint programs[2] = {};
    std::array<uint8_t, 4 * 4 * 3> texels{};
    std::array<uint8_t, 4> pixel{};
};

bool isExpected(GLenum error)
{
    return error == GL_NO_ERROR || error == GL_OUT_OF_MEMORY || error == GL_INVALID_OPERATION ||
           error == GL_INVALID_VALUE;
}

/// A texture that could not be made is one that a draw does not find; nothing else may be told of.
void expectOnlyMissingBindings()
{
    for (const SoftMetal::Message& message : SoftMetal::takeMessages())
        EXPECT_EQ(message.rule.rfind("draw.missing-", 0), 0u) << message.sentence;
}

TEST_F(Starvation, OfAFrame)
{
    expectFrame();
    const size_t calls = robustness::allocationsOf([&] { frame(); });
    ASSERT_GT(calls, 0u);
    for (Fault fault : {Fault::Once, Fault::Forever}) {
        for (size_t call = 0; call < calls; ++call) {
            SCOPED_TRACE(testing::Message() << "allocation " << call << " of " << calls);
            {
                Starved starved(call, fault);
                frame();
            }
            EXPECT_TRUE(isExpected(glGetError()));
            expectOnlyMissingBindings();
            expectFrame();
        }
    }
}

/// What a frame remembers for the next ones: functions, pipelines, vertex layouts.
TEST_F(Starvation, OfTheCachesOfAFirstFrame)
{
    auto fresh = [&] {
        forgetPipelines();
        ASSERT_EQ(load(GL_VERTEX_PROGRAM_ARB, VertexProgram), static_cast<GLenum>(GL_NO_ERROR));
        ASSERT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, FragmentProgram), static_cast<GLenum>(GL_NO_ERROR));
    };
    fresh();
    const size_t calls = robustness::allocationsOf([&] { frame(); });
    for (size_t call = 0; call < calls; ++call) {
        SCOPED_TRACE(testing::Message() << "allocation " << call << " of " << calls);
        fresh();
        {
            Starved starved(call);
            frame();
        }
        EXPECT_TRUE(isExpected(glGetError()));
        expectOnlyMissingBindings();
        expectFrame();
    }
}

TEST_F(Starvation, OfLoadingAProgram)
{
    const size_t calls = robustness::allocationsOf([&] { load(GL_FRAGMENT_PROGRAM_ARB, FragmentProgram); });
    ASSERT_GT(calls, 0u);
    for (size_t call = 0; call < calls; ++call) {
        SCOPED_TRACE(testing::Message() << "allocation " << call << " of " << calls);
        GLenum error = GL_NO_ERROR;
        {
            Starved starved(call, Fault::Forever);
            error = load(GL_FRAGMENT_PROGRAM_ARB, FragmentProgram);
        }
        EXPECT_TRUE(error == GL_OUT_OF_MEMORY || error == GL_INVALID_OPERATION) << error;
    }
    EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, FragmentProgram), static_cast<GLenum>(GL_NO_ERROR));
    expectFrame();
}

TEST_F(Starvation, OfLoadingMetalSource)
{
    const char* source = "#include <metal_stdlib>\nfragment float4 ShaderFunc() { return float4(1); }\n";
    auto loadSource = [&] {
        glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL,
                           static_cast<GLsizei>(std::strlen(source)), source);
        return glGetError();
    };
    ASSERT_GT(robustness::allocationsOf([&] { loadSource(); }), 0u);
    GLenum error = GL_NO_ERROR;
    {
        Starved starved(0);
        error = loadSource();
    }
    EXPECT_EQ(error, static_cast<GLenum>(GL_OUT_OF_MEMORY));
    EXPECT_EQ(loadSource(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(Starvation, OfTheRowsOfAnUpload)
{
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 4, 4, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    {
        Starved starved(0);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 4, 4, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_OUT_OF_MEMORY));
}

TEST_F(Starvation, OfNames)
{
    GLuint names[4] = {9, 9, 9, 9};
    {
        Starved starved(0, Fault::Forever);
        glGenBuffers(1, names);
        glGenTextures(1, names + 1);
        glGenFramebuffers(1, names + 2);
        glGenProgramsARB(1, names + 3);
    }
    for (GLuint name : names)
        EXPECT_EQ(name, 0u);
    glGenBuffers(1, names);
    EXPECT_NE(names[0], 0u);
}

template <class Create>
void starveCreation(ZALMetalContext* current, const Create& create)
{
    ZALMetalContext* made = nullptr;
    int result = 0;
    const size_t calls = robustness::allocationsOf([&] { result = create(made); });
    ASSERT_EQ(result, ZALMetalResultSuccess);
    ZALMetalContextDestroy(made);
    ZALMetalContextMakeCurrent(current);
    const int64_t objects = SoftMetal::objectsAlive();
    for (Fault fault : {Fault::Once, Fault::Forever}) {
        for (size_t call = 0; call < calls; ++call) {
            SCOPED_TRACE(testing::Message() << "allocation " << call << " of " << calls);
            ZALMetalContext* other = current;
            auto* pool = NS::AutoreleasePool::alloc()->init();
            {
                Starved starved(call, fault);
                result = create(other);
            }
            pool->release();
            EXPECT_EQ(result, ZALMetalResultOutOfMemory);
            EXPECT_EQ(other, current);
            EXPECT_EQ(ZALMetalContextGetCurrent(), current);
            EXPECT_EQ(SoftMetal::objectsAlive(), objects);
        }
    }
}

TEST_F(Starvation, OfAContext)
{
    starveCreation(
        context, [&](ZALMetalContext*& made) { return ZALMetalContextInitFromMTLCommandQueue(made, nullptr, queue); });
    expectFrame();
}

TEST_F(Starvation, OfAContextThatSharesObjects)
{
    starveCreation(
        context, [&](ZALMetalContext*& made) { return ZALMetalContextInitFromMTLCommandQueue(made, context, queue); });
    expectFrame();
}

TEST_F(Starvation, OfAContextFromAShareContext)
{
    starveCreation(context, [&](ZALMetalContext*& made) { return ZALMetalContextInitFromShareContext(made, context); });
    expectFrame();
}

TEST_F(Starvation, OfTheNormaliser)
{
    const char* text = "!!ARBvp1.0\nPARAM table[2] = { program.env[0..1] };\nTEMP a;\nLIT a, table[1];\nMOV "
                       "result.position, a;\nEND\n";
    char out[4096], message[64];
    size_t needed = 0;
    int result = 0;
    auto normalise = [&] {
        result = ZALMetalNormaliseProgram(text, std::strlen(text), out, sizeof out, &needed, message, sizeof message);
    };
    const size_t calls = robustness::allocationsOf(normalise);
    ASSERT_EQ(result, ZALMetalResultSuccess);
    ASSERT_GT(calls, 0u);
    for (size_t call = 0; call < calls; ++call) {
        Starved starved(call);
        normalise();
        EXPECT_EQ(result, ZALMetalResultOutOfMemory) << "allocation " << call;
    }
}

} // namespace
