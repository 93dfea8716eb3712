// SPDX-License-Identifier: Apache-2.0
#include "Draws.h"
#include "WorkloadTables.h"

namespace bench
{
namespace
{

using scenes::Host;

/// From a text to the end of the first draw with it: each time another, never seen before, or always the same.
class ProgramLoad final : public Run
{
public:
    ProgramLoad(Host& host, int statements, bool again) : host_(host), statements_(statements), again_(again) {}

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
    /// Arithmetic on a few registers; the constants make each text its own, in this process and among all of them:
    /// caches on disk must not know it.
    std::string text()
    {
        if (!again_) ++serial_;
        long now = again_ ? 0 : now_;
        std::string result = "!!ARBfp1.0\nTEMP a, b, c;\nPARAM seed = { 0." + std::to_string(1000 + serial_) + ", 0." +
                             std::to_string(now / 1000000 % 1000000) + ", 0." + std::to_string(now % 1000000) +
                             ", 1.0 };\nMOV a, fragment.texcoord[0];\nMOV b, seed;\nMOV c, b;\n";
        static constexpr std::array Statements = {"MAD a, a, b, c;\n", "MUL c.xyz, a, b;\n", "DP3 b.x, a, c;\n",
                                                  "MAX c, b, -a;\n",   "ADD b, c, a;\n",     "FRC a.yz, b;\n"};
        for (int i = 4; i < statements_; ++i)
            result += Statements[static_cast<size_t>(i) % Statements.size()];
        return result + "MOV result.color, a;\nEND\n";
    }

    Host& host_;
    int statements_;
    bool again_;
    int serial_ = 0;
    long now_ = std::chrono::system_clock::now().time_since_epoch().count() / 1000;
};

template <int Statements, bool Again>
std::unique_ptr<Run> makeProgramLoad(Host& host, std::string& error)
{
    if (!usePrograms(PassVertexProgram, FlatFragmentProgram, error)) return nullptr;
    useTriangle(0.5f);
    return std::make_unique<ProgramLoad>(host, Statements, Again);
}

constexpr std::array Table = {
    Workload{"program_load_12", "ms", false, 1e3, "new text of 12 statements to the end of its first draw",
             makeProgramLoad<12, false>},
    Workload{"program_load_60", "ms", false, 1e3, "as program_load_12, 60 statements", makeProgramLoad<60, false>},
    Workload{"program_load_400", "ms", false, 1e3, "as program_load_12, 400 statements", makeProgramLoad<400, false>},
    Workload{"program_again_12", "ms", false, 1e3,
             "as program_load_12, but a text that was loaded and drawn with before", makeProgramLoad<12, true>},
    Workload{"program_again_60", "ms", false, 1e3, "as program_again_12, 60 statements", makeProgramLoad<60, true>},
    Workload{"program_again_400", "ms", false, 1e3, "as program_again_12, 400 statements", makeProgramLoad<400, true>},
};

} // namespace

std::span<const Workload> programWorkloads()
{
    return Table;
}

} // namespace bench
