// SPDX-License-Identifier: Apache-2.0
// A picture has the same bits for every number of threads, every number of lanes and every set of vector instructions.
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>

namespace
{

constexpr size_t Pictures = 50;

support::ProgramResult drawn(const std::string& environment)
{
    return support::runProgram("env -u SOFTMETAL_THREADS -u SOFTMETAL_LANES -u SOFTMETAL_ISA " + environment +
                               " '" SOFTMETAL_PICTURES "'");
}

/// One lane to a quad's row, one thread, no vector instructions.
const std::string& reference()
{
    static const std::string lines = drawn("SOFTMETAL_THREADS=1 SOFTMETAL_LANES=1 SOFTMETAL_ISA=base").output;
    return lines;
}

void expectTheSame(const std::string& environment)
{
    auto result = drawn(environment);
    EXPECT_EQ(result.status, 0) << environment;
    EXPECT_EQ(result.output, reference()) << environment;
}

TEST(Determinism, PicturesShowDifferentThings)
{
    std::istringstream lines(reference());
    std::set<std::string> hashes;
    for (std::string name, hash; lines >> name >> hash;)
        hashes.insert(hash);
    EXPECT_EQ(hashes.size(), Pictures) << reference();
}

class DeterminismOfLanes : public testing::TestWithParam<const char*>
{};

TEST_P(DeterminismOfLanes, WithAnyNumberOfThreads)
{
    for (const char* threads : {"0", "1", "2", "3", "8"})
        expectTheSame(std::string("SOFTMETAL_LANES=") + GetParam() + " SOFTMETAL_THREADS=" + threads);
}

TEST_P(DeterminismOfLanes, WithAnyVectorInstructions)
{
    for (const char* set : {"base", "avx2", "avx512"})
        expectTheSame(std::string("SOFTMETAL_THREADS=2 SOFTMETAL_LANES=") + GetParam() + " SOFTMETAL_ISA=" + set);
}

INSTANTIATE_TEST_SUITE_P(Lanes, DeterminismOfLanes, testing::Values("1", "8", "16"),
                         [](const auto& lanes) { return std::string("Of") + lanes.param; });

} // namespace
