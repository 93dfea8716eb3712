// SPDX-License-Identifier: Apache-2.0
#include "fuzz/api/World.h"

#include "ZALGLBeginEnd.h"
#include "ZALMetalState.h"

#include <cstdlib>
#include <cstring>
#include <iterator>

namespace fuzz::api
{

namespace
{

struct HostTexture
{
    MTL::PixelFormat format;
    uint32_t width, height;
};

constexpr HostTexture HostTextures[] = {
    {MTL::PixelFormatBGRA8Unorm, 16, 16},  {MTL::PixelFormatBGRA8Unorm, 33, 7},
    {MTL::PixelFormatRGBA16Float, 16, 16}, {MTL::PixelFormatDepth32Float_Stencil8, 16, 16},
    {MTL::PixelFormatDepth32Float, 33, 7},
};

MTL::Texture* newTexture(MTL::Device* device, const HostTexture& wanted)
{
    auto* d = MTL::TextureDescriptor::texture2DDescriptor(wanted.format, wanted.width, wanted.height, false);
    d->setStorageMode(MTL::StorageModePrivate);
    d->setUsage(MTL::TextureUsageShaderRead | MTL::TextureUsageRenderTarget);
    return device->newTexture(d);
}

/// Deletes all objects of a store but those under the first names, and starts the names anew behind them.
template <class Store>
void empty(Store& store, uint32_t kept)
{
    std::vector<uint32_t> names;
    for (auto* cell = store.objects.begin(); cell; cell = store.objects.next())
        if (cell->key > kept) names.push_back(cell->key);
    for (uint32_t name : names)
        store.Delete(name);
    store.nextName = kept + 1;
}

} // namespace

World::World()
{
    setenv("SOFTMETAL_SHADER_LIMIT", "256", 1); // programs that loop end soon
    SoftMetal::setLogSink([](const std::string&) {});
    SoftMetal::setValidation(SoftMetal::Validation::Report);
    auto* pool = NS::AutoreleasePool::alloc()->init();
    for (int i = 0; i < 2; ++i) {
        SoftMetal::DeviceOptions options;
        options.depth24Stencil8 = i == 0;
        devices_[i] = SoftMetal::newDevice(options);
        queues[i] = devices_[i]->newCommandQueue();
    }
    SoftMetal::setDevices({devices_[0]});
    for (const HostTexture& wanted : HostTextures)
        hostTextures.push_back(newTexture(devices_[0], wanted));
    require(ZALMetalContextInitFromMTLCommandQueue(root_, nullptr, queues[0]) == ZALMetalResultSuccess);
    loadPrograms();
    pool->release();
}

void World::loadPrograms()
{
    ZALMetalContextMakeCurrent(root_);
    GLuint names[LoadedPrograms];
    glGenProgramsARB(LoadedPrograms, names);
    for (uint32_t i = 0; i < LoadedPrograms; ++i) {
        const ProgramText& p = ProgramTexts[i];
        GLenum target = p.vertex ? GL_VERTEX_PROGRAM_ARB : GL_FRAGMENT_PROGRAM_ARB;
        require(names[i] == i + 1);
        glBindProgramARB(target, names[i]);
        glProgramStringARB(target, p.metal ? GL_PROGRAM_FORMAT_METAL_SOURCE_ZAL : GL_PROGRAM_FORMAT_ASCII_ARB,
                           static_cast<GLsizei>(p.text.size()), p.text.data());
        require(glGetError() == GL_NO_ERROR);
    }
}

void World::begin(bool intel, bool strict)
{
    draws = 24;
    loads = 2;
    newQueues = 1;
    require(ZALMetalContextInitFromShareContext(slots[0].context, root_) == ZALMetalResultSuccess);
    slots[0].context->glState->isIntelDevice = intel;
    slots[0].context->glState->strictValidation = strict;
    ZALMetalContextSetMetalDrawable(slots[0].context, hostTextures[0], hostTextures[3]);
}

uint8_t* World::memory(size_t bytes, Input& input)
{
    require(bytes <= MostClientBytes);
    blocks_.push_back(std::make_unique<uint8_t[]>(bytes));
    uint8_t* block = blocks_.back().get();
    const std::string_view start = input.take(bytes < 16 ? bytes : 16);
    if (!start.empty()) std::memcpy(block, start.data(), start.size());
    for (size_t i = start.size(); i < bytes; ++i)
        block[i] = start.empty() ? static_cast<uint8_t>(i) : block[i % start.size()];
    return block;
}

void World::release(Slot& slot)
{
    ZALMetalContext left = *slot.context;
    if (slot.view) keep(slot.view);
    ZALMetalContextRelease(slot.context);
    auto* handle = static_cast<ZALMetalContext*>(std::malloc(sizeof(ZALMetalContext)));
    *handle = left;
    ZALMetalContextDestroy(handle);
    slot = {};
}

void World::destroy(Slot& slot)
{
    if (slot.view) keep(slot.view);
    ZALMetalContextDestroy(slot.context);
    slot = {};
}

void World::end()
{
    for (Slot& slot : slots)
        if (slot.context) destroy(slot);
    for (NSView* view : views_)
        view->release();
    views_.clear();
    forgetMemory();
    forgetObjects();
    checkFrame();
    SoftMetal::takeMessages();
    ZALMetalSetLogCallback(nullptr, nullptr);
    ZALMetalSetLogLevel(ZALMetalLogLevelInfo);
}

void World::forgetObjects()
{
    ZALGLContextObjects& objects = *root_->glState->contextObjects;
    bool whole = objects.framebuffers.Find(0) != nullptr;
    for (uint32_t name = 1; name <= LoadedPrograms; ++name) {
        ZALGLProgramObject* program = objects.programs.Find(name);
        whole = whole && program && program->IsValid();
        if (program) std::memset(program->locals, 0, sizeof program->locals);
    }
    empty(objects.buffers, 0);
    empty(objects.textures, 0);
    empty(objects.framebuffers, 0);
    empty(objects.programs, LoadedPrograms);
    constexpr int RunsWithOne = 2000; // programs remember the layouts that they were drawn with
    if (whole && ++runs_ % RunsWithOne != 0) return;
    ZALMetalContextDestroy(root_);
    require(ZALMetalContextInitFromMTLCommandQueue(root_, nullptr, queues[0]) == ZALMetalResultSuccess);
    loadPrograms();
}

/// A pixel of a clear and a draw by a context of its own.
void World::checkFrame()
{
    ZALMetalContext* context = nullptr;
    require(ZALMetalContextInitFromShareContext(context, root_) == ZALMetalResultSuccess);
    ZALMetalContextSetMetalDrawable(context, hostTextures[0], nullptr);
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    uint8_t pixel[4] = {};
    glReadPixels(3, 3, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, pixel);
    require(pixel[0] == 0 && pixel[1] == 255 && pixel[2] == 0 && pixel[3] == 255);

    glViewport(0, 0, 16, 16);
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, 1);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, 2);
    glBegin(GL_TRIANGLE_STRIP);
    for (int corner = 0; corner < 4; ++corner) {
        glColor4f(0, 0, 1, 1);
        glVertexAttrib4fARB(0, corner & 1 ? 1.0f : -1.0f, corner & 2 ? 1.0f : -1.0f, 0, 1);
    }
    glEnd();
    glReadPixels(3, 3, 1, 1, GL_BGRA, GL_UNSIGNED_BYTE, pixel);
    require(glGetError() == GL_NO_ERROR);
    require(pixel[0] == 255 && pixel[1] == 0 && pixel[2] == 0 && pixel[3] == 255);
    ZALMetalContextDestroy(context);
}

} // namespace fuzz::api
