// SPDX-License-Identifier: Apache-2.0
#include "encoding/Commands.h"

#include "foundation/Strings.h"
#include "inspect/Inspect.h"

using namespace softmetal;

namespace softmetal {

const uint8_t* zeroMemory()
{
    static const Memory* zeros = new Memory(1 << 20);
    return zeros->data();
}

void CommandBufferObject::keep(Object* object)
{
    // The same few objects are bound again and again: looking at the latest ones catches nearly all of them.
    size_t count = kept_.size();
    for (size_t i = 0; i < 8 && i < count; ++i)
        if (kept_[count - 1 - i].get() == object) return;
    if (object) kept_.emplace_back(object);
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
        status_ = value;
    }
    changed_.notify_all();
}

void CommandBufferObject::fail(const std::string& why) { failure = why; }

void CommandBufferObject::waitFor(MTL::CommandBufferStatus wanted)
{
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return status_ >= wanted; });
}

void CommandBufferObject::complete()
{
    records.clear();
    arena = Arena();
    kept_.clear();
    setStatus(failure.empty() ? MTL::CommandBufferStatusCompleted : MTL::CommandBufferStatusError);
    for (const auto& handler : completedHandlers) handler(api(this));
}

} // namespace softmetal

// ---- queue ---------------------------------------------------------------------------------------------------------------

NS::String* MTL::CommandQueue::label() const { return reinterpret_cast<NS::String*>(cast<CommandQueueObject>(this)->label.get()); }
void MTL::CommandQueue::setLabel(const NS::String* label) { cast<CommandQueueObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::CommandQueue::device() const { return api(cast<CommandQueueObject>(this)->device.get()); }

MTL::CommandBuffer* MTL::CommandQueue::commandBuffer()
{
    MTL::CommandBuffer* result = autoreleased(new CommandBufferObject(cast<CommandQueueObject>(this)));
    inspect::note(this, "commandBuffer", inspect::arg("result", static_cast<const void*>(result)));
    return result;
}

MTL::CommandBuffer* MTL::CommandQueue::commandBufferWithUnretainedReferences() { return commandBuffer(); }

// ---- command buffer --------------------------------------------------------------------------------------------------------

NS::String* MTL::CommandBuffer::label() const { return reinterpret_cast<NS::String*>(cast<CommandBufferObject>(this)->label.get()); }
void MTL::CommandBuffer::setLabel(const NS::String* label) { cast<CommandBufferObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::CommandBuffer::device() const { return api(cast<CommandBufferObject>(this)->device.get()); }
MTL::CommandQueue* MTL::CommandBuffer::commandQueue() const { return api(cast<CommandBufferObject>(this)->queue.get()); }
bool MTL::CommandBuffer::retainedReferences() const { return true; }
MTL::CommandBufferStatus MTL::CommandBuffer::status() const { return cast<CommandBufferObject>(this)->status(); }
CFTimeInterval MTL::CommandBuffer::GPUStartTime() const { return cast<CommandBufferObject>(this)->startTime; }
CFTimeInterval MTL::CommandBuffer::GPUEndTime() const { return cast<CommandBufferObject>(this)->endTime; }

NS::Error* MTL::CommandBuffer::error() const
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (buffer.status() != CommandBufferStatusError) return nullptr;
    return newError("MTLCommandBufferErrorDomain", CommandBufferErrorInternal, buffer.failure)->autorelease();
}

void MTL::CommandBuffer::addScheduledHandler(const HandlerFunction& function)
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (inspect::require(!buffer.committed, "commands.handler", "addScheduledHandler: the command buffer has been committed")) buffer.scheduledHandlers.push_back(function);
}

void MTL::CommandBuffer::addCompletedHandler(const HandlerFunction& function)
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (inspect::require(!buffer.committed, "commands.handler", "addCompletedHandler: the command buffer has been committed")) buffer.completedHandlers.push_back(function);
}

void MTL::CommandBuffer::enqueue()
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (!buffer.committed) buffer.setStatus(CommandBufferStatusEnqueued);
}

