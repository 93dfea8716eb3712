// SPDX-License-Identifier: Apache-2.0
// One row for each rule: its id, and the sentence whose braces are filled in order.
#pragma once

#include "inspect/Rules.h"

#include <array>

namespace softmetal::inspect {

struct RuleRow
{
    Rule rule;
    const char* id;
    const char* sentence;
};

inline constexpr std::array RuleTable = {
    RuleRow{Rule::CommandsCommitTwice, "commands.commit-twice", "commit: command buffer {} has been committed before"},
    RuleRow{Rule::CommandsOpenEncoder, "commands.open-encoder", "commit: an encoder of command buffer {} has not ended; what it holds is dropped"},
    RuleRow{Rule::CommandsCommitted, "commands.committed", "{}: command buffer {} has been committed and takes nothing more"},
    RuleRow{Rule::CommandsTwoEncoders, "commands.two-encoders", "{}: another encoder of command buffer {} has not ended; what the new one is given is dropped"},
    RuleRow{Rule::CommandsHandler, "commands.handler", "{}: command buffer {} has been committed; handlers must be added before"},
    RuleRow{Rule::CommandsWait, "commands.wait", "{}: command buffer {} has not been committed, so that the wait would not end"},
    RuleRow{Rule::CommandsDebugGroup, "commands.debug-group", "popDebugGroup: command buffer {} has no open debug group"},
    RuleRow{Rule::CommandsNilDrawable, "commands.nil-drawable", "presentDrawable: the drawable given to command buffer {} must not be nil"},
    RuleRow{Rule::CommandsNilPass, "commands.nil-pass", "renderCommandEncoder: the descriptor given to command buffer {} must not be nil"},
    RuleRow{Rule::QueueExhausted, "queue.exhausted", "commandBuffer: queue {} has {} command buffers that are not committed, and its limit is {}"},
    RuleRow{Rule::EncoderEnded, "encoder.ended", "{}: encoder {} has ended"},
    RuleRow{Rule::EncoderReleasedOpen, "encoder.released-open", "encoder {} is released before endEncoding; what it holds is dropped"},
    RuleRow{Rule::EncoderDebugGroup, "encoder.debug-group", "popDebugGroup: encoder {} has no open debug group"},
    RuleRow{Rule::EncoderNilFence, "encoder.nil-fence", "{}: the fence given to encoder {} must not be nil"},
    RuleRow{Rule::EncoderNilPipeline, "encoder.nil-pipeline", "setRenderPipelineState: the state given to encoder {} must not be nil"},
    RuleRow{Rule::EncoderNoViewport, "encoder.no-viewport", "setViewports: encoder {} must be given exactly one viewport ({})"},
    RuleRow{Rule::EncoderViewport, "encoder.viewport", "setViewport: the viewport given to encoder {} must be of finite numbers"},
    RuleRow{Rule::EncoderNoScissor, "encoder.no-scissor", "setScissorRects: encoder {} must be given exactly one rectangle ({})"},
    RuleRow{Rule::EncoderScissor, "encoder.scissor", "setScissorRect: the rectangle ({}, {}, {} by {}) must lie within the render pass ({} by {})"},
    RuleRow{Rule::EncoderVisibilityBuffer, "encoder.visibility-buffer", "setVisibilityResultMode: the pass of encoder {} has no visibility result buffer"},
    RuleRow{Rule::EncoderVisibilityOffset, "encoder.visibility-offset", "setVisibilityResultMode: the offset ({}) must be a multiple of 8"},
    RuleRow{Rule::EncoderVisibilityRange, "encoder.visibility-range", "setVisibilityResultMode: the offset ({}) lies beyond the visibility result buffer ({} bytes)"},
    RuleRow{Rule::EncoderOtherDevice, "encoder.other-device", "{}: object {} belongs to another device than the encoder"},
    RuleRow{Rule::PassUsage, "pass.usage", "renderCommandEncoder: texture {} of the {} attachment has no render target usage; nothing is drawn to it"},
    RuleRow{Rule::PassFormat, "pass.format", "renderCommandEncoder: the pixel format ({}) of texture {} does not fit the {} attachment"},
    RuleRow{Rule::PassLevel, "pass.level", "renderCommandEncoder: texture {} of the {} attachment has no level {} or no slice {}"},
    RuleRow{Rule::PassDepthPlane, "pass.depth-plane", "renderCommandEncoder: texture {} of the {} attachment has no depth plane {}"},
    RuleRow{Rule::PassResolve, "pass.resolve", "renderCommandEncoder: the {} attachment has a resolve texture, which goes with textures of several samples only"},
    RuleRow{Rule::PassResolveStore, "pass.resolve-store", "renderCommandEncoder: the store action ({}) of the {} attachment resolves samples, and its texture has one"},
    RuleRow{Rule::PassLayers, "pass.layers", "renderCommandEncoder: this device draws to one layer at a time; the render target array length ({}) must be 0 or 1"},
    RuleRow{Rule::PassSamples, "pass.samples", "renderCommandEncoder: this device has one sample for each pixel; the default raster sample count ({}) must be 0 or 1"},
    RuleRow{Rule::PassDepthStencil, "pass.depth-stencil", "renderCommandEncoder: the depth texture {} and the stencil texture {} must be the same"},
    RuleRow{Rule::DrawNoPipeline, "draw.no-pipeline", "{}: encoder {} has no render pipeline state"},
    RuleRow{Rule::DrawColorFormat, "draw.color-format", "{}: pipeline state {} has another pixel format ({}) than colour attachment {} ({})"},
    RuleRow{Rule::DrawDepthFormat, "draw.depth-format", "{}: pipeline state {} has another depth format ({}) than the pass ({})"},
    RuleRow{Rule::DrawStencilFormat, "draw.stencil-format", "{}: pipeline state {} has another stencil format ({}) than the pass ({})"},
    RuleRow{Rule::DrawDepthState, "draw.depth-state", "{}: encoder {} tests or writes depth, but its pass has no depth texture"},
    RuleRow{Rule::DrawStencilState, "draw.stencil-state", "{}: encoder {} tests or writes stencil values, but its pass has no stencil texture"},
    RuleRow{Rule::DrawPrimitive, "draw.primitive", "{}: the primitive type ({}) is not one of those known"},
    RuleRow{Rule::DrawTopology, "draw.topology", "{}: pipeline state {} is for primitives of class {} and not for those of type {}"},
    RuleRow{Rule::DrawCount, "draw.count", "{}: a count or start ({}) is beyond 4294967295"},
    RuleRow{Rule::DrawMissingVertexBuffer, "draw.missing-vertex-buffer", "{}: vertex attribute {} of pipeline state {} reads from buffer index {}, where no buffer is bound"},
    RuleRow{Rule::DrawVertexRange, "draw.vertex-range", "{}: vertex attribute {} of pipeline state {} is read up to byte {} of buffer index {}, which has {}"},
    RuleRow{Rule::DrawMissingBuffer, "draw.missing-buffer", "{}: function {} reads buffer '{}' at index {}, where no buffer is bound"},
    RuleRow{Rule::DrawShortBuffer, "draw.short-buffer", "{}: function {} reads buffer '{}' at index {}, which has {} bytes of the {} needed"},
    RuleRow{Rule::DrawMissingTexture, "draw.missing-texture", "{}: function {} reads texture '{}' at index {}, where no texture is bound"},
    RuleRow{Rule::DrawTextureType, "draw.texture-type", "{}: function {} declares texture '{}' at index {} with type {}, and the one bound has type {}"},
    RuleRow{Rule::DrawTextureUsage, "draw.texture-usage", "{}: function {} {} texture '{}' at index {}, and the usage of the one bound ({}) does not allow it"},
    RuleRow{Rule::DrawMissingSampler, "draw.missing-sampler", "{}: function {} uses sampler '{}' at index {}, where no sampler is bound"},
    RuleRow{Rule::DrawNoIndices, "draw.no-indices", "drawIndexedPrimitives: the index buffer given to encoder {} must not be nil"},
    RuleRow{Rule::DrawIndexRange, "draw.index-range", "drawIndexedPrimitives: {} indices from offset {} end beyond index buffer {} ({} bytes)"},
    RuleRow{Rule::DrawIndexAlignment, "draw.index-alignment", "drawIndexedPrimitives: the offset ({}) must be a multiple of the index size ({})"},
    RuleRow{Rule::DrawVertexFetch, "draw.vertex-fetch", "command buffer {}: vertex attribute {} was fetched beyond the end of its buffer; it reads zeros"},
    RuleRow{Rule::ShaderBufferRange, "shader.buffer-range", "command buffer {}: a {} function went beyond the buffer at index {}; it reads zeros and writes nothing"},
    RuleRow{Rule::ShaderTableRange, "shader.table-range", "command buffer {}: a {} function went beyond a table of its own; it reads zeros"},
    RuleRow{Rule::ShaderTexelRange, "shader.texel-range", "command buffer {}: a function read a texel outside its texture; it reads zeros"},
    RuleRow{Rule::BindIndex, "bind.index", "{}: the index ({}) is beyond the last ({})"},
    RuleRow{Rule::BindBytes, "bind.bytes", "{}: the length ({}) is over 4096 bytes"},
    RuleRow{Rule::BindNoBytes, "bind.no-bytes", "{}: there must be at least one byte for index {}"},
    RuleRow{Rule::BindOffset, "bind.offset", "{}: the offset ({}) lies beyond the end of buffer {} ({} bytes)"},
    RuleRow{Rule::BindTextureUsage, "bind.texture-usage", "{}: texture {} has neither shader read nor shader write usage"},
    RuleRow{Rule::BindPurged, "bind.purged", "{}: the contents of {} may have been discarded (purgeable state {})"},
    RuleRow{Rule::BindNoBuffer, "bind.no-buffer", "{}: no buffer is bound at index {} whose offset could be set"},
    RuleRow{Rule::BufferLength, "buffer.length", "newBuffer: the length ({}) must be 1 byte to {}"},
    RuleRow{Rule::BufferNilBytes, "buffer.nil-bytes", "newBuffer: the pointer to {} bytes must not be null"},
    RuleRow{Rule::BufferPrivateContents, "buffer.private-contents", "contents: buffer {} is in private storage, which the processor cannot reach"},
    RuleRow{Rule::BufferModifiedRange, "buffer.modified-range", "didModifyRange: {} bytes from {} end beyond buffer {} ({} bytes)"},
    RuleRow{Rule::BufferTexture, "buffer.texture", "newTexture: this device makes no textures from buffer {}"},
    RuleRow{Rule::DeviceNilDescriptor, "device.nil-descriptor", "{}: the descriptor must not be nil"},
    RuleRow{Rule::TextureFormat, "texture.format", "newTexture: the pixel format ({}) is not one that this device has"},
    RuleRow{Rule::TextureSize, "texture.size", "newTexture: the size ({} by {} by {}) must be 1 to {} texels along each axis"},
    RuleRow{Rule::TextureLevels, "texture.levels", "newTexture: the number of mip levels ({}) must be 1 to {}"},
    RuleRow{Rule::TextureArray, "texture.array", "newTexture: the array length ({}) must be 1 to {}"},
    RuleRow{Rule::TextureCube, "texture.cube", "newTexture: a cube texture must be square ({} by {})"},
    RuleRow{Rule::TextureDepth, "texture.depth", "newTexture: only a 3D texture has a depth ({}) other than 1"},
    RuleRow{Rule::TextureOneDimensional, "texture.one-dimensional", "newTexture: a 1D texture has a height ({}) of 1"},
    RuleRow{Rule::TextureSamples, "texture.samples", "newTexture: this device has no textures of several samples (type {}, {} samples)"},
    RuleRow{Rule::TextureStorage, "texture.storage", "newTexture: this device has no storage mode {}"},
    RuleRow{Rule::TextureMemory, "texture.memory", "newTexture: there is no memory for {} bytes"},
    RuleRow{Rule::TexturePrivateAccess, "texture.private-access", "{}: texture {} is in private storage, which the processor cannot reach"},
    RuleRow{Rule::TextureRegion, "texture.region", "{}: the region ({} by {} by {} at {}, {}, {}) lies outside level {}, slice {} of texture {}"},
    RuleRow{Rule::TextureRowBytes, "texture.row-bytes", "{}: the bytes per row ({}) are fewer than a row of texture {} has ({})"},
    RuleRow{Rule::TextureImageBytes, "texture.image-bytes", "{}: the bytes per image ({}) are fewer than an image of texture {} has ({})"},
    RuleRow{Rule::TextureNilBytes, "texture.nil-bytes", "{}: the memory for texture {} must not be null"},
    RuleRow{Rule::TextureViewFormat, "texture.view-format", "newTextureView: a texel of the view's pixel format ({}) has another size than one of texture {}"},
    RuleRow{Rule::TextureViewRange, "texture.view-range", "newTextureView: texture {} does not have {} levels from level {} or {} slices from slice {}"},
    RuleRow{Rule::TextureViewType, "texture.view-type", "newTextureView: texture {} of type {} has no view of type {} with {} slices"},
    RuleRow{Rule::TextureViewUsage, "texture.view-usage", "newTextureView: texture {} needs pixel format view usage to be seen with another pixel format ({})"},
    RuleRow{Rule::SamplerPixelMip, "sampler.pixel-mip", "newSamplerState: sampler {} with pixel coordinates must not use mip levels (mip filter {})"},
    RuleRow{Rule::SamplerPixelAddress, "sampler.pixel-address", "newSamplerState: sampler {} with pixel coordinates must clamp to edge or to zero (address modes {}, {}, {})"},
    RuleRow{Rule::SamplerPixelFilter, "sampler.pixel-filter", "newSamplerState: sampler {} with pixel coordinates must have one filter (smaller {}, larger {})"},
    RuleRow{Rule::SamplerAnisotropy, "sampler.anisotropy", "newSamplerState: the anisotropy ({}) of sampler {} must be 1 to 16"},
    RuleRow{Rule::SamplerLod, "sampler.lod", "newSamplerState: the level range ({} to {}) of sampler {} is empty"},
    RuleRow{Rule::BlitNil, "blit.nil", "{}: the resources given to encoder {} must not be nil"},
    RuleRow{Rule::BlitRegion, "blit.region", "{}: the region ({} by {} by {} at {}, {}, {}) lies outside level {}, slice {} of texture {}"},
    RuleRow{Rule::BlitFormats, "blit.formats", "copyFromTexture: texels of {} (pixel format {}) and of {} (pixel format {}) are not of one kind and size"},
    RuleRow{Rule::BlitAspect, "blit.aspect", "{}: the options ({}) do not fit the pixel format ({}) of texture {}"},
    RuleRow{Rule::BlitBufferRange, "blit.buffer-range", "{}: {} bytes from offset {} end beyond buffer {} ({} bytes)"},
    RuleRow{Rule::BlitRowBytes, "blit.row-bytes", "{}: the bytes per row ({}) are fewer than a row of the region has ({})"},
    RuleRow{Rule::BlitImageBytes, "blit.image-bytes", "{}: the bytes per image ({}) are fewer than an image of the region has ({})"},
    RuleRow{Rule::BlitAlignment, "blit.alignment", "copyFromBuffer: the offsets ({}, {}) and the size ({}) must be multiples of 4"},
    RuleRow{Rule::BlitOverlap, "blit.overlap", "{}: source and destination overlap in {}"},
    RuleRow{Rule::BlitFramebufferOnly, "blit.framebuffer-only", "{}: texture {} of a layer is for drawing only"},
    RuleRow{Rule::BlitMipmaps, "blit.mipmaps", "generateMipmaps: texture {} needs a pixel format ({}) that can be drawn to and filtered"},
    RuleRow{Rule::LayerNoDevice, "layer.no-device", "nextDrawable: the layer has no device"},
    RuleRow{Rule::LayerSize, "layer.size", "nextDrawable: the layer's drawable size ({} by {}) is empty"},
};
static_assert(RuleTable.size() == static_cast<size_t>(Rule::Count));
static_assert([] {
    for (size_t i = 0; i < RuleTable.size(); ++i)
        if (static_cast<size_t>(RuleTable[i].rule) != i) return false;
    return true;
}());

} // namespace softmetal::inspect
