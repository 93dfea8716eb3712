// SPDX-License-Identifier: Apache-2.0
// What the setters tell the Metal side, read from the device's command log: the state that the next encoder request
// encodes again, the passes that end, the work that is committed.
#include "ZALGLContextObjects.h"
#include "support/ContextFixture.h"

#include <algorithm>

namespace
{

using Calls = std::vector<std::string>;

struct Effects : support::ContextTest
{
    void SetUp() override
    {
        ContextTest::SetUp();
        if (HasFatalFailure()) return;
        attachTextures(4, 4);
        glViewport(0, 0, 4, 4);
        open();
    }

    /// Asks for the render encoder as a draw does.
    void open()
    {
        commands().getOrCreateCommandEncoder(&gl());
        clearLog();
    }

    /// The calls made by the setter, then those of the next encoder request.
    Calls during(void (*setter)())
    {
        clearLog();
        setter();
        return calls();
    }
    Calls after(void (*setter)())
    {
        setter();
        clearLog();
        commands().getOrCreateCommandEncoder(&gl());
        return calls();
    }
    bool reencodes(void (*setter)(), const char* call)
    {
        Calls made = after(setter);
        return std::count(made.begin(), made.end(), call) == 1;
    }
};

// ---- Dirty state ----

TEST_F(Effects, ViewportIsEncodedAgainAndNothingElse)
{
    EXPECT_EQ(during([] { glViewport(1, 1, 2, 2); }), Calls());
    EXPECT_EQ(after([] { glViewport(0, 0, 2, 2); }), Calls{"setViewport"});
    EXPECT_EQ(after([] {}), Calls());
}

TEST_F(Effects, DepthAndStencilSettersEncodeDepthStencilStateAgain)
{
    void (*const setters[])() = {
        [] { glDepthFunc(GL_EQUAL); },
        [] { glDepthMask(GL_FALSE); },
        [] { glStencilFunc(GL_ALWAYS, 1, 1); },
        [] { glStencilMask(1); },
        [] { glStencilOp(GL_KEEP, GL_KEEP, GL_KEEP); },
    };
    for (auto setter : setters) {
        EXPECT_EQ(during(setter), Calls());
        EXPECT_TRUE(reencodes(setter, "setDepthStencilState"));
        EXPECT_FALSE(reencodes(setter, "setViewport"));
        EXPECT_EQ(after([] {}), Calls());
    }
}

TEST_F(Effects, ARefusedDepthFuncMarksNothing)
{
    EXPECT_EQ(after([] { glDepthFunc(0x0208); }), Calls());
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_VALUE));
}

TEST_F(Effects, OtherSettersTellTheMetalSideNothing)
{
    void (*const setters[])() = {
        [] { glBlendColor(1, 1, 1, 1); },
        [] { glBlendEquation(GL_MAX); },
        [] { glBlendFunc(GL_ZERO, GL_ONE); },
        [] { glBlendEquationiARB(1, GL_MIN); },
        [] { glBlendFunciARB(1, 1, 1); },
        [] { glClearColor(1, 1, 1, 1); },
        [] { glClearDepth(0.5); },
        [] { glClearStencil(1); },
        [] { glColorMask(0, 0, 0, 0); },
        [] { glCullFace(GL_FRONT); },
        [] { glPolygonMode(GL_FRONT, GL_LINE); },
        [] { glPolygonOffset(1, 1); },
        [] { glEnable(GL_CULL_FACE); },
        [] { glEnable(GL_BLEND); },
        [] { glEnable(GL_POLYGON_OFFSET_FILL); },
        [] { glEnable(GL_SCISSOR_TEST); },
        [] { glEnableVertexAttribArrayARB(3); },
        [] { glMatrixMode(GL_PROJECTION); },
        [] { glLoadIdentity(); },
        [] { glPixelStorei(GL_PACK_ALIGNMENT, 1); },
    };
    for (auto setter : setters) {
        EXPECT_EQ(during(setter), Calls());
        EXPECT_EQ(after([] {}), Calls());
    }
}

// ---- Passes ----

TEST_F(Effects, EnablingTheDepthTestTwiceEndsOnePass)
{
    EXPECT_EQ(during([] { glEnable(GL_DEPTH_TEST); }), Calls{"endEncoding"});
    open();
    EXPECT_EQ(during([] { glEnable(GL_DEPTH_TEST); }), Calls());
    EXPECT_EQ(during([] { glDisable(GL_DEPTH_TEST); }), Calls{"endEncoding"});
}

