// SPDX-License-Identifier: Apache-2.0
// Mesa's software GL through EGL without a window system: the independent GL that pictures are compared with.
#include "Host.h"

#include "SceneGL.h"

#include <cstdlib>

#include <EGL/egl.h>

#include <EGL/eglext.h>

/// Read by the leak checker of sanitizer builds: Mesa unloads its drivers at the end, so what they leave cannot be named.
extern "C" __attribute__((visibility("default"))) int __lsan_is_turned_off();
int __lsan_is_turned_off()
{
    return 1;
}

namespace scenes {
namespace {

class MesaHost final : public Host
{
public:
    MesaHost(int width, int height, EGLDisplay display, EGLSurface surface, EGLContext context)
        : Host(width, height), display_(display), surface_(surface), context_(context)
    {
    }

    ~MesaHost() override
    {
        eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display_, context_);
        eglDestroySurface(display_, surface_);
        eglTerminate(display_);
    }

    std::string description() const override
    {
        const char* version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
        const char* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
        return std::string("Mesa GL ") + (version ? version : "?") + " on " + (renderer ? renderer : "?");
    }

    void swap() override { glFinish(); }

private:
    EGLDisplay display_;
    EGLSurface surface_;
    EGLContext context_;
};

/// Exact filters: llvmpipe takes short cuts in level-of-detail arithmetic unless told otherwise.
void askForExactFilters()
{
    setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
    setenv("GALLIVM_PERF", "no_brilinear,no_rho_approx,no_quad_lod", 0);
}

EGLConfig chooseConfig(EGLDisplay display)
{
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_RED_SIZE, 8,
                             EGL_GREEN_SIZE,   8,               EGL_BLUE_SIZE,       8,              EGL_ALPHA_SIZE, 8,
                             EGL_DEPTH_SIZE,   24,              EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    return eglChooseConfig(display, wanted, &config, 1, &count) && count == 1 ? config : nullptr;
}

} // namespace

std::unique_ptr<Host> makeHost(int width, int height, std::string& error)
{
    askForExactFilters();
    EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API)) {
        error = "Mesa offers no surfaceless EGL display";
        return nullptr;
    }
    EGLConfig config = chooseConfig(display);
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    EGLSurface surface = config ? eglCreatePbufferSurface(display, config, size) : EGL_NO_SURFACE;
    EGLContext context = config ? eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr) : EGL_NO_CONTEXT;
    if (surface == EGL_NO_SURFACE || !eglMakeCurrent(display, surface, surface, context)) {
        error = "Mesa offers no compatibility context with a colour and a depth buffer";
        eglTerminate(display);
        return nullptr;
    }
    return std::make_unique<MesaHost>(width, height, display, surface, context);
}

} // namespace scenes
