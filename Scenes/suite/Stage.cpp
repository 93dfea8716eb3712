// SPDX-License-Identifier: Apache-2.0
#include "suite/Stage.h"

#include <algorithm>
#include <cmath>

namespace scenes
{
namespace
{

const void* offset(size_t bytes)
{
    return reinterpret_cast<const void*>(bytes);
}

GLuint loadBuffer(GLenum target, const void* data, size_t bytes)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), data, GL_STATIC_DRAW);
    return name;
}

uint8_t byteOf(float value)
{
    return static_cast<uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255));
}

} // namespace

const char* const PlainVertexProgram = "!!ARBvp1.0\n"
                                       "DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];\n"
                                       "DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];\n"
                                       "DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];\n"
                                       "DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];\n"
                                       "MOV result.color, vertex.attrib[3];\n"
                                       "MOV result.texcoord[0], vertex.attrib[8];\n"
                                       "END\n";

Box tile(int i, int n)
{
    float side = 2.0f / static_cast<float>(n);
    Box box;
    box.left = -1 + side * static_cast<float>(i % n);
    box.bottom = -1 + side * static_cast<float>(i / n);
    box.right = box.left + side;
    box.top = box.bottom + side;
    return box;
}

std::vector<uint8_t> patternTexels(int width, int height, int depth, int seed)
{
    std::vector<uint8_t> texels;
    texels.reserve(static_cast<size_t>(width) * height * depth * 4);
    for (int z = 0; z < depth; ++z)
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                for (int value : {255 * x / std::max(width - 1, 1), 255 * y / std::max(height - 1, 1),
                                  (x ^ y) & 1 ? 40 + 50 * z + seed * 30 : 200 - 40 * z, 255 - 4 * ((x + y) & 15)})
                    texels.push_back(static_cast<uint8_t>(value));
    return texels;
}

Stage::Stage(Host& host) : host_(host)
{
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glViewport(0, 0, Side, Side);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    for (GLuint attribute : {0u, 3u, 8u})
        glEnableVertexAttribArrayARB(attribute);
    clear(Grey);
}

// ---- programs ------------------------------------------------------------------------------------------------------

GLuint Stage::load(GLenum target, std::string_view text)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    if (glGetError() == GL_NO_ERROR) return name;
    const GLubyte* words = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
    fail("a program does not load: " + std::string(words ? reinterpret_cast<const char*>(words) : "") + "\n" +
         std::string(text));
    return 0;
}

void Stage::use(std::string_view vertex, std::string_view fragment)
{
    load(GL_VERTEX_PROGRAM_ARB, vertex);
    load(GL_FRAGMENT_PROGRAM_ARB, fragment);
}

void Stage::useFragment(std::string_view fragment)
{
    use(PlainVertexProgram, fragment);
}

void Stage::useColors()
{
    useFragment("!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n");
}

void Stage::useCurrentColors()
{
    use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.color, vertex.color;\nEND\n",
        "!!ARBfp1.0\nMOV result.color, fragment.color;\nEND\n");
}

void Stage::useTexture(std::string_view target)
{
    useFragment("!!ARBfp1.0\nTEX result.color, fragment.texcoord[0], texture[0], " + std::string(target) + ";\nEND\n");
}

// ---- drawing -------------------------------------------------------------------------------------------------------

void Stage::clear(const Color& color)
{
    glClearColor(color[0], color[1], color[2], color[3]);
    glClear(GL_COLOR_BUFFER_BIT);
}

void Stage::draw(GLenum mode, std::span<const Corner> corners, std::span<const uint16_t> indices)
{
    std::vector<uint16_t> counted;
    for (size_t i = 0; indices.empty() && i < corners.size(); ++i)
        counted.push_back(static_cast<uint16_t>(i));
    if (indices.empty()) indices = counted;
    loadBuffer(GL_ARRAY_BUFFER, corners.data(), corners.size_bytes());
    glVertexAttribPointerARB(0, 4, GL_FLOAT, GL_FALSE, sizeof(Corner), offset(offsetof(Corner, place)));
    glVertexAttribPointerARB(3, 4, GL_FLOAT, GL_FALSE, sizeof(Corner), offset(offsetof(Corner, color)));
    glVertexAttribPointerARB(8, 4, GL_FLOAT, GL_FALSE, sizeof(Corner), offset(offsetof(Corner, coordinate)));
    loadBuffer(GL_ELEMENT_ARRAY_BUFFER, indices.data(), indices.size_bytes());
    glDrawElements(mode, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_SHORT, nullptr);
}

