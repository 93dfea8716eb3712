// SPDX-License-Identifier: Apache-2.0
// A pair for each rule: calls that break it, and the same calls with one difference that keep it.
#pragma once

#include "DeviceFixture.h"

#include <functional>
#include <set>

namespace device_test {

class Validation : public Device
{
protected:
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

    struct Pair
    {
        const char* rule;
        std::function<void(bool keeps)> calls;
    };

    void expectPairs(const std::vector<Pair>& pairs)
    {
        for (const Pair& pair : pairs) {
            for (bool keeps : {false, true}) {
                auto* inner = NS::AutoreleasePool::alloc()->init();
                commands = nullptr;
                pair.calls(keeps);
                if (commands && commands->status() < MTL::CommandBufferStatusCommitted) {
                    commands->commit();
                    commands->waitUntilCompleted();
                }
                auto seen = broken();
                EXPECT_EQ(seen, keeps ? rules({}) : rules({pair.rule})) << pair.rule << (keeps ? ": kept" : ": broken");
                if (!keeps) fired.insert(pair.rule);
                inner->release();
                SoftMetal::takeMessages();
            }
        }
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

    std::set<std::string> fired; // rules that were broken and reported
};

} // namespace device_test
