// SPDX-License-Identifier: Apache-2.0
// Sub-images: where they land on the converting paths and on the direct one, and what is refused.
#include "textures/Client.h"

#include <limits>

namespace textures
{

class SubImage : public OnBothRoutes
{
protected:
    /// A square texture of zeros, with the bytes a client would have for them.
    GLuint zeros(GLenum textureTarget, const UploadRow& row, GLsizei side, GLsizei deep = 1)
    {
        GLuint name = bindNew(textureTarget);
        size_t texels = static_cast<size_t>(side) * static_cast<size_t>(side) * static_cast<size_t>(deep);
        Bytes nothing(texels * 16);
        if (textureTarget == GL_TEXTURE_3D)
            glTexImage3D(GL_TEXTURE_3D, 0, static_cast<GLint>(row.internalFormat), side, side, deep, 0, row.format, row.type, nothing.data());
        else
            glTexImage2D(textureTarget, 0, static_cast<GLint>(row.internalFormat), side, side, 0, row.format, row.type, nothing.data());
        return name;
    }

    /// Texels of a level and slice as the texture stores them.
    static Bytes stored(MTL::Texture* t, NS::UInteger side, size_t texelBytes, NS::UInteger level = 0, NS::UInteger slice = 0, NS::UInteger z = 0)
    {
        Bytes bytes(side * side * texelBytes);
        t->getBytes(bytes.data(), side * texelBytes, bytes.size(), MTL::Region(0, 0, z, side, side, 1), level, slice);
        return bytes;
    }

    /// Bytes that differ from those of an image of nothing, as a rectangle of texels: x, y, width, height.
    static std::array<size_t, 4> touched(const Bytes& bytes, const Bytes& before, size_t side)
    {
        size_t texel = bytes.size() / (side * side), left = side, top = side, right = 0, bottom = 0;
        for (size_t i = 0; i < bytes.size(); ++i) {
            if (bytes[i] == before[i]) continue;
            size_t x = i / texel % side, y = i / texel / side;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x + 1);
            bottom = std::max(bottom, y + 1);
        }
        return {left, top, right - left, bottom - top};
    }
};

using Box = std::array<size_t, 4>;

size_t texelBytes(MTL::Texture* t)
{
    switch (t->pixelFormat()) {
    case MTL::PixelFormatRGBA32Float:
        return 16;
    case MTL::PixelFormatRGBA16Float:
        return 8;
    case MTL::PixelFormatR16Float:
        return 2;
    case MTL::PixelFormatR8Unorm:
    case MTL::PixelFormatA8Unorm:
        return 1;
    default:
        return 4;
    }
}

