// SPDX-License-Identifier: Apache-2.0
// The draw path: raster state, textures and samplers, pipeline, matrices and locals; then the entry points.
// Chapters: vertex arrays, clearing.
#include "ZALGLFunctionsDraw.h"

#include "SamplerDescriptor.h"
#include "StateMatrices.h"
#include "ZALGLContextObjects.h"
#include "ZALMetalContext.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstring>

namespace {

using ZALMetal::FragmentProgramSpecializationKey;
using ZALMetal::SamplerDescriptor;
using ZALMetal::ShaderBindings;

constexpr const char* Source = "Src/ZALGLFunctionsDraw";
constexpr int TextureUnits = 32, SamplerSlots = 16;
constexpr NS::UInteger StateMatrixSlot = 16, LocalsSlot = 17;

using SamplerMap = ZALM::Map<SamplerDescriptor, int>;

// ---- textures and samplers -------------------------------------------------------------------------------------------------

struct MinFilterRow
{
    uint32_t gl;
    uint64_t minFilter, mipFilter;
};

constexpr MinFilterRow MinFilters[] = {
    {GL_NEAREST_MIPMAP_NEAREST, MTL::SamplerMinMagFilterNearest, MTL::SamplerMipFilterNearest},
    {GL_LINEAR_MIPMAP_NEAREST, MTL::SamplerMinMagFilterLinear, MTL::SamplerMipFilterNearest},
    {GL_NEAREST_MIPMAP_LINEAR, MTL::SamplerMinMagFilterNearest, MTL::SamplerMipFilterLinear},
    {GL_LINEAR_MIPMAP_LINEAR, MTL::SamplerMinMagFilterLinear, MTL::SamplerMipFilterLinear},
    {GL_NEAREST, MTL::SamplerMinMagFilterNearest, MTL::SamplerMipFilterNotMipmapped},
    {GL_LINEAR, MTL::SamplerMinMagFilterLinear, MTL::SamplerMipFilterNotMipmapped},
};

void convertMinFilter(ZALGLState* gl, const ZALGLTextureObject& texture, SamplerDescriptor& d)
{
    d.lodMaxClamp = FLT_MAX;
    d.lodMinClamp = static_cast<float>(texture.baseLevel);
    for (const MinFilterRow& row : MinFilters) {
        if (row.gl != texture.minFilter) continue;
        d.minFilter = row.minFilter;
        d.mipFilter = row.mipFilter;
        bool plain = row.gl == GL_NEAREST || row.gl == GL_LINEAR;
        if (plain && texture.baseLevel > 0) { // exactly that level
            d.mipFilter = MTL::SamplerMipFilterNearest;
            d.lodMaxClamp = d.lodMinClamp;
        }
        return;
    }
    SetCurrentError(gl, GL_INVALID_VALUE);
}

uint64_t convertWrap(ZALGLState* gl, GLenum mode)
{
    switch (mode) {
    case GL_CLAMP:
    case GL_CLAMP_TO_EDGE: return MTL::SamplerAddressModeClampToEdge;
    case GL_REPEAT: return MTL::SamplerAddressModeRepeat;
    case GL_CLAMP_TO_BORDER: return MTL::SamplerAddressModeClampToBorderColor;
    case GL_MIRRORED_REPEAT: return MTL::SamplerAddressModeMirrorRepeat;
    default: SetCurrentError(gl, GL_INVALID_VALUE); return MTL::SamplerAddressModeClampToEdge;
    }
}

SamplerDescriptor describeSampler(ZALGLState* gl, const ZALGLTextureObject& texture, MTL::Texture* metal, uint32_t target)
{
    SamplerDescriptor d;
    d.normalizedCoordinates = target != GL_TEXTURE_RECTANGLE_ARB;
    if (texture.magFilter == GL_LINEAR) d.magFilter = MTL::SamplerMinMagFilterLinear;
    else if (texture.magFilter != GL_NEAREST) SetCurrentError(gl, GL_INVALID_VALUE);
    convertMinFilter(gl, texture, d);
    if (texture.type == GL_TEXTURE_RECTANGLE_ARB || (metal && metal->mipmapLevelCount() == 1)) d.mipFilter = MTL::SamplerMipFilterNotMipmapped;
    d.rAddressMode = convertWrap(gl, texture.wrapR);
    d.sAddressMode = convertWrap(gl, texture.wrapS);
    d.tAddressMode = convertWrap(gl, texture.wrapT);
    d.borderColor = texture.borderColorClass;
    float anisotropy = std::round(texture.maxAnisotropy);
    d.maxAnisotropy = anisotropy > 1 ? static_cast<uint64_t>(std::min(anisotropy, 16.0f)) : 1; // NaN gives 1
    return d;
}

MTL::SamplerState* makeSampler(MTL::Device* device, const SamplerDescriptor& d)
{
    MTL::SamplerDescriptor* descriptor = MTL::SamplerDescriptor::alloc()->init();
    descriptor->setNormalizedCoordinates(d.normalizedCoordinates != 0);
    descriptor->setMagFilter(static_cast<MTL::SamplerMinMagFilter>(d.magFilter));
    descriptor->setMinFilter(static_cast<MTL::SamplerMinMagFilter>(d.minFilter));
    descriptor->setMipFilter(static_cast<MTL::SamplerMipFilter>(d.mipFilter));
    descriptor->setRAddressMode(static_cast<MTL::SamplerAddressMode>(d.rAddressMode));
    descriptor->setSAddressMode(static_cast<MTL::SamplerAddressMode>(d.sAddressMode));
    descriptor->setTAddressMode(static_cast<MTL::SamplerAddressMode>(d.tAddressMode));
    descriptor->setBorderColor(static_cast<MTL::SamplerBorderColor>(d.borderColor));
    descriptor->setLodMinClamp(d.lodMinClamp);
    descriptor->setLodMaxClamp(d.lodMaxClamp);
    descriptor->setMaxAnisotropy(d.maxAnisotropy);
    MTL::SamplerState* state = device->newSamplerState(descriptor);
    descriptor->release();
    return state;
}

bool isDepthFormat(MTL::PixelFormat format)
{
    return format == MTL::PixelFormatDepth16Unorm || format == MTL::PixelFormatDepth32Float || format == MTL::PixelFormatDepth24Unorm_Stencil8 ||
           format == MTL::PixelFormatDepth32Float_Stencil8;
}

/// Textures and sampler states of one stage. Samplers are shared by equal description, over both stages.
template <class Key>
int prepareTexturesAndSamplers(ZALGLState* gl, MTL::Device* device, const ShaderBindings& bindings, SamplerMap& slots, int& samplerCount,
                               MTL::Texture** textures, MTL::SamplerState** samplers, Key& key)
{
    for (uint32_t units = bindings.textureUnitMask; units != 0; units &= units - 1) {
        int i = std::countr_zero(units);
        if (bindings.textureTargets[i] == 0) continue;
        uint32_t slot = convertBindTextureTargetToBindingSlotIndex(bindings.textureTargets[i]);
        if (slot > 4) {
            SetCurrentError(gl, GL_INVALID_OPERATION);
            return 1;
        }
        ZALGLTextureObject* texture = gl->contextObjects->textures.Find(gl->textureBindings[i][slot]);
        if (!texture) continue;
        MTL::Texture* metal = texture->EnsureMetalTexture();
        SamplerDescriptor description = describeSampler(gl, *texture, metal, bindings.textureTargets[i]);
        if (auto* known = slots.find(description)) {
            // Kept on purpose: [shared-sampler-slot] a slot first used by the fragment program stays without a sampler in the vertex stage.
            key.samplerSlots[i] = known->value;
        } else {
            if (samplerCount >= SamplerSlots) {
                SetCurrentError(gl, GL_INVALID_OPERATION);
                return 1;
            }
            bool inserted = false;
            key.samplerSlots[i] = samplerCount;
            slots.insert(inserted, description, samplerCount);
            samplers[samplerCount++] = makeSampler(device, description);
        }
        textures[i] = metal;
        key.swizzleModes[i] = metal && isDepthFormat(metal->pixelFormat());
    }
    return 0;
}

void releaseSamplers(MTL::SamplerState** samplers)
{
    for (int i = 0; i < SamplerSlots; ++i)
        if (samplers[i]) samplers[i]->release();
}

template <class Key>
int installFragmentTextures(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, const ShaderBindings& bindings, SamplerMap& slots, int& count, Key& key)
{
    MTL::Texture* textures[TextureUnits] = {};
    MTL::SamplerState* samplers[SamplerSlots] = {};
    int status = prepareTexturesAndSamplers(gl, GetCurrentMetalData()->device, bindings, slots, count, textures, samplers, key);
    if (status == 0) {
        encoder->setFragmentTextures(textures, NS::Range(0, TextureUnits));
        encoder->setFragmentSamplerStates(samplers, NS::Range(0, SamplerSlots));
    }
    releaseSamplers(samplers);
    return status;
}

template <class Key>
int installVertexTextures(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, const ShaderBindings& bindings, SamplerMap& slots, int& count, Key& key)
{
    MTL::Texture* textures[TextureUnits] = {};
    MTL::SamplerState* samplers[SamplerSlots] = {};
    int status = prepareTexturesAndSamplers(gl, GetCurrentMetalData()->device, bindings, slots, count, textures, samplers, key);
    if (status == 0) {
        encoder->setVertexTextures(textures, NS::Range(0, TextureUnits));
        encoder->setVertexSamplerStates(samplers, NS::Range(0, SamplerSlots));
    }
    releaseSamplers(samplers);
    return status;
}

// ---- raster state ------------------------------------------------------------------------------------------------------------

/// The first release of metal-cpp has the call under the name of its selector.
template <class Encoder>
void setBlendColor(Encoder* encoder, const float* color)
{
    if constexpr (requires { encoder->setBlendColorRed(0.f, 0.f, 0.f, 0.f); }) encoder->setBlendColorRed(color[0], color[1], color[2], color[3]);
    else encoder->setBlendColor(color[0], color[1], color[2], color[3]);
}

void installRasterState(ZALGLState* gl, MTL::RenderCommandEncoder* encoder)
{
    encoder->setStencilReferenceValue(static_cast<uint32_t>(gl->stencilRef));
    MTL::CullMode cull = gl->cullFaceMode == GL_FRONT ? MTL::CullModeFront : MTL::CullModeBack;
    // Kept on purpose: [cull-mode-back] every mode but GL_FRONT culls back faces, GL_FRONT_AND_BACK too.
    encoder->setCullMode(gl->cullFaceEnabled ? cull : MTL::CullModeNone);
    // Kept on purpose: [polygon-offset-sticks] turned off, it stays in force until the render pass ends: nothing is sent.
    if (gl->polygonOffsetFillEnabled) encoder->setDepthBias(gl->polygonOffsetUnits, gl->polygonOffsetFactor, 0);
    // Kept on purpose: [polygon-point-mode] points have no counterpart: the fill mode stays as it was.
    if (gl->polygonMode == GL_FILL) encoder->setTriangleFillMode(MTL::TriangleFillModeFill);
    else if (gl->polygonMode == GL_LINE) encoder->setTriangleFillMode(MTL::TriangleFillModeLines);
    if (gl->pipelineDescription.blendingEnabled) setBlendColor(encoder, gl->blendColor);
}

// ---- pipeline ----------------------------------------------------------------------------------------------------------------

int installPipeline(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, ZALMetal::RenderPipelineCache::Key& key)
{
    ZALMetalContext* context = GetCurrentMetalContext();
    MTL::Texture *depth = getFramebufferDepthTexture(gl, context), *stencil = getFramebufferStencilTexture(gl, context);
    for (uint32_t i = 0; i < 8 && gl->pipelineDescription.drawBufferMask >> i != 0; ++i) {
        if (!(gl->pipelineDescription.drawBufferMask >> i & 1)) continue;
        if (MTL::Texture* color = getFramebufferColorTexture(gl, context, static_cast<int>(i))) key.colorPixelFormats[i] = color->pixelFormat();
    }
    if (depth && gl->depthTestEnabled) key.depthPixelFormat = depth->pixelFormat();
    if (stencil && gl->stencilTestEnabled) key.stencilPixelFormat = stencil->pixelFormat();
    key.glPipelineDesc = gl->pipelineDescription;
    ZALGLFramebufferObject* framebuffer = gl->contextObjects->framebuffers.Find(gl->pipelineDescription.boundFramebuffer);
    if (!framebuffer) {
        SetCurrentError(gl, GL_INVALID_OPERATION);
        return 1;
    }
    MTL::RenderPipelineState* state = framebuffer->GetRenderPipelineCache().getOrCreate(context->metalData->device, gl->contextObjects->programs, key);
    if (!state) {
        // Kept on purpose: [silent-pipeline] a draw whose pipeline cannot be built is left out without an error.
        if (gl->strictValidation) SetCurrentError(gl, GL_INVALID_OPERATION);
        return 1;
    }
    encoder->setRenderPipelineState(state);
    return 0;
}

// ---- constants ---------------------------------------------------------------------------------------------------------------

void installConstants(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, const ZALGLProgramObject& vertex, const ZALGLProgramObject& fragment)
{
    const StateMatrixData& matrices = StateMatricesOf(*gl);
    encoder->setVertexBytes(&matrices, sizeof matrices, StateMatrixSlot);
    encoder->setFragmentBytes(&matrices, sizeof matrices, StateMatrixSlot);
    encoder->setVertexBytes(vertex.locals, sizeof vertex.locals, LocalsSlot);
    encoder->setFragmentBytes(fragment.locals, sizeof fragment.locals, LocalsSlot);
}

} // namespace

