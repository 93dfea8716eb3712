// SPDX-License-Identifier: Apache-2.0
// Clipping and set-up of single primitives. What is here in plain numbers gives the bits that Geometry.inc gives in
// lanes.
#include "raster/Single.h"

#include <algorithm>
#include <cmath>

namespace softmetal::raster
{
namespace
{

constexpr uint8_t CullNone = 0, CullFront = 1, FillLines = 1, ClockwiseFront = 0, ClipDepth = 0;
constexpr uint32_t Depth16 = 250, Depth24Stencil8 = 255;
constexpr int64_t FarthestPlace = int64_t{1} << 23; // sub-pixel units; what reaches beyond is out of sight

bool finite(const float* v)
{
    return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) && std::isfinite(v[3]);
}

/// The point where the plane cuts, always counted from the outer corner so that neighbours cut alike.
std::vector<float> between(const std::vector<float>& outer, const std::vector<float>& inner, double outerDistance,
                           double innerDistance)
{
    const double t = outerDistance / (outerDistance - innerDistance);
    std::vector<float> result(outer.size());
    for (size_t c = 0; c < outer.size(); ++c)
        result[c] = static_cast<float>(outer[c] + t * (static_cast<double>(inner[c]) - outer[c]));
    return result;
}

double reachOf(double origin, double size)
{
    double half = std::max(std::fabs(size) * 0.5, 1e-3), centre = std::fabs(origin + size * 0.5);
    return std::max((GuardBand - std::min(centre, GuardBand * 0.9)) / half, 1e-3);
}

bool isOrdinary(double origin, double size)
{
    return std::fabs(origin + size * 0.5) <= GuardBand * 0.9 && std::fabs(size) <= GuardBand;
}

} // namespace

Reach reachOf(const double* viewport)
{
    return {reachOf(viewport[0], viewport[2]), reachOf(viewport[1], viewport[3]),
            isOrdinary(viewport[0], viewport[2]) && isOrdinary(viewport[1], viewport[3])};
}

float depthBias(const DrawState& state, uint32_t depthFormat, const abi::Plane& depth, double farthest)
{
    if (state.depthBias == 0 && state.depthBiasSlope == 0) return 0;
    double unit = 1.0 / 16777216;
    if (depthFormat == Depth16)
        unit = 1.0 / 65536;
    else if (depthFormat != Depth24Stencil8)
        unit = std::ldexp(1.0, (farthest > 0 ? std::ilogb(farthest) : -126) - 23);
    double slope = std::max(std::fabs(depth.dx), std::fabs(depth.dy));
    double bias = state.depthBias * unit + state.depthBiasSlope * slope;
    if (state.depthBiasClamp > 0) bias = std::min(bias, static_cast<double>(state.depthBiasClamp));
    if (state.depthBiasClamp < 0) bias = std::max(bias, static_cast<double>(state.depthBiasClamp));
    return static_cast<float>(bias);
}

SinglePrimitives::SinglePrimitives(const Area& area, uint32_t depthFormat, const Draw& draw)
    : draw_(draw), state_(*draw.state), pipeline_(*draw.state->pipeline), area_(area), depthFormat_(depthFormat),
      planes_(static_cast<int>(FixedPlanes + draw.state->pipeline->clipDistances)),
      reach_(raster::reachOf(draw.state->viewport))
{}

void SinglePrimitives::use(const ShadedVertices& shaded, uint32_t firstId)
{
    shaded_ = &shaded;
    nextId_ = firstId;
}

const float* SinglePrimitives::take(size_t corner, uint32_t vertex)
{
    taken_[corner].resize(shaded_->components);
    shaded_->copy(vertex, taken_[corner].data());
    return taken_[corner].data();
}

// ---- clipping ------------------------------------------------------------------------------------------------------

/// Signed distance to a clip plane; inside is zero and above.
double SinglePrimitives::distance(const float* v, int plane) const
{
    double w = v[3];
    switch (plane) {
    case 0:
        return w - 1e-7; // in front of the eye
    case 1:
        return v[2];
    case 2:
        return w - v[2];
    case 3:
        return w * reach_.x + v[0];
    case 4:
        return w * reach_.x - v[0];
    case 5:
        return w * reach_.y + v[1];
    case 6:
        return w * reach_.y - v[1];
    default:
        return v[pipeline_.clipComponent + static_cast<uint32_t>(plane) - FixedPlanes];
    }
}

bool SinglePrimitives::used(int plane) const
{
    return (plane != 1 && plane != 2) || state_.depthClipMode == ClipDepth;
}

