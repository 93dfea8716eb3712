// SPDX-License-Identifier: Apache-2.0
// Colours on their way from the vertex to the fragment program.
#include "Host.h"
#include "suite/Stage.h"

#include <gtest/gtest.h>

#include <memory>

namespace
{

TEST(VertexColor, Kept_vertex_color_unclamped)
{
    std::string error;
    auto host = scenes::makeHost(scenes::Stage::Side, scenes::Stage::Side, error);
    ASSERT_TRUE(host) << error;
    scenes::Stage stage(*host);
    stage.use("!!ARBvp1.0\nMOV result.position, vertex.attrib[0];\nMOV result.color, vertex.attrib[3];\nEND\n",
              "!!ARBfp1.0\nMAD result.color, fragment.color, 0.25, 0.4;\nEND\n");
    stage.rectangle({}, {2, -1, 0.5f, 1});
    const scenes::Image picture = host->read();
    EXPECT_NEAR(picture.at(40, 40)[0], 0.9 * 255, 1);  // clamped: 0.65
    EXPECT_NEAR(picture.at(40, 40)[1], 0.15 * 255, 1); // clamped: 0.4
    EXPECT_NEAR(picture.at(40, 40)[2], 0.525 * 255, 1);
}

} // namespace
