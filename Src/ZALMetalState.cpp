// SPDX-License-Identifier: Apache-2.0
#include "ZALMetalState.h"

#include "ZALMetalContext.h"
#include "ZALMetalLog.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

namespace
{

constexpr const char* Source = "Src/ZALMetalState";

template <class T>
void releaseAndForget(T*& object)
{
    if (object) object->release();
    object = nullptr;
}

} // namespace

ZALMetalState::~ZALMetalState()
{
    reportFailures();
    forgetCommitted(_committedCount);
}

void ZALMetalState::renderPassBegin(MTL::RenderPassDescriptor* descriptor, ZALGLState* state)
{
    renderPassEnd();
    ++ZALMetal::g_counters.passes;
    if (_blitEncoder) commandBufferEnd(); // blit work goes first, on a command buffer of its own
    commandBufferStart();
    _renderPassCmdEncoder = _commandBuffer ? _commandBuffer->renderCommandEncoder(descriptor) : nullptr;
    if (!_renderPassCmdEncoder) ZALMetal::AssertionFailed("renderPassBegin", Source, "_renderPassCmdEncoder != nil");
    ZALMetal::EncodeDefaults(_renderPassCmdEncoder);
    _renderPassCmdEncoder->retain();
    ZALMetal::EncodeSetViewport(_renderPassCmdEncoder, state);
    ZALMetal::EncodeSetDepthStencilState(_renderPassCmdEncoder, state, GetCurrentMetalContext());
    _dirty = 0;
}

void ZALMetalState::renderPassEnd()
{
    if (!_renderPassCmdEncoder) return;
    _renderPassCmdEncoder->endEncoding();
    releaseAndForget(_renderPassCmdEncoder);
}

MTL::CommandBuffer* ZALMetalState::commandBufferStart()
{
    if (!_commandBuffer) _commandBuffer = takeCommandBuffer();
    return _commandBuffer;
}

MTL::CommandBuffer* ZALMetalState::takeCommandBuffer()
{
    MTL::CommandBuffer* buffer = _queue->commandBuffer();
    return buffer ? buffer->retain() : nullptr;
}

void ZALMetalState::endEncoders()
{
    renderPassEnd();
    if (!_blitEncoder) return;
    _blitEncoder->endEncoding();
    releaseAndForget(_blitEncoder);
}

/// Looks at the command buffers that have ended since the last look. They end in their order.
void ZALMetalState::reportFailures()
{
    size_t ended = 0;
    for (; ended < _committedCount && _committed[ended]->status() >= MTL::CommandBufferStatusCompleted; ++ended) {
        if (_committed[ended]->status() != MTL::CommandBufferStatusError) continue;
        auto* pool = NS::AutoreleasePool::alloc()->init();
        ZALMetal::Log(ZALMetalLogLevelError, "ZAL Metal, a command buffer failed, error %s", ZALMetal::InWords(_committed[ended]->error()));
        pool->release();
    }
    forgetCommitted(ended);
}

/// The first ones, as many as are given.
void ZALMetalState::forgetCommitted(size_t count)
{
    std::for_each(_committed, _committed + count, [](MTL::CommandBuffer* buffer) { buffer->release(); });
    std::copy(_committed + count, _committed + _committedCount, _committed);
    _committedCount -= count;
}

/// The committed one, for the caller to wait for.
MTL::CommandBuffer* ZALMetalState::commit()
{
    reportFailures();
    _commandBuffer->commit();
    ++ZALMetal::g_counters.commandBuffers;
    if (_committedCount == std::size(_committed)) forgetCommitted(1);
    _committed[_committedCount++] = _commandBuffer;
    return std::exchange(_commandBuffer, nullptr);
}

void ZALMetalState::commandBufferEnd()
{
    endEncoders();
    if (_commandBuffer) commit()->waitUntilScheduled();
}

void ZALMetalState::commandBufferWaitUntilCompleted()
{
    endEncoders();
    if (_commandBuffer) commit()->waitUntilCompleted();
    reportFailures();
}

