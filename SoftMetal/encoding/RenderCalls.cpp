// SPDX-License-Identifier: Apache-2.0
// Metal's calls on render encoders that set state and draw.
#include "encoding/Commands.h"

#include <algorithm>
#include <cmath>

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

constexpr NS::UInteger MostVertices = 0xFFFFFFFF;

RenderEncoderObject* opened(const MTL::RenderCommandEncoder* encoder, const char* call)
{
    auto* object = cast<RenderEncoderObject>(encoder);
    return object->open(call) ? object : nullptr;
}

bool countable(std::initializer_list<NS::UInteger> values, const char* call)
{
    for (NS::UInteger value : values)
        if (!require(value <= MostVertices, Rule::DrawCount, call, value)) return false;
    return true;
}

} // namespace

// ---- fixed state --------------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::setRenderPipelineState(const RenderPipelineState* pipelineState)
{
    note(this, "setRenderPipelineState", arg("state", static_cast<const void*>(pipelineState)));
    auto* e = opened(this, "setRenderPipelineState");
    if (!e || !require(pipelineState != nullptr, Rule::EncoderNilPipeline, *e)) return;
    auto* pipeline = cast<RenderPipelineStateObject>(pipelineState);
    require(pipeline->device.get() == e->device.get(), Rule::EncoderOtherDevice, "setRenderPipelineState", *pipeline);
    if (e->pipeline == pipeline) return;
    e->pipeline = pipeline;
    e->commands->keep(pipeline);
    e->state.pipeline = &pipeline->pipeline;
    e->mustCheck = true;
}

void MTL::RenderCommandEncoder::setDepthStencilState(const DepthStencilState* state)
{
    note(this, "setDepthStencilState", arg("state", static_cast<const void*>(state)));
    auto* e = opened(this, "setDepthStencilState");
    if (!e) return;
    // The state is copied into each draw, so that the object itself need not be kept.
    e->state.depthStencil = state ? cast<DepthStencilStateObject>(state)->state : raster::DepthStencil();
    e->mustCheck = true;
}

void MTL::RenderCommandEncoder::setStencilReferenceValue(uint32_t value)
{
    note(this, "setStencilReferenceValue", arg("value", value));
    if (auto* e = opened(this, "setStencilReferenceValue")) e->state.stencilReferenceFront = e->state.stencilReferenceBack = value;
}

void MTL::RenderCommandEncoder::setStencilReferenceValues(uint32_t front, uint32_t back)
{
    note(this, "setStencilReferenceValues", arg("front", front), arg("back", back));
    auto* e = opened(this, "setStencilReferenceValues");
    if (!e) return;
    e->state.stencilReferenceFront = front;
    e->state.stencilReferenceBack = back;
}

void MTL::RenderCommandEncoder::setViewport(Viewport v)
{
    note(this, "setViewport", arg("originX", v.originX), arg("originY", v.originY), arg("width", v.width), arg("height", v.height), arg("znear", v.znear), arg("zfar", v.zfar));
    auto* e = opened(this, "setViewport");
    const double values[6] = {v.originX, v.originY, v.width, v.height, v.znear, v.zfar};
    bool finite = std::all_of(values, values + 6, [](double value) { return std::isfinite(value); });
    if (e && require(finite, Rule::EncoderViewport, *e)) std::copy(values, values + 6, e->state.viewport);
}

void MTL::RenderCommandEncoder::setViewports(const Viewport* viewports, NS::UInteger count)
{
    auto* e = opened(this, "setViewports");
    if (!e) return;
    require(count == 1, Rule::EncoderNoViewport, *e, count);
    if (count > 0 && viewports) setViewport(viewports[0]);
}

void MTL::RenderCommandEncoder::setScissorRect(ScissorRect rect)
{
    note(this, "setScissorRect", arg("x", rect.x), arg("y", rect.y), arg("width", rect.width), arg("height", rect.height));
    auto* e = opened(this, "setScissorRect");
    if (!e) return;
    const auto& pass = e->record.description;
    bool inside = rect.x <= pass.width && rect.width <= pass.width - rect.x && rect.y <= pass.height && rect.height <= pass.height - rect.y;
    require(inside, Rule::EncoderScissor, rect.x, rect.y, rect.width, rect.height, pass.width, pass.height);
    const NS::UInteger values[4] = {rect.x, rect.y, rect.width, rect.height};
    for (int i = 0; i < 4; ++i) e->state.scissor[i] = static_cast<uint32_t>(std::min<NS::UInteger>(values[i], 0xFFFFFFFF));
}