void MTL::CommandBuffer::commit()
{
    auto& buffer = *cast<CommandBufferObject>(this);
    inspect::note(this, "commit");
    if (!inspect::require(!buffer.committed, "commands.commit-twice", "commit: the command buffer has been committed before")) return;
    inspect::require(!buffer.openEncoder, "commands.open-encoder", "commit: an encoder of the command buffer has not ended");
    buffer.committed = true;
    buffer.setStatus(CommandBufferStatusScheduled);
    for (const auto& handler : buffer.scheduledHandlers) handler(this);
    buffer.queue->executor->submit(Ref<CommandBufferObject>(&buffer));
}

void MTL::CommandBuffer::waitUntilScheduled()
{
    inspect::note(this, "waitUntilScheduled");
    auto& buffer = *cast<CommandBufferObject>(this);
    if (inspect::require(buffer.committed, "commands.wait", "waitUntilScheduled: the command buffer has not been committed")) buffer.waitFor(CommandBufferStatusScheduled);
}

void MTL::CommandBuffer::waitUntilCompleted()
{
    inspect::note(this, "waitUntilCompleted");
    auto& buffer = *cast<CommandBufferObject>(this);
    if (inspect::require(buffer.committed, "commands.wait", "waitUntilCompleted: the command buffer has not been committed")) buffer.waitFor(CommandBufferStatusCompleted);
}

void MTL::CommandBuffer::pushDebugGroup(const NS::String* string) { inspect::note(this, "pushDebugGroup", inspect::arg("name", textOf(string))); }
void MTL::CommandBuffer::popDebugGroup() { inspect::note(this, "popDebugGroup"); }

namespace {

bool mayEncode(const CommandBufferObject& buffer, const char* committed, const char* open)
{
    return inspect::require(!buffer.committed, "commands.committed", committed) && inspect::require(!buffer.openEncoder, "commands.two-encoders", open);
}

} // namespace

MTL::BlitCommandEncoder* MTL::CommandBuffer::blitCommandEncoder()
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (!mayEncode(buffer, "blitCommandEncoder: the command buffer has been committed", "blitCommandEncoder: another encoder of the command buffer has not ended"))
        return nullptr;
    auto* encoder = new BlitEncoderObject(&buffer);
    buffer.openEncoder = encoder;
    inspect::note(this, "blitCommandEncoder", inspect::arg("result", static_cast<const void*>(api(encoder))));
    return autoreleased(encoder);
}

MTL::RenderCommandEncoder* MTL::CommandBuffer::renderCommandEncoder(const RenderPassDescriptor* pass)
{
    auto& buffer = *cast<CommandBufferObject>(this);
    if (!pass || !mayEncode(buffer, "renderCommandEncoder: the command buffer has been committed",
                            "renderCommandEncoder: another encoder of the command buffer has not ended"))
        return nullptr;
    auto* encoder = new RenderEncoderObject(&buffer, *cast<RenderPassDescriptorObject>(pass));
    buffer.openEncoder = encoder;
    return autoreleased(encoder);
}

void MTL::CommandBuffer::presentDrawable(const Drawable* drawable)
{
    inspect::note(this, "presentDrawable", inspect::arg("drawable", static_cast<const void*>(drawable)));
    auto& buffer = *cast<CommandBufferObject>(this);
    if (!drawable || !inspect::require(!buffer.committed, "commands.committed", "presentDrawable: the command buffer has been committed")) return;
    softmetal::Object* object = castObject(drawable);
    buffer.keep(object);
    buffer.records.emplace_back(PresentRecord{dynamic_cast<Presentable*>(object)});
}

void MTL::CommandBuffer::presentDrawableAtTime(const Drawable* drawable, CFTimeInterval) { presentDrawable(drawable); }
void MTL::CommandBuffer::presentDrawableAfterMinimumDuration(const Drawable* drawable, CFTimeInterval) { presentDrawable(drawable); }
