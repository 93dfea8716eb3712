// SPDX-License-Identifier: Apache-2.0
// Pictures of a few corners in a float target: what the rasteriser covers, and with which values.
#pragma once

#include "softmetal/device/DeviceFixture.h"

#include <cmath>
#include <functional>

namespace raster_test
{

using device_test::Pixel;
using device_test::text;

using Value = std::array<float, 4>;

/// A corner in clip space and what it hands on.
struct Corner
{
    float position[4];
    float value[4] = {1, 1, 1, 1};
};

struct Picture
{
    int width = 0, height = 0;
    std::vector<Value> values;
    const Value& at(int x, int y) const { return values[static_cast<size_t>(y * width + x)]; }
    bool covered(int x, int y) const { return at(x, y)[3] != 0; }
    int count() const
    {
        int result = 0;
        for (const Value& v : values)
            result += v[3] != 0;
        return result;
    }
};

using Setting = std::function<void(MTL::RenderCommandEncoder*)>;

class Raster : public device_test::Device
{
protected:
    static constexpr const char* Source = R"(
#include <metal_stdlib>
using namespace metal;
struct Corner { float4 position; float4 value; };
struct Out { float4 position [[position]]; float size [[point_size]]; float4 value; float4 level [[center_no_perspective]]; float4 constantly [[flat]]; };
struct In { float4 position [[position]]; float4 value; float4 level [[center_no_perspective]]; float4 constantly [[flat]]; };
vertex Out corner(const device Corner* corners [[buffer(0)]], constant float& size [[buffer(1)]], uint id [[vertex_id]])
{
    Out out;
    out.position = corners[id].position;
    out.size = size;
    out.value = out.level = out.constantly = corners[id].value;
    return out;
}
fragment float4 value(In in [[stage_in]]) { return in.value; }
fragment float4 level(In in [[stage_in]]) { return in.level; }
fragment float4 constantly(In in [[stage_in]]) { return in.constantly; }
fragment float4 depth(In in [[stage_in]]) { return float4(in.position.z, in.position.w, 0, 1); }
fragment float4 valueUnlessNegative(In in [[stage_in]]) { if (in.value.x < 0) discard_fragment(); return in.value; }
fragment float4 counted(In in [[stage_in]], device atomic_uint& count [[buffer(0)]]) { atomic_fetch_add_explicit(&count, 1, memory_order_relaxed); return in.value; }
fragment float4 noted(In in [[stage_in]], device float4* note [[buffer(0)]]) { *note = in.value; return in.value; }
fragment float4 ones(In in [[stage_in]]) { return float4(1); }
)";

    MTL::Library* rasterLibrary()
    {
        if (own_) return own_;
        NS::Error* error = nullptr;
        own_ = owned(device->newLibrary(text(Source), nullptr, &error));
        if (!own_) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return own_;
    }

    MTL::RenderPipelineDescriptor* rasterDescriptor(const char* fragment,
                                                    MTL::PixelFormat format = MTL::PixelFormatRGBA32Float)
    {
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(rasterLibrary()->newFunction(text("corner"))));
        d->setFragmentFunction(owned(rasterLibrary()->newFunction(text(fragment))));
        d->colorAttachments()->object(0)->setPixelFormat(format);
        return d;
    }

    /// Adds what is drawn to what is there, so that a picture counts.
    MTL::RenderPipelineDescriptor* addingDescriptor(const char* fragment = "ones")
    {
        auto* d = rasterDescriptor(fragment);
        auto* color = d->colorAttachments()->object(0);
        color->setBlendingEnabled(true);
        color->setDestinationRGBBlendFactor(MTL::BlendFactorOne);
        color->setDestinationAlphaBlendFactor(MTL::BlendFactorOne);
        return d;
    }

    void put(MTL::RenderCommandEncoder* e, MTL::PrimitiveType type, const std::vector<Corner>& corners,
             float pointSize = 1)
    {
        e->setVertexBuffer(bufferOf(corners), 0, 0);
        e->setVertexBytes(&pointSize, sizeof pointSize, 1);
        e->drawPrimitives(type, NS::UInteger(0), NS::UInteger(corners.size()));
    }

    Picture pictureOf(MTL::Texture* target)
    {
        Picture result{static_cast<int>(target->width()), static_cast<int>(target->height()), {}};
        result.values.resize(target->width() * target->height());
        target->getBytes(result.values.data(), target->width() * sizeof(Value),
                         MTL::Region(0, 0, target->width(), target->height()), 0);
        return result;
    }

    /// What a pipeline draws into a target that starts as zeros.
    Picture drawn(MTL::RenderPipelineState* state, int width, int height, MTL::PrimitiveType type,
                  const std::vector<Corner>& corners, const Setting& setting = {}, float pointSize = 1)
    {
        auto* target =
            texture(static_cast<NS::UInteger>(width), static_cast<NS::UInteger>(height), MTL::PixelFormatRGBA32Float);
        auto* e = encoder(target);
        e->setRenderPipelineState(state);
        if (setting) setting(e);
        put(e, type, corners, pointSize);
        finish(e);
        return pictureOf(target);
    }
    Picture drawn(const char* fragment, int width, int height, MTL::PrimitiveType type,
                  const std::vector<Corner>& corners, const Setting& setting = {}, float pointSize = 1)
    {
        return drawn(pipeline(rasterDescriptor(fragment)), width, height, type, corners, setting, pointSize);
    }

    /// A place in pixels from the upper left, in clip space.
    static Corner atPixel(double x, double y, int width, int height, Value value = {1, 1, 1, 1})
    {
        return {{static_cast<float>(x / width * 2 - 1), static_cast<float>(1 - y / height * 2), 0.5f, 1},
                {value[0], value[1], value[2], value[3]}};
    }

    /// Two triangles over the whole target; the value at the left, and at the right.
    static std::vector<Corner> acrossTarget(Corner left, Corner right)
    {
        auto placed = [](Corner c, float x, float y) {
            c.position[0] = x * c.position[3];
            c.position[1] = y * c.position[3];
            return c;
        };
        return {placed(left, -1, -1), placed(left, -1, 1), placed(right, 1, -1),
                placed(right, 1, -1), placed(left, -1, 1), placed(right, 1, 1)};
    }

private:
    MTL::Library* own_ = nullptr; // lives in the test's pool
};

} // namespace raster_test