TEST_P(SubImage, RowsOfNothingAreDoneAtOnce)
{
    const GLint most = std::numeric_limits<GLint>::max();
    zeros(GL_TEXTURE_3D, UploadRows[5], 4, 4);
    const uint8_t nothing[1] = {};
    clearLog();
    for (GLsizei width : {0, -1}) glTexSubImage3D(GL_TEXTURE_3D, 0, 0, 0, 0, width, most, most, GL_RGB, GL_UNSIGNED_BYTE, nothing);
    EXPECT_EQ(count("replaceRegion"), 0u);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(SubImage, LandsAtItsOffsetWhenConvertedAndAtTheOriginWhenNot)
{
    for (const UploadRow& row : UploadRows) {
        MTL::Texture* t = metal(zeros(GL_TEXTURE_2D, row, 8));
        Bytes before = stored(t, 8, texelBytes(t));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 3, 3, 2, row.format, row.type, clientImage(row, 6).data());
        Box expected = row.direct ? Box{0, 0, 3, 2} : Box{2, 3, 3, 2};
        EXPECT_EQ(touched(stored(t, 8, texelBytes(t)), before, 8), expected) << row.name;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(SubImage, Kept_direct_upload_origin)
{
    const UploadRow &direct = UploadRows[13], &converting = UploadRows[11]; // BGRA and RGBA to RGBA8
    for (const UploadRow* row : {&direct, &converting}) {
        MTL::Texture* t = metal(zeros(GL_TEXTURE_2D, *row, 4));
        Bytes pixel = {1, 2, 3, 4};
        glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 2, 1, 1, row->format, row->type, pixel.data());
        Bytes wanted(64);
        const Bytes texel = row->direct ? Bytes{1, 2, 3, 4} : Bytes{3, 2, 1, 4};
        std::copy(texel.begin(), texel.end(), wanted.begin() + (row->direct ? 0 : 2 * 16 + 2 * 4));
        EXPECT_EQ(stored(t, 4, 4), wanted) << row->name;
    }
}

TEST_P(SubImage, OfALine)
{
    bindNew(GL_TEXTURE_1D);
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, Bytes(4).data());
    glTexSubImage1D(GL_TEXTURE_1D, 0, 0, 1, GL_RGB, GL_UNSIGNED_BYTE, counting(3).data());
    EXPECT_EQ(image(GL_TEXTURE_1D, 0, GL_BGRA, GL_UNSIGNED_BYTE, 4), (Bytes{3, 2, 1, 255}));
    if (GetParam() == Route::Intel) return; // longer ones have a chain there, which no device makes
    glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA8, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, Bytes(16).data());
    glTexSubImage1D(GL_TEXTURE_1D, 0, 2, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(image(GL_TEXTURE_1D, 0, GL_RGBA, GL_UNSIGNED_BYTE, 16), (Bytes{0, 0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0}));
    glTexSubImage1D(GL_TEXTURE_1D, 0, 3, 1, GL_BGRA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(image(GL_TEXTURE_1D, 0, GL_BGRA, GL_UNSIGNED_BYTE, 16), (Bytes{1, 2, 3, 4, 0, 0, 0, 0, 3, 2, 1, 4, 0, 0, 0, 0}));
}

TEST_P(SubImage, OfAVolume)
{
    for (const UploadRow& row : UploadRows) {
        MTL::Texture* t = metal(zeros(GL_TEXTURE_3D, row, 4, 4));
        Bytes before = stored(t, 4, texelBytes(t));
        glTexSubImage3D(GL_TEXTURE_3D, 0, 1, 2, 2, 2, 2, 2, row.format, row.type, clientImage(row, 8).data());
        for (NS::UInteger z = 0; z < 4; ++z) {
            Box got = touched(stored(t, 4, texelBytes(t), 0, 0, z), before, 4);
            bool written = row.direct ? z < 2 : z >= 2;
            Box box = row.direct ? Box{0, 0, 2, 2} : Box{1, 2, 2, 2};
            EXPECT_EQ(got[2] != 0 && got[2] <= 4, written) << row.name << " slice " << z;
            if (!written) continue;
            EXPECT_EQ(got, box) << row.name << " slice " << z;
        }
    }
}

TEST_P(SubImage, OfAFaceAndALevel)
{
    const UploadRow& row = UploadRows[11];
    GLuint name = bindNew(GL_TEXTURE_CUBE_MAP);
    for (GLint level = 0; level < 2; ++level)
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, level, GL_RGBA8, 4 >> level, 4 >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE, Bytes(64).data());
    glTexSubImage2D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Y, 1, 1, 0, 1, 2, row.format, row.type, clientImage(row, 2).data());
    MTL::Texture* t = metal(name);
    for (NS::UInteger level = 0; level < 2; ++level) {
        NS::UInteger side = 4 >> level;
        for (NS::UInteger face = 0; face < 6; ++face) {
            Box got = touched(stored(t, side, 4, level, face), Bytes(side * side * 4), side);
            bool written = level == 1 && face == 3;
            EXPECT_EQ(got == (Box{1, 0, 1, 2}), written) << "level " << level << " face " << face;
            EXPECT_EQ(got[2] > side, !written) << "level " << level << " face " << face; // nothing at all
        }
    }
    commands().commandBufferEnd();
}

// ---- refusals ----

