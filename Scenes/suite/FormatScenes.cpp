// SPDX-License-Identifier: Apache-2.0
// Internal formats and client layouts: what a draw sees of each, what is read back in each, and partial uploads.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace scenes
{
namespace
{

struct Layout
{
    const char* name;
    GLenum internal, format, type;
};

constexpr Layout Layouts[] = {
    {"rgba8-rgba", GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE}, {"rgba8-bgra", GL_RGBA8, GL_BGRA, GL_UNSIGNED_BYTE},
    {"rgba8-rgb", GL_RGBA8, GL_RGB, GL_UNSIGNED_BYTE},   {"rgba8-bgr", GL_RGBA8, GL_BGR, GL_UNSIGNED_BYTE},
    {"rgb8-rgba", GL_RGB8, GL_RGBA, GL_UNSIGNED_BYTE},   {"rgb8-bgra", GL_RGB8, GL_BGRA, GL_UNSIGNED_BYTE},
    {"rgb8-rgb", GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE},     {"rgb8-bgr", GL_RGB8, GL_BGR, GL_UNSIGNED_BYTE},
    {"alpha8", GL_ALPHA8, GL_ALPHA, GL_UNSIGNED_BYTE},   {"luminance8", GL_LUMINANCE8, GL_RED, GL_UNSIGNED_BYTE},
    {"rgba16f", GL_RGBA16F_ARB, GL_RGBA, GL_HALF_FLOAT}, {"rgba16f-rgb", GL_RGBA16F_ARB, GL_RGB, GL_HALF_FLOAT},
    {"rgb16f", GL_RGB16F_ARB, GL_RGB, GL_HALF_FLOAT},    {"intensity16f", GL_INTENSITY16F_ARB, GL_RED, GL_HALF_FLOAT},
    {"rgba32f", GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT},      {"rgba32f-rgb", GL_RGBA32F_ARB, GL_RGB, GL_FLOAT},
    {"rgb32f", GL_RGB32F_ARB, GL_RGB, GL_FLOAT},         {"intensity32f", GL_INTENSITY32F_ARB, GL_RED, GL_FLOAT},
};

int channelsOf(GLenum format)
{
    if (format == GL_RGBA || format == GL_BGRA) return 4;
    return format == GL_RGB || format == GL_BGR ? 3 : 1;
}

uint16_t halfOf(float value) // exact for the eighths that are used here
{
    uint32_t bits;
    std::memcpy(&bits, &value, 4);
    if ((bits & 0x7FFFFFFF) == 0) return static_cast<uint16_t>(bits >> 16);
    return static_cast<uint16_t>((bits >> 16 & 0x8000) | ((bits >> 23 & 0xFF) - 112) << 10 | (bits >> 13 & 0x3FF));
}

float floatOf(uint16_t half)
{
    uint32_t exponent = half >> 10 & 31;
    float value = exponent ? std::ldexp(static_cast<float>(half & 0x3FF) + 1024, static_cast<int>(exponent) - 25)
                           : std::ldexp(static_cast<float>(half & 0x3FF), -24);
    return half & 0x8000 ? -value : value;
}

/// Pixels in the client's layout; floats go from -2 to 2 in eighths.
std::vector<uint8_t> clientPixels(const Layout& layout, size_t pixels, uint32_t seed)
{
    std::vector<uint8_t> bytes;
    size_t values = pixels * static_cast<size_t>(channelsOf(layout.format));
    for (size_t i = 0; i < values; ++i) {
        uint32_t number = (static_cast<uint32_t>(i) * 2654435761u + seed * 977u) >> 13;
        if (layout.type == GL_UNSIGNED_BYTE) {
            bytes.push_back(static_cast<uint8_t>(number));
            continue;
        }
        float value = static_cast<float>(static_cast<int>(number % 33) - 16) / 8;
        uint16_t half = halfOf(value);
        const auto* at = layout.type == GL_FLOAT ? reinterpret_cast<const uint8_t*>(&value)
                                                 : reinterpret_cast<const uint8_t*>(&half);
        bytes.insert(bytes.end(), at, at + (layout.type == GL_FLOAT ? 4 : 2));
    }
    return bytes;
}

const Layout& layoutOf(const char* name)
{
    for (const Layout& layout : Layouts)
        if (std::strcmp(layout.name, name) == 0) return layout;
    return Layouts[0];
}

/// Values from -2 to 2 come out as 0 to 1, bytes as they are.
void useShow(Stage& stage, const Layout& layout)
{
    if (layout.type == GL_UNSIGNED_BYTE) return stage.useTexture();
    stage.useFragment(
        "!!ARBfp1.0\nTEMP t;\nTEX t, fragment.texcoord[0], texture[0], 2D;\nMAD result.color, t, 0.25, 0.5;\nEND\n");
}

constexpr int Texels = 12; // a side, so that a texel is 8 pixels

void sampled(Stage& stage, const char* name)
{
    const Layout& layout = layoutOf(name);
    stage.texture(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(layout.internal), Texels, Texels, 0, layout.format, layout.type,
                 clientPixels(layout, Texels * Texels, 1).data());
    useShow(stage, layout);
    stage.rectangle({}, White);
}

/// Layouts that are converted keep the offset of a part; those that are not are in the list of kept behaviour.
void replacedParts(Stage& stage, const char* name)
{
    const Layout& layout = layoutOf(name);
    stage.texture(GL_TEXTURE_2D);
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(layout.internal), Texels, Texels, 0, layout.format, layout.type,
                 clientPixels(layout, Texels * Texels, 1).data());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 3, 2, 5, 4, layout.format, layout.type, clientPixels(layout, 20, 2).data());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 11, 0, 1, 12, layout.format, layout.type, clientPixels(layout, 12, 3).data());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 11, 6, 1, layout.format, layout.type, clientPixels(layout, 6, 4).data());
    useShow(stage, layout);
    stage.rectangle({}, White);
}

