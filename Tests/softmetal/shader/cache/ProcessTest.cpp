// SPDX-License-Identifier: Apache-2.0
// Processes that share what was compiled: each prints what it did and a number made of its picture.
#include "softmetal/shader/cache/CacheFolder.h"
#include "support/RunProgram.h"

#include <gtest/gtest.h>

#include <thread>

namespace
{

using cache_test::damage;
using cache_test::entries;

constexpr const char* Compiled = "1 parsed, 2 generated, 0 and 0 found, open";
constexpr const char* Found = "0 parsed, 0 generated, 1 and 2 found, not open";

constexpr size_t EntriesOfOne = 4; // the library, two functions, and what the compiler prepares for itself

struct Outcome
{
    std::string work, picture;
};

class CacheProcess : public ::testing::Test
{
protected:
    cache_test::TemporaryFolder place;

    Outcome run(const std::string& environment = {}, int rounds = 3) const
    {
        return runIn(place.path().string(), environment, rounds);
    }

    static Outcome runIn(const std::string& folder, const std::string& environment = {}, int rounds = 3)
    {
        std::string command =
            "SOFTMETAL_CACHE_DIR='" + folder + "' " + environment + " '" CHILD_PROGRAM "' " + std::to_string(rounds);
        support::ProgramResult result = support::runProgram(command);
        size_t picture = result.output.find(", picture ");
        if (result.status != 0 || picture == std::string::npos) {
            ADD_FAILURE() << command << "\n" << result.output;
            return {};
        }
        return {result.output.substr(0, picture), result.output.substr(picture)};
    }
};

TEST_F(CacheProcess, SecondOneCompilesNothingAndDrawsTheSame)
{
    Outcome without = runIn(""), cold = run(), warm = run();
    EXPECT_EQ(without.work, Compiled);
    EXPECT_EQ(cold.work, Compiled);
    EXPECT_EQ(warm.work, Found);
    EXPECT_EQ(cold.picture, without.picture);
    EXPECT_EQ(warm.picture, without.picture);
}

TEST_F(CacheProcess, OtherConstantsAreCompiledAnew)
{
    Outcome three = run();
    Outcome four = run({}, 4);
    EXPECT_EQ(four.work, "1 parsed, 2 generated, 1 and 0 found, open");
    EXPECT_NE(four.picture, three.picture);
    EXPECT_EQ(run({}, 4).picture, four.picture);
    EXPECT_EQ(run().picture, three.picture);
}

TEST_F(CacheProcess, OtherWidthsAreCompiledAnewAndDrawTheSame)
{
    // Widths that the processor lacks are not drawn with; looking at one that every x86-64 processor has will do.
    Outcome own = run();
    Outcome quads = run("SOFTMETAL_LANES=4"), again = run("SOFTMETAL_LANES=4");
    EXPECT_EQ(again.work, Found);
    EXPECT_EQ(quads.picture, own.picture);
    EXPECT_EQ(again.picture, own.picture);
    EXPECT_EQ(run("SOFTMETAL_SHADER_LIMIT=1000 SOFTMETAL_LANES=4").work, Compiled);
}

TEST_F(CacheProcess, DamagedFilesAreCompiledAnew)
{
    Outcome good = run();
    ASSERT_EQ(entries(place.path()).size(), EntriesOfOne);
    for (const auto& file : entries(place.path()))
        damage(file, std::filesystem::file_size(file) / 2);
    Outcome repaired = run();
    EXPECT_EQ(repaired.work, Compiled);
    EXPECT_EQ(repaired.picture, good.picture);
    EXPECT_EQ(run().work, Found);
}

TEST_F(CacheProcess, CutFilesAreCompiledAnew)
{
    Outcome good = run();
    for (const auto& file : entries(place.path()))
        std::filesystem::resize_file(file, std::filesystem::file_size(file) / 2);
    Outcome repaired = run();
    EXPECT_EQ(repaired.work, Compiled);
    EXPECT_EQ(repaired.picture, good.picture);
    EXPECT_EQ(run().work, Found);
}

TEST_F(CacheProcess, FolderThatCannotBeIsSilentlyNotUsed)
{
    std::ofstream(place.path() / "file") << "no folder";
    for (const std::string& folder :
         {(place.path() / "file").string(), (place.path() / "file" / "below").string(), std::string("/proc/softmetal")})
    {
        EXPECT_EQ(runIn(folder).work, Compiled) << folder;
    }
}

TEST_F(CacheProcess, ManyAtOnceLeaveWholeFiles)
{
    std::array<Outcome, 8> outcomes;
    std::vector<std::thread> threads;
    for (Outcome& outcome : outcomes)
        threads.emplace_back([&] { outcome = run(); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Outcome& outcome : outcomes)
        EXPECT_EQ(outcome.picture, outcomes[0].picture);
    EXPECT_EQ(entries(place.path()).size(), EntriesOfOne);
    Outcome after = run();
    EXPECT_EQ(after.work, Found);
    EXPECT_EQ(after.picture, outcomes[0].picture);
}

TEST_F(CacheProcess, KnowsTheUsersFolders)
{
    std::string folder = place.path().string();
    support::runProgram("env -u SOFTMETAL_CACHE_DIR -u XDG_CACHE_HOME HOME='" + folder + "' '" CHILD_PROGRAM "'");
    EXPECT_EQ(entries(place.path() / ".cache" / "softmetal").size(), EntriesOfOne);
    support::runProgram("env -u SOFTMETAL_CACHE_DIR XDG_CACHE_HOME='" + folder + "/caches' '" CHILD_PROGRAM "'");
    EXPECT_EQ(entries(place.path() / "caches" / "softmetal").size(), EntriesOfOne);
}

} // namespace