TEST_P(SubImage, OfALevelThatWasNeverSpecifiedIsRefused)
{
    GLuint name = zeros(GL_TEXTURE_2D, UploadRows[11], 4);
    glTexSubImage2D(GL_TEXTURE_2D, 1, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE);
    EXPECT_EQ(object(name).definedLevelsMask, 1u);
    glTexSubImage1D(GL_TEXTURE_1D, 0, 0, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(glGetError(), GL_INVALID_VALUE); // nothing bound
    glTexSubImage3D(GL_TEXTURE_CUBE_MAP_NEGATIVE_Z + 1, 0, 0, 0, 0, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(glGetError(), GL_INVALID_ENUM);
    glBindTexture(GL_TEXTURE_3D, name);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(glGetError(), GL_INVALID_OPERATION);
}

TEST_P(SubImage, BeyondTheEdgesIsReportedAndIgnored)
{
    struct Place
    {
        GLint x, y, z;
        GLsizei width, height, depth;
    };
    for (const UploadRow& row : UploadRows) {
        MTL::Texture* t = metal(zeros(GL_TEXTURE_2D, row, 4));
        Bytes before = stored(t, 4, texelBytes(t)), data = clientImage(row, 64);
        for (const Place& p : {Place{-1, 0, 0, 1, 1, 1}, Place{0, -1, 0, 1, 1, 1}, Place{0, 0, -1, 1, 1, 1}, Place{4, 0, 0, 1, 1, 1}, Place{0, 0, 1, 1, 1, 1},
                               Place{2, 0, 0, 3, 1, 1}, Place{0x7FFFFFFF, 0x7FFFFFFF, 0, 5, 1, 1}}) {
            glTexSubImage3D(GL_TEXTURE_2D, 0, p.x, p.y, p.z, p.width, p.height, p.depth, row.format, row.type, data.data());
            bool inside = row.direct && p.width <= 4; // the offsets play no part there
            EXPECT_EQ(broken().empty(), inside) << row.name;
        }
        EXPECT_EQ(stored(t, 4, texelBytes(t)) == before, !row.direct) << row.name;
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
    }
}

TEST_P(SubImage, TooLargeNegativeOrEmptyWritesNothing)
{
    for (const UploadRow& row : UploadRows) {
        MTL::Texture* t = metal(zeros(GL_TEXTURE_2D, row, 4));
        Bytes before = stored(t, 4, texelBytes(t)), data = clientImage(row, 64);
        for (auto [width, height] : {std::pair{5, 1}, {-1, 1}, {1, -1}, {1, 0}, {-2147483647 - 1, 2}}) {
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, row.format, row.type, data.data());
            EXPECT_EQ(stored(t, 4, texelBytes(t)), before) << row.name << " " << width << " by " << height;
        }
        EXPECT_EQ(glGetError(), GL_NO_ERROR);
        broken();
    }
}

TEST_P(SubImage, RowsThatFitAreConvertedBeforeThoseThatDoNot)
{
    MTL::Texture* t = metal(zeros(GL_TEXTURE_2D, UploadRows[11], 4));
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 3, 4, 2, GL_RGBA, GL_UNSIGNED_BYTE, counting(32).data());
    EXPECT_EQ(touched(stored(t, 4, 4), Bytes(64), 4), (Box{0, 3, 4, 1}));
    EXPECT_EQ(broken(), Rules{"texture.region"});
}

TEST_P(SubImage, ALevelThatTheTextureLacksIsReportedAndIgnored)
{
    zeros(GL_TEXTURE_2D, UploadRows[11], 4);
    glTexImage2D(GL_TEXTURE_2D, 20, GL_RGBA8, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, counting(4).data());
    EXPECT_EQ(broken(), Rules{"texture.region"});
    EXPECT_EQ(glGetError(), GL_NO_ERROR);
    commands().commandBufferEnd();
}

INSTANTIATE_TEST_SUITE_P(Routes, SubImage, ::testing::Values(Route::Ordinary, Route::Intel), routeName);

class SubImageDeath : public Textures
{
};

TEST_F(SubImageDeath, ADirectUploadOfNoWidthIsAnAssertion)
{
    bindNew(GL_TEXTURE_2D);
    Bytes data(64);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 4, 4, 0, GL_BGRA, GL_UNSIGNED_BYTE, data.data());
    EXPECT_DEATH(
        {
            SoftMetal::setLogSink({});
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 0, 4, GL_BGRA, GL_UNSIGNED_BYTE, data.data());
        },
        "fastPathBytesPerRow != 0.*ZALMetalTexInitOrReplaceRegion.*Src/ZALGLFunctionsTexture");
}

} // namespace textures