void replacedVolume(Stage& stage, const char*)
{
    const Layout& layout = Layouts[0];
    stage.patternTexture(GL_TEXTURE_3D, 8, 8, 4);
    glTexSubImage3D(GL_TEXTURE_3D, 0, 2, 1, 1, 4, 3, 2, layout.format, layout.type, clientPixels(layout, 24, 5).data());
    stage.useTexture("3D");
    for (int i = 0; i < 4; ++i) {
        Box box = tile(i, 2);
        box.r = (static_cast<float>(i) + 0.5f) / 4;
        stage.rectangle(box, White);
    }
}

void replacedFaceAndLevel(Stage& stage, const char*)
{
    const Layout& layout = Layouts[0];
    stage.texture(GL_TEXTURE_CUBE_MAP);
    for (GLint level = 0; level < 4; ++level)
        for (int face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), level, GL_RGBA8, 8 >> level,
                         8 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                         patternTexels(8 >> level, 8 >> level, 1, face).data());
    glTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 1, 1, 2, 3, 2, layout.format, layout.type,
                    clientPixels(layout, 6, 6).data());
    Image picture(4, 4);
    glGetTexImage(GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 1, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

/// One-dimensional textures have no target word: they are uploaded, changed and read back.
void oneDimensional(Stage& stage, const char*)
{
    const Layout& layout = Layouts[0];
    stage.texture(GL_TEXTURE_1D);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 32, 0, layout.format, layout.type, clientPixels(layout, 32, 7).data());
    glTexSubImage1D(GL_TEXTURE_1D, 0, 9, 12, layout.format, layout.type, clientPixels(layout, 12, 8).data());
    Image picture(32, 1);
    glGetTexImage(GL_TEXTURE_1D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    stage.show(picture);
}

// ---- read-back -----------------------------------------------------------------------------------------------------

/// Client bytes of any of the layouts for reading, shown as a picture.
void showRead(Stage& stage, GLenum format, GLenum type, const std::vector<uint8_t>& bytes)
{
    int channels = channelsOf(format);
    size_t values = static_cast<size_t>(Stage::Side) * Stage::Side * static_cast<size_t>(channels);
    if (type == GL_UNSIGNED_BYTE) return stage.showBytes(bytes, channels, Stage::Side, Stage::Side);
    std::vector<float> floats(values);
    for (size_t i = 0; i < values; ++i) {
        uint16_t half = 0;
        if (type == GL_HALF_FLOAT) {
            std::memcpy(&half, bytes.data() + 2 * i, 2);
            floats[i] = floatOf(half);
        } else {
            std::memcpy(&floats[i], bytes.data() + 4 * i, 4);
        }
    }
    stage.showFloats(floats, channels, Stage::Side, Stage::Side, 0.6f, 0.2f);
}

struct Reading
{
    const char* name;
    GLenum format, type;
};

constexpr Reading Readings[] = {
    {"rgba", GL_RGBA, GL_UNSIGNED_BYTE}, {"bgra", GL_BGRA, GL_UNSIGNED_BYTE},   {"rgb", GL_RGB, GL_UNSIGNED_BYTE},
    {"red", GL_RED, GL_UNSIGNED_BYTE},   {"alpha", GL_ALPHA, GL_UNSIGNED_BYTE}, {"rgba-half", GL_RGBA, GL_HALF_FLOAT},
    {"rgb-half", GL_RGB, GL_HALF_FLOAT}, {"red-half", GL_RED, GL_HALF_FLOAT},   {"rgba-float", GL_RGBA, GL_FLOAT},
    {"rgb-float", GL_RGB, GL_FLOAT},     {"red-float", GL_RED, GL_FLOAT},
};

const Reading& readingOf(const char* name)
{
    for (const Reading& reading : Readings)
        if (std::strcmp(reading.name, name) == 0) return reading;
    return Readings[0];
}

std::vector<uint8_t> roomFor(const Reading& reading)
{
    size_t bytes = reading.type == GL_FLOAT ? 4 : reading.type == GL_HALF_FLOAT ? 2 : 1;
    return std::vector<uint8_t>(static_cast<size_t>(Stage::Side) * Stage::Side *
                                static_cast<size_t>(channelsOf(reading.format)) * bytes);
}

void ramp(Stage& stage)
{
    stage.useColors();
    const Corner corners[4] = {{{-1, -1, 0, 1}, {0, 0.2f, 0.9f, 0.1f}, {}},
                               {{1, -1, 0, 1}, {1, 0.3f, 0.1f, 0.6f}, {}},
                               {{-1, 1, 0, 1}, {0.2f, 1, 0.5f, 0.9f}, {}},
                               {{1, 1, 0, 1}, {0.8f, 0.6f, 0, 1}, {}}};
    stage.draw(GL_TRIANGLE_STRIP, corners);
}

void readFromBytes(Stage& stage, const char* name)
{
    const Reading& reading = readingOf(name);
    ramp(stage);
    auto bytes = roomFor(reading);
    glReadPixels(0, 0, Stage::Side, Stage::Side, reading.format, reading.type, bytes.data());
    showRead(stage, reading.format, reading.type, bytes);
}

void readFromFloats(Stage& stage, const char* name)
{
    const Reading& reading = readingOf(name);
    stage.target(GL_RGBA32F_ARB, 1, 0);
    ramp(stage);
    auto bytes = roomFor(reading);
    glReadPixels(0, 0, Stage::Side, Stage::Side, reading.format, reading.type, bytes.data());
    showRead(stage, reading.format, reading.type, bytes);
}

/// Images of textures in each layout for reading, below one another.
void imagesRead(Stage& stage, const char* internal)
{
    GLenum format = *internal == 'b' ? GL_RGBA8 : *internal == 'h' ? GL_RGBA16F_ARB : GL_RGBA32F_ARB;
    stage.texture(GL_TEXTURE_2D);
    std::vector<float> texels;
    for (uint8_t byte : patternTexels(32, 32))
        texels.push_back(static_cast<float>(byte) / 255);
    if (*internal == 'b')
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 32, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     patternTexels(32, 32).data());
    else if (*internal == 'f')
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 32, 32, 0, GL_RGBA, GL_FLOAT, texels.data());
    else {
        std::vector<uint16_t> halves;
        for (float texel : texels)
            halves.push_back(halfOf(texel));
        glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(format), 32, 32, 0, GL_RGBA, GL_HALF_FLOAT, halves.data());
    }
    Image picture(32, 32 * 3);
    std::vector<float> floats(32 * 32 * 4);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, picture.at(0, 32));
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_FLOAT, floats.data());
    for (size_t i = 0; i < floats.size(); ++i)
        picture.at(0, 64)[i] = static_cast<uint8_t>(std::lround(std::clamp(floats[i], 0.0f, 1.0f) * 255));
    stage.show(picture);
}

