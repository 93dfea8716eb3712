// SPDX-License-Identifier: Apache-2.0
// Assembly, clipping and set-up of primitives.
#include "raster/Primitives.h"
#include "raster/Vertices.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace softmetal::raster {
namespace {

enum Primitive : uint8_t { Point = 0, Line = 1, LineStrip = 2, TriangleList = 3, TriangleStrip = 4 };
constexpr uint8_t CullNone = 0, CullFront = 1, FillLines = 1, ClockwiseFront = 0, ClipDepth = 0;
constexpr uint8_t Perspective = 0, Flat = 2;
constexpr int FixedPlanes = 7; // the eye, near, far and the four sides; a program's own follow
constexpr double GuardBand = 16384; // pixels around the render area's origin that fixed point can hold
constexpr uint32_t Depth16 = 250, Depth24Stencil8 = 255;

using Vertex = std::vector<float>; // all output components; the first four are the clip-space position

/// A clipped corner on the screen.
struct Corner
{
    double x, y, z, invW; // pixels; window depth
    int64_t fx, fy;       // sub-pixel units
    const float* values;
};

class SetUp
{
public:
    SetUp(uint32_t width, uint32_t height, uint32_t depthFormat, Draw& draw)
        : draw_(draw), state_(draw.state), pipeline_(*draw.state.pipeline), depthFormat_(depthFormat),
          planes_(FixedPlanes + static_cast<int>(draw.state.pipeline->clipDistances))
    {
        minX_ = static_cast<int32_t>(std::min(state_.scissor[0], width));
        minY_ = static_cast<int32_t>(std::min(state_.scissor[1], height));
        maxX_ = static_cast<int32_t>(std::min<uint64_t>(uint64_t{state_.scissor[0]} + state_.scissor[2], width)) - 1;
        maxY_ = static_cast<int32_t>(std::min<uint64_t>(uint64_t{state_.scissor[1]} + state_.scissor[3], height)) - 1;
    }

    void run(const DrawCall& call, const VertexList& list, const ShadedVertices& shaded)
    {
        shaded_ = &shaded;
        primitiveId_ = call.firstPrimitive;
        measureReach();
        const std::vector<uint32_t>& p = list.places;
        switch (call.primitive) {
        case Point:
            for (uint32_t v : p) point(v);
            break;
        case Line:
            for (size_t i = 0; i + 1 < p.size(); i += 2) line(p[i], p[i + 1]);
            break;
        case LineStrip:
            for (size_t i = 0; i + 1 < p.size(); ++i)
                if (p[i] != VertexList::Restart && p[i + 1] != VertexList::Restart) line(p[i], p[i + 1]);
            break;
        case TriangleList:
            for (size_t i = 0; i + 2 < p.size(); i += 3) triangle(p[i], p[i + 1], p[i + 2]);
            break;
        default: strip(p); break;
        }
    }

private:
    void strip(const std::vector<uint32_t>& p)
    {
        size_t start = 0;
        for (size_t i = 0; i < p.size(); ++i) {
            if (p[i] == VertexList::Restart) start = i + 1;
            else if (i >= start + 2) {
                bool odd = ((i - start) & 1) != 0;
                odd ? triangle(p[i - 2], p[i], p[i - 1]) : triangle(p[i - 2], p[i - 1], p[i]);
            }
        }
    }

    // ---- clipping ----------------------------------------------------------------------------------------------------

    /// Signed distance to a clip plane; inside is zero and above.
    double distance(const float* v, int plane) const
    {
        double w = v[3];
        switch (plane) {
        case 0: return w - 1e-7; // in front of the eye
        case 1: return v[2];
        case 2: return w - v[2];
        case 3: return w * reachX_ + v[0];
        case 4: return w * reachX_ - v[0];
        case 5: return w * reachY_ + v[1];
        case 6: return w * reachY_ - v[1];
        default: return v[pipeline_.clipComponent + static_cast<uint32_t>(plane - FixedPlanes)];
        }
    }

    bool used(int plane) const { return (plane != 1 && plane != 2) || state_.depthClipMode == ClipDepth; }

    /// Cuts a polygon (or a line) by every plane that one of its corners is behind.
    void clip(std::vector<Vertex>& polygon, bool closed) const
    {
        for (int plane = 0; plane < planes_ && !polygon.empty(); ++plane) {
            if (!used(plane) || std::all_of(polygon.begin(), polygon.end(), [&](const Vertex& v) { return distance(v.data(), plane) >= 0; })) continue;
            std::vector<Vertex> kept;
            for (size_t i = 0; i < polygon.size(); ++i) {
                const Vertex& a = polygon[i];
                double da = distance(a.data(), plane);
                if (da >= 0) kept.push_back(a);
                if (!closed && i + 1 == polygon.size()) break;
                const Vertex& b = polygon[(i + 1) % polygon.size()];
                double db = distance(b.data(), plane);
                if ((da >= 0) != (db >= 0)) kept.push_back(between(da < db ? a : b, da < db ? b : a, da < db ? da : db, da < db ? db : da));
            }
            polygon = std::move(kept);
        }
    }

