// SPDX-License-Identifier: Apache-2.0
// Assembly: a call's vertices shaded and put together to primitives.
#include "raster/Single.h"

#include "inspect/ShaderFaults.h"
#include "vectors/InstructionSet.h"

#include <algorithm>
#include <cstring>

namespace softmetal::raster
{
namespace
{

enum Primitive : uint8_t
{
    Point = 0,
    Line = 1,
    LineStrip = 2,
    TriangleList = 3,
    TriangleStrip = 4
};
constexpr uint8_t CullFront = 1, FillLines = 1, ClockwiseFront = 0, ClipDepth = 0;
constexpr uint32_t PlaneGroup = 8;           // as many as one vector of values holds at most
constexpr size_t MostKept = size_t{1} << 17; // elements of each array of a thread, between calls

/// What a thread needs while it sets a call up. Its memory is used again.
struct Scratch
{
    VertexList list;
    ShadedVertices shaded;
    Grown<uint32_t> corners;
    std::vector<PlaneSource> sources;

    void trim()
    {
        list.ids.trim(MostKept);
        list.places.trim(MostKept);
        shaded.outputs.trim(MostKept / 4);
        shaded.vertices.trim(MostKept);
        shaded.values.trim(MostKept * 2);
        corners.trim(MostKept);
    }
};

Area areaOf(const DrawState& state, uint32_t width, uint32_t height)
{
    const uint32_t* s = state.scissor;
    return {static_cast<int32_t>(std::min(s[0], width)), static_cast<int32_t>(std::min(s[1], height)),
            static_cast<int32_t>(std::min<uint64_t>(uint64_t{s[0]} + s[2], width)) - 1,
            static_cast<int32_t>(std::min<uint64_t>(uint64_t{s[1]} + s[3], height)) - 1};
}

void listSources(const Pipeline& pipeline, std::vector<PlaneSource>& sources)
{
    sources.clear();
    for (size_t i = 0; i < pipeline.inputMap.size(); ++i)
        sources.push_back(
            {pipeline.inputMap[i], pipeline.inputInterpolation[i], pipeline.inputMap[i] >= pipeline.outputComponents});
}

Projection projectionOf(const DrawState& state, const std::vector<PlaneSource>& sources)
{
    Projection p{};
    std::copy_n(state.viewport, 6, p.viewport);
    const Reach reach = reachOf(state.viewport);
    p.reachX = reach.x;
    p.reachY = reach.y;
    p.depthClips = state.depthClipMode == ClipDepth;
    p.hard = !reach.ordinary || state.fillMode == FillLines;
    p.clipComponent = state.pipeline->clipComponent;
    p.clipDistances = state.pipeline->clipDistances;
    p.sources = sources.data();
    p.sourceCount = static_cast<uint32_t>(sources.size());
    p.valuesEach = (2 + p.sourceCount + PlaneGroup - 1) / PlaneGroup * PlaneGroup;
    return p;
}

/// The corners of a strip's triangles, turned so that all are wound alike.
void listStrip(const Grown<uint32_t>& places, Grown<uint32_t>& corners)
{
    constexpr uint32_t Restart = VertexList::Restart;
    corners.clear();
    corners.room(3 * places.size());
    size_t start = 0;
    for (size_t i = 0; i < places.size(); ++i) {
        if (places[i] == Restart) start = i + 1;
        if (places[i] == Restart || i < start + 2) continue;
        const size_t odd = (i - start) & 1;
        corners.push(places[i - 2]);
        corners.push(places[i - 1 + odd]);
        corners.push(places[i - odd]);
    }
}

class SetUp
{
public:
    SetUp(const DrawCall& call, const Area& area, uint32_t depthFormat, const Draw& draw, Scratch& scratch)
        : call_(call), area_(area), depthFormat_(depthFormat), draw_(draw), scratch_(scratch),
          single_(area, depthFormat, draw)
    {}

