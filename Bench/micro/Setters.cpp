// SPDX-License-Identifier: Apache-2.0
// State setters: each sets another value than the one before, on a device that throws its work away.
#include "micro/Timing.h"

#include "ZALMetalContext.h"

#include <SoftMetal/SoftMetal.hpp>

namespace micro
{
namespace
{

template <class Call>
Row setter(const char* name, const Call& call)
{
    constexpr int Count = 100000;
    return timed(name, "ns/call", Count, [&] {
        for (int i = 0; i < Count; ++i)
            call(i);
    });
}

} // namespace

std::vector<Row> setters()
{
    SoftMetal::DeviceOptions options;
    options.discards = true;
    MTL::Device* device = SoftMetal::newDevice(options);
    MTL::CommandQueue* queue = device->newCommandQueue();
    ZALMetalContext* context = nullptr;
    ZALMetalContextInitFromMTLCommandQueue(context, nullptr, queue);
    std::vector<Row> rows = {
        setter("glViewport", [](int i) { glViewport(0, 0, i, 1); }),
        setter("glDepthFunc", [](int i) { glDepthFunc(i & 1 ? GL_LESS : GL_EQUAL); }),
        setter("glDepthMask", [](int i) { glDepthMask(i & 1); }),
        setter("glEnable, glDisable: depth test", [](int i) { (i & 1 ? glEnable : glDisable)(GL_DEPTH_TEST); }),
        setter("glEnable, glDisable: blending", [](int i) { (i & 1 ? glEnable : glDisable)(GL_BLEND); }),
        setter("glBlendFunc", [](int i) { glBlendFunc(GL_ONE, i & 1 ? GL_ONE : GL_ZERO); }),
        setter("glColorMask", [](int i) { glColorMask(i & 1, 1, 1, 1); }),
        setter("glStencilFunc", [](int i) { glStencilFunc(GL_EQUAL, i, 0xFF); }),
        setter("glLoadIdentity", [](int) { glLoadIdentity(); }),
        setter("glPushMatrix, glPopMatrix", [](int i) { i & 1 ? glPopMatrix() : glPushMatrix(); }),
        setter("glOrtho", [](int) { glOrtho(0, 640, 480, 0, -1, 1); }),
        setter("glGetError", [](int) { keep(glGetError()); }),
    };
    ZALMetalContextDestroy(context);
    queue->release();
    device->release();
    return rows;
}

} // namespace micro
