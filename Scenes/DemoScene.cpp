// SPDX-License-Identifier: Apache-2.0
#include "DemoScene.h"

#include "DemoPrograms.h"
#include "Matrix.h"
#include "Pattern.h"
#include "SceneGL.h"

#include <algorithm>
#include <cstddef>

namespace scenes {
namespace {

constexpr GLuint PositionAttribute = 0, NormalAttribute = 2, TexcoordAttribute = 8;
constexpr Vec3 Eye = {0, 1.35f, 3.3f}, Target = {0, 0.42f, 0};
constexpr std::array<float, 4> Background = {0.125f, 0.145f, 0.18f, 1};
constexpr float FloorSize = 7;
constexpr float NearPlane = 0.5f, FarPlane = 40, HalfHeight = 0.18f; // of the view frustum

const void* offset(size_t bytes) { return reinterpret_cast<const void*>(bytes); }

/// Loads a program text under a new name, 0 with GL's words in error when it is refused.
GLuint loadProgram(GLenum target, std::string_view text, std::string& error)
{
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(target, name);
    glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    if (glGetError() == GL_NO_ERROR) return name;
    const GLubyte* words = glGetString(GL_PROGRAM_ERROR_STRING_ARB);
    error = std::string("a program does not load: ") + (words ? reinterpret_cast<const char*>(words) : "");
    return 0;
}

GLuint loadBuffer(GLenum target, const void* data, size_t bytes)
{
    GLuint name = 0;
    glGenBuffers(1, &name);
    glBindBuffer(target, name);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), data, GL_STATIC_DRAW);
    return name;
}

GLuint loadTexture(const Mipmaps& mipmaps)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    for (size_t level = 0; level < mipmaps.levels.size(); ++level) {
        GLsizei side = std::max(mipmaps.size >> level, 1);
        glTexImage2D(GL_TEXTURE_2D, static_cast<GLint>(level), GL_RGBA8, side, side, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     mipmaps.levels[level].data());
    }
    return name;
}

void setLocal(GLuint index, const Vec3& v, float w)
{
    const float values[4] = {v[0], v[1], v[2], w};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, index, values);
}

/// Interleaved Vertex records of the bound array buffer as attributes.
void pointAtVertices()
{
    constexpr GLsizei Stride = sizeof(Vertex);
    glVertexAttribPointerARB(PositionAttribute, 3, GL_FLOAT, GL_FALSE, Stride, offset(offsetof(Vertex, position)));
    glVertexAttribPointerARB(NormalAttribute, 3, GL_FLOAT, GL_FALSE, Stride, offset(offsetof(Vertex, normal)));
    glVertexAttribPointerARB(TexcoordAttribute, 2, GL_FLOAT, GL_FALSE, Stride, offset(offsetof(Vertex, texcoord)));
}

constexpr Vertex FloorVertices[4] = {
    {{-FloorSize, 0, -FloorSize}, {0, 1, 0}, {-FloorSize, -FloorSize}},
    {{FloorSize, 0, -FloorSize}, {0, 1, 0}, {FloorSize, -FloorSize}},
    {{-FloorSize, 0, FloorSize}, {0, 1, 0}, {-FloorSize, FloorSize}},
    {{FloorSize, 0, FloorSize}, {0, 1, 0}, {FloorSize, FloorSize}},
};
constexpr uint16_t FloorIndices[6] = {0, 2, 1, 1, 2, 3};

} // namespace

bool DemoScene::setUp(std::string& error)
{
    if (!setUpPrograms(error)) return false;
    setUpBuffers();
    setUpTextures();
    GLenum code = glGetError();
    if (code == GL_NO_ERROR) return true;
    error = "the scene's buffers and textures raise the GL error " + std::to_string(code);
    return false;
}

