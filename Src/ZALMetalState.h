// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ZALGLState.h"

#include <Metal/Metal.hpp>

#include <cstddef>

/// State that must be encoded again before the next draw.
enum ZALMetalDirtyBits : uint32_t
{
    DirtyViewport = 0x1,     // set by glViewport
    DirtyDepthStencil = 0x2, // set by the depth and stencil setters
};

/// The command buffer being filled, with the one encoder that may be open on it.
class ZALMetalState
{
public:
    explicit ZALMetalState(MTL::CommandQueue* queue) : _queue(queue) {}
    ~ZALMetalState();
    ZALMetalState(const ZALMetalState&) = delete;
    ZALMetalState& operator=(const ZALMetalState&) = delete;

    void renderPassBegin(MTL::RenderPassDescriptor* descriptor, ZALGLState* state);
    void renderPassEnd();
    MTL::CommandBuffer* commandBufferStart();
    /// Commits and waits until the work is scheduled.
    void commandBufferEnd();
    /// Commits and waits until the work is done.
    void commandBufferWaitUntilCompleted();
    /// Waits for what was committed before as well, which the call above leaves alone.
    void waitForCommitted();
    MTL::CommandBuffer* commandBufferGetCurrent() const { return _commandBuffer; }
    MTL::RenderCommandEncoder* getOrCreateCommandEncoder(ZALGLState* state);
    MTL::BlitCommandEncoder* getOrCreateBlitCommandEncoder();
    void SetDirty(uint32_t bits) { _dirty |= bits; }
    void EncodeDirtyStates(ZALGLState* state, uint32_t bits);

private:
    void endEncoders();
    MTL::CommandBuffer* commit();
    void reportFailures();
    void forgetCommitted(size_t count);
    MTL::CommandBuffer* takeCommandBuffer();

    MTL::CommandQueue* _queue; // not retained
    MTL::CommandBuffer* _commandBuffer = nullptr;
    // In their order; retained until they are known to have ended well or not. A queue has no more under way.
    MTL::CommandBuffer* _committed[64] = {};
    size_t _committedCount = 0;
    MTL::RenderCommandEncoder* _renderPassCmdEncoder = nullptr;
    MTL::BlitCommandEncoder* _blitEncoder = nullptr;
    uint32_t _dirty = 0;
};

namespace ZALMetal
{

void EncodeDefaults(MTL::RenderCommandEncoder* encoder);
void EncodeSetViewport(MTL::RenderCommandEncoder* encoder, ZALGLState* state);
void EncodeSetDepthStencilState(MTL::RenderCommandEncoder* encoder, ZALGLState* state, ZALMetalContext* context);

/// 0, or 6 with the output untouched.
int convertCompareFunc(uint64_t& out, uint32_t function);
int convertStencilOperation(uint64_t& out, uint32_t operation);
int convertPrimitiveType(uint64_t& out, uint32_t mode);

/// Stops the process with one line that names function, source and expression.
[[noreturn]] void AssertionFailed(const char* function, const char* source, const char* expression);

} // namespace ZALMetal
