// SPDX-License-Identifier: Apache-2.0
// Metal's calls on encoders in general and on render encoders.
#include "encoding/Commands.h"
#include "foundation/Strings.h"
#include "inspect/Inspect.h"

#include <algorithm>
#include <cstring>

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;

double number(auto value) { return static_cast<double>(value); }

RenderEncoderObject* opened(const MTL::RenderCommandEncoder* encoder, const char* call)
{
    auto* object = cast<RenderEncoderObject>(encoder);
    return object->open(call) ? object : nullptr;
}

bool indexInRange(NS::UInteger index, NS::UInteger limit, const char* call)
{
    if (index < limit) return true;
    inspect::report("bind.index", std::string(call) + ": the index (" + std::to_string(index) + ") is beyond the last (" + std::to_string(limit - 1) + ")");
    return false;
}

void bindBytes(RenderEncoderObject& encoder, StageBindings& stage, const void* bytes, NS::UInteger length, NS::UInteger index, const char* call)
{
    if (!bytes || !indexInRange(index, abi::MaxBuffers, call)) return;
    if (length > 4096) inspect::report("bind.bytes", std::string(call) + ": the length (" + std::to_string(length) + ") is over 4096 bytes");
    // Bytes equal to those already bound need no new copy.
    if (stage.inlineLength[index] == length && std::memcmp(stage.table.buffers[index], bytes, length) == 0) return;
    auto* copy = static_cast<uint8_t*>(encoder.commands->arena.allocate(length));
    std::memcpy(copy, bytes, length);
    stage.table.buffers[index] = copy;
    stage.table.bufferLengths[index] = length;
    stage.inlineLength[index] = static_cast<uint32_t>(length);
    stage.snapshot = nullptr;
}

void bindBuffer(RenderEncoderObject& encoder, StageBindings& stage, const MTL::Buffer* buffer, NS::UInteger offset, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxBuffers, call)) return;
    const uint8_t* data = zeroMemory();
    uint64_t length = 0;
    if (auto* object = cast<BufferObject>(buffer)) {
        if (!inspect::require(offset <= object->length, "bind.offset", "setBuffer: the offset lies beyond the end of the buffer")) offset = object->length;
        encoder.commands->keep(object);
        data = object->memory.data() + offset;
        length = object->length - offset;
    }
    if (stage.table.buffers[index] == data && stage.table.bufferLengths[index] == length) return;
    stage.table.buffers[index] = data;
    stage.table.bufferLengths[index] = length;
    stage.inlineLength[index] = 0;
    stage.snapshot = nullptr;
}

void bindTexture(RenderEncoderObject& encoder, StageBindings& stage, const MTL::Texture* texture, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxTextures, call)) return;
    auto* object = cast<TextureObject>(texture);
    const abi::Texture* view = object ? &object->view : nullptr;
    if (stage.table.textures[index] == view) return;
    if (object) {
        encoder.commands->keep(object);
        bool readable = object->description.usage == MTL::TextureUsageUnknown || (object->description.usage & MTL::TextureUsageShaderRead) != 0;
        inspect::require(readable, "bind.texture-usage", "setTexture: the texture has no shader read usage");
    }
    stage.table.textures[index] = view;
    stage.snapshot = nullptr;
}

void bindSampler(RenderEncoderObject& encoder, StageBindings& stage, const MTL::SamplerState* sampler, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxSamplers, call)) return;
    auto* object = cast<SamplerStateObject>(sampler);
    const abi::Sampler* state = object ? &object->state : nullptr;
    if (stage.table.samplers[index] == state) return;
    if (object) encoder.commands->keep(object);
    stage.table.samplers[index] = state;
    stage.snapshot = nullptr;
}

void noteBuffer(const void* encoder, const char* call, const void* buffer, NS::UInteger offset, NS::UInteger index)
{
    note(encoder, call, arg("buffer", buffer), arg("offset", number(offset)), arg("index", number(index)));
}

