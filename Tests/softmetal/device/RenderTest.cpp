// SPDX-License-Identifier: Apache-2.0
#include "DeviceFixture.h"

#include <algorithm>
#include <thread>

namespace device_test {

class Render : public Device
{
protected:
    /// Draws the whole target with the pipeline.
    MTL::Texture* drawn(MTL::RenderPipelineState* state, std::array<float, 4> color = {1, 0, 0, 1})
    {
        auto* t = texture();
        auto* e = encoder(t);
        e->setRenderPipelineState(state);
        bindFullTarget(e);
        setColor(e, color);
        drawFullTarget(e);
        finish(e);
        return t;
    }
};

TEST_F(Render, TriangleCoversItsHalfOfTheTarget)
{
    auto* t = texture(8, 8);
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {0, 1, 0, 1});
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3)); // lower left half
    finish(e);
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{0, 255, 0, 255}));
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{0, 0, 0, 0}));
}

TEST_F(Render, VaryingsRunAcrossTheTarget)
{
    auto* t = drawn(pipeline("place"));
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{16, 16, 0, 255}));   // half a pixel from the lower left corner
    EXPECT_EQ(pixel(t, 7, 7), (Pixel{239, 16, 0, 255}));
    EXPECT_EQ(pixel(t, 0, 0), (Pixel{16, 239, 0, 255}));
}

TEST_F(Render, IndicesPickVertices)
{
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {0, 0, 1, 1});
    e->drawIndexedPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(3), MTL::IndexTypeUInt16, bufferOf<uint16_t>({9, 3, 4, 5}), NS::UInteger(2)); // upper right half
    finish(e);
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{0, 0, 0, 0}));
}

TEST_F(Render, SamplesATexture)
{
    auto* image = texture(2, 2);
    const std::array<uint8_t, 16> texels{255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 255, 255, 255, 255};
    image->replaceRegion(MTL::Region(0, 0, 2, 2), 0, texels.data(), 8);
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline("textured"));
    bindFullTarget(e);
    e->setFragmentTexture(image, 0);
    e->setFragmentSamplerState(sampler(), 0);
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{255, 0, 0, 255})); // the first texel is at (0, 0), the lower left corner here
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{255, 255, 255, 255}));
}

TEST_F(Render, DepthTestKeepsTheNearer)
{
    auto* depth = textureDescriptor(8, 8, MTL::PixelFormatDepth32Float);
    depth->setStorageMode(MTL::StorageModePrivate);
    auto* t = texture();
    auto* d = pass(t);
    d->depthAttachment()->setTexture(texture(depth));
    auto* less = owned(MTL::DepthStencilDescriptor::alloc()->init());
    less->setDepthCompareFunction(MTL::CompareFunctionLess);
    less->setDepthWriteEnabled(true);
    auto* description = pipelineDescriptor();
    description->setDepthAttachmentPixelFormat(MTL::PixelFormatDepth32Float);
    auto* e = encoder(d);
    e->setRenderPipelineState(pipeline(description));
    e->setDepthStencilState(owned(device->newDepthStencilState(less)));
    bindFullTarget(e, 0.25f);
    setColor(e, {1, 0, 0, 1});
    drawFullTarget(e);
    bindFullTarget(e, 0.75f);
    setColor(e, {0, 1, 0, 1});
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(pixel(t, 3, 3), (Pixel{255, 0, 0, 255}));
}

TEST_F(Render, BytesAreThoseOfTheTimeOfTheDraw)
{
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    std::array<float, 4> color{1, 0, 0, 1};
    e->setFragmentBytes(color.data(), sizeof color, 1);
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    color = {0, 0, 1, 1};
    e->setFragmentBytes(color.data(), sizeof color, 1);
    e->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(3), NS::UInteger(3));
    color = {0, 0, 0, 0};
    finish(e);
    EXPECT_EQ(pixel(t, 0, 7), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(pixel(t, 7, 0), (Pixel{0, 0, 255, 255}));
}

TEST_F(Render, FunctionConstantsChooseTheProgram)
{
    for (bool bright : {false, true}) {
        auto* values = owned(MTL::FunctionConstantValues::alloc()->init());
        values->setConstantValues(&bright, MTL::DataTypeBool, NS::Range(0, 1));
        NS::Error* error = nullptr;
        auto* d = pipelineDescriptor("plain");
        d->setFragmentFunction(owned(library()->newFunction(text("chosen"), values, &error)));
        EXPECT_EQ(pixel(drawn(pipeline(d)), 2, 2)[0], bright ? 255 : 0);
    }
}

