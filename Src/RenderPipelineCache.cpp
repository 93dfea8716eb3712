// SPDX-License-Identifier: Apache-2.0
#include "RenderPipelineCache.h"

#include "BlendTable.h"
#include "ZALMetalLog.h"
#include "ZALMetalState.h"

#include <chrono>
#include <cstring>

namespace {

template <class T>
int order(T a, T b)
{
    return a == b ? 0 : a < b ? -1 : 1;
}

int compare(const GLRenderPipelineDescription& a, const GLRenderPipelineDescription& b)
{
    if (int o = order(a.boundFramebuffer, b.boundFramebuffer)) return o;
    if (int o = order(a.drawBufferMask, b.drawBufferMask)) return o;
    if (int o = order(a.boundProgramVertex, b.boundProgramVertex)) return o;
    if (int o = order(a.boundProgramFragment, b.boundProgramFragment)) return o;
    if (int o = order(a.blendingEnabled, b.blendingEnabled)) return o;
    // Kept on purpose: [color-mask-key] the colour write mask does not count: the state built first serves for all masks.
    if (!a.blendingEnabled) return 0;
    for (int i = 0; i < 8; ++i) {
        if (int o = order(a.blend[i].equation, b.blend[i].equation)) return o;
        if (int o = order(a.blend[i].srcFactor, b.blend[i].srcFactor)) return o;
        if (int o = order(a.blend[i].dstFactor, b.blend[i].dstFactor)) return o;
    }
    return 0;
}

} // namespace

bool operator<(const GLRenderPipelineDescription& a, const GLRenderPipelineDescription& b) { return compare(a, b) < 0; }

