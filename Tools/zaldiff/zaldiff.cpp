// SPDX-License-Identifier: Apache-2.0
// Compares two PNG pictures: how many pixels differ by more than a tolerance, and by how much at most.
// Exit status: 0 alike, 1 they differ, 2 bad usage or an unreadable file.
#include "Image.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr const char* Usage = "usage: zaldiff [--tolerance N] [--within SHARE] [--out DIFFERENCE.png] FIRST.png SECOND.png\n"
                              "  --tolerance N   a pixel differs when a channel is more than N apart, 0 to 255 (default 0)\n"
                              "  --within SHARE  the share of pixels that must not differ, 0 to 1 (default 1)\n"
                              "  --out FILE      writes a picture of the differences\n"
                              "  --help, --version\n";

struct Options
{
    int tolerance = 0;
    double within = 1;
    std::string out, files[2];
    int count = 0;
};

bool number(const char* text, double low, double high, double& value)
{
    char* end = nullptr;
    errno = 0;
    value = std::strtod(text, &end);
    return end != text && *end == 0 && errno == 0 && value >= low && value <= high;
}

bool readOption(Options& options, const std::string& name, const char* text)
{
    double value = 0;
    if (name == "--out") options.out = text;
    else if (name == "--tolerance" && number(text, 0, 255, value)) options.tolerance = static_cast<int>(value);
    else if (name == "--within" && number(text, 0, 1, value)) options.within = value;
    else return false;
    return true;
}

bool readOptions(int argc, char** argv, Options& options)
{
    for (int i = 1; i < argc; ++i) {
        std::string word = argv[i];
        if (word.starts_with("--")) {
            if (i + 1 == argc || !readOption(options, word, argv[i + 1])) return false;
            ++i;
        } else if (options.count < 2) {
            options.files[options.count++] = word;
        } else {
            return false;
        }
    }
    return options.count == 2;
}

int failed(const std::string& error)
{
    std::fprintf(stderr, "zaldiff: %s\n", error.c_str());
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc == 2 && std::string(argv[1]) == "--help") return std::fputs(Usage, stdout), 0;
    if (argc == 2 && std::string(argv[1]) == "--version") return std::puts("zaldiff " ZAL_VERSION), 0;
    Options options;
    if (!readOptions(argc, argv, options)) return std::fputs(Usage, stderr), 2;
    scenes::Image first, second, picture;
    std::string error;
    if (!readPng(options.files[0], first, error) || !readPng(options.files[1], second, error)) return failed(error);
    if (first.width != second.width || first.height != second.height) {
        std::printf("sizes differ: %d x %d and %d x %d\n", first.width, first.height, second.width, second.height);
        return 1;
    }
    auto difference = compare(first, second, options.tolerance, &picture);
    if (!options.out.empty() && !writePng(options.out, picture, error)) return failed(error);
    std::printf("%llu of %llu pixels differ by more than %d, by up to %d\n", static_cast<unsigned long long>(difference.differing),
                static_cast<unsigned long long>(difference.pixels), options.tolerance, difference.largest);
    return difference.within() >= options.within ? 0 : 1;
}
