// SPDX-License-Identifier: Apache-2.0
// Making contexts: which device they take, what they share, what a refusal leaves.
#include "contexts/Logged.h"
#include "support/ContextFixture.h"

#include <cstdlib>

namespace {

using contexts::Logged;
using Lines = std::vector<std::string>;

/// Two devices, "First" being the default, and no context.
class Creation : public testing::Test
{
protected:
    void SetUp() override
    {
        SoftMetal::DeviceOptions options;
        options.name = "First";
        first = SoftMetal::newDevice(options);
        options.name = "Intel(R) Second";
        second = SoftMetal::newDevice(options);
        SoftMetal::setDevices({first, second});
        SoftMetal::takeMessages();
    }

    void TearDown() override
    {
        unsetenv("ZALMETAL_DEVICE_INDEX");
        unsetenv("ZALMETAL_DEVICE_WRAPPER");
        SoftMetal::resetDevices();
        EXPECT_TRUE(SoftMetal::takeMessages().empty());
        first->release();
        second->release();
        EXPECT_EQ(ZALMetalContextGetCurrent(), nullptr);
    }

    ZALMetalContext* make(ZALMetalContext* share = nullptr, void* queue = nullptr)
    {
        ZALMetalContext* context = nullptr;
        EXPECT_EQ(ZALMetalContextInitFromMTLCommandQueue(context, share, queue), ZALMetalResultSuccess);
        return context;
    }

    /// 256, the variable untouched, the current context as before, nothing left behind.
    void expectUnavailable(ZALMetalContext* share = nullptr, void* queue = nullptr)
    {
        auto* untouched = reinterpret_cast<ZALMetalContext*>(this);
        ZALMetalContext *context = untouched, *current = ZALMetalContextGetCurrent();
        int64_t alive = SoftMetal::objectsAlive();
        EXPECT_EQ(ZALMetalContextInitFromMTLCommandQueue(context, share, queue), 256);
        EXPECT_EQ(context, untouched);
        EXPECT_EQ(ZALMetalContextGetCurrent(), current);
        EXPECT_EQ(SoftMetal::objectsAlive(), alive);
    }

