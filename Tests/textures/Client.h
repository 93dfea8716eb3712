// SPDX-License-Identifier: Apache-2.0
// The client's side of uploads: every layout that a texture takes, with pixels whose meaning is computed here.
#pragma once

#include "textures/TextureFixture.h"

namespace textures
{

/// One combination of texture and client layout that can be uploaded.
struct UploadRow
{
    const char* name;
    GLenum internalFormat, format, type;
    bool direct; // handed to Metal as it stands, with the oddities of that
};

inline constexpr UploadRow UploadRows[] = {
    {"RgbFloatToRgba32f", GL_RGBA32F_ARB, GL_RGB, GL_FLOAT, false},
    {"RgbFloatToRgb32f", GL_RGB32F_ARB, GL_RGB, GL_FLOAT, false},
    {"RgbHalfToRgba16f", GL_RGBA16F_ARB, GL_RGB, GL_HALF_FLOAT, false},
    {"RgbHalfToRgb16f", GL_RGB16F_ARB, GL_RGB, GL_HALF_FLOAT, false},
    {"RgbToRgb", GL_RGB, GL_RGB, GL_UNSIGNED_BYTE, false},
    {"RgbToRgb8", GL_RGB8, GL_RGB, GL_UNSIGNED_BYTE, false},
    {"BgrToRgba8", GL_RGBA8, GL_BGR, GL_UNSIGNED_BYTE, false},
    {"BgrToRgb8", GL_RGB8, GL_BGR, GL_UNSIGNED_BYTE, false},
    {"RgbToRgba8", GL_RGBA8, GL_RGB, GL_UNSIGNED_BYTE, false},
    {"BgraToRgb8", GL_RGB8, GL_BGRA, GL_UNSIGNED_BYTE, false},
    {"RgbaToRgba", GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE, false},
    {"RgbaToRgba8", GL_RGBA8, GL_RGBA, GL_UNSIGNED_BYTE, false},
    {"RgbaToRgb8", GL_RGB8, GL_RGBA, GL_UNSIGNED_BYTE, true},
    {"BgraToRgba8", GL_RGBA8, GL_BGRA, GL_UNSIGNED_BYTE, true},
    {"RgbaHalfToRgba16f", GL_RGBA16F_ARB, GL_RGBA, GL_HALF_FLOAT, true},
    {"RgbaHalfToRgb16f", GL_RGB16F_ARB, GL_RGBA, GL_HALF_FLOAT, true},
    {"RedHalfToIntensity16f", GL_INTENSITY16F_ARB, GL_RED, GL_HALF_FLOAT, true},
    {"RgbaFloatToRgba32f", GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT, true},
    {"RgbaFloatToRgb32f", GL_RGB32F_ARB, GL_RGBA, GL_FLOAT, true},
    {"RedFloatToIntensity32f", GL_INTENSITY32F_ARB, GL_RED, GL_FLOAT, true},
    {"RedFloatToFloatR", GL_FLOAT_R_NV, GL_RED, GL_FLOAT, true},
    {"RedToLuminance8", GL_LUMINANCE8, GL_RED, GL_UNSIGNED_BYTE, true},
    {"AlphaToAlpha", GL_ALPHA, GL_ALPHA, GL_UNSIGNED_BYTE, true},
    {"AlphaToAlpha8", GL_ALPHA8, GL_ALPHA, GL_UNSIGNED_BYTE, true},
};

uint32_t componentsOf(GLenum format);
uint32_t bytesPerPixel(GLenum format, GLenum type);

/// An image's pixels in the client's layout: no two neighbours are alike, and another seed gives other ones. Floats and
/// halves go from -4 to 12 in sixteenths.
Bytes clientImage(const UploadRow& row, size_t pixels, uint32_t seed = 0);

/// What that image's pixel number i means before any texture is involved: red, green, blue and alpha. It is also what
/// the texture stores.
Rgba meant(const UploadRow& row, size_t i, uint32_t seed = 0);

/// What a draw shows of pixel number i of that image.
Rgba shown(const UploadRow& row, size_t i, uint32_t seed = 0);

/// The first difference between what was drawn and the pixels first, first + 1 … of an image.
void expectShown(const UploadRow& row, const std::vector<Rgba>& got, uint32_t seed = 0, size_t first = 0);

} // namespace textures
