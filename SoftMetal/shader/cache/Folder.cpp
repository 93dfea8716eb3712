// SPDX-License-Identifier: Apache-2.0
// Entries are files named by their key. A new one is written under another name and then renamed, so that readers need
// no lock. How full the folder is stands in the length of the file "ledger", one byte for each page: processes only
// append to it, which the system does one after the other, and whoever finds it too long looks at the files themselves.
#include "shader/cache/Folder.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace softmetal::shader
{
namespace
{

constexpr uint64_t PageBytes = 4096;
constexpr uint64_t Mebibyte = uint64_t{1} << 20;
constexpr uint64_t DefaultMebibytes = 256;
constexpr time_t TemporarySeconds = 3600; // a half-written file this old has lost its writer
constexpr const char* LedgerName = "ledger";
constexpr std::string_view TemporaryPrefix = "new-";

struct Header
{
    char magic[8];
    uint32_t version;
    uint32_t reserved;
    Digest key;
    uint64_t size;     // of the contents that follow
    uint64_t checksum; // of the contents
};
constexpr char Magic[8] = {'s', 'o', 'f', 't', 'm', 't', 'l', '\n'};
constexpr uint32_t FileVersion = 1;

class File
{
public:
    explicit File(int descriptor) : descriptor_(descriptor) {}
    ~File() { close(); }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    explicit operator bool() const { return descriptor_ >= 0; }
    int descriptor() const { return descriptor_; }

    bool close()
    {
        int closing = std::exchange(descriptor_, -1);
        return closing < 0 || ::close(closing) == 0;
    }

    bool readAll(void* to, uint64_t size) const
    {
        auto* bytes = static_cast<uint8_t*>(to);
        while (size > 0) {
            ssize_t got = ::read(descriptor_, bytes, size);
            if (got <= 0) return false;
            bytes += got;
            size -= static_cast<uint64_t>(got);
        }
        return true;
    }

    bool writeAll(const void* from, uint64_t size) const
    {
        const auto* bytes = static_cast<const uint8_t*>(from);
        while (size > 0) {
            ssize_t put = ::write(descriptor_, bytes, size);
            if (put <= 0) return false;
            bytes += put;
            size -= static_cast<uint64_t>(put);
        }
        return true;
    }

private:
    int descriptor_;
};

/// Tells accidents from whole files; names are kept apart by the key.
uint64_t checksum(std::span<const uint8_t> bytes)
{
    uint64_t sum = bytes.size() * 0x9e3779b97f4a7c15u;
    auto mix = [&](uint64_t word) {
        sum = (sum ^ word) * 0xff51afd7ed558ccdu;
        sum ^= sum >> 32;
    };
    size_t i = 0;
    for (; i + 8 <= bytes.size(); i += 8) {
        uint64_t word = 0;
        std::memcpy(&word, bytes.data() + i, 8);
        mix(word);
    }
    for (; i < bytes.size(); ++i)
        mix(bytes[i]);
    return sum;
}

uint64_t pages(uint64_t bytes)
{
    return (bytes + PageBytes - 1) / PageBytes;
}

/// Code from elsewhere would be run as our own: only the user and the system's owner may have written it.
bool isTrusted(const struct stat& status)
{
    bool owned = status.st_uid == geteuid() || status.st_uid == 0;
    return S_ISREG(status.st_mode) && owned && (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

std::optional<std::vector<uint8_t>> wholeContents(const File& file, uint64_t fileSize, const Digest& key)
{
    Header header;
    if (fileSize < sizeof header || !file.readAll(&header, sizeof header)) return std::nullopt;
    bool ours =
        std::memcmp(header.magic, Magic, sizeof Magic) == 0 && header.version == FileVersion && header.key == key;
    if (!ours || header.size != fileSize - sizeof header) return std::nullopt;
    std::vector<uint8_t> contents(header.size);
    if (!file.readAll(contents.data(), contents.size()) || checksum(contents) != header.checksum) return std::nullopt;
    return contents;
}

bool makeFolder(const std::filesystem::path& path)
{
    std::error_code problem;
    std::filesystem::create_directories(path.parent_path(), problem);
    return mkdir(path.c_str(), 0700) == 0 || errno == EEXIST;
}

bool isEntryName(std::string_view name)
{
    return name.size() == 2 * sizeof(Digest) && name.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

struct Entry
{
    std::string name;
    timespec used;
    uint64_t pages;
};

struct Contents
{
    std::vector<Entry> entries;
    uint64_t pages = 0; // with those that are being written
};

/// Other files are left alone, but for half-written ones that nobody will end.
Contents contentsOf(const std::filesystem::path& path)
{
    Contents contents;
    DIR* folder = opendir(path.c_str());
    if (!folder) return contents;
    const time_t now = time(nullptr);
    while (const dirent* item = readdir(folder)) {
        std::string_view name = item->d_name;
        struct stat status;
        bool temporary = name.starts_with(TemporaryPrefix);
        if ((!temporary && !isEntryName(name)) ||
            fstatat(dirfd(folder), item->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        if (temporary && now - status.st_mtim.tv_sec > TemporarySeconds) {
            unlinkat(dirfd(folder), item->d_name, 0);
            continue;
        }
        Entry entry{std::string(name), status.st_mtim, pages(static_cast<uint64_t>(status.st_size))};
        contents.pages += entry.pages;
        if (!temporary) contents.entries.push_back(std::move(entry));
    }
    closedir(folder);
    return contents;
}

bool usedEarlier(const Entry& a, const Entry& b)
{
    if (a.used.tv_sec != b.used.tv_sec) return a.used.tv_sec < b.used.tv_sec;
    return a.used.tv_nsec != b.used.tv_nsec ? a.used.tv_nsec < b.used.tv_nsec : a.name < b.name;
}

} // namespace

std::optional<std::vector<uint8_t>> Folder::read(const Digest& key) const
{
    const std::filesystem::path name = path_ / hexadecimal(key);
    File file(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat status;
    if (!file || fstat(file.descriptor(), &status) != 0 || !isTrusted(status)) return std::nullopt;
    auto contents = wholeContents(file, static_cast<uint64_t>(status.st_size), key);
    if (!contents) {
        unlink(name.c_str());
        return std::nullopt;
    }
    const timespec times[2] = {{0, UTIME_OMIT}, {0, UTIME_NOW}};
    futimens(file.descriptor(), times); // a folder that cannot be written keeps its order
    return contents;
}

void Folder::write(const Digest& key, std::span<const uint8_t> contents) const
{
    Header header{};
    std::memcpy(header.magic, Magic, sizeof Magic);
    header.version = FileVersion;
    header.key = key;
    header.size = contents.size();
    header.checksum = checksum(contents);
    const uint64_t size = sizeof header + contents.size();
    if (size > limit_ / 4) return; // it would push out too much else

    if (!makeFolder(path_)) return;
    std::string temporary = (path_ / (std::string(TemporaryPrefix) + "XXXXXX")).string();
    File file(mkostemp(temporary.data(), O_CLOEXEC));
    if (!file) return;
    bool done = file.writeAll(&header, sizeof header) && file.writeAll(contents.data(), contents.size());
    done = file.close() && done;
    if (!done || rename(temporary.c_str(), (path_ / hexadecimal(key)).c_str()) != 0) {
        unlink(temporary.c_str());
        return;
    }
    count(size);
}

/// An entry is written: the folder holds so much more.
void Folder::count(uint64_t bytes) const
{
    const std::filesystem::path name = path_ / LedgerName;
    struct stat before;
    bool isNew = stat(name.c_str(), &before) != 0; // what is there is not known
    File ledger(open(name.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!ledger) return;
    const std::string marks(pages(bytes), '.');
    ledger.writeAll(marks.data(), marks.size());
    struct stat after;
    bool full = fstat(ledger.descriptor(), &after) == 0 && static_cast<uint64_t>(after.st_size) * PageBytes > limit_;
    if (isNew || full) makeRoom(ledger.descriptor());
}

void Folder::makeRoom(int ledger) const
{
    auto [entries, held] = contentsOf(path_);
    if (held * PageBytes > limit_) {
        const uint64_t wanted = limit_ / PageBytes * 3 / 4; // so that it is not done again at once
        std::sort(entries.begin(), entries.end(), usedEarlier);
        for (const Entry& entry : entries) {
            if (held <= wanted) break;
            unlink((path_ / entry.name).c_str());
            held -= entry.pages;
        }
    }
    if (ftruncate(ledger, static_cast<off_t>(held)) != 0) unlink((path_ / LedgerName).c_str()); // to be counted anew
}

std::optional<Folder> folderOfEnvironment()
{
    uint64_t mebibytes = DefaultMebibytes;
    if (const char* size = std::getenv("SOFTMETAL_CACHE_SIZE")) {
        uint64_t wanted = 0;
        const char* end = size + std::strlen(size);
        auto [rest, problem] = std::from_chars(size, end, wanted);
        if (problem == std::errc() && rest == end) mebibytes = std::min(wanted, UINT64_MAX / Mebibyte);
    }
    if (mebibytes == 0) return std::nullopt;
    auto folder = [&](const std::filesystem::path& path) { return Folder(path, mebibytes * Mebibyte); };
    if (const char* given = std::getenv("SOFTMETAL_CACHE_DIR")) {
        std::error_code problem;
        std::filesystem::path path = std::filesystem::absolute(given, problem);
        return *given && !problem ? std::optional(folder(path)) : std::nullopt;
    }
    if (const char* caches = std::getenv("XDG_CACHE_HOME"); caches && *caches == '/')
        return folder(std::filesystem::path(caches) / "softmetal");
    if (const char* home = std::getenv("HOME"); home && *home == '/')
        return folder(std::filesystem::path(home) / ".cache" / "softmetal");
    return std::nullopt;
}

} // namespace softmetal::shader
