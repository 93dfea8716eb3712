// SPDX-License-Identifier: Apache-2.0
// The main job of the library as one scene: a textured model, lit for each pixel by assembly programs, on a floor.
#pragma once

#include "ObjModel.h"

#include <cstdint>
#include <string>

namespace scenes {

class DemoScene
{
public:
    explicit DemoScene(const Model& model) : model_(model) {}

    /// Makes the GL objects in the current context. False with GL's words in error when a program does not load.
    bool setUp(std::string& error);

    /// Draws one frame into the bound framebuffer of the size given; the model is turned by angle (radians).
    void draw(int width, int height, float angle) const;

    uint32_t triangles() const { return static_cast<uint32_t>(model_.indices.size() / 3); }

private:
    bool setUpPrograms(std::string& error);
    void setUpBuffers();
    void setUpTextures();
    void setCamera(int width, int height) const;
    void setLights() const;
    void drawModel(float angle) const;
    void drawFloor() const;

    const Model& model_;
    uint32_t litVertex_ = 0, litFragment_ = 0, floorFragment_ = 0;
    uint32_t modelVertices_ = 0, modelIndices_ = 0, floorVertices_ = 0, floorIndices_ = 0;
    uint32_t glaze_ = 0, tiles_ = 0;
};

} // namespace scenes
