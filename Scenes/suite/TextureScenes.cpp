// SPDX-License-Identifier: Apache-2.0
// Filters, wraps, mip levels, anisotropy and the kinds of textures.
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <algorithm>

namespace scenes
{
namespace
{

void filter(GLenum target, GLenum minify, GLenum magnify)
{
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, static_cast<GLint>(minify));
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, static_cast<GLint>(magnify));
}

void wrap(GLenum target, GLenum mode)
{
    for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(target, parameter, static_cast<GLint>(mode));
}

/// A chain whose levels have a colour each, so that the level that was read shows.
void coloredLevels(Stage& stage, int side)
{
    constexpr std::array<Color, 7> Levels = {Red, Green, Blue, Ochre, White, Teal, Black};
    stage.texture(GL_TEXTURE_2D);
    wrap(GL_TEXTURE_2D, GL_REPEAT);
    for (GLint level = 0; side >> level > 0; ++level) {
        auto texels = patternTexels(side >> level, side >> level);
        for (size_t i = 0; i < texels.size(); ++i) {
            float wanted = Levels[static_cast<size_t>(level)][i % 4] * 255;
            texels[i] = static_cast<uint8_t>((texels[i] + 3 * static_cast<int>(wanted)) / 4);
        }
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA8, side >> level, side >> level, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     texels.data());
    }
}

// ---- filters -------------------------------------------------------------------------------------------------------

void magnified(Stage& stage, const char* how)
{
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    filter(GL_TEXTURE_2D, GL_NEAREST, *how == 'l' ? GL_LINEAR : GL_NEAREST);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, 0.03f, 0.04f, 0.97f, 0.98f}, White);
}

void minified(Stage& stage, const char* how)
{
    stage.patternTexture(GL_TEXTURE_2D, 256, 256);
    filter(GL_TEXTURE_2D, *how == 'l' ? GL_LINEAR : GL_NEAREST, GL_NEAREST);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, 0.001f, 0.001f, 0.999f, 0.999f}, White);
}

/// The argument is two letters: within a level, between levels; or one and a dot for none between them.
GLenum minFilterOf(const char* how)
{
    if (how[1] == '.') return how[0] == 'l' ? GL_LINEAR : GL_NEAREST;
    if (how[1] == 'n') return how[0] == 'l' ? GL_LINEAR_MIPMAP_NEAREST : GL_NEAREST_MIPMAP_NEAREST;
    return how[0] == 'l' ? GL_LINEAR_MIPMAP_LINEAR : GL_NEAREST_MIPMAP_LINEAR;
}

void mippedFloor(Stage& stage, const char* how)
{
    coloredLevels(stage, 64);
    filter(GL_TEXTURE_2D, minFilterOf(how), GL_LINEAR);
    stage.useTexture();
    stage.floor(0.9f);
}

void levelBySize(Stage& stage, const char*)
{
    coloredLevels(stage, 64);
    filter(GL_TEXTURE_2D, GL_NEAREST_MIPMAP_NEAREST, GL_NEAREST);
    stage.useTexture();
    for (int i = 0; i < 9; ++i) { // scales in the middle between two levels' limits
        Box box = tile(i, 3);
        float texels = 32.0f * std::max(0.5f, static_cast<float>(1 << std::min(i, 6)) * 0.5f) * 1.1731f;
        box.s1 = box.t1 = texels / 64;
        stage.rectangle(box, White);
    }
}

void baseLevel(Stage& stage, const char* how)
{
    coloredLevels(stage, 64);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 2);
    filter(GL_TEXTURE_2D, minFilterOf(how), GL_LINEAR);
    stage.useTexture();
    stage.floor(0.9f);
}

/// As wide as high, at two texels for each pixel: nothing is longer than it is wide, so that anisotropy changes
/// nothing.
void anisotropic(Stage& stage, const char*)
{
    coloredLevels(stage, 64);
    filter(GL_TEXTURE_2D, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR);
    glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, 8);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, 0, 0, 3.003f, 3.003f}, White);
}

// ---- wraps ---------------------------------------------------------------------------------------------------------

void wrapped(Stage& stage, GLenum s, GLenum t, GLenum magnify)
{
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, static_cast<GLint>(s));
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, static_cast<GLint>(t));
    filter(GL_TEXTURE_2D, GL_NEAREST, magnify);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, -1.61f, -1.57f, 2.39f, 2.43f}, White);
}

void repeats(Stage& stage, const char* how)
{
    wrapped(stage, GL_REPEAT, GL_REPEAT, *how == 'l' ? GL_LINEAR : GL_NEAREST);
}
void mirrors(Stage& stage, const char* how)
{
    wrapped(stage, GL_MIRRORED_REPEAT, GL_MIRRORED_REPEAT, *how == 'l' ? GL_LINEAR : GL_NEAREST);
}
void clamps(Stage& stage, const char* how)
{
    wrapped(stage, GL_CLAMP_TO_EDGE, GL_CLAMP_TO_EDGE, *how == 'l' ? GL_LINEAR : GL_NEAREST);
}
void wrapsApart(Stage& stage, const char*)
{
    wrapped(stage, GL_REPEAT, GL_MIRRORED_REPEAT, GL_LINEAR);
}

