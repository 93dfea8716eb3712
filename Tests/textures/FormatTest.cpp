// SPDX-License-Identifier: Apache-2.0
// Real pixels through upload, draw and read-back: every client layout of every internal format, on both routes.
#include "textures/Client.h"

namespace textures
{

class Format : public OnBothRoutes
{
protected:
    /// A one-level image of a 2D or rectangle texture, drawn one to one.
    std::vector<Rgba> through(const UploadRow& row, GLenum textureTarget, GLsizei width, GLsizei height)
    {
        GLuint name = bindNew(textureTarget);
        Bytes data = clientImage(row, static_cast<size_t>(width) * static_cast<size_t>(height));
        glTexImage2D(textureTarget, 0, static_cast<GLint>(row.internalFormat), width, height, 0, row.format, row.type, data.data());
        bool pixelCoordinates = textureTarget == GL_TEXTURE_RECTANGLE_ARB;
        float s = pixelCoordinates ? static_cast<float>(width) : 1, t = pixelCoordinates ? static_cast<float>(height) : 1;
        auto result = drawn(textureTarget, {{{0, 0}, {s, 0}, {0, t}, {s, t}}}, static_cast<uint32_t>(width), static_cast<uint32_t>(height));
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        glDeleteTextures(1, &name);
        return result;
    }
    void expectAllRows(GLenum textureTarget, GLsizei width, GLsizei height)
    {
        for (const UploadRow& row : UploadRows) expectShown(row, through(row, textureTarget, width, height));
    }
};

TEST_P(Format, OnePixel) { expectAllRows(GL_TEXTURE_2D, 1, 1); }
TEST_P(Format, ThreeByFive) { expectAllRows(GL_TEXTURE_2D, 3, 5); }
TEST_P(Format, SeventeenInARow) { expectAllRows(GL_TEXTURE_2D, 17, 1); }
TEST_P(Format, TwoLongRows) { expectAllRows(GL_TEXTURE_2D, 2048, 2); }
TEST_P(Format, RectangleOfOnePixel) { expectAllRows(GL_TEXTURE_RECTANGLE_ARB, 1, 1); }
TEST_P(Format, RectangleOfThreeByFive) { expectAllRows(GL_TEXTURE_RECTANGLE_ARB, 3, 5); }
TEST_P(Format, RectangleOfTwoLongRows) { expectAllRows(GL_TEXTURE_RECTANGLE_ARB, 2048, 2); }

// ---- cube faces ----

/// Corners whose directions fill a face, its first row at the bottom.
using Directions = std::array<std::array<float, 3>, 4>;
constexpr Directions Faces[6] = {
    {{{1, 1, 1}, {1, 1, -1}, {1, -1, 1}, {1, -1, -1}}},     {{{-1, 1, -1}, {-1, 1, 1}, {-1, -1, -1}, {-1, -1, 1}}},
    {{{-1, 1, -1}, {1, 1, -1}, {-1, 1, 1}, {1, 1, 1}}},     {{{-1, -1, 1}, {1, -1, 1}, {-1, -1, -1}, {1, -1, -1}}},
    {{{-1, 1, 1}, {1, 1, 1}, {-1, -1, 1}, {1, -1, 1}}},     {{{1, 1, -1}, {-1, 1, -1}, {1, -1, -1}, {-1, -1, -1}}},
};

Corners cornersOf(const Directions& d)
{
    Corners corners{};
    for (size_t i = 0; i < 4; ++i) corners[i] = {d[i][0], d[i][1], d[i][2]};
    return corners;
}

TEST_P(Format, EveryFaceOfACube)
{
    for (const UploadRow& row : UploadRows) {
        GLuint name = bindNew(GL_TEXTURE_CUBE_MAP);
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, static_cast<GLint>(row.internalFormat), 5, 5, 0, row.format, row.type,
                         clientImage(row, 25, face).data());
        for (GLenum face = 0; face < 6; ++face) {
            SCOPED_TRACE(face);
            expectShown(row, drawn(GL_TEXTURE_CUBE_MAP, cornersOf(Faces[face]), 5, 5), face);
        }
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        glDeleteTextures(1, &name);
    }
}

// ---- volumes ----

TEST_P(Format, EverySliceOfAVolume)
{
    constexpr GLsizei Width = 3, Height = 5, Depth = 4;
    for (const UploadRow& row : UploadRows) {
        GLuint name = bindNew(GL_TEXTURE_3D);
        glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(row.internalFormat), Width, Height, Depth, 0, row.format, row.type,
                     clientImage(row, Width * Height * Depth).data());
        for (int z = 0; z < Depth; ++z) {
            SCOPED_TRACE(z);
            float r = (static_cast<float>(z) + 0.5f) / Depth;
            expectShown(row, drawn(GL_TEXTURE_3D, {{{0, 0, r}, {1, 0, r}, {0, 1, r}, {1, 1, r}}}, Width, Height), 0, static_cast<size_t>(z) * Width * Height);
        }
        glDeleteTextures(1, &name);
    }
}

// ---- levels ----

TEST_P(Format, EveryLevel)
{
    constexpr GLsizei Width = 11, Height = 4;
    for (const UploadRow& row : UploadRows) {
        GLuint name = bindNew(GL_TEXTURE_2D);
        for (GLint level = 0; level < 4; ++level) {
            GLsizei w = std::max(Width >> level, 1), h = std::max(Height >> level, 1);
            Bytes data = clientImage(row, static_cast<size_t>(w) * static_cast<size_t>(h), static_cast<uint32_t>(level));
            glTexImage2D(GL_TEXTURE_2D, level, static_cast<GLint>(row.internalFormat), w, h, 0, row.format, row.type, data.data());
        }
        for (GLint level = 0; level < 4; ++level) {
            SCOPED_TRACE(level);
            glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, level);
            uint32_t w = std::max(Width >> level, 1), h = std::max(Height >> level, 1);
            expectShown(row, drawn(GL_TEXTURE_2D, WholeImage, w, h), static_cast<uint32_t>(level));
        }
        glDeleteTextures(1, &name);
    }
}

TEST_P(Format, LevelsOfACubeAndOfAVolume)
{
    const UploadRow& row = UploadRows[8]; // RGB to RGBA8
    bindNew(GL_TEXTURE_CUBE_MAP);
    for (GLint level = 0; level < 3; ++level)
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, GL_RGBA8, 4 >> level, 4 >> level, 0, row.format, row.type,
                         clientImage(row, 16, face * 3 + static_cast<uint32_t>(level)).data());
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_BASE_LEVEL, 1);
    for (uint32_t face = 0; face < 6; ++face) expectShown(row, drawn(GL_TEXTURE_CUBE_MAP, cornersOf(Faces[face]), 2, 2), face * 3 + 1);
    bindNew(GL_TEXTURE_3D);
    for (GLint level = 0; level < 3; ++level)
        glTexImage3D(GL_TEXTURE_3D, level, GL_RGBA8, 4 >> level, 4 >> level, 4 >> level, 0, row.format, row.type, clientImage(row, 64, static_cast<uint32_t>(level)).data());
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_BASE_LEVEL, 1);
    expectShown(row, drawn(GL_TEXTURE_3D, {{{0, 0, 0.75f}, {1, 0, 0.75f}, {0, 1, 0.75f}, {1, 1, 0.75f}}}, 2, 2), 1, 4);
}

INSTANTIATE_TEST_SUITE_P(Routes, Format, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

} // namespace textures
