// SPDX-License-Identifier: Apache-2.0
// What reaches Metal, in which order, and what does not.
#include "ZALMetalContext.h"
#include "drawing/Drawing.h"

namespace {

using namespace drawing;

class CommandStream : public Routes
{
};
INSTANTIATE_TEST_SUITE_P(Devices, CommandStream, testing::Values(false, true), routeName);

using CommandStreamDeathTest = DrawTest;

/// The calls of a draw that finds everything open.
const Names DrawCalls = {"setVertexBuffer",        "setStencilReferenceValue", "setCullMode",      "setTriangleFillMode", "setFragmentTextures", "setFragmentSamplerStates", "setVertexTextures",
                         "setVertexSamplerStates", "setRenderPipelineState",   "setVertexBytes",   "setFragmentBytes",    "setVertexBytes",      "setFragmentBytes",         "drawIndexedPrimitives"};

TEST_P(CommandStream, TheFirstDrawOpensAPass)
{
    draw();
    Names wanted = {"commandBuffer", "renderCommandEncoder", "setFrontFacingWinding", "setViewport", "newDepthStencilState", "setDepthStencilState"};
    Names names = calls();
    ASSERT_GE(names.size(), wanted.size());
    EXPECT_EQ(Names(names.begin(), names.begin() + 6), wanted);
    EXPECT_EQ(names.back(), "drawIndexedPrimitives");
}

TEST_P(CommandStream, AnotherDrawSendsItsStateAndNoMore)
{
    draw();
    clearLog();
    draw();
    EXPECT_EQ(calls(), DrawCalls);
}

TEST_P(CommandStream, EverySlotOfBothStagesIsBound)
{
    draw();
    Entries all = log();
    for (auto [call, slots] : {std::pair{"setFragmentTextures", 32}, {"setVertexTextures", 32}, {"setFragmentSamplerStates", 16}, {"setVertexSamplerStates", 16}}) {
        auto found = std::find_if(all.begin(), all.end(), [&](const auto& entry) { return entry.call == call; });
        ASSERT_NE(found, all.end()) << call;
        EXPECT_EQ(found->number("location"), 0);
        EXPECT_EQ(found->number("length"), slots) << call;
    }
}

TEST_P(CommandStream, AViewportBetweenDrawsIsAllThatIsEncodedAgain)
{
    draw();
    glViewport(1, 2, 3, 4);
    clearLog();
    draw();
    Names names = calls(), wanted = DrawCalls;
    wanted.insert(wanted.begin(), "setViewport");
    EXPECT_EQ(names, wanted);
}

TEST_P(CommandStream, ADepthMaskBetweenDrawsEncodesDepthAndStencilOnly)
{
    draw();
    glDepthMask(GL_FALSE);
    clearLog();
    draw();
    Names names = calls(), wanted = DrawCalls;
    wanted.insert(wanted.begin(), {"newDepthStencilState", "setDepthStencilState"});
    EXPECT_EQ(names, wanted);
}

TEST_P(CommandStream, TheViewportIsTurnedOnlyWhereTheMatrixDoesNot)
{
    glViewport(10, 20, 640, 480);
    draw();
    auto set = entries("setViewport");
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(set[0].number("originX"), 10);
    EXPECT_EQ(set[0].number("originY"), isIntel() ? 20 : 500);
    EXPECT_EQ(set[0].number("width"), 640);
    EXPECT_EQ(set[0].number("height"), isIntel() ? 480 : -480);
    EXPECT_EQ(set[0].number("znear"), 0);
    EXPECT_EQ(set[0].number("zfar"), 1);
}

TEST_P(CommandStream, ABlitEndsThePassAndTheNextDrawTakesANewCommandBuffer)
{
    draw();
    clearLog();
    ASSERT_NE(commands().getOrCreateBlitCommandEncoder(), nullptr);
    EXPECT_EQ(calls(), (Names{"endEncoding", "commit", "waitUntilScheduled", "commandBuffer", "blitCommandEncoder"}));
    commands().getOrCreateBlitCommandEncoder();
    EXPECT_TRUE(calls().empty()); // it is open
    draw();
    Names names = calls();
    EXPECT_EQ(Names(names.begin(), names.begin() + 5), (Names{"endEncoding", "commit", "waitUntilScheduled", "commandBuffer", "renderCommandEncoder"}));
}

TEST_P(CommandStream, ARejectedDrawHasOpenedAPass)
{
    glDrawElements(GL_TRIANGLE_FAN, 3, GL_UNSIGNED_SHORT, nullptr);
    EXPECT_EQ(error(), InvalidValue);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "renderCommandEncoder"), 1);
    EXPECT_EQ(std::count(names.begin(), names.end(), "drawIndexedPrimitives"), 0);
    draw();
    EXPECT_EQ(count("renderCommandEncoder"), 0u);
}

