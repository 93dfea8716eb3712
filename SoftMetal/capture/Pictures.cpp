// SPDX-License-Identifier: Apache-2.0
#include "capture/Pictures.h"

#include "execution/QueueThread.h"
#include "formats/PixelFormat.h"

#include <png.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <mutex>

namespace softmetal::capture {
namespace {

constexpr uint32_t LongestSide = 240; // of a picture, in pixels
constexpr auto LongestWait = std::chrono::seconds(2);

enum class Aspect { Color, Depth, Stencil };

struct Collector
{
    std::mutex mutex;
    std::condition_variable changed;
    PicturesByPass pictures; // an empty list for a pass that was thrown away
};

Collector& collector()
{
    static auto* one = new Collector;
    return *one;
}

uint8_t toByte(double value) { return static_cast<uint8_t>(std::lround(255 * std::clamp(std::isnan(value) ? 0.0 : value, 0.0, 1.0))); }

/// Integers are shown by their lowest byte.
double shown(const formats::PixelFormatInfo& info, float channel)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &channel, 4);
    bool isInteger = info.component == formats::Component::Uint || info.component == formats::Component::Sint;
    return isInteger ? (bits & 255) / 255.0 : channel;
}

void show(const formats::PixelFormatInfo& info, Aspect aspect, const uint8_t* texel, uint8_t* to)
{
    float rgba[4] = {};
    if (aspect == Aspect::Color) formats::unpack(info, texel, rgba);
    else rgba[0] = aspect == Aspect::Depth ? formats::unpackDepth(info.format, texel) : static_cast<float>(formats::unpackStencil(info.format, texel)) / 255;
    for (int i = 0; i < 3; ++i) to[i] = aspect == Aspect::Color ? toByte(shown(info, rgba[i])) : toByte(rgba[0]);
    to[3] = aspect == Aspect::Color ? toByte(shown(info, rgba[3])) : 255;
}

/// Every n-th pixel, so that the longer side fits.
std::vector<uint8_t> pixelsOf(const raster::Target& target, Aspect aspect, uint32_t width, uint32_t height, uint32_t step)
{
    const auto& info = *formats::pixelFormatInfo(target.texture->format);
    const abi::TextureLevel& level = target.texture->levels[target.level];
    const uint8_t* image = level.data + target.slice * level.slicePitch + target.plane * level.planePitch;
    std::vector<uint8_t> pixels(size_t{4} * width * height);
    uint8_t* to = pixels.data();
    for (uint32_t y = 0; y < height; ++y)
        for (uint32_t x = 0; x < width; ++x, to += 4)
            show(info, aspect, image + static_cast<size_t>(y) * step * level.rowPitch + static_cast<size_t>(x) * step * info.bytes, to);
    return pixels;
}

std::string pngOf(const std::vector<uint8_t>& pixels, uint32_t width, uint32_t height)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = width;
    image.height = height;
    image.format = PNG_FORMAT_RGBA;
    png_alloc_size_t size = 0;
    if (!png_image_write_to_memory(&image, nullptr, &size, 0, pixels.data(), 0, nullptr)) return {};
    std::string bytes(size, '\0');
    if (!png_image_write_to_memory(&image, bytes.data(), &size, 0, pixels.data(), 0, nullptr)) return {};
    bytes.resize(size);
    return bytes;
}

void take(std::vector<Picture>& list, const std::string& name, const raster::Target& target, Aspect aspect)
{
    if (!target.texture) return;
    const abi::TextureLevel& level = target.texture->levels[target.level];
    uint32_t step = std::max(1u, (std::max(level.width, level.height) + LongestSide - 1) / LongestSide);
    uint32_t width = (level.width + step - 1) / step, height = (level.height + step - 1) / step;
    list.push_back({name, level.width, level.height, pngOf(pixelsOf(target, aspect, width, height, step), width, height)});
}

void passIsDone(uint64_t serial, const raster::PassDescription* targets)
{
    std::vector<Picture> list;
    if (targets) {
        for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) take(list, "color" + std::to_string(i), targets->color[i], Aspect::Color);
        take(list, "depth", targets->depth, Aspect::Depth);
        take(list, "stencil", targets->stencil, Aspect::Stencil);
    }
    std::lock_guard lock(collector().mutex);
    collector().pictures[serial] = std::move(list);
    collector().changed.notify_all();
}

} // namespace

void beginPictures()
{
    {
        std::lock_guard lock(collector().mutex);
        collector().pictures.clear();
    }
    setPassObserver(passIsDone);
}

PicturesByPass endPictures(const std::set<uint64_t>& awaited)
{
    Collector& c = collector();
    std::unique_lock lock(c.mutex);
    c.changed.wait_for(lock, LongestWait, [&] { return std::all_of(awaited.begin(), awaited.end(), [&](uint64_t pass) { return c.pictures.contains(pass); }); });
    setPassObserver(nullptr);
    return std::exchange(c.pictures, {});
}

} // namespace softmetal::capture
