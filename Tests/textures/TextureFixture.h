// SPDX-License-Identifier: Apache-2.0
// A context whose tests make textures, draw with them and read pixels back, on either of the library's device routes.
#pragma once

#include "ZALGLContextObjects.h"
#include "support/ContextFixture.h"

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace textures
{

/// Which way of the library a device's name selects.
enum class Route
{
    Ordinary,
    Intel,
};

using Rgba = std::array<float, 4>;
using Bytes = std::vector<uint8_t>;

/// A texture coordinate of a quad's corner.
struct Coordinate
{
    float s, t, r = 0;
};

/// Bottom left, bottom right, top left, top right.
using Corners = std::array<Coordinate, 4>;
inline constexpr Corners WholeImage = {{{0, 0}, {1, 0}, {0, 1}, {1, 1}}};

class Textures : public support::ContextTest
{
protected:
    explicit Textures(Route route = Route::Ordinary);

    void SetUp() override;
    void TearDown() override;

    /// A new name, bound to the target, with the nearest texel for filter.
    GLuint bindNew(GLenum target);
    ZALGLTextureObject& object(GLuint name) { return *gl().contextObjects->textures.Find(name); }
    /// The name's Metal texture as a host sees it: made when there is none.
    MTL::Texture* metal(GLuint name);

    /// A colour target without depth; further calls change its size.
    void target(uint32_t width, uint32_t height, MTL::PixelFormat format = MTL::PixelFormatRGBA32Float);
    /// Fills the viewport with what the fragment program TEX of texture unit 0 gives.
    void drawQuad(GLenum textureTarget, const Corners& corners);
    /// The same with a fragment program of the test's own.
    void drawQuadWith(const std::string& fragmentProgram);
    /// The same with the programs that are bound.
    void drawCorners(const Corners& corners);
    /// As drawQuad, in a default framebuffer of that size, read back: rows from the bottom.
    std::vector<Rgba> drawn(GLenum textureTarget, const Corners& corners, uint32_t width, uint32_t height);

    /// The whole image of a level, as the client layout of that many bytes for each pixel.
    Bytes image(GLenum imageTarget, GLint level, GLenum format, GLenum type, size_t bytes);
    Bytes pixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, size_t bytesPerPixel);

    GLint levelParameter(GLenum imageTarget, GLint level, GLenum pname);

    /// The rules that the device has seen broken since the last look; the test's end then does not report them.
    static std::vector<std::string> broken();
    using Rules = std::vector<std::string>;

private:
    void useVertexProgram();
    void useProgram(GLenum textureTarget);
    GLuint loadProgram(GLenum target, const std::string& text);

    GLuint vertexProgram_ = 0;
    std::map<GLenum, GLuint> fragmentPrograms_;
};

/// A family on both routes.
class OnBothRoutes : public Textures, public ::testing::WithParamInterface<Route>
{
protected:
    OnBothRoutes() : Textures(GetParam()) {}
};

std::string routeName(const ::testing::TestParamInfo<Route>& info);

/// 1, 2, 3 … in as many bytes; 0 follows 255.
Bytes counting(size_t bytes);

/// Values as bytes of the client's memory.
template <class T>
Bytes bytesOf(const std::vector<T>& values)
{
    auto* first = reinterpret_cast<const uint8_t*>(values.data());
    return Bytes(first, first + values.size() * sizeof(T));
}

/// The half-precision number nearest to a value that lies among the normal halves.
uint16_t half(float value);

} // namespace textures
