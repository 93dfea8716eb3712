// SPDX-License-Identifier: Apache-2.0
// The state of a render pass while it is encoded, and the making of draw records.
#include "encoding/Commands.h"

#include "formats/PixelFormat.h"
#include "inspect/Counters.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstring>

namespace softmetal {

using inspect::require;
using inspect::Rule;

namespace {

/// Whether the function was given fewer bytes than its parameter has.
bool isShort(const shader::BindingReflection& b, const abi::Resources& table)
{
    return b.used && b.kind == shader::BindingKind::Buffer && b.index < abi::MaxBuffers && table.bufferLengths[b.index] < b.minimumSize;
}

/// The rest of a buffer that is too short reads as zeros: functions do not ask within their parameter's size.
void lengthen(const shader::BindingReflection& b, abi::Resources& table, Arena& arena)
{
    auto* longer = static_cast<uint8_t*>(arena.allocate(b.minimumSize));
    uint64_t length = table.bufferLengths[b.index];
    std::memcpy(longer, table.buffers[b.index], length);
    std::memset(longer + length, 0, b.minimumSize - length);
    table.buffers[b.index] = longer;
    table.bufferLengths[b.index] = b.minimumSize;
}

const abi::Resources* snapshotOf(StageBindings& stage, const RenderEncoderObject& encoder, const shader::Function* function, Arena& arena)
{
    static const std::vector<shader::BindingReflection> nothing;
    const auto& bindings = function ? function->reflection().bindings : nothing;
    bool anyShort = encoder.mustCheck && std::any_of(bindings.begin(), bindings.end(), [&](const auto& b) { return isShort(b, stage.table); });
    if (!stage.snapshot || anyShort) {
        auto* copy = static_cast<abi::Resources*>(arena.allocate(sizeof(abi::Resources)));
        *copy = stage.table;
        for (const auto& b : bindings)
            if (isShort(b, *copy)) lengthen(b, *copy, arena);
        stage.snapshot = copy;
    }
    return stage.snapshot;
}

/// Whether primitives of the type are of the class that a pipeline was made for.
bool suits(uint8_t topology, uint8_t primitive)
{
    constexpr uint8_t Classes[] = {MTL::PrimitiveTopologyClassPoint, MTL::PrimitiveTopologyClassLine,
                                   MTL::PrimitiveTopologyClassLine, MTL::PrimitiveTopologyClassTriangle,
                                   MTL::PrimitiveTopologyClassTriangle};
    return topology == MTL::PrimitiveTopologyClassUnspecified || topology == Classes[primitive];
}

bool tests(const raster::StencilState& s, bool enabled) { return enabled && (s.compareFunction != MTL::CompareFunctionAlways || s.passOperation != MTL::StencilOperationKeep); }

} // namespace

StageBindings::StageBindings()
{
    std::memset(&table, 0, sizeof table);
    for (auto& buffer : table.buffers) buffer = zeroMemory();
}

RenderEncoderObject::RenderEncoderObject(CommandBufferObject* buffer, const RenderPassDescriptorObject& pass) : Labelled(buffer->device.get()), Encoder(buffer)
{
    static std::atomic<uint64_t> serial{0};
    record.serial = ++serial;
    record.firstDraw = commands->storage->draws.size();
    attach(pass);
    if (inspect::logging()) logPass(pass);
}

// ---- attachments ----------------------------------------------------------------------------------------------------------------

/// The render area is what all attachments have, unless the descriptor names it.
void RenderEncoderObject::fitArea(const TextureObject& texture, NS::UInteger level)
{
    raster::PassDescription& d = record.description;
    const abi::TextureLevel& l = texture.view.levels[level];
    d.width = areaKnown_ ? std::min(d.width, l.width) : l.width;
    d.height = areaKnown_ ? std::min(d.height, l.height) : l.height;
    areaKnown_ = true;
}

void RenderEncoderObject::takeTarget(const RenderPassAttachmentDescriptorObject& from, raster::Target& to, uint32_t& format, const Attachment& kind)
{
    auto* texture = static_cast<TextureObject*>(from.texture.get());
    require(!from.resolveTexture, Rule::PassResolve, kind.name);
    bool resolves = from.storeAction == MTL::StoreActionMultisampleResolve ||
                    from.storeAction == MTL::StoreActionStoreAndMultisampleResolve;
    require(from.resolveTexture || !resolves, Rule::PassResolveStore, from.storeAction, kind.name);
    if (!texture) return;
    const auto& info = *formats::pixelFormatInfo(texture->view.format);
    format = texture->view.format;
    bool fits = kind.wantsDepth ? info.hasDepth : kind.wantsStencil ? info.hasStencil : info.renderable && !info.isDepthOrStencil();
    bool usable = require((texture->description.usage & MTL::TextureUsageRenderTarget) != 0, Rule::PassUsage, *texture, kind.name);
    usable &= require(fits, Rule::PassFormat, format, *texture, kind.name);
    if (!require(from.level < texture->view.levelCount && from.slice < texture->slices(), Rule::PassLevel, *texture, kind.name, from.level, from.slice)) return;
    fitArea(*texture, from.level);
    usable &= require(from.depthPlane < texture->view.levels[from.level].depth, Rule::PassDepthPlane, *texture, kind.name, from.depthPlane);
    usable &= require(texture->device.get() == device.get(), Rule::EncoderOtherDevice, "renderCommandEncoder", *texture);
    if (!usable) return;
    commands->keep(texture);
    to.texture = &texture->view;
    to.level = static_cast<uint32_t>(from.level);
    to.slice = static_cast<uint32_t>(from.slice);
    to.plane = static_cast<uint32_t>(from.depthPlane);
    to.loadAction = static_cast<uint8_t>(from.loadAction);
    to.storeAction = static_cast<uint8_t>(from.storeAction);
}

void RenderEncoderObject::attach(const RenderPassDescriptorObject& pass)
{
    raster::PassDescription& d = record.description;
    require(pass.renderTargetArrayLength <= 1, Rule::PassLayers, pass.renderTargetArrayLength);
    require(pass.defaultRasterSampleCount <= 1, Rule::PassSamples, pass.defaultRasterSampleCount);
    d.width = static_cast<uint32_t>(pass.renderTargetWidth);
    d.height = static_cast<uint32_t>(pass.renderTargetHeight);
    areaKnown_ = d.width != 0 && d.height != 0;
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        const RenderPassColorAttachmentDescriptorObject* a = pass.colorAttachments->known(i);
        if (!a) continue;
        takeTarget(*a, d.color[i], colorFormats[i], {"colour", false, false});
        const double clear[4] = {a->clearColor.red, a->clearColor.green, a->clearColor.blue, a->clearColor.alpha};
        std::copy(clear, clear + 4, d.color[i].clearColor);
    }
    const auto& depth = static_cast<const RenderPassDepthAttachmentDescriptorObject&>(*pass.depthAttachment);
    const auto& stencil = static_cast<const RenderPassStencilAttachmentDescriptorObject&>(*pass.stencilAttachment);
    takeTarget(depth, d.depth, depthFormat, {"depth", true, false});
    takeTarget(stencil, d.stencil, stencilFormat, {"stencil", false, true});
    if (depth.texture && stencil.texture && depth.texture.get() != stencil.texture.get())
        require(false, Rule::PassDepthStencil, *static_cast<TextureObject*>(depth.texture.get()), *static_cast<TextureObject*>(stencil.texture.get()));
    d.depth.clearDepth = depth.clearDepth;
    d.stencil.clearStencil = stencil.clearStencil;
    state.viewport[2] = d.width;
    state.viewport[3] = d.height;
    if (auto* visibility = static_cast<BufferObject*>(pass.visibilityResultBuffer.get())) {
        commands->keep(visibility);
        d.visibility = reinterpret_cast<uint64_t*>(visibility->memory.data());
        d.visibilityCount = visibility->length / 8;
    }
}

