// SPDX-License-Identifier: Apache-2.0
#include "execution/QueueThread.h"

#include "workers/Pool.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <thread>

namespace softmetal
{
namespace
{

/// Command buffers in the order in which they were reserved. Used under its owner's lock.
class Line
{
public:
    void reserve(CommandBufferObject* commands) { places_.push_back({commands, {}}); }

    void submit(Ref<CommandBufferObject> commands)
    {
        auto place =
            std::find_if(places_.begin(), places_.end(), [&](const auto& p) { return p.reserved == commands.get(); });
        place->committed = std::move(commands);
        // Accepted is what nothing uncommitted stands before: no one waits here for work that is merely long.
        for (auto& p : places_) {
            if (!p.committed) break;
            p.committed->setStatus(MTL::CommandBufferStatusScheduled);
        }
    }

    void forget(const CommandBufferObject* commands)
    {
        std::erase_if(places_, [&](const auto& p) { return p.reserved == commands && !p.committed; });
    }

    bool ready() const { return !places_.empty() && places_.front().committed; }

    /// The first one, null when it is not ready.
    Ref<CommandBufferObject> take()
    {
        if (!ready()) return {};
        Ref<CommandBufferObject> commands = std::move(places_.front().committed);
        places_.pop_front();
        return commands;
    }

private:
    struct Place
    {
        CommandBufferObject* reserved;      // for comparison only
        Ref<CommandBufferObject> committed; // null until then
    };
    std::deque<Place> places_;
};

void runAndRelease(Ref<CommandBufferObject> commands, bool discards)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    runCommandBuffer(*commands, discards);
    commands = Ref<CommandBufferObject>(); // may end the queue
    pool->release();
}

// ---- a thread of the queue's own -----------------------------------------------------------------------------------

/// Shared by the queue and its thread: the thread may be the one that ends the queue.
struct Shared
{
    std::mutex mutex;
    std::condition_variable wake;
    Line line;
    bool stopping = false;
};

void work(const std::shared_ptr<Shared>& shared, bool discards)
{
    for (;;) {
        std::unique_lock lock(shared->mutex);
        shared->wake.wait(lock, [&] { return shared->stopping || shared->line.ready(); });
        Ref<CommandBufferObject> commands = shared->line.take();
        lock.unlock();
        if (!commands) return;
        runAndRelease(std::move(commands), discards);
    }
}

class QueueThread final : public Executor
{
public:
    explicit QueueThread(bool discards)
        : shared_(std::make_shared<Shared>()), thread_([shared = shared_, discards] { work(shared, discards); })
    {}

    ~QueueThread() override
    {
        {
            std::lock_guard lock(shared_->mutex);
            shared_->stopping = true;
        }
        shared_->wake.notify_one();
        if (isOwnThread())
            thread_.detach();
        else
            thread_.join();
    }

    void reserve(CommandBufferObject* commands) override
    {
        std::lock_guard lock(shared_->mutex);
        shared_->line.reserve(commands);
    }

    void submit(Ref<CommandBufferObject> commands) override
    {
        {
            std::lock_guard lock(shared_->mutex);
            shared_->line.submit(std::move(commands));
        }
        shared_->wake.notify_one();
    }

    void forget(CommandBufferObject* commands) override
    {
        {
            std::lock_guard lock(shared_->mutex);
            shared_->line.forget(commands);
        }
        shared_->wake.notify_one();
    }

    bool isOwnThread() const override { return thread_.get_id() == std::this_thread::get_id(); }

private:
    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

// ---- the caller's thread -------------------------------------------------------------------------------------------

/// Runs all that is ready before it returns. Threads that share a queue take turns; what a handler commits runs when
/// the handler has returned.
class CallerQueue final : public Executor
{
public:
    explicit CallerQueue(bool discards) : discards_(discards) {}

    void reserve(CommandBufferObject* commands) override
    {
        std::lock_guard lock(mutex_);
        line_.reserve(commands);
    }

    void submit(Ref<CommandBufferObject> commands) override
    {
        {
            std::lock_guard lock(mutex_);
            line_.submit(std::move(commands));
        }
        runAll();
    }

    void forget(CommandBufferObject* commands) override
    {
        {
            std::lock_guard lock(mutex_);
            line_.forget(commands);
        }
        runAll();
    }

    bool isOwnThread() const override { return running_ == std::this_thread::get_id(); }

private:
    void runAll()
    {
        if (isOwnThread()) return; // the loop below is further up
        std::lock_guard lock(turn_);
        running_ = std::this_thread::get_id();
        while (Ref<CommandBufferObject> commands = next())
            runAndRelease(std::move(commands), discards_);
        running_ = std::thread::id();
    }

    Ref<CommandBufferObject> next()
    {
        std::lock_guard lock(mutex_);
        return line_.take();
    }

    const bool discards_;
    std::mutex turn_, mutex_; // turn_: of the thread that runs; mutex_: of the line
    std::atomic<std::thread::id> running_{};
    Line line_;
};

} // namespace

std::unique_ptr<Executor> makeQueueThread(bool discards)
{
    if (workers::callerDraws()) return std::make_unique<CallerQueue>(discards);
    return std::make_unique<QueueThread>(discards);
}

} // namespace softmetal
