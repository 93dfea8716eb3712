// SPDX-License-Identifier: Apache-2.0
// A context of the library on a software device of its own: current, with the command log on, and with every validation
// message that a test does not take an error.
#pragma once

#include "ZALGLState.h"
#include "ZALMetalData.h"
#include "ZALMetalState.h"

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace support
{

/// A device that the library takes for an Intel GPU: no flipped viewport, its own upload and mipmap paths.
SoftMetal::DeviceOptions intelDevice();

class ContextTest : public ::testing::Test
{
protected:
    explicit ContextTest(SoftMetal::DeviceOptions options = {}) : options_(std::move(options)) {}

    void SetUp() override;
    void TearDown() override;

    /// A colour and a depth-stencil texture of this size as the default framebuffer. The pixel formats are those of the
    /// first call; a depth format of Invalid means no depth texture.
    void attachTextures(uint32_t width, uint32_t height, MTL::PixelFormat colorFormat = MTL::PixelFormatBGRA8Unorm,
                        MTL::PixelFormat depthFormat = MTL::PixelFormatDepth32Float_Stencil8);

    ZALGLState& gl() { return *context->glState; }
    ZALMetalState& commands() { return *context->metalData->metalState; }

    /// What the device was asked since the last look.
    std::vector<SoftMetal::LogEntry> log() { return SoftMetal::takeCommandLog(); }
    /// The names alone, in order.
    std::vector<std::string> calls();
    /// How often a call was made since the last look, which this is as well.
    size_t count(const std::string& call);
    /// Forgets what was logged so far.
    void clearLog() { SoftMetal::takeCommandLog(); }

    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    ZALMetalContext* context = nullptr;
    MTL::Texture* color = nullptr; // of attachTextures
    MTL::Texture* depth = nullptr;

private:
    MTL::Texture* newAttachment(MTL::PixelFormat format, uint32_t width, uint32_t height);

    SoftMetal::DeviceOptions options_;
};

} // namespace support