void RenderEncoderObject::logPass(const RenderPassDescriptorObject& pass) const
{
    std::vector<SoftMetal::LogArgument> logged{inspect::arg("result", static_cast<const void*>(api(this))), inspect::arg("pass", record.serial)};
    auto add = [&](const std::string& name, const RenderPassAttachmentDescriptorObject& a) {
        logged.push_back({name, 0, a.texture.get(), {}});
        logged.push_back({name + ".load", static_cast<double>(a.loadAction), nullptr, {}});
        logged.push_back({name + ".store", static_cast<double>(a.storeAction), nullptr, {}});
        logged.push_back({name + ".level", static_cast<double>(a.level), nullptr, {}});
        logged.push_back({name + ".slice", static_cast<double>(a.slice), nullptr, {}});
    };
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i)
        if (const auto* a = pass.colorAttachments->known(i)) add("color" + std::to_string(i), *a);
    add("depth", static_cast<const RenderPassAttachmentDescriptorObject&>(*pass.depthAttachment));
    add("stencil", static_cast<const RenderPassAttachmentDescriptorObject&>(*pass.stencilAttachment));
    inspect::logCall(api(commands.get()), "renderCommandEncoder", std::move(logged));
}

// ---- draws ---------------------------------------------------------------------------------------------------------------------