// ---- command buffers ----------------------------------------------------------------------------------------------------------

TEST_P(CommandStream, FlushCommitsAndWaitsUntilScheduled)
{
    glFlush();
    EXPECT_TRUE(calls().empty());
    draw();
    clearLog();
    glFlush();
    EXPECT_EQ(calls(), (Names{"endEncoding", "commit", "waitUntilScheduled"}));
    glFlush();
    EXPECT_TRUE(calls().empty());
    draw();
    clearLog();
    glFinish();
    EXPECT_EQ(calls(), (Names{"endEncoding", "commit", "waitUntilCompleted"}));
}

TEST_P(CommandStream, TheCommandBufferIsMadeOnDemand)
{
    EXPECT_EQ(commands().commandBufferGetCurrent(), nullptr);
    MTL::CommandBuffer* first = commands().commandBufferStart();
    EXPECT_EQ(commands().commandBufferStart(), first);
    EXPECT_EQ(commands().commandBufferGetCurrent(), first);
    commands().commandBufferEnd();
    EXPECT_EQ(commands().commandBufferGetCurrent(), nullptr);
}

TEST_P(CommandStream, EndingAPassLeavesTheCommandBufferOpen)
{
    draw();
    MTL::CommandBuffer* buffer = commands().commandBufferGetCurrent();
    clearLog();
    commands().renderPassEnd();
    commands().renderPassEnd();
    EXPECT_EQ(calls(), Names{"endEncoding"});
    EXPECT_EQ(commands().commandBufferGetCurrent(), buffer);
}

TEST_P(CommandStream, DirtyStatesAreEncodedOnRequest)
{
    draw();
    clearLog();
    commands().EncodeDirtyStates(&gl(), DirtyViewport);
    EXPECT_EQ(calls(), Names{"setViewport"});
    commands().EncodeDirtyStates(&gl(), DirtyDepthStencil);
    EXPECT_EQ(calls(), (Names{"newDepthStencilState", "setDepthStencilState"}));
}

// ---- depth and stencil ----------------------------------------------------------------------------------------------------------

TEST_P(CommandStream, WithoutTheAttachmentTheTestsAreDisabled)
{
    ASSERT_EQ(ZALMetalContextSetMetalDrawable(context, color, depth), 0);
    context->drawable->depthTexture = nullptr; // as of a host that gave none
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glEnable(GL_STENCIL_TEST);
    draw();
    auto made = entries("newDepthStencilState");
    context->drawable->depthTexture = depth;
    ASSERT_EQ(made.size(), 1u);
    EXPECT_EQ(made[0].number("compare"), MTL::CompareFunctionAlways);
    EXPECT_EQ(made[0].number("write"), 0);
    EXPECT_EQ(made[0].number("frontCompare"), MTL::CompareFunctionAlways); // the descriptor's own default: no test
    EXPECT_EQ(made[0].number("frontPass"), MTL::StencilOperationKeep);
}

TEST_P(CommandStream, DepthStateFollowsFunctionAndMask)
{
    glEnable(GL_DEPTH_TEST);
    for (GLenum function = GL_NEVER; function <= GL_ALWAYS; ++function)
        for (GLboolean mask : {GL_TRUE, GL_FALSE}) {
            glDepthFunc(function);
            glDepthMask(mask);
            clearLog();
            draw();
            auto made = entries("newDepthStencilState");
            ASSERT_EQ(made.size(), 1u);
            EXPECT_EQ(made[0].number("compare"), function - GL_NEVER);
            EXPECT_EQ(made[0].number("write"), mask);
        }
}

