// SPDX-License-Identifier: Apache-2.0
// Post-processing: a scene into one texture, a separable blur through a second one, and the glow added to the scene.
//   postprocess [PICTURE.ppm]
#include "../Gl.h"
#include "../Picture.h"

namespace {

constexpr int Width = 320, Height = 240;

// A grid of small discs; everything else is dark.
constexpr std::string_view SceneProgram = R"(!!ARBfp1.0
PARAM cells = { 8.0, 6.0, 0.0, 0.0 };
PARAM middle = { 0.5, 0.5, 0.0, 0.0 };
PARAM tint = { 1.0, 0.75, 0.35, 1.0 };
TEMP cell, disc;
MUL cell, fragment.texcoord[0], cells;
FRC cell.xy, cell;
SUB cell.xy, cell, middle;
MUL cell.xy, cell, cell;
ADD disc.x, cell.x, cell.y;
SLT disc.x, disc.x, 0.02;
MUL result.color, tint, disc.x;
END
)";

// Seven taps along local 0, one texel of the direction. Local 1 is the size: rectangles are addressed in texels.
constexpr std::string_view BlurProgram = R"(!!ARBfp1.0
PARAM step = program.local[0];
PARAM size = program.local[1];
TEMP middle, at, texel, sum;
MUL middle, fragment.texcoord[0], size;
MAD at, step, -3.0, middle;
TEX texel, at, texture[0], RECT;
MUL sum, texel, 0.05;
MAD at, step, -2.0, middle;
TEX texel, at, texture[0], RECT;
MAD sum, texel, 0.12, sum;
SUB at, middle, step;
TEX texel, at, texture[0], RECT;
MAD sum, texel, 0.2, sum;
TEX texel, middle, texture[0], RECT;
MAD sum, texel, 0.26, sum;
ADD at, middle, step;
TEX texel, at, texture[0], RECT;
MAD sum, texel, 0.2, sum;
MAD at, step, 2.0, middle;
TEX texel, at, texture[0], RECT;
MAD sum, texel, 0.12, sum;
MAD at, step, 3.0, middle;
TEX texel, at, texture[0], RECT;
MAD result.color, texel, 0.05, sum;
END
)";

constexpr std::string_view AddProgram = R"(!!ARBfp1.0
PARAM size = program.local[1];
TEMP at, scene, glow;
MUL at, fragment.texcoord[0], size;
TEX scene, at, texture[0], RECT;
TEX glow, at, texture[1], RECT;
MAD_SAT result.color, glow, 1.5, scene;
END
)";

void bind(GLenum unit, GLuint texture)
{
    glActiveTextureARB(unit);
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, texture);
}

} // namespace

int main(int argc, char** argv)
{
    using namespace example;
    ZALMetalContext* context = makeContext();
    GLuint scene = makeTarget(Width, Height), across = makeTarget(Width, Height);
    GLuint glow = makeTarget(Width, Height), result = makeTarget(Width, Height);
    useQuad();
    glViewport(0, 0, Width, Height);
    loadProgram(GL_VERTEX_PROGRAM_ARB, QuadVertexProgram);

    drawInto(scene);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, SceneProgram);
    drawQuad();

    GLuint blur = loadProgram(GL_FRAGMENT_PROGRAM_ARB, BlurProgram);
    drawInto(across);
    bind(GL_TEXTURE0, scene);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 0, 1, 0, 0, 0);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 1, Width, Height, 0, 0);
    drawQuad();
    drawInto(glow);
    bind(GL_TEXTURE0, across);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, blur);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 0, 0, 1, 0, 0);
    drawQuad();

    drawInto(result);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, AddProgram);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 1, Width, Height, 0, 0);
    bind(GL_TEXTURE0, scene);
    bind(GL_TEXTURE1, glow);
    drawQuad();

    int failed = glGetError() != GL_NO_ERROR || writeFramebuffer(argc > 1 ? argv[1] : "postprocess.ppm", Width, Height);
    ZALMetalContextDestroy(context);
    return failed;
}