TEST_F(Effects, EnablingTheStencilTestTwiceEndsOnePass)
{
    EXPECT_EQ(during([] { glEnable(GL_STENCIL_TEST); }), Calls{"endEncoding"});
    open();
    EXPECT_EQ(during([] { glEnable(GL_STENCIL_TEST); }), Calls());
    EXPECT_EQ(during([] { glDisable(GL_STENCIL_TEST); }), Calls{"endEncoding"});
}

TEST_F(Effects, DisablingATestThatIsOffEndsNothing)
{
    EXPECT_EQ(during([] { glDisable(GL_DEPTH_TEST); }), Calls());
    EXPECT_EQ(during([] { glDisable(GL_STENCIL_TEST); }), Calls());
}

TEST_F(Effects, ChangingATestWithoutAPassIsHarmless)
{
    glFinish();
    EXPECT_EQ(during([] { glEnable(GL_DEPTH_TEST); }), Calls());
}

// ---- Synchronisation ----

TEST_F(Effects, FlushCommitsAndASecondOneDoesNothing)
{
    EXPECT_EQ(during([] { glFlush(); }), (Calls{"endEncoding", "commit", "waitUntilScheduled"}));
    EXPECT_EQ(during([] { glFlush(); }), Calls());
}

TEST_F(Effects, FinishWaitsUntilTheWorkIsDone)
{
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    MTL::CommandBuffer* buffer = commands().commandBufferGetCurrent()->retain();
    clearLog();
    glFinish();
    EXPECT_EQ(buffer->status(), MTL::CommandBufferStatusCompleted);
    Calls made = calls();
    ASSERT_FALSE(made.empty());
    EXPECT_EQ(made.back(), "waitUntilCompleted");
    EXPECT_EQ(commands().commandBufferGetCurrent(), nullptr);
    buffer->release();
}

// ---- Contexts that share ----

TEST_F(Effects, SharingContextsShareObjectsAndNothingElse)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glEnable(GL_CULL_FACE);
    glMatrixMode(0);

    ZALMetalContext* other = nullptr;
    ASSERT_EQ(ZALMetalContextInitFromShareContext(other, context), ZALMetalResultSuccess);
    EXPECT_NE(other->glState->contextObjects->buffers.Find(name), nullptr);
    EXPECT_EQ(other->glState->cullFaceEnabled, 0);
    EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
    ZALMetalContextMakeCurrent(context);
    EXPECT_EQ(glGetError(), GLenum(GL_INVALID_ENUM));
    ZALMetalContextDestroy(other);
}

// ---- Capture scope ----

TEST_F(Effects, TheCaptureCapabilityDrivesTheScope)
{
    MTL::CaptureScope* scope = MTL::CaptureManager::sharedCaptureManager()->newCaptureScope(device);
    context->metalData->captureScope = scope;
    EXPECT_EQ(during([] { glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL); }), Calls()); // the switch is off
    EXPECT_FALSE(context->metalData->captureScopeActive);

    gl().enableDebugGPUCapture = 1;
    EXPECT_EQ(during([] { glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL); }), Calls{"beginScope"});
    EXPECT_TRUE(context->metalData->captureScopeActive);
    EXPECT_EQ(during([] { glDisable(GL_DEBUG_CAPTURE_SCOPE_ZAL); }), Calls{"endScope"});
    EXPECT_FALSE(context->metalData->captureScopeActive);
    scope->release();
}

TEST_F(Effects, Kept_capture_scope_dropped)
{
    MTL::CaptureScope* scope = MTL::CaptureManager::sharedCaptureManager()->newCaptureScope(device);
    context->metalData->captureScope = scope;
    gl().enableDebugGPUCapture = 1;
    glDisable(GL_DEBUG_CAPTURE_SCOPE_ZAL);
    EXPECT_EQ(context->metalData->captureScope, nullptr);
    EXPECT_EQ(scope->retainCount(), 1u); // not released: the library's reference is the test's to give back
    EXPECT_EQ(during([] { glEnable(GL_DEBUG_CAPTURE_SCOPE_ZAL); }), Calls());
    EXPECT_TRUE(context->metalData->captureScopeActive);
    scope->release();
}

} // namespace
