// SPDX-License-Identifier: Apache-2.0
// Draws the demo scene with the host that this program is linked with and writes the frame as PNG:
//   capture_zal|capture_mesa MODEL.obj OUT.png [WIDTH HEIGHT [ANGLE]]
#include "DemoScene.h"
#include "Host.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

int main(int argc, char** argv)
{
    using namespace scenes;
    if (argc != 3 && argc != 5 && argc != 6) {
        std::fprintf(stderr, "usage: %s MODEL.obj OUT.png [WIDTH HEIGHT [ANGLE]]\n", argv[0]);
        return 2;
    }
    int width = argc >= 5 ? std::atoi(argv[3]) : 1280, height = argc >= 5 ? std::atoi(argv[4]) : 720;
    float angle = argc == 6 ? static_cast<float>(std::atof(argv[5])) : 0.45f;
    std::string error;
    Model model;
    if (!readObjFile(argv[1], model, error)) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 2;
    }
    std::unique_ptr<Host> host = makeHost(width, height, error);
    DemoScene scene(model);
    bool drawn = host && scene.setUp(error);
    if (drawn) {
        scene.draw(width, height, angle);
        drawn = writePng(argv[2], host->read(), error);
    }
    if (!drawn) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    std::printf("%s\n", host->description().c_str());
    return 0;
}