void ZALMetalState::waitForCommitted()
{
    if (_committedCount > 0) _committed[_committedCount - 1]->waitUntilCompleted();
    reportFailures();
}

MTL::RenderCommandEncoder* ZALMetalState::getOrCreateCommandEncoder(ZALGLState* state)
{
    if (!_renderPassCmdEncoder) [[unlikely]] {
        auto* pool = NS::AutoreleasePool::alloc()->init();
        MTL::RenderPassDescriptor* descriptor = ZALMetalContextNewRenderDescriptor(state, GetCurrentMetalContext());
        renderPassBegin(descriptor, state);
        descriptor->release();
        pool->release();
        if (!_renderPassCmdEncoder)
            ZALMetal::AssertionFailed("getOrCreateCommandEncoder", Source, "_renderPassCmdEncoder != nil");
    }
    if (_dirty != 0) EncodeDirtyStates(state, _dirty);
    _dirty = 0;
    return _renderPassCmdEncoder;
}

MTL::BlitCommandEncoder* ZALMetalState::getOrCreateBlitCommandEncoder()
{
    if (_blitEncoder) return _blitEncoder;
    auto* pool = NS::AutoreleasePool::alloc()->init();
    commandBufferEnd();
    _commandBuffer = takeCommandBuffer();
    if (_commandBuffer) _blitEncoder = _commandBuffer->blitCommandEncoder();
    if (_blitEncoder) _blitEncoder->retain();
    pool->release();
    return _blitEncoder;
}

void ZALMetalState::EncodeDirtyStates(ZALGLState* state, uint32_t bits)
{
    if (!_renderPassCmdEncoder) ZALMetal::AssertionFailed("EncodeDirtyStates", Source, "_renderPassCmdEncoder != nil");
    if (bits & DirtyViewport) ZALMetal::EncodeSetViewport(_renderPassCmdEncoder, state);
    if (bits & DirtyDepthStencil)
        ZALMetal::EncodeSetDepthStencilState(_renderPassCmdEncoder, state, GetCurrentMetalContext());
}

