// SPDX-License-Identifier: Apache-2.0
// What a scene of the suite draws with: vertices from buffers, programs, textures and targets, with defaults that keep
// a scene to the few calls that it is about. Everything here is GL that both libraries accept.
#pragma once

#include "Host.h"
#include "SceneGL.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace scenes
{

/// A vertex of the suite: attributes 0, 3 and 8.
struct Corner
{
    std::array<float, 4> place = {0, 0, 0, 1};
    std::array<float, 4> color = {1, 1, 1, 1};
    std::array<float, 4> coordinate = {0, 0, 0, 1};
};

using Color = std::array<float, 4>;

inline constexpr Color Red = {1, 0, 0, 1}, Green = {0, 1, 0, 1}, Blue = {0, 0, 1, 1}, White = {1, 1, 1, 1},
                       Grey = {0.5f, 0.5f, 0.5f, 1}, Ochre = {0.8f, 0.6f, 0.2f, 1}, Teal = {0.1f, 0.6f, 0.5f, 1},
                       Black = {0, 0, 0, 1};

/// A rectangle in clip space with the texture coordinates of its corners.
struct Box
{
    float left = -1, bottom = -1, right = 1, top = 1, depth = 0;
    float s0 = 0, t0 = 0, s1 = 1, t1 = 1;
    float r = 0;
};

/// Tile number i of an n by n grid over the picture.
Box tile(int i, int n);

class Stage
{
public:
    static constexpr int Side = 96; // of every scene's picture

    explicit Stage(Host& host);
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    // ---- programs: attribute 0 through the matrices, 3 as colour, 8 as texture coordinate ----

    /// Loads and binds both programs; a text that is refused makes the scene fail.
    void use(std::string_view vertex, std::string_view fragment);
    /// The plain vertex program with this fragment program.
    void useFragment(std::string_view fragment);
    /// Each vertex's colour.
    void useColors();
    /// The same for colours that come from glColor, which other libraries keep apart from attribute 3.
    void useCurrentColors();
    /// What unit 0 holds for a target word of the dialect: 2D, 3D, RECT or CUBE.
    void useTexture(std::string_view target = "2D");

    // ---- drawing ----

    void clear(const Color& color);
    void draw(GLenum mode, std::span<const Corner> corners, std::span<const uint16_t> indices = {});
    void rectangle(const Box& box, const Color& color);
    /// A slanted floor towards the horizon, for filters that depend on the distance.
    void floor(float repeats);

    // ---- objects ----

    /// A new texture bound to the active unit, nearest and clamped to its edges.
    GLuint texture(GLenum target);
    /// The same with an RGBA8 image whose texels tell their place.
    GLuint patternTexture(GLenum target, int width, int height, int depth = 1);
    /// A framebuffer object, bound, with rectangle textures as colours 0 to count - 1, all drawn to; depthFormat may be
    /// 0.
    struct Target
    {
        GLuint framebuffer;
        std::vector<GLuint> colors;
        GLuint depth;
    };
    Target target(GLenum format, int count, GLenum depthFormat);

    // ---- the result ----

    /// What the scene shows, in place of the default framebuffer: rows from the bottom, as GL hands them out.
    void show(const Image& picture);
    /// Values of any number of channels, 0 to 1 after value * scale + bias.
    void showFloats(std::span<const float> values, int channels, int width, int height, float scale, float bias);
    void showBytes(std::span<const uint8_t> values, int channels, int width, int height);
    Image picture();

    void fail(std::string why);
    const std::string& failure() const { return failure_; }

private:
    GLuint load(GLenum target, std::string_view text);

    Host& host_;
    Image shown_;
    std::string failure_;
};

/// Position by the model-view-projection matrix; colour and texture coordinate go on as they are.
extern const char* const PlainVertexProgram;

/// Texels of a pattern: red grows with x, green with y, blue tells slice and parity, alpha falls.
std::vector<uint8_t> patternTexels(int width, int height, int depth = 1, int seed = 0);

} // namespace scenes
