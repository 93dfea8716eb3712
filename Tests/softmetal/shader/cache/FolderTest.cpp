// SPDX-License-Identifier: Apache-2.0
#include "shader/cache/Folder.h"

#include "softmetal/shader/cache/CacheFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

using namespace softmetal::shader;
using cache_test::damage;
using cache_test::entries;
using Bytes = std::vector<uint8_t>;

constexpr uint64_t Mebibyte = 1 << 20;

Digest key(uint64_t number)
{
    Digester digester;
    return digester.add(number).finish();
}

class CacheFolder : public ::testing::Test
{
protected:
    cache_test::TemporaryFolder place;
    Folder folder{place.path() / "softmetal", Mebibyte};

    std::filesystem::path fileOf(uint64_t number) const { return folder.path() / hexadecimal(key(number)); }
    /// As if it had been used last so many hours ago.
    void age(uint64_t number, int hours) const
    {
        std::filesystem::last_write_time(fileOf(number),
                                         std::filesystem::file_time_type::clock::now() - std::chrono::hours(hours));
    }
    uint64_t pagesHeld() const
    {
        uint64_t held = 0;
        for (const auto& file : entries(folder.path()))
            held += (std::filesystem::file_size(file) + 4095) / 4096;
        return held;
    }
};

TEST_F(CacheFolder, GivesBackWhatWasWritten)
{
    for (size_t size : {0u, 1u, 7u, 8u, 9u, 100000u}) {
        const Bytes contents(size, static_cast<uint8_t>(size));
        folder.write(key(size), contents);
        EXPECT_EQ(folder.read(key(size)), contents) << size;
    }
}

TEST_F(CacheFolder, DoesNotKnowWhatWasNotWritten)
{
    EXPECT_FALSE(folder.read(key(1)));
    folder.write(key(1), Bytes{1});
    EXPECT_FALSE(folder.read(key(2)));
}