    MTL::Device *first = nullptr, *second = nullptr;
};

TEST_F(Creation, WithoutAQueueTheDefaultDeviceIsTakenAndNamedInTheLog)
{
    Logged log;
    ZALMetalContext* context = make();
    EXPECT_EQ(log.take(), (Lines{"ZAL Metal, selecting the system default device.", "ZAL Metal, selected the following MTLDevice : First"}));
    EXPECT_EQ(context->metalData->device, first);
    EXPECT_EQ(context->metalData->commandQueue->device(), first);
    EXPECT_EQ(ZALMetalContextGetCurrent(), context);
    ZALMetalContextDestroy(context);
}

TEST_F(Creation, TheHostsQueueIsUsedAsItIsAndNotRetained)
{
    Logged log;
    MTL::CommandQueue* queue = second->newCommandQueue();
    auto count = queue->retainCount();
    ZALMetalContext* context = make(nullptr, queue);
    EXPECT_EQ(log.take(), Lines());
    EXPECT_EQ(context->metalData->commandQueue, queue);
    EXPECT_EQ(context->metalData->device, second);
    ZALMetalContextDestroy(context);
    EXPECT_EQ(queue->retainCount(), count);
    queue->release();
}

TEST_F(Creation, AnIndexChoosesAmongAllDevices)
{
    Logged log;
    setenv("ZALMETAL_DEVICE_INDEX", "1", 1);
    ZALMetalContext* context = make();
    EXPECT_EQ(context->metalData->device, second);
    EXPECT_EQ(log.take(), (Lines{"ZAL Metal, selecting the device with index=1", "ZAL Metal, selected the following MTLDevice : Intel(R) Second"}));
    ZALMetalContextDestroy(context);
}

TEST_F(Creation, AnIndexOutOfRangeIsUnavailable)
{
    Logged log;
    for (const char* index : {"2", "-2", "-2147483648", "2147483647"}) {
        setenv("ZALMETAL_DEVICE_INDEX", index, 1);
        expectUnavailable();
    }
}

TEST_F(Creation, WithoutADeviceItIsUnavailable)
{
    Logged log;
    SoftMetal::setDevices({});
    expectUnavailable();
    setenv("ZALMETAL_DEVICE_INDEX", "0", 1);
    expectUnavailable();
}

TEST_F(Creation, AQueueThatCannotBeMadeIsUnavailable)
{
    Logged log;
    SoftMetal::injectFault("newCommandQueue", 1, false);
    expectUnavailable();
    SoftMetal::clearFaults();
}

TEST_F(Creation, IntelDevicesAreKnownByTheirName)
{
    MTL::CommandQueue *plain = first->newCommandQueue(), *intel = second->newCommandQueue();
    ZALMetalContext *a = make(nullptr, plain), *b = make(nullptr, intel);
    EXPECT_EQ(a->glState->isIntelDevice, 0);
    EXPECT_EQ(b->glState->isIntelDevice, 1);
    ZALMetalContextDestroy(a);
    ZALMetalContextDestroy(b);
    plain->release();
    intel->release();
}

TEST_F(Creation, TheDeviceWrapperIsAskedForOnlyWhenWanted)
{
    Logged log;
    unsetenv("METAL_DEVICE_WRAPPER_TYPE");
    ZALMetalContextDestroy(make());
    EXPECT_EQ(std::getenv("METAL_DEVICE_WRAPPER_TYPE"), nullptr);
    setenv("ZALMETAL_DEVICE_WRAPPER", "1", 1);
    setenv("METAL_DEVICE_WRAPPER_TYPE", "7", 1);
    ZALMetalContextDestroy(make());
    EXPECT_STREQ(std::getenv("METAL_DEVICE_WRAPPER_TYPE"), "1");
    unsetenv("METAL_DEVICE_WRAPPER_TYPE");
}

// ---- sharing --------------------------------------------------------------------------------------------------------------

TEST_F(Creation, ASharingContextOnAQueueSharesObjectsOnly)
{
    MTL::CommandQueue *one = first->newCommandQueue(), *two = first->newCommandQueue();
    ZALMetalContext *a = make(nullptr, one), *b = make(a, two);
    EXPECT_EQ(b->glState->contextObjects, a->glState->contextObjects);
    EXPECT_NE(b->glState, a->glState);
    EXPECT_NE(b->metalData, a->metalData);
    EXPECT_EQ(b->metalData->commandQueue, two);
    EXPECT_NE(b->metalData->metalState, a->metalData->metalState);
    EXPECT_NE(b->metalData->blitter, a->metalData->blitter);
    EXPECT_NE(b->drawable, a->drawable);
    ZALMetalContextDestroy(a);
    ZALMetalContextDestroy(b);
    one->release();
    two->release();
}

TEST_F(Creation, AShareContextOnAnotherDeviceIsRefusedWithThreeLines)
{
    MTL::CommandQueue *one = first->newCommandQueue(), *two = second->newCommandQueue();
    ZALMetalContext* a = make(nullptr, one);
    Logged log;
    expectUnavailable(a, two);
    EXPECT_EQ(log.take(), (Lines{"All windows must use the same MTLDevice.",
                                 "- ZALMetalContextInitFromMTLCommandQueue input command queue uses device named 'Intel(R) Second'",
                                 "- sharecontext uses device named 'First'"}));
    setenv("ZALMETAL_DEVICE_INDEX", "1", 1);
    expectUnavailable(a); // the queue that was made for it goes, too
    ZALMetalContextDestroy(a);
    one->release();
    two->release();
}

TEST_F(Creation, FromAShareContextTheMetalSideIsTheSame)
{
    Logged log;
    ZALMetalContext *a = make(), *b = nullptr;
    log.take();
    EXPECT_EQ(ZALMetalContextInitFromShareContext(b, a), ZALMetalResultSuccess);
    EXPECT_EQ(log.take(), Lines());
    EXPECT_EQ(b->metalData, a->metalData);
    EXPECT_EQ(b->glState->contextObjects, a->glState->contextObjects);
    EXPECT_NE(b->glState, a->glState);
    EXPECT_NE(b->drawable, a->drawable);
    EXPECT_EQ(ZALMetalContextGetCurrent(), b);
    ZALMetalContextDestroy(b);
    ZALMetalContextDestroy(a);
}

TEST_F(Creation, Kept_share_intel_flag)
{
    Logged log;
    ZALMetalContext *a = make(), *b = nullptr;
    ASSERT_EQ(ZALMetalContextInitFromShareContext(b, a), ZALMetalResultSuccess);
    EXPECT_EQ(a->glState->isIntelDevice, 0);
    EXPECT_EQ(b->glState->isIntelDevice, 1); // whatever the device is
    ZALMetalContextDestroy(b);
    ZALMetalContextDestroy(a);
}

TEST_F(Creation, WithoutAShareContextThereIsNothingToShare)
{
    auto* untouched = reinterpret_cast<ZALMetalContext*>(this);
    ZALMetalContext* context = untouched;
    EXPECT_EQ(ZALMetalContextInitFromShareContext(context, nullptr), 6);
    EXPECT_EQ(context, untouched);
}

} // namespace
