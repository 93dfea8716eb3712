// SPDX-License-Identifier: Apache-2.0
// A program that is written otherwise computes the same bits.
#include "Host.h"
#include "differential/programs/PointRunner.h"
#include "differential/programs/Rewrites.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <memory>

namespace
{

using differential::Drawn;
using differential::Pair;
using differential::Rewrite;

constexpr uint32_t Pairs = 12, First = 500;

class RewrittenPrograms : public testing::TestWithParam<Rewrite>
{
protected:
    void SetUp() override
    {
        std::string error;
        host_ = scenes::makeHost(8, 8, error);
        ASSERT_TRUE(host_) << error;
    }

    std::string text(const differential::RandomProgram& program, std::mt19937& random) const
    {
        return written(program.kind, GetParam().write(program, random));
    }

private:
    std::unique_ptr<scenes::Host> host_;
};

/// A NaN is a NaN, whichever operand it comes from.
bool sameBits(float a, float b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

int differing(const Drawn& a, const Drawn& b)
{
    int count = 0;
    for (size_t point = 0; point < a.size(); ++point)
        for (size_t color = 0; color < a[point].size(); ++color)
            for (size_t c = 0; c < 4; ++c)
                count += !sameBits(a[point][color][c], b[point][color][c]);
    return count;
}

TEST_P(RewrittenPrograms, ComputeTheSameBits)
{
    differential::PointRunner runner;
    std::string error;
    for (uint32_t i = 0; i < Pairs; ++i) {
        Pair pair = differential::pairOf(First + i);
        std::mt19937 random(First + i);
        ASSERT_TRUE(runner.run(vertexTextOf(pair.vertex), fragmentTextOf(pair.fragment), pair.points, error)) << error;
        std::string vertex = text(pair.vertex, random), fragment = text(pair.fragment, random);
        ASSERT_TRUE(runner.run(vertex, fragment, pair.points, error)) << error;
    }
    auto drawn = runner.results();
    ASSERT_EQ(drawn.size(), 2 * Pairs);
    for (uint32_t i = 0; i < Pairs; ++i) {
        Pair pair = differential::pairOf(First + i);
        std::mt19937 random(First + i);
        EXPECT_NE(drawn[2 * i][0][4][0], differential::Untouched) << "nothing is drawn";
        EXPECT_EQ(differing(drawn[2 * i], drawn[2 * i + 1]), 0)
            << "pair " << First + i << "\n"
            << text(pair.vertex, random) << text(pair.fragment, random);
    }
}

TEST(Rewrites, WriteOtherwise)
{
    for (const Rewrite& rewrite : differential::rewrites()) {
        std::mt19937 random(1);
        auto program = differential::pairOf(First + 1).fragment;
        EXPECT_NE(written(program.kind, rewrite.write(program, random)), fragmentTextOf(program)) << rewrite.name;
    }
}

INSTANTIATE_TEST_SUITE_P(All, RewrittenPrograms,
                         testing::ValuesIn(differential::rewrites().begin(), differential::rewrites().end()),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