int internal_InstallMetalState(MTL::RenderCommandEncoder* encoder, MTL::VertexDescriptor* vertexDescriptor,
                               ZALMetal::VertexProgramSpecializationKey& vertexKey)
{
    ZALGLState* gl = GetCurrentGLState();
    ZALGLProgramObject* fragment = getBoundProgram(gl, GL_FRAGMENT_PROGRAM_ARB);
    ZALGLProgramObject* vertex = getBoundProgram(gl, GL_VERTEX_PROGRAM_ARB);
    if (!fragment || !vertex || !fragment->IsValid() || !vertex->IsValid()) {
        SetCurrentError(gl, GL_INVALID_OPERATION);
        return 1;
    }
    installRasterState(gl, encoder);

    SamplerMap slots;
    int samplerCount = 0; // goes on from the fragment to the vertex stage
    ZALMetal::RenderPipelineCache::Key key;
    if (int status = installFragmentTextures(gl, encoder, fragment->bindings, slots, samplerCount, key.fragmentProgramKey)) return status;
    if (int status = installVertexTextures(gl, encoder, vertex->bindings, slots, samplerCount, vertexKey)) return status;
    key.vertexDescriptor = vertexDescriptor;
    key.vertexProgramKey = vertexKey;
    if (int status = installPipeline(gl, encoder, key)) return status;
    installConstants(gl, encoder, *vertex, *fragment);
    return 0;
}

