// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "raster/Vertices.h"

#include <array>
#include <vector>

namespace softmetal::raster
{

inline constexpr double GuardBand = 16384; // pixels around the render area's origin that fixed point can hold

/// How far the guard band reaches beyond the viewport, in w; and what is in the way of the quick path.
struct Reach
{
    double x = 1, y = 1;
    bool ordinary = true; // the guard band holds the viewport
};
Reach reachOf(const double* viewport);

/// Pixels that a draw may touch, inclusive.
struct Area
{
    int32_t minX, minY, maxX, maxY;
};

/// What bias adds to a triangle's depth.
float depthBias(const DrawState& state, uint32_t depthFormat, const abi::Plane& depth, double farthest);

/// Primitives one by one: points, lines, and triangles that must be clipped or are drawn as lines.
class SinglePrimitives
{
public:
    SinglePrimitives(const Area& area, uint32_t depthFormat, const Draw& draw);

    /// The vertices of an instance, which what follows is made of.
    void use(const ShadedVertices& shaded, uint32_t firstId);
    void point(uint32_t i);
    void line(uint32_t i, uint32_t j);
    void triangle(uint32_t i, uint32_t j, uint32_t k, uint32_t id);

private:
    using Vertex = std::vector<float>; // all output components; the first four are the clip-space position

    /// A clipped corner on the screen.
    struct Corner
    {
        double x, y, z, invW; // pixels; window depth
        int64_t fx, fy;       // sub-pixel units
        const float* values;
    };

    double distance(const float* v, int plane) const;
    bool used(int plane) const;
    void clip(std::vector<Vertex>& polygon, bool closed) const;
    bool inside(const float* v) const;
    Corner project(const float* v) const;
    const float* take(size_t corner, uint32_t vertex);
    void face(const Corner& a, const Corner& b, const Corner& c, uint32_t id);
    void segment(const Corner& a, const Corner& b, uint32_t id, bool front);
    void fill(std::array<Corner, 3> p, bool clockwise, bool front, uint32_t id, const std::array<Corner, 3>& values);
    void addPlanes(const std::array<Corner, 3>& v, Triangle& t);

    const Draw& draw_;
    const DrawState& state_;
    const Pipeline& pipeline_;
    Area area_;
    uint32_t depthFormat_;
    int planes_; // that clip
    Reach reach_;
    const ShadedVertices* shaded_ = nullptr;
    Vertex taken_[3];
    const float* provoking_ = nullptr;
    uint32_t nextId_ = 0;
    abi::Plane pointPlane_{}; // of a point: its top left corner and size, pixels
};

} // namespace softmetal::raster