void bordered(Stage& stage, const char* color)
{
    constexpr float Clear[4] = {0, 0, 0, 0}, Opaque[4] = {0, 0, 0, 1}, Bright[4] = {1, 1, 1, 1};
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    wrap(GL_TEXTURE_2D, GL_CLAMP_TO_BORDER);
    filter(GL_TEXTURE_2D, GL_NEAREST, GL_LINEAR);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, *color == 'w' ? Bright : *color == 'b' ? Opaque : Clear);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, -0.31f, -0.33f, 1.29f, 1.27f}, White);
}

// ---- kinds ---------------------------------------------------------------------------------------------------------

void rectangleTexture(Stage& stage, const char* how)
{
    stage.patternTexture(GL_TEXTURE_RECTANGLE_ARB, 24, 10);
    filter(GL_TEXTURE_RECTANGLE_ARB, *how == 'l' ? GL_LINEAR : GL_NEAREST, *how == 'l' ? GL_LINEAR : GL_NEAREST);
    stage.useTexture("RECT");
    stage.rectangle({-1, -1, 1, 1, 0, -2.1f, -1.3f, 26.3f, 11.2f}, White);
}

void oddSize(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_2D, 13, 7);
    filter(GL_TEXTURE_2D, GL_LINEAR, GL_LINEAR);
    wrap(GL_TEXTURE_2D, GL_REPEAT);
    stage.useTexture();
    stage.rectangle({-1, -1, 1, 1, 0, 0.02f, 0.03f, 1.7f, 1.6f}, White);
}

void slices(Stage& stage, const char* how)
{
    stage.patternTexture(GL_TEXTURE_3D, 8, 8, 4);
    filter(GL_TEXTURE_3D, GL_NEAREST, *how == 'l' ? GL_LINEAR : GL_NEAREST);
    stage.useTexture("3D");
    for (int i = 0; i < 9; ++i) {
        Box box = tile(i, 3);
        box.s0 = box.t0 = 0.02f;
        box.s1 = box.t1 = 0.97f;
        box.r = (static_cast<float>(i) + 0.3f) / 9;
        stage.rectangle(box, White);
    }
}

void repeatedVolume(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_3D, 4, 8, 4);
    wrap(GL_TEXTURE_3D, GL_REPEAT);
    filter(GL_TEXTURE_3D, GL_LINEAR, GL_LINEAR);
    stage.useFragment("!!ARBfp1.0\nTEMP c;\nMOV c, fragment.texcoord[0];\nADD c.z, c.x, c.y;\nTEX result.color, c, "
                      "texture[0], 3D;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, -0.4f, -0.35f, 1.6f, 1.55f}, White);
}

void cubeTexture(Stage& stage, int side)
{
    stage.texture(GL_TEXTURE_CUBE_MAP);
    for (int face = 0; face < 6; ++face) {
        auto texels = patternTexels(side, side, 1, face);
        for (size_t i = 2; i < texels.size(); i += 4)
            texels[i] = static_cast<uint8_t>(40 * face);
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + static_cast<GLenum>(face), 0, GL_RGBA8, side, side, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, texels.data());
    }
}

/// Each face of a cube from its middle, in a tile of its own.
void cubeFaces(Stage& stage, const char* how)
{
    cubeTexture(stage, 8);
    filter(GL_TEXTURE_CUBE_MAP, GL_NEAREST, *how == 'l' ? GL_LINEAR : GL_NEAREST);
    stage.useTexture("CUBE");
    constexpr float Reach = 0.83f;
    for (int face = 0; face < 6; ++face) {
        Box box = tile(face, 3);
        Corner corners[4];
        for (int i = 0; i < 4; ++i) {
            float u = i & 1 ? Reach : -Reach, v = i & 2 ? Reach : -Reach, sign = face % 2 ? -1.0f : 1.0f;
            corners[i].place = {i & 1 ? box.right : box.left, i & 2 ? box.top : box.bottom, 0, 1};
            if (face / 2 == 0) corners[i].coordinate = {sign, u, v, 1};
            if (face / 2 == 1) corners[i].coordinate = {u, sign, v, 1};
            if (face / 2 == 2) corners[i].coordinate = {u, v, sign, 1};
        }
        stage.draw(GL_TRIANGLE_STRIP, corners);
    }
}

