// SPDX-License-Identifier: Apache-2.0
// Small pictures through Metal's API, each fully determined by a number, and a hash of what was drawn.
#pragma once

#include <Metal/Metal.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace determinism
{

/// The same numbers everywhere, which the standard's distributions do not promise.
class Random
{
public:
    explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 1) {}
    uint32_t below(uint32_t limit) { return static_cast<uint32_t>(next() % limit); }
    float between(float low, float high) { return low + (high - low) * static_cast<float>(next() >> 8) / 16777216.0f; }

private:
    uint32_t next()
    {
        state_ ^= state_ << 13;
        state_ ^= state_ >> 7;
        state_ ^= state_ << 17;
        return static_cast<uint32_t>(state_ >> 16);
    }
    uint64_t state_;
};

struct Vertex
{
    float position[4];
    float color[4];
    float place[3];
    float size; // of a point
};

/// What a picture is drawn with beside its vertices.
struct Look
{
    const char* fragment = "plain";
    MTL::PrimitiveType primitive = MTL::PrimitiveTypeTriangle;
    bool depth = false, stencil = false, blend = false, targets = false; // targets: three of different formats
    MTL::BlendFactor from = MTL::BlendFactorSourceAlpha, to = MTL::BlendFactorOneMinusSourceAlpha;
    MTL::BlendOperation operation = MTL::BlendOperationAdd;
    MTL::CullMode cull = MTL::CullModeNone;
    MTL::CompareFunction compare = MTL::CompareFunctionLess;
    MTL::Texture* texture = nullptr;
    MTL::SamplerState* sampler = nullptr;
    NS::UInteger instances = 1;
};

class Painter
{
public:
    static constexpr NS::UInteger Width = 150, Height = 90; // several tiles, the last ones cut off

    Painter();
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /// Draws the vertices and gives a hash of every texel of every attachment.
    uint64_t draw(const std::vector<Vertex>& vertices, const Look& look);

    /// Random texels; with mip levels where the device can make them.
    MTL::Texture* newTexture(Random& random, MTL::TextureType type, MTL::PixelFormat format);
    MTL::SamplerState* newSampler(Random& random);

private:
    MTL::RenderPipelineState* pipeline(const Look& look);
    MTL::DepthStencilState* depthStencil(const Look& look);
    MTL::Texture* newTarget(MTL::PixelFormat format);
    uint64_t hashOf(const std::vector<MTL::Texture*>& targets);

    MTL::Device* device_;
    MTL::CommandQueue* queue_;
    MTL::Library* library_;
    std::map<std::string, MTL::RenderPipelineState*> pipelines_;
};

/// The pictures by name, in order. Ends the process where something cannot be made.
struct Picture
{
    std::string name;
    uint64_t hash;
};
std::vector<Picture> drawPictures();

} // namespace determinism