TEST_F(Render, ScissorLimitsTheDraw)
{
    auto* t = texture();
    auto* e = encoder(t);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {1, 1, 1, 1});
    e->setScissorRect(MTL::ScissorRect{2, 3, 4, 1});
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(pixel(t, 2, 3), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(pixel(t, 1, 3), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(pixel(t, 2, 4), (Pixel{0, 0, 0, 0}));
}

TEST_F(Render, CountsWhatPassesInAVisibilityBuffer)
{
    auto* t = texture();
    auto* counters = buffer(16);
    auto* d = pass(t);
    d->setVisibilityResultBuffer(counters);
    auto* e = encoder(d);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {1, 1, 1, 1});
    e->setVisibilityResultMode(MTL::VisibilityResultModeCounting, 8);
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(static_cast<uint64_t*>(counters->contents())[0], 0u);
    EXPECT_EQ(static_cast<uint64_t*>(counters->contents())[1], 64u);
}

TEST_F(Render, TextureWithoutRenderTargetUsageStaysAsItIs)
{
    auto* d = textureDescriptor();
    d->setUsage(MTL::TextureUsageShaderRead);
    auto* t = texture(d);
    auto* cleared = pass(t);
    cleared->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(1, 1, 1, 1));
    auto* e = encoder(cleared);
    e->setRenderPipelineState(pipeline());
    bindFullTarget(e);
    setColor(e, {1, 1, 1, 1});
    drawFullTarget(e);
    finish(e);
    EXPECT_EQ(pixel(t, 0, 0), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(broken(), rules({"pass.usage"}));
}

TEST_F(Render, PipelineMayWriteLessOrMoreThanThePassHas)
{
    auto *t = texture(), *second = texture();
    auto* wide = pass(t);
    wide->colorAttachments()->object(1)->setTexture(second);
    wide->colorAttachments()->object(1)->setLoadAction(MTL::LoadActionLoad);
    auto* two = pipelineDescriptor();
    two->colorAttachments()->object(1)->setPixelFormat(MTL::PixelFormatRGBA8Unorm);
    auto* none = pass(nullptr); // the attachment is there, its texture is not
    for (auto* d : {wide, none}) {
        auto* e = encoder(d);
        e->setRenderPipelineState(pipeline(d == wide ? pipelineDescriptor() : two));
        bindFullTarget(e);
        setColor(e, {1, 1, 1, 1});
        drawFullTarget(e);
        finish(e);
    }
    EXPECT_EQ(pixel(t, 0, 0), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(pixel(second, 0, 0), (Pixel{0, 0, 0, 0}));
}

TEST_F(Render, DiscardingDeviceDrawsNothing)
{
    SoftMetal::DeviceOptions options;
    options.discards = true;
    auto* other = owned(SoftMetal::newDevice(options));
    auto* t = owned(other->newTexture(textureDescriptor()));
    auto* cleared = pass(t);
    cleared->colorAttachments()->object(0)->setClearColor(MTL::ClearColor(1, 1, 1, 1));
    auto* c = owned(other->newCommandQueue())->commandBuffer();
    c->renderCommandEncoder(cleared)->endEncoding();
    c->commit();
    c->waitUntilCompleted();
    EXPECT_EQ(c->status(), MTL::CommandBufferStatusCompleted);
    EXPECT_EQ(pixel(t, 0, 0), (Pixel{0, 0, 0, 0}));
}

TEST_F(Render, QueuesOfSeveralThreadsDrawTheSame)
{
    auto* state = pipeline("place");
    Pixel expected = pixel(drawn(state), 5, 3);
    std::array<Pixel, 4> seen{};
    std::vector<std::thread> threads;
    for (size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] {
            auto* inner = NS::AutoreleasePool::alloc()->init();
            auto* own = device->newCommandQueue();
            auto* t = device->newTexture(textureDescriptor());
            auto* vertices = device->newBuffer(fullTarget().data(), 48, MTL::ResourceStorageModeShared);
            const float depth = 0;
            for (int n = 0; n < 10; ++n) {
                auto* c = own->commandBuffer();
                auto* e = c->renderCommandEncoder(pass(t));
                e->setRenderPipelineState(state);
                e->setVertexBuffer(vertices, 0, 0);
                e->setVertexBytes(&depth, sizeof depth, 5);
                drawFullTarget(e);
                e->endEncoding();
                c->commit();
                c->waitUntilCompleted();
            }
            seen[i] = pixel(t, 5, 3);
            for (NS::Object* object : {reinterpret_cast<NS::Object*>(vertices), reinterpret_cast<NS::Object*>(t), reinterpret_cast<NS::Object*>(own)}) object->release();
            inner->release();
        });
    for (auto& thread : threads) thread.join();
    for (const Pixel& p : seen) EXPECT_EQ(p, expected);
}

// ---- programs ---------------------------------------------------------------------------------------------------------------

using Program = Device;

