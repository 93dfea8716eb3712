// SPDX-License-Identifier: Apache-2.0
// The life of queues, command buffers and encoders.
#include "encoding/Commands.h"
#include "inspect/Counters.h"

#include <chrono>

namespace softmetal {
namespace {

using inspect::require;
using inspect::Rule;

constexpr size_t MostStorages = 8; // that a queue keeps for use again

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

uint64_t nextSerial()
{
    static std::atomic<uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

} // namespace

const uint8_t* zeroMemory()
{
    static const Memory* zeros = new Memory(1 << 20);
    return zeros->data();
}

// ---- queue ---------------------------------------------------------------------------------------------------------------

std::unique_ptr<CommandStorage> CommandQueueObject::enter()
{
    std::unique_lock lock(mutex_);
    // The queue's own thread would wait for itself.
    if (!executor->isOwnThread()) left_.wait(lock, [this] { return alive_ < limit_ || underWay_ == 0; });
    if (alive_ >= limit_ && underWay_ == 0) require(false, Rule::QueueExhausted, *this, alive_, limit_);
    ++alive_;
    if (free_.empty()) return std::make_unique<CommandStorage>();
    auto storage = std::move(free_.back());
    free_.pop_back();
    return storage;
}

void CommandQueueObject::leave(std::unique_ptr<CommandStorage> storage, bool wasCommitted)
{
    {
        std::lock_guard lock(mutex_);
        --alive_;
        if (wasCommitted) --underWay_;
        if (free_.size() < MostStorages) free_.push_back(std::move(storage));
    }
    left_.notify_all();
}

void CommandQueueObject::noteCommitted()
{
    std::lock_guard lock(mutex_);
    ++underWay_;
}

// ---- command buffer --------------------------------------------------------------------------------------------------------

CommandBufferObject::CommandBufferObject(CommandQueueObject* owner) : Labelled(owner->device.get()), queue(owner), storage(owner->enter()), serial_(nextSerial()) {}

CommandBufferObject::~CommandBufferObject()
{
    if (!storage) return; // it has run
    if (enqueued) queue->executor->forget(this);
    storage->reset();
    queue->leave(std::move(storage), false);
}

MTL::CommandBufferStatus CommandBufferObject::status()
{
    std::lock_guard lock(mutex_);
    return status_;
}

void CommandBufferObject::setStatus(MTL::CommandBufferStatus value)
{
    {
        std::lock_guard lock(mutex_);
        if (status_ < value) status_ = value;
    }
    changed_.notify_all();
}

CommandBufferObject::Times CommandBufferObject::times()
{
    std::lock_guard lock(mutex_);
    return times_;
}

std::string CommandBufferObject::failure()
{
    std::lock_guard lock(mutex_);
    return failure_;
}

void CommandBufferObject::waitFor(MTL::CommandBufferStatus wanted)
{
    // A handler runs on the queue's thread and would wait for itself.
    bool own = queue->executor->isOwnThread();
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return status_ >= wanted && (wanted < MTL::CommandBufferStatusCompleted || settled_ || own); });
}

void CommandBufferObject::enqueue()
{
    if (enqueued) return;
    enqueued = true;
    setStatus(MTL::CommandBufferStatusEnqueued);
    queue->executor->reserve(this);
}

void CommandBufferObject::commit()
{
    if (openEncoder) openEncoder->abandon();
    enqueue();
    committed = true;
    inspect::count(inspect::counters.commandBuffers);
    {
        std::lock_guard lock(mutex_);
        times_.kernelStart = now();
    }
    setStatus(MTL::CommandBufferStatusCommitted);
    queue->noteCommitted();
    Ref<CommandQueueObject> alive = queue; // submitting may end the last other reference
    alive->executor->submit(Ref<CommandBufferObject>(this));
}

void CommandBufferObject::start()
{
    {
        std::lock_guard lock(mutex_);
        times_.kernelEnd = times_.start = now();
    }
    setStatus(MTL::CommandBufferStatusScheduled);
    for (const auto& handler : scheduledHandlers) handler(api(this));
    scheduledHandlers.clear();
}

void CommandBufferObject::complete(const std::string& why)
{
    storage->reset();
    queue->leave(std::move(storage), true);
    {
        std::lock_guard lock(mutex_);
        times_.end = now();
        failure_ = why;
        status_ = why.empty() ? MTL::CommandBufferStatusCompleted : MTL::CommandBufferStatusError;
    }
    changed_.notify_all();
    for (const auto& handler : completedHandlers) handler(api(this));
    completedHandlers.clear();
    {
        std::lock_guard lock(mutex_);
        settled_ = true;
    }
    changed_.notify_all();
}

// ---- encoders ----------------------------------------------------------------------------------------------------------------

void Encoder::end()
{
    handOver();
    ended = true;
    commands->openEncoder = nullptr;
}

void Encoder::abandon()
{
    drop();
    ended = true;
    commands->openEncoder = nullptr;
}

void Encoder::releaseOpen()
{
    if (ended) return;
    require(false, Rule::EncoderReleasedOpen, described());
    abandon();
}

} // namespace softmetal