// ---- Vertex arrays ---------------------------------------------------------------------------------------------------------

namespace {

/// Binds the buffer of every enabled attribute at the attribute's own index.
bool bindVertexBuffers(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, uint32_t& usedMask)
{
    for (uint32_t i = 0; i < 16 && gl->enabledAttribArrays >> i != 0; ++i) {
        if (!(gl->enabledAttribArrays >> i & 1)) continue;
        ZALGLBufferObject* buffer = gl->contextObjects->buffers.Find(gl->vertexAttribs[i].buffer);
        if (!buffer) {
            SetCurrentError(gl, GL_INVALID_OPERATION);
            return false;
        }
        encoder->setVertexBuffer(buffer->GetMTLBuffer(), static_cast<NS::UInteger>(gl->vertexAttribs[i].offset), i);
        usedMask |= 1u << i;
    }
    return true;
}

GLVertexDescription vertexDescriptionOf(const ZALGLState& gl)
{
    GLVertexDescription description;
    description.mask = gl.enabledAttribArrays;
    std::copy(std::begin(gl.vertexAttribs), std::end(gl.vertexAttribs), description.attributes);
    return description;
}

void drawIndexed(ZALGLState* gl, MTL::RenderCommandEncoder* encoder, uint64_t primitive, GLsizei count, MTL::IndexType indexType, NS::UInteger offset)
{
    uint32_t glBufferId = gl->elementArrayBufferBinding;
    // Kept on purpose: [index-buffer-assertion] client memory is never read, and a draw without an index buffer stops the process.
    if (glBufferId == 0) ZALMetal::AssertionFailed("glDrawElements", Source, "glBufferId != 0");
    ZALGLBufferObject* bufferObject = gl->contextObjects->buffers.Find(glBufferId);
    if (!bufferObject) ZALMetal::AssertionFailed("glDrawElements", Source, "bufferObject");
    if (count <= 0) return;
    ++ZALMetal::g_counters.draws;
    encoder->drawIndexedPrimitives(static_cast<MTL::PrimitiveType>(primitive), static_cast<NS::UInteger>(count), indexType, bufferObject->GetMTLBuffer(), offset, 1);
}

} // namespace

