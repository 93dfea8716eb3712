// SPDX-License-Identifier: Apache-2.0
// Shaders that never end: the device stops them, their command buffer fails, and the next one draws.
#include "softmetal/device/DeviceFixture.h"

#include <cstdlib>

namespace device_test
{
namespace
{

/// Before the compiler is opened, which reads it: short, so that the tests are.
const bool Limited = setenv("SOFTMETAL_SHADER_LIMIT", "5000", 1) == 0;

constexpr const char* EndlessPrograms = R"(
#include <metal_stdlib>
using namespace metal;
struct In { float2 position [[attribute(0)]]; };
struct Varying { float4 position [[position]]; float2 place; };
vertex Varying ends(In in [[stage_in]]) { return {float4(in.position, 0, 1), in.position}; }
vertex Varying vertexNeverEnds(In in [[stage_in]])
{
    float2 p = in.position;
    while (p.x < 3) p.y = fract(p.y + 1.25);
    return {float4(p, 0, 1), p};
}
fragment float4 neverEnds(Varying v [[stage_in]])
{
    float a = v.place.x;
    for (;;) {
        a = fract(a * 3 + 0.25);
        if (a > 2) break;
    }
    return float4(a);
}
fragment float4 endsForMost(Varying v [[stage_in]])
{
    float a = 0;
    while (a < 1) {
        if (v.place.x < 0.9) a += 0.25;
    }
    return float4(a);
}
fragment float4 nested(Varying v [[stage_in]])
{
    float a = 0;
    for (int i = 0; i < 1000; ++i)
        for (int j = 0; j < 1000; ++j) a = fract(a + v.place.y * float(j));
    return float4(a);
}
fragment float4 longButEnds(Varying v [[stage_in]])
{
    float a = 0;
    for (int i = 0; i < 4000; ++i) a = fract(a + v.place.y);
    return float4(a * 0, 1, 0, 1);
}
)";

class EndlessShader : public Device
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Limited);
        Device::SetUp();
        NS::Error* error = nullptr;
        programs = owned(device->newLibrary(text(EndlessPrograms), nullptr, &error));
        ASSERT_NE(programs, nullptr) << error->localizedDescription()->utf8String();
        target = texture(512, 512);
    }

    void draw(const char* vertex, const char* fragment, bool second = false)
    {
        auto* d = pipelineDescriptor();
        d->setVertexFunction(owned(programs->newFunction(text(vertex))));
        d->setFragmentFunction(owned(programs->newFunction(text(fragment))));
        auto* e = encoder(target);
        e->setRenderPipelineState(pipeline(d));
        bindFullTarget(e);
        drawFullTarget(e);
        e->endEncoding();
        if (second) {
            auto* blitter = commands->blitCommandEncoder();
            blitter->fillBuffer(filled = bufferOf<uint8_t>({1, 1, 1, 1}), NS::Range(0, 4), 7);
            blitter->endEncoding();
        }
        commands->commit();
        commands->waitUntilCompleted();
    }

    void expectStopped()
    {
        ASSERT_EQ(commands->status(), MTL::CommandBufferStatusError);
        EXPECT_STREQ(commands->error()->localizedDescription()->utf8String(),
                     "a shader ran past the limit of loop iterations and was stopped");
    }

    void expectTheNextOneDraws()
    {
        draw("ends", "longButEnds");
        EXPECT_EQ(commands->status(), MTL::CommandBufferStatusCompleted);
        EXPECT_EQ(pixel(target, 100, 100), (Pixel{0, 255, 0, 255}));
    }

    MTL::Library* programs = nullptr;
    MTL::Texture* target = nullptr;
    MTL::Buffer* filled = nullptr;
};

TEST_F(EndlessShader, OfFragmentsIsStopped)
{
    draw("ends", "neverEnds");
    expectStopped();
    expectTheNextOneDraws();
}

TEST_F(EndlessShader, OfVerticesIsStopped)
{
    draw("vertexNeverEnds", "longButEnds");
    expectStopped();
    expectTheNextOneDraws();
}

TEST_F(EndlessShader, IsStoppedWhereOnlyFewPixelsNeverEnd)
{
    draw("ends", "endsForMost");
    expectStopped();
    expectTheNextOneDraws();
}

TEST_F(EndlessShader, IsStoppedWhereOneLoopIsInAnother)
{
    draw("ends", "nested");
    expectStopped();
    expectTheNextOneDraws();
}

TEST_F(EndlessShader, EndsWhatItsCommandBufferHolds)
{
    draw("ends", "neverEnds", true);
    expectStopped();
    EXPECT_EQ(*static_cast<const uint8_t*>(filled->contents()), 1); // the fill comes after it
}

TEST_F(EndlessShader, DoesNotFailOtherCommandBuffers)
{
    auto* other = queue->commandBuffer();
    auto* e = other->blitCommandEncoder();
    auto* b = bufferOf<uint8_t>({0, 0, 0, 0});
    e->fillBuffer(b, NS::Range(0, 4), 9);
    e->endEncoding();
    draw("ends", "neverEnds");
    expectStopped();
    other->commit();
    other->waitUntilCompleted();
    EXPECT_EQ(other->status(), MTL::CommandBufferStatusCompleted);
    EXPECT_EQ(*static_cast<const uint8_t*>(b->contents()), 9);
}

} // namespace
} // namespace device_test