TEST_F(Program, CompilersMessagesAreTheErrorsDescription)
{
    NS::Error* error = nullptr;
    EXPECT_EQ(device->newLibrary(text("fragment float4 f() { return unknown; }"), nullptr, &error), nullptr);
    ASSERT_NE(error, nullptr);
    std::string message = error->localizedDescription()->utf8String();
    EXPECT_NE(message.find("error: "), std::string::npos) << message;
    EXPECT_NE(message.find("unknown"), std::string::npos) << message;
    EXPECT_EQ(error->code(), MTL::LibraryErrorCompileFailure);
}

TEST_F(Program, KnowsItsLanguageByNumber)
{
    auto compiles = [&](const char* condition, MTL::LanguageVersion version) {
        auto* options = owned(MTL::CompileOptions::alloc()->init());
        if (version != 0) options->setLanguageVersion(version);
        const std::string source = std::string("#if !(") + condition + ")\n#error not so\n#endif\n";
        NS::Error* error = nullptr;
        return owned(device->newLibrary(text(source), version != 0 ? options : nullptr, &error)) != nullptr;
    };
    EXPECT_TRUE(compiles("__METAL_VERSION__ == 110", MTL::LanguageVersion1_1));
    EXPECT_TRUE(compiles("__METAL_VERSION__ == 240", MTL::LanguageVersion2_4));
    EXPECT_TRUE(compiles("__METAL_VERSION__ == 310", MTL::LanguageVersion3_1));
    EXPECT_FALSE(compiles("__METAL_VERSION__ == 310", MTL::LanguageVersion3_0));
    EXPECT_TRUE(compiles("__METAL_VERSION__ == 310 && defined(__METAL_MACOS__)", MTL::LanguageVersion{}));
}

TEST_F(Program, MacrosOfTheOptionsAreDefined)
{
    auto* options = owned(MTL::CompileOptions::alloc()->init());
    options->setPreprocessorMacros(NS::Dictionary::dictionary(reinterpret_cast<NS::Object*>(text("0.5")), reinterpret_cast<NS::Object*>(text("SHADE"))));
    NS::Error* error = nullptr;
    auto* made = owned(device->newLibrary(text("#include <metal_stdlib>\nusing namespace metal;\nfragment float4 f() { return float4(SHADE); }"), options, &error));
    EXPECT_NE(made, nullptr) << (error ? error->localizedDescription()->utf8String() : "");
}

TEST_F(Program, UnknownFunctionIsNil)
{
    EXPECT_EQ(library()->newFunction(text("nothing")), nullptr);
    NS::Error* error = nullptr;
    EXPECT_EQ(library()->newFunction(text("nothing"), owned(MTL::FunctionConstantValues::alloc()->init()), &error), nullptr);
    EXPECT_NE(error, nullptr);
}

TEST_F(Program, LibraryNamesItsFunctions)
{
    std::vector<std::string> names;
    NS::Array* all = library()->functionNames();
    for (NS::UInteger i = 0; i < all->count(); ++i) names.emplace_back(all->object<NS::String>(i)->utf8String());
    EXPECT_NE(std::find(names.begin(), names.end(), "corners"), names.end());
    EXPECT_EQ(function("corners")->functionType(), MTL::FunctionTypeVertex);
    EXPECT_EQ(function("plain")->functionType(), MTL::FunctionTypeFragment);
}

class PipelineError : public Device
{
protected:
    std::string messageOf(MTL::RenderPipelineDescriptor* d)
    {
        NS::Error* error = nullptr;
        EXPECT_EQ(device->newRenderPipelineState(d, &error), nullptr);
        return error ? error->localizedDescription()->utf8String() : "";
    }
};

TEST_F(PipelineError, NoVertexFunction) { EXPECT_EQ(messageOf(owned(MTL::RenderPipelineDescriptor::alloc()->init())), "vertexFunction must not be nil"); }

TEST_F(PipelineError, InputThatNobodyWrites) { EXPECT_NE(messageOf(pipelineDescriptor("unlinked")).find("unknown"), std::string::npos); }

TEST_F(PipelineError, AttributeMissingFromTheVertexDescriptor)
{
    auto* d = pipelineDescriptor();
    d->setVertexDescriptor(nullptr);
    EXPECT_NE(messageOf(d).find("position"), std::string::npos);
}

TEST_F(PipelineError, OutputOfAnotherKindThanTheAttachment) { EXPECT_NE(messageOf(pipelineDescriptor("counted")).find("counted"), std::string::npos); }

TEST_F(PipelineError, FunctionsInTheWrongPlace)
{
    auto* d = pipelineDescriptor();
    d->setVertexFunction(function("plain"));
    EXPECT_NE(messageOf(d).find("not a vertex function"), std::string::npos);
}

TEST_F(PipelineError, DepthFormatWithoutDepth)
{
    auto* d = pipelineDescriptor();
    d->setDepthAttachmentPixelFormat(MTL::PixelFormatRGBA8Unorm);
    EXPECT_NE(messageOf(d).find("has no depth"), std::string::npos);
}

} // namespace device_test
