// SPDX-License-Identifier: Apache-2.0
// Inserting, finding, iterating, erasing, and the blocks that cells lie in.
#include "foundation/Map.h"
#include "foundation/Memory.h"
#include "foundation/String.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using ZALM::String;
using Numbers = ZALM::Map<unsigned, int>;

bool insert(Numbers& map, unsigned key, int value)
{
    bool inserted = false;
    EXPECT_EQ(map.insert(inserted, key, value), ZALM::Success);
    return inserted;
}

std::vector<unsigned> keys(Numbers& map)
{
    std::vector<unsigned> result;
    for (auto* cell = map.begin(); cell != map.end(); cell = map.next()) result.push_back(cell->key);
    return result;
}

TEST(Map, AKeyThatIsPresentKeepsItsValue)
{
    Numbers map;
    EXPECT_TRUE(insert(map, 7, 1));
    EXPECT_FALSE(insert(map, 7, 2));
    EXPECT_EQ(map.find(7)->value, 1);
    EXPECT_EQ(map.size(), 1u);
}

TEST(Map, IteratesInAscendingOrder)
{
    Numbers map;
    for (unsigned key : {5u, 0u, 4294967295u, 3u, 8u, 1u}) insert(map, key, 0);
    EXPECT_EQ(keys(map), (std::vector<unsigned>{0, 1, 3, 5, 8, 4294967295u}));
}

TEST(Map, AnEmptyOneHasNoBeginning)
{
    Numbers map;
    EXPECT_EQ(map.begin(), nullptr);
    EXPECT_EQ(map.next(), nullptr);
    EXPECT_EQ(map.find(1), nullptr);
    map.erase(1);
    map.erase_current();
    EXPECT_EQ(map.end(), nullptr);
}

TEST(Map, FindLeavesTheCursorOnTheLastCellVisited)
{
    Numbers map;
    for (unsigned key : {4u, 2u, 6u}) insert(map, key, 0);
    EXPECT_EQ(map.find(5), nullptr);
    EXPECT_EQ(map.cursor->key, 6u);
    EXPECT_EQ(map.find(4), map.root);
    EXPECT_EQ(map.cursor, map.root);
}

TEST(Map, ErasesWhileIterating)
{
    Numbers map;
    for (unsigned key = 0; key < 50; ++key) insert(map, key, 0);
    for (map.begin(); map.cursor;)
        if (map.cursor->key % 3 == 0) map.erase_current();
        else map.next();
    for (unsigned key : keys(map)) EXPECT_NE(key % 3, 0u);
    EXPECT_EQ(map.size(), 33u);
}

TEST(Map, BlocksGrowAsTheyAreAdded)
{
    Numbers map;
    std::vector<size_t> capacities;
    for (unsigned key = 0; key < 525; ++key) {
        insert(map, key, 0);
        if (capacities.size() < map.blocks.count) capacities.push_back(map.blocks.back().capacity);
        EXPECT_TRUE(key > 3 || map.blocks.count == 1);
        EXPECT_TRUE(key != 4 || map.blocks.count == 2); // the fifth adds one
    }
    EXPECT_EQ(capacities, (std::vector<size_t>{4, 10, 19, 32, 52, 83, 128, 197}));
    for (auto* cell = map.begin(); cell; cell = map.next()) {
        const auto& block = map.blocks[cell->block];
        EXPECT_TRUE(cell >= block.begin() && cell < block.end()) << cell->key;
    }
}

TEST(Map, CellsNeverMove)
{
    Numbers map;
    insert(map, 1000, 1);
    auto* first = map.find(1000);
    for (unsigned key = 0; key < 500; ++key) insert(map, key, 0);
    EXPECT_EQ(map.find(1000), first);
}

TEST(Map, ErasedCellsAreUsedAgain)
{
    Numbers map;
    for (unsigned key = 0; key < 4; ++key) insert(map, key, 0);
    for (unsigned key = 0; key < 1000; ++key) {
        map.erase(key);
        insert(map, key + 4, 0);
    }
    EXPECT_EQ(map.blocks.count, 1u);
}

TEST(Map, OrdersTextsByTheirBytes)
{
    ZALM::Map<String, int> map;
    bool inserted = false;
    for (const char* name : {"texture10", "texture1", "texture2", "a"}) map.insert(inserted, String(name), 0);
    std::vector<std::string> order;
    for (auto* cell = map.begin(); cell; cell = map.next()) order.emplace_back(cell->key.Buffer());
    EXPECT_EQ(order, (std::vector<std::string>{"a", "texture1", "texture10", "texture2"}));
}

TEST(Map, GivesEverythingBack)
{
    foundation::Memory memory;
    {
        ZALM::Map<unsigned, String> map;
        bool inserted = false;
        for (unsigned key = 0; key < 100; ++key) map.insert(inserted, key, String("value"));
        for (unsigned key = 0; key < 100; key += 2) map.erase(key);
    }
    EXPECT_EQ(memory.live(), 0u);
}

} // namespace