void noteBytes(const void* encoder, const char* call, const void* bytes, NS::UInteger length, NS::UInteger index)
{
    if (inspect::logging())
        note(encoder, call, arg("length", number(length)), arg("index", number(index)), arg("bytes", std::string(static_cast<const char*>(bytes), length)));
}

} // namespace

// ---- any encoder ------------------------------------------------------------------------------------------------------------

namespace {

/// Calls that render and blit encoders share.
template <class Function>
auto withEncoder(const MTL::CommandEncoder* encoder, Function function)
{
    Object* object = castObject(encoder);
    if (auto* render = dynamic_cast<RenderEncoderObject*>(object)) return function(*render);
    return function(*static_cast<BlitEncoderObject*>(object));
}

} // namespace

MTL::Device* MTL::CommandEncoder::device() const
{
    return withEncoder(this, [](auto& e) { return api(e.device.get()); });
}

NS::String* MTL::CommandEncoder::label() const
{
    return withEncoder(this, [](auto& e) { return reinterpret_cast<NS::String*>(e.label.get()); });
}

void MTL::CommandEncoder::setLabel(const NS::String* label)
{
    withEncoder(this, [&](auto& e) { e.label = ObjectRef(castObject(label)); });
}

void MTL::CommandEncoder::endEncoding()
{
    note(this, "endEncoding");
    withEncoder(this, [](auto& e) {
        if (!e.open("endEncoding")) return;
        e.ended = true;
        e.commands->openEncoder = nullptr;
        if constexpr (std::is_same_v<std::decay_t<decltype(e)>, RenderEncoderObject>) e.commands->records.emplace_back(std::move(e.record));
    });
}

void MTL::CommandEncoder::insertDebugSignpost(const NS::String* string) { note(this, "insertDebugSignpost", arg("name", textOf(string))); }
void MTL::CommandEncoder::pushDebugGroup(const NS::String* string) { note(this, "pushDebugGroup", arg("name", textOf(string))); }
void MTL::CommandEncoder::popDebugGroup() { note(this, "popDebugGroup"); }

// ---- fixed state --------------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::setRenderPipelineState(const RenderPipelineState* pipelineState)
{
    note(this, "setRenderPipelineState", arg("state", static_cast<const void*>(pipelineState)));
    auto* e = opened(this, "setRenderPipelineState");
    if (!e || !inspect::require(pipelineState != nullptr, "encoder.nil-pipeline", "setRenderPipelineState: the state must not be nil")) return;
    e->pipeline = cast<RenderPipelineStateObject>(pipelineState);
    e->commands->keep(e->pipeline);
    e->state.pipeline = &e->pipeline->pipeline;
}

void MTL::RenderCommandEncoder::setDepthStencilState(const DepthStencilState* state)
{
    note(this, "setDepthStencilState", arg("state", static_cast<const void*>(state)));
    auto* e = opened(this, "setDepthStencilState");
    if (!e) return;
    e->state.depthStencil = state ? cast<DepthStencilStateObject>(state)->state : raster::DepthStencil();
    e->commands->keep(castObject(state));
}

void MTL::RenderCommandEncoder::setStencilReferenceValue(uint32_t value)
{
    note(this, "setStencilReferenceValue", arg("value", number(value)));
    if (auto* e = opened(this, "setStencilReferenceValue")) e->state.stencilReferenceFront = e->state.stencilReferenceBack = value;
}

void MTL::RenderCommandEncoder::setStencilReferenceValues(uint32_t front, uint32_t back)
{
    note(this, "setStencilReferenceValues", arg("front", number(front)), arg("back", number(back)));
    auto* e = opened(this, "setStencilReferenceValues");
    if (!e) return;
    e->state.stencilReferenceFront = front;
    e->state.stencilReferenceBack = back;
}

void MTL::RenderCommandEncoder::setViewport(Viewport v)
{
    note(this, "setViewport", arg("originX", v.originX), arg("originY", v.originY), arg("width", v.width), arg("height", v.height), arg("znear", v.znear), arg("zfar", v.zfar));
    auto* e = opened(this, "setViewport");
    if (!e) return;
    const double values[6] = {v.originX, v.originY, v.width, v.height, v.znear, v.zfar};
    std::copy(values, values + 6, e->state.viewport);
}