/// Cuts a polygon (or a line) by every plane that one of its corners is behind.
void SinglePrimitives::clip(std::vector<Vertex>& polygon, bool closed) const
{
    for (int plane = 0; plane < planes_ && !polygon.empty(); ++plane) {
        auto isInside = [&](const Vertex& v) { return distance(v.data(), plane) >= 0; };
        if (!used(plane) || std::all_of(polygon.begin(), polygon.end(), isInside)) continue;
        std::vector<Vertex> kept;
        for (size_t i = 0; i < polygon.size(); ++i) {
            const Vertex& a = polygon[i];
            double da = distance(a.data(), plane);
            if (da >= 0) kept.push_back(a);
            if (!closed && i + 1 == polygon.size()) break;
            const Vertex& b = polygon[(i + 1) % polygon.size()];
            double db = distance(b.data(), plane);
            if ((da >= 0) != (db >= 0))
                kept.push_back(between(da < db ? a : b, da < db ? b : a, da < db ? da : db, da < db ? db : da));
        }
        polygon = std::move(kept);
    }
}

bool SinglePrimitives::inside(const float* v) const
{
    for (int plane = 0; plane < planes_; ++plane)
        if (used(plane) && !(distance(v, plane) >= 0)) return false;
    return true;
}

SinglePrimitives::Corner SinglePrimitives::project(const float* v) const
{
    const double* p = state_.viewport;
    Corner c{};
    c.values = v;
    c.invW = 1.0 / v[3];
    c.x = (v[0] * c.invW * 0.5 + 0.5) * p[2] + p[0];
    c.y = (0.5 - v[1] * c.invW * 0.5) * p[3] + p[1];
    c.z = v[2] * c.invW * (p[5] - p[4]) + p[4];
    c.fx = static_cast<int64_t>(std::nearbyint(c.x * SubpixelScale));
    c.fy = static_cast<int64_t>(std::nearbyint(c.y * SubpixelScale));
    c.x = static_cast<double>(c.fx) / SubpixelScale;
    c.y = static_cast<double>(c.fy) / SubpixelScale;
    return c;
}

// ---- primitives ----------------------------------------------------------------------------------------------------

void SinglePrimitives::triangle(uint32_t i, uint32_t j, uint32_t k, uint32_t id)
{
    const float *a = take(0, i), *b = take(1, j), *c = take(2, k);
    if (!finite(a) || !finite(b) || !finite(c)) return;
    for (int plane = 0; plane < planes_; ++plane)
        if (used(plane) && distance(a, plane) < 0 && distance(b, plane) < 0 && distance(c, plane) < 0) return;
    provoking_ = a;
    if (inside(a) && inside(b) && inside(c)) return face(project(a), project(b), project(c), id);
    std::vector<Vertex> polygon = {taken_[0], taken_[1], taken_[2]};
    clip(polygon, true);
    for (size_t v = 2; v < polygon.size(); ++v)
        face(project(polygon[0].data()), project(polygon[v - 1].data()), project(polygon[v].data()), id);
}

void SinglePrimitives::face(const Corner& a, const Corner& b, const Corner& c, uint32_t id)
{
    int64_t area = (b.fx - a.fx) * (c.fy - a.fy) - (c.fx - a.fx) * (b.fy - a.fy);
    if (area == 0) return;
    bool clockwise = area > 0; // y runs down
    bool front = clockwise == (state_.winding == ClockwiseFront);
    if (state_.cullMode != CullNone && front == (state_.cullMode == CullFront)) return;
    if (state_.fillMode == FillLines) {
        segment(a, b, id, front);
        segment(b, c, id, front);
        return segment(c, a, id, front);
    }
    fill({a, b, c}, clockwise, front, id, {a, b, c});
}

void SinglePrimitives::line(uint32_t i, uint32_t j)
{
    const float *a = take(0, i), *b = take(1, j);
    uint32_t id = nextId_++;
    if (!finite(a) || !finite(b)) return;
    provoking_ = a;
    std::vector<Vertex> ends = {taken_[0], taken_[1]};
    clip(ends, false);
    if (ends.size() == 2) segment(project(ends[0].data()), project(ends[1].data()), id, true);
}

/// A line one pixel wide across its lesser axis, as two triangles; values are those of the line itself.
void SinglePrimitives::segment(const Corner& a, const Corner& b, uint32_t id, bool front)
{
    if (a.fx == b.fx && a.fy == b.fy) return;
    bool steep = std::abs(b.fy - a.fy) > std::abs(b.fx - a.fx);
    int64_t half = SubpixelScale / 2, dx = steep ? half : 0, dy = steep ? 0 : half;
    Corner p[4] = {a, b, b, a};
    for (int i = 0; i < 4; ++i) {
        int64_t sign = i < 2 ? -1 : 1;
        p[i].fx += sign * dx;
        p[i].fy += sign * dy;
    }
    // A third corner off the line, with the values of the first, makes planes that do not change across it.
    Corner aside = a;
    aside.x -= b.y - a.y;
    aside.y += b.x - a.x;
    for (auto [i, j, k] : {std::array{0, 1, 2}, std::array{0, 2, 3}}) {
        int64_t area = (p[j].fx - p[i].fx) * (p[k].fy - p[i].fy) - (p[k].fx - p[i].fx) * (p[j].fy - p[i].fy);
        if (area != 0) fill({p[i], p[j], p[k]}, area > 0, front, id, {a, b, aside});
    }
}

