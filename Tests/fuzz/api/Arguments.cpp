// SPDX-License-Identifier: Apache-2.0
#include "fuzz/api/Arguments.h"

#include <climits>
#include <cmath>

namespace fuzz::api
{

namespace
{

constexpr GLenum Enumerants[] = {
    GL_POINTS,
    GL_LINES,
    GL_LINE_LOOP,
    GL_LINE_STRIP,
    GL_TRIANGLES,
    GL_TRIANGLE_STRIP,
    GL_TRIANGLE_FAN,
    GL_QUADS,
    GL_NEVER,
    GL_LESS,
    GL_EQUAL,
    GL_LEQUAL,
    GL_GREATER,
    GL_NOTEQUAL,
    GL_GEQUAL,
    GL_ALWAYS,
    GL_KEEP,
    GL_REPLACE,
    GL_INCR,
    GL_DECR,
    GL_INVERT,
    GL_INCR_WRAP,
    GL_DECR_WRAP,
    GL_SRC_COLOR,
    GL_ONE_MINUS_SRC_COLOR,
    GL_SRC_ALPHA,
    GL_ONE_MINUS_SRC_ALPHA,
    GL_DST_ALPHA,
    GL_DST_COLOR,
    GL_SRC_ALPHA_SATURATE,
    GL_CONSTANT_COLOR,
    GL_FUNC_ADD,
    GL_FUNC_SUBTRACT,
    GL_FUNC_REVERSE_SUBTRACT,
    GL_MIN,
    GL_MAX,
    GL_FRONT,
    GL_BACK,
    GL_FRONT_AND_BACK,
    GL_POINT,
    GL_LINE,
    GL_FILL,
    GL_BACK_LEFT,
    GL_NONE,
    GL_CULL_FACE,
    GL_DEPTH_TEST,
    GL_STENCIL_TEST,
    GL_BLEND,
    GL_POLYGON_OFFSET_FILL,
    GL_SCISSOR_TEST,
    GL_DEBUG_CAPTURE_SCOPE_ZAL,
    GL_VERTEX_PROGRAM_ARB,
    GL_FRAGMENT_PROGRAM_ARB,
    GL_PROGRAM_FORMAT_ASCII_ARB,
    GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL,
    GL_PROGRAM_ERROR_STRING_ARB,
    GL_PROGRAM_ERROR_POSITION_ARB,
    GL_VENDOR,
    GL_RENDERER,
    GL_VERSION,
    GL_EXTENSIONS,
    GL_MODELVIEW,
    GL_PROJECTION,
    GL_TEXTURE,
    GL_VIEWPORT,
    GL_MODELVIEW_MATRIX,
    GL_PROJECTION_MATRIX,
    GL_CURRENT_MATRIX_ARB,
    GL_MODELVIEW_STACK_DEPTH,
    GL_MAX_TEXTURE_SIZE,
    GL_MAX_3D_TEXTURE_SIZE,
    GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT,
    GL_VERTEX_ARRAY,
    GL_NORMAL_ARRAY,
    GL_COLOR_ARRAY,
    GL_TEXTURE_COORD_ARRAY,
    GL_BYTE,
    GL_UNSIGNED_BYTE,
    GL_SHORT,
    GL_UNSIGNED_SHORT,
    GL_INT,
    GL_UNSIGNED_INT,
    GL_FLOAT,
    GL_DOUBLE,
    GL_HALF_FLOAT,
    GL_ARRAY_BUFFER,
    GL_ELEMENT_ARRAY_BUFFER,
    GL_STATIC_DRAW,
    GL_FRAMEBUFFER,
    GL_DEPTH_ATTACHMENT,
    GL_DEPTH_STENCIL_ATTACHMENT,
    GL_COLOR_ATTACHMENT0,
    GL_COLOR_ATTACHMENT1,
    GL_COLOR_ATTACHMENT7,
    GL_TEXTURE0,
    GL_TEXTURE1,
    GL_TEXTURE5,
    GL_TEXTURE31,
    GL_TEXTURE_1D,
    GL_TEXTURE_2D,
    GL_TEXTURE_3D,
    GL_TEXTURE_RECTANGLE_ARB,
    GL_TEXTURE_CUBE_MAP,
    GL_TEXTURE_CUBE_MAP_POSITIVE_X,
    GL_TEXTURE_CUBE_MAP_NEGATIVE_X,
    GL_TEXTURE_CUBE_MAP_NEGATIVE_Z,
    GL_TEXTURE_MAG_FILTER,
    GL_TEXTURE_MIN_FILTER,
    GL_TEXTURE_WRAP_S,
    GL_TEXTURE_WRAP_T,
    GL_TEXTURE_WRAP_R,
    GL_TEXTURE_BASE_LEVEL,
    GL_TEXTURE_COMPARE_MODE,
    GL_TEXTURE_MAX_ANISOTROPY_EXT,
    GL_TEXTURE_BORDER_COLOR,
    GL_TEXTURE_WIDTH,
    GL_TEXTURE_HEIGHT,
    GL_TEXTURE_DEPTH,
    GL_TEXTURE_INTERNAL_FORMAT,
    GL_NEAREST,
    GL_LINEAR,
    GL_NEAREST_MIPMAP_NEAREST,
    GL_LINEAR_MIPMAP_NEAREST,
    GL_NEAREST_MIPMAP_LINEAR,
    GL_LINEAR_MIPMAP_LINEAR,
    GL_CLAMP,
    GL_REPEAT,
    GL_CLAMP_TO_EDGE,
    GL_CLAMP_TO_BORDER,
    GL_MIRRORED_REPEAT,
    GL_RED,
    GL_ALPHA,
    GL_RGB,
    GL_RGBA,
    GL_BGR,
    GL_BGRA,
    GL_LUMINANCE,
    GL_INTENSITY,
    GL_DEPTH_COMPONENT,
    GL_RGBA8,
    GL_RGB8,
    GL_ALPHA8,
    GL_LUMINANCE8,
    GL_INTENSITY8,
    GL_RGBA16F_ARB,
    GL_RGB16F_ARB,
    GL_RGBA32F_ARB,
    GL_LUMINANCE32F_ARB,
    GL_LUMINANCE16F_ARB,
    GL_DEPTH_COMPONENT24,
    GL_DEPTH_COMPONENT16,
    GL_DEPTH24_STENCIL8_EXT,
    GL_UNPACK_ALIGNMENT,
    GL_PACK_ALIGNMENT,
    GL_COLOR_BUFFER_BIT,
    GL_DEPTH_BUFFER_BIT,
    GL_STENCIL_BUFFER_BIT,
    GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT,
    GL_OBJECT_COMPILE_STATUS_ARB,
};

constexpr int32_t Ends[] = {INT_MIN, INT_MIN + 1, -65536, -1,    31,    32,      255,
                            256,     1024,        16384,  16385, 65536, 1 << 30, INT_MAX};
constexpr float Reals[] = {0, 1, -1, 0.5f, 2, 1e-30f, 1e30f, -1e30f, 16, 17, 0x1p-149f};

uint32_t bits(Input& input)
{
    uint32_t word = 0;
    for (int i = 0; i < 4; ++i)
        word = word << 8 | input.byte();
    return word;
}

} // namespace

GLenum Arguments::enumerant()
{
    uint8_t choice = input.byte();
    return choice < std::size(Enumerants) ? Enumerants[choice] : choice < 250 ? choice : bits(input);
}

uint32_t Arguments::name()
{
    uint8_t choice = input.byte();
    return choice < 240 ? choice % 12 : bits(input);
}

uint32_t Arguments::word()
{
    uint8_t choice = input.byte();
    return choice < 96 ? enumerant() : choice < 224 ? choice % 16 : bits(input);
}

int32_t Arguments::integer()
{
    uint8_t choice = input.byte();
    if (choice < 128) return choice % 24;
    if (choice < 200) return static_cast<int32_t>(enumerant());
    return Ends[choice % std::size(Ends)];
}

float Arguments::real()
{
    uint8_t choice = input.byte();
    if (choice < 128) return Reals[choice % std::size(Reals)];
    if (choice < 240) return static_cast<float>(choice - 184) / 16;
    uint32_t word = bits(input);
    float number;
    std::memcpy(&number, &word, sizeof number);
    return number;
}

int32_t Arguments::side()
{
    uint8_t choice = input.byte();
    return choice < 200 ? choice % 20 : choice < 232 ? choice - 200 + 32 : Ends[choice % std::size(Ends)];
}

Slot* Arguments::living()
{
    uint8_t choice = input.byte();
    for (size_t i = 0; i < World::Slots; ++i) {
        Slot& slot = world.slots[(choice + i) % World::Slots];
        if (slot.context) return &slot;
    }
    return nullptr;
}

void bound(int32_t& width, int32_t& height, int32_t& depth)
{
    uint64_t texels = 1;
    for (int32_t* side : {&width, &height, &depth}) {
        if (*side < 1 || static_cast<uint32_t>(*side) > World::LargestSide) continue;
        texels *= static_cast<uint64_t>(*side);
        if (texels <= World::MostTexels) continue;
        texels /= static_cast<uint64_t>(*side);
        *side = 1;
    }
}

} // namespace fuzz::api