    /// The point where the plane cuts, always counted from the outer corner so that neighbours cut alike.
    static Vertex between(const Vertex& outer, const Vertex& inner, double outerDistance, double innerDistance)
    {
        double t = outerDistance / (outerDistance - innerDistance);
        Vertex result(outer.size());
        for (size_t c = 0; c < outer.size(); ++c) result[c] = static_cast<float>(outer[c] + t * (static_cast<double>(inner[c]) - outer[c]));
        return result;
    }

    bool inside(const float* v) const
    {
        for (int plane = 0; plane < planes_; ++plane)
            if (used(plane) && !(distance(v, plane) >= 0)) return false;
        return true;
    }

    bool finite(const float* v) const { return std::isfinite(v[0]) && std::isfinite(v[1]) && std::isfinite(v[2]) && std::isfinite(v[3]); }

    Corner project(const float* v) const
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

    void measureReach()
    {
        auto reach = [](double origin, double size) {
            double half = std::max(std::fabs(size) * 0.5, 1e-3), centre = std::fabs(origin + size * 0.5);
            return std::max((GuardBand - std::min(centre, GuardBand * 0.9)) / half, 1e-3);
        };
        reachX_ = reach(state_.viewport[0], state_.viewport[2]);
        reachY_ = reach(state_.viewport[1], state_.viewport[3]);
    }

    // ---- primitives --------------------------------------------------------------------------------------------------

    void triangle(uint32_t i, uint32_t j, uint32_t k)
    {
        if (i == VertexList::Restart || j == VertexList::Restart || k == VertexList::Restart) return;
        const float *a = shaded_->at(i), *b = shaded_->at(j), *c = shaded_->at(k);
        uint32_t id = primitiveId_++;
        if (!finite(a) || !finite(b) || !finite(c)) return;
        for (int plane = 0; plane < planes_; ++plane)
            if (used(plane) && distance(a, plane) < 0 && distance(b, plane) < 0 && distance(c, plane) < 0) return;
        provoking_ = a;
        if (inside(a) && inside(b) && inside(c)) return face(project(a), project(b), project(c), id);
        uint32_t n = shaded_->stride;
        std::vector<Vertex> polygon = {Vertex(a, a + n), Vertex(b, b + n), Vertex(c, c + n)};
        clip(polygon, true);
        for (size_t v = 2; v < polygon.size(); ++v) face(project(polygon[0].data()), project(polygon[v - 1].data()), project(polygon[v].data()), id);
    }

    void face(Corner a, Corner b, Corner c, uint32_t id)
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

    void line(uint32_t i, uint32_t j)
    {
        if (i == VertexList::Restart || j == VertexList::Restart) return;
        const float *a = shaded_->at(i), *b = shaded_->at(j);
        uint32_t id = primitiveId_++, n = shaded_->stride;
        if (!finite(a) || !finite(b)) return;
        provoking_ = a;
        std::vector<Vertex> ends = {Vertex(a, a + n), Vertex(b, b + n)};
        clip(ends, false);
        if (ends.size() == 2) segment(project(ends[0].data()), project(ends[1].data()), id, true);
    }

    /// A line one pixel wide across its lesser axis, as two triangles; values are those of the line itself.
    void segment(const Corner& a, const Corner& b, uint32_t id, bool front)
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

    void point(uint32_t i)
    {
        if (i == VertexList::Restart) return;
        const float* v = shaded_->at(i);
        uint32_t id = primitiveId_++;
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
        size_t first = draw_.triangles.size();
        fill({p[0], p[1], p[2]}, true, true, id, {centre, right, below});
        fill({p[0], p[2], p[3]}, true, true, id, {centre, right, below});
        for (size_t t = first; t < draw_.triangles.size(); ++t) {
            draw_.triangles[t].point = true;
            draw_.triangles[t].pointX = static_cast<float>(p[0].fx) / SubpixelScale;
            draw_.triangles[t].pointY = static_cast<float>(p[0].fy) / SubpixelScale;
            draw_.triangles[t].pointSize = static_cast<float>(2 * half) / SubpixelScale;
        }
    }

    // ---- edges and planes ----------------------------------------------------------------------------------------------

    /// The half-plane to the right of a directed edge (clockwise order on the screen). A pixel centre on a top or left
    /// edge belongs to the triangle, one on any other edge does not.
    static Edge edge(const Corner& from, const Corner& to)
    {
        int64_t dx = to.fx - from.fx, dy = to.fy - from.fy;
        Edge e{-dy, dx, dy * from.fx - dx * from.fy};
        bool topLeft = dy < 0 || (dy == 0 && dx > 0);
        if (!topLeft) e.c -= 1;
        return e;
    }

