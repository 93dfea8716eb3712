// SPDX-License-Identifier: Apache-2.0
// The state of a render pass while it is encoded, and the making of draw records.
#include "encoding/Commands.h"

#include "formats/PixelFormat.h"
#include "inspect/Inspect.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace softmetal {
namespace {

void initialise(StageBindings& stage)
{
    std::memset(&stage.table, 0, sizeof stage.table);
    for (auto& buffer : stage.table.buffers) buffer = zeroMemory();
}

const abi::Resources* snapshotOf(StageBindings& stage, Arena& arena)
{
    if (!stage.snapshot) {
        auto* copy = static_cast<abi::Resources*>(arena.allocate(sizeof(abi::Resources)));
        *copy = stage.table;
        stage.snapshot = copy;
    }
    return stage.snapshot;
}

void checkBindings(const shader::FunctionReflection& function, const StageBindings& stage, const char* name)
{
    for (const shader::BindingReflection& binding : function.bindings) {
        if (!binding.used) continue;
        std::string what = "'" + binding.name + "' (index " + std::to_string(binding.index) + ") of function '" + function.name + "'";
        if (binding.kind == shader::BindingKind::Buffer && binding.index < abi::MaxBuffers) {
            if (stage.table.bufferLengths[binding.index] == 0) inspect::report("draw.missing-buffer", std::string(name) + ": no buffer is bound for " + what);
            else if (stage.table.bufferLengths[binding.index] < binding.minimumSize)
                inspect::report("draw.short-buffer", std::string(name) + ": the buffer bound for " + what + " is shorter than the type that is read from it");
        } else if (binding.kind == shader::BindingKind::Texture && binding.index < abi::MaxTextures) {
            const abi::Texture* texture = stage.table.textures[binding.index];
            if (!texture) inspect::report("draw.missing-texture", std::string(name) + ": no texture is bound for " + what);
            else if (texture->type != binding.textureType)
                inspect::report("draw.texture-type", std::string(name) + ": the texture bound for " + what + " is of another type than the function declares");
        } else if (binding.kind == shader::BindingKind::Sampler && binding.index < abi::MaxSamplers && !stage.table.samplers[binding.index]) {
            inspect::report("draw.missing-sampler", std::string(name) + ": no sampler is bound for " + what);
        }
    }
}

} // namespace

RenderEncoderObject::RenderEncoderObject(CommandBufferObject* buffer, const RenderPassDescriptorObject& pass) : Labelled(buffer->device.get()), commands(buffer)
{
    initialise(vertex);
    initialise(fragment);
    attach(pass);
}

void RenderEncoderObject::attach(const RenderPassDescriptorObject& pass)
{
    raster::PassDescription& d = record.description;
    uint32_t width = static_cast<uint32_t>(pass.renderTargetWidth), height = static_cast<uint32_t>(pass.renderTargetHeight);
    bool first = width == 0 || height == 0;
    std::vector<SoftMetal::LogArgument> logged;
    auto take = [&](const RenderPassAttachmentDescriptorObject& a, raster::Target& target, uint32_t& format, bool wantsDepth, bool wantsStencil, const char* name) {
        auto* texture = static_cast<TextureObject*>(a.texture.get());
        if (!texture) return;
        const auto& info = *formats::pixelFormatInfo(texture->view.format);
        format = texture->view.format;
        bool usable = (texture->description.usage & MTL::TextureUsageRenderTarget) != 0;
        std::string subject = "renderCommandEncoder: " + std::string(name) + " texture '" + texture->labelText() + "' ";
        if (!usable) inspect::report("pass.usage", subject + "has no render target usage; nothing is drawn to it");
        bool kind = wantsDepth ? info.hasDepth : wantsStencil ? info.hasStencil : info.renderable && !info.isDepthOrStencil();
        if (!kind) inspect::report("pass.format", subject + "has a pixel format that does not fit the attachment");
        bool range = a.level < texture->view.levelCount && a.slice < texture->slices();
        if (!range) inspect::report("pass.level", subject + "has no such level or slice");
        if (range) {
            const abi::TextureLevel& level = texture->view.levels[a.level];
            uint32_t w = level.width, h = level.height;
            width = first ? w : std::min(width, w);
            height = first ? h : std::min(height, h);
            first = false;
        }
        if (!usable || !kind || !range) return;
        commands->keep(texture);
        target.texture = &texture->view;
        target.level = static_cast<uint32_t>(a.level);
        target.slice = static_cast<uint32_t>(a.slice);
        target.plane = static_cast<uint32_t>(std::min<NS::UInteger>(a.depthPlane, texture->view.levels[a.level].depth - 1));
        target.loadAction = static_cast<uint8_t>(a.loadAction);
        target.storeAction = static_cast<uint8_t>(a.storeAction);
    };
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        const RenderPassColorAttachmentDescriptorObject* a = pass.colorAttachments->known(i);
        if (!a) continue;
        take(*a, d.color[i], colorFormats[i], false, false, "colour");
        const double clear[4] = {a->clearColor.red, a->clearColor.green, a->clearColor.blue, a->clearColor.alpha};
        std::copy(clear, clear + 4, d.color[i].clearColor);
        if (inspect::logging()) {
            std::string prefix = "color" + std::to_string(i);
            logged.push_back({prefix, 0, a->texture.get(), {}});
            logged.push_back({prefix + ".load", static_cast<double>(a->loadAction), nullptr, {}});
        }
    }
    const auto& depth = static_cast<const RenderPassDepthAttachmentDescriptorObject&>(*pass.depthAttachment);
    const auto& stencil = static_cast<const RenderPassStencilAttachmentDescriptorObject&>(*pass.stencilAttachment);
    take(depth, d.depth, depthFormat, true, false, "depth");
    take(stencil, d.stencil, stencilFormat, false, true, "stencil");
    d.depth.clearDepth = depth.clearDepth;
    d.stencil.clearStencil = stencil.clearStencil;
    d.width = width;
    d.height = height;
    state.viewport[2] = width;
    state.viewport[3] = height;
    if (auto* visibility = static_cast<BufferObject*>(pass.visibilityResultBuffer.get())) {
        commands->keep(visibility);
        d.visibility = reinterpret_cast<uint64_t*>(visibility->memory.data());
        d.visibilityCount = visibility->length / 8;
    }
    if (!inspect::logging()) return;
    logged.push_back({"result", 0, api(this), {}});
    logged.push_back({"depth", 0, depth.texture.get(), {}});
    logged.push_back({"depth.load", static_cast<double>(depth.loadAction), nullptr, {}});
    logged.push_back({"stencil", 0, stencil.texture.get(), {}});
    logged.push_back({"stencil.load", static_cast<double>(stencil.loadAction), nullptr, {}});
    inspect::logCall(api(commands.get()), "renderCommandEncoder", std::move(logged));
}

