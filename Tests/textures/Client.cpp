// SPDX-License-Identifier: Apache-2.0
#include "textures/Client.h"

#include <cstring>

namespace textures
{

namespace
{

uint32_t numberOf(size_t component, uint32_t seed)
{
    return static_cast<uint32_t>(component * 37 + 11 + size_t{seed} * 71) % 256;
}

/// What a component means: bytes from 0 to 1, the others in sixteenths.
float valueOf(const UploadRow& row, size_t component, uint32_t seed)
{
    auto n = static_cast<float>(numberOf(component, seed));
    return row.type == GL_UNSIGNED_BYTE ? n / 255.0f : n / 16.0f - 4.0f;
}

} // namespace

uint32_t componentsOf(GLenum format)
{
    switch (format) {
    case GL_RGBA:
    case GL_BGRA:
        return 4;
    case GL_RGB:
    case GL_BGR:
        return 3;
    default:
        return 1;
    }
}

uint32_t bytesPerPixel(GLenum format, GLenum type)
{
    return componentsOf(format) * (type == GL_UNSIGNED_BYTE ? 1u : type == GL_HALF_FLOAT ? 2u : 4u);
}

Bytes clientImage(const UploadRow& row, size_t pixels, uint32_t seed)
{
    size_t components = pixels * componentsOf(row.format);
    std::vector<float> floats;
    std::vector<uint16_t> halves;
    Bytes bytes;
    for (size_t i = 0; i < components; ++i) {
        if (row.type == GL_UNSIGNED_BYTE) bytes.push_back(static_cast<uint8_t>(numberOf(i, seed)));
        else if (row.type == GL_HALF_FLOAT) halves.push_back(half(valueOf(row, i, seed)));
        else floats.push_back(valueOf(row, i, seed));
    }
    if (row.type == GL_HALF_FLOAT) return bytesOf(halves);
    return row.type == GL_FLOAT ? bytesOf(floats) : bytes;
}

Rgba meant(const UploadRow& row, size_t i, uint32_t seed)
{
    uint32_t n = componentsOf(row.format);
    float c[4] = {0, 0, 0, 1};
    for (uint32_t k = 0; k < n; ++k) c[k] = valueOf(row, i * n + k, seed);
    if (row.format == GL_BGR || row.format == GL_BGRA) std::swap(c[0], c[2]);
    if (row.format == GL_ALPHA) return {0, 0, 0, c[0]};
    return {c[0], c[1], c[2], c[3]};
}

Rgba shown(const UploadRow& row, size_t i, uint32_t seed)
{
    Rgba c = meant(row, i, seed);
    switch (row.internalFormat) {
    case GL_RGB:
    case GL_RGB8:
    case GL_RGB16F_ARB:
    case GL_RGB32F_ARB:
        return {c[0], c[1], c[2], 1};
    case GL_LUMINANCE8:
        return {c[0], c[0], c[0], 1};
    case GL_INTENSITY16F_ARB:
    case GL_INTENSITY32F_ARB:
        return {c[0], c[0], c[0], c[0]};
    default:
        return c;
    }
}

void expectShown(const UploadRow& row, const std::vector<Rgba>& got, uint32_t seed, size_t first)
{
    for (size_t i = 0; i < got.size(); ++i) {
        Rgba wanted = shown(row, first + i, seed);
        if (got[i] == wanted) continue;
        ADD_FAILURE() << row.name << ": pixel " << i << " is " << ::testing::PrintToString(got[i]) << ", not " << ::testing::PrintToString(wanted);
        return;
    }
}

} // namespace textures
