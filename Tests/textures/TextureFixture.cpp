// SPDX-License-Identifier: Apache-2.0
#include "textures/TextureFixture.h"

#include <cmath>
#include <cstring>

namespace textures
{

namespace
{

constexpr const char* VertexProgram = "!!ARBvp1.0\n"
                                      "DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];\n"
                                      "DP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];\n"
                                      "DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];\n"
                                      "DP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];\n"
                                      "MOV result.texcoord[0], vertex.attrib[8];\n"
                                      "END\n";

const char* nameInPrograms(GLenum target)
{
    switch (target) {
    case GL_TEXTURE_3D:
        return "3D";
    case GL_TEXTURE_RECTANGLE_ARB:
        return "RECT";
    case GL_TEXTURE_CUBE_MAP:
        return "CUBE";
    default:
        return "2D";
    }
}

SoftMetal::DeviceOptions optionsOf(Route route)
{
    return route == Route::Intel ? support::intelDevice() : SoftMetal::DeviceOptions{};
}

} // namespace

Textures::Textures(Route route) : ContextTest(optionsOf(route)) {}

void Textures::SetUp()
{
    ContextTest::SetUp();
    if (HasFatalFailure()) return;
    SoftMetal::setLogSink([](const std::string&) {}); // what tests break on purpose is looked at as messages
}

void Textures::TearDown()
{
    ContextTest::TearDown();
    SoftMetal::setLogSink({});
}

GLuint Textures::bindNew(GLenum target)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(target, name);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    return name;
}

MTL::Texture* Textures::metal(GLuint name)
{
    void* texture = nullptr;
    EXPECT_EQ(ZALMetalContextGetMtlTextureFromGLTextureId(context, texture, name), ZALMetalResultSuccess);
    return static_cast<MTL::Texture*>(texture);
}

// ---- drawing ----

void Textures::target(uint32_t width, uint32_t height, MTL::PixelFormat format)
{
    commands().commandBufferEnd(); // an open pass would go on in the old one
    attachTextures(width, height, format, MTL::PixelFormatInvalid);
    glViewport(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height));
}

GLuint Textures::loadProgram(GLenum target, const std::string& text)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.c_str());
    const GLubyte* words = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
    EXPECT_EQ(glGetError(), GL_NO_ERROR) << (words ? reinterpret_cast<const char*>(words) : "");
    return name;
}

void Textures::useVertexProgram()
{
    if (!vertexProgram_) vertexProgram_ = loadProgram(GL_VERTEX_PROGRAM_ARB, VertexProgram);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, vertexProgram_);
}

void Textures::useProgram(GLenum textureTarget)
{
    useVertexProgram();
    GLuint& fragment = fragmentPrograms_[textureTarget];
    if (!fragment)
        fragment = loadProgram(GL_FRAGMENT_PROGRAM_ARB,
                               std::string("!!ARBfp1.0\nTEX result.color, fragment.texcoord[0], texture[0], ") +
                                   nameInPrograms(textureTarget) + ";\nEND\n");
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, fragment);
}

void Textures::drawQuad(GLenum textureTarget, const Corners& corners)
{
    useProgram(textureTarget);
    drawCorners(corners);
}

void Textures::drawQuadWith(const std::string& fragmentProgram)
{
    useVertexProgram();
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, fragmentProgram);
    drawCorners(WholeImage);
}

void Textures::drawCorners(const Corners& corners)
{
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i < 4; ++i) {
        const Coordinate& c = corners[static_cast<size_t>(i)];
        glVertexAttrib4fARB(8, c.s, c.t, c.r, 1);
        glVertexAttrib4fARB(0, i & 1 ? 1.0f : -1.0f, i & 2 ? 1.0f : -1.0f, 0, 1);
    }
    glEnd();
}

std::vector<Rgba> Textures::drawn(GLenum textureTarget, const Corners& corners, uint32_t width, uint32_t height)
{
    target(width, height);
    drawQuad(textureTarget, corners);
    std::vector<Rgba> result(size_t{width} * height);
    glReadPixels(0, 0, static_cast<GLsizei>(width), static_cast<GLsizei>(height), GL_RGBA, GL_FLOAT, result.data());
    return result;
}

// ---- reading ----

Bytes Textures::image(GLenum imageTarget, GLint level, GLenum format, GLenum type, size_t bytes)
{
    Bytes result(bytes, 0xEE);
    glGetTexImage(imageTarget, level, format, type, result.data());
    return result;
}

Bytes Textures::pixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, size_t bytesPerPixel)
{
    Bytes result(static_cast<size_t>(width) * static_cast<size_t>(height) * bytesPerPixel, 0xEE);
    glReadPixels(x, y, width, height, format, type, result.data());
    return result;
}

GLint Textures::levelParameter(GLenum imageTarget, GLint level, GLenum pname)
{
    GLint value = -1;
    glGetTexLevelParameteriv(imageTarget, level, pname, &value);
    return value;
}

std::vector<std::string> Textures::broken()
{
    std::vector<std::string> rules;
    for (const SoftMetal::Message& message : SoftMetal::takeMessages()) rules.push_back(message.rule);
    return rules;
}

// ---- data ----

std::string routeName(const ::testing::TestParamInfo<Route>& info)
{
    return info.param == Route::Intel ? "Intel" : "Ordinary";
}

Bytes counting(size_t bytes)
{
    Bytes result(bytes);
    for (size_t i = 0; i < bytes; ++i) result[i] = static_cast<uint8_t>(i + 1);
    return result;
}

uint16_t half(float value)
{
    if (value == 0) return 0;
    int exponent = 0;
    float fraction = std::frexp(std::fabs(value), &exponent); // 0.5 to 1
    auto mantissa = static_cast<int>(std::lrint(std::ldexp(fraction, 11))); // 1024 to 2048
    int bits = ((exponent + 14) << 10) + (mantissa - 1024);                 // 2048 carries into the exponent
    return static_cast<uint16_t>(bits | (value < 0 ? 0x8000 : 0));
}

} // namespace textures
