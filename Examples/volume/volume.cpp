// SPDX-License-Identifier: Apache-2.0
// A volume viewer: a 3D texture of densities, marched through front to back by a loop in the fragment program.
//   volume [PICTURE.ppm]
#include "../Gl.h"
#include "../Picture.h"

#include <cmath>
#include <vector>

namespace {

constexpr int Size = 256, Side = 48;

// Local 0: the eye's direction through the volume, one step long. The ray starts at the front face.
constexpr std::string_view MarchProgram = R"(!!ARBfp1.0
PARAM step = program.local[0];
PARAM warm = { 1.0, 0.55, 0.25, 1.0 };
TEMP at, density, color, weight;
MOV at, fragment.texcoord[0];
MOV at.z, 0.0;
MOV color, 0.0;
REP 48;
TEX density, at, texture[0], 3D;
SUB weight.x, 1.0, color.w;
MUL weight.x, weight.x, density.x;
MUL weight.x, weight.x, 0.14;
MAD color.xyz, warm, weight.x, color;
ADD color.w, color.w, weight.x;
ADD at.xyz, at, step;
ENDREP;
MOV result.color, color;
END
)";

/// Two soft shells, one inside the other, as eight-bit densities in the red channel.
std::vector<unsigned char> densities()
{
    std::vector<unsigned char> voxels;
    for (int z = 0; z < Side; ++z)
        for (int y = 0; y < Side; ++y)
            for (int x = 0; x < Side; ++x) {
                float dx = (x + 0.5f) / Side - 0.5f, dy = (y + 0.5f) / Side - 0.5f, dz = (z + 0.5f) / Side - 0.5f;
                float r = std::sqrt(dx * dx + dy * dy + dz * dz);
                float outer = std::exp(-600 * (r - 0.4f) * (r - 0.4f)), inner = 1.6f * std::exp(-900 * (r - 0.2f) * (r - 0.2f));
                auto value = static_cast<unsigned char>(std::fmin(1.0f, outer + inner) * 255);
                voxels.insert(voxels.end(), {value, value, value, 255});
            }
    return voxels;
}

void loadVolume()
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_3D, name);
    for (GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R}) glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA8, Side, Side, Side, 0, GL_RGBA, GL_UNSIGNED_BYTE, densities().data());
}

} // namespace

int main(int argc, char** argv)
{
    using namespace example;
    ZALMetalContext* context = makeContext();
    loadVolume();
    drawInto(makeTarget(Size, Size));
    useQuad();
    glViewport(0, 0, Size, Size);
    loadProgram(GL_VERTEX_PROGRAM_ARB, QuadVertexProgram);
    loadProgram(GL_FRAGMENT_PROGRAM_ARB, MarchProgram);
    setLocal(GL_FRAGMENT_PROGRAM_ARB, 0, 0, 0, 1.0f / 48, 0);
    drawQuad();

    int failed = glGetError() != GL_NO_ERROR || writeFramebuffer(argc > 1 ? argv[1] : "volume.ppm", Size, Size);
    ZALMetalContextDestroy(context);
    return failed;
}
