// SPDX-License-Identifier: Apache-2.0
// Metal's calls on render encoders that bind resources, for both stages.
#include "encoding/Commands.h"

#include <cstring>

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

constexpr NS::UInteger MostInlineBytes = 4096;

RenderEncoderObject* opened(const MTL::RenderCommandEncoder* encoder, const char* call)
{
    auto* object = cast<RenderEncoderObject>(encoder);
    return object->open(call) ? object : nullptr;
}

bool indexInRange(NS::UInteger index, NS::UInteger limit, const char* call) { return require(index < limit, Rule::BindIndex, call, index, limit - 1); }

void bindBytes(RenderEncoderObject& encoder, StageBindings& stage, const void* bytes, NS::UInteger length, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxBuffers, call) || !require(bytes && length > 0, Rule::BindNoBytes, call, index)) return;
    require(length <= MostInlineBytes, Rule::BindBytes, call, length);
    // Bytes equal to those already bound need no new copy.
    if (stage.inlineLength[index] == length && std::memcmp(stage.table.buffers[index], bytes, length) == 0) return;
    auto* copy = static_cast<uint8_t*>(encoder.commands->storage->arena.allocate(length));
    std::memcpy(copy, bytes, length);
    stage.table.buffers[index] = copy;
    stage.table.bufferLengths[index] = length;
    stage.inlineLength[index] = static_cast<uint32_t>(length);
    stage.buffers[index] = nullptr;
    encoder.bindingChanged(stage);
}

void bindBuffer(RenderEncoderObject& encoder, StageBindings& stage, const MTL::Buffer* buffer, NS::UInteger offset, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxBuffers, call)) return;
    const uint8_t* data = zeroMemory();
    uint64_t length = 0;
    stage.buffers[index] = cast<BufferObject>(buffer);
    if (auto* object = cast<BufferObject>(buffer)) {
        require(object->device.get() == encoder.device.get(), Rule::EncoderOtherDevice, call, *object);
        require(!object->mayBeDiscarded(), Rule::BindPurged, call, *object, object->purgeableState());
        encoder.commands->keep(object);
        if (require(offset < object->length, Rule::BindOffset, call, offset, *object, object->length)) {
            data = object->memory.data() + offset;
            length = object->length - offset;
        }
    }
    if (stage.table.buffers[index] == data && stage.table.bufferLengths[index] == length) return;
    stage.table.buffers[index] = data;
    stage.table.bufferLengths[index] = length;
    stage.inlineLength[index] = 0;
    encoder.bindingChanged(stage);
}

/// Moves the start of the buffer that is bound already.
void bindOffset(RenderEncoderObject& encoder, StageBindings& stage, NS::UInteger offset, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxBuffers, call) || !require(stage.buffers[index] != nullptr, Rule::BindNoBuffer, call, index)) return;
    bindBuffer(encoder, stage, api(stage.buffers[index]), offset, index, call);
}

void bindTexture(RenderEncoderObject& encoder, StageBindings& stage, const MTL::Texture* texture, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxTextures, call)) return;
    auto* object = cast<TextureObject>(texture);
    const abi::Texture* view = object ? &object->view : nullptr;
    if (stage.table.textures[index] == view) return;
    if (object) {
        encoder.commands->keep(object);
        constexpr NS::UInteger ForFunctions = MTL::TextureUsageShaderRead | MTL::TextureUsageShaderWrite;
        bool usable =
            object->description.usage == MTL::TextureUsageUnknown || (object->description.usage & ForFunctions) != 0;
        require(usable, Rule::BindTextureUsage, call, *object);
        require(object->device.get() == encoder.device.get(), Rule::EncoderOtherDevice, call, *object);
        require(!object->mayBeDiscarded(), Rule::BindPurged, call, *object, object->purgeableState());
    }
    stage.table.textures[index] = view;
    encoder.bindingChanged(stage);
}

