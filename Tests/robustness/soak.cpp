// SPDX-License-Identifier: Apache-2.0
// A host that runs for long: soak [FRAMES] [--objects]. Two contexts of one scene draw in turn into views that change
// their size, while textures come and go, programs are loaded again and further contexts are made. After a warm-up,
// objects of the device may not grow, nor resident memory by more than one part in a hundred; --objects looks at the
// former only. Exit status 1 when something grew or GL raised an error.
#include "DemoScene.h"
#include "SceneGL.h"

#include <ZALMetal/ZALMetal.h>

#include <SoftMetal/SoftMetal.hpp>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <thread>
#include <vector>

#include <malloc.h>
#include <unistd.h>

namespace
{

constexpr int SizeEvery = 7, SwitchEvery = 5, TextureEvery = 3, ProgramEvery = 20, ContextEvery = 50;
constexpr double MostGrowth = 0.01;
constexpr int64_t SpareObjects = 16; // two layers hold one to three textures each, as the frames overlap

/// An octahedron.
scenes::Model gem()
{
    scenes::Model model;
    for (int axis = 0; axis < 3; ++axis)
        for (float sign : {1.0f, -1.0f}) {
            scenes::Vertex v{};
            v.position[static_cast<size_t>(axis)] = v.normal[static_cast<size_t>(axis)] = sign;
            model.vertices.push_back(v);
        }
    for (uint32_t x : {0u, 1u})
        for (uint32_t y : {2u, 3u})
            for (uint32_t z : {4u, 5u})
                model.indices.insert(model.indices.end(), {x, y, z});
    model.minimum = {-1, -1, -1};
    model.maximum = {1, 1, 1};
    return model;
}

struct Window
{
    ZALMetalContext* context = nullptr;
    NSView* view = nullptr;
    int width = 48, height = 32;
};

bool open(Window& window, ZALMetalContext* share)
{
    int result = share ? ZALMetalContextInitFromShareContext(window.context, share)
                       : ZALMetalContextInitFromMTLCommandQueue(window.context, nullptr, nullptr);
    if (result != ZALMetalResultSuccess) return false;
    window.view = SoftMetal::newView(window.width, window.height);
    return ZALMetalContextCreateCAMetalLayer(window.context, window.view, MTL::PixelFormatBGRA8Unorm,
                                             MTL::PixelFormatDepth32Float) == 0;
}

void close(Window& window)
{
    ZALMetalContextDestroy(window.context);
    window.view->release();
}

void resize(Window& window, int frame)
{
    window.width = 32 + frame / SizeEvery % 5 * 8;
    window.height = 24 + frame / SizeEvery % 3 * 8;
    SoftMetal::setViewSize(window.view, window.width, window.height);
}

void churnTexture(int frame)
{
    GLuint name = 0;
    std::vector<uint8_t> texels(32 * 32 * 3, static_cast<uint8_t>(frame));
    glGenTextures(1, &name);
    glActiveTextureARB(GL_TEXTURE0 + 3);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB8, 32, 32, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    glTexImage2D(GL_TEXTURE_2D, 1, GL_RGB8, 16, 16, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());
    glGetTexImage(GL_TEXTURE_2D, 1, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    glDeleteTextures(1, &name);
    glActiveTextureARB(GL_TEXTURE0);
}

/// A program of its own for one draw, and gone again with its pipeline.
void churnProgram(int frame)
{
    char text[128];
    std::snprintf(text, sizeof text, "!!ARBfp1.0\nMUL result.color, fragment.texcoord[0], %d.5;\nEND\n", frame % 3);
    GLuint name = 0;
    glGenProgramsARB(1, &name);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, name);
    glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB, static_cast<GLsizei>(std::strlen(text)),
                       text);
    glBegin(GL_TRIANGLES);
    for (float x : {-1.0f, 1.0f, 0.0f})
        glVertexAttrib4fARB(0, x, x * x, 0, 1);
    glEnd();
    glDeleteProgramsARB(1, &name);
}

