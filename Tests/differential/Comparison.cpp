// SPDX-License-Identifier: Apache-2.0
#include "differential/Comparison.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace differential
{
namespace
{

namespace fs = std::filesystem;
using scenes::Image;

std::string textOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

/// Empty, or the program's own words when it did not draw.
std::string draw(const char* program, const char* scene, const std::string& path, Image& image)
{
    std::string error,
        command = std::string(ZAL_BIN_DIR "/") + program + " " + scene + " " + path + " > " + path + ".log 2>&1";
    fs::remove(path); // an old picture is no picture
    if (std::system(command.c_str()) != 0) return std::string(program) + ": " + textOf(path + ".log");
    return readPng(path, image, error) ? std::string() : error;
}

bool isOneColor(const Image& image)
{
    for (size_t i = 4; i < image.pixels.size(); i += 4)
        if (std::memcmp(&image.pixels[i], &image.pixels[0], 4) != 0) return false;
    return true;
}

} // namespace

Comparison compareScene(const scenes::SceneRow& row)
{
    fs::path folder = fs::path(ZAL_BINARY_DIR) / "differential" / "scenes";
    fs::create_directories(folder);
    auto path = [&](const char* what) { return (folder / (std::string(row.name) + what)).string(); };
    Comparison result;
    result.oursPath = path("-zal.png");
    result.theirsPath = path("-mesa.png");
    result.differencePath = path("-difference.png");
    result.failure = draw("scene_zal", row.name, result.oursPath, result.ours);
    if (result.failure.empty()) result.failure = draw("scene_mesa", row.name, result.theirsPath, result.theirs);
    if (!result.failure.empty()) return result;
    if (result.ours.width != result.theirs.width || result.ours.height != result.theirs.height) {
        result.failure = "the pictures differ in size";
        return result;
    }
    result.difference = compare(result.ours, result.theirs, row.tolerance, &result.picture);
    writePng(result.differencePath, result.picture, result.failure);
    return result;
}

std::string verdict(const scenes::SceneRow& row, const Comparison& c)
{
    if (!c.failure.empty()) return c.failure;
    bool agree = c.difference.differing <= static_cast<uint64_t>(row.strays);
    if (row.kept)
        return agree ? std::string("the pictures agree, although [") + row.kept + "] should make them differ" : "";
    if (!agree)
        return std::to_string(c.difference.differing) + " of " + std::to_string(c.difference.pixels) +
               " pixels differ, by up to " + std::to_string(c.difference.largest) + "; see " + c.differencePath;
    return isOneColor(c.theirs) ? "the scene shows one colour only, so that it compares nothing" : "";
}

} // namespace differential