void bindSampler(RenderEncoderObject& encoder, StageBindings& stage, const MTL::SamplerState* sampler, NS::UInteger index, const char* call)
{
    if (!indexInRange(index, abi::MaxSamplers, call)) return;
    auto* object = cast<SamplerStateObject>(sampler);
    const abi::Sampler* state = object ? &object->state : nullptr;
    if (stage.table.samplers[index] == state) return;
    encoder.commands->keep(object);
    stage.table.samplers[index] = state;
    encoder.bindingChanged(stage);
}

/// Slots that hold the same as before, which most do, are passed over.
void bindTextures(RenderEncoderObject& encoder, StageBindings& stage, const MTL::Texture* const* textures, NS::UInteger first, NS::UInteger count, const char* call)
{
    for (NS::UInteger i = 0; i < count; ++i) {
        const abi::Texture* view = textures[i] ? &cast<TextureObject>(textures[i])->view : nullptr;
        if (stage.table.textures[first + i] != view) bindTexture(encoder, stage, textures[i], first + i, call);
    }
}

void bindSamplers(RenderEncoderObject& encoder, StageBindings& stage, const MTL::SamplerState* const* samplers, NS::UInteger first, NS::UInteger count, const char* call)
{
    for (NS::UInteger i = 0; i < count; ++i) {
        const abi::Sampler* state = samplers[i] ? &cast<SamplerStateObject>(samplers[i])->state : nullptr;
        if (stage.table.samplers[first + i] != state) bindSampler(encoder, stage, samplers[i], first + i, call);
    }
}

void noteBuffer(const void* encoder, const char* call, const void* buffer, NS::UInteger offset, NS::UInteger index)
{
    note(encoder, call, arg("buffer", buffer), arg("offset", offset), arg("index", index));
}

void noteBytes(const void* encoder, const char* call, const void* bytes, NS::UInteger length, NS::UInteger index)
{
    if (!inspect::logging()) return;
    note(encoder, call, arg("length", length), arg("index", index), arg("bytes", bytes ? std::string(static_cast<const char*>(bytes), length) : std::string()));
}

/// One entry for each object of a range.
template <class Api>
void noteRange(const void* encoder, const char* call, const char* kind, const Api* const objects[], NS::Range range)
{
    if (!inspect::logging()) return;
    std::vector<SoftMetal::LogArgument> arguments{arg("location", range.location), arg("length", range.length)};
    for (NS::UInteger i = 0; objects && i < range.length; ++i) arguments.push_back({kind + std::to_string(range.location + i), 0, objects[i], {}});
    inspect::logCall(encoder, call, std::move(arguments));
}

/// The part of a range that has slots; all of it when it fits.
NS::UInteger slotsOf(const void* list, NS::Range range, NS::UInteger limit, const char* call)
{
    if (!list || range.length == 0) return 0;
    bool fits = range.location < limit && range.length <= limit - range.location;
    require(fits, Rule::BindIndex, call, range.location + range.length - 1, limit - 1);
    return fits ? range.length : range.location < limit ? limit - range.location : 0;
}

} // namespace

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

void MTL::RenderCommandEncoder::setVertexBufferOffset(NS::UInteger offset, NS::UInteger index)
{
    note(this, "setVertexBufferOffset", arg("offset", offset), arg("index", index));
    if (auto* e = opened(this, "setVertexBufferOffset")) bindOffset(*e, e->vertex, offset, index, "setVertexBufferOffset");
}

void MTL::RenderCommandEncoder::setVertexBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range)
{
    noteRange(this, "setVertexBuffers", "buffer", buffers, range);
    auto* e = opened(this, "setVertexBuffers");
    NS::UInteger count = e ? slotsOf(buffers, range, abi::MaxBuffers, "setVertexBuffers") : 0;
    for (NS::UInteger i = 0; i < count; ++i) bindBuffer(*e, e->vertex, buffers[i], offsets ? offsets[i] : 0, range.location + i, "setVertexBuffers");
}

void MTL::RenderCommandEncoder::setVertexTexture(const Texture* texture, NS::UInteger index)
{
    note(this, "setVertexTexture", arg("texture", static_cast<const void*>(texture)), arg("index", index));
    if (auto* e = opened(this, "setVertexTexture")) bindTexture(*e, e->vertex, texture, index, "setVertexTexture");
}

