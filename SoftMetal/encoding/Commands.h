// SPDX-License-Identifier: Apache-2.0
// Queues, command buffers and encoders. A command buffer belongs to the thread that fills it until commit, to the queue's
// thread until it is completed; its status may be asked for from everywhere.
#pragma once

#include "encoding/Records.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace softmetal {

class CommandBufferObject;
class Encoder;

/// Runs command buffers in the order in which they were reserved; the execution room implements it.
class Executor
{
public:
    virtual ~Executor() = default;
    virtual void reserve(CommandBufferObject* work) = 0;
    /// The reserved work may run now.
    virtual void submit(Ref<CommandBufferObject> work) = 0;
    /// The reserved work will never come.
    virtual void forget(CommandBufferObject* work) = 0;
    virtual bool isOwnThread() const = 0;
};

class CommandQueueObject final : public Labelled<MTL::CommandQueue>
{
public:
    CommandQueueObject(DeviceObject* owner, std::unique_ptr<Executor> runner, NS::UInteger limit)
        : Labelled(owner), executor(std::move(runner)), limit_(limit)
    {
    }
    const char* className() const override { return "MTLCommandQueue"; }

    /// Room for one more command buffer: waits while the limit is reached and work is under way that will make room.
    std::unique_ptr<CommandStorage> enter();
    void leave(std::unique_ptr<CommandStorage> storage, bool wasCommitted);
    void noteCommitted();

    std::unique_ptr<Executor> executor;

private:
    std::mutex mutex_;
    std::condition_variable left_;
    std::vector<std::unique_ptr<CommandStorage>> free_;
    const NS::UInteger limit_;
    NS::UInteger alive_ = 0, underWay_ = 0;
};

class CommandBufferObject final : public Labelled<MTL::CommandBuffer>
{
public:
    explicit CommandBufferObject(CommandQueueObject* owner);
    ~CommandBufferObject() override;
    const char* className() const override { return "MTLCommandBuffer"; }

    /// Keeps an object alive until the work is done.
    template <class T>
    void keep(T* object)
    {
        if (!object || object->lastKeeper.exchange(serial_, std::memory_order_relaxed) == serial_) return;
        storage->kept.emplace_back(object);
    }

    MTL::CommandBufferStatus status();
    void setStatus(MTL::CommandBufferStatus value);
    void waitFor(MTL::CommandBufferStatus wanted);
    void enqueue();
    void commit();
    /// For the executor: the time of a step, and the end of the work, which drops what was kept and runs the handlers.
    void start();
    void complete(const std::string& failure);

    struct Times
    {
        double kernelStart = 0, kernelEnd = 0, start = 0, end = 0;
    };
    Times times();
    std::string failure();

    Ref<CommandQueueObject> queue;
    std::unique_ptr<CommandStorage> storage;
    Encoder* openEncoder = nullptr; // the one that has not ended
    std::vector<MTL::HandlerFunction> scheduledHandlers, completedHandlers;
    uint32_t debugGroups = 0;
    std::atomic<bool> committed{false};
    bool enqueued = false;
    bool mustFail = false; // an injected fault
    bool retainsReferences = true;

private:
    const uint64_t serial_;
    std::mutex mutex_; // guards what follows
    std::condition_variable changed_;
    MTL::CommandBufferStatus status_ = MTL::CommandBufferStatusNotEnqueued;
    bool settled_ = false; // the completed handlers have run
    std::string failure_;  // why the work failed, empty when it did not
    Times times_;
};

/// What both kinds of encoder share.
class Encoder
{
public:
    explicit Encoder(CommandBufferObject* buffer) : commands(buffer) { commands->openEncoder = this; }
    virtual ~Encoder() = default;

    /// False, with a report, when the encoder has ended.
    bool open(const char* call) const { return inspect::require(!ended, inspect::Rule::EncoderEnded, call, described()); }
    /// Hands over what was recorded.
    void end();
    /// Drops what was recorded.
    void abandon();
    virtual const inspect::Described& described() const = 0;

    Ref<CommandBufferObject> commands;
    bool ended = false;
    uint32_t debugGroups = 0;

protected:
    virtual void handOver() = 0;
    virtual void drop() = 0;
    /// For the destructors of the classes below, while the object still has its name.
    void releaseOpen();
};

/// One stage's bindings while a pass is being encoded; copied to the arena when a draw uses a changed table.
struct StageBindings
{
    StageBindings();
    abi::Resources table;
    const BufferObject* buffers[abi::MaxBuffers] = {}; // kept by the command buffer; null: inline bytes, or nothing
    const abi::Resources* snapshot = nullptr;    // null: changed since the last draw
    uint32_t inlineLength[abi::MaxBuffers] = {}; // of setBytes data, 0 for a buffer object
};

class RenderEncoderObject final : public Labelled<MTL::RenderCommandEncoder>, public Encoder
{
public:
    RenderEncoderObject(CommandBufferObject* buffer, const RenderPassDescriptorObject& pass);
    ~RenderEncoderObject() override { releaseOpen(); }
    const char* className() const override { return "MTLRenderCommandEncoder"; }
    const inspect::Described& described() const override { return *this; }

    void draw(const raster::DrawCall& call, const char* name);
    void bindingChanged(StageBindings& stage)
    {
        stage.snapshot = nullptr;
        mustCheck = true;
    }

    PassRecord record;
    raster::DrawState state;
    StageBindings vertex, fragment;
    RenderPipelineStateObject* pipeline = nullptr; // kept by the command buffer
    bool mustCheck = true;                         // state or bindings changed since the last draw
    uint32_t colorFormats[abi::MaxColorOutputs] = {};
    uint32_t depthFormat = 0, stencilFormat = 0;

private:
    struct Attachment
    {
        const char* name;
        bool wantsDepth, wantsStencil;
    };
    void attach(const RenderPassDescriptorObject& pass);
    void takeTarget(const RenderPassAttachmentDescriptorObject& from, raster::Target& to, uint32_t& format, const Attachment& kind);
    void fitArea(const TextureObject& texture, NS::UInteger level);
    void logPass(const RenderPassDescriptorObject& pass) const;
    void checkState(const char* name) const;
    void checkBindings(const shader::FunctionReflection& function, const StageBindings& stage, const char* name) const;
    void checkVertexRange(const raster::DrawCall& call, const char* name) const;
    void handOver() override;
    void drop() override;

    bool areaKnown_ = false;
};

class BlitEncoderObject final : public Labelled<MTL::BlitCommandEncoder>, public Encoder
{
public:
    explicit BlitEncoderObject(CommandBufferObject* buffer) : Labelled(buffer->device.get()), Encoder(buffer), firstRecord_(buffer->storage->records.size()) {}
    ~BlitEncoderObject() override { releaseOpen(); }
    const char* className() const override { return "MTLBlitCommandEncoder"; }
    const inspect::Described& described() const override { return *this; }

private:
    void handOver() override {}
    void drop() override { commands->storage->records.resize(firstRecord_); }

    size_t firstRecord_;
};

/// Memory that stands in for a buffer that is not bound, so that a shader which reads it finds zeros.
const uint8_t* zeroMemory();

} // namespace softmetal
