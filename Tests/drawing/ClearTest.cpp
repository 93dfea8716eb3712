// SPDX-License-Identifier: Apache-2.0
// glClear.
#include "drawing/Drawing.h"

namespace {

using namespace drawing;

class Clear : public Routes
{
protected:
    SoftMetal::LogEntry cleared(GLbitfield mask)
    {
        clearLog();
        glClear(mask);
        auto passes = entries("renderCommandEncoder");
        EXPECT_EQ(passes.size(), 1u);
        return passes.empty() ? SoftMetal::LogEntry{} : passes[0];
    }
};
INSTANTIATE_TEST_SUITE_P(Devices, Clear, testing::Values(false, true), routeName);

constexpr double LoadOld = MTL::LoadActionLoad, LoadClear = MTL::LoadActionClear;

TEST_P(Clear, OpensAPassWhoseLoadActionsClear)
{
    glClearColor(0, 0, 1, 1);
    auto pass = cleared(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(pass.number("color0.load"), LoadClear);
    EXPECT_EQ(pixel(), "0 0 255 255");
}

TEST_P(Clear, LaterDrawsGoOnInItsPass)
{
    glClear(GL_COLOR_BUFFER_BIT);
    clearLog();
    draw();
    EXPECT_EQ(count("renderCommandEncoder"), 0u);
}

TEST_P(Clear, TwoInARowOpenTwoPasses)
{
    glClear(GL_COLOR_BUFFER_BIT);
    glClear(GL_COLOR_BUFFER_BIT);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "renderCommandEncoder"), 2);
    EXPECT_EQ(std::count(names.begin(), names.end(), "endEncoding"), 1);
}

TEST_P(Clear, AMaskOfZeroStillOpensAPass)
{
    EXPECT_EQ(cleared(0).number("color0.load"), LoadOld);
    EXPECT_EQ(cleared(0x8000).number("color0.load"), LoadOld); // unknown bits are ignored
    EXPECT_EQ(error(), NoError);
}

/// Whole attachments are cleared, whatever the masks say.
TEST_P(Clear, Kept_clear_ignores_masks)
{
    glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
    glDepthMask(GL_FALSE);
    glStencilMask(0);
    glEnable(GL_SCISSOR_TEST);
    glClearColor(1, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    EXPECT_EQ(pixel(), "255 0 0 255");
}

TEST_P(Clear, NoDrawBuffersMeanNoColour)
{
    glClearColor(1, 1, 1, 1);
    gl().pipelineDescription.drawBufferMask = 0;
    clearLog();
    glEnable(GL_DEPTH_TEST);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    auto passes = entries("renderCommandEncoder");
    ASSERT_EQ(passes.size(), 1u);
    EXPECT_EQ(passes[0].object("color0"), nullptr);
    EXPECT_EQ(passes[0].number("depth.load"), LoadClear);
    gl().pipelineDescription.drawBufferMask = 1;
    EXPECT_EQ(pixel(), "0 0 0 0");
}

/// A pass has depth and stencil attachments only while their tests are on.
TEST_P(Clear, Kept_clear_needs_test)
{
    auto pass = cleared(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    EXPECT_EQ(pass.object("depth"), nullptr);
    EXPECT_EQ(pass.object("stencil"), nullptr);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_STENCIL_TEST);
    pass = cleared(GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    EXPECT_EQ(pass.object("depth"), depth);
    EXPECT_EQ(pass.object("stencil"), depth);
    EXPECT_EQ(pass.number("depth.load"), LoadClear);
    EXPECT_EQ(pass.number("stencil.load"), LoadClear);
    EXPECT_EQ(pass.number("color0.load"), LoadOld);
}

TEST_P(Clear, DepthIsClearedToItsValue)
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glClearDepth(0.25);
    glClear(GL_DEPTH_BUFFER_BIT);
    const float white[4] = {1, 1, 1, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, white);
    load(GL_VERTEX_PROGRAM_ARB, "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.position.z, 0.5;\nEND\n");
    draw();
    EXPECT_EQ(pixel(), "0 0 0 0"); // behind
    glClearDepth(0.75);
    glClear(GL_DEPTH_BUFFER_BIT);
    draw();
    EXPECT_EQ(pixel(), "255 255 255 255");
}

TEST_P(Clear, AlsoAfterBlitWorkWhichIsCommittedFirst)
{
    commands().getOrCreateBlitCommandEncoder();
    clearLog();
    glClear(GL_COLOR_BUFFER_BIT);
    Names names = calls();
    ASSERT_GE(names.size(), 5u);
    EXPECT_EQ(Names(names.begin(), names.begin() + 5), (Names{"endEncoding", "commit", "waitUntilScheduled", "commandBuffer", "renderCommandEncoder"}));
}

} // namespace
