// SPDX-License-Identifier: Apache-2.0
// What a draw costs on a device that checks and throws away: the GL calls, and the Metal calls that come of them made
// directly. What lies between the two is the library's own.
#include "micro/Timing.h"

#include "ZALGLContextObjects.h"
#include "ZALMetalContext.h"
#include "ZALMetalState.h"

#include <SoftMetal/SoftMetal.hpp>

#include <cstring>
#include <string_view>

namespace micro
{
namespace
{

constexpr int Draws = 2000; // in a pass
constexpr const char* Vertex = "!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.texcoord[0], vertex.attrib[8];\nEND\n";
constexpr const char* Plain = "!!ARBfp1.0\nMOV result.color, program.local[0];\nEND\n";
constexpr const char* Textured = "!!ARBfp1.0\nTEMP R0;\nTEX R0, fragment.texcoord[0], texture[0], 2D;\nMOV result.color, R0;\nEND\n";

/// A context with a triangle, its programs and two textures.
class Scene
{
public:
    Scene()
    {
        SoftMetal::DeviceOptions options;
        options.discards = true;
        device_ = SoftMetal::newDevice(options);
        queue_ = device_->newCommandQueue();
        ZALMetalContextInitFromMTLCommandQueue(context_, nullptr, queue_);
        auto* d = MTL::TextureDescriptor::texture2DDescriptor(MTL::PixelFormatBGRA8Unorm, 64, 64, false);
        d->setUsage(MTL::TextureUsageRenderTarget);
        d->setStorageMode(MTL::StorageModePrivate);
        color_ = device_->newTexture(d);
        ZALMetalContextSetMetalDrawable(context_, color_, nullptr);
        glViewport(0, 0, 64, 64);
        glGenBuffers(2, buffers_);
        const float corners[24] = {};
        const uint16_t indices[3] = {0, 1, 2};
        glBindBuffer(GL_ARRAY_BUFFER, buffers_[0]);
        glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        for (GLuint i : {0u, 8u}) {
            glVertexAttribPointerARB(i, 4, GL_FLOAT, GL_FALSE, 32, reinterpret_cast<void*>(i == 0 ? uintptr_t{0} : uintptr_t{16}));
            glEnableVertexAttribArrayARB(i);
        }
        glGenTextures(2, textures);
        const uint32_t texel = 0;
        for (GLuint name : textures) {
            glBindTexture(GL_TEXTURE_2D, name);
            glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, &texel);
        }
        glGenProgramsARB(3, programs_);
        load(GL_VERTEX_PROGRAM_ARB, programs_[0], Vertex);
        load(GL_FRAGMENT_PROGRAM_ARB, programs_[1], Plain);
        load(GL_FRAGMENT_PROGRAM_ARB, programs_[2], Textured);
    }
    ~Scene()
    {
        ZALMetalContextDestroy(context_);
        color_->release();
        queue_->release();
        device_->release();
    }
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    void useTexture(bool textured) { glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, programs_[textured ? 2 : 1]); }
    static void draw() { glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_SHORT, nullptr); }
    ZALGLState& gl() { return *context_->glState; }
    MTL::Device* device() { return device_; }
    MTL::RenderCommandEncoder* encoder() { return context_->metalData->metalState->getOrCreateCommandEncoder(&gl()); }
    MTL::Buffer* metal(int i) { return gl().contextObjects->buffers.Find(buffers_[i])->GetMTLBuffer(); }
    MTL::Texture* texture(int i) { return gl().contextObjects->textures.Find(textures[i])->EnsureMetalTexture(); }
    void* locals(GLenum target) { return getBoundProgram(&gl(), target)->locals; }

    GLuint textures[2];

private:
    static void load(GLenum target, GLuint name, std::string_view text)
    {
        glBindProgramARB(target, name);
        glProgramStringARB(target, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(text.size()), text.data());
    }

    MTL::Device* device_;
    MTL::CommandQueue* queue_;
    ZALMetalContext* context_ = nullptr;
    MTL::Texture* color_;
    GLuint buffers_[2], programs_[3];
};

/// The Metal calls of a draw, with the objects that the library uses for it.
class Direct
{
public:
    explicit Direct(Scene& scene) : scene_(scene)
    {
        SoftMetal::setCommandLog(true);
        Scene::draw();
        for (const auto& entry : SoftMetal::takeCommandLog())
            if (entry.call == "setRenderPipelineState") pipeline_ = const_cast<MTL::RenderPipelineState*>(static_cast<const MTL::RenderPipelineState*>(entry.object("state")));
        SoftMetal::setCommandLog(false);
    }

