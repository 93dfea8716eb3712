// SPDX-License-Identifier: Apache-2.0
// The command line of the programs that show a model: MODEL.obj [--out PICTURE.png] [--size WIDTHxHEIGHT] [--angle RADIANS].
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

struct ModelOptions
{
    std::string model, out;
    int width, height;
    float angle = 0.45f;
};

inline bool readOption(ModelOptions& options, const std::string& name, const char* value)
{
    constexpr int largestSide = 8192;
    if (name == "--out") options.out = value;
    else if (name == "--angle") options.angle = std::strtof(value, nullptr);
    else if (name != "--size" || std::sscanf(value, "%dx%d", &options.width, &options.height) != 2) return false;
    return options.width > 0 && options.height > 0 && options.width <= largestSide && options.height <= largestSide;
}

/// False for a command line that makes no sense; what it leaves out stays as it was.
inline bool readOptions(int argc, char** argv, ModelOptions& options)
{
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--", 2) != 0) {
            if (!options.model.empty()) return false;
            options.model = argv[i];
        } else if (i + 1 == argc || !readOption(options, argv[i], argv[i + 1])) {
            return false;
        } else {
            ++i;
        }
    }
    return !options.model.empty();
}