void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices)
{
    constexpr GLenum ExemptMode = 10;
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;
    // Kept on purpose: [refused-draw-opens-pass] the pass is opened before anything is checked.
    MTL::RenderCommandEncoder* encoder = GetCurrentMetalState()->getOrCreateCommandEncoder(gl);

    // Kept on purpose: [cull-all-first] such a call is not checked at all, so that even a bad mode or index type passes.
    bool everythingCulled = gl->cullFaceEnabled && gl->cullFaceMode == GL_FRONT_AND_BACK;
    if (everythingCulled && mode >= GL_TRIANGLES && mode != ExemptMode) return;
    // Kept on purpose: [byte-indices] GL_UNSIGNED_BYTE is refused, and with GL_INVALID_VALUE, as unknown modes are.
    bool shortIndices = type == GL_UNSIGNED_SHORT;
    if (!shortIndices && type != GL_UNSIGNED_INT) return SetCurrentError(gl, GL_INVALID_VALUE);
    uint64_t primitive = 0;
    if (ZALMetal::convertPrimitiveType(primitive, mode)) return SetCurrentError(gl, GL_INVALID_VALUE);

    uint32_t mask = 0;
    if (!bindVertexBuffers(gl, encoder, mask)) return;
    ZALGLProgramObject* program = getBoundProgram(gl, GL_VERTEX_PROGRAM_ARB);
    if (!program) return SetCurrentError(gl, GL_INVALID_OPERATION);
    MTL::VertexDescriptor* descriptor = program->vertexDescriptors.getOrCreate(mask, vertexDescriptionOf(*gl));
    if (!descriptor) return;
    ZALMetal::VertexProgramSpecializationKey key = {};
    key.attributeMask = mask;
    if (internal_InstallMetalState(encoder, descriptor, key) != 0) return;

    auto offset = reinterpret_cast<NS::UInteger>(indices);
    if (mode == GL_POINTS && program->expandsPoints) {
        constexpr NS::UInteger HexagonCorners = 6;
        if (count <= 0) return;
        ++ZALMetal::g_counters.draws;
        encoder->drawPrimitives(MTL::PrimitiveTypeTriangleStrip, NS::UInteger(0), HexagonCorners, static_cast<NS::UInteger>(count), offset / (shortIndices ? 2 : 4));
        return;
    }
    drawIndexed(gl, encoder, primitive, count, shortIndices ? MTL::IndexTypeUInt16 : MTL::IndexTypeUInt32, offset);
}