    void draw(bool changed, int texture)
    {
        MTL::RenderCommandEncoder* e = scene_.encoder();
        e->setVertexBuffer(scene_.metal(0), 0, 0);
        e->setVertexBuffer(scene_.metal(0), 16, 8);
        e->setStencilReferenceValue(0);
        e->setCullMode(MTL::CullModeNone);
        e->setTriangleFillMode(MTL::TriangleFillModeFill);
        MTL::SamplerState* sampler = nullptr;
        if (texture >= 0) {
            MTL::SamplerDescriptor* d = MTL::SamplerDescriptor::alloc()->init();
            sampler = scene_.device()->newSamplerState(d);
            d->release();
        }
        textures_[0] = texture >= 0 ? scene_.texture(texture) : nullptr;
        samplers_[0] = sampler;
        e->setFragmentTextures(textures_, NS::Range(0, 32));
        e->setFragmentSamplerStates(samplers_, NS::Range(0, 16));
        if (sampler) sampler->release();
        e->setVertexTextures(none_, NS::Range(0, 32));
        e->setVertexSamplerStates(noSamplers_, NS::Range(0, 16));
        e->setRenderPipelineState(pipeline_);
        if (changed) ++matrices_[0];
        if (changed) ++locals_[0];
        e->setVertexBytes(matrices_, sizeof matrices_, 16);
        e->setFragmentBytes(matrices_, sizeof matrices_, 16);
        e->setVertexBytes(scene_.locals(GL_VERTEX_PROGRAM_ARB), 4096, 17);
        e->setFragmentBytes(locals_, sizeof locals_, 17);
        e->drawIndexedPrimitives(MTL::PrimitiveTypeTriangle, NS::UInteger(3), MTL::IndexTypeUInt16, scene_.metal(1), NS::UInteger(0), NS::UInteger(1));
    }

private:
    Scene& scene_;
    MTL::RenderPipelineState* pipeline_ = nullptr;
    MTL::Texture *textures_[32] = {}, *none_[32] = {};
    MTL::SamplerState *samplers_[16] = {}, *noSamplers_[16] = {};
    float matrices_[448] = {}, locals_[1024] = {};
};

template <class Call>
Row timedDraws(const char* name, const Call& call)
{
    return timed(name, "ns/draw", Draws, [&] {
        for (int i = 0; i < Draws; ++i)
            call(i);
        glFinish();
    });
}

void change(int i)
{
    const float value[4] = {static_cast<float>(i & 1), 0, 0, 1};
    const float moved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, static_cast<float>(i & 3), 0, 0, 1};
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, 0, value);
    glLoadMatrixf(moved);
}

/// With so many other objects in each store.
void addMany(std::vector<Row>& rows, GLsizei count)
{
    std::vector<GLuint> names(static_cast<size_t>(count));
    glGenBuffers(count, names.data());
    glGenTextures(count, names.data());
    rows.push_back(timedDraws(("GL, nothing changed, " + std::to_string(count) + " objects").c_str(), [](int) { Scene::draw(); }));
}

} // namespace

std::vector<Row> draws()
{
    Scene scene;
    std::vector<Row> rows;
    scene.useTexture(false);
    Direct plain(scene);
    rows.push_back(timedDraws("GL, nothing changed", [](int) { Scene::draw(); }));
    rows.push_back(timedDraws("Metal directly, the same", [&](int) { plain.draw(false, -1); }));
    rows.push_back(timedDraws("GL, a local and a matrix changed", [](int i) {
        change(i);
        Scene::draw();
    }));
    rows.push_back(timedDraws("Metal directly, the same", [&](int) { plain.draw(true, -1); }));
    scene.useTexture(true);
    Direct textured(scene);
    rows.push_back(timedDraws("GL, another texture bound", [&](int i) {
        glBindTexture(GL_TEXTURE_2D, scene.textures[i & 1]);
        Scene::draw();
    }));
    rows.push_back(timedDraws("Metal directly, the same", [&](int i) { textured.draw(false, i & 1); }));
    scene.useTexture(false);
    for (GLsizei count : {10, 1000, 100000})
        addMany(rows, count);
    return rows;
}

} // namespace micro
