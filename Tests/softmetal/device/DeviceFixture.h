// SPDX-License-Identifier: Apache-2.0
// A device and a queue for each test, builders with defaults, and a pair of programs. Tests use Metal's API alone, and
// SoftMetal.hpp where they look at what a program cannot see.
#pragma once

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace device_test {

inline NS::String* text(const std::string& s) { return NS::String::string(s.c_str(), NS::UTF8StringEncoding); }

/// Reads position from vertex buffer 0 through attribute 0, colour from buffer 1 of the fragment stage, and, where the
/// entry point says so, texture 0 with sampler 0.
inline constexpr const char* Programs = R"(
#include <metal_stdlib>
using namespace metal;
struct In { float2 position [[attribute(0)]]; };
struct Varying { float4 position [[position]]; float2 place; };
vertex Varying corners(In in [[stage_in]], constant float& depth [[buffer(5)]])
{
    Varying v;
    v.position = float4(in.position, depth, 1);
    v.place = in.position * 0.5 + 0.5;
    return v;
}
fragment float4 plain(Varying v [[stage_in]], constant float4& color [[buffer(1)]]) { return color; }
fragment float4 place(Varying v [[stage_in]]) { return float4(v.place, 0, 1); }
fragment float4 textured(Varying v [[stage_in]], texture2d<float> image [[texture(0)]], sampler s [[sampler(0)]])
{
    return image.sample(s, v.place);
}
fragment float4 written(Varying v [[stage_in]], texture2d<float, access::write> image [[texture(1)]])
{
    image.write(float4(1), uint2(0));
    return float4(1);
}
fragment uint4 counted(Varying v [[stage_in]]) { return uint4(1); }
struct Other { float4 position [[position]]; float2 unknown; };
fragment float4 unlinked(Other v [[stage_in]]) { return float4(v.unknown, 0, 1); }
constant bool bright [[function_constant(0)]];
fragment float4 chosen(Varying v [[stage_in]]) { return bright ? float4(1) : float4(0, 0, 0, 1); }
)";

using Pixel = std::array<uint8_t, 4>;

class Device : public ::testing::Test
{
protected:
    void SetUp() override
    {
        pool = NS::AutoreleasePool::alloc()->init();
        SoftMetal::setLogSink([](const std::string&) {});
        SoftMetal::setValidation(SoftMetal::Validation::Report);
        SoftMetal::clearFaults();
        SoftMetal::takeMessages();
        device = MTL::CreateSystemDefaultDevice();
        queue = device->newCommandQueue();
        SoftMetal::clearFaults(); // the calls above are not the test's
    }

    /// Nothing is reported that the test did not take.
    void TearDown() override
    {
        for (const auto& message : SoftMetal::takeMessages()) ADD_FAILURE() << message.rule << ": " << message.sentence;
        SoftMetal::setCommandLog(false);
        SoftMetal::takeCommandLog();
        SoftMetal::setCommandBufferDelay(0);
        if (library_) library_->release();
        queue->release();
        device->release();
        pool->release();
        SoftMetal::resetDevices();
        SoftMetal::setLogSink({});
    }

    // ---- builders: what they make lives until the test ends -----------------------------------------------------------------

    template <class T>
    T* owned(T* object)
    {
        return object ? object->autorelease() : nullptr;
    }

    MTL::Buffer* buffer(NS::UInteger length, MTL::ResourceOptions options = MTL::ResourceStorageModeShared) { return owned(device->newBuffer(length, options)); }

    template <class T>
    MTL::Buffer* bufferOf(const std::vector<T>& values)
    {
        return owned(device->newBuffer(values.data(), values.size() * sizeof(T), MTL::ResourceStorageModeShared));
    }

    MTL::TextureDescriptor* textureDescriptor(NS::UInteger width = 8, NS::UInteger height = 8, MTL::PixelFormat format = MTL::PixelFormatRGBA8Unorm)
    {
        auto* d = MTL::TextureDescriptor::texture2DDescriptor(format, width, height, false);
        d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
        return d;
    }

    MTL::Texture* texture(MTL::TextureDescriptor* d) { return owned(device->newTexture(d)); }
    MTL::Texture* texture(NS::UInteger width = 8, NS::UInteger height = 8, MTL::PixelFormat format = MTL::PixelFormatRGBA8Unorm)
    {
        return texture(textureDescriptor(width, height, format));
    }
    MTL::Texture* privateTexture()
    {
        auto* d = textureDescriptor();
        d->setStorageMode(MTL::StorageModePrivate);
        return texture(d);
    }