namespace ZALMetal
{

void AssertionFailed(const char* function, const char* source, const char* expression)
{
    NSLog("Assertion failed: (%s), function %s, file %s.", expression, function, source);
    std::abort();
}

// ---- encoding ------------------------------------------------------------------------------------------------------

void EncodeDefaults(MTL::RenderCommandEncoder* encoder)
{
    encoder->setFrontFacingWinding(MTL::WindingClockwise);
}

void EncodeSetViewport(MTL::RenderCommandEncoder* encoder, ZALGLState* state)
{
    int32_t x = state->viewport[0], y = state->viewport[1], width = state->viewport[2], height = state->viewport[3];
    // Kept on purpose: [flip-by-vendor] one vendor's devices turn y in the matrix, all others here.
    if (!state->isIntelDevice) { // sums wrap in 32 bits, as sizes come unchecked
        y = static_cast<int32_t>(static_cast<uint32_t>(y) + static_cast<uint32_t>(height));
        height = static_cast<int32_t>(0u - static_cast<uint32_t>(height));
    }
    // depth always goes from 0 to 1: there is no call that sets a range
    encoder->setViewport({static_cast<double>(x), static_cast<double>(y), static_cast<double>(width),
                          static_cast<double>(height), 0.0, 1.0});
}

namespace
{

/// The stencil half of a depth-stencil state; false when an enumerant has no counterpart.
bool makeStencil(const ZALGLState& state, MTL::StencilDescriptor*& out)
{
    uint64_t function = 0, fail = 0, depthFail = 0, pass = 0;
    if (convertCompareFunc(function, state.stencilFunc) || convertStencilOperation(fail, state.stencilFailOp) ||
        convertStencilOperation(depthFail, state.stencilDepthFailOp) ||
        convertStencilOperation(pass, state.stencilDepthPassOp))
        return false;
    out = MTL::StencilDescriptor::alloc()->init();
    out->setStencilFailureOperation(static_cast<MTL::StencilOperation>(fail));
    out->setDepthFailureOperation(static_cast<MTL::StencilOperation>(depthFail));
    out->setDepthStencilPassOperation(static_cast<MTL::StencilOperation>(pass));
    out->setStencilCompareFunction(static_cast<MTL::CompareFunction>(function));
    out->setReadMask(state.stencilValueMask);
    out->setWriteMask(state.stencilWriteMask);
    return true;
}

} // namespace

void EncodeSetDepthStencilState(MTL::RenderCommandEncoder* encoder, ZALGLState* state, ZALMetalContext* context)
{
    bool depth = getFramebufferDepthTexture(state, context) && state->depthTestEnabled;
    bool hasStencil = getFramebufferStencilTexture(state, context) && state->stencilTestEnabled;
    uint64_t compare = MTL::CompareFunctionAlways;
    if (depth) convertCompareFunc(compare, state->depthFunc);
    MTL::StencilDescriptor* stencil = nullptr;
    // Kept on purpose: [bad-stencil-state] an unknown function or operation is an error of the draw, which goes on with
    // the state that was in force before.
    if (hasStencil && !makeStencil(*state, stencil)) return SetCurrentError(state, GL_INVALID_VALUE);
    MTL::DepthStencilDescriptor* descriptor = MTL::DepthStencilDescriptor::alloc()->init();
    descriptor->setDepthCompareFunction(static_cast<MTL::CompareFunction>(compare));
    descriptor->setDepthWriteEnabled(depth && state->depthWriteMask != 0);
    descriptor->setFrontFaceStencil(stencil);
    descriptor->setBackFaceStencil(stencil);
    MTL::DepthStencilState* made = context->metalData->device->newDepthStencilState(descriptor);
    encoder->setDepthStencilState(made);
    if (made) made->release();
    descriptor->release();
    if (stencil) stencil->release();
}

// ---- conversions ---------------------------------------------------------------------------------------------------

namespace
{

constexpr int ConversionFailed = 6;

struct ConversionRow
{
    uint32_t gl;
    uint64_t metal;
};

template <size_t N>
int convert(const ConversionRow (&table)[N], uint64_t& out, uint32_t value)
{
    for (const ConversionRow& row : table) {
        if (row.gl != value) continue;
        out = row.metal;
        return 0;
    }
    return ConversionFailed;
}

constexpr ConversionRow StencilOperations[] = {
    {GL_KEEP, MTL::StencilOperationKeep},
    {GL_ZERO, MTL::StencilOperationZero},
    {GL_REPLACE, MTL::StencilOperationReplace},
    {GL_INCR, MTL::StencilOperationIncrementClamp},
    {GL_DECR, MTL::StencilOperationDecrementClamp},
    {GL_INVERT, MTL::StencilOperationInvert},
    {GL_INCR_WRAP, MTL::StencilOperationIncrementWrap},
    {GL_DECR_WRAP, MTL::StencilOperationDecrementWrap},
};

constexpr ConversionRow PrimitiveTypes[] = {
    {GL_POINTS, MTL::PrimitiveTypePoint},
    {GL_LINES, MTL::PrimitiveTypeLine},
    {GL_LINE_STRIP, MTL::PrimitiveTypeLineStrip},
    {GL_TRIANGLES, MTL::PrimitiveTypeTriangle},
    {GL_TRIANGLE_STRIP, MTL::PrimitiveTypeTriangleStrip},
};

} // namespace

int convertCompareFunc(uint64_t& out, uint32_t function)
{
    if (function < GL_NEVER || function > GL_ALWAYS) return ConversionFailed;
    out = function - GL_NEVER; // the two enumerations have one order
    return 0;
}

int convertStencilOperation(uint64_t& out, uint32_t operation)
{
    return convert(StencilOperations, out, operation);
}
int convertPrimitiveType(uint64_t& out, uint32_t mode)
{
    return convert(PrimitiveTypes, out, mode);
}

} // namespace ZALMetal