bool RenderEncoderObject::open(const char* call) const
{
    if (ended && inspect::validating()) inspect::report("encoder.ended", std::string(call) + ": the render encoder has ended");
    return !ended;
}

bool RenderEncoderObject::ready(const char* name) const
{
    if (!inspect::require(pipeline != nullptr, "draw.no-pipeline", "draw: no render pipeline state is set")) return false;
    if (!inspect::validating()) return true;
    for (uint32_t i = 0; i < abi::MaxColorOutputs; ++i) {
        uint32_t wanted = pipeline->pipeline.colorFormats[i];
        if (wanted != 0 && colorFormats[i] != 0 && wanted != colorFormats[i])
            inspect::report("draw.color-format", std::string(name) + ": pipeline state '" + pipeline->labelText() + "' has another pixel format (" +
                                                     std::to_string(wanted) + ") than colour attachment " + std::to_string(i) + " (" +
                                                     std::to_string(colorFormats[i]) + ")");
    }
    if (pipeline->depthFormat != depthFormat)
        inspect::report("draw.depth-format", std::string(name) + ": the pipeline state's depth format (" + std::to_string(pipeline->depthFormat) +
                                                 ") is not the pass's (" + std::to_string(depthFormat) + ")");
    if (pipeline->stencilFormat != stencilFormat)
        inspect::report("draw.stencil-format", std::string(name) + ": the pipeline state's stencil format (" + std::to_string(pipeline->stencilFormat) +
                                                   ") is not the pass's (" + std::to_string(stencilFormat) + ")");
    const raster::Pipeline& p = pipeline->pipeline;
    for (uint32_t attributes = p.attributeMask; attributes != 0; attributes &= attributes - 1) {
        uint32_t buffer = p.attributes[std::countr_zero(attributes)].buffer;
        if (vertex.table.bufferLengths[buffer] == 0)
            inspect::report("draw.missing-vertex-buffer", std::string(name) + ": no vertex buffer is bound at index " + std::to_string(buffer));
    }
    checkBindings(pipeline->vertexFunction->reflection(), vertex, name);
    if (pipeline->fragmentFunction) checkBindings(pipeline->fragmentFunction->reflection(), fragment, name);
    return true;
}

void RenderEncoderObject::draw(const raster::DrawCall& call, const char* name)
{
    if (!open(name) || !ready(name) || call.count == 0 || call.instanceCount == 0) return;
    state.vertexResources = snapshotOf(vertex, commands->arena);
    state.fragmentResources = snapshotOf(fragment, commands->arena);
    record.draws.push_back({state, call});
}

} // namespace softmetal