bool DemoScene::setUpPrograms(std::string& error)
{
    litVertex_ = loadProgram(GL_VERTEX_PROGRAM_ARB, LitVertexProgram, error);
    litFragment_ = loadProgram(GL_FRAGMENT_PROGRAM_ARB, LitFragmentProgram, error);
    floorFragment_ = loadProgram(GL_FRAGMENT_PROGRAM_ARB, FloorFragmentProgram, error);
    return litVertex_ != 0 && litFragment_ != 0 && floorFragment_ != 0;
}

void DemoScene::setUpBuffers()
{
    const auto& m = model_;
    modelVertices_ = loadBuffer(GL_ARRAY_BUFFER, m.vertices.data(), m.vertices.size() * sizeof(Vertex));
    modelIndices_ = loadBuffer(GL_ELEMENT_ARRAY_BUFFER, m.indices.data(), m.indices.size() * sizeof(uint32_t));
    floorVertices_ = loadBuffer(GL_ARRAY_BUFFER, FloorVertices, sizeof FloorVertices);
    floorIndices_ = loadBuffer(GL_ELEMENT_ARRAY_BUFFER, FloorIndices, sizeof FloorIndices);
    for (GLuint attribute : {PositionAttribute, NormalAttribute, TexcoordAttribute}) glEnableVertexAttribArrayARB(attribute);
}

void DemoScene::setUpTextures()
{
    glActiveTextureARB(GL_TEXTURE0);
    glaze_ = loadTexture(glazePattern(512));
    tiles_ = loadTexture(tilePattern(256));
}

void DemoScene::draw(int width, int height, float angle) const
{
    glViewport(0, 0, width, height);
    glClearColor(Background[0], Background[1], Background[2], Background[3]);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_VERTEX_PROGRAM_ARB);
    glEnable(GL_FRAGMENT_PROGRAM_ARB);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    setCamera(width, height);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, litVertex_);
    drawModel(angle);
    drawFloor();
}

void DemoScene::setCamera(int width, int height) const
{
    double half = HalfHeight, side = half * width / height;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glFrustum(-side, side, -half, half, NearPlane, FarPlane);
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(lookAt(Eye, Target).data());
}

void DemoScene::setLights() const
{
    Matrix view = lookAt(Eye, Target);
    setLocal(0, unit(rotate(view, {-0.55f, 0.8f, 0.55f})), 0);
    setLocal(1, {0.92f, 0.88f, 0.8f}, 0);
    setLocal(2, unit(rotate(view, {0.9f, 0.25f, 0.35f})), 0);
    setLocal(3, {0.16f, 0.2f, 0.28f}, 0);
    setLocal(4, {0.12f, 0.13f, 0.15f}, 0);
    setLocal(5, {0.55f, 0.53f, 0.5f}, 48);
}

void DemoScene::drawModel(float angle) const
{
    Vec3 size = subtract(model_.maximum, model_.minimum);
    float scale = 2.2f / std::max({size[0], size[1] * 1.6f, size[2], 1e-20f});
    Matrix place = placement(scale, angle, {0, 0, 0});
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, litFragment_);
    setLights();
    glBindTexture(GL_TEXTURE_2D, glaze_);
    glPushMatrix();
    glMultMatrixf(place.data());
    const Matrix centre = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, -(model_.minimum[0] + model_.maximum[0]) / 2,
                           -model_.minimum[1], -(model_.minimum[2] + model_.maximum[2]) / 2, 1};
    glMultMatrixf(centre.data());
    glBindBuffer(GL_ARRAY_BUFFER, modelVertices_);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, modelIndices_);
    pointAtVertices();
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(model_.indices.size()), GL_UNSIGNED_INT, nullptr);
    glPopMatrix();
}

void DemoScene::drawFloor() const
{
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, floorFragment_);
    setLocal(0, {0.62f, 0.6f, 0.58f}, 0);
    setLocal(1, {Background[0], Background[1], Background[2]}, 1);
    setLocal(2, {1.6f, 0.72f, 0.028f}, 0);
    glBindTexture(GL_TEXTURE_2D, tiles_);
    glBindBuffer(GL_ARRAY_BUFFER, floorVertices_);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, floorIndices_);
    pointAtVertices();
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
}

} // namespace scenes
