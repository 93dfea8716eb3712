// SPDX-License-Identifier: Apache-2.0
// Metal's calls on queues and command buffers.
#include "encoding/Commands.h"
#include "foundation/Strings.h"

using namespace softmetal;

namespace {

using inspect::arg;
using inspect::note;
using inspect::require;
using inspect::Rule;

CommandBufferObject& self(const MTL::CommandBuffer* buffer) { return *cast<CommandBufferObject>(buffer); }

MTL::CommandBuffer* makeBuffer(MTL::CommandQueue* queue)
{
    if (inspect::failsByName("commandBuffer")) return nullptr;
    MTL::CommandBuffer* result = autoreleased(new CommandBufferObject(cast<CommandQueueObject>(queue)));
    note(queue, "commandBuffer", arg("result", static_cast<const void*>(result)));
    return result;
}

/// Where a new encoder records: the command buffer itself, or one that is never run when that must not be encoded to.
Ref<CommandBufferObject> target(CommandBufferObject& buffer, const char* call)
{
    bool may = require(!buffer.committed, Rule::CommandsCommitted, call, buffer) && require(!buffer.openEncoder, Rule::CommandsTwoEncoders, call, buffer);
    return may ? Ref<CommandBufferObject>(&buffer) : Ref<CommandBufferObject>::adopt(new CommandBufferObject(buffer.queue.get()));
}

} // namespace

// ---- queue ---------------------------------------------------------------------------------------------------------------

NS::String* MTL::CommandQueue::label() const { return reinterpret_cast<NS::String*>(cast<CommandQueueObject>(this)->label.get()); }
void MTL::CommandQueue::setLabel(const NS::String* label) { cast<CommandQueueObject>(this)->label = ObjectRef(castObject(label)); }
MTL::Device* MTL::CommandQueue::device() const { return api(cast<CommandQueueObject>(this)->device.get()); }
MTL::CommandBuffer* MTL::CommandQueue::commandBuffer() { return makeBuffer(this); }

// References are held all the same: nothing is gained from leaving them out.
MTL::CommandBuffer* MTL::CommandQueue::commandBufferWithUnretainedReferences()
{
    MTL::CommandBuffer* result = makeBuffer(this);
    if (result) self(result).retainsReferences = false;
    return result;
}

// ---- command buffer --------------------------------------------------------------------------------------------------------

NS::String* MTL::CommandBuffer::label() const { return reinterpret_cast<NS::String*>(self(this).label.get()); }
void MTL::CommandBuffer::setLabel(const NS::String* label) { self(this).label = ObjectRef(castObject(label)); }
MTL::Device* MTL::CommandBuffer::device() const { return api(self(this).device.get()); }
MTL::CommandQueue* MTL::CommandBuffer::commandQueue() const { return api(self(this).queue.get()); }
bool MTL::CommandBuffer::retainedReferences() const { return self(this).retainsReferences; }
MTL::CommandBufferStatus MTL::CommandBuffer::status() const { return self(this).status(); }
CFTimeInterval MTL::CommandBuffer::GPUStartTime() const { return self(this).times().start; }
CFTimeInterval MTL::CommandBuffer::GPUEndTime() const { return self(this).times().end; }

NS::Error* MTL::CommandBuffer::error() const
{
    if (status() != CommandBufferStatusError) return nullptr;
    return newError("MTLCommandBufferErrorDomain", CommandBufferErrorInternal, self(this).failure())->autorelease();
}

void MTL::CommandBuffer::addScheduledHandler(const HandlerFunction& function)
{
    if (require(!self(this).committed, Rule::CommandsHandler, "addScheduledHandler", self(this))) self(this).scheduledHandlers.push_back(function);
}

void MTL::CommandBuffer::addCompletedHandler(const HandlerFunction& function)
{
    if (require(!self(this).committed, Rule::CommandsHandler, "addCompletedHandler", self(this))) self(this).completedHandlers.push_back(function);
}

void MTL::CommandBuffer::enqueue()
{
    note(this, "enqueue");
    if (require(!self(this).committed, Rule::CommandsCommitted, "enqueue", self(this))) self(this).enqueue();
}

void MTL::CommandBuffer::commit()
{
    auto& buffer = self(this);
    note(this, "commit");
    if (!require(!buffer.committed, Rule::CommandsCommitTwice, buffer)) return;
    require(!buffer.openEncoder, Rule::CommandsOpenEncoder, buffer);
    buffer.mustFail = inspect::failsByName("commit");
    buffer.commit();
}

void MTL::CommandBuffer::waitUntilScheduled()
{
    note(this, "waitUntilScheduled");
    if (require(self(this).committed, Rule::CommandsWait, "waitUntilScheduled", self(this))) self(this).waitFor(CommandBufferStatusScheduled);
}

void MTL::CommandBuffer::waitUntilCompleted()
{
    note(this, "waitUntilCompleted");
    if (require(self(this).committed, Rule::CommandsWait, "waitUntilCompleted", self(this))) self(this).waitFor(CommandBufferStatusCompleted);
}

void MTL::CommandBuffer::pushDebugGroup(const NS::String* string)
{
    note(this, "pushDebugGroup", arg("name", textOf(string)));
    ++self(this).debugGroups;
}

void MTL::CommandBuffer::popDebugGroup()
{
    note(this, "popDebugGroup");
    if (require(self(this).debugGroups > 0, Rule::CommandsDebugGroup, self(this))) --self(this).debugGroups;
}

MTL::BlitCommandEncoder* MTL::CommandBuffer::blitCommandEncoder()
{
    if (inspect::failsByName("blitCommandEncoder")) return nullptr;
    auto* encoder = new BlitEncoderObject(target(self(this), "blitCommandEncoder").get());
    note(this, "blitCommandEncoder", arg("result", static_cast<const void*>(api(encoder))));
    return autoreleased(encoder);
}

MTL::RenderCommandEncoder* MTL::CommandBuffer::renderCommandEncoder(const RenderPassDescriptor* pass)
{
    if (!require(pass != nullptr, Rule::CommandsNilPass, self(this)) || inspect::failsByName("renderCommandEncoder")) return nullptr;
    return autoreleased(new RenderEncoderObject(target(self(this), "renderCommandEncoder").get(), *cast<RenderPassDescriptorObject>(pass)));
}

void MTL::CommandBuffer::presentDrawable(const Drawable* drawable)
{
    note(this, "presentDrawable", arg("drawable", static_cast<const void*>(drawable)));
    auto& buffer = self(this);
    if (!require(!buffer.committed, Rule::CommandsCommitted, "presentDrawable", buffer) || !require(drawable != nullptr, Rule::CommandsNilDrawable, buffer)) return;
    softmetal::Object* object = castObject(drawable);
    buffer.storage->kept.emplace_back(object);
    buffer.storage->presents.push_back(dynamic_cast<Presentable*>(object));
}

void MTL::CommandBuffer::presentDrawableAtTime(const Drawable* drawable, CFTimeInterval) { presentDrawable(drawable); }
void MTL::CommandBuffer::presentDrawableAfterMinimumDuration(const Drawable* drawable, CFTimeInterval) { presentDrawable(drawable); }
