// SPDX-License-Identifier: Apache-2.0
#include "softmetal/shader/widen/Programs.h"

#include <gtest/gtest.h>

namespace widentest {
namespace {

std::string storing(const char* value, const char* component = "0")
{
    return std::string("  %bits = bitcast i32 ") + value + " to float\n  call void @softmetal_store_output(i32 " + component + ", float %bits)\n  ret void\n";
}

class VertexInputs : public testing::TestWithParam<const char*>
{
};

TEST_P(VertexInputs, ReachTheProgram) { expectSameAsScalar(program(std::string("  %v = call i32 ") + GetParam() + "\n" + storing("%v")), Stage::Vertex, 1); }

INSTANTIATE_TEST_SUITE_P(All, VertexInputs,
                         testing::Values("@softmetal_vertex_id()", "@softmetal_instance_id()", "@softmetal_base_vertex()", "@softmetal_base_instance()",
                                         "@softmetal_attribute(i32 0, i32 0)", "@softmetal_attribute(i32 30, i32 3)"));

TEST(VertexOutputs, LandInTheirComponent)
{
    World world;
    Results results = runWide(program("  %v = call i32 @softmetal_vertex_id()\n" + storing("%v", "127")), Stage::Vertex, 8, world);
    EXPECT_EQ(results.words[127][13], 13u);
    EXPECT_EQ(results.words[126][13], 0u);
}

} // namespace
} // namespace widentest
