// SPDX-License-Identifier: Apache-2.0
// The scenes of the suite, by subject. A row says what is drawn, how far two libraries may be apart and why.
#pragma once

#include <array>
#include <span>
#include <string_view>

namespace scenes
{

class Stage;

struct SceneRow
{
    const char* name;
    void (*draw)(Stage&, const char* argument);
    const char* argument; // what sets it apart from others with the same function; may be null
    int tolerance;        // of 255, in every channel
    int strays;           // pixels of the picture that may lie further apart
    const char* kept;     // tag of docs/kept-behaviour.md that makes the pictures differ; null: they must agree
    const char* note;     // what the tolerance, the strays or the difference come from; may be empty
};

struct SceneGroup
{
    const char* subject;
    std::span<const SceneRow> rows;
};

extern const std::span<const SceneRow> TextureScenes, FormatScenes, BlendScenes, RasterScenes, TargetScenes,
    ProgramScenes, VertexScenes, KeptScenes;

inline std::array<SceneGroup, 8> sceneGroups()
{
    return {{{"textures", TextureScenes},
             {"formats and read-back", FormatScenes},
             {"blending and masks", BlendScenes},
             {"depth, stencil and rasterisation", RasterScenes},
             {"framebuffers and copies", TargetScenes},
             {"programs", ProgramScenes},
             {"vertices and matrices", VertexScenes},
             {"kept behaviour", KeptScenes}}};
}

/// Null for an unknown name.
inline const SceneRow* findScene(std::string_view name)
{
    for (const SceneGroup& group : sceneGroups())
        for (const SceneRow& row : group.rows)
            if (name == row.name) return &row;
    return nullptr;
}

} // namespace scenes