TEST_P(CommandStream, BothFacesShareTheStencilState)
{
    glEnable(GL_STENCIL_TEST);
    glStencilFunc(GL_GEQUAL, 7, 0x5A);
    glStencilMask(0xA5);
    glStencilOp(GL_REPLACE, GL_INCR_WRAP, GL_INVERT);
    draw();
    Entries all = log();
    for (const auto& entry : all) {
        EXPECT_TRUE(entry.call != "setStencilReferenceValue" || entry.number("value") == 7);
        if (entry.call != "newDepthStencilState") continue;
        for (std::string face : {"front", "back"}) {
            EXPECT_EQ(entry.number(face + "Compare"), MTL::CompareFunctionGreaterEqual);
            EXPECT_EQ(entry.number(face + "Fail"), MTL::StencilOperationReplace);
            EXPECT_EQ(entry.number(face + "DepthFail"), MTL::StencilOperationIncrementWrap);
            EXPECT_EQ(entry.number(face + "Pass"), MTL::StencilOperationInvert);
            EXPECT_EQ(entry.number(face + "ReadMask"), 0x5A);
            EXPECT_EQ(entry.number(face + "WriteMask"), 0xA5);
        }
    }
}

/// An unknown function or operation shows at the draw, which goes on with the state that was in force.
TEST_P(CommandStream, Kept_bad_stencil_state)
{
    glEnable(GL_STENCIL_TEST);
    draw();
    glStencilFunc(0x1234, 0, 0xFF);
    clearLog();
    draw();
    EXPECT_EQ(error(), InvalidValue);
    Names names = calls();
    EXPECT_EQ(std::count(names.begin(), names.end(), "setDepthStencilState"), 0);
    EXPECT_EQ(std::count(names.begin(), names.end(), "drawIndexedPrimitives"), 1);
    glStencilFunc(GL_ALWAYS, 0, 0xFF);
    glStencilOp(GL_KEEP, GL_KEEP, 0x1234);
    draw();
    EXPECT_EQ(error(), InvalidValue);
}

TEST(Conversions, CompareFunctionsKeepTheirOrder)
{
    for (uint32_t function = 0x0200; function <= 0x0207; ++function) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertCompareFunc(out, function), 0);
        EXPECT_EQ(out, function - 0x0200);
    }
    for (uint32_t function : {0u, 0x01FFu, 0x0208u, 0xFFFFFFFFu}) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertCompareFunc(out, function), 6);
        EXPECT_EQ(out, 99u);
    }
}

TEST(Conversions, StencilOperations)
{
    constexpr std::pair<uint32_t, uint64_t> Known[] = {{0x1E00, 0}, {0, 1}, {0x1E01, 2}, {0x1E02, 3}, {0x1E03, 4}, {0x150A, 5}, {0x8507, 6}, {0x8508, 7}};
    for (auto [operation, wanted] : Known) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertStencilOperation(out, operation), 0);
        EXPECT_EQ(out, wanted) << operation;
    }
    uint64_t out = 99;
    EXPECT_EQ(ZALMetal::convertStencilOperation(out, 0x1E04), 6);
    EXPECT_EQ(out, 99u);
}

TEST(Conversions, PrimitiveTypes)
{
    constexpr std::pair<uint32_t, uint64_t> Known[] = {{0, 0}, {1, 1}, {3, 2}, {4, 3}, {5, 4}};
    for (auto [mode, wanted] : Known) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertPrimitiveType(out, mode), 0);
        EXPECT_EQ(out, wanted);
    }
    for (uint32_t mode : {2u, 6u, 7u, 8u, 9u, 10u, 0xFFFFFFFFu}) {
        uint64_t out = 99;
        EXPECT_EQ(ZALMetal::convertPrimitiveType(out, mode), 6);
        EXPECT_EQ(out, 99u);
    }
}

// ---- assertions -------------------------------------------------------------------------------------------------------------------

TEST_F(CommandStreamDeathTest, NoEncoderStopsTheProcess)
{
    EXPECT_DEATH(
        {
            SoftMetal::injectFault("renderCommandEncoder", 1, false);
            draw();
        },
        "_renderPassCmdEncoder != nil.*renderPassBegin.*Src/ZALMetalState");
}

TEST_F(CommandStreamDeathTest, EncodingDirtyStatesNeedsAPass) { EXPECT_DEATH(commands().EncodeDirtyStates(&gl(), DirtyViewport), "_renderPassCmdEncoder != nil.*EncodeDirtyStates"); }

} // namespace
