// SPDX-License-Identifier: Apache-2.0
// A Wavefront OBJ model in a window on the X server:  viewer MODEL.obj [--size WIDTHxHEIGHT] [--angle RADIANS] [--out
// PICTURE.png] The mouse turns it while its left button is held, and the wheel in steps; "s" writes the picture as PNG,
// Escape quits. Exit status: 0 done, 1 nothing could be shown or written, 2 the command line or the model is not
// usable.
#include "../ModelOptions.h"
#include "DemoScene.h"
#include "Image.h"

#include <ZALMetal/ZALMetal.h>
#include <ZALMetal/ZALMetalGL.h>

#include <SoftMetal/SoftMetal.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace
{

constexpr float radiansPerPixel = 0.01f, radiansPerStep = 0.1f;
constexpr double longestWait = 100; // milliseconds, for events while nothing changes

int failed(const std::string& error, int status)
{
    std::fprintf(stderr, "viewer: %s\n", error.c_str());
    return status;
}

/// A window with a context that draws into it. The context is current from open() to the end.
class GlWindow
{
public:
    ~GlWindow()
    {
        if (context_) ZALMetalContextDestroy(context_);
        if (view_) view_->release();
    }

    bool open(const std::string& title, const ModelOptions& options, std::string& error)
    {
        view_ =
            SoftMetal::newWindow(title, static_cast<uint32_t>(options.width), static_cast<uint32_t>(options.height));
        if (!view_)
            error = "there is no window to draw in"; // the device has said why
        else if (ZALMetalContextInitFromMTLCommandQueue(context_, nullptr, nullptr) != ZALMetalResultSuccess)
            error = "there is no Metal device";
        else if (ZALMetalContextCreateCAMetalLayer(context_, view_, MTL::PixelFormatBGRA8Unorm,
                                                   MTL::PixelFormatDepth32Float) != ZALMetalResultSuccess)
            error = "the layer could not be made";
        return error.empty();
    }

    NSView* view() const { return view_; }
    int width() const { return static_cast<int>(view_->bounds().size.width); }
    int height() const { return static_cast<int>(view_->bounds().size.height); }
    void swap() { ZALMetalContextSwapBuffers(context_); }

private:
    NSView* view_ = nullptr;
    ZALMetalContext* context_ = nullptr;
};

/// What the user has asked for so far.
struct Wishes
{
    float angle = 0;
    bool changed = true; // the picture is to be drawn again
    bool save = false, quit = false;
    bool turning = false;
    double lastX = 0; // of the mouse, while turning
};

void follow(Wishes& wishes, const SoftMetal::WindowEvent& event)
{
    switch (event.kind) {
    case SoftMetal::EventKind::MouseDown:
    case SoftMetal::EventKind::MouseUp:
        if (event.button == 1) wishes.turning = event.kind == SoftMetal::EventKind::MouseDown;
        wishes.lastX = event.x;
        break;
    case SoftMetal::EventKind::MouseMoved:
        if (!wishes.turning) break;
        wishes.angle += static_cast<float>(event.x - wishes.lastX) * radiansPerPixel;
        wishes.lastX = event.x;
        wishes.changed = true;
        break;
    case SoftMetal::EventKind::Scrolled:
        wishes.angle += static_cast<float>(event.deltaY) * radiansPerStep;
        wishes.changed = true;
        break;
    case SoftMetal::EventKind::KeyDown:
        wishes.quit |= event.key == SoftMetal::KeyEscape;
        wishes.save |= event.key == 's';
        break;
    case SoftMetal::EventKind::Resized:
        wishes.changed = true;
        break;
    case SoftMetal::EventKind::Closed:
        wishes.quit = true;
        break;
    default:
        break;
    }
}

scenes::Image readPicture(const GlWindow& window)
{
    scenes::Image picture(window.width(), window.height());
    glReadPixels(0, 0, picture.width, picture.height, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    scenes::flipRows(picture);
    return picture;
}

/// Draws the frame, writes it where that was asked for, and shows it.
bool show(GlWindow& window, const scenes::DemoScene& scene, const Wishes& wishes, const std::string& out,
          std::string& error)
{
    scene.draw(window.width(), window.height(), wishes.angle);
    bool written = !wishes.save || scenes::writePng(out, readPicture(window), error);
    if (wishes.save && written) std::printf("wrote %s at angle %.9g\n", out.c_str(), static_cast<double>(wishes.angle));
    std::fflush(stdout);
    window.swap();
    return written;
}

bool runLoop(GlWindow& window, const scenes::DemoScene& scene, const ModelOptions& options, std::string& error)
{
    Wishes wishes;
    wishes.angle = options.angle;
    while (!wishes.quit) {
        if (wishes.changed || wishes.save) {
            if (!show(window, scene, wishes, options.out, error)) return false;
            wishes.changed = wishes.save = false;
        }
        for (const auto& event : SoftMetal::pollEvents(window.view(), longestWait))
            follow(wishes, event);
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    ModelOptions options{{}, "viewer.png", 960, 540};
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: viewer MODEL.obj [--size WIDTHxHEIGHT] [--angle RADIANS] [--out PICTURE.png]\n");
        return 2;
    }
    std::string error;
    scenes::Model model;
    if (!scenes::readObjFile(options.model, model, error)) return failed(error, 2);
    GlWindow window;
    if (!window.open("viewer", options, error)) return failed(error, 1);
    scenes::DemoScene scene(model);
    if (!scene.setUp(error) || !runLoop(window, scene, options, error)) return failed(error, 1);
    return 0;
}