void Stage::rectangle(const Box& b, const Color& color)
{
    const Corner corners[4] = {{{b.left, b.bottom, b.depth, 1}, color, {b.s0, b.t0, b.r, 1}},
                               {{b.right, b.bottom, b.depth, 1}, color, {b.s1, b.t0, b.r, 1}},
                               {{b.left, b.top, b.depth, 1}, color, {b.s0, b.t1, b.r, 1}},
                               {{b.right, b.top, b.depth, 1}, color, {b.s1, b.t1, b.r, 1}}};
    draw(GL_TRIANGLE_STRIP, corners);
}

void Stage::floor(float repeats)
{
    // Clip-space places of a floor from w = 1 at the lower edge to w = 8 at the upper one.
    const Corner corners[4] = {{{-1, -1, 0, 1}, White, {0, 0, 0, 1}},
                               {{1, -1, 0, 1}, White, {repeats, 0, 0, 1}},
                               {{-8, 8, 0, 8}, White, {-3.5f * repeats, 7 * repeats, 0, 1}},
                               {{8, 8, 0, 8}, White, {4.5f * repeats, 7 * repeats, 0, 1}}};
    draw(GL_TRIANGLE_STRIP, corners);
}

// ---- objects -------------------------------------------------------------------------------------------------------

GLuint Stage::texture(GLenum target)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    for (GLenum parameter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER})
        glTexParameteri(target, parameter, GL_NEAREST);
    for (GLenum parameter : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(target, parameter, GL_CLAMP_TO_EDGE);
    return name;
}

GLuint Stage::patternTexture(GLenum target, int width, int height, int depth)
{
    GLuint name = texture(target);
    auto texels = patternTexels(width, height, depth);
    if (target == GL_TEXTURE_3D)
        glTexImage3D(target, 0, GL_RGBA8, width, height, depth, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    else
        glTexImage2D(target, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    return name;
}

Stage::Target Stage::target(GLenum format, int count, GLenum depthFormat)
{
    Target result{0, {}, 0};
    glGenFramebuffers(1, &result.framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, result.framebuffer);
    std::vector<GLenum> buffers;
    for (int i = 0; i < count; ++i) {
        GLenum point = GL_COLOR_ATTACHMENT0 + static_cast<GLenum>(i);
        buffers.push_back(point);
        result.colors.push_back(texture(GL_TEXTURE_RECTANGLE_ARB));
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(format), Side, Side, 0, GL_RGBA, GL_FLOAT,
                     nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, point, GL_TEXTURE_RECTANGLE_ARB, result.colors.back(), 0);
    }
    glDrawBuffers(count, buffers.data());
    if (depthFormat) {
        bool stencil = depthFormat == GL_DEPTH24_STENCIL8;
        result.depth = texture(GL_TEXTURE_RECTANGLE_ARB);
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, static_cast<GLint>(depthFormat), Side, Side, 0,
                     stencil ? GL_DEPTH_STENCIL : GL_DEPTH_COMPONENT, stencil ? GL_UNSIGNED_INT_24_8 : GL_FLOAT,
                     nullptr);
        glFramebufferTexture2D(GL_FRAMEBUFFER, stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                               GL_TEXTURE_RECTANGLE_ARB, result.depth, 0);
    }
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) fail("a framebuffer is not complete");
    return result;
}

// ---- the result ----------------------------------------------------------------------------------------------------

void Stage::show(const Image& picture)
{
    shown_ = picture;
    flipRows(shown_);
}

void Stage::showFloats(std::span<const float> values, int channels, int width, int height, float scale, float bias)
{
    std::vector<uint8_t> bytes;
    for (float value : values)
        bytes.push_back(byteOf(value * scale + bias));
    showBytes(bytes, channels, width, height);
}

void Stage::showBytes(std::span<const uint8_t> values, int channels, int width, int height)
{
    Image picture(width, height);
    for (size_t i = 0; i < static_cast<size_t>(width) * height; ++i)
        for (size_t c = 0; c < 4; ++c)
            picture.pixels[4 * i + c] =
                static_cast<int>(c) < channels ? values[i * static_cast<size_t>(channels) + c] : uint8_t{255};
    show(picture);
}

Image Stage::picture()
{
    return shown_.width ? shown_ : host_.read();
}

void Stage::fail(std::string why)
{
    if (failure_.empty()) failure_ = std::move(why);
}

} // namespace scenes