// ---- Clearing ----------------------------------------------------------------------------------------------------------------

void glClear(GLbitfield mask)
{
    ZALGLState* gl = GetCurrentGLState();
    if (!gl) return;

    auto* pool = NS::AutoreleasePool::alloc()->init();
    MTL::RenderPassDescriptor* descriptor = ZALMetalContextNewRenderDescriptor(gl, GetCurrentMetalContext());
    // Kept on purpose: [clear-ignores-masks] whole attachments are cleared, whatever the write masks say.
    for (uint32_t i = 0; (mask & GL_COLOR_BUFFER_BIT) && i < 8 && gl->pipelineDescription.drawBufferMask >> i != 0; ++i) {
        if (!(gl->pipelineDescription.drawBufferMask >> i & 1)) continue;
        MTL::RenderPassColorAttachmentDescriptor* color = descriptor->colorAttachments()->object(i);
        color->setLoadAction(MTL::LoadActionClear);
        color->setClearColor(MTL::ClearColor(gl->clearColor[0], gl->clearColor[1], gl->clearColor[2], gl->clearColor[3]));
    }
    // Kept on purpose: [clear-needs-test] the pass has these attachments only while their tests are on; else nothing is cleared.
    if (mask & GL_DEPTH_BUFFER_BIT) {
        descriptor->depthAttachment()->setLoadAction(MTL::LoadActionClear);
        descriptor->depthAttachment()->setClearDepth(gl->clearDepth);
    }
    if (mask & GL_STENCIL_BUFFER_BIT) {
        descriptor->stencilAttachment()->setLoadAction(MTL::LoadActionClear);
        descriptor->stencilAttachment()->setClearStencil(gl->clearStencil);
    }
    GetCurrentMetalState()->renderPassBegin(descriptor, gl);
    descriptor->release();
    pool->release();
}
