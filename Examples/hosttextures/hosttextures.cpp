// SPDX-License-Identifier: Apache-2.0
// GL into textures that the host has made with Metal, without a window: the host reads its texture itself.
//   hosttextures [PICTURE.ppm]
#include "../Gl.h"
#include "../Picture.h"

#include <Metal/Metal.hpp>

#include <vector>

namespace {

constexpr int Size = 200;

constexpr std::string_view RingProgram = R"(!!ARBfp1.0
PARAM middle = { 0.5, 0.5, 0.0, 0.0 };
PARAM near = { 0.15, 0.45, 0.85, 1.0 };
PARAM far = { 0.95, 0.35, 0.2, 1.0 };
TEMP d;
SUB d.xy, fragment.texcoord[0], middle;
MUL d.xy, d, d;
ADD d.x, d.x, d.y;
RSQ d.y, d.x;
RCP d.y, d.y;
MUL d.y, d.y, 12.0;
FRC d.y, d.y;
LRP result.color, d.y, far, near;
END
)";

MTL::Texture* newTexture(MTL::Device* device, MTL::PixelFormat format, MTL::StorageMode storage)
{
    MTL::TextureDescriptor* descriptor = MTL::TextureDescriptor::texture2DDescriptor(format, Size, Size, false);
    descriptor->setUsage(MTL::TextureUsageRenderTarget | MTL::TextureUsageShaderRead);
    descriptor->setStorageMode(storage);
    return device->newTexture(descriptor);
}

/// The colours as Metal holds them: top row first, blue in the lowest byte.
std::vector<unsigned char> colours(MTL::CommandQueue* queue, MTL::Texture* texture)
{
    MTL::CommandBuffer* commands = queue->commandBuffer();
    MTL::BlitCommandEncoder* blit = commands->blitCommandEncoder();
    blit->synchronizeResource(texture); // a managed texture's copy on the host's side
    blit->endEncoding();
    commands->commit();
    commands->waitUntilCompleted();
    std::vector<unsigned char> pixels(Size * Size * 4);
    texture->getBytes(pixels.data(), Size * 4, MTL::Region(0, 0, Size, Size), 0);
    return pixels;
}

bool writePicture(const char* path, const std::vector<unsigned char>& pixels)
{
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return false;
    std::fprintf(file, "P6\n%d %d\n255\n", Size, Size);
    for (size_t i = 0; i < pixels.size(); i += 4) {
        const unsigned char rgb[3] = {pixels[i + 2], pixels[i + 1], pixels[i]};
        std::fwrite(rgb, 1, 3, file);
    }
    return std::fclose(file) == 0;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace example;
    NS::AutoreleasePool* pool = NS::AutoreleasePool::alloc()->init();
    MTL::Device* device = MTL::CreateSystemDefaultDevice();
    if (!device) fail("there is no Metal device");
    MTL::CommandQueue* queue = device->newCommandQueue();
    MTL::Texture* color = newTexture(device, MTL::PixelFormatBGRA8Unorm, MTL::StorageModeManaged);
    MTL::Texture* depth = newTexture(device, MTL::PixelFormatDepth32Float, MTL::StorageModePrivate);

    ZALMetalContext* context = nullptr;
    if (ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue) != ZALMetalResultSuccess) fail("no context on this queue");
    if (ZALMetalContextSetMetalDrawable(context, color, depth) != ZALMetalResultSuccess) fail("the textures do not fit");
    useQuad();
    glViewport(0, 0, Size, Size);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    loadProgram(GL_VERTEX_PROGRAM_ARB, QuadVertexProgram);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, RingProgram);
    drawQuad();
    glFinish();

    bool written = glGetError() == GL_NO_ERROR && writePicture(argc > 1 ? argv[1] : "hosttextures.ppm", colours(queue, color));
    ZALMetalContextDestroy(context);
    for (NS::Object* object : {static_cast<NS::Object*>(color), static_cast<NS::Object*>(depth), static_cast<NS::Object*>(queue), static_cast<NS::Object*>(device)})
        object->release();
    pool->release();
    return written ? 0 : 1;
}
