// SPDX-License-Identifier: Apache-2.0
// Two thousand random programs, each drawn by this library and by Mesa: every result lies within the bound that its
// statements leave, for both.
#include "differential/programs/Judge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace
{

constexpr uint32_t Shards = 10, PairsPerShard = 100; // of two programs each

class RandomPrograms : public testing::TestWithParam<uint32_t>
{};

TEST_P(RandomPrograms, ComputeWhatTheirStatementsSay)
{
    uint32_t first = 1000 * GetParam();
    auto judgement = differential::judge(first, PairsPerShard, "shard" + std::to_string(GetParam()));
    RecordProperty("compared", std::to_string(judgement.compared) + " of " + std::to_string(judgement.values));
    RecordProperty("ours", std::to_string(judgement.ours));
    RecordProperty("theirs", std::to_string(judgement.theirs));
    EXPECT_EQ(judgement.faults.size(), 0u) << judgement.faults.front();
    EXPECT_GT(judgement.compared, judgement.values / 2) << "most values have bounds that say nothing";
}

INSTANTIATE_TEST_SUITE_P(Shard, RandomPrograms, testing::Range(0u, Shards));

TEST(RandomPrograms, AreTheSameEachTime)
{
    for (uint32_t number : {0u, 7u, 4711u}) {
        EXPECT_EQ(vertexTextOf(differential::pairOf(number).vertex), vertexTextOf(differential::pairOf(number).vertex));
        EXPECT_NE(fragmentTextOf(differential::pairOf(number).fragment),
                  fragmentTextOf(differential::pairOf(number + 1).fragment));
    }
}

TEST(RandomPrograms, HaveEveryOpcode)
{
    std::set<differential::Opcode> seen[2];
    for (uint32_t number = 0; number < PairsPerShard; ++number) {
        auto pair = differential::pairOf(number);
        for (const auto* program : {&pair.vertex, &pair.fragment})
            for (const auto& statement : program->body)
                seen[program == &pair.fragment].insert(statement.opcode);
    }
    EXPECT_EQ(seen[1].size(), 25u);
    EXPECT_EQ(seen[0].size(), 20u); // without CMP, COS, KIL, LRP and SIN
}

/// What both libraries would draw if they computed without any error.
differential::Drawn exactly(uint32_t number)
{
    auto pair = differential::pairOf(number);
    differential::Drawn drawn{};
    for (size_t point = 0; point < drawn.size(); ++point) {
        auto fragment = compute(pair.fragment, pair.points[point], differential::Ours),
             vertex = compute(pair.vertex, pair.points[point], differential::Ours);
        for (size_t i = 0; i < 8; ++i)
            for (size_t c = 0; c < 4; ++c)
                drawn[point][i][c] =
                    fragment.fate == differential::Fate::Killed
                        ? differential::Untouched
                        : static_cast<float>((i < 4 ? fragment.results[i] : vertex.results[i - 4])[c].v);
    }
    return drawn;
}

TEST(RandomProgramJudge, AcceptsExactResults)
{
    for (uint32_t number = 0; number < 20; ++number) {
        differential::Judgement judgement;
        judgePair(number, exactly(number), exactly(number), judgement);
        EXPECT_EQ(judgement.faults.size(), 0u) << judgement.faults.front();
    }
}

TEST(RandomProgramJudge, FindsOneWrongValueOfEitherLibrary)
{
    differential::Drawn right = exactly(3), wrong = right;
    float& value = wrong[5][2][1];
    value = value * 1.001f + 0.001f;
    for (bool theirs : {false, true}) {
        differential::Judgement judgement;
        judgePair(3, theirs ? right : wrong, theirs ? wrong : right, judgement);
        ASSERT_EQ(judgement.faults.size(), 1u);
        EXPECT_NE(judgement.faults[0].find(theirs ? "Mesa, point 5: fragment R2.y" : "here, point 5: fragment R2.y"),
                  std::string::npos)
            << judgement.faults[0];
    }
}

TEST(RandomProgramJudge, FindsAPointThatIsNotDrawn)
{
    differential::Drawn right = exactly(3), wrong = right;
    for (auto& color : wrong[4])
        color.fill(differential::Untouched);
    differential::Judgement judgement;
    judgePair(3, wrong, right, judgement);
    ASSERT_EQ(judgement.faults.size(), 1u);
    EXPECT_NE(judgement.faults[0].find("here, point 4: is not drawn"), std::string::npos) << judgement.faults[0];
}

} // namespace
