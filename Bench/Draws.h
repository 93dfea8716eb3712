// SPDX-License-Identifier: Apache-2.0
// GL helpers that workloads share: programs, a triangle, a full-target quad.
#pragma once

#include "SceneGL.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace bench {

/// A program of the given target, bound. Zero with GL's words in error when it does not load.
GLuint loadProgram(GLenum target, std::string_view text, std::string& error);

/// Binds both programs of a workload; false with words in error.
bool usePrograms(std::string_view vertex, std::string_view fragment, std::string& error);

/// Makes and binds vertex and index buffers with one triangle (three corners in clip space) or a quad over everything;
/// attribute 0 is the position, attribute 8 a texture coordinate from 0 to 1.
void useTriangle(float size);
void useQuad();

/// Draws what useTriangle or useQuad bound.
void drawTriangle();
void drawQuad();

/// Passes the clip-space position and the texture coordinate through.
extern const std::string_view PassVertexProgram;
/// Writes program.local[0].
extern const std::string_view FlatFragmentProgram;
/// Writes a sample of the 2D texture of unit 0.
extern const std::string_view TexturedFragmentProgram;

} // namespace bench
