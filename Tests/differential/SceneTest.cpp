// SPDX-License-Identifier: Apache-2.0
// Every scene of the suite, drawn by this library and by Mesa's software GL: the pictures agree as closely as the
// scene's row says, or differ where the row names a kept behaviour.
#include "differential/Comparison.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <set>
#include <sstream>

namespace
{

using scenes::SceneRow;

std::vector<SceneRow> allScenes()
{
    std::vector<SceneRow> rows;
    for (const scenes::SceneGroup& group : scenes::sceneGroups())
        rows.insert(rows.end(), group.rows.begin(), group.rows.end());
    return rows;
}

class Scene : public testing::TestWithParam<SceneRow>
{};

TEST_P(Scene, IsDrawnAsItsRowSays)
{
    const SceneRow& row = GetParam();
    differential::Comparison comparison = differential::compareScene(row);
    EXPECT_EQ(verdict(row, comparison), "") << row.note;
}

INSTANTIATE_TEST_SUITE_P(BesideMesa, Scene, testing::ValuesIn(allScenes()), [](const auto& one) {
    std::string name = one.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(SceneTable, NamesAreUnique)
{
    std::set<std::string> names;
    for (const SceneRow& row : allScenes())
        EXPECT_TRUE(names.insert(row.name).second) << row.name;
}

TEST(SceneTable, KeptBehaviourIsInTheList)
{
    std::ostringstream list;
    list << std::ifstream(ZAL_SOURCE_DIR "/docs/kept-behaviour.md").rdbuf();
    for (const SceneRow& row : allScenes())
        if (row.kept) {
            EXPECT_NE(list.str().find("| " + std::string(row.kept) + " |"), std::string::npos) << row.name;
        }
}

TEST(SceneTable, TolerancesHaveReasons)
{
    for (const SceneRow& row : allScenes()) {
        if (!row.kept && (row.tolerance > 1 || row.strays > 0)) {
            EXPECT_STRNE(row.note, "") << row.name;
        }
    }
}

} // namespace
