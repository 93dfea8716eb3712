// SPDX-License-Identifier: Apache-2.0
// Whole programs of the kind that renderers carry, each beside the source that it must become.
#include "Translate.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace
{

namespace files = std::filesystem;

std::string contentsOf(const files::path& path)
{
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::vector<files::path> programs()
{
    std::vector<files::path> found;
    for (const files::directory_entry& entry : files::directory_iterator(ZAL_TRANSLATION_CORPUS))
        if (entry.path().extension() == ".vp" || entry.path().extension() == ".fp") found.push_back(entry.path());
    std::sort(found.begin(), found.end());
    return found;
}

// Only the first difference: a whole source is too long to look at.
std::string firstDifference(const std::string& expected, const std::string& actual)
{
    std::istringstream left(expected);
    std::istringstream right(actual);
    std::string a;
    std::string b;
    for (int line = 1;; ++line) {
        const bool more = static_cast<bool>(std::getline(left, a));
        const bool other = static_cast<bool>(std::getline(right, b));
        if (!more && !other) return "in line ends only";
        if (a != b || more != other)
            return "line " + std::to_string(line) + "\n  expected: " + a + "\n  actual:   " + b;
    }
}

TEST(Corpus, EveryProgramBecomesItsGolden)
{
    for (const files::path& path : programs()) {
        const translation::Translated result = translation::translate(contentsOf(path));
        EXPECT_EQ(result.status, 0) << path << ": " << result.report.reason;

        files::path golden = path;
        golden.replace_extension(path.extension().string() + ".metal");
        const std::string expected = contentsOf(golden);
        EXPECT_TRUE(result.source == expected) << path << ", " << firstDifference(expected, result.source);
    }
}

TEST(Corpus, HasAProgramForEverySubject)
{
    std::vector<std::string> names;
    for (const files::path& path : programs())
        names.push_back(path.filename().string());
    EXPECT_EQ(names, (std::vector<std::string>{"blur.fp", "branches.fp", "colour-space.fp", "depth-output.fp", "depth-peel.fp",
                                               "lighting.fp", "lighting.vp", "multiple-outputs.fp", "picking.fp", "skinning.vp",
                                               "texture-matrix.vp", "tone-curve.fp", "volume.fp"}));
}

} // namespace
