// SPDX-License-Identifier: Apache-2.0
// The main job in one program: loads a Wavefront OBJ model, draws it with two assembly programs, presents the frame and
// writes it as PNG:  demo MODEL.obj [--out PICTURE.png] [--size WIDTHxHEIGHT] [--angle RADIANS]
// Exit status: 0 done, 1 nothing could be drawn or written, 2 the command line or the model is not usable.
#include "../ModelOptions.h"
#include "DemoScene.h"
#include "Host.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

double millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

int failed(const std::string& error, int status)
{
    std::fprintf(stderr, "demo: %s\n", error.c_str());
    return status;
}

} // namespace

int main(int argc, char** argv)
{
    using namespace scenes;
    ModelOptions options{{}, "demo.png", 1280, 720};
    if (!readOptions(argc, argv, options)) {
        std::fprintf(stderr, "usage: demo MODEL.obj [--out PICTURE.png] [--size WIDTHxHEIGHT] [--angle RADIANS]\n");
        return 2;
    }
    std::string error;
    Model model;
    if (!readObjFile(options.model, model, error)) return failed(error, 2);

    std::unique_ptr<Host> host = makeHost(options.width, options.height, error);
    if (!host) return failed(error, 1);
    auto start = std::chrono::steady_clock::now();
    DemoScene scene(model);
    if (!scene.setUp(error)) return failed(error, 1);
    scene.draw(options.width, options.height, options.angle);
    Image picture = host->read();
    double first = millisecondsSince(start);

    start = std::chrono::steady_clock::now();
    scene.draw(options.width, options.height, options.angle);
    picture = host->read();
    double second = millisecondsSince(start);
    host->swap();
    if (!writePng(options.out, picture, error)) return failed(error, 1);

    std::printf("%s\n%s: %u triangles and a floor, %d x %d pixels\n", host->description().c_str(), options.model.c_str(),
                scene.triangles(), options.width, options.height);
    std::printf("first frame %.1f ms (with both programs' compilation), the next %.1f ms\nwrote %s\n", first, second,
                options.out.c_str());
    return 0;
}
