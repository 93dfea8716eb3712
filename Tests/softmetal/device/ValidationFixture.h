// SPDX-License-Identifier: Apache-2.0
// A pair for each rule: calls that break it, and the same calls with one difference that keep it.
#pragma once

#include "DeviceFixture.h"

#include <functional>
#include <set>
#include <utility>

namespace device_test
{

class Validation : public Device
{
public:
    // One function for each chapter of the rules; they are defined in three files.
    void commandBuffers();
    void encoders();
    void passes();
    void drawsWithTheirState();
    void drawsWithTheirBindings();
    void bindings();
    void buffers();
    void textureDescriptors();
    void textureAccess();
    void samplers();
    void blits();
    void layers();
    void shaders();

protected:
    struct Pair
    {
        const char* rule;
        const char* sentence; // what is reported when the calls break it
        std::function<void(bool keeps)> calls;
    };

    /// Runs the pairs of one rule, or notes which rules have pairs and runs none.
    void expectPairs(const std::vector<Pair>& pairs)
    {
        for (const Pair& pair : pairs) {
            paired.insert(pair.rule);
            if (pair.rule != only) continue;
            EXPECT_EQ(messagesOf(pair, false), (Messages{{pair.rule, pair.sentence}}));
            EXPECT_EQ(messagesOf(pair, true), Messages{});
        }
    }

    std::string only;             // the rule that is tested; empty: none
    std::set<std::string> paired; // rules that have pairs

    // ---- builders: what messages name has labels here --------------------------------------------------------------

    template <class T>
    static T* named(const char* label, T* object)
    {
        object->setLabel(text(label));
        return object;
    }

    MTL::CommandBuffer* frame() { return commands = named("frame", queue->commandBuffer()); }
    MTL::BlitCommandEncoder* blit() { return named("copies", frame()->blitCommandEncoder()); }
    MTL::RenderCommandEncoder* encoder(MTL::RenderPassDescriptor* d)
    {
        return named("pass", frame()->renderCommandEncoder(d));
    }
    MTL::RenderCommandEncoder* encoder(MTL::Texture* color) { return encoder(pass(color)); }
    MTL::RenderCommandEncoder* readyToDraw()
    {
        auto* e = encoder(texture());
        e->setRenderPipelineState(pipeline());
        bindFullTarget(e);
        setColor(e, {1, 0, 0, 1});
        return e;
    }

    /// A blit encoder that is ended after the calls.
    void blitting(const std::function<void(MTL::BlitCommandEncoder*)>& calls)
    {
        auto* e = blit();
        calls(e);
        e->endEncoding();
    }
    /// The same for a pass that is ready to draw.
    void drawing(const std::function<void(MTL::RenderCommandEncoder*)>& calls)
    {
        auto* e = readyToDraw();
        calls(e);
        e->endEncoding();
    }

    MTL::Texture* textureWith(const std::function<void(MTL::TextureDescriptor*)>& change)
    {
        auto* d = textureDescriptor();
        change(d);
        return owned(device->newTexture(d));
    }

    MTL::SamplerState* samplerWith(const std::function<void(MTL::SamplerDescriptor*)>& change)
    {
        auto* d = owned(MTL::SamplerDescriptor::alloc()->init());
        change(d);
        return owned(device->newSamplerState(d));
    }

    MTL::Texture* depthTexture(MTL::PixelFormat format = MTL::PixelFormatDepth32Float)
    {
        return textureWith([&](auto* d) {
            d->setPixelFormat(format);
            d->setStorageMode(MTL::StorageModePrivate);
        });
    }

    MTL::Device* otherDevice()
    {
        static MTL::Device* other = SoftMetal::newDevice({});
        return other;
    }

private:
    using Messages = std::vector<std::pair<std::string, std::string>>;

    Messages messagesOf(const Pair& pair, bool keeps)
    {
        auto* inner = NS::AutoreleasePool::alloc()->init();
        commands = nullptr;
        pair.calls(keeps);
        if (commands && commands->status() < MTL::CommandBufferStatusCommitted) {
            commands->commit();
            commands->waitUntilCompleted();
        }
        Messages messages;
        for (auto& message : SoftMetal::takeMessages())
            messages.emplace_back(message.rule, message.sentence);
        inner->release();
        SoftMetal::takeMessages();
        return messages;
    }
};

} // namespace device_test