void MTL::RenderCommandEncoder::setVertexTextures(const Texture* const textures[], NS::Range range)
{
    noteRange(this, "setVertexTextures", "texture", textures, range);
    auto* e = opened(this, "setVertexTextures");
    NS::UInteger count = e ? slotsOf(textures, range, abi::MaxTextures, "setVertexTextures") : 0;
    if (e) bindTextures(*e, e->vertex, textures, range.location, count, "setVertexTextures");
}

void MTL::RenderCommandEncoder::setVertexSamplerState(const SamplerState* sampler, NS::UInteger index)
{
    note(this, "setVertexSamplerState", arg("sampler", static_cast<const void*>(sampler)), arg("index", index));
    if (auto* e = opened(this, "setVertexSamplerState")) bindSampler(*e, e->vertex, sampler, index, "setVertexSamplerState");
}

void MTL::RenderCommandEncoder::setVertexSamplerStates(const SamplerState* const samplers[], NS::Range range)
{
    noteRange(this, "setVertexSamplerStates", "sampler", samplers, range);
    auto* e = opened(this, "setVertexSamplerStates");
    NS::UInteger count = e ? slotsOf(samplers, range, abi::MaxSamplers, "setVertexSamplerStates") : 0;
    if (e) bindSamplers(*e, e->vertex, samplers, range.location, count, "setVertexSamplerStates");
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

void MTL::RenderCommandEncoder::setFragmentBufferOffset(NS::UInteger offset, NS::UInteger index)
{
    note(this, "setFragmentBufferOffset", arg("offset", offset), arg("index", index));
    if (auto* e = opened(this, "setFragmentBufferOffset")) bindOffset(*e, e->fragment, offset, index, "setFragmentBufferOffset");
}

void MTL::RenderCommandEncoder::setFragmentBuffers(const Buffer* const buffers[], const NS::UInteger offsets[], NS::Range range)
{
    noteRange(this, "setFragmentBuffers", "buffer", buffers, range);
    auto* e = opened(this, "setFragmentBuffers");
    NS::UInteger count = e ? slotsOf(buffers, range, abi::MaxBuffers, "setFragmentBuffers") : 0;
    for (NS::UInteger i = 0; i < count; ++i) bindBuffer(*e, e->fragment, buffers[i], offsets ? offsets[i] : 0, range.location + i, "setFragmentBuffers");
}

void MTL::RenderCommandEncoder::setFragmentTexture(const Texture* texture, NS::UInteger index)
{
    note(this, "setFragmentTexture", arg("texture", static_cast<const void*>(texture)), arg("index", index));
    if (auto* e = opened(this, "setFragmentTexture")) bindTexture(*e, e->fragment, texture, index, "setFragmentTexture");
}

void MTL::RenderCommandEncoder::setFragmentTextures(const Texture* const textures[], NS::Range range)
{
    noteRange(this, "setFragmentTextures", "texture", textures, range);
    auto* e = opened(this, "setFragmentTextures");
    NS::UInteger count = e ? slotsOf(textures, range, abi::MaxTextures, "setFragmentTextures") : 0;
    if (e) bindTextures(*e, e->fragment, textures, range.location, count, "setFragmentTextures");
}

void MTL::RenderCommandEncoder::setFragmentSamplerState(const SamplerState* sampler, NS::UInteger index)
{
    note(this, "setFragmentSamplerState", arg("sampler", static_cast<const void*>(sampler)), arg("index", index));
    if (auto* e = opened(this, "setFragmentSamplerState")) bindSampler(*e, e->fragment, sampler, index, "setFragmentSamplerState");
}

void MTL::RenderCommandEncoder::setFragmentSamplerStates(const SamplerState* const samplers[], NS::Range range)
{
    noteRange(this, "setFragmentSamplerStates", "sampler", samplers, range);
    auto* e = opened(this, "setFragmentSamplerStates");
    NS::UInteger count = e ? slotsOf(samplers, range, abi::MaxSamplers, "setFragmentSamplerStates") : 0;
    if (e) bindSamplers(*e, e->fragment, samplers, range.location, count, "setFragmentSamplerStates");
}
