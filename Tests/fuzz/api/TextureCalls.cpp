// SPDX-License-Identifier: Apache-2.0
// Textures, uploads and reading back. Kept away from, because an assertion ends the process there: texels for an image
// of width 0 whose layout needs no conversion. Client memory has exactly the size that GL asks for.
#include "fuzz/api/Arguments.h"

#include <algorithm>
#include <iterator>

namespace fuzz::api
{

namespace
{

struct Layout
{
    GLenum format, type;
    uint32_t bytes;
};

constexpr Layout Layouts[] = {
    {GL_RGBA, GL_UNSIGNED_BYTE, 4},    {GL_BGRA, GL_UNSIGNED_BYTE, 4},  {GL_RGBA, GL_HALF_FLOAT, 8},
    {GL_RED, GL_HALF_FLOAT, 2},        {GL_RGBA, GL_FLOAT, 16},         {GL_RED, GL_FLOAT, 4},
    {GL_RED, GL_UNSIGNED_BYTE, 1},     {GL_ALPHA, GL_UNSIGNED_BYTE, 1}, {GL_RGB, GL_FLOAT, 12},
    {GL_RGB, GL_HALF_FLOAT, 6},        {GL_RGB, GL_UNSIGNED_BYTE, 3},   {GL_BGR, GL_UNSIGNED_BYTE, 3},
    {GL_DEPTH_COMPONENT, GL_FLOAT, 4},
};

/// One of those that are known, or any two enumerants with the largest size there is.
Layout layout(Arguments& a)
{
    uint8_t choice = a.input.byte();
    if (choice < 240) return Layouts[choice % std::size(Layouts)];
    GLenum format = a.enumerant(), type = a.enumerant();
    for (const Layout& known : Layouts)
        if (known.format == format && known.type == type) return known;
    return {format, type, 16};
}

constexpr GLenum Targets[] = {GL_TEXTURE_1D,
                              GL_TEXTURE_2D,
                              GL_TEXTURE_3D,
                              GL_TEXTURE_RECTANGLE_ARB,
                              GL_TEXTURE_CUBE_MAP,
                              GL_TEXTURE_CUBE_MAP_POSITIVE_X,
                              GL_TEXTURE_CUBE_MAP_NEGATIVE_Z};

GLenum target(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 248 ? Targets[choice % std::size(Targets)] : a.word();
}

constexpr GLenum Formats[] = {GL_RGBA8,
                              GL_RGB8,
                              GL_RGBA,
                              GL_RGB,
                              GL_ALPHA8,
                              GL_LUMINANCE8,
                              GL_INTENSITY8,
                              GL_RGBA16F_ARB,
                              GL_RGB16F_ARB,
                              GL_RGBA32F_ARB,
                              GL_LUMINANCE16F_ARB,
                              GL_LUMINANCE32F_ARB,
                              GL_DEPTH_COMPONENT24,
                              GL_DEPTH24_STENCIL8_EXT,
                              GL_DEPTH_COMPONENT,
                              GL_DEPTH_COMPONENT16};

GLenum internalFormat(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 240 ? Formats[choice % std::size(Formats)] : a.word();
}

GLint level(Arguments& a)
{
    uint8_t choice = a.input.byte();
    return choice < 128 ? 0 : choice < 232 ? choice % 7 : a.integer();
}

struct Box
{
    int32_t width, height, depth;
};

Box box(Arguments& a, int dimensions)
{
    Box b{a.side(), dimensions > 1 ? a.side() : 1, dimensions > 2 ? a.side() : 1};
    bound(b.width, b.height, b.depth);
    return b;
}

/// Texels for the box, null for none: by choice, because the box is too large to be given, or for the assertion's sake.
const void* texels(Arguments& a, const Box& b, const Layout& l)
{
    if (a.input.byte() < 48 || b.width == 0) return nullptr;
    uint64_t bytes = l.bytes;
    for (int32_t side : {b.width, b.height, b.depth}) {
        bytes *= static_cast<uint64_t>(std::max(side, 0));
        if (bytes > World::MostClientBytes) return nullptr;
    }
    return a.world.memory(bytes, a.input);
}

void bindTexture(Arguments& a)
{
    GLenum chosen = target(a);
    glBindTexture(chosen, a.name());
}

void texImage1D(Arguments& a)
{
    GLenum at = target(a), stored = internalFormat(a);
    GLint l = level(a);
    Layout from = layout(a);
    Box b = box(a, 1);
    glTexImage1D(at, l, static_cast<GLint>(stored), b.width, 0, from.format, from.type, texels(a, b, from));
}

void texImage2D(Arguments& a)
{
    GLenum at = target(a), stored = internalFormat(a);
    GLint l = level(a);
    Layout from = layout(a);
    Box b = box(a, 2);
    glTexImage2D(at, l, static_cast<GLint>(stored), b.width, b.height, 0, from.format, from.type, texels(a, b, from));
}

void texImage3D(Arguments& a)
{
    GLenum at = target(a), stored = internalFormat(a);
    GLint l = level(a);
    Layout from = layout(a);
    Box b = box(a, 3);
    glTexImage3D(at, l, static_cast<GLint>(stored), b.width, b.height, b.depth, 0, from.format, from.type,
                 texels(a, b, from));
}

void texSubImage1D(Arguments& a)
{
    GLenum at = target(a);
    GLint l = level(a), x = a.side();
    Layout from = layout(a);
    Box b = box(a, 1);
    glTexSubImage1D(at, l, x, b.width, from.format, from.type, texels(a, b, from));
}

void texSubImage2D(Arguments& a)
{
    GLenum at = target(a);
    GLint l = level(a), x = a.side(), y = a.side();
    Layout from = layout(a);
    Box b = box(a, 2);
    glTexSubImage2D(at, l, x, y, b.width, b.height, from.format, from.type, texels(a, b, from));
}

void texSubImage3D(Arguments& a)
{
    GLenum at = target(a);
    GLint l = level(a), x = a.side(), y = a.side(), z = a.side();
    Layout from = layout(a);
    Box b = box(a, 3);
    glTexSubImage3D(at, l, x, y, z, b.width, b.height, b.depth, from.format, from.type, texels(a, b, from));
}

void texParameter(Arguments& a)
{
    GLenum at = target(a), name = a.enumerant();
    glTexParameteri(at, name, a.integer());
}

void readPixels(Arguments& a)
{
    GLint x = a.side(), y = a.side();
    Layout to = layout(a);
    Box b = box(a, 2);
    uint64_t width = static_cast<uint64_t>(std::max(b.width, 0)), height = static_cast<uint64_t>(std::max(b.height, 0));
    if (width && height > World::MostClientBytes / to.bytes / width) b.height = 1, height = 1;
    if (width * height > World::MostClientBytes / to.bytes) b.width = 1, width = 1;
    glReadPixels(x, y, b.width, b.height, to.format, to.type, a.world.memory(width * height * to.bytes, a.input));
}

void getTexImage(Arguments& a)
{
    GLenum at = target(a), bindTarget = 0;
    GLint l = level(a);
    Layout to = layout(a);
    int32_t face = 0;
    ZALGLState* gl = GetCurrentGLState();
    ZALGLTextureObject* texture = gl ? getBoundTextureFace(gl, at, bindTarget, face) : nullptr;
    uint64_t bytes = to.bytes;
    if (texture)
        for (uint32_t side : {texture->width, texture->height, texture->depth}) {
            bytes *= static_cast<uint64_t>(std::max(1, static_cast<int32_t>(side) >> (l & 31)));
            if (bytes > World::MostClientBytes) return;
        }
    glGetTexImage(at, l, to.format, to.type, a.world.memory(bytes, a.input));
}

void copyTexSubImage(Arguments& a)
{
    GLenum at = target(a);
    GLint l = level(a), toX = a.side(), toY = a.side(), x = a.side(), y = a.side();
    Box b = box(a, 2);
    glCopyTexSubImage2D(at, l, toX, toY, x, y, b.width, b.height);
}

constexpr Call Calls[] = {
    {"glBindTexture", bindTexture},
    {"glCopyTexSubImage2D", copyTexSubImage},
    {"glGetTexImage", getTexImage},
    {"glGetTexLevelParameteriv", plain<glGetTexLevelParameteriv, 1>},
    {"glGetTexParameterfv", plain<glGetTexParameterfv>},
    {"glGetTexParameteriv", plain<glGetTexParameteriv, 1>},
    {"glReadPixels", readPixels},
    {"glTexImage1D", texImage1D},
    {"glTexImage2D", texImage2D},
    {"glTexImage3D", texImage3D},
    {"glTexParameterf", plain<glTexParameterf>},
    {"glTexParameterfv", plain<glTexParameterfv>},
    {"glTexParameteri", texParameter},
    {"glTexSubImage1D", texSubImage1D},
    {"glTexSubImage2D", texSubImage2D},
    {"glTexSubImage3D", texSubImage3D},
};

} // namespace

const Chapter TextureChapter{Calls, std::size(Calls)};

} // namespace fuzz::api
