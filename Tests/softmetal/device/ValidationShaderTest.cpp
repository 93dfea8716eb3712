// SPDX-License-Identifier: Apache-2.0
// Rules that only show when the work runs: what functions reach for outside the memory they were given.
#include "ValidationFixture.h"

namespace device_test
{

void Validation::shaders()
{
    const char* source = R"(
#include <metal_stdlib>
using namespace metal;
vertex float4 in(uint id [[vertex_id]]) { return float4(id == 1 ? 3 : -1, id == 2 ? 3 : -1, 0, 1); }
fragment float4 list(constant float* values [[buffer(1)]], constant int& at [[buffer(2)]]) { return values[at]; }
fragment float4 written(device float* values [[buffer(3)]], constant int& at [[buffer(2)]]) { values[at] = 1; return 0; }
constant float table[] = {1, 2, 3};
fragment float4 own(constant int& at [[buffer(2)]]) { return table[at]; }
fragment float4 texel(texture2d<float> t [[texture(0)]], constant int& at [[buffer(2)]]) { return t.read(uint2(at, 0)); }
)";
    NS::Error* error = nullptr;
    auto* program = owned(device->newLibrary(text(source), nullptr, &error));
    ASSERT_NE(program, nullptr) << error->localizedDescription()->utf8String();
    auto running = [&](const char* function, int at) {
        auto* d = owned(MTL::RenderPipelineDescriptor::alloc()->init());
        d->setVertexFunction(owned(program->newFunction(text("in"))));
        d->setFragmentFunction(owned(program->newFunction(text(function))));
        d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
        auto* e = encoder(texture());
        e->setRenderPipelineState(pipeline(d));
        const std::array<float, 4> values{};
        e->setFragmentBytes(values.data(), sizeof values, 1);
        e->setFragmentBytes(&at, sizeof at, 2);
        e->setFragmentBuffer(buffer(16), 0, 3);
        e->setFragmentTexture(texture(4, 4), 0);
        e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
        e->endEncoding();
    };
    auto* indices = bufferOf<uint16_t>({0, 5, 6});
    expectPairs({
        {"shader.buffer-range",
         "command buffer 'frame': a fragment function went beyond the buffer at index 1; it reads zeros and writes "
         "nothing",
         [&](bool keeps) { running("list", keeps ? 3 : 4); }},
        {"shader.buffer-range",
         "command buffer 'frame': a fragment function went beyond the buffer at index 1; it reads zeros and writes "
         "nothing",
         [&](bool keeps) { running("list", keeps ? 0 : -1); }},
        {"shader.buffer-range",
         "command buffer 'frame': a fragment function went beyond the buffer at index 3; it reads zeros and writes "
         "nothing",
         [&](bool keeps) { running("written", keeps ? 3 : 4); }},
        {"shader.table-range",
         "command buffer 'frame': a fragment function went beyond a table of its own; it reads zeros",
         [&](bool keeps) { running("own", keeps ? 2 : 3); }},
        {"shader.texel-range", "command buffer 'frame': a function read a texel outside its texture; it reads zeros",
         [&](bool keeps) { running("texel", keeps ? 3 : 4); }},
        {"draw.vertex-fetch",
         "command buffer 'frame': vertex attribute 0 was fetched beyond the end of its buffer; it reads zeros",
         [&](bool keeps) {
             drawing([&](auto* e) {
                 e->drawIndexedPrimitives(MTL::PrimitiveTypePoint, NS::UInteger(keeps ? 2 : 3), MTL::IndexTypeUInt16,
                                          indices, NS::UInteger(0));
             });
         }},
    });
}

TEST_F(Validation, FunctionsStayInsideTheirMemoryWithoutValidation)
{
    SoftMetal::setValidation(SoftMetal::Validation::Off);
    auto* e = encoder(texture());
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e); // and no colour: a short one, then none
    e->setFragmentBuffer(buffer(4), 0, 1);
    drawFullTarget(e);
    e->setFragmentBuffer(nullptr, 0, 1);
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(commands->status(), MTL::CommandBufferStatusCompleted);
    EXPECT_TRUE(broken().empty());
}

} // namespace device_test
