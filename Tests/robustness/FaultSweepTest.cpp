// SPDX-License-Identifier: Apache-2.0
// Whatever the device refuses, the library says what it must, runs on, and draws the next frame as if nothing had been.
#include "robustness/Frame.h"
#include "support/Faults.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <tuple>

namespace robustness
{
namespace
{

constexpr GLenum Reported[] = {GL_NO_ERROR, GL_OUT_OF_MEMORY, GL_INVALID_OPERATION};

/// On a device of an ordinary name and on one of the name of an Intel GPU.
class FaultSweep : public testing::TestWithParam<std::tuple<bool, const char*>>
{
protected:
    void SetUp() override
    {
        SoftMetal::DeviceOptions options;
        if (std::get<0>(GetParam())) options.name = "Intel(R) SoftMetal";
        device = SoftMetal::newDevice(options);
        SoftMetal::setDevices({device});
        queue = device->newCommandQueue();
        SoftMetal::setLogSink([](const std::string&) {});
        SoftMetal::clearFaults();
        Screen screen;
        ASSERT_EQ(screen.make(queue), ZALMetalResultSuccess);
        wanted = screen.frame();
        EXPECT_EQ(wanted.errors, std::vector<GLenum>(6, GL_NO_ERROR));
        SoftMetal::takeMessages();
    }

    void TearDown() override
    {
        SoftMetal::clearFaults();
        SoftMetal::setLogSink({});
        SoftMetal::resetDevices();
        queue->release();
        device->release();
    }

    static std::string point() { return std::get<1>(GetParam()); }
    static void expectKnownErrors(const Seen& seen)
    {
        for (GLenum error : seen.errors)
            EXPECT_NE(std::find(std::begin(Reported), std::end(Reported), error), std::end(Reported))
                << std::hex << error;
    }

    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    Seen wanted;
};

std::string nameOf(const testing::TestParamInfo<std::tuple<bool, const char*>>& round)
{
    return std::string(std::get<0>(round.param) ? "Intel_" : "Ordinary_") + std::get<1>(round.param);
}

INSTANTIATE_TEST_SUITE_P(Devices, FaultSweep,
                         testing::Combine(testing::Bool(), testing::ValuesIn(support::FaultPoints)), nameOf);

TEST_P(FaultSweep, OfFramesInAContext)
{
    std::unique_ptr<Screen> screen;
    auto prepare = [&] {
        screen = std::make_unique<Screen>();
        ASSERT_EQ(screen->make(queue), ZALMetalResultSuccess);
        if (point() == "nextDrawable") screen->frame(); // which takes the drawable that the layer's size came from
    };
    auto body = [&](const support::Fault* fault) {
        SCOPED_TRACE(fault ? fault->words() : "no fault");
        Seen seen = screen->frame();
        expectKnownErrors(seen);
        if (fault && fault->point == "newBuffer" && fault->call <= 2) {
            EXPECT_EQ(seen.errors[0], GLenum(GL_OUT_OF_MEMORY));
        }
        if (fault && fault->point == "newLibrary" && (fault->persistent || fault->call <= 3)) {
            EXPECT_EQ(seen.errors[0], GLenum(GL_INVALID_OPERATION));
        }
        if (!fault) {
            EXPECT_EQ(seen, wanted);
        }
        SoftMetal::takeMessages(); // what a host that did not look would break by going on
    };
    auto check = [&](const support::Fault* fault) {
        SCOPED_TRACE(fault ? "after " + fault->words() : "no fault");
        EXPECT_EQ(screen->frame(), wanted);
        for (const auto& message : SoftMetal::takeMessages())
            ADD_FAILURE() << message.sentence;
    };
    const size_t rounds = support::forEachFault(point(), prepare, body, check);
    EXPECT_EQ(rounds == 0, point() == "newTextureView" || point() == "newFence" || point() == "newCommandQueue")
        << rounds; // the library's frames make none
}

TEST_P(FaultSweep, OfContextsBeingMade)
{
    std::unique_ptr<Screen> screen;
    auto prepare = [&] { screen = std::make_unique<Screen>(); };
    auto body = [&](const support::Fault* fault) {
        SCOPED_TRACE(fault ? fault->words() : "no fault");
        int result = ZALMetalResultSuccess;
        std::string raised;
        try {
            result = screen->make(nullptr);
        } catch (const std::exception& exception) {
            raised = exception.what();
        }
        // The library's own programs are the one thing without which nothing is returned.
        EXPECT_EQ(raised.rfind("Failed to compile shaders: ", 0) == 0, fault && fault->point == "newLibrary") << raised;
        if (!fault) {
            EXPECT_EQ(result, ZALMetalResultSuccess);
            return;
        }
        if (fault->point == "newCommandQueue") {
            EXPECT_EQ(result, ZALMetalResultDeviceUnavailable);
        }
        if (fault->point == "nextDrawable") {
            EXPECT_EQ(result, ZALMetalResultInvalidArgument);
        }
        if (fault->point == "newTexture") {
            EXPECT_EQ(result, ZALMetalResultOutOfMemory);
        }
    };
    auto check = [&](const support::Fault* fault) {
        SCOPED_TRACE(fault ? "after " + fault->words() : "no fault");
        screen = std::make_unique<Screen>(); // the one before is taken back, whatever it got to
        ASSERT_EQ(screen->make(queue), ZALMetalResultSuccess);
        EXPECT_EQ(screen->frame(), wanted);
        for (const auto& message : SoftMetal::takeMessages())
            ADD_FAILURE() << message.sentence;
    };
    const size_t rounds = support::forEachFault(point(), prepare, body, check);
    if (point() == "newCommandQueue" || point() == "nextDrawable" || point() == "newTexture") {
        EXPECT_GT(rounds, 0u);
    }
}

} // namespace
} // namespace robustness
