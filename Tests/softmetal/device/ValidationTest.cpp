// SPDX-License-Identifier: Apache-2.0
// The rules as a whole: all of them are tested, what must be let pass, messages and modes.
#include "ValidationFixture.h"

namespace device_test
{

/// Where the pairs of a rule are: by how its id begins.
struct Chapter
{
    const char* rules;
    void (Validation::*pairs)();
};

const std::array Chapters = {
    Chapter{"commands.", &Validation::commandBuffers},
    Chapter{"queue.", &Validation::commandBuffers},
    Chapter{"encoder.", &Validation::encoders},
    Chapter{"pass.", &Validation::passes},
    Chapter{"draw.", &Validation::drawsWithTheirState},
    Chapter{"draw.", &Validation::drawsWithTheirBindings},
    Chapter{"draw.vertex-fetch", &Validation::shaders},
    Chapter{"shader.", &Validation::shaders},
    Chapter{"bind.", &Validation::bindings},
    Chapter{"buffer.", &Validation::buffers},
    Chapter{"device.", &Validation::textureDescriptors},
    Chapter{"texture.", &Validation::textureDescriptors},
    Chapter{"texture.", &Validation::textureAccess},
    Chapter{"sampler.", &Validation::samplers},
    Chapter{"blit.", &Validation::blits},
    Chapter{"layer.", &Validation::layers},
};

class ValidationRule : public Validation, public ::testing::WithParamInterface<std::string>
{};

TEST_P(ValidationRule, IsReportedWhenBrokenAndSilentWhenKept)
{
    only = GetParam();
    for (const Chapter& chapter : Chapters)
        if (only.starts_with(chapter.rules)) (this->*chapter.pairs)();
    EXPECT_TRUE(paired.contains(only)) << "the rule has no pair";
}

/// draw.no-pipeline: DrawNoPipeline
std::string nameOf(const ::testing::TestParamInfo<std::string>& rule)
{
    std::string name;
    bool first = true;
    for (char c : rule.param) {
        bool letter = c >= 'a' && c <= 'z';
        if (letter) name += first ? static_cast<char>(c - 'a' + 'A') : c;
        first = !letter;
    }
    return name;
}

INSTANTIATE_TEST_SUITE_P(Rules, ValidationRule, ::testing::ValuesIn(SoftMetal::validationRules()), nameOf);

TEST_F(Validation, HasPairsForEveryRuleAndForNoOther)
{
    for (const Chapter& chapter : Chapters)
        (this->*chapter.pairs)();
    const auto rules = SoftMetal::validationRules();
    EXPECT_EQ(paired, std::set<std::string>(rules.begin(), rules.end()));
    EXPECT_EQ(paired.size(), rules.size()) << "two rules have one id";
}

// ---- what is let pass ----------------------------------------------------------------------------------------------

TEST_F(Validation, SamplerSlotsThatNobodyReadsMayBeNil)
{
    auto* e = readyToDraw();
    const MTL::SamplerState* none[2] = {nullptr, nullptr};
    e->setFragmentSamplerStates(none, NS::Range(0, 2));
    drawFullTarget(e);
    finish(e);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, ConstantsThatNobodyDeclaresMayBeSet)
{
    const std::array<bool, 20> values{};
    auto* constants = owned(MTL::FunctionConstantValues::alloc()->init());
    constants->setConstantValues(values.data(), MTL::DataTypeBool, NS::Range(0, 20));
    NS::Error* error = nullptr;
    EXPECT_NE(owned(library()->newFunction(text("plain"), constants, &error)), nullptr);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, DepthStencilTextureMayBeBoundForOneOfThem)
{
    auto* both = depthTexture(MTL::PixelFormatDepth24Unorm_Stencil8);
    for (bool depth : {true, false}) {
        auto* d = pass(texture());
        auto* description = pipelineDescriptor();
        if (depth) {
            d->depthAttachment()->setTexture(both);
            description->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth24Unorm_Stencil8);
        } else {
            d->stencilAttachment()->setTexture(both);
            description->setStencilAttachmentPixelFormat(MTL::PixelFormatDepth24Unorm_Stencil8);
        }
        auto* e = encoder(d);
        e->setRenderPipelineState(pipeline(description));
        bindFullTarget(e);
        setColor(e, {});
        drawFullTarget(e);
        finish(e);
        EXPECT_TRUE(broken().empty());
    }
}

// ---- messages and modes --------------------------------------------------------------------------------------------

TEST_F(Validation, SentenceNamesCallLabelValueAndLimit)
{
    auto* b = buffer(8);
    b->setLabel(text("positions"));
    b->didModifyRange(NS::Range(4, 8));
    auto messages = SoftMetal::takeMessages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].sentence, "didModifyRange: 8 bytes from 4 end beyond buffer 'positions' (8 bytes)");
}

TEST_F(Validation, OffSaysNothingAndStaysSafe)
{
    SoftMetal::setValidation(SoftMetal::Validation::Off);
    auto* e = encoder(texture());
    drawFullTarget(e); // no pipeline
    e->setVertexBuffer(buffer(4), 100, 0);
    finish(e);
    EXPECT_TRUE(broken().empty());
}

TEST_F(Validation, SentenceIsPrintedAtMostTenTimes)
{
    int lines = 0;
    SoftMetal::setLogSink([&](const std::string&) { ++lines; });
    auto* b = buffer(4);
    for (int i = 0; i < 30; ++i)
        b->didModifyRange(NS::Range(0, 5));
    EXPECT_EQ(lines, 10);
    EXPECT_EQ(broken().size(), 30u);
}

using ValidationDeathTest = Validation;

TEST_F(ValidationDeathTest, AbortStopsAtTheFirst)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            SoftMetal::setValidation(SoftMetal::Validation::Abort);
            buffer(4)->didModifyRange(NS::Range(0, 5));
        },
        "");
}

} // namespace device_test
