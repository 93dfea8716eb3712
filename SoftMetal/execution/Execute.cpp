// SPDX-License-Identifier: Apache-2.0
// Runs what command buffers hold.
#include "execution/Execute.h"

#include "inspect/Inspect.h"
#include "inspect/ShaderFaults.h"

#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>

namespace softmetal
{
namespace
{

std::atomic<double> delay{0}; // milliseconds
std::atomic<PassObserver> passObserver{nullptr};

// ---- records -------------------------------------------------------------------------------------------------------

void run(const PassRecord& pass, const CommandStorage& storage)
{
    raster::Pass target(pass.description);
    for (size_t i = 0; i < pass.drawCount; ++i)
        target.draw(storage.states[storage.draws[pass.firstDraw + i].state], storage.draws[pass.firstDraw + i].call);
    target.finish();
    if (PassObserver observer = passObserver) observer(pass.serial, &pass.description);
}

void run(const CopyTextureRecord& r, const CommandStorage&)
{
    texturing::copyTextureToTexture({r.from, r.fromLevel, r.fromSlice}, r.block, {r.to, r.toLevel, r.toSlice}, r.x, r.y,
                                    r.z);
}

void run(const CopyMemoryRecord& r, const CommandStorage&)
{
    texturing::Image image{r.texture, r.level, r.slice};
    if (r.toTexture)
        texturing::copyMemoryToTexture(r.memory, r.rowBytes, r.planeBytes, image, r.block, r.aspect);
    else
        texturing::copyTextureToMemory(image, r.block, r.memory, r.rowBytes, r.planeBytes, r.aspect);
}

void run(const CopyBufferRecord& r, const CommandStorage&)
{
    std::memmove(r.to, r.from, r.bytes);
}
void run(const FillRecord& r, const CommandStorage&)
{
    std::memset(r.to, r.value, r.bytes);
}
void run(const MipmapRecord& r, const CommandStorage&)
{
    texturing::generateMipmaps(*r.texture);
}

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
        for (uint32_t i = 0; i < abi::MaxBuffers; ++i)
            require(!(faults.buffers[stage] >> i & 1), Rule::ShaderBufferRange, commands, name, i);
    }
    require(!faults.texels, Rule::ShaderTexelRange, commands);
    for (uint32_t i = 0; i < abi::MaxVertexAttributes; ++i)
        require(!(faults.vertexAttributes >> i & 1), Rule::DrawVertexFetch, commands, i);
}

/// Tells the observer of a pass that it is not drawn.
void skip(const Record& record)
{
    const auto* pass = std::get_if<PassRecord>(&record);
    PassObserver observer = passObserver;
    if (pass && observer) observer(pass->serial, nullptr);
}

void skipRecords(const CommandBufferObject& commands)
{
    for (const Record& record : commands.storage->records)
        skip(record);
}

/// Why the work failed, empty when it did not. After a shader that was stopped nothing more is run.
std::string runRecords(const CommandBufferObject& commands)
{
    bool stopped = false;
    for (const Record& record : commands.storage->records) {
        if (stopped) {
            skip(record);
            continue;
        }
        std::lock_guard lock(turn());
        inspect::takeShaderLimit();
        execute(record, *commands.storage);
        stopped = inspect::takeShaderLimit();
        reportShaderFaults(commands);
    }
    return stopped ? "a shader ran past the limit of loop iterations and was stopped" : std::string();
}

} // namespace

void runCommandBuffer(CommandBufferObject& commands, bool discards)
{
    if (double wait = delay.load(std::memory_order_relaxed); wait > 0)
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(wait));
    commands.start();
    std::string failure = commands.mustFail ? "the command buffer was made to fail (injected fault)" : std::string();
    if (failure.empty() && !discards)
        failure = runRecords(commands);
    else
        skipRecords(commands);
    for (Presentable* drawable : commands.storage->presents)
        if (drawable) drawable->presentNow();
    commands.complete(failure);
}

void execute(const Record& record, const CommandStorage& storage)
{
    std::visit([&](const auto& r) { run(r, storage); }, record);
}

void setCommandBufferDelay(double milliseconds)
{
    delay = milliseconds;
}
void setPassObserver(PassObserver observer)
{
    passObserver = observer;
}

} // namespace softmetal
