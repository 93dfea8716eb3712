// SPDX-License-Identifier: Apache-2.0
#include "execution/QueueThread.h"

#include "execution/Limits.h"
#include "inspect/Inspect.h"
#include "inspect/ShaderFaults.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <thread>

namespace softmetal {
namespace {

std::atomic<bool> limitReached{false};
std::atomic<double> delay{0}; // milliseconds
std::atomic<PassObserver> passObserver{nullptr};

// ---- records --------------------------------------------------------------------------------------------------------------

void run(const PassRecord& pass, const CommandStorage& storage)
{
    raster::Pass target(pass.description);
    for (size_t i = 0; i < pass.drawCount; ++i) target.draw(storage.draws[pass.firstDraw + i].state, storage.draws[pass.firstDraw + i].call);
    target.finish();
    if (PassObserver observer = passObserver) observer(pass.serial, &pass.description);
}

void run(const CopyTextureRecord& r, const CommandStorage&)
{
    texturing::copyTextureToTexture({r.from, r.fromLevel, r.fromSlice}, r.block, {r.to, r.toLevel, r.toSlice}, r.x, r.y, r.z);
}

void run(const CopyMemoryRecord& r, const CommandStorage&)
{
    texturing::Image image{r.texture, r.level, r.slice};
    if (r.toTexture) texturing::copyMemoryToTexture(r.memory, r.rowBytes, r.planeBytes, image, r.block, r.aspect);
    else texturing::copyTextureToMemory(image, r.block, r.memory, r.rowBytes, r.planeBytes, r.aspect);
}

void run(const CopyBufferRecord& r, const CommandStorage&) { std::memmove(r.to, r.from, r.bytes); }
void run(const FillRecord& r, const CommandStorage&) { std::memset(r.to, r.value, r.bytes); }
void run(const MipmapRecord& r, const CommandStorage&) { texturing::generateMipmaps(*r.texture); }

/// Records of different queues take turns: a shader that is stopped is then known to belong to the one that runs.
std::mutex& turn()
{
    static auto* mutex = new std::mutex;
    return *mutex;
}

/// Tells what shaders reached for outside the memory that they were given.
void reportShaderFaults(const CommandBufferObject& commands)
{
    using inspect::require;
    using inspect::Rule;
    const inspect::ShaderFaults faults = inspect::takeShaderFaults();
    for (int stage = 0; stage < 2; ++stage) {
        const char* name = stage == 0 ? "vertex" : "fragment";
        require(!(faults.buffers[stage] & abi::OutsideTable), Rule::ShaderTableRange, commands, name);
        for (uint32_t i = 0; i < abi::MaxBuffers; ++i) require(!(faults.buffers[stage] >> i & 1), Rule::ShaderBufferRange, commands, name, i);
    }
    require(!faults.texels, Rule::ShaderTexelRange, commands);
    for (uint32_t i = 0; i < abi::MaxVertexAttributes; ++i) require(!(faults.vertexAttributes >> i & 1), Rule::DrawVertexFetch, commands, i);
}

/// Why the work failed, empty when it did not.
std::string runRecords(const CommandBufferObject& commands)
{
    bool stopped = false;
    const CommandStorage& storage = *commands.storage;
    for (const Record& record : storage.records) {
        std::lock_guard lock(turn());
        limitReached = false;
        execute(record, storage);
        stopped |= limitReached.exchange(false);
        reportShaderFaults(commands);
    }
    return stopped ? "a shader ran past the limit of loop iterations and was stopped" : std::string();
}

void skipRecords(const CommandBufferObject& commands)
{
    PassObserver observer = passObserver;
    if (!observer) return;
    for (const Record& record : commands.storage->records)
        if (const auto* pass = std::get_if<PassRecord>(&record)) observer(pass->serial, nullptr);
}

// ---- thread -----------------------------------------------------------------------------------------------------------------

/// Shared by the queue and its thread: the thread may be the one that ends the queue.
struct Shared
{
    struct Place
    {
        CommandBufferObject* reserved;      // for comparison only
        Ref<CommandBufferObject> committed; // null until then
    };
    std::mutex mutex;
    std::condition_variable wake;
    std::deque<Place> places; // in the order of enqueueing
    bool stopping = false;

    bool ready() const { return !places.empty() && places.front().committed; }
};

void runCommandBuffer(CommandBufferObject& commands, bool discards)
{
    if (double wait = delay.load(std::memory_order_relaxed); wait > 0) std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(wait));
    commands.start();
    std::string failure = commands.mustFail ? "the command buffer was made to fail (injected fault)" : std::string();
    if (failure.empty() && !discards) failure = runRecords(commands);
    else skipRecords(commands);
    for (Presentable* drawable : commands.storage->presents)
        if (drawable) drawable->presentNow();
    commands.complete(failure);
}

void work(const std::shared_ptr<Shared>& shared, bool discards)
{
    for (;;) {
        Ref<CommandBufferObject> commands;
        {
            std::unique_lock lock(shared->mutex);
            shared->wake.wait(lock, [&] { return shared->stopping || shared->ready(); });
            if (!shared->ready()) return;
            commands = std::move(shared->places.front().committed);
            shared->places.pop_front();
        }
        auto* pool = NS::AutoreleasePool::alloc()->init();
        runCommandBuffer(*commands, discards);
        commands = Ref<CommandBufferObject>(); // may end the queue
        pool->release();
    }
}

class QueueThread final : public Executor
{
public:
    explicit QueueThread(bool discards) : shared_(std::make_shared<Shared>()), thread_([shared = shared_, discards] { work(shared, discards); }) {}

    ~QueueThread() override
    {
        {
            std::lock_guard lock(shared_->mutex);
            shared_->stopping = true;
        }
        shared_->wake.notify_one();
        if (isOwnThread()) thread_.detach();
        else thread_.join();
    }

    void reserve(CommandBufferObject* commands) override
    {
        std::lock_guard lock(shared_->mutex);
        shared_->places.push_back({commands, {}});
    }

    void submit(Ref<CommandBufferObject> commands) override
    {
        {
            std::lock_guard lock(shared_->mutex);
            auto place = std::find_if(shared_->places.begin(), shared_->places.end(), [&](const auto& p) { return p.reserved == commands.get(); });
            place->committed = std::move(commands);
            // Accepted is what nothing uncommitted stands before: no one waits here for work that is merely long.
            for (auto& p : shared_->places) {
                if (!p.committed) break;
                p.committed->setStatus(MTL::CommandBufferStatusScheduled);
            }
        }
        shared_->wake.notify_one();
    }

    void forget(CommandBufferObject* commands) override
    {
        {
            std::lock_guard lock(shared_->mutex);
            std::erase_if(shared_->places, [&](const auto& p) { return p.reserved == commands && !p.committed; });
        }
        shared_->wake.notify_one();
    }

    bool isOwnThread() const override { return thread_.get_id() == std::this_thread::get_id(); }

private:
    std::shared_ptr<Shared> shared_;
    std::thread thread_;
};

} // namespace

void execute(const Record& record, const CommandStorage& storage)
{
    std::visit([&](const auto& r) { run(r, storage); }, record);
}

void noteShaderLimit() { limitReached = true; }
void setCommandBufferDelay(double milliseconds) { delay = milliseconds; }
void setPassObserver(PassObserver observer) { passObserver = observer; }

std::unique_ptr<Executor> makeQueueThread(bool discards) { return std::make_unique<QueueThread>(discards); }

} // namespace softmetal
