// SPDX-License-Identifier: Apache-2.0
#include "differential/programs/Judge.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace differential
{
namespace
{

namespace fs = std::filesystem;

std::vector<Drawn> drawnBy(const char* program, uint32_t first, uint32_t count, const std::string& path,
                           std::string& error)
{
    fs::remove(path);
    std::string command = std::string(ZAL_BIN_DIR "/") + program + " " + std::to_string(first) + " " +
                          std::to_string(count) + " " + path + " > " + path + ".log 2>&1";
    std::vector<Drawn> drawn(count);
    bool ran = std::system(command.c_str()) == 0;
    std::ifstream file(path, std::ios::binary);
    if (ran && file.read(reinterpret_cast<char*>(drawn.data()), static_cast<std::streamsize>(count * sizeof(Drawn))))
        return drawn;
    std::ostringstream words;
    words << program << ": " << std::ifstream(path + ".log").rdbuf();
    error = words.str();
    return {};
}

bool isUntouched(const std::array<std::array<float, 4>, ColorsPerPoint>& colors)
{
    return std::all_of(colors.begin(), colors.end(),
                       [](const auto& color) { return color[0] == Untouched && color[3] == Untouched; });
}

class PairJudge
{
public:
    PairJudge(uint32_t number, const Drawn& ours, const Drawn& theirs, Judgement& judgement)
        : pair_(pairOf(number)), number_(number), drawn_{&ours, &theirs}, judgement_(judgement)
    {}

    void go()
    {
        for (size_t point = 0; point < PointsPerPair; ++point) {
            Inputs inputs = pair_.points[point];
            inputs.locals = pair_.points[0].locals;
            for (size_t side = 0; side < 2; ++side)
                look(point, side, inputs);
        }
        if (!fault_.empty())
            judgement_.faults.push_back("pair " + std::to_string(number_) + "\n" + fault_ + vertexTextOf(pair_.vertex) +
                                        fragmentTextOf(pair_.fragment));
    }

private:
    void look(size_t point, size_t side, const Inputs& inputs)
    {
        const Exactness& exactness = side == 0 ? Ours : Theirs;
        const auto& colors = (*drawn_[side])[point];
        Outcome fragment = compute(pair_.fragment, inputs, exactness);
        bool untouched = isUntouched(colors);
        if (untouched ? fragment.fate == Fate::Drawn : fragment.fate == Fate::Killed)
            say(point, side, untouched ? "is not drawn" : "is drawn although it is killed");
        if (untouched) return;
        Outcome vertex = compute(pair_.vertex, inputs, exactness);
        for (size_t i = 0; i < RandomProgram::Results; ++i) {
            lookAt(point, side, "fragment R" + std::to_string(i), fragment.results[i], colors[i]);
            lookAt(point, side, "vertex R" + std::to_string(i), vertex.results[i], colors[RandomProgram::Results + i]);
        }
    }

    void lookAt(size_t point, size_t side, const std::string& what, const Vector& wanted,
                const std::array<float, 4>& got)
    {
        for (size_t c = 0; c < 4; ++c) {
            ++judgement_.values;
            double bound = wanted[c].e;
            // A bound as large as the value says nothing of it.
            if (!(bound <= 0.01 * std::max(1.0, std::abs(wanted[c].v)))) continue;
            ++judgement_.compared;
            double distance = std::abs(static_cast<double>(got[c]) - wanted[c].v);
            double part = bound > 0 ? distance / bound : distance > 0 ? 2 : 0;
            double& largest = side == 0 ? judgement_.ours : judgement_.theirs;
            if (distance <= bound) {
                largest = std::max(largest, part);
                continue;
            }
            char text[160];
            std::snprintf(text, sizeof text, "%s.%c is %.9g and must be %.9g, give or take %.3g", what.c_str(),
                          "xyzw"[c], static_cast<double>(got[c]), wanted[c].v, bound);
            say(point, side, text);
        }
    }

    void say(size_t point, size_t side, const std::string& what)
    {
        if (++said_ <= 4)
            fault_ +=
                std::string(side == 0 ? "here" : "Mesa") + ", point " + std::to_string(point) + ": " + what + "\n";
    }

    Pair pair_;
    uint32_t number_;
    const Drawn* drawn_[2];
    Judgement& judgement_;
    std::string fault_;
    int said_ = 0;
};

} // namespace

void judgePair(uint32_t number, const Drawn& ours, const Drawn& theirs, Judgement& judgement)
{
    PairJudge(number, ours, theirs, judgement).go();
}

Judgement judge(uint32_t first, uint32_t count, const std::string& name)
{
    fs::path folder = fs::path(ZAL_BINARY_DIR) / "differential" / "programs";
    fs::create_directories(folder);
    Judgement judgement;
    std::string error;
    auto ours = drawnBy("programs_zal", first, count, (folder / (name + "-zal")).string(), error);
    auto theirs = drawnBy("programs_mesa", first, count, (folder / (name + "-mesa")).string(), error);
    if (!error.empty()) judgement.faults.push_back(error);
    for (uint32_t i = 0; i < count && error.empty(); ++i)
        judgePair(first + i, ours[i], theirs[i], judgement);
    return judgement;
}

} // namespace differential
