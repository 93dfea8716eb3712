// SPDX-License-Identifier: Apache-2.0
// A folder of the test's own, which goes with it, and ways to damage what is in it.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <stdlib.h>

namespace cache_test {

class TemporaryFolder
{
public:
    TemporaryFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "softmetal-cache-XXXXXX").string();
        if (mkdtemp(name.data())) path_ = name;
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// The files that hold entries, by name.
inline std::vector<std::filesystem::path> entries(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> found;
    std::error_code ignored;
    for (const auto& file : std::filesystem::directory_iterator(folder, ignored))
        if (file.path().filename().string().size() == 64) found.push_back(file.path());
    return found;
}

/// Turns one bit of the file over.
inline void damage(const std::filesystem::path& file, uint64_t offset)
{
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekg(static_cast<std::streamoff>(offset));
    char byte = static_cast<char>(stream.get() ^ 1);
    stream.seekp(static_cast<std::streamoff>(offset));
    stream.put(byte);
}

} // namespace cache_test
