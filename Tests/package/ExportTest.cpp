// SPDX-License-Identifier: Apache-2.0
// The built library shows exactly the names of exports.txt.
#include "package/DeclaredNames.h"

#include <ZALMetal/ZALMetal.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace
{

std::vector<std::string> wantedNames()
{
    std::ifstream file(ZAL_EXPORTS);
    std::vector<std::string> names;
    for (std::string line; std::getline(file, line);)
        names.push_back(line);
    return names;
}

std::string output(const std::string& command)
{
    std::string text;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return text;
    std::array<char, 4096> block;
    while (size_t count = std::fread(block.data(), 1, block.size(), pipe))
        text.append(block.data(), count);
    return pclose(pipe) == 0 ? text : std::string();
}

/// Names without their version; the symbols that stand for the versions themselves are left out.
std::set<std::string> exportedNames()
{
    std::istringstream lines(output(std::string(ZAL_NM) + " -D --defined-only --format=posix \"" ZAL_LIBRARY "\""));
    std::set<std::string> names;
    std::string line, name, type;
    while (std::getline(lines, line)) {
        std::istringstream(line) >> name >> type;
        if (type != "A") names.insert(name.substr(0, name.find('@')));
    }
    return names;
}

TEST(Exports, NoneIsMissing)
{
    std::set<std::string> exported = exportedNames();
    ASSERT_FALSE(exported.empty()) << "nm told nothing about " ZAL_LIBRARY;
    for (const std::string& name : wantedNames())
        EXPECT_TRUE(exported.count(name)) << name << " is not exported";
}

TEST(Exports, NothingElseLeaksOut)
{
    std::vector<std::string> wanted = wantedNames();
    for (const std::string& name : exportedNames())
        EXPECT_TRUE(std::binary_search(wanted.begin(), wanted.end(), name)) << name << " is exported";
}

TEST(Exports, TheListIsSortedAndHasNoDoubles)
{
    std::vector<std::string> wanted = wantedNames();
    EXPECT_GT(wanted.size(), 150u);
    EXPECT_TRUE(std::is_sorted(wanted.begin(), wanted.end()));
    EXPECT_EQ(std::adjacent_find(wanted.begin(), wanted.end()), wanted.end());
}

TEST(Exports, ThePublicHeadersDeclareThemAll)
{
    std::vector<std::string> wanted = wantedNames();
    ASSERT_EQ(static_cast<size_t>(declaredNameCount), wanted.size());
    for (size_t i = 0; i < wanted.size(); ++i) {
        EXPECT_EQ(declaredNames[i].name, wanted[i]);
        EXPECT_NE(declaredNames[i].address, nullptr) << wanted[i];
    }
}

TEST(ProcAddress, FindsEveryExportedName)
{
    for (int i = 0; i < declaredNameCount; ++i)
        EXPECT_EQ(reinterpret_cast<void*>(ZALMetalGetProcAddress(declaredNames[i].name)), reinterpret_cast<void*>(declaredNames[i].address))
            << declaredNames[i].name;
}

TEST(ProcAddress, KnowsNothingElse)
{
    for (const char* name : {"", "gl", "glClea", "glClearX", "glDrawArrays", "glGenFramebuffersEXT", "zzz", "AAA"})
        EXPECT_EQ(ZALMetalGetProcAddress(name), nullptr) << name;
    EXPECT_EQ(ZALMetalGetProcAddress(nullptr), nullptr);
}

/// The compiler's library and the device's show nothing of clang or LLVM to a process that may hold others.
TEST(Exports, TheShaderCompilerShowsOneName)
{
    std::istringstream lines(output(std::string(ZAL_NM) + " -D --defined-only --format=posix \"" ZAL_COMPILER "\""));
    std::string line, name;
    std::vector<std::string> names;
    while (std::getline(lines, line)) {
        std::istringstream(line) >> name;
        names.push_back(name);
    }
    EXPECT_EQ(names, std::vector<std::string>{"softmetal_open_compiler"});
    std::string device = output(std::string(ZAL_NM) + " -D --format=posix \"" ZAL_DEVICE "\"");
    EXPECT_FALSE(device.empty());
    for (const char* word : {"llvm", "LLVM", "clang"}) EXPECT_EQ(device.find(word), std::string::npos) << word;
}

} // namespace