void MTL::RenderCommandEncoder::setViewports(const Viewport* viewports, NS::UInteger count)
{
    if (inspect::require(count > 0, "encoder.no-viewport", "setViewports: there must be at least one viewport")) setViewport(viewports[0]);
}

void MTL::RenderCommandEncoder::setScissorRect(ScissorRect rect)
{
    note(this, "setScissorRect", arg("x", number(rect.x)), arg("y", number(rect.y)), arg("width", number(rect.width)), arg("height", number(rect.height)));
    auto* e = opened(this, "setScissorRect");
    if (!e) return;
    const auto& pass = e->record.description;
    bool inside = rect.x + rect.width <= pass.width && rect.y + rect.height <= pass.height;
    inspect::require(inside, "encoder.scissor", "setScissorRect: the rectangle must lie within the render pass");
    const NS::UInteger values[4] = {rect.x, rect.y, rect.width, rect.height};
    for (int i = 0; i < 4; ++i) e->state.scissor[i] = static_cast<uint32_t>(std::min<NS::UInteger>(values[i], 0xFFFFFFFF));
}

void MTL::RenderCommandEncoder::setScissorRects(const ScissorRect* rects, NS::UInteger count)
{
    if (inspect::require(count > 0, "encoder.no-scissor", "setScissorRects: there must be at least one rectangle")) setScissorRect(rects[0]);
}

void MTL::RenderCommandEncoder::setFrontFacingWinding(Winding winding)
{
    note(this, "setFrontFacingWinding", arg("winding", number(winding)));
    if (auto* e = opened(this, "setFrontFacingWinding")) e->state.winding = static_cast<uint8_t>(winding);
}

void MTL::RenderCommandEncoder::setCullMode(CullMode mode)
{
    note(this, "setCullMode", arg("mode", number(mode)));
    if (auto* e = opened(this, "setCullMode")) e->state.cullMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setDepthClipMode(DepthClipMode mode)
{
    note(this, "setDepthClipMode", arg("mode", number(mode)));
    if (auto* e = opened(this, "setDepthClipMode")) e->state.depthClipMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setTriangleFillMode(TriangleFillMode mode)
{
    note(this, "setTriangleFillMode", arg("mode", number(mode)));
    if (auto* e = opened(this, "setTriangleFillMode")) e->state.fillMode = static_cast<uint8_t>(mode);
}

void MTL::RenderCommandEncoder::setDepthBias(float bias, float slopeScale, float clamp)
{
    note(this, "setDepthBias", arg("bias", number(bias)), arg("slope", number(slopeScale)), arg("clamp", number(clamp)));
    auto* e = opened(this, "setDepthBias");
    if (!e) return;
    e->state.depthBias = bias;
    e->state.depthBiasSlope = slopeScale;
    e->state.depthBiasClamp = clamp;
}

void MTL::RenderCommandEncoder::setBlendColor(float red, float green, float blue, float alpha)
{
    note(this, "setBlendColor", arg("red", number(red)), arg("green", number(green)), arg("blue", number(blue)), arg("alpha", number(alpha)));
    auto* e = opened(this, "setBlendColor");
    if (!e) return;
    const float values[4] = {red, green, blue, alpha};
    std::copy(values, values + 4, e->state.blendColor);
}

void MTL::RenderCommandEncoder::setVisibilityResultMode(VisibilityResultMode mode, NS::UInteger offset)
{
    note(this, "setVisibilityResultMode", arg("mode", number(mode)), arg("offset", number(offset)));
    auto* e = opened(this, "setVisibilityResultMode");
    if (!e) return;
    inspect::require(offset % 8 == 0, "encoder.visibility-offset", "setVisibilityResultMode: the offset must be a multiple of 8");
    e->state.visibilityMode = static_cast<uint8_t>(mode);
    e->state.visibilityIndex = offset / 8;
}

void MTL::RenderCommandEncoder::setColorStoreAction(StoreAction, NS::UInteger) {}
void MTL::RenderCommandEncoder::setDepthStoreAction(StoreAction) {}
void MTL::RenderCommandEncoder::setStencilStoreAction(StoreAction) {}
void MTL::RenderCommandEncoder::textureBarrier() {}
void MTL::RenderCommandEncoder::updateFence(const Fence* fence, RenderStages) { inspect::require(fence != nullptr, "encoder.nil-fence", "updateFence: the fence must not be nil"); }
void MTL::RenderCommandEncoder::waitForFence(const Fence* fence, RenderStages) { inspect::require(fence != nullptr, "encoder.nil-fence", "waitForFence: the fence must not be nil"); }

// ---- vertex stage ----------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::setVertexBytes(const void* bytes, NS::UInteger length, NS::UInteger index)
{
    noteBytes(this, "setVertexBytes", bytes, length, index);
    if (auto* e = opened(this, "setVertexBytes")) bindBytes(*e, e->vertex, bytes, length, index, "setVertexBytes");
}

void MTL::RenderCommandEncoder::setVertexBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger index)
{
    noteBuffer(this, "setVertexBuffer", buffer, offset, index);
    if (auto* e = opened(this, "setVertexBuffer")) bindBuffer(*e, e->vertex, buffer, offset, index, "setVertexBuffer");
}

void MTL::RenderCommandEncoder::setVertexBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range)
{
    for (NS::UInteger i = 0; i < range.length; ++i) setVertexBuffer(buffers[i], offsets[i], range.location + i);
}