TEST_F(CacheFolder, IsForItsUserOnly)
{
    folder.write(key(1), Bytes{1});
    EXPECT_EQ(std::filesystem::status(folder.path()).permissions(), std::filesystem::perms::owner_all);
    EXPECT_EQ(std::filesystem::status(fileOf(1)).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST_F(CacheFolder, LastOneWrittenCounts)
{
    folder.write(key(1), Bytes{1});
    folder.write(key(1), Bytes{2, 2});
    EXPECT_EQ(folder.read(key(1)), (Bytes{2, 2}));
}

TEST_F(CacheFolder, RemovesAFileWithAnyByteTurnedOver)
{
    const Bytes contents(40, 7);
    folder.write(key(1), contents);
    const uint64_t size = std::filesystem::file_size(fileOf(1)), reserved = 12;
    for (uint64_t offset = 0; offset < size; ++offset) {
        if (offset >= reserved && offset < reserved + 4) continue; // means nothing
        folder.write(key(1), contents);
        damage(fileOf(1), offset);
        EXPECT_FALSE(folder.read(key(1))) << offset;
        EXPECT_FALSE(std::filesystem::exists(fileOf(1))) << offset;
    }
}

TEST_F(CacheFolder, RemovesAFileOfAnyOtherLength)
{
    const Bytes contents(40, 7);
    folder.write(key(1), contents);
    const uint64_t size = std::filesystem::file_size(fileOf(1));
    for (uint64_t length = 0; length <= size + 8; ++length) {
        if (length == size) continue;
        folder.write(key(1), contents);
        std::filesystem::resize_file(fileOf(1), length);
        EXPECT_FALSE(folder.read(key(1))) << length;
        EXPECT_FALSE(std::filesystem::exists(fileOf(1))) << length;
    }
}

TEST_F(CacheFolder, RemovesAnEntryUnderAnotherName)
{
    folder.write(key(1), Bytes{1});
    std::filesystem::rename(fileOf(1), fileOf(2));
    EXPECT_FALSE(folder.read(key(2)));
    EXPECT_FALSE(std::filesystem::exists(fileOf(2)));
}

TEST_F(CacheFolder, ReadsNoFileThatOthersMayWrite)
{
    folder.write(key(1), Bytes{1});
    std::filesystem::permissions(fileOf(1), std::filesystem::perms::others_write, std::filesystem::perm_options::add);
    EXPECT_FALSE(folder.read(key(1)));
}

TEST_F(CacheFolder, ReadsNothingThroughALink)
{
    folder.write(key(1), Bytes{1});
    std::filesystem::rename(fileOf(1), place.path() / "elsewhere");
    std::filesystem::create_symlink(place.path() / "elsewhere", fileOf(1));
    EXPECT_FALSE(folder.read(key(1)));
}

TEST_F(CacheFolder, HoldsNoMoreThanItsLimit)
{
    const Bytes contents(30000);
    for (uint64_t i = 0; i < 100; ++i) {
        folder.write(key(i), contents);
        EXPECT_LE(pagesHeld() * 4096, Mebibyte);
        EXPECT_TRUE(folder.read(key(i)));
    }
    EXPECT_GE(pagesHeld() * 4096, Mebibyte / 2);
}

TEST_F(CacheFolder, LetsThoseGoThatWereNotUsedForLongest)
{
    const Bytes contents(30000); // eight pages with its header
    for (uint64_t i = 0; i < 32; ++i) {
        folder.write(key(i), contents);
        age(i, static_cast<int>(100 - i));
    }
    EXPECT_TRUE(folder.read(key(0))); // the oldest is used once more
    folder.write(key(32), contents);  // and there is no room for this one
    EXPECT_TRUE(folder.read(key(0)));
    EXPECT_TRUE(folder.read(key(32)));
    EXPECT_TRUE(folder.read(key(31)));
    for (uint64_t i = 1; i < 9; ++i)
        EXPECT_FALSE(folder.read(key(i))) << i;
}

TEST_F(CacheFolder, KeepsNothingThatWouldPushOutTooMuch)
{
    folder.write(key(1), Bytes{1});
    folder.write(key(2), Bytes(Mebibyte / 4));
    EXPECT_FALSE(folder.read(key(2)));
    EXPECT_TRUE(folder.read(key(1)));
}

TEST_F(CacheFolder, CountsWhatLiesThereAlready)
{
    Folder large(folder.path(), 8 * Mebibyte);
    for (uint64_t i = 0; i < 100; ++i)
        large.write(key(i), Bytes(30000));
    folder.write(key(100), Bytes{1});
    EXPECT_LE(pagesHeld() * 4096, Mebibyte);
    std::filesystem::remove(folder.path() / "ledger");
    for (uint64_t i = 0; i < 100; ++i)
        large.write(key(i), Bytes(30000));
    std::filesystem::remove(folder.path() / "ledger");
    folder.write(key(101), Bytes{1});
    EXPECT_LE(pagesHeld() * 4096, Mebibyte);
}

TEST_F(CacheFolder, LeavesFilesAloneThatAreNotItsOwn)
{
    folder.write(key(1), Bytes{1});
    std::ofstream(folder.path() / "letter") << std::string(2 * Mebibyte, 'x');
    std::filesystem::last_write_time(folder.path() / "letter",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(5000));
    for (uint64_t i = 0; i < 60; ++i)
        folder.write(key(i), Bytes(30000));
    EXPECT_EQ(std::filesystem::file_size(folder.path() / "letter"), 2 * Mebibyte);
}

TEST_F(CacheFolder, ClearsAwayWhatAWriterLeftBehind)
{
    folder.write(key(1), Bytes{1});
    for (const char* name : {"new-old", "new-now"})
        std::ofstream(folder.path() / name) << "half";
    std::filesystem::last_write_time(folder.path() / "new-old",
                                     std::filesystem::file_time_type::clock::now() - std::chrono::hours(3));
    for (uint64_t i = 0; i < 60; ++i)
        folder.write(key(i), Bytes(30000));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "new-old"));
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "new-now"));
}

TEST_F(CacheFolder, ThatIsAFileKeepsNothing)
{
    std::ofstream(folder.path()) << "not a folder";
    folder.write(key(1), Bytes{1});
    EXPECT_FALSE(folder.read(key(1)));
    EXPECT_EQ(std::filesystem::file_size(folder.path()), 12u);
}

TEST_F(CacheFolder, BelowAFileKeepsNothing)
{
    std::ofstream(place.path() / "file") << "not a folder";
    Folder below(place.path() / "file" / "deep" / "softmetal", Mebibyte);
    below.write(key(1), Bytes{1});
    EXPECT_FALSE(below.read(key(1)));
}

