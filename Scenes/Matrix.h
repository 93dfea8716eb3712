// SPDX-License-Identifier: Apache-2.0
// The few column-major 4x4 matrices that scenes hand to glLoadMatrixf.
#pragma once

#include <array>
#include <cmath>

namespace scenes {

using Matrix = std::array<float, 16>;
using Vec3 = std::array<float, 3>;

inline Vec3 subtract(const Vec3& a, const Vec3& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
inline float dot(const Vec3& a, const Vec3& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

inline Vec3 cross(const Vec3& a, const Vec3& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

inline Vec3 unit(const Vec3& v)
{
    float length = std::sqrt(dot(v, v));
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// View matrix of an eye that looks at a point, y up.
inline Matrix lookAt(const Vec3& eye, const Vec3& target)
{
    Vec3 back = unit(subtract(eye, target)), right = unit(cross({0, 1, 0}, back)), up = cross(back, right);
    return {right[0], up[0], back[0], 0, right[1], up[1], back[1], 0, right[2], up[2], back[2], 0,
            -dot(right, eye), -dot(up, eye), -dot(back, eye), 1};
}

/// Scales, turns about the y axis (radians) and then moves.
inline Matrix placement(float scale, float angle, const Vec3& offset)
{
    float c = std::cos(angle) * scale, s = std::sin(angle) * scale;
    return {c, 0, -s, 0, 0, scale, 0, 0, s, 0, c, 0, offset[0], offset[1], offset[2], 1};
}

/// The direction part of a matrix applied to a vector.
inline Vec3 rotate(const Matrix& m, const Vec3& v)
{
    return {m[0] * v[0] + m[4] * v[1] + m[8] * v[2], m[1] * v[0] + m[5] * v[1] + m[9] * v[2],
            m[2] * v[0] + m[6] * v[1] + m[10] * v[2]};
}

} // namespace scenes