    MTL::Library* library()
    {
        if (library_) return library_;
        NS::Error* error = nullptr;
        library_ = device->newLibrary(text(Programs), nullptr, &error); // outlives the pools that tests open
        if (!library_) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return library_;
    }
    MTL::Function* function(const char* name) { return owned(library()->newFunction(text(name))); }

    MTL::RenderPipelineDescriptor* pipelineDescriptor(const char* fragment = "plain", MTL::PixelFormat format = MTL::PixelFormatRGBA8Unorm)
    {
        auto* vertices = MTL::VertexDescriptor::vertexDescriptor();
        vertices->attributes()->object(0)->setFormat(MTL::VertexFormatFloat2);
        vertices->attributes()->object(0)->setBufferIndex(0);
        vertices->layouts()->object(0)->setStride(8);
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexDescriptor(vertices);
        d->setVertexFunction(function("corners"));
        d->setFragmentFunction(function(fragment));
        d->colorAttachments()->object(0)->setPixelFormat(format);
        return d;
    }
    MTL::RenderPipelineState* pipeline(MTL::RenderPipelineDescriptor* d)
    {
        NS::Error* error = nullptr;
        auto* state = owned(device->newRenderPipelineState(d, &error));
        if (!state) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return state;
    }
    MTL::RenderPipelineState* pipeline(const char* fragment = "plain") { return pipeline(pipelineDescriptor(fragment)); }

    MTL::RenderPassDescriptor* pass(MTL::Texture* color)
    {
        auto* d = MTL::RenderPassDescriptor::renderPassDescriptor();
        d->colorAttachments()->object(0)->setTexture(color);
        d->colorAttachments()->object(0)->setLoadAction(MTL::LoadActionClear);
        d->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(0, 0, 0, 0));
        return d;
    }

    MTL::SamplerState* sampler() { return owned(device->newSamplerState(owned(MTL::SamplerDescriptor::alloc()->init()))); }

    // ---- acting -------------------------------------------------------------------------------------------------------------

    /// A pass that is open, with a command buffer of its own.
    MTL::RenderCommandEncoder* encoder(MTL::Texture* color) { return encoder(pass(color)); }
    MTL::RenderCommandEncoder* encoder(MTL::RenderPassDescriptor* d)
    {
        commands = queue->commandBuffer();
        return commands->renderCommandEncoder(d);
    }
    MTL::BlitCommandEncoder* blit()
    {
        commands = queue->commandBuffer();
        return commands->blitCommandEncoder();
    }
    void finish(MTL::CommandEncoder* e)
    {
        e->endEncoding();
        commands->commit();
        commands->waitUntilCompleted();
    }

    /// Two triangles over the whole target.
    std::vector<float> fullTarget() { return {-1, -1, 1, -1, -1, 1, 1, -1, 1, 1, -1, 1}; }
    void bindFullTarget(MTL::RenderCommandEncoder* e, float depth = 0.5f)
    {
        e->setVertexBuffer(bufferOf(fullTarget()), 0, 0);
        e->setVertexBytes(&depth, sizeof depth, 5);
    }
    void setColor(MTL::RenderCommandEncoder* e, std::array<float, 4> color) { e->setFragmentBytes(color.data(), sizeof color, 1); }
    void drawFullTarget(MTL::RenderCommandEncoder* e) { e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(6)); }

    /// An encoder from which nothing but the draw is missing.
    MTL::RenderCommandEncoder* readyToDraw()
    {
        auto* e = encoder(texture());
        e->setRenderPipelineState(pipeline());
        bindFullTarget(e);
        setColor(e, {1, 0, 0, 1});
        return e;
    }

    // ---- looking --------------------------------------------------------------------------------------------------------------

    static Pixel pixel(MTL::Texture* t, NS::UInteger x, NS::UInteger y)
    {
        Pixel result{};
        t->getBytes(result.data(), 4, MTL::Region(x, y, 1, 1), 0);
        return result;
    }

    /// The rules broken since the last call.
    static std::vector<std::string> broken()
    {
        std::vector<std::string> rules;
        for (const auto& message : SoftMetal::takeMessages()) rules.push_back(message.rule);
        return rules;
    }
    static std::vector<std::string> rules(std::initializer_list<const char*> ids) { return {ids.begin(), ids.end()}; }

    NS::AutoreleasePool* pool = nullptr;
    MTL::Device* device = nullptr;
    MTL::CommandQueue* queue = nullptr;
    MTL::CommandBuffer* commands = nullptr;

private:
    MTL::Library* library_ = nullptr;
};

} // namespace device_test
