// SPDX-License-Identifier: Apache-2.0
#include "execution/QueueThread.h"

#include "execution/Limits.h"

#include <atomic>
#include <cstring>
#include <deque>
#include <thread>

namespace softmetal {
namespace {

std::atomic<bool> limitReached{false};

double now() { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); }

void run(PassRecord& pass)
{
    raster::Pass target(pass.description);
    for (const DrawRecord& draw : pass.draws) target.draw(draw.state, draw.call);
    target.finish();
}

void run(CopyTextureRecord& r) { texturing::copyTextureToTexture({r.from, r.fromLevel, r.fromSlice}, r.block, {r.to, r.toLevel, r.toSlice}, r.x, r.y, r.z); }

void run(CopyMemoryRecord& r)
{
    texturing::Image image{r.texture, r.level, r.slice};
    if (r.toTexture) texturing::copyMemoryToTexture(r.memory, r.rowBytes, r.planeBytes, image, r.block, r.aspect);
    else texturing::copyTextureToMemory(image, r.block, r.memory, r.rowBytes, r.planeBytes, r.aspect);
}

void run(CopyBufferRecord& r) { std::memmove(r.to, r.from, r.bytes); }
void run(FillRecord& r) { std::memset(r.to, r.value, r.bytes); }
void run(MipmapRecord& r) { texturing::generateMipmaps(*r.texture); }

void run(PresentRecord& r)
{
    if (r.drawable) r.drawable->presentNow();
}

class QueueThread final : public Executor
{
public:
    explicit QueueThread(bool discards) : discards_(discards), thread_([this] { work(); }) {}

    ~QueueThread() override
    {
        {
            std::lock_guard lock(mutex_);
            stopping_ = true;
        }
        wake_.notify_one();
        // The last reference to a queue may be the one that its own thread gives back.
        if (thread_.get_id() == std::this_thread::get_id()) thread_.detach();
        else thread_.join();
    }

    void submit(Ref<CommandBufferObject> commands) override
    {
        {
            std::lock_guard lock(mutex_);
            waiting_.push_back(std::move(commands));
        }
        wake_.notify_one();
    }

private:
    void work()
    {
        for (;;) {
            Ref<CommandBufferObject> commands;
            {
                std::unique_lock lock(mutex_);
                wake_.wait(lock, [this] { return stopping_ || !waiting_.empty(); });
                if (waiting_.empty()) return;
                commands = std::move(waiting_.front());
                waiting_.pop_front();
            }
            auto* pool = NS::AutoreleasePool::alloc()->init();
            runAll(*commands);
            pool->release();
            bool last = release(commands);
            if (last) return;
        }
    }

    void runAll(CommandBufferObject& commands)
    {
        commands.startTime = now();
        limitReached = false;
        for (Record& record : commands.records)
            if (!discards_) execute(record);
        commands.endTime = now();
        if (limitReached.exchange(false)) commands.fail("a shader ran past the limit of loop iterations and was stopped");
        commands.complete();
    }

    /// Gives the command buffer back; true when the queue, and this object with it, has gone.
    static bool release(Ref<CommandBufferObject>& commands)
    {
        Ref<CommandQueueObject> queue = commands->queue;
        commands = Ref<CommandBufferObject>();
        bool last = queue.get() != nullptr && queue->retainCount() == 1;
        queue = Ref<CommandQueueObject>();
        return last;
    }

    bool discards_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Ref<CommandBufferObject>> waiting_;
    bool stopping_ = false;
    std::thread thread_;
};

} // namespace

void execute(Record& record)
{
    std::visit([](auto& r) { run(r); }, record);
}

void noteShaderLimit() { limitReached = true; }

std::unique_ptr<Executor> makeQueueThread(bool discards) { return std::make_unique<QueueThread>(discards); }

} // namespace softmetal
