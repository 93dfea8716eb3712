// SPDX-License-Identifier: Apache-2.0
// Programs in the shading language, compiled and run through Metal's calls: an expression per pixel of a float target.
#pragma once

#include "softmetal/device/DeviceFixture.h"

#include <cmath>
#include <functional>
#include <limits>

namespace language_test {

using Value = std::array<float, 4>;

/// An expression and the components that it must give; missing ones are not looked at.
struct Row
{
    const char* expression;
    std::vector<float> expected;
};

class Language : public device_test::Device
{
protected:
    /// What expressions may read: none of it is known to the compiler.
    ///     v (1.5, -2.25, 3, 0.5)   w (0.25, 4, -1, 2)   x 0.75   h = half4(v)
    ///     i (7, -3, 100, 5)        j (2, 5, -7, 3)      u (1, 0x80000000, 0xff00ff, 6)   yes true
    static constexpr const char* Numbers = R"(
#include <metal_stdlib>
#include <simd/simd.h>
using namespace metal;
struct Numbers { float4 v, w; int4 i, j; uint4 u; float x; int yes; };
float4 show(float4 a) { return a; }
float4 show(float3 a) { return float4(a, 0); }
float4 show(float2 a) { return float4(a, 0, 0); }
float4 show(float a) { return float4(a, 0, 0, 0); }
template <typename T> float4 show(T a) { return show(float(a)); }
template <typename T> float4 show(vec<T, 2> a) { return show(float2(a)); }
template <typename T> float4 show(vec<T, 3> a) { return show(float3(a)); }
template <typename T> float4 show(vec<T, 4> a) { return float4(a); }
struct Corner { float4 position [[position]]; };
vertex Corner corner(uint id [[vertex_id]])
{
    Corner c;
    c.position = float4(id == 1 ? 3 : -1, id == 2 ? 3 : -1, 0.25, 1);
    return c;
}
)";
    struct NumbersRecord
    {
        float v[4] = {1.5f, -2.25f, 3, 0.5f}, w[4] = {0.25f, 4, -1, 2};
        int32_t i[4] = {7, -3, 100, 5}, j[4] = {2, 5, -7, 3};
        uint32_t u[4] = {1, 0x80000000u, 0xff00ffu, 6};
        float x = 0.75f;
        int32_t yes = 1, padding[2] = {};
    };

    MTL::Library* compiled(const std::string& source)
    {
        NS::Error* error = nullptr;
        auto* result = owned(device->newLibrary(device_test::text(source), nullptr, &error));
        if (!result) ADD_FAILURE() << error->localizedDescription()->utf8String();
        return result;
    }

    /// The messages of a source that must not compile, or of an entry function that cannot be made.
    std::string refusal(const std::string& source)
    {
        NS::Error* error = nullptr;
        auto* result = owned(device->newLibrary(device_test::text("#include <metal_stdlib>\nusing namespace metal;\n" + source), nullptr, &error));
        if (!result) return error->localizedDescription()->utf8String();
        NS::Array* names = result->functionNames();
        for (NS::UInteger n = 0; n < names->count(); ++n) {
            if (owned(result->newFunction(names->object<NS::String>(n), owned(MTL::FunctionConstantValues::alloc()->init()), &error))) continue;
            return error->localizedDescription()->utf8String();
        }
        return {};
    }

    MTL::RenderPipelineState* pipelineOf(MTL::Library* library, const char* vertex, const char* fragment, MTL::PixelFormat format = MTL::PixelFormatRGBA32Float)
    {
        if (!library) return nullptr;
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(library->newFunction(device_test::text(vertex))));
        d->setFragmentFunction(owned(library->newFunction(device_test::text(fragment))));
        d->colorAttachments()->object(0)->setPixelFormat(format);
        return pipeline(d);
    }

    /// Draws a triangle over a target of the given size and gives back its pixels, row by row.
    std::vector<Value> draw(MTL::RenderPipelineState* state, NS::UInteger width, NS::UInteger height = 1,
                            const std::function<void(MTL::RenderCommandEncoder*)>& bind = {})
    {
        std::vector<Value> result(width * height);
        if (!state) return result;
        auto* target = texture(width, height, MTL::PixelFormatRGBA32Float);
        auto* e = encoder(target);
        e->setRenderPipelineState(state);
        NumbersRecord numbers;
        e->setFragmentBytes(&numbers, sizeof numbers, 0);
        if (bind) bind(e);
        e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
        finish(e);
        target->getBytes(result.data(), width * sizeof(Value), MTL::Region(0, 0, width, height), 0);
        return result;
    }

    /// A fragment function that gives the n-th expression at pixel n.
    static std::string chooser(const std::vector<Row>& rows, const std::string& parameters)
    {
        std::string text = "fragment float4 choose(Corner corner [[stage_in]], constant Numbers& n [[buffer(0)]]" + parameters +
                           ")\n{\nfloat4 v = n.v, w = n.w; int4 i = n.i, j = n.j; uint4 u = n.u; float x = n.x; half4 h = half4(v); bool yes = n.yes != 0;\n"
                           "switch (int(corner.position.x)) {\n";
        for (size_t r = 0; r < rows.size(); ++r) text += "case " + std::to_string(r) + ": return show(" + rows[r].expression + ");\n";
        return text + "}\nreturn float4(0);\n}\n";
    }

    /// Each expression's value, within a relative error (of the larger of the value and one); declarations come before.
    void expectValues(const std::vector<Row>& rows, const std::string& declarations = {}, float tolerance = 0,
                      const std::string& parameters = {}, const std::function<void(MTL::RenderCommandEncoder*)>& bind = {})
    {
        auto* library = compiled(Numbers + declarations + chooser(rows, parameters));
        auto values = draw(pipelineOf(library, "corner", "choose"), rows.size(), 1, bind);
        for (size_t r = 0; r < rows.size(); ++r)
            for (size_t c = 0; c < rows[r].expected.size(); ++c) expectNear(values[r][c], rows[r].expected[c], tolerance, rows[r].expression, c);
    }

    static void expectNear(float value, float expected, float tolerance, const char* expression, size_t component)
    {
        if (std::isnan(expected)) {
            EXPECT_TRUE(std::isnan(value)) << expression << " [" << component << "] is " << value;
        } else if (tolerance == 0 || std::isinf(expected)) {
            EXPECT_EQ(value, expected) << expression << " [" << component << "]";
        } else {
            EXPECT_NEAR(value, expected, tolerance * std::max(1.0f, std::fabs(expected))) << expression << " [" << component << "]";
        }
    }

    static constexpr float Infinity = std::numeric_limits<float>::infinity(), NotANumber = std::numeric_limits<float>::quiet_NaN();
};

} // namespace language_test
