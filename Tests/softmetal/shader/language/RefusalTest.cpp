// SPDX-License-Identifier: Apache-2.0
// What this device does not do is said when a program or a pipeline asks for it, and never passed over in silence.
#include "Language.h"

#include <functional>

namespace language_test
{
namespace
{

using Change = std::function<void(MTL::RenderPipelineDescriptor*)>;

class Refusal : public Language
{
protected:
    /// Why a pipeline is refused; empty when it is made.
    std::string whyNot(const Change& change, const std::string& functions)
    {
        auto* library = compiled(std::string(Numbers) + functions);
        if (!library) return "no library";
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        auto* fragment = owned(library->newFunction(device_test::text("out")));
        auto* vertex = owned(library->newFunction(device_test::text("in")));
        d->setVertexFunction(vertex ? vertex : owned(library->newFunction(device_test::text("corner"))));
        d->setFragmentFunction(fragment);
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
        change(d);
        NS::Error* error = nullptr;
        if (owned(device->newRenderPipelineState(d, &error))) return {};
        return error->localizedDescription()->utf8String();
    }
};

// ---- programs ------------------------------------------------------------------------------------------------------

struct ProgramRow
{
    const char* source;
    const char* words; // of the message; empty: it compiles
};

constexpr ProgramRow Programs[] = {
    // attributes that the language has and this device has not
    {"fragment float4 f(float3 at [[barycentric_coord]]) { return float4(at, 1); }",
     "attribute 'barycentric_coord' is not supported by this device"},
    {"struct V { float4 p [[position]]; uint v [[viewport_array_index]]; }; vertex V f() { return {float4(0), 1}; }",
     "attribute 'viewport_array_index' is not supported by this device"},
    {"struct V { float4 p [[position]]; uint l [[render_target_array_index]]; }; vertex V f() { return {float4(0), 1}; "
     "}",
     "attribute 'render_target_array_index' is not supported by this device"},
    {"vertex float4 f(ushort view [[amplification_id]]) { return float4(view); }",
     "attribute 'amplification_id' is not supported by this device"},
    {"[[patch(triangle, 3)]] vertex float4 f(uint n [[patch_id]]) { return float4(n); }",
     "attribute 'patch' is not supported by this device"},
    {"fragment float4 f(uint mask [[sample_mask, post_depth_coverage]]) { return float4(mask); }",
     "attribute 'post_depth_coverage' is not supported by this device"},
    {"[[visible]] float f(float a) { return a; }", "attribute 'visible' is not supported by this device"},
    {"fragment float4 f(float4 before [[color(0)]]) { return before; }", "attribute 'color' has no meaning here"},
    {"fragment float4 f(float a [[no_such_attribute]]) { return a; }", "unknown attribute 'no_such_attribute'"},
    {"kernel void f(uint n [[thread_position_in_grid]]) {}",
     "function 'f' is a compute kernel, which this device does not run"},
    // a second source for blending
    {"struct C { float4 a [[color(0), index(0)]]; float4 b [[color(0), index(1)]]; }; fragment C f() { return {}; }",
     "a second source for blending is not supported by this device"},
    {"struct C { float4 a [[color(0), index(0)]]; }; fragment C f() { return {}; }", ""},
    {"struct V { float4 p [[position]]; float a [[index(0)]]; }; vertex V f() { return {float4(0), 1}; }",
     "attribute 'index' has no meaning here"},
    {"struct C { float4 a [[color(1)]]; float4 b [[color(1)]]; }; fragment C f() { return {}; }",
     "fragment function 'f' writes a colour twice"},
    // results beside colours
    {"struct D { float d [[depth(any)]]; }; fragment D f() { return {}; }", ""},
    {"struct D { float d [[depth(greater)]]; }; fragment D f() { return {}; }", ""},
    {"struct D { float d [[depth(less)]]; }; fragment D f() { return {}; }", ""},
    {"struct D { float d [[depth(nearest)]]; }; fragment D f() { return {}; }",
     "attribute 'depth' takes one of the words any, greater and less"},
    {"struct D { float d [[depth(any)]]; }; [[early_fragment_tests]] fragment D f() { return {}; }",
     "fragment function 'f' writes what early fragment tests have already looked at"},
    {"struct D { uint s [[stencil]]; }; [[early_fragment_tests]] fragment D f() { return {}; }",
     "fragment function 'f' writes what early fragment tests have already looked at"},
    {"struct D { uint m [[sample_mask]]; }; [[early_fragment_tests]] fragment D f() { return {}; }", ""},
    {"struct D { float s [[stencil]]; }; fragment D f() { return {}; }",
     "attribute 'stencil' does not go with this type"},
    // what is accepted since it changes nothing here
    {"fragment float4 f(uint n [[sample_id]]) { return float4(n); }", ""},
    {"fragment float4 f(device float4* all [[buffer(0), raster_order_group(0)]]) { return all[0]; }", ""},
    {"struct V { float4 p [[position, invariant]]; }; vertex V f() { return {float4(0)}; }", ""},
};

TEST_F(Refusal, OfAttributesThatMeanNothingHere)
{
    for (const ProgramRow& row : Programs) {
        std::string messages = refusal(row.source);
        if (*row.words) {
            EXPECT_NE(messages.find(row.words), std::string::npos) << row.source << "\n" << messages;
        } else {
            EXPECT_EQ(messages, "") << row.source;
        }
    }
}

// ---- pipelines -----------------------------------------------------------------------------------------------------

struct PipelineRow
{
    Change change;
    const char* words; // of the error; empty: it is made
    const char* functions = "fragment float4 out() { return float4(1); }\n";
};

constexpr const char* Attributed = "struct A { float4 a [[attribute(0)]]; };\n"
                                   "vertex float4 in(A a [[stage_in]]) { return a.a; }\n"
                                   "fragment float4 out() { return float4(1); }\n";

/// A layout of one attribute that steps in the given way.
Change stepping(MTL::VertexStepFunction function, NS::UInteger rate)
{
    return [=](MTL::RenderPipelineDescriptor* d) {
        auto* layout = MTL::VertexDescriptor::vertexDescriptor();
        layout->attributes()->object(0)->setFormat(MTL::VertexFormatFloat4);
        layout->layouts()->object(0)->setStride(16);
        layout->layouts()->object(0)->setStepFunction(function);
        layout->layouts()->object(0)->setStepRate(rate);
        d->setVertexDescriptor(layout);
    };
}

Change blending(MTL::BlendFactor factor, bool enabled)
{
    return [=](MTL::RenderPipelineDescriptor* d) {
        d->colorAttachments()->object(0)->setBlendingEnabled(enabled);
        d->colorAttachments()->object(0)->setDestinationAlphaBlendFactor(factor);
    };
}

TEST_F(Refusal, OfPipelinesThatThisDeviceDoesNotDraw)
{
    const PipelineRow rows[] = {
        {[](auto*) {}, ""},
        {[](auto* d) { d->setRasterSampleCount(4); }, "this device has no pipelines of several samples (4)"},
        {[](auto* d) { d->setAlphaToCoverageEnabled(true); },
         "alpha-to-coverage chooses among several samples, and this device has one"},
        {[](auto* d) { d->setAlphaToOneEnabled(true); }, ""},
        {[](auto* d) {
             d->setAlphaToOneEnabled(true);
             d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA8Uint);
         },
         "alpha-to-one does not go with colours of whole numbers, which function 'out' writes",
         "fragment uint4 out() { return uint4(1); }\n"},
        {blending(MTL::BlendFactorSource1Color, true), "colour attachment 0 blends with a second source"},
        {blending(MTL::BlendFactorOneMinusSource1Alpha, true), "colour attachment 0 blends with a second source"},
        {blending(MTL::BlendFactorSource1Color, false), ""},
        {blending(MTL::BlendFactorOneMinusBlendAlpha, true), ""},
        {[](auto* d) { d->setRasterizationEnabled(true); },
         "vertex function 'in' has no position, which rasterization needs", "vertex void in() {}\n"},
        {[](auto* d) { d->setRasterizationEnabled(false); }, "", "vertex void in() {}\n"},
        {stepping(MTL::VertexStepFunctionPerVertex, 1), "", Attributed},
        {stepping(MTL::VertexStepFunctionPerVertex, 2), "steps by vertices, whose rate must be 1", Attributed},
        {stepping(MTL::VertexStepFunctionPerInstance, 3), "", Attributed},
        {stepping(MTL::VertexStepFunctionPerInstance, 0), "steps by instances, whose rate must not be 0", Attributed},
        {stepping(MTL::VertexStepFunctionConstant, 0), "", Attributed},
        {stepping(MTL::VertexStepFunctionPerPatch, 1), "steps by patches, which this device does not draw", Attributed},
        {stepping(MTL::VertexStepFunctionPerPatchControlPoint, 1), "steps by patches, which this device does not draw",
         Attributed},
    };
    for (const PipelineRow& row : rows) {
        std::string why = whyNot(row.change, row.functions);
        if (*row.words) {
            EXPECT_NE(why.find(row.words), std::string::npos) << row.words << "\n" << why;
        } else {
            EXPECT_EQ(why, "") << row.functions;
        }
    }
}

} // namespace
} // namespace language_test