TEST_F(CacheFolder, IsMadeWithTheFoldersAboveIt)
{
    Folder deep(place.path() / "a" / "b" / "softmetal", Mebibyte);
    deep.write(key(1), Bytes{1});
    EXPECT_TRUE(deep.read(key(1)));
}

/// Writes and reads the same sixteen entries again and again; 0 when every read gave a whole entry or none.
int useHeavily(const Folder& folder, uint64_t seed)
{
    for (uint64_t i = 0; i < 400; ++i) {
        const uint64_t number = (seed * 7 + i * 5) % 16;
        const Bytes contents(20000 + number * 1000, static_cast<uint8_t>(number));
        if (auto found = folder.read(key(number)); found && *found != contents) return 1;
        if ((seed + i) % 3 == 0) folder.write(key(number), contents);
    }
    return 0;
}

TEST_F(CacheFolder, IsSharedByManyWriters)
{
    std::vector<pid_t> children;
    for (uint64_t seed = 0; seed < 8; ++seed) {
        pid_t child = fork();
        if (child == 0) _exit(useHeavily(Folder(folder.path(), Mebibyte / 2), seed)); // less than all of them take
        children.push_back(child);
    }
    for (pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    for (const auto& file : std::filesystem::directory_iterator(folder.path()))
        EXPECT_FALSE(file.path().filename().string().starts_with("new-"));
}

class CacheEnvironment : public ::testing::Test
{
protected:
    void TearDown() override
    {
        for (size_t i = 0; i < Names.size(); ++i)
            set(Names[i], before_[i] ? before_[i]->c_str() : nullptr);
    }
    static void set(const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }
    static std::string chosen(const char* folder, const char* caches, const char* home, const char* size = nullptr)
    {
        set("SOFTMETAL_CACHE_DIR", folder);
        set("XDG_CACHE_HOME", caches);
        set("HOME", home);
        set("SOFTMETAL_CACHE_SIZE", size);
        auto found = folderOfEnvironment();
        return found ? found->path().string() : "none";
    }

private:
    static constexpr std::array Names = {"SOFTMETAL_CACHE_DIR", "XDG_CACHE_HOME", "HOME", "SOFTMETAL_CACHE_SIZE"};
    static std::optional<std::string> valueOf(const char* name)
    {
        const char* value = std::getenv(name);
        return value ? std::optional<std::string>(value) : std::nullopt;
    }
    std::array<std::optional<std::string>, 4> before_ = {valueOf(Names[0]), valueOf(Names[1]), valueOf(Names[2]),
                                                         valueOf(Names[3])};
};

TEST_F(CacheEnvironment, ChoosesTheFolder)
{
    EXPECT_EQ(chosen("/a/b", "/caches", "/home/u"), "/a/b");
    EXPECT_EQ(chosen("b", "/caches", "/home/u"), (std::filesystem::current_path() / "b").string());
    EXPECT_EQ(chosen(nullptr, "/caches", "/home/u"), "/caches/softmetal");
    EXPECT_EQ(chosen(nullptr, nullptr, "/home/u"), "/home/u/.cache/softmetal");
    EXPECT_EQ(chosen(nullptr, "relative", "/home/u"), "/home/u/.cache/softmetal");
    EXPECT_EQ(chosen(nullptr, nullptr, nullptr), "none");
    EXPECT_EQ(chosen("", "/caches", "/home/u"), "none");
}

TEST_F(CacheEnvironment, ASizeOfZeroSwitchesItOff)
{
    EXPECT_EQ(chosen("/a", nullptr, nullptr, "0"), "none");
    for (const char* size : {"1", "256", "many", "", "-1", "99999999999999999999"})
        EXPECT_EQ(chosen("/a", nullptr, nullptr, size), "/a") << size;
}

TEST_F(CacheEnvironment, SizeIsInMebibytes)
{
    cache_test::TemporaryFolder place;
    chosen((place.path() / "c").c_str(), nullptr, nullptr, "1");
    auto folder = folderOfEnvironment();
    for (uint64_t i = 0; i < 60; ++i)
        folder->write(key(i), Bytes(30000));
    EXPECT_LE(entries(folder->path()).size(), Mebibyte / 30000);
    EXPECT_GE(entries(folder->path()).size(), 16u);
}

} // namespace
