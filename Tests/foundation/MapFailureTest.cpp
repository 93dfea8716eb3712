// SPDX-License-Identifier: Apache-2.0
#include "foundation/Map.h"
#include "foundation/Memory.h"
#include "foundation/String.h"

#include <gtest/gtest.h>

namespace
{

using foundation::Memory;
using ZALM::String;

TEST(MapFailure, WithoutMemoryNothingIsInserted)
{
    Memory memory;
    {
        ZALM::Map<unsigned, int> map;
        bool inserted = true;
        memory.failAt(0);
        EXPECT_EQ(map.insert(inserted, 1, 1), ZALM::OutOfMemory);
        EXPECT_FALSE(inserted);
        EXPECT_EQ(map.size(), 0u);
        EXPECT_EQ(map.root, nullptr);
        memory.succeed();
        EXPECT_EQ(map.insert(inserted, 1, 1), ZALM::Success);
        EXPECT_TRUE(inserted);
    }
    EXPECT_EQ(memory.live(), 0u);
}

TEST(MapFailure, ABlockThatGotNoCellsStaysEmpty)
{
    Memory memory;
    {
        ZALM::Map<unsigned, int> map;
        memory.failAt(1); // the list of blocks grows, the cells fail
        EXPECT_EQ(map.Allocate(), ZALM::OutOfMemory);
        memory.succeed();
        EXPECT_EQ(map.blocks.count, 1u);
        EXPECT_EQ(map.blocks[0].capacity, 0u);
        bool inserted = false;
        EXPECT_EQ(map.insert(inserted, 1, 1), ZALM::Success);
        EXPECT_EQ(map.blocks.count, 2u);
        EXPECT_EQ(map.blocks[1].capacity, 10u); // the second block's size
    }
    EXPECT_EQ(memory.live(), 0u);
}

TEST(MapFailure, AnyFaultLeavesTheMapAsItWas)
{
    foundation::forEachFault([](Memory& memory, const foundation::Arm& arm) {
        ZALM::Map<String, String> map;
        bool inserted = false;
        for (const char* key : {"a", "b", "c", "d"}) map.insert(inserted, String(key), String("value"));
        String key("e"), value("value");
        arm();
        int status = map.insert(inserted, key, value);
        memory.succeed();
        EXPECT_EQ(map.size(), inserted ? 5u : 4u);
        EXPECT_TRUE(status == ZALM::Success || !inserted);
        EXPECT_EQ(map.find(key) != nullptr, inserted);
        for (const char* other : {"a", "b", "c", "d"}) EXPECT_NE(map.find(String(other)), nullptr) << other;
    });
}

} // namespace
