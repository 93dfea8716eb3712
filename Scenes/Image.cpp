// SPDX-License-Identifier: Apache-2.0
#include "Image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <png.h>

namespace scenes {

void flipRows(Image& image)
{
    size_t row = static_cast<size_t>(image.width) * 4;
    for (int y = 0; y < image.height / 2; ++y)
        std::swap_ranges(image.at(0, y), image.at(0, y) + row, image.at(0, image.height - 1 - y));
}

bool writePng(const std::string& path, const Image& image, std::string& error)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    header.width = static_cast<png_uint_32>(image.width);
    header.height = static_cast<png_uint_32>(image.height);
    header.format = PNG_FORMAT_RGBA;
    if (png_image_write_to_file(&header, path.c_str(), 0, image.pixels.data(), 0, nullptr)) return true;
    error = path + ": the picture cannot be written: " + header.message;
    return false;
}

bool readPng(const std::string& path, Image& image, std::string& error)
{
    png_image header = {};
    header.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&header, path.c_str())) {
        header.format = PNG_FORMAT_RGBA;
        image = Image(static_cast<int>(header.width), static_cast<int>(header.height));
        if (png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr)) return true;
    }
    error = path + ": the picture cannot be read: " + header.message;
    return false;
}

Difference compare(const Image& a, const Image& b, int tolerance, Image* picture)
{
    Difference result;
    if (picture) *picture = Image(a.width, a.height);
    result.pixels = static_cast<uint64_t>(a.width) * a.height;
    for (size_t i = 0; i < a.pixels.size(); i += 4) {
        int worst = 0;
        for (int channel = 0; channel < 4; ++channel) {
            int distance = std::abs(a.pixels[i + channel] - b.pixels[i + channel]);
            worst = std::max(worst, distance);
            if (picture) picture->pixels[i + channel] = channel == 3 ? 255 : static_cast<uint8_t>(std::min(255, distance * 8));
        }
        result.largest = std::max(result.largest, worst);
        result.differing += worst > tolerance;
    }
    return result;
}

} // namespace scenes
