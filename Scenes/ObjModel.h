// SPDX-License-Identifier: Apache-2.0
// A triangle mesh read from a Wavefront OBJ file, ready for vertex arrays.
#pragma once

#include <array>
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

namespace scenes {

/// One corner as the vertex arrays hold it: 32 bytes, no padding.
struct Vertex
{
    std::array<float, 3> position;
    std::array<float, 3> normal; // unit length
    std::array<float, 2> texcoord;
};

struct Model
{
    std::vector<Vertex> vertices;
    std::vector<uint32_t> indices; // three for each triangle
    std::array<float, 3> minimum = {0, 0, 0}, maximum = {0, 0, 0};
};

/// Reads positions, texture coordinates, normals and faces (any polygon, negative indices included); other statements
/// are passed over. Missing normals are made by averaging faces that meet at less than 60 degrees, missing texture
/// coordinates by wrapping a cylinder around the y axis. On failure returns false with one sentence in error
/// ("name:line: …"), and model is left empty.
bool readObj(std::istream& text, const std::string& name, Model& model, std::string& error);

/// The same from a file.
bool readObjFile(const std::string& path, Model& model, std::string& error);

} // namespace scenes