void MTL::RenderCommandEncoder::setVertexTexture(const Texture* texture, NS::UInteger index)
{
    note(this, "setVertexTexture", arg("texture", static_cast<const void*>(texture)), arg("index", number(index)));
    if (auto* e = opened(this, "setVertexTexture")) bindTexture(*e, e->vertex, texture, index, "setVertexTexture");
}

void MTL::RenderCommandEncoder::setVertexTextures(const Texture* const textures[], NS::Range range)
{
    note(this, "setVertexTextures", arg("location", number(range.location)), arg("length", number(range.length)));
    auto* e = opened(this, "setVertexTextures");
    for (NS::UInteger i = 0; e && i < range.length; ++i) bindTexture(*e, e->vertex, textures[i], range.location + i, "setVertexTextures");
}

void MTL::RenderCommandEncoder::setVertexSamplerState(const SamplerState* sampler, NS::UInteger index)
{
    note(this, "setVertexSamplerState", arg("sampler", static_cast<const void*>(sampler)), arg("index", number(index)));
    if (auto* e = opened(this, "setVertexSamplerState")) bindSampler(*e, e->vertex, sampler, index, "setVertexSamplerState");
}

void MTL::RenderCommandEncoder::setVertexSamplerStates(const SamplerState* const samplers[], NS::Range range)
{
    note(this, "setVertexSamplerStates", arg("location", number(range.location)), arg("length", number(range.length)));
    auto* e = opened(this, "setVertexSamplerStates");
    for (NS::UInteger i = 0; e && i < range.length; ++i) bindSampler(*e, e->vertex, samplers[i], range.location + i, "setVertexSamplerStates");
}

// ---- fragment stage ----------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::setFragmentBytes(const void* bytes, NS::UInteger length, NS::UInteger index)
{
    noteBytes(this, "setFragmentBytes", bytes, length, index);
    if (auto* e = opened(this, "setFragmentBytes")) bindBytes(*e, e->fragment, bytes, length, index, "setFragmentBytes");
}

void MTL::RenderCommandEncoder::setFragmentBuffer(const Buffer* buffer, NS::UInteger offset, NS::UInteger index)
{
    noteBuffer(this, "setFragmentBuffer", buffer, offset, index);
    if (auto* e = opened(this, "setFragmentBuffer")) bindBuffer(*e, e->fragment, buffer, offset, index, "setFragmentBuffer");
}

void MTL::RenderCommandEncoder::setFragmentBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range)
{
    for (NS::UInteger i = 0; i < range.length; ++i) setFragmentBuffer(buffers[i], offsets[i], range.location + i);
}

