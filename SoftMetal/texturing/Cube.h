// SPDX-License-Identifier: Apache-2.0
// Directions and the faces of a cube that they meet.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>

namespace softmetal::texturing
{

/// A face (+x, -x, +y, -y, +z, -z) and a place on it, from 0 to 1 along its rows and down its columns.
struct FacePosition
{
    uint32_t face;
    float s, t;
};

inline FacePosition faceOf(float x, float y, float z)
{
    float ax = std::fabs(x), ay = std::fabs(y), az = std::fabs(z);
    uint32_t face;
    float major, u, v;
    if (ax >= ay && ax >= az) {
        face = x < 0 ? 1 : 0;
        major = ax;
        u = x < 0 ? z : -z;
        v = -y;
    } else if (ay >= az) {
        face = y < 0 ? 3 : 2;
        major = ay;
        u = x;
        v = y < 0 ? -z : z;
    } else {
        face = z < 0 ? 5 : 4;
        major = az;
        u = z < 0 ? -x : x;
        v = -y;
    }
    float scale = major > 0 ? 0.5f / major : 0.0f;
    return {face, u * scale + 0.5f, v * scale + 0.5f};
}

/// The opposite: where a place on a face lies, also when it is outside of 0 to 1 and so beyond the face's edge.
inline std::array<float, 3> directionOf(const FacePosition& p)
{
    float u = 2 * p.s - 1, v = 2 * p.t - 1;
    switch (p.face) {
    case 0:
        return {1, -v, -u};
    case 1:
        return {-1, -v, u};
    case 2:
        return {u, 1, v};
    case 3:
        return {u, -1, -v};
    case 4:
        return {u, -v, 1};
    default:
        return {-u, -v, -1};
    }
}

} // namespace softmetal::texturing
