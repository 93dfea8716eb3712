// SPDX-License-Identifier: Apache-2.0
// Queues, command buffers and encoders.
#pragma once

#include "encoding/Records.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace softmetal {

class CommandBufferObject;

/// Runs committed command buffers in order; the execution room implements it.
class Executor
{
public:
    virtual ~Executor() = default;
    virtual void submit(Ref<CommandBufferObject> work) = 0;
};

class CommandQueueObject final : public Labelled<MTL::CommandQueue>
{
public:
    CommandQueueObject(DeviceObject* owner, std::unique_ptr<Executor> runner) : Labelled(owner), executor(std::move(runner)) {}
    const char* className() const override { return "MTLCommandQueue"; }
    std::unique_ptr<Executor> executor;
};

class CommandBufferObject final : public Labelled<MTL::CommandBuffer>
{
public:
    explicit CommandBufferObject(CommandQueueObject* owner) : Labelled(owner->device.get()), queue(owner) {}
    const char* className() const override { return "MTLCommandBuffer"; }

    /// Keeps an object alive until the work is done.
    void keep(Object* object);
    void setStatus(MTL::CommandBufferStatus value);
    void fail(const std::string& why);
    void waitFor(MTL::CommandBufferStatus wanted);
    /// Ends the work: drops what was kept, runs handlers.
    void complete();

    Ref<CommandQueueObject> queue;
    std::vector<Record> records;
    Arena arena;
    Object* openEncoder = nullptr; // the one that has not ended
    std::string failure;           // why the work failed, empty when it did not
    double startTime = 0, endTime = 0;
    std::vector<MTL::HandlerFunction> scheduledHandlers, completedHandlers;

    MTL::CommandBufferStatus status();
    bool committed = false;

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    MTL::CommandBufferStatus status_ = MTL::CommandBufferStatusNotEnqueued;
    std::vector<ObjectRef> kept_;
};

/// One stage's bindings while a pass is being encoded; copied to the arena when a draw uses a changed table.
struct StageBindings
{
    abi::Resources table;
    const abi::Resources* snapshot = nullptr; // null: changed since the last draw
    uint32_t inlineLength[abi::MaxBuffers] = {}; // of setBytes data, 0 for a buffer object
};

class RenderEncoderObject final : public Labelled<MTL::RenderCommandEncoder>
{
public:
    RenderEncoderObject(CommandBufferObject* buffer, const RenderPassDescriptorObject& pass);
    const char* className() const override { return "MTLRenderCommandEncoder"; }

    Ref<CommandBufferObject> commands;
    PassRecord record;
    raster::DrawState state;
    StageBindings vertex, fragment;
    RenderPipelineStateObject* pipeline = nullptr; // kept by the command buffer
    bool ended = false;
    uint32_t colorFormats[abi::MaxColorOutputs] = {};
    uint32_t depthFormat = 0, stencilFormat = 0;

    /// False, with a report, when the encoder has ended.
    bool open(const char* call) const;
    void draw(const raster::DrawCall& call, const char* name);

private:
    void attach(const RenderPassDescriptorObject& pass);
    bool ready(const char* name) const;
};

class BlitEncoderObject final : public Labelled<MTL::BlitCommandEncoder>
{
public:
    explicit BlitEncoderObject(CommandBufferObject* buffer) : Labelled(buffer->device.get()), commands(buffer) {}
    const char* className() const override { return "MTLBlitCommandEncoder"; }
    Ref<CommandBufferObject> commands;
    bool ended = false;
    bool open(const char* call) const;
};

/// Memory that stands in for a buffer that is not bound, so that a shader which reads it finds zeros.
const uint8_t* zeroMemory();

} // namespace softmetal