void churnContext(ZALMetalContext* share)
{
    Window window;
    if (!open(window, share)) std::exit(1);
    glClear(GL_COLOR_BUFFER_BIT);
    ZALMetalContextSwapBuffers(window.context);
    close(window);
}

class Soak
{
public:
    Soak() : model_(gem()), scene_(model_) {}

    bool setUp()
    {
        std::string error;
        if (!open(windows_[0], nullptr) || !scene_.setUp(error) || !open(windows_[1], windows_[0].context)) {
            std::fprintf(stderr, "soak: the scene cannot be made. %s\n", error.c_str());
            return false;
        }
        for (GLuint array : {0u, 2u, 8u})
            glEnableVertexAttribArrayARB(array); // in the second context as well
        return true;
    }
    ~Soak()
    {
        close(windows_[1]);
        close(windows_[0]);
    }

    void frame(int number)
    {
        auto* pool = NS::AutoreleasePool::alloc()->init();
        Window& window = windows_[number / SwitchEvery % 2];
        ZALMetalContextMakeCurrent(window.context);
        if (number % SizeEvery == 0) resize(window, number);
        if (number % TextureEvery == 0) churnTexture(number);
        scene_.draw(window.width, window.height, static_cast<float>(number) * 0.01f);
        if (number % ProgramEvery == 0) churnProgram(number);
        ZALMetalContextSwapBuffers(window.context);
        if (number % ContextEvery == 0) {
            churnContext(window.context);
            ZALMetalContextMakeCurrent(window.context);
        }
        pool->release();
    }

    /// Objects once the queue's thread has let go of the last frame's.
    int64_t objects() const
    {
        glFinish();
        int64_t alive = SoftMetal::objectsAlive();
        for (int same = 0; same < 10;) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            int64_t now = SoftMetal::objectsAlive();
            same = now == alive ? same + 1 : 0;
            alive = now;
        }
        return alive;
    }

private:
    scenes::Model model_;
    scenes::DemoScene scene_;
    Window windows_[2];
};

/// Bytes of this process in memory, without what the allocator keeps for later.
double residentBytes()
{
    malloc_trim(0);
    std::ifstream file("/proc/self/statm");
    double all = 0, resident = 0;
    file >> all >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

struct Sample
{
    int64_t objects;
    double bytes;
};

/// The growth from the first sample to the last.
bool report(const std::vector<Sample>& samples, bool objectsOnly)
{
    int64_t objects = samples.back().objects - samples.front().objects;
    double bytes = samples.back().bytes / samples.front().bytes - 1;
    std::printf("after the warm-up: %+lld objects, %+.2f %% resident memory\n", static_cast<long long>(objects),
                bytes * 100);
    bool errors = glGetError() != GL_NO_ERROR;
    if (errors) std::printf("GL raised an error\n");
    return !errors && objects <= SpareObjects && (objectsOnly || bytes <= MostGrowth);
}

} // namespace

int main(int argc, char** argv)
{
    int frames = 20000;
    bool objectsOnly = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--objects") == 0)
            objectsOnly = true;
        else
            frames = std::max(std::atoi(argv[i]), 10);
    }
    SoftMetal::setLogSink([](const std::string&) {});
    Soak soak;
    if (!soak.setUp()) return 1;

    std::vector<Sample> samples;
    for (int frame = 0, tenth = frames / 10; frame < frames; ++frame) {
        soak.frame(frame);
        if ((frame + 1) % tenth != 0 || frame + 1 < 2 * tenth) continue; // two tenths are the warm-up
        samples.push_back({soak.objects(), residentBytes()});
        std::printf("frame %6d: %lld objects, %.1f MiB\n", frame + 1, static_cast<long long>(samples.back().objects),
                    samples.back().bytes / 1048576);
        std::fflush(stdout);
    }
    return report(samples, objectsOnly) ? 0 : 1;
}
