// SPDX-License-Identifier: Apache-2.0
// The debugging switches in the environment.
#include "support/BareContext.h"

#include <SoftMetal/SoftMetal.hpp>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace
{

constexpr const char* Variables[] = {"ZALMETAL_DEVICE_INDEX", "ZALMETAL_GPU_CAPTURE", "ZALMETAL_GPU_CAPTURE_AT_START",
                                     "ZALMETAL_DEVICE_WRAPPER"};

struct Environment : ::testing::Test
{
    Environment()
    {
        for (const char* name : Variables)
            unsetenv(name);
        SoftMetal::setLogSink([this](const std::string& line) { lines.push_back(line); });
    }
    ~Environment() override
    {
        SoftMetal::setLogSink({});
        for (const char* name : Variables)
            unsetenv(name);
    }

    support::BareContext bare;
    ZALGLState& gl = bare.state();
    std::vector<std::string> lines;
};

TEST_F(Environment, UnsetVariablesLeaveTheDefaults)
{
    support::StateSnapshot before(gl);
    ApplyEnvironmentSwitches(gl);
    EXPECT_TRUE(before.unchanged());
    EXPECT_TRUE(lines.empty());
}

TEST_F(Environment, EachVariableSetsItsSwitch)
{
    setenv("ZALMETAL_DEVICE_INDEX", "2", 1);
    setenv("ZALMETAL_GPU_CAPTURE", "1", 1);
    setenv("ZALMETAL_GPU_CAPTURE_AT_START", "1", 1);
    setenv("ZALMETAL_DEVICE_WRAPPER", "1", 1);
    ApplyEnvironmentSwitches(gl);
    EXPECT_EQ(gl.deviceIndex, 2);
    EXPECT_EQ(gl.enableDebugGPUCapture, 1);
    EXPECT_EQ(gl.debugCaptureAtStart, 1);
    EXPECT_EQ(gl.useMetalDeviceWrapper, 1);
    EXPECT_EQ(gl.strictValidation, 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(Environment, ZeroAndNegativeIndicesAreValues)
{
    setenv("ZALMETAL_DEVICE_INDEX", "-5", 1);
    setenv("ZALMETAL_GPU_CAPTURE", "0", 1);
    ApplyEnvironmentSwitches(gl);
    EXPECT_EQ(gl.deviceIndex, -5);
    EXPECT_EQ(gl.enableDebugGPUCapture, 0);
    EXPECT_TRUE(lines.empty());
}

TEST_F(Environment, AnUnreadableIndexIsIgnoredWithOneLine)
{
    for (const char* value : {"", "first", "1x", " 1", "+1", "0x1", "1.0", "99999999999"}) {
        lines.clear();
        setenv("ZALMETAL_DEVICE_INDEX", value, 1);
        ApplyEnvironmentSwitches(gl);
        EXPECT_EQ(gl.deviceIndex, -1) << value;
        ASSERT_EQ(lines.size(), 1u) << value;
        EXPECT_NE(lines[0].find("ZALMETAL_DEVICE_INDEX"), std::string::npos);
    }
}

TEST_F(Environment, AnUnreadableFlagIsIgnoredWithOneLine)
{
    for (const char* value : {"", "yes", "2", "-1", "01"}) {
        lines.clear();
        setenv("ZALMETAL_DEVICE_WRAPPER", value, 1);
        ApplyEnvironmentSwitches(gl);
        EXPECT_EQ(gl.useMetalDeviceWrapper, 0) << value;
        EXPECT_EQ(lines.size(), 1u) << value;
    }
}

} // namespace
