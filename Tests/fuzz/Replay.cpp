// SPDX-License-Identifier: Apache-2.0
// Runs a target over every file of the folders given, with the ordinary compiler and without a fuzzer:
//   replay_TARGET FOLDER...
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

int main(int argc, char** argv)
{
    std::vector<std::filesystem::path> files;
    for (int i = 1; i < argc; ++i)
        for (const auto& entry : std::filesystem::directory_iterator(argv[i]))
            if (entry.is_regular_file()) files.push_back(entry.path());
    std::sort(files.begin(), files.end());

    for (const std::filesystem::path& path : files) {
        std::printf("%s\n", path.filename().c_str());
        std::fflush(stdout); // the last name is the one that stopped the process
        std::ifstream file(path, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
        LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", files.size());
    return files.empty() ? 1 : 0;
}
