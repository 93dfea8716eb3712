// SPDX-License-Identifier: Apache-2.0
// A folder of files that may be lost at any time: entries by key, bounded in size, shared by any number of processes.
// Nothing here fails loudly: a folder that is missing, full or read-only keeps nothing, a damaged file is none.
#pragma once

#include "shader/cache/Digest.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace softmetal::shader {

class Folder
{
public:
    /// The folder is made when the first entry is written. The limit counts whole pages, as the files take them.
    Folder(std::filesystem::path path, uint64_t limitBytes) : path_(std::move(path)), limit_(limitBytes) {}

    /// What was written under the key, and notes that it was used. A file that is not whole is removed.
    std::optional<std::vector<uint8_t>> read(const Digest& key) const;
    /// Other processes see all of it or nothing. Beyond the limit the entries go that were not used for longest.
    void write(const Digest& key, std::span<const uint8_t> contents) const;

    const std::filesystem::path& path() const { return path_; }

private:
    void count(uint64_t bytes) const;
    void makeRoom(int ledger) const;

    std::filesystem::path path_;
    uint64_t limit_;
};

/// The folder that the environment chooses: SOFTMETAL_CACHE_DIR, else softmetal in the user's cache folder, up to
/// SOFTMETAL_CACHE_SIZE MiB. Nothing when the variable is empty, the size 0, or there is no home.
std::optional<Folder> folderOfEnvironment();

} // namespace softmetal::shader
