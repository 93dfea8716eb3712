// SPDX-License-Identifier: Apache-2.0
// A host may hold another GL and another LLVM: Mesa's software GL draws in the same process, before and after this
// library and in turns with it, and each keeps drawing what it drew alone.
#include "DemoScene.h"
#include "Host.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

#include <GL/gl.h>

#include <EGL/egl.h>

#include <EGL/eglext.h>

#include <dlfcn.h>

namespace
{

using scenes::Image;

constexpr int Size = 64;

/// Mesa's GL by EGL's own lookup; nothing of it is linked, as in a host that loads its GL at run time.
class Mesa
{
public:
    Mesa()
    {
        setenv("LIBGL_ALWAYS_SOFTWARE", "1", 1);
        library_ = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);
        if (!library_) return;
        lookUp_ = reinterpret_cast<void* (*)(const char*)>(dlsym(library_, "eglGetProcAddress"));
        display_ = egl<PFNEGLGETPLATFORMDISPLAYPROC>("eglGetPlatformDisplay")(EGL_PLATFORM_SURFACELESS_MESA,
                                                                              EGL_DEFAULT_DISPLAY, nullptr);
        if (!egl<PFNEGLINITIALIZEPROC>("eglInitialize")(display_, nullptr, nullptr)) return;
        egl<PFNEGLBINDAPIPROC>("eglBindAPI")(EGL_OPENGL_API);
        makeContext();
    }

    bool works() const { return works_; }

    std::string renderer() const
    {
        return reinterpret_cast<const char*>(gl<decltype(&glGetString)>("glGetString")(GL_RENDERER));
    }

    /// Fills the surface with one triangle of a colour and gives the pixel in its middle, red in the lowest byte.
    uint32_t drawnColour(float red, float green, float blue) const
    {
        gl<decltype(&glColor3f)>("glColor3f")(red, green, blue);
        gl<decltype(&glBegin)>("glBegin")(GL_TRIANGLES);
        for (auto [x, y] : {std::pair{-1.f, -1.f}, {3.f, -1.f}, {-1.f, 3.f}})
            gl<decltype(&glVertex2f)>("glVertex2f")(x, y);
        gl<decltype(&glEnd)>("glEnd")();
        uint32_t pixel = 0;
        gl<decltype(&glReadPixels)>("glReadPixels")(Size / 2, Size / 2, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
        return pixel;
    }

private:
    template <typename Function>
    Function egl(const char* name) const
    {
        return reinterpret_cast<Function>(dlsym(library_, name));
    }
    template <typename Function>
    Function gl(const char* name) const
    {
        return reinterpret_cast<Function>(lookUp_(name));
    }

    void makeContext()
    {
        const EGLint wanted[] = {
            EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_RED_SIZE, 8, EGL_NONE};
        const EGLint size[] = {EGL_WIDTH, Size, EGL_HEIGHT, Size, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (!egl<PFNEGLCHOOSECONFIGPROC>("eglChooseConfig")(display_, wanted, &config, 1, &count) || count != 1) return;
        EGLSurface surface = egl<PFNEGLCREATEPBUFFERSURFACEPROC>("eglCreatePbufferSurface")(display_, config, size);
        EGLContext context =
            egl<PFNEGLCREATECONTEXTPROC>("eglCreateContext")(display_, config, EGL_NO_CONTEXT, nullptr);
        works_ = egl<PFNEGLMAKECURRENTPROC>("eglMakeCurrent")(display_, surface, surface, context);
    }

    void* library_ = nullptr; // stays open: drivers do not like to be unloaded
    void* (*lookUp_)(const char*) = nullptr;
    EGLDisplay display_ = nullptr;
    bool works_ = false;
};

constexpr uint32_t Red = 0xff0000ff, Green = 0xff00ff00;

class BesideMesa : public testing::Test
{
protected:
    void SetUp() override
    {
        std::string error;
        ASSERT_TRUE(scenes::readObjFile(ZAL_SOURCE_DIR "/Examples/models/teapot.obj", model_, error)) << error;
    }

    /// The demo's frame through this library, in a context of its own: programs are translated and compiled.
    Image frame()
    {
        std::string error;
        auto host = scenes::makeHost(Size, Size, error);
        EXPECT_TRUE(host) << error;
        scenes::DemoScene scene(model_);
        EXPECT_TRUE(scene.setUp(error)) << error;
        scene.draw(Size, Size, 0.4f);
        return host->read();
    }

    static bool hasManyColours(const Image& image)
    {
        int changes = 0;
        for (size_t i = 4; i < image.pixels.size(); i += 4)
            changes += image.pixels[i] != image.pixels[i - 4];
        return changes > Size;
    }

private:
    scenes::Model model_;
};

TEST_F(BesideMesa, MesaLoadedFirst)
{
    Mesa mesa;
    ASSERT_TRUE(mesa.works());
    EXPECT_NE(mesa.renderer().find("llvmpipe"), std::string::npos) << mesa.renderer();
    EXPECT_EQ(mesa.drawnColour(1, 0, 0), Red);
    Image ours = frame();
    EXPECT_TRUE(hasManyColours(ours));
    EXPECT_EQ(mesa.drawnColour(0, 1, 0), Green);
    EXPECT_EQ(frame().pixels, ours.pixels);
}

TEST_F(BesideMesa, MesaLoadedLast)
{
    Image alone = frame();
    EXPECT_TRUE(hasManyColours(alone));
    Mesa mesa;
    ASSERT_TRUE(mesa.works());
    EXPECT_EQ(mesa.drawnColour(1, 0, 0), Red);
    EXPECT_EQ(frame().pixels, alone.pixels);
    EXPECT_EQ(mesa.drawnColour(0, 1, 0), Green);
}

} // namespace
