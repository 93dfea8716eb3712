// SPDX-License-Identifier: Apache-2.0
// Scenes drawn on both kinds of devices: on one the viewport turns y, on the other the matrix. The pictures must be the
// same bit for bit.
#pragma once

#include "drawing/Drawing.h"

#include <functional>

namespace pictures {

inline constexpr int Side = 16; // of every picture, in pixels

struct Color
{
    float r = 0, g = 0, b = 0, a = 1;
};

/// A context with a framebuffer of Side x Side, programs that use the combined matrix, and calls to draw flat shapes.
class Stage : public drawing::DrawTest
{
public:
    explicit Stage(bool intel) : DrawTest(intel ? support::intelDevice() : SoftMetal::DeviceOptions())
    {
        SetUp();
        SoftMetal::setCommandLog(false);
        attachSquare();
        glViewport(0, 0, Side, Side);
        programs(Vertex, Flat);
    }
    ~Stage() override { TearDown(); }
    void TestBody() override {}

    using ProgramTest::load;

    static constexpr const char* Vertex = "!!ARBvp1.0\n"
                                          "DP4 result.position.x, state.matrix.mvp.row[0], vertex.attrib[0];\nDP4 result.position.y, state.matrix.mvp.row[1], vertex.attrib[0];\n"
                                          "DP4 result.position.z, state.matrix.mvp.row[2], vertex.attrib[0];\nDP4 result.position.w, state.matrix.mvp.row[3], vertex.attrib[0];\n"
                                          "MOV result.color, vertex.attrib[3];\nEND\n";
    static constexpr const char* Flat = "!!ARBfp1.0\nMOV result.color, program.local[0];\nEND\n";

    void programs(const std::string& vertex, const std::string& fragment)
    {
        EXPECT_EQ(load(GL_VERTEX_PROGRAM_ARB, vertex), drawing::NoError);
        EXPECT_EQ(load(GL_FRAGMENT_PROGRAM_ARB, fragment), drawing::NoError);
    }

    void color(Color c)
    {
        const float values[4] = {c.r, c.g, c.b, c.a};
        glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, values);
    }

    /// Positions of two components, at one depth from -1 (near) to 1.
    void shape(GLenum mode, const std::vector<float>& xy, float z = 0)
    {
        std::vector<float> positions;
        std::vector<uint16_t> indices;
        for (size_t i = 0; i + 1 < xy.size(); i += 2) {
            positions.insert(positions.end(), {xy[i], xy[i + 1], z, 1});
            indices.push_back(static_cast<uint16_t>(indices.size()));
        }
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(2 * indices.size()), indices.data(), GL_STREAM_DRAW);
        glBindBuffer(GL_ARRAY_BUFFER, gl().vertexAttribs[0].buffer);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(4 * positions.size()), positions.data(), GL_STREAM_DRAW);
        glDrawElements(mode, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_SHORT, nullptr);
        EXPECT_EQ(glGetError(), drawing::NoError);
    }
    /// Over everything.
    void quad(Color c, float z = 0)
    {
        color(c);
        shape(GL_TRIANGLE_STRIP, {-1, -1, 1, -1, -1, 1, 1, 1}, z);
    }

    /// Red, green, blue, alpha of each pixel, the lowest row first.
    std::vector<uint8_t> picture()
    {
        std::vector<uint8_t> rgba(Side * Side * 4);
        glReadPixels(0, 0, Side, Side, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
        return rgba;
    }

private:
    void attachSquare()
    {
        square_ = make(MTL::PixelFormatBGRA8Unorm);
        squareDepth_ = make(MTL::PixelFormatDepth32Float_Stencil8);
        EXPECT_EQ(ZALMetalContextSetMetalDrawable(context, square_.get(), squareDepth_.get()), 0);
        glClearColor(0, 0, 0, 0);
        glEnable(GL_DEPTH_TEST);
        glEnable(GL_STENCIL_TEST);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_STENCIL_TEST);
    }

    NS::SharedPtr<MTL::Texture> make(MTL::PixelFormat format)
    {
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::TextureDescriptor* d = MTL::TextureDescriptor::texture2DDescriptor(format, Side, Side, false);
        d->setUsage(MTL::TextureUsageRenderTarget | MTL::TextureUsageShaderRead);
        d->setStorageMode(MTL::StorageModePrivate);
        auto texture = NS::TransferPtr(device->newTexture(d));
        pool->release();
        return texture;
    }

    NS::SharedPtr<MTL::Texture> square_, squareDepth_;
};

/// Draws on both and gives the one picture that both have.
inline std::vector<uint8_t> onBoth(const std::function<std::vector<uint8_t>(Stage&)>& scene)
{
    std::vector<uint8_t> first, second;
    {
        Stage stage(false);
        first = scene(stage);
    }
    {
        Stage stage(true);
        second = scene(stage);
    }
    EXPECT_EQ(first, second) << "the two kinds of devices draw different pictures";
    return first;
}

inline std::vector<uint8_t> drawnOnBoth(const std::function<void(Stage&)>& scene)
{
    return onBoth([&](Stage& stage) {
        scene(stage);
        return stage.picture();
    });
}

inline std::vector<int> at(const std::vector<uint8_t>& picture, int x, int y)
{
    const uint8_t* p = &picture[static_cast<size_t>(4 * (y * Side + x))];
    return {p[0], p[1], p[2], p[3]};
}

inline const std::vector<int> Black = {0, 0, 0, 0}, Red = {255, 0, 0, 255}, Green = {0, 255, 0, 255}, White = {255, 255, 255, 255};

/// Pixels that are not as they were cleared.
inline int covered(const std::vector<uint8_t>& picture)
{
    int count = 0;
    for (int y = 0; y < Side; ++y)
        for (int x = 0; x < Side; ++x) count += at(picture, x, y) != Black;
    return count;
}

} // namespace pictures
