// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <Foundation/Foundation.hpp>

#include <functional>

namespace MTL
{
class BlitCommandEncoder;
class CommandQueue;
class Device;
class Drawable;
class RenderCommandEncoder;
class RenderPassDescriptor;
class CommandBuffer;

using HandlerFunction = std::function<void(CommandBuffer*)>;

enum CommandBufferStatus : NS::UInteger
{
    CommandBufferStatusNotEnqueued = 0,
    CommandBufferStatusEnqueued = 1,
    CommandBufferStatusCommitted = 2,
    CommandBufferStatusScheduled = 3,
    CommandBufferStatusCompleted = 4,
    CommandBufferStatusError = 5,
};

enum CommandBufferError : NS::UInteger
{
    CommandBufferErrorNone = 0,
    CommandBufferErrorInternal = 1,
    CommandBufferErrorTimeout = 2,
    CommandBufferErrorPageFault = 3,
    CommandBufferErrorBlacklisted = 4,
    CommandBufferErrorAccessRevoked = 4,
    CommandBufferErrorNotPermitted = 7,
    CommandBufferErrorOutOfMemory = 8,
    CommandBufferErrorInvalidResource = 9,
    CommandBufferErrorMemoryless = 10,
    CommandBufferErrorDeviceRemoved = 11,
    CommandBufferErrorStackOverflow = 12,
};

class SOFTMETAL_API CommandBuffer : public NS::Referencing<CommandBuffer>
{
public:
    void addScheduledHandler(const HandlerFunction& function);
    void addCompletedHandler(const HandlerFunction& function);
    Device* device() const;
    CommandQueue* commandQueue() const;
    bool retainedReferences() const;
    NS::String* label() const;
    void setLabel(const NS::String* label);
    CFTimeInterval GPUStartTime() const;
    CFTimeInterval GPUEndTime() const;
    void enqueue();
    void commit();
    void presentDrawable(const Drawable* drawable);
    void presentDrawableAtTime(const Drawable* drawable, CFTimeInterval presentationTime);
    void presentDrawableAfterMinimumDuration(const Drawable* drawable, CFTimeInterval duration);
    void waitUntilScheduled();
    void waitUntilCompleted();
    CommandBufferStatus status() const;
    NS::Error* error() const;
    BlitCommandEncoder* blitCommandEncoder();
    RenderCommandEncoder* renderCommandEncoder(const RenderPassDescriptor* renderPassDescriptor);
    void pushDebugGroup(const NS::String* string);
    void popDebugGroup();
};

} // namespace MTL
