// SPDX-License-Identifier: Apache-2.0
// Draws one scene of the suite with the library that this program is linked with and writes it as PNG:
//   scene_zal|scene_mesa NAME OUT.png
#include "suite/SceneTable.h"
#include "suite/Stage.h"

#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    using namespace scenes;
    const SceneRow* row = argc == 3 ? findScene(argv[1]) : nullptr;
    if (!row) {
        std::fprintf(stderr, "usage: %s NAME OUT.png\n", argv[0]);
        for (const SceneGroup& group : sceneGroups())
            for (const SceneRow& one : group.rows)
                std::fprintf(stderr, "  %s\n", one.name);
        return 2;
    }
    std::string error;
    std::unique_ptr<Host> host = makeHost(Stage::Side, Stage::Side, error);
    if (!host) {
        std::fprintf(stderr, "%s\n", error.c_str());
        return 1;
    }
    Stage stage(*host);
    row->draw(stage, row->argument);
    GLenum code = glGetError();
    // A kept behaviour may well be an error here or there; what is drawn is compared all the same.
    if (code != GL_NO_ERROR && !row->kept) stage.fail("the GL error is " + std::to_string(code));
    if (stage.failure().empty() && writePng(argv[2], stage.picture(), error)) return 0;
    std::fprintf(stderr, "%s\n", stage.failure().empty() ? error.c_str() : stage.failure().c_str());
    return 1;
}