    void run(const Projection& projection)
    {
        single_.use(scratch_.shaded, call_.firstPrimitive);
        const Grown<uint32_t>& p = scratch_.list.places;
        const uint32_t restart = VertexList::Restart;
        switch (call_.primitive) {
        case Point:
            for (size_t i = 0; i < p.size(); ++i)
                single_.point(p[i]);
            break;
        case Line:
            for (size_t i = 0; i + 1 < p.size(); i += 2)
                single_.line(p[i], p[i + 1]);
            break;
        case LineStrip:
            for (size_t i = 0; i + 1 < p.size(); ++i)
                if (p[i] != restart && p[i + 1] != restart) single_.line(p[i], p[i + 1]);
            break;
        case TriangleList:
            triangles(projection, p);
            break;
        default:
            listStrip(p, scratch_.corners);
            triangles(projection, scratch_.corners);
            break;
        }
    }

private:
    void triangles(const Projection& projection, const Grown<uint32_t>& corners)
    {
        const Assembly a = assembly(projection, corners);
        const uint32_t* c = a.corners;
        for (uint32_t next = 0; next < a.count;) {
            next = geometry().assemble(a, next, draw_);
            if (next == a.count) break;
            single_.triangle(c[3 * next], c[3 * next + 1], c[3 * next + 2], a.firstId + next);
            ++next;
        }
    }

    Assembly assembly(const Projection& projection, const Grown<uint32_t>& corners)
    {
        const DrawState& state = *draw_.state;
        ShadedVertices& shaded = scratch_.shaded;
        const PlaneSource *sources = projection.sources, *end = sources + projection.sourceCount;
        Assembly a{};
        a.projection = &projection;
        a.vertices = shaded.vertices.data();
        a.vertexCount = static_cast<uint32_t>(shaded.vertices.size());
        a.outputs = shaded.outputs.data();
        a.components = shaded.components;
        a.lanes = shaded.lanes;
        a.values = shaded.values.resize(shaded.vertices.size() * projection.valuesEach);
        const size_t batches = shaded.vertices.size() / BatchOfValues + 1;
        a.made = static_cast<uint8_t*>(std::memset(shaded.made.resize(batches), 0, batches));
        a.anyFlat = std::any_of(sources, end, [](const auto& s) { return s.kind == Flat; });
        a.corners = corners.data();
        a.count = static_cast<uint32_t>(corners.size() / 3);
        a.firstId = call_.firstPrimitive;
        a.minX = area_.minX;
        a.minY = area_.minY;
        a.maxX = area_.maxX;
        a.maxY = area_.maxY;
        a.clockwiseFront = state.winding == ClockwiseFront;
        const bool keepsFront = state.cullMode != CullFront, keepsBack = state.cullMode <= CullFront;
        a.keepsClockwise = a.clockwiseFront ? keepsFront : keepsBack;
        a.keepsCounter = a.clockwiseFront ? keepsBack : keepsFront;
        a.bias = state.depthBias != 0 || state.depthBiasSlope != 0 ? depthBias : nullptr;
        a.depthFormat = depthFormat_;
        return a;
    }

    const DrawCall& call_;
    const Area& area_;
    uint32_t depthFormat_;
    const Draw& draw_;
    Scratch& scratch_;
    SinglePrimitives single_;
};

} // namespace

const Geometry& geometry()
{
    static const Geometry& best = *vectors::pick(&base::geometry, &avx2::geometry, &avx512::geometry);
    return best;
}

Draw drawOf(const DrawState& state, uint8_t primitive, Store& store)
{
    const bool points = primitive == Point;
    const auto inputs = static_cast<uint32_t>(state.pipeline->inputMap.size());
    return {&state, &store, 2 + inputs + points, points};
}

void setUp(const DrawCall& call, uint32_t width, uint32_t height, uint32_t depthFormat, const Draw& draw)
{
    static thread_local Scratch kept;
    Scratch& scratch = kept;
    const DrawState& state = *draw.state;
    const Area area = areaOf(state, width, height);
    listVertices(call, scratch.list);
    if (scratch.list.ids.size() == 0) return;
    listSources(*state.pipeline, scratch.sources);
    const Projection projection = projectionOf(state, scratch.sources);
    SetUp work(call, area, depthFormat, draw, scratch);
    for (uint32_t i = 0; i < call.instanceCount; ++i) {
        shade(state, call, scratch.list, call.baseInstance + i, projection, scratch.shaded);
        if (inspect::shaderLimitReached()) break;
        work.run(projection);
    }
    scratch.trim();
}

} // namespace softmetal::raster
