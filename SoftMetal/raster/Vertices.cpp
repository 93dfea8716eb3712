// SPDX-License-Identifier: Apache-2.0
#include "raster/Vertices.h"

#include "formats/VertexFormat.h"
#include "inspect/ShaderFaults.h"
#include "raster/Primitives.h"
#include "workers/Pool.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <unordered_map>

namespace softmetal::raster {
namespace {

constexpr uint8_t Index16 = 0, LineStrip = 2, TriangleStrip = 4, PerVertex = 1;
constexpr size_t BatchesATask = 8;

uint32_t indexAt(const DrawCall& call, uint64_t i)
{
    uint32_t value = 0;
    uint64_t size = call.indexType == Index16 ? 2 : 4;
    if ((i + 1) * size > call.indexBytes) return 0; // beyond the buffer: as if it held zeros
    std::memcpy(&value, static_cast<const uint8_t*>(call.indices) + i * size, size);
    return value;
}

/// Finds the place of a vertex number among those seen; dense tables are quick, wide ranges go through a map.
class Places
{
public:
    /// The least number that will come keeps the table short for a part of a long list.
    Places(size_t expected, uint32_t least) : least_(least) { dense_.reserve(expected); }

    uint32_t of(uint32_t id, std::vector<uint32_t>& ids)
    {
        const uint32_t at = id - least_;
        if (at < DenseLimit) {
            if (at >= dense_.size()) dense_.resize(std::max<size_t>(at + 1, dense_.size() * 2), VertexList::Restart);
            if (dense_[at] == VertexList::Restart) dense_[at] = add(id, ids);
            return dense_[at];
        }
        auto [place, added] = sparse_.try_emplace(id, 0);
        if (added) place->second = add(id, ids);
        return place->second;
    }

private:
    static constexpr uint32_t DenseLimit = 1u << 22;
    static uint32_t add(uint32_t id, std::vector<uint32_t>& ids)
    {
        ids.push_back(id);
        return static_cast<uint32_t>(ids.size() - 1);
    }
    uint32_t least_;
    std::vector<uint32_t> dense_;
    std::unordered_map<uint32_t, uint32_t> sparse_;
};

/// How one attribute is fetched for a draw.
struct Fetch
{
    uint32_t attribute;
    formats::VertexFormatInfo format;
    const uint8_t* data;
    uint64_t bytes, stride;
    uint8_t step;
    uint32_t rate;
    bool asFloat;
    bool checked; // vertices behind indices: what an encoder cannot know
};

std::vector<Fetch> fetches(const DrawState& state, bool indexed)
{
    std::vector<Fetch> result;
    const Pipeline& pipeline = *state.pipeline;
    for (uint32_t a = 0; a < abi::MaxVertexAttributes; ++a) {
        if (!(pipeline.attributeMask >> a & 1)) continue;
        const VertexAttribute& attribute = pipeline.attributes[a];
        const VertexLayout& layout = pipeline.layouts[attribute.buffer];
        const abi::Resources& resources = *state.vertexResources;
        uint64_t bytes = resources.bufferLengths[attribute.buffer];
        const uint8_t* data = resources.buffers[attribute.buffer];
        bool there = data && attribute.format != 0 && attribute.offset <= bytes;
        result.push_back({a, formats::vertexFormatInfo(attribute.format), there ? data + attribute.offset : nullptr,
                          there ? bytes - attribute.offset : 0, layout.stride, layout.stepFunction, std::max(layout.stepRate, 1u),
                          (pipeline.floatAttributes >> a & 1) != 0, indexed && layout.stepFunction == PerVertex && bytes > 0});
    }
    return result;
}

void fetchLane(const Fetch& f, uint64_t element, uint32_t lane, abi::Lanes* attributes)
{
    uint32_t words[4] = {0, 0, 0, 0};
    uint64_t at = element * f.stride, size = f.format.bytes();
    if (f.data && size > 0 && at + size <= f.bytes) formats::fetch(f.format, f.data + at, f.asFloat, words);
    else if (f.checked) inspect::noteOutsideVertices(f.attribute);
    for (uint32_t c = 0; c < 4; ++c) attributes[f.attribute * 4 + c].u[lane] = words[c];
}

struct Batch
{
    abi::VertexInput input;
    abi::VertexOutput output;
    std::array<abi::Lanes, abi::MaxVertexAttributes * 4> attributes;
};

void shadeBatch(const DrawState& state, const std::vector<Fetch>& plan, const VertexList& list, uint32_t instance, const DrawCall& call,
                uint32_t first, Batch& batch, ShadedVertices& out)
{
    uint32_t width = lanes(), count = std::min<uint32_t>(width, static_cast<uint32_t>(list.ids.size()) - first);
    batch.input.mask = (1u << count) - 1;
    batch.input.baseVertex = static_cast<uint32_t>(call.baseVertex);
    batch.input.baseInstance = call.baseInstance;
    batch.input.attributes = batch.attributes.data();
    for (uint32_t lane = 0; lane < width; ++lane) {
        uint32_t id = list.ids[first + std::min(lane, count - 1)]; // idle lanes repeat the last one
        batch.input.vertexId.u[lane] = id;
        batch.input.instanceId.u[lane] = instance;
        for (const Fetch& f : plan) {
            uint64_t element = f.step == PerVertex ? id : f.step == 2 ? call.baseInstance + (instance - call.baseInstance) / f.rate : 0;
            fetchLane(f, element, lane, batch.attributes.data());
        }
    }
    state.pipeline->vertex(&batch.input, &batch.output, state.vertexResources);
    for (uint32_t lane = 0; lane < count; ++lane) {
        float* to = out.values.data() + static_cast<size_t>(first + lane) * out.stride;
        for (uint32_t c = 0; c < out.stride; ++c) to[c] = batch.output.component[c].f[lane];
    }
}

} // namespace

VertexList listVertices(const DrawCall& call)
{
    VertexList list;
    list.places.reserve(call.count);
    if (!call.indices) {
        for (uint32_t i = 0; i < call.count; ++i) {
            list.ids.push_back(call.start + i);
            list.places.push_back(i);
        }
        return list;
    }
    bool restarts = call.primitive == LineStrip || call.primitive == TriangleStrip;
    uint32_t restart = call.indexType == Index16 ? 0xFFFF : 0xFFFFFFFF;
    uint32_t least = UINT32_MAX;
    for (uint64_t i = 0; i < call.count; ++i) {
        const uint32_t index = indexAt(call, call.start + i);
        if (!restarts || index != restart) least = std::min(least, index + static_cast<uint32_t>(call.baseVertex));
    }
    Places places(call.count, least);
    for (uint64_t i = 0; i < call.count; ++i) {
        uint32_t index = indexAt(call, call.start + i);
        if (restarts && index == restart) list.places.push_back(VertexList::Restart);
        else list.places.push_back(places.of(index + static_cast<uint32_t>(call.baseVertex), list.ids));
    }
    return list;
}

ShadedVertices shade(const DrawState& state, const DrawCall& call, const VertexList& list, uint32_t instance)
{
    ShadedVertices out;
    out.stride = state.pipeline->outputComponents;
    out.values.resize(list.ids.size() * out.stride);
    std::vector<Fetch> plan = fetches(state, call.indices != nullptr);
    size_t step = lanes() * BatchesATask, tasks = (list.ids.size() + step - 1) / step;
    workers::parallelFor(tasks, [&](size_t task) {
        static thread_local auto batch = std::make_unique<Batch>();
        size_t end = std::min(list.ids.size(), (task + 1) * step);
        for (size_t first = task * step; first < end && !inspect::shaderLimitReached(); first += lanes())
            shadeBatch(state, plan, list, instance, call, static_cast<uint32_t>(first), *batch, out);
    });
    return out;
}

} // namespace softmetal::raster
