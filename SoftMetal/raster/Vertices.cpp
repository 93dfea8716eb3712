// SPDX-License-Identifier: Apache-2.0
// Fetching attributes and running the vertex function, batch by batch.
#include "raster/Vertices.h"

#include "inspect/ShaderFaults.h"
#include "workers/Pool.h"

#include <algorithm>
#include <array>
#include <bit>
#include <memory>

namespace softmetal::raster
{
namespace
{

constexpr uint8_t PerVertex = 1, PerInstance = 2;
constexpr size_t VerticesATask = 128;

FetchKind kindOf(const Fetch& f)
{
    const formats::VertexFormatInfo& i = f.format;
    if (!f.data || i.bytes() == 0) return FetchKind::Zeros;
    if (i.real && i.componentBytes == 4) {
        constexpr FetchKind Kinds[] = {FetchKind::Float1, FetchKind::Float2, FetchKind::Float3, FetchKind::Float4};
        return Kinds[i.components - 1];
    }
    const bool bytes = i.normalized && !i.isSigned && !i.packed && !i.bgra && i.componentBytes == 1;
    return bytes && i.components == 4 ? FetchKind::Bytes4 : FetchKind::General;
}

/// What is fetched for a draw, and how.
struct Plan
{
    std::array<Fetch, abi::MaxVertexAttributes> fetches;
    size_t count = 0;
};

void makePlan(const DrawState& state, const DrawCall& call, const VertexList& list, Plan& plan)
{
    const Pipeline& pipeline = *state.pipeline;
    const abi::Resources& resources = *state.vertexResources;
    plan.count = 0;
    for (uint32_t mask = pipeline.attributeMask; mask != 0; mask &= mask - 1) {
        const auto a = static_cast<uint32_t>(std::countr_zero(mask));
        const VertexAttribute& attribute = pipeline.attributes[a];
        const VertexLayout& layout = pipeline.layouts[attribute.buffer];
        const uint64_t bytes = resources.bufferLengths[attribute.buffer];
        const uint8_t* data = resources.buffers[attribute.buffer];
        const bool there = data && attribute.format != 0 && attribute.offset <= bytes;
        Fetch& f = plan.fetches[plan.count++];
        f.attribute = a;
        f.format = attribute.info;
        f.data = there ? data + attribute.offset : nullptr;
        f.bytes = there ? bytes - attribute.offset : 0;
        f.stride = layout.stride;
        f.step = layout.stepFunction;
        f.rate = std::max(layout.stepRate, 1u);
        f.asFloat = (pipeline.floatAttributes >> a & 1) != 0;
        f.checked = call.indices && layout.stepFunction == PerVertex && bytes > 0;
        f.kind = kindOf(f);
        f.inside = f.kind == FetchKind::Zeros ? !f.checked : list.most * f.stride + f.format.bytes() <= f.bytes;
    }
}

bool holds(const Fetch& f, uint64_t element)
{
    return f.kind != FetchKind::Zeros && element * f.stride + f.format.bytes() <= f.bytes;
}

/// Where some of the vertices may lie beyond the end of the buffer.
void fetchChecked(const Fetch& f, const uint32_t* ids, uint32_t count, uint32_t width, abi::Lanes* to)
{
    for (uint32_t lane = 0; lane < width; ++lane) {
        const uint32_t id = ids[std::min(lane, count - 1)]; // idle lanes repeat the last one
        uint32_t words[4] = {0, 0, 0, 0};
        if (holds(f, id))
            formats::fetch(f.format, f.data + id * f.stride, f.asFloat, words);
        else if (f.checked)
            inspect::noteOutsideVertices(f.attribute);
        for (uint32_t c = 0; c < 4; ++c)
            to[c].u[lane] = words[c];
    }
}

/// What is the same for all vertices of an instance.
void fetchConstant(const Fetch& f, const DrawCall& call, uint32_t instance, uint32_t width, abi::Lanes* to)
{
    const uint64_t element =
        f.step == PerInstance ? call.baseInstance + (instance - call.baseInstance) / f.rate : uint64_t{0};
    uint32_t words[4] = {0, 0, 0, 0};
    if (holds(f, element)) formats::fetch(f.format, f.data + element * f.stride, f.asFloat, words);
    for (uint32_t c = 0; c < 4; ++c)
        std::fill_n(to[c].u, width, words[c]);
}

struct Batch
{
    abi::VertexInput input;
    std::array<abi::Lanes, abi::MaxVertexAttributes * 4> attributes;
};

/// Everything that tasks of one instance share.
struct Shading
{
    const DrawState& state;
    const DrawCall& call;
    const VertexList& list;
    uint32_t instance;
    const Projection& projection;
    const Plan& plan;
    ShadedVertices& shaded;
};

void startTask(const Shading& s, Batch& batch)
{
    batch.input.baseVertex = static_cast<uint32_t>(s.call.baseVertex);
    batch.input.baseInstance = s.call.baseInstance;
    batch.input.attributes = batch.attributes.data();
    std::fill_n(batch.input.instanceId.u, s.shaded.lanes, s.instance);
    for (size_t i = 0; i < s.plan.count; ++i) {
        const Fetch& f = s.plan.fetches[i];
        if (f.step != PerVertex)
            fetchConstant(f, s.call, s.instance, s.shaded.lanes, &batch.attributes[f.attribute * 4]);
    }
}

void shadeBatch(const Shading& s, uint32_t first, Batch& batch)
{
    const uint32_t width = s.shaded.lanes;
    const uint32_t count = std::min(width, static_cast<uint32_t>(s.list.ids.size()) - first);
    const uint32_t* ids = s.list.ids.data() + first;
    batch.input.mask = (1u << count) - 1;
    for (uint32_t lane = 0; lane < width; ++lane)
        batch.input.vertexId.u[lane] = ids[std::min(lane, count - 1)]; // idle lanes repeat the last one
    const Geometry& loops = geometry();
    for (size_t i = 0; i < s.plan.count; ++i) {
        const Fetch& f = s.plan.fetches[i];
        if (f.step != PerVertex) continue;
        (f.inside ? loops.fetch : fetchChecked)(f, ids, count, width, &batch.attributes[f.attribute * 4]);
    }
    // The function writes no components but those that it has.
    abi::Lanes* outputs = s.shaded.outputs.data() + size_t{first / width} * s.shaded.components;
    s.state.pipeline->vertex(&batch.input, reinterpret_cast<abi::VertexOutput*>(outputs), s.state.vertexResources);
    loops.project(s.projection, outputs, count, s.shaded.vertices.data() + first);
}

void shadeSome(const Shading& s, size_t begin, size_t end)
{
    static thread_local auto batch = std::make_unique<Batch>();
    startTask(s, *batch);
    for (size_t first = begin; first < end && !inspect::shaderLimitReached(); first += s.shaded.lanes)
        shadeBatch(s, static_cast<uint32_t>(first), *batch);
}

} // namespace

void shade(const DrawState& state, const DrawCall& call, const VertexList& list, uint32_t instance,
           const Projection& projection, ShadedVertices& shaded)
{
    static thread_local Plan plan;
    const size_t count = list.ids.size();
    shaded.components = state.pipeline->outputComponents;
    shaded.lanes = lanes();
    const size_t batches = (count + shaded.lanes - 1) / shaded.lanes;
    shaded.outputs.resize(batches * shaded.components);
    shaded.vertices.resize(count);
    makePlan(state, call, list, plan);
    const Shading shading{state, call, list, instance, projection, plan, shaded};
    if (count <= VerticesATask) return shadeSome(shading, 0, count);
    workers::parallelFor((count + VerticesATask - 1) / VerticesATask, [&](size_t task) {
        shadeSome(shading, task * VerticesATask, std::min(count, (task + 1) * VerticesATask));
    });
}

} // namespace softmetal::raster
