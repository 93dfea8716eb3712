// SPDX-License-Identifier: Apache-2.0
// The counters that a host reads each frame.
#include "drawing/Drawing.h"

namespace
{

using namespace drawing;

ZALMetalCounters now()
{
    ZALMetalCounters counters = {};
    ZALMetalGetCounters(&counters, sizeof counters);
    return counters;
}

using Counters = DrawTest;

TEST_F(Counters, EveryDrawCommandCountsOnce)
{
    auto before = now();
    draw();
    draw();
    EXPECT_EQ(now().draws - before.draws, 2u);
    EXPECT_EQ(count("drawIndexedPrimitives"), 2u);
}

TEST_F(Counters, RefusedDrawsAreNotCounted)
{
    auto before = now();
    glDrawElements(GL_QUADS, 4, GL_UNSIGNED_SHORT, nullptr);
    glDrawElements(GL_TRIANGLES, 0, GL_UNSIGNED_SHORT, nullptr);
    EXPECT_EQ(now().draws, before.draws);
}

TEST_F(Counters, ImmediateModeCountsAsDraws)
{
    auto before = now();
    glBegin(GL_TRIANGLES);
    for (int i = 0; i < 3; ++i)
        glVertexAttrib4fARB(0, 0, 0, 0, 1);
    glEnd();
    EXPECT_EQ(now().draws - before.draws, 1u);
}

TEST_F(Counters, PassesAndCommandBuffersAreThoseOfTheDevice)
{
    glFinish();
    clearLog();
    auto before = now();
    draw();
    glFlush();
    draw();
    glFinish();
    auto after = now();
    auto names = calls();
    EXPECT_EQ(after.passes - before.passes,
              static_cast<uint64_t>(std::count(names.begin(), names.end(), "renderCommandEncoder")));
    EXPECT_EQ(after.commandBuffers - before.commandBuffers,
              static_cast<uint64_t>(std::count(names.begin(), names.end(), "commit")));
    EXPECT_EQ(after.commandBuffers - before.commandBuffers, 2u);
}

TEST_F(Counters, PipelinesCountWhenTheyAreBuiltAndTakeTime)
{
    auto before = now();
    draw();
    auto built = now();
    EXPECT_EQ(built.pipelines - before.pipelines, 1u);
    EXPECT_GT(built.pipelineMilliseconds, before.pipelineMilliseconds);
    draw();
    EXPECT_EQ(now().pipelines, built.pipelines);
    EXPECT_EQ(now().pipelineMilliseconds, built.pipelineMilliseconds);
}

TEST_F(Counters, FailedPipelinesTakeTimeOnly)
{
    SoftMetal::injectFault("newRenderPipelineState", 1, false);
    auto before = now();
    draw();
    SoftMetal::clearFaults();
    EXPECT_EQ(now().pipelines, before.pipelines);
    EXPECT_GT(now().pipelineMilliseconds, before.pipelineMilliseconds);
}

TEST_F(Counters, UploadsCountTheBytesThatMetalReceives)
{
    const std::vector<uint8_t> bytes(64, 1);
    auto before = now();
    glBufferData(GL_ARRAY_BUFFER, 64, bytes.data(), GL_STATIC_DRAW);
    EXPECT_EQ(now().bytesUploaded - before.bytesUploaded, 64u);
    glBufferSubData(GL_ARRAY_BUFFER, 4, 16, bytes.data());
    EXPECT_EQ(now().bytesUploaded - before.bytesUploaded, 80u);
    glBufferData(GL_ARRAY_BUFFER, 64, nullptr, GL_STATIC_DRAW);
    EXPECT_EQ(now().bytesUploaded - before.bytesUploaded, 80u) << "storage without contents is no upload";
}

TEST_F(Counters, ConvertedTexturesCountInTheirMetalFormat)
{
    const std::vector<uint8_t> texels(4 * 2 * 3, 7);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    auto before = now();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    ASSERT_EQ(error(), NoError);
    EXPECT_EQ(now().bytesUploaded - before.bytesUploaded, 4u * 2 * 4) << "three bytes a texel arrive as four";
}

TEST_F(Counters, ObjectsFollowNamesThatComeAndGo)
{
    auto before = now();
    GLuint made[3] = {};
    glGenBuffers(3, made);
    EXPECT_EQ(now().objects - before.objects, 3u);
    glDeleteBuffers(2, made);
    EXPECT_EQ(now().objects - before.objects, 1u);
    glDeleteBuffers(3, made);
    EXPECT_EQ(now().objects, before.objects);
}

TEST_F(Counters, ContextsThatAreDestroyedTakeTheirObjectsWithThem)
{
    auto before = now();
    ZALMetalContext* other = nullptr;
    ASSERT_EQ(ZALMetalContextInitFromMTLCommandQueue(other, nullptr, queue), 0);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    EXPECT_EQ(now().objects - before.objects, 2u) << "the texture and the default framebuffer";
    ZALMetalContextDestroy(other);
    EXPECT_EQ(now().objects, before.objects);
    ZALMetalContextMakeCurrent(context);
}

TEST(CountersCall, OlderHostsReceiveTheFieldsTheyKnow)
{
    ZALMetalCounters counters;
    std::memset(&counters, 0xAB, sizeof counters);
    ZALMetalGetCounters(&counters, sizeof counters.draws);
    EXPECT_NE(counters.draws, 0xABABABABABABABABu);
    EXPECT_EQ(counters.passes, 0xABABABABABABABABu);
    ZALMetalGetCounters(nullptr, sizeof counters);
}

} // namespace