void MTL::RenderCommandEncoder::setFragmentTexture(const Texture* texture, NS::UInteger index)
{
    note(this, "setFragmentTexture", arg("texture", static_cast<const void*>(texture)), arg("index", number(index)));
    if (auto* e = opened(this, "setFragmentTexture")) bindTexture(*e, e->fragment, texture, index, "setFragmentTexture");
}

void MTL::RenderCommandEncoder::setFragmentTextures(const Texture* const textures[], NS::Range range)
{
    note(this, "setFragmentTextures", arg("location", number(range.location)), arg("length", number(range.length)));
    auto* e = opened(this, "setFragmentTextures");
    for (NS::UInteger i = 0; e && i < range.length; ++i) bindTexture(*e, e->fragment, textures[i], range.location + i, "setFragmentTextures");
}

void MTL::RenderCommandEncoder::setFragmentSamplerState(const SamplerState* sampler, NS::UInteger index)
{
    note(this, "setFragmentSamplerState", arg("sampler", static_cast<const void*>(sampler)), arg("index", number(index)));
    if (auto* e = opened(this, "setFragmentSamplerState")) bindSampler(*e, e->fragment, sampler, index, "setFragmentSamplerState");
}

void MTL::RenderCommandEncoder::setFragmentSamplerStates(const SamplerState* const samplers[], NS::Range range)
{
    note(this, "setFragmentSamplerStates", arg("location", number(range.location)), arg("length", number(range.length)));
    auto* e = opened(this, "setFragmentSamplerStates");
    for (NS::UInteger i = 0; e && i < range.length; ++i) bindSampler(*e, e->fragment, samplers[i], range.location + i, "setFragmentSamplerStates");
}

// ---- draws -------------------------------------------------------------------------------------------------------------------

void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count, NS::UInteger instances, NS::UInteger baseInstance)
{
    note(this, "drawPrimitives", arg("type", number(type)), arg("start", number(start)), arg("count", number(count)), arg("instances", number(instances)), arg("baseInstance", number(baseInstance)));
    raster::DrawCall call;
    call.primitive = static_cast<uint8_t>(type);
    call.start = static_cast<uint32_t>(start);
    call.count = static_cast<uint32_t>(count);
    call.instanceCount = static_cast<uint32_t>(instances);
    call.baseInstance = static_cast<uint32_t>(baseInstance);
    cast<RenderEncoderObject>(this)->draw(call, "drawPrimitives");
}

void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count, NS::UInteger instances) { drawPrimitives(type, start, count, instances, 0); }
void MTL::RenderCommandEncoder::drawPrimitives(PrimitiveType type, NS::UInteger start, NS::UInteger count) { drawPrimitives(type, start, count, 1, 0); }

void MTL::RenderCommandEncoder::drawIndexedPrimitives(PrimitiveType type, NS::UInteger count, IndexType indexType, const Buffer* buffer, NS::UInteger offset,
                                                      NS::UInteger instances, NS::Integer baseVertex, NS::UInteger baseInstance)
{
    note(this, "drawIndexedPrimitives", arg("type", number(type)), arg("count", number(count)), arg("indexType", number(indexType)),
         arg("buffer", static_cast<const void*>(buffer)), arg("offset", number(offset)), arg("instances", number(instances)));
    auto* e = cast<RenderEncoderObject>(this);
    auto* indices = cast<BufferObject>(buffer);
    if (!inspect::require(indices != nullptr, "draw.no-indices", "drawIndexedPrimitives: the index buffer must not be nil")) return;
    uint64_t size = indexType == IndexTypeUInt16 ? 2 : 4, available = offset <= indices->length ? indices->length - offset : 0;
    inspect::require(count * size <= available, "draw.index-range", "drawIndexedPrimitives: the indices end beyond the index buffer");
    inspect::require(offset % size == 0, "draw.index-alignment", "drawIndexedPrimitives: the offset must be a multiple of the index size");
    raster::DrawCall call;
    call.primitive = static_cast<uint8_t>(type);
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