namespace ZALMetal {

bool RenderPipelineCache::Key::operator<(const Key& other) const
{
    for (int i = 0; i < 8; ++i)
        if (int o = order(colorPixelFormats[i], other.colorPixelFormats[i])) return o < 0;
    if (int o = order(depthPixelFormat, other.depthPixelFormat)) return o < 0;
    if (int o = order(stencilPixelFormat, other.stencilPixelFormat)) return o < 0;
    if (int o = order(reinterpret_cast<uint64_t>(vertexDescriptor), reinterpret_cast<uint64_t>(other.vertexDescriptor))) return o < 0;
    if (int o = compare(glPipelineDesc, other.glPipelineDesc)) return o < 0;
    if (vertexProgramKey < other.vertexProgramKey) return true;
    if (other.vertexProgramKey < vertexProgramKey) return false;
    return fragmentProgramKey < other.fragmentProgramKey;
}

namespace {

void countBuild(const MTL::RenderPipelineState* state, std::chrono::steady_clock::duration taken)
{
    const double milliseconds = std::chrono::duration<double, std::milli>(taken).count();
    ZALMetal::g_counters.pipelineMilliseconds += milliseconds;
    if (!state) return;
    ++ZALMetal::g_counters.pipelines;
    ZALMetal::Log(ZALMetalLogLevelDebug, "ZAL Metal, a pipeline state was built in %.1f ms", milliseconds);
}

} // namespace

RenderPipelineCache::~RenderPipelineCache()
{
    for (auto* cell = _map.begin(); cell; cell = _map.next())
        if (cell->value.state) cell->value.state->release();
}

MTL::RenderPipelineState* RenderPipelineCache::getOrCreate(MTL::Device* device, ZALGLObjectStore<ZALGLProgramObject>& programs, const Key& key)
{
    if (auto* cell = _map.find(key)) return cell->value.state;
    MTL::RenderPipelineState* state = nullptr;
    const auto begin = std::chrono::steady_clock::now();
    buildMtlPipelineState(state, device, programs, key); // a failure is remembered as null
    countBuild(state, std::chrono::steady_clock::now() - begin);
    bool inserted = false;
    if (_map.insert(inserted, key, {state}) == ZALM::Success && inserted) return state;
    if (state) state->release();
    return nullptr;
}

void RenderPipelineCache::removeCachedValuesForProgram(uint32_t program)
{
    for (auto* cell = _map.begin(); cell; cell = _map.cursor) {
        const GLRenderPipelineDescription& description = cell->key.glPipelineDesc;
        if (description.boundProgramFragment != program && description.boundProgramVertex != program) {
            _map.next();
            continue;
        }
        if (cell->value.state) cell->value.state->release();
        _map.erase_current();
    }
}

namespace {

template <size_t N>
int convert(const std::array<BlendRow, N>& table, uint64_t& out, uint32_t value)
{
    for (const BlendRow& row : table) {
        if (row.gl != value) continue;
        out = row.metal;
        return 0;
    }
    return 6;
}

void configure(MTL::RenderPipelineColorAttachmentDescriptor* attachment, const RenderPipelineCache::Key& key, uint32_t i)
{
    const GLBlendDescription& blend = key.glPipelineDesc.blend[i];
    // Kept on purpose: [blend-fallback] enumerants that are not known blend with these, and no error says so.
    uint64_t operation = MTL::BlendOperationAdd, source = MTL::BlendFactorOne, destination = MTL::BlendFactorZero;
    convertBlendOperation(operation, blend.equation);
    convertBlendFactor(source, blend.srcFactor);
    convertBlendFactor(destination, blend.dstFactor);
    attachment->setPixelFormat(static_cast<MTL::PixelFormat>(key.colorPixelFormats[i]));
    attachment->setBlendingEnabled(key.glPipelineDesc.blendingEnabled);
    attachment->setRgbBlendOperation(static_cast<MTL::BlendOperation>(operation));
    attachment->setAlphaBlendOperation(static_cast<MTL::BlendOperation>(operation));
    attachment->setSourceRGBBlendFactor(static_cast<MTL::BlendFactor>(source));
    attachment->setSourceAlphaBlendFactor(static_cast<MTL::BlendFactor>(source));
    attachment->setDestinationRGBBlendFactor(static_cast<MTL::BlendFactor>(destination));
    attachment->setDestinationAlphaBlendFactor(static_cast<MTL::BlendFactor>(destination));
    attachment->setWriteMask(static_cast<MTL::ColorWriteMask>(key.glPipelineDesc.colorWriteMask));
}

} // namespace

int convertBlendFactor(uint64_t& out, uint32_t factor) { return convert(BlendFactorTable, out, factor); }
int convertBlendOperation(uint64_t& out, uint32_t equation) { return convert(BlendOperationTable, out, equation); }

int buildMtlPipelineState(MTL::RenderPipelineState*& out, MTL::Device* device, ZALGLObjectStore<ZALGLProgramObject>& programs,
                          const RenderPipelineCache::Key& iKey)
{
    constexpr const char *Function = "buildMtlPipelineState", *Source = "Src/RenderPipelineCache";
    out = nullptr;
    if (iKey.glPipelineDesc.boundProgramVertex == 0) AssertionFailed(Function, Source, "iKey.glPipelineDesc.boundProgramVertex != 0");
    if (iKey.glPipelineDesc.boundProgramFragment == 0) AssertionFailed(Function, Source, "iKey.glPipelineDesc.boundProgramFragment != 0");
    ZALGLProgramObject* vertex = programs.Find(iKey.glPipelineDesc.boundProgramVertex);
    ZALGLProgramObject* fragment = programs.Find(iKey.glPipelineDesc.boundProgramFragment);

    auto* pool = NS::AutoreleasePool::alloc()->init();
    MTL::RenderPipelineDescriptor* descriptor = MTL::RenderPipelineDescriptor::alloc()->init();
    descriptor->setVertexDescriptor(iKey.vertexDescriptor);
    for (uint32_t i = 0; i < 8 && iKey.glPipelineDesc.drawBufferMask >> i != 0; ++i)
        if (iKey.glPipelineDesc.drawBufferMask >> i & 1) configure(descriptor->colorAttachments()->object(i), iKey, i);
    descriptor->setDepthAttachmentPixelFormat(static_cast<MTL::PixelFormat>(iKey.depthPixelFormat));
    descriptor->setStencilAttachmentPixelFormat(static_cast<MTL::PixelFormat>(iKey.stencilPixelFormat));
    descriptor->setVertexFunction(vertex ? vertex->GetVertexMTLFunction(iKey.vertexProgramKey) : nullptr);
    descriptor->setFragmentFunction(fragment ? fragment->GetFragmentMTLFunction(iKey.fragmentProgramKey) : nullptr);
    if (descriptor->vertexFunction() && descriptor->fragmentFunction()) {
        NS::Error* error = nullptr;
        out = device->newRenderPipelineState(descriptor, &error);
        if (!out) Log(ZALMetalLogLevelError, "buildMtlPipelineState, Failed to create pipeline state, error %s", InWords(error));
    }
    descriptor->release();
    pool->release();
    return out ? 0 : 1;
}

} // namespace ZALMetal
