// SPDX-License-Identifier: Apache-2.0
// Random sequences beside std::map, with the rules of red-black trees looked at after every step.
#include "foundation/Map.h"

#include <gtest/gtest.h>

#include <map>
#include <random>

namespace
{

using Numbers = ZALM::Map<unsigned, int>;
using Cell = Numbers::Cell;

/// Black cells on each way down, -1 when a rule is broken.
int blackHeight(const Cell* cell, const Cell* parent)
{
    if (!cell) return 0;
    if (cell->parent != parent) return -1;
    if (cell->color == Numbers::Red && parent && parent->color == Numbers::Red) return -1;
    if (cell->left && !(cell->left->key < cell->key)) return -1;
    if (cell->right && !(cell->key < cell->right->key)) return -1;
    int left = blackHeight(cell->left, cell), right = blackHeight(cell->right, cell);
    if (left < 0 || left != right) return -1;
    return left + (cell->color == Numbers::Black ? 1 : 0);
}

bool isRedBlack(const Numbers& map)
{
    return (!map.root || map.root->color == Numbers::Black) && blackHeight(map.root, nullptr) >= 0;
}

void expectSame(Numbers& map, const std::map<unsigned, int>& reference)
{
    ASSERT_EQ(map.size(), reference.size());
    auto at = reference.begin();
    for (auto* cell = map.begin(); cell; cell = map.next(), ++at) {
        ASSERT_NE(at, reference.end());
        ASSERT_EQ(cell->key, at->first);
        ASSERT_EQ(cell->value, at->second);
    }
    ASSERT_EQ(at, reference.end());
}

/// Erases some of what an iteration meets, in both.
void eraseSome(Numbers& map, std::map<unsigned, int>& reference, std::mt19937& random)
{
    map.begin();
    for (auto at = reference.begin(); at != reference.end();) {
        ASSERT_EQ(map.cursor->key, at->first);
        bool goes = random() % 4 == 0;
        goes ? map.erase_current() : static_cast<void>(map.next());
        at = goes ? reference.erase(at) : std::next(at);
        ASSERT_TRUE(isRedBlack(map));
    }
    ASSERT_EQ(map.cursor, nullptr);
}

class MapOrder : public testing::TestWithParam<unsigned>
{
};

INSTANTIATE_TEST_SUITE_P(KeyRanges, MapOrder, testing::Values(3, 20, 200, 5000));

TEST_P(MapOrder, AgreesWithAnotherMapInRandomSequences)
{
    std::mt19937 random(GetParam());
    Numbers map;
    std::map<unsigned, int> reference;
    for (int step = 0; step < 4000; ++step) {
        unsigned key = random() % GetParam();
        unsigned action = random() % 100;
        if (action < 50) {
            bool inserted = false;
            ASSERT_EQ(map.insert(inserted, key, step), ZALM::Success);
            ASSERT_EQ(inserted, reference.emplace(key, step).second);
        } else if (action < 85) {
            map.erase(key);
            reference.erase(key);
        } else if (action < 99) {
            auto* found = map.find(key);
            auto wanted = reference.find(key);
            ASSERT_EQ(found != nullptr, wanted != reference.end());
            ASSERT_TRUE(!found || found->value == wanted->second);
        } else {
            eraseSome(map, reference, random);
        }
        ASSERT_TRUE(isRedBlack(map)) << "step " << step;
        if (step % 50 == 0) expectSame(map, reference);
    }
    expectSame(map, reference);
}

TEST(MapOrder, SortedKeysStayBalanced)
{
    for (bool ascending : {true, false}) {
        Numbers map;
        bool inserted = false;
        for (unsigned i = 0; i < 3000; ++i) map.insert(inserted, ascending ? i : 3000 - i, 0);
        EXPECT_TRUE(isRedBlack(map));
        EXPECT_GE(blackHeight(map.root, nullptr), 5);
    }
}

} // namespace