void cubeByDirection(Stage& stage, const char*)
{
    cubeTexture(stage, 4);
    stage.useFragment(
        "!!ARBfp1.0\nTEMP d;\nMAD d, fragment.texcoord[0], 2, -1;\nMUL d.w, d.x, d.y;\nADD d.z, d.w, 0.37;\n"
        "TEX result.color, d, texture[0], CUBE;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, -0.613f, -0.587f, 1.607f, 1.641f}, White);
}

void twoUnits(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_2D, 8, 8);
    glActiveTextureARB(GL_TEXTURE0 + 5);
    stage.patternTexture(GL_TEXTURE_RECTANGLE_ARB, 8, 8);
    glActiveTextureARB(GL_TEXTURE0);
    stage.useFragment(
        "!!ARBfp1.0\nTEMP a, b;\nTEX a, fragment.texcoord[0], texture[0], 2D;\nMUL b, fragment.texcoord[0].yxzw, 8;\n"
        "TEX b, b, texture[5], RECT;\nMUL result.color, a, b;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, 0.01f, 0.02f, 0.98f, 0.97f}, White);
}

void dependentRead(Stage& stage, const char*)
{
    stage.patternTexture(GL_TEXTURE_2D, 16, 16);
    stage.useFragment("!!ARBfp1.0\nTEMP a;\nTEX a, fragment.texcoord[0], texture[0], 2D;\nMAD a, a, 0.731, 0.113;\n"
                      "TEX result.color, a.yzxw, texture[0], 2D;\nEND\n");
    stage.rectangle({-1, -1, 1, 1, 0, 0.01f, 0.02f, 0.98f, 0.97f}, White);
}

constexpr const char* TexelEdges = "a coordinate on the edge between two texels or two levels may fall on either";
constexpr const char* Straight =
    "the other library takes the logarithm for the level in straight lines, up to 0.09 of a level off: that much of "
    "the distance "
    "between two levels is the tolerance; a coordinate on the edge between two texels may fall on either";
constexpr const char* Gaussian =
    "the other library reads one level with weights of its own where anisotropy is asked for";
constexpr const char* FixedPoint = "the other library weights texels in 8-bit fixed point";

// clang-format off
constexpr SceneRow Rows[] = {
    {"magnified-nearest",        magnified,        "n",  1,  0, nullptr, ""},
    {"magnified-linear",         magnified,        "l",  2,  0, nullptr, FixedPoint},
    {"minified-nearest",         minified,         "n",  1,  0, nullptr, ""},
    {"minified-linear",          minified,         "l",  2,  0, nullptr, FixedPoint},
    {"floor-nearest",            mippedFloor,      "n.",  1,  8, nullptr, TexelEdges},
    {"floor-linear",             mippedFloor,      "l.", 2,  0, nullptr, FixedPoint},
    {"floor-nearest-mip-nearest", mippedFloor,     "nn",  2, 20, nullptr, TexelEdges},
    {"floor-linear-mip-nearest", mippedFloor,      "ln",  2, 20, nullptr, TexelEdges},
    {"floor-nearest-mip-linear", mippedFloor,      "nl", 17,  8, nullptr, Straight},
    {"floor-linear-mip-linear",  mippedFloor,      "ll", 17,  0, nullptr, Straight},
    {"level-by-size",            levelBySize,      "",   1,  0, nullptr, ""},
    {"base-level",               baseLevel,        "ll", 17,  0, nullptr, Straight},
    {"base-level-without-mips",  baseLevel,        "l.", 2,  0, nullptr, FixedPoint},
    {"anisotropy-even-footprint", anisotropic,     "e", 24,  0, nullptr, Gaussian},
    {"wrap-repeat",              repeats,          "n",  1,  0, nullptr, ""},
    {"wrap-repeat-linear",       repeats,          "l",  2,  0, nullptr, FixedPoint},
    {"wrap-mirrored",            mirrors,          "n",  1,  0, nullptr, ""},
    {"wrap-mirrored-linear",     mirrors,          "l",  2,  0, nullptr, FixedPoint},
    {"wrap-clamped",             clamps,           "n",  1,  0, nullptr, ""},
    {"wrap-clamped-linear",      clamps,           "l",  2,  0, nullptr, FixedPoint},
    {"wrap-differs-by-axis",     wrapsApart,       "",   2,  0, nullptr, FixedPoint},
    {"border-transparent",       bordered,         "t",  2,  0, nullptr, FixedPoint},
    {"border-black",             bordered,         "b",  2,  0, nullptr, FixedPoint},
    {"border-white",             bordered,         "w",  2,  0, nullptr, FixedPoint},
    {"rectangle-nearest",        rectangleTexture, "n",  1,  0, nullptr, ""},
    {"rectangle-linear",         rectangleTexture, "l",  2,  0, nullptr, FixedPoint},
    {"odd-size",                 oddSize,          "",   2,  0, nullptr, FixedPoint},
    {"volume-slices",            slices,           "n",  1,  0, nullptr, ""},
    {"volume-between-slices",    slices,           "l",  2,  0, nullptr, FixedPoint},
    {"volume-repeated",          repeatedVolume,   "",   2,  0, nullptr, FixedPoint},
    {"cube-faces",               cubeFaces,        "n",  1,  0, nullptr, ""},
    {"cube-faces-linear",        cubeFaces,        "l",  2,  0, nullptr, FixedPoint},
    {"cube-by-direction",        cubeByDirection,  "",   1,  0, nullptr, ""},
    {"two-units",                twoUnits,         "",   1,  0, nullptr, ""},
    {"dependent-read",           dependentRead,    "",   1,  0, nullptr, ""},
};
// clang-format on

} // namespace

const std::span<const SceneRow> TextureScenes(Rows);

} // namespace scenes