void MTL::RenderCommandEncoder::setScissorRects(const ScissorRect* rects, NS::UInteger count)
{
    auto* e = opened(this, "setScissorRects");
    if (!e) return;
    require(count == 1, Rule::EncoderNoScissor, *e, count);
    if (count > 0 && rects) setScissorRect(rects[0]);
}

void MTL::RenderCommandEncoder::setFrontFacingWinding(Winding winding)
{
    note(this, "setFrontFacingWinding", arg("winding", winding));
    if (auto* e = opened(this, "setFrontFacingWinding")) e->state.winding = static_cast<uint8_t>(winding);
}

void MTL::RenderCommandEncoder::setCullMode(CullMode mode)
{
    note(this, "setCullMode", arg("mode", mode));
    if (auto* e = opened(this, "setCullMode")) e->state.cullMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setDepthClipMode(DepthClipMode mode)
{
    note(this, "setDepthClipMode", arg("mode", mode));
    if (auto* e = opened(this, "setDepthClipMode")) e->state.depthClipMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setTriangleFillMode(TriangleFillMode mode)
{
    note(this, "setTriangleFillMode", arg("mode", mode));
    if (auto* e = opened(this, "setTriangleFillMode")) e->state.fillMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setDepthBias(float bias, float slopeScale, float clamp)
{
    note(this, "setDepthBias", arg("bias", bias), arg("slope", slopeScale), arg("clamp", clamp));
    auto* e = opened(this, "setDepthBias");
    if (!e) return;
    e->state.depthBias = bias;
    e->state.depthBiasSlope = slopeScale;
    e->state.depthBiasClamp = clamp;
}

void MTL::RenderCommandEncoder::setBlendColor(float red, float green, float blue, float alpha)
{
    note(this, "setBlendColor", arg("red", red), arg("green", green), arg("blue", blue), arg("alpha", alpha));
    auto* e = opened(this, "setBlendColor");
    if (!e) return;
    const float values[4] = {red, green, blue, alpha};
    std::copy(values, values + 4, e->state.blendColor);
}

void MTL::RenderCommandEncoder::setVisibilityResultMode(VisibilityResultMode mode, NS::UInteger offset)
{
    note(this, "setVisibilityResultMode", arg("mode", mode), arg("offset", offset));
    auto* e = opened(this, "setVisibilityResultMode");
    if (!e) return;
    const auto& pass = e->record.description;
    bool off = mode == VisibilityResultModeDisabled;
    bool usable = off || (require(pass.visibility != nullptr, Rule::EncoderVisibilityBuffer, *e) && require(offset % 8 == 0, Rule::EncoderVisibilityOffset, offset) &&
                          require(offset / 8 < pass.visibilityCount, Rule::EncoderVisibilityRange, offset, pass.visibilityCount * 8));
    e->state.visibilityMode = usable ? static_cast<uint8_t>(mode) : uint8_t{0};
    e->state.visibilityIndex = usable ? offset / 8 : 0;
}

// Attachments are stored whatever is asked for here: the actions save a processor's memory nothing.
void MTL::RenderCommandEncoder::setColorStoreAction(StoreAction action, NS::UInteger index) { note(this, "setColorStoreAction", arg("action", action), arg("index", index)); }
void MTL::RenderCommandEncoder::setDepthStoreAction(StoreAction action) { note(this, "setDepthStoreAction", arg("action", action)); }
void MTL::RenderCommandEncoder::setStencilStoreAction(StoreAction action) { note(this, "setStencilStoreAction", arg("action", action)); }
void MTL::RenderCommandEncoder::textureBarrier() { note(this, "textureBarrier"); }

// Passes run one after the other, and every resource can be reached from every shader: there is nothing to wait for.
void MTL::RenderCommandEncoder::memoryBarrier(BarrierScope scope, RenderStages, RenderStages) { note(this, "memoryBarrier", arg("scope", scope)); }
void MTL::RenderCommandEncoder::memoryBarrier(const Resource* const[], NS::UInteger count, RenderStages, RenderStages) { note(this, "memoryBarrier", arg("count", count)); }

void MTL::RenderCommandEncoder::useResource(const Resource* resource, ResourceUsage usage)
{
    note(this, "useResource", arg("resource", static_cast<const void*>(resource)), arg("usage", usage));
    auto* e = cast<RenderEncoderObject>(this);
    if (e->open("useResource") && resource) e->commands->storage->kept.emplace_back(castObject(resource));
}

void MTL::RenderCommandEncoder::useResources(const Resource* const resources[], NS::UInteger count, ResourceUsage usage)
{
    for (NS::UInteger i = 0; i < count; ++i)
        useResource(resources[i], usage);
}

void MTL::RenderCommandEncoder::useResource(const Resource* resource, ResourceUsage usage, RenderStages) { useResource(resource, usage); }
void MTL::RenderCommandEncoder::useResources(const Resource* const resources[], NS::UInteger count, ResourceUsage usage, RenderStages) { useResources(resources, count, usage); }

// Passes run one after the other, so that a fence has nothing to wait for.
void MTL::RenderCommandEncoder::updateFence(const Fence* fence, RenderStages stages)
{
    note(this, "updateFence", arg("fence", static_cast<const void*>(fence)), arg("stages", stages));
    if (auto* e = opened(this, "updateFence")) require(fence != nullptr, Rule::EncoderNilFence, "updateFence", *e);
}

void MTL::RenderCommandEncoder::waitForFence(const Fence* fence, RenderStages stages)
{
    note(this, "waitForFence", arg("fence", static_cast<const void*>(fence)), arg("stages", stages));
    if (auto* e = opened(this, "waitForFence")) require(fence != nullptr, Rule::EncoderNilFence, "waitForFence", *e);
}

// ---- draws -------------------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count, NS::UInteger instances, NS::UInteger baseInstance)
{
    note(this, "drawPrimitives", arg("type", type), arg("start", start), arg("count", count), arg("instances", instances), arg("baseInstance", baseInstance));
    auto* e = opened(this, "drawPrimitives");
    if (!e || !countable({start, count, instances, baseInstance}, "drawPrimitives")) return;
    raster::DrawCall call;
    call.primitive = static_cast<uint8_t>(std::min<NS::UInteger>(type, 255));
    call.start = static_cast<uint32_t>(start);
    call.count = static_cast<uint32_t>(count);
    call.instanceCount = static_cast<uint32_t>(instances);
    call.baseInstance = static_cast<uint32_t>(baseInstance);
    e->draw(call, "drawPrimitives");
}

void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count, NS::UInteger instances) { drawPrimitives(type, start, count, instances, 0); }
void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count) { drawPrimitives(type, start, count, 1, 0); }

void MTL::RenderCommandEncoder::drawIndexedPrimitives(PrimitiveType type, NS::UInteger count, IndexType indexType, const Buffer* buffer, NS::UInteger offset,
                                                      NS::UInteger instances, NS::Integer baseVertex, NS::UInteger baseInstance)
{
    note(this, "drawIndexedPrimitives", arg("type", type), arg("count", count), arg("indexType", indexType), arg("buffer", static_cast<const void*>(buffer)),
         arg("offset", offset), arg("instances", instances), arg("baseVertex", baseVertex), arg("baseInstance", baseInstance));
    auto* e = opened(this, "drawIndexedPrimitives");
    auto* indices = cast<BufferObject>(buffer);
    if (!e || !countable({count, instances, baseInstance}, "drawIndexedPrimitives") || !require(indices != nullptr, Rule::DrawNoIndices, *e)) return;
    uint64_t size = indexType == IndexTypeUInt16 ? 2 : 4, available = offset <= indices->length ? indices->length - offset : 0;
    require(count * size <= available, Rule::DrawIndexRange, count, offset, *indices, indices->length);
    if (!require(offset % size == 0, Rule::DrawIndexAlignment, offset, size)) offset -= offset % size;
    require(!indices->mayBeDiscarded(), Rule::BindPurged, "drawIndexedPrimitives", *indices, indices->purgeableState());
    raster::DrawCall call;
    call.primitive = static_cast<uint8_t>(std::min<NS::UInteger>(type, 255));
    call.count = static_cast<uint32_t>(count);
    call.instanceCount = static_cast<uint32_t>(instances);
    call.baseVertex = static_cast<int32_t>(baseVertex);
    call.baseInstance = static_cast<uint32_t>(baseInstance);
    call.indices = indices->memory.data() + std::min<uint64_t>(offset, indices->length);
    call.indexBytes = available;
    call.indexType = static_cast<uint8_t>(indexType);
    e->commands->keep(indices);
    e->draw(call, "drawIndexedPrimitives");
}

void MTL::RenderCommandEncoder::drawIndexedPrimitives(PrimitiveType type, NS::UInteger count, IndexType indexType, const Buffer* buffer, NS::UInteger offset, NS::UInteger instances)
{
    drawIndexedPrimitives(type, count, indexType, buffer, offset, instances, 0, 0);
}

void MTL::RenderCommandEncoder::drawIndexedPrimitives(PrimitiveType type, NS::UInteger count, IndexType indexType, const Buffer* buffer, NS::UInteger offset)
{
    drawIndexedPrimitives(type, count, indexType, buffer, offset, 1, 0, 0);
}
