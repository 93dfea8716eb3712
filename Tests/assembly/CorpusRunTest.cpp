// SPDX-License-Identifier: Apache-2.0
// The programs of the corpus run on the library and in the interpreter, with several inputs.
#include "assembly/Machine.h"

#include <cmath>
#include <filesystem>
#include <fstream>

namespace assembly {
namespace {

constexpr int Rounds = 8;
constexpr double Bound = 2e-5;

std::string contents(const std::string& name)
{
    std::ifstream file(std::filesystem::path(ZAL_TRANSLATION_CORPUS) / name);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

std::string nameOf(const testing::TestParamInfo<const char*>& info)
{
    std::string name = info.param;
    for (char& c : name)
        if (c == '-' || c == '.') c = '_';
    return name;
}

// ---- fragment programs ------------------------------------------------------------------------------------------------------

class FragmentCorpus : public Machine, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Programs, FragmentCorpus,
                         testing::Values("blur.fp", "colour-space.fp", "depth-output.fp", "lighting.fp", "multiple-outputs.fp", "picking.fp", "tone-curve.fp", "volume.fp",
                                         "depth-peel.fp", "branches.fp"),
                         nameOf);

TEST_P(FragmentCorpus, GivesTheInterpretersColours)
{
    std::string text = contents(GetParam());
    ASSERT_EQ(load(PassVertex, text), "");
    std::mt19937 random(7);
    int drawn = 0;
    for (int round = 0; round < Rounds; ++round) {
        change(random);
        inputs().registers["program.local[1]"].v[0] = 3 + round; // steps, where a program loops
        Outcome wanted = interpret(text, fragmentInputs());
        auto got = draw();
        ASSERT_EQ(got.has_value(), !wanted.killed) << "round " << round;
        if (wanted.killed) continue;
        ++drawn;
        for (size_t i = 0; i < 8; ++i)
            if (auto shade = wanted.results.find("result.color[" + std::to_string(i) + "]"); shade != wanted.results.end())
                expectClose(shade->second, (*got)[i], Bound, "round " + std::to_string(round) + ", colour " + std::to_string(i));
    }
    EXPECT_GT(drawn, 0);
}

// ---- vertex programs ----------------------------------------------------------------------------------------------------------

class VertexCorpus : public Machine, public testing::WithParamInterface<const char*>
{
};

INSTANTIATE_TEST_SUITE_P(Programs, VertexCorpus, testing::Values("lighting.vp", "skinning.vp", "texture-matrix.vp"), nameOf);

/// What a vertex program hands on is written to attachments; where it puts its vertex is where the point is.
TEST_P(VertexCorpus, GivesTheInterpretersVertex)
{
    std::string text = contents(GetParam());
    std::string show = "!!ARBfp1.0\nOPTION ARB_draw_buffers;\nMOV result.color[0], fragment.color;\n";
    for (int i = 0; i < 4; ++i) show += "MOV result.color[" + std::to_string(i + 1) + "], fragment.texcoord[" + std::to_string(i) + "];\n";
    ASSERT_EQ(load(text, show + "END\n"), "");
    std::mt19937 random(11);
    int drawn = 0;
    for (int round = 0; round < Rounds * 8; ++round) {
        change(random);
        Outcome wanted = interpret(text, inputs());
        const Register& p = wanted.results.at("result.position");
        bool inside = p[3] > 0 && std::abs(p[0]) < p[3] && std::abs(p[1]) < p[3] && p[2] > 0 && p[2] < p[3];
        auto got = draw();
        double px = (p[0] / p[3] + 1) / 2 * Side, py = (p[1] / p[3] + 1) / 2 * Side;
        bool nearEdge = std::abs(px - std::round(px)) < 1e-3 || std::abs(py - std::round(py)) < 1e-3;
        bool justOutside = !inside && px > -1 && px < Side + 1 && py > -1 && py < Side + 1; // a point has the size of a pixel
        if (nearEdge || justOutside) continue;
        ASSERT_EQ(got.has_value(), inside) << "round " << round;
        if (!inside) continue;
        ++drawn;
        EXPECT_EQ(column, static_cast<int>(px)) << "round " << round;
        EXPECT_EQ(row, static_cast<int>(py)) << "round " << round;
        if (auto shade = wanted.results.find("result.color[0]"); shade != wanted.results.end()) expectClose(shade->second, (*got)[0], Bound, "colour");
        for (size_t i = 0; i < 4; ++i)
            if (auto at = wanted.results.find("result.texcoord[" + std::to_string(i) + "]"); at != wanted.results.end())
                expectClose(at->second, (*got)[i + 1], Bound, "coordinate " + std::to_string(i));
    }
    EXPECT_GT(drawn, 3);
}

} // namespace
} // namespace assembly
