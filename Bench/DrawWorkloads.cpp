// SPDX-License-Identifier: Apache-2.0
// Draws of a triangle of about one pixel: what a draw costs, and what a change before it costs.
#include "Draws.h"
#include "WorkloadTables.h"

#include <vector>

namespace bench {
namespace {

using scenes::Host;

constexpr int DrawsAStep = 2000;

/// The change is made before each draw and is told the draw's number.
std::unique_ptr<Run> makeDraws(Host& host, std::string& error, const std::function<void(int)>& change)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {1, 0.5f, 0.25f, 1});
    useTriangle(0.01f);
    return std::make_unique<Steps>(host, true, true, [change] {
        for (int i = 0; i < DrawsAStep; ++i) {
            if (change) change(i);
            drawTriangle();
        }
        return double{DrawsAStep};
    });
}

std::unique_ptr<Run> makeDrawOverhead(Host& host, std::string& error) { return makeDraws(host, error, {}); }

std::unique_ptr<Run> makeDrawLocal(Host& host, std::string& error)
{
    return makeDraws(host, error, [](int i) {
        setLocal(0, {static_cast<float>(i & 1), 0.5f, 0.25f, 1});
        const float moved[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, static_cast<float>(i & 3), 0, 0, 1};
        glLoadMatrixf(moved);
    });
}

std::unique_ptr<Run> makeDrawTexture(Host& host, std::string& error)
{
    GLuint names[2] = {usePattern(GL_LINEAR), usePattern(GL_LINEAR)};
    auto run = makeDraws(host, error, [a = names[0], b = names[1]](int i) { glBindTexture(GL_TEXTURE_2D, i & 1 ? a : b); });
    if (!run || !loadProgram(GL_FRAGMENT_PROGRAM_ARB, TexturedFragmentProgram, error)) return nullptr;
    return run;
}

std::unique_ptr<Run> makeDrawBlend(Host& host, std::string& error)
{
    return makeDraws(host, error, [](int i) { (i & 1 ? glEnable : glDisable)(GL_BLEND); });
}

std::unique_ptr<Run> makeDrawPrograms(Host& host, std::string& error)
{
    auto run = makeDraws(host, error, {});
    GLuint a = loadProgram(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 0.5;\nEND\n", error);
    GLuint b = loadProgram(GL_FRAGMENT_PROGRAM_ARB, "!!ARBfp1.0\nMOV result.color, 0.25;\nEND\n", error);
    if (!run || !a || !b) return nullptr;
    return makeDraws(host, error, [a, b](int i) { glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, i & 1 ? a : b); });
}

std::unique_ptr<Run> makeImmediate(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {1, 0.5f, 0.25f, 1});
    glDisableVertexAttribArrayARB(0);
    glDisableVertexAttribArrayARB(8);
    return std::make_unique<Steps>(host, true, true, [] {
        for (int i = 0; i < DrawsAStep; ++i) {
            glBegin(GL_TRIANGLE_STRIP);
            for (int corner = 0; corner < 4; ++corner) {
                float x = static_cast<float>(corner & 1) * 0.01f, y = static_cast<float>(corner >> 1) * 0.01f;
                glVertexAttrib4fARB(8, x, y, 0, 1);
                glVertexAttrib4fARB(0, x, y, 0, 1);
            }
            glEnd();
        }
        return double{DrawsAStep};
    });
}

/// Draws with each of many textures in turn: what finding an object among many costs.
template <int Count>
std::unique_ptr<Run> makeManyTextures(Host& host, std::string& error)
{
    std::vector<GLuint> names(Count);
    glGenTextures(Count, names.data());
    const uint32_t texel = 0xFF8040FF;
    for (GLuint name : names) {
        glBindTexture(GL_TEXTURE_2D, name);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 1, 1, 0, GL_BGRA, GL_UNSIGNED_BYTE, &texel);
    }
    auto run = makeDraws(host, error, [names, next = size_t{0}](int) mutable { glBindTexture(GL_TEXTURE_2D, names[next++ % Count]); });
    if (!run || !loadProgram(GL_FRAGMENT_PROGRAM_ARB, TexturedFragmentProgram, error)) return nullptr;
    return run;
}

constexpr std::array Table = {
    Workload{"draw_overhead", "kdraws/s", true, 1e-3, "2000 draws of a one-pixel triangle, nothing changed", makeDrawOverhead},
    Workload{"draw_local", "kdraws/s", true, 1e-3, "as draw_overhead, a local and the modelview matrix changed", makeDrawLocal},
    Workload{"draw_texture", "kdraws/s", true, 1e-3, "as draw_overhead, another texture bound, and sampled", makeDrawTexture},
    Workload{"draw_blend", "kdraws/s", true, 1e-3, "as draw_overhead, blending switched", makeDrawBlend},
    Workload{"draw_programs", "kdraws/s", true, 1e-3, "as draw_overhead, another fragment program bound", makeDrawPrograms},
    Workload{"immediate", "kdraws/s", true, 1e-3, "strips of four vertices between glBegin and glEnd", makeImmediate},
    Workload{"textures_100", "kdraws/s", true, 1e-3, "as draw_texture, 100 textures in turn", makeManyTextures<100>},
    Workload{"textures_10k", "kdraws/s", true, 1e-3, "as draw_texture, 10 000 textures in turn", makeManyTextures<10000>},
    Workload{"textures_100k", "kdraws/s", true, 1e-3, "as draw_texture, 100 000 textures in turn", makeManyTextures<100000>},
};

} // namespace

std::span<const Workload> drawWorkloads() { return Table; }

} // namespace bench