constexpr const char* HalfStep = "a value in the middle between two bytes is rounded either way";

// clang-format off
constexpr SceneRow Rows[] = {
    {"format-rgba8-rgba",        sampled,              "rgba8-rgba",   0, 0, nullptr, ""},
    {"format-rgba8-bgra",        sampled,              "rgba8-bgra",   0, 0, nullptr, ""},
    {"format-rgba8-rgb",         sampled,              "rgba8-rgb",    0, 0, nullptr, ""},
    {"format-rgba8-bgr",         sampled,              "rgba8-bgr",    0, 0, nullptr, ""},
    {"format-rgb8-rgba",         sampled,              "rgb8-rgba",    0, 0, nullptr, ""},
    {"format-rgb8-bgra",         sampled,              "rgb8-bgra",    0, 0, nullptr, ""},
    {"format-rgb8-rgb",          sampled,              "rgb8-rgb",     0, 0, nullptr, ""},
    {"format-rgb8-bgr",          sampled,              "rgb8-bgr",     0, 0, nullptr, ""},
    {"format-alpha8",            sampled,              "alpha8",       0, 0, nullptr, ""},
    {"format-luminance8",        sampled,              "luminance8",   0, 0, nullptr, ""},
    {"format-rgba16f",           sampled,              "rgba16f",      1, 0, nullptr, HalfStep},
    {"format-rgba16f-rgb",       sampled,              "rgba16f-rgb",  1, 0, nullptr, HalfStep},
    {"format-rgb16f",            sampled,              "rgb16f",       1, 0, nullptr, HalfStep},
    {"format-intensity16f",      sampled,              "intensity16f", 1, 0, nullptr, HalfStep},
    {"format-rgba32f",           sampled,              "rgba32f",      1, 0, nullptr, HalfStep},
    {"format-rgba32f-rgb",       sampled,              "rgba32f-rgb",  1, 0, nullptr, HalfStep},
    {"format-rgb32f",            sampled,              "rgb32f",       1, 0, nullptr, HalfStep},
    {"format-intensity32f",      sampled,              "intensity32f", 1, 0, nullptr, HalfStep},
    {"part-of-rgba8",            replacedParts,        "rgba8-rgba",   0, 0, nullptr, ""},
    {"part-of-rgba8-from-bgr",   replacedParts,        "rgba8-bgr",    0, 0, nullptr, ""},
    {"part-of-rgb8",             replacedParts,        "rgb8-rgb",     0, 0, nullptr, ""},
    {"part-of-rgb16f",           replacedParts,        "rgb16f",       1, 0, nullptr, HalfStep},
    {"part-of-rgba32f",          replacedParts,        "rgba32f-rgb",  1, 0, nullptr, HalfStep},
    {"part-of-a-volume",         replacedVolume,       "",             0, 0, nullptr, ""},
    {"part-of-a-face-and-level", replacedFaceAndLevel, "",             0, 0, nullptr, ""},
    {"one-dimensional",          oneDimensional,       "",             0, 0, nullptr, ""},
    {"read-rgba",                readFromBytes,        "rgba",         1, 0, nullptr, ""},
    {"read-bgra",                readFromBytes,        "bgra",         1, 0, nullptr, ""},
    {"read-rgb",                 readFromBytes,        "rgb",          1, 0, nullptr, ""},
    {"read-red",                 readFromBytes,        "red",          1, 0, nullptr, ""},
    {"read-alpha",               readFromBytes,        "alpha",        1, 0, nullptr, ""},
    {"read-rgba-half",           readFromBytes,        "rgba-half",    1, 0, nullptr, ""},
    {"read-rgb-half",            readFromBytes,        "rgb-half",     1, 0, nullptr, ""},
    {"read-red-half",            readFromBytes,        "red-half",     1, 0, nullptr, ""},
    {"read-rgba-float",          readFromBytes,        "rgba-float",   1, 0, nullptr, ""},
    {"read-rgb-float",           readFromBytes,        "rgb-float",    1, 0, nullptr, ""},
    {"read-red-float",           readFromBytes,        "red-float",    1, 0, nullptr, ""},
    {"read-floats-as-rgba",      readFromFloats,       "rgba",         1, 0, nullptr, HalfStep},
    {"read-floats-as-halves",    readFromFloats,       "rgba-half",    1, 0, nullptr, HalfStep},
    {"read-floats-as-floats",    readFromFloats,       "rgba-float",   1, 0, nullptr, HalfStep},
    {"read-floats-as-red",       readFromFloats,       "red-float",    1, 0, nullptr, HalfStep},
    {"image-of-bytes",           imagesRead,           "b",            0, 0, nullptr, ""},
    {"image-of-halves",          imagesRead,           "h",            1, 0, nullptr, HalfStep},
    {"image-of-floats",          imagesRead,           "f",            0, 0, nullptr, ""},
};
// clang-format on

} // namespace

const std::span<const SceneRow> FormatScenes(Rows);

} // namespace scenes
