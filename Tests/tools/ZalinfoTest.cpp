// SPDX-License-Identifier: Apache-2.0
#include "support/RunProgram.h"

#include <gtest/gtest.h>

namespace {

support::ProgramResult run(const std::string& arguments, const std::string& environment = "")
{
    return support::runProgram(environment + " " ZAL_INFO " " + arguments + " 2>/dev/null");
}

TEST(Zalinfo, NamesDeviceVersionLimitsAndEnvironment)
{
    auto result = run("", "SOFTMETAL_DEVICE_NAME='A device' ZALMETAL_DEVICE_INDEX=-1");
    EXPECT_EQ(result.status, 0);
    for (const char* part : {ZAL_VERSION, "A device", "GL_MAX_TEXTURE_SIZE                  16384", "GL_ARB_vertex_program", "ZALMETAL_DEVICE_INDEX                -1"})
        EXPECT_NE(result.output.find(part), std::string::npos) << part << " in " << result.output;
}

TEST(Zalinfo, JsonHasNullsForWhatIsNotThere)
{
    auto result = run("--json", "SOFTMETAL_DEVICE_NAME='say \"x\" \\'");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.front(), '{');
    for (const char* part : {"\"GL_VERSION\": null", "\"GL_MAX_3D_TEXTURE_SIZE\": 2048", "\"name\": \"say \\\"x\\\" \\\\\""})
        EXPECT_NE(result.output.find(part), std::string::npos) << part << " in " << result.output;
}

TEST(Zalinfo, WithoutADeviceItSaysSo)
{
    auto result = support::runProgram("SOFTMETAL_NO_DEVICE=1 " ZAL_INFO);
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("zalinfo: there is no Metal device"), std::string::npos) << result.output;
}

TEST(Zalinfo, BadUsageShowsTheUsage)
{
    EXPECT_EQ(run("--what").status, 2);
    EXPECT_EQ(run("--json --json").status, 2);
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("--version").output, "zalinfo " ZAL_VERSION "\n");
}

} // namespace
