// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

namespace device_test {

using Buffer = Device;

TEST_F(Buffer, BeginsAsZeros)
{
    auto* b = buffer(64);
    std::vector<uint8_t> zeros(64, 0);
    EXPECT_EQ(b->length(), 64u);
    EXPECT_EQ(std::memcmp(b->contents(), zeros.data(), 64), 0);
}

TEST_F(Buffer, TakesTheBytesItIsMadeFrom)
{
    auto* b = bufferOf<uint32_t>({0, 1, 2, 3});
    EXPECT_EQ(static_cast<uint32_t*>(b->contents())[3], 3u);
}

TEST_F(Buffer, WithoutCopyIsTheCallersMemory)
{
    std::array<uint8_t, 16> bytes{};
    NS::UInteger given = 0;
    auto* b = device->newBuffer(bytes.data(), bytes.size(), MTL::ResourceStorageModeShared, [&](void*, NS::UInteger length) { given = length; });
    EXPECT_EQ(b->contents(), bytes.data());
    EXPECT_EQ(given, 0u);
    b->release();
    EXPECT_EQ(given, 16u);
}

TEST_F(Buffer, KeepsItsOptions)
{
    auto* b = buffer(4, MTL::ResourceStorageModeManaged | MTL::ResourceCPUCacheModeWriteCombined);
    EXPECT_EQ(b->storageMode(), MTL::StorageModeManaged);
    EXPECT_EQ(b->cpuCacheMode(), MTL::CPUCacheModeWriteCombined);
    EXPECT_EQ(b->resourceOptions(), MTL::ResourceStorageModeManaged | MTL::ResourceCPUCacheModeWriteCombined);
}

TEST_F(Buffer, PurgeableStateGivesTheOneBefore)
{
    auto* b = buffer(4);
    EXPECT_EQ(b->setPurgeableState(MTL::PurgeableStateVolatile), MTL::PurgeableStateNonVolatile);
    EXPECT_EQ(b->setPurgeableState(MTL::PurgeableStateKeepCurrent), MTL::PurgeableStateVolatile);
    EXPECT_EQ(b->setPurgeableState(MTL::PurgeableStateEmpty), MTL::PurgeableStateVolatile);
    EXPECT_EQ(b->setPurgeableState(MTL::PurgeableStateNonVolatile), MTL::PurgeableStateEmpty);
}

TEST_F(Buffer, HasDeviceAndLabel)
{
    auto* b = buffer(4);
    b->setLabel(text("indices"));
    EXPECT_EQ(b->device(), device);
    EXPECT_STREQ(b->label()->utf8String(), "indices");
}

TEST_F(Buffer, CountsAmongTheObjectsAlive)
{
    int64_t before = SoftMetal::objectsAlive("MTL::Buffer");
    auto* b = device->newBuffer(4, MTL::ResourceStorageModeShared);
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), before + 1);
    b->release();
    EXPECT_EQ(SoftMetal::objectsAlive("MTL::Buffer"), before);
}

} // namespace device_test
