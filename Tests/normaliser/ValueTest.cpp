// SPDX-License-Identifier: Apache-2.0
// What a rewritten program computes is what the program computes in a GL that reads it as it is. Both are drawn in
// processes of their own.
#include "ValueCases.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace
{

constexpr int Tolerance = 2;  // of 255, in every channel
constexpr int EdgePixels = 2; // of 64, which may fall on either side of the quad's edge

using Pixel = std::vector<int>; // place and channels

std::map<std::string, std::vector<Pixel>> valuesOf(const std::string& program)
{
    // tests run side by side, each with files of its own
    const std::string file = ZAL_VALUE_DIR "/" + program + "-" + std::to_string(getpid()) + ".txt";
    const std::string command = ZAL_BIN_DIR "/" + program + " > " + file + " 2> " + file + ".log";
    EXPECT_EQ(std::system(command.c_str()), 0) << "see " << file << ".log";

    std::map<std::string, std::vector<Pixel>> values;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream fields(line);
        std::string name;
        std::getline(fields, name, '|');
        Pixel pixel;
        for (std::string field; std::getline(fields, field, '|');)
            pixel.push_back(std::stoi(field));
        values[name].push_back(pixel);
    }
    if (!testing::Test::HasFailure())
        for (const std::string& made : {file, file + ".log"})
            std::remove(made.c_str());
    return values;
}

bool agree(const Pixel& a, const Pixel& b)
{
    for (size_t i = 0; i < a.size(); ++i)
        if (std::abs(a[i] - b[i]) > Tolerance) return false;
    return true;
}

std::string textOf(const Pixel& pixel)
{
    std::string text;
    for (int number : pixel)
        text += std::to_string(number) + " ";
    return text;
}

TEST(RewrittenProgram, ComputesWhatTheProgramComputes)
{
    auto ours = valuesOf("values_zal");
    auto theirs = valuesOf("values_mesa");
    for (const normaliser::ValueCase& value : normaliser::ValueCases) {
        const std::vector<Pixel>& left = ours[value.name];
        const std::vector<Pixel>& right = theirs[value.name];
        ASSERT_EQ(left.size(), 64u) << value.name;
        ASSERT_EQ(right.size(), 64u) << value.name;

        int different = 0;
        std::string first;
        for (size_t i = 0; i < left.size(); ++i)
            if (!agree(left[i], right[i]) && different++ == 0)
                first = textOf(left[i]) + "instead of " + textOf(right[i]);
        EXPECT_LE(different, EdgePixels) << value.name << ", x y r g b a: " << first;
    }
}

TEST(RewrittenProgram, CasesShowMoreThanOneColour)
{
    for (const auto& [name, pixels] : valuesOf("values_mesa")) {
        std::map<std::string, int> colours;
        for (const Pixel& pixel : pixels)
            ++colours[textOf({pixel.begin() + 2, pixel.end()})];
        EXPECT_GT(colours.size(), 8u) << name;
    }
}

} // namespace
