// SPDX-License-Identifier: Apache-2.0
#include "Workload.h"

#include "DemoPrograms.h"
#include "Draws.h"
#include "Pattern.h"

#include <array>

namespace bench {
namespace {

using scenes::Host;

void setLocal(GLuint index, std::array<float, 4> values)
{
    glProgramLocalParameter4fvARB(GL_FRAGMENT_PROGRAM_ARB, index, values.data());
}

void clearAll(const Host& host)
{
    glViewport(0, 0, host.width(), host.height());
    glDisable(GL_DEPTH_TEST);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

// ---- draw_overhead -------------------------------------------------------------------------------------------------

/// Many draws of one triangle of about one pixel, nothing changed between them.
class DrawOverhead final : public Run
{
public:
    explicit DrawOverhead(const Host& host) : host_(host) {}

    double step() override
    {
        clearAll(host_);
        for (int i = 0; i < DrawsAStep; ++i) drawTriangle();
        glFinish();
        return DrawsAStep;
    }

    bool picture() override
    {
        step();
        return true;
    }

private:
    static constexpr int DrawsAStep = 2000;
    const Host& host_;
};

std::unique_ptr<Run> makeDrawOverhead(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {1, 0.5f, 0.25f, 1});
    useTriangle(0.01f);
    return std::make_unique<DrawOverhead>(host);
}

// ---- fill ----------------------------------------------------------------------------------------------------------

/// Layers of one full-target quad; what differs between the fill workloads is the fragment program.
class Fill final : public Run
{
public:
    Fill(const Host& host, int layers) : host_(host), layers_(layers) {}

    double step() override
    {
        clearAll(host_);
        for (int i = 0; i < layers_; ++i) drawQuad();
        glFinish();
        return static_cast<double>(layers_) * host_.width() * host_.height();
    }

    bool picture() override
    {
        step();
        return true;
    }

private:
    const Host& host_;
    int layers_;
};

std::unique_ptr<Run> makeFillFlat(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    setLocal(0, {0.2f, 0.4f, 0.6f, 1});
    useQuad();
    return std::make_unique<Fill>(host, 8);
}

/// Texture coordinate, normal and position for the demo's lighting, from the corner's clip-space position.
constexpr std::string_view LitQuadVertexProgram = R"(!!ARBvp1.0
TEMP normal;
MOV result.position, vertex.attrib[0];
MOV result.texcoord[0], vertex.attrib[8];
MUL normal.xy, vertex.attrib[0], 0.7;
MOV normal.z, 1.0;
MOV normal.w, 0.0;
MOV result.texcoord[1], normal;
SUB normal.xyz, vertex.attrib[0], 2.0;
MOV result.texcoord[2], normal;
END
)";

void useTexture()
{
    auto pattern = scenes::glazePattern(256);
    GLuint name = 0;
    glGenTextures(1, &name);
    glActiveTextureARB(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 256, 256, 0, GL_RGBA, GL_UNSIGNED_BYTE, pattern.levels[0].data());
}

std::unique_ptr<Run> makeFillDemo(Host& host, std::string& error)
{
    if (!usePrograms(LitQuadVertexProgram, scenes::LitFragmentProgram, error)) return nullptr;
    setLocal(0, {0.48f, 0.64f, 0.6f, 0});
    setLocal(1, {0.9f, 0.9f, 0.8f, 0});
    setLocal(2, {-0.6f, 0.0f, 0.8f, 0});
    setLocal(3, {0.2f, 0.2f, 0.3f, 0});
    setLocal(4, {0.1f, 0.1f, 0.1f, 0});
    setLocal(5, {0.5f, 0.5f, 0.5f, 48});
    useTexture();
    useQuad();
    return std::make_unique<Fill>(host, 4);
}

// ---- program_load ----------------------------------------------------------------------------------------------------

/// From a text never seen before to the end of the first draw with it.
class ProgramLoad final : public Run
{
public:
    ProgramLoad(Host& host, int statements) : host_(host), statements_(statements) {}

    double step() override
    {
        std::string error;
        GLuint name = loadProgram(GL_FRAGMENT_PROGRAM_ARB, text(), error);
        clearAll(host_);
        drawTriangle();
        glFinish();
        glDeleteProgramsARB(1, &name);
        return 1;
    }

private:
    /// Arithmetic on a few registers; the constant in the first statement makes each text its own.
    std::string text()
    {
        std::string result = "!!ARBfp1.0\nTEMP a, b, c;\nPARAM seed = { 0." + std::to_string(1000 + ++serial_) +
                             ", 0.5, 0.25, 1.0 };\nMOV a, fragment.texcoord[0];\nMOV b, seed;\nMOV c, b;\n";
        static constexpr std::array Statements = {"MAD a, a, b, c;\n", "MUL c.xyz, a, b;\n", "DP3 b.x, a, c;\n",
                                                  "MAX c, b, -a;\n",   "ADD b, c, a;\n",     "FRC a.yz, b;\n"};
        for (int i = 4; i < statements_; ++i) result += Statements[static_cast<size_t>(i) % Statements.size()];
        return result + "MOV result.color, a;\nEND\n";
    }

    Host& host_;
    int statements_;
    int serial_ = 0;
};

template <int Statements>
std::unique_ptr<Run> makeProgramLoad(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    useTriangle(0.5f);
    return std::make_unique<ProgramLoad>(host, Statements);
}

constexpr std::array Table = {
    Workload{"draw_overhead", "kdraws/s", true, 1e-3, "2000 draws of a one-pixel triangle, nothing changed", makeDrawOverhead},
    Workload{"fill_flat", "Mpix/s", true, 1e-6, "eight full-target quads of one colour", makeFillFlat},
    Workload{"fill_demo", "Mpix/s", true, 1e-6, "as fill_flat, four quads with the demo's fragment program", makeFillDemo},
    Workload{"program_load_12", "ms", false, 1e3, "new text of 12 statements to the end of its first draw", makeProgramLoad<12>},
    Workload{"program_load_60", "ms", false, 1e3, "as program_load_12, 60 statements", makeProgramLoad<60>},
    Workload{"program_load_400", "ms", false, 1e3, "as program_load_12, 400 statements", makeProgramLoad<400>},
};

} // namespace

std::span<const Workload> workloads() { return Table; }

double measure(const Workload& workload, Run& run, std::chrono::duration<double> atLeast)
{
    using Clock = std::chrono::steady_clock;
    run.step();
    double units = 0;
    auto start = Clock::now();
    std::chrono::duration<double> elapsed{};
    do {
        units += run.step();
        elapsed = Clock::now() - start;
    } while (elapsed < atLeast);
    return workload.scale * (workload.perSecond ? units / elapsed.count() : elapsed.count() / units);
}

} // namespace bench