    void fill(std::array<Corner, 3> p, bool clockwise, bool front, uint32_t id, const std::array<Corner, 3>& values)
    {
        if (!clockwise) std::swap(p[1], p[2]);
        Triangle t{};
        auto [lowX, highX] = std::minmax({p[0].fx, p[1].fx, p[2].fx});
        auto [lowY, highY] = std::minmax({p[0].fy, p[1].fy, p[2].fy});
        t.minX = std::max(static_cast<int32_t>((lowX - SubpixelScale / 2) >> SubpixelBits), minX_);
        t.minY = std::max(static_cast<int32_t>((lowY - SubpixelScale / 2) >> SubpixelBits), minY_);
        t.maxX = std::min(static_cast<int32_t>((highX + SubpixelScale / 2) >> SubpixelBits), maxX_);
        t.maxY = std::min(static_cast<int32_t>((highY + SubpixelScale / 2) >> SubpixelBits), maxY_);
        if (t.minX > t.maxX || t.minY > t.maxY) return;
        for (int i = 0; i < 3; ++i) t.edges[i] = edge(p[static_cast<size_t>(i)], p[static_cast<size_t>((i + 1) % 3)]);
        t.frontFacing = front;
        t.primitiveId = id;
        t.firstPlane = static_cast<uint32_t>(draw_.planes.size());
        addPlanes(values, t);
        draw_.triangles.push_back(t);
    }

    void addPlanes(const std::array<Corner, 3>& v, Triangle& t)
    {
        const Corner &a = v[0], &b = v[1], &c = v[2];
        double x1 = b.x - a.x, y1 = b.y - a.y, x2 = c.x - a.x, y2 = c.y - a.y;
        double scale = 1.0 / (x1 * y2 - x2 * y1);
        t.originX = static_cast<float>(a.x);
        t.originY = static_cast<float>(a.y);
        auto plane = [&](double va, double vb, double vc) {
            double d1 = vb - va, d2 = vc - va;
            return abi::Plane{static_cast<float>(va), static_cast<float>((d1 * y2 - d2 * y1) * scale), static_cast<float>((d2 * x1 - d1 * x2) * scale)};
        };
        abi::Plane depth = plane(a.z, b.z, c.z);
        depth.origin += depthBias(depth, std::max({a.z, b.z, c.z}));
        draw_.planes.push_back(depth);
        draw_.planes.push_back(plane(a.invW, b.invW, c.invW));
        for (size_t i = 0; i < pipeline_.inputMap.size(); ++i) {
            uint32_t from = pipeline_.inputMap[i];
            uint8_t kind = pipeline_.inputInterpolation[i];
            if (from >= shaded_->stride) draw_.planes.push_back({0, 0, 0});
            else if (kind == Flat) draw_.planes.push_back({provoking_[from], 0, 0});
            else if (kind == Perspective) draw_.planes.push_back(plane(a.values[from] * a.invW, b.values[from] * b.invW, c.values[from] * c.invW));
            else draw_.planes.push_back(plane(a.values[from], b.values[from], c.values[from]));
        }
    }

    float depthBias(const abi::Plane& depth, double farthest) const
    {
        if (state_.depthBias == 0 && state_.depthBiasSlope == 0) return 0;
        double unit = 1.0 / 16777216;
        if (depthFormat_ == Depth16) unit = 1.0 / 65536;
        else if (depthFormat_ != Depth24Stencil8) unit = std::ldexp(1.0, (farthest > 0 ? std::ilogb(farthest) : -126) - 23);
        double slope = std::max(std::fabs(depth.dx), std::fabs(depth.dy));
        double bias = state_.depthBias * unit + state_.depthBiasSlope * slope;
        if (state_.depthBiasClamp > 0) bias = std::min(bias, static_cast<double>(state_.depthBiasClamp));
        if (state_.depthBiasClamp < 0) bias = std::max(bias, static_cast<double>(state_.depthBiasClamp));
        return static_cast<float>(bias);
    }

    Draw& draw_;
    const DrawState& state_;
    const Pipeline& pipeline_;
    uint32_t depthFormat_;
    int planes_; // that clip
    int32_t minX_, minY_, maxX_, maxY_;
    double reachX_ = 1, reachY_ = 1;
    const ShadedVertices* shaded_ = nullptr;
    const float* provoking_ = nullptr;
    uint32_t primitiveId_ = 0;
};

} // namespace

void setUp(const DrawCall& call, uint32_t width, uint32_t height, uint32_t depthFormat, Draw& draw)
{
    draw.planesEach = 2 + static_cast<uint32_t>(draw.state.pipeline->inputMap.size());
    VertexList list = listVertices(call);
    if (list.ids.empty()) return;
    if (call.primitive == TriangleList) { // nearly always as many as come out
        const size_t triangles = list.places.size() / 3;
        draw.triangles.reserve(triangles);
        draw.planes.reserve(triangles * draw.planesEach);
    }
    SetUp work(width, height, depthFormat, draw);
    for (uint32_t i = 0; i < call.instanceCount; ++i) {
        const ShadedVertices shaded = shade(draw.state, call, list, call.baseInstance + i);
        if (draw.state.pipeline->rasterizationEnabled)
            work.run(call, list, shaded); // else what it wrote to buffers counts
    }
}

} // namespace softmetal::raster