void RenderEncoderObject::checkBindings(const shader::FunctionReflection& function, const StageBindings& stage, const char* name) const
{
    for (const shader::BindingReflection& b : function.bindings) {
        if (!b.used) continue;
        if (b.kind == shader::BindingKind::Buffer && b.index < abi::MaxBuffers) {
            uint64_t length = stage.table.bufferLengths[b.index];
            if (require(length != 0, Rule::DrawMissingBuffer, name, function.name, b.name, b.index))
                require(length >= b.minimumSize, Rule::DrawShortBuffer, name, function.name, b.name, b.index, length, b.minimumSize);
        } else if (b.kind == shader::BindingKind::Texture && b.index < abi::MaxTextures) {
            const abi::Texture* texture = stage.table.textures[b.index];
            if (!require(texture != nullptr, Rule::DrawMissingTexture, name, function.name, b.name, b.index)) continue;
            require(texture->type == b.textureType, Rule::DrawTextureType, name, function.name, b.name, b.index,
                    b.textureType, texture->type);
            auto allows = [&](MTL::TextureUsage usage) { return texture->usage == 0 || (texture->usage & usage) != 0; };
            require(!b.reads || allows(MTL::TextureUsageShaderRead), Rule::DrawTextureUsage, name, function.name,
                    "reads", b.name, b.index, texture->usage);
            require(!b.writes || allows(MTL::TextureUsageShaderWrite), Rule::DrawTextureUsage, name, function.name,
                    "writes", b.name, b.index, texture->usage);
        } else if (b.kind == shader::BindingKind::Sampler && b.index < abi::MaxSamplers) {
            require(stage.table.samplers[b.index] != nullptr, Rule::DrawMissingSampler, name, function.name, b.name, b.index);
        }
    }
}

