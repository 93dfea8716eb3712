// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

#include <filesystem>
#include <fstream>
#include <sstream>

#include <unistd.h>

namespace device_test {

class Capture : public Device
{
protected:
    void TearDown() override
    {
        SoftMetal::setCaptureSupported(false);
        std::filesystem::remove_all(path);
        Device::TearDown();
    }

    template <class Object>
    MTL::CaptureDescriptor* descriptorFor(Object* object)
    {
        auto* d = owned(MTL::CaptureDescriptor::alloc()->init());
        d->setDestination(MTL::CaptureDestinationGPUTraceDocument);
        d->setCaptureObject(reinterpret_cast<decltype(d->captureObject())>(object));
        d->setOutputURL(NS::URL::fileURLWithPath(text(path.string())));
        return d;
    }

    std::string document()
    {
        std::ostringstream all;
        all << std::ifstream(path / "trace.json").rdbuf();
        return all.str();
    }

    MTL::CaptureManager* manager = MTL::CaptureManager::sharedCaptureManager();
    std::filesystem::path path = std::filesystem::temp_directory_path() / ("softmetal-trace-" + std::to_string(getpid()));
};

TEST_F(Capture, IsNotSupportedUnlessAskedFor)
{
    EXPECT_FALSE(manager->supportsDestination(MTL::CaptureDestinationGPUTraceDocument));
    NS::Error* error = nullptr;
    EXPECT_FALSE(manager->startCapture(descriptorFor(device), &error));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->code(), MTL::CaptureErrorNotSupported);
    EXPECT_FALSE(manager->isCapturing());
}

TEST_F(Capture, WritesTheCallsOfItsTime)
{
    SoftMetal::setCaptureSupported(true);
    EXPECT_TRUE(manager->supportsDestination(MTL::CaptureDestinationGPUTraceDocument));
    auto* b = buffer(8);
    ASSERT_TRUE(manager->startCapture(descriptorFor(device), nullptr));
    EXPECT_TRUE(manager->isCapturing());
    b->didModifyRange(NS::Range(2, 4));
    manager->stopCapture();
    b->didModifyRange(NS::Range(0, 1));
    EXPECT_FALSE(manager->isCapturing());
    std::string written = document();
    EXPECT_NE(written.find(R"("call": "didModifyRange", "arguments": {"location": 2, "length": 4})"), std::string::npos) << written;
    EXPECT_EQ(written.find(R"("location": 0)"), std::string::npos) << written;
    EXPECT_NE(written.find(R"j("class": "MTLBuffer", "label": "(no label)", "summary": "8 bytes")j"), std::string::npos) << written;
}

TEST_F(Capture, FollowsAScope)
{
    SoftMetal::setCaptureSupported(true);
    auto* scope = owned(manager->newCaptureScope(device));
    auto* b = buffer(8);
    ASSERT_TRUE(manager->startCapture(descriptorFor(scope), nullptr));
    b->didModifyRange(NS::Range(1, 1));
    scope->beginScope();
    b->didModifyRange(NS::Range(2, 1));
    scope->endScope();
    EXPECT_FALSE(manager->isCapturing());
    EXPECT_EQ(document().find("\"location\": 1"), std::string::npos);
    EXPECT_NE(document().find("\"location\": 2"), std::string::npos);
}

TEST_F(Capture, RefusesASecondAndAnEmptyDescriptor)
{
    SoftMetal::setCaptureSupported(true);
    NS::Error* error = nullptr;
    auto* none = descriptorFor(device);
    none->setOutputURL(nullptr);
    EXPECT_FALSE(manager->startCapture(none, &error));
    EXPECT_EQ(error->code(), MTL::CaptureErrorInvalidDescriptor);
    ASSERT_TRUE(manager->startCapture(descriptorFor(device), &error));
    EXPECT_FALSE(manager->startCapture(descriptorFor(device), &error));
    EXPECT_EQ(error->code(), MTL::CaptureErrorAlreadyCapturing);
    manager->stopCapture();
}

TEST_F(Capture, ScopesKnowTheirDevice)
{
    auto* scope = owned(manager->newCaptureScope(device));
    scope->setLabel(text("frame"));
    EXPECT_EQ(scope->device(), device);
    EXPECT_STREQ(scope->label()->utf8String(), "frame");
    EXPECT_EQ(owned(manager->newCaptureScope(queue))->commandQueue(), queue);
    EXPECT_EQ(owned(manager->newCaptureScope(queue))->device(), device);
}

} // namespace device_test
