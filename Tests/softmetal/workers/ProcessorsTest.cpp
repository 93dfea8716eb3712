// SPDX-License-Identifier: Apache-2.0
// How many threads draw: the affinity mask, the quotas of control groups in both versions, and what the environment
// asks for.
#include "workers/Processors.h"
#include "workers/Pool.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>
#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <sched.h>

namespace softmetal::workers
{
namespace
{

/// Files by their paths; others do not exist.
class Files
{
public:
    Files(std::initializer_list<std::pair<const std::string, std::string>> files) : files_(files) {}
    std::string operator()(const std::string& path) const
    {
        auto place = files_.find(path);
        return place == files_.end() ? std::string() : place->second;
    }

private:
    std::map<std::string, std::string> files_;
};

// ---- control groups, version 2 -------------------------------------------------------------------------------------

size_t unified(const std::string& limit)
{
    return quota(Files{{"/proc/self/cgroup", "0::/\n"}, {"/sys/fs/cgroup/cpu.max", limit}});
}

TEST(UnifiedQuota, IsShareByPeriodRoundedUp)
{
    EXPECT_EQ(unified("200000 100000\n"), 2u);
    EXPECT_EQ(unified("250000 100000\n"), 3u);
    EXPECT_EQ(unified("200001 100000\n"), 3u);
    EXPECT_EQ(unified("60000 20000\n"), 3u);
}

TEST(UnifiedQuota, IsAtLeastOneProcessor)
{
    EXPECT_EQ(unified("1000 100000\n"), 1u);
}

TEST(UnifiedQuota, IsNoneWhereTheFileSaysMax)
{
    EXPECT_EQ(unified("max 100000\n"), NoQuota);
}

TEST(UnifiedQuota, IsNoneWhereTheFileCannotBeRead)
{
    for (const char* text :
         {"", "\n", "200000", "200000 0\n", "-5 100000\n", "0 100000\n", "many 100000\n", "\xff\xfe"})
        EXPECT_EQ(unified(text), NoQuota) << text;
    EXPECT_EQ(quota(Files{}), NoQuota);
}

TEST(UnifiedQuota, IsTheSmallestOfTheGroupAndThoseAbove)
{
    Files nested{{"/proc/self/cgroup", "0::/shop/desk/drawer\n"},
                 {"/sys/fs/cgroup/shop/desk/drawer/cpu.max", "max 100000\n"},
                 {"/sys/fs/cgroup/shop/desk/cpu.max", "300000 100000\n"},
                 {"/sys/fs/cgroup/shop/cpu.max", "500000 100000\n"}};
    EXPECT_EQ(quota(nested), 3u);
}

TEST(UnifiedQuota, IsTheContainersWhereThePathIsTheHosts)
{
    EXPECT_EQ(quota(Files{{"/proc/self/cgroup", "0::/host/only\n"}, {"/sys/fs/cgroup/cpu.max", "400000 100000\n"}}),
              4u);
}

// ---- control groups, version 1 -------------------------------------------------------------------------------------

constexpr const char* ClassicGroups = "5:memory:/box\n4:cpu,cpuacct:/box\n3:cpuset:/box\n";

TEST(ClassicQuota, IsInTwoFiles)
{
    EXPECT_EQ(quota(Files{{"/proc/self/cgroup", ClassicGroups},
                          {"/sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_quota_us", "150000\n"},
                          {"/sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_period_us", "100000\n"}}),
              2u);
}

TEST(ClassicQuota, MayStandInTheFolderOfTheControllerAlone)
{
    EXPECT_EQ(quota(Files{{"/proc/self/cgroup", ClassicGroups},
                          {"/sys/fs/cgroup/cpu/cpu.cfs_quota_us", "500000\n"},
                          {"/sys/fs/cgroup/cpu/cpu.cfs_period_us", "100000\n"}}),
              5u);
}

TEST(ClassicQuota, IsNoneWhereTheShareIsMinusOne)
{
    EXPECT_EQ(quota(Files{{"/proc/self/cgroup", ClassicGroups},
                          {"/sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_quota_us", "-1\n"},
                          {"/sys/fs/cgroup/cpu,cpuacct/box/cpu.cfs_period_us", "100000\n"}}),
              NoQuota);
}

TEST(ClassicQuota, IsNotTakenFromAnotherController)
{
    EXPECT_EQ(quota(Files{{"/proc/self/cgroup", "3:cpuset:/box\n"},
                          {"/sys/fs/cgroup/cpuset/box/cpu.cfs_quota_us", "100000\n"},
                          {"/sys/fs/cgroup/cpuset/box/cpu.cfs_period_us", "100000\n"}}),
              NoQuota);
}

TEST(Quota, SkipsLinesThatAreNotGroups)
{
    EXPECT_EQ(
        quota(Files{{"/proc/self/cgroup", "\n:\nnonsense\n0::/\n"}, {"/sys/fs/cgroup/cpu.max", "100000 100000\n"}}),
        1u);
}

// ---- the affinity mask ---------------------------------------------------------------------------------------------

/// Leaves the calling thread, and those it makes, one processor of those it has.
void keepOneProcessor()
{
    cpu_set_t all, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
    CPU_ZERO(&one);
    for (int i = 0; i < CPU_SETSIZE && CPU_COUNT(&one) == 0; ++i)
        if (CPU_ISSET(i, &all)) CPU_SET(i, &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
}

TEST(Affinity, CountsTheProcessorsOfTheMask)
{
    std::thread([] {
        cpu_set_t all;
        ASSERT_EQ(sched_getaffinity(0, sizeof all, &all), 0);
        EXPECT_EQ(affinity(), static_cast<size_t>(CPU_COUNT(&all)));
        keepOneProcessor();
        EXPECT_EQ(affinity(), 1u);
    }).join();
}

TEST(ThreadCountDeathTest, FollowsTheMask)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process in which nothing has been chosen yet
    EXPECT_EXIT(
        {
            unsetenv("SOFTMETAL_THREADS");
            keepOneProcessor();
            std::exit(static_cast<int>(threadCount()));
        },
        testing::ExitedWithCode(1), "");
}

// ---- the choice ----------------------------------------------------------------------------------------------------

TEST(ChosenThreads, AreTheProcessorsWithoutAWish)
{
    EXPECT_EQ(chooseThreads(nullptr, 6), 6u);
    EXPECT_EQ(chooseThreads(nullptr, 1000), 256u);
    EXPECT_EQ(chooseThreads(nullptr, NoQuota), 256u);
}

TEST(ChosenThreads, AreThoseWished)
{
    EXPECT_EQ(chooseThreads("3", 6), 3u);
    EXPECT_EQ(chooseThreads("12", 6), 12u);
    EXPECT_EQ(chooseThreads("0", 6), 0u);
    EXPECT_EQ(chooseThreads("100000", 6), 256u);
}

TEST(ChosenThreads, AreTheProcessorsWhereTheWishIsNoNumber)
{
    for (const char* wish : {"", "all", "-1", " 3"})
        EXPECT_EQ(chooseThreads(wish, 6), 6u) << wish;
}

// ---- the loop ------------------------------------------------------------------------------------------------------

TEST(ParallelLoop, RunsEveryIndexOnce)
{
    std::vector<int> times(1000);
    parallelFor(times.size(), [&](size_t i) { ++times[i]; });
    EXPECT_EQ(times, std::vector<int>(1000, 1));
}

} // namespace
} // namespace softmetal::workers