/// What depends on state and bindings alone.
void RenderEncoderObject::checkState(const char* name) const
{
    const raster::Pipeline& p = pipeline->pipeline;
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        // An attachment without a texture, or one that the pipeline does not write, is let pass.
        bool differs = p.colorFormats[i] != 0 && colorFormats[i] != 0 && p.colorFormats[i] != colorFormats[i];
        require(!differs, Rule::DrawColorFormat, name, *pipeline, p.colorFormats[i], i, colorFormats[i]);
    }
    require(pipeline->depthFormat == depthFormat, Rule::DrawDepthFormat, name, *pipeline, pipeline->depthFormat, depthFormat);
    require(pipeline->stencilFormat == stencilFormat, Rule::DrawStencilFormat, name, *pipeline, pipeline->stencilFormat, stencilFormat);
    const raster::DepthStencil& ds = state.depthStencil;
    require(depthFormat != 0 || (ds.depthCompare == MTL::CompareFunctionAlways && !ds.depthWrite), Rule::DrawDepthState, name, *this);
    require(stencilFormat != 0 || (!tests(ds.front, ds.stencilEnabled) && !tests(ds.back, ds.stencilEnabled)), Rule::DrawStencilState, name, *this);
    for (uint32_t attributes = p.attributeMask; attributes != 0; attributes &= attributes - 1) {
        auto index = static_cast<uint32_t>(std::countr_zero(attributes));
        uint32_t buffer = p.attributes[index].buffer;
        require(vertex.table.bufferLengths[buffer] != 0, Rule::DrawMissingVertexBuffer, name, index, *pipeline, buffer);
    }
    checkBindings(pipeline->vertexFunction->reflection(), vertex, name);
    if (pipeline->fragmentFunction) checkBindings(pipeline->fragmentFunction->reflection(), fragment, name);
}

/// What vertices without indices, and instances, are read from must lie within the buffers.
void RenderEncoderObject::checkVertexRange(const raster::DrawCall& call, const char* name) const
{
    const raster::Pipeline& p = pipeline->pipeline;
    for (uint32_t attributes = p.attributeMask; attributes != 0; attributes &= attributes - 1) {
        auto index = static_cast<uint32_t>(std::countr_zero(attributes));
        const raster::VertexAttribute& a = p.attributes[index];
        const raster::VertexLayout& layout = p.layouts[a.buffer];
        uint64_t last = 0, length = vertex.table.bufferLengths[a.buffer];
        if (layout.stepFunction == MTL::VertexStepFunctionPerVertex) last = call.indices ? 0 : uint64_t{call.start} + call.count - 1;
        else if (layout.stepFunction == MTL::VertexStepFunctionPerInstance) last = call.baseInstance + (call.instanceCount - 1) / std::max(layout.stepRate, 1u);
        uint64_t end = last * layout.stride + a.offset + a.info.bytes();
        require(length == 0 || end <= length, Rule::DrawVertexRange, name, index, *pipeline, end, a.buffer, length);
    }
}

void RenderEncoderObject::draw(const raster::DrawCall& call, const char* name)
{
    if (!require(pipeline != nullptr, Rule::DrawNoPipeline, name, *this)) return;
    if (!require(call.primitive <= MTL::PrimitiveTypeTriangleStrip, Rule::DrawPrimitive, name, call.primitive)) return;
    if (call.count == 0 || call.instanceCount == 0) return;
    if (inspect::validating()) {
        if (mustCheck) checkState(name);
        require(suits(pipeline->topology, call.primitive), Rule::DrawTopology, name, *pipeline, pipeline->topology,
                call.primitive);
        checkVertexRange(call, name);
    }
    CommandStorage& storage = *commands->storage;
    state.vertexResources = snapshotOf(vertex, *this, pipeline->vertexFunction.get(), storage.arena);
    state.fragmentResources = snapshotOf(fragment, *this, pipeline->fragmentFunction.get(), storage.arena);
    mustCheck = false;
    if (storage.states.empty() || std::memcmp(&storage.states.back(), &state, sizeof state) != 0) storage.states.push_back(state);
    storage.draws.push_back({static_cast<uint32_t>(storage.states.size() - 1), call});
}

void RenderEncoderObject::handOver()
{
    record.drawCount = commands->storage->draws.size() - record.firstDraw;
    inspect::count(inspect::counters.draws, record.drawCount);
    inspect::count(inspect::counters.passes);
    commands->storage->records.emplace_back(record);
}

void RenderEncoderObject::drop() { commands->storage->draws.resize(record.firstDraw); }

} // namespace softmetal
