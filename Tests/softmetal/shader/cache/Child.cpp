// SPDX-License-Identifier: Apache-2.0
// Draws one picture and tells on one line what that took. The argument is the value of the program's function constant.
#include <SoftMetal/SoftMetal.hpp>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace
{

constexpr const char* Source = R"(
#include <metal_stdlib>
using namespace metal;
constant int rounds [[function_constant(0)]];
constant float table[8] = { 0.5, 0.25, 0.75, 0.125, 0.3, 0.6, 0.9, 0.2 };
struct Corner { float4 position [[position]]; float2 place; };
vertex Corner corner(uint id [[vertex_id]], constant float& size [[buffer(0)]])
{
    Corner c;
    c.place = float2(id == 1 ? 3 : -1, id == 2 ? 3 : -1);
    c.position = float4(c.place * size, 0.5, 1);
    return c;
}
fragment float4 shade(Corner c [[stage_in]], texture2d<float> image [[texture(0)]])
{
    constexpr sampler linear(filter::linear, address::repeat);
    float4 sum = image.sample(linear, c.place);
    for (int i = 0; i < rounds; ++i) sum += sin(sum * float(i) + c.place.xyxy) * table[int(c.place.x * 40.0 + float(i)) & 7];
    if (c.place.y > 0.9) discard_fragment();
    return sum * 0.5 + 0.5;
}
)";
constexpr NS::UInteger Side = 64;

NS::String* text(const char* s)
{
    return NS::String::string(s, NS::UTF8StringEncoding);
}

[[noreturn]] void fail(NS::Error* error)
{
    std::fprintf(stderr, "%s\n", error ? error->localizedDescription()->utf8String() : "failed");
    std::exit(1);
}

MTL::Texture* texture(MTL::Device* device, MTL::PixelFormat format)
{
    auto* d = MTL::TextureDescriptor::texture2DDescriptor(format, Side, Side, false);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    return device->newTexture(d);
}

MTL::RenderPipelineState* pipeline(MTL::Device* device, int rounds)
{
    NS::Error* error = nullptr;
    auto* library = device->newLibrary(text(Source), nullptr, &error);
    if (!library) fail(error);
    auto* values = MTL::FunctionConstantValues::alloc()->init();
    values->setConstantValue(&rounds, MTL::DataTypeInt, NS::UInteger(0));
    auto* d = MTL::RenderPipelineDescriptor::alloc()->init();
    d->setVertexFunction(library->newFunction(text("corner"), values, &error));
    d->setFragmentFunction(library->newFunction(text("shade"), values, &error));
    d->colorAttachments()->object(0)->setPixelFormat(MTL::PixelFormatRGBA32Float);
    auto* state = device->newRenderPipelineState(d, &error);
    if (!state) fail(error);
    return state;
}

/// The picture's bytes in one number.
uint64_t drawn(MTL::Device* device, MTL::RenderPipelineState* state)
{
    std::vector<uint8_t> texels(Side * Side * 4);
    for (size_t i = 0; i < texels.size(); ++i)
        texels[i] = static_cast<uint8_t>(i * 31 + i / 256 * 7);
    auto* image = texture(device, MTL::PixelFormatRGBA8Unorm);
    image->replaceRegion(MTL::Region(0, 0, Side, Side), 0, texels.data(), Side * 4);
    auto* target = texture(device, MTL::PixelFormatRGBA32Float);
    auto* pass = MTL::RenderPassDescriptor::renderPassDescriptor();
    pass->colorAttachments()->object(0)->setTexture(target);
    pass->colorAttachments()->object(0)->setLoadAction(MTL::LoadActionClear);
    auto* commands = device->newCommandQueue()->commandBuffer();
    auto* encoder = commands->renderCommandEncoder(pass);
    const float size = 1;
    encoder->setRenderPipelineState(state);
    encoder->setVertexBytes(&size, sizeof size, 0);
    encoder->setFragmentTexture(image, 0);
    encoder->drawPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(0), NS::UInteger(3));
    encoder->endEncoding();
    commands->commit();
    commands->waitUntilCompleted();
    std::vector<uint8_t> pixels(Side * Side * 16);
    target->getBytes(pixels.data(), Side * 16, MTL::Region(0, 0, Side, Side), 0);
    uint64_t hash = 0xcbf29ce484222325u;
    for (uint8_t byte : pixels)
        hash = (hash ^ byte) * 0x100000001b3u;
    return hash;
}

bool compilerIsOpen()
{
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("libSoftMetalCompiler") != std::string::npos) return true;
    return false;
}

} // namespace

int main(int argc, char** argv)
{
    auto* pool = NS::AutoreleasePool::alloc()->init();
    auto* device = MTL::CreateSystemDefaultDevice();
    uint64_t picture = drawn(device, pipeline(device, argc > 1 ? std::atoi(argv[1]) : 3));
    SoftMetal::ShaderWork work = SoftMetal::shaderWork();
    std::printf("%lu parsed, %lu generated, %lu and %lu found, %s, picture %016lx\n", work.parsed, work.generated,
                work.librariesFound, work.functionsFound, compilerIsOpen() ? "open" : "not open", picture);
    pool->release();
    return 0;
}