void SinglePrimitives::point(uint32_t i)
{
    const float* v = take(0, i);
    uint32_t id = nextId_++;
    if (!finite(v) || !inside(v)) return;
    provoking_ = v;
    float size = pipeline_.pointSizeComponent >= 0 ? v[pipeline_.pointSizeComponent] : 1.0f;
    if (!(size > 0)) return;
    Corner centre = project(v);
    auto half = static_cast<int64_t>(std::min(static_cast<double>(size), 511.0) * SubpixelScale / 2);
    Corner p[4] = {centre, centre, centre, centre};
    for (int k = 0; k < 4; ++k) {
        p[k].fx += k == 1 || k == 2 ? half : -half;
        p[k].fy += k >= 2 ? half : -half;
    }
    Corner right = centre, below = centre;
    right.x += 1;
    below.y += 1;
    pointPlane_ = {static_cast<float>(p[0].fx) / SubpixelScale, static_cast<float>(p[0].fy) / SubpixelScale,
                   static_cast<float>(2 * half) / SubpixelScale};
    fill({p[0], p[1], p[2]}, true, true, id, {centre, right, below});
    fill({p[0], p[2], p[3]}, true, true, id, {centre, right, below});
}

// ---- boxes and planes ----------------------------------------------------------------------------------------------

void SinglePrimitives::fill(std::array<Corner, 3> p, bool clockwise, bool front, uint32_t id,
                            const std::array<Corner, 3>& values)
{
    if (!clockwise) std::swap(p[1], p[2]);
    auto [lowX, highX] = std::minmax({p[0].fx, p[1].fx, p[2].fx});
    auto [lowY, highY] = std::minmax({p[0].fy, p[1].fy, p[2].fy});
    if (std::min(lowX, lowY) < -FarthestPlace || std::max(highX, highY) > FarthestPlace) return;
    // The pixels whose centres may be inside.
    constexpr int64_t Half = SubpixelScale / 2, Up = SubpixelScale - 1;
    auto minX = std::max(static_cast<int32_t>((lowX - Half + Up) >> SubpixelBits), area_.minX);
    auto minY = std::max(static_cast<int32_t>((lowY - Half + Up) >> SubpixelBits), area_.minY);
    auto maxX = std::min(static_cast<int32_t>((highX - Half) >> SubpixelBits), area_.maxX);
    auto maxY = std::min(static_cast<int32_t>((highY - Half) >> SubpixelBits), area_.maxY);
    if (minX > maxX || minY > maxY) return;
    Triangle t{};
    t.minX = static_cast<uint16_t>(minX);
    t.minY = static_cast<uint16_t>(minY);
    t.maxX = static_cast<uint16_t>(maxX);
    t.maxY = static_cast<uint16_t>(maxY);
    for (size_t i = 0; i < 3; ++i) {
        t.x[i] = static_cast<int32_t>(p[i].fx);
        t.y[i] = static_cast<int32_t>(p[i].fy);
    }
    t.frontFacing = front;
    t.primitiveId = id;
    addPlanes(values, t);
    draw_.store->triangles.push(t);
}

void SinglePrimitives::addPlanes(const std::array<Corner, 3>& v, Triangle& t)
{
    const Corner &a = v[0], &b = v[1], &c = v[2];
    double x1 = b.x - a.x, y1 = b.y - a.y, x2 = c.x - a.x, y2 = c.y - a.y;
    double scale = 1.0 / (x1 * y2 - x2 * y1);
    t.originX = static_cast<float>(a.x);
    t.originY = static_cast<float>(a.y);
    auto plane = [&](double va, double vb, double vc) {
        double d1 = vb - va, d2 = vc - va;
        return abi::Plane{static_cast<float>(va), static_cast<float>((d1 * y2 - d2 * y1) * scale),
                          static_cast<float>((d2 * x1 - d1 * x2) * scale)};
    };
    Grown<abi::Plane>& planes = draw_.store->planes;
    t.firstPlane = static_cast<uint32_t>(planes.size());
    abi::Plane* to = planes.room(draw_.planesEach);
    planes.add(draw_.planesEach);
    *to = plane(a.z, b.z, c.z);
    to->origin += depthBias(state_, depthFormat_, *to, std::max({a.z, b.z, c.z}));
    *++to = plane(a.invW, b.invW, c.invW);
    for (size_t i = 0; i < pipeline_.inputMap.size(); ++i) {
        uint32_t from = pipeline_.inputMap[i];
        uint8_t kind = pipeline_.inputInterpolation[i];
        if (from >= shaded_->components)
            *++to = {0, 0, 0};
        else if (kind == Flat)
            *++to = {provoking_[from], 0, 0};
        else if (kind == Perspective)
            *++to = plane(a.values[from] * a.invW, b.values[from] * b.invW, c.values[from] * c.invW);
        else
            *++to = plane(a.values[from], b.values[from], c.values[from]);
    }
    if (draw_.points) *++to = pointPlane_;
}

} // namespace softmetal::raster
