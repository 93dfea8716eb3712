// SPDX-License-Identifier: Apache-2.0
// Eight-bit RGBA pictures and PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace scenes {

/// Rows run from the top; four bytes for each pixel: red, green, blue, alpha.
struct Image
{
    int width = 0, height = 0;
    std::vector<uint8_t> pixels;

    Image() = default;
    Image(int w, int h) : width(w), height(h), pixels(static_cast<size_t>(w) * h * 4) {}
    uint8_t* at(int x, int y) { return pixels.data() + (static_cast<size_t>(y) * width + x) * 4; }
    const uint8_t* at(int x, int y) const { return pixels.data() + (static_cast<size_t>(y) * width + x) * 4; }
};

/// Turns a picture upside down, as GL's rows (bottom first) need.
void flipRows(Image& image);

/// False with one sentence in error. readPng accepts any PNG and converts it to RGBA.
bool writePng(const std::string& path, const Image& image, std::string& error);
bool readPng(const std::string& path, Image& image, std::string& error);

/// How two pictures of one size differ.
struct Difference
{
    uint64_t pixels = 0;   // compared
    uint64_t differing = 0; // with a channel further apart than the tolerance
    int largest = 0;        // over all channels, 0 to 255
    double within() const { return pixels == 0 ? 1.0 : 1.0 - static_cast<double>(differing) / static_cast<double>(pixels); }
};

/// Compares channel by channel; picture, when given, becomes the absolute difference, brightened eight times, opaque.
/// The sizes must agree.
Difference compare(const Image& a, const Image& b, int tolerance, Image* picture = nullptr);

} // namespace scenes
